// Accounting.h -- makes a ledger of what was written in a merge and of what was there before and after.
//
// The result says what arrived, the writes say from where, and what the driver did with an entry says why the rest did
// not. In this order:
//
//   1. Each value of the result that the new configuration held before at the same place is the new server's own.
//   2. The writes are gone through in order. A write of an old value whose text the result holds where it was written
//      is an arrival; one that it does not hold any more was undone by a later step. What a rule writes of its own is
//      the origin of the value that it left.
//   3. Each old value that did not arrive in this way is decided by its entry: a step that took it out, a refusal, or
//      what its transfer does with a value like it. Transfers write nothing where the new entry has the same already.
//   4. Each value of the new configuration that is not in the result was replaced by what stands there now.
//
// What nothing explains keeps reason 0, which sumErrors reports.

#ifndef CFGMIG_TOOL_LEDGER_ACCOUNTING_H
#define CFGMIG_TOOL_LEDGER_ACCOUNTING_H

#include <cstdint>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "EventLog.h"
#include "Ledger.h"
#include "MergeAccount.h"
#include "MergeRules.h"
#include "ValueFinder.h"

namespace tool {

inline cfgstore::Operation operationOf(const LedgerEvent& event) {
  return static_cast<cfgstore::Operation>(event.operation);
}

class Accounting {
 public:
  // `ledger` has the three snapshots. All arguments must outlive the object.
  Accounting(Ledger& ledger, EventLog& log, const std::vector<EntryWork>& works);

  // Fills everything but the events, the reasons and the messages. To be called once.
  void run();

 private:
  static constexpr std::uint32_t kNone = cfgstore::Snapshot::kNone;

  // What the writes have to say of an old value; numbers of events, or kNone.
  struct Trail {
    ValueId place = kNoValue;       // where it arrived
    std::uint32_t arrived = kNone;  // by which write
    std::uint32_t undone = kNone;   // a write of it that a later step has undone
    std::uint32_t refused = kNone;  // a write of it that was refused
    std::uint32_t taken = kNone;    // it was taken out of the old configuration
  };

  // A value that was deleted from the new configuration.
  struct Removal {
    std::uint32_t event = 0;
    std::uint32_t rewrittenBy = kNone;  // the write behind it that put another value into the same attribute
  };

  // Where the values of an old entry were to go, and how far they got.
  struct Course {
    const EntryWork* work = nullptr;
    std::uint32_t oldEntry = 0;
    std::uint32_t target = kNone;  // entry of the result
    bool hadTarget = true;         // when the transfer ran
    bool sameDn = true;
    MasterKind kind = MasterKind::neither;
    std::uint32_t stop = kNone;     // the attribute at which the transfer ended
    std::size_t stopLine = 0;       // where the transfer met it
    std::size_t line = 0;           // where it met, or would have met, the attribute at hand
    bool stoppedByRefusal = false;  // at a write; otherwise at a setting that the new entry lacks
  };

  // Accounting.cpp: what arrived.
  void matchNewServersOwn();
  void matchAttribute(std::uint32_t before, std::uint32_t result);
  void replayWrites();
  void replayValue(std::uint32_t event);
  void replayEntry(std::uint32_t event);
  void arrive(ValueId old, ValueId place, std::uint32_t event);
  void addedByRule(ValueId place, std::uint32_t event, Why why, ValueId partOf = kNoValue);
  void noteRemoval(std::uint32_t event);
  const Removal* removalOf(std::uint32_t entry, std::string_view name, std::string_view value);
  ValueId rewrittenTo(const Removal& removal);
  Why arrivalOf(std::uint32_t event, bool samePlace) const;
  void listReplaced();
  ReplacedRow replacedRow(ValueId before);
  void markSchemaFiles();
  std::uint32_t resultEntryOf(std::string_view dn);
  bool isSamePlace(ValueId old, ValueId place) const;
  unsigned long methodOf(std::uint32_t event) const { return m_log.methodOf(event); }

  // OldValues.cpp: what became of the rest.
  void decideEntries();
  Course courseOf(const EntryWork& work);
  void findStop(Course& course);
  std::size_t walkedAt(std::uint32_t attribute, const EntryWork& work) const;
  void decideEntry(Course course);
  void decideOutside(std::uint32_t entry);
  OldValueRow decide(ValueId old, bool first, const Course& course);
  std::optional<OldValueRow> byWrites(ValueId old, const Course& course);
  OldValueRow byTransfer(ValueId old, bool first, const Course& course);
  OldValueRow byRule(ValueId old, bool first, const Course& course);
  OldValueRow byRebuilding(ValueId old, bool first, const Course& course);
  OldValueRow undone(std::uint32_t entry, std::string_view name, std::string_view value);
  OldValueRow serversOwn(ValueId old, const Course& course);
  ReasonId whyNotAdded(const Course& course);
  OldValueRow lost(unsigned long method, Why why, int code = 0);
  OldValueRow there(ValueId old, ValueId place, unsigned long method);
  EntryRow entryRow(const Course& course);
  bool isThereBy(std::uint32_t resultEntry, std::string_view normal, std::size_t event) const;
  const LedgerEvent* refusalThatEnded(const EntryWork& work) const;
  ReasonId reason(unsigned long method, Why why, int code = 0, std::string_view attribute = {}) {
    return m_log.reasons().of(method, why, code, attribute);
  }

  const cfgstore::SnapshotAttribute& attributeOf(ValueId old) const {
    return m_ledger.old.attributeOf(m_ledger.old.values()[old]);
  }

  Ledger& m_ledger;
  EventLog& m_log;
  const std::vector<EntryWork>& m_works;
  ValueFinder m_inOld;
  ValueFinder m_inBefore;
  ValueFinder m_inResult;
  std::vector<Trail> m_trails;          // of the old values
  std::vector<ValueId> m_kept;          // of the values before: where they are in the result
  std::vector<std::uint32_t> m_writer;  // of the values of the result: the last write that put them there, or kNone
  std::vector<std::uint32_t> m_lists;   // the lists of schema files in the result
  std::unordered_map<ValueId, std::uint32_t> m_parts;        // old values of which a part was written: by which event
  std::unordered_multimap<std::size_t, Removal> m_removals;  // by hash of the value
  std::vector<std::uint32_t> m_undone;                       // writes of which the result holds nothing any more
  std::vector<std::uint32_t> m_removedEntries;               // events that removed an entry of the new configuration
  std::unordered_map<std::uint32_t, std::uint32_t> m_made;   // entries of the result that were made: by which event
  std::vector<std::uint32_t> m_addedToOld;                   // events that added a value to the old configuration
  std::string_view m_lastDn;
  std::uint32_t m_lastEntry = kNone;
};

}  // namespace tool

#endif  // CFGMIG_TOOL_LEDGER_ACCOUNTING_H
