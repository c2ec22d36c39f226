// Tests of what plan, apply and why say of a configuration that has been migrated already, run as a process. Version
// 5.1 makes another result of its own, so merging once more would not tell.

#include <gmock/gmock.h>

#include <filesystem>
#include <nlohmann/json.hpp>

#include "ExamplePath.h"
#include "ToolProcess.h"
#include "Workspace.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

class AppliedBefore : public testing::Test {
 protected:
  void SetUp() override {
    std::filesystem::copy_file(examplePath("5.1/new.ldif"), workspace.path("new.ldif"));
    ASSERT_EQ(run("apply").status, 0);
    m_result = workspace.read("new.ldif");
  }

  ToolResult run(const std::string& command, const std::vector<std::string>& more = {}) const {
    std::vector<std::string> words = {command, "--old", examplePath("5.1/old.ldif"), "--new",
                                      workspace.path("new.ldif")};
    words.insert(words.end(), more.begin(), more.end());
    return runTool(words);
  }
  std::string backup() const {
    for (const std::string& name : workspace.names()) {
      if (name.ends_with(".bak")) return workspace.path(name);
    }
    return {};
  }

  const Workspace workspace;
  std::string m_result;
};

// The values of the configuration as dump counts them.
std::size_t valuesOf(const std::string& path) {
  std::size_t count = 0;
  const auto dump = nlohmann::json::parse(runTool({"dump", "--json", path}).out);
  for (const auto& entry : dump.at("entries")) {
    for (const auto& attribute : entry.at("attributes")) count += attribute.at("values").size();
  }
  return count;
}

TEST_F(AppliedBefore, HasTheAccountOfWhatIsInTheFile) {
  const auto second = run("apply", {"--json"});
  EXPECT_EQ(second.status, 0) << second.err;
  const auto report = nlohmann::json::parse(second.out);
  EXPECT_EQ(report.at("outcome").at("kind"), "nothing-to-do");
  EXPECT_EQ(report.at("sums").at("result_values").at("all"), valuesOf(workspace.path("new.ldif")));
  EXPECT_GT(report.at("sums").at("old_values").at("carried"), 0);
  EXPECT_EQ(report.at("inputs").at(1).at("path"), backup());
  EXPECT_EQ(workspace.read("new.ldif"), m_result);
}

TEST_F(AppliedBefore, IsNothingToDoForAPlanAsWell) {
  const auto plan = run("plan", {"-o", workspace.path("plan.json"), "--exit-code"});
  EXPECT_EQ(plan.status, 0) << "there are no changes";
  EXPECT_THAT(plan.out, StartsWith("Nothing to do: "));
  const auto applied = runTool({"apply", workspace.path("plan.json")});
  EXPECT_EQ(applied.status, 0) << applied.err;
  EXPECT_THAT(applied.out, StartsWith("Nothing to do: "));
  EXPECT_EQ(workspace.read("new.ldif"), m_result);
}

TEST_F(AppliedBefore, CanBeDoneAgainFromSuchAPlanAfterAnUndo) {
  ASSERT_EQ(run("plan", {"-o", workspace.path("plan.json")}).status, 0);
  ASSERT_EQ(runTool({"undo", workspace.path("new.ldif")}).status, 0);
  EXPECT_EQ(runTool({"apply", workspace.path("plan.json")}).status, 0);
  EXPECT_EQ(workspace.read("new.ldif"), m_result);
}

TEST_F(AppliedBefore, IsNothingToDoForAPlanThatWasMadeBefore) {
  ASSERT_EQ(runTool({"undo", workspace.path("new.ldif")}).status, 0);
  ASSERT_EQ(run("plan", {"-o", workspace.path("plan.json")}).status, 0);
  ASSERT_EQ(run("apply").status, 0) << "without the plan";
  const auto applied = runTool({"apply", workspace.path("plan.json")});
  EXPECT_EQ(applied.status, 0) << applied.err;
  EXPECT_THAT(applied.out, StartsWith("Nothing to do: "));
}

TEST_F(AppliedBefore, IsNothingToDoForItsPlanAlsoWhenTheBackupHasGone) {
  ASSERT_EQ(runTool({"undo", workspace.path("new.ldif")}).status, 0);
  ASSERT_EQ(run("plan", {"-o", workspace.path("plan.json")}).status, 0);
  ASSERT_EQ(runTool({"apply", workspace.path("plan.json")}).status, 0);
  while (!backup().empty()) std::filesystem::remove(backup());
  const auto applied = runTool({"apply", workspace.path("plan.json")});
  EXPECT_EQ(applied.status, 0) << applied.err;
  EXPECT_THAT(applied.out, StartsWith("Nothing to do: "));
  EXPECT_EQ(workspace.read("new.ldif"), m_result);
}

TEST_F(AppliedBefore, IsNoExcuseForAPlanOfAnotherNewConfiguration) {
  ASSERT_EQ(runTool({"undo", workspace.path("new.ldif")}).status, 0);
  const std::string before = workspace.read("new.ldif");
  workspace.write("new.ldif", "# another one\n" + before);
  ASSERT_EQ(run("plan", {"-o", workspace.path("plan.json")}).status, 0);
  workspace.write("new.ldif", before);
  ASSERT_EQ(run("apply").status, 0);
  const auto result = runTool({"apply", workspace.path("plan.json")});
  EXPECT_EQ(result.status, 4) << result.out;
  EXPECT_THAT(result.err, HasSubstr("the plan is stale"));
  EXPECT_EQ(workspace.read("new.ldif"), m_result);
}

