// Random configurations, merged by the library and by the oracle.

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>

#include "ConfigFile.h"
#include "MergeOracle.h"
#include "World.h"

namespace {

using fake::Attribute;

// What the rules of one version look at, and something besides.
struct Vocabulary {
  std::string version;
  std::vector<std::string> dns;
  std::vector<std::string> names;
  std::vector<std::string> values;
};

const std::vector<std::string> kCommonNames = {
    "zor-slapdVersion", "zor-slapdPort",     "zor-slapdErrorLog", "zor-slapdPlugin",          "zor-slapdSetenv",
    "zor-slapdSuffix",  "zor-slapdReferral", "description",       "zor-slapdCachedAttribute", "zor-slapdPagedResLmt"};

const std::vector<std::string> kLegacyDns = {"cn=ZOR Halvorn, CN=SCHEMAS,CN=CONFIGURATION",
                                             "cn=LDCF BACKENDS, cn=ZOR Halvorn, CN=SCHEMAS,CN=CONFIGURATION",
                                             "cn=RDBM BACKENDS, cn=ZOR Halvorn, CN=SCHEMAS,CN=CONFIGURATION",
                                             "cn=SCHEMADB, cn=LDCF BACKENDS, cn=ZOR Halvorn, CN=SCHEMAS,"
                                             "CN=CONFIGURATION",
                                             "cn=DIRECTORY, cn=RDBM BACKENDS, cn=ZOR Halvorn, CN=SCHEMAS,"
                                             "CN=CONFIGURATION",
                                             "cn=CHANGE LOG, cn=RDBM BACKENDS, cn=ZOR Halvorn, CN=SCHEMAS,"
                                             "CN=CONFIGURATION"};

const std::vector<std::string> kCurrentDns = {
    "CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION",
    "CN=LDCF BACKENDS,CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION",
    "CN=RDBM BACKENDS,CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION",
    "CN=SCHEMADB,CN=LDCF BACKENDS,CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION",
    "CN=DIRECTORY,CN=RDBM BACKENDS,CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION",
    "CN=CHANGE LOG,CN=RDBM BACKENDS,CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION"};

const std::vector<std::string> kCommonDns = {"CN=CONFIGURATION", "CN=FRONT END,CN=CONFIGURATION",
                                             "CN=MASTER SERVER,CN=CONFIGURATION", "CN=ONE,CN=CONFIGURATION",
                                             "CN=TWO,CN=ONE,CN=CONFIGURATION"};

std::vector<std::string> joined(std::initializer_list<std::vector<std::string>> lists) {
  std::vector<std::string> result;
  for (const auto& list : lists) {
    result.insert(result.end(), list.begin(), list.end());
  }
  return result;
}

const Vocabulary k41 = {"4.1",
                        joined({kCommonDns, kLegacyDns, {kCurrentDns[4]}}),
                        joined({kCommonNames,
                                {"zor-slapdDbName", "zor-slapdDbInstance", "zor-slapdDbLocation", "zor-slapdDbUserPW",
                                 "zor-slapdDbUserID"}}),
                        {"1", "2", "preoperation CLInit", "a CLInit b", "clinit", "database c"}};

const Vocabulary k51 = {
    "5.1",
    joined({kCommonDns, kLegacyDns, kCurrentDns}),
    joined({kCommonNames,
            {"zor-slapdSortSrchAllowNonAdmin", "zor-slapdPagedResAllowNonAdmin", "zor-slapdIdleTimeOut",
             "zor-slapdSortKeyLimit", "zor-slapdPagedSizeLmt", "zor-slapdPagedResAllowAnon",
             "zor-slapdSortSrchAllowAnon", "zor-slapdMasterDN", "zor-slapdMasterPW", "zor-slapdPeerDN",
             "zor-slapdPeerPW", "zor-slapdMasterReferral", "ZOR-SLAPDMIGRATIONINFO"}}),
    {"1", "2", "ACLCACHE=YES", "aclcache=NO", "RDBM_FCACHE_SIZE=1", "RDBM_CACHE_BYPASS_LIMIT=2", "a CLInit"}};

const Vocabulary k52 = {"5.2",
                        joined({kCommonDns, kCurrentDns, {kLegacyDns[5]}}),
                        joined({kCommonNames,
                                {"zor-slapdSupportedWebAdmVersion", "zor-slapdACLAccess", "zor-slapdPageSizeLmt",
                                 "zor-slapdPagedSizeLmt", "zor-slapdChangeLogMaxAge"}}),
                        {"0", "1", "2", "ACLCACHE=YES", "a CLInit"}};

const Vocabulary k60 = {
    "6.0",
    {"CN=CONFIGURATION", "CN=DIRECTORY,CN=RDBM BACKENDS,CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION",
     "CN=ADMIN,CN=CONFIGURATION", "CN=SSL,CN=CONFIGURATION", "CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION",
     "CN=AUDIT,CN=CONFIGURATION", "CN=ADMIN AUDIT,CN=CONFIGURATION", "CN=AUDIT,CN=LOG MANAGEMENT,CN=CONFIGURATION",
     "CN=ADMIN AUDIT,CN=LOG MANAGEMENT,CN=CONFIGURATION", "CN=ZORSLAPD,CN=LOG MANAGEMENT,CN=CONFIGURATION",
     "CN=REPLICATION,CN=CONFIGURATION", "CN=ONE,CN=CONFIGURATION", "CN=TWO,CN=ONE,CN=CONFIGURATION"},
    {"zor-slapdSupportedWebAdmVersion",
     "zor-slapdErrorLog",
     "zor-slapdTraceMessageLog",
     "zor-slapdSortSrchAllowNonAdmin",
     "zor-slapdPagedResAllowNonAdmin",
     "zor-slapdPort",
     "zor-slapdSecurePort",
     "zor-slapdSysLogLevel",
     "zor-slapdMaxPendingChangesDisplayed",
     "zor-slapdPwEncryption",
     "zor-slapdBulkloadErrors",
     "zor-slapdCLIErrors",
     "zor-slapdPlugin",
     "zor-slapdSchemaAdditions",
     "zor-slapdIncludeSchema",
     "zor-slapdVersion",
     "zor-slapdLog",
     "zor-auditVersion",
     "zor-auditLog",
     "zor-audit",
     "zor-slapdLogOptions",
     "zor-slapdReplMaxErrors",
     "zor-slapdSuffix",
     "zor-slapdSetenv",
     "zor-slapdReferral",
     "zor-slapdCachedAttribute",
     "description"},
    {"m", "M", "h", "IMASK", "imask", "sha", "1", "2", "a nonblocking b", "nonblocking maxskippedreplerrors=5",
     "maxskippedreplerrors=6 x nonblocking", "maxskippedreplerrors=7", "/etc/V3.modifiedschema", "V3.user.at",
     "my.oc"}};

rc::Gen<std::string> anyLetterCase(const std::string& name) {
  return rc::gen::map(rc::gen::inRange(0, 4), [name](int variant) {
    std::string result = name;
    for (char& c : result) {
      if (variant == 1 && c >= 'a' && c <= 'z') {
        c = static_cast<char>(c - 'a' + 'A');
      } else if (variant == 2 && c >= 'A' && c <= 'Z') {
        c = static_cast<char>(c - 'A' + 'a');
      }
    }
    return result;
  });
}

// Some different values, in random order.
std::vector<std::string> someValues(const Vocabulary& words) {
  std::vector<std::string> values;
  for (int n = *rc::gen::weightedElement<int>({{6, 1}, {3, 2}, {2, 4}}); n > 0; --n) {
    const std::string value = *rc::gen::elementOf(words.values);
    if (std::find(values.begin(), values.end(), value) == values.end()) {
      values.push_back(value);
    }
  }
  return values;
}

std::vector<Attribute> someAttributes(const Vocabulary& words) {
  std::vector<Attribute> attributes;
  const auto add = [&](const std::string& name, std::vector<std::string> values) {
    const auto at = attributes.begin() + *rc::gen::inRange<std::ptrdiff_t>(0, std::ssize(attributes) + 1);
    attributes.insert(at, {*anyLetterCase(name), std::move(values)});
  };
  for (const std::string& name : words.names) {
    if (*rc::gen::inRange(0, 3) == 0) {
      add(name, someValues(words));
    }
  }
  if (*rc::gen::inRange(0, 12) != 0) {
    add("objectClass", *rc::gen::elementOf(std::vector<std::vector<std::string>>{
                           {"A"}, {"A", "B"}, {"C", "B", "A"}, {"A", "B", "C", "D"}}));
  }
  if (*rc::gen::inRange(0, 12) != 0) {
    add("cn", {*rc::gen::element<std::string>("x", "X", "y")});
  }
  return attributes;
}

void fill(fake::Content& content, const Vocabulary& words) {
  std::vector<std::string> dns = words.dns;
  // A random order, drawn so that a failing case shrinks towards the plain one.
  for (std::size_t i = dns.size() - 1; i > 0; --i) {
    std::swap(dns[i], dns[i - *rc::gen::inRange<std::size_t>(0, i + 1)]);
  }
  for (const std::string& dn : dns) {
    if (*rc::gen::inRange(0, 4) != 0) {
      content.put(*anyLetterCase(dn), someAttributes(words));
    }
  }
}

// A pair of configurations with their oracles.
struct Pair {
  explicit Pair(const Vocabulary& words) {
    fill(world.store("old"), words);
    fill(world.store("new"), words);
    from = oracle::configurationOf(world.store("old"));
    to = oracle::configurationOf(world.store("new"));
    world.setEvents(0);
    RC_ASSERT(oldConfig.getDns() == 0);
    RC_ASSERT(newConfig.getDns() == 0);
  }

