// HiddenLossTest.cpp -- what a merge does without a word, and what the ledger says of it.

#include <gmock/gmock.h>

#include "Migrated.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

TEST(HiddenLoss, ShowsWhatATransferLeavesBehindThatEndsAtASettingTheNewEntryLacks) {
  const Migrated merged("6.0",
                        std::string(kMain) +
                            "dn: CN=AUDIT,CN=CONFIGURATION\n"  // 5
                            "objectClass: top\n"
                            "cn: Audit\n"
                            "zor-audit: TRUE\n"             // 8
                            "zor-auditNote: for the law\n"  // 9: the new entry lacks it
                            "zor-auditBindOps: TRUE\n"      // 10
                            "zor-auditSearchOps: FALSE\n",  // 11: equal in both
                        std::string(kMain) +
                            "dn: CN=AUDIT,CN=LOG MANAGEMENT,CN=CONFIGURATION\n"
                            "objectClass: top\n"
                            "cn: Audit Log\n"
                            "zor-audit: FALSE\n"  // 8
                            "zor-auditBindOps: FALSE\n"
                            "zor-auditSearchOps: FALSE\n");  // 10
  EXPECT_EQ(merged.entryAt(5), "moved to CN=AUDIT,CN=LOG MANAGEMENT,CN=CONFIGURATION");
  EXPECT_EQ(merged.fateAt(6), "same 6 by mergeChangeDnEntry");
  EXPECT_EQ(merged.fateAt(7), "kept-new 7 by mergeChangeDnEntry");
  EXPECT_EQ(merged.fateAt(8), "moved 8 by mergeChangeDnEntry");
  EXPECT_EQ(merged.fateAt(9), "lost by mergeChangeDnEntry");
  EXPECT_THAT(merged.whyAt(9), HasSubstr("the new entry lacks this setting"));
  EXPECT_EQ(merged.fateAt(10), "lost by mergeChangeDnEntry");
  EXPECT_THAT(merged.whyAt(10), HasSubstr("ended before it, at a setting that the new entry lacks"));
  EXPECT_EQ(merged.fateAt(11), "same 10 by mergeChangeDnEntry") << "the new server has it, transfer or not";
  EXPECT_THAT(merged.replaced(), ElementsAre("8 by 8 (mergeChangeDnEntry)"));
  EXPECT_THAT(sumErrors(merged.ledger()), IsEmpty());
}

// A walk meets an attribute at its first line that no rule has taken out.
TEST(HiddenLoss, KnowsWhereATransferMeetsASettingOfWhichARuleTookTheFirstValue) {
  const Migrated merged("6.0",
                        std::string(kMain) +
                            "dn: CN=AUDIT,CN=CONFIGURATION\n"
                            "objectClass: top\n"
                            "cn: Audit\n"
                            "zor-auditLog: one\n"   // 8: taken out
                            "zor-audit: TRUE\n"     // 9
                            "zor-auditLog: two\n",  // 10: met here; the new entry lacks it
                        std::string(kMain) +
                            "dn: CN=AUDIT,CN=LOG MANAGEMENT,CN=CONFIGURATION\n"
                            "objectClass: top\n"
                            "cn: Audit Log\n"
                            "zor-audit: FALSE\n");
  EXPECT_EQ(merged.fateAt(8), "dropped by addTo60");
  EXPECT_EQ(merged.fateAt(9), "moved 8 by mergeChangeDnEntry");
  EXPECT_EQ(merged.fateAt(10), "lost by mergeChangeDnEntry");
  EXPECT_THAT(merged.whyAt(10), HasSubstr("the new entry lacks this setting"));
}

TEST(HiddenLoss, ShowsAMoveIntoAnEntryThatTheNewConfigurationLacks) {
  const Migrated merged("5.1",
                        std::string(kMain) +
                            "dn: cn=ZOR Halvorn, CN=SCHEMAS,CN=CONFIGURATION\n"  // 5
                            "objectClass: top\n"
                            "cn: ZOR Halvorn\n"
                            "zor-slapdSchemaCheck: V3\n",
                        kMain);
  EXPECT_EQ(merged.entryAt(5), "skipped");
  for (const std::size_t line : {6U, 7U, 8U}) {
    EXPECT_EQ(merged.fateAt(line), "lost by mergeChangeDnEntry");
    EXPECT_THAT(merged.whyAt(line), HasSubstr("no entry to carry the values to"));
  }
}

