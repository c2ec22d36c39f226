// Whichever system call of a save fails, and wherever the program is stopped, the target is the old file or the new
// one, whole.

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <ctime>
#include <filesystem>

#include "AtomicFile.h"
#include "FaultyFileSystem.h"
#include "TestAttributes.h"
#include "TestStore.h"

namespace cfgstore {
namespace {

using test::FaultyFileSystem;
using test::readFile;
using test::Strings;
using test::TemporaryDirectory;
using testing::ElementsAre;
using testing::HasSubstr;

constexpr std::time_t kNow = 1700000000;
constexpr int kMostCalls = 500;

class AtomicFileFault : public testing::Test {
 protected:
  enum class Target { source, other, none };

  void prepare(Target target) {
    for (const std::string& name : m_directory.names()) std::filesystem::remove(m_directory.file(name));
    m_source.path = m_directory.write("source", kOld);
    std::string why;
    const auto read = SourceText::read(m_source.path, why);
    m_source.resolved = read->resolvedPath();
    m_source.stamp = read->stamp();
    m_source.text = kOld;
    m_target = target == Target::source ? m_source.path : m_directory.file("target");
    if (target == Target::other) m_directory.write("target", kOld);
    m_existed = target != Target::none;
    m_before = m_directory.names();
  }

  // True if it was saved.
  bool save(FileSystem& files, Backup backup) {
    try {
      const SavedFile saved = AtomicFile(files, m_target, m_source).save(m_pieces, backup, kNow);
      EXPECT_TRUE(saved.result.written);
      EXPECT_EQ(saved.result.backupPath.empty(), backup == Backup::none || !m_existed);
      return true;
    } catch (const SaveError& error) {
      m_error = error.what();
      return false;
    }
  }

  void expectOldOrNew() {
    if (!std::filesystem::exists(m_target)) {
      EXPECT_FALSE(m_existed) << "the target is gone";
      return;
    }
    const std::string content = readFile(m_target);
    EXPECT_TRUE((m_existed && content == kOld) || content == kNew) << content;
  }

  // The names that are there and were not before.
  Strings newNames() {
    Strings names;
    for (const std::string& name : m_directory.names()) {
      if (std::find(m_before.begin(), m_before.end(), name) == m_before.end()) names.push_back(name);
    }
    return names;
  }

