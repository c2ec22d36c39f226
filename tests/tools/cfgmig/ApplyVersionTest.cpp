// Tests of cfgmig apply for each source version, given or recognised.

#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include "ExamplePath.h"
#include "ToolProcess.h"
#include "Workspace.h"

namespace {

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

std::string newFileOf(const ExampleSource& source) { return examplePath(std::string(source.version) + "/new.ldif"); }

TEST(ApplyVersion, RecognisesEveryExampleAndSaysFromWhat) {
  for (const ExampleSource& source : kExampleSources) {
    const auto result = runTool({"apply", "--old", examplePath(source.oldFile), "--new", newFileOf(source), "-n"});
    EXPECT_EQ(result.status, 0) << source.oldFile << result.err;
    EXPECT_EQ(result.err, "");
    EXPECT_THAT(result.out, HasSubstr("  version   " + std::string(source.version) +
                                      ", recognised from zor-slapdVersion of CN=CONFIGURATION; 3 entries\n"));
  }
}

TEST(ApplyVersion, MakesTheSameOfARecognisedVersionAndAGivenOne) {
  for (const ExampleSource& source : kExampleSources) {
    const Workspace workspace;
    const std::vector<std::string> words = {"apply", "--old", examplePath(source.oldFile), "--new", newFileOf(source)};
    std::vector<std::string> recognised = words;
    recognised.insert(recognised.end(), {"-o", workspace.path("recognised")});
    std::vector<std::string> given = words;
    given.insert(given.end(), {"-o", workspace.path("given"), "--from", source.version});
    EXPECT_EQ(runTool(recognised).status, 0) << source.oldFile;
    const auto result = runTool(given);
    EXPECT_EQ(result.status, 0) << source.oldFile;
    EXPECT_EQ(result.err, "") << "nothing speaks against the right version";
    EXPECT_THAT(result.out, Not(HasSubstr("recognised")));
    EXPECT_EQ(workspace.read("recognised"), workspace.read("given"));
    EXPECT_NE(workspace.read("given"), "");
  }
}

TEST(ApplyVersion, GoesOnWithAnotherVersionThanTheEvidenceSaysAndWarns) {
  const auto result = runTool(
      {"apply", "--old", examplePath("5.1/old.ldif"), "--new", examplePath("5.1/new.ldif"), "--from", "6.0", "-n"});
  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(result.err,
              HasSubstr("cfgmig: warning: --from 6.0, but zor-slapdVersion of CN=CONFIGURATION speaks for 5.1\n"));
  EXPECT_THAT(result.err, HasSubstr("cfgmig: warning: --from 6.0, but the entry cn=ZOR Halvorn, "));
  EXPECT_THAT(result.out, HasSubstr("Plan for a 6.0 configuration"));
}

TEST(ApplyVersion, StopsWhenTheTwoConfigurationsAreSwapped) {
  for (const ExampleSource& source : kExampleSources) {
    const auto result = runTool({"apply", "--old", newFileOf(source), "--new", examplePath(source.oldFile), "-n"});
    EXPECT_EQ(result.status, 2) << source.oldFile;
    EXPECT_EQ(result.out, "");
    EXPECT_THAT(result.err, HasSubstr("it seems to be none that can be migrated"));
    EXPECT_THAT(result.err, HasSubstr("the entry CN=LOG MANAGEMENT,CN=CONFIGURATION speaks for a server of another"));
  }
}

TEST(ApplyVersion, StopsWithoutEvidenceBeforeAnythingIsWritten) {
  const Workspace workspace;
  const std::string text = "dn: cn=Configuration\ncn: Configuration\n";
  workspace.write("old", text);
  workspace.write("new", text);
  const auto before = workspace.state();
  const auto result = runTool({"apply", "--old", workspace.path("old"), "--new", workspace.path("new")});
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.out, "");
  EXPECT_THAT(result.err, HasSubstr("give the version with --from: 4.1, 5.1, 5.2, 6.0"));
  EXPECT_EQ(workspace.state(), before);
}

nlohmann::json preview(const char* version, const char* oldFile) {
  const auto result = runTool({"apply", "--old", examplePath(oldFile), "--new",
                               examplePath(std::string(version) + "/new.ldif"), "-n", "--json"});
  EXPECT_EQ(result.status, 0) << result.err;
  return nlohmann::json::parse(result.out);
}

// The fate of the old entry; empty when the old configuration has none of this name.
std::string fateOf(const nlohmann::json& account, const std::string& normalDn) {
  for (const auto& entry : account.at("old")) {
    if (entry.at("normal_dn") == normalDn) return entry.at("fate");
  }
  return {};
}

TEST(ApplyVersion, CountsTheChangeLogEntryOf41AsLeftBehindByRule) {
  const nlohmann::json account = preview("4.1", "4.1/old.ldif");
  EXPECT_EQ(fateOf(account, "CN=CHANGE LOG,CN=RDBM BACKENDS,CN=ZOR HALVORN,CN=SCHEMAS,CN=CONFIGURATION"), "left");
  EXPECT_EQ(account.at("sums").at("old_values").at("lost"), 0);
}

TEST(ApplyVersion, CountsTheMasterServerEntryOf51AsRebuilt) {
  for (const char* file : {"5.1/old.ldif", "5.1/old-peer.ldif"}) {
    const nlohmann::json account = preview("5.1", file);
    EXPECT_EQ(fateOf(account, "CN=MASTER SERVER,CN=CONFIGURATION"), "rebuilt");
    EXPECT_EQ(account.at("sums").at("old_values").at("lost"), 0);
  }
}

TEST(ApplyVersion, TellsTheEntryOfAFormerMasterThatTheCheckOf51Adds) {
  const nlohmann::json account = preview("5.1", "5.1/old-former-master.ldif");
  EXPECT_EQ(fateOf(account, "CN=MASTER SERVER,CN=CONFIGURATION"), "");
  for (const auto& entry : account.at("result")) {
    if (entry.at("normal_dn") != "CN=MASTER SERVER,CN=CONFIGURATION") continue;
    for (const auto& attribute : entry.at("attributes")) {
      for (const auto& value : attribute.at("values")) EXPECT_NE(value.at("origin"), "new");
    }
    return;
  }
  FAIL() << "the entry is not in the result";
}

// The rest of the entry ends with the password that is missing, and that is told.
TEST(ApplyVersion, TellsWhatAReplicaWithoutAPasswordLoses) {
  const Workspace workspace;
  const std::string mainEntry = "dn: cn=Configuration\ncn: Configuration\nzor-slapdVersion: 5.1\n";
  workspace.write("old", mainEntry +
                             "\ndn: cn=Master Server, cn=Configuration\nobjectClass: top\ncn: Master Server\n"
                             "zor-slapdMasterDN: cn=x\nzor-slapdMasterReferral: ldap://host\n");
  workspace.write("new", mainEntry);
  const auto result = runTool({"apply", "--old", workspace.path("old"), "--new", workspace.path("new")});
  EXPECT_EQ(result.status, 5) << result.err;
  EXPECT_THAT(result.err, HasSubstr(workspace.path("old") + ":9: lost: "));
  EXPECT_THAT(result.err, HasSubstr("cn=Master Server, cn=Configuration"));
}

}  // namespace
