#include "StoreModel.h"

#include <algorithm>

#include "ResultCode.h"

namespace cfgstore::test {
namespace {

bool holds(const std::vector<std::string>& values, const std::string& value) {
  return std::find(values.begin(), values.end(), value) != values.end();
}

}  // namespace

int StoreModel::addValue(const std::string& dn, const std::string& name, const std::string& value) {
  if (!m_content.contains(dn)) return kNoSuchObject;
  auto& values = m_content[dn][name];
  if (!holds(values, value)) values.push_back(value);
  return kSuccess;
}

int StoreModel::delValue(const std::string& dn, const std::string& name, const std::vector<std::string>& listed) {
  if (!m_content.contains(dn)) return kNoSuchObject;
  if (listed.empty()) return kSuccess;
  auto& attributes = m_content[dn];
  if (!attributes.contains(name)) return kNoSuchAttribute;
  auto& values = attributes[name];
  for (const std::string& value : listed) {
    if (!holds(values, value)) return kNoSuchAttribute;
  }
  for (const std::string& value : listed) std::erase(values, value);
  if (values.empty()) attributes.erase(name);
  return kSuccess;
}

int StoreModel::setValue(const std::string& dn, const std::string& name, const std::string& value) {
  if (!m_content.contains(dn)) return kNoSuchObject;
  m_content[dn][name] = {value};
  return kSuccess;
}

int StoreModel::addEntry(const std::string& dn, const std::string& cn, const std::string& objectClass,
                         const std::string& secondObjectClass) {
  if (m_content.contains(dn)) return kEntryAlreadyExists;
  m_content[dn] = {{"cn", {cn}}, {"objectclass", {objectClass}}};
  return addValue(dn, "objectclass", secondObjectClass);
}

int StoreModel::removeEntry(const std::string& dn) { return m_content.erase(dn) == 1 ? kSuccess : kNoSuchObject; }

}  // namespace cfgstore::test
