// Each example of help does what it is there for, on the example that is shipped.

#include <gtest/gtest.h>

#include <filesystem>
#include <ostream>

#include "../Workspace.h"
#include "Shell.h"
#include "options/Command.h"

namespace {

struct NamedExample {
  std::string command;
  std::string line;
};

// Names the test in a list of tests.
void PrintTo(const NamedExample& example, std::ostream* out) { *out << example.line; }

std::vector<NamedExample> allExamples() {
  std::vector<NamedExample> examples;
  for (const tool::Command& command : tool::commands()) {
    for (const tool::Example& example : command.examples) examples.push_back({command.name, example.line});
  }
  return examples;
}

class HelpExample : public testing::TestWithParam<NamedExample> {
 protected:
  // Runs a line with the tool in front of all others that might be installed.
  CommandResult run(const std::string& line) const {
    const std::string directory = std::filesystem::path(CFGMIG_TOOL).parent_path().string();
    return runLine("PATH=" + inShellQuotes(directory) + ":$PATH; export PATH\n" +
                       "CFGMIG_STATE_DIRECTORY=state; export CFGMIG_STATE_DIRECTORY\n" + line,
                   m_workspace.path(""));
  }

  void prepare(const std::string& line) const {
    const CommandResult result = run(line);
    ASSERT_EQ(result.status, 0) << line << '\n' << result.output;
  }

  Workspace m_workspace;
};

TEST_P(HelpExample, Works) {
  const std::filesystem::path from = CFGMIG_EXAMPLES "/6.0";
  for (const char* const name : {"old.ldif", "new.ldif"})
    std::filesystem::copy_file(from / name, m_workspace.path(name));
  std::filesystem::copy_file(from / "new.ldif", m_workspace.path("server.conf"));
  std::filesystem::create_directories(m_workspace.path("new-server/etc"));
  // What other examples have left.
  const auto& [command, line] = GetParam();
  if (command == "schemas") prepare("cp -R " CFGMIG_EXAMPLES "/6.0/old-server .");
  if (command == "undo") prepare("cfgmig apply --old old.ldif --new server.conf");
  if (command == "verify") prepare("cfgmig apply --old old.ldif --new new.ldif -o merged.ldif");
  if (command != "plan" && line.find("plan.json") != std::string::npos) {
    prepare("cfgmig plan --old old.ldif --new new.ldif -o plan.json");
  }

  const CommandResult result = run(line);
  EXPECT_EQ(result.status, 0) << line << '\n' << result.output;
  // Whatever is named behind -o or > is there.
  for (const char* const before : {" -o ", " > ", " --html-report "}) {
    const std::size_t at = line.find(before);
    if (at == std::string::npos) continue;
    const std::size_t begin = at + std::string(before).size();
    const std::string file = line.substr(begin, line.find(' ', begin) - begin);
    EXPECT_NE(m_workspace.read(file), "") << file;
  }
}

INSTANTIATE_TEST_SUITE_P(All, HelpExample, testing::ValuesIn(allExamples()));

}  // namespace
