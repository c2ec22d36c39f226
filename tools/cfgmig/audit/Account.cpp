#include "audit/Account.h"

#include <algorithm>
#include <stdexcept>
#include <string_view>
#include <unordered_map>

namespace tool::auditing {
namespace {

using cfgstore::SnapshotAttribute;

class Account {
 public:
  Account(const Contents& contents, const Prediction& prediction, const Reconciliation& reconciliation, Audit& audit)
      : m_contents(contents), m_prediction(prediction), m_reconciliation(reconciliation), m_audit(audit) {
    tellResultValues();
    tellOldValues();
    attributeToOldValues();
    tellReplaced();
    count();
  }

 private:
  void tellResultValues();
  void tellOldValues();
  void attributeToOldValues();
  void tellReplaced();
  void count();
  AuditedOldValue rowOf(ValueId old) const;
  AuditedOldValue arrived(const Outcome& outcome) const;
  AuditedOldValue stayed(ValueId old) const;
  AuditedOldValue lost(ValueId old, AuditReason reason) const;
  Id entryFor(ValueId old) const;
  Id placeOfSetting(ValueId old) const;
  ValueId standsFor(Id before) const;
  ValueId heldAt(Id attribute, std::string_view text) const;
  bool goesElsewhere(ValueId old) const;
  bool isNewServers(ValueId result) const {
    const AuditedResultValue& row = m_audit.resultValues[result];
    return row.isExplained && row.origin == ValueOrigin::fromNew;
  }
  void shareWithRepeated();

  using ByText = std::unordered_map<std::string_view, ValueId>;

