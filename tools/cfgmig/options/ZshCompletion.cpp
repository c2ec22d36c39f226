// ZshCompletion.cpp -- the completion for zsh.

#include <ostream>
#include <string>

#include "options/Completion.h"
#include "options/Names.h"

namespace tool {
namespace {

// In single quotes, for the shell.
std::string quoted(const std::string& text) {
  std::string result = "'";
  for (const char c : text) result += c == '\'' ? std::string("'\\''") : std::string{c};
  return result + "'";
}

// As a text that _arguments shows: what would end it is escaped.
std::string shown(const std::string& text) {
  std::string result;
  for (const char c : text) {
    if (c == '\\' || c == ':' || c == '[' || c == ']') result += '\\';
    result += c;
  }
  return result;
}

std::string actionOf(const Option& option) {
  switch (option.takes) {
    case Takes::file:
      return "_files";
    case Takes::directory:
      return "_files -/";
    case Takes::oneOf:
      return "(" + wordsOf(option.words) + ")";
    case Takes::command:
      return "(" + commandNames() + ")";
    case Takes::size:
    case Takes::mask:
    case Takes::question:
    case Takes::nothing:
      break;
  }
  return " ";
}

// "message:action", what an option or argument takes.
std::string valueOf(const Option& option) { return shown(option.value) + ":" + actionOf(option); }

// What cannot be given together with the option: its other form and, where both are options, a plan.
std::string excludedBy(const Option& option, bool isWithoutPlan) {
  std::string list = option.name;
  if (option.letter != 0) list += std::string(" -") + option.letter;
  return "(" + list + (isWithoutPlan ? " 1)" : ")");
}

void writeOption(const Option& option, bool isWithoutPlan, std::ostream& out) {
  const std::string excluded = quoted(excludedBy(option, isWithoutPlan));
  const std::string help = "[" + shown(helpLine(option)) + "]";
  const std::string end = quoted(option.isFlag() ? help : help + ":" + valueOf(option));
  const std::string longForm = std::string(option.name) + (option.isFlag() ? "" : "=");
  out << " \\\n        " << excluded << longForm << end;
  if (option.letter != 0) {
    out << " \\\n        " << excluded << '-' << option.letter << (option.isFlag() ? "" : "+") << end;
  }
}

void writeArgument(const Option& option, int place, const std::string& inPlan, std::ostream& out) {
  std::string spec = std::to_string(place) + (option.isRequired ? ":" : "::") + valueOf(option);
  if (option.name == kPlanArgument && !inPlan.empty()) spec = "(" + inPlan + ")" + spec;
  out << " \\\n        " << quoted(spec);
}

void writeCommand(const Command& command, std::ostream& out) {
  const std::vector<Option> options = optionsOf(command);
  const std::string inPlan = formsInPlan(command);
  out << "    " << command.name << ")\n      _arguments -s -S";
  int place = 0;
  for (const Option& option : options) {
    if (option.isPositional()) {
      writeArgument(option, ++place, inPlan, out);
    } else {
      writeOption(option, !inPlan.empty() && option.isInPlan, out);
    }
  }
  out << " \\\n        '(- : *)'{-h,--help}'[explain the command]' && return\n      ;;\n";
}

}  // namespace

void writeZshCompletion(std::ostream& out) {
  out << "#compdef cfgmig\n# Completion of cfgmig's command lines for zsh. " << kMadeFromTable
      << "\n\n_cfgmig() {\n"
         "  local curcontext=$curcontext context state state_descr line\n"
         "  typeset -A opt_args\n"
         "  local -a commands\n"
         "  commands=(\n";
  for (const Command& command : commands()) {
    out << "    " << quoted(std::string(command.name) + ":" + shown(command.summary)) << '\n';
  }
  out << "  )\n\n"
         "  _arguments -C \\\n"
         "    '(- : *)'{-h,--help}'[explain the tool]' \\\n"
         "    '(- : *)--version[tell the version of the tool]' \\\n"
         "    '1: :->command' \\\n"
         "    '*:: :->words' && return\n\n"
         "  if [[ $state == command ]]; then\n"
         "    _describe -t commands command commands && return\n"
         "    return 1\n"
         "  fi\n"
         "  case $words[1] in\n";
  for (const Command& command : commands()) writeCommand(command, out);
  // When it is loaded by its first use, the file is the function's body and has to call it.
  out << "  esac\n"
         "  return 1\n"
         "}\n\n"
         "if [[ $funcstack[1] == _cfgmig ]]; then\n"
         "  _cfgmig \"$@\"\n"
         "else\n"
         "  compdef _cfgmig cfgmig\n"
         "fi\n";
}

}  // namespace tool
