// Surroundings.h -- what concerns more than one command besides its options: exit statuses, variables, files.

#ifndef CFGMIG_TOOL_OPTIONS_SURROUNDINGS_H
#define CFGMIG_TOOL_OPTIONS_SURROUNDINGS_H

#include <span>

#include "options/Command.h"

namespace tool {

// An environment variable or a file, and which commands it concerns: those that touch one of `touches`.
struct Surrounding {
  const char* name;
  const char* meaning;  // sentences
  unsigned touches;
};

// What each exit status means for the tool as a whole, in order.
std::span<const StatusRow> exitStatuses();

// What the status of a row means: its own words, else those of the tool.
const char* meaningOf(const StatusRow& row);

std::span<const Surrounding> environmentVariables();
std::span<const Surrounding> filesOfTheTool();

// What the tool is, in sentences.
extern const char kToolDescription[];

// What holds for all commands, for the manual page: paragraphs as in Command::description.
extern const char kToolNotes[];

}  // namespace tool

#endif  // CFGMIG_TOOL_OPTIONS_SURROUNDINGS_H
