// File copies that are staged: checked when they are asked for, made all together or not at all, taken back.

#include "FileStaging.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <map>
#include <thread>

#include "CfgUtils.h"
#include "FaultyFileSystem.h"
#include "TestStore.h"

namespace cfgstore {
namespace {

namespace fs = std::filesystem;

using test::readFile;
using test::TemporaryDirectory;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::SizeIs;

constexpr char kBackup[] = "b\\.[0-9]{8}-[0-9]{6}(-[0-9]+)?\\.bak";

// What could have changed of each file: content, type and mode, inode.
using State = std::map<std::string, std::string>;

State stateOf(const TemporaryDirectory& directory) {
  State state;
  for (const std::string& name : directory.names()) {
    struct stat status {};
    EXPECT_EQ(::lstat(directory.file(name).c_str(), &status), 0);
    state[name] = std::to_string(status.st_mode) + " " + std::to_string(status.st_ino) + " " +
                  (S_ISREG(status.st_mode) ? readFile(directory.file(name)) : "");
  }
  return state;
}

class Staging : public testing::Test {
 protected:
  Staging() {
    m_source.write("a", "file a\n");
    m_source.write("b", "file b\n");
    m_source.write("c", "file c\n");
  }

  // As the library asks for it.
  bool copy(const std::string& name) const {
    return copyFile(m_source.file(name).c_str(), m_target.file(name).c_str(), nullptr, 0, 0660) != 0;
  }

  mode_t modeOf(const std::string& name) const {
    struct stat status {};
    EXPECT_EQ(::lstat(m_target.file(name).c_str(), &status), 0) << name;
    return status.st_mode & 07777;
  }

