#include "FindingFixture.h"
#include "finding/InstallationPaths.h"

namespace {

using namespace finding_test;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;
using tool::Severity;
using tool::ValueFate;

TEST(FindingKinds, HaveDifferentIdsAndAllTexts) {
  std::set<std::string> ids;
  Severity last = Severity::error;
  for (const tool::FindingKind& kind : tool::findingKinds()) {
    EXPECT_TRUE(ids.insert(kind.id).second) << kind.id;
    EXPECT_EQ(std::string(kind.id).find_first_not_of("abcdefghijklmnopqrstuvwxyz-"), std::string::npos) << kind.id;
    EXPECT_FALSE(std::string_view(kind.title).ends_with('.')) << kind.id;
    EXPECT_LE(std::string_view(kind.title).size(), 60U) << "a summary has it on one line: " << kind.id;
    EXPECT_TRUE(std::string_view(kind.why).ends_with('.')) << kind.id;
    EXPECT_TRUE(std::string_view(kind.remedy).ends_with('.')) << kind.id;
    EXPECT_LE(last, kind.severity) << "errors stand first";
    last = kind.severity;
  }
}

TEST(Findings, AreAllFoundInOneRunInTheOrderOfTheirKinds) {
  const std::string plugIn = "zor-slapdPlugin: pre /opt/none.so Init\n";
  SampleLedger sample(kRoot + entry("A", plugIn + "zor-lost: 1\nzor-x: {sealed}x\n"), kRoot,
                      kRoot + entry("A", plugIn + "zor-x: {sealed}x\nZOR-SLAPDMIGRATIONINFO: 4.1 PEER\n"));
  sample.setFate("cn=A,cn=Configuration", "zor-lost", "1", ValueFate::lost, "mergeIn60", "refused");
  const auto findings = tool::findAll(sample.ledger(), {[](const std::string&) { return false; }});
  std::vector<std::string> ids;
  for (const tool::Finding& finding : findings) ids.push_back(finding.id);
  EXPECT_THAT(ids,
              ElementsAre("value-lost CN=A,CN=CONFIGURATION", "sealed-by-old-server CN=A,CN=CONFIGURATION",
                          "migration-pending CN=A,CN=CONFIGURATION", "plugin-library-missing CN=A,CN=CONFIGURATION"));
  EXPECT_EQ(tool::countOf(findings, Severity::error), 2U);
  EXPECT_EQ(tool::countOf(findings, Severity::warning), 2U);
  EXPECT_EQ(tool::countOf(findings, Severity::note), 0U);
}

TEST(Findings, OfOneKindAndEntryAreToldApartByANumber) {
  SampleLedger sample(kRoot + entry("A", "zor-a: 1\nzor-b: 2\n"), kRoot, kRoot + entry("A", ""));
  sample.setFate("cn=A,cn=Configuration", "zor-a", "1", ValueFate::lost, "mergeIn60", "one");
  sample.setFate("cn=A,cn=Configuration", "zor-b", "2", ValueFate::lost, "mergeIn60", "another");
  const auto found = find(sample, "value-lost");
  ASSERT_EQ(found.size(), 2U);
  EXPECT_EQ(found[0].id, "value-lost CN=A,CN=CONFIGURATION");
  EXPECT_EQ(found[1].id, "value-lost CN=A,CN=CONFIGURATION #2");
}

TEST(Findings, SayWhatInPrintableForm) {
  SampleLedger sample(kRoot + std::string() +
                          "\ndn:: Y249QRtbMUEsY249Q29uZmlndXJhdGlvbg==\nobjectClass: top\ncn:: QRtbMUE=\nzor-a: 1\n",
                      kRoot, kRoot);
  sample.setFate("cn=A\\1B[1A,cn=Configuration", "zor-a", "1", ValueFate::lost, "mergeIn60", "be\x1bll");
  EXPECT_THAT(whats(sample, "value-lost"), ElementsAre("cn=A\\1B[1A,cn=Configuration: zor-a: be\\x1bll (mergeIn60)"));
}

TEST(Findings, AreNoneInAMergeOfNothing) {
  const SampleLedger sample(kRoot, kRoot, kRoot);
  EXPECT_THAT(tool::findAll(sample.ledger(), {[](const std::string&) { return false; }}), IsEmpty());
}

std::vector<std::string> directories(const std::string& old, const std::string& before = "") {
  const SampleLedger sample(kRoot + entry("A", old), kRoot + entry("A", before), kRoot);
  return tool::directoriesOfInstallation(sample.ledger().old, sample.ledger().before);
}

TEST(InstallationPaths, AreToldBySchemaFilesAndLogs) {
  EXPECT_THAT(directories("zor-slapdIncludeSchema: /opt/zor/6.0/etc/V3.user.at\n"
                          "zor-slapdIncludeSchema: /opt/zor/6.0/etc/V3.user.oc\n"
                          "ZOR-SLAPDSCHEMAADDITIONS: /var/opt/zor/6.0/etc/V3.modifiedschema\n"
                          "zor-auditLog: /srv/zor/log/audit.log\n"),
              ElementsAre("/opt/zor/6.0", "/var/opt/zor/6.0", "/srv/zor"));
}

TEST(InstallationPaths, AreNotToldByOtherFilesOrPlaces) {
  EXPECT_THAT(directories("zor-slapdIncludeSchema: /opt/acme/etc/acme.at\n"
                          "zor-slapdIncludeSchema: /opt/acme/schema/V3.user.at\n"
                          "zor-slapdIncludeSchema: etc/V3.user.at\n"
                          "zor-slapdErrorLog: /var/log/zor.log\n"
                          "zor-slapdLog: /opt/acme/logs/zor.log\n"
                          "zor-slapdLog: /log/zor.log\n"
                          "zor-other: /opt/other/log/zor.log\n"),
              IsEmpty());
}

TEST(InstallationPaths, AreNotThoseThatTheNewConfigurationNames) {
  EXPECT_THAT(
      directories("zor-slapdLog: /opt/zor/log/a\nzor-slapdLog: /opt/zor2/log/a\n", "zor-x: PATH=/opt/zor/bin\n"),
      ElementsAre("/opt/zor2"));
}

TEST(InstallationPaths, AreBoundedInNumber) {
  std::string lines;
  for (int i = 0; i < 1000; ++i) lines += "zor-slapdLog: /opt/zor" + std::to_string(i) + "/log/a\n";
  EXPECT_EQ(directories(lines).size(), 32U);
}

TEST(InstallationPaths, EndWhereAPathEnds) {
  const std::vector<std::string> directories{"/opt/zor"};
  for (const char* value : {"/opt/zor", "/opt/zor/", "/opt/zor/x", "a=/opt/zor b", "\"/opt/zor\"", "/x:/opt/zor:/y",
                            "/opt/zorx /opt/zor/y"}) {
    EXPECT_TRUE(tool::namesPathIn(value, directories)) << value;
  }
  for (const char* value : {"", "/opt/zo", "/opt/zorx", "/opt/zor-old/x", "/usr/opt/zor/x", "opt/zor"}) {
    EXPECT_FALSE(tool::namesPathIn(value, directories)) << value;
  }
}

}  // namespace
