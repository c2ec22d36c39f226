#include "StoreCalls.h"

#include <cstdlib>

#include "Fuzz.h"

namespace fuzz {
namespace {

std::string takeString(char* text) {
  std::string copy = text;
  std::free(text);
  return copy;
}

int takeList(int rc, char** list, int count, Strings& values) {
  values.clear();
  require((rc == 0) == (list != nullptr), "there is a list exactly after a success");
  require(rc == 0 || count == 0, "a count is 0 after a failure");
  if (rc != 0) return rc;
  for (int i = 0; i < count; ++i) {
    require(list[i] != nullptr, "no null slot before the count");
    values.push_back(takeString(list[i]));
  }
  require(list[count] == nullptr, "a list is closed by a null slot");
  std::free(list);
  return rc;
}

}  // namespace

std::optional<std::string> formatted(const std::string& dn) {
  char* const normal = formatDn(dn.c_str());
  if (normal == nullptr) return std::nullopt;
  return takeString(normal);
}

int subordinates(Store& store, const std::string& base, int scope, Strings& dns) {
  char** list = nullptr;
  int count = -1;
  const int rc = store.getSubordinates(base.c_str(), scope, &list, &count);
  return takeList(rc, list, count, dns);
}

int firstValue(Store& store, const std::string& dn, const std::string& attribute, std::optional<std::string>& value) {
  char* text = nullptr;
  const int rc = store.getParamValueInfo(dn.c_str(), attribute.c_str(), &text);
  value.reset();
  require(rc == 0 || text == nullptr, "there is no value after a failure");
  if (text != nullptr) value = takeString(text);
  return rc;
}

int allValues(Store& store, const std::string& dn, const std::string& attribute, Strings& values) {
  char** list = nullptr;
  int count = -1;
  const int rc = store.getParamArrayValueInfo(dn.c_str(), attribute.c_str(), &list, &count);
  return takeList(rc, list, count, values);
}

int attributeNames(Store& store, const std::string& dn, Strings& names) {
  names.clear();
  _CFGMessage* entry = nullptr;
  const int rc = store.getFirstEntry(dn.c_str(), &entry);
  require((rc == 0) == (entry != nullptr), "there is a handle exactly after a success");
  if (rc != 0) return rc;
  char* name = nullptr;
  _CFGMessage** cursor = nullptr;
  require(store.getFirstAttribute(entry, &name, &cursor) == 0, "a walk begins");
  while (name != nullptr) {
    names.push_back(takeString(name));
    require(store.getNextAttribute(entry, &name, cursor) == 0, "a walk goes on");
  }
  cfg_ber_free(cursor);
  cfg_msgfree(entry);
  return rc;
}

int delValue(Store& store, const std::string& dn, const std::string& attribute, const Strings& values) {
  Strings copies = values;
  std::vector<char*> list;
  for (std::string& copy : copies) list.push_back(copy.data());
  list.push_back(nullptr);
  return store.delValue(dn.c_str(), attribute.c_str(), list.data());
}

}  // namespace fuzz
