// VerifyProcessTest.cpp -- cfgmig verify, run as a process.

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <nlohmann/json.hpp>

#include "ApplyFixture.h"
#include "ExamplePath.h"

namespace {

using Json = nlohmann::json;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

// The sample configurations, of which nothing is lost.
class VerifyProcess : public ApplyFixture {
 protected:
  VerifyProcess() { workspace.write("merged.ldif", sample::kMerged, 0600); }

  ToolResult verify(const std::vector<std::string>& more = {}) const {
    std::vector<std::string> words = {"verify",
                                      "--old",
                                      workspace.path("old.ldif"),
                                      "--before",
                                      workspace.path("new.ldif"),
                                      "--result",
                                      workspace.path("merged.ldif"),
                                      "--from",
                                      "6.0"};
    words.insert(words.end(), more.begin(), more.end());
    return runTool(words);
  }

  // The old configuration includes a schema file of its own.
  void includeASchemaFile() const {
    const std::string entry =
        "\ndn: cn=ZOR Directory,cn=Schemas,cn=Configuration\nobjectClass: top\ncn: ZOR Directory\n"
        "zor-slapdSchemaAdditions: /opt/our.additions\n";
    workspace.write("old.ldif", sample::kOld + entry + "zor-slapdIncludeSchema: /opt/our.at\n", 0600);
    workspace.write("new.ldif", sample::kNew + entry, 0640);
  }

  void edit(const std::string& text, const std::string& by) const {
    std::string merged = workspace.read("merged.ldif");
    const std::size_t at = merged.find(text);
    ASSERT_NE(at, std::string::npos) << text;
    workspace.write("merged.ldif", merged.replace(at, text.size(), by), 0600);
  }
};

TEST_F(VerifyProcess, AgreesWithTheResultOfTheRules) {
  const ToolResult result = verify();
  EXPECT_EQ(result.status, 0) << result.out << result.err;
  EXPECT_THAT(result.out, AllOf(HasSubstr("  differs  0\n"), HasSubstr("  verdict  agrees: ")));
  EXPECT_EQ(result.err, "");
}

TEST_F(VerifyProcess, AgreesWithWhatApplyWrites) {
  std::filesystem::remove(workspace.path("merged.ldif"));
  ASSERT_EQ(apply({"-o", workspace.path("merged.ldif")}).status, 0);
  EXPECT_EQ(verify().status, 0);
}

TEST_F(VerifyProcess, KnowsSchemaFilesByTheDirectoryThatTheyWereCopiedTo) {
  includeASchemaFile();
  for (const char* directory : {"search", "search/etc", "target"}) {
    std::filesystem::create_directory(workspace.path(directory));
  }
  workspace.write("search/etc/our.at", "# schema\n");
  const std::string target = workspace.path("target");
  std::filesystem::remove(workspace.path("merged.ldif"));
  // 0, or 5 when apply found something else for a person to look at.
  const ToolResult applied =
      apply({"-o", workspace.path("merged.ldif"), "--search-dir", workspace.path("search"), "--target-dir", target});
  ASSERT_THAT(applied.status, testing::AnyOf(0, 5)) << applied.err;
  ASSERT_THAT(applied.err, Not(HasSubstr("audit says")));
  EXPECT_EQ(verify().status, 1);
  EXPECT_EQ(verify({"--target-dir", target}).status, 0);
  EXPECT_EQ(verify({"--target-dir", target + "/./"}).status, 0);
  std::filesystem::remove_all(target);
  EXPECT_EQ(verify({"--target-dir", target}).status, 0);
}

TEST_F(VerifyProcess, ExitsWith1AndNamesWhatWasEditedAfterwards) {
  edit("zor-slapdPort: 1389", "zor-slapdPort: 1390");
  const ToolResult result = verify();
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.out,
              AllOf(HasSubstr("CN=CONFIGURATION, zor-slapdPort: a value is another one"),
                    HasSubstr("expected: \"1389\""), HasSubstr("new.ldif:5"), HasSubstr("there is: \"1390\""),
                    HasSubstr("merged.ldif:5"), HasSubstr("verdict  differs")));
}

