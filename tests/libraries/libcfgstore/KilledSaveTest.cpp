// A program that is killed at any system call of a save: the target is the old file or the new one, whole, and the
// next run clears what was left.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <ctime>
#include <filesystem>

#include "AtomicFile.h"
#include "Child.h"
#include "FaultyFileSystem.h"
#include "FileRestore.h"
#include "FileStaging.h"
#include "TestAttributes.h"
#include "TestStore.h"

namespace cfgstore {
namespace {

using test::FaultyFileSystem;
using test::inChild;
using test::readFile;
using test::Strings;
using test::TemporaryDirectory;
using testing::AnyOf;
using testing::Contains;
using testing::Each;
using testing::EndsWith;

constexpr std::time_t kNow = 1700000000;
constexpr int kMostCalls = 300;
constexpr char kOld[] = "the old file\n";
constexpr char kNew[] = "the new file, in several pieces\n";

enum class Target { source, other, none };

// A file system that lacks a call; none for one that lacks nothing.
struct Kind {
  const char* missing;
  int error;
};
constexpr Kind kComplete{"nothing", 0};
constexpr Kind kNoLinks{"link", EPERM};
constexpr Kind kNoExclusion{"renameNoReplace", EINVAL};

class KilledSave : public testing::Test {
 protected:
  void prepare(Target target) {
    for (const std::string& name : m_directory.names()) std::filesystem::remove(m_directory.file(name));
    m_source = m_directory.write("source", kOld);
    m_existed = target != Target::none;
    m_target = target == Target::source ? m_source : m_directory.file("target");
    if (target == Target::other) m_directory.write("target", kOld);
    if (m_existed) m_hasAttributes = test::giveAttributes(m_target);
    m_attributes = m_existed ? test::describeAttributes(m_target) : "";
  }

  void save(FileSystem& files, std::string_view content, Backup backup, std::time_t now) const {
    std::string why;
    const auto read = SourceText::read(m_source, why);
    ASSERT_TRUE(read) << why;
    const SourceFile source{m_source, read->resolvedPath(), read->stamp(), read->text()};
    const std::string_view pieces[] = {content.substr(0, 7), content.substr(7)};
    AtomicFile(files, m_target, source).save(pieces, backup, now);
  }

  // True when the save was killed before call `n`.
  bool killedAt(int n, const Kind& kind, Backup backup) const {
    return inChild([&] {
             FaultyFileSystem files;
             if (kind.error != 0) files.failAll(kind.missing, kind.error);
             files.killBefore(n);
             save(files, kNew, backup, kNow);
             return "";
           })
        .killed;
  }

  void expectOldOrNew(Backup backup) const {
    if (!std::filesystem::exists(m_target)) {
      EXPECT_FALSE(m_existed) << "the target is gone";
      return;
    }
    const std::string content = readFile(m_target);
    if (!m_existed) {
      EXPECT_EQ(content, kNew);
      return;
    }
    EXPECT_THAT(content, AnyOf(kOld, kNew));
    EXPECT_EQ(test::describeAttributes(m_target), m_attributes);
    if (content == kOld || backup == Backup::none) return;
    EXPECT_THAT(contents(), Contains(kOld)) << "what is to be the backup";
  }

  // Kills a save at each call in turn, and then saves `next`.
  void sweep(const Kind& kind, const char* next) {
    for (const Target target : {Target::source, Target::other, Target::none}) {
      for (const Backup backup : {Backup::none, Backup::keep}) {
        bool killed = true;
        int n = 0;
        while (killed) {
          ASSERT_LT(++n, kMostCalls) << "the sweep does not end";
          SCOPED_TRACE("killed before call " + std::to_string(n));
          prepare(target);
          killed = killedAt(n, kind, backup);
          expectOldOrNew(backup);
          const bool replaced = m_existed && readFile(m_target) == kNew;
          FaultyFileSystem sound;
          save(sound, next, Backup::none, kNow + 1);
          EXPECT_EQ(readFile(m_target), next);
          EXPECT_THAT(litter(), testing::IsEmpty());
          if (replaced && backup == Backup::keep) {
            EXPECT_THAT(contents(), Contains(kOld));
          }
          if (HasFailure()) return;
        }
        EXPECT_GT(n, 15) << "a save makes more calls than that";
      }
    }
  }

  Strings contents() const {
    Strings all;
    for (const std::string& name : m_directory.names()) {
      if (name != "source" && m_directory.file(name) != m_target) all.push_back(readFile(m_directory.file(name)));
    }
    return all;
  }