  void check() {
    RC_ASSERT(oracle::sameSettings(oracle::configurationOf(world.store("old")), from));
    RC_ASSERT(oracle::sameSettings(oracle::configurationOf(world.store("new")), to));
    RC_ASSERT(world.resources().violations().empty());
  }

  fake::World world;
  ConfigFile oldConfig{"old", nullptr};
  ConfigFile newConfig{"new", nullptr};
  oracle::Configuration from;
  oracle::Configuration to;
};

// Merges once and compares; a second merge works on what the first one left, inventories afresh.
void mergeTwice(const Vocabulary& words) {
  Pair pair(words);
  oracle::merge(words.version, pair.from, pair.to);
  RC_ASSERT(pair.newConfig.mergeConfigFiles(&pair.oldConfig, words.version.c_str()) == 1);
  pair.check();
  oracle::merge(words.version, pair.from, pair.to);
  ConfigFile oldAgain("old", nullptr);
  ConfigFile newAgain("new", nullptr);
  RC_ASSERT(oldAgain.getDns() == 0);
  RC_ASSERT(newAgain.getDns() == 0);
  RC_ASSERT(newAgain.mergeConfigFiles(&oldAgain, words.version.c_str()) == 1);
  pair.check();
}

RC_GTEST_PROP(MergeProperty, AMergeAndAnotherFrom41LeaveWhatTheOracleSays, ()) { mergeTwice(k41); }
RC_GTEST_PROP(MergeProperty, AMergeAndAnotherFrom51LeaveWhatTheOracleSays, ()) { mergeTwice(k51); }
RC_GTEST_PROP(MergeProperty, AMergeAndAnotherFrom52LeaveWhatTheOracleSays, ()) { mergeTwice(k52); }
RC_GTEST_PROP(MergeProperty, AMergeAndAnotherFrom60LeaveWhatTheOracleSays, ()) { mergeTwice(k60); }

RC_GTEST_PROP(MergeProperty, EachTransferLeavesAndAnswersWhatTheOracleSays, ()) {
  Pair pair(k60);
  for (int n = 0; n < 6; ++n) {
    std::string dn = *rc::gen::elementOf(k60.dns);
    std::string newDn = *rc::gen::elementOf(k60.dns);
    switch (*rc::gen::inRange(0, 3)) {
      case 0:
        // Entries that exist already are not added in a merge.
        if (pair.to.entries.contains(dn) || !pair.from.entries.contains(dn)) {
          break;
        }
        RC_ASSERT(pair.newConfig.addCfgEntry(dn.data(), &pair.oldConfig) ==
                  (oracle::addEntry(dn, pair.from, pair.to) ? 1 : 0));
        break;
      case 1:
        RC_ASSERT(pair.newConfig.mergeCfgEntry(dn.data(), &pair.oldConfig) ==
                  (oracle::mergeEntry(dn, pair.from, pair.to) ? 1 : 0));
        break;
      default:
        RC_ASSERT(pair.newConfig.mergeChangeDnEntry(dn.data(), newDn.data(), &pair.oldConfig) ==
                  (oracle::moveEntry(dn, newDn, pair.from, pair.to) ? 1 : 0));
        break;
    }
  }
  pair.check();
}

}  // namespace
