// Help.cpp -- the commands help and version.

#include <algorithm>
#include <ostream>
#include <string>
#include <vector>

#include "CommandLine.h"
#include "Commands.h"

namespace tool {
namespace {

constexpr char kStatuses[] =
    "Exit status:\n"
    "  0  done and nothing lost; also nothing to do, and a preview\n"
    "  1  failed, the target is unchanged\n"
    "  2  the command line is wrong\n"
    "  3  differences, changes or warnings exist (only with --exit-code)\n"
    "  4  the target has changed meanwhile or is in use; nothing was written\n"
    "  5  written, but something was lost or needs a person\n"
    "  6  failed, and the target could not be restored\n";

std::string padded(std::string text, std::size_t width) {
  text.resize(std::max(text.size(), width), ' ');
  return text;
}

std::string optionWords(const Option& option) {
  if (option.isPositional()) return option.name;
  std::string words = option.shortName == 0 ? "    " : std::string{'-', option.shortName, ',', ' '};
  words += option.name;
  if (option.valueName != nullptr) words += std::string(" ") + option.valueName;
  return words;
}

std::string usage(const Command& command) {
  std::string line = std::string("cfgmig ") + command.name;
  bool others = false;
  for (const Option& option : optionsOf(command)) {
    if (option.isPositional()) {
      line += option.required ? std::string(" ") + option.name : std::string(" [") + option.name + "]";
    } else if (option.required) {
      line += std::string(" ") + option.name + " " + option.valueName;
    } else {
      others = true;
    }
  }
  return others ? line + " [OPTION...]" : line;
}

void explain(const Command& command, std::ostream& out) {
  out << "Examples:\n";
  for (const char* example : command.examples) out << "  " << example << '\n';
  out << "\nUsage:\n  " << usage(command) << '\n';
  if (command.description[0] != 0) out << '\n' << command.description << '\n';
  const std::vector<Option> options = optionsOf(command);
  if (options.empty()) return;
  std::size_t width = 0;
  for (const Option& option : options) width = std::max(width, optionWords(option).size());
  out << "\nArguments:\n";
  for (const Option& option : options) {
    out << "  " << padded(optionWords(option), width) << "  " << option.help << '\n';
  }
}

void explainTool(std::ostream& out) {
  out << "Examples:\n";
  for (const Command& command : commands()) out << "  " << command.examples.front() << '\n';
  out << "\ncfgmig carries the configuration of an older directory server into that of a\n"
         "newly installed one, without losing a setting.\n"
         "\nCommands:\n";
  for (const Command& command : commands()) out << "  " << padded(command.name, 8) << "  " << command.summary << '\n';
  out << "\nMore on one of them: cfgmig help COMMAND\n\n" << kStatuses;
}

}  // namespace

ExitStatus runHelp(const Arguments& arguments, Console& console) {
  if (!arguments.has("COMMAND")) {
    explainTool(console.out);
    return ExitStatus::done;
  }
  explain(commandNamed(arguments.value("COMMAND")), console.out);
  return ExitStatus::done;
}

ExitStatus runVersion(const Arguments&, Console& console) {
  console.out << "cfgmig " CFGMIG_VERSION "\n";
  return ExitStatus::done;
}

}  // namespace tool