  TemporaryDirectory m_source;
  TemporaryDirectory m_target;
};

TEST_F(Staging, CopiesNothingBeforeItIsCommitted) {
  FileStaging staging;
  EXPECT_TRUE(copy("a"));
  EXPECT_TRUE(copy("b"));
  EXPECT_THAT(m_target.names(), IsEmpty());
  ASSERT_THAT(staging.copies(), SizeIs(2));
  EXPECT_EQ(staging.copies()[0].source, m_source.file("a"));
  EXPECT_EQ(staging.copies()[0].destination, m_target.file("a"));
  EXPECT_TRUE(staging.copies()[0].isStaged());
}

TEST_F(Staging, MakesAllCopiesWhenItIsCommitted) {
  {
    FileStaging staging;
    copy("a");
    copy("b");
    staging.commit();
    EXPECT_EQ(readFile(m_target.file("a")), "file a\n");
    EXPECT_EQ(readFile(m_target.file("b")), "file b\n");
    staging.keep();
  }
  EXPECT_THAT(m_target.names(), ElementsAre("a", "b"));
}

TEST_F(Staging, ForgetsWhatIsNotCommitted) {
  {
    const FileStaging staging;
    copy("a");
  }
  EXPECT_THAT(m_target.names(), IsEmpty());
  EXPECT_EQ(FileStaging::active(), nullptr);
  EXPECT_TRUE(copy("a")) << "and the next copy is made at once";
  EXPECT_THAT(m_target.names(), ElementsAre("a"));
}

TEST_F(Staging, TakesBackWhatIsNotKept) {
  m_target.write("b", "another b\n");
  fs::permissions(m_target.file("b"), fs::perms(0604));
  const State before = stateOf(m_target);
  {
    FileStaging staging;
    copy("a");
    copy("b");
    staging.commit();
    EXPECT_THAT(m_target.names(), ElementsAre("a", "b", MatchesRegex(kBackup)));
  }
  EXPECT_EQ(stateOf(m_target), before);
}

TEST_F(Staging, TakesBackOnDemandAndOnlyOnce) {
  FileStaging staging;
  copy("a");
  staging.commit();
  staging.rollback();
  EXPECT_THAT(m_target.names(), IsEmpty());
  m_target.write("a", "somebody's\n");
  staging.rollback();
  EXPECT_EQ(readFile(m_target.file("a")), "somebody's\n");
}

TEST_F(Staging, StagesOnlyUntilItIsCommitted) {
  FileStaging staging;
  copy("a");
  staging.commit();
  EXPECT_TRUE(copy("b"));
  EXPECT_THAT(m_target.names(), ElementsAre("a", "b"));
  EXPECT_THAT(staging.copies(), SizeIs(1));
}

TEST_F(Staging, IsOneAtATimeInAThread) {
  const FileStaging staging;
  EXPECT_THROW(FileStaging(), std::logic_error);
  EXPECT_EQ(FileStaging::active(), &staging);
  std::thread([&] {
    EXPECT_EQ(FileStaging::active(), nullptr);
    EXPECT_TRUE(copy("a"));
  }).join();
  EXPECT_THAT(m_target.names(), ElementsAre("a")) << "another thread copies at once";
  EXPECT_THAT(staging.copies(), IsEmpty());
}

TEST_F(Staging, KeepsAReplacedFileUnderANameThatNeverExists) {
  m_target.write("b", "another b\n");
  fs::permissions(m_target.file("b"), fs::perms(0640));
  FileStaging staging;
  copy("b");
  EXPECT_EQ(staging.copies()[0].found, FileCopy::Found::otherContent);
  // Names that this second and the next ones would give.
  const std::time_t now = std::time(nullptr);
  for (int second = 0; second < 10; ++second) {
    const std::time_t time = now + second;
    char text[32];
    std::strftime(text, sizeof text, "%Y%m%d-%H%M%S", std::localtime(&time));
    m_target.write(std::string("b.") + text + ".bak", "taken");
  }
  staging.commit();
  staging.keep();
  const std::string backup = staging.copies()[0].backupPath;
  EXPECT_THAT(backup, testing::EndsWith("-2.bak"));
  EXPECT_EQ(readFile(backup), "another b\n");
  EXPECT_EQ(modeOf(fs::path(backup).filename()), 0640U);
  EXPECT_EQ(readFile(m_target.file("b")), "file b\n");
  EXPECT_EQ(modeOf("b"), 0660U);
}

TEST_F(Staging, LeavesAnIdenticalFileAlone) {
  m_target.write("a", "file a\n");
  fs::permissions(m_target.file("a"), fs::perms(0444));
  const State before = stateOf(m_target);
  FileStaging staging;
  EXPECT_TRUE(copy("a"));
  EXPECT_EQ(staging.copies()[0].found, FileCopy::Found::sameContent);
  staging.commit();
  EXPECT_EQ(stateOf(m_target), before);
  staging.rollback();
  EXPECT_EQ(stateOf(m_target), before);
}

TEST_F(Staging, GivesCopiesNoMoreThan0660WhateverTheMask) {
  for (const mode_t mask : {0U, 0777U}) {
    const mode_t before = ::umask(mask);
    FileStaging staging;
    copyFile(m_source.file("a").c_str(), m_target.file("a").c_str(), nullptr, 0, 07777);
    copyFile(m_source.file("b").c_str(), m_target.file("b").c_str(), nullptr, 0, 0400);
    staging.commit();
    EXPECT_EQ(modeOf("a"), 0660U);
    EXPECT_EQ(modeOf("b"), 0400U);
    ::umask(before);
  }
}

TEST_F(Staging, CopiesOneFileOnceThatIsAskedForTwice) {
  FileStaging staging;
  EXPECT_TRUE(copy("a"));
  EXPECT_TRUE(copy("a"));
  EXPECT_EQ(staging.copies()[0].found, FileCopy::Found::nothing);
  EXPECT_EQ(staging.copies()[1].found, FileCopy::Found::sameContent);
  staging.commit();
  EXPECT_THAT(m_target.names(), ElementsAre("a"));
  staging.rollback();
  EXPECT_THAT(m_target.names(), IsEmpty());
}

TEST_F(Staging, TakesTwoFilesOfOneNameBackInTurn) {
  m_target.write("b", "another b\n");
  const State before = stateOf(m_target);
  FileStaging staging;
  EXPECT_TRUE(copy("b"));
  EXPECT_NE(copyFile(m_source.file("c").c_str(), m_target.file("b").c_str(), nullptr, 0, 0660), 0);
  EXPECT_EQ(staging.copies()[1].found, FileCopy::Found::otherContent);
  staging.commit();
  EXPECT_EQ(readFile(m_target.file("b")), "file c\n");
  EXPECT_THAT(m_target.names(), SizeIs(3)) << "both earlier files are kept";
  staging.rollback();
  EXPECT_EQ(stateOf(m_target), before);
}

struct Refusal {
  const char* name;
  const char* why;
};

TEST_F(Staging, RefusesWhatARealCopyWouldRefuseAndSaysWhy) {
  fs::create_symlink("/dev/null", m_source.file("device"));
  fs::create_directory(m_source.file("folder"));
  fs::create_directory(m_target.file("occupied"));
  m_source.write("occupied", "");
  m_source.write("linked", "");
  fs::create_symlink(m_source.file("a"), m_target.file("linked"));
  const State before = stateOf(m_target);
  FileStaging staging;
  constexpr Refusal kRefusals[] = {
      {"none", "cannot be opened: No such file or directory"},
      {"device", "is not a regular file"},
      {"folder", "is not a regular file"},
      {"occupied", "the destination is not a regular file"},
      {"linked", "the destination is a symbolic link"},
  };
  for (const Refusal& refusal : kRefusals) {
    EXPECT_FALSE(copy(refusal.name)) << refusal.name;
    EXPECT_EQ(staging.copies().back().refusal, refusal.why) << refusal.name;
  }
  EXPECT_TRUE(copy("b")) << "the others are staged all the same";
  staging.commit();
  staging.rollback();
  EXPECT_EQ(stateOf(m_target), before);
}

TEST_F(Staging, RefusesDestinationsThatAreNoFileOfTheDirectory) {
  const TemporaryDirectory outside;
  fs::create_directory_symlink(outside.path(), m_target.file("link"));
  const FileStaging staging;
  const std::string source = m_source.file("a");
  for (const std::string name : {"/", "/.", "/..", "/none/a", "/link/a"}) {
    EXPECT_EQ(copyFile(source.c_str(), (m_target.path() + name).c_str(), nullptr, 0, 0660), 0) << name;
    EXPECT_FALSE(staging.copies().back().isStaged()) << name;
  }
  EXPECT_EQ(copyFile(source.c_str(), source.c_str(), nullptr, 0, 0660), 0);
  EXPECT_EQ(staging.copies().back().refusal, "is the destination itself");
}

TEST_F(Staging, RefusesADirectoryThatItMayNotWrite) {
  fs::permissions(m_target.path(), fs::perms(0500));
  const std::string inside = m_target.file("x");
  const test::AsOrdinaryUser user(m_source, m_source.file("a"));
  FileStaging staging;
  EXPECT_FALSE(copy("a"));
  EXPECT_THAT(staging.copies()[0].refusal, HasSubstr("Permission denied"));
}

// What is refused at the commit although it was possible before: all copies are taken back.
TEST_F(Staging, CommitsNothingWhenOneSourceHasGone) {
  m_target.write("b", "another b\n");
  const State before = stateOf(m_target);
  FileStaging staging;
  copy("a");
  copy("b");
  copy("c");
  fs::remove(m_source.file("c"));
  try {
    staging.commit();
    FAIL() << "the source is gone";
  } catch (const StagingNotUndone&) {
    FAIL();
  } catch (const StagingError& error) {
    EXPECT_THAT(error.what(), HasSubstr(m_source.file("c") + ": cannot be copied to " + m_target.file("c")));
  }
  EXPECT_EQ(stateOf(m_target), before);
}

TEST_F(Staging, DoesNotFollowALinkThatAppearsAfterTheCheck) {
  const TemporaryDirectory outside;
  outside.write("mine", "mine\n");
  FileStaging staging;
  copy("a");
  fs::create_symlink(outside.file("mine"), m_target.file("a"));
  EXPECT_THROW(staging.commit(), StagingError);
  EXPECT_EQ(readFile(outside.file("mine")), "mine\n");
  EXPECT_TRUE(fs::is_symlink(m_target.file("a")));
}

TEST_F(Staging, LeavesAFileAloneThatSomebodyElseHasPutInPlaceMeanwhile) {
  m_target.write("b", "another b\n");
  FileStaging staging;
  copy("a");
  copy("b");
  staging.commit();
  const std::string backup = staging.copies()[1].backupPath;
  fs::rename(m_target.write("new", "somebody's\n"), m_target.file("b"));
  try {
    staging.rollback();
    FAIL() << "not everything could be taken back";
  } catch (const StagingNotUndone& error) {
    EXPECT_THAT(error.what(), HasSubstr(m_target.file("b")));
    EXPECT_THAT(error.what(), HasSubstr("the old file is " + backup));
  }
  EXPECT_EQ(readFile(m_target.file("b")), "somebody's\n");
  EXPECT_EQ(readFile(backup), "another b\n");
  EXPECT_FALSE(fs::exists(m_target.file("a"))) << "the others are taken back";
}

// Fails the n-th call of a commit of a new file, a replaced one and an identical one, for every n.
TEST_F(Staging, LeavesEverythingAsItWasWhicheverCallOfACommitFails) {
  m_target.write("b", "another b\n");
  fs::permissions(m_target.file("b"), fs::perms(0604));
  m_target.write("c", "file c\n");
  const State before = stateOf(m_target);
  for (const int error : {EIO, ENOSPC, EACCES}) {
    bool failed = true;
    for (int n = 1; failed; ++n) {
      ASSERT_LT(n, 300) << "the sweep does not end";
      test::FaultyFileSystem files;
      {
        FileStaging staging(files);
        ASSERT_TRUE(copy("a") && copy("b") && copy("c"));
        files.failCall(files.calls() + n, error);
        try {
          staging.commit();
          files.failCall(0, 0);
          EXPECT_EQ(readFile(m_target.file("a")), "file a\n");
          EXPECT_EQ(readFile(m_target.file("b")), "file b\n");
        } catch (const StagingNotUndone& failure) {
          FAIL() << files.failedCall() << ": " << failure.what();
        } catch (const StagingError&) {
          EXPECT_TRUE(files.hasFailed());
        }
      }
      EXPECT_EQ(files.openFiles(), 0) << files.failedCall();
      EXPECT_EQ(stateOf(m_target), before) << files.failedCall();
      failed = files.hasFailed();
    }
  }
}

// Fails the n-th call of a rollback: then it says so, and names what is left; nothing is lost.
TEST_F(Staging, SaysSoWhenACopyCannotBeTakenBack) {
  m_target.write("b", "another b\n");
  const State before = stateOf(m_target);
  bool failed = true;
  for (int n = 1; failed; ++n) {
    ASSERT_LT(n, 100) << "the sweep does not end";
    test::FaultyFileSystem files;
    bool told = false;
    FileStaging staging(files);
    copy("a");
    copy("b");
    staging.commit();
    const std::string backup = staging.copies()[1].backupPath;
    files.failCall(files.calls() + n, EIO);
    try {
      staging.rollback();
    } catch (const StagingNotUndone& error) {
      told = true;
      EXPECT_THAT(error.what(), HasSubstr(m_target.path()));
    }
    failed = files.hasFailed();
    EXPECT_EQ(files.openFiles(), 0);
    EXPECT_EQ(stateOf(m_target) == before, !told) << files.failedCall();
    if (!told) continue;
    if (fs::exists(backup)) fs::rename(backup, m_target.file("b"));  // by hand, as the text says
    fs::remove(m_target.file("a"));
    EXPECT_EQ(stateOf(m_target), before) << files.failedCall();
  }
}

// File systems without a second name for a file: the old one is copied.
TEST_F(Staging, KeepsAReplacedFileWhereThereAreNoLinks) {
  m_target.write("b", "another b\n");
  fs::permissions(m_target.file("b"), fs::perms(0604));
  test::FaultyFileSystem files;
  files.failAll("link", EOPNOTSUPP);
  FileStaging staging(files);
  copy("b");
  staging.commit();
  EXPECT_EQ(readFile(staging.copies()[0].backupPath), "another b\n");
  EXPECT_EQ(modeOf(fs::path(staging.copies()[0].backupPath).filename()), 0604U);
  staging.rollback();
  EXPECT_THAT(m_target.names(), ElementsAre("b"));
  EXPECT_EQ(readFile(m_target.file("b")), "another b\n");
  EXPECT_EQ(modeOf("b"), 0604U);
}

TEST_F(Staging, RefusesADirectoryThatTheSystemKeepsFromBeingWritten) {
  test::FaultyFileSystem files;
  files.failAll("access", EROFS);
  FileStaging staging(files);
  EXPECT_FALSE(copy("a"));
  EXPECT_EQ(staging.copies()[0].refusal, "the destination's directory cannot be written: Read-only file system");
}

// From the n-th call of a commit on nothing works any more, for every n: what could not be taken back is named, and the
// file that was replaced is under its own name, or it is told where it is.
TEST_F(Staging, NamesWhatIsLeftWhenNothingWorksAnyMoreInTheMiddleOfACommit) {
  int notUndone = 0;
  bool failed = true;
  for (int n = 1; failed; ++n) {
    ASSERT_LT(n, 300) << "the sweep does not end";
    for (const std::string& name : m_target.names()) fs::remove(m_target.file(name));
    m_target.write("b", "another b\n");
    test::FaultyFileSystem files;
    FileStaging staging(files);
    ASSERT_TRUE(copy("a") && copy("b"));
    files.stopAt(files.calls() + n);
    std::string told;
    try {
      staging.commit();
    } catch (const StagingNotUndone& error) {
      told = error.what();
      ++notUndone;
    } catch (const StagingError&) {
      EXPECT_FALSE(fs::exists(m_target.file("a"))) << files.failedCall();
      EXPECT_EQ(readFile(m_target.file("b")), "another b\n") << files.failedCall();
    }
    failed = files.hasFailed();
    if (told.empty()) continue;
    if (fs::exists(m_target.file("a"))) {
      EXPECT_EQ(readFile(m_target.file("a")), "file a\n") << files.failedCall();
      EXPECT_THAT(told, HasSubstr(m_target.file("a"))) << files.failedCall();
    }
    if (readFile(m_target.file("b")) == "another b\n") continue;
    EXPECT_EQ(readFile(m_target.file("b")), "file b\n") << files.failedCall();
    bool isNamed = false;
    for (const std::string& name : m_target.names()) {
      isNamed = isNamed || (readFile(m_target.file(name)) == "another b\n" && told.find(name) != std::string::npos);
    }
    EXPECT_TRUE(isNamed) << told << " after " << files.failedCall();
  }
  EXPECT_GT(notUndone, 0);
}

TEST_F(Staging, TakesTheOtherCopiesBackWhenMemoryRunsOutInOne) {
  m_target.write("b", "another b\n");
  const State before = stateOf(m_target);
  test::FaultyFileSystem files;
  FileStaging staging(files);
  copy("a");
  copy("b");
  files.before("link", [] { throw std::bad_alloc(); });  // the first copy has been made by then
  EXPECT_THROW(staging.commit(), std::bad_alloc);
  EXPECT_EQ(stateOf(m_target), before);
}

TEST_F(Staging, LeavesWholeCopiesBehindWhenItGoesAndCannotTakeThemBack) {
  test::FaultyFileSystem files;
  {
    FileStaging staging(files);
    copy("a");
    staging.commit();
    files.stopAt(files.calls() + 1);
  }
  EXPECT_TRUE(files.hasFailed());
  EXPECT_THAT(m_target.names(), ElementsAre("a"));
  EXPECT_EQ(readFile(m_target.file("a")), "file a\n");
}

}  // namespace
}  // namespace cfgstore
