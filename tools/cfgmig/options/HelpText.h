// HelpText.h -- what --help says, made from the table of commands.

#ifndef CFGMIG_TOOL_OPTIONS_HELPTEXT_H
#define CFGMIG_TOOL_OPTIONS_HELPTEXT_H

#include <iosfwd>

#include "options/Command.h"

namespace tool {

// Help on the tool as a whole, and on one command. Both begin with examples; no line is wider than 100 characters.
void writeHelp(std::ostream& out);
void writeHelp(const Command& command, std::ostream& out);

}  // namespace tool

#endif  // CFGMIG_TOOL_OPTIONS_HELPTEXT_H
