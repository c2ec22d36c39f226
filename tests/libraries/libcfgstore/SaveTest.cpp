// Saving: what is written where, with which permissions, and what is refused.

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "TestStore.h"

namespace cfgstore {
namespace {

using test::readFile;
using test::Strings;
using test::TemporaryDirectory;
using test::writeFile;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::StartsWith;

const char* const kText = "dn: CN=A\na: 1\n";
const char* const kChanged = "dn: CN=A\na: 2\n";

struct stat statusOf(const std::string& path) {
  struct stat status {};
  EXPECT_EQ(::lstat(path.c_str(), &status), 0) << path;
  return status;
}

class Save : public testing::Test {
 protected:
  void open() { m_utils = std::make_unique<OVOConfigUtils::CfgUtils>(m_path.c_str(), nullptr); }
  ConfigStore& store() { return ConfigStore::of(*m_utils); }
  void change(const char* value = "2") { ASSERT_EQ(m_utils->setValue("CN=A", "a", value), 0); }
  std::string failure(const std::string& target, Backup backup = Backup::none) {
    try {
      store().save(target, backup);
    } catch (const SaveError& error) {
      return error.what();
    }
    return "saved";
  }

  TemporaryDirectory m_directory;
  std::string m_path = m_directory.write("config.ldif", kText);
  std::unique_ptr<OVOConfigUtils::CfgUtils> m_utils;
};

TEST_F(Save, DoesNotTouchAFileInWhichNothingChanged) {
  open();
  const auto before = statusOf(m_path);
  const SaveResult result = store().save(m_path, Backup::keep);
  EXPECT_FALSE(result.written);
  EXPECT_EQ(result.backupPath, "");
  const auto after = statusOf(m_path);
  EXPECT_EQ(before.st_ino, after.st_ino);
  EXPECT_EQ(before.st_ctim.tv_sec, after.st_ctim.tv_sec);
  EXPECT_EQ(before.st_ctim.tv_nsec, after.st_ctim.tv_nsec);
  EXPECT_THAT(m_directory.names(), ElementsAre("config.ldif"));
}

TEST_F(Save, ReplacesTheFileThatWasRead) {
  open();
  change();
  const SaveResult result = store().save(m_path, Backup::none);
  EXPECT_TRUE(result.written);
  EXPECT_EQ(result.backupPath, "");
  EXPECT_EQ(readFile(m_path), kChanged);
  EXPECT_THAT(m_directory.names(), ElementsAre("config.ldif"));
}

TEST_F(Save, CanBeDoneAgain) {
  open();
  change();
  EXPECT_TRUE(store().save(m_path, Backup::none).written);
  EXPECT_FALSE(store().save(m_path, Backup::none).written);
  change("3");
  EXPECT_TRUE(store().save(m_path, Backup::none).written);
  EXPECT_EQ(readFile(m_path), "dn: CN=A\na: 3\n");
}

TEST_F(Save, KeepsTheReplacedFileAsABackup) {
  open();
  change();
  const auto before = statusOf(m_path);
  const SaveResult result = store().save(m_path, Backup::keep);
  EXPECT_TRUE(result.written);
  EXPECT_THAT(result.backupPath, MatchesRegex(".*/config\\.ldif\\.[0-9]+-[0-9]+\\.bak"));
  EXPECT_EQ(readFile(result.backupPath), kText);
  EXPECT_EQ(statusOf(result.backupPath).st_mode, before.st_mode);
  EXPECT_EQ(readFile(m_path), kChanged);
  EXPECT_EQ(statusOf(m_path).st_nlink, 1U);
  EXPECT_EQ(m_directory.names().size(), 2U);
}

TEST_F(Save, NeverOverwritesABackup) {
  open();
  Strings backups;
  for (const char* value : {"2", "3", "4", "5"}) {
    change(value);
    backups.push_back(store().save(m_path, Backup::keep).backupPath);
  }
  EXPECT_EQ(m_directory.names().size(), 5U);
  for (std::size_t i = 0; i < backups.size(); ++i) {
    EXPECT_EQ(readFile(backups[i]), "dn: CN=A\na: " + std::to_string(i + 1) + "\n");
  }
}

TEST_F(Save, KeepsTheModeOfAReplacedFile) {
  for (const mode_t mode : {0600U, 0640U, 0440U, 0664U}) {
    writeFile(m_path, kText);
    ASSERT_EQ(::chmod(m_path.c_str(), mode), 0);
    open();
    change();
    const SaveResult result = store().save(m_path, Backup::keep);
    EXPECT_EQ(statusOf(m_path).st_mode & 07777, mode);
    EXPECT_EQ(statusOf(result.backupPath).st_mode & 07777, mode);
    std::filesystem::remove(m_path);
  }
}

TEST_F(Save, KeepsTheOwnerOfAReplacedFile) {
  if (::geteuid() != 0) GTEST_SKIP() << "only the superuser can have files of others";
  ASSERT_EQ(::chown(m_path.c_str(), 1234, 2345), 0);
  open();
  change();
  store().save(m_path, Backup::none);
  EXPECT_EQ(statusOf(m_path).st_uid, 1234U);
  EXPECT_EQ(statusOf(m_path).st_gid, 2345U);
}

TEST_F(Save, GivesANewFileTheModeOfTheFileThatWasRead) {
  for (const mode_t mode : {0600U, 0640U}) {
    ASSERT_EQ(::chmod(m_path.c_str(), mode), 0);
    open();
    const std::string target = m_directory.file("new-" + std::to_string(mode));
    EXPECT_TRUE(store().save(target, Backup::keep).written);
    EXPECT_EQ(readFile(target), kText);
    EXPECT_EQ(statusOf(target).st_mode & 07777, mode);
  }
}

TEST_F(Save, GivesAGroupThatIsNotTheSameNoAccessToANewFile) {
  if (::geteuid() != 0) GTEST_SKIP() << "only the superuser can have files of others";
  ASSERT_EQ(::chown(m_path.c_str(), ::geteuid(), ::getegid() + 1), 0);
  ASSERT_EQ(::chmod(m_path.c_str(), 0664), 0);
  open();
  const std::string target = m_directory.file("new");
  EXPECT_TRUE(store().save(target, Backup::keep).written);
  EXPECT_EQ(statusOf(target).st_gid, ::getegid());
  EXPECT_EQ(statusOf(target).st_mode & 07777, 0604U);
}

// Who was of that group is one of the others for the new file.
TEST_F(Save, GivesTheOthersNoMoreThanAGroupThatIsNotTheSameHad) {
  if (::geteuid() != 0) GTEST_SKIP() << "only the superuser can have files of others";
  ASSERT_EQ(::chown(m_path.c_str(), ::geteuid(), ::getegid() + 1), 0);
  ASSERT_EQ(::chmod(m_path.c_str(), 0604), 0);
  open();
  const std::string target = m_directory.file("new");
  EXPECT_TRUE(store().save(target, Backup::keep).written);
  EXPECT_EQ(statusOf(target).st_mode & 07777, 0600U);
}

TEST_F(Save, GivesNobodyMoreThanTheCallerAllows) {
  ASSERT_EQ(::chmod(m_path.c_str(), 0644), 0);
  open();
  change();
  const std::string newFile = m_directory.file("new");
  store().save(newFile, Backup::none, 0600);
  EXPECT_EQ(statusOf(newFile).st_mode & 07777, 0600U);
  const std::string other = m_directory.write("other.ldif", "anything\n");
  ASSERT_EQ(::chmod(other.c_str(), 0666), 0);
  store().save(other, Backup::none, 0640);
  EXPECT_EQ(statusOf(other).st_mode & 07777, 0640U);
  store().save(m_path, Backup::none, 0604);
  EXPECT_EQ(statusOf(m_path).st_mode & 07777, 0604U);
}

TEST_F(Save, TellsThePermissionsOfTheFileThatWasRead) {
  ASSERT_EQ(::chmod(m_path.c_str(), 0640), 0);
  open();
  EXPECT_EQ(store().permissions(), 0640U);
}

TEST_F(Save, ReplacesAnotherFileAndKeepsItsMode) {
  const std::string target = m_directory.write("other.ldif", "anything\n");
  ASSERT_EQ(::chmod(target.c_str(), 0604), 0);
  open();
  const SaveResult result = store().save(target, Backup::keep);
  EXPECT_EQ(readFile(target), kText);
  EXPECT_EQ(statusOf(target).st_mode & 07777, 0604U);
  EXPECT_EQ(readFile(result.backupPath), "anything\n");
}

TEST_F(Save, DoesNotTouchAnotherFileThatHoldsTheSame) {
  const std::string target = m_directory.write("other.ldif", kChanged);
  open();
  change();
  const auto before = statusOf(target);
  EXPECT_FALSE(store().save(target, Backup::keep).written);
  EXPECT_EQ(before.st_ino, statusOf(target).st_ino);
}

TEST_F(Save, FollowsSymbolicLinks) {
  std::filesystem::create_directory(m_directory.file("sub"));
  std::filesystem::rename(m_path, m_directory.file("sub/real.ldif"));
  std::filesystem::create_symlink("sub/real.ldif", m_directory.file("middle"));
  std::filesystem::create_symlink("middle", m_path);
  open();
  change();
  const SaveResult result = store().save(m_path, Backup::keep);
  EXPECT_TRUE(std::filesystem::is_symlink(m_path));
  EXPECT_EQ(readFile(m_directory.file("sub/real.ldif")), kChanged);
  EXPECT_THAT(result.backupPath, HasSubstr("/sub/real.ldif."));
}

TEST_F(Save, WorksWithALongName) {
  const std::string target = m_directory.file(std::string(230, 'x'));
  open();
  EXPECT_EQ(failure(target), "saved");
  change();
  EXPECT_EQ(failure(target, Backup::keep), "saved");
  EXPECT_EQ(readFile(target), kChanged);
}

TEST_F(Save, WorksWithARelativeName) {
  const auto before = std::filesystem::current_path();
  std::filesystem::current_path(m_directory.path());
  m_path = "config.ldif";
  open();
  change();
  EXPECT_EQ(failure("config.ldif"), "saved");
  EXPECT_EQ(failure("new.ldif"), "saved");
  std::filesystem::current_path(before);
  EXPECT_THAT(m_directory.names(), ElementsAre("config.ldif", "new.ldif"));
}

}  // namespace
}  // namespace cfgstore
