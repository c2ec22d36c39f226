// OldValues.cpp -- what became of the old values whose arrival no write tells: the second half of the accounting.

#include <set>
#include <string>

#include "Accounting.h"
#include "TracedMethod.h"

namespace tool {
namespace {

using cfgstore::Operation;
using cfgstore::SnapshotAttribute;
using cfgstore::SnapshotEntry;
using cfgstore::SnapshotValue;

constexpr int kNoSuchObject = 32;

struct IsLessName {
  bool operator()(std::string_view left, std::string_view right) const {
    const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c | 0x20) : c; };
    return std::lexicographical_compare(left.begin(), left.end(), right.begin(), right.end(),
                                        [&](char a, char b) { return lower(a) < lower(b); });
  }
};

}  // namespace

void Accounting::decideEntries() {
  std::vector<bool> decided(m_ledger.old.entries().size());
  for (const EntryWork& work : m_works) {
    if (work.entry == kNone || decided[work.entry]) continue;  // the first time decides, as for the entry itself
    decided[work.entry] = true;
    decideEntry(courseOf(work));
  }
  for (std::uint32_t i = 0; i < decided.size(); ++i) {
    if (decided[i]) continue;
    if (m_ledger.old.entries()[i].setAside) {
      m_ledger.oldEntries[i] = {EntryFate::merged, reason(traced::kMergeCfgEntry, Why::entryMerged),
                                m_ledger.old.entries()[i].normal};
      continue;
    }
    Course course;
    course.oldEntry = i;
    course.target = m_ledger.result.findEntry(m_ledger.old.entries()[i].normal);
    decideEntry(course);
  }
}

Accounting::Course Accounting::courseOf(const EntryWork& work) {
  Course course;
  course.work = &work;
  course.oldEntry = work.entry;
  const std::string_view own = m_ledger.old.entries()[work.entry].normal;
  const bool moves = work.transfer == traced::kMergeChangeDnEntry;
  const std::string_view target = moves ? targetOfMoved(own) : own;
  course.sameDn = target == own;
  course.target = m_ledger.result.findEntry(target);
  if (moves) course.hadTarget = isThereBy(course.target, target, work.endEvent);
  if (m_inOld.attribute(work.entry, kMasterDn) != kNone) {
    course.kind = MasterKind::replica;
  } else if (m_inOld.attribute(work.entry, kPeerDn) != kNone) {
    course.kind = MasterKind::peer;
  }
  if (!work.transferDone && (moves || work.transfer == traced::kMergeCfgEntry)) findStop(course);
  return course;
}

// Whether an entry was there before this event: from the beginning, or made by then.
bool Accounting::isThereBy(std::uint32_t resultEntry, std::string_view normal, std::size_t event) const {
  if (m_ledger.before.findEntry(normal) != kNone) return true;
  const auto made = m_made.find(resultEntry);
  return made != m_made.end() && made->second < event;
}

// The write whose refusal ended a transfer, if that is what did.
const LedgerEvent* Accounting::refusalThatEnded(const EntryWork& work) const {
  if (work.transferDone || work.endEvent == work.firstEvent) return nullptr;
  const LedgerEvent& last = m_log.events()[work.endEvent - 1];
  return last.rc != 0 && !last.onOld && m_log.methodOf(work.endEvent - 1) == work.transfer ? &last : nullptr;
}

// Where a merge of two entries ended: at the setting of the refused value or, when nothing was refused, at the first
// setting that it looks at and the new entry did not have at that time.
void Accounting::findStop(Course& course) {
  const LedgerEvent* const refusal = refusalThatEnded(*course.work);
  if (refusal != nullptr && refusal->oldValue != kNoValue) {
    course.stop = m_ledger.old.values()[refusal->oldValue].attribute;
    course.stopLine = walkedAt(course.stop, *course.work);
    course.stoppedByRefusal = true;
    return;
  }
  std::set<std::string_view, IsLessName> had;
  if (course.target != kNone) {
    const std::uint32_t before = m_ledger.before.findEntry(m_ledger.result.entries()[course.target].normal);
    if (before != kNone) {
      for (const SnapshotAttribute& attribute : m_ledger.before.attributesOf(m_ledger.before.entries()[before])) {
        had.insert(attribute.name);
      }
    }
    for (std::size_t i = 0; i < course.work->endEvent; ++i) {
      const LedgerEvent& event = m_log.events()[i];
      if (!event.onOld && event.rc == 0 && resultEntryOf(event.dn) == course.target) had.insert(event.attribute);
    }
  }
  const SnapshotEntry& entry = m_ledger.old.entries()[course.oldEntry];
  for (std::uint32_t i = entry.firstAttribute; i < entry.firstAttribute + entry.attributes; ++i) {
    const std::string_view name = m_ledger.old.attributes()[i].name;
    if (isServersOwn(name, course.sameDn) || had.contains(name)) continue;
    const std::size_t line = walkedAt(i, *course.work);
    if (line == 0 || (course.stop != kNone && line > course.stopLine)) continue;
    course.stop = i;
    course.stopLine = line;
  }
}

