// Taking back what a save has done.

#include "FileRestore.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>
#include <filesystem>
#include <functional>
#include <initializer_list>

#include "FaultyFileSystem.h"
#include "TestAttributes.h"
#include "TestStore.h"

namespace cfgstore {
namespace {

namespace fs = std::filesystem;

using test::describeAttributes;
using test::readFile;
using test::Strings;
using test::TemporaryDirectory;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr char kOld[] = "the file before\n";
constexpr char kNew[] = "the result of a migration\n";

bool isNew(std::string_view content) { return content == kNew; }

class Restore : public testing::Test {
 protected:
  // Why it is refused; checks that the preview says the same, and that the files are as they were.
  std::string refusal(const std::string& backup) {
    const auto names = m_directory.names();
    const std::string content = fs::is_regular_file(m_target) ? readFile(m_target) : "";
    std::string preview = "restored";
    std::string told = "restored";
    try {
      checkRestore(m_target, backup, isNew);
    } catch (const SaveError& error) {
      preview = error.what();
    }
    try {
      restoreFile(m_target, backup, isNew, Backup::keep);
    } catch (const SaveError& error) {
      told = error.what();
    }
    EXPECT_EQ(preview, told);
    EXPECT_EQ(m_directory.names(), names);
    if (fs::is_regular_file(m_target)) {
      EXPECT_EQ(readFile(m_target), content);
    }
    return told;
  }

  // Has the first call fail, the second, and so on, until none is left, once for each of the errors.
  void failEachCall(std::initializer_list<int> errors, const std::function<void(test::FaultyFileSystem&)>& run) {
    for (const int error : errors) {
      bool failed = true;
      for (int n = 1; failed; ++n) {
        ASSERT_LT(n, 300) << "the sweep does not end";
        m_directory.write("config", kNew);
        test::FaultyFileSystem files;
        files.failCall(n, error);
        run(files);
        failed = files.hasFailed();
        EXPECT_EQ(files.openFiles(), 0) << files.failedCall();
      }
    }
  }