TEST(HiddenLoss, ShowsAMovedContainerWithoutSettingsThatHadNowhereToGo) {
  const Migrated merged("5.1",
                        std::string(kMain) +
                            "dn: cn=RDBM BACKENDS, cn=ZOR Halvorn, CN=SCHEMAS,CN=CONFIGURATION\n"
                            "objectClass: top\n"
                            "cn: RDBM Backends\n",
                        kMain);
  EXPECT_EQ(merged.fateAt(6), "lost by mergeChangeDnEntry");
  EXPECT_EQ(merged.fateAt(7), "lost by mergeChangeDnEntry");
}

TEST(HiddenLoss, KnowsATargetThatTheMergeItselfHasMade) {
  const std::string current = "dn: CN=RDBM BACKENDS,CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION\n";
  const std::string legacy = "dn: cn=RDBM BACKENDS, cn=ZOR Halvorn, CN=SCHEMAS,CN=CONFIGURATION\n";
  const Migrated made("5.1",
                      kMain + current + "objectClass: top\nobjectClass: a\ncn: One\nzor-x: 1\n\n"  // 9
                          + legacy + "objectClass: top\ncn: Two\nzor-x: 2\n",                      // 11
                      kMain);
  EXPECT_EQ(made.fateAt(9), "lost by mergeChangeDnEntry");
  EXPECT_THAT(made.whyAt(9), HasSubstr("a later step put another value in its place"));
  EXPECT_EQ(made.fateAt(13), "kept-new 8 by mergeChangeDnEntry");
  EXPECT_EQ(made.fateAt(14), "moved 9 by mergeChangeDnEntry");
  const Migrated madeTooLate("5.1",
                             kMain + legacy + "objectClass: top\ncn: Two\nzor-x: 2\n\n"  // 8
                                 + current + "objectClass: top\nobjectClass: a\ncn: One\nzor-x: 1\n",
                             kMain);
  EXPECT_EQ(madeTooLate.entryAt(5), "skipped");
  EXPECT_EQ(madeTooLate.fateAt(7), "lost by mergeChangeDnEntry");
  EXPECT_EQ(madeTooLate.fateAt(8), "lost by mergeChangeDnEntry");
  EXPECT_THAT(madeTooLate.whyAt(8), HasSubstr("no entry to carry the values to"));
}

TEST(HiddenLoss, TellsASecondValueBeforeTheEndOfATransferFromWhatIsBehindIt) {
  const Migrated merged("6.0",
                        std::string(kMain) +
                            "dn: CN=AUDIT,CN=CONFIGURATION\n"
                            "objectClass: top\n"
                            "cn: Audit\n"
                            "zor-audit: TRUE\n"
                            "zor-audit: MAYBE\n"  // 9
                            "zor-auditNote: x\n",
                        std::string(kMain) +
                            "dn: CN=AUDIT,CN=LOG MANAGEMENT,CN=CONFIGURATION\n"
                            "objectClass: top\n"
                            "cn: Audit Log\n"
                            "zor-audit: FALSE\n");
  EXPECT_EQ(merged.fateAt(9), "lost by mergeChangeDnEntry");
  EXPECT_THAT(merged.whyAt(9), HasSubstr("only its first value is carried"));
}

TEST(HiddenLoss, ShowsSettingsThatARuleMovesIntoEntriesThatTheNewConfigurationLacks) {
  const Migrated merged("6.0",
                        "dn: CN=CONFIGURATION\nobjectClass: top\ncn: Configuration\n"
                        "zor-slapdSysLogLevel: h\n"                  // 4
                        "zor-slapdMaxPendingChangesDisplayed: 20\n"  // 5
                        "\n"
                        "dn: CN=ADMIN AUDIT,CN=CONFIGURATION\n"  // 7
                        "objectClass: top\n"
                        "cn: Admin Audit\n"
                        "zor-audit: TRUE\n"  // 10
                        "zor-auditLog: a\n"  // 11
                        "\n"
                        "dn: CN=DIRECTORY,CN=RDBM BACKENDS,CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION\n"
                        "objectClass: top\n"
                        "cn: Directory\n"
                        "zor-slapdPlugin: replication x nonblocking maxskippedreplerrors=25\n",  // 16
                        std::string(kMain) +
                            "dn: CN=DIRECTORY,CN=RDBM BACKENDS,CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION\n"
                            "objectClass: top\n"
                            "cn: Directory\n");
  EXPECT_EQ(merged.fateAt(4), "lost by mergeIn60");
  EXPECT_THAT(merged.whyAt(4), HasSubstr("no entry to set the value in: code 32"));
  EXPECT_EQ(merged.fateAt(5), "lost by mergeIn60");
  EXPECT_EQ(merged.fateAt(10), "lost by addTo60");
  EXPECT_EQ(merged.fateAt(11), "dropped by addTo60");
  EXPECT_EQ(merged.entryAt(7), "skipped");
  EXPECT_EQ(merged.fateAt(16), "lost by mergeIn60");
  EXPECT_THAT(merged.whyAt(16), HasSubstr("the part of the value that was to be set elsewhere was refused: code 32"));
}