TEST_F(VerifyProcess, ExitsWith5WhenAValueIsMissing) {
  edit("zor-slapdSetenv: A=1\n", "");
  const ToolResult result = verify();
  EXPECT_EQ(result.status, 5);
  EXPECT_THAT(result.out, AllOf(HasSubstr("a value is missing"), HasSubstr("verdict  lost")));
}

TEST_F(VerifyProcess, NotesAChangedCommentWithoutChangingTheVerdict) {
  const int status = verify().status;
  edit("# the administrator's", "# somebody's");
  const ToolResult result = verify();
  EXPECT_EQ(result.status, status);
  EXPECT_THAT(result.out,
              AllOf(HasSubstr("new.ldif:7: no longer there as it was"), HasSubstr("merged.ldif:7: not there before")));
}

TEST_F(VerifyProcess, ShowsNoSecretUnlessAsked) {
  edit("zor-slapdAdminPW: Pl4nted-S3cret", "zor-slapdAdminPW: another-S3cret");
  for (const std::vector<std::string>& form : {std::vector<std::string>{}, {"--json"}, {"--all"}}) {
    const ToolResult result = verify(form);
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.out + result.err, Not(HasSubstr("S3cret")));
    EXPECT_THAT(result.out, HasSubstr("zor-slapdAdminPW"));
  }
  const ToolResult shown = verify({"--show-secrets"});
  EXPECT_THAT(shown.out, AllOf(HasSubstr(sample::kSecret), HasSubstr("another-S3cret")));
}

TEST_F(VerifyProcess, TellsAllThatItFoundAsJson) {
  edit("zor-slapdPort: 1389", "zor-slapdPort: 389");
  const ToolResult result = verify({"--json"});
  EXPECT_EQ(result.status, 1);
  const Json json = Json::parse(result.out);
  EXPECT_EQ(json["format_version"], 1);
  EXPECT_EQ(json["verdict"], "differs");
  EXPECT_EQ(json["source_version"], "6.0");
  ASSERT_EQ(json["discrepancies"].size(), 1U);
  const Json& found = json["discrepancies"][0];
  EXPECT_EQ(found["dn"], "CN=CONFIGURATION");
  EXPECT_EQ(found["attribute"], "zor-slapdPort");
  EXPECT_EQ(found["expected"]["value"], "1389");
  EXPECT_EQ(found["expected"]["before_line"], 5);
  EXPECT_EQ(found["found"]["value"], "389");
  std::size_t old = 0;
  for (const auto& count : json["old_values"]) old += count.get<std::size_t>();
  EXPECT_EQ(old, 21U);
}

TEST_F(VerifyProcess, ShowsTheFirstTwentyOfEachKindUnlessAskedForAll) {
  std::string more;
  for (int i = 0; i < 25; ++i) more += "zor-more: " + std::to_string(i) + "\n";
  edit("zor-slapdPort: 1389\n", "zor-slapdPort: 1389\n" + more);
  EXPECT_THAT(verify().out, HasSubstr("    and 5 more; --all shows them\n"));
  EXPECT_THAT(verify({"--all"}).out, AllOf(Not(HasSubstr("more; --all")), HasSubstr("\"24\"")));
}

TEST_F(VerifyProcess, KnowsTheLastLineOfTheNewFileThatGotAnEnd) {
  workspace.write("new.ldif", sample::kNew + std::string("# the last line"), 0640);
  std::filesystem::remove(workspace.path("merged.ldif"));
  ASSERT_EQ(apply({"-o", workspace.path("merged.ldif")}).status, 0);
  ASSERT_THAT(workspace.read("merged.ldif"), HasSubstr("# the last line\n"));
  EXPECT_THAT(verify().out, Not(HasSubstr("no longer there as it was")));
  edit("# the last line", "# another line");
  EXPECT_THAT(verify().out, HasSubstr("no longer there as it was"));
}

