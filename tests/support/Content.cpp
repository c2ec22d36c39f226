#include "Content.h"

#include <algorithm>

#include "SimpleDn.h"

namespace fake {

namespace {

template <class Attributes>
auto findAttribute(Attributes& attributes, std::string_view name) -> decltype(attributes.data()) {
  for (auto& attribute : attributes) {
    if (equalIgnoringCase(attribute.name, name)) {
      return &attribute;
    }
  }
  return nullptr;
}

// Whether `dn` is in what `scope` of `base` asks for; both in simple form.
bool isInScope(const std::string& dn, const std::string& base, int scope, bool listsBase) {
  if (dn == base) {
    return scope == 0 || (scope == 2 && listsBase);
  }
  if (dn.size() <= base.size() + 1 || !dn.ends_with(base) || dn[dn.size() - base.size() - 1] != ',') {
    return false;
  }
  const std::string above = dn.substr(0, dn.size() - base.size() - 1);
  return scope == 2 || (scope == 1 && above.find(',') == std::string::npos);
}

}  // namespace

void Content::put(std::string dn, std::vector<Attribute> attributes) {
  const std::string key = simpleDn(dn);
  m_entries.push_back({std::move(dn), std::move(attributes)});
  m_byDn[key] = std::prev(m_entries.end());
}

void Content::clear() {
  m_entries.clear();
  m_byDn.clear();
}

const Entry* Content::find(std::string_view dn) const {
  const auto found = m_byDn.find(simpleDn(dn));
  return found == m_byDn.end() ? nullptr : &*found->second;
}

const Attribute* Content::find(std::string_view dn, std::string_view attribute) const {
  const Entry* found = find(dn);
  return found == nullptr ? nullptr : findAttribute(found->attributes, attribute);
}

std::vector<std::string> Content::values(std::string_view dn, std::string_view attribute) const {
  const Attribute* found = find(dn, attribute);
  return found == nullptr ? std::vector<std::string>() : found->values;
}

Entry* Content::entry(const char* dn) { return const_cast<Entry*>(std::as_const(*this).entry(dn)); }

const Entry* Content::entry(const char* dn) const { return dn == nullptr ? nullptr : find(dn); }

int Content::subordinates(const char* base, int scope, std::vector<std::string>& dns) const {
  if (base == nullptr) {
    return kBadDn;
  }
  const std::string simpleBase = simpleDn(base);
  for (const Entry& candidate : m_entries) {
    if (isInScope(simpleDn(candidate.dn), simpleBase, scope, m_listsBase)) {
      dns.push_back(candidate.dn);
    }
  }
  return 0;
}

int Content::firstValue(const char* dn, const char* attribute, const std::string*& value) const {
  const Entry* found = entry(dn);
  if (found == nullptr) {
    return kNoSuchEntry;
  }
  const Attribute* held = findAttribute(found->attributes, attribute);
  value = held == nullptr || held->values.empty() ? nullptr : &held->values.front();
  return 0;
}

int Content::allValues(const char* dn, const char* attribute, const std::vector<std::string>*& values) const {
  const Entry* found = entry(dn);
  if (found == nullptr) {
    return kNoSuchEntry;
  }
  const Attribute* held = findAttribute(found->attributes, attribute);
  if (held == nullptr) {
    return kNoSuchAttribute;
  }
  values = &held->values;
  return 0;
}

int Content::addValue(const char* dn, const char* attribute, const char* value) {
  Entry* found = entry(dn);
  if (found == nullptr) {
    return kNoSuchEntry;
  }
  if (value == nullptr) {
    return kBadValue;
  }
  Attribute* held = findAttribute(found->attributes, attribute);
  if (held == nullptr) {
    found->attributes.push_back({attribute, {value}});
  } else if (std::find(held->values.begin(), held->values.end(), value) == held->values.end()) {
    held->values.emplace_back(value);
  }
  return 0;
}

int Content::delValue(const char* dn, const char* attribute, char** values) {
  Entry* found = entry(dn);
  if (found == nullptr) {
    return kNoSuchEntry;
  }
  if (*values == nullptr) {
    return 0;
  }
  Attribute* held = findAttribute(found->attributes, attribute);
  std::vector<std::string> left = held == nullptr ? std::vector<std::string>() : held->values;
  for (char** value = values; *value != nullptr; ++value) {
    const auto position = std::find(left.begin(), left.end(), *value);
    if (position == left.end()) {
      return kNoSuchAttribute;
    }
    left.erase(position);
  }
  if (held != nullptr && left.empty()) {
    found->attributes.erase(found->attributes.begin() + (held - found->attributes.data()));
  } else if (held != nullptr) {
    held->values = std::move(left);
  }
  return 0;
}

int Content::setValue(const char* dn, const char* attribute, const char* value) {
  Entry* found = entry(dn);
  if (found == nullptr) {
    return kNoSuchEntry;
  }
  if (value == nullptr) {
    return kBadValue;
  }
  Attribute* held = findAttribute(found->attributes, attribute);
  if (held == nullptr) {
    found->attributes.push_back({attribute, {value}});
  } else {
    held->values.assign(1, value);
  }
  return 0;
}

int Content::addEntry(const char* dn, const char* cn, const char* objectClass, const char* secondObjectClass) {
  if (dn == nullptr || cn == nullptr || objectClass == nullptr || secondObjectClass == nullptr ||
      simpleDn(dn).empty()) {
    return kBadDn;
  }
  if (entry(dn) != nullptr) {
    return kEntryExists;
  }
  put(dn, {{"OBJECTCLASS", {objectClass}}, {"CN", {cn}}});
  addValue(dn, "OBJECTCLASS", secondObjectClass);
  return 0;
}

int Content::removeEntry(const char* dn) {
  const auto found = m_byDn.find(dn == nullptr ? std::string() : simpleDn(dn));
  if (found == m_byDn.end()) {
    return kNoSuchEntry;
  }
  m_entries.erase(found->second);
  m_byDn.erase(found);
  return 0;
}

int Content::attributeNames(const char* dn, std::vector<std::string>& names) const {
  const Entry* found = entry(dn);
  if (found == nullptr) {
    return kNoSuchEntry;
  }
  for (const Attribute& attribute : found->attributes) {
    names.push_back(attribute.name);
  }
  return 0;
}

}  // namespace fake
