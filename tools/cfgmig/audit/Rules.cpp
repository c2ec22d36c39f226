#include "audit/Rules.h"

#include <algorithm>

namespace tool::auditing {
namespace {

constexpr std::string_view kFrontEnd = "CN=FRONT END,CN=CONFIGURATION";
constexpr std::string_view kReplication = "CN=REPLICATION,CN=CONFIGURATION";
constexpr std::string_view kServerLog = "CN=ZORSLAPD,CN=LOG MANAGEMENT,CN=CONFIGURATION";

// Names of today, and the older names of the same entries.
constexpr std::string_view kSchemaDb = "CN=SCHEMADB,CN=LDCF BACKENDS,CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION";
constexpr std::string_view kLdcfBackends = "CN=LDCF BACKENDS,CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION";
constexpr std::string_view kRdbmBackends = "CN=RDBM BACKENDS,CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION";
constexpr std::string_view kDirectory = "CN=DIRECTORY,CN=RDBM BACKENDS,CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION";
constexpr std::string_view kChangeLog = "CN=CHANGE LOG,CN=RDBM BACKENDS,CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION";
constexpr std::string_view kLegacySchemaDb = "CN=SCHEMADB,CN=LDCF BACKENDS,CN=ZOR HALVORN,CN=SCHEMAS,CN=CONFIGURATION";
constexpr std::string_view kLegacySchemaEntry = "CN=ZOR HALVORN,CN=SCHEMAS,CN=CONFIGURATION";
constexpr std::string_view kLegacyLdcfBackends = "CN=LDCF BACKENDS,CN=ZOR HALVORN,CN=SCHEMAS,CN=CONFIGURATION";
constexpr std::string_view kLegacyRdbmBackends = "CN=RDBM BACKENDS,CN=ZOR HALVORN,CN=SCHEMAS,CN=CONFIGURATION";
constexpr std::string_view kLegacyDirectory =
    "CN=DIRECTORY,CN=RDBM BACKENDS,CN=ZOR HALVORN,CN=SCHEMAS,CN=CONFIGURATION";
constexpr std::string_view kLegacyChangeLog =
    "CN=CHANGE LOG,CN=RDBM BACKENDS,CN=ZOR HALVORN,CN=SCHEMAS,CN=CONFIGURATION";

// In plug-ins and settings.
constexpr std::string_view kChangeLogPlugin[] = {"CLInit"};
constexpr std::string_view kNonBlocking[] = {"nonblocking"};
constexpr std::string_view kCacheSettings[] = {"ACLCACHE", "RDBM_FCACHE_SIZE", "RDBM_CACHE_BYPASS_LIMIT"};
constexpr std::string_view kRunTimeSchema[] = {"V3.modifiedschema"};
constexpr std::string_view kMasked[] = {"IMASK"};

constexpr auto kFirstWith = Which::firstWith;
constexpr auto kEachWith = Which::eachWith;
using Goes = OldEntry::Goes;

// ---- 4.1 -----------------------------------------------------------------------------------------------------------

constexpr Setting kSchemaDb41[] = {{"zor-slapdPlugin", kFirstWith, kChangeLogPlugin}};
constexpr Setting kDirectory41[] = {
    {"zor-slapdDbName"},   {"zor-slapdDbInstance"}, {"zor-slapdDbLocation"},
    {"zor-slapdDbUserPW"}, {"zor-slapdDbUserID"},   {"zor-slapdPlugin", kFirstWith, kChangeLogPlugin},
};

constexpr OldEntry kOldEntries41[] = {{kLegacyChangeLog, Goes::nowhere}};
constexpr CommonEntry kCommonEntries41[] = {{kLegacySchemaDb, kSchemaDb41}, {kLegacyDirectory, kDirectory41}};

// ---- 5.1 -----------------------------------------------------------------------------------------------------------

constexpr Setting kMain51[] = {
    {"zor-slapdSortSrchAllowNonAdmin"}, {"zor-slapdPagedResAllowNonAdmin"}, {"zor-slapdPagedResLmt"},
    {"zor-slapdIdleTimeOut"},           {"zor-slapdSortKeyLimit"},          {"zor-slapdErrorLog"},
    {"zor-slapdPagedSizeLmt"},          {"zor-slapdPagedResAllowAnon"},     {"zor-slapdSortSrchAllowAnon"},
};
constexpr Setting kFrontEnd51[] = {{"zor-slapdSetenv", kFirstWith, kCacheSettings}};

constexpr OldEntry kOldEntries51[] = {
    {kMasterServer, Goes::rebuilt},
    {kLegacySchemaDb, Goes::elsewhere, kSchemaDb},
    {kLegacySchemaEntry, Goes::elsewhere, kSchemaEntry},
    {kLegacyLdcfBackends, Goes::elsewhere, kLdcfBackends},
    {kLegacyRdbmBackends, Goes::elsewhere, kRdbmBackends},
    {kLegacyDirectory, Goes::elsewhere, kDirectory},
    {kLegacyChangeLog, Goes::elsewhere, kChangeLog},
};
constexpr CommonEntry kCommonEntries51[] = {{kRoot, kMain51}, {kFrontEnd, kFrontEnd51}};

// ---- 5.2 -----------------------------------------------------------------------------------------------------------

constexpr Setting kMain52[] = {{"zor-slapdSupportedWebAdmVersion"}, {"zor-slapdACLAccess"}, {"zor-slapdPageSizeLmt"}};
constexpr Setting kDirectory52[] = {{"zor-slapdPageSizeLmt"}};

constexpr OldEntry kOldEntries52[] = {{kChangeLog, Goes::withSetting, {}, {}, "zor-slapdChangeLogMaxAge", "0"}};
constexpr CommonEntry kCommonEntries52[] = {{kRoot, kMain52}, {kDirectory, kDirectory52}};

// ---- 6.0 -----------------------------------------------------------------------------------------------------------

constexpr Setting kMain60[] = {
    {"zor-slapdSupportedWebAdmVersion"},
    {"zor-slapdErrorLog"},
    {"zor-slapdTraceMessageLog"},
    {"zor-slapdSortSrchAllowNonAdmin"},
    {"zor-slapdPagedResAllowNonAdmin"},
    {"zor-slapdPort"},
    {"zor-slapdSysLogLevel", Which::first, {}, kServerLog, "zor-slapdLogOptions", "m"},
    {"zor-slapdMaxPendingChangesDisplayed", Which::first, {}, kReplication, "zor-slapdMaxPendingChangesDisplayed"},
    {"zor-slapdPwEncryption", Which::firstEqual, kMasked},
};
constexpr Setting kDirectory60[] = {
    {"zor-slapdBulkloadErrors"},
    {"zor-slapdCLIErrors"},
    {"zor-slapdPlugin", kFirstWith, kNonBlocking, kReplication, "zor-slapdReplMaxErrors", {}, "maxskippedreplerrors="},
};
constexpr Setting kAdmin60[] = {{"zor-slapdErrorLog"}, {"zor-slapdPort"}, {"zor-slapdSecurePort"}};
constexpr Setting kSsl60[] = {{"zor-slapdSecurePort"}, {"zor-slapdPort"}};
constexpr Setting kSchemaEntry60[] = {
    {kIncludeList, kEachWith, kServersOwnFiles},
    {"zor-slapdSchemaAdditions", kEachWith, kRunTimeSchema},
};
constexpr Setting kAudit60[] = {{"zor-slapdLog"}, {"zor-auditVersion"}, {"zor-auditLog"}};

constexpr OldEntry kOldEntries60[] = {
    {"CN=ADMIN AUDIT,CN=CONFIGURATION",
     Goes::onlySetting,
     "CN=ADMIN AUDIT,CN=LOG MANAGEMENT,CN=CONFIGURATION",
     {},
     "zor-audit"},
    {"CN=AUDIT,CN=CONFIGURATION", Goes::elsewhere, "CN=AUDIT,CN=LOG MANAGEMENT,CN=CONFIGURATION", kAudit60},
};
constexpr CommonEntry kCommonEntries60[] = {
    {kRoot, kMain60},
    {kDirectory, kDirectory60},
    {"CN=ADMIN,CN=CONFIGURATION", kAdmin60},
    {"CN=SSL,CN=CONFIGURATION", kSsl60},
    {kSchemaEntry, kSchemaEntry60, "zor-slapdSchemaAdditions"},
};

constexpr SourceRules kRules[] = {
    {"4.1", kOldEntries41, kCommonEntries41, false},
    {"5.1", kOldEntries51, kCommonEntries51, true},
    {"5.2", kOldEntries52, kCommonEntries52, false},
    {"6.0", kOldEntries60, kCommonEntries60, false},
};

}  // namespace

const SourceRules* rulesFor(std::string_view version) {
  for (const SourceRules& rules : kRules) {
    if (rules.version == version) return &rules;
  }
  return nullptr;
}

std::vector<std::string_view> entriesOfRules() {
  std::vector<std::string_view> dns{kRoot, kSchemaEntry, kMasterServer};
  const auto add = [&](std::string_view dn) {
    if (!dn.empty()) dns.push_back(dn);
  };
  const auto addTargets = [&](std::span<const Setting> settings) {
    for (const Setting& setting : settings) add(setting.toDn);
  };
  for (const SourceRules& rules : kRules) {
    for (const OldEntry& entry : rules.oldEntries) {
      add(entry.dn);
      add(entry.toDn);
      addTargets(entry.settings);
    }
    for (const CommonEntry& entry : rules.commonEntries) {
      add(entry.dn);
      addTargets(entry.settings);
    }
  }
  return dns;
}

bool containsOneOf(std::string_view text, Words words) {
  return std::any_of(words.begin(), words.end(),
                     [&](std::string_view word) { return text.find(word) != std::string_view::npos; });
}

}  // namespace tool::auditing
