// SelfCheck.h -- looks at what apply leaves behind, before it says that it is done.

#ifndef CFGMIG_TOOL_MIGRATION_SELFCHECK_H
#define CFGMIG_TOOL_MIGRATION_SELFCHECK_H

#include <memory>
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

// The same, with most of it done before there is a file: what is going to be written is read as the file would be, and
// audited, beside the rest of the migration. Afterwards the file only has to hold that text. Used in this order: made
// before the merge, begin, compare, faultsOf. What it is given must outlive it, but for the ledger, which it shares.
class EarlySelfCheck {
 public:
  // The two configurations are in the ledger; works out beside the merge what has to come of it.
  EarlySelfCheck(std::shared_ptr<const Ledger> ledger, cfgstore::ConfigStore& merged, std::string schemaTarget);
  ~EarlySelfCheck();
  EarlySelfCheck(const EarlySelfCheck&) = delete;
  EarlySelfCheck& operator=(const EarlySelfCheck&) = delete;

  // `merged` is as it will be saved, and stays so.
  void begin();

  // The ledger is finished, and stays as it is.
  void compare();

  // As selfCheck says, once the file was written. To be called once.
  std::vector<std::string> faultsOf(const std::string& resultPath);

 private:
  struct State;
  std::unique_ptr<State> m_state;
};

}  // namespace tool

#endif  // CFGMIG_TOOL_MIGRATION_SELFCHECK_H
