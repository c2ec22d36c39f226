#include "Accounting.h"

#include <functional>
#include <string>

#include "NormalDn.h"
#include "TracedMethod.h"

namespace tool {
namespace {

using cfgstore::Operation;
using cfgstore::SnapshotAttribute;
using cfgstore::SnapshotEntry;
using cfgstore::SnapshotValue;

std::size_t hashOf(std::string_view text) { return std::hash<std::string_view>()(text); }

std::string_view fileNameOf(std::string_view path) {
  const std::size_t slash = path.find_last_of("/\\");
  return slash == std::string_view::npos ? path : path.substr(slash + 1);
}

}  // namespace

Accounting::Accounting(Ledger& ledger, EventLog& log, const std::vector<EntryWork>& works)
    : m_ledger(ledger),
      m_log(log),
      m_works(works),
      m_inOld(ledger.old),
      m_inBefore(ledger.before),
      m_inResult(ledger.result),
      m_trails(ledger.old.values().size()),
      m_kept(ledger.before.values().size(), kNoValue),
      m_writer(ledger.result.values().size(), kNone) {}

void Accounting::run() {
  m_ledger.oldValues.resize(m_ledger.old.values().size());
  m_ledger.resultValues.resize(m_ledger.result.values().size());
  m_ledger.oldEntries.resize(m_ledger.old.entries().size());
  matchNewServersOwn();
  replayWrites();
  decideEntries();
  listReplaced();
  markSchemaFiles();
  for (const OldValueRow& row : m_ledger.oldValues) ++m_ledger.fates[static_cast<std::size_t>(row.fate)];
  for (const ResultValueRow& row : m_ledger.resultValues) ++m_ledger.origins[static_cast<std::size_t>(row.origin)];
  if (m_ledger.old.valuesSetAside() > 0) {
    m_ledger.sameSetAside = reason(traced::kMergeCfgEntry, Why::held);
    m_ledger.newSetAside = reason(0, Why::newServers);
  }
  m_ledger.fates[static_cast<std::size_t>(ValueFate::same)] += m_ledger.old.valuesSetAside();
  m_ledger.origins[static_cast<std::size_t>(ValueOrigin::fromNew)] += m_ledger.result.valuesSetAside();
}

void Accounting::matchNewServersOwn() {
  for (const SnapshotEntry& entry : m_ledger.result.entries()) {
    if (entry.setAside) continue;
    const std::uint32_t before = m_ledger.before.findEntry(entry.normal);
    for (std::uint32_t i = entry.firstAttribute; i < entry.firstAttribute + entry.attributes; ++i) {
      const std::string_view name = m_ledger.result.attributes()[i].name;
      if (isSameName(name, kIncludeSchema)) m_lists.push_back(i);
      if (const std::uint32_t own = m_inBefore.attribute(before, name); own != kNone) matchAttribute(own, i);
    }
  }
}

// A value that a file repeats stays as often as its lines stay, in their order.
void Accounting::matchAttribute(std::uint32_t before, std::uint32_t result) {
  const SnapshotAttribute& from = m_ledger.before.attributes()[before];
  const SnapshotAttribute& to = m_ledger.result.attributes()[result];
  const auto valuesBefore = m_ledger.before.values();
  const auto values = m_ledger.result.values();
  const ValueId endBefore = from.firstValue + from.values;
  ValueId nextRepeated = from.firstValue;
  for (ValueId i = to.firstValue; i < to.firstValue + to.values; ++i) {
    ValueId own = kNoValue;
    if (!values[i].repeated) {
      own = m_inBefore.value(before, values[i].value);
    } else {
      while (nextRepeated < endBefore &&
             !(valuesBefore[nextRepeated].repeated && valuesBefore[nextRepeated].value == values[i].value)) {
        ++nextRepeated;
      }
      if (nextRepeated < endBefore) own = nextRepeated++;
    }
    if (own == kNoValue) continue;
    m_kept[own] = i;
    m_ledger.resultValues[i] = {ValueOrigin::fromNew, reason(0, Why::newServers), own};
  }
}

std::uint32_t Accounting::resultEntryOf(std::string_view dn) {
  if (dn.data() == m_lastDn.data() && dn.size() == m_lastDn.size()) return m_lastEntry;
  m_lastDn = dn;
  m_lastEntry = m_ledger.result.findEntry(dn);
  if (m_lastEntry == kNone) {
    const auto normal = cfgstore::normalDn(dn);
    if (normal) m_lastEntry = m_ledger.result.findEntry(*normal);
  }
  return m_lastEntry;
}

bool Accounting::isSamePlace(ValueId old, ValueId place) const {
  const SnapshotAttribute& from = attributeOf(old);
  const SnapshotAttribute& to = m_ledger.result.attributeOf(m_ledger.result.values()[place]);
  return isSameName(from.name, to.name) && m_ledger.old.entryOf(from).normal == m_ledger.result.entryOf(to).normal;
}

void Accounting::replayWrites() {
  const auto count = static_cast<std::uint32_t>(m_log.events().size());
  for (std::uint32_t i = 0; i < count; ++i) {
    const LedgerEvent& event = m_log.events()[i];
    const Operation operation = operationOf(event);
    if (event.onOld) {
      if (event.rc != 0) continue;
      if (operation == Operation::addValue) m_addedToOld.push_back(i);
      if (event.oldValue != kNoValue && m_trails[event.oldValue].taken == kNone) m_trails[event.oldValue].taken = i;
    } else if (operation == Operation::addValue || operation == Operation::setValue) {
      replayValue(i);
    } else if (event.rc == 0) {
      if (operation == Operation::addEntry) replayEntry(i);
      if (operation == Operation::delValue) noteRemoval(i);
      if (operation == Operation::removeEntry) m_removedEntries.push_back(i);
    }
  }
}

void Accounting::replayValue(std::uint32_t number) {
  const LedgerEvent& event = m_log.events()[number];
  if (event.values.empty()) return;  // there was nothing to write
  const bool isPart = event.oldValue != kNoValue && !m_log.isWhole(event);
  if (isPart) m_parts.emplace(event.oldValue, number);
  if (event.rc != 0) {
    if (event.oldValue != kNoValue && !isPart) m_trails[event.oldValue].refused = number;
    return;
  }
  const ValueId place = m_inResult.value(resultEntryOf(event.dn), event.attribute, event.values.front());
  if (place != kNoValue && event.changed) m_writer[place] = number;
  if (place == kNoValue && event.changed) m_undone.push_back(number);
  if (event.oldValue != kNoValue && !isPart) {
    if (place != kNoValue) {
      arrive(event.oldValue, place, number);
    } else {
      m_trails[event.oldValue].undone = number;
    }
  } else if (place != kNoValue) {
    const unsigned long method = methodOf(number);
    if (traced::isCleanUp(method)) {
      addedByRule(place, number, Why::rewrittenValue);
    } else if (!traced::isTransfer(method) || method == traced::kReplAddEntry) {
      addedByRule(place, number, Why::addedByRule, isPart ? event.oldValue : kNoValue);
    } else {
      // A transfer writes what the old configuration holds: here, what a rule has put there before.
      for (const std::uint32_t added : m_addedToOld) {
        const LedgerEvent& addition = m_log.events()[added];
        if (addition.oldEntry != event.oldEntry || !isSameName(addition.attribute, event.attribute)) continue;
        if (addition.values.front() == event.values.front()) addedByRule(place, added, Why::addedByRule);
      }
    }
  }
}

void Accounting::replayEntry(std::uint32_t number) {
  const LedgerEvent& event = m_log.events()[number];
  const std::uint32_t entry = resultEntryOf(event.dn);
  m_made.emplace(entry, number);
  for (std::size_t i = 0; i < event.values.size(); ++i) {
    const char* const name = i == 0 ? kCn : kObjectClass;
    const ValueId place = m_inResult.value(entry, name, event.values[i]);
    if (place != kNoValue && event.changed) m_writer[place] = number;
    const bool isCopy = methodOf(number) == traced::kAddCfgEntry;
    const ValueId old = isCopy ? m_inOld.value(event.oldEntry, name, event.values[i]) : kNoValue;
    if (old != kNoValue) {
      if (place != kNoValue) {
        arrive(old, place, number);
      } else {
        m_trails[old].undone = number;
      }
    } else if (place != kNoValue) {
      addedByRule(place, number, Why::addedByRule);
    }
  }
}

Why Accounting::arrivalOf(std::uint32_t event, bool samePlace) const {
  switch (methodOf(event)) {
    case traced::kAddCfgEntry:
      return Why::carriedWithEntry;
    case traced::kMergeCfgEntry:
      return Why::carriedValue;
    case traced::kMergeChangeDnEntry:
      return Why::movedWithEntry;
    case traced::kReplAddEntry:
      return samePlace ? Why::carriedIntoRebuilt : Why::movedIdentity;
    default:
      return Why::movedSetting;
  }
}

void Accounting::arrive(ValueId old, ValueId place, std::uint32_t event) {
  Trail& trail = m_trails[old];
  if (trail.place == kNoValue) {
    trail.place = place;
    trail.arrived = event;
  }
  ResultValueRow& row = m_ledger.resultValues[place];
  const bool isExplained = row.reason != 0 && row.origin != ValueOrigin::addedByRule;
  if (isExplained) return;
  const bool samePlace = isSamePlace(old, place);
  row = {samePlace ? ValueOrigin::carried : ValueOrigin::moved, reason(methodOf(event), arrivalOf(event, samePlace)),
         old};
  // A value that a rule set where the new server had it, and could not take out, arrives a second time.
  if (m_ledger.resultValues[trail.place].origin != ValueOrigin::fromNew) return;
  trail.place = place;
  trail.arrived = event;
}

void Accounting::addedByRule(ValueId place, std::uint32_t event, Why why, ValueId partOf) {
  ResultValueRow& row = m_ledger.resultValues[place];
  if (row.reason != 0) return;
  const std::string_view name = m_ledger.result.attributeOf(m_ledger.result.values()[place]).name;
  row = {ValueOrigin::addedByRule, reason(methodOf(event), why, 0, name), partOf};
}

// A clean-up rewrites a value by two writes in a row: it deletes it, then adds the other one.
void Accounting::noteRemoval(std::uint32_t number) {
  const LedgerEvent& event = m_log.events()[number];
  Removal removal{number, kNone};
  if (const std::uint32_t next = number + 1; next < m_log.events().size()) {
    const LedgerEvent& behind = m_log.events()[next];
    if (!behind.onOld && behind.rc == 0 && operationOf(behind) == Operation::addValue && behind.dn == event.dn &&
        isSameName(behind.attribute, event.attribute) && methodOf(next) == methodOf(number)) {
      removal.rewrittenBy = next;
    }
  }
  for (const std::string_view value : event.values) m_removals.emplace(hashOf(value), removal);
}

const Accounting::Removal* Accounting::removalOf(std::uint32_t entry, std::string_view name, std::string_view value) {
  const auto [begin, end] = m_removals.equal_range(hashOf(value));
  const Removal* last = nullptr;
  for (auto at = begin; at != end; ++at) {
    const LedgerEvent& event = m_log.events()[at->second.event];
    if (last != nullptr && last->event > at->second.event) continue;
    if (resultEntryOf(event.dn) == entry && isSameName(event.attribute, name)) last = &at->second;
  }
  return last;
}

ValueId Accounting::rewrittenTo(const Removal& removal) {
  if (removal.rewrittenBy == kNone) return kNoValue;
  const LedgerEvent& event = m_log.events()[removal.rewrittenBy];
  return m_inResult.value(resultEntryOf(event.dn), event.attribute, event.values.front());
}

void Accounting::listReplaced() {
  const auto values = m_ledger.before.values();
  for (ValueId i = 0; i < values.size(); ++i) {
    if (m_kept[i] == kNoValue) m_ledger.replaced.push_back(replacedRow(i));
  }
}

ReplacedRow Accounting::replacedRow(ValueId before) {
  const SnapshotValue& value = m_ledger.before.values()[before];
  const SnapshotAttribute& attribute = m_ledger.before.attributeOf(value);
  const std::string_view normal = m_ledger.before.entryOf(attribute).normal;
  const std::uint32_t entry = m_ledger.result.findEntry(normal);
  if (entry == kNone) {
    for (const std::uint32_t removed : m_removedEntries) {
      if (!cfgstore::sameDn(m_log.events()[removed].dn, normal)) continue;
      return {before, kNoValue, reason(methodOf(removed), Why::cleanedUp)};
    }
    return {before, kNoValue, 0};
  }
  if (const Removal* const removal = removalOf(entry, attribute.name, value.value); removal != nullptr) {
    const ValueId by = rewrittenTo(*removal);
    return {before, by, reason(methodOf(removal->event), by != kNoValue ? Why::rewritten : Why::cleanedUp)};
  }
  const std::uint32_t now = m_inResult.attribute(entry, attribute.name);
  if (now != kNone) {
    if (const ValueId equal = m_inResult.value(now, value.value); equal != kNoValue) {
      return {before, equal, reason(0, Why::lineRepeated)};
    }
    const SnapshotAttribute& there = m_ledger.result.attributes()[now];
    for (ValueId i = there.firstValue; i < there.firstValue + there.values; ++i) {
      if (m_writer[i] == kNone) continue;
      const bool byRule = m_ledger.resultValues[i].origin == ValueOrigin::addedByRule;
      return {before, i, reason(methodOf(m_writer[i]), byRule ? Why::replacedByRule : Why::replacedByOld)};
    }
  }
  // What took its place is gone as well.
  for (const std::uint32_t undone : m_undone) {
    const LedgerEvent& event = m_log.events()[undone];
    if (resultEntryOf(event.dn) != entry || !isSameName(event.attribute, attribute.name)) continue;
    return {before, kNoValue, reason(methodOf(undone), Why::replacedByOld)};
  }
  return {before, kNoValue, 0};
}

// The list of one entry becomes the new server's files followed by the old ones, under their old paths: what is the
// same file to both servers is then named twice. What the new configuration named twice before is its own affair.
void Accounting::markSchemaFiles() {
  for (const std::uint32_t list : m_lists) {
    const SnapshotAttribute& attribute = m_ledger.result.attributes()[list];
    struct Named {
      std::uint32_t times = 0;
      bool brought = false;
    };
    std::unordered_map<std::string_view, Named> names;
    const ValueId end = attribute.firstValue + attribute.values;
    for (ValueId i = attribute.firstValue; i < end; ++i) {
      Named& named = names[fileNameOf(m_ledger.result.values()[i].value)];
      ++named.times;
      named.brought |= m_ledger.resultValues[i].origin != ValueOrigin::fromNew;
    }
    for (ValueId i = attribute.firstValue; i < end; ++i) {
      const Named& named = names[fileNameOf(m_ledger.result.values()[i].value)];
      ReasonId& why = m_ledger.resultValues[i].reason;
      if (named.times > 1 && named.brought && why != 0) why = m_log.reasons().namedTwice(why);
    }
  }
}

}  // namespace tool
