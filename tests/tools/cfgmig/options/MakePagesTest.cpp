// Tests of the program that makes manual pages and completions from the table of options.

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <string>

#include "../Workspace.h"
#include "Shell.h"

namespace {

using testing::HasSubstr;
using testing::Not;

std::map<std::string, std::string> filesIn(const std::string& directory) {
  std::map<std::string, std::string> files;
  for (const auto& file : std::filesystem::recursive_directory_iterator(directory)) {
    if (!file.is_regular_file()) continue;
    std::ifstream in(file.path(), std::ios::binary);
    files[file.path().lexically_relative(directory).string()] = {std::istreambuf_iterator<char>(in),
                                                                 std::istreambuf_iterator<char>()};
  }
  return files;
}

class MakePages : public testing::Test {
 protected:
  CommandResult make(const std::string& words) const {
    return runLine(inShellQuotes(CFGMIG_MAKE_PAGES) + " " + words, workspace.path(""));
  }

  const Workspace workspace;
};

// What is installed is what the tables say now, and it is the same each time.
TEST_F(MakePages, GivesWhatWasBuilt) {
  const std::string out = inShellQuotes(workspace.path("out"));
  ASSERT_EQ(make("manuals " + inShellQuotes(CFGMIG_REPORT_SCHEMA) + " " + out).status, 0);
  EXPECT_EQ(filesIn(workspace.path("out")), filesIn(CFGMIG_MANUALS));
  std::filesystem::remove_all(workspace.path("out"));
  ASSERT_EQ(make("completions " + out).status, 0);
  EXPECT_EQ(filesIn(workspace.path("out")), filesIn(CFGMIG_COMPLETIONS));
}

TEST_F(MakePages, LeavesNoPageOfACommandThatIsNoMore) {
  std::filesystem::create_directories(workspace.path("out/man1"));
  workspace.write("out/man1/cfgmig-gone.1", "");
  ASSERT_EQ(make("manuals " + inShellQuotes(CFGMIG_REPORT_SCHEMA) + " out").status, 0);
  EXPECT_THAT(filesIn(workspace.path("out")), Not(testing::Contains(testing::Key("man1/cfgmig-gone.1"))));
}

TEST_F(MakePages, FailsWithTheNameOfWhatCannotBeReadOrWritten) {
  const CommandResult none = make("manuals none.json out");
  EXPECT_EQ(none.status, 1);
  EXPECT_THAT(none.output, HasSubstr("none.json: cannot be read"));
  workspace.write("file", "");
  const CommandResult file = make("completions file");
  EXPECT_EQ(file.status, 1);
  EXPECT_THAT(file.output, HasSubstr("make_pages: "));
  EXPECT_EQ(make("completions").status, 2);
  EXPECT_THAT(make("pages out").output, HasSubstr("usage: make_pages"));
}

}  // namespace