// Where a transfer meets an attribute: at the line of the first value that no rule has taken out before. 0 when it does
// not meet it.
std::size_t Accounting::walkedAt(std::uint32_t attribute, const EntryWork& work) const {
  const SnapshotAttribute& of = m_ledger.old.attributes()[attribute];
  for (ValueId i = of.firstValue; i < of.firstValue + of.values; ++i) {
    const SnapshotValue& value = m_ledger.old.values()[i];
    if (!value.repeated && m_trails[i].taken >= work.endEvent) return value.line;
  }
  return 0;
}

void Accounting::decideEntry(Course course) {
  const SnapshotEntry& entry = m_ledger.old.entries()[course.oldEntry];
  const std::size_t end = course.work != nullptr ? course.work->endEvent : 0;
  for (std::uint32_t i = entry.firstAttribute; i < entry.firstAttribute + entry.attributes; ++i) {
    const SnapshotAttribute& attribute = m_ledger.old.attributes()[i];
    bool first = true;
    if (course.stop != kNone) course.line = walkedAt(i, *course.work);
    for (ValueId k = attribute.firstValue; k < attribute.firstValue + attribute.values; ++k) {
      const SnapshotValue& value = m_ledger.old.values()[k];
      if (value.repeated) {
        m_ledger.oldValues[k] = m_ledger.oldValues[m_inOld.value(i, value.value)];
        continue;
      }
      m_ledger.oldValues[k] = decide(k, first, course);
      if (m_trails[k].taken >= end) first = false;  // what was not taken out before is what the transfer met first
    }
  }
  m_ledger.oldEntries[course.oldEntry] = entryRow(course);
}

OldValueRow Accounting::decide(ValueId old, bool first, const Course& course) {
  if (const auto row = byWrites(old, course)) return *row;
  if (course.work == nullptr) {
    const SnapshotAttribute& attribute = attributeOf(old);
    const ValueId place = m_inResult.value(course.target, attribute.name, m_ledger.old.values()[old].value);
    return place != kNoValue ? there(old, place, 0) : lost(0, Why::outside);
  }
  if (course.work->transfer == 0) return byRule(old, first, course);
  if (course.work->transfer == traced::kReplAddEntry) return byRebuilding(old, first, course);
  return byTransfer(old, first, course);
}

OldValueRow Accounting::lost(unsigned long method, Why why, int code) {
  return {ValueFate::lost, reason(method, why, code), kNoValue};
}

// The value stands where it was to go, though no write has put it there for its own sake.
OldValueRow Accounting::there(ValueId old, ValueId place, unsigned long method) {
  ResultValueRow& row = m_ledger.resultValues[place];
  if (row.reason != 0 && row.origin == ValueOrigin::fromNew) {
    return {ValueFate::same, reason(method, Why::held), place};
  }
  const bool samePlace = isSamePlace(old, place);
  const ReasonId why = reason(method, Why::arrivedBefore);
  if (row.origin == ValueOrigin::addedByRule) {
    row = {samePlace ? ValueOrigin::carried : ValueOrigin::moved, row.reason, old};
  }
  return {samePlace ? ValueFate::carried : ValueFate::moved, why, place};
}

