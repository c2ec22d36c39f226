// Random configurations, merged by the library and by the oracle.

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>

#include "ConfigFile.h"
#include "MergeOracle.h"
#include "World.h"

namespace {

using fake::Attribute;

const std::vector<std::string> kDns = {"CN=CONFIGURATION",
                                       "CN=DIRECTORY,CN=RDBM BACKENDS,CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION",
                                       "CN=ADMIN,CN=CONFIGURATION",
                                       "CN=SSL,CN=CONFIGURATION",
                                       "CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION",
                                       "CN=AUDIT,CN=CONFIGURATION",
                                       "CN=ADMIN AUDIT,CN=CONFIGURATION",
                                       "CN=AUDIT,CN=LOG MANAGEMENT,CN=CONFIGURATION",
                                       "CN=ADMIN AUDIT,CN=LOG MANAGEMENT,CN=CONFIGURATION",
                                       "CN=ZORSLAPD,CN=LOG MANAGEMENT,CN=CONFIGURATION",
                                       "CN=REPLICATION,CN=CONFIGURATION",
                                       "CN=ONE,CN=CONFIGURATION",
                                       "CN=TWO,CN=ONE,CN=CONFIGURATION"};

const std::vector<std::string> kNames = {"zor-slapdSupportedWebAdmVersion",
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
                                         "description"};

const std::vector<std::string> kValues = {"m",
                                          "M",
                                          "h",
                                          "IMASK",
                                          "imask",
                                          "sha",
                                          "1",
                                          "2",
                                          "a nonblocking b",
                                          "nonblocking maxskippedreplerrors=5",
                                          "maxskippedreplerrors=6 x nonblocking",
                                          "maxskippedreplerrors=7",
                                          "/etc/V3.modifiedschema",
                                          "V3.user.at",
                                          "my.oc"};

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
std::vector<std::string> someValues() {
  std::vector<std::string> values;
  for (int n = *rc::gen::weightedElement<int>({{6, 1}, {3, 2}, {2, 4}}); n > 0; --n) {
    const std::string value = *rc::gen::elementOf(kValues);
    if (std::find(values.begin(), values.end(), value) == values.end()) {
      values.push_back(value);
    }
  }
  return values;
}

std::vector<Attribute> someAttributes() {
  std::vector<Attribute> attributes;
  const auto add = [&](const std::string& name, std::vector<std::string> values) {
    const auto at = attributes.begin() + *rc::gen::inRange<std::ptrdiff_t>(0, std::ssize(attributes) + 1);
    attributes.insert(at, {*anyLetterCase(name), std::move(values)});
  };
  for (const std::string& name : kNames) {
    if (*rc::gen::inRange(0, 3) == 0) {
      add(name, someValues());
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

void fill(fake::Content& content) {
  std::vector<std::string> dns = kDns;
  // A random order, drawn so that a failing case shrinks towards the plain one.
  for (std::size_t i = dns.size() - 1; i > 0; --i) {
    std::swap(dns[i], dns[i - *rc::gen::inRange<std::size_t>(0, i + 1)]);
  }
  for (const std::string& dn : dns) {
    if (*rc::gen::inRange(0, 4) != 0) {
      content.put(*anyLetterCase(dn), someAttributes());
    }
  }
}

// A pair of configurations with their oracles.
struct Pair {
  Pair() {
    fill(world.store("old"));
    fill(world.store("new"));
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

RC_GTEST_PROP(MergeProperty, AWholeMergeLeavesWhatTheOracleSays, ()) {
  Pair pair;
  oracle::merge60(pair.from, pair.to);
  RC_ASSERT(pair.newConfig.mergeConfigFiles(&pair.oldConfig, "6.0") == 1);
  pair.check();
}

RC_GTEST_PROP(MergeProperty, EachTransferLeavesAndAnswersWhatTheOracleSays, ()) {
  Pair pair;
  for (int n = 0; n < 6; ++n) {
    std::string dn = *rc::gen::elementOf(kDns);
    std::string newDn = *rc::gen::elementOf(kDns);
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

RC_GTEST_PROP(MergeProperty, ASecondMergeOfWhatTheFirstLeftDoesSoToo, ()) {
  // The second merge works on what the first one left, inventories afresh; the oracle does the same.
  Pair pair;
  oracle::merge60(pair.from, pair.to);
  oracle::merge60(pair.from, pair.to);
  RC_ASSERT(pair.newConfig.mergeConfigFiles(&pair.oldConfig, "6.0") == 1);
  ConfigFile oldAgain("old", nullptr);
  ConfigFile newAgain("new", nullptr);
  RC_ASSERT(oldAgain.getDns() == 0);
  RC_ASSERT(newAgain.getDns() == 0);
  RC_ASSERT(newAgain.mergeConfigFiles(&oldAgain, "6.0") == 1);
  pair.check();
}

}  // namespace
