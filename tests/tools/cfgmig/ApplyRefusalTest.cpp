// Tests of what cfgmig apply refuses. After each of them every file is as it was.

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>

#include "ApplyFixture.h"

namespace {

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

class ApplyRefuses : public ApplyFixture {
 protected:
  // Runs the command and checks that it told `part` with `status` and touched nothing.
  void expectRefusal(const std::vector<std::string>& command, int status, const std::string& part) const {
    const auto before = workspace.state();
    const auto result = runTool(command);
    EXPECT_EQ(result.status, status);
    EXPECT_EQ(result.out, "");
    EXPECT_THAT(result.err, StartsWith("cfgmig: "));
    EXPECT_THAT(result.err, HasSubstr(part));
    EXPECT_THAT(result.err, Not(HasSubstr(sample::kSecret)));
    EXPECT_EQ(workspace.state(), before);
  }

  std::vector<std::string> wordsFor(const std::string& oldName, const std::string& newName) const {
    return {"apply", "--old", workspace.path(oldName), "--new", workspace.path(newName), "--from", "6.0"};
  }
};

TEST_F(ApplyRefuses, AnUnknownVersionAndNamesTheKnownOnes) {
  for (const char* version : {"7.0", "6.0.1", "6", "", "\x1b[2J"}) {
    auto command = words();
    command.back() = version;
    expectRefusal(command, 2, *version == 0 ? "--from must not be empty" : "known are: 4.1, 5.1, 5.2, 6.0");
  }
}

TEST_F(ApplyRefuses, AMissingFile) {
  expectRefusal(wordsFor("none.ldif", "new.ldif"), 1, workspace.path("none.ldif") + ": ");
  expectRefusal(wordsFor("old.ldif", "none.ldif"), 1, workspace.path("none.ldif") + ": ");
  expectRefusal(wordsFor("none.ldif", "new.ldif"), 1, "No such file or directory");
}

TEST_F(ApplyRefuses, BothFilesAtOnceWhenBothAreWrong) {
  const auto result = runTool(wordsFor("none1", "none2"));
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.err, HasSubstr(workspace.path("none1")));
  EXPECT_THAT(result.err, HasSubstr(workspace.path("none2")));
}

TEST_F(ApplyRefuses, ADirectory) { expectRefusal(wordsFor(".", "new.ldif"), 1, workspace.path(".") + ": "); }

TEST_F(ApplyRefuses, AnUnreadableFile) {
  if (::geteuid() == 0) GTEST_SKIP() << "root reads everything";
  workspace.write("old.ldif", sample::kOld, 0);
  expectRefusal(words(), 1, "Permission denied");
}

TEST_F(ApplyRefuses, MalformedLdifWithEveryLineNumber) {
  workspace.write("new.ldif",
                  "dn: cn=configuration\ncn: configuration\nno colon Pl4nted-S3cret\nzor-a:: %%%\n\n"
                  "cn: no dn\n\ndn: cn=configuration\ncn: again\n");
  expectRefusal(words(), 1, workspace.path("new.ldif") + ":3: ");
  expectRefusal(words(), 1, workspace.path("new.ldif") + ":4: ");
  expectRefusal(words(), 1, workspace.path("new.ldif") + ":6: ");
  expectRefusal(words(), 1, workspace.path("new.ldif") + ":8: ");
}

TEST_F(ApplyRefuses, ABinaryFile) {
  std::string content = "dn: cn=configuration\ncn: configuration\n";
  for (int i = 0; i < 256; ++i) content += static_cast<char>(i);
  workspace.write("old.ldif", content);
  expectRefusal(words(), 1, workspace.path("old.ldif") + ":");
}

TEST_F(ApplyRefuses, AConfigurationWithoutEntries) {
  workspace.write("empty.ldif", "");
  workspace.write("other.ldif", "dn: cn=other\ncn: other\n");
  for (const char* name : {"empty.ldif", "other.ldif"}) {
    expectRefusal(wordsFor(name, "new.ldif"), 1, workspace.path(name) + ": there is no entry under CN=CONFIGURATION");
    expectRefusal(wordsFor("old.ldif", name), 1, workspace.path(name) + ": there is no entry under CN=CONFIGURATION");
  }
}

TEST_F(ApplyRefuses, TheSameFileTwiceHoweverItIsNamed) {
  std::filesystem::create_symlink("old.ldif", workspace.path("soft.ldif"));
  std::filesystem::create_hard_link(workspace.path("old.ldif"), workspace.path("hard.ldif"));
  for (const char* name : {"old.ldif", "./old.ldif", "soft.ldif", "hard.ldif"}) {
    expectRefusal(wordsFor("old.ldif", name), 2, "the old configuration and the new configuration are one file");
  }
}

TEST_F(ApplyRefuses, TheOldConfigurationAsOutputHoweverItIsNamed) {
  std::filesystem::create_symlink("old.ldif", workspace.path("soft.ldif"));
  std::filesystem::create_hard_link(workspace.path("old.ldif"), workspace.path("hard.ldif"));
  for (const char* name : {"old.ldif", "soft.ldif", "hard.ldif"}) {
    expectRefusal(words({"-o", workspace.path(name)}), 2, "the output and the old configuration are one file");
    expectRefusal(words({"-n", "-o", workspace.path(name)}), 2, "the output and the old configuration are one file");
  }
}

