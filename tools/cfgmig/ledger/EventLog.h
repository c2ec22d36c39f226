// EventLog.h -- the writes of a merge, in order, each with the old value that it is about.

#ifndef CFGMIG_TOOL_LEDGER_EVENTLOG_H
#define CFGMIG_TOOL_LEDGER_EVENTLOG_H

#include <memory>
#include <memory_resource>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "ConfigStore.h"
#include "Ledger.h"
#include "ValueFinder.h"
#include "Why.h"

namespace tool {

enum class Side { oldConfiguration, newConfiguration };

// Which old value a write is about is told from the method at work:
//
//   - A transfer writes each value of its entry under its own name; replAddEntry, some under another.
//   - A rule moves a value by two writes in a row: it takes the value out of the old configuration, or tries to, then
//     sets it in the new one. What it sets may be the end of the value. A value that it did not take out, it sets under
//     the value's own name.
//   - Everything else that is written is the rule's own.
class EventLog {
 public:
  // `old` is the old configuration before the merge; it must outlive the log and what is taken from it.
  explicit EventLog(const cfgstore::Snapshot& old);

  // What a rule took out before is not what this write sets: a method was entered in between.
  void forgetTaken() { m_taken = kNoValue; }

  // Notes a write of `method`, 0 for none, while the old entry `entry` was worked on, or kNone.
  void add(Side side, const cfgstore::Write& write, unsigned long method, std::uint32_t entry);

  const std::vector<LedgerEvent>& events() const { return m_events; }
  unsigned long methodOf(std::size_t event) const { return m_methods[event]; }

  // True when the event has written the old value that it names from its first letter to its last, not a part of it.
  bool isWhole(const LedgerEvent& event) const;

  Reasons& reasons() { return m_reasons; }

  // To be called once, when no event comes any more and methodOf is not needed any more.
  void moveTo(Ledger& ledger);

 private:
  ValueId valueOf(Side side, const cfgstore::Write& write, unsigned long method, std::uint32_t entry);
  std::string_view kept(std::string_view text);
  std::string_view keptName(std::string_view name);
  std::string_view textOf(ValueId value) const { return m_old.values()[value].value; }

  const cfgstore::Snapshot& m_old;
  ValueFinder m_finder;
  std::unique_ptr<std::pmr::monotonic_buffer_resource> m_memory;
  std::vector<LedgerEvent> m_events;
  std::vector<unsigned long> m_methods;  // of the events
  Reasons m_reasons;
  ValueId m_taken = kNoValue;                   // what the last write took out of the old configuration, or tried to
  std::unordered_set<std::string_view> m_kept;  // DNs and names
  std::string_view m_lastName;
  std::string_view m_lastDn;
};

}  // namespace tool

#endif  // CFGMIG_TOOL_LEDGER_EVENTLOG_H
