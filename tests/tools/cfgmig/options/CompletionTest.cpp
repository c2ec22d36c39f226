// Tests of the completions, each in its own shell and compared with the table of options.

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <sstream>

#include "Shell.h"
#include "options/Command.h"
#include "options/Completion.h"

namespace {

using tool::Command;
using tool::Option;
using tool::Takes;
using Words = std::set<std::string>;

class Completion : public testing::TestWithParam<const char*> {
 protected:
  void SetUp() override {
    if (!isInstalled(GetParam()))
      GTEST_SKIP() << GetParam() << " is not installed, so its completion was not tried out";
  }

  static Words offers(const std::string& line) { return offersOf(GetParam(), {line})[line]; }
};

Words longOptionsOf(const Command& command) {
  Words names = {"--help"};
  for (const Option& option : optionsOf(command)) {
    if (!option.isPositional()) names.insert(option.name);
  }
  return names;
}

Words expectedFor(const Option& option) {
  if (option.takes == Takes::file) return {"(files)"};
  if (option.takes == Takes::directory) return {"(directories)"};
  Words names(option.words.begin(), option.words.end());
  if (option.takes == Takes::command) {
    for (const Command& command : tool::commands()) names.insert(command.name);
  }
  return names;
}

TEST_P(Completion, OffersTheCommandsAndNothingElseFirst) {
  Words names;
  for (const Command& command : tool::commands()) names.insert(command.name);
  Offers found = offersOf(GetParam(), {"cfgmig ", "cfgmig ver", "cfgmig --"});
  EXPECT_EQ(found["cfgmig "], names);
  EXPECT_EQ(found["cfgmig ver"], (Words{"verify", "version"}));
  EXPECT_EQ(found["cfgmig --"], (Words{"--help", "--version"}));
}

TEST_P(Completion, OffersAllOptionsOfEachCommand) {
  std::vector<std::string> lines;
  for (const Command& command : tool::commands()) lines.push_back(std::string("cfgmig ") + command.name + " --");
  Offers found = offersOf(GetParam(), lines);
  for (const Command& command : tool::commands()) {
    EXPECT_EQ(found[std::string("cfgmig ") + command.name + " --"], longOptionsOf(command)) << command.name;
  }
}

// Of each option of each command its value, in both forms.
TEST_P(Completion, OffersWhatTheValueOfEachOptionCanBe) {
  std::map<std::string, Words> expected;
  for (const Command& command : tool::commands()) {
    for (const Option& option : optionsOf(command)) {
      if (option.isPositional() || option.isFlag()) continue;
      const std::string begin = std::string("cfgmig ") + command.name + " ";
      expected[begin + option.name + " "] = expectedFor(option);
      expected[begin + option.name + "="] = expectedFor(option);
      if (option.letter != 0) expected[begin + "-" + option.letter + " "] = expectedFor(option);
    }
  }
  std::vector<std::string> lines;
  for (const auto& [line, words] : expected) lines.push_back(line);
  Offers found = offersOf(GetParam(), lines);
  for (const auto& [line, words] : expected) EXPECT_EQ(found[line], words) << line;
}

TEST_P(Completion, OffersTheBeginningOfAVersion) {
  Offers found = offersOf(GetParam(), {"cfgmig plan --from 5", "cfgmig plan --from=6"});
  EXPECT_EQ(found["cfgmig plan --from 5"], (Words{"5.1", "5.2"}));
  EXPECT_EQ(found["cfgmig plan --from=6"], (Words{"6.0"}));
}

// Behind -- there are arguments only. About a DN nothing is known.
TEST_P(Completion, OffersWhatEachArgumentCanBe) {
  std::map<std::string, Words> expected;
  for (const Command& command : tool::commands()) {
    std::string line = std::string("cfgmig ") + command.name + " -- ";
    for (const Option& option : optionsOf(command)) {
      if (!option.isPositional()) continue;
      expected[line] = expectedFor(option);
      line += "x ";
    }
  }
  std::vector<std::string> lines;
  for (const auto& [line, words] : expected) lines.push_back(line);
  Offers found = offersOf(GetParam(), lines);
  for (const auto& [line, words] : expected) EXPECT_EQ(found[line], words) << line;
  EXPECT_EQ(offers("cfgmig list "), (Words{"(files)"}));
}

TEST_P(Completion, OffersNoOptionTwice) {
  Offers found = offersOf(GetParam(), {"cfgmig clean f --d", "cfgmig clean -n f --d", "cfgmig clean --dry-run --d",
                                       "cfgmig plan --old a --o", "cfgmig plan --old=a --o", "cfgmig plan -o a --o"});
  EXPECT_EQ(found["cfgmig clean f --d"], (Words{"--database", "--dry-run"}));
  EXPECT_EQ(found["cfgmig clean -n f --d"], (Words{"--database"}));
  EXPECT_EQ(found["cfgmig clean --dry-run --d"], (Words{"--database"}));
  EXPECT_EQ(found["cfgmig plan --old a --o"], (Words{"--output"}));
  EXPECT_EQ(found["cfgmig plan --old=a --o"], (Words{"--output"}));
  EXPECT_EQ(found["cfgmig plan -o a --o"], (Words{"--old"}));
}

TEST_P(Completion, OffersWithAPlanNothingThatAPlanHas) {
  Words names = longOptionsOf(*tool::findCommand("apply"));
  for (const Option& option : optionsOf(*tool::findCommand("apply"))) {
    if (option.isInPlan) names.erase(option.name);
  }
  EXPECT_EQ(offers("cfgmig apply plan.json --"), names);
  EXPECT_LT(names.size(), longOptionsOf(*tool::findCommand("apply")).size());
}

TEST_P(Completion, OffersNoPlanWithSomethingThatAPlanHas) {
  Offers found = offersOf(GetParam(), {"cfgmig apply --dry-run ", "cfgmig apply --new x ", "cfgmig apply -o x "});
  EXPECT_TRUE(found["cfgmig apply --dry-run "].contains("(files)"));
  EXPECT_FALSE(found["cfgmig apply --new x "].contains("(files)"));
  EXPECT_FALSE(found["cfgmig apply -o x "].contains("(files)"));
}

TEST_P(Completion, IsWhatTheToolWrites) {
  const std::map<std::string, std::string> files = {
      {"bash", "bash/cfgmig"}, {"zsh", "zsh/_cfgmig"}, {"fish", "fish/cfgmig.fish"}};
  std::ifstream in(CFGMIG_COMPLETIONS "/" + files.at(GetParam()), std::ios::binary);
  const std::string built{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
  EXPECT_FALSE(built.empty());
  const CommandResult result = runLine(std::string(CFGMIG_TOOL " completion ") + GetParam(), "/");
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.output, built);
}

INSTANTIATE_TEST_SUITE_P(Shells, Completion, testing::Values("bash", "zsh", "fish"),
                         [](const auto& shell) { return std::string(shell.param); });

TEST(WriteCompletion, WritesNothingForAnotherShell) {
  std::ostringstream out;
  tool::writeCompletion("csh", out);
  EXPECT_EQ(out.str(), "");
}

}  // namespace
