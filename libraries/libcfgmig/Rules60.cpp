// Rules60.cpp -- what a 6.0 configuration must not bring along, and where its entries and settings go.

#include <strings.h>

#include <cstring>
#include <string_view>

#include "ConfigFile.h"
#include "internal/KnownDns.h"
#include "internal/RuleTable.h"
#include "internal/StoreResults.h"
#include "internal/TraceScope.h"

using namespace cfgmig;

namespace {

constexpr AttributeMessage kNotAddedAsSet{"addTo60: setValue for %s returned rc=%d\n"};
constexpr AttributeMessage kNotDroppedOnAdd{"addTo60: delValue for %s returned rc=%d\n"};
constexpr AttributeMessage kNotDropped{"mergeIn60: delValue for %s has returned rc=%d\n"};
constexpr AttributeMessage kNotSet{"mergeIn60: setValue for %s has returned rc=%d\n"};
constexpr AttributeMessage kNotRead{"mergeIn60: getParamArrayValueInfo for %s returned rc=%d\n"};

constexpr Drop drop{kNotDropped};
constexpr Move move{kNotDropped, kNotSet};

// The log level of the main entry becomes the options of the server log, as it stands. Intended: the level that is
// exactly "m" is dropped and not carried.
Next systemLogLevel(const RuleContext& context, const Step&) {
  constexpr const char* kLevel = "zor-slapdSysLogLevel";
  constexpr const char* kOptions = "zor-slapdLogOptions";
  Text level;
  if (context.oldStore().getParamValueInfo(context.dn, kLevel, level.out()) != 0) return Next::step;
  dropValue(context, kLevel, level.get(), kNotDropped, kLevel);
  if (level.get() != nullptr && std::strcmp(level.get(), "m") == 0) return Next::step;
  const int rc = context.newStore().setValue(dn::kServerLog, kOptions, level.get());
  if (rc != 0) context.trace.debug(kNotSet, kOptions, rc);
  return Next::step;
}

// Of the password encryptions, only the masking one has no successor; any other is carried over.
Next passwordEncryption(const RuleContext& context, const Step&) {
  constexpr const char* kEncryption = "zor-slapdPwEncryption";
  Text encryption;
  if (context.oldStore().getParamValueInfo(context.dn, kEncryption, encryption.out()) == 0 &&
      encryption.get() != nullptr && strcasecmp(encryption.get(), "IMASK") == 0) {
    dropValue(context, kEncryption, encryption.get(), kNotDropped, kEncryption);
  }
  return Next::step;
}

// The limit of skipped replication errors was an argument of the non-blocking replication plug-in and is a setting of
// its own now. Only the first plug-in that is non-blocking goes; a second one is carried over.
Next nonBlockingPlugin(const RuleContext& context, const Step&) {
  constexpr const char* kPlugin = "zor-slapdPlugin";
  constexpr const char* kReported = "zor-slapdErrorLog";  // intended: the failures of this step name this attribute
  constexpr std::string_view kLimit = "maxskippedreplerrors=";
  ValueList plugins(context.self);
  if (context.oldStore().getParamArrayValueInfo(context.dn, kPlugin, plugins.out(), plugins.countOut()) != 0) {
    return Next::step;
  }
  for (int i = 0; i < plugins.count(); ++i) {
    char* const plugin = plugins[i];
    if (plugin == nullptr || std::strstr(plugin, "nonblocking") == nullptr) continue;
    dropValue(context, kPlugin, plugin, kNotDropped, kReported);
    if (const char* const limit = std::strstr(plugin, kLimit.data()); limit != nullptr) {
      // Everything behind the equals sign, to the end of the value.
      const int rc = context.newStore().setValue(dn::kReplication, "zor-slapdReplMaxErrors", limit + kLimit.size());
      if (rc != 0) context.trace.debug(kNotDropped, kReported, rc);  // intended: the text of a deletion
    }
    break;
  }
  return Next::step;
}

// The file of schema changes made at run time belongs to the old server. Intended: a schema entry whose additions
// cannot be read, or that has none, is given up, and freeParamVals is not called for it.
Next modifiedSchema(const RuleContext& context, const Step&) {
  constexpr const char* kAdditions = "zor-slapdSchemaAdditions";
  ValueList additions(context.self);
  const int rc =
      context.oldStore().getParamArrayValueInfo(context.dn, kAdditions, additions.out(), additions.countOut());
  if (rc != 0) {
    context.trace.debug(kNotRead, kAdditions, rc);
    additions.endSilently();
    return Next::giveUpTheEntry;
  }
  for (int i = 0; i < additions.count(); ++i) {
    if (additions[i] == nullptr || std::strstr(additions[i], "V3.modifiedschema") == nullptr) continue;
    dropValue(context, kAdditions, additions[i], kNotDropped, kAdditions);
  }
  return Next::step;
}

constexpr Step kMainEntry[] = {
    drop("zor-slapdSupportedWebAdmVersion"),
    drop("zor-slapdErrorLog"),
    drop("zor-slapdTraceMessageLog"),
    drop("zor-slapdSortSrchAllowNonAdmin"),
    drop("zor-slapdPagedResAllowNonAdmin"),
    drop("zor-slapdPort"),
    {systemLogLevel},
    move("zor-slapdMaxPendingChangesDisplayed", dn::kReplication),
    {passwordEncryption},
};

constexpr Step kDirectoryBackendEntry[] = {
    drop("zor-slapdBulkloadErrors"),
    drop("zor-slapdCLIErrors"),
    {nonBlockingPlugin},
};

constexpr Step kAdminEntry[] = {
    drop("zor-slapdErrorLog"),
    drop("zor-slapdPort"),
    drop("zor-slapdSecurePort"),
};

constexpr Step kSslEntry[] = {
    drop("zor-slapdSecurePort"),
    drop("zor-slapdPort"),
};

constexpr Step kSchemaEntry[] = {{modifiedSchema}};

// At most one applies, the first that matches.
constexpr EntryRule kMergeRules[] = {
    {dn::kMain, kMainEntry},     {dn::kDirectoryBackend, kDirectoryBackendEntry},
    {dn::kAdmin, kAdminEntry},   {dn::kSsl, kSslEntry},
    {dn::kSchema, kSchemaEntry},
};

constexpr Drop dropReportedAsSet{kNotAddedAsSet};
constexpr Drop dropOnAdd{kNotDroppedOnAdd};

// What the old audit entry leaves behind on its way below the log management entry.
constexpr Step kOldAuditEntry[] = {
    dropReportedAsSet("zor-slapdLog"),  // intended: the failure of this one reads as that of a setValue
    dropOnAdd("zor-auditVersion"),
    dropOnAdd("zor-auditLog"),
};

// Of the old admin audit entry only this value reaches the new configuration.
void carryAdminAudit(const RuleContext& context) {
  constexpr const char* kSwitch = "zor-audit";
  Text value;
  if (context.oldStore().getParamValueInfo(dn::kOldAdminAudit, kSwitch, value.out()) != 0) return;
  const int rc = context.newStore().setValue(dn::kAdminAudit, kSwitch, value.get());
  if (rc != 0) context.trace.debug(kNotAddedAsSet, kSwitch, rc);
}

}  // namespace

// Intended: the exit record carries 1 for the admin audit entry and 0 for every transfer, whatever it returned.
int ConfigFile::addTo60(char* dn, ConfigFile* old) {
  TraceScope trace(kAddTo60);
  RuleContext context{*this, *old, trace};
  if (compareDns(dn, dn::kOldAdminAudit) != 0) {
    carryAdminAudit(context);
    return trace.result(1);
  }
  if (compareDns(dn, dn::kOldAudit) != 0) {
    runSteps(kOldAuditEntry, dn::kOldAudit, context);
    return trace.unreported(mergeChangeDnEntry(dn, const_cast<char*>(dn::kAudit), old));
  }
  return trace.unreported(addCfgEntry(dn, old));
}

int ConfigFile::mergeIn60(char* dn, ConfigFile* old) {
  TraceScope trace(kMergeIn60);
  if (applyRules(kMergeRules, dn, {*this, *old, trace}) == Next::giveUpTheEntry) return trace.result(0);
  return trace.result(mergeCfgEntry(dn, old)) != 0;
}

int ConfigFile::check60(ConfigFile*) {
  TraceScope trace(kCheck60);
  return trace.result(1);
}