std::optional<OldValueRow> Accounting::byWrites(ValueId old, const Course& course) {
  const Trail& trail = m_trails[old];
  const std::string_view value = m_ledger.old.values()[old].value;
  const auto eventOf = [this](std::uint32_t number) -> const LedgerEvent& { return m_log.events()[number]; };
  if (trail.place != kNoValue) {
    const unsigned long method = methodOf(trail.arrived);
    if (m_ledger.resultValues[trail.place].origin == ValueOrigin::fromNew) {
      return OldValueRow{ValueFate::same, reason(method, Why::held), trail.place};
    }
    const bool samePlace = isSamePlace(old, trail.place);
    return OldValueRow{samePlace ? ValueFate::carried : ValueFate::moved,
                       reason(method, arrivalOf(trail.arrived, samePlace)), trail.place};
  }
  if (trail.undone != kNone) {
    const LedgerEvent& event = eventOf(trail.undone);
    if (operationOf(event) == Operation::addEntry) return undone(resultEntryOf(event.dn), attributeOf(old).name, value);
    return undone(resultEntryOf(event.dn), event.attribute, value);
  }
  if (trail.refused != kNone) {
    const LedgerEvent& event = eventOf(trail.refused);
    const unsigned long method = methodOf(trail.refused);
    const ValueId place = m_inResult.value(resultEntryOf(event.dn), event.attribute, value);
    if (place != kNoValue) return there(old, place, method);
    return lost(method, event.rc == kNoSuchObject ? Why::refusedNoEntry : Why::refused, event.rc);
  }
  if (const auto part = m_parts.find(old); part != m_parts.end() && trail.taken != kNone) {
    const LedgerEvent& event = eventOf(part->second);
    const unsigned long method = methodOf(part->second);
    if (event.rc != 0) return lost(method, Why::partRefused, event.rc);
    const std::uint32_t entry = resultEntryOf(event.dn);
    const ValueId place = m_inResult.value(entry, event.attribute, event.values.front());
    if (place == kNoValue) return undone(entry, event.attribute, event.values.front());
    return OldValueRow{ValueFate::dropped, reason(method, Why::droppedButPart, 0, attributeOf(old).name), place};
  }
  if (trail.taken != kNone && (course.work == nullptr || trail.taken < course.work->endEvent)) {
    return OldValueRow{ValueFate::dropped, reason(methodOf(trail.taken), Why::dropped, 0, attributeOf(old).name),
                       kNoValue};
  }
  return std::nullopt;
}

// Something was there and is not there any more.
OldValueRow Accounting::undone(std::uint32_t entry, std::string_view name, std::string_view value) {
  if (const Removal* const removal = removalOf(entry, name, value); removal != nullptr) {
    const ValueId place = rewrittenTo(*removal);
    return {ValueFate::cleaned, reason(methodOf(removal->event), place != kNoValue ? Why::rewritten : Why::cleanedUp),
            place};
  }
  if (entry == kNone && !m_removedEntries.empty()) {
    return {ValueFate::cleaned, reason(methodOf(m_removedEntries.back()), Why::cleanedUp), kNoValue};
  }
  unsigned long method = 0;
  if (const std::uint32_t now = m_inResult.attribute(entry, name); now != kNone) {
    const std::uint32_t writer = m_writer[m_ledger.result.attributes()[now].firstValue];
    if (writer != kNone) method = methodOf(writer);
  }
  return lost(method, Why::overwritten);
}

// Object classes, version, naming value: the new entry keeps its own. What it held already is the same; otherwise the
// place is the first of those that stand instead.
OldValueRow Accounting::serversOwn(ValueId old, const Course& course) {
  const unsigned long method = course.work->transfer != 0 ? course.work->transfer : course.work->rule;
  const std::uint32_t own = m_inResult.attribute(course.target, attributeOf(old).name);
  ValueId place = m_inResult.value(own, m_ledger.old.values()[old].value);
  const bool isHeld = place != kNoValue && m_ledger.resultValues[place].origin == ValueOrigin::fromNew;
  if (isHeld) return there(old, place, method);
  place = own != kNone ? m_ledger.result.attributes()[own].firstValue : kNoValue;
  return {ValueFate::keptNew, reason(method, Why::serversOwn), place};
}

OldValueRow Accounting::byTransfer(ValueId old, bool first, const Course& course) {
  const EntryWork& work = *course.work;
  const unsigned long method = work.transfer;
  const SnapshotAttribute& attribute = attributeOf(old);
  const std::string_view value = m_ledger.old.values()[old].value;
  const bool merges = method != traced::kAddCfgEntry;
  const bool isOwn = merges && isServersOwn(attribute.name, course.sameDn);
  if (isOwn && course.hadTarget) return serversOwn(old, course);
  const ValueId place = m_inResult.value(course.target, attribute.name, value);
  if (place != kNoValue) return there(old, place, method);
  if (!merges) return {ValueFate::lost, whyNotAdded(course), kNoValue};
  if (!course.hadTarget) return lost(method, Why::noTarget);

  const std::uint32_t number = m_ledger.old.values()[old].attribute;
  if (!work.transferDone && course.stop == kNone) return lost(method, Why::endedEarly);
  if (work.transferDone || course.line < course.stopLine) {
    if (isList(attribute.name)) return lost(method, Why::unknown);  // every value of a list is written
    return first ? undone(course.target, attribute.name, value) : lost(method, Why::onlyFirst);
  }
  if (course.stoppedByRefusal) return lost(method, Why::behindRefused);
  return lost(method, number == course.stop ? Why::absentEnds : Why::behindAbsent);
}