  const Contents& m_contents;
  const Prediction& m_prediction;
  const Reconciliation& m_reconciliation;
  Audit& m_audit;
  mutable std::unordered_map<Id, ByText> m_byText;  // of attributes of the result with many values, when needed
};

void Account::tellResultValues() {
  const std::size_t count = m_contents.result.values().size();
  m_audit.resultValues.resize(count);
  for (ValueId result = 0; result < count; ++result) {
    AuditedResultValue& row = m_audit.resultValues[result];
    const ValueId uncalledFor = m_reconciliation.uncalledFor(result);
    const Id content = m_reconciliation.contentOf(result);
    row.isExplained = content != kNone || uncalledFor != kNoValue;
    if (!row.isExplained) continue;
    if (content == kNone) {
      row.origin = goesElsewhere(uncalledFor) ? ValueOrigin::moved : ValueOrigin::carried;
      row.from = uncalledFor;
    } else {
      const Provenance& from = m_prediction.content.value(content).from;
      row.from = from.id;
      switch (from.source) {
        case Source::before:
          row.origin = ValueOrigin::fromNew;
          break;
        case Source::carried:
          row.origin = ValueOrigin::carried;
          break;
        case Source::moved:
          row.origin = ValueOrigin::moved;
          break;
        case Source::rule:
          row.origin = ValueOrigin::addedByRule;
          break;
      }
    }
  }
}

// The entry of the result that an old value's entry goes to, kNone when there is none.
Id Account::entryFor(ValueId old) const {
  const Id target = m_prediction.targets[m_contents.old.attributeOf(m_contents.old.values()[old]).entry];
  return target == kNone ? kNone : m_contents.result.findEntry(m_prediction.content.entries()[target].normal);
}

// The attribute of the result where the values of an old setting go with their entry, kNone when there is none.
Id Account::placeOfSetting(ValueId old) const {
  const Id entry = entryFor(old);
  if (entry == kNone) return kNone;
  return m_contents.result.findAttribute(entry, m_contents.old.attributeOf(m_contents.old.values()[old]).name);
}

ValueId Account::heldAt(Id attribute, std::string_view text) const {
  if (attribute == kNone) return kNoValue;
  const SnapshotAttribute& of = m_contents.result.attributes()[attribute];
  const auto values = m_contents.result.values();
  if (of.values <= kFew) {
    for (ValueId value = of.firstValue; value < of.firstValue + of.values; ++value) {
      if (values[value].value == text) return value;
    }
    return kNoValue;
  }
  ByText& byText = m_byText[attribute];
  if (byText.empty()) {
    for (ValueId value = of.firstValue; value < of.firstValue + of.values; ++value) {
      byText.emplace(values[value].value, value);
    }
  }
  const auto found = byText.find(text);
  return found == byText.end() ? kNoValue : found->second;
}

bool Account::goesElsewhere(ValueId old) const {
  const Id entry = m_contents.old.attributes()[m_contents.old.values()[old].attribute].entry;
  const Id target = m_prediction.targets[entry];
  return target != kNone && m_prediction.content.entries()[target].normal != m_contents.old.entries()[entry].normal;
}

AuditedOldValue Account::arrived(const Outcome& outcome) const {
  const Content::Value& at = m_prediction.content.value(outcome.at);
  ValueId place = m_reconciliation.placeOf(outcome.at);
  if (place == kNoValue && at.cleaned) {
    place = m_reconciliation.successorOf(outcome.at);
    if (place == kNoValue) return {ValueFate::lost, AuditReason::missing};
    return {ValueFate::cleaned, AuditReason::pointedAtCopy, place};
  }
  if (place == kNoValue) return {ValueFate::lost, at.gone ? AuditReason::overwritten : AuditReason::missing};
  if (at.from.source == Source::before) return {ValueFate::same, AuditReason::held, place};
  return {outcome.isElsewhere ? ValueFate::moved : ValueFate::carried, AuditReason::arrived, place};
}

// What the new server held already is the same; otherwise the first of its own stands in its place. Nothing stands in
// an entry that is not there.
AuditedOldValue Account::stayed(ValueId old) const {
  if (entryFor(old) == kNone) return {ValueFate::lost, AuditReason::missing};
  const Id attribute = placeOfSetting(old);
  if (attribute == kNone) return {ValueFate::keptNew, AuditReason::newStands};
  const ValueId held = heldAt(attribute, m_contents.old.values()[old].value);
  if (held != kNoValue && isNewServers(held)) return {ValueFate::same, AuditReason::held, held};
  return {ValueFate::keptNew, AuditReason::newStands, m_contents.result.attributes()[attribute].firstValue};
}

// A value that does not arrive may be where it was to go all the same: it was there before, or another step has brought
// an equal one.
AuditedOldValue Account::lost(ValueId old, AuditReason reason) const {
  const ValueId held = heldAt(placeOfSetting(old), m_contents.old.values()[old].value);
  if (held == kNoValue) return {ValueFate::lost, reason};
  if (isNewServers(held)) return {ValueFate::same, AuditReason::held, held};
  return {goesElsewhere(old) ? ValueFate::moved : ValueFate::carried, AuditReason::arrived, held};
}

AuditedOldValue Account::rowOf(ValueId old) const {
  const Outcome& outcome = m_prediction.outcomes[old];
  switch (outcome.fate) {
    case Fate::arrives:
      return arrived(outcome);
    case Fate::dropped:
      return {ValueFate::dropped, AuditReason::takenOut};
    case Fate::extracted: {
      const ValueId place = m_reconciliation.placeOf(outcome.at);
      if (place == kNoValue) {
        const bool isGone = m_prediction.content.value(outcome.at).gone;
        return {ValueFate::lost, isGone ? AuditReason::overwritten : AuditReason::missing};
      }
      return {ValueFate::dropped, AuditReason::takenApart, place};
    }
    case Fate::left:
      return {ValueFate::dropped, AuditReason::leftBehind};
    case Fate::stays:
      return stayed(old);
    case Fate::second:
      return lost(old, AuditReason::second);
    case Fate::unread:
      return {ValueFate::lost, AuditReason::second};
    case Fate::behind:
      return lost(old, AuditReason::behind);
    case Fate::noTarget:
      return outcome.isElsewhere ? AuditedOldValue{ValueFate::lost, AuditReason::noTarget}
                                 : lost(old, AuditReason::noTarget);
    case Fate::givenUp:
      return lost(old, AuditReason::givenUp);
    case Fate::notAdded:
      return {ValueFate::lost, AuditReason::notAdded};
    case Fate::notAskedFor:
      return lost(old, AuditReason::notAskedFor);
    case Fate::outside:
      return lost(old, AuditReason::outside);
  }
  throw std::logic_error("a value without a fate");
}

void Account::tellOldValues() {
  const std::size_t count = m_contents.old.values().size();
  m_audit.oldValues.resize(count);
  for (ValueId old = 0; old < count; ++old) m_audit.oldValues[old] = rowOf(old);
  for (ValueId result = 0; result < m_audit.resultValues.size(); ++result) {
    const ValueId old = m_reconciliation.uncalledFor(result);
    if (old == kNoValue) continue;
    AuditedOldValue& row = m_audit.oldValues[old];
    if (row.fate != ValueFate::lost && row.fate != ValueFate::dropped) continue;  // it has arrived where it should
    row = {goesElsewhere(old) ? ValueFate::moved : ValueFate::carried, AuditReason::uncalledFor, result};
  }
  shareWithRepeated();
}

// A line that repeats a value shares its fate.
void Account::shareWithRepeated() {
  const auto values = m_contents.old.values();
  for (const SnapshotAttribute& attribute : m_contents.old.attributes()) {
    const Id end = attribute.firstValue + attribute.values;
    const auto isRepeated = [](const cfgstore::SnapshotValue& value) { return value.repeated; };
    const auto own = m_contents.old.valuesOf(attribute);
    if (std::none_of(own.begin(), own.end(), isRepeated)) continue;
    ByText firstOf;
    for (ValueId value = attribute.firstValue; value < end; ++value) {
      if (!values[value].repeated) {
        firstOf.emplace(values[value].value, value);
      } else {
        m_audit.oldValues[value] = m_audit.oldValues[firstOf.at(values[value].value)];
      }
    }
  }
}

// A value that a rule has written and that an old value has arrived at comes from that one.
void Account::attributeToOldValues() {
  for (ValueId old = 0; old < m_audit.oldValues.size(); ++old) {
    const AuditedOldValue& row = m_audit.oldValues[old];
    if (row.fate != ValueFate::carried && row.fate != ValueFate::moved) continue;
    AuditedResultValue& at = m_audit.resultValues[row.place];
    if (at.origin != ValueOrigin::addedByRule) continue;
    at.origin = row.fate == ValueFate::moved ? ValueOrigin::moved : ValueOrigin::carried;
    at.from = old;
  }
}

void Account::count() {
  m_audit.fates[static_cast<std::size_t>(ValueFate::same)] = m_contents.old.valuesSetAside();
  m_audit.origins[static_cast<std::size_t>(ValueOrigin::fromNew)] = m_contents.result.valuesSetAside();
  for (const AuditedOldValue& row : m_audit.oldValues) ++m_audit.fates[static_cast<std::size_t>(row.fate)];
  for (const AuditedResultValue& row : m_audit.resultValues) {
    ++(row.isExplained ? m_audit.origins[static_cast<std::size_t>(row.origin)] : m_audit.unexplained);
  }
}

// What stands in the place of a value of the new server that should be there and is not: the value that its setting has
// now, if it counts as having but one.
ValueId Account::standsFor(Id before) const {
  const SnapshotAttribute& setting = m_contents.before.attributes()[m_contents.before.values()[before].attribute];
  if (isList(setting.name)) return kNoValue;
  const Id entry = m_contents.result.findEntry(m_contents.before.entryOf(setting).normal);
  const Id there = entry == kNone ? kNone : m_contents.result.findAttribute(entry, setting.name);
  return there == kNone ? kNoValue : m_contents.result.attributes()[there].firstValue;
}

void Account::tellReplaced() {
  for (Id before = 0; before < m_contents.before.values().size(); ++before) {
    if (m_reconciliation.placeOf(before) != kNoValue) continue;
    const bool isGone = m_prediction.content.value(before).gone;
    const ValueId by = isGone ? m_reconciliation.successorOf(before) : kNoValue;
    m_audit.replaced.push_back({before, by != kNoValue ? by : standsFor(before)});
  }
}

}  // namespace

void giveAccount(const Contents& contents, const Prediction& prediction, const Reconciliation& reconciliation,
                 Audit& audit) {
  Account(contents, prediction, reconciliation, audit);
}

}  // namespace tool::auditing
