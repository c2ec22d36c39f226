// LedgerBuilder.h -- runs a merge and gives the ledger of it.

#ifndef CFGMIG_TOOL_LEDGER_LEDGERBUILDER_H
#define CFGMIG_TOOL_LEDGER_LEDGERBUILDER_H

#include <memory>
#include <string>

#include "ConfigFile.h"
#include "Ledger.h"
#include "MergeAccount.h"

namespace tool {

// Used in this order: made on the two configurations, merge, clean-up operations if there are any, finish. All writes
// from the merge on are in the ledger. The two configurations must outlive it, and the ledger as well, which holds
// views into their stores.
class LedgerBuilder {
 public:
  // Both inventories have been filled (ConfigFile::getDns). Looks at both configurations as they are now.
  LedgerBuilder(ConfigFile& old, ConfigFile& now, std::string version);
  ~LedgerBuilder();
  LedgerBuilder(const LedgerBuilder&) = delete;
  LedgerBuilder& operator=(const LedgerBuilder&) = delete;

  // Merges the old configuration into the new one.
  // Throws Failure when the merge could not begin, std::logic_error when what is seen of it makes no account, and what
  // the library throws. The new configuration is then of no use any more.
  void merge();

  // What is written from now on is the work of this method of the library, by its trace identifier: a clean-up, whose
  // records need not be heard.
  void cleanUpBy(unsigned long method);

  // The ledger that is going to be finished. Its version and its snapshots of the two configurations are there from
  // the beginning and stay as they are, so that another thread may look at them.
  std::shared_ptr<const Ledger> begun() const;

  // The ledger of all that was written. To be called once.
  // Throws std::logic_error when a write could not be noted. Whether the sums hold is for sumErrors to say.
  std::shared_ptr<Ledger> finish();

 private:
  struct State;
  std::unique_ptr<State> m_state;
};

// The ledger of one merge without anything else. Arguments and errors as above.
Ledger migrate(ConfigFile& old, ConfigFile& now, const std::string& version);

}  // namespace tool

#endif  // CFGMIG_TOOL_LEDGER_LEDGERBUILDER_H
