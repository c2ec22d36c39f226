#include "report/ChangeRecords.h"

#include <algorithm>
#include <unordered_set>
#include <utility>

#include "NormalDn.h"
#include "ledger/ValueFinder.h"

namespace tool {
namespace {

using cfgstore::Snapshot;
using cfgstore::SnapshotAttribute;
using cfgstore::SnapshotEntry;

// The values of an attribute, each once.
std::vector<ValueId> valuesOf(const Snapshot& snapshot, const SnapshotAttribute& attribute) {
  std::vector<ValueId> values;
  for (ValueId id = attribute.firstValue; id < attribute.firstValue + attribute.values; ++id) {
    if (!snapshot.values()[id].repeated) values.push_back(id);
  }
  return values;
}

std::unordered_set<std::string_view> textsOf(const Snapshot& snapshot, const std::vector<ValueId>& values) {
  std::unordered_set<std::string_view> texts;
  for (const ValueId id : values) texts.insert(snapshot.values()[id].value);
  return texts;
}

// Those of `values` whose text is not among `texts`.
std::vector<ValueId> without(const Snapshot& snapshot, const std::vector<ValueId>& values,
                             const std::unordered_set<std::string_view>& texts) {
  std::vector<ValueId> left;
  for (const ValueId id : values) {
    if (texts.find(snapshot.values()[id].value) == texts.end()) left.push_back(id);
  }
  return left;
}

using Kind = AttributeChange::Kind;

// Whether the first RDN of the entry has a value of this attribute: "CN=A+OU=B,..." has those of two.
bool namesEntry(std::string_view normal, std::string_view attribute) {
  const std::size_t end = normal.size() - cfgstore::parentOfNormalDn(normal).size();
  for (std::size_t begin = 0; begin < end;) {
    const std::size_t sign = normal.find('=', begin);
    if (sign >= end) return false;
    if (isSameName(normal.substr(begin, sign - begin), attribute)) return true;
    std::size_t at = sign + 1;
    while (at < end && normal[at] != '+') at += normal[at] == '\\' ? 2U : 1U;
    begin = at + 1;
  }
  return false;
}

void compareAttribute(const Snapshot& before, const SnapshotAttribute& oldOne, const Snapshot& result,
                      const SnapshotAttribute& newOne, std::vector<AttributeChange>& changes) {
  const std::vector<ValueId> oldValues = valuesOf(before, oldOne);
  const std::vector<ValueId> newValues = valuesOf(result, newOne);
  const std::vector<ValueId> gone = without(before, oldValues, textsOf(result, newValues));
  const std::vector<ValueId> added = without(result, newValues, textsOf(before, oldValues));
  const bool isNaming = namesEntry(before.entryOf(oldOne).normal, oldOne.name);
  if (oldValues.size() == 1 && newValues.size() == 1 && !isNaming) {
    if (!added.empty()) changes.push_back({Kind::replace, newOne.name, Content::result, added});
    return;
  }
  if (!gone.empty()) changes.push_back({Kind::remove, newOne.name, Content::before, gone});
  if (!added.empty()) changes.push_back({Kind::add, newOne.name, Content::result, added});
}

std::vector<AttributeChange> changesOf(const Snapshot& before, std::uint32_t oldEntry, const Snapshot& result,
                                       std::uint32_t newEntry) {
  std::vector<AttributeChange> changes;
  for (const SnapshotAttribute& oldOne : before.attributesOf(before.entries()[oldEntry])) {
    const std::uint32_t found = result.findAttribute(newEntry, oldOne.name);
    if (found != Snapshot::kNone) {
      compareAttribute(before, oldOne, result, result.attributes()[found], changes);
    } else {
      changes.push_back({Kind::remove, oldOne.name, Content::before, {}});
    }
  }
  for (const SnapshotAttribute& newOne : result.attributesOf(result.entries()[newEntry])) {
    if (before.findAttribute(oldEntry, newOne.name) != Snapshot::kNone) continue;
    changes.push_back({Kind::add, newOne.name, Content::result, valuesOf(result, newOne)});
  }
  return changes;
}

std::size_t depthOf(std::string_view normal) {
  std::size_t depth = 0;
  for (; !normal.empty(); normal = cfgstore::parentOfNormalDn(normal)) ++depth;
  return depth;
}

// Where a new entry stands among the others that are added.
struct Addition {
  bool hangsInTheAir;  // it or an entry above it has no parent
  std::size_t depth;
  std::uint32_t entry;

