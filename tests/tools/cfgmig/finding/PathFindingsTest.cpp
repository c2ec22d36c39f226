#include "FindingFixture.h"

namespace {

using namespace finding_test;
using testing::ElementsAre;
using testing::IsEmpty;

// What tells the old installation's directories: /opt/zor/6.0 and /var/opt/zor/6.0.
constexpr char kOldServer[] =
    "zor-slapdIncludeSchema: /opt/zor/6.0/etc/V3.user.at\n"
    "zor-slapdErrorLog: /var/opt/zor/6.0/log/zor.log\n";

// A ledger in which the entry A brings `lines` along from the old configuration. `own` are lines of the new server's.
SampleLedger carrying(const std::string& lines, const std::string& own = "") {
  return {kRoot + entry("Server", kOldServer) + entry("A", lines), kRoot + entry("B", own),
          kRoot + entry("B", own) + entry("A", lines)};
}

TEST(PlugInsOfTheOldInstallation, AreFoundByTheirLibrary) {
  const SampleLedger sample = carrying("zor-slapdPlugin: preoperation /opt/zor/6.0/lib/libx.so Init a=b\n");
  EXPECT_THAT(whats(sample, "plugin-of-old-installation"), ElementsAre("cn=A,cn=Configuration: zor-slapdPlugin"));
  EXPECT_THAT(whats(sample, "path-into-old-installation"), IsEmpty()) << "it is told once";
  EXPECT_THAT(whats(sample, "plugin-library-missing"), IsEmpty()) << "and not that it is missing here";
}

TEST(PlugInsOfTheOldInstallation, AreNotThoseOfANeighbour) {
  EXPECT_THAT(
      whats(carrying("zor-slapdPlugin: preoperation /opt/zor/6.0.1/lib/libx.so Init\n"), "plugin-of-old-installation"),
      IsEmpty());
  EXPECT_THAT(whats(carrying("zor-slapdPlugin: preoperation libx.so Init\n"), "plugin-of-old-installation"), IsEmpty());
}

TEST(PathsIntoTheOldInstallation, AreFoundInArgumentsAndSettings) {
  const SampleLedger sample = carrying(
      "zor-slapdPlugin: postoperation libx.so Init conf=/var/opt/zor/6.0/x.conf\n"
      "zor-slapdSetenv: LD_LIBRARY_PATH=/usr/lib:/opt/zor/6.0\n"
      "zor-slapdKeyStore: /opt/zor/6.0/etc/key.p12\n");
  EXPECT_THAT(values(sample, "path-into-old-installation"), testing::SizeIs(3));
  EXPECT_THAT(whats(sample, "path-into-old-installation"),
              ElementsAre("cn=A,cn=Configuration: zor-slapdPlugin, zor-slapdSetenv, zor-slapdKeyStore"));
}

TEST(PathsIntoTheOldInstallation, AreNotThoseThatOnlyLookAlike) {
  EXPECT_THAT(values(carrying("zor-a: /opt/zor/6.0x/y\nzor-b: /mnt/opt/zor/6.0/y\nzor-c: /opt/zor/7.0/etc\n"),
                     "path-into-old-installation"),
              IsEmpty());
}

TEST(PathsIntoTheOldInstallation, AreNotTheNewServersOwn) {
  SampleLedger sample(kRoot + entry("Server", kOldServer), kRoot + entry("B", "zor-note: /opt/zor/6.0/etc/x\n"),
                      kRoot + entry("B", "zor-note: /opt/zor/6.0/etc/x\n"));
  EXPECT_THAT(values(sample, "path-into-old-installation"), IsEmpty());
}

TEST(PathsIntoTheOldInstallation, AreNoneWhereTheNewServerIsAtHomeToo) {
  const std::string lines = "zor-slapdKeyStore: /opt/zor/6.0/etc/key.p12\n";
  EXPECT_THAT(values(carrying(lines), "path-into-old-installation"), testing::SizeIs(1));
  EXPECT_THAT(values(carrying(lines, "zor-slapdLog: /opt/zor/6.0/log/new.log\n"), "path-into-old-installation"),
              IsEmpty());
}

TEST(MissingPlugInLibraries, AreFoundByTheirPath) {
  const SampleLedger sample =
      carrying("zor-slapdPlugin:   postoperation \t /opt/acme/liba.so Init\nzor-slapdPlugin: pre /opt/acme/libb.so\n");
  EXPECT_THAT(values(sample, "plugin-library-missing", {"/opt/acme/libb.so"}),
              ElementsAre("postoperation \t /opt/acme/liba.so Init"));
}

TEST(MissingPlugInLibraries, AreNotThoseThatTheServerLooksForItself) {
  EXPECT_THAT(values(carrying("zor-slapdPlugin: postoperation liba.so Init\nzor-slapdPlugin: postoperation\n"
                              "zor-slapdPlugin:\nzor-other: pre /opt/acme/libb.so\n"),
                     "plugin-library-missing"),
              IsEmpty());
}

TEST(MissingSchemaFiles, AreThoseThatTheOldConfigurationBrought) {
  const SampleLedger sample = carrying(
      "zor-slapdIncludeSchema: /opt/acme/a.at\nzor-slapdIncludeSchema: /opt/acme/b.at\n"
      "zor-slapdSchemaAdditions: /opt/acme/c\n",
      "zor-slapdIncludeSchema: /opt/zor/7.0/etc/V3.user.at\n");
  EXPECT_THAT(values(sample, "schema-file-missing", {"/opt/acme/b.at"}), ElementsAre("/opt/acme/a.at", "/opt/acme/c"));
}

TEST(MissingSchemaFiles, AreTheServersOwnOnlyOnTheServersMachine) {
  const SampleLedger sample = carrying("", "zor-slapdIncludeSchema: /etc/zor/a\nzor-slapdIncludeSchema: /etc/zor/b\n");
  EXPECT_THAT(values(sample, "schema-file-missing"), IsEmpty());
  EXPECT_THAT(values(sample, "schema-file-missing", {"/etc/zor/b"}), ElementsAre("/etc/zor/a"));
  EXPECT_THAT(values(sample, "schema-file-missing", {"/etc/zor/a", "/etc/zor/b"}), IsEmpty());
}

TEST(MissingSchemaFiles, AreNotLookedForWithoutAFileSystem) {
  const SampleLedger sample = carrying("zor-slapdIncludeSchema: /opt/acme/a.at\nzor-slapdPlugin: pre /opt/acme/l.so\n");
  for (const tool::Finding& finding : tool::findAll(sample.ledger(), {})) {
    EXPECT_STRNE(finding.kind->id, "schema-file-missing");
    EXPECT_STRNE(finding.kind->id, "plugin-library-missing");
  }
}

TEST(SchemaFilesTwice, AreThoseOfOneNameInOneList) {
  const SampleLedger sample(
      kRoot + entry("A", "zor-slapdIncludeSchema: /opt/zor/5.1/etc/V3.user.at\nzor-slapdIncludeSchema: /acme/a.at\n"),
      kRoot + entry("A", "zor-slapdIncludeSchema: /opt/zor/7.0/etc/V3.user.at\n"),
      kRoot + entry("A",
                    "zor-slapdIncludeSchema: /opt/zor/7.0/etc/V3.user.at\n"
                    "zor-slapdIncludeSchema: /opt/zor/5.1/etc/V3.user.at\nzor-slapdIncludeSchema: /acme/a.at\n"));
  EXPECT_THAT(values(sample, "schema-file-twice"),
              ElementsAre("/opt/zor/7.0/etc/V3.user.at", "/opt/zor/5.1/etc/V3.user.at"));
}

TEST(SchemaFilesTwice, AreNotFilesOfLikeNamesOrOfTwoEntries) {
  const SampleLedger sample(kRoot, kRoot,
                            kRoot +
                                entry("A", "zor-slapdIncludeSchema: /a/x.at\nzor-slapdIncludeSchema: /a/x.at.old\n") +
                                entry("B", "zor-slapdIncludeSchema: /a/x.at\nzor-other: /a/x.at\n"));
  EXPECT_THAT(values(sample, "schema-file-twice"), IsEmpty());
}

}  // namespace
