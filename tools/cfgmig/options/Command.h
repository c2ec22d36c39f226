// Command.h -- the table of commands: what each is for, what it takes, what it answers and what it touches.
//
// Parser, help, manual pages and completions are made from this table and from nothing else. The whole table is
// constant data: using it makes nothing at the start of a program, and a command line costs the rows of its own
// command.

#ifndef CFGMIG_TOOL_OPTIONS_COMMAND_H
#define CFGMIG_TOOL_OPTIONS_COMMAND_H

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "ExitStatus.h"
#include "options/Option.h"

namespace tool {

// Options that belong together, with the title that help and manual page give them.
struct OptionGroup {
  const char* title;
  std::span<const Option> options;
};

// A command line that can be copied. It names old.ldif, new.ldif, server.conf and what other examples make of them.
struct Example {
  const char* line;
  const char* what;  // what it does, for the manual page; not a sentence
};

// One of the statuses that a command ends with.
struct StatusRow {
  ExitStatus status = ExitStatus::done;
  const char* meaning = "";  // empty: what it means for the tool as a whole
};

// What a command touches, as bits: manual pages tell the variables and files that go with it.
enum Touches : unsigned {
  kNothing = 0,
  kConfigurations = 1,  // reads configurations
  kTrace = 2,           // can write a trace
  kRecords = 4,         // reads or writes the records of what apply has done
  kTerminal = 8,        // its output is coloured on a terminal
  kBackups = 16,        // keeps the files that it replaces
  kReports = 32,        // reads or writes reports in JSON
};

struct Command {
  const char* name;
  const char* summary;  // one line, not a sentence
  std::span<const Example> examples;
  std::span<const OptionGroup> groups;  // those without dashes are in the first group
  const char* description;  // what the user should know beyond the options, for help and manual page: lines of at most
                            // 78 characters, empty ones between paragraphs; blanks begin what is to be shown as it is
  std::span<const StatusRow> statuses;
  unsigned touches;                           // bits of Touches
  std::span<const char* const> related = {};  // other commands that the manual page refers to
};

// In the order in which help shows them.
std::span<const Command> commands();

// The command of that name, or null.
const Command* findCommand(std::string_view name);

// The options of a command, group by group.
std::vector<Option> optionsOf(const Command& command);

// The argument that stands for the options that a saved plan has.
inline constexpr std::string_view kPlanArgument = "PLAN";

// Whether the command takes that argument and can do without it, so that its command lines have two forms.
bool takesPlanOrFiles(const Command& command);

// The forms of its command lines, as help shows them: "cfgmig list FILE [OPTION...]".
std::vector<std::string> usageOf(const Command& command);

}  // namespace tool

#endif  // CFGMIG_TOOL_OPTIONS_COMMAND_H
