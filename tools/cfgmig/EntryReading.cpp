#include "EntryReading.h"

#include <cstdlib>
#include <memory>

namespace tool {
namespace {

using OVOConfigUtils::CfgUtils;

struct EntryRelease {
  void operator()(_CFGMessage* entry) const { cfg_msgfree(entry); }
};
struct CursorRelease {
  void operator()(_CFGMessage** cursor) const { cfg_ber_free(cursor); }
};

}  // namespace

std::vector<std::string> valuesOf(CfgUtils& store, const std::string& dn, const std::string& attribute) {
  char** list = nullptr;
  int count = 0;
  std::vector<std::string> values;
  if (store.getParamArrayValueInfo(dn.c_str(), attribute.c_str(), &list, &count) != 0) return values;
  for (char** value = list; *value != nullptr; ++value) {
    values.emplace_back(*value);
    std::free(*value);
  }
  std::free(list);
  return values;
}

std::vector<std::string> attributesOf(CfgUtils& store, const std::string& dn) {
  std::vector<std::string> names;
  _CFGMessage* handle = nullptr;
  if (store.getFirstEntry(dn.c_str(), &handle) != 0) return names;
  const std::unique_ptr<_CFGMessage, EntryRelease> entry(handle);
  char* name = nullptr;
  _CFGMessage** position = nullptr;
  int rc = store.getFirstAttribute(entry.get(), &name, &position);
  const std::unique_ptr<_CFGMessage*, CursorRelease> cursor(position);
  while (rc == 0 && name != nullptr) {
    names.emplace_back(name);
    std::free(name);
    name = nullptr;
    rc = store.getNextAttribute(entry.get(), &name, cursor.get());
  }
  return names;
}

bool hasEntry(CfgUtils& store, const std::string& dn) {
  _CFGMessage* handle = nullptr;
  if (store.getFirstEntry(dn.c_str(), &handle) != 0) return false;
  cfg_msgfree(handle);
  return true;
}

}  // namespace tool