TEST_F(AppliedBefore, IsToldWithoutAnAccountWhenTheBackupHasGone) {
  std::filesystem::remove(backup());
  const auto second = run("apply");
  EXPECT_EQ(second.status, 0) << second.err;
  EXPECT_THAT(second.out, StartsWith("Nothing to do: " + workspace.path("new.ldif") + " is what the apply of "));
  const auto report = run("apply", {"--json"});
  EXPECT_EQ(report.status, 1) << "no account is better than a wrong one";
  EXPECT_EQ(report.out, "");
  EXPECT_THAT(report.err, HasSubstr("no account of the apply of "));
  EXPECT_EQ(workspace.read("new.ldif"), m_result);
  EXPECT_THAT(workspace.names(), ElementsAre("new.ldif"));
}

TEST_F(AppliedBefore, IsNotKnownFromARecordThatIsDamagedAndThatIsTold) {
  const std::vector<std::string> environment = {"CFGMIG_STATE_DIRECTORY=" + workspace.path("state")};
  workspace.write("other.ldif", "");
  std::filesystem::copy_file(examplePath("5.1/new.ldif"), workspace.path("other.ldif"),
                             std::filesystem::copy_options::overwrite_existing);
  const auto apply = [&] {
    return runTool(ToolSetup{
        {"apply", "--old", examplePath("5.1/old.ldif"), "--new", workspace.path("other.ldif"), "-n"}, environment});
  };
  ToolSetup first{{"apply", "--old", examplePath("5.1/old.ldif"), "--new", workspace.path("other.ldif")}, environment};
  ASSERT_EQ(runTool(first).status, 0);
  ASSERT_THAT(apply().out, StartsWith("Nothing to do: "));
  const std::filesystem::directory_iterator records(workspace.path("state/undo"));
  const std::string record = "state/undo/" + records->path().filename().string();
  workspace.write(record, "{}");
  const auto result = apply();
  EXPECT_THAT(result.out, StartsWith("Plan for a 5.1 configuration"));
  EXPECT_THAT(result.err, HasSubstr(workspace.path(record) + ": it is no record that cfgmig apply has written"));
}

TEST_F(AppliedBefore, IsNoExcuseForAnotherVersion) {
  const auto other = run("apply", {"--from", "5.2", "-n"});
  EXPECT_THAT(other.out, StartsWith("Plan for a 5.2 configuration"));
}

// A loss is a loss, also when nothing is left to be written.
TEST(ApplyTells, ExitsWithFiveForALossThatLeavesTheFileAsItIs) {
  const Workspace workspace;
  const std::string head = "dn: cn=Configuration\nobjectClass: top\ncn: c\n";
  workspace.write("old", head + "\ndn: cn=x, cn=Configuration\ncn: x\nzor-a: 1\n");
  workspace.write("new", head);
  const auto result =
      runTool({"apply", "--old", workspace.path("old"), "--new", workspace.path("new"), "--from", "6.0"});
  EXPECT_EQ(result.status, 5);
  EXPECT_THAT(result.out, StartsWith("Nothing to do: "));
  EXPECT_THAT(result.err, HasSubstr(workspace.path("old") + ":5: lost: "));
  EXPECT_THAT(workspace.names(), ElementsAre("new", "old"));
}

TEST(ApplyTells, RefusesAReportOverAForeignFileBeforeAnythingIsWritten) {
  const Workspace workspace;
  std::filesystem::copy_file(examplePath("6.0/new.ldif"), workspace.path("new"));
  workspace.write("mine", "hello\n");
  const auto before = workspace.state();
  const auto result = runTool({"apply", "--old", examplePath("6.0/old.ldif"), "--new", workspace.path("new"),
                               "--json-report", workspace.path("mine")});
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.err, HasSubstr("there is a file that is no report of cfgmig"));
  EXPECT_EQ(workspace.state(), before);
}

TEST(ApplyTells, NamesAVersionThatWasGivenInTheCommandThatAuditsTheResult) {
  const Workspace workspace;
  std::filesystem::copy_file(examplePath("6.0/new.ldif"), workspace.path("new"));
  const auto result =
      runTool({"apply", "--old", examplePath("6.0/old.ldif"), "--new", workspace.path("new"), "--from", "5.2"});
  const std::string next = result.out.substr(result.out.find("  next      cfgmig ") + 19);
  EXPECT_THAT(next, testing::EndsWith(" --from 5.2\n"));
}

TEST(Undo, ThatCannotBeToldHasHappenedAllTheSame) {
  const Workspace workspace;
  std::filesystem::copy_file(examplePath("6.0/new.ldif"), workspace.path("new"));
  const std::string text = workspace.read("new");
  ASSERT_EQ(runTool({"apply", "--old", examplePath("6.0/old.ldif"), "--new", workspace.path("new")}).status, 0);
  ToolSetup setup{{"undo", workspace.path("new")}};
  setup.outTo = "/dev/full";
  EXPECT_EQ(runTool(setup).status, 5);
  EXPECT_EQ(workspace.read("new"), text);
}

}  // namespace