  const TemporaryDirectory m_directory;
  std::string m_target = m_directory.write("config", kNew);
  std::string m_backup = m_directory.write("config.bak", kOld);
};

TEST_F(Restore, MakesTheFileTheSameAsItsBackupBitForBit) {
  ASSERT_EQ(::chmod(m_target.c_str(), 0644), 0);
  test::giveAttributes(m_backup);
  checkRestore(m_target, m_backup, isNew);
  EXPECT_EQ(readFile(m_target), kNew);
  const SaveResult result = restoreFile(m_target, m_backup, isNew, Backup::none);
  EXPECT_TRUE(result.written);
  EXPECT_EQ(result.backupPath, "");
  EXPECT_EQ(readFile(m_target), kOld);
  EXPECT_EQ(describeAttributes(m_target), describeAttributes(m_backup));
  EXPECT_THAT(m_directory.names(), ElementsAre("config", "config.bak"));
}

TEST_F(Restore, KeepsWhatItReplacesWhenAskedTo) {
  const SaveResult result = restoreFile(m_target, m_backup, isNew, Backup::keep);
  EXPECT_EQ(readFile(result.backupPath), kNew);
  EXPECT_EQ(m_directory.names().size(), 3U);
}

TEST_F(Restore, HasNothingToDoTheSecondTime) {
  restoreFile(m_target, m_backup, isNew, Backup::none);
  EXPECT_FALSE(restoreFile(m_target, m_backup, isNew, Backup::keep).written);
  EXPECT_THAT(m_directory.names(), ElementsAre("config", "config.bak"));
}

TEST_F(Restore, GivesTheAttributesBackOfAFileWhoseContentIsTheSame) {
  test::writeFile(m_target, kOld);
  ASSERT_EQ(::chmod(m_backup.c_str(), 0640), 0);
  ASSERT_EQ(::chmod(m_target.c_str(), 0600), 0);
  const auto always = [](std::string_view) { return true; };
  EXPECT_TRUE(restoreFile(m_target, m_backup, always, Backup::none).written);
  EXPECT_EQ(describeAttributes(m_target), describeAttributes(m_backup));
}

TEST_F(Restore, RefusesAFileThatHasChangedSince) {
  test::writeFile(m_target, "edited since\n");
  EXPECT_THROW(restoreFile(m_target, m_backup, isNew, Backup::none), SaveRefused);
  EXPECT_EQ(refusal(m_backup), m_target + ": is no longer the file that is to be taken back");
}

TEST_F(Restore, NoticesAChangeAtTheLastMoment) {
  test::FaultyFileSystem late;
  late.before("link", [this] { test::writeFile(m_target, "edited meanwhile\n"); });
  EXPECT_THROW(restoreFile(m_target, m_backup, isNew, Backup::none, late), SaveRefused);
  EXPECT_EQ(readFile(m_target), "edited meanwhile\n");
  EXPECT_THAT(m_directory.names(), ElementsAre("config", "config.bak"));
}

TEST_F(Restore, MakesAFileThatIsGoneAnew) {
  fs::remove(m_target);
  EXPECT_TRUE(restoreFile(m_target, m_backup, isNew, Backup::keep).written);
  EXPECT_EQ(readFile(m_target), kOld);
  EXPECT_EQ(describeAttributes(m_target), describeAttributes(m_backup));
}

TEST_F(Restore, RefusesABackupThatIsNone) {
  EXPECT_EQ(refusal(m_directory.file("none")),
            m_target + ": the backup " + m_directory.file("none") + " cannot be opened: No such file or directory");
  EXPECT_THAT(refusal(m_directory.path()), HasSubstr("is not a regular file"));
}

TEST_F(Restore, RefusesAFileWithSeveralNames) {
  fs::create_hard_link(m_target, m_directory.file("second"));
  EXPECT_THAT(refusal(m_backup), HasSubstr("has more than one name (hard link)"));
}

TEST_F(Restore, LeavesEverythingAsItWasWhicheverCallFails) {
  failEachCall({EIO, ENOSPC, EACCES}, [this](test::FaultyFileSystem& files) {
    std::string told;
    try {
      restoreFile(m_target, m_backup, isNew, Backup::none, files);
    } catch (const SaveError& failure) {
      told = failure.what();
    }
    EXPECT_EQ(readFile(m_target), told.empty() ? kOld : kNew) << files.failedCall();
    EXPECT_EQ(readFile(m_backup), kOld);
    EXPECT_THAT(m_directory.names(), ElementsAre("config", "config.bak")) << files.failedCall();
  });
}

TEST_F(Restore, RemovesAFileThatWasMade) {
  EXPECT_TRUE(removeFile(m_target, isNew));
  EXPECT_THAT(m_directory.names(), ElementsAre("config.bak"));
  EXPECT_FALSE(removeFile(m_target, isNew)) << "it is gone";
}

TEST_F(Restore, DoesNotRemoveAFileThatHasChangedSince) {
  test::writeFile(m_target, "edited since\n");
  EXPECT_THROW(removeFile(m_target, isNew), SaveRefused);
  EXPECT_THROW(checkRestore(m_target, "", isNew), SaveRefused);
  EXPECT_EQ(readFile(m_target), "edited since\n");
}

TEST_F(Restore, TellsWhetherAFileWasRemovedWhicheverCallFails) {
  failEachCall({EIO, EACCES}, [this](test::FaultyFileSystem& files) {
    bool removed = false;
    try {
      removed = removeFile(m_target, isNew, files);
    } catch (const SaveError& failure) {
      EXPECT_THAT(failure.what(), HasSubstr(m_target));
    }
    EXPECT_EQ(fs::exists(m_target), !removed) << files.failedCall();
    if (!removed) {
      EXPECT_EQ(readFile(m_target), kNew) << files.failedCall();
    }
  });
}

}  // namespace
}  // namespace cfgstore