// Why an entry that was to be created does not have a value; addCfgEntry goes on after most refusals.
ReasonId Accounting::whyNotAdded(const Course& course) {
  const EntryWork& work = *course.work;
  if (work.transferDone) return 0;
  const unsigned long method = work.transfer;
  if (m_inOld.attribute(course.oldEntry, kObjectClass) == kNone) return reason(method, Why::noObjectClass);
  const LedgerEvent* const refusal = refusalThatEnded(work);
  if (refusal == nullptr) return 0;
  if (operationOf(*refusal) != Operation::addEntry) return reason(method, Why::behindRefused);
  if (m_inOld.attribute(course.oldEntry, kCn) == kNone) return reason(method, Why::noNamingValue);
  return reason(method, Why::entryRefused, refusal->rc);
}

// No transfer ran: the rule leaves an entry behind, sets one of its values elsewhere, or has given the entry up.
OldValueRow Accounting::byRule(ValueId old, bool first, const Course& course) {
  const EntryWork& work = *course.work;
  const SnapshotAttribute& attribute = attributeOf(old);
  if (work.isNew) {
    const bool isAsked = work.rule == traced::kAddTo60 && isSameName(attribute.name, kAuditSwitch);
    if (isAsked) return first ? lost(work.rule, Why::unknown) : lost(work.rule, Why::onlyFirstRead);
    return {ValueFate::dropped, reason(work.rule, Why::leftByRule), kNoValue};
  }
  if (isServersOwn(attribute.name, true)) return serversOwn(old, course);
  const ValueId place = m_inResult.value(course.target, attribute.name, m_ledger.old.values()[old].value);
  if (place != kNoValue) return there(old, place, work.rule);
  return lost(work.rule, work.rule == traced::kMergeIn60 ? Why::givenUpNoAdditions : Why::givenUp);
}

OldValueRow Accounting::byRebuilding(ValueId old, bool first, const Course& course) {
  const EntryWork& work = *course.work;
  const unsigned long method = work.transfer;
  const SnapshotAttribute& attribute = attributeOf(old);
  const std::string_view name = rebuiltAs(attribute.name, course.kind);
  if (name.empty()) return {ValueFate::dropped, reason(method, Why::leftByRule), kNoValue};
  const ValueId place = m_inResult.value(course.target, name, m_ledger.old.values()[old].value);
  if (place != kNoValue) return there(old, place, method);
  if (!first) return lost(method, Why::onlyFirstRead);
  const LedgerEvent* const refusal = refusalThatEnded(work);
  if (refusal == nullptr) return lost(method, Why::unknown);
  if (!refusal->values.empty()) return lost(method, Why::rebuildEnded, refusal->rc);
  return lost(method, isSameName(refusal->attribute, kMasterPw) ? Why::noPassword : Why::noIdentity);
}

EntryRow Accounting::entryRow(const Course& course) {
  EntryRow row;
  if (course.work == nullptr) {
    row.fate = EntryFate::outside;
    row.reason = reason(0, Why::outside);
    return row;
  }
  const EntryWork& work = *course.work;
  const std::string_view own = m_ledger.old.entries()[work.entry].normal;
  row.fate = work.fate;
  switch (work.fate) {
    case EntryFate::added:
      row = {work.fate, reason(work.transfer, Why::entryAdded), own};
      break;
    case EntryFate::merged:
      row = {work.fate, reason(work.transfer, Why::entryMerged), own};
      break;
    case EntryFate::moved:
      row = {work.fate,
             work.transfer != 0 ? reason(work.transfer, Why::entryMoved) : reason(work.rule, Why::entryPartMoved),
             targetOfMoved(own)};
      break;
    case EntryFate::rebuilt:
      row = {work.fate, reason(work.transfer, Why::entryRebuilt), own};
      break;
    case EntryFate::left:
      row.reason = reason(work.rule, Why::entryLeft);
      break;
    case EntryFate::skipped:
    case EntryFate::outside:
      if (work.transfer == traced::kAddCfgEntry) {
        row.reason = whyNotAdded(course);
      } else if (work.transfer == 0 && !work.isNew) {
        row.reason = reason(work.rule, work.rule == traced::kMergeIn60 ? Why::givenUpNoAdditions : Why::givenUp);
      } else if (const LedgerEvent* const refusal = refusalThatEnded(work); refusal != nullptr) {
        row.reason = reason(work.transfer, Why::refused, refusal->rc);
      } else if (work.transfer == 0) {
        row.reason = reason(work.rule, Why::refusedNoEntry, kNoSuchObject);
      } else {
        row.reason = reason(work.transfer, !course.hadTarget ? Why::noTarget : Why::endedEarly);
      }
      break;
  }
  return row;
}

}  // namespace tool
