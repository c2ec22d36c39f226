#include "RandomConfiguration.h"

#include <algorithm>
#include <cctype>
#include <set>
#include <string_view>

namespace {

// The entries that rules speak of, and some that none does.
const char* const kDns[] = {
    "cn=Configuration",
    "CN=FRONT END,CN=CONFIGURATION",
    "cn=Master Server, cn=Configuration",
    "CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION",
    "cn=ZOR Halvorn, CN=SCHEMAS,CN=CONFIGURATION",
    "cn=Directory, cn=RDBM Backends, cn=ZOR Directory, cn=Schemas, cn=Configuration",
    "cn=DIRECTORY, cn=RDBM BACKENDS, cn=ZOR Halvorn, CN=SCHEMAS,CN=CONFIGURATION",
    "CN=CHANGE LOG,CN=RDBM BACKENDS,CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION",
    "cn=CHANGE LOG, cn=RDBM BACKENDS, cn=ZOR Halvorn, CN=SCHEMAS,CN=CONFIGURATION",
    "CN=SCHEMADB,CN=LDCF BACKENDS,CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION",
    "cn=SCHEMADB, cn=LDCF BACKENDS, cn=ZOR Halvorn, CN=SCHEMAS,CN=CONFIGURATION",
    "CN=LDCF BACKENDS,CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION",
    "cn=LDCF BACKENDS, cn=ZOR Halvorn, CN=SCHEMAS,CN=CONFIGURATION",
    "CN=RDBM BACKENDS,CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION",
    "cn=RDBM BACKENDS, cn=ZOR Halvorn, CN=SCHEMAS,CN=CONFIGURATION",
    "CN=ADMIN,CN=CONFIGURATION",
    "CN=SSL,CN=CONFIGURATION",
    "CN=AUDIT,CN=CONFIGURATION",
    "CN=AUDIT,CN=LOG MANAGEMENT,CN=CONFIGURATION",
    "CN=ADMIN AUDIT,CN=CONFIGURATION",
    "CN=ADMIN AUDIT,CN=LOG MANAGEMENT,CN=CONFIGURATION",
    "CN=REPLICATION,CN=CONFIGURATION",
    "CN=ZORSLAPD,CN=LOG MANAGEMENT,CN=CONFIGURATION",
    "CN=OTHER,CN=CONFIGURATION",
    "cn=Outside",
};
constexpr int kDnCount = static_cast<int>(std::size(kDns));

// For each entry some settings of its own, chosen more often than others.
struct Own {
  int dn;  // of kDns
  std::vector<const char*> settings;
};
const std::vector<Own>& ownSettings() {
  static const std::vector<const char*> main = {"zor-slapdSortSrchAllowNonAdmin",
                                                "zor-slapdPagedResAllowNonAdmin",
                                                "zor-slapdPagedResLmt",
                                                "zor-slapdIdleTimeOut",
                                                "zor-slapdSortKeyLimit",
                                                "zor-slapdErrorLog",
                                                "zor-slapdPagedSizeLmt",
                                                "zor-slapdPagedResAllowAnon",
                                                "zor-slapdSortSrchAllowAnon",
                                                "zor-slapdSupportedWebAdmVersion",
                                                "zor-slapdACLAccess",
                                                "zor-slapdPageSizeLmt",
                                                "zor-slapdTraceMessageLog",
                                                "zor-slapdPort",
                                                "zor-slapdSysLogLevel",
                                                "zor-slapdMaxPendingChangesDisplayed",
                                                "zor-slapdPwEncryption"};
  static const std::vector<const char*> database = {
      "zor-slapdDbName",         "zor-slapdDbInstance", "zor-slapdDbLocation",  "zor-slapdDbUserPW",
      "zor-slapdDbUserID",       "zor-slapdPlugin",     "zor-slapdPlugin",      "zor-slapdPlugin",
      "zor-slapdBulkloadErrors", "zor-slapdCLIErrors",  "zor-slapdPageSizeLmt", "zor-slapdSuffix",
      "zor-slapdChangeLogMaxAge"};
  static const std::vector<const char*> schema = {"zor-slapdIncludeSchema", "zor-slapdIncludeSchema",
                                                  "zor-slapdSchemaAdditions", "zor-slapdSchemaAdditions",
                                                  "zor-slapdSchemaCheck"};
  static const std::vector<const char*> master = {"zor-slapdMasterDN", "zor-slapdMasterPW", "zor-slapdPeerDN",
                                                  "zor-slapdPeerPW", "zor-slapdMasterReferral"};
  static const std::vector<const char*> ports = {"zor-slapdErrorLog", "zor-slapdPort", "zor-slapdSecurePort"};
  static const std::vector<const char*> auditing = {"zor-audit", "zor-slapdLog", "zor-auditVersion", "zor-auditLog"};
  static const std::vector<const char*> moved = {"zor-slapdMaxPendingChangesDisplayed", "zor-slapdReplMaxErrors",
                                                 "zor-slapdLogOptions"};
  static const std::vector<const char*> frontEnd = {"zor-slapdSetenv"};
  static const std::vector<Own> all = {{0, main},      {1, frontEnd},  {2, master},   {3, schema},    {4, schema},
                                       {5, database},  {6, database},  {7, database}, {8, database},  {9, database},
                                       {10, database}, {15, ports},    {16, ports},   {17, auditing}, {18, auditing},
                                       {19, auditing}, {20, auditing}, {21, moved},   {22, moved}};
  return all;
}

const char* const kAnySettings[] = {
    "zor-slapdVersion", "ZOR-SLAPDPLUGIN", "zor-slapdSuffix", "zor-slapdReferral", "zor-slapdCachedAttribute",
    "zor-limit",        "zor-Limit",       "zor-note",        "description",       "ZOR-SLAPDMIGRATIONINFO"};

// Values that any setting may have, and those that rules look for in settings of certain names.
using Values = std::vector<const char*>;
const Values kAnyValues = {"1", "2", "3", "a", "A", "0", "TOP", "top", "m", ""};
struct OfSetting {
  const char* namePart;
  Values values;
};
const OfSetting kValuesOf[] = {
    {"Plugin",
     {"preoperation libzorldapcl.so CLInit cn=changelog", "preoperation other.so CLInit", "database init", "clinit",
      "replication librepl.so ReplInit nonblocking maxskippedreplerrors=25", "x nonblocking", "maxskippedreplerrors=7",
      "nonblocking maxskippedreplerrors=", "nonblocking maxskippedreplerrors=4 x maxskippedreplerrors=5",
      "Nonblocking maxskippedreplerrors=4"}},
    {"Setenv",
     {"ACLCACHE=YES", "RDBM_FCACHE_SIZE=10", "RDBM_CACHE_BYPASS_LIMIT=100", "RDBM_CACHE=1", "LANG=C", "aclcache=no",
      "X_ACLCACHE=1"}},
    {"Schema",
     {"/old/etc/V3.modifiedschema", "V3.modifiedschema.bak", "/opt/V3.modified.at", "/old/etc/V3.user.at.bak",
      "/old/etc/V3.system.oc", "/old/etc/V3.zor.at", "/old/etc/V3.config.oc", "/old/etc/V3.LDAPSYNTAXES",
      "/old/etc/V3.matchingrules", "/opt/my.at", "C:\\my\\my.oc", "/opt/V3.config.at", "/opt/V3.user.oc",
      "/opt/V3.zor.oc", "/opt/V3.system.at", "/opt/V3.ldapsyntaxes", "my.at"}},
    {"LogLevel", {"m", "M", "mm", "h", "m"}},
    {"PwEncryption", {"imask", "IMASK", "IMasks", "sha"}},
};

const char* valueOf(std::string_view setting, int kind, int number) {
  const Values* values = &kAnyValues;
  for (const OfSetting& of : kValuesOf) {
    const std::string_view part = of.namePart;
    const auto found = std::search(setting.begin(), setting.end(), part.begin(), part.end(),
                                   [](unsigned char x, unsigned char y) { return std::tolower(x) == std::tolower(y); });
    if (found != setting.end() && kind != 0) values = &of.values;
  }
  return (*values)[static_cast<std::size_t>(number) % values->size()];
}

const char* const kClasses[] = {"top", "TOP", "zor-slapdTop", "zor-slapdReplication", "zor-slapdConfigEntry"};

struct Setting {
  int own;    // 0: one of those that any entry may have
  int name;   // of its list
  int kind;   // 0: a value that any setting may have
  int value;  // of its list
};
struct Entry {
  int dn;
  int naming;   // of kNamings
  int classes;  // how many; the first two kinds of number mean none
  std::vector<Setting> settings;
};

const char* const kNamings[] = {"Name", "NAME", "MASTER SERVER", nullptr};

const char* nameOf(const Entry& entry, const Setting& setting) {
  if (setting.own != 0) {
    for (const Own& own : ownSettings()) {
      if (own.dn == entry.dn) return own.settings[static_cast<std::size_t>(setting.name) % own.settings.size()];
    }
  }
  return kAnySettings[static_cast<std::size_t>(setting.name) % std::size(kAnySettings)];
}

std::string textOf(const std::vector<Entry>& entries) {
  std::string text;
  std::set<int> written;
  for (const Entry& entry : entries) {
    if (!written.insert(entry.dn).second) continue;
    text += std::string("dn: ") + kDns[entry.dn] + "\n";
    for (int i = 0; i < entry.classes; ++i) {
      text += std::string("objectClass: ") + kClasses[(entry.naming + i * 2) % static_cast<int>(std::size(kClasses))] +
              "\n";
    }
    const char* const naming = kNamings[entry.naming % static_cast<int>(std::size(kNamings))];
    if (naming != nullptr) text += std::string("cn: ") + naming + "\n";
    for (const Setting& setting : entry.settings) {
      const char* const name = nameOf(entry, setting);
      const std::string value = valueOf(name, setting.kind, setting.value);
      text += std::string(name) + ":" + (value.empty() ? "" : " ") + value + "\n";
    }
    text += "\n";
  }
  return text;
}

// Any number below `end`, also where the configurations are still small: rc::gen::inRange alone would give the first of
// a table and hardly ever the last.
rc::Gen<int> below(int end) { return rc::gen::resize(rc::kNominalSize, rc::gen::inRange(0, end)); }

rc::Gen<Setting> anySetting() {
  return rc::gen::build<Setting>(rc::gen::set(&Setting::own, below(5)), rc::gen::set(&Setting::name, below(20)),
                                 rc::gen::set(&Setting::kind, below(5)),
                                 rc::gen::set(&Setting::value, rc::gen::oneOf(below(3), below(60))));
}

rc::Gen<Entry> anyEntry() {
  const auto settings = rc::gen::container<std::vector<Setting>>(anySetting());
  return rc::gen::build<Entry>(
      rc::gen::set(&Entry::dn, below(kDnCount)),
      rc::gen::set(&Entry::naming, rc::gen::weightedOneOf<int>({{12, below(3)}, {1, rc::gen::just(3)}})),
      rc::gen::set(&Entry::classes, rc::gen::weightedOneOf<int>({{12, rc::gen::inRange(1, 4)}, {1, rc::gen::just(0)}})),
      rc::gen::set(&Entry::settings, rc::gen::scale(0.14, settings)));
}

}  // namespace

rc::Gen<std::string> randomConfiguration() {
  return rc::gen::map(rc::gen::container<std::vector<Entry>>(anyEntry()), [](std::vector<Entry> entries) {
    // A configuration has something below its root.
    entries.push_back({0, 0, 1, {}});
    return textOf(entries);
  });
}
