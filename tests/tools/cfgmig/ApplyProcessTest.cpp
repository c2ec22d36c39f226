// Tests of what cfgmig apply does and tells, run as a process on real files.

#include <algorithm>

#include "ApplyFixture.h"

namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;
using testing::StartsWith;

class Apply : public ApplyFixture {};

std::ptrdiff_t linesOf(const std::string& text) { return std::count(text.begin(), text.end(), '\n'); }

TEST_F(Apply, ReplacesTheNewConfigurationAndKeepsItBesideWithItsMode) {
  const auto result = apply();
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(result.err, "");
  EXPECT_EQ(workspace.read("new.ldif"), sample::kMerged);
  EXPECT_EQ(workspace.mode("new.ldif"), 0640U);
  EXPECT_EQ(workspace.read("old.ldif"), sample::kOld);

  const auto backups = workspace.namesAfter("new.ldif");
  ASSERT_THAT(backups, SizeIs(1));
  EXPECT_EQ(workspace.read(backups[0]), sample::kNew);
  EXPECT_EQ(workspace.mode(backups[0]), 0640U);
  EXPECT_THAT(result.out, HasSubstr("  backup    " + workspace.path(backups[0]) + "\n"));
  EXPECT_THAT(workspace.names(), SizeIs(3)) << "no litter";
}

TEST_F(Apply, GivesAShortAccount) {
  const auto result = apply();
  EXPECT_THAT(result.out, StartsWith("Applied a 6.0 configuration.\n  lost      nothing\n"));
  EXPECT_THAT(result.out, HasSubstr("  old       21 values: "));
  EXPECT_THAT(result.out, HasSubstr("  target    " + workspace.path("new.ldif") + "\n"));
  EXPECT_THAT(result.out, HasSubstr("  next      cfgmig verify --old " + workspace.path("old.ldif") + " --before "));
  EXPECT_LE(linesOf(result.out), 15);
}

TEST_F(Apply, WritesToAnotherFileWithoutABackup) {
  const auto before = workspace.state();
  const auto result = apply({"-o", workspace.path("out.ldif")});
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(workspace.read("out.ldif"), sample::kMerged);
  EXPECT_EQ(workspace.mode("out.ldif"), 0600U) << "no wider than either configuration it was made from";
  auto after = workspace.state();
  after.erase("out.ldif");
  EXPECT_EQ(after, before);
  EXPECT_THAT(result.out, Not(HasSubstr("backup")));
}

TEST_F(Apply, KeepsAnOutputFileThatWasThereBefore) {
  workspace.write("out.ldif", "something else\n", 0600);
  const auto result = apply({"--output", workspace.path("out.ldif")});
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(workspace.read("out.ldif"), sample::kMerged);
  EXPECT_EQ(workspace.mode("out.ldif"), 0600U);
  const auto backups = workspace.namesAfter("out.ldif");
  ASSERT_THAT(backups, SizeIs(1));
  EXPECT_EQ(workspace.read(backups[0]), "something else\n");
}

TEST_F(Apply, ClosesAnOutputFileThatWasOpenToMorePeople) {
  workspace.write("out.ldif", "something else\n", 0666);
  const auto result = apply({"--output", workspace.path("out.ldif")});
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(workspace.mode("out.ldif"), 0600U);
}

TEST_F(Apply, WarnsWhenSecretsGoIntoAConfigurationThatIsOpenToEverybody) {
  workspace.write("new.ldif", sample::kNew, 0644);
  const auto result = apply();
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_THAT(result.err, HasSubstr(workspace.path("new.ldif") + " is open to everybody"));
  EXPECT_EQ(workspace.mode("new.ldif"), 0644U) << "its server has to read it";
}