TEST(HiddenLoss, ShowsAnEntryThatItsRuleGaveUp) {
  const Migrated merged("6.0",
                        std::string(kMain) +
                            "dn: CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION\n"  // 5
                            "objectClass: top\n"                                  // 6: the same
                            "objectClass: acmeSchema\n"                           // 7: never carried
                            "cn: ZOR Directory\n"                                 // 8
                            "zor-slapdIncludeSchema: /old/etc/V3.user.at\n"       // 9: the server's own
                            "zor-slapdIncludeSchema: /opt/acme/acme.at\n"         // 10
                            "zor-slapdSchemaCheck: V3\n",                         // 11: the same
                        std::string(kMain) +
                            "dn: CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION\n"
                            "objectClass: top\n"
                            "cn: ZOR Directory\n"
                            "zor-slapdSchemaCheck: V3\n");
  EXPECT_EQ(merged.entryAt(5), "skipped");
  EXPECT_EQ(merged.fateAt(6), "same 6 by mergeIn60");
  EXPECT_EQ(merged.fateAt(7), "kept-new 6 by mergeIn60");
  EXPECT_EQ(merged.fateAt(8), "same 7 by mergeIn60");
  EXPECT_EQ(merged.fateAt(9), "dropped by processIncSchema");
  EXPECT_EQ(merged.fateAt(10), "lost by mergeIn60");
  EXPECT_THAT(merged.whyAt(10), HasSubstr("it has no zor-slapdSchemaAdditions"));
  EXPECT_EQ(merged.fateAt(11), "same 8 by mergeIn60");
}

TEST(HiddenLoss, ShowsTheSecondValueOfASettingThatIsNoList) {
  const Migrated merged("5.2",
                        "dn: CN=CONFIGURATION\nobjectClass: top\ncn: Configuration\n"
                        "zor-slapdCipher: A\n"    // 4: the first
                        "zor-slapdCipher: B\n"    // 5: lost
                        "zor-slapdTls: 1.2\n"     // 6: the first, equal
                        "zor-slapdTls: 1.3\n"     // 7: the new server has it, too
                        "zor-slapdTls: 1.4\n"     // 8: lost
                        "zor-slapdOnlyOld: a\n"   // 9: the new entry lacks the setting, and takes all
                        "zor-slapdOnlyOld: b\n"   // 10
                        "zor-slapdSuffix: o=a\n"  // 11: a list
                        "zor-slapdSuffix: o=b\n",
                        "dn: CN=CONFIGURATION\nobjectClass: top\ncn: Configuration\n"
                        "zor-slapdCipher: X\n"
                        "zor-slapdTls: 1.2\n"
                        "zor-slapdTls: 1.3\n"
                        "zor-slapdSuffix: o=x\n");
  EXPECT_EQ(merged.fateAt(4), "carried 4 by mergeCfgEntry");
  EXPECT_EQ(merged.fateAt(5), "lost by mergeCfgEntry");
  EXPECT_THAT(merged.whyAt(5), HasSubstr("only its first value is carried"));
  EXPECT_EQ(merged.fateAt(6), "same 5 by mergeCfgEntry");
  EXPECT_EQ(merged.fateAt(7), "same 6 by mergeCfgEntry");
  EXPECT_EQ(merged.fateAt(8), "lost by mergeCfgEntry");
  EXPECT_EQ(merged.fateAt(9), "carried 10 by mergeCfgEntry");
  EXPECT_EQ(merged.fateAt(10), "carried 11 by mergeCfgEntry");
  EXPECT_EQ(merged.fateAt(11), "carried 8 by mergeCfgEntry");
  EXPECT_EQ(merged.fateAt(12), "carried 9 by mergeCfgEntry");
}

TEST(HiddenLoss, ShowsTheSecondValueThatARuleDoesNotAskFor) {
  const Migrated merged("5.1",
                        std::string(kMain) +
                            "dn: CN=MASTER SERVER,CN=CONFIGURATION\n"
                            "objectClass: top\n"
                            "cn: Master Server\n"
                            "zor-slapdMasterDN: cn=one\n"
                            "zor-slapdMasterDN: cn=two\n"  // 9
                            "zor-slapdMasterPW: secret\n",
                        kMain);
  EXPECT_EQ(merged.fateAt(9), "lost by replAddEntry");
  EXPECT_THAT(merged.whyAt(9), HasSubstr("the rule takes only the first"));
}

