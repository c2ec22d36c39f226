// ToolCommands.h -- the rows of the commands about the tool itself.
//
// A part of the table of commands; only CommandTable.cpp includes it.

#ifndef CFGMIG_TOOL_OPTIONS_TOOLCOMMANDS_H
#define CFGMIG_TOOL_OPTIONS_TOOLCOMMANDS_H

#include "options/SharedOptions.h"

namespace tool::rows {

inline constexpr StatusRow kTellingStatuses[] = {
    {ExitStatus::done, "done"}, {ExitStatus::failed, "the answer cannot be written"}, {ExitStatus::usage}};

// ---- help

inline constexpr Example kHelpExamples[] = {{"cfgmig help apply", "how apply is used"}};

inline constexpr Option kHelpOptions[] = {
    {.name = "COMMAND", .value = "COMMAND", .takes = Takes::command, .help = "a command"},
};

inline constexpr OptionGroup kHelpGroups[] = {{"Arguments", kHelpOptions}};

inline constexpr char kHelpDescription[] =
    "Explains the tool, or the command that is named. --help and -h in place of a\n"
    "command or behind one do the same.";

inline constexpr Command kHelp = {.name = "help",
                                  .summary = "explain the tool or one command",
                                  .examples = kHelpExamples,
                                  .groups = kHelpGroups,
                                  .description = kHelpDescription,
                                  .statuses = kTellingStatuses,
                                  .touches = kNothing};

// ---- completion

inline constexpr const char* kShells[] = {"bash", "zsh", "fish"};

inline constexpr Example kCompletionExamples[] = {
    {"cfgmig completion bash > cfgmig.bash", "for bash: read this file in ~/.bashrc"},
    {"cfgmig completion zsh > _cfgmig", "for zsh: into a directory of fpath"},
    {"cfgmig completion fish > cfgmig.fish", "for fish: into ~/.config/fish/completions"},
};

inline constexpr Option kCompletionOptions[] = {
    {.name = "SHELL",
     .value = "SHELL",
     .takes = Takes::oneOf,
     .words = kShells,
     .isRequired = true,
     .help = "the shell that it is for"},
};

inline constexpr OptionGroup kCompletionGroups[] = {{"Arguments", kCompletionOptions}};

inline constexpr char kCompletionDescription[] =
    "Writes what a shell needs to complete the command lines of this tool: commands,\n"
    "options, files and directories, versions and other words. An installed package\n"
    "has these files in place; this is for a tool that was copied from elsewhere.";

inline constexpr Command kCompletion = {.name = "completion",
                                        .summary = "write the completions for a shell",
                                        .examples = kCompletionExamples,
                                        .groups = kCompletionGroups,
                                        .description = kCompletionDescription,
                                        .statuses = kTellingStatuses,
                                        .touches = kNothing};

// ---- version

inline constexpr Example kVersionExamples[] = {{"cfgmig version", "its name and version"}};

inline constexpr Command kVersion = {.name = "version",
                                     .summary = "tell the version of the tool",
                                     .examples = kVersionExamples,
                                     .groups = {},
                                     .description = "Writes one line. --version in place of a command does the same.",
                                     .statuses = kTellingStatuses,
                                     .touches = kNothing};

}  // namespace tool::rows

#endif  // CFGMIG_TOOL_OPTIONS_TOOLCOMMANDS_H
