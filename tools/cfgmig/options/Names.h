// Names.h -- lists of names from the table of commands, as the completions need them.

#ifndef CFGMIG_TOOL_OPTIONS_NAMES_H
#define CFGMIG_TOOL_OPTIONS_NAMES_H

#include <map>
#include <span>
#include <string>

#include "options/Command.h"

namespace tool {

inline constexpr const char* kMadeFromTable = "Made from the tool's table of options; not to be edited.";

// Words with a blank between them.
std::string wordsOf(std::span<const char* const> words);

// The names of all commands, with a blank between them.
std::string commandNames();

// The forms of the options that a plan has, with a blank between them; empty for a command that takes no plan instead.
std::string formsInPlan(const Command& command);

// The long form of each short one: {'o', "--output"}. A letter stands for one name in all commands.
std::map<char, std::string> lettersOfOptions();

}  // namespace tool

#endif  // CFGMIG_TOOL_OPTIONS_NAMES_H
