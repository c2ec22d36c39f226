// Tests of what cfgmig plan writes, and of apply carrying a plan out, run as a process on real files.

#include <algorithm>
#include <nlohmann/json.hpp>

#include "ApplyFixture.h"

namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::SizeIs;
using testing::StartsWith;

class Plan : public ApplyFixture {
 protected:
  std::vector<std::string> planWords(const std::vector<std::string>& more = {}) const {
    std::vector<std::string> all = words(more);
    all.front() = "plan";
    return all;
  }
  ToolResult plan(const std::vector<std::string>& more = {}) const { return runTool(planWords(more)); }
  std::string planFile() const { return workspace.path("plan.json"); }
};

std::ptrdiff_t linesOf(const std::string& text) { return std::count(text.begin(), text.end(), '\n'); }

TEST_F(Plan, WritesNothingAndSaysWhatWouldBe) {
  const auto before = workspace.state();
  const auto result = plan();
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(workspace.state(), before);
  EXPECT_THAT(result.out, StartsWith("Plan for a 6.0 configuration; nothing has been written.\n  lost      nothing\n"));
  EXPECT_LE(linesOf(result.out), 15);
}

TEST_F(Plan, IsAReportInJsonThatNamesItsInputsByTheirFingerprints) {
  const auto result = plan({"-o", planFile()});
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(workspace.mode("plan.json"), 0600U);
  EXPECT_THAT(result.out, EndsWith("  next      cfgmig apply " + planFile() + "\n"));
  const auto json = nlohmann::json::parse(workspace.read("plan.json"));
  EXPECT_EQ(json.at("format_version"), 1);
  EXPECT_EQ(json.at("outcome").at("kind"), "plan");
  ASSERT_EQ(json.at("inputs").size(), 2U);
  EXPECT_EQ(json.at("inputs").at(0).at("path"), workspace.path("old.ldif"));
  EXPECT_EQ(json.at("inputs").at(0).at("size"), std::string(sample::kOld).size());
  const std::size_t values = json.at("sums").at("old_values").at("all");
  std::size_t sum = 0;
  for (const auto& [fate, count] : json.at("sums").at("old_values").items()) {
    if (fate != "all") sum += count.get<std::size_t>();
  }
  EXPECT_EQ(sum, values);
}

TEST_F(Plan, WritesEveryReportInOneRun) {
  const auto result = plan({"-o", planFile(), "--text-report", workspace.path("r.txt"), "--ldif-report",
                            workspace.path("r.ldif"), "--html-report", workspace.path("r.html")});
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_THAT(workspace.read("r.html"), HasSubstr("<!doctype html>"));
  EXPECT_THAT(workspace.read("r.ldif"), HasSubstr("changetype: "));
  EXPECT_THAT(workspace.read("r.txt"), HasSubstr("zor-slapdSizeLimit"));
  for (const char* name : {"plan.json", "r.txt", "r.ldif", "r.html"}) {
    EXPECT_EQ(workspace.mode(name), 0600U) << name;
    EXPECT_THAT(workspace.read(name), Not(HasSubstr(sample::kSecret))) << name;
  }
}

TEST_F(Plan, ShowsAReportOnStandardOutput) {
  EXPECT_EQ(nlohmann::json::parse(plan({"--json"}).out).at("format_version"), 1);
  EXPECT_THAT(plan({"--format", "ldif"}).out, HasSubstr("changetype: "));
  EXPECT_EQ(plan({"--format", "pdf"}).status, 2);
  EXPECT_EQ(plan({"--format", "text", "--json"}).status, 2);
}

TEST_F(Plan, ShowsSecretsOnlyWhenAsked) {
  EXPECT_THAT(plan({"--format", "text"}).out, Not(HasSubstr(sample::kSecret)));
  EXPECT_THAT(plan({"--format", "text", "--show-secrets"}).out, HasSubstr(sample::kSecret));
}

TEST_F(Plan, ExitsWithThreeForChangesOnlyWhenAsked) {
  EXPECT_EQ(plan().status, 0);
  EXPECT_EQ(plan({"--exit-code"}).status, 3);
  ASSERT_EQ(apply().status, 0);
  EXPECT_EQ(plan({"--exit-code"}).status, 0);
}

