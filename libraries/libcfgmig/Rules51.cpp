// Rules51.cpp -- what a 5.1 configuration must not bring along, and where its entries go.

#include "ConfigFile.h"
#include "internal/KnownDns.h"
#include "internal/MasterServer.h"
#include "internal/RuleTable.h"
#include "internal/StoreResults.h"
#include "internal/TraceScope.h"

using namespace cfgmig;

namespace {

struct MovedEntry {
  const char* oldDn;
  const char* newDn;
};

constexpr MovedEntry kMovedEntries[] = {
    {dn::kLegacySchemaBackend, dn::kSchemaBackend},       {dn::kLegacySchema, dn::kSchema},
    {dn::kLegacyLdcfBackends, dn::kLdcfBackends},         {dn::kLegacyRdbmBackends, dn::kRdbmBackends},
    {dn::kLegacyDirectoryBackend, dn::kDirectoryBackend}, {dn::kLegacyChangeLog, dn::kChangeLog},
};

constexpr Drop drop{AttributeMessage{"mergeIn51: delValue for %s has returned rc=%d\n"}};
constexpr IndexedMessage kSettingNotDropped{"mergeIn51: delValue for %s has returned rc=%d, i=%d\n"};

constexpr Step kMainEntry[] = {
    drop("zor-slapdSortSrchAllowNonAdmin"),
    drop("zor-slapdPagedResAllowNonAdmin"),
    drop("zor-slapdPagedResLmt").reportedAs("zor-slapdSortSrchAllowNonAdmin"),  // intended
    drop("zor-slapdIdleTimeOut"),
    drop("zor-slapdSortKeyLimit"),
    drop("zor-slapdErrorLog"),
    drop("zor-slapdPagedSizeLmt"),
    drop("zor-slapdPagedResAllowAnon"),
    drop("zor-slapdSortSrchAllowAnon"),
};

// Only the first value that names one of these goes; a later one is carried over.
constexpr const char* kCacheSettings[] = {"ACLCACHE", "RDBM_FCACHE_SIZE", "RDBM_CACHE_BYPASS_LIMIT"};

Next cacheSetting(const RuleContext& context, const Step&) {
  constexpr const char* kSetenv = "zor-slapdSetenv";
  dropFirstNaming(context, kSetenv, kCacheSettings, NullSlots::passedOver,
                  [&](int rc, int i) { context.trace.debug(kSettingNotDropped, kSetenv, rc, i); });
  return Next::step;
}

constexpr Step kFrontEndEntry[] = {{cacheSetting}};

constexpr EntryRule kMergeRules[] = {
    {dn::kMain, kMainEntry},
    {dn::kFrontEnd, kFrontEndEntry},
};

constexpr AttributeMessage kClassNotAdded{"check51: addValue for %s returned rc=%d\n"};
constexpr RcMessage kMarkerClassNotAdded{"check51: addValue for ZOR-SLAPDPENDINGMIGRATION returned rc=%d\n"};
constexpr RcMessage kMarkerNotAdded{"check51: addValue for ZOR-SLAPDMIGRATIONINFO returned rc=%d\n"};

}  // namespace

int ConfigFile::addTo51(char* dn, ConfigFile* old) {
  TraceScope trace(kAddTo51);
  if (compareDns(dn, dn::kMasterServer) != 0) return trace.result(replAddEntry(old)) != 0;
  for (const MovedEntry& moved : kMovedEntries) {
    if (compareDns(dn, moved.oldDn) == 0) continue;
    return trace.result(mergeChangeDnEntry(dn, const_cast<char*>(moved.newDn), old)) != 0;
  }
  return trace.result(addCfgEntry(dn, old)) != 0;
}

int ConfigFile::mergeIn51(char* dn, ConfigFile* old) {
  TraceScope trace(kMergeIn51);
  applyRules(kMergeRules, dn, {*this, *old, trace});
  return trace.result(mergeCfgEntry(dn, old)) != 0;
}

// A server without a master server entry was a master itself; it is marked so that its replication is set up anew.
int ConfigFile::check51(ConfigFile*) {
  TraceScope trace(kCheck51);
  EntryHandle present;
  if (present.open(m_cfgUtils, dn::kMasterServer) == 0) return trace.result(1);

  if (createMasterServer(m_cfgUtils) != 0) return trace.result(1);  // intended: neither reported nor a failure
  int rc = m_cfgUtils.addValue(dn::kMasterServer, kObjectClass, kConfigEntryClass);
  if (rc != 0) {
    trace.debug(kClassNotAdded, kConfigEntryClass, rc);
    return trace.result(0);
  }
  rc = m_cfgUtils.addValue(dn::kMasterServer, kObjectClass, kPendingClass);
  if (rc != 0) {
    trace.debug(kMarkerClassNotAdded, rc);
    return trace.result(0);
  }
  rc = m_cfgUtils.addValue(dn::kMasterServer, kMigrationInfo, kFormerMaster);
  if (rc != 0) {
    trace.debug(kMarkerNotAdded, rc);
    return trace.result(0);
  }
  return trace.result(1);
}
