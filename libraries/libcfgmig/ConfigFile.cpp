// ConfigFile.cpp -- the object, its DN inventory, and the release of value lists.

#include "ConfigFile.h"

#include <cstdio>
#include <cstdlib>
#include <utility>

#include "internal/StoreResults.h"
#include "internal/TraceScope.h"

using namespace cfgmig;

namespace {

constexpr const char* kRootDn = "CN=CONFIGURATION";
constexpr int kWholeSubtree = 2;

enum InventoryResult { kInventoryComplete = 0, kInventoryFailed = 1, kNoMemory = 90 };
enum ReleaseResult { kReleased = 0, kNothingToRelease = 56 };

constexpr PlainMessage kNoInventoryMemory{"getDns: could not allocate memory for m_cfgDns\n"};

}  // namespace

ConfigFile::ConfigFile(std::string fileName, aes_key_data* key)
    : m_cfgDns(nullptr), m_dnNum(0), m_cfgUtils(fileName.c_str(), key) {
  m_fileName = std::move(fileName);
}

ConfigFile::~ConfigFile() {
  if (m_cfgDns == nullptr) return;
  for (int i = 0; i < m_dnNum; ++i) {
    std::free(m_cfgDns[i]);
    m_cfgDns[i] = nullptr;
  }
  std::free(m_cfgDns);
}

std::string ConfigFile::getFileName() const { return m_fileName; }

int ConfigFile::getDnNum() const { return m_dnNum; }

char** ConfigFile::getCfgDns() const { return m_cfgDns; }

OVOConfigUtils::CfgUtils* ConfigFile::getCfgUtils() { return &m_cfgUtils; }

int ConfigFile::getDns() {
  TraceScope trace(kGetDns);
  WholeList listed;
  if (m_cfgUtils.getSubordinates(kRootDn, kWholeSubtree, listed.out(), &m_dnNum) != 0) {
    return trace.result(kInventoryFailed);
  }

  // Intended: an inventory that was there before is not released, since its strings may still be in use.
  m_cfgDns = allocatePointers(m_dnNum).release();
  if (m_cfgDns == nullptr) {
    trace.debug(kNoInventoryMemory);
    return trace.result(kNoMemory);
  }
  // Null first, so that the destructor may walk all slots whatever happens below.
  for (int i = 0; i < m_dnNum; ++i) m_cfgDns[i] = nullptr;
  for (int i = 0; i < m_dnNum; ++i) {
    m_cfgDns[i] = formatDn(listed[i]);
    if (m_cfgDns[i] == nullptr) return trace.result(kInventoryFailed);
  }
  return trace.result(kInventoryComplete);
}

void ConfigFile::dumpDns() const {
  for (int i = 0; m_cfgDns != nullptr && i < m_dnNum; ++i) {
    if (m_cfgDns[i] != nullptr) std::puts(m_cfgDns[i]);  // null slots end the inventory of a getDns that failed
  }
  std::putchar('\n');
}

int ConfigFile::freeParamVals(char** values) {
  if (values == nullptr) {
    if (debugIsOn()) {
      ldtr_formater_global(kDebugRecord).debug(kInformationClass, "ConfigFile::freeParamVals passed a null pointer.\n");
    }
    return kNothingToRelease;
  }
  // Intended: the array itself is left alone; callers release a list more than once and may fill the same one again.
  for (char** value = values; *value != nullptr; ++value) {
    std::free(*value);
    *value = nullptr;
  }
  return kReleased;
}