  static constexpr const char* kOld = "the old file\n";
  static constexpr const char* kNew = "the new file, in several pieces\n";
  std::vector<std::string_view> m_pieces{"the new file", ", ", "in several pieces\n"};
  TemporaryDirectory m_directory;
  SourceFile m_source;
  std::string m_target;
  std::string m_error;
  bool m_existed = false;
  Strings m_before;
};

constexpr int kErrors[] = {EIO, ENOSPC, EACCES, EPERM, EROFS, EEXIST, ENOSYS};

TEST_F(AtomicFileFault, LeavesTheOldFileAndNothingElseWhicheverCallFails) {
  for (const Target target : {Target::source, Target::other, Target::none}) {
    for (const Backup backup : {Backup::none, Backup::keep}) {
      for (const int error : kErrors) {
        bool failed = true;
        for (int n = 1; failed; ++n) {
          ASSERT_LT(n, kMostCalls) << "the sweep does not end";
          prepare(target);
          FaultyFileSystem files;
          files.failCall(n, error);
          const bool saved = save(files, backup);
          failed = files.hasFailed();
          EXPECT_EQ(files.openFiles(), 0) << files.failedCall();
          expectOldOrNew();
          if (!saved) {
            EXPECT_EQ(std::filesystem::exists(m_target), m_existed) << files.failedCall() << " " << m_error;
            if (m_existed) {
              EXPECT_EQ(readFile(m_target), kOld) << files.failedCall() << " " << m_error;
            }
            EXPECT_THAT(newNames(), ElementsAre()) << files.failedCall() << " " << m_error;
            EXPECT_THAT(m_error, HasSubstr(m_target + ": "));
          } else {
            EXPECT_EQ(readFile(m_target), kNew) << files.failedCall();
            const std::size_t expected = (backup == Backup::keep && m_existed ? 1U : 0U) + (m_existed ? 0U : 1U);
            EXPECT_EQ(newNames().size(), expected) << files.failedCall();
          }
        }
      }
    }
  }
}

TEST_F(AtomicFileFault, GoesOnAfterInterruptedReadsWritesAndSyncs) {
  prepare(Target::source);
  FaultyFileSystem all;
  ASSERT_TRUE(save(all, Backup::keep));
  int interrupted = 0;
  for (int n = 1; n <= all.calls(); ++n) {
    prepare(Target::source);
    FaultyFileSystem files;
    files.failCall(n, EINTR);
    const bool saved = save(files, Backup::keep);
    for (const char* name : {"write", "pread", "fsync"}) {
      if (!files.failedCall().ends_with(std::string(" ") + name)) continue;
      EXPECT_TRUE(saved) << files.failedCall();
      ++interrupted;
    }
    EXPECT_EQ(readFile(m_target), saved ? kNew : kOld);
  }
  EXPECT_GE(interrupted, 4);
}

TEST_F(AtomicFileFault, GoesOnAfterShortReadsAndWrites) {
  prepare(Target::other);
  FaultyFileSystem files;
  files.shorten();
  EXPECT_TRUE(save(files, Backup::keep));
  EXPECT_EQ(readFile(m_target), kNew);
}

// From one call on nothing works any more, as for a program that was killed there. What it leaves is cleared by the
// next save, and the file that was replaced is not lost.
TEST_F(AtomicFileFault, LeavesOldOrNewWhereverItIsKilledAndTheNextSaveClearsUp) {
  for (const Target target : {Target::source, Target::other, Target::none}) {
    for (const Backup backup : {Backup::none, Backup::keep}) {
      bool stopped = true;
      for (int n = 1; stopped; ++n) {
        ASSERT_LT(n, kMostCalls) << "the sweep does not end";
        prepare(target);
        FaultyFileSystem files;
        files.stopAt(n);
        save(files, backup);
        stopped = files.hasFailed();
        expectOldOrNew();

        if (backup == Backup::keep && m_existed && readFile(m_target) == kNew) {
          ASSERT_EQ(newNames().size(), 1U) << files.failedCall();
          EXPECT_EQ(readFile(m_directory.file(newNames()[0])), kOld) << files.failedCall();
        }
        // Another program saves something else.
        std::string why;
        m_source.text.reset();
        if (std::filesystem::exists(m_source.path)) m_source.stamp = SourceText::read(m_source.path, why)->stamp();
        const std::vector<std::string_view> next{"the next file\n"};
        FaultyFileSystem sound;
        AtomicFile(sound, m_target, m_source).save(next, Backup::none, kNow + 1);
        EXPECT_EQ(readFile(m_target), "the next file\n");
        for (const std::string& name : newNames()) {
          EXPECT_TRUE(name == "target" || name.ends_with(".bak")) << name << " after " << files.failedCall();
        }
      }
    }
  }
}

TEST_F(AtomicFileFault, MakesACopyForTheBackupWhereFilesCannotHaveTwoNames) {
  prepare(Target::source);
  ASSERT_EQ(::chmod(m_target.c_str(), 0640), 0);
  FaultyFileSystem files;
  files.failAll("link", EPERM);
  EXPECT_TRUE(save(files, Backup::keep));
  EXPECT_EQ(readFile(m_target), kNew);
  ASSERT_EQ(newNames().size(), 1U);
  const std::string backup = m_directory.file(newNames()[0]);
  EXPECT_EQ(readFile(backup), kOld);
  struct stat status {};
  ASSERT_EQ(::stat(backup.c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 07777, 0640U);
}

TEST_F(AtomicFileFault, SavesWithoutABackupWhereFilesCannotHaveTwoNames) {
  prepare(Target::source);
  FaultyFileSystem files;
  files.failAll("link", EPERM);
  EXPECT_TRUE(save(files, Backup::none));
  EXPECT_EQ(readFile(m_target), kNew);
  EXPECT_THAT(newNames(), ElementsAre());
}

TEST_F(AtomicFileFault, PlacesANewFileWhereRenamingCannotExclude) {
  prepare(Target::none);
  FaultyFileSystem files;
  files.failAll("renameNoReplace", EINVAL);
  EXPECT_TRUE(save(files, Backup::none));
  EXPECT_EQ(readFile(m_target), kNew);
  EXPECT_THAT(newNames(), ElementsAre("target"));
}

TEST_F(AtomicFileFault, NamesABackupWhereRenamingCannotExclude) {
  prepare(Target::source);
  FaultyFileSystem files;
  files.failAll("renameNoReplace", EINVAL);
  EXPECT_TRUE(save(files, Backup::keep));
  ASSERT_EQ(newNames().size(), 1U);
  EXPECT_EQ(readFile(m_directory.file(newNames()[0])), kOld);
}

TEST_F(AtomicFileFault, DoesNotOverwriteAFileThatAppearsInTheMeantime) {
  for (const char* call : {"fsync", "renameNoReplace"}) {
    prepare(Target::none);
    FaultyFileSystem files;
    files.before(call, [this] { test::writeFile(m_target, "somebody else's\n"); });
    EXPECT_FALSE(save(files, Backup::none));
    EXPECT_THAT(m_error, HasSubstr("was created by another program in the meantime"));
    EXPECT_EQ(readFile(m_target), "somebody else's\n");
    EXPECT_THAT(newNames(), ElementsAre("target"));
  }
}

TEST_F(AtomicFileFault, NoticesAFileThatIsWrittenWhileItIsSaved) {
  prepare(Target::source);
  FaultyFileSystem files;
  files.before("fchmod", [this] { test::writeFile(m_target, "somebody else's\n"); });
  EXPECT_FALSE(save(files, Backup::none));
  EXPECT_THAT(m_error, HasSubstr("is being changed by another program"));
  EXPECT_EQ(readFile(m_target), "somebody else's\n");
}

// Written in place after everything else was looked at, with its time put back: only the content shows it.
TEST_F(AtomicFileFault, ComparesTheContentImmediatelyBeforeTheFileIsReplaced) {
  for (const Backup backup : {Backup::none, Backup::keep}) {
    prepare(Target::source);
    struct stat before {};
    ASSERT_EQ(::stat(m_target.c_str(), &before), 0);
    FaultyFileSystem files;
    files.before("link", [&] {
      test::writeFile(m_target, "somebody's f\n");
      const timespec times[] = {before.st_atim, before.st_mtim};
      ASSERT_EQ(::utimensat(AT_FDCWD, m_target.c_str(), times, 0), 0);
    });
    EXPECT_FALSE(save(files, backup));
    EXPECT_THAT(m_error, HasSubstr("was changed by another program since it was read"));
    EXPECT_EQ(readFile(m_target), "somebody's f\n");
    EXPECT_THAT(newNames(), ElementsAre());
  }
}

// What a power failure leaves: the content is on the disk before it gets its name, and the names before it is told.
TEST_F(AtomicFileFault, BringsTheContentToTheDiskBeforeItsNameAndTheNameBeforeItIsTold) {
  for (const Backup backup : {Backup::none, Backup::keep}) {
    prepare(Target::source);
    FaultyFileSystem files;
    ASSERT_TRUE(save(files, backup)) << m_error;
    if (backup == Backup::keep) {
      EXPECT_THAT(files.order(), ElementsAre("write", "sync file", "link", "rename", "sync directory"));
    } else {
      EXPECT_THAT(files.order(), ElementsAre("write", "sync file", "link", "rename", "sync directory", "unlink"));
    }
  }
  prepare(Target::none);
  FaultyFileSystem files;
  ASSERT_TRUE(save(files, Backup::keep)) << m_error;
  EXPECT_THAT(files.order(), ElementsAre("write", "sync file", "rename", "sync directory"));
}

TEST_F(AtomicFileFault, NoticesAFileThatIsReplacedWhileItIsOpened) {
  prepare(Target::source);
  FaultyFileSystem files;
  files.before("flock", [this] {
    test::writeFile(m_directory.file("x"), kOld);
    std::filesystem::rename(m_directory.file("x"), m_target);
  });
  EXPECT_FALSE(save(files, Backup::none));
  EXPECT_THAT(m_error, HasSubstr("is being changed by another program"));
  EXPECT_EQ(readFile(m_target), kOld);
}

TEST_F(AtomicFileFault, IsReadableByItsOwnerOnlyWhileItIsWritten) {
  prepare(Target::other);
  ASSERT_EQ(::chmod(m_target.c_str(), 0644), 0);
  FaultyFileSystem files;
  mode_t mode = 0;
  files.before("write", [&] {
    struct stat status {};
    ASSERT_EQ(::stat(m_directory.file(".target.cfgmig-new").c_str(), &status), 0);
    mode = status.st_mode & 07777;
  });
  EXPECT_TRUE(save(files, Backup::none));
  EXPECT_EQ(mode, 0600U);
  struct stat status {};
  ASSERT_EQ(::stat(m_target.c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 07777, 0644U);
}

TEST_F(AtomicFileFault, NoticesWhatWasNotWrittenAsItShould) {
  prepare(Target::source);
  FaultyFileSystem files;
  files.corrupt();
  EXPECT_FALSE(save(files, Backup::keep));
  EXPECT_EQ(m_error, m_target + ": what was written is not what is read back");
  EXPECT_EQ(readFile(m_target), kOld);
  EXPECT_THAT(newNames(), ElementsAre());
}

TEST_F(AtomicFileFault, NamesBackupsByTheirTime) {
  const char* const zone = std::getenv("TZ");
  const std::string before = zone != nullptr ? zone : "";
  ::setenv("TZ", "UTC0", 1);
  ::tzset();
  prepare(Target::other);
  for (const char* content : {"1", "2", "3"}) {
    m_pieces = {content};
    EXPECT_TRUE(save(FileSystem::real(), Backup::keep));
  }
  EXPECT_THAT(newNames(), ElementsAre("target.20231114-221320-2.bak", "target.20231114-221320-3.bak",
                                      "target.20231114-221320.bak"));
  EXPECT_EQ(readFile(m_directory.file("target.20231114-221320.bak")), kOld);
  EXPECT_EQ(readFile(m_directory.file("target.20231114-221320-3.bak")), "2");
  zone != nullptr ? ::setenv("TZ", before.c_str(), 1) : ::unsetenv("TZ");
  ::tzset();
}

TEST_F(AtomicFileFault, NamesAFullDisk) {
  prepare(Target::source);
  FaultyFileSystem files;
  files.failAll("write", ENOSPC);
  EXPECT_FALSE(save(files, Backup::keep));
  EXPECT_EQ(m_error, m_target + ": cannot be written: No space left on device");
}

// What a killed program left is cleared first, and the calls of that may fail as well.
TEST_F(AtomicFileFault, LeavesTheOldFileOrTheNewOneWhicheverCallFailsAmongLeftovers) {
  for (const int error : {EIO, ENOENT, EOPNOTSUPP}) {
    bool failed = true;
    for (int n = 1; failed; ++n) {
      ASSERT_LT(n, kMostCalls) << "the sweep does not end";
      prepare(Target::source);
      std::filesystem::create_hard_link(m_target, m_directory.file(".source.cfgmig-old"));
      m_directory.write(".source.cfgmig-new", "");
      const std::string half = m_directory.write(".source.cfgmig-copy", "half a f");
      test::setAttribute(half, "user.cfgmig.unfinished", "");
      FaultyFileSystem files;
      files.failCall(n, error);
      const bool saved = save(files, Backup::none);
      failed = files.hasFailed();
      EXPECT_EQ(files.openFiles(), 0) << files.failedCall();
      ASSERT_TRUE(std::filesystem::exists(m_target)) << files.failedCall();
      EXPECT_EQ(readFile(m_target), saved ? kNew : kOld) << files.failedCall() << " " << m_error;
      if (!failed) {
        EXPECT_TRUE(saved);
        EXPECT_THAT(newNames(), ElementsAre());
      }
    }
  }
}

TEST_F(AtomicFileFault, TakesALeftoverForItsOwnWhereFilesHaveNoAttributes) {
  prepare(Target::source);
  m_directory.write(".source.cfgmig-new", "half a f");
  FaultyFileSystem files;
  files.failAll("fgetxattr", EOPNOTSUPP);
  EXPECT_TRUE(save(files, Backup::none)) << m_error;
  EXPECT_EQ(readFile(m_target), kNew);
  EXPECT_THAT(newNames(), ElementsAre());
}

TEST_F(AtomicFileFault, LeavesTheOldFileWhicheverCallFailsWhereRenamingCannotExclude) {
  for (const Target target : {Target::source, Target::none}) {
    prepare(target);
    FaultyFileSystem all;
    all.failAll("renameNoReplace", EINVAL);
    ASSERT_TRUE(save(all, Backup::keep)) << m_error;
    for (int n = 1; n <= all.calls(); ++n) {
      prepare(target);
      FaultyFileSystem files;
      files.failAll("renameNoReplace", EINVAL);
      files.failCall(n, EINVAL);
      const bool saved = save(files, Backup::keep);
      EXPECT_EQ(files.openFiles(), 0) << n;
      if (saved) {
        EXPECT_EQ(readFile(m_target), kNew) << n;
        continue;
      }
      EXPECT_EQ(std::filesystem::exists(m_target), m_existed) << n << " " << m_error;
      if (m_existed) {
        EXPECT_EQ(readFile(m_target), kOld) << n << " " << m_error;
      }
      EXPECT_THAT(newNames(), ElementsAre()) << n << " " << m_error;
    }
  }
}

TEST_F(AtomicFileFault, OverwritesNothingThatAppearsWhereRenamingCannotExclude) {
  prepare(Target::none);
  FaultyFileSystem files;
  files.failAll("renameNoReplace", EINVAL);
  files.before("link", [this] { test::writeFile(m_target, "somebody else's\n"); });
  EXPECT_FALSE(save(files, Backup::none));
  EXPECT_EQ(m_error, m_target + ": was created by another program in the meantime");
  EXPECT_EQ(readFile(m_target), "somebody else's\n");
  EXPECT_THAT(newNames(), ElementsAre("target"));
}

TEST_F(AtomicFileFault, GivesUpWhenAllNamesOfBackupsAreTaken) {
  prepare(Target::source);
  FaultyFileSystem files;
  files.failAll("renameNoReplace", EEXIST);
  EXPECT_FALSE(save(files, Backup::keep));
  EXPECT_EQ(m_error, m_target + ": there are too many backups of this second");
  EXPECT_EQ(readFile(m_target), kOld);
  EXPECT_THAT(newNames(), ElementsAre());
}

TEST_F(AtomicFileFault, PutsTheOldFileBackWhenTheDirectoryCannotBeBroughtToTheDiskAtAll) {
  prepare(Target::source);
  FaultyFileSystem files;
  files.before("renameNoReplace", [&files] { files.failAll("fsync", EIO); });  // that of the file has been made by then
  EXPECT_FALSE(save(files, Backup::keep));
  EXPECT_THAT(m_error, HasSubstr("its directory cannot be brought to the disk"));
  EXPECT_EQ(readFile(m_target), kOld);
  EXPECT_THAT(newNames(), ElementsAre());
}

TEST_F(AtomicFileFault, NamesNoProcessWhenTheSystemTellsNoneThatHoldsTheFile) {
  prepare(Target::source);
  FaultyFileSystem files;
  files.failAll("flock", EWOULDBLOCK);
  EXPECT_FALSE(save(files, Backup::none));
  EXPECT_EQ(m_error, m_target + ": another program is writing this file");
  EXPECT_EQ(readFile(m_target), kOld);
}

TEST_F(AtomicFileFault, WaitsForOthersWhoLookForAnInstant) {
  // Somebody who looks is done before the third try.
  class Looking : public FaultyFileSystem {
   public:
    explicit Looking(const std::string& path) : m_looker(::open(path.c_str(), O_RDONLY | O_CLOEXEC)) {
      EXPECT_EQ(::flock(m_looker, LOCK_SH | LOCK_NB), 0);
    }
    int flock(int file, int operation) override {
      if (++m_tries == 3) ::close(m_looker);
      return FaultyFileSystem::flock(file, operation);
    }
    int tries() const { return m_tries; }

   private:
    int m_looker;
    int m_tries = 0;
  };
  prepare(Target::source);
  Looking files(m_target);
  EXPECT_TRUE(save(files, Backup::none)) << m_error;
  EXPECT_GE(files.tries(), 3);
}

// Between the making of the new file and its lock another program may take it for a leftover: it is the other's then.
TEST_F(AtomicFileFault, GivesTheNewFileUpThatAnotherProgramHasLockedOrRemoved) {
  prepare(Target::none);
  FaultyFileSystem locked;
  locked.failAll("flock", EWOULDBLOCK);
  EXPECT_FALSE(save(locked, Backup::none));
  EXPECT_EQ(m_error, m_target + ": another program is writing this file");
  EXPECT_THAT(newNames(), ElementsAre(".target.cfgmig-new"));

  prepare(Target::none);
  const std::string made = m_directory.file(".target.cfgmig-new");
  FaultyFileSystem removed;
  removed.before("flock", [&made] {
    std::filesystem::remove(made);
    test::writeFile(made, "the other's\n");
  });
  EXPECT_FALSE(save(removed, Backup::none));
  EXPECT_EQ(m_error, m_target + ": another program is writing this file");
  EXPECT_EQ(readFile(made), "the other's\n");
  EXPECT_THAT(newNames(), ElementsAre(".target.cfgmig-new"));
}

}  // namespace
}  // namespace cfgstore
