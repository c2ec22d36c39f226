// The examples hold every setting that a rule for their source version names, in the entry for which it names it, and
// what the rules write to is there.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ExampleFiles.h"

using namespace examples;
using testing::Contains;
using testing::Key;
using testing::Not;

namespace {

constexpr const char* kMain = "cn=configuration";
constexpr const char* kDirectory = "cn=directory,cn=rdbm backends,cn=zor directory,cn=schemas,cn=configuration";
constexpr const char* kLegacyDirectory = "cn=directory,cn=rdbm backends,cn=zor halvorn,cn=schemas,cn=configuration";
constexpr const char* kLegacySchemaDb = "cn=schemadb,cn=ldcf backends,cn=zor halvorn,cn=schemas,cn=configuration";
constexpr const char* kFrontEnd = "cn=front end,cn=configuration";
constexpr const char* kReplica = "cn=master server,cn=configuration";
constexpr const char* kAdmin = "cn=admin,cn=configuration";
constexpr const char* kSsl = "cn=ssl,cn=configuration";
constexpr const char* kSchema = "cn=zor directory,cn=schemas,cn=configuration";
constexpr const char* kAudit = "cn=audit,cn=configuration";
constexpr const char* kAdminAudit = "cn=admin audit,cn=configuration";
constexpr const char* kReplication = "cn=replication,cn=configuration";
constexpr const char* kNewAudit = "cn=audit,cn=log management,cn=configuration";

struct Setting {
  const char* version;
  const char* dn;
  const char* attribute;
};

// Settings of the old configuration that a rule takes out, moves, or looks into.
constexpr Setting kRead[] = {
    // what a 4.1 server must not bring along
    {"4.1", kLegacyDirectory, "zor-slapdDbName"},
    {"4.1", kLegacyDirectory, "zor-slapdDbInstance"},
    {"4.1", kLegacyDirectory, "zor-slapdDbLocation"},
    {"4.1", kLegacyDirectory, "zor-slapdDbUserPW"},
    {"4.1", kLegacyDirectory, "zor-slapdDbUserID"},
    {"4.1", kLegacyDirectory, "zor-slapdPlugin"},
    {"4.1", kLegacySchemaDb, "zor-slapdPlugin"},
    // a 5.1 server
    {"5.1", kMain, "zor-slapdSortSrchAllowNonAdmin"},
    {"5.1", kMain, "zor-slapdPagedResAllowNonAdmin"},
    {"5.1", kMain, "zor-slapdPagedResLmt"},
    {"5.1", kMain, "zor-slapdIdleTimeOut"},
    {"5.1", kMain, "zor-slapdSortKeyLimit"},
    {"5.1", kMain, "zor-slapdErrorLog"},
    {"5.1", kMain, "zor-slapdPagedSizeLmt"},
    {"5.1", kMain, "zor-slapdPagedResAllowAnon"},
    {"5.1", kMain, "zor-slapdSortSrchAllowAnon"},
    {"5.1", kFrontEnd, "zor-slapdSetenv"},
    {"5.1", kReplica, "zor-slapdMasterDN"},
    {"5.1", kReplica, "zor-slapdMasterPW"},
    {"5.1", kReplica, "zor-slapdMasterReferral"},
    // a 5.2 server
    {"5.2", kMain, "zor-slapdSupportedWebAdmVersion"},
    {"5.2", kMain, "zor-slapdACLAccess"},
    {"5.2", kMain, "zor-slapdPageSizeLmt"},
    {"5.2", kDirectory, "zor-slapdPageSizeLmt"},
    // a 6.0 server
    {"6.0", kMain, "zor-slapdSupportedWebAdmVersion"},
    {"6.0", kMain, "zor-slapdErrorLog"},
    {"6.0", kMain, "zor-slapdTraceMessageLog"},
    {"6.0", kMain, "zor-slapdSortSrchAllowNonAdmin"},
    {"6.0", kMain, "zor-slapdPagedResAllowNonAdmin"},
    {"6.0", kMain, "zor-slapdPort"},
    {"6.0", kMain, "zor-slapdSysLogLevel"},
    {"6.0", kMain, "zor-slapdMaxPendingChangesDisplayed"},
    {"6.0", kMain, "zor-slapdPwEncryption"},
    {"6.0", kDirectory, "zor-slapdBulkloadErrors"},
    {"6.0", kDirectory, "zor-slapdCLIErrors"},
    {"6.0", kDirectory, "zor-slapdPlugin"},
    {"6.0", kAdmin, "zor-slapdErrorLog"},
    {"6.0", kAdmin, "zor-slapdPort"},
    {"6.0", kAdmin, "zor-slapdSecurePort"},
    {"6.0", kSsl, "zor-slapdSecurePort"},
    {"6.0", kSsl, "zor-slapdPort"},
    {"6.0", kSchema, "zor-slapdSchemaAdditions"},
    {"6.0", kSchema, "zor-slapdIncludeSchema"},
    {"6.0", kAudit, "zor-slapdLog"},
    {"6.0", kAudit, "zor-auditVersion"},
    {"6.0", kAudit, "zor-auditLog"},
    {"6.0", kAudit, "zor-audit"},
    {"6.0", kAdminAudit, "zor-audit"},
    // what no merge carries, or not to another DN
    {"6.0", kMain, "OBJECTCLASS"},
    {"6.0", kMain, "zor-slapdVersion"},
    {"6.0", kAudit, "CN"},
};

// Settings of the new configuration that a rule writes.
constexpr Setting kWritten[] = {
    {"6.0", kReplication, "zor-slapdMaxPendingChangesDisplayed"},
    {"6.0", "cn=zorslapd,cn=log management,cn=configuration", "zor-slapdLogOptions"},
    {"6.0", kNewAudit, "zor-audit"},
    {"6.0", "cn=admin audit,cn=log management,cn=configuration", "zor-audit"},
};

// Entries of an old configuration whose values go to another DN of the new one.
struct Moved {
  const char* version;
  const char* oldDn;
  const char* newDn;
};
constexpr Moved kMoved[] = {
    {"5.1", "cn=zor halvorn,cn=schemas,cn=configuration", kSchema},
    {"5.1", "cn=ldcf backends,cn=zor halvorn,cn=schemas,cn=configuration",
     "cn=ldcf backends,cn=zor directory,cn=schemas,cn=configuration"},
    {"5.1", kLegacySchemaDb, "cn=schemadb,cn=ldcf backends,cn=zor directory,cn=schemas,cn=configuration"},
    {"5.1", "cn=rdbm backends,cn=zor halvorn,cn=schemas,cn=configuration",
     "cn=rdbm backends,cn=zor directory,cn=schemas,cn=configuration"},
    {"5.1", kLegacyDirectory, kDirectory},
    {"5.1", "cn=change log,cn=rdbm backends,cn=zor halvorn,cn=schemas,cn=configuration",
     "cn=change log,cn=rdbm backends,cn=zor directory,cn=schemas,cn=configuration"},
    {"6.0", kAudit, kNewAudit},
};

Shape shapeOfFile(const std::string& version, const char* file) { return shapeOf(contentOf(folder(version) / file)); }

TEST(RuleSettings, AreAllInTheOldConfiguration) {
  for (const Setting& setting : kRead) {
    Shape old = shapeOfFile(setting.version, "old.ldif");
    EXPECT_THAT(old.namesByEntry[setting.dn], Contains(lowerCase(setting.attribute)))
        << setting.version << ' ' << setting.dn;
  }
}

TEST(RuleSettings, AreInTheNewConfigurationWhereARuleWritesThem) {
  for (const Setting& setting : kWritten) {
    Shape fresh = shapeOfFile(setting.version, "new.ldif");
    EXPECT_THAT(fresh.namesByEntry[setting.dn], Contains(lowerCase(setting.attribute))) << setting.dn;
  }
}

// The one that is missing shows a setting that is created.
TEST(RuleSettings, OfSkippedReplicationErrorsIsMissingInTheNewConfiguration) {
  Shape fresh = shapeOfFile("6.0", "new.ldif");
  ASSERT_THAT(fresh.namesByEntry, Contains(Key(kReplication)));
  EXPECT_THAT(fresh.namesByEntry[kReplication], Not(Contains("zor-slapdreplmaxerrors")));
}

// A transfer to another DN ends at the first setting that the entry there lacks.
TEST(RuleSettings, OfMovedEntriesAreAllInTheEntryOfTheNewDn) {
  const std::set<std::string> notCarried = {"zor-slapdlog", "zor-auditversion", "zor-auditlog"};
  for (const Moved& moved : kMoved) {
    Shape old = shapeOfFile(moved.version, "old.ldif");
    Shape fresh = shapeOfFile(moved.version, "new.ldif");
    ASSERT_THAT(old.namesByEntry, Contains(Key(moved.oldDn)));
    ASSERT_THAT(old.namesByEntry, Not(Contains(Key(moved.newDn))));
    ASSERT_THAT(fresh.namesByEntry, Contains(Key(moved.newDn)));
    ASSERT_THAT(fresh.namesByEntry, Not(Contains(Key(moved.oldDn))));
    for (const std::string& name : old.namesByEntry[moved.oldDn]) {
      if (notCarried.contains(name)) continue;
      EXPECT_THAT(fresh.namesByEntry[moved.newDn], Contains(name)) << moved.newDn;
    }
  }
}

}  // namespace
