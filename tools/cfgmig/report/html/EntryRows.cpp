#include "report/html/EntryRows.h"

#include <string>
#include <unordered_map>

namespace tool::html {
namespace {

std::size_t indexOf(Content content) { return static_cast<std::size_t>(content); }

std::string lowerCase(std::string_view name) {
  std::string lower(name);
  for (char& letter : lower) {
    if (letter >= 'A' && letter <= 'Z') letter = static_cast<char>(letter - 'A' + 'a');
  }
  return lower;
}

}  // namespace

std::vector<Row> EntryRows::of(const std::array<std::uint32_t, kContents>& entries) {
  for (const Attributes& attributes : sideBySide(entries)) addAttribute(attributes);
  return std::move(m_rows);
}

// In the order of the old configuration; then what only the new one has, then what only the result has.
std::vector<EntryRows::Attributes> EntryRows::sideBySide(const std::array<std::uint32_t, kContents>& entries) const {
  std::vector<Attributes> all;
  std::unordered_map<std::string, std::size_t> byName;
  for (const Content content : kAll) {
    const cfgstore::Snapshot& snapshot = snapshotOf(m_ledger, content);
    if (entries[indexOf(content)] == kNone) continue;
    const cfgstore::SnapshotEntry& entry = snapshot.entries()[entries[indexOf(content)]];
    for (std::uint32_t i = 0; i < entry.attributes; ++i) {
      const std::uint32_t number = entry.firstAttribute + i;
      const auto [place, isNew] = byName.emplace(lowerCase(snapshot.attributes()[number].name), all.size());
      if (isNew) all.push_back({kNone, kNone, kNone});
      all[place->second][indexOf(content)] = number;
    }
  }
  return all;
}

void EntryRows::addAttribute(const Attributes& attributes) {
  const auto eachValue = [&](Content content, auto add) {
    const std::uint32_t number = attributes[indexOf(content)];
    if (number == kNone) return;
    const cfgstore::SnapshotAttribute& attribute = snapshotOf(m_ledger, content).attributes()[number];
    for (std::uint32_t i = 0; i < attribute.values; ++i) {
      const std::size_t rows = m_rows.size();
      add(attribute.firstValue + i);
      if (m_rows.size() > rows) m_rows.back().attribute = attribute.name;
    }
  };
  eachValue(Content::old, [&](ValueId value) { addOld(value, attributes); });
  eachValue(Content::result, [&](ValueId value) { addResult(value, attributes); });
  eachValue(Content::before, [&](ValueId value) { addBefore(value); });
}

void EntryRows::addOld(ValueId value, const Attributes& attributes) {
  const OldValueRow& fate = m_ledger.oldValues[value];
  Row row;
  row.old = value;
  row.words = bitOf(wordOf(fate.fate));
  if (fate.place != kNoValue) {
    if (isIn(Content::result, fate.place, attributes)) {
      placeResult(row, fate.place, attributes);
    } else {
      row.elsewhere = fate.place;
    }
  } else if (const ValueId own = standsInstead(value, attributes); own != kNoValue) {
    placeResult(row, own, attributes);
  }
  m_rows.push_back(row);
}

// Where a setting has one value on either side and the old one did not arrive, the new server's own stands beside it.
ValueId EntryRows::standsInstead(ValueId value, const Attributes& attributes) const {
  const std::uint32_t number = attributes[indexOf(Content::result)];
  if (number == kNone || m_ledger.old.attributeOf(m_ledger.old.values()[value]).values != 1) return kNoValue;
  const cfgstore::SnapshotAttribute& there = m_ledger.result.attributes()[number];
  if (there.values != 1) return kNoValue;
  return m_ledger.resultValues[there.firstValue].origin == ValueOrigin::fromNew ? there.firstValue : kNoValue;
}

void EntryRows::addResult(ValueId value, const Attributes& attributes) {
  if (m_resultSeen.contains(value)) return;
  Row row;
  placeResult(row, value, attributes);
  const ResultValueRow& origin = m_ledger.resultValues[value];
  if (origin.origin != ValueOrigin::fromNew) row.origin = origin.from;
  m_rows.push_back(row);
}

// What no row above has taken in: it was replaced, by a value elsewhere or by none.
void EntryRows::addBefore(ValueId value) {
  if (m_beforeSeen.contains(value)) return;
  Row row;
  placeBefore(row, value);
  m_rows.push_back(row);
}

// The first row that a value of the result is in counts it, and shows what was there before.
void EntryRows::placeResult(Row& row, ValueId value, const Attributes& attributes) {
  row.result = value;
  if (!m_resultSeen.insert(value).second) return;
  const ResultValueRow& origin = m_ledger.resultValues[value];
  row.words |= bitOf(wordOf(origin.origin));
  if (origin.origin == ValueOrigin::fromNew) {
    if (origin.from != kNoValue && isIn(Content::before, origin.from, attributes)) placeBefore(row, origin.from);
    return;
  }
  for (std::uint32_t i = m_replaced.by[value]; i != kNone; i = m_replaced.next[i]) {
    const ValueId before = m_ledger.replaced[i].before;
    if (!isIn(Content::before, before, attributes) || m_beforeSeen.contains(before)) continue;
    placeBefore(row, before);
    return;
  }
}

void EntryRows::placeBefore(Row& row, ValueId value) {
  row.before = value;
  if (!m_beforeSeen.insert(value).second) return;
  if (value >= m_replaced.row.size() || m_replaced.row[value] == kNone) return;  // nothing unfolded was replaced
  row.replaced = m_replaced.row[value];
  row.words |= bitOf(kReplacedWord);
}

bool EntryRows::isIn(Content content, ValueId value, const Attributes& attributes) const {
  return snapshotOf(m_ledger, content).values()[value].attribute == attributes[indexOf(content)];
}

}  // namespace tool::html