TEST_F(Plan, TellsWhatStandsAgainstTheSave) {
  std::filesystem::create_hard_link(workspace.path("new.ldif"), workspace.path("twin.ldif"));
  const auto result = plan({"-o", planFile()});
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.err, HasSubstr(workspace.path("new.ldif")));
  EXPECT_THAT(workspace.read("plan.json"), HasSubstr("\"format_version\"")) << "the plan is saved all the same";
}

TEST_F(Plan, RefusesAReportInThePlaceOfAnInput) {
  const auto before = workspace.state();
  EXPECT_EQ(plan({"-o", workspace.path("old.ldif")}).status, 2);
  EXPECT_EQ(plan({"--html-report", workspace.path("new.ldif")}).status, 2);
  EXPECT_EQ(plan({"-o", planFile(), "--text-report", planFile()}).status, 2);
  workspace.write("precious", "mine\n");
  EXPECT_EQ(plan({"-o", workspace.path("precious")}).status, 1);
  EXPECT_EQ(workspace.read("precious"), "mine\n");
  auto after = workspace.state();
  after.erase("precious");
  EXPECT_EQ(after, before);
}

TEST_F(Plan, IsCarriedOutByApply) {
  ASSERT_EQ(plan({"-o", planFile()}).status, 0);
  const auto result = runTool({"apply", planFile()});
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(workspace.read("new.ldif"), sample::kMerged);
  EXPECT_THAT(result.out, StartsWith("Applied a 6.0 configuration.\n"));
}

TEST_F(Plan, IsCarriedOutWithTheTargetThatItNames) {
  ASSERT_EQ(plan({"-o", planFile(), "--target", workspace.path("out.ldif")}).status, 0);
  EXPECT_EQ(runTool({"apply", planFile()}).status, 0);
  EXPECT_EQ(workspace.read("out.ldif"), sample::kMerged);
  EXPECT_EQ(workspace.read("new.ldif"), sample::kNew);
}

TEST_F(Plan, LeavesNothingToDoWhenItIsAppliedTwice) {
  ASSERT_EQ(plan({"-o", planFile()}).status, 0);
  ASSERT_EQ(runTool({"apply", planFile()}).status, 0);
  const auto before = workspace.state();
  const auto again = runTool({"apply", planFile()});
  EXPECT_EQ(again.status, 0) << again.err;
  EXPECT_THAT(again.out, StartsWith("Nothing to do"));
  EXPECT_EQ(workspace.state(), before);
}

TEST_F(Plan, IsRefusedWhenItIsStale) {
  for (const char* changed : {"old.ldif", "new.ldif"}) {
    ASSERT_EQ(plan({"-o", planFile()}).status, 0);
    const std::string content = workspace.read(changed);
    workspace.write(changed, content + "# edited\n");
    const auto before = workspace.state();
    const auto result = runTool({"apply", planFile()});
    EXPECT_EQ(result.status, 4);
    EXPECT_THAT(result.err, HasSubstr(workspace.path(changed) + ": is not what the plan of "));
    EXPECT_THAT(result.err, HasSubstr("stale"));
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(workspace.state(), before);
    workspace.write(changed, content);
  }
}

TEST_F(Plan, CannotBeGivenTogetherWithWhatItSays) {
  ASSERT_EQ(plan({"-o", planFile()}).status, 0);
  EXPECT_EQ(runTool({"apply", planFile(), "--old", workspace.path("old.ldif")}).status, 2);
  EXPECT_EQ(runTool({"apply", planFile(), "-o", workspace.path("out.ldif")}).status, 2);
  EXPECT_EQ(runTool({"apply"}).status, 2);
}

TEST_F(Plan, ThatIsNoneIsRefusedWithTheReason) {
  const auto before = workspace.state();
  for (const char* content : {"", "{}", "[1]", "{\"format\": \"cfgmig report\"}", "not json"}) {
    workspace.write("plan.json", content);
    const auto result = runTool({"apply", planFile()});
    EXPECT_EQ(result.status, 1) << content;
    EXPECT_THAT(result.err, StartsWith("cfgmig: " + planFile() + ": ")) << content;
  }
  auto after = workspace.state();
  after.erase("plan.json");
  EXPECT_EQ(after, before);
}

// --- why

