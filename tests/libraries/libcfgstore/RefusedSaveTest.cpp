// What a save refuses: it is told before anything is written, and a preview tells the same.

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
using testing::StartsWith;

const char* const kText = "dn: CN=A\na: 1\n";
const char* const kOther = "dn: CN=A\na: 9\n";  // of the same size

struct stat statusOf(const std::string& path) {
  struct stat status {};
  EXPECT_EQ(::lstat(path.c_str(), &status), 0) << path;
  return status;
}

class RefusedSave : public testing::Test {
 protected:
  // Opens the configuration and changes it.
  void open() {
    m_utils = std::make_unique<OVOConfigUtils::CfgUtils>(m_path.c_str(), nullptr);
    ASSERT_EQ(m_utils->setValue("CN=A", "a", "2"), 0);
  }
  ConfigStore& store() { return ConfigStore::of(*m_utils); }

  // Why a save to `target` is refused, or "saved". Checks that the preview says the same and that nothing was touched,
  // not even the directory for a moment.
  std::string refusal(const std::string& target) {
    const auto before = statusOf(m_directory.path());
    std::string preview = "saved";
    try {
      EXPECT_TRUE(store().checkSave(target));
    } catch (const SaveError& error) {
      preview = error.what();
    }
    EXPECT_EQ(before.st_mtim.tv_nsec, statusOf(m_directory.path()).st_mtim.tv_nsec) << "the preview wrote something";
    std::string refused = "saved";
    try {
      store().save(target, Backup::keep);
    } catch (const SaveError& error) {
      refused = error.what();
      const auto after = statusOf(m_directory.path());
      EXPECT_EQ(before.st_mtim.tv_sec, after.st_mtim.tv_sec) << "something was written";
      EXPECT_EQ(before.st_mtim.tv_nsec, after.st_mtim.tv_nsec) << "something was written";
    }
    EXPECT_EQ(preview, refused);
    return refused;
  }

  TemporaryDirectory m_directory;
  std::string m_path = m_directory.write("config.ldif", kText);
  std::unique_ptr<OVOConfigUtils::CfgUtils> m_utils;
};

constexpr char kChanged[] = ": was changed by another program since it was read";

TEST_F(RefusedSave, OfAFileThatWasWrittenSinceItWasRead) {
  open();
  writeFile(m_path, "dn: CN=A\na: longer\n");
  EXPECT_EQ(refusal(m_path), m_path + kChanged);
  EXPECT_EQ(readFile(m_path), "dn: CN=A\na: longer\n");
}

// Written in place, and its time put back to what it was.
TEST_F(RefusedSave, OfAFileOfWhichOnlyTheContentShowsThatItWasWritten) {
  open();
  const struct stat before = statusOf(m_path);
  writeFile(m_path, kOther);
  const timespec times[] = {before.st_atim, before.st_mtim};
  ASSERT_EQ(::utimensat(AT_FDCWD, m_path.c_str(), times, 0), 0);
  const struct stat after = statusOf(m_path);
  ASSERT_EQ(after.st_mtim.tv_nsec, before.st_mtim.tv_nsec);
  ASSERT_EQ(after.st_size, before.st_size);
  ASSERT_EQ(after.st_ino, before.st_ino);
  EXPECT_EQ(refusal(m_path), m_path + kChanged);
  EXPECT_EQ(readFile(m_path), kOther);
}

TEST_F(RefusedSave, IsNotThatOfAFileWhosePermissionsWereChangedSinceItWasRead) {
  open();
  ASSERT_EQ(::chmod(m_path.c_str(), 0600), 0);
  EXPECT_EQ(refusal(m_path), "saved");
  EXPECT_EQ(statusOf(m_path).st_mode & 07777, 0600U);
}

TEST_F(RefusedSave, OfAFileThatWasReplacedSinceItWasRead) {
  open();
  std::filesystem::rename(m_directory.write("other", kOther), m_path);
  EXPECT_EQ(refusal(m_path), m_path + kChanged);
  std::filesystem::create_symlink("config.ldif", m_directory.file("link"));
  EXPECT_EQ(refusal(m_directory.file("link")), m_directory.file("link") + kChanged);
}

