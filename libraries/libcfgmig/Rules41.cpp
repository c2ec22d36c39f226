// Rules41.cpp -- what a 4.1 configuration must not bring along. Its entries are added under the DNs that they have.

#include "ConfigFile.h"
#include "internal/KnownDns.h"
#include "internal/RuleTable.h"
#include "internal/TraceScope.h"

using namespace cfgmig;

namespace {

constexpr const char* kPlugin = "zor-slapdPlugin";
constexpr const char* kChangeLogPlugin[] = {"CLInit"};  // the initialisation function of the change-log plug-in

constexpr AttributeMessage kNotDropped{"mergeIn41: delValue for %s returned rc=%d\n"};
constexpr IndexedMessage kNotDroppedAt{"mergeIn41: delValue for %s returned rc=%d, i=%d\n"};

constexpr Drop drop{kNotDropped};

// Intended, in the next two: one reports the index and relies on the store for slots that are not null, the other
// reports none and tests.

Next schemaBackendChangeLogPlugin(const RuleContext& context, const Step&) {
  dropFirstNaming(context, kPlugin, kChangeLogPlugin, NullSlots::cannotBe,
                  [&](int rc, int i) { context.trace.debug(kNotDroppedAt, kPlugin, rc, i); });
  return Next::step;
}

Next directoryBackendChangeLogPlugin(const RuleContext& context, const Step&) {
  dropFirstNaming(context, kPlugin, kChangeLogPlugin, NullSlots::passedOver,
                  [&](int rc, int) { context.trace.debug(kNotDropped, kPlugin, rc); });
  return Next::step;
}

constexpr Step kSchemaBackendEntry[] = {{schemaBackendChangeLogPlugin}};

constexpr Step kDirectoryBackendEntry[] = {
    drop("zor-slapdDbName"),   drop("zor-slapdDbInstance"), drop("zor-slapdDbLocation"),
    drop("zor-slapdDbUserPW"), drop("zor-slapdDbUserID"),   {directoryBackendChangeLogPlugin},
};

constexpr EntryRule kMergeRules[] = {
    {dn::kLegacySchemaBackend, kSchemaBackendEntry},
    {dn::kLegacyDirectoryBackend, kDirectoryBackendEntry},
};

}  // namespace

// Intended: the exit record carries 0 on both paths, and the result of the transfer is passed on as it is.
int ConfigFile::addTo41(char* dn, ConfigFile* old) {
  TraceScope trace(kAddTo41);
  if (compareDns(dn, dn::kLegacyChangeLog) != 0) return trace.unreported(1);  // the old change log is left behind
  return trace.unreported(addCfgEntry(dn, old));
}

int ConfigFile::mergeIn41(char* dn, ConfigFile* old) {
  TraceScope trace(kMergeIn41);
  applyRules(kMergeRules, dn, {*this, *old, trace});
  return trace.result(mergeCfgEntry(dn, old)) != 0;
}

int ConfigFile::check41(ConfigFile*) {
  TraceScope trace(kCheck41);
  return trace.result(1);
}
