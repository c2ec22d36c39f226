// The built tool on the schema files of the example: the commands that its README shows.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "ExampleFiles.h"
#include "ExampleTool.h"

using namespace examples;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace fs = std::filesystem;

namespace {

constexpr int kNeedsAPerson = 5;

std::vector<std::string> namesIn(const fs::path& folder) {
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(folder)) names.push_back(entry.path().filename().string());
  std::sort(names.begin(), names.end());
  return names;
}

class ToolOnSchemaFiles : public testing::Test {
 protected:
  ToolOnSchemaFiles() { fs::create_directory(target); }

  Outcome run(std::vector<std::string> command) {
    const std::vector<std::string> directories = {"--search-dir", (folder("6.0") / "old-server").string(),
                                                  "--target-dir", target.string()};
    command.insert(command.end(), directories.begin(), directories.end());
    return runTool(command, logFolder.path() / "log");
  }

  // The merged configuration of the example, as it is when the two files that were found have been copied.
  std::string expected() const {
    std::string text = contentOf(folder("6.0") / "merged.ldif");
    std::string copies;
    for (const char* name : {"acme.person.at", "acme.person.oc"}) {
      const std::string line = "zor-slapdIncludeSchema: /opt/acme/schema/" + std::string(name) + "\n";
      text.erase(text.find(line), line.size());
      copies += folded("zor-slapdIncludeSchema: " + (target / name).string());
    }
    const std::string last = "zor-slapdIncludeSchema: /opt/acme/schema/acme.sites.at\n";
    return text.insert(text.find(last) + last.size(), copies);
  }

  const TemporaryFolder files;
  const TemporaryFolder logFolder;
  const fs::path target = files.path() / "target";
  const std::string merged = files.add(folder("6.0") / "merged.ldif").string();

 private:
  // As the store writes a line.
  static std::string folded(const std::string& line) {
    constexpr std::size_t kWidth = 76;
    if (line.size() <= kWidth) return line + "\n";
    return line.substr(0, kWidth) + "\n " + line.substr(kWidth) + "\n";
  }
};

TEST_F(ToolOnSchemaFiles, CopiesWhatIsThereAndNamesWhatIsNot) {
  const Outcome outcome = run({"schemas", merged});
  EXPECT_EQ(outcome.status, kNeedsAPerson) << outcome.output;
  EXPECT_THAT(outcome.output, AllOf(HasSubstr("acme.badge.oc"), HasSubstr("acme.sites.at")));
  EXPECT_EQ(contentOf(merged), expected());
  EXPECT_THAT(namesIn(target), ElementsAre("acme.person.at", "acme.person.oc"));
}

TEST_F(ToolOnSchemaFiles, CopiesNothingForAPreview) {
  const Outcome outcome = run({"schemas", merged, "-n"});
  EXPECT_EQ(outcome.status, 0) << outcome.output;
  EXPECT_THAT(outcome.output, AllOf(HasSubstr("acme.badge.oc"), HasSubstr("acme.person.oc")));
  EXPECT_EQ(contentOf(merged), contentOf(folder("6.0") / "merged.ldif"));
  EXPECT_THAT(namesIn(target), IsEmpty());
}

TEST_F(ToolOnSchemaFiles, CopiesThemTogetherWithTheMerge) {
  const std::string out = (files.path() / "result.ldif").string();
  const Outcome outcome = run({"apply", "--old", (folder("6.0") / "old.ldif").string(), "--new",
                               (folder("6.0") / "new.ldif").string(), "--from", "6.0", "-o", out});
  EXPECT_EQ(outcome.status, kNeedsAPerson) << outcome.output;
  EXPECT_EQ(contentOf(out), expected());
  EXPECT_THAT(namesIn(target), ElementsAre("acme.person.at", "acme.person.oc"));
}

}  // namespace
