#include "Migration.h"

#include <algorithm>

#include "SimpleDn.h"

namespace migration {
namespace {

std::string lowerCase(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
  return text;
}

}  // namespace

void Configuration::add(const std::string& dn, const std::string& attribute, const Values& values) {
  m_entries[fake::simpleDn(dn)][lowerCase(attribute)] = values;
}

bool Configuration::has(const std::string& dn) const { return m_entries.contains(fake::simpleDn(dn)); }

Values Configuration::values(const std::string& dn, const std::string& attribute) const {
  const auto entry = m_entries.find(fake::simpleDn(dn));
  if (entry == m_entries.end()) return {};
  const auto found = entry->second.find(lowerCase(attribute));
  return found == entry->second.end() ? Values() : found->second;
}

bool Configuration::holdsAnywhere(const std::string& value) const {
  for (const auto& [dn, attributes] : m_entries) {
    for (const auto& [name, values] : attributes) {
      if (std::find(values.begin(), values.end(), value) != values.end()) return true;
    }
  }
  return false;
}

}  // namespace migration
