// What the report was made from, and the schema files of the result.
#include <ostream>

#include "report/html/HtmlText.h"
#include "report/html/Page.h"

namespace tool::html {

void writeInputs(Page& page) {
  std::ostream& out = page.out();
  const Report& report = page.report();
  out << "<dl>\n";
  for (const InputFile& input : report.inputs) {
    out << "<dt>" << (input.role == "old" ? "Old configuration" : "New configuration") << "<dd><code>"
        << Text{input.path} << "</code>, " << Count{input.size, "byte"} << "<br><small>SHA-256 <code>"
        << Text{input.sha256} << "</code></small>\n";
  }
  out << "<dt>Source version<dd>" << Text{report.ledger.sourceVersion};
  if (!report.recognisedFrom.empty()) out << ", recognised from " << Text{report.recognisedFrom};
  out << "\n<dt>Made<dd>" << Text{report.time} << " by cfgmig " << Text{report.toolVersion} << "\n</dl>";
}

void writeSchemas(Page& page) {
  std::ostream& out = page.out();
  const std::vector<SchemaFile>& schemas = page.report().outcome.schemas;
  if (schemas.empty()) return;
  out << "<section aria-labelledby=\"schemas\">\n<h2 id=\"schemas\">Schema files</h2>\n<div class=\"card "
         "listed\">\n"
         "<table class=\"files\"><thead><tr><th>File<th>What happened<th>Where it goes</thead>\n<tbody>\n";
  for (const SchemaFile& schema : schemas) {
    out << "<tr><th scope=\"row\"><code>" << Text{schema.source} << "</code><td>" << Text{nameOf(schema.fate)};
    if (!schema.why.empty()) out << "<br><small>" << Text{schema.why} << "</small>";
    out << "<td>";
    if (!schema.destination.empty()) out << "<code>" << Text{schema.destination} << "</code>";
    if (!schema.backup.empty()) {
      out << "<br><small>the file that was there is now <code>" << Text{schema.backup} << "</code></small>";
    }
    out << "</td>\n";
  }
  out << "</table>\n</div>\n</section>\n";
}

}  // namespace tool::html
