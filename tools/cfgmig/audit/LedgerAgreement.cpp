// LedgerAgreement.cpp -- an audit against the ledger of the same migration.

#include <string>
#include <unordered_set>

#include "NormalDn.h"
#include "audit/Audit.h"

namespace tool {
namespace {

std::string lineOf(const cfgstore::Snapshot& snapshot, ValueId value) {
  if (value >= snapshot.values().size()) return "none";
  return "line " + std::to_string(snapshot.values()[value].line);
}

std::string nameOf(const char* configuration, const cfgstore::Snapshot& snapshot, ValueId value) {
  const cfgstore::SnapshotAttribute& attribute = snapshot.attributeOf(snapshot.values()[value]);
  return std::string(configuration) + ", " + lineOf(snapshot, value) + ", " + std::string(attribute.name) + " of " +
         std::string(snapshot.entryOf(attribute).normal) + ": ";
}

// The entries in which a write was refused. What the contents show of them has more than one story: a value that was to
// be taken out and then could not be set looks like one that was taken out; of two that arrive at one place, either may
// be the one that stands there. Only the ledger was there, so of such an entry the two need to agree only in what is
// lost. Outside of these entries they have to agree in everything.
class RefusedWrites {
 public:
  explicit RefusedWrites(const Ledger& ledger) : m_ledger(ledger) {
    for (const LedgerEvent& event : ledger.events) {
      if (!isRefusal(event)) continue;
      m_oldEntries.insert(event.oldEntry);
      if (const auto dn = cfgstore::normalDn(event.dn)) m_dns.insert(*dn);
      m_ofEntry = m_ofEntry || operationOf(event) == cfgstore::Operation::addEntry;
    }
  }

  // Whether an entry could not be made. A rule may then write what it would not have written otherwise.
  bool ofAnEntry() const { return m_ofEntry; }

  bool concernOld(ValueId value) const {
    if (value >= m_ledger.old.values().size()) return false;
    const cfgstore::SnapshotAttribute& setting = m_ledger.old.attributeOf(m_ledger.old.values()[value]);
    return m_oldEntries.contains(setting.entry) || concern(m_ledger.old, value);
  }
  bool concernResult(ValueId value) const { return concern(m_ledger.result, value); }
  bool concernBefore(ValueId value) const { return concern(m_ledger.before, value); }

 private:
  static cfgstore::Operation operationOf(const LedgerEvent& event) {
    return static_cast<cfgstore::Operation>(event.operation);
  }

  // A write of nothing is refused in every migration, and so is taking out what is not there: nothing comes of it.
  static bool isRefusal(const LedgerEvent& event) {
    if (event.rc == 0) return false;
    const cfgstore::Operation operation = operationOf(event);
    if (operation == cfgstore::Operation::addEntry || operation == cfgstore::Operation::removeEntry) return true;
    constexpr int kNoSuchAttribute = 16;
    return !event.values.empty() && !(operation == cfgstore::Operation::delValue && event.rc == kNoSuchAttribute);
  }

  bool concern(const cfgstore::Snapshot& snapshot, ValueId value) const {
    if (value >= snapshot.values().size()) return false;
    const std::string_view dn = snapshot.entryOf(snapshot.attributeOf(snapshot.values()[value])).normal;
    return m_dns.contains(std::string(dn));
  }

  const Ledger& m_ledger;
  std::unordered_set<std::uint32_t> m_oldEntries;
  std::unordered_set<std::string> m_dns;
  bool m_ofEntry = false;
};

class Comparison {
 public:
  Comparison(const Audit& audit, const Ledger& ledger) : m_audit(audit), m_ledger(ledger), m_refused(ledger) {}

  std::vector<std::string> run() {
    if (m_audit.sourceVersion != m_ledger.sourceVersion) {
      tell("the source version is " + m_audit.sourceVersion + " in the audit and " + m_ledger.sourceVersion +
           " in the ledger");
    }
    compareOldValues();
    compareResultValues();
    compareReplaced();
    return std::move(m_lines);
  }

 private:
  void tell(std::string line) { m_lines.push_back(std::move(line)); }

  bool haveOneSize(std::size_t audit, std::size_t ledger, const char* what) {
    if (audit == ledger) return true;
    tell(std::string(what) + ": " + std::to_string(audit) + " in the audit and " + std::to_string(ledger) +
         " in the ledger");
    return false;
  }

  void compareOldValues() {
    if (!haveOneSize(m_audit.oldValues.size(), m_ledger.oldValues.size(), "old values")) return;
    for (ValueId value = 0; value < m_audit.oldValues.size(); ++value) {
      const AuditedOldValue& ours = m_audit.oldValues[value];
      const OldValueRow& theirs = m_ledger.oldValues[value];
      if (ours.fate == theirs.fate && (ours.place == theirs.place || bothStand(ours, theirs))) continue;
      if (isAnotherStory(value, ours, theirs)) continue;
      tell(nameOf("old", m_ledger.old, value) + "the audit says " + tool::nameOf(ours.fate) + " at " +
           lineOf(m_ledger.result, ours.place) + " (" + wordsFor(ours.reason) + "), the ledger " +
           tool::nameOf(theirs.fate) + " at " + lineOf(m_ledger.result, theirs.place) + " (" + wordsOf(theirs.reason) +
           ")");
    }
  }

