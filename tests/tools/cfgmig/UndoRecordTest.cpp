// Tests of what apply notes for undo: where, and that nothing else is taken for it.

#include "migration/UndoRecord.h"

#include <gmock/gmock.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <map>
#include <optional>

#include "Failure.h"
#include "Workspace.h"

namespace {

namespace fs = std::filesystem;

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;
using tool::UndoRecord;

// Variables of the environment as they are to be for a while; empty for one that is not set.
class Environment {
 public:
  explicit Environment(const std::map<std::string, std::string>& variables) {
    for (const auto& [name, value] : variables) {
      const char* const now = std::getenv(name.c_str());
      m_before[name] = now != nullptr ? std::optional<std::string>(now) : std::nullopt;
      value.empty() ? ::unsetenv(name.c_str()) : ::setenv(name.c_str(), value.c_str(), 1);
    }
  }
  ~Environment() {
    for (const auto& [name, value] : m_before) {
      value ? ::setenv(name.c_str(), value->c_str(), 1) : ::unsetenv(name.c_str());
    }
  }
  Environment(const Environment&) = delete;
  Environment& operator=(const Environment&) = delete;

 private:
  std::map<std::string, std::optional<std::string>> m_before;
};

std::string linesOf(const tool::Failure& failure) { return testing::PrintToString(failure.lines()); }

class UndoRecords : public testing::Test {
 protected:
  static constexpr const char* kFingerprint = "xxh3:99aa06d3014798d86001c324468d497f";

  UndoRecord recordOf(const std::string& target) const {
    UndoRecord record;
    record.toolVersion = "0.1.0";
    record.time = "2026-11-21T09:14:00Z";
    record.sourceVersion = "6.0";
    record.target = target;
    record.fingerprint = record.oldFile.fingerprint = record.newFile.fingerprint = kFingerprint;
    record.oldFile.path = "/old";
    record.newFile.path = "/new";
    return record;
  }
  std::string why(const std::string& target) const {
    try {
      return tool::readUndoRecord(target) ? "read" : "there is none";
    } catch (const tool::Failure& failure) {
      return linesOf(failure);
    }
  }