TEST(HiddenLoss, ShowsAMovedValueThatTheEntrysOwnMergeOverwrites) {
  const Migrated merged("6.0",
                        "dn: CN=CONFIGURATION\nobjectClass: top\ncn: Configuration\n"
                        "zor-slapdMaxPendingChangesDisplayed: 20\n"  // 4
                        "\n"
                        "dn: CN=REPLICATION,CN=CONFIGURATION\n"
                        "objectClass: top\n"
                        "cn: Replication\n"
                        "zor-slapdMaxPendingChangesDisplayed: 30\n",  // 9
                        std::string(kMain) +
                            "dn: CN=REPLICATION,CN=CONFIGURATION\n"
                            "objectClass: top\n"
                            "cn: Replication\n"
                            "zor-slapdMaxPendingChangesDisplayed: 40\n");
  EXPECT_EQ(merged.fateAt(4), "lost by mergeCfgEntry");
  EXPECT_THAT(merged.whyAt(4), HasSubstr("a later step put another value in its place"));
  EXPECT_EQ(merged.fateAt(9), "carried 8 by mergeCfgEntry");
  EXPECT_THAT(merged.replaced(), ElementsAre("8 by 8 (mergeCfgEntry)"));
}

TEST(HiddenLoss, ShowsThePartOfAPlugInThatALaterMergeOverwrites) {
  const std::string directory = "dn: CN=DIRECTORY,CN=RDBM BACKENDS,CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION\n";
  const std::string replication = "dn: CN=REPLICATION,CN=CONFIGURATION\nobjectClass: top\ncn: Replication\n";
  const Migrated merged("6.0",
                        kMain + directory +
                            "objectClass: top\ncn: Directory\n"
                            "zor-slapdPlugin: x nonblocking maxskippedreplerrors=25\n\n" +  // 8
                            replication +
                            "zor-slapdReplMaxErrors: 7\n",  // 13
                        kMain + directory + "objectClass: top\ncn: Directory\n\n" + replication);
  EXPECT_EQ(merged.fateAt(8), "lost by mergeCfgEntry");
  EXPECT_THAT(merged.whyAt(8), HasSubstr("a later step put another value in its place"));
  EXPECT_EQ(merged.fateAt(13), "carried 12 by mergeCfgEntry");
}

// The list is cleared after the additions; what could not be added was lost before that.
TEST(HiddenLoss, SaysLostOfASchemaFileOfAnEntryThatCouldNotBeCreated) {
  const Migrated merged("6.0",
                        std::string(kMain) +
                            "dn: CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION\n"
                            "objectClass: top\n"
                            "zor-slapdIncludeSchema: /old/etc/V3.user.at\n",  // 7
                        kMain);
  EXPECT_EQ(merged.fateAt(7), "lost by addCfgEntry");
  EXPECT_THAT(merged.whyAt(7), HasSubstr("has no CN"));
}

TEST(HiddenLoss, ShowsACarriedValueThatAMoveOverwrites) {
  const Migrated merged("6.0",
                        "dn: CN=REPLICATION,CN=CONFIGURATION\n"
                        "objectClass: top\n"
                        "cn: Replication\n"
                        "zor-slapdMaxPendingChangesDisplayed: 30\n"  // 4
                        "\n"
                        "dn: CN=CONFIGURATION\nobjectClass: top\ncn: Configuration\n"
                        "zor-slapdMaxPendingChangesDisplayed: 20\n",  // 9
                        std::string(kMain) +
                            "dn: CN=REPLICATION,CN=CONFIGURATION\n"
                            "objectClass: top\n"
                            "cn: Replication\n"
                            "zor-slapdMaxPendingChangesDisplayed: 30\n");
  EXPECT_EQ(merged.fateAt(4), "lost by mergeIn60") << "its merge wrote nothing, for it was equal then";
  EXPECT_EQ(merged.fateAt(9), "moved 8 by mergeIn60");
  EXPECT_THAT(merged.replaced(), ElementsAre("8 by 8 (mergeIn60)"));
}

