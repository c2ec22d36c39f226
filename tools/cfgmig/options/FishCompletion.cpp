// FishCompletion.cpp -- the completion for fish.

#include <ostream>
#include <set>
#include <string>

#include "options/Completion.h"
#include "options/Names.h"

namespace tool {
namespace {

// In single quotes, as fish reads them.
std::string quoted(const std::string& text) {
  std::string result = "'";
  for (const char c : text) {
    if (c == '\'' || c == '\\') result += '\\';
    result += c;
  }
  return result + "'";
}

constexpr char kFunctions[] = R"fish(
# The words before the cursor without the tool's name.
function __cfgmig_words
    set -l words (commandline -opc)
    set -e words[1]
    string join \n -- $words
end

function __cfgmig_needs_command
    test (count (__cfgmig_words)) -eq 0
end

function __cfgmig_is
    set -l words (__cfgmig_words)
    test (count $words) -gt 0; and test "$words[1]" = $argv[1]
end

# Whether one of these forms of an option is there. One whose value is being typed is not yet.
function __cfgmig_has
    set -l words (__cfgmig_words)
    if test (count $words) -gt 0; and contains -- $words[-1] $__cfgmig_valued
        set -e words[-1]
    end
    for word in $words
        contains -- (string replace -r '=.*' '' -- $word) $argv; and return 0
    end
    return 1
end

# The directories that the word before the cursor may become, or its part behind a '='.
function __cfgmig_directories
    __fish_complete_directories (commandline -ct | string replace -r -- '^--[^=]*=' '')
end

# Whether so many arguments stand behind the command.
function __cfgmig_has_arguments
    set -l found 0
    set -l is_value 0
    set -l only_arguments 0
    for word in (__cfgmig_words)[2..]
        if test $is_value -eq 1
            set is_value 0
        else if test $only_arguments -eq 1; or not string match -q -- '-?*' $word
            set found (math $found + 1)
        else if test $word = --
            set only_arguments 1
        else if contains -- $word $__cfgmig_valued
            set is_value 1
        end
    end
    test $found -eq $argv[1]
end

complete -c cfgmig -e
complete -c cfgmig -f
complete -c cfgmig -n __cfgmig_needs_command -s h -l help -d 'explain the tool'
complete -c cfgmig -n __cfgmig_needs_command -l version -d 'tell the version of the tool'
)fish";

// The part of a `complete` command that says what may stand there.
std::string takenBy(const Option& option) {
  switch (option.takes) {
    case Takes::nothing:
      return "";
    case Takes::file:
      return " -r -F";
    case Takes::directory:
      return " -x -a '(__cfgmig_directories)'";
    case Takes::oneOf:
      return " -x -a " + quoted(wordsOf(option.words));
    case Takes::command:
      return " -x -a " + quoted(commandNames());
    case Takes::size:
    case Takes::mask:
    case Takes::question:
      break;
  }
  return " -x";
}

void writeOption(const Command& command, const Option& option, std::ostream& out) {
  std::string forms = option.name;
  if (option.letter != 0) forms += std::string(" -") + option.letter;
  std::string condition = std::string("__cfgmig_is ") + command.name + "; and not __cfgmig_has " + forms;
  if (option.isInPlan && takesPlanOrFiles(command)) condition += "; and __cfgmig_has_arguments 0";
  out << "complete -c cfgmig -n " << quoted(condition);
  if (option.letter != 0) out << " -s " << option.letter;
  out << " -l " << option.name + 2 << takenBy(option) << " -d " << quoted(helpLine(option)) << '\n';
}

void writeArgument(const Command& command, const Option& option, int place, std::ostream& out) {
  const std::string taken = takenBy(option);
  if (taken == " -x") return;  // nothing to offer
  std::string condition =
      std::string("__cfgmig_is ") + command.name + "; and __cfgmig_has_arguments " + std::to_string(place);
  const std::string inPlan = formsInPlan(command);
  if (option.name == kPlanArgument && !inPlan.empty()) condition += "; and not __cfgmig_has " + inPlan;
  // -r and -x are about options; an argument has files only where -F says so.
  const std::string offered = option.takes == Takes::file ? " -F" : taken.substr(std::string(" -x").size());
  out << "complete -c cfgmig -n " << quoted(condition) << offered << '\n';
}

}  // namespace

void writeFishCompletion(std::ostream& out) {
  out << "# Completion of cfgmig's command lines for fish. " << kMadeFromTable << "\n\nset -g __cfgmig_valued";
  std::set<std::string> valued;
  for (const Command& command : commands()) {
    for (const Option& option : optionsOf(command)) {
      if (option.isPositional() || option.isFlag()) continue;
      valued.insert(option.name);
      if (option.letter != 0) valued.insert({'-', option.letter});
    }
  }
  for (const std::string& name : valued) out << ' ' << name;
  out << '\n' << kFunctions;
  for (const Command& command : commands()) {
    out << "complete -c cfgmig -n __cfgmig_needs_command -a " << command.name << " -d " << quoted(command.summary)
        << '\n';
  }
  for (const Command& command : commands()) {
    out << "\n# " << command.name << '\n';
    int place = 0;
    for (const Option& option : optionsOf(command)) {
      if (option.isPositional()) {
        writeArgument(command, option, place++, out);
      } else {
        writeOption(command, option, out);
      }
    }
    out << "complete -c cfgmig -n " << quoted(std::string("__cfgmig_is ") + command.name)
        << " -s h -l help -d 'explain the command'\n";
  }
}

}  // namespace tool
