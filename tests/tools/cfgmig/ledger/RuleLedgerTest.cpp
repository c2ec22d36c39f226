// RuleLedgerTest.cpp -- the fates of values that rules drop, move and add, and of entries that they build anew.

#include <gmock/gmock.h>

#include "Migrated.h"

namespace {

using testing::HasSubstr;
using testing::IsEmpty;

TEST(RuleLedger, SaysDroppedAlsoWhereTheNewServerHasAnEqualValue) {
  const Migrated merged("6.0",
                        "dn: CN=CONFIGURATION\nobjectClass: top\ncn: Configuration\n"
                        "zor-slapdPort: 389\n"
                        "zor-slapdPort: 390\n",
                        "dn: CN=CONFIGURATION\nobjectClass: top\ncn: Configuration\n"
                        "zor-slapdPort: 389\n");
  EXPECT_EQ(merged.fateAt(4), "dropped by mergeIn60");
  EXPECT_EQ(merged.whyAt(4), "the ports are the new server's");
  EXPECT_EQ(merged.fateAt(5), "carried 4 by mergeCfgEntry") << "the second value is the first one now";
}

TEST(RuleLedger, FollowsAValueToAnotherSetting) {
  const Migrated merged("6.0",
                        "dn: CN=CONFIGURATION\nobjectClass: top\ncn: Configuration\n"
                        "zor-slapdSysLogLevel: h\n",
                        std::string(kMain) +
                            "dn: CN=ZORSLAPD,CN=LOG MANAGEMENT,CN=CONFIGURATION\n"
                            "objectClass: top\n"
                            "cn: zorslapd\n"
                            "zor-slapdLogOptions: m\n");
  EXPECT_EQ(merged.fateAt(4), "moved 8 by mergeIn60");
  EXPECT_EQ(merged.originAt(8), "moved from 4 by mergeIn60");
}

TEST(RuleLedger, SaysSameOfAMovedValueThatWasThereAlready) {
  const Migrated merged("6.0",
                        "dn: CN=CONFIGURATION\nobjectClass: top\ncn: Configuration\n"
                        "zor-slapdMaxPendingChangesDisplayed: 20\n",
                        std::string(kMain) +
                            "dn: CN=REPLICATION,CN=CONFIGURATION\n"
                            "objectClass: top\n"
                            "cn: Replication\n"
                            "zor-slapdMaxPendingChangesDisplayed: 20\n");
  EXPECT_EQ(merged.fateAt(4), "same 8 by mergeIn60");
  EXPECT_EQ(merged.originAt(8), "new from 8");
}

TEST(RuleLedger, NamesThePartOfAPlugInThatBecameASetting) {
  const std::string directory = "dn: CN=DIRECTORY,CN=RDBM BACKENDS,CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION\n";
  const Migrated merged("6.0",
                        std::string(kMain) + directory +
                            "objectClass: top\n"
                            "cn: Directory\n"
                            "zor-slapdPlugin: repl x nonblocking maxskippedreplerrors=25\n",  // 8
                        std::string(kMain) + directory +
                            "objectClass: top\n"
                            "cn: Directory\n"
                            "\n"
                            "dn: CN=REPLICATION,CN=CONFIGURATION\n"
                            "objectClass: top\n"
                            "cn: Replication\n");
  EXPECT_EQ(merged.fateAt(8), "dropped 12 by mergeIn60");
  EXPECT_THAT(merged.whyAt(8), HasSubstr("its limit of skipped errors is a setting of its own now"));
  EXPECT_EQ(merged.originAt(12), "added-by-rule from 8 by mergeIn60");
  EXPECT_THAT(sumErrors(merged.ledger()), IsEmpty());
}

TEST(RuleLedger, NamesThePartOfAPlugInAlsoWhereTheNewServerHasTheSameLimit) {
  const std::string directory = "dn: CN=DIRECTORY,CN=RDBM BACKENDS,CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION\n";
  const Migrated merged("6.0",
                        std::string(kMain) + directory +
                            "objectClass: top\n"
                            "cn: Directory\n"
                            "zor-slapdPlugin: repl x nonblocking maxskippedreplerrors=25\n",  // 8
                        std::string(kMain) + directory +
                            "objectClass: top\n"
                            "cn: Directory\n"
                            "\n"
                            "dn: CN=REPLICATION,CN=CONFIGURATION\n"
                            "objectClass: top\n"
                            "cn: Replication\n"
                            "zor-slapdReplMaxErrors: 25\n");  // 12
  EXPECT_EQ(merged.fateAt(8), "dropped 12 by mergeIn60");
  EXPECT_EQ(merged.originAt(12), "new from 12");
  EXPECT_THAT(sumErrors(merged.ledger()), IsEmpty());
}

TEST(RuleLedger, TellsAMasterServerEntryThatIsBuiltAnewForAReplica) {
  const Migrated merged("5.1",
                        std::string(kMain) +
                            "dn: CN=MASTER SERVER,CN=CONFIGURATION\n"  // 5
                            "objectClass: TOP\n"
                            "cn: Master Server\n"
                            "zor-slapdMasterDN: cn=master\n"  // 8
                            "zor-slapdMasterPW: secret\n"
                            "zor-slapdPeerDN: cn=peer\n"  // 10
                            "zor-slapdMasterReferral: ldap://x\n"
                            "zor-slapdReplicaNote: nightly\n",  // 12
                        kMain);
  EXPECT_EQ(merged.entryAt(5), "rebuilt to CN=MASTER SERVER,CN=CONFIGURATION");
  EXPECT_EQ(merged.fateAt(6), "dropped by replAddEntry");
  EXPECT_EQ(merged.fateAt(8), "carried 12 by replAddEntry");
  EXPECT_EQ(merged.fateAt(9), "carried 13 by replAddEntry");
  EXPECT_EQ(merged.fateAt(10), "dropped by replAddEntry");
  EXPECT_EQ(merged.fateAt(11), "carried 14 by replAddEntry");
  EXPECT_EQ(merged.fateAt(12), "dropped by replAddEntry");
  EXPECT_EQ(merged.originAt(6), "added-by-rule by replAddEntry");
  EXPECT_EQ(merged.originAt(11), "added-by-rule by replAddEntry");
  EXPECT_EQ(merged.originWhyAt(11), "marks what still has to be migrated by hand");
}

TEST(RuleLedger, TellsThatAPeersIdentityBecomesThatOfAMaster) {
  const Migrated merged("5.1",
                        std::string(kMain) +
                            "dn: CN=MASTER SERVER,CN=CONFIGURATION\n"
                            "objectClass: top\n"
                            "cn: Master Server\n"
                            "zor-slapdPeerDN: cn=peer\n"  // 8
                            "zor-slapdPeerPW: secret\n"
                            "zor-slapdMasterPW: secret\n",  // 10: equal, and not asked for
                        kMain);
  EXPECT_EQ(merged.fateAt(8), "moved 12 by replAddEntry");
  EXPECT_EQ(merged.fateAt(9), "moved 13 by replAddEntry");
  EXPECT_EQ(merged.fateAt(10), "dropped by replAddEntry");
  EXPECT_EQ(merged.originAt(13), "moved from 9 by replAddEntry");
}

TEST(RuleLedger, TellsWhyTheReferralOfAnEntryWithoutIdentityOrPasswordIsLost) {
  const auto entryWith = [](const std::string& settings) {
    return Migrated("5.1",
                    std::string(kMain) +
                        "dn: CN=MASTER SERVER,CN=CONFIGURATION\nobjectClass: top\ncn: Master Server\n"
                        "zor-slapdMasterReferral: ldap://x\n" +
                        settings,
                    kMain);
  };
  const Migrated neither = entryWith("zor-slapdMasterPW: secret\n");
  EXPECT_EQ(neither.fateAt(8), "lost by replAddEntry");
  EXPECT_THAT(neither.whyAt(8), HasSubstr("names neither a master nor a peer"));
  EXPECT_EQ(neither.fateAt(9), "dropped by replAddEntry");
  const Migrated withoutPassword = entryWith("zor-slapdMasterDN: cn=m\n");
  EXPECT_EQ(withoutPassword.fateAt(8), "lost by replAddEntry");
  EXPECT_THAT(withoutPassword.whyAt(8), HasSubstr("no password"));
  EXPECT_EQ(withoutPassword.fateAt(9), "carried 12 by replAddEntry");
}

TEST(RuleLedger, TellsWhatTheLastCheckAdds) {
  const Migrated merged("5.1", kMain, kMain);
  ASSERT_EQ(merged.ledger().result.entries().size(), 2U);
  EXPECT_EQ(merged.ledger().count(tool::ValueOrigin::addedByRule), 6U);
  EXPECT_EQ(merged.originAt(6), "added-by-rule by check51");
}

TEST(RuleLedger, TellsTheMaximumAgeThatTheRuleAddsFromTheOneThatIsCarried) {
  const std::string dn = "dn: CN=CHANGE LOG,CN=RDBM BACKENDS,CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION\n";
  const std::string entry = dn + "objectClass: top\nobjectClass: zor-slapdRdbmBackend\ncn: Change Log\n";
  const Migrated without("5.2", kMain + entry + "zor-slapdChangeLogMaxAge: 7\n", kMain);
  EXPECT_EQ(without.fateAt(9), "carried 10 by addCfgEntry") << "the DN is folded";
  EXPECT_EQ(without.originAt(11), "added-by-rule by addTo52");
  const Migrated with("5.2", kMain + entry + "zor-slapdChangeLogMaxAge: 0\n", kMain);
  EXPECT_EQ(with.fateAt(9), "carried 10 by addCfgEntry");
  EXPECT_EQ(with.originAt(10), "carried from 9 by addCfgEntry");
}

TEST(RuleLedger, TellsTheObjectClassThatJoinsAnOnlyOne) {
  const Migrated merged("5.2", std::string(kMain) + "dn: CN=X,CN=CONFIGURATION\nobjectClass: container\ncn: X\n",
                        kMain);
  EXPECT_EQ(merged.originAt(6), "carried from 6 by addCfgEntry");
  EXPECT_EQ(merged.originAt(7), "added-by-rule by addCfgEntry");
}

TEST(RuleLedger, LeavesTheOldChangeLogBehindWithoutALoss) {
  const Migrated merged("4.1",
                        std::string(kMain) +
                            "dn: cn=CHANGE LOG, cn=RDBM BACKENDS, cn=ZOR Halvorn, CN=SCHEMAS,CN=CONFIGURATION\n"
                            "objectClass: top\n"
                            "cn: Change Log\n"
                            "zor-slapdDbName: x\n",
                        kMain);
  EXPECT_EQ(merged.entryAt(5), "left");
  for (const std::size_t line : {6U, 7U, 8U}) EXPECT_EQ(merged.fateAt(line), "dropped by addTo41");
}

// The list is cleared after the additions, so that what an added entry brought along stays.
TEST(RuleLedger, SaysCarriedOfASchemaFileThatIsTakenOutTooLate) {
  const Migrated merged("6.0",
                        std::string(kMain) +
                            "dn: CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION\n"
                            "objectClass: top\n"
                            "cn: ZOR Directory\n"
                            "zor-slapdIncludeSchema: /old/etc/V3.user.at\n",
                        kMain);
  EXPECT_EQ(merged.fateAt(8), "carried 9 by addCfgEntry");
}

TEST(RuleLedger, KeepsWhatHappenedToAValueInOrder) {
  const Migrated merged(
      "6.0",
      "dn: CN=CONFIGURATION\nobjectClass: top\ncn: Configuration\n"
      "zor-slapdMaxPendingChangesDisplayed: 20\n",
      std::string(kMain) + "dn: CN=REPLICATION,CN=CONFIGURATION\nobjectClass: top\ncn: Replication\n");
  std::vector<std::string> told;
  for (const tool::LedgerEvent& event : merged.ledger().events) {
    if (event.oldValue == tool::kNoValue) continue;
    ASSERT_EQ(event.values.size(), 1U);
    EXPECT_EQ(event.values.front(), "20");
    EXPECT_EQ(event.attribute, "zor-slapdMaxPendingChangesDisplayed");
    EXPECT_EQ(event.oldEntry, 0U);
    EXPECT_TRUE(event.changed);
    EXPECT_EQ(event.rc, 0);
    told.push_back((event.onOld ? "old " : "new ") + std::string(event.dn) + " " +
                   merged.ledger().reasonOf(event.reason).method);
  }
  EXPECT_THAT(told,
              testing::ElementsAre("old CN=CONFIGURATION mergeIn60", "new CN=REPLICATION,CN=CONFIGURATION mergeIn60"));
}

}  // namespace