TEST_F(Plan, TellsWhyForAValueThatWasCarried) {
  ASSERT_EQ(plan({"-o", planFile()}).status, 0);
  const auto result = runTool({"why", planFile(), "cn=front end,cn=configuration:zor-slapdSetenv=A=1"});
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_THAT(result.out, HasSubstr(workspace.path("old.ldif") + ":14: zor-slapdSetenv: A=1\n      carried -- "));
  EXPECT_THAT(result.out, HasSubstr("is now at   result:15: CN=FRONT END, CN=CONFIGURATION, zor-slapdSetenv\n"));
  EXPECT_THAT(result.out, HasSubstr("what was done, in order:\n  new: add-value "));
  EXPECT_THAT(result.out, Not(HasSubstr("B=2")));
}

TEST_F(Plan, TellsWhyForAWholeEntryAndForOneOfTheNewServer) {
  ASSERT_EQ(plan({"-o", planFile()}).status, 0);
  const auto moved = runTool({"why", planFile(), "cn=Admin Audit, cn=Configuration"});
  EXPECT_EQ(moved.status, 0) << moved.err;
  EXPECT_THAT(moved.out, HasSubstr("CN=ADMIN AUDIT,CN=LOG MANAGEMENT,CN=CONFIGURATION"));
  EXPECT_THAT(moved.out, HasSubstr("moved -- "));
  const auto ofNew = runTool({"why", planFile(), "cn=Configuration:zor-slapdSizeLimit"});
  EXPECT_THAT(ofNew.out, HasSubstr("zor-slapdSizeLimit: 500\n      replaced -- "));
  EXPECT_THAT(ofNew.out, HasSubstr("zor-slapdSizeLimit: 900\n      carried -- "));
}

TEST_F(Plan, TellsWhyWithoutShowingSecrets) {
  ASSERT_EQ(plan({"-o", planFile()}).status, 0);
  const auto result = runTool({"why", planFile(), "cn=Configuration:zor-slapdAdminPW"});
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_THAT(result.out, HasSubstr("zor-slapdAdminPW: [redacted]"));
  EXPECT_THAT(result.out, Not(HasSubstr(sample::kSecret)));
  const auto asked = runTool({"why", planFile(), std::string("cn=Configuration:zor-slapdAdminPW=") + sample::kSecret});
  EXPECT_EQ(asked.status, 0) << asked.err;
  EXPECT_THAT(asked.out, HasSubstr("not compared: 3 secrets"));
}

TEST_F(Plan, TellsWhyAsJson) {
  ASSERT_EQ(plan({"-o", planFile()}).status, 0);
  const auto result = runTool({"why", planFile(), "cn=Configuration:zor-slapdPort=389", "--json"});
  const auto json = nlohmann::json::parse(result.out);
  ASSERT_EQ(json.at("values").size(), 1U);
  EXPECT_EQ(json.at("values").at(0).at("line"), 6);
  EXPECT_FALSE(json.at("values").at(0).at("reason").at("words").get<std::string>().empty());
}

TEST_F(Plan, TellsThatItIsStaleAndAnswersAllTheSame) {
  ASSERT_EQ(plan({"-o", planFile()}).status, 0);
  workspace.write("old.ldif", "dn: cn=Configuration\n");
  const auto result = runTool({"why", planFile(), "cn=Configuration:zor-slapdPort"});
  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(result.err, HasSubstr(workspace.path("old.ldif") + " has changed since the plan"));
  EXPECT_THAT(result.out, HasSubstr("389"));
}

TEST_F(Plan, TellsWhyOfAValueThatIsNoText) {
  std::string old = sample::kOld;
  old.insert(old.find("zor-custom:"), "zor-bytes:: 6Q==\n");
  workspace.write("old.ldif", old, 0600);
  ASSERT_EQ(plan({"-o", planFile()}).status, 0);
  const auto result = runTool({"why", planFile(), "cn=Only Old,cn=Configuration:zor-bytes=\xE9", "--json"});
  EXPECT_EQ(result.status, 0) << result.err;
  const auto json = nlohmann::json::parse(result.out);
  ASSERT_GE(json.at("values").size(), 1U);
  EXPECT_EQ(json.at("values").at(0).at("value").at("base64"), "6Q==");
  EXPECT_EQ(runTool({"why", planFile(), "cn=Only Old,cn=Configuration:zor-bytes=\xE8"}).status, 1);
}

