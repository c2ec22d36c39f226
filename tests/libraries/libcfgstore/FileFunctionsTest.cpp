// doesFileExist and copyFile.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "CfgUtils.h"
#include "FaultyFileSystem.h"
#include "FileCopy.h"
#include "NewFile.h"
#include "TestStore.h"

namespace cfgstore {
namespace {

using test::readFile;
using test::TemporaryDirectory;
using test::writeFile;
using testing::ElementsAre;

mode_t modeOf(const std::string& path) {
  struct stat status {};
  EXPECT_EQ(::lstat(path.c_str(), &status), 0);
  return status.st_mode & 07777;
}

TEST(DoesFileExist, TellsAFileFromNone) {
  const TemporaryDirectory directory;
  const std::string path = directory.write("a", "");
  EXPECT_NE(doesFileExist(path.c_str()), 0);
  EXPECT_EQ(doesFileExist(directory.file("b").c_str()), 0);
  EXPECT_EQ(doesFileExist((path + "/c").c_str()), 0);
  EXPECT_EQ(doesFileExist(""), 0);
  EXPECT_EQ(doesFileExist(nullptr), 0);
}

TEST(DoesFileExist, TakesNoDirectoryForAFile) {
  const TemporaryDirectory directory;
  EXPECT_EQ(doesFileExist(directory.path().c_str()), 0);
}

TEST(DoesFileExist, FollowsSymbolicLinks) {
  const TemporaryDirectory directory;
  directory.write("a", "");
  std::filesystem::create_symlink("a", directory.file("good"));
  std::filesystem::create_symlink("none", directory.file("dangling"));
  EXPECT_NE(doesFileExist(directory.file("good").c_str()), 0);
  EXPECT_EQ(doesFileExist(directory.file("dangling").c_str()), 0);
}

class CopyFile : public testing::Test {
 protected:
  int copy(const std::string& from, const std::string& to, int permissions = 0660) {
    std::string text = "passed through";
    return copyFile(from.c_str(), to.c_str(), text.data(), 0, permissions);
  }

