// Owner, mode, access control list and extended attributes: kept, never wider, and told when they cannot be kept.

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstring>
#include <filesystem>
#include <functional>

#include "AtomicFile.h"
#include "Child.h"
#include "FaultyFileSystem.h"
#include "TestAttributes.h"
#include "TestStore.h"

namespace cfgstore {
namespace {

using test::attribute;
using test::describeAttributes;
using test::giveAttributes;
using test::listOf;
using test::readFile;
using test::setAttribute;
using test::TemporaryDirectory;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr char kList[] = "system.posix_acl_access";
constexpr char kOld[] = "the old file\n";
constexpr char kNew[] = "the new file\n";

mode_t modeOf(const std::string& path) {
  struct stat status {};
  EXPECT_EQ(::stat(path.c_str(), &status), 0) << path;
  return status.st_mode & 07777;
}

class SavedAttributes : public testing::Test {
 protected:
  // Saves, from a file with the mode 0644 unless told otherwise, and returns the path of the backup.
  std::string save(FileSystem& files = FileSystem::real(), Backup backup = Backup::keep, mode_t permissions = 07777) {
    std::string why;
    const auto read = SourceText::read(m_source, why);
    EXPECT_TRUE(read) << why;
    const SourceFile source{m_source, read->resolvedPath(), read->stamp(), read->text()};
    const std::string_view pieces[] = {kNew};
    const SavedFile saved = AtomicFile(files, m_target, source).save(pieces, backup, 1700000000, permissions);
    EXPECT_TRUE(saved.result.written);
    return saved.result.backupPath;
  }

