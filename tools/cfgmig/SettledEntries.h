// SettledEntries.h -- entries of which it is known what becomes of them before anything is merged.
//
// An entry that both configurations hold with the same bytes, and that no rule names, comes out of a merge as it was:
// each of its values is the same before and after. In most migrations these are nearly all entries. Where nobody asks
// for each single value, they are set aside (EqualEntries.h of the store) and only counted.

#ifndef CFGMIG_TOOL_SETTLEDENTRIES_H
#define CFGMIG_TOOL_SETTLEDENTRIES_H

#include "ConfigStore.h"

namespace tool {

// Sets the settled entries aside in both. To be called before the inventories are read (ConfigFile::getDns). The
// findings are the same without them: an entry with a setting that they look at stays, whoever's it is.
void setSettledEntriesAside(cfgstore::ConfigStore& old, cfgstore::ConfigStore& now);

// The same unless a trace is written, which tells of every entry; without one, nobody sees whether equal entries were
// gone through.
void setSettledEntriesAsideUnlessTraced(cfgstore::ConfigStore& old, cfgstore::ConfigStore& now);

// Of a migration that is finished only those are settled that `result` holds with the same bytes as `before`, too: sets
// these aside in `result`, and puts the others back in the other two.
void settleWithResult(cfgstore::ConfigStore& old, cfgstore::ConfigStore& before, cfgstore::ConfigStore& result);

}  // namespace tool

#endif  // CFGMIG_TOOL_SETTLEDENTRIES_H
