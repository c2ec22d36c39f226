#include "empty_store.h"

#include <cstdlib>
#include <cstring>
#include <map>

#include "CfgUtils.h"
#include "ldtr.h"

std::vector<std::string>& dnsOf(const std::string& fileName) {
  static std::map<std::string, std::vector<std::string>> files;
  return files[fileName];
}

struct OVOConfigUtils::CfgUtils::Implementation {
  std::vector<std::string>& dns;
};

struct _CFGMessage {};

namespace OVOConfigUtils {

CfgUtils::CfgUtils(const char* path, aes_key_data*) : m_implementation(new Implementation{dnsOf(path)}) {}
CfgUtils::~CfgUtils() { delete m_implementation; }

int CfgUtils::getSubordinates(const char*, int, char*** dns, int* count) {
  const std::vector<std::string>& all = m_implementation->dns;
  *dns = static_cast<char**>(std::calloc(all.size() + 1, sizeof(char*)));
  for (std::size_t i = 0; i < all.size(); ++i) (*dns)[i] = strdup(all[i].c_str());
  *count = static_cast<int>(all.size());
  return 0;
}

int CfgUtils::getParamValueInfo(const char*, const char*, char** value) {
  *value = nullptr;
  return 0;
}

int CfgUtils::getParamArrayValueInfo(const char*, const char*, char*** values, int* count) {
  *values = nullptr;
  *count = 0;
  return 16;
}

int CfgUtils::addValue(const char*, const char*, const char*) { return 0; }
int CfgUtils::delValue(const char*, const char*, char**) { return 0; }
int CfgUtils::setValue(const char*, const char*, const char*) { return 0; }
int CfgUtils::addEntry(const char*, const char*, const char*, const char*) { return 0; }
int CfgUtils::removeEntry(const char*) { return 0; }

int CfgUtils::getFirstEntry(const char*, _CFGMessage** entry) {
  *entry = nullptr;
  return 0;
}

int CfgUtils::getFirstAttribute(_CFGMessage*, char** attribute, _CFGMessage*** cursor) {
  *attribute = nullptr;
  *cursor = nullptr;
  return 0;
}

int CfgUtils::getNextAttribute(_CFGMessage*, char** attribute, _CFGMessage**) {
  *attribute = nullptr;
  return 0;
}

}  // namespace OVOConfigUtils

char* formatDn(const char* dn) { return strdup(dn); }
int compareDns(const char* left, const char* right) { return std::strcmp(left, right) == 0 ? 1 : 0; }
int doesFileExist(const char*) { return 0; }
int copyFile(const char*, const char*, char*, int, int) { return 0; }
void cfg_msgfree(_CFGMessage*) {}
void cfg_ber_free(_CFGMessage**) {}

std::uint32_t trcEvents = 0;
void ldtr_write(unsigned long, unsigned long, const void*) {}
void ldtr_exit_errcode(unsigned long, unsigned long, unsigned long, long, const void*) {}
void ldtr_formater_local::debug(unsigned long, const char*, ...) {}
void ldtr_formater_global::debug(unsigned long, const char*, ...) {}
