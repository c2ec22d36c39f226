// Commands.h -- the table of commands and their options. Parser and help are made from it.

#ifndef CFGMIG_TOOL_COMMANDS_H
#define CFGMIG_TOOL_COMMANDS_H

#include <iosfwd>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "ExitStatus.h"

namespace tool {

// Where a command's words go: results to one stream, talk to the other.
struct Console {
  std::ostream& out;
  std::ostream& err;
};

// What a command line gives for the options of its command, by the option's name ("--old", "FILE").
class Arguments {
 public:
  void set(std::string_view name, std::string value) { m_values.insert_or_assign(std::string(name), std::move(value)); }

  bool has(std::string_view name) const { return m_values.find(name) != m_values.end(); }

  // The value of an option; empty when the option was not given.
  std::string value(std::string_view name) const {
    const auto found = m_values.find(name);
    return found == m_values.end() ? std::string() : found->second;
  }

 private:
  std::map<std::string, std::string, std::less<>> m_values;
};

struct Option {
  const char* name;       // "--old"; the name of a positional argument has no dashes
  char shortName;         // 0 when there is none
  const char* valueName;  // null for a flag
  bool required;
  const char* help;  // one line

  bool isPositional() const { return name[0] != '-'; }
};

struct Command {
  const char* name;
  const char* summary;  // one line
  std::span<const char* const> examples;
  std::span<const Option> options;
  const char* description;  // what the user should know beyond the options; lines of at most 78 characters
  ExitStatus (*run)(const Arguments& arguments, Console& console);
  bool readsConfigurations = true;  // and so has the options that all such commands share
};

// The options of a command: its own, then those that it shares with others.
std::vector<Option> optionsOf(const Command& command);

// In the order in which help shows them.
std::span<const Command> commands();

// The command of that name, or null.
const Command* findCommand(std::string_view name);

// What the commands do; each is in a file of its own.
ExitStatus runApply(const Arguments& arguments, Console& console);
ExitStatus runCheck(const Arguments& arguments, Console& console);
ExitStatus runClean(const Arguments& arguments, Console& console);
ExitStatus runCompare(const Arguments& arguments, Console& console);
ExitStatus runDump(const Arguments& arguments, Console& console);
ExitStatus runHelp(const Arguments& arguments, Console& console);
ExitStatus runList(const Arguments& arguments, Console& console);
ExitStatus runPlan(const Arguments& arguments, Console& console);
ExitStatus runRewrite(const Arguments& arguments, Console& console);
ExitStatus runSchemas(const Arguments& arguments, Console& console);
ExitStatus runUndo(const Arguments& arguments, Console& console);
ExitStatus runVerify(const Arguments& arguments, Console& console);
ExitStatus runVersion(const Arguments& arguments, Console& console);
ExitStatus runWhy(const Arguments& arguments, Console& console);

}  // namespace tool

#endif  // CFGMIG_TOOL_COMMANDS_H