TEST_F(Plan, TellsWhatTheStoreRefused) {
  ASSERT_EQ(plan({"-o", planFile()}).status, 0);
  auto json = nlohmann::json::parse(workspace.read("plan.json"));
  const std::vector<std::string> question = {"why", planFile(), "cn=Configuration:zor-slapdSizeLimit"};
  EXPECT_THAT(runTool(question).out, Not(HasSubstr("refused")));
  for (auto& event : json.at("events")) event["code"] = 80;
  workspace.write("plan.json", json.dump());
  EXPECT_THAT(runTool(question).out, HasSubstr(" -- refused: "));
}

TEST_F(Plan, HasNoAnswerWhenItsAccountIsNotWhatPlanWrites) {
  ASSERT_EQ(plan({"-o", planFile()}).status, 0);
  auto json = nlohmann::json::parse(workspace.read("plan.json"));
  json.at("reasons").at(0).erase("words");
  workspace.write("plan.json", json.dump());
  const auto result = runTool({"why", planFile(), "cn=Configuration:zor-slapdPort"});
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.err, HasSubstr(planFile() + ": its account of the values is not what cfgmig writes"));
}

TEST_F(Plan, NamesNoLossInAnEntryThatHasNothingToLose) {
  workspace.write("old.ldif", sample::kOld + std::string("\ndn: o=Acme\n"), 0600);
  EXPECT_THAT(plan().err, Not(HasSubstr("lost: ")));
  workspace.write("old.ldif", sample::kOld + std::string("\ndn: o=Acme\no: Acme\n"), 0600);
  EXPECT_THAT(plan().err, HasSubstr("lost: o=Acme"));
}

TEST_F(Plan, RefusesAReportWhereThereIsNoDirectory) {
  const auto before = workspace.state();
  const std::string report = workspace.path("none/r.txt");
  const auto result = plan({"-o", planFile(), "--text-report", report});
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.err, HasSubstr(report + ": cannot be written: its directory: No such file or directory"));
  EXPECT_EQ(workspace.state(), before);
}

TEST_F(Plan, HasNoAnswerForWhatIsNotThere) {
  ASSERT_EQ(plan({"-o", planFile()}).status, 0);
  EXPECT_EQ(runTool({"why", planFile(), "cn=Nowhere"}).status, 1);
  for (const char* question : {"cn=Configuration:noSuchAttribute", "cn=Configuration:cn=No such value"}) {
    const auto result = runTool({"why", planFile(), question});
    EXPECT_EQ(result.status, 1) << question;
    EXPECT_THAT(result.err, HasSubstr("none of the configurations has it")) << question;
  }
  EXPECT_EQ(runTool({"why", planFile(), "no dn"}).status, 2);
}

// --- undo

TEST_F(Plan, IsUndoneBitForBit) {
  ASSERT_EQ(apply().status, 0);
  const auto result = runTool({"undo", workspace.path("new.ldif")});
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(workspace.read("new.ldif"), sample::kNew);
  EXPECT_EQ(workspace.mode("new.ldif"), 0640U);
  EXPECT_EQ(runTool({"undo", workspace.path("new.ldif")}).status, 1) << "there is nothing more to take back";
}

TEST_F(Plan, IsNotUndoneInAPreview) {
  ASSERT_EQ(apply().status, 0);
  const auto before = workspace.state();
  const auto result = runTool({"undo", workspace.path("new.ldif"), "-n"});
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_THAT(result.out, HasSubstr("put back " + workspace.path("new.ldif")));
  EXPECT_EQ(workspace.state(), before);
}

TEST_F(Plan, IsNotUndoneWhenTheFileHasChangedSince) {
  ASSERT_EQ(apply().status, 0);
  workspace.write("new.ldif", workspace.read("new.ldif") + "# edited\n");
  const auto before = workspace.state();
  const auto result = runTool({"undo", workspace.path("new.ldif")});
  EXPECT_EQ(result.status, 4);
  EXPECT_THAT(result.err, HasSubstr(workspace.path("new.ldif")));
  EXPECT_EQ(workspace.state(), before);
}

