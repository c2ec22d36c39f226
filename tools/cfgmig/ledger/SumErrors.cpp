// SumErrors.cpp -- what does not add up in a ledger, told from its rows and snapshots alone.

#include <string>
#include <vector>

#include "Ledger.h"
#include "ValueFinder.h"

namespace tool {
namespace {

using cfgstore::Snapshot;
using cfgstore::SnapshotAttribute;
using cfgstore::SnapshotValue;

constexpr std::size_t kMostErrors = 20;  // told one by one

// Collects errors; what is wrong in a million rows is told of the first ones.
class Errors {
 public:
  void add(const std::string& text) {
    if (m_lines.size() < kMostErrors) m_lines.push_back(text);
    ++m_count;
  }
  void addAt(const char* which, const Snapshot& snapshot, ValueId id, const char* what) {
    std::string text = std::string("value ") + std::to_string(id) + " of the " + which;
    if (id < snapshot.values().size()) text += " (line " + std::to_string(snapshot.values()[id].line) + ")";
    add(text + " " + what);
  }
  std::vector<std::string> take() {
    if (m_count > m_lines.size()) m_lines.push_back("and " + std::to_string(m_count - m_lines.size()) + " more");
    return std::move(m_lines);
  }

 private:
  std::vector<std::string> m_lines;
  std::size_t m_count = 0;
};

class Check {
 public:
  explicit Check(const Ledger& ledger) : m_ledger(ledger), m_inOld(ledger.old) {}

  std::vector<std::string> run() {
    if (hasARowForEach()) {
      checkCounts();
      checkOldValues();
      checkResultValues();
      checkBefore();
      checkEntries();
    }
    return m_errors.take();
  }

 private:
  static constexpr const char* kOld = "old configuration";
  static constexpr const char* kBefore = "new configuration before";
  static constexpr const char* kResult = "result";

  bool sizeIs(const char* what, std::size_t rows, std::size_t expected) {
    if (rows == expected) return true;
    m_errors.add(std::string(what) + ": " + std::to_string(rows) + " rows for " + std::to_string(expected));
    return false;
  }

  bool hasARowForEach() {
    bool all = sizeIs("values of the old configuration", m_ledger.oldValues.size(), m_ledger.old.values().size());
    all &= sizeIs("values of the result", m_ledger.resultValues.size(), m_ledger.result.values().size());
    all &= sizeIs("entries of the old configuration", m_ledger.oldEntries.size(), m_ledger.old.entries().size());
    return all;
  }

  template <std::size_t N, class Rows, class KindOf>
  void checkCount(const char* what, const std::array<std::size_t, N>& told, const Rows& rows, KindOf kindOf,
                  std::size_t kindSetAside, std::size_t setAside) {
    std::array<std::size_t, N> counted{};
    counted[kindSetAside] = setAside;
    std::size_t sum = 0;
    for (const auto& row : rows) {
      const auto kind = static_cast<std::size_t>(kindOf(row));
      if (kind < N) ++counted[kind];
    }
    for (std::size_t i = 0; i < N; ++i) {
      sum += told[i];
      if (told[i] == counted[i]) continue;
      m_errors.add(std::string(what) + ": " + std::to_string(told[i]) + " are counted as number " + std::to_string(i) +
                   " and " + std::to_string(counted[i]) + " are");
    }
    if (sum != rows.size() + setAside) {
      m_errors.add(std::string(what) + ": their sum is " + std::to_string(sum) + " and not " +
                   std::to_string(rows.size() + setAside));
    }
  }

  void checkCounts() {
    const std::size_t setAside = m_ledger.old.valuesSetAside();
    if (m_ledger.before.valuesSetAside() != setAside || m_ledger.result.valuesSetAside() != setAside) {
      m_errors.add("the three configurations have different numbers of values that were set aside");
    }
    checkCount(
        "fates", m_ledger.fates, m_ledger.oldValues, [](const OldValueRow& row) { return row.fate; },
        static_cast<std::size_t>(ValueFate::same), setAside);
    checkCount(
        "origins", m_ledger.origins, m_ledger.resultValues, [](const ResultValueRow& row) { return row.origin; },
        static_cast<std::size_t>(ValueOrigin::fromNew), setAside);
  }

