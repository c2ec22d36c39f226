// Ledger.h -- what became of every value in a merge, and where every value of the result comes from.
//
// Three snapshots, and one row for each of their values: each value of the old configuration has exactly one fate, each
// value of the result exactly one origin, and each value of the new configuration as it was before is in the result or
// listed as replaced. The rows stand in the order of the snapshots' values, so that the number of a value is the number
// of its row.

#ifndef CFGMIG_TOOL_LEDGER_LEDGER_H
#define CFGMIG_TOOL_LEDGER_LEDGER_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <memory_resource>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "Snapshot.h"

namespace tool {

using ValueId = std::uint32_t;   // the number of a value in its snapshot
using ReasonId = std::uint32_t;  // the number of a reason in its ledger
inline constexpr ValueId kNoValue = 0xffffffff;

// What became of a value of the old configuration.
//
// When more than one could be said of a value, the first of these that holds is said: same, carried, moved, when it was
// written, or was to be, and the result holds it there; dropped, when a rule took it out, also if the new configuration
// holds an equal one; same, when the place where its entry's values go held it before and holds it still; then cleaned,
// kept-new and lost. A value that the file repeats has the fate of the first one.
enum class ValueFate : std::uint8_t {
  same,     // the new configuration already held it where it was to go, and holds it still
  carried,  // added or set at the same DN
  moved,    // set under another DN or attribute
  dropped,  // a version rule removed it, or left its entry behind by design
  keptNew,  // the new server's own value stands by design: object classes, version, naming values at a changed DN
  cleaned,  // removed or rewritten by a clean-up operation
  lost,     // it should have arrived and did not
};
inline constexpr std::size_t kValueFates = 7;

// Where a value of the result comes from.
enum class ValueOrigin : std::uint8_t {
  fromNew,      // the new server's own; also when a step put another in its place and a later one put it back
  carried,      // from the old configuration, at the same DN
  moved,        // from the old configuration, under another DN or attribute
  addedByRule,  // written by a rule: a migration marker, a canonical plug-in definition
};
inline constexpr std::size_t kValueOrigins = 4;

// "same", "carried", ..., "kept-new", ...; "new", "carried", "moved", "added-by-rule".
const char* nameOf(ValueFate fate);
const char* nameOf(ValueOrigin origin);

// The words of a result value's reason contain this when the merge has brought a list of schema files to name the same
// file twice, in whatever directory, and the value is one of the two.
inline constexpr std::string_view kSchemaFileNamedTwice = "the list now names the same schema file twice";

// Why: the step by its method's name, and in plain words. Neither holds a value.
struct Reason {
  std::string method;  // "mergeIn51"; empty when no method of the library had to do with it
  std::string words;   // "the 6.0 server no longer has this setting": a phrase without a full stop
};

struct OldValueRow {
  ValueFate fate = ValueFate::lost;
  ReasonId reason = 0;
  ValueId place = kNoValue;  // in the result: same, carried and moved always have one; keptNew may name the first
                             // of the values that stand in its place, cleaned the one that it was rewritten to, dropped
                             // the one that was made of a part of it; otherwise none
};

struct ResultValueRow {
  ValueOrigin origin = ValueOrigin::fromNew;
  ReasonId reason = 0;
  ValueId from = kNoValue;  // fromNew: the value of the new configuration before; carried, moved: the value of the old
                            // one, the first when several arrived here; addedByRule: the value of the old one that it
                            // is a part of or was rewritten from, else none
};

// A value of the new configuration that is not in the result.
struct ReplacedRow {
  ValueId before = kNoValue;  // in the new configuration before
  ValueId by = kNoValue;      // the value of the result of the values that stand in its place, if one does
  ReasonId reason = 0;
};

// What became of an entry of the old configuration as a whole.
enum class EntryFate : std::uint8_t {
  added,    // created in the new configuration
  merged,   // carried into the entry of the same DN
  moved,    // carried into an entry of another DN
  rebuilt,  // made anew from some of its values
  left,     // its rule carries nothing of it, which is no loss
  skipped,  // nothing of it was carried, though it should have been
  outside,  // no merge looks at it: it is not below the configuration's root entry
};

struct EntryRow {
  EntryFate fate = EntryFate::skipped;
  ReasonId reason = 0;
  // The normal DN that it went to; empty when it went nowhere. Of `old`, or a constant.
  std::string_view target;
};

// Something that happened to a value or an entry, in the order in which it happened. What `why` tells.
struct LedgerEvent {
  bool onOld = false;          // in the old store; otherwise in the new one
  std::uint8_t operation = 0;  // a cfgstore::Operation
  bool changed = false;        // the content was different afterwards
  int rc = 0;                  // what the store answered
  ReasonId reason = 0;         // the method at work, and what it was doing
  std::uint32_t oldEntry = 0;  // the entry of the old snapshot that was worked on, or Snapshot::kNone
  // The value of the old snapshot that was written or taken out; also one of which a part was written.
  ValueId oldValue = kNoValue;
  std::string_view dn;                       // as the caller of the store wrote it
  std::string_view attribute;                // likewise; empty for whole entries
  std::span<const std::string_view> values;  // as cfgstore::Write has them
};

struct Ledger {
  std::string sourceVersion;  // "5.1"
  cfgstore::Snapshot old;     // before the merge
  cfgstore::Snapshot before;  // the new configuration, before the merge
  cfgstore::Snapshot result;

  // One for each value of `old`, and one for each of `result`. An entry that is unfolded (Unfolded.h) has its rows at
  // their ends for a while, which is no change of the ledger.
  mutable std::vector<OldValueRow> oldValues;
  mutable std::vector<ResultValueRow> resultValues;
  std::vector<ReplacedRow> replaced;  // in the order of `before`
  std::vector<EntryRow> oldEntries;   // one for each entry of `old`
  std::vector<LedgerEvent> events;
  std::vector<Reason> reasons;        // each of them once; number 0 has no words, and is that of a row without a fate
  std::vector<std::string> messages;  // the library's debug messages, in order and in printable form, repetitions in a
                                      // row in one line; they may hold values

  ReasonId sameSetAside = 0;  // why the old values that are set aside are the same
  ReasonId newSetAside = 0;   // where the values of the result come from that are

  std::array<std::size_t, kValueFates> fates{};      // how many values have each fate
  std::array<std::size_t, kValueOrigins> origins{};  // how many have each origin

  std::unique_ptr<std::pmr::monotonic_buffer_resource> memory;  // what the events say and no snapshot holds

  // How many values there are, those included that were set aside before the merge: they have no rows, and are counted
  // as `same` and `fromNew`.
  std::size_t oldValueCount() const { return oldValues.size() + old.valuesSetAside(); }
  std::size_t resultValueCount() const { return resultValues.size() + result.valuesSetAside(); }

  const Reason& reasonOf(ReasonId id) const { return reasons[id]; }
  std::size_t count(ValueFate fate) const { return fates[static_cast<std::size_t>(fate)]; }
  std::size_t count(ValueOrigin origin) const { return origins[static_cast<std::size_t>(origin)]; }
};

// What does not add up in a ledger; empty when all does. Checked are: a row for each value; the counts against the rows
// and their sums against the numbers of values; that each place holds what its fate says, each origin names a value
// that is equal, and each value of `before` is either in the result as the new server's own or listed as replaced,
// once. Anything found here is an error of this tool, not of a configuration.
std::vector<std::string> sumErrors(const Ledger& ledger);

}  // namespace tool

#endif  // CFGMIG_TOOL_LEDGER_LEDGER_H
