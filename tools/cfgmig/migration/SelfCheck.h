// SelfCheck.h -- looks at what apply has left behind, before it says that it is done.

#ifndef CFGMIG_TOOL_MIGRATION_SELFCHECK_H
#define CFGMIG_TOOL_MIGRATION_SELFCHECK_H

#include <string>
#include <vector>

#include "ConfigStore.h"
#include "ledger/Ledger.h"

namespace tool {

// Reads the file at `resultPath` anew and audits it against what the ledger says the two configurations were. What is
// wrong with it, a line each without values: the file is not what the rules make of them, or the audit does not agree
// with the ledger. Empty when all is well; values that are lost by both accounts are no fault. What `merged`, the new
// configuration with what was merged into it, has set aside must stand in the file to the byte.
// `schemaTarget` is as audit takes it.
std::vector<std::string> selfCheck(const Ledger& ledger, const cfgstore::ConfigStore& merged,
                                   const std::string& resultPath, const std::string& schemaTarget);

}  // namespace tool

#endif  // CFGMIG_TOOL_MIGRATION_SELFCHECK_H