  bool isReason(ReasonId reason) const {
    return reason != 0 && reason < m_ledger.reasons.size() && !m_ledger.reasons[reason].words.empty();
  }

  static std::string_view textOf(const Snapshot& snapshot, ValueId id) { return snapshot.values()[id].value; }
  static const SnapshotAttribute& attributeOf(const Snapshot& snapshot, ValueId id) {
    return snapshot.attributeOf(snapshot.values()[id]);
  }

  // Whether two values stand under the same attribute of the same entry.
  static bool isSamePlace(const Snapshot& left, ValueId a, const Snapshot& right, ValueId b) {
    const SnapshotAttribute& one = attributeOf(left, a);
    const SnapshotAttribute& other = attributeOf(right, b);
    return isSameName(one.name, other.name) && left.entryOf(one).normal == right.entryOf(other).normal;
  }

  bool isOldArrived(ValueId id) const {
    const ValueFate fate = m_ledger.oldValues[id].fate;
    return fate == ValueFate::carried || fate == ValueFate::moved;
  }

  void checkOldValues() {
    for (ValueId i = 0; i < m_ledger.oldValues.size(); ++i) {
      const OldValueRow& row = m_ledger.oldValues[i];
      const char* const wrong = wrongWith(i, row);
      if (wrong != nullptr) m_errors.addAt(kOld, m_ledger.old, i, wrong);
    }
  }

  const char* wrongWith(ValueId id, const OldValueRow& row) {
    if (static_cast<std::size_t>(row.fate) >= kValueFates || !isReason(row.reason)) return "has no fate";
    const SnapshotValue& value = m_ledger.old.values()[id];
    if (value.repeated) {
      const ValueId first = m_inOld.value(value.attribute, value.value);
      const OldValueRow& other = m_ledger.oldValues[first];
      if (other.fate != row.fate || other.place != row.place) return "has another fate than its equal above it";
    }
    const bool mustHavePlace =
        row.fate == ValueFate::same || row.fate == ValueFate::carried || row.fate == ValueFate::moved;
    if (row.place == kNoValue) return mustHavePlace ? "has no place" : nullptr;
    if (row.place >= m_ledger.resultValues.size()) return "has a place that is none";
    const ValueOrigin origin = m_ledger.resultValues[row.place].origin;
    if (mustHavePlace && textOf(m_ledger.result, row.place) != value.value) return "is not what is in its place";
    const bool samePlace = isSamePlace(m_ledger.old, id, m_ledger.result, row.place);
    const bool fromOld = origin == ValueOrigin::carried || origin == ValueOrigin::moved;
    switch (row.fate) {
      case ValueFate::same:
        return origin == ValueOrigin::fromNew ? nullptr : "is in a place that the new configuration did not have";
      case ValueFate::carried:
        if (!samePlace) return "was carried to another place";
        return fromOld ? nullptr : "was carried to a value that does not come from the old configuration";
      case ValueFate::moved:
        if (samePlace) return "was moved to its own place";
        return fromOld ? nullptr : "was moved to a value that does not come from the old configuration";
      case ValueFate::dropped:
        return value.value.ends_with(textOf(m_ledger.result, row.place))
                   ? nullptr
                   : "was dropped and has a place that is no part of it";
      case ValueFate::cleaned:
        return origin != ValueOrigin::fromNew || samePlace ? nullptr : "was rewritten to a value of another place";
      case ValueFate::keptNew:
        break;
      case ValueFate::lost:
        return "is lost and has a place";
    }
    return nullptr;
  }

  void checkResultValues() {
    m_timesKept.assign(m_ledger.before.values().size(), 0);
    for (ValueId i = 0; i < m_ledger.resultValues.size(); ++i) {
      const char* const wrong = wrongWith(i, m_ledger.resultValues[i]);
      if (wrong != nullptr) m_errors.addAt(kResult, m_ledger.result, i, wrong);
    }
  }

