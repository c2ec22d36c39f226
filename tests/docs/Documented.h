// Documented.h -- finds the line of a page that accounts for what a rule does.

#ifndef CFGMIG_TESTS_DOCS_DOCUMENTED_H
#define CFGMIG_TESTS_DOCS_DOCUMENTED_H

#include <string>

#include "Migration.h"
#include "MigrationPages.h"

namespace documented {

// Whether a method holds rules of a source version, rather than carrying what they leave.
bool isRule(const std::string& method);

// The line that says what this call, made by a rule itself, does; null when there is none. A read is accounted for by
// any line about the setting that is read; a write only by one that names the method and is about the value.
const pages::Row* lineFor(const pages::Page& page, const migration::Call& call);

std::string describe(const migration::Call& call);

}  // namespace documented

#endif  // CFGMIG_TESTS_DOCS_DOCUMENTED_H
