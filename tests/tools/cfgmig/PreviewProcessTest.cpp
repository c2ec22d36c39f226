// A preview tells what the save would be refused with, with the status that the save would have, and writes nothing.

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "SampleFiles.h"
#include "ToolProcess.h"
#include "Workspace.h"

namespace {

namespace fs = std::filesystem;

using testing::ContainsRegex;
using testing::HasSubstr;
using testing::Not;

constexpr uid_t kNobody = 65534;

constexpr char kConfiguration[] =
    "dn: cn=Configuration\ncn: Configuration\nzor-slapdVersion: 6.0\n"
    "\ndn: cn=ZOR Directory, cn=Schemas, cn=Configuration\nobjectClass: top\ncn: ZOR Directory\n"
    "zor-slapdIncludeSchema: /opt/x/my.at\n"
    "\ndn: cn=Directory, cn=RDBM Backends, cn=ZOR Directory, cn=Schemas, cn=Configuration\n"
    "objectClass: top\ncn: Directory\nzor-slapdDbInstance: inst\n";

// Each of the three commands with the file that it would change.
struct Command {
  std::string file;
  std::vector<std::string> words;
};

class Preview : public testing::Test {
 protected:
  Preview() {
    fs::create_directory(m_old.path("etc"));
    m_old.write("etc/my.at", "attributes\n");
    m_files.write("old.ldif", sample::kOld, 0644);
    m_files.write("new.ldif", sample::kNew, 0644);
    m_files.write("conf", kConfiguration, 0644);
  }

  std::vector<Command> commands() const {
    return {
        {"new.ldif", {"apply", "--old", m_files.path("old.ldif"), "--new", m_files.path("new.ldif"), "--from", "6.0"}},
        {"conf", {"clean", m_files.path("conf"), "--instance"}},
        {"conf", {"schemas", m_files.path("conf"), "--search-dir", m_old.path(""), "--target-dir", m_new.path("")}}};
  }

  // Runs the preview and the command itself; both are refused with the same words, and touch nothing.
  void expectRefusal(const Command& command, int status, const std::string& why) const {
    SCOPED_TRACE(command.words[0]);
    const auto files = m_files.state();
    const auto copies = m_new.state();
    const auto before = timeOf(m_new);
    auto words = command.words;
    const auto real = runTool(words);
    words.emplace_back("--dry-run");
    const auto preview = runTool(words);
    for (const auto& result : {real, preview}) {
      EXPECT_EQ(result.status, status) << result.err;
      EXPECT_THAT(result.err, HasSubstr(m_files.path(command.file) + ": " + why));
      EXPECT_THAT(result.out, Not(HasSubstr("would go to")));
      EXPECT_THAT(result.out, Not(HasSubstr("Written")));
      EXPECT_THAT(result.out, Not(HasSubstr("Applied")));
    }
    EXPECT_EQ(m_files.state(), files);
    EXPECT_EQ(m_new.state(), copies);
    EXPECT_EQ(timeOf(m_new), before) << "not even for a moment was there a copy";
  }

  // When a name in the directory last appeared or went.
  static std::pair<time_t, long> timeOf(const Workspace& workspace) {
    struct stat status {};
    EXPECT_EQ(::stat(workspace.path("").c_str(), &status), 0);
    return {status.st_mtim.tv_sec, status.st_mtim.tv_nsec};
  }

  const Workspace m_files;
  const Workspace m_old;
  const Workspace m_new;
};

TEST_F(Preview, IsFineWhereTheSaveWouldBe) {
  const auto files = m_files.state();
  for (const Command& command : commands()) {
    auto words = command.words;
    words.emplace_back("--dry-run");
    const auto result = runTool(words);
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_THAT(result.out, ContainsRegex("nothing (was|has been) written"));
    EXPECT_THAT(result.out, HasSubstr(m_files.path(command.file)));
  }
  EXPECT_EQ(m_files.state(), files);
}

TEST_F(Preview, TellsOfAFileWithSeveralNames) {
  for (const char* name : {"new.ldif", "conf"}) {
    fs::create_hard_link(m_files.path(name), m_files.path(std::string("second-") + name));
  }
  for (const Command& command : commands()) expectRefusal(command, 1, "has more than one name (hard link)");
}

TEST_F(Preview, TellsOfAFileThatAnotherProgramIsWriting) {
  for (const Command& command : commands()) {
    const int file = ::open(m_files.path(command.file).c_str(), O_RDONLY | O_CLOEXEC);
    ASSERT_EQ(::flock(file, LOCK_EX | LOCK_NB), 0);
    expectRefusal(command, 4, "another program is writing this file: process " + std::to_string(::getpid()) + " (");
    ::close(file);
  }
}

TEST_F(Preview, TellsOfSomethingThatIsInTheWay) {
  for (const Command& command : commands()) {
    const std::string inTheWay = m_files.path("." + command.file + ".cfgmig-new");
    fs::create_directory(inTheWay);
    expectRefusal(command, 1, "something else is in the way of a file that is needed; move it away: " + inTheWay);
    fs::remove(inTheWay);
  }
}

TEST_F(Preview, TellsOfADirectoryThatMayNotBeWritten) {
  if (::geteuid() == 0) {
    for (const char* name : {"old.ldif", "new.ldif", "conf", ""}) {
      ASSERT_EQ(::chown(m_files.path(name).c_str(), kNobody, ::getegid()), 0);
    }
    for (const Workspace* workspace : {&m_old, &m_new}) {
      ASSERT_EQ(::chown(workspace->path("").c_str(), kNobody, ::getegid()), 0);
    }
    ASSERT_EQ(::seteuid(kNobody), 0);  // and so does the tool
  }
  ASSERT_EQ(::chmod(m_files.path("").c_str(), 0500), 0);
  if (runTool({"version"}).status == 127) {
    static_cast<void>(::seteuid(0));
    GTEST_SKIP() << "an ordinary user may not run the tool where it was built";
  }
  for (const Command& command : commands()) {
    expectRefusal(command, 1, "no file can be created beside it: Permission denied");
  }
  ASSERT_EQ(::chmod(m_files.path("").c_str(), 0700), 0);
  if (::getuid() == 0) {
    ASSERT_EQ(::seteuid(0), 0);
  }
}

}  // namespace