  const char* wrongWith(ValueId id, const ResultValueRow& row) {
    if (static_cast<std::size_t>(row.origin) >= kValueOrigins || !isReason(row.reason)) return "has no origin";
    if (row.origin == ValueOrigin::fromNew) {
      if (row.from >= m_ledger.before.values().size()) return "comes from no value of the new configuration";
      ++m_timesKept[row.from];
      if (textOf(m_ledger.before, row.from) != textOf(m_ledger.result, id) ||
          !isSamePlace(m_ledger.before, row.from, m_ledger.result, id)) {
        return "is not the value of the new configuration that it comes from";
      }
      return nullptr;
    }
    if (row.origin == ValueOrigin::addedByRule) {
      return row.from == kNoValue || row.from < m_ledger.oldValues.size() ? nullptr : "is a part of no value";
    }
    if (row.from >= m_ledger.oldValues.size()) return "comes from no value of the old configuration";
    if (textOf(m_ledger.old, row.from) != textOf(m_ledger.result, id)) return "is not the old value that it comes from";
    if (!isOldArrived(row.from)) return "comes from an old value that has not arrived";
    const bool samePlace = isSamePlace(m_ledger.old, row.from, m_ledger.result, id);
    return samePlace == (row.origin == ValueOrigin::carried) ? nullptr : "has the origin of another place";
  }

  void checkBefore() {
    std::vector<std::uint32_t> timesReplaced(m_ledger.before.values().size());
    ValueId least = 0;
    for (const ReplacedRow& row : m_ledger.replaced) {
      if (row.before >= timesReplaced.size()) {
        m_errors.add("a replaced value is none of the new configuration");
        continue;
      }
      ++timesReplaced[row.before];
      if (!isReason(row.reason)) m_errors.addAt(kBefore, m_ledger.before, row.before, "was replaced for no reason");
      if (row.before < least) m_errors.addAt(kBefore, m_ledger.before, row.before, "is out of order");
      least = row.before;
      if (row.by != kNoValue && (row.by >= m_ledger.resultValues.size() ||
                                 !isSamePlace(m_ledger.before, row.before, m_ledger.result, row.by))) {
        m_errors.addAt(kBefore, m_ledger.before, row.before, "was replaced by a value of another place");
      }
    }
    for (ValueId i = 0; i < timesReplaced.size(); ++i) {
      if (m_timesKept[i] + timesReplaced[i] == 1) continue;
      m_errors.addAt(kBefore, m_ledger.before, i,
                     m_timesKept[i] + timesReplaced[i] == 0 ? "is neither in the result nor replaced"
                                                            : "is accounted for more than once");
    }
  }

  void checkEntries() {
    for (std::uint32_t i = 0; i < m_ledger.oldEntries.size(); ++i) {
      const EntryRow& row = m_ledger.oldEntries[i];
      const std::string entry = "the entry at line " + std::to_string(m_ledger.old.entries()[i].line);
      if (!isReason(row.reason) || static_cast<std::size_t>(row.fate) > static_cast<std::size_t>(EntryFate::outside)) {
        m_errors.add(entry + " has no fate");
        continue;
      }
      const bool isSomewhere = row.fate == EntryFate::added || row.fate == EntryFate::merged ||
                               row.fate == EntryFate::moved || row.fate == EntryFate::rebuilt;
      if (isSomewhere == row.target.empty()) {
        m_errors.add(entry + (isSomewhere ? " went nowhere" : " went somewhere and should not have"));
      }
    }
  }

  const Ledger& m_ledger;
  ValueFinder m_inOld;
  Errors m_errors;
  std::vector<std::uint32_t> m_timesKept;  // of the values before: how many values of the result come from each
};

}  // namespace

std::vector<std::string> sumErrors(const Ledger& ledger) { return Check(ledger).run(); }

}  // namespace tool
