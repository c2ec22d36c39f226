// What stands under the names that a save needs: what a killed program left is cleared, what is somebody else's is
// neither destroyed nor taken for ours.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <filesystem>

#include "FaultyFileSystem.h"
#include "FilePlacement.h"
#include "NewFile.h"
#include "TestAttributes.h"
#include "TestStore.h"

namespace cfgstore {
namespace {

namespace fs = std::filesystem;

using test::readFile;
using test::Strings;
using test::TemporaryDirectory;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;

constexpr char kMark[] = "user.cfgmig.unfinished";
const char* const kText = "dn: CN=A\na: 1\n";
const char* const kChanged = "dn: CN=A\na: 2\n";

class Leftover : public testing::Test {
 protected:
  SaveResult save(const std::string& target, Backup backup = Backup::none) {
    ConfigStore store(m_path);
    if (m_change) {
      OVOConfigUtils::CfgUtils utils(m_path.c_str(), nullptr);
      EXPECT_EQ(utils.setValue("CN=A", "a", "2"), 0);
      return ConfigStore::of(utils).save(target, backup);
    }
    return store.save(target, backup);
  }
  std::string failure(const std::string& target) {
    std::string previewed = "saved";
    try {
      OVOConfigUtils::CfgUtils utils(m_path.c_str(), nullptr);
      EXPECT_EQ(utils.setValue("CN=A", "a", "2"), 0);
      ConfigStore::of(utils).checkSave(target);
    } catch (const SaveError& error) {
      previewed = error.what();
    }
    std::string failed = "saved";
    try {
      save(target);
    } catch (const SaveError& error) {
      failed = error.what();
    }
    EXPECT_EQ(previewed, failed);
    return failed;
  }
  // As a program leaves it that is killed while it writes.
  void leaveHalf(const std::string& name) {
    const std::string path = m_directory.write(name, "half a f");
    m_canMark = test::setAttribute(path, kMark, "");
  }