  const Workspace workspace;
  const Environment environment{{{"CFGMIG_STATE_DIRECTORY", workspace.path("state")}}};
};

TEST_F(UndoRecords, KeepPathsOfAnyBytes) {
  const std::string target = workspace.path("caf\xE9.ldif");
  UndoRecord record = recordOf(target);
  record.backup = workspace.path("\xFF.bak");
  record.backupFingerprint = kFingerprint;
  record.schemas = {"/opt/\xE9/search", "/opt/target"};
  tool::writeUndoRecord(record);
  const auto read = tool::readUndoRecord(target);
  ASSERT_TRUE(read);
  EXPECT_EQ(read->target, target);
  EXPECT_EQ(read->backup, record.backup);
  ASSERT_TRUE(read->schemas);
  EXPECT_EQ(read->schemas->searchDirectory, "/opt/\xE9/search");
}

TEST_F(UndoRecords, AreRefusedWhenAFingerprintIsNone) {
  const std::string target = workspace.path("a.ldif");
  UndoRecord record = recordOf(target);
  record.plannedSha256 = std::string(64, 'a');
  tool::writeUndoRecord(record);
  const std::string name = fs::path(tool::undoRecordPath(target)).lexically_relative(workspace.path("")).string();
  const std::string good = workspace.read(name);
  EXPECT_EQ(tool::readUndoRecord(target)->plannedSha256, record.plannedSha256);
  for (const std::string& known : {std::string(kFingerprint), record.plannedSha256}) {
    for (const char* other : {"", "xxh3:", "99aa06d3014798d86001c324468d497f", "xxh3:99AA06D3014798D86001C324468D497F",
                              "xxh4:99aa06d3014798d86001c324468d497f"}) {
      if (known == record.plannedSha256 && other[0] == '\0') continue;  // no plan was carried out then
      std::string text = good;
      workspace.write(name, text.replace(text.find(known), known.size(), other));
      EXPECT_THAT(why(target), HasSubstr("it is no record that cfgmig apply has written")) << known << " " << other;
    }
  }
}

TEST_F(UndoRecords, OfAnotherVersionAreToldFromOthers) {
  const std::string target = workspace.path("a.ldif");
  tool::writeUndoRecord(recordOf(target));
  const std::string name = fs::path(tool::undoRecordPath(target)).lexically_relative(workspace.path("")).string();
  std::string text = workspace.read(name);
  const std::string version = "\"format_version\": 2";
  workspace.write(name, text.replace(text.find(version), version.size(), "\"format_version\": 1"));
  EXPECT_THAT(why(target), HasSubstr("another version of cfgmig has written this record"));
}

TEST_F(UndoRecords, AreRefusedWhenTheirBase64IsNone) {
  const std::string target = workspace.path("caf\xE9.ldif");
  tool::writeUndoRecord(recordOf(target));
  const std::string path = tool::undoRecordPath(target);
  const std::string name = fs::path(path).lexically_relative(workspace.path("")).string();
  std::string text = workspace.read(name);
  const std::size_t at = text.find("\"base64\"");
  ASSERT_NE(at, std::string::npos) << text;
  workspace.write(name, text.insert(text.find(": \"", at) + 3, "*"));
  EXPECT_THAT(why(target), HasSubstr("it is no record that cfgmig apply has written"));
}

TEST_F(UndoRecords, OfAnotherFileAreNotTakenForThisOnes) {
  const std::string target = workspace.path("a.ldif");
  const std::string other = workspace.path("b.ldif");
  tool::writeUndoRecord(recordOf(other));
  EXPECT_EQ(why(target), "there is none");
  fs::copy_file(tool::undoRecordPath(other), tool::undoRecordPath(target));
  EXPECT_THAT(why(target), HasSubstr("it is the record of another file; this one has been moved or renamed since"));
  EXPECT_EQ(why(other), "read");
}

TEST_F(UndoRecords, ThatAreHalfWrittenAreClearedAndNothingElseIs) {
  const std::string target = workspace.path("a.ldif");
  const std::string path = tool::undoRecordPath(target);
  const std::string half = fs::path(path).parent_path() / ("." + fs::path(path).filename().string() + ".cfgmig-new");
  tool::writeUndoRecord(recordOf(target));
  workspace.write(fs::path(half).lexically_relative(workspace.path("")).string(), "");
  tool::clearHalfUndoRecord(target);
  EXPECT_FALSE(fs::exists(half));
  fs::create_directory(half);
  try {
    tool::clearHalfUndoRecord(target);
    FAIL() << "a directory of somebody else was cleared";
  } catch (const tool::Failure& failure) {
    EXPECT_THAT(linesOf(failure), HasSubstr("move it away"));
  }
  EXPECT_TRUE(fs::is_directory(half));
  EXPECT_EQ(why(target), "read");
}

// Of the superuser in the system's directory; of anybody else where the desktop's rules have such things.
TEST_F(UndoRecords, StandWhereTheUserKeepsSuchThings) {
  constexpr uid_t kNobody = 65534;
  const Environment none{{{"CFGMIG_STATE_DIRECTORY", ""}, {"XDG_STATE_HOME", ""}, {"HOME", "/home/anybody"}}};
  const bool isSuperuser = ::geteuid() == 0;
  if (isSuperuser) {
    EXPECT_THAT(tool::undoRecordPath("/etc/a.ldif"), StartsWith("/var/lib/cfgmig/undo/"));
    ASSERT_EQ(::seteuid(kNobody), 0);
  }
  const std::string inHome = tool::undoRecordPath("/etc/a.ldif");
  const auto with = [](const std::string& directory) {
    const Environment state{{{"XDG_STATE_HOME", directory}}};
    return tool::undoRecordPath("/etc/a.ldif");
  };
  const std::string inState = with("/home/state");
  const std::string relative = with("state");
  if (isSuperuser) {
    ASSERT_EQ(::seteuid(0), 0);
  }
  EXPECT_THAT(inHome, StartsWith("/home/anybody/.local/state/cfgmig/undo/"));
  EXPECT_THAT(inHome, EndsWith(".json"));
  EXPECT_THAT(inState, StartsWith("/home/state/cfgmig/undo/"));
  EXPECT_EQ(relative, inHome) << "a directory that depends on where the tool runs is none";
}

}  // namespace
