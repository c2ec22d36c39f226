// Completion.h -- what makes a shell complete the tool's command lines, made from the table of commands.

#ifndef CFGMIG_TOOL_OPTIONS_COMPLETION_H
#define CFGMIG_TOOL_OPTIONS_COMPLETION_H

#include <iosfwd>
#include <string_view>

namespace tool {

// The scripts offer commands; the options of the command that is there, without those that were given and can be given
// only once; the words, files and directories that an option or argument takes.
void writeBashCompletion(std::ostream& out);
void writeZshCompletion(std::ostream& out);
void writeFishCompletion(std::ostream& out);

// The one for "bash", "zsh" or "fish"; nothing is written for another shell.
void writeCompletion(std::string_view shell, std::ostream& out);

}  // namespace tool

#endif  // CFGMIG_TOOL_OPTIONS_COMPLETION_H
