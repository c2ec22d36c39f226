// SchemaPage.h -- the manual page of a JSON format, made from its JSON Schema.

#ifndef CFGMIG_TOOL_OPTIONS_SCHEMAPAGE_H
#define CFGMIG_TOOL_OPTIONS_SCHEMAPAGE_H

#include <iosfwd>
#include <string>

namespace tool {

// Writes the page `name`(5) for the format that `schema`, the text of a JSON Schema, describes. Each member and
// definition of the schema is in it, with its type, its words and its description.
// Throws an exception derived from std::exception for a text that is no JSON, and for a keyword of JSON Schema that the
// page would have to pass over: a page that says less than the schema would not be noticed.
void writeSchemaPage(const std::string& name, const std::string& schema, std::ostream& out);

}  // namespace tool

#endif  // CFGMIG_TOOL_OPTIONS_SCHEMAPAGE_H
