// CleanUp.cpp -- removes database, change-log and instance settings from this configuration, or rewrites its plug-in
// definitions to the canonical ones. Works on the current DNs only.

#include <cstring>

#include "ConfigFile.h"
#include "internal/KnownDns.h"
#include "internal/StoreResults.h"
#include "internal/TraceScope.h"

using namespace cfgmig;

const char* clogPlugInPath = "preoperation  libzorldapcl.so CLInit cn=changelog";  // two blanks, kept as they stand
const char* rdbmPlugInPath = "database libback-rdbm.so rdbm_backend_init";

namespace {

constexpr const char* kPlugin = "zor-slapdPlugin";
constexpr const char* kDbName = "zor-slapdDbName";
constexpr const char* kDbInstance = "zor-slapdDbInstance";

struct DatabaseSetting {
  const char* dn;
  const char* attribute;
  const char* reported;  // the attribute that the failure message names
};

constexpr DatabaseSetting kDatabaseSettings[] = {
    {dn::kDirectoryBackend, kDbName, kDbName},
    {dn::kDirectoryBackend, "zor-slapdDbAlias", kDbName},  // intended
    {dn::kDirectoryBackend, "zor-slapdDbUserID", "zor-slapdDbUserID"},
    {dn::kDirectoryBackend, "zor-slapdDbUserPW", "zor-slapdDbUserPW"},
    {dn::kDirectoryBackend, "zor-slapdDbLocation", "zor-slapdDbLocation"},
    {dn::kFrontEnd, "zor-slapdSetenv", "zor-slapdSetenv"},
};

constexpr AttributeMessage kSettingNotDropped{"removeDBInfo: delValue for %s returned rc=%d\n"};
constexpr AttributeMessage kEntryNotRemoved{"removeCLInfo: removeEntry for %s returned rc=%d\n"};
constexpr IndexedMessage kPluginNotRemoved{"removeCLInfo: delValue for %s returned rc=%d, i=%d\n"};
constexpr IndexedMessage kPluginNotDropped{"editCLInfo: delValue for %s returned rc=%d, i=%d\n"};
constexpr IndexedMessage kPluginNotAdded{"editCLInfo: addValue for %s returned rc=%d, i=%d\n"};
constexpr AttributeMessage kInstanceNotDropped{"editCLInfo: delValue for %s returned rc=%d\n"};  // of removeDBInstInfo

bool isChangeLogPlugin(const char* plugin) { return plugin != nullptr && std::strstr(plugin, "CLInit") != nullptr; }

bool isBackendPlugin(const char* plugin) {
  return plugin != nullptr && std::strstr(plugin, "rdbm_backend_init") != nullptr;
}

// Plug-in values of one entry. Each operation returns the store's code after reporting a failure.
struct PluginEdit {
  OVOConfigUtils::CfgUtils& store;
  const TraceScope& trace;

  int drop(const char* dn, char* plugin, int i, IndexedMessage failure) const {
    const int rc = store.delValue(dn, kPlugin, DeleteList(plugin));
    if (rc != 0) trace.debug(failure, kPlugin, rc, i);
    return rc;
  }
  int add(const char* dn, const char* plugin, int i) const {
    const int rc = store.addValue(dn, kPlugin, plugin);
    if (rc != 0) trace.debug(kPluginNotAdded, kPlugin, rc, i);
    return rc;
  }
  int read(const char* dn, ValueList& plugins) const {
    return store.getParamArrayValueInfo(dn, kPlugin, plugins.out(), plugins.countOut());
  }

  // At most one plug-in of the change log goes.
  int dropFirstChangeLogPlugin(const char* dn, const ValueList& plugins) const {
    for (int i = 0; i < plugins.count(); ++i) {
      if (isChangeLogPlugin(plugins[i])) return drop(dn, plugins[i], i, kPluginNotRemoved);
    }
    return 0;
  }