TEST_F(VerifyProcess, NamesTheOldLineOfAValueThatNoRuleBringsThere) {
  edit("zor-slapdPort: 1389\n", "zor-slapdPort: 1389\nzor-slapdSysLogLevel: h\n");
  const ToolResult result = verify();
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.out, AllOf(HasSubstr("an old value is there that no rule brings there"),
                                HasSubstr("      it is that of " + workspace.path("old.ldif") + ":7\n")));
  EXPECT_EQ(Json::parse(verify({"--json"}).out)["discrepancies"][0]["old_line"], 7);
}

TEST_F(VerifyProcess, ListsTheSchemaFilesThatAreIncludedAsBefore) {
  includeASchemaFile();
  std::filesystem::remove(workspace.path("merged.ldif"));
  apply({"-o", workspace.path("merged.ldif")});
  EXPECT_TRUE(Json::parse(verify({"--json"}).out)["schema_files_left"].empty()) << "none were to be copied";
  const Json files = Json::parse(verify({"--target-dir", "/opt/copies", "--json"}).out)["schema_files_left"];
  ASSERT_EQ(files.size(), 1U);
  EXPECT_EQ(files[0]["value"], "/opt/our.at");
  const std::string merged = workspace.read("merged.ldif");
  const auto end = merged.begin() + static_cast<std::ptrdiff_t>(merged.find("zor-slapdIncludeSchema: /opt/our.at"));
  EXPECT_EQ(files[0]["line"], std::count(merged.begin(), end, '\n') + 1);
}

TEST_F(VerifyProcess, TouchesNoFile) {
  const Workspace::State state = workspace.state();
  verify();
  verify({"--json"});
  EXPECT_EQ(workspace.state(), state);
}

TEST_F(VerifyProcess, RefusesOneFileGivenTwice) {
  const ToolResult result = runTool({"verify", "--old", workspace.path("old.ldif"), "--before",
                                     workspace.path("new.ldif"), "--result", workspace.path("new.ldif")});
  EXPECT_EQ(result.status, 2);
  EXPECT_THAT(result.err, HasSubstr("are one file"));
}

TEST_F(VerifyProcess, RefusesAVersionThatIsNoneAndAFileThatIsNoConfiguration) {
  EXPECT_EQ(verify({"--from", "6.1"}).status, 2);  // given twice
  EXPECT_EQ(runTool({"verify", "--old", workspace.path("old.ldif"), "--before", workspace.path("new.ldif"), "--result",
                     workspace.path("merged.ldif"), "--from", "6.1"})
                .status,
            2);
  workspace.write("old.ldif", "dn: o=Acme\no: Acme\n");
  const ToolResult result = verify();
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.err, HasSubstr("there is no entry under CN=CONFIGURATION"));
}

TEST_F(VerifyProcess, NamesEveryProblemOfEveryFileThatItCannotRead) {
  workspace.write("old.ldif", "dn: cn=Configuration\nnonsense\n");
  workspace.write("merged.ldif", "dn: cn=Configuration\nmore nonsense\n");
  const ToolResult result = verify();
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.err, AllOf(HasSubstr("old.ldif:2"), HasSubstr("merged.ldif:2")));
}

TEST(VerifyProcessOnExamples, RecognisesTheSourceVersionAndFindsNoDiscrepancy) {
  struct Files {
    const char* version;
    const char* old;
    const char* merged;
  };
  for (const Files& files :
       {Files{"4.1", "4.1/old.ldif", "4.1/merged.ldif"}, Files{"5.1", "5.1/old-peer.ldif", "5.1/merged-peer.ldif"},
        Files{"5.2", "5.2/old.ldif", "5.2/merged.ldif"}, Files{"6.0", "6.0/old.ldif", "6.0/merged.ldif"}}) {
    const ToolResult result =
        runTool({"verify", "--old", examplePath(files.old), "--before",
                 examplePath(std::string(files.version) + "/new.ldif"), "--result", examplePath(files.merged)});
    EXPECT_THAT(result.out, AllOf(HasSubstr("  differs  0\n"),
                                  HasSubstr(std::string("  version  ") + files.version + ", recognised from")));
    EXPECT_TRUE(result.status == 0 || result.status == 5) << result.out;
  }
}

}  // namespace
