// Shell.h -- runs command lines and asks shells what they would offer.

#ifndef CFGMIG_TESTS_TOOL_OPTIONS_SHELL_H
#define CFGMIG_TESTS_TOOL_OPTIONS_SHELL_H

#include <map>
#include <set>
#include <string>
#include <vector>

struct CommandResult {
  int status;          // the exit status; 128 and the signal's number when it was killed
  std::string output;  // both standard output and standard error
};

// Runs a line of sh in a directory, to its end.
CommandResult runLine(const std::string& line, const std::string& directory);

// Whether a program of that name can be run.
bool isInstalled(const std::string& program);

// What the shell "bash", "zsh" or "fish" offers at the end of each line, with the completion that was built, in a
// directory where there are the file one.ldif and the directory dir. Names of files are as bash's own completion or the
// shell would show them: (files) stands for all of them, (directories) for directories alone. Short options are left
// out. Fails the test when the shell cannot be asked.
using Offers = std::map<std::string, std::set<std::string>>;
Offers offersOf(const std::string& shell, const std::vector<std::string>& lines);

// The word as sh reads it back.
std::string inShellQuotes(const std::string& word);

#endif  // CFGMIG_TESTS_TOOL_OPTIONS_SHELL_H