TEST(HiddenLoss, MarksSchemaFilesThatTheListNamesTwiceAfterTheMerge) {
  const Migrated merged("5.2",
                        std::string(kMain) +
                            "dn: CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION\n"
                            "objectClass: top\n"
                            "cn: ZOR Directory\n"
                            "zor-slapdIncludeSchema: /old/etc/V3.user.at\n"
                            "zor-slapdIncludeSchema: C:\\old\\acme.at\n",
                        std::string(kMain) +
                            "dn: CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION\n"
                            "objectClass: top\n"
                            "cn: ZOR Directory\n"
                            "zor-slapdIncludeSchema: /new/etc/V3.user.at\n"  // 8
                            "zor-slapdIncludeSchema: /a/own.at\n"            // 9
                            "zor-slapdIncludeSchema: /b/own.at\n");          // 10
  const std::string mark(tool::kSchemaFileNamedTwice);
  EXPECT_THAT(merged.originWhyAt(8), HasSubstr(mark));
  EXPECT_THAT(merged.originWhyAt(9), Not(HasSubstr(mark))) << "the new server's own affair";
  EXPECT_THAT(merged.originWhyAt(10), Not(HasSubstr(mark)));
  EXPECT_EQ(merged.originAt(11), "carried from 8 by mergeCfgEntry");
  EXPECT_THAT(merged.originWhyAt(11), HasSubstr(mark));
  EXPECT_EQ(merged.originAt(12), "carried from 9 by mergeCfgEntry");
  EXPECT_THAT(merged.originWhyAt(12), Not(HasSubstr(mark)));
}

TEST(HiddenLoss, ShowsEntriesThatNoMergeLooksAt) {
  const Migrated merged("5.2",
                        std::string(kMain) +
                            "dn: cn=localhost\n"  // 5
                            "objectClass: top\n"  // 6
                            "cn: localhost\n"
                            "zor-x: old\n"  // 8
                            "\n"
                            "dn: cn=other\n"  // 10
                            "cn: other\n",
                        std::string(kMain) +
                            "dn: CN=LOCALHOST\n"
                            "objectClass: top\n"
                            "cn: localhost\n"
                            "zor-x: new\n");  // 8
  EXPECT_EQ(merged.entryAt(5), "outside");
  EXPECT_EQ(merged.fateAt(6), "same 6");
  EXPECT_EQ(merged.fateAt(8), "lost");
  EXPECT_THAT(merged.whyAt(8), HasSubstr("not below CN=CONFIGURATION"));
  EXPECT_EQ(merged.fateAt(11), "lost");
  EXPECT_EQ(merged.originAt(8), "new from 8");
  EXPECT_THAT(merged.replaced(), IsEmpty());
  EXPECT_THAT(sumErrors(merged.ledger()), IsEmpty());
}

TEST(HiddenLoss, ShowsEntriesThatCannotBeCreated) {
  const Migrated merged("5.2",
                        std::string(kMain) +
                            "dn: CN=NO CN,CN=CONFIGURATION\n"  // 5
                            "objectClass: top\n"
                            "zor-x: 1\n"
                            "\n"
                            "dn: CN=NO CLASS,CN=CONFIGURATION\n"  // 9
                            "cn: No Class\n"
                            "zor-x: 1\n",
                        kMain);
  EXPECT_EQ(merged.entryAt(5), "skipped");
  EXPECT_EQ(merged.fateAt(7), "lost by addCfgEntry");
  EXPECT_THAT(merged.whyAt(7), HasSubstr("has no CN"));
  EXPECT_EQ(merged.entryAt(9), "skipped");
  EXPECT_THAT(merged.whyAt(11), HasSubstr("has no object class"));
}

TEST(HiddenLoss, GivesARepeatedLineTheFateOfTheFirst) {
  const Migrated merged("5.2",
                        "dn: CN=CONFIGURATION\nobjectClass: top\ncn: Configuration\n"
                        "zor-a: 1\n"
                        "zor-a: 1\n"
                        "zor-b: 1\n"
                        "zor-b: 2\n"
                        "zor-b: 2\n",
                        "dn: CN=CONFIGURATION\nobjectClass: top\ncn: Configuration\n"
                        "zor-b: 9\n"
                        "zor-b: 9\n");
  EXPECT_EQ(merged.fateAt(5), merged.fateAt(4));
  EXPECT_EQ(merged.fateAt(7), "lost by mergeCfgEntry");
  EXPECT_EQ(merged.fateAt(8), "lost by mergeCfgEntry");
  EXPECT_THAT(merged.replaced(), ElementsAre("4 by 4 (mergeCfgEntry)", "5 by 4 (mergeCfgEntry)"));
  EXPECT_THAT(sumErrors(merged.ledger()), IsEmpty());
}

}  // namespace
