#include "FindingFixture.h"

namespace {

using namespace finding_test;
using testing::ElementsAre;
using testing::IsEmpty;
using tool::EntryFate;

// A ledger whose result holds `lines` in an entry, carried from the old configuration.
SampleLedger carryingOver(const std::string& lines) {
  return {kRoot + entry("A", lines), kRoot, kRoot + entry("A", lines)};
}

// The new server's own entry.
SampleLedger own(const std::string& lines) { return {kRoot, kRoot + entry("A", lines), kRoot + entry("A", lines)}; }

TEST(PendingMigrations, AreFoundByTheirObjectClassAndTheirMark) {
  const SampleLedger sample(
      kRoot, kRoot, kRoot + entry("A", "objectClass: zor-SlapdPendingMigration\nzor-slapdmigrationinfo: 4.1 PEER\n"));
  EXPECT_THAT(values(sample, "migration-pending"), ElementsAre("zor-SlapdPendingMigration", "4.1 PEER"));
  EXPECT_THAT(whats(sample, "migration-pending"),
              ElementsAre("cn=A,cn=Configuration: objectClass, zor-slapdmigrationinfo"));
}

TEST(PendingMigrations, AreFoundInTheNewServersOwnEntriesToo) {
  EXPECT_THAT(values(own("ZOR-SLAPDMIGRATIONINFO: 4.1 MASTER\n"), "migration-pending"), ElementsAre("4.1 MASTER"));
}

TEST(PendingMigrations, AreNotFoundByTheWordInAnotherSetting) {
  EXPECT_THAT(values(own("zor-note: ZOR-SLAPDPENDINGMIGRATION\nobjectClass: zor-slapdPending\n"), "migration-pending"),
              IsEmpty());
}

TEST(SealedSecrets, AreFoundByTheirScheme) {
  const SampleLedger sample =
      carryingOver("zor-slapdAdminPW: {sealed}abc\nzor-other: {AES256}xyz==\nzor-third: {IMASK}q\n");
  EXPECT_THAT(values(sample, "sealed-by-old-server"), ElementsAre("{sealed}abc", "{AES256}xyz==", "{IMASK}q"));
}

TEST(SealedSecrets, AreFoundByBytesThatNobodyTypesInAPassword) {
  EXPECT_THAT(values(carryingOver("zor-slapdDbUserPW:: m0Fu\n"), "sealed-by-old-server"), ElementsAre("\x9b"
                                                                                                      "An"));
}

TEST(SealedSecrets, AreNotPasswordsThatEveryServerCanCheck) {
  EXPECT_THAT(values(carryingOver("zor-slapdAdminPW: {SSHA}abc==\nzor-slapdKeyPW: clear text\n"
                                  "zor-slapdMasterPW: {crypt}ab\n"),
                     "sealed-by-old-server"),
              IsEmpty());
}

TEST(SealedSecrets, AreNotBinaryValuesOfOtherSettings) {
  EXPECT_THAT(values(carryingOver("zor-picture:: m0Fu\nzor-text: a {sealed} word\n"), "sealed-by-old-server"),
              IsEmpty());
}

TEST(SealedSecrets, AreNotTheNewServersOwn) {
  EXPECT_THAT(values(own("zor-slapdAdminPW: {sealed}abc\n"), "sealed-by-old-server"), IsEmpty());
}

class RebuiltMaster : public testing::Test {
 protected:
  static std::vector<std::string> found(const std::string& lines, EntryFate fate) {
    const std::string master = entry("Master Server", "");
    SampleLedger sample(kRoot + master, kRoot, kRoot + entry("MASTER SERVER", lines));
    sample.setEntry("cn=Master Server,cn=Configuration", fate, "addTo51", "built anew",
                    "cn=Master Server,cn=Configuration");
    return whats(sample, "master-without-credentials");
  }
};

TEST_F(RebuiltMaster, IsFoundWithoutAnIdentityOrAPassword) {
  EXPECT_THAT(found("", EntryFate::rebuilt), ElementsAre("cn=MASTER SERVER,cn=Configuration"));
  EXPECT_THAT(found("zor-slapdMasterDN: cn=m\n", EntryFate::rebuilt), testing::SizeIs(1));
  EXPECT_THAT(found("zor-slapdMasterPW: x\n", EntryFate::rebuilt), testing::SizeIs(1));
}

TEST_F(RebuiltMaster, IsNotFoundWithBoth) {
  EXPECT_THAT(found("zor-slapdMasterPW: x\nZOR-SLAPDMASTERDN: cn=m\n", EntryFate::rebuilt), IsEmpty());
}

TEST_F(RebuiltMaster, IsNotAnEntryThatWasAdded) { EXPECT_THAT(found("", EntryFate::added), IsEmpty()); }

}  // namespace
