// Tests of the tables of commands, options, versions and codes.

#include <gmock/gmock.h>

#include <set>
#include <sstream>
#include <string>

#include "Commands.h"
#include "RunTool.h"
#include "SourceVersions.h"
#include "StoreCodes.h"

namespace {

using namespace tool;
using testing::HasSubstr;
using testing::StartsWith;

std::string helpOn(const std::string& command) {
  std::ostringstream out;
  std::ostringstream err;
  Console console{out, err};
  EXPECT_EQ(runTool({"help", command}, console), ExitStatus::done);
  EXPECT_EQ(err.str(), "");
  return out.str();
}

TEST(Tables, EveryCommandIsFoundByItsNameAndOnlyOnce) {
  std::set<std::string> names;
  for (const Command& command : commands()) {
    EXPECT_TRUE(names.insert(command.name).second) << command.name;
    EXPECT_EQ(findCommand(command.name), &command);
    EXPECT_NE(runnerOf(command.name), nullptr) << command.name;
  }
  EXPECT_EQ(runnerOf("app"), nullptr);
  EXPECT_EQ(findCommand("app"), nullptr);
  EXPECT_EQ(findCommand(""), nullptr);
}

TEST(Tables, HelpOnACommandBeginsWithExamplesAndNamesEveryOption) {
  for (const Command& command : commands()) {
    const std::string text = helpOn(command.name);
    EXPECT_THAT(text, StartsWith(std::string("Examples:\n  cfgmig ") + command.name));
    for (const Option& option : optionsOf(command)) {
      EXPECT_THAT(text, HasSubstr(option.name)) << command.name;
      EXPECT_THAT(text, HasSubstr(option.help)) << command.name;
    }
  }
}

TEST(Tables, NoLineOfHelpIsWiderThanATerminal) {
  for (const Command& command : commands()) {
    std::istringstream lines(helpOn(command.name));
    for (std::string line; std::getline(lines, line);) EXPECT_LE(line.size(), 100U) << line;
  }
}

TEST(Tables, HelpOnApplyNamesEverySourceVersion) { EXPECT_THAT(helpOn("apply"), HasSubstr(listOfSourceVersions())); }

TEST(Tables, AVersionIsKnownOnlyAsAWhole) {
  for (const char* version : {"4.1", "5.1", "5.2", "6.0"}) EXPECT_TRUE(isSourceVersion(version)) << version;
  for (const char* version : {"", "6", "6.0.1", "6.00", " 6.0", "6.1"})
    EXPECT_FALSE(isSourceVersion(version)) << version;
}

TEST(Tables, TheCodesOfTheEmbeddedStoreHaveWordsOfTheirOwn) {
  for (const int code : {16, 17, 32, 34, 68, 89}) {
    EXPECT_STRNE(storeCodeText(code), storeCodeText(-1)) << code;
  }
}

}  // namespace
