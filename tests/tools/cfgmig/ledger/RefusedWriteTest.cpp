// RefusedWriteTest.cpp -- what the ledger says when a store refuses a write.

#include <gmock/gmock.h>

#include "Migrated.h"

namespace {

using cfgstore::Operation;
using cfgstore::Write;
using testing::HasSubstr;
using testing::IsEmpty;
using tool::Side;

constexpr int kUnwilling = 53;

// Refuses what is written to one attribute of the new configuration.
Migrated::Gate refusing(const char* attribute, Operation operation = Operation::addValue) {
  return [=](Side side, const Write& write) {
    const bool isIt = side == Side::newConfiguration && write.operation == operation && write.attribute == attribute;
    return isIt ? kUnwilling : 0;
  };
}

TEST(RefusedWrite, EndsTheMergeOfAnEntryAndLosesWhatIsBehindIt) {
  const Migrated merged("5.2",
                        "dn: CN=CONFIGURATION\nobjectClass: top\ncn: Configuration\n"
                        "zor-a: 1\n"   // 4
                        "zor-b: 1\n"   // 5: refused
                        "zor-b: 2\n"   // 6
                        "zor-c: 1\n"   // 7
                        "zor-d: 1\n",  // 8
                        "dn: CN=CONFIGURATION\nobjectClass: top\ncn: Configuration\nzor-d: 1\n", refusing("zor-b"));
  EXPECT_EQ(merged.fateAt(4), "carried 5 by mergeCfgEntry");
  EXPECT_EQ(merged.fateAt(5), "lost by mergeCfgEntry");
  EXPECT_EQ(merged.whyAt(5), "the new configuration refused the value: code 53, the store is not willing to do this");
  EXPECT_EQ(merged.fateAt(6), "lost by mergeCfgEntry");
  EXPECT_THAT(merged.whyAt(6), HasSubstr("ended before it, at a value that was refused"));
  EXPECT_EQ(merged.fateAt(7), "lost by mergeCfgEntry");
  EXPECT_EQ(merged.fateAt(8), "same 4 by mergeCfgEntry");
  EXPECT_EQ(merged.entryAt(1), "merged to CN=CONFIGURATION");
  EXPECT_THAT(sumErrors(merged.ledger()), IsEmpty());
}

TEST(RefusedWrite, LosesOneValueOnlyOfAnEntryThatIsAdded) {
  const Migrated merged("5.2",
                        std::string(kMain) +
                            "dn: CN=X,CN=CONFIGURATION\n"
                            "objectClass: top\nobjectClass: container\ncn: X\n"
                            "zor-a: 1\n"   // 9
                            "zor-b: 1\n",  // 10
                        kMain, refusing("zor-a"));
  EXPECT_EQ(merged.fateAt(9), "lost by addCfgEntry");
  EXPECT_EQ(merged.fateAt(10), "carried 9 by addCfgEntry");
}

TEST(RefusedWrite, LosesAWholeEntryThatCannotBeCreated) {
  const Migrated merged("5.2",
                        std::string(kMain) +
                            "dn: CN=X,CN=CONFIGURATION\n"  // 5
                            "objectClass: top\nobjectClass: container\ncn: X\nzor-a: 1\n",
                        kMain, refusing("", Operation::addEntry));
  EXPECT_EQ(merged.entryAt(5), "skipped");
  for (const std::size_t line : {6U, 7U, 8U, 9U}) {
    EXPECT_EQ(merged.fateAt(line), "lost by addCfgEntry");
    EXPECT_THAT(merged.whyAt(line), HasSubstr("could not be created: code 53"));
  }
}

// The entry is there with its first two object classes and its name, and then its transfer ends.
TEST(RefusedWrite, KnowsWhatAnEntryHasWhoseThirdObjectClassIsRefused) {
  const Migrated merged("5.2",
                        std::string(kMain) +
                            "dn: CN=X,CN=CONFIGURATION\n"
                            "objectClass: top\n"  // 6
                            "objectClass: container\n"
                            "objectClass: third\n"  // 8
                            "cn: X\n"
                            "zor-a: 1\n",  // 10
                        kMain, refusing("OBJECTCLASS"));
  EXPECT_EQ(merged.fateAt(6), "carried 6 by addCfgEntry");
  EXPECT_EQ(merged.fateAt(7), "carried 7 by addCfgEntry");
  EXPECT_EQ(merged.fateAt(8), "lost by addCfgEntry");
  EXPECT_EQ(merged.fateAt(9), "carried 8 by addCfgEntry");
  EXPECT_EQ(merged.fateAt(10), "lost by addCfgEntry");
  EXPECT_THAT(merged.whyAt(10), HasSubstr("ended before it"));
}

TEST(RefusedWrite, OfADeletionInTheOldConfigurationCarriesTheValueAfterAll) {
  const Migrated merged(
      "6.0",
      "dn: CN=CONFIGURATION\nobjectClass: top\ncn: Configuration\n"
      "zor-slapdPort: 389\n"        // 4: dropped no more
      "zor-slapdSysLogLevel: h\n",  // 5: set there, and carried here
      std::string(kMain) + "dn: CN=ZORSLAPD,CN=LOG MANAGEMENT,CN=CONFIGURATION\nobjectClass: top\ncn: zorslapd\n",
      [](Side side, const Write&) { return side == Side::oldConfiguration ? kUnwilling : 0; });
  EXPECT_EQ(merged.fateAt(4), "carried 4 by mergeCfgEntry");
  EXPECT_EQ(merged.fateAt(5), "moved 10 by mergeIn60");
  EXPECT_EQ(merged.originAt(10), "moved from 5 by mergeIn60");
  EXPECT_EQ(merged.originAt(5), "carried from 5 by mergeCfgEntry");
  EXPECT_THAT(sumErrors(merged.ledger()), IsEmpty());
}

TEST(RefusedWrite, LosesWhatARebuiltEntryShouldHaveHadBehindIt) {
  const Migrated merged("5.1",
                        std::string(kMain) +
                            "dn: CN=MASTER SERVER,CN=CONFIGURATION\nobjectClass: top\n"
                            "cn: Master Server\n"
                            "zor-slapdMasterDN: cn=m\n"    // 8
                            "zor-slapdMasterPW: secret\n"  // 9: refused
                            "zor-slapdMasterReferral: ldap://x\n",
                        kMain, refusing("zor-slapdMasterPW"));
  EXPECT_EQ(merged.fateAt(8), "carried 12 by replAddEntry");
  EXPECT_EQ(merged.fateAt(9), "lost by replAddEntry");
  EXPECT_EQ(merged.fateAt(10), "lost by replAddEntry");
  EXPECT_THAT(merged.whyAt(10), HasSubstr("the rule ended before it: code 53"));
}

TEST(RefusedWrite, SaysOfAnEntryWhoseMoveIsRefusedThatItWasSkipped) {
  const Migrated merged("6.0",
                        std::string(kMain) +
                            "dn: CN=AUDIT,CN=CONFIGURATION\n"  // 5
                            "objectClass: top\ncn: Audit\nzor-audit: TRUE\n",
                        std::string(kMain) +
                            "dn: CN=AUDIT,CN=LOG MANAGEMENT,CN=CONFIGURATION\n"
                            "objectClass: top\ncn: Audit Log\nzor-audit: FALSE\n",
                        refusing("zor-audit", Operation::setValue));
  EXPECT_EQ(merged.entryAt(5), "skipped");
  EXPECT_EQ(merged.fateAt(8), "lost by mergeChangeDnEntry");
  EXPECT_EQ(merged.originAt(8), "new from 8");
  EXPECT_THAT(sumErrors(merged.ledger()), IsEmpty());
}

}  // namespace
