// Commands.h -- what a command is run with, and the functions that run the commands of the table.

#ifndef CFGMIG_TOOL_COMMANDS_H
#define CFGMIG_TOOL_COMMANDS_H

#include <iosfwd>
#include <map>
#include <string>
#include <string_view>

#include "ExitStatus.h"
#include "options/Command.h"

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

using Runner = ExitStatus (*)(const Arguments& arguments, Console& console);

// What carries out a command of the table; null for a name that is not in it.
Runner runnerOf(std::string_view command);

// What the commands do; each is in a file of its own.
ExitStatus runApply(const Arguments& arguments, Console& console);
ExitStatus runCheck(const Arguments& arguments, Console& console);
ExitStatus runClean(const Arguments& arguments, Console& console);
ExitStatus runCompare(const Arguments& arguments, Console& console);
ExitStatus runCompletion(const Arguments& arguments, Console& console);
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
