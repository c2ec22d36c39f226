// CleanUpLedgerTest.cpp -- the fates of values that are cleaned up after the merge.

#include <gmock/gmock.h>

#include "Migrated.h"
#include "TracedMethod.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr const char* kDirectory = "dn: CN=DIRECTORY,CN=RDBM BACKENDS,CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION\n";

TEST(CleanUpLedger, SaysCleanedOfWhatIsRemoved) {
  const std::string directory = std::string(kDirectory) + "objectClass: top\ncn: Directory\n";
  const Migrated merged("5.2", kMain + directory + "zor-slapdDbInstance: old\n",
                        kMain + directory + "zor-slapdDbInstance: new\n", {},
                        [](ConfigFile& now, tool::LedgerBuilder& builder) {
                          builder.cleanUpBy(tool::traced::kRemoveDbInstInfo);
                          EXPECT_EQ(now.removeDBInstInfo(), 0);
                        });
  EXPECT_EQ(merged.fateAt(8), "cleaned by removeDBInstInfo");
  EXPECT_THAT(merged.replaced(), ElementsAre(HasSubstr("8 by none")));
  EXPECT_THAT(sumErrors(merged.ledger()), IsEmpty());
}

TEST(CleanUpLedger, SaysWhatAValueWasRewrittenTo) {
  const std::string directory = std::string(kDirectory) + "objectClass: top\ncn: Directory\n";
  const Migrated merged("5.2", kMain + directory + "zor-slapdPlugin: preoperation /old/lib.so CLInit x\n",
                        kMain + directory + "zor-slapdPlugin: database x\n", {},
                        [](ConfigFile& now, tool::LedgerBuilder& builder) {
                          builder.cleanUpBy(tool::traced::kEditClInfo);
                          EXPECT_EQ(now.editCLInfo(), 0);
                        });
  EXPECT_THAT(merged.fateAt(8), testing::StartsWith("cleaned 9 by"));
  EXPECT_THAT(merged.originAt(9), testing::StartsWith("added-by-rule"));
  EXPECT_THAT(sumErrors(merged.ledger()), IsEmpty());
}

TEST(CleanUpLedger, ListsANewServersValueThatIsRewrittenAsReplaced) {
  const std::string directory = std::string(kDirectory) + "objectClass: top\ncn: Directory\n";
  const Migrated merged("5.2", kMain, kMain + directory + "zor-slapdPlugin: preoperation /new/lib.so CLInit x\n", {},
                        [](ConfigFile& now, tool::LedgerBuilder& builder) {
                          builder.cleanUpBy(tool::traced::kEditClInfo);
                          EXPECT_EQ(now.editCLInfo(), 0);
                        });
  EXPECT_THAT(merged.replaced(), ElementsAre(HasSubstr("8 by 8")));
  EXPECT_THAT(sumErrors(merged.ledger()), IsEmpty());
}

TEST(CleanUpLedger, AccountsForAnEntryThatIsRemoved) {
  const std::string changeLog =
      "dn: CN=CHANGE LOG,CN=RDBM BACKENDS,CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION\n"
      "objectClass: top\ncn: Change Log\n";
  const Migrated merged("5.2", kMain + changeLog + "zor-x: old\n", kMain + changeLog + "zor-x: new\n", {},
                        [](ConfigFile& now, tool::LedgerBuilder& builder) {
                          builder.cleanUpBy(tool::traced::kEditClInfo);
                          now.removeCLInfo();
                        });
  EXPECT_THAT(merged.fateAt(8), testing::StartsWith("cleaned by"));
  EXPECT_THAT(merged.replaced(), testing::SizeIs(3));
  EXPECT_THAT(sumErrors(merged.ledger()), IsEmpty());
}

TEST(CleanUpLedger, AccountsForAnEntryThatTheMergeAddedAndThatIsRemoved) {
  const std::string changeLog =
      "dn: CN=CHANGE LOG,CN=RDBM BACKENDS,CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION\n"
      "objectClass: top\ncn: Change Log\nzor-x: old\n";
  const Migrated merged("5.2", kMain + changeLog, kMain, {}, [](ConfigFile& now, tool::LedgerBuilder& builder) {
    builder.cleanUpBy(tool::traced::kEditClInfo);
    now.removeCLInfo();
  });
  for (const std::size_t line : {6U, 7U, 8U}) {
    EXPECT_THAT(merged.fateAt(line), testing::StartsWith("cleaned by")) << line;
  }
  EXPECT_THAT(merged.replaced(), IsEmpty());
  EXPECT_THAT(sumErrors(merged.ledger()), IsEmpty());
}

}  // namespace
