// CommandLine.h -- from the words of a command line to a command and its arguments.

#ifndef CFGMIG_TOOL_COMMANDLINE_H
#define CFGMIG_TOOL_COMMANDLINE_H

#include <string>
#include <vector>

#include "Commands.h"

namespace tool {

struct Invocation {
  const Command* command = nullptr;
  Arguments arguments;
};

// Reads `words`, the command line without the program's name. --help and -h in place of a command or among its
// options become the help command, --version becomes the version command.
// Throws Failure with ExitStatus::usage for a command or an option that does not exist (with the nearest one that
// does), a value that is missing, an option given twice, a required one left out.
Invocation parseCommandLine(const std::vector<std::string>& words);

// The command of that name. Throws Failure as parseCommandLine does when there is none.
const Command& commandNamed(const std::string& word);

}  // namespace tool

#endif  // CFGMIG_TOOL_COMMANDLINE_H
