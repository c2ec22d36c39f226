// Tests of the option that limits the size of configurations, which is the same for every command.

#include <gmock/gmock.h>

#include "SampleFiles.h"
#include "ToolProcess.h"
#include "Workspace.h"

namespace {

using testing::HasSubstr;

using Words = std::vector<std::string>;

class SizeLimit : public testing::Test {
 protected:
  SizeLimit() {
    m_files.write("old", sample::kOld);
    m_files.write("new", sample::kNew);
  }

  std::vector<Words> commands() const {
    const std::string old = m_files.path("old");
    return {{"apply", "--old", old, "--new", m_files.path("new"), "--from", "6.0", "-n"},
            {"compare", "--old", old, "--new", m_files.path("new")},
            {"clean", old, "--database", "-n"},
            {"schemas", old, "--search-dir", m_schemas.path(""), "--target-dir", m_schemas.path(""), "-n"},
            {"list", old},
            {"check", old},
            {"dump", old},
            {"rewrite", old, m_files.path("copy")}};
  }

  static Words with(Words words, const std::string& size) {
    words.insert(words.end(), {"--max-size", size});
    return words;
  }

  const Workspace m_files;
  const Workspace m_schemas;
};

TEST_F(SizeLimit, HoldsForEveryCommandThatReadsAConfiguration) {
  std::filesystem::create_directory(m_schemas.path("etc"));
  for (const Words& words : commands()) {
    EXPECT_EQ(runTool(with(words, "1M")).status, 0) << words.front();
    const auto result = runTool(with(words, "100"));
    EXPECT_EQ(result.status, 1) << words.front();
    EXPECT_THAT(result.out + result.err, HasSubstr(m_files.path("old") + ": ")) << words.front();
    EXPECT_THAT(result.out + result.err, HasSubstr("more than the limit of 100 bytes")) << words.front();
    EXPECT_THAT(result.out + result.err, HasSubstr("can raise it, and so can --max-size")) << words.front();
  }
}

TEST_F(SizeLimit, IsExact) {
  const std::string size = std::to_string(std::string(sample::kOld).size());
  const std::string less = std::to_string(std::string(sample::kOld).size() - 1);
  EXPECT_EQ(runTool(with({"list", m_files.path("old")}, size)).status, 0);
  EXPECT_EQ(runTool(with({"list", m_files.path("old")}, less)).status, 1);
}

TEST_F(SizeLimit, GoesBeforeThatOfTheEnvironment) {
  const Words list = {"list", m_files.path("old")};
  EXPECT_EQ(runTool(ToolSetup{list, {"CFGMIG_MAX_FILE_SIZE=100"}}).status, 1);
  EXPECT_EQ(runTool(ToolSetup{with(list, "1M"), {"CFGMIG_MAX_FILE_SIZE=100"}}).status, 0);
  EXPECT_EQ(runTool(ToolSetup{with(list, "100"), {"CFGMIG_MAX_FILE_SIZE=1M"}}).status, 1);
}

TEST_F(SizeLimit, MustBeASize) {
  for (const char* size : {"0", "-1", "1MB", "x", "1.5G", "99999999999999999999"}) {
    const auto result = runTool(with({"list", m_files.path("old")}, size));
    EXPECT_EQ(result.status, 2) << size;
    EXPECT_THAT(result.err, HasSubstr("--max-size is not a size such as 512M, 4G or a number of bytes: '"));
  }
}

}  // namespace
