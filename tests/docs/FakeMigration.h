// FakeMigration.h -- what only the fake store can show.

#ifndef CFGMIG_TESTS_DOCS_FAKEMIGRATION_H
#define CFGMIG_TESTS_DOCS_FAKEMIGRATION_H

#include <functional>
#include <string>

#include "Migration.h"

namespace migration {

// Told of every comparison of two DNs: the method that makes it, and the call, "compareDns(A, B) = 0".
using Comparison = std::function<void(const std::string& method, const std::string& call)>;

Outcome migrateComparing(const std::string& version, const Entries& old, const Entries& fresh,
                         const Comparison& comparison);

}  // namespace migration

#endif  // CFGMIG_TESTS_DOCS_FAKEMIGRATION_H