TEST_F(ApplyRefuses, AnOutputInAMissingDirectory) {
  const std::string out = workspace.path("none/out.ldif");
  expectRefusal(words({"-o", out}), 1, out + ": cannot be written: its directory: No such file or directory");
  expectRefusal(words({"-n", "-o", out}), 1, out + ": cannot be written");
}

TEST_F(ApplyRefuses, AnOutputThatIsNoFile) {
  std::filesystem::create_directory(workspace.path("folder"));
  expectRefusal(words({"-o", workspace.path("folder")}), 1, "it is a directory");
  expectRefusal(words({"-o", workspace.path("new-folder/")}), 1, "it has no file name");
  expectRefusal(words({"-o", "/dev/null"}), 1, "it is not a regular file");
  expectRefusal(words({"-o", workspace.path("old.ldif/x")}), 1, "cannot be written");
}

TEST_F(ApplyRefuses, AConfigurationAsTraceFile) {
  expectRefusal(words({"--trace", workspace.path("old.ldif")}), 2,
                "the trace file and the old configuration are one file");
  expectRefusal(words({"--trace", workspace.path("new.ldif")}), 2,
                "the trace file and the new configuration are one file");
  const std::string out = workspace.path("out.ldif");
  expectRefusal(words({"-o", out, "--trace", out}), 2, "the trace file and the output are one file");
}

TEST_F(ApplyRefuses, AConfigurationAsTraceFileOfTheEnvironment) {
  const auto before = workspace.state();
  const auto result = runTool(ToolSetup{words(), {"LDTR_FILE=" + workspace.path("new.ldif")}});
  EXPECT_EQ(result.status, 2);
  EXPECT_THAT(result.err, HasSubstr("the trace file and the new configuration are one file"));
  EXPECT_EQ(workspace.state(), before);
}

TEST_F(ApplyRefuses, ATraceFileThatCannotBeOpened) {
  const std::string trace = workspace.path("none/trace");
  expectRefusal(words({"--trace", trace}), 1, trace + ": the trace file cannot be opened: No such file or directory");
}

TEST_F(ApplyRefuses, ABadTraceMask) {
  for (const char* mask : {"x", "-1", "0x", "99999999999"}) {
    expectRefusal(words({"--trace", "-", "--trace-events", mask}), 2, "--trace-events is not a mask of 32 bits");
  }
  expectRefusal(words({"--trace-events", "1"}), 2, "--trace-events needs --trace");
}

TEST_F(ApplyRefuses, ABadTraceMaskOfTheEnvironment) {
  const auto before = workspace.state();
  const auto result = runTool(ToolSetup{words(), {"LDTR_EVENTS=what"}});
  EXPECT_EQ(result.status, 2);
  EXPECT_THAT(result.err, HasSubstr("LDTR_EVENTS is not a mask of 32 bits"));
  EXPECT_EQ(workspace.state(), before);
}

TEST_F(ApplyRefuses, ToWriteAFileThatAnotherProgramHasLocked) {
  const int file = ::open(workspace.path("new.ldif").c_str(), O_RDONLY | O_CLOEXEC);
  ASSERT_GE(file, 0);
  ASSERT_EQ(::flock(file, LOCK_EX | LOCK_NB), 0);
  const auto before = workspace.state();
  const auto result = apply();
  ::close(file);
  EXPECT_EQ(result.status, 4);
  EXPECT_EQ(result.out, "") << "the account is of what has happened";
  EXPECT_THAT(result.err, HasSubstr(workspace.path("new.ldif")));
  EXPECT_EQ(workspace.state(), before);
}

// The trace goes to a pipe that nobody empties, so the tool stops in the middle of the merge, with both files read.
TEST_F(ApplyRefuses, ToWriteAFileThatHasChangedSinceItWasRead) {
  std::string many = sample::kOld;
  for (int i = 0; i < 2000; ++i) {
    const std::string name = "ENTRY " + std::to_string(i);
    many += "\ndn: cn=" + name + ", cn=configuration\nobjectClass: top\ncn: " + name + "\n";
  }
  workspace.write("old.ldif", many);
  const std::string pipe = workspace.path("pipe");
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  ToolProcess tool(ToolSetup{words({"--trace", pipe})});
  const int reader = ::open(pipe.c_str(), O_RDONLY | O_CLOEXEC);  // returns when the tool has opened it
  ASSERT_GE(reader, 0);
  const std::string changed = std::string(sample::kNew) + "\n# changed meanwhile\n";
  workspace.write("new.ldif", changed, 0640);
  std::array<char, 65536> buffer{};
  while (::read(reader, buffer.data(), buffer.size()) > 0) {
  }
  ::close(reader);
  const auto result = tool.wait();
  EXPECT_EQ(result.status, 4);
  EXPECT_THAT(result.err, HasSubstr(workspace.path("new.ldif")));
  EXPECT_EQ(workspace.read("new.ldif"), changed);
  EXPECT_THAT(workspace.namesAfter("new.ldif"), testing::IsEmpty()) << "no backup, no litter";
}

}  // namespace