  // Which of several values stands in the place of one that was not to be carried is a matter of taste, and a ledger
  // need not name it.
  bool bothStand(const AuditedOldValue& ours, const OldValueRow& theirs) const {
    if (ours.fate != ValueFate::keptNew || theirs.place == kNoValue) return ours.fate == ValueFate::keptNew;
    const auto values = m_ledger.result.values();
    return ours.place < values.size() && theirs.place < values.size() &&
           values[ours.place].attribute == values[theirs.place].attribute;
  }

  // The ledger's loss has to be one for the audit, too, unless an equal value stands where the lost one was to go, or a
  // rule was to take the value out and could not.
  bool isAnotherStory(ValueId old, const AuditedOldValue& ours, const OldValueRow& theirs) const {
    const bool isConcerned =
        m_refused.concernOld(old) || m_refused.concernResult(ours.place) || m_refused.concernResult(theirs.place);
    if (!isConcerned) return false;
    return theirs.fate != ValueFate::lost || ours.fate == ValueFate::lost || ours.fate == ValueFate::dropped ||
           ours.place != kNoValue;
  }

  void compareResultValues() {
    if (!haveOneSize(m_audit.resultValues.size(), m_ledger.resultValues.size(), "values of the result")) return;
    for (ValueId value = 0; value < m_audit.resultValues.size(); ++value) {
      const AuditedResultValue& ours = m_audit.resultValues[value];
      const ResultValueRow& theirs = m_ledger.resultValues[value];
      // A ledger need not name what a rule's value was made of.
      const bool needNotSay = ours.origin == ValueOrigin::addedByRule && theirs.from == kNoValue;
      if (ours.isExplained && ours.origin == theirs.origin && (ours.from == theirs.from || needNotSay)) continue;
      // What a rule writes because an entry could not be made is nothing that the rules make of the contents.
      if (!ours.isExplained && theirs.origin == ValueOrigin::addedByRule && m_refused.ofAnEntry()) continue;
      if (m_refused.concernResult(value)) continue;
      const bool bothFromOld = ours.isExplained && isFromOld(ours.origin) && isFromOld(theirs.origin);
      if (bothFromOld && (m_refused.concernOld(ours.from) || m_refused.concernOld(theirs.from))) continue;
      const cfgstore::Snapshot& origin = ours.origin == ValueOrigin::fromNew ? m_ledger.before : m_ledger.old;
      const cfgstore::Snapshot& theirOrigin = theirs.origin == ValueOrigin::fromNew ? m_ledger.before : m_ledger.old;
      tell(nameOf("result", m_ledger.result, value) + "the audit says " +
           (ours.isExplained ? std::string(tool::nameOf(ours.origin)) + " from " + lineOf(origin, ours.from)
                             : std::string("that nothing explains it")) +
           ", the ledger " + tool::nameOf(theirs.origin) + " from " + lineOf(theirOrigin, theirs.from) + " (" +
           wordsOf(theirs.reason) + ")");
    }
  }

  static bool isFromOld(ValueOrigin origin) { return origin == ValueOrigin::carried || origin == ValueOrigin::moved; }

  void compareReplaced() {
    std::size_t theirs = 0;
    for (const AuditedReplacement& ours : m_audit.replaced) {
      for (; theirs < m_ledger.replaced.size() && m_ledger.replaced[theirs].before < ours.before; ++theirs) {
        tellReplaced(m_ledger.replaced[theirs].before, "only the ledger says that it was replaced");
      }
      if (theirs == m_ledger.replaced.size() || m_ledger.replaced[theirs].before != ours.before) {
        tellReplaced(ours.before, "only the audit says that it was replaced");
        continue;
      }
      const ValueId by = m_ledger.replaced[theirs].by;
      if (by != ours.by) {
        tellReplaced(ours.before, "the audit says that it was replaced by " + lineOf(m_ledger.result, ours.by) +
                                      ", the ledger by " + lineOf(m_ledger.result, by));
      }
      ++theirs;
    }
    for (; theirs < m_ledger.replaced.size(); ++theirs) {
      tellReplaced(m_ledger.replaced[theirs].before, "only the ledger says that it was replaced");
    }
  }

  void tellReplaced(ValueId before, const std::string& what) {
    if (!m_refused.concernBefore(before)) tell(nameOf("new", m_ledger.before, before) + what);
  }

  std::string wordsOf(ReasonId reason) const {
    return reason < m_ledger.reasons.size() ? m_ledger.reasons[reason].words : std::string("no reason");
  }

  const Audit& m_audit;
  const Ledger& m_ledger;
  RefusedWrites m_refused;
  std::vector<std::string> m_lines;
};

}  // namespace

std::vector<std::string> compareWithLedger(const Audit& audit, const Ledger& ledger) {
  return Comparison(audit, ledger).run();
}

}  // namespace tool