TEST_F(Apply, WritesInPlaceWhenTheOutputIsTheNewConfiguration) {
  std::filesystem::create_symlink("new.ldif", workspace.path("link.ldif"));
  const auto result = apply({"-o", workspace.path("link.ldif")});
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(workspace.read("new.ldif"), sample::kMerged);
  EXPECT_TRUE(std::filesystem::is_symlink(workspace.path("link.ldif")));
  EXPECT_THAT(workspace.namesAfter("new.ldif"), SizeIs(1));
}

TEST_F(Apply, PreviewTellsTheSameAndWritesNothing) {
  const auto before = workspace.state();
  const auto preview = apply({"-n"});
  EXPECT_EQ(preview.status, 0) << preview.err;
  EXPECT_EQ(workspace.state(), before);
  EXPECT_THAT(preview.out, StartsWith("Plan for a 6.0 configuration; nothing has been written.\n"));

  const auto sums = [](const std::string& text) {
    const std::size_t from = text.find("  lost");
    return text.substr(from, text.find("  target") - from);
  };
  EXPECT_EQ(sums(preview.out), sums(apply().out));
}

TEST_F(Apply, PreviewCreatesNoOutputFile) {
  const auto before = workspace.state();
  const auto result = apply({"--dry-run", "-o", workspace.path("out.ldif")});
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(workspace.state(), before);
  EXPECT_THAT(result.out, HasSubstr("  target    " + workspace.path("out.ldif") + "\n"));
}

TEST_F(Apply, HasNothingToDoASecondTime) {
  ASSERT_EQ(apply().status, 0);
  const auto before = workspace.state();
  const auto again = apply();
  EXPECT_EQ(again.status, 0) << again.err;
  EXPECT_THAT(again.out, StartsWith("Nothing to do: the target holds what a 6.0 configuration gives.\n"));
  EXPECT_THAT(again.out, Not(HasSubstr("backup")));
  EXPECT_EQ(workspace.state(), before);
  EXPECT_THAT(apply({"-n"}).out, HasSubstr("Nothing to do"));
}

TEST_F(Apply, HasNothingToDoForAnOutputThatHoldsTheResult) {
  ASSERT_EQ(apply({"-o", workspace.path("out.ldif")}).status, 0);
  const auto before = workspace.state();
  const auto again = apply({"-o", workspace.path("out.ldif")});
  EXPECT_EQ(again.status, 0) << again.err;
  EXPECT_THAT(again.out, HasSubstr("Nothing to do"));
  EXPECT_EQ(workspace.state(), before);
}

TEST_F(Apply, VerboseTellsWhatBecameOfEachValue) {
  const auto result = apply({"-n", "-v"});
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(result.out.substr(result.out.find("\n")),
            apply({"-n", "--format", "text"}).out.substr(result.out.find("\n")));
  for (const char* dn : {"cn=Configuration", "cn=Front End", "cn=Only Old", "cn=Admin Audit", "cn=Audit"}) {
    EXPECT_THAT(result.out, HasSubstr(dn));
  }
}

TEST_F(Apply, TellsWhatWasLostAndExitsWithFive) {
  // The audit entry has a setting that its successor lacks: its transfer ends there.
  std::string old = sample::kOld;
  const std::string audit = "zor-auditVersion: 3\n";
  old.replace(old.rfind(audit), audit.size(), "zor-auditBefore: 1\nzor-auditAfter: Pl4nted-S3cret\n");
  workspace.write("old.ldif", old);
  const auto result = apply();
  EXPECT_EQ(result.status, 5) << result.err;
  EXPECT_THAT(result.out, StartsWith("Applied a 6.0 configuration.\n  lost      3 of 22 old values\n"));
  EXPECT_THAT(result.err, HasSubstr(workspace.path("old.ldif") + ":27: lost: "));
  EXPECT_THAT(result.err, HasSubstr("cn=Audit, cn=Configuration"));
  EXPECT_THAT(result.out + result.err, Not(HasSubstr(sample::kSecret)));
  EXPECT_LE(linesOf(result.out), 15);
}

