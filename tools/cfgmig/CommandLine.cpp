#include "CommandLine.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <deque>
#include <string_view>

#include "Failure.h"
#include "PrintableText.h"
#include "Suggestion.h"

namespace tool {
namespace {

constexpr const char* kHelpForm = "--help";
constexpr const char* kShortHelpForm = "-h";
constexpr const char* kVersionForm = "--version";

[[noreturn]] void refuse(const Command* command, const std::string& what) {
  const std::string hint = command == nullptr ? "see: cfgmig help" : std::string("see: cfgmig help ") + command->name;
  throw Failure(ExitStatus::usage, {what, hint});
}

std::string inQuotes(std::string_view word) { return "'" + ldtr::printable(word) + "'"; }

std::string withSuggestion(const std::string& what, std::string_view word, const std::vector<std::string>& known) {
  const std::string near = nearest(word, known);
  return near.empty() ? what : what + " (did you mean " + near + "?)";
}

Invocation helpOn(const std::string& command) {
  Invocation invocation{findCommand("help"), {}};
  if (!command.empty()) invocation.arguments.set("COMMAND", command);
  return invocation;
}

// A word that no option takes.
[[noreturn]] void refuseWord(const Command& command, const std::string& word) {
  if (word.size() < 2 || word.front() != '-') refuse(&command, "unexpected argument " + inQuotes(word));
  std::vector<std::string> known = {kHelpForm};
  for (const Option& option : optionsOf(command)) {
    if (!option.isPositional()) known.emplace_back(option.name);
  }
  const std::string name = word.substr(0, word.find('='));
  refuse(&command, withSuggestion("unknown option " + inQuotes(name), name, known));
}

// One option of the table and what the parser found for it.
struct Found {
  const Option& option;
  std::string value;
  bool flag = false;
  CLI::Option* parsed = nullptr;

  bool isGiven() const { return parsed->count() > 0; }
};

std::string parserName(const Option& option) {
  const std::string shortForm = option.shortName == 0 ? std::string() : std::string{'-', option.shortName, ','};
  return shortForm + option.name;
}

// The parser's own complaint names the option and then speaks of types, so only the name is taken from it.
std::string complaint(const CLI::ParseError& error, const std::deque<Found>& found) {
  const std::string_view text = error.what();
  for (const Found& each : found) {
    const std::string_view name = each.option.name;
    if (!text.starts_with(name) && !text.starts_with(name.substr(name.find_first_not_of('-')))) continue;
    if (each.option.valueName == nullptr) return std::string("option ") + each.option.name + " takes no value";
    const bool twice = text.find("received") != std::string_view::npos;
    return std::string("option ") + each.option.name +
           (twice ? " is given more than once" : std::string(" needs a value: ") + each.option.valueName);
  }
  return "the command line cannot be understood: " + ldtr::printable(text);
}

// A lone "-" would make or look for a file of that name, where most people mean a standard stream.
void refuseStream(const Command& command, const Found& found) {
  if (found.value != "-" || std::string_view(found.option.help).find("- is standard") != std::string_view::npos) return;
  refuse(&command, std::string(found.option.name) + " is '-', which is no file here; a file of that name is ./-");
}

Arguments parseOptions(const Command& command, const std::vector<std::string>& words, bool& help) {
  CLI::App parser;
  parser.set_help_flag();
  parser.allow_extras();
  const CLI::Option* helpFlag = parser.add_flag("-h,--help");
  const std::vector<Option> options = optionsOf(command);
  std::deque<Found> found;
  for (const Option& option : options) {
    Found& each = found.emplace_back(Found{option, {}});
    each.parsed = option.valueName == nullptr ? parser.add_flag(parserName(option), each.flag)->disable_flag_override()
                                              : parser.add_option(parserName(option), each.value);
  }

  try {
    parser.parse(std::vector<std::string>(words.rbegin(), words.rend()));
  } catch (const CLI::ParseError& error) {
    refuse(&command, complaint(error, found));
  }
  help = helpFlag->count() > 0;
  if (help) return {};

  std::vector<std::string> rest = parser.remaining();
  const auto separator = std::find(rest.begin(), rest.end(), "--");
  if (separator != rest.end()) rest.erase(separator);
  if (!rest.empty()) refuseWord(command, rest.front());

  Arguments arguments;
  for (const Found& each : found) {
    if (each.isGiven()) {
      if (each.option.valueName != nullptr && each.value.empty()) {
        refuse(&command, std::string(each.option.name) + " must not be empty");
      }
      refuseStream(command, each);
      arguments.set(each.option.name, each.value);
    } else if (each.option.required) {
      refuse(&command, std::string(each.option.isPositional() ? "missing argument: " : "missing option: ") +
                           each.option.name +
                           (each.option.isPositional() ? "" : std::string(" ") + each.option.valueName));
    }
  }
  return arguments;
}

}  // namespace

const Command& commandNamed(const std::string& word) {
  if (const Command* command = findCommand(word)) return *command;
  std::vector<std::string> known;
  for (const Command& command : commands()) known.emplace_back(command.name);
  const bool isOption = word.size() > 1 && word.front() == '-';
  if (isOption) known = {kHelpForm, kVersionForm};
  const std::string what = (isOption ? "unknown option " : "unknown command ") + inQuotes(word);
  refuse(nullptr, withSuggestion(what, word, known));
}

Invocation parseCommandLine(const std::vector<std::string>& words) {
  if (words.empty()) refuse(nullptr, "no command");
  const std::string& first = words.front();
  if (first == kHelpForm || first == kShortHelpForm) return helpOn("");
  if (first == kVersionForm) return {findCommand("version"), {}};

  const Command& command = commandNamed(first);
  bool help = false;
  Arguments arguments = parseOptions(command, {words.begin() + 1, words.end()}, help);
  if (help) return helpOn(command.name);
  return {&command, std::move(arguments)};
}

}  // namespace tool
