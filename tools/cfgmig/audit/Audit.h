// Audit.h -- whether a finished migration is what the rules make of the two configurations, and what became of each
// value: worked out from the three contents alone.
//
// Nothing of the migration itself is used: neither the library, nor what it traced, nor the ledger. The audit reads the
// rules from tables of its own, works out what the result has to be, and compares that with what the result is. So it
// can be made at any time, and by somebody else; a result that was edited afterwards shows, and so does a fault in the
// library's rules or in the ledger.
//
// From the contents alone a write that was refused looks like a value that somebody has deleted since. Such a value
// counts as lost, and is told.

#ifndef CFGMIG_TOOL_AUDIT_AUDIT_H
#define CFGMIG_TOOL_AUDIT_AUDIT_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "Snapshot.h"
#include "ledger/Ledger.h"

namespace tool {

// Why an old value has its fate.
enum class AuditReason : std::uint8_t {
  held,           // the new configuration had it
  arrived,        // it is where the rules bring it
  takenOut,       // a rule takes it out
  takenApart,     // the same, and a part of it is where the rules bring it
  leftBehind,     // the rules carry nothing of its entry, or nothing but other settings
  newStands,      // the new server's own stands by design
  pointedAtCopy,  // a schema file that the result includes as a copy
  uncalledFor,    // no rule brings it where it is
  missing,        // it is not where the rules bring it
  second,         // of a setting that counts as having one value it is not the first
  behind,         // the transfer of its entry ends before it
  noTarget,       // the new configuration lacks the entry that it goes to
  givenUp,        // its entry lacks a setting without which nothing of it is carried
  notAdded,       // its entry lacks a naming value or object classes
  notAskedFor,    // its rule ends before it
  overwritten,    // a later one took its place
  outside,        // its entry is not below CN=CONFIGURATION
};

// A phrase without a full stop.
const char* wordsFor(AuditReason reason);

struct AuditedOldValue {
  ValueFate fate = ValueFate::lost;
  AuditReason reason = AuditReason::missing;
  ValueId place = kNoValue;  // as in OldValueRow
};

struct AuditedResultValue {
  ValueOrigin origin = ValueOrigin::fromNew;
  bool isExplained = false;  // false: neither the rules nor the two configurations have it; it is not counted
  ValueId from = kNoValue;   // as in ResultValueRow
};

struct AuditedReplacement {
  ValueId before = kNoValue;
  ValueId by = kNoValue;  // as in ReplacedRow
};

// Something in the result that is not as the rules make it.
struct Discrepancy {
  enum class Kind : std::uint8_t {
    missingValue,      // a value that should have arrived is not there
    missingEntry,      // an entry that should have been added is not there
    notReplaced,       // the new server's value is there, although another should have taken its place
    missingNewValue,   // a value of the new server that should stand is not there
    missingNewEntry,   // an entry of the new server is not there
    changedValue,      // there is another value
    uncalledFor,       // a value of the old configuration is there that the rules do not bring there
    unexplainedValue,  // a value is there that comes from nowhere
    unexplainedEntry,  // an entry is there that comes from nowhere
    repeatedValue,     // a value is there once more than it should
    otherOrder,        // the values of a setting are in another order
  };
  Kind kind = Kind::missingValue;
  std::string_view dn;         // in normal form
  std::string_view attribute;  // empty: the entry as a whole
  ValueId old = kNoValue;      // the old value that is expected there, or of which the result speaks
  ValueId before = kNoValue;   // likewise of the new configuration before
  ValueId result = kNoValue;   // what is there
  std::string_view expected;   // what should be there, unless isExpected is false
  bool isExpected = false;

  // True when a write that was refused during the migration explains it.
  bool mayBeLoss() const {
    return kind == Kind::missingValue || kind == Kind::missingEntry || kind == Kind::notReplaced;
  }
};

// A phrase without a full stop.
const char* wordsFor(Discrepancy::Kind kind);

enum class AuditVerdict : std::uint8_t {
  agrees,   // the result is exactly what the rules make of the two configurations, and nothing was lost
  lost,     // the same, but values were lost or are missing
  differs,  // the result was edited afterwards, or the migration was faulty
};

// Its views are into the three snapshots and into itself.
struct Audit {
  Audit() = default;
  Audit(Audit&&) = default;
  Audit& operator=(Audit&&) = default;

  std::string sourceVersion;
  std::vector<AuditedOldValue> oldValues;        // one for each value of the old configuration
  std::vector<AuditedResultValue> resultValues;  // one for each value of the result
  std::vector<AuditedReplacement> replaced;      // in the order of the new configuration before
  std::vector<Discrepancy> discrepancies;        // in the order of the new configuration, added entries behind it
  std::vector<ValueId> schemaFilesLeft;          // of the result: schema files that name no copy, though they should

  std::array<std::size_t, kValueFates> fates{};      // how many old values have each fate
  std::array<std::size_t, kValueOrigins> origins{};  // how many explained values of the result have each origin
  std::size_t unexplained = 0;                       // values of the result that have none

  std::deque<std::string> texts;  // what discrepancies expect and no snapshot holds

  std::size_t count(ValueFate fate) const { return fates[static_cast<std::size_t>(fate)]; }
  AuditVerdict verdict() const;
};

// An audit in two steps: what the result has to be can be worked out before there is one.
class Auditor {
 public:
  // `version` must be a source version, otherwise std::invalid_argument is thrown. Both snapshots must outlive it.
  Auditor(const cfgstore::Snapshot& old, const cfgstore::Snapshot& before, std::string_view version);
  ~Auditor();
  Auditor(Auditor&&) noexcept;
  Auditor& operator=(Auditor&&) noexcept;

  // Looks at the result, which must outlive the audit. To be called once. `schemaTarget` is the directory that the
  // migration copied schema files to, as the result names it: absolute and without a slash at its end; empty when it
  // copied none.
  Audit audit(const cfgstore::Snapshot& result, std::string_view schemaTarget = {});

 private:
  struct State;
  std::unique_ptr<State> m_state;
};

// Both steps at once. Time is linear in the values.
Audit audit(const cfgstore::Snapshot& old, const cfgstore::Snapshot& before, const cfgstore::Snapshot& result,
            std::string_view version, std::string_view schemaTarget = {});

// In what an audit and the ledger of the same migration disagree: fate and place of old values, origin of the values of
// the result and what they are from, and what was replaced by what; a line each, without values. Empty when they agree.
// In an entry in which the ledger knows of a refused write only losses count, since its contents have several stories.
std::vector<std::string> compareWithLedger(const Audit& audit, const Ledger& ledger);

}  // namespace tool

#endif  // CFGMIG_TOOL_AUDIT_AUDIT_H
