// The built tool, run as a process on copies of the examples.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ExampleFiles.h"
#include "ExampleTool.h"

using namespace examples;

using testing::HasSubstr;
using testing::Not;
using testing::UnorderedElementsAre;

namespace {

class ToolOnExample : public testing::TestWithParam<Merge> {
 protected:
  Outcome apply(std::vector<std::string> more) {
    std::vector<std::string> arguments = {"apply", "--old", oldFile, "--new", newFile, "--from", version};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return runTool(arguments, logFolder.path() / "log");
  }

  const Merge merge = GetParam();
  const std::string version = merge.version;
  const std::string expected = contentOf(folder(version) / merge.mergedFile);
  const TemporaryFolder files;
  const TemporaryFolder logFolder;
  const std::string oldFile = files.add(folder(version) / merge.oldFile).string();
  const std::string newFile = files.add(folder(version) / "new.ldif").string();
};

TEST_P(ToolOnExample, WritesTheMergedConfigurationToAnotherFile) {
  const std::string out = (files.path() / "result.ldif").string();
  const Outcome outcome = apply({"-o", out});
  ASSERT_EQ(outcome.status, 0) << outcome.output;
  EXPECT_TRUE(contentOf(out) == expected) << "see: diff merged.ldif of the example with the tool's result";
  EXPECT_EQ(contentOf(oldFile), contentOf(folder(version) / merge.oldFile));
  EXPECT_EQ(contentOf(newFile), contentOf(folder(version) / "new.ldif"));
  EXPECT_THAT(files.names(), UnorderedElementsAre("result.ldif", "new.ldif", merge.oldFile));
}

TEST_P(ToolOnExample, ReplacesTheNewConfigurationAndKeepsABackup) {
  const Outcome outcome = apply({});
  ASSERT_EQ(outcome.status, 0) << outcome.output;
  EXPECT_TRUE(contentOf(newFile) == expected);
  EXPECT_EQ(contentOf(oldFile), contentOf(folder(version) / merge.oldFile));
  std::size_t backups = 0;
  for (const std::string& name : files.names()) {
    if (name == merge.oldFile || name == "new.ldif") continue;
    ++backups;
    EXPECT_EQ(contentOf(files.path() / name), contentOf(folder(version) / "new.ldif")) << name;
  }
  EXPECT_EQ(backups, 1U);
}

TEST_P(ToolOnExample, ChangesNothingWhenAskedForAPreview) {
  const Outcome outcome = apply({"-n"});
  ASSERT_EQ(outcome.status, 0) << outcome.output;
  EXPECT_EQ(contentOf(oldFile), contentOf(folder(version) / merge.oldFile));
  EXPECT_EQ(contentOf(newFile), contentOf(folder(version) / "new.ldif"));
  EXPECT_THAT(files.names(), UnorderedElementsAre("new.ldif", merge.oldFile));
}

TEST_P(ToolOnExample, ShowsNoPassword) {
  const Outcome outcome = apply({"-n", "-v"});
  ASSERT_EQ(outcome.status, 0) << outcome.output;
  EXPECT_THAT(outcome.output, Not(HasSubstr("{sealed}")));
  EXPECT_THAT(outcome.output, Not(HasSubstr("FAKE")));
  EXPECT_THAT(outcome.output, Not(HasSubstr("m0ZBS0U")));
}

INSTANTIATE_TEST_SUITE_P(Examples, ToolOnExample, testing::ValuesIn(kMerges),
                         [](const auto& one) { return nameOf(one.param); });

}  // namespace
