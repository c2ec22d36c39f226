// LossFindings.cpp -- what of the old configuration did not arrive, told by how it came about.

#include <algorithm>
#include <iterator>

#include "finding/Finder.h"

namespace tool {
namespace {

using cfgstore::Snapshot;
using cfgstore::SnapshotAttribute;

constexpr std::string_view kTransfers[] = {"addCfgEntry", "mergeCfgEntry", "mergeChangeDnEntry", "replAddEntry"};

// All others count as settings with one value, and only their first value is carried to an entry that is there.
constexpr std::string_view kCarriesAll = "addCfgEntry";
constexpr std::string_view kLists[] = {
    "OBJECTCLASS",       "zor-slapdCachedAttribute", "zor-slapdSchemaAdditions", "zor-slapdIncludeSchema",
    "zor-slapdReferral", "zor-slapdSetenv",          "zor-slapdSuffix",          "zor-slapdPlugin"};

template <class Names>
bool isOneOf(const Names& names, std::string_view name) {
  return std::any_of(std::begin(names), std::end(names), [&](std::string_view each) { return isSameName(each, name); });
}

const EntryRow& entryRowOf(const Ledger& ledger, ValueId value) {
  return ledger.oldEntries[ledger.old.attributeOf(ledger.old.values()[value]).entry];
}

bool arrived(const OldValueRow& row) {
  return row.fate == ValueFate::same || row.fate == ValueFate::carried || row.fate == ValueFate::moved;
}

// A value behind the first one of a setting that counts as one with a single value. What a rule drops, it drops by
// name.
bool isSecondValue(const Ledger& ledger, ValueId value) {
  const OldValueRow& row = ledger.oldValues[value];
  const SnapshotAttribute& attribute = ledger.old.attributeOf(ledger.old.values()[value]);
  const std::string& method = ledger.reasonOf(row.reason).method;
  const bool isBehind = row.fate == ValueFate::lost || (row.fate == ValueFate::dropped && isOneOf(kTransfers, method));
  return isBehind && value != attribute.firstValue && method != kCarriesAll && !isOneOf(kLists, attribute.name) &&
         arrived(ledger.oldValues[attribute.firstValue]);
}

// The whole entry is a finding of its own then.
bool isOfEntryNotCarried(const Ledger& ledger, ValueId value) {
  const EntryFate fate = entryRowOf(ledger, value).fate;
  return fate == EntryFate::skipped || fate == EntryFate::outside;
}

template <class Visit>
void forEachLost(const Ledger& ledger, Visit visit) {
  for (ValueId value = 0; value < ledger.oldValues.size(); ++value) {
    if (ledger.oldValues[value].fate != ValueFate::lost || isOfEntryNotCarried(ledger, value)) continue;
    if (!isSecondValue(ledger, value))
      visit(value, isOneOf(kTransfers, ledger.reasonOf(ledger.oldValues[value].reason).method));
  }
}

void addEntriesOf(const Facts& facts, EntryFate fate, FindingList& found) {
  for (std::uint32_t entry = 0; entry < facts.ledger.oldEntries.size(); ++entry) {
    const EntryRow& row = facts.ledger.oldEntries[entry];
    if (row.fate == fate) found.addEntry(Content::old, entry, row.reason);
  }
}

}  // namespace

void findEntriesNotCarried(const Facts& facts, FindingList& found) { addEntriesOf(facts, EntryFate::skipped, found); }

void findEntriesOutside(const Facts& facts, FindingList& found) { addEntriesOf(facts, EntryFate::outside, found); }

void findTransfersEndedEarly(const Facts& facts, FindingList& found) {
  forEachLost(facts.ledger, [&](ValueId value, bool byTransfer) {
    if (byTransfer) found.addValue(Content::old, value, facts.ledger.oldValues[value].reason);
  });
}

void findValuesLost(const Facts& facts, FindingList& found) {
  forEachLost(facts.ledger, [&](ValueId value, bool byTransfer) {
    if (!byTransfer) found.addValue(Content::old, value, facts.ledger.oldValues[value].reason);
  });
}

void findSecondValues(const Facts& facts, FindingList& found) {
  for (ValueId value = 0; value < facts.ledger.oldValues.size(); ++value) {
    if (isSecondValue(facts.ledger, value) && !isOfEntryNotCarried(facts.ledger, value)) {
      found.addValue(Content::old, value);
    }
  }
}

void findObjectClassesNotCarried(const Facts& facts, FindingList& found) {
  const Ledger& ledger = facts.ledger;
  forEachValueOf(ledger.old, "objectClass", [&](ValueId id, const cfgstore::SnapshotValue& value) {
    const OldValueRow& row = ledger.oldValues[id];
    const EntryRow& entryRow = entryRowOf(ledger, id);
    if (row.fate != ValueFate::keptNew || entryRow.target.empty()) return;
    const std::uint32_t target = ledger.result.findEntry(entryRow.target);
    if (target == Snapshot::kNone) return;
    const std::uint32_t classes = ledger.result.findAttribute(target, "objectClass");
    if (classes != Snapshot::kNone) {
      const auto held = ledger.result.valuesOf(ledger.result.attributes()[classes]);
      if (std::any_of(held.begin(), held.end(), [&](const auto& each) { return isSameName(each.value, value.value); }))
        return;
    }
    found.addValue(Content::old, id);
  });
}

}  // namespace tool
