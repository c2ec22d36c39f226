// Rules52.cpp -- what a 5.2 configuration must not bring along. Its entries stand at their current DNs already.

#include "ConfigFile.h"
#include "internal/KnownDns.h"
#include "internal/RuleTable.h"
#include "internal/TraceScope.h"

using namespace cfgmig;

namespace {

constexpr Drop drop{AttributeMessage{"mergeIn52: delValue for %s has returned rc=%d\n"}};

constexpr Step kMainEntry[] = {
    drop("zor-slapdSupportedWebAdmVersion"), drop("zor-slapdACLAccess"),
    drop("zor-slapdPageSizeLmt").reportedAs("zor-slapdPagedSizeLmt"),  // intended
};

constexpr Step kDirectoryBackendEntry[] = {drop("zor-slapdPageSizeLmt")};

}  // namespace

int ConfigFile::addTo52(char* dn, ConfigFile* old) {
  TraceScope trace(kAddTo52);
  // A change log that the new server does not have yet keeps its entries for ever. A failure is not reported.
  if (compareDns(dn, dn::kChangeLog) != 0) {
    old->getCfgUtils()->addValue(dn::kChangeLog, "zor-slapdChangeLogMaxAge", "0");
  }
  return trace.result(addCfgEntry(dn, old)) != 0;
}

int ConfigFile::mergeIn52(char* dn, ConfigFile* old) {
  TraceScope trace(kMergeIn52);
  if (compareDns(dn, dn::kMain) != 0) {
    runSteps(kMainEntry, dn::kMain, {*this, *old, trace});
    return trace.unreported(mergeCfgEntry(dn, old));  // intended: as it is, and the exit record carries 0
  }
  if (compareDns(dn, dn::kDirectoryBackend) != 0) {
    runSteps(kDirectoryBackendEntry, dn::kDirectoryBackend, {*this, *old, trace});
  }
  return trace.result(mergeCfgEntry(dn, old)) != 0;
}

int ConfigFile::check52(ConfigFile*) {
  TraceScope trace(kCheck52);
  return trace.result(1);
}
