// Two programs that save one file at once: one works, the other is told who does.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <ctime>
#include <filesystem>

#include "AtomicFile.h"
#include "FaultyFileSystem.h"
#include "TestStore.h"

namespace cfgstore {
namespace {

using test::readFile;
using test::TemporaryDirectory;
using testing::ElementsAre;
using testing::MatchesRegex;

constexpr char kOld[] = "the old file\n";

class TwoWriters : public testing::Test {
 protected:
  // A test that has failed may have left the other process waiting.
  ~TwoWriters() override {
    if (m_other > 0 && ::kill(m_other, SIGKILL) == 0) ::waitpid(m_other, nullptr, 0);
  }

  void save(FileSystem& files, std::string_view content) const {
    std::string why;
    const auto read = SourceText::read(m_source, why);
    const SourceFile source{m_source, read->resolvedPath(), read->stamp(), read->text()};
    AtomicFile(files, m_target, source).save({&content, 1}, Backup::none, 1700000000);
  }

  std::string failure() const {
    try {
      save(FileSystem::real(), "of the second\n");
      return "saved";
    } catch (const SaveRefused& error) {
      return error.what();
    }
  }

  // Starts a process that saves, and stops immediately before the system call of this name.
  void startAnother(const char* stopBefore) {
    ASSERT_EQ(::pipe(m_reached.data()), 0);
    ASSERT_EQ(::pipe(m_goOn.data()), 0);
    m_other = ::fork();
    ASSERT_GE(m_other, 0);
    if (m_other != 0) {
      char byte = 0;
      ASSERT_EQ(::read(m_reached[0], &byte, 1), 1);
      return;
    }
    test::FaultyFileSystem files;
    files.before(stopBefore, [this] {
      char byte = 0;
      if (::write(m_reached[1], &byte, 1) != 1 || ::read(m_goOn[0], &byte, 1) != 1) ::_exit(3);
    });
    try {
      save(files, "of the first\n");
    } catch (const std::exception&) {
      ::_exit(2);
    }
    ::_exit(0);
  }
  int letItGoOn() {
    const char byte = 0;
    EXPECT_EQ(::write(m_goOn[1], &byte, 1), 1);
    return end();
  }
  int end() {
    int status = 0;
    EXPECT_EQ(::waitpid(m_other, &status, 0), m_other);
    m_other = 0;
    for (const int file : {m_reached[0], m_reached[1], m_goOn[0], m_goOn[1]}) ::close(file);
    return status;
  }

  std::string busy() const {
    std::string name(16, '\0');
    return m_target + ": another program is writing this file: process " + std::to_string(m_other) +
           " \\(cfgstore_saving\\), running since [0-9]{4}-[0-9]{2}-[0-9]{2} [0-9]{2}:[0-9]{2}:[0-9]{2}";
  }

  const TemporaryDirectory m_directory;
  std::string m_source = m_directory.write("source", kOld);
  std::string m_target = m_source;
  std::array<int, 2> m_reached{};
  std::array<int, 2> m_goOn{};
  pid_t m_other = 0;
};

TEST_F(TwoWriters, OfOneFileAreOneThatWorksAndOneThatIsToldWhoDoes) {
  for (const char* moment : {"write", "rename", "unlink"}) {
    test::writeFile(m_source, kOld);
    startAnother(moment);
    EXPECT_THAT(failure(), MatchesRegex(busy())) << moment;
    EXPECT_EQ(letItGoOn(), 0);
    EXPECT_EQ(readFile(m_target), "of the first\n");
    EXPECT_EQ(failure(), "saved") << "afterwards";
    EXPECT_THAT(m_directory.names(), ElementsAre("source"));
  }
}

TEST_F(TwoWriters, OfOneNewFileAreOneThatWorksAndOneThatIsToldWhoDoes) {
  m_target = m_directory.file("new");
  startAnother("write");
  EXPECT_THAT(failure(), MatchesRegex(busy()));
  EXPECT_EQ(letItGoOn(), 0);
  EXPECT_EQ(readFile(m_target), "of the first\n");
}

TEST_F(TwoWriters, SayWhenTheOtherOneWasStarted) {
  const std::time_t before = std::time(nullptr) - 1;
  startAnother("write");
  const std::string text = failure();
  std::tm told{};
  ASSERT_NE(::strptime(text.c_str() + text.rfind("since ") + 6, "%Y-%m-%d %H:%M:%S", &told), nullptr) << text;
  told.tm_isdst = -1;
  const std::time_t since = std::mktime(&told);
  EXPECT_GE(since, before - 1) << text;
  EXPECT_LE(since, std::time(nullptr) + 1) << text;
  EXPECT_EQ(letItGoOn(), 0);
}

TEST_F(TwoWriters, AreNotTwoWhenTheFirstOneWasKilled) {
  for (const char* moment : {"write", "rename", "unlink"}) {
    test::writeFile(m_source, kOld);
    startAnother(moment);
    ASSERT_EQ(::kill(m_other, SIGKILL), 0);
    end();
    EXPECT_EQ(failure(), "saved") << moment;
    EXPECT_EQ(readFile(m_target), "of the second\n");
  }
}

}  // namespace
}  // namespace cfgstore