TEST_F(RefusedSave, OfAFileThatWasRemovedSinceItWasRead) {
  open();
  std::filesystem::remove(m_path);
  EXPECT_EQ(refusal(m_path), m_path + ": was removed by another program since it was read");
  EXPECT_THAT(m_directory.names(), ElementsAre());
}

TEST_F(RefusedSave, OfAFileThatAnotherProgramHasLocked) {
  open();
  const int file = ::open(m_path.c_str(), O_RDONLY);
  ASSERT_EQ(::flock(file, LOCK_EX), 0);
  EXPECT_THAT(refusal(m_path), StartsWith(m_path + ": another program is writing this file: process "));
  ::close(file);
  EXPECT_EQ(readFile(m_path), kText);
  EXPECT_EQ(refusal(m_path), "saved");
}

TEST_F(RefusedSave, OfAFileWhoseBackupCouldNotBeNamed) {
  for (const std::size_t length : {std::size_t{235}, std::size_t{236}}) {
    m_path = m_directory.write(std::string(length, 'n'), kText);
    open();
    EXPECT_EQ(refusal(m_path), length == 235 ? "saved" : m_path + ": its name is too long for one of a backup");
  }
}

// A preview looks at a file for an instant: it is no writer, and in nobody's way.
TEST_F(RefusedSave, DoesNotComeFromOthersWhoLook) {
  open();
  const int file = ::open(m_path.c_str(), O_RDONLY);
  ASSERT_EQ(::flock(file, LOCK_SH), 0);
  EXPECT_TRUE(store().checkSave(m_path)) << "two look at the same time";
  ::close(file);
}

TEST_F(RefusedSave, ComesFromALookThatDoesNotEnd) {
  open();
  const int file = ::open(m_path.c_str(), O_RDONLY);
  ASSERT_EQ(::flock(file, LOCK_SH), 0);
  EXPECT_THROW(store().save(m_path, Backup::keep), SaveError);
  ::close(file);
  EXPECT_EQ(readFile(m_path), kText);
}

TEST_F(RefusedSave, IsForeseenWithoutKeepingALock) {
  open();
  ASSERT_TRUE(store().checkSave(m_path));
  const int file = ::open(m_path.c_str(), O_RDONLY);
  EXPECT_EQ(::flock(file, LOCK_EX | LOCK_NB), 0);
  EXPECT_THROW(store().checkSave(m_path), SaveError) << "somebody writes";
  ::close(file);
  EXPECT_TRUE(store().checkSave(m_path));
}

TEST_F(RefusedSave, OfANewFileThatAnotherProgramIsWriting) {
  open();
  const std::string target = m_directory.file("new.ldif");
  const int file = ::open(m_directory.file(".new.ldif.cfgmig-new").c_str(), O_RDWR | O_CREAT, 0600);
  ASSERT_EQ(::flock(file, LOCK_EX), 0);
  EXPECT_THAT(refusal(target), StartsWith(target + ": another program is writing this file: process "));
  ::close(file);
  EXPECT_EQ(refusal(target), "saved");
  EXPECT_THAT(m_directory.names(), ElementsAre("config.ldif", "new.ldif"));
}

TEST_F(RefusedSave, OfAFileWithSeveralNames) {
  std::filesystem::create_hard_link(m_path, m_directory.file("second"));
  open();
  EXPECT_EQ(
      refusal(m_path),
      m_path + ": has more than one name (hard link), and saving it would give the new content to one of them only");
  EXPECT_EQ(readFile(m_path), kText);
}

TEST_F(RefusedSave, ToASymbolicLinkThatLeadsNowhere) {
  std::filesystem::create_symlink("none", m_directory.file("link"));
  open();
  EXPECT_EQ(refusal(m_directory.file("link")),
            m_directory.file("link") + ": is a symbolic link to a file that does not exist");
}

