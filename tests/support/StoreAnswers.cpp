#include "StoreAnswers.h"

#include <cstdlib>

namespace answers {

namespace {

char g_rubbish[] = "rubbish";
char* g_rubbishList[] = {g_rubbish, nullptr};

std::optional<std::string> taken(char* text) {
  if (text == nullptr) {
    return std::nullopt;
  }
  std::string result = text;
  if (text != g_rubbish) {
    std::free(text);
  }
  return result;
}

OfList taken(int rc, char** list, int count) {
  OfList result{rc, list == nullptr, count, {}};
  if (list == nullptr || list == g_rubbishList) {
    return result;
  }
  for (char** slot = list; *slot != nullptr; ++slot) {
    result.values.emplace_back(*slot);
    std::free(*slot);
  }
  std::free(static_cast<void*>(list));
  return result;
}

}  // namespace

OfValue value(CfgUtils& store, const char* dn, const char* attribute) {
  char* text = g_rubbish;
  const int rc = store.getParamValueInfo(dn, attribute, &text);
  return {rc, taken(text)};
}

OfList values(CfgUtils& store, const char* dn, const char* attribute) {
  char** list = g_rubbishList;
  int count = -1;
  const int rc = store.getParamArrayValueInfo(dn, attribute, &list, &count);
  return taken(rc, list, count);
}

OfList subordinates(CfgUtils& store, const char* base, int scope) {
  char** list = g_rubbishList;
  int count = -1;
  const int rc = store.getSubordinates(base, scope, &list, &count);
  return taken(rc, list, count);
}

std::optional<std::vector<std::string>> attributeNames(CfgUtils& store, const char* dn) {
  _CFGMessage* entry = nullptr;
  if (store.getFirstEntry(dn, &entry) != 0) {
    return std::nullopt;
  }
  std::optional<std::vector<std::string>> names = std::vector<std::string>();
  char* name = nullptr;
  _CFGMessage** cursor = nullptr;
  int rc = store.getFirstAttribute(entry, &name, &cursor);
  while (rc == 0 && name != nullptr) {
    names->push_back(*taken(name));
    rc = store.getNextAttribute(entry, &name, cursor);
  }
  cfg_ber_free(cursor);
  cfg_msgfree(entry);
  return rc == 0 ? names : std::nullopt;
}

int remove(CfgUtils& store, const char* dn, const char* attribute, const std::vector<std::string>& values) {
  std::vector<char*> list;
  for (const std::string& value : values) {
    list.push_back(const_cast<char*>(value.c_str()));
  }
  list.push_back(nullptr);
  return store.delValue(dn, attribute, list.data());
}

std::optional<std::string> normalForm(const char* dn) { return taken(formatDn(dn)); }

}  // namespace answers