  auto order() const { return std::pair(hangsInTheAir, depth); }
};

// Finds out for each entry of a snapshot whether all entries above it are there, up to the first DN of its file or to a
// DN with nothing above it.
class Roots {
 public:
  explicit Roots(const Snapshot& result) : m_result(result) {}

  // The parent when it is missing and should not be; empty otherwise.
  std::string_view missingParent(std::uint32_t entry) const {
    const std::string_view parent = cfgstore::parentOfNormalDn(m_result.entries()[entry].normal);
    return parent.empty() || m_result.findEntry(parent) != Snapshot::kNone ? std::string_view() : parent;
  }

  bool hangsInTheAir(std::uint32_t entry) const {
    for (std::string_view normal = m_result.entries()[entry].normal; !normal.empty();) {
      normal = cfgstore::parentOfNormalDn(normal);
      if (!normal.empty() && m_result.findEntry(normal) == Snapshot::kNone) return true;
    }
    return false;
  }

 private:
  const Snapshot& m_result;
};

void appendModifications(const Snapshot& before, const Snapshot& result, std::vector<ChangeRecord>& records) {
  for (std::uint32_t entry = 0; entry < before.entries().size(); ++entry) {
    const SnapshotEntry& oldEntry = before.entries()[entry];
    const std::uint32_t newEntry = result.findEntry(oldEntry.normal);
    if (newEntry == Snapshot::kNone) continue;
    std::vector<AttributeChange> changes = changesOf(before, entry, result, newEntry);
    if (!changes.empty()) records.push_back({ChangeRecord::Kind::modify, oldEntry.dn, std::move(changes), {}});
  }
}

void appendAdditions(const Snapshot& before, const Snapshot& result, std::vector<ChangeRecord>& records) {
  const Roots roots(result);
  std::vector<Addition> additions;
  for (std::uint32_t entry = 0; entry < result.entries().size(); ++entry) {
    const std::string_view normal = result.entries()[entry].normal;
    if (before.findEntry(normal) != Snapshot::kNone) continue;
    additions.push_back({roots.hangsInTheAir(entry), depthOf(normal), entry});
  }
  std::stable_sort(additions.begin(), additions.end(),
                   [](const Addition& left, const Addition& right) { return left.order() < right.order(); });
  for (const Addition& addition : additions) {
    const SnapshotEntry& entry = result.entries()[addition.entry];
    ChangeRecord record{ChangeRecord::Kind::add, entry.dn, {}, roots.missingParent(addition.entry)};
    for (const SnapshotAttribute& attribute : result.attributesOf(entry)) {
      record.changes.push_back({Kind::add, attribute.name, Content::result, valuesOf(result, attribute)});
    }
    records.push_back(std::move(record));
  }
}

void appendRemovals(const Snapshot& before, const Snapshot& result, std::vector<ChangeRecord>& records) {
  std::vector<std::pair<std::size_t, std::string_view>> removals;  // depth and DN
  for (const SnapshotEntry& entry : before.entries()) {
    if (result.findEntry(entry.normal) == Snapshot::kNone) removals.emplace_back(depthOf(entry.normal), entry.dn);
  }
  std::stable_sort(removals.begin(), removals.end(),
                   [](const auto& left, const auto& right) { return left.first > right.first; });
  for (const auto& [depth, dn] : removals) records.push_back({ChangeRecord::Kind::remove, dn, {}, {}});
}

}  // namespace

std::vector<ChangeRecord> changeRecords(const Snapshot& before, const Snapshot& result) {
  std::vector<ChangeRecord> records;
  appendModifications(before, result, records);
  appendAdditions(before, result, records);
  appendRemovals(before, result, records);
  return records;
}

}  // namespace tool