  Strings litter() const {
    Strings names = m_directory.names();
    std::erase_if(
        names, [](const std::string& name) { return name == "source" || name == "target" || name.ends_with(".bak"); });
    return names;
  }

  const TemporaryDirectory m_directory;
  std::string m_source;
  std::string m_target;
  std::string m_attributes;
  bool m_existed = false;
  bool m_hasAttributes = false;
};

TEST_F(KilledSave, LeavesTheOldOrTheNewFileAtEveryCallAndTheNextRunClearsUp) { sweep(kComplete, "the next file\n"); }

TEST_F(KilledSave, IsClearedUpByTheSameSaveOnceMore) { sweep(kComplete, kNew); }

TEST_F(KilledSave, IsClearedUpByASaveThatHasNothingToDo) { sweep(kComplete, kOld); }

TEST_F(KilledSave, LeavesTheOldOrTheNewFileWhereFilesCannotHaveTwoNames) { sweep(kNoLinks, "the next file\n"); }

TEST_F(KilledSave, LeavesTheOldOrTheNewFileWhereRenamingCannotExclude) { sweep(kNoExclusion, "the next file\n"); }

TEST_F(KilledSave, LeavesNoCopyHalfAndTheNextRunMakesThemAll) {
  const TemporaryDirectory sources;
  const Strings names = {"new", "other", "same"};
  for (const std::string& name : names) sources.write(name, "schema " + name + "\n");
  bool killed = true;
  for (int n = 1; killed; ++n) {
    ASSERT_LT(n, kMostCalls) << "the sweep does not end";
    SCOPED_TRACE("killed before call " + std::to_string(n));
    for (const std::string& name : m_directory.names()) std::filesystem::remove(m_directory.file(name));
    m_directory.write("other", kOld);
    m_directory.write("same", "schema same\n");
    const auto copyAll = [&](FileSystem& files) {
      FileStaging staging(files);
      for (const std::string& name : names) staging.stage(sources.file(name), m_directory.file(name), 0640);
      staging.commit();
      staging.keep();
      return std::string();
    };
    killed = inChild([&] {
               FaultyFileSystem files;
               files.killBefore(n);
               return copyAll(files);
             }).killed;
    EXPECT_THAT(readFile(m_directory.file("other")), AnyOf(kOld, "schema other\n"));
    EXPECT_EQ(readFile(m_directory.file("same")), "schema same\n");
    if (std::filesystem::exists(m_directory.file("new"))) {
      EXPECT_EQ(readFile(m_directory.file("new")), "schema new\n");
    }
    FaultyFileSystem sound;
    copyAll(sound);
    Strings after = m_directory.names();
    for (const std::string& name : names) {
      EXPECT_EQ(readFile(m_directory.file(name)), "schema " + name + "\n");
      std::erase(after, name);
    }
    ASSERT_EQ(after.size(), 1U) << testing::PrintToString(after);
    EXPECT_THAT(after[0], EndsWith(".bak"));
    EXPECT_EQ(readFile(m_directory.file(after[0])), kOld);
  }
}

TEST_F(KilledSave, LeavesTheFileOrItsBackupWhenItIsKilledWhilePuttingABackupBack) {
  const auto isNew = [](std::string_view content) { return content == kNew; };
  bool killed = true;
  int n = 0;
  while (killed) {
    ASSERT_LT(++n, kMostCalls) << "the sweep does not end";
    SCOPED_TRACE("killed before call " + std::to_string(n));
    for (const std::string& name : m_directory.names()) std::filesystem::remove(m_directory.file(name));
    const std::string target = m_directory.write("target", kNew);
    const std::string backup = m_directory.write("target.bak", kOld);
    test::giveAttributes(backup);
    killed = inChild([&] {
               FaultyFileSystem files;
               files.killBefore(n);
               restoreFile(target, backup, isNew, Backup::none, files);
               return "";
             }).killed;
    EXPECT_THAT(readFile(target), AnyOf(kOld, kNew));
    EXPECT_EQ(readFile(backup), kOld);
    FaultyFileSystem sound;
    restoreFile(target, backup, isNew, Backup::none, sound);
    EXPECT_EQ(readFile(target), kOld);
    EXPECT_EQ(test::describeAttributes(target), test::describeAttributes(backup));
    for (const std::string& name : m_directory.names()) EXPECT_FALSE(name.starts_with(".")) << name;
  }
  EXPECT_GT(n, 15);
}

}  // namespace
}  // namespace cfgstore
