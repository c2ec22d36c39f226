// BashCompletion.cpp -- the completion for bash.
//
// It needs nothing but bash itself. What an option takes is asked by its name alone, which is why an option's name
// means the same kind of thing in every command (a test sees to that).

#include <map>
#include <ostream>
#include <set>
#include <sstream>
#include <string>

#include "options/Completion.h"
#include "options/Names.h"

namespace tool {
namespace {

// Reads the words before the cursor. Bash cuts them at '=' and ':', so that such a word and the one behind it belong to
// the word before; only the '=' behind a long option begins its value.
constexpr char kReadWords[] = R"bash(
_cfgmig() {
  local current=${COMP_WORDS[COMP_CWORD]} command='' option='' takes='' given=' ' word options argument
  local -i i arguments=0 only_arguments=0 joined=0
  COMPREPLY=()

  for ((i = 1; i < COMP_CWORD; ++i)); do
    word=${COMP_WORDS[i]}
    if ((joined)); then
      joined=0
    elif [[ $word == '=' && -n $option ]]; then
      :
    elif [[ $word == '=' || $word == ':' ]]; then
      joined=1
    elif [[ -n $option ]]; then
      option=''
    elif [[ -z $command ]]; then
      command=$word
    elif ((only_arguments)) || [[ $word != -?* ]]; then
      arguments+=1
    elif [[ $word == -- ]]; then
      only_arguments=1
    else
      given+="$word "
      _cfgmig_takes "$word"
      [[ -z $takes ]] || option=$word
      takes=''
    fi
  done
  ((!joined)) || return 0
  [[ $current != '=' ]] || current=''

  if [[ -n $option ]]; then
    _cfgmig_takes "$option"
  elif [[ -z $command ]]; then
    _cfgmig_commands
    if [[ $current == -* ]]; then takes='--help --version'; fi
  else
    _cfgmig_options "$command" "$arguments"
    _cfgmig_argument "$command" "$arguments"
    if ((only_arguments)); then
      takes=$argument
    elif [[ $current == -* || -z $argument ]]; then
      for word in $options; do
        [[ $given == *" $word "* ]] || takes+="$word "
      done
    else
      takes=$argument
    fi
  fi

  case $takes in
    file) compopt -o default ;;
    directory) compopt -o dirnames ;;
    anything) ;;
    *) mapfile -t COMPREPLY < <(compgen -W "$takes" -- "$current") ;;
  esac
}

complete -F _cfgmig cfgmig
)bash";

std::string takesOf(const Option& option) {
  switch (option.takes) {
    case Takes::file:
      return "file";
    case Takes::directory:
      return "directory";
    case Takes::oneOf:
      return wordsOf(option.words);
    case Takes::command:
      return commandNames();
    case Takes::size:
    case Takes::mask:
    case Takes::question:
    case Takes::nothing:
      break;
  }
  return "anything";
}

void writeTakes(std::ostream& out) {
  std::map<std::string, std::set<std::string>> names;
  for (const Command& command : commands()) {
    for (const Option& option : optionsOf(command)) {
      if (option.isPositional() || option.isFlag()) continue;
      names[takesOf(option)].insert(option.name);
      if (option.letter != 0) names[takesOf(option)].insert({'-', option.letter});
    }
  }
  out << "\n# Sets `takes` to what the value of an option is to be; to nothing for one without a value.\n"
         "_cfgmig_takes() {\n  case $1 in\n";
  for (const auto& [takes, options] : names) {
    std::string pattern;
    for (const std::string& option : options) pattern += (pattern.empty() ? "" : " | ") + option;
    out << "    " << pattern << ") takes='" << takes << "' ;;\n";
  }
  out << "    *) takes='' ;;\n  esac\n}\n";
}

// The options that may be given, those of a plan apart.
void writeOptions(std::ostream& out) {
  out << "\n# Sets `options` to those of a command that can stand behind so many arguments.\n"
         "_cfgmig_options() {\n  case $1 in\n";
  for (const Command& command : commands()) {
    std::string always;
    std::string withoutPlan;
    for (const Option& option : optionsOf(command)) {
      if (option.isPositional()) continue;
      std::string& list = option.isInPlan && takesPlanOrFiles(command) ? withoutPlan : always;
      list += std::string(option.name) + " ";
    }
    out << "    " << command.name << ")\n      options='" << always << "--help'\n";
    if (!withoutPlan.empty()) out << "      (($2)) || options+=' " << withoutPlan << "'\n";
    out << "      ;;\n";
  }
  // A short form stands for its long one.
  out << "    *) options='' ;;\n  esac\n";
  for (const auto& [letter, name] : lettersOfOptions()) {
    out << "  [[ $given != *' -" << letter << " '* ]] || given+='" << name << " '\n";
  }
  out << "}\n";
}

void writeArguments(std::ostream& out) {
  out << "\n# Sets `argument` to what the next argument of a command is to be, behind so many.\n"
         "_cfgmig_argument() {\n  case \"$1 $2\" in\n";
  for (const Command& command : commands()) {
    int place = 0;
    for (const Option& option : optionsOf(command)) {
      if (!option.isPositional()) continue;
      out << "    '" << command.name << ' ' << place++ << "') argument='" << takesOf(option) << "' ;;\n";
    }
  }
  out << "    *) argument='' ;;\n  esac\n";
  // A plan is no argument any more when something is there that a plan has.
  for (const Command& command : commands()) {
    std::istringstream forms(formsInPlan(command));
    for (std::string form; forms >> form;) {
      out << "  [[ \"$1 $given\" != '" << command.name << " '*' " << form << " '* ]] || argument=''\n";
    }
  }
  out << "}\n";
}

}  // namespace

void writeBashCompletion(std::ostream& out) {
  out << "# Completion of cfgmig's command lines for bash. " << kMadeFromTable << "\n# shellcheck shell=bash\n";
  out << "\n_cfgmig_commands() { takes='" << commandNames() << "'; }\n";
  writeTakes(out);
  writeOptions(out);
  writeArguments(out);
  out << kReadWords;
}

}  // namespace tool