TEST_F(Plan, IsNotUndoneWhenTheBackupIsGoneOrHasChanged) {
  ASSERT_EQ(apply().status, 0);
  const auto backups = workspace.namesAfter("new.ldif");
  ASSERT_THAT(backups, SizeIs(1));
  const std::string content = workspace.read(backups[0]);
  workspace.write(backups[0], content + "# edited\n");
  EXPECT_EQ(runTool({"undo", workspace.path("new.ldif")}).status, 4);
  std::filesystem::remove(workspace.path(backups[0]));
  EXPECT_EQ(runTool({"undo", workspace.path("new.ldif")}).status, 4);
  EXPECT_EQ(workspace.read("new.ldif"), sample::kMerged);
}

TEST_F(Plan, IsNotUndoneFromARecordThatIsNone) {
  const std::vector<std::string> environment = {"CFGMIG_STATE_DIRECTORY=" + workspace.path("state")};
  ASSERT_EQ(runTool(ToolSetup{words(), environment}).status, 0);
  const std::filesystem::directory_iterator records(workspace.path("state/undo"));
  const std::string record = "state/undo/" + records->path().filename().string();
  EXPECT_EQ(workspace.mode(record), 0600U);
  EXPECT_EQ(workspace.mode("state/undo"), 0700U);
  for (const char* content : {"", "{}", "[]", "{\"format\": \"cfgmig undo\", \"format_version\": 1}"}) {
    workspace.write(record, content);
    const auto result = runTool(ToolSetup{{"undo", workspace.path("new.ldif")}, environment});
    EXPECT_EQ(result.status, 1) << content;
    EXPECT_THAT(result.err, HasSubstr(workspace.path(record))) << content;
  }
  EXPECT_EQ(workspace.read("new.ldif"), sample::kMerged);
}

TEST_F(Plan, IsUndoneWithTheSchemaFilesThatWereCopied) {
  std::string old = sample::kOld;
  old +=
      "\ndn: cn=Schemas, cn=Configuration\nobjectClass: top\ncn: Schemas\n"
      "\ndn: cn=ZOR Directory, cn=Schemas, cn=Configuration\nobjectClass: top\ncn: ZOR Directory\n"
      "zor-slapdIncludeSchema: /old/etc/mine.oc\nzor-slapdIncludeSchema: /old/etc/other.at\n";
  workspace.write("old.ldif", old, 0600);
  std::filesystem::create_directories(workspace.path("server/etc"));
  std::filesystem::create_directories(workspace.path("copies"));
  workspace.write("server/etc/mine.oc", "classes\n");
  workspace.write("server/etc/other.at", "attributes\n");
  workspace.write("copies/other.at", "what was there\n");
  const std::vector<std::string> schemas = {"--search-dir", workspace.path("server"), "--target-dir",
                                            workspace.path("copies")};
  const auto done = apply(schemas);
  ASSERT_EQ(done.status, 0) << done.out << done.err;
  ASSERT_EQ(workspace.read("copies/mine.oc"), "classes\n");
  ASSERT_EQ(workspace.read("copies/other.at"), "attributes\n");
  EXPECT_EQ(apply(schemas).status, 0);

  const auto result = runTool({"undo", workspace.path("new.ldif")});
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(workspace.read("new.ldif"), sample::kNew);
  EXPECT_FALSE(std::filesystem::exists(workspace.path("copies/mine.oc")));
  EXPECT_EQ(workspace.read("copies/other.at"), "what was there\n");
}

TEST_F(Plan, IsNotUndoneAtAllWhenACopyHasChangedSince) {
  std::string old = sample::kOld;
  old +=
      "\ndn: cn=ZOR Directory, cn=Schemas, cn=Configuration\nobjectClass: top\ncn: ZOR Directory\n"
      "zor-slapdIncludeSchema: /old/etc/mine.oc\n";
  workspace.write("old.ldif", old, 0600);
  std::filesystem::create_directories(workspace.path("server/etc"));
  std::filesystem::create_directories(workspace.path("copies"));
  workspace.write("server/etc/mine.oc", "classes\n");
  ASSERT_EQ(apply({"--search-dir", workspace.path("server"), "--target-dir", workspace.path("copies")}).status, 0);
  const std::string merged = workspace.read("new.ldif");
  workspace.write("copies/mine.oc", "edited\n");
  EXPECT_EQ(runTool({"undo", workspace.path("new.ldif")}).status, 4);
  EXPECT_EQ(workspace.read("new.ldif"), merged);
  EXPECT_EQ(workspace.read("copies/mine.oc"), "edited\n");
}

}  // namespace