  int replaceChangeLogPlugin(const char* dn, char* plugin, int i) const {
    const int rc = drop(dn, plugin, i, kPluginNotDropped);
    return rc != 0 ? rc : add(dn, clogPlugInPath, i);
  }
  int replaceFirstChangeLogPlugin(const char* dn, const ValueList& plugins) const {
    for (int i = 0; i < plugins.count(); ++i) {
      if (isChangeLogPlugin(plugins[i])) return replaceChangeLogPlugin(dn, plugins[i], i);
    }
    return 0;
  }

  // In the change-log entry every plug-in is replaced; one that is both kinds, twice.
  int replaceAll(const char* dn, const ValueList& plugins) const {
    for (int i = 0; i < plugins.count(); ++i) {
      if (isChangeLogPlugin(plugins[i])) {
        const int rc = replaceChangeLogPlugin(dn, plugins[i], i);
        if (rc != 0) return rc;
      }
      if (isBackendPlugin(plugins[i])) {
        drop(dn, plugins[i], i, kPluginNotDropped);  // intended: a failure here is reported and does not end it
        const int rc = add(dn, rdbmPlugInPath, i);
        if (rc != 0) return rc;
      }
    }
    return 0;
  }
};

}  // namespace

// Intended: a setting that cannot be read is passed over, but the code of the last one's read is the result.
int ConfigFile::removeDBInfo() {
  TraceScope trace(kRemoveDBInfo);
  int rc = 0;
  for (const DatabaseSetting& setting : kDatabaseSettings) {
    Text value;
    rc = m_cfgUtils.getParamValueInfo(setting.dn, setting.attribute, value.out());
    if (rc != 0) continue;
    rc = m_cfgUtils.delValue(setting.dn, setting.attribute, DeleteList(value.get()));
    if (rc != 0) {
      trace.debug(kSettingNotDropped, setting.reported, rc);
      return trace.result(rc);
    }
  }
  return trace.result(rc);
}

int ConfigFile::removeCLInfo() {
  TraceScope trace(kRemoveCLInfo);
  int rc = m_cfgUtils.removeEntry(dn::kChangeLog);
  if (rc != 0) {
    trace.debug(kEntryNotRemoved, dn::kChangeLog, rc);
    return trace.result(rc);
  }

  const PluginEdit edit{m_cfgUtils, trace};
  ValueList plugins(*this);
  if (edit.read(dn::kSchemaBackend, plugins) == 0) {  // intended: this failure is neither reported nor returned
    rc = edit.dropFirstChangeLogPlugin(dn::kSchemaBackend, plugins);
    if (rc != 0) return trace.result(rc);
  }
  plugins.release();
  rc = edit.read(dn::kDirectoryBackend, plugins);
  if (rc != 0) return trace.result(rc);
  return trace.result(edit.dropFirstChangeLogPlugin(dn::kDirectoryBackend, plugins));
}

int ConfigFile::editCLInfo() {
  TraceScope trace(kEditCLInfo);
  const PluginEdit edit{m_cfgUtils, trace};
  ValueList plugins(*this);
  if (edit.read(dn::kChangeLog, plugins) == 0) {
    const int rc = edit.replaceAll(dn::kChangeLog, plugins);
    if (rc != 0) return trace.result(rc);
  }
  plugins.release();
  if (edit.read(dn::kSchemaBackend, plugins) == 0) {
    const int rc = edit.replaceFirstChangeLogPlugin(dn::kSchemaBackend, plugins);
    if (rc != 0) return trace.result(rc);
  }
  plugins.release();
  const int rc = edit.read(dn::kDirectoryBackend, plugins);
  if (rc != 0) return trace.result(rc);
  return trace.result(edit.replaceFirstChangeLogPlugin(dn::kDirectoryBackend, plugins));
}

int ConfigFile::removeDBInstInfo() {
  TraceScope trace(kRemoveDBInstInfo);
  Text instance;
  int rc = m_cfgUtils.getParamValueInfo(dn::kDirectoryBackend, kDbInstance, instance.out());
  if (rc != 0) return trace.result(rc);
  rc = m_cfgUtils.delValue(dn::kDirectoryBackend, kDbInstance, DeleteList(instance.get()));
  if (rc != 0) trace.debug(kInstanceNotDropped, kDbInstance, rc);  // intended: under the name of editCLInfo
  return trace.result(rc);
}
