// RulesFixture.h -- the entries that the version rules know, and a pair of configurations to apply a rule to.

#ifndef CFGMIG_TESTS_LIBCFGMIG_RULESFIXTURE_H
#define CFGMIG_TESTS_LIBCFGMIG_RULESFIXTURE_H

#include <string>
#include <utility>
#include <vector>

#include "ConfigFileFixture.h"

namespace rules {

inline const std::string kMain = "CN=CONFIGURATION";
inline const std::string kFrontEnd = "CN=FRONT END,CN=CONFIGURATION";
inline const std::string kMaster = "CN=MASTER SERVER,CN=CONFIGURATION";
inline const std::string kOther = "CN=CONNECTION MANAGEMENT,CN=CONFIGURATION";

inline const std::string kSchema = "CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION";
inline const std::string kLdcfBackends = "CN=LDCF BACKENDS,CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION";
inline const std::string kSchemaDb = "CN=SCHEMADB,CN=LDCF BACKENDS,CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION";
inline const std::string kRdbmBackends = "CN=RDBM BACKENDS,CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION";
inline const std::string kDirectory = "CN=DIRECTORY,CN=RDBM BACKENDS,CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION";
inline const std::string kChangeLog = "CN=CHANGE LOG,CN=RDBM BACKENDS,CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION";

// The same entries as servers up to 5.1 write them.
inline const std::string kLegacySchema = "cn=ZOR Halvorn, CN=SCHEMAS,CN=CONFIGURATION";
inline const std::string kLegacyLdcfBackends = "cn=LDCF BACKENDS, cn=ZOR Halvorn, CN=SCHEMAS,CN=CONFIGURATION";
inline const std::string kLegacySchemaDb = "cn=SCHEMADB, cn=LDCF BACKENDS, cn=ZOR Halvorn, CN=SCHEMAS,CN=CONFIGURATION";
inline const std::string kLegacyRdbmBackends = "cn=RDBM BACKENDS, cn=ZOR Halvorn, CN=SCHEMAS,CN=CONFIGURATION";
inline const std::string kLegacyDirectory =
    "cn=DIRECTORY, cn=RDBM BACKENDS, cn=ZOR Halvorn, CN=SCHEMAS,CN=CONFIGURATION";
inline const std::string kLegacyChangeLog =
    "cn=CHANGE LOG, cn=RDBM BACKENDS, cn=ZOR Halvorn, CN=SCHEMAS,CN=CONFIGURATION";

class RulesFixture : public ConfigFileFixture {
 protected:
  void put(const std::string& dn, std::vector<fake::Attribute> attributes) {
    oldStore().put(dn, std::move(attributes));
  }

  using Rule = int (ConfigFile::*)(char* dn, ConfigFile* old);

  // Opens both configurations and applies the rule of the new one to `dn`.
  int apply(Rule rule, const std::string& dn) {
    open();
    return (newConfig().*rule)(modifiable(dn), &oldConfig());
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

  // The DNs that a DN was compared with, in order.
  Lines comparisons() const {
    Lines lines;
    for (const std::string& line : world.callsWithComparisons()) {
      if (line.starts_with("compareDns(")) {
        lines.push_back(line);
      }
    }
    return lines;
  }
  static Lines comparisonsOf(const std::string& dn, const Lines& constants) {
    Lines lines;
    for (const std::string& constant : constants) {
      lines.push_back("compareDns(" + dn + ", " + constant + ") = 0");
    }
    return lines;
  }

  static std::string call(const std::string& operation, const std::string& dn, const std::string& rest, int rc = 0) {
    return operation + "(" + dn + ", " + rest + ") = " + std::to_string(rc);
  }
};

}  // namespace rules

#endif  // CFGMIG_TESTS_LIBCFGMIG_RULESFIXTURE_H
