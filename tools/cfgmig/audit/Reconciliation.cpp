#include "audit/Reconciliation.h"

#include <algorithm>
#include <functional>
#include <string_view>
#include <unordered_map>

namespace tool::auditing {
namespace {

using cfgstore::SnapshotAttribute;
using cfgstore::SnapshotEntry;

}  // namespace

Reconciliation::Reconciliation(const Contents& contents, Prediction& prediction, bool copiesSchemaFiles, Audit& audit)
    : m_contents(contents),
      m_prediction(prediction),
      m_content(prediction.content),
      m_audit(audit),
      m_names(nameIds(contents.result, prediction.names)),
      m_resultOf(prediction.content.valueCount(), kNoValue),
      m_contentOf(contents.result.values().size(), kNone),
      m_uncalledFor(contents.result.values().size(), kNoValue),
      m_includeList(prediction.names.of(kIncludeList)),
      m_copiesSchemaFiles(copiesSchemaFiles) {
  compareEntries();
}

ValueId Reconciliation::successorOf(Id value) const {
  while (m_content.value(value).gone) value = m_content.value(value).by;
  return m_resultOf[value];
}

void Reconciliation::compareEntries() {
  std::vector<bool> isKnown(m_contents.result.entries().size(), false);
  for (Id entry = 0; entry < m_content.entries().size(); ++entry) {
    const Content::Entry& should = m_content.entries()[entry];
    const Id there = m_contents.result.findEntry(should.normal);
    if (there != kNone) {
      isKnown[there] = true;
      compareEntry(entry, there);
      continue;
    }
    Discrepancy discrepancy;
    discrepancy.kind = should.before == kNone ? Discrepancy::Kind::missingEntry : Discrepancy::Kind::missingNewEntry;
    discrepancy.dn = should.normal;
    m_audit.discrepancies.push_back(discrepancy);
  }
  for (Id entry = 0; entry < isKnown.size(); ++entry) {
    if (isKnown[entry]) continue;
    Discrepancy discrepancy;
    discrepancy.kind = Discrepancy::Kind::unexplainedEntry;
    discrepancy.dn = m_contents.result.entries()[entry].normal;
    m_audit.discrepancies.push_back(discrepancy);
  }
}

void Reconciliation::compareEntry(Id entry, Id there) {
  const SnapshotEntry& has = m_contents.result.entries()[there];
  for (Id should = m_content.entries()[entry].first; should != kNone; should = m_content.attribute(should).next) {
    if (m_content.attribute(should).first == kNone) continue;
    const NameId name = m_content.attribute(should).name;
    compare({entry, m_contents.result.findAttribute(there, m_prediction.names.spelling(name)), should, name});
  }
  for (Id at = has.firstAttribute; at < has.firstAttribute + has.attributes; ++at) {
    if (m_content.findAttribute(entry, m_names[at]) == kNone) {
      compare({entry, at, m_content.findPlaceOf(entry, m_names[at]), m_names[at]});
    }
  }
}

void Reconciliation::compare(const Attribute& attribute) {
  // Nearly always they are the same.
  bool isSame = attribute.there != kNone && attribute.should != kNone;
  if (isSame) {
    const SnapshotAttribute& has = m_contents.result.attributes()[attribute.there];
    const Content::Attribute& should = m_content.attribute(attribute.should);
    isSame = has.values == should.values;
    ValueId result = has.firstValue;
    for (Id id = should.first; isSame && id != kNone; id = m_content.value(id).next, ++result) {
      isSame = m_contents.result.values()[result].value == m_content.value(id).text;
    }
    result = has.firstValue;
    for (Id id = should.first; isSame && id != kNone; id = m_content.value(id).next, ++result) {
      m_resultOf[id] = result;
      m_contentOf[result] = id;
    }
  }
  if (isSame) return;
  std::vector<Id> missing;
  std::vector<ValueId> over;
  match(attribute, missing, over);
  tell(attribute, missing, over);
}

void Reconciliation::match(const Attribute& attribute, std::vector<Id>& missing, std::vector<ValueId>& over) {
  struct Equal {
    std::vector<ValueId> values;
    std::size_t used = 0;
  };
  std::unordered_map<std::string_view, Equal> byText;
  ValueId first = 0;
  ValueId end = 0;
  if (attribute.there != kNone) {
    const SnapshotAttribute& has = m_contents.result.attributes()[attribute.there];
    first = has.firstValue;
    end = has.firstValue + has.values;
  }
  for (ValueId value = first; value < end; ++value) {
    byText[m_contents.result.values()[value].value].values.push_back(value);
  }
  const Id begin = attribute.should == kNone ? kNone : m_content.attribute(attribute.should).first;
  for (Id id = begin; id != kNone; id = m_content.value(id).next) {
    const auto equal = byText.find(m_content.value(id).text);
    if (equal == byText.end() || equal->second.used == equal->second.values.size()) {
      missing.push_back(id);
      continue;
    }
    const ValueId result = equal->second.values[equal->second.used++];
    m_resultOf[id] = result;
    m_contentOf[result] = id;
  }
  for (ValueId value = first; value < end; ++value) {
    if (m_contentOf[value] == kNone) over.push_back(value);
  }
}

void Reconciliation::expect(Id value, Discrepancy& discrepancy) const {
  const Content::Value& expected = m_content.value(value);
  discrepancy.expected = expected.text;
  discrepancy.isExpected = true;
  (expected.from.source == Source::before ? discrepancy.before : discrepancy.old) = expected.from.id;
}

void Reconciliation::tell(const Attribute& attribute, const std::vector<Id>& missing,
                          const std::vector<ValueId>& over) {
  using Kind = Discrepancy::Kind;
  Discrepancy discrepancy;
  discrepancy.dn = m_content.entries()[attribute.entry].normal;
  discrepancy.attribute = attribute.there != kNone ? m_contents.result.attributes()[attribute.there].name
                                                   : m_prediction.names.spelling(attribute.name);
  if (missing.empty() && over.empty()) {
    if (m_copiesSchemaFiles && attribute.name == m_includeList) return;
    discrepancy.kind = Kind::otherOrder;
    discrepancy.result = m_contents.result.attributes()[attribute.there].firstValue;
    m_audit.discrepancies.push_back(discrepancy);
    return;
  }
  Known known;
  if (!over.empty()) known = whatIsKnownOf(attribute);
  for (std::size_t i = 0; i < std::max(missing.size(), over.size()); ++i) {
    Discrepancy each = discrepancy;
    if (i < missing.size()) {
      expect(missing[i], each);
      each.kind = each.before == kNoValue ? Kind::missingValue : Kind::missingNewValue;
    }
    if (i < over.size()) {
      each.result = over[i];
      const Kind kind = explain(attribute, known, over[i], each);
      const bool isChange = each.isExpected && kind == Kind::unexplainedValue;
      each.kind = isChange ? Kind::changedValue : kind;
    }
    m_audit.discrepancies.push_back(each);
  }
}

// What a value of the result is that the content does not have.
Discrepancy::Kind Reconciliation::explain(const Attribute& attribute, Known& known, ValueId over,
                                          Discrepancy& discrepancy) {
  using Kind = Discrepancy::Kind;
  const std::string_view text = m_contents.result.values()[over].value;
  const bool isRepeated = attribute.should != kNone && m_content.findValue(attribute.should, text) != kNone;
  const auto gone = known.gone.find(text);
  const bool wasThere = gone != known.gone.end() && !gone->second.empty();
  // A line that the new configuration repeated itself may be there still; no migration repeats one.
  if (wasThere && (!isRepeated || m_content.value(gone->second.back()).from.source == Source::before)) {
    const Id first = gone->second.back();
    gone->second.pop_back();
    const Content::Value& value = m_content.value(first);
    m_resultOf[first] = over;
    m_contentOf[over] = first;
    if (!discrepancy.isExpected) {
      (value.from.source == Source::before ? discrepancy.before : discrepancy.old) = value.from.id;
    }
    return Kind::notReplaced;
  }
  if (isRepeated) return Kind::repeatedValue;
  const auto old = known.notBrought.find(text);
  if (old == known.notBrought.end()) return Kind::unexplainedValue;
  m_uncalledFor[over] = old->second;
  if (!discrepancy.isExpected) discrepancy.old = old->second;
  return Kind::uncalledFor;
}

Reconciliation::Known Reconciliation::whatIsKnownOf(const Attribute& attribute) {
  Known known;
  if (attribute.should != kNone) {
    for (Id gone = m_content.attribute(attribute.should).firstGone; gone != kNone; gone = m_content.value(gone).next) {
      known.gone[m_content.value(gone).text].push_back(gone);
    }
    for (auto& [text, values] : known.gone) std::sort(values.begin(), values.end(), std::greater<>());
  }
  if (m_oldEntriesFor.empty()) {
    m_oldEntriesFor.resize(m_content.entries().size());
    for (Id old = 0; old < m_prediction.targets.size(); ++old) {
      if (m_prediction.targets[old] != kNone) m_oldEntriesFor[m_prediction.targets[old]].push_back(old);
    }
  }
  for (const Id old : m_oldEntriesFor[attribute.entry]) {
    const Id there = m_contents.old.findAttribute(old, m_prediction.names.spelling(attribute.name));
    if (there == kNone) continue;
    const SnapshotAttribute& has = m_contents.old.attributes()[there];
    for (ValueId value = has.firstValue; value < has.firstValue + has.values; ++value) {
      known.notBrought.emplace(m_contents.old.values()[value].value, value);
    }
  }
  return known;
}

}  // namespace tool::auditing
