// Rules60Fixture.h -- the entries that only the 6.0 rules know, and a pair of configurations to apply them to.

#ifndef CFGMIG_TESTS_LIBCFGMIG_RULES60FIXTURE_H
#define CFGMIG_TESTS_LIBCFGMIG_RULES60FIXTURE_H

#include <string>

#include "RulesFixture.h"

namespace rules60 {

using namespace rules;

inline const std::string kAdmin = "CN=ADMIN,CN=CONFIGURATION";
inline const std::string kSsl = "CN=SSL,CN=CONFIGURATION";
inline const std::string kReplication = "CN=REPLICATION,CN=CONFIGURATION";
inline const std::string kLog = "CN=ZORSLAPD,CN=LOG MANAGEMENT,CN=CONFIGURATION";
inline const std::string kAudit = "CN=AUDIT,CN=CONFIGURATION";
inline const std::string kMovedAudit = "CN=AUDIT,CN=LOG MANAGEMENT,CN=CONFIGURATION";
inline const std::string kAdminAudit = "CN=ADMIN AUDIT,CN=CONFIGURATION";
inline const std::string kMovedAdminAudit = "CN=ADMIN AUDIT,CN=LOG MANAGEMENT,CN=CONFIGURATION";

class Rules60 : public RulesFixture {
 protected:
  void SetUp() override {
    for (const std::string* dn : {&kReplication, &kLog, &kMovedAudit, &kMovedAdminAudit}) {
      newStore().put(*dn, {{"cn", {"x"}}});
    }
  }

  int mergeIn(const std::string& dn) { return apply(&ConfigFile::mergeIn60, dn); }
  int addTo(const std::string& dn) { return apply(&ConfigFile::addTo60, dn); }

  std::string delFailed(const std::string& attribute, int rc) const {
    return messageOf(traced::kMergeIn60,
                     "mergeIn60: delValue for " + attribute + " has returned rc=" + std::to_string(rc) + "\n");
  }

  std::string setFailed(const std::string& attribute, int rc) const {
    return messageOf(traced::kMergeIn60,
                     "mergeIn60: setValue for " + attribute + " has returned rc=" + std::to_string(rc) + "\n");
  }
};

}  // namespace rules60

#endif  // CFGMIG_TESTS_LIBCFGMIG_RULES60FIXTURE_H