  TemporaryDirectory m_directory;
  std::string m_source = m_directory.write("source", "content\0 with a zero byte\n");
  std::string m_copy = m_directory.file("copy");
};

TEST_F(CopyFile, CopiesContentWithThePermissionsAskedFor) {
  const mode_t mask = ::umask(0);
  EXPECT_NE(copy(m_source, m_copy), 0);
  ::umask(mask);
  EXPECT_EQ(readFile(m_copy), readFile(m_source));
  EXPECT_EQ(modeOf(m_copy), 0660U);
  EXPECT_THAT(m_directory.names(), ElementsAre("copy", "source"));
}

TEST_F(CopyFile, GivesNoMorePermissionsThan0660) {
  EXPECT_NE(copy(m_source, m_copy, 0777), 0);
  EXPECT_EQ(modeOf(m_copy), 0660U);
  EXPECT_NE(copy(m_source, m_directory.file("narrow"), 0400), 0);
  EXPECT_EQ(modeOf(m_directory.file("narrow")), 0400U);
}

TEST_F(CopyFile, CopiesEmptyAndLargeFiles) {
  for (const std::size_t size : {std::size_t{0}, std::size_t{1} << 16, (std::size_t{1} << 20) + 7}) {
    m_directory.write("source", std::string(size, 'x'));
    EXPECT_NE(copy(m_source, m_copy), 0);
    EXPECT_EQ(readFile(m_copy).size(), size);
  }
}

TEST_F(CopyFile, ReplacesAFileAsAWholeAndKeepsTheOldOneBesideIt) {
  writeFile(m_copy, "old");
  std::filesystem::permissions(m_copy, std::filesystem::perms(0644));
  EXPECT_NE(copy(m_source, m_copy), 0);
  EXPECT_EQ(readFile(m_copy), readFile(m_source));
  EXPECT_EQ(modeOf(m_copy), 0660U);
  const auto names = m_directory.names();
  ASSERT_THAT(names, ElementsAre("copy", testing::MatchesRegex("copy\\.[0-9]{8}-[0-9]{6}\\.bak"), "source"));
  EXPECT_EQ(readFile(m_directory.file(names[1])), "old");
  EXPECT_EQ(modeOf(m_directory.file(names[1])), 0644U);
}

TEST_F(CopyFile, LeavesAnIdenticalFileAlone) {
  writeFile(m_copy, readFile(m_source));
  const auto before = std::filesystem::last_write_time(m_copy);
  std::filesystem::permissions(m_copy, std::filesystem::perms(0400));
  EXPECT_NE(copy(m_source, m_copy), 0);
  EXPECT_EQ(std::filesystem::last_write_time(m_copy), before);
  EXPECT_EQ(modeOf(m_copy), 0400U);
  EXPECT_THAT(m_directory.names(), ElementsAre("copy", "source"));
}

TEST_F(CopyFile, RefusesNamesThatAreNotThoseOfAFile) {
  for (const char* name : {"", ".", ".."}) {
    EXPECT_EQ(copy(m_source, m_directory.path() + "/" + name), 0) << name;
    EXPECT_EQ(copy(m_source, name), 0) << name;
  }
  EXPECT_THAT(m_directory.names(), ElementsAre("source"));
}

TEST_F(CopyFile, RefusesADirectoryThatIsASymbolicLink) {
  const TemporaryDirectory outside;
  std::filesystem::create_directory_symlink(outside.path(), m_directory.file("link"));
  EXPECT_EQ(copy(m_source, m_directory.file("link/copy")), 0);
  EXPECT_THAT(outside.names(), ElementsAre());
}

TEST_F(CopyFile, FollowsASymbolicLinkAtTheSource) {
  std::filesystem::create_symlink("source", m_directory.file("link"));
  EXPECT_NE(copy(m_directory.file("link"), m_copy), 0);
  EXPECT_EQ(readFile(m_copy), readFile(m_source));
}

TEST_F(CopyFile, RefusesASymbolicLinkAtTheDestination) {
  const std::string outside = m_directory.write("outside", "mine");
  std::filesystem::create_symlink("outside", m_copy);
  EXPECT_EQ(copy(m_source, m_copy), 0);
  EXPECT_EQ(readFile(outside), "mine");
  EXPECT_TRUE(std::filesystem::is_symlink(m_copy));
  std::filesystem::remove(outside);
  EXPECT_EQ(copy(m_source, m_copy), 0) << "a link that leads nowhere";
  EXPECT_FALSE(std::filesystem::exists(outside));
}

TEST_F(CopyFile, FailsWhereTheDestinationCannotBeWritten) {
  EXPECT_EQ(copy(m_source, m_directory.file("none/copy")), 0);
  EXPECT_EQ(copy(m_source, m_source + "/copy"), 0);
  EXPECT_EQ(copy(m_source, ""), 0);
  EXPECT_EQ(copy(m_source, m_directory.path()), 0);
  EXPECT_EQ(copy(m_source, m_directory.path() + "/"), 0);
  EXPECT_EQ(copy(m_source, "/proc/copy"), 0);
  EXPECT_THAT(m_directory.names(), ElementsAre("source"));
}

TEST_F(CopyFile, FailsWithoutASourceThatIsAFile) {
  EXPECT_EQ(copy(m_directory.file("none"), m_copy), 0);
  EXPECT_EQ(copy(m_directory.path(), m_copy), 0);
  EXPECT_EQ(copy("/dev/null", m_copy), 0);
  EXPECT_THAT(m_directory.names(), ElementsAre("source"));
}

TEST_F(CopyFile, FailsForAFileOntoItself) {
  EXPECT_EQ(copy(m_source, m_source), 0);
  EXPECT_EQ(copy(m_source, m_directory.path() + "/./source"), 0);
  std::filesystem::create_hard_link(m_source, m_copy);
  EXPECT_EQ(copy(m_source, m_copy), 0);
}

TEST_F(CopyFile, RefusesNullArguments) {
  EXPECT_EQ(copyFile(nullptr, m_copy.c_str(), nullptr, 0, 0660), 0);
  EXPECT_EQ(copyFile(m_source.c_str(), nullptr, nullptr, 0, 0660), 0);
  EXPECT_NE(copyFile(m_source.c_str(), m_copy.c_str(), nullptr, 0, 0660), 0) << "the text may be null";
}

// Whichever system call fails, the destination is the old file or the new one, and nothing is left beside it.
TEST_F(CopyFile, LeavesOldOrNewWhicheverCallFails) {
  for (const bool exists : {false, true}) {
    for (const int error : {EIO, ENOSPC, EACCES}) {
      bool failed = true;
      for (int n = 1; failed; ++n) {
        ASSERT_LT(n, 200) << "the sweep does not end";
        for (const std::string& name : m_directory.names()) {
          if (name != "source") std::filesystem::remove(m_directory.file(name));
        }
        if (exists) writeFile(m_copy, "old");
        test::FaultyFileSystem files;
        files.failCall(n, error);
        bool copied = true;
        try {
          FileCopy(files, m_source, m_copy, 0660).run();
        } catch (const FileError&) {
          copied = false;
        }
        failed = files.hasFailed();
        EXPECT_EQ(files.openFiles(), 0);
        if (copied) {
          EXPECT_EQ(readFile(m_copy), readFile(m_source)) << files.failedCall();
          EXPECT_EQ(m_directory.names().size(), exists ? 3U : 2U) << "the old file is kept; " << files.failedCall();
        } else if (exists) {
          EXPECT_EQ(readFile(m_copy), "old") << files.failedCall();
          EXPECT_THAT(m_directory.names(), ElementsAre("copy", "source")) << files.failedCall();
        } else {
          EXPECT_THAT(m_directory.names(), ElementsAre("source")) << files.failedCall();
        }
      }
    }
  }
}

}  // namespace
}  // namespace cfgstore
