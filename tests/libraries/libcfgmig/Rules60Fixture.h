// Rules60Fixture.h -- the entries that the 6.0 rules know, and a pair of configurations to apply them to.

#ifndef CFGMIG_TESTS_LIBCFGMIG_RULES60FIXTURE_H
#define CFGMIG_TESTS_LIBCFGMIG_RULES60FIXTURE_H

#include <string>
#include <utility>
#include <vector>

#include "ConfigFileFixture.h"

namespace rules60 {

inline const std::string kMain = "CN=CONFIGURATION";
inline const std::string kDirectory = "CN=DIRECTORY,CN=RDBM BACKENDS,CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION";
inline const std::string kAdmin = "CN=ADMIN,CN=CONFIGURATION";
inline const std::string kSsl = "CN=SSL,CN=CONFIGURATION";
inline const std::string kSchema = "CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION";
inline const std::string kReplication = "CN=REPLICATION,CN=CONFIGURATION";
inline const std::string kLog = "CN=ZORSLAPD,CN=LOG MANAGEMENT,CN=CONFIGURATION";
inline const std::string kAudit = "CN=AUDIT,CN=CONFIGURATION";
inline const std::string kMovedAudit = "CN=AUDIT,CN=LOG MANAGEMENT,CN=CONFIGURATION";
inline const std::string kAdminAudit = "CN=ADMIN AUDIT,CN=CONFIGURATION";
inline const std::string kMovedAdminAudit = "CN=ADMIN AUDIT,CN=LOG MANAGEMENT,CN=CONFIGURATION";
inline const std::string kOther = "CN=CONNECTION MANAGEMENT,CN=CONFIGURATION";

class Rules60 : public ConfigFileFixture {
 protected:
  void SetUp() override {
    for (const std::string* dn : {&kReplication, &kLog, &kMovedAudit, &kMovedAdminAudit}) {
      newStore().put(*dn, {{"cn", {"x"}}});
    }
  }

  void put(const std::string& dn, std::vector<fake::Attribute> attributes) {
    oldStore().put(dn, std::move(attributes));
  }

  int mergeIn(const std::string& dn) {
    open();
    return newConfig().mergeIn60(modifiable(dn), &oldConfig());
  }

  int addTo(const std::string& dn) {
    open();
    return newConfig().addTo60(modifiable(dn), &oldConfig());
  }

  // The calls of the rule itself: those before the transfer begins.
  Lines ruleCalls() const {
    Lines lines;
    for (const std::string& line : world.calls()) {
      if (line.starts_with("old.getFirstEntry(")) {
        break;
      }
      lines.push_back(line);
    }
    return lines;
  }

  // The messages of the rule itself.
  Lines ruleMessages(const fake::Traced& rule) const {
    Lines lines;
    for (const fake::TraceRecord& record : world.records()) {
      if (record.kind == fake::TraceRecord::Kind::debug && record.identifier == rule.identifier) {
        lines.push_back(text(record));
      }
    }
    return lines;
  }

  std::string delFailed(const std::string& attribute, int rc) const {
    return messageOf(traced::kMergeIn60,
                     "mergeIn60: delValue for " + attribute + " has returned rc=" + std::to_string(rc) + "\n");
  }

  std::string setFailed(const std::string& attribute, int rc) const {
    return messageOf(traced::kMergeIn60,
                     "mergeIn60: setValue for " + attribute + " has returned rc=" + std::to_string(rc) + "\n");
  }

  static std::string call(const std::string& operation, const std::string& dn, const std::string& rest, int rc = 0) {
    return operation + "(" + dn + ", " + rest + ") = " + std::to_string(rc);
  }
};

}  // namespace rules60

#endif  // CFGMIG_TESTS_LIBCFGMIG_RULES60FIXTURE_H