  const TemporaryDirectory m_directory;
  const std::string m_source = m_directory.write("source", "what was read\n");
  std::string m_target = m_directory.file("target");
};

#define NEED_ATTRIBUTES(path) \
  if (!giveAttributes(path)) GTEST_SKIP() << "the file system has no extended attributes or access control lists"

TEST_F(SavedAttributes, AreKeptOnTheNewFileAndOnTheBackup) {
  m_directory.write("target", kOld);
  NEED_ATTRIBUTES(m_target);
  const std::string before = describeAttributes(m_target);
  EXPECT_THAT(before, HasSubstr(kList));
  EXPECT_THAT(before, HasSubstr("user.origin="));
  EXPECT_THAT(before, HasSubstr("user.empty="));
  const std::string backup = save();
  EXPECT_EQ(readFile(m_target), kNew);
  EXPECT_EQ(describeAttributes(m_target), before);
  EXPECT_EQ(readFile(backup), kOld);
  EXPECT_EQ(describeAttributes(backup), before);
}

TEST_F(SavedAttributes, AreKeptOnABackupThatIsACopy) {
  m_directory.write("target", kOld);
  NEED_ATTRIBUTES(m_target);
  const std::string before = describeAttributes(m_target);
  test::FaultyFileSystem files;
  files.failAll("link", EPERM);
  const std::string backup = save(files);
  EXPECT_EQ(readFile(backup), kOld);
  EXPECT_EQ(describeAttributes(backup), before);
  EXPECT_EQ(describeAttributes(m_target), before);
}

TEST_F(SavedAttributes, OfAnotherOwnerAreKeptByTheSuperuser) {
  if (::geteuid() != 0) GTEST_SKIP() << "only the superuser can have files of others";
  m_directory.write("target", kOld);
  ASSERT_EQ(::chown(m_target.c_str(), 1234, 2345), 0);
  NEED_ATTRIBUTES(m_target);
  ASSERT_TRUE(setAttribute(m_target, "trusted.x", "1") && setAttribute(m_target, "security.x", "2"));
  const std::string before = describeAttributes(m_target);
  EXPECT_THAT(before, HasSubstr("1234:2345"));
  save();
  EXPECT_EQ(describeAttributes(m_target), before);
}

TEST_F(SavedAttributes, AreKeptByAnOrdinaryUser) {
  m_directory.write("target", kOld);
  constexpr uid_t kNobody = 65534;
  if (::geteuid() == 0) {
    ASSERT_EQ(::chown(m_target.c_str(), kNobody, ::getegid()), 0);
  }
  const test::AsOrdinaryUser user(m_directory, m_source);
  NEED_ATTRIBUTES(m_target);
  const std::string before = describeAttributes(m_target);
  save();
  EXPECT_EQ(describeAttributes(m_target), before);
  EXPECT_EQ(attribute(m_target, "user.cfgmig.unfinished"), "(none)");
}

TEST_F(SavedAttributes, LeaveNoMarkOfOurs) {
  m_directory.write("target", kOld);
  const std::string backup = save();
  EXPECT_EQ(attribute(m_target, "user.cfgmig.unfinished"), "(none)");
  EXPECT_EQ(attribute(backup, "user.cfgmig.unfinished"), "(none)");
  m_target = m_directory.file("new");
  save();
  EXPECT_EQ(attribute(m_target, "user.cfgmig.unfinished"), "(none)");
}

TEST_F(SavedAttributes, ThatCannotBeKeptAreNamedAndNothingIsWritten) {
  m_directory.write("target", kOld);
  NEED_ATTRIBUTES(m_target);
  class Forbidding : public test::FaultyFileSystem {
   public:
    int fsetxattr(int file, const char* name, const void* from, std::size_t size) override {
      if (std::strcmp(name, "user.origin") != 0) return FaultyFileSystem::fsetxattr(file, name, from, size);
      errno = EPERM;
      return -1;
    }
    ssize_t write(int file, const void* from, std::size_t size) override {
      ++writes;
      return FaultyFileSystem::write(file, from, size);
    }
    int writes = 0;
  };
  Forbidding files;
  try {
    save(files);
    FAIL();
  } catch (const SaveError& error) {
    EXPECT_EQ(error.what(), m_target + ": its attribute user.origin cannot be kept: Operation not permitted");
  }
  EXPECT_EQ(files.writes, 0);
  EXPECT_EQ(readFile(m_target), kOld);
  EXPECT_THAT(m_directory.names(), testing::ElementsAre("source", "target"));
}

TEST_F(SavedAttributes, ThatTheSystemGivesByItselfNeedNotBeSet) {
  m_directory.write("target", kOld);
  NEED_ATTRIBUTES(m_target);
  // A file system that gives every new file the label, and does not let anybody set it.
  class Labelling : public test::FaultyFileSystem {
   public:
    int open(const char* path, int flags, mode_t mode) override {
      const int file = FaultyFileSystem::open(path, flags, mode);
      if ((flags & O_CREAT) != 0 && file >= 0) FaultyFileSystem::fsetxattr(file, "user.origin", "old\0server", 10);
      return file;
    }
    int fsetxattr(int file, const char* name, const void* from, std::size_t size) override {
      if (std::strcmp(name, "user.origin") != 0) return FaultyFileSystem::fsetxattr(file, name, from, size);
      errno = EACCES;
      return -1;
    }
  };
  Labelling files;
  const std::string before = describeAttributes(m_target);
  save(files);
  EXPECT_EQ(describeAttributes(m_target), before);
}

// Who could read the new file at each moment, under whatever name it has: never the named group, never a group by the
// mask, never all.
TEST_F(SavedAttributes, LeaveTheNewFileNeverWiderThanTheOldOne) {
  m_directory.write("target", kOld);
  NEED_ATTRIBUTES(m_target);
  const std::string list = attribute(m_target, kList);
  class Watching : public test::FaultyFileSystem {
   public:
    explicit Watching(std::function<void()> look) : m_look(std::move(look)) {}
    int fsetxattr(int file, const char* name, const void* from, std::size_t size) override {
      const int rc = FaultyFileSystem::fsetxattr(file, name, from, size);
      m_look();
      return rc;
    }
    int fchmod(int file, mode_t mode) override {
      m_look();
      const int rc = FaultyFileSystem::fchmod(file, mode);
      m_look();
      return rc;
    }
    ssize_t write(int file, const void* from, std::size_t size) override {
      m_look();
      return FaultyFileSystem::write(file, from, size);
    }

   private:
    std::function<void()> m_look;
  };
  int looks = 0;
  Watching files([&] {
    const std::string path = m_directory.file(".target.cfgmig-new");
    if (!std::filesystem::exists(path)) return;
    ++looks;
    const std::string now = attribute(path, kList);
    const bool isAsTheOld = now == list && modeOf(path) == 0640;
    const bool isForTheOwner = now == "(none)" && modeOf(path) == 0600;
    EXPECT_TRUE(isAsTheOld || isForTheOwner) << describeAttributes(path);
  });
  save(files);
  EXPECT_GE(looks, 5);
}

// A directory may give its new files a list of its own.
TEST_F(SavedAttributes, AreNotThoseThatTheDirectoryGivesToNewFiles) {
  const std::string list = listOf({{test::kOwnerTag, 7},
                                   {test::kUserTag, 7, 1234},
                                   {test::kOwningGroupTag, 7},
                                   {test::kMaskTag, 7},
                                   {test::kOtherTag, 7}});
  m_directory.write("target", kOld);
  ASSERT_EQ(::chmod(m_target.c_str(), 0640), 0);
  if (!setAttribute(m_directory.path(), "system.posix_acl_default", list)) GTEST_SKIP() << "no access control lists";
  std::filesystem::remove(m_directory.write("inheriting", ""));
  save();
  EXPECT_EQ(attribute(m_target, kList), "(none)");
  EXPECT_EQ(modeOf(m_target), 0640U);
  m_target = m_directory.file("new");
  ASSERT_EQ(::chmod(m_source.c_str(), 0660), 0);
  save();
  EXPECT_EQ(attribute(m_target, kList), "(none)");
  EXPECT_EQ(modeOf(m_target), 0660U);
}

// A list makes the group's permission bits the mask, which says nothing about the group.
TEST_F(SavedAttributes, GiveANewFileNoMoreThanTheListOfTheFileThatWasRead) {
  ASSERT_EQ(::chmod(m_source.c_str(), 0664), 0);
  if (!setAttribute(m_source, kList,
                    listOf({{test::kOwnerTag, 6},
                            {test::kUserTag, 0, 1234},
                            {test::kOwningGroupTag, 4},
                            {test::kMaskTag, 6},
                            {test::kOtherTag, 4}}))) {
    GTEST_SKIP() << "no access control lists";
  }
  EXPECT_EQ(modeOf(m_source), 0664U);
  save();
  EXPECT_EQ(modeOf(m_target), 0600U) << "one of the group and of all others may not read it";
  EXPECT_EQ(attribute(m_target, kList), "(none)");
}

TEST_F(SavedAttributes, GiveNobodyMoreThanTheCallerAllows) {
  m_directory.write("target", kOld);
  ASSERT_EQ(::chmod(m_target.c_str(), 0664), 0);
  const std::string list = listOf({{test::kOwnerTag, 6},
                                   {test::kUserTag, 6, 1234},
                                   {test::kOwningGroupTag, 4},
                                   {test::kGroupTag, 4, 2345},
                                   {test::kMaskTag, 6},
                                   {test::kOtherTag, 4}});
  if (!setAttribute(m_target, kList, list)) GTEST_SKIP() << "no access control lists";
  save(FileSystem::real(), Backup::none, 0640);
  EXPECT_EQ(modeOf(m_target), 0640U);
  EXPECT_EQ(attribute(m_target, kList), listOf({{test::kOwnerTag, 6},
                                                {test::kUserTag, 0, 1234},
                                                {test::kOwningGroupTag, 4},
                                                {test::kGroupTag, 0, 2345},
                                                {test::kMaskTag, 4},
                                                {test::kOtherTag, 0}}));
  m_directory.write("target", kOld);
  ASSERT_TRUE(setAttribute(m_target, kList, list));
  save(FileSystem::real(), Backup::none, 07777);
  EXPECT_EQ(attribute(m_target, kList), list) << "all that was there";
}

TEST_F(SavedAttributes, AreTakenFromTheFileAsItIsWhenItIsSaved) {
  m_directory.write("target", kOld);
  ASSERT_EQ(::chmod(m_target.c_str(), 0600), 0);
  test::FaultyFileSystem files;
  files.before("realpath", [&] { ASSERT_EQ(::chmod(m_target.c_str(), 0640), 0); });
  save(files);
  EXPECT_EQ(modeOf(m_target), 0640U);
}

// Permissions that are taken away while the file is being replaced must not come back with the new one.
TEST_F(SavedAttributes, ThatAreChangedDuringTheSaveStopIt) {
  m_directory.write("target", kOld);
  ASSERT_EQ(::chmod(m_target.c_str(), 0644), 0);
  for (const char* call : {"fsync", "link"}) {
    ASSERT_EQ(::chmod(m_target.c_str(), 0644), 0);
    test::FaultyFileSystem files;
    files.before(call, [&] { ASSERT_EQ(::chmod(m_target.c_str(), 0600), 0); });
    EXPECT_THROW(save(files), SaveRefused) << call;
    EXPECT_EQ(readFile(m_target), kOld);
    EXPECT_EQ(modeOf(m_target), 0600U);
    EXPECT_EQ(m_directory.names().size(), 2U);
  }
}

// Only the time of the last change shows it.
TEST_F(SavedAttributes, OfWhichOneIsChangedDuringTheSaveStopIt) {
  m_directory.write("target", kOld);
  NEED_ATTRIBUTES(m_target);
  test::FaultyFileSystem files;
  std::string after;
  files.before("fsync", [&] {
    setAttribute(m_target, "user.origin", "another");
    after = describeAttributes(m_target);
  });
  EXPECT_THROW(save(files), SaveRefused);
  EXPECT_EQ(readFile(m_target), kOld);
  EXPECT_EQ(describeAttributes(m_target), after);
}

TEST_F(SavedAttributes, AreNotMissedWhereThereAreNone) {
  m_directory.write("target", kOld);
  test::FaultyFileSystem files;
  for (const char* call : {"flistxattr", "fgetxattr", "fsetxattr", "fremovexattr"}) files.failAll(call, EOPNOTSUPP);
  save(files);
  EXPECT_EQ(readFile(m_target), kNew);
}

}  // namespace
}  // namespace cfgstore