TEST_F(RefusedSave, ToWhatIsNoRegularFile) {
  open();
  ASSERT_EQ(::mkfifo(m_directory.file("pipe").c_str(), 0600), 0);
  EXPECT_THAT(refusal(m_directory.path()), HasSubstr("is not a regular file"));
  EXPECT_THAT(refusal("/dev/null"), HasSubstr("is not a regular file"));
  EXPECT_THAT(refusal(m_directory.file("pipe")), HasSubstr("is not a regular file"));
  EXPECT_THAT(refusal(m_directory.file("none/a")), HasSubstr("its directory cannot be found"));
  EXPECT_THAT(refusal(m_path + "/a"), HasSubstr("cannot be found"));
  EXPECT_THAT(refusal(""), HasSubstr("is not the name of a file"));
  EXPECT_THAT(refusal(m_directory.file("none/")), HasSubstr("is not the name of a file"));
}

TEST_F(RefusedSave, InADirectoryThatMayNotBeWritten) {
  const test::AsOrdinaryUser user(m_directory, m_path);
  open();
  ASSERT_EQ(::chmod(m_directory.path().c_str(), 0500), 0);
  EXPECT_EQ(refusal(m_path), m_path + ": no file can be created beside it: Permission denied");
  EXPECT_EQ(refusal(m_directory.file("new")),
            m_directory.file("new") + ": no file can be created beside it: Permission denied");
  ASSERT_EQ(::chmod(m_directory.path().c_str(), 0700), 0);
  EXPECT_EQ(readFile(m_path), kText);
}

TEST_F(RefusedSave, OfAFileWhoseOwnerCannotBeKept) {
  if (::geteuid() != 0) GTEST_SKIP() << "only the superuser can have files of others";
  const std::string target = m_directory.write("other.ldif", "of the superuser\n");
  ASSERT_EQ(::chmod(target.c_str(), 0644), 0);
  const test::AsOrdinaryUser user(m_directory, m_path);
  open();
  const std::string why = target + ": its owner cannot be kept: Operation not permitted";
  std::string told;
  try {
    store().checkSave(target);
  } catch (const SaveError& error) {
    told = error.what();
  }
  EXPECT_EQ(told, why);
  try {
    store().save(target, Backup::keep);
    told.clear();
  } catch (const SaveError& error) {
    told = error.what();
  }
  EXPECT_EQ(told, why);
  EXPECT_EQ(readFile(target), "of the superuser\n");
  EXPECT_THAT(m_directory.names(), ElementsAre("config.ldif", "other.ldif"));
}

TEST_F(RefusedSave, OfAFileWhoseGroupCannotBeKept) {
  if (::geteuid() != 0) GTEST_SKIP() << "only the superuser can have files of other groups";
  constexpr uid_t kNobody = 65534;
  constexpr gid_t kForeignGroup = 65533;
  const std::string ours = m_directory.write("ours.ldif", "of a group of ours\n");
  const std::string others = m_directory.write("others.ldif", "of another group\n");
  ASSERT_EQ(::chown(ours.c_str(), kNobody, ::getegid()), 0);
  ASSERT_EQ(::chown(others.c_str(), kNobody, kForeignGroup), 0);
  const test::AsOrdinaryUser user(m_directory, m_path);
  open();
  EXPECT_TRUE(store().checkSave(ours));
  const auto toldBy = [](const auto& work) -> std::string {
    try {
      work();
    } catch (const SaveError& error) {
      return error.what();
    }
    return "saved";
  };
  const std::string why = others + ": its owner cannot be kept: Operation not permitted";
  EXPECT_EQ(toldBy([&] { store().checkSave(others); }), why);
  EXPECT_EQ(toldBy([&] { store().save(others, Backup::keep); }), why);
  EXPECT_EQ(toldBy([&] { store().save(ours, Backup::none); }), "saved");
  EXPECT_EQ(readFile(others), "of another group\n");
}

TEST_F(RefusedSave, TellsWhetherASaveWouldWriteAnything) {
  open();
  EXPECT_TRUE(store().checkSave(m_path));
  EXPECT_TRUE(store().checkSave(m_directory.file("new")));
  const std::string same = m_directory.write("same", "dn: CN=A\na: 2\n");
  EXPECT_FALSE(store().checkSave(same));
  EXPECT_THAT(m_directory.names(), ElementsAre("config.ldif", "same"));
}

}  // namespace
}  // namespace cfgstore
