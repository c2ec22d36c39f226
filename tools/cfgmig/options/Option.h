// Option.h -- one row of the table of options: all that parser, help, manual pages and completions know of an option.

#ifndef CFGMIG_TOOL_OPTIONS_OPTION_H
#define CFGMIG_TOOL_OPTIONS_OPTION_H

#include <span>
#include <string>

namespace tool {

// What an option takes. A flag takes nothing and may be given more than once, everything else only once.
enum class Takes {
  nothing,
  file,
  directory,
  oneOf,     // Option::words
  command,   // the name of a command
  size,      // a number of bytes: 512M, 4G
  mask,      // an event mask of the trace facility
  question,  // DN[:ATTRIBUTE[=VALUE]]
};

// NOLINTNEXTLINE(clang-analyzer-optin.performance.Padding): in the order in which a row is written
struct Option {
  const char* name = "";   // "--old"; the name of a positional argument has no dashes: "FILE"
  char letter = 0;         // the short form, 'o' for -o; 0 when there is none
  const char* value = "";  // what stands for the value in help: "FILE"; empty for a flag
  Takes takes = Takes::nothing;
  std::span<const char* const> words = {};  // for Takes::oneOf; help lists them behind its line
  bool isRequired = false;
  bool isInPlan = false;     // a saved plan has it: not given together with the argument PLAN, nor required then
  bool isStreamToo = false;  // "-" is a standard stream; for everything else it is refused
  const char* needs = "";    // another option without which this one says nothing; empty for most
  const char* help = "";     // one line, not a sentence
  const char* more = "";     // sentences for the manual page, which has them behind `help`; may be empty

  constexpr bool isPositional() const { return name[0] != '-'; }
  constexpr bool isFlag() const { return takes == Takes::nothing; }
};

// The option as a command has it that cannot do without.
consteval Option required(Option option) {
  option.isRequired = true;
  return option;
}

// The option as a command has it for which it means something else.
consteval Option meaning(Option option, const char* help, const char* more = "") {
  option.help = help;
  option.more = more;
  return option;
}

// The line of help: what the option does, and the words that it takes.
std::string helpLine(const Option& option);

// The words of a list, with ", " between them.
std::string listOf(std::span<const char* const> words);

}  // namespace tool

#endif  // CFGMIG_TOOL_OPTIONS_OPTION_H