  TemporaryDirectory m_directory;
  std::string m_path = m_directory.write("config.ldif", kText);
  bool m_change = true;
  bool m_canMark = true;
};

TEST_F(Leftover, OfAKilledProgramIsCleared) {
  for (const bool change : {true, false}) {
    m_change = change;
    m_directory.write("config.ldif", kText);
    leaveHalf(".config.ldif.cfgmig-new");
    leaveHalf(".config.ldif.cfgmig-copy");
    fs::create_hard_link(m_path, m_directory.file(".config.ldif.cfgmig-old"));
    const SaveResult result = save(m_path);
    EXPECT_EQ(result.written, change);
    EXPECT_EQ(result.recoveredPath, "");
    EXPECT_THAT(m_directory.names(), ElementsAre("config.ldif"));
    EXPECT_EQ(readFile(m_path), change ? kChanged : kText);
  }
}

TEST_F(Leftover, ThatIsEmptyIsClearedWithoutAMark) {
  m_directory.write(".config.ldif.cfgmig-new", "");
  EXPECT_TRUE(save(m_path).written);
  EXPECT_THAT(m_directory.names(), ElementsAre("config.ldif"));
}

TEST_F(Leftover, ThatAKilledProgramHadReplacedBecomesABackupAndIsTold) {
  for (const bool change : {true, false}) {
    m_change = change;
    m_directory.write("config.ldif", kText);
    m_directory.write(".config.ldif.cfgmig-old", "the file before");
    const SaveResult result = save(m_path);
    EXPECT_EQ(result.written, change);
    EXPECT_THAT(result.recoveredPath, EndsWith(".bak"));
    EXPECT_EQ(readFile(result.recoveredPath), "the file before");
    EXPECT_EQ(m_directory.names().size(), 2U);
    fs::remove(result.recoveredPath);
  }
}

TEST_F(Leftover, OfANewFileIsClearedToo) {
  leaveHalf(".new.ldif.cfgmig-new");
  EXPECT_TRUE(save(m_directory.file("new.ldif")).written);
  EXPECT_THAT(m_directory.names(), ElementsAre("config.ldif", "new.ldif"));
}

TEST_F(Leftover, ThatIsADirectoryOfSomebodyElseIsNotTouched) {
  for (const char* name : {".config.ldif.cfgmig-new", ".config.ldif.cfgmig-old", ".config.ldif.cfgmig-copy"}) {
    fs::create_directory(m_directory.file(name));
    m_directory.write(std::string(name) + "/mine", "mine\n");
    EXPECT_EQ(failure(m_path), m_path + ": something else is in the way of a file that is needed; move it away: " +
                                   m_directory.file(name));
    EXPECT_EQ(readFile(m_directory.file(std::string(name) + "/mine")), "mine\n");
    EXPECT_EQ(readFile(m_path), kText);
    fs::remove_all(m_directory.file(name));
  }
  for (const char* name : {".config.ldif.cfgmig-new", ".config.ldif.cfgmig-old"}) {
    fs::create_directory(m_directory.file(name));
    EXPECT_THAT(failure(m_path), HasSubstr("move it away")) << "an empty directory too";
    EXPECT_TRUE(fs::exists(m_directory.file(name)));
    fs::remove(m_directory.file(name));
  }
}

TEST_F(Leftover, ThatIsALinkOrAPipeOfSomebodyElseIsNotTouched) {
  const std::string outside = m_directory.write("outside", "mine\n");
  for (const char* name : {".config.ldif.cfgmig-new", ".config.ldif.cfgmig-old"}) {
    fs::create_symlink(outside, m_directory.file(name));
    EXPECT_THAT(failure(m_path), HasSubstr("move it away: " + m_directory.file(name)));
    EXPECT_TRUE(fs::is_symlink(m_directory.file(name)));
    fs::remove(m_directory.file(name));
    ASSERT_EQ(::mkfifo(m_directory.file(name).c_str(), 0600), 0);
    EXPECT_THAT(failure(m_path), HasSubstr("move it away: " + m_directory.file(name)));
    EXPECT_TRUE(fs::is_fifo(m_directory.file(name)));
    fs::remove(m_directory.file(name));
  }
  EXPECT_EQ(readFile(outside), "mine\n");
}

TEST_F(Leftover, ThatIsAFileOfSomebodyElseIsNotTouched) {
  leaveHalf("probe");
  if (!m_canMark) GTEST_SKIP() << "the file system has no extended attributes, by which our own files are known";
  for (const char* name : {".config.ldif.cfgmig-new", ".config.ldif.cfgmig-copy"}) {
    m_directory.write(name, "mine\n");
    EXPECT_THAT(failure(m_path), HasSubstr("move it away: " + m_directory.file(name)));
    EXPECT_EQ(readFile(m_directory.file(name)), "mine\n");
    EXPECT_EQ(readFile(m_path), kText);
    fs::remove(m_directory.file(name));
  }
  m_directory.write(".new.cfgmig-new", "mine\n");
  EXPECT_THAT(failure(m_directory.file("new")), HasSubstr("move it away: " + m_directory.file(".new.cfgmig-new")));
  EXPECT_EQ(readFile(m_directory.file(".new.cfgmig-new")), "mine\n");
}

// It cannot be told from a file that was replaced, and gets the name of a backup, which is told.
TEST_F(Leftover, ThatIsAFileOfSomebodyElseUnderTheSecondNameIsKept) {
  m_directory.write(".config.ldif.cfgmig-old", "mine\n");
  const SaveResult result = save(m_path, Backup::keep);
  EXPECT_EQ(readFile(result.recoveredPath), "mine\n");
  EXPECT_EQ(readFile(result.backupPath), kText);
  EXPECT_EQ(readFile(m_path), kChanged);
}

TEST_F(Leftover, OfACopyIsClearedAlsoWhenTheCopyIsInPlaceAlready) {
  const std::string target = m_directory.write("my.at", "attributes\n");
  leaveHalf(".my.at.cfgmig-new");
  m_directory.write(".my.at.cfgmig-old", "the file before\n");
  FilePlacement(FileSystem::real(), target, 0640).place("attributes\n", 1700000000);
  ASSERT_EQ(m_directory.names().size(), 3U) << testing::PrintToString(m_directory.names());
  for (const std::string& name : m_directory.names()) {
    if (name.ends_with(".bak")) {
      EXPECT_EQ(readFile(m_directory.file(name)), "the file before\n");
    }
  }
}

TEST_F(Leftover, OfSomebodyElseIsInTheWayOfACopyToo) {
  const std::string target = m_directory.write("my.at", "attributes\n");
  fs::create_directory(m_directory.file(".my.at.cfgmig-new"));
  EXPECT_THROW(FilePlacement(FileSystem::real(), target, 0640).examine("others\n"), FileError);
  EXPECT_THROW(FilePlacement(FileSystem::real(), target, 0640).place("others\n", 1700000000), FileError);
  EXPECT_EQ(readFile(target), "attributes\n");
  EXPECT_TRUE(fs::is_directory(m_directory.file(".my.at.cfgmig-new")));
}

}  // namespace
}  // namespace cfgstore
