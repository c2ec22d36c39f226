#include "options/HelpText.h"

#include <algorithm>
#include <ostream>
#include <string>

#include "options/Surroundings.h"

namespace tool {
namespace {

std::string padded(std::string text, std::size_t width) {
  text.resize(std::max(text.size(), width), ' ');
  return text;
}

std::string optionWords(const Option& option) {
  if (option.isPositional()) return option.name;
  std::string words = option.letter == 0 ? "    " : std::string{'-', option.letter, ',', ' '};
  words += option.name;
  if (!option.isFlag()) words += std::string(" ") + option.value;
  return words;
}

void writeStatuses(std::span<const StatusRow> rows, std::ostream& out) {
  out << "Exit status:\n";
  for (const StatusRow& row : rows) out << "  " << static_cast<int>(row.status) << "  " << meaningOf(row) << '\n';
}

}  // namespace

void writeHelp(const Command& command, std::ostream& out) {
  out << "Examples:\n";
  for (const Example& example : command.examples) out << "  " << example.line << '\n';
  out << "\nUsage:\n";
  for (const std::string& line : usageOf(command)) out << "  " << line << '\n';
  out << '\n' << command.description << '\n';
  std::size_t width = 0;
  for (const Option& option : optionsOf(command)) width = std::max(width, optionWords(option).size());
  for (const OptionGroup& group : command.groups) {
    out << '\n' << group.title << ":\n";
    for (const Option& option : group.options) {
      out << "  " << padded(optionWords(option), width) << "  " << helpLine(option) << '\n';
    }
  }
  out << '\n';
  writeStatuses(command.statuses, out);
}

void writeHelp(std::ostream& out) {
  out << "Examples:\n";
  for (const Command& command : commands()) out << "  " << command.examples.front().line << '\n';
  out << '\n' << kToolDescription << "\n\nCommands:\n";
  std::size_t width = 0;
  for (const Command& command : commands()) width = std::max(width, std::string_view(command.name).size());
  for (const Command& command : commands()) {
    out << "  " << padded(command.name, width) << "  " << command.summary << '\n';
  }
  out << "\nMore on one of them: cfgmig help COMMAND\n\n";
  writeStatuses(exitStatuses(), out);
}

}  // namespace tool
