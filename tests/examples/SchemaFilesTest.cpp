// The schema files of the example: one that the configuration names is present, one missing, one not to be read.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <optional>

#include "ConfigFile.h"
#include "ConfigStore.h"
#include "ExampleFiles.h"

using namespace examples;
using cfgstore::ConfigStore;
using testing::ElementsAre;
using testing::ElementsAreArray;

namespace fs = std::filesystem;

namespace {

constexpr int kFilesMissing = 32;
constexpr mode_t kPermissionBits = 07777;

// A list of names that checkSchemaFiles handed out, with everything released; nothing when there was no list.
std::optional<std::vector<std::string>> taken(char** list) {
  if (list == nullptr) return std::nullopt;
  std::vector<std::string> names;
  for (char** name = list; *name != nullptr; ++name) {
    names.emplace_back(*name);
    std::free(*name);
  }
  std::free(static_cast<void*>(list));
  return names;
}

std::vector<std::string> includesIn(const std::string& ldif) {
  constexpr std::string_view kName = "zor-slapdIncludeSchema: ";
  std::vector<std::string> values;
  for (const std::string& line : linesOf(ldif)) {
    if (line.starts_with(kName)) values.push_back(line.substr(kName.size()));
  }
  return values;
}

mode_t permissionsOf(const fs::path& file) {
  struct stat status {};
  EXPECT_EQ(::lstat(file.c_str(), &status), 0) << file;
  return status.st_mode & kPermissionBits;
}

struct Outcome {
  int result = -1;
  std::optional<std::vector<std::string>> missing;
  std::optional<std::vector<std::string>> copied;
};

class SchemaFilesOfTheExample : public testing::Test {
 protected:
  SchemaFilesOfTheExample() {
    fs::copy(folder("6.0") / "old-server", oldServer, fs::copy_options::recursive | fs::copy_options::copy_symlinks);
    fs::create_directory(target);
  }

  // Reconciles the schema files of the merged configuration.
  Outcome check() {
    std::string searchDir = oldServer.string();
    char text[] = "";
    char** missing = nullptr;
    char** copied = nullptr;
    Outcome outcome;
    outcome.result = merged.checkSchemaFiles(searchDir.data(), target.c_str(), text, &missing, &copied);
    outcome.missing = taken(missing);
    outcome.copied = taken(copied);
    return outcome;
  }

  std::vector<std::string> includes() { return includesIn(ConfigStore::of(*merged.getCfgUtils()).text()); }
  std::vector<std::string> namesInTarget() const {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(target)) names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
  }

  const TemporaryFolder files;
  const fs::path oldServer = files.path() / "old-server";
  const fs::path target = files.path() / "target";
  ConfigFile merged{files.add(folder("6.0") / "merged.ldif").string(), nullptr};
  const std::vector<std::string> includesBefore = includesIn(contentOf(folder("6.0") / "merged.ldif"));
};

TEST_F(SchemaFilesOfTheExample, AreListedAsMissingOrAsCopied) {
  const Outcome outcome = check();
  EXPECT_EQ(outcome.result, kFilesMissing);
  ASSERT_TRUE(outcome.missing && outcome.copied);
  EXPECT_THAT(*outcome.missing, ElementsAre("acme.badge.oc"));
  EXPECT_THAT(*outcome.copied, ElementsAre("acme.person.at", "acme.person.oc"));
}

TEST_F(SchemaFilesOfTheExample, AreNamedAtTheirNewPlaceWhenTheyWereCopied) {
  ASSERT_EQ(includesBefore.size(), 15U);  // the server's own eleven, then four others
  check();
  std::vector<std::string> expected(includesBefore.begin(), includesBefore.begin() + 11);
  expected.push_back("/opt/acme/schema/acme.badge.oc");
  expected.push_back("/opt/acme/schema/acme.sites.at");
  expected.push_back((target / "acme.person.at").string());
  expected.push_back((target / "acme.person.oc").string());
  EXPECT_THAT(includes(), ElementsAreArray(expected));
}

TEST_F(SchemaFilesOfTheExample, AreCopiedByteForByteForTheServerAndItsGroupAlone) {
  check();
  EXPECT_THAT(namesInTarget(), ElementsAre("acme.person.at", "acme.person.oc"));
  for (const char* name : {"acme.person.at", "acme.person.oc"}) {
    EXPECT_EQ(contentOf(target / name), contentOf(folder("6.0") / "old-server/etc" / name)) << name;
    EXPECT_EQ(permissionsOf(target / name), 0660U) << name;
  }
}

TEST_F(SchemaFilesOfTheExample, AreLeftAsTheyWereOnTheOldServer) {
  check();
  for (const auto& entry : fs::directory_iterator(folder("6.0") / "old-server/etc")) {
    const fs::path there = oldServer / "etc" / entry.path().filename();
    if (entry.is_symlink()) {
      EXPECT_EQ(fs::read_symlink(there), "/dev/null");
    } else {
      EXPECT_EQ(contentOf(there), contentOf(entry.path()));
    }
  }
}

// Where the file stands in the way of itself: the target holds something else under its name.
TEST_F(SchemaFilesOfTheExample, AreNotCopiedOverADirectory) {
  fs::create_directory(target / "acme.person.oc");
  const Outcome outcome = check();
  EXPECT_EQ(outcome.result, kFilesMissing);
  ASSERT_TRUE(outcome.copied);
  EXPECT_THAT(*outcome.copied, ElementsAre("acme.person.at"));
  EXPECT_THAT(includes(), testing::Contains("/opt/acme/schema/acme.person.oc"));
}

// The same with a file that is there and that nobody may read; to root, every file is readable.
TEST_F(SchemaFilesOfTheExample, AreNotCopiedWhenTheyMayNotBeRead) {
  if (::geteuid() == 0) GTEST_SKIP() << "root reads every file";
  fs::permissions(oldServer / "etc/acme.person.oc", fs::perms::none);
  const Outcome outcome = check();
  EXPECT_EQ(outcome.result, kFilesMissing);
  ASSERT_TRUE(outcome.copied);
  EXPECT_THAT(*outcome.copied, ElementsAre("acme.person.at"));
  EXPECT_THAT(includes(), testing::Contains("/opt/acme/schema/acme.person.oc"));
}

// Whether the old server has them or not.
TEST_F(SchemaFilesOfTheExample, OfTheServersOwnAreNeitherCopiedNorMissing) {
  const fs::path etc = oldServer / "etc";
  ASSERT_TRUE(fs::exists(etc / "V3.user.at"));
  ASSERT_FALSE(fs::exists(etc / "V3.user.oc"));
  check();
  const std::vector<std::string> after = includes();
  EXPECT_TRUE(std::equal(includesBefore.begin(), includesBefore.begin() + 11, after.begin()));
  EXPECT_FALSE(fs::exists(target / "V3.user.at"));
}

TEST_F(SchemaFilesOfTheExample, GiveNoListOfMissingFilesWhenTheyAreAllThere) {
  fs::copy_file(oldServer / "etc/acme.person.oc", oldServer / "etc/acme.badge.oc");
  fs::remove(oldServer / "etc/acme.sites.at");
  fs::copy_file(oldServer / "etc/acme.person.at", oldServer / "etc/acme.sites.at");
  const Outcome outcome = check();
  EXPECT_EQ(outcome.result, 0);
  EXPECT_FALSE(outcome.missing);
  ASSERT_TRUE(outcome.copied);
  EXPECT_THAT(*outcome.copied, ElementsAre("acme.person.at", "acme.person.oc", "acme.badge.oc", "acme.sites.at"));
}

}  // namespace
