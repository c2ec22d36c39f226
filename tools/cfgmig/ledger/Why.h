// Why.h -- the reasons of a ledger: what a step did or why it did not, in words that an administrator understands.

#ifndef CFGMIG_TOOL_LEDGER_WHY_H
#define CFGMIG_TOOL_LEDGER_WHY_H

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <tuple>
#include <unordered_map>
#include <utility>
#include <vector>

#include "Ledger.h"

namespace tool {

enum class Why : std::uint8_t {
  unknown,  // nothing explains it, which is an error of this tool

  // What a method was doing when it wrote.
  takesOut,
  setsElsewhere,
  carries,
  creates,
  buildsAnew,
  addsItsOwn,
  addsToOld,
  cleansUp,

  // An old value.
  held,
  carriedWithEntry,
  carriedValue,
  carriedIntoRebuilt,
  arrivedBefore,
  movedWithEntry,
  movedSetting,
  movedIdentity,
  dropped,
  droppedButPart,
  leftByRule,
  serversOwn,
  cleanedUp,
  rewritten,

  // A loss.
  refused,
  refusedNoEntry,
  partRefused,
  onlyFirst,
  onlyFirstRead,
  overwritten,
  noTarget,
  absentEnds,
  behindAbsent,
  behindRefused,
  noNamingValue,
  noObjectClass,
  entryRefused,
  givenUp,
  givenUpNoAdditions,
  noIdentity,
  noPassword,
  rebuildEnded,
  outside,
  endedEarly,

  // A value of the result that no old value explains, and one of the new configuration that is not in it.
  newServers,
  addedByRule,
  rewrittenValue,
  replacedByOld,
  replacedByRule,
  lineRepeated,

  // An entry.
  entryAdded,
  entryMerged,
  entryMoved,
  entryRebuilt,
  entryLeft,
  entryPartMoved,
};

// The reasons that a ledger has needed so far, each of them once. The first, number 0, has no words.
class Reasons {
 public:
  Reasons() : m_reasons(1) {}

  // The number of a reason. `method` is a trace identifier, or 0 for none; `code` what the store answered, where that
  // is part of the reason; `attribute` the setting, where the reason is one of a rule's own.
  ReasonId of(unsigned long method, Why why, int code = 0, std::string_view attribute = {});

  // The same reason, said of a schema file that its list names twice.
  ReasonId namedTwice(ReasonId reason);

  std::vector<Reason> take() { return std::move(m_reasons); }

 private:
  using Key = std::tuple<unsigned long, const char*, int>;  // method, words, code

  ReasonId find(unsigned long method, Why why, int code, std::string_view attribute);

  std::vector<Reason> m_reasons;
  std::map<Key, ReasonId> m_known;
  std::unordered_map<std::uint64_t, ReasonId> m_general;  // the same without attribute, for most values are alike
  std::unordered_map<ReasonId, ReasonId> m_twice;
};

}  // namespace tool

#endif  // CFGMIG_TOOL_LEDGER_WHY_H
