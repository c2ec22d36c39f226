// Tests of the table of commands itself: what its rows must agree on.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <string>

#include "options/Command.h"
#include "options/HelpText.h"
#include "options/Surroundings.h"

namespace {

using namespace tool;

std::string whole(const Command& command, const Option& option) {
  return std::string(command.name) + " " + option.name;
}

TEST(OptionTable, HasEachOptionOfACommandOnce) {
  for (const Command& command : commands()) {
    std::set<std::string> names;
    std::set<char> letters;
    for (const Option& option : optionsOf(command)) {
      EXPECT_TRUE(names.insert(option.name).second) << whole(command, option);
      if (option.letter != 0) {
        EXPECT_TRUE(letters.insert(option.letter).second) << whole(command, option);
      }
    }
    EXPECT_FALSE(names.contains("--help") || letters.contains('h')) << "every command has this one by itself";
  }
}

// Completions ask by the name alone what an option takes, and people expect nothing else.
TEST(OptionTable, MeansTheSameKindOfThingByANameInEveryCommand) {
  std::map<std::string, const Option*> known;
  std::map<char, std::string> letters;
  std::vector<Option> all;
  for (const Command& command : commands()) {
    for (const Option& option : optionsOf(command)) all.push_back(option);
  }
  for (const Option& option : all) {
    const Option& first = *known.emplace(option.name, &option).first->second;
    EXPECT_EQ(option.takes, first.takes) << option.name;
    EXPECT_EQ(option.words.data(), first.words.data()) << option.name;
    if (!option.isPositional()) {
      EXPECT_EQ(option.letter, first.letter) << option.name;
    }
    if (option.letter != 0) {
      EXPECT_EQ(letters.emplace(option.letter, option.name).first->second, option.name);
    }
  }
}

TEST(OptionTable, FlagsTakeNothingAndEverythingElseSaysWhat) {
  for (const Command& command : commands()) {
    for (const Option& option : optionsOf(command)) {
      EXPECT_EQ(option.isFlag(), option.value[0] == 0) << whole(command, option);
      EXPECT_EQ(option.takes == Takes::oneOf, !option.words.empty()) << whole(command, option);
      EXPECT_FALSE(option.isFlag() && option.isRequired) << whole(command, option);
      if (!option.isPositional()) {
        EXPECT_TRUE(std::string_view(option.name).starts_with("--")) << whole(command, option);
      }
    }
  }
}

TEST(OptionTable, AnOptionNeedsOneOfItsOwnCommand) {
  for (const Command& command : commands()) {
    const std::vector<Option> options = optionsOf(command);
    for (const Option& option : options) {
      if (option.needs[0] == 0) continue;
      const auto isIt = [&](const Option& other) { return std::string_view(other.name) == option.needs; };
      EXPECT_EQ(std::count_if(options.begin(), options.end(), isIt), 1) << whole(command, option);
    }
  }
}

TEST(OptionTable, ArgumentsThatMayBeMissingComeLast) {
  for (const Command& command : commands()) {
    bool isOptional = false;
    for (const Option& option : optionsOf(command)) {
      if (!option.isPositional()) continue;
      EXPECT_FALSE(isOptional && option.isRequired) << whole(command, option);
      isOptional = !option.isRequired;
    }
  }
}

TEST(OptionTable, EveryExampleIsOneOfItsCommand) {
  for (const Command& command : commands()) {
    EXPECT_FALSE(command.examples.empty()) << command.name;
    for (const Example& example : command.examples) {
      EXPECT_TRUE(std::string(example.line).starts_with(std::string("cfgmig ") + command.name)) << example.line;
      EXPECT_NE(std::string_view(example.what), "") << example.line;
    }
  }
}

TEST(OptionTable, EveryCommandRefersToOthersThatThereAre) {
  for (const Command& command : commands()) {
    for (const char* const other : command.related) {
      EXPECT_NE(findCommand(other), nullptr) << command.name << " refers to " << other;
      EXPECT_NE(findCommand(other), &command);
    }
  }
}

TEST(OptionTable, StatusesAreInOrderAndGoWithTheOptions) {
  for (const Command& command : commands()) {
    std::vector<int> statuses;
    for (const StatusRow& row : command.statuses) {
      statuses.push_back(static_cast<int>(row.status));
      EXPECT_NE(std::string_view(meaningOf(row)), "") << command.name;
    }
    ASSERT_GE(statuses.size(), 3U) << command.name;
    EXPECT_TRUE(std::is_sorted(statuses.begin(), statuses.end())) << command.name;
    EXPECT_EQ((std::vector<int>{statuses[0], statuses[1], statuses[2]}), (std::vector<int>{0, 1, 2})) << command.name;
    const std::vector<Option> options = optionsOf(command);
    const auto isExitCode = [](const Option& option) { return std::string_view(option.name) == "--exit-code"; };
    EXPECT_EQ(std::count(statuses.begin(), statuses.end(), 3),
              std::count_if(options.begin(), options.end(), isExitCode))
        << command.name << ": only --exit-code asks for status 3";
  }
}

TEST(OptionTable, OptionsGoWithWhatTheCommandTouches) {
  for (const Command& command : commands()) {
    for (const Option& option : optionsOf(command)) {
      const std::string name = option.name;
      if (name == "--max-size") {
        EXPECT_NE(command.touches & kConfigurations, 0U) << command.name;
      }
      if (name == "--trace") {
        EXPECT_NE(command.touches & kTrace, 0U) << command.name;
      }
      if (name == "--json-report") {
        EXPECT_NE(command.touches & kReports, 0U) << command.name;
      }
    }
  }
}

TEST(OptionTable, UsageShowsBothFormsOfACommandThatTakesAPlan) {
  EXPECT_EQ(
      usageOf(*findCommand("apply")),
      (std::vector<std::string>{"cfgmig apply PLAN [OPTION...]", "cfgmig apply --old FILE --new FILE [OPTION...]"}));
  EXPECT_EQ(usageOf(*findCommand("why")), (std::vector<std::string>{"cfgmig why PLAN WHAT [OPTION...]"}));
  EXPECT_EQ(usageOf(*findCommand("help")), (std::vector<std::string>{"cfgmig help [COMMAND]"}));
  EXPECT_EQ(usageOf(*findCommand("version")), (std::vector<std::string>{"cfgmig version"}));
}

TEST(OptionTable, HelpTellsOfEachOptionInItsGroupAndOfEachStatus) {
  for (const Command& command : commands()) {
    std::ostringstream out;
    writeHelp(command, out);
    const std::string text = out.str();
    std::size_t at = 0;
    const auto expectNext = [&](const std::string& part) {
      const std::size_t found = text.find(part, at);
      EXPECT_NE(found, std::string::npos) << command.name << ": " << part;
      if (found != std::string::npos) at = found;
    };
    expectNext("Examples:\n");
    for (const Example& example : command.examples) expectNext(std::string("\n  ") + example.line + "\n");
    expectNext("\nUsage:\n");
    for (const OptionGroup& group : command.groups) {
      expectNext(std::string("\n") + group.title + ":\n");
      for (const Option& option : group.options) {
        expectNext(option.name);
        expectNext("  " + helpLine(option) + "\n");
      }
    }
    expectNext("\nExit status:\n");
    for (const StatusRow& row : command.statuses) {
      expectNext("  " + std::to_string(static_cast<int>(row.status)) + "  " + meaningOf(row) + "\n");
    }
  }
}

// Every variable that the sources ask for, by whatever function.
std::set<std::string> variablesInSources() {
  static const std::regex variable(R"re((?:getenv|environment|variable|kFileSizeVariable =)\s*\(?"([A-Z_]+)"\)?)re");
  std::set<std::string> names;
  for (const char* const part : {"/tools", "/libraries"}) {
    for (const auto& file : std::filesystem::recursive_directory_iterator(std::string(CFGMIG_SOURCES) + part)) {
      if (!file.is_regular_file()) continue;
      std::ifstream in(file.path(), std::ios::binary);
      const std::string text{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
      for (std::sregex_iterator match(text.begin(), text.end(), variable), end; match != end; ++match) {
        names.insert((*match)[1].str());
      }
    }
  }
  return names;
}

TEST(OptionTable, NamesTheEnvironmentVariablesThatTheSourcesAskFor) {
  std::set<std::string> named;
  for (const Surrounding& variable : environmentVariables()) named.insert(variable.name);
  EXPECT_EQ(named, variablesInSources());
}

}  // namespace
