#include "options/Command.h"
#include "options/FileCommands.h"
#include "options/MigrationCommands.h"
#include "options/ToolCommands.h"

namespace tool {
namespace {

constexpr Command kCommands[] = {
    rows::kPlan,    rows::kApply,   rows::kVerify,  rows::kWhy,        rows::kUndo,
    rows::kCompare, rows::kClean,   rows::kSchemas, rows::kList,       rows::kCheck,
    rows::kDump,    rows::kRewrite, rows::kHelp,    rows::kCompletion, rows::kVersion,
};

}  // namespace

std::span<const Command> commands() { return kCommands; }

const Command* findCommand(std::string_view name) {
  for (const Command& command : kCommands) {
    if (command.name == name) return &command;
  }
  return nullptr;
}

std::vector<Option> optionsOf(const Command& command) {
  std::vector<Option> options;
  for (const OptionGroup& group : command.groups) {
    options.insert(options.end(), group.options.begin(), group.options.end());
  }
  return options;
}

bool takesPlanOrFiles(const Command& command) {
  for (const OptionGroup& group : command.groups) {
    for (const Option& option : group.options) {
      if (option.name == kPlanArgument) return !option.isRequired;
    }
  }
  return false;
}

std::vector<std::string> usageOf(const Command& command) {
  const std::string begin = std::string("cfgmig ") + command.name;
  const bool hasTwoForms = takesPlanOrFiles(command);
  std::string line = begin;
  bool hasOthers = false;
  for (const Option& option : optionsOf(command)) {
    if (option.isPositional() && (!hasTwoForms || option.name != kPlanArgument)) {
      line += option.isRequired ? std::string(" ") + option.name : std::string(" [") + option.name + "]";
    } else if (option.isRequired) {
      line += std::string(" ") + option.name + " " + option.value;
    } else if (!option.isPositional()) {
      hasOthers = true;
    }
  }
  const std::string end = hasOthers ? " [OPTION...]" : "";
  std::vector<std::string> lines = {line + end};
  if (hasTwoForms) lines.insert(lines.begin(), begin + " " + std::string(kPlanArgument) + end);
  return lines;
}

}  // namespace tool
