// PluginComparison.cpp -- compares plug-in definitions, and thins the plug-in lists of the two backends.

#include <algorithm>
#include <string>

#include "ConfigFile.h"
#include "internal/KnownDns.h"
#include "internal/StoreResults.h"
#include "internal/TraceScope.h"

using namespace cfgmig;

namespace {

constexpr const char* kPlugin = "zor-slapdPlugin";
constexpr IndexedMessage kNotDropped{"processPlugins: delValue for %s returned rc=%d, i=%d\n"};

// Every run of blanks becomes one blank. Tabs are not blanks here, and nothing is cut off at the ends.
std::string withSingleBlanks(const char* plugin) {
  std::string text(plugin == nullptr ? "" : plugin);
  const auto bothBlank = [](char left, char right) { return left == ' ' && right == ' '; };
  text.erase(std::unique(text.begin(), text.end(), bothBlank), text.end());
  return text;
}

}  // namespace

int ConfigFile::pluginCmp(const char* plugin1, const char* plugin2) {
  TraceScope trace(kPluginCmp);
  return trace.result(withSingleBlanks(plugin1) == withSingleBlanks(plugin2) ? 1 : 0);
}

int ConfigFile::processPlugins(ConfigFile* cfg2, bool legacy) {
  TraceScope trace(kProcessPlugins);
  const char* const backends[] = {legacy ? dn::kLegacyDirectoryBackend : dn::kDirectoryBackend,
                                  legacy ? dn::kLegacySchemaBackend : dn::kSchemaBackend};
  ValueList theirs(*this);
  ValueList mine(*this);
  bool releaseFirst = false;
  for (const char* backend : backends) {
    if (releaseFirst) {
      mine.release();
      theirs.release();
    }
    releaseFirst = true;
    int rc = cfg2->getCfgUtils()->getParamArrayValueInfo(backend, kPlugin, theirs.out(), theirs.countOut());
    if (rc != 0 || theirs.count() < 1) return trace.result(0);
    rc = m_cfgUtils.getParamArrayValueInfo(backend, kPlugin, mine.out(), mine.countOut());
    if (rc != 0) return trace.result(0);
    // Position by position: the order of plug-ins means something.
    for (int i = 0; i < std::min(mine.count(), theirs.count()); ++i) {
      if (pluginCmp(mine[i], theirs[i]) == 0) continue;
      rc = m_cfgUtils.delValue(backend, kPlugin, DeleteList(mine[i]));
      if (rc != 0) trace.debug(kNotDropped, kPlugin, rc, i);
    }
  }
  return trace.result(1);
}
