#include "audit/Content.h"

namespace tool::auditing {

Content::Content(const cfgstore::Snapshot& before, Names& names) : m_before(before) {
  m_entries.reserve(before.entries().size() + before.entries().size() / 4);
  m_attributes.reserve(before.attributes().size() + before.attributes().size() / 2);
  m_values.reserve(before.values().size() + before.values().size() / 2);
  for (const cfgstore::SnapshotEntry& entry : before.entries()) {
    Entry& to = m_entries.emplace_back();
    to.normal = entry.normal;
    to.before = static_cast<Id>(m_entries.size() - 1);
    to.attributes = entry.attributes;
    if (entry.attributes == 0) continue;
    to.first = entry.firstAttribute;
    to.last = entry.firstAttribute + entry.attributes - 1;
  }
  for (const cfgstore::SnapshotAttribute& attribute : before.attributes()) {
    const auto id = static_cast<Id>(m_attributes.size());
    const Id next = id == m_entries[attribute.entry].last ? kNone : id + 1;
    m_attributes.push_back({names.of(attribute.name), attribute.firstValue, attribute.firstValue + attribute.values - 1,
                            attribute.values, kNone, next});
  }
  for (const cfgstore::SnapshotValue& value : before.values()) {
    const auto id = static_cast<Id>(m_values.size());
    const Id next = id == m_attributes[value.attribute].last ? kNone : id + 1;
    m_values.push_back({value.value, {Source::before, id}, next});
  }
}

Id Content::findEntry(std::string_view normal) const {
  const Id found = m_before.findEntry(normal);
  if (found != kNone) return found;
  const auto added = m_added.find(normal);
  return added == m_added.end() ? kNone : added->second;
}

Id Content::findPlaceOf(Id entry, NameId name) const {
  const Entry& of = m_entries[entry];
  if (of.attributes <= kFew) {
    for (Id id = of.first; id != kNone; id = m_attributes[id].next) {
      if (m_attributes[id].name == name) return id;
    }
    return kNone;
  }
  auto& table = m_byName[entry];
  if (table.empty()) {
    for (Id id = of.first; id != kNone; id = m_attributes[id].next) table.emplace(m_attributes[id].name, id);
  }
  const auto found = table.find(name);
  return found == table.end() ? kNone : found->second;
}

Id Content::findAttribute(Id entry, NameId name) const {
  const Id found = findPlaceOf(entry, name);
  return found != kNone && m_attributes[found].first != kNone ? found : kNone;
}

Id Content::findValue(Id attribute, std::string_view text) const {
  const Attribute& of = m_attributes[attribute];
  if (of.values <= kFew) {
    for (Id id = of.first; id != kNone; id = m_values[id].next) {
      if (m_values[id].text == text) return id;
    }
    return kNone;
  }
  auto& table = m_byText[attribute];
  if (table.empty()) {
    for (Id id = of.first; id != kNone; id = m_values[id].next) table.emplace(m_values[id].text, id);
  }
  const auto found = table.find(text);
  return found == table.end() ? kNone : found->second;
}

Id Content::addEntry(std::string_view normal) {
  const auto id = static_cast<Id>(m_entries.size());
  m_entries.push_back({normal});
  m_added.emplace(normal, id);
  return id;
}

// The first of the values that the attribute held before the migration, that are gone, and that have this text.
Id Content::takeBack(Id attribute, std::string_view text) {
  Id found = kNone;
  Id* link = nullptr;
  for (Id* at = &m_attributes[attribute].firstGone; *at != kNone; at = &m_values[*at].next) {
    const Value& value = m_values[*at];
    if (value.from.source != Source::before || value.cleaned || value.text != text || *at > found) continue;
    found = *at;
    link = at;
  }
  if (found == kNone) return kNone;
  *link = m_values[found].next;
  m_values[found].gone = false;
  m_values[found].by = m_values[found].next = kNone;
  return found;
}

Id Content::newValue(Id attribute, std::string_view text, Provenance from) {
  const Id own = takeBack(attribute, text);
  if (own != kNone) return own;
  const auto id = static_cast<Id>(m_values.size());
  m_values.push_back({text, from});
  return id;
}

void Content::append(Id attribute, Id value) {
  Attribute& to = m_attributes[attribute];
  (to.last == kNone ? to.first : m_values[to.last].next) = value;
  to.last = value;
  ++to.values;
  const auto table = m_byText.find(attribute);
  if (table != m_byText.end()) table->second.emplace(m_values[value].text, value);
}

void Content::retire(Attribute& attribute, Id value, Id by, bool cleaned) {
  Value& gone = m_values[value];
  gone.gone = true;
  gone.cleaned = cleaned;
  gone.by = by;
  gone.next = attribute.firstGone;
  attribute.firstGone = value;
}

Id Content::addValue(Id entry, NameId name, std::string_view text, Provenance from) {
  Id attribute = findPlaceOf(entry, name);
  if (attribute == kNone) {
    attribute = static_cast<Id>(m_attributes.size());
    m_attributes.push_back({name});
    Entry& to = m_entries[entry];
    (to.last == kNone ? to.first : m_attributes[to.last].next) = attribute;
    to.last = attribute;
    ++to.attributes;
    const auto table = m_byName.find(entry);
    if (table != m_byName.end()) table->second.emplace(name, attribute);
  }
  const Id held = findValue(attribute, text);
  if (held != kNone) return held;
  const Id value = newValue(attribute, text, from);
  append(attribute, value);
  return value;
}

Id Content::setValue(Id entry, NameId name, std::string_view text, Provenance from) {
  const Id attribute = findAttribute(entry, name);
  if (attribute == kNone) return addValue(entry, name, text, from);
  const Id first = m_attributes[attribute].first;
  bool hasOther = false;
  for (Id id = first; id != kNone && !hasOther; id = m_values[id].next) hasOther = m_values[id].text != text;
  if (!hasOther) return first;
  const Id held = findValue(attribute, text);
  const Id kept = held != kNone ? held : newValue(attribute, text, from);
  m_byText.erase(attribute);
  Attribute& of = m_attributes[attribute];
  for (Id id = first; id != kNone;) {
    const Id next = m_values[id].next;
    if (id != kept) retire(of, id, kept, false);
    id = next;
  }
  of.first = of.last = kept;
  of.values = 1;
  m_values[kept].next = kNone;
  return kept;
}

void Content::rewriteValues(Id entry, NameId name, const std::vector<Rewrite>& rewrites) {
  if (rewrites.empty()) return;
  const Id attribute = findAttribute(entry, name);
  for (const Rewrite& rewrite : rewrites) m_values[rewrite.value].gone = true;
  m_byText.erase(attribute);
  const Id first = m_attributes[attribute].first;
  m_attributes[attribute].first = m_attributes[attribute].last = kNone;
  m_attributes[attribute].values = 0;
  for (Id id = first; id != kNone;) {
    const Id next = m_values[id].next;
    m_values[id].next = kNone;
    if (!m_values[id].gone) append(attribute, id);
    id = next;
  }
  for (const Rewrite& rewrite : rewrites) {
    const Id by = addValue(entry, name, rewrite.by, rewrite.from);
    retire(m_attributes[attribute], rewrite.value, by, true);
  }
}

}  // namespace tool::auditing