TEST_F(Apply, HasNothingToDoASecondTimeAlsoWhenSomethingWasLost) {
  workspace.write("old.ldif", std::string(sample::kOld) + "zor-auditLate: 1\n");
  ASSERT_EQ(apply().status, 5);
  const auto before = workspace.state();
  EXPECT_EQ(apply().status, 0);
  EXPECT_EQ(workspace.state(), before);
}

TEST_F(Apply, PreviewOfALossExitsWithZeroAndTellsIt) {
  workspace.write("old.ldif", std::string(sample::kOld) + "zor-auditLate: 1\n");
  const auto before = workspace.state();
  const auto result = apply({"-n"});
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_THAT(result.out, HasSubstr("  lost      1 of 22 old values\n"));
  EXPECT_THAT(result.err, HasSubstr(": lost: "));
  EXPECT_EQ(workspace.state(), before);
}

TEST_F(Apply, TellsAMoveIntoAnEntryThatTheNewConfigurationLacks) {
  const std::string old = std::string(sample::kOld);
  const std::string port = "zor-slapdPort: 389\n";
  std::string changed = old;
  changed.replace(changed.find(port), port.size(), "zor-slapdMaxPendingChangesDisplayed: 200\n");
  workspace.write("old.ldif", changed);
  const auto result = apply();
  EXPECT_EQ(result.status, 5) << result.err;
  EXPECT_THAT(result.out, HasSubstr("  lost      1 of 21 old values\n"));
  EXPECT_THAT(result.err, HasSubstr(workspace.path("old.ldif") + ":6: lost: "));
}

TEST_F(Apply, TellsASchemaEntryThatItsRuleGaveUp) {
  constexpr char kSchema[] =
      "\ndn: CN=SCHEMAS, CN=CONFIGURATION\nobjectClass: top\ncn: SCHEMAS\n"
      "\ndn: CN=ZOR DIRECTORY, CN=SCHEMAS, CN=CONFIGURATION\nobjectClass: top\ncn: ZOR DIRECTORY\n";
  workspace.write("old.ldif", std::string(sample::kOld) + kSchema + "zor-slapdCustom: 1\n");
  workspace.write("new.ldif", std::string(sample::kNew) + kSchema);
  const auto result = apply();
  EXPECT_EQ(result.status, 5) << result.err;
  EXPECT_THAT(result.err, HasSubstr(": lost: "));
  EXPECT_THAT(result.err, HasSubstr("CN=ZOR DIRECTORY, CN=SCHEMAS, CN=CONFIGURATION"));
}

TEST_F(Apply, NeverShowsAValue) {
  for (const auto& more : {std::vector<std::string>{"-n", "-v"}, std::vector<std::string>{"-n", "--trace", "-"},
                           std::vector<std::string>{"-v"}}) {
    const auto result = apply(more);
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.out, Not(HasSubstr(sample::kSecret)));
    EXPECT_THAT(result.err, Not(HasSubstr(sample::kSecret)));
  }
}

TEST_F(Apply, TellsThatItsAccountCannotBeWritten) {
  const auto result = runTool(ToolSetup{words(), {}, {}, "/dev/full"});
  EXPECT_EQ(result.status, 5) << "the file was written, and nobody has seen the account";
  EXPECT_THAT(result.err, HasSubstr("standard output cannot be written"));
  EXPECT_EQ(workspace.read("new.ldif"), sample::kMerged);
  EXPECT_EQ(runTool(ToolSetup{words({"-n"}), {}, {}, "/dev/full"}).status, 1);
}

TEST_F(Apply, WorksWithNamesInTheDirectoryWhereItRuns) {
  const auto result = runTool(ToolSetup{
      {"apply", "--old", "old.ldif", "--new", "new.ldif", "--from", "6.0", "-o", "out.ldif"}, {}, workspace.path("")});
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(workspace.read("out.ldif"), sample::kMerged);
}

}  // namespace
