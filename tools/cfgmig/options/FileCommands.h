// FileCommands.h -- the rows of the commands that look at configurations or work on one of them.
//
// A part of the table of commands; only CommandTable.cpp includes it.

#ifndef CFGMIG_TOOL_OPTIONS_FILECOMMANDS_H
#define CFGMIG_TOOL_OPTIONS_FILECOMMANDS_H

#include "options/SharedOptions.h"

namespace tool::rows {

using namespace tool::shared;

// What a command answers that only reads, and one that writes a configuration.
inline constexpr StatusRow kReadingStatuses[] = {
    {ExitStatus::done, "done"}, {ExitStatus::failed, "failed: a file cannot be read"}, {ExitStatus::usage}};
inline constexpr StatusRow kWritingStatuses[] = {{ExitStatus::done},    {ExitStatus::failed}, {ExitStatus::usage},
                                                 {ExitStatus::blocked}, {ExitStatus::lost},   {ExitStatus::notUndone}};

// ---- compare

inline constexpr Example kCompareExamples[] = {
    {"cfgmig compare --old old.ldif --new new.ldif", "what is left, as LDIF"},
    {"cfgmig compare --old old.ldif --new new.ldif --json -o differences.json", "the same for a program, in a file"},
};

inline constexpr Option kCompareOptions[] = {
    kOld,          meaning(kNew, "the configuration that it is compared with; only read"),
    kOwnersOutput, meaning(kJson, "write JSON instead of LDIF"),
    kExitCode,     kShowSecrets,
};

inline constexpr OptionGroup kCompareGroups[] = {{"Arguments", kCompareOptions}, kTraceGroup, kSizeGroup};

inline constexpr char kCompareDescription[] =
    "Writes what the old configuration holds that the new one does not hold\n"
    "unchanged. Entries are found by their DNs, and one that is equal on both sides\n"
    "goes. An entry that only the old configuration has stays whole. Of an entry that\n"
    "differs, attribute by attribute in the order of the files, what is equal goes up\n"
    "to the first difference: an attribute in another place, another number of values,\n"
    "another value. From there on it stays as it is, also what is equal. Letter case\n"
    "does not matter, nor do blanks in the plug-ins of the two back ends.\n"
    "\n"
    "Passwords, keys and values that seem to hold one are left out and counted.";

inline constexpr StatusRow kCompareStatuses[] = {
    {ExitStatus::done, "done"},
    {ExitStatus::failed},
    {ExitStatus::usage},
    {ExitStatus::differs, "something is left (only with --exit-code)"},
    {ExitStatus::blocked, "the output has changed meanwhile or is in use; nothing was written"},
    {ExitStatus::notUndone},
};

inline constexpr const char* kCompareRelated[] = {"plan", "verify"};

inline constexpr Command kCompare = {.name = "compare",
                                     .summary = "tell what an old configuration holds that a new one does not",
                                     .examples = kCompareExamples,
                                     .groups = kCompareGroups,
                                     .description = kCompareDescription,
                                     .statuses = kCompareStatuses,
                                     .touches = kConfigurations | kTrace,
                                     .related = kCompareRelated};

// ---- clean

inline constexpr Example kCleanExamples[] = {
    {"cfgmig clean server.conf --database --instance -n", "a preview: nothing is written"},
    {"cfgmig clean server.conf --change-log --rewrite-plugins -o cleaned.conf", "write the result elsewhere"},
};

inline constexpr Option kCleanOptions[] = {
    kFile,
    {.name = "--database", .help = "remove the database's name, alias, user, password and location"},
    {.name = "--instance", .help = "remove the database's instance"},
    {.name = "--change-log", .help = "remove the change log and its plug-ins"},
    {.name = "--rewrite-plugins", .help = "rewrite the plug-ins of change log and database to today's form"},
    kOutput,
    kDryRun,
};

inline constexpr OptionGroup kCleanGroups[] = {{"Arguments", kCleanOptions}, kTraceGroup, kSizeGroup};

inline constexpr char kCleanDescription[] =
    "Removes the settings that bind a configuration to one database and one change\n"
    "log. What is named is done in the order below, whatever the order on the command\n"
    "line. Only entries with today's names are looked at, not those below\n"
    "cn=ZOR Halvorn. A file that is replaced is kept beside it, with the time in its\n"
    "name. When one of the operations fails, nothing is written.\n"
    "\n"
    "--database also removes the first zor-slapdSetenv value of CN=FRONT END,\n"
    "whatever it sets. It takes one value of each attribute, and so does --instance.\n"
    "--change-log does nothing when there is no change log entry; otherwise it removes\n"
    "one plug-in of each of the two back ends, too. --rewrite-plugins rewrites all\n"
    "plug-ins of the change log entry, and one of each back end.";

inline constexpr const char* kCleanRelated[] = {"apply"};

inline constexpr Command kClean = {.name = "clean",
                                   .summary = "remove database and change log settings",
                                   .examples = kCleanExamples,
                                   .groups = kCleanGroups,
                                   .description = kCleanDescription,
                                   .statuses = kWritingStatuses,
                                   .touches = kConfigurations | kTrace | kBackups,
                                   .related = kCleanRelated};

// ---- schemas

inline constexpr Example kSchemasExamples[] = {
    {"cfgmig schemas server.conf --search-dir old-server --target-dir new-server/etc -n",
     "a preview: nothing is copied or written"},
};

inline constexpr Option kSchemasOptions[] = {
    kFile,
    required(meaning(kSearchDirectory, "the files are in DIR/etc")),
    required(meaning(kTargetDirectory, "the directory that they are copied to")),
    kOutput,
    meaning(kDryRun, "copy and write nothing; tell what would be done"),
};

inline constexpr OptionGroup kSchemasGroups[] = {{"Arguments", kSchemasOptions}, kTraceGroup, kSizeGroup};

inline constexpr char kSchemasDescription[] =
    "Looks for the schema files that CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION\n"
    "includes and that are not the server's own, copies those that it finds and points\n"
    "the configuration at the copies. A different file of the same name is kept beside\n"
    "the copy, with the time in its name. Copies are readable by owner and group only.\n"
    "Files that are not found or cannot be copied are named, and the exit status is 5.\n"
    "When the configuration cannot be written, the copies are taken back.";

inline constexpr const char* kSchemasRelated[] = {"apply"};

inline constexpr Command kSchemas = {.name = "schemas",
                                     .summary = "copy the schema files that a configuration includes",
                                     .examples = kSchemasExamples,
                                     .groups = kSchemasGroups,
                                     .description = kSchemasDescription,
                                     .statuses = kWritingStatuses,
                                     .touches = kConfigurations | kTrace | kBackups,
                                     .related = kSchemasRelated};

// ---- list

inline constexpr Example kListExamples[] = {{"cfgmig list server.conf", "one DN a line"}};

inline constexpr Option kListOptions[] = {kFile};

inline constexpr OptionGroup kListGroups[] = {{"Arguments", kListOptions}, kSizeGroup};

inline constexpr char kListDescription[] =
    "Writes the DNs of the entries under CN=CONFIGURATION in normal form, one a\n"
    "line, in the order of the file.";

inline constexpr const char* kListRelated[] = {"dump", "check"};

inline constexpr Command kList = {.name = "list",
                                  .summary = "list the entries of a configuration",
                                  .examples = kListExamples,
                                  .groups = kListGroups,
                                  .description = kListDescription,
                                  .statuses = kReadingStatuses,
                                  .touches = kConfigurations | kTrace,
                                  .related = kListRelated};

// ---- check

inline constexpr Example kCheckExamples[] = {
    {"cfgmig check server.conf", "what is wrong or suspicious"},
    {"cfgmig check server.conf --json --all", "all of it, for a program"},
};

inline constexpr Option kCheckOptions[] = {
    kAnyFile,
    kJson,
    {.name = "--all", .help = "show all warnings, not only the first 100 of a kind"},
    meaning(kExitCode, "exit with 3 when there are warnings but no errors"),
};

inline constexpr OptionGroup kCheckGroups[] = {{"Arguments", kCheckOptions}, kSizeGroup};

inline constexpr char kCheckDescription[] =
    "Tells in one run everything that is wrong with a file, and what is legal but\n"
    "suspicious, in the order of the lines:\n"
    "\n"
    "  server.conf:12: error: what is wrong and what was expected [what-kind]\n"
    "  server.conf:30: warning: how something was understood [what-kind]\n"
    "\n"
    "A file with an error is not read by any command, and the exit status is 1. With\n"
    "warnings alone the file can be used. The sums go to standard error. No values are\n"
    "shown.\n"
    "\n"
    "JSON: {\"format_version\": 1, \"file\": F, \"errors\": N, \"warnings\": N,\n"
    "\"entries\": N, \"values\": N, \"remarks\": [{\"line\": L, \"severity\": S, \"id\": I,\n"
    "\"text\": T}, ...], \"kinds\": [{\"id\": I, \"severity\": S, \"found\": N,\n"
    "\"shown\": N}, ...]}. Line 0 is the file as a whole.";

inline constexpr StatusRow kCheckStatuses[] = {
    {ExitStatus::done, "nothing is wrong; there may be warnings"},
    {ExitStatus::failed, "the file has an error, or cannot be read"},
    {ExitStatus::usage},
    {ExitStatus::differs, "there are warnings and no errors (only with --exit-code)"},
};

inline constexpr const char* kCheckRelated[] = {"dump", "list"};

inline constexpr Command kCheck = {.name = "check",
                                   .summary = "tell what is wrong or suspicious in a configuration",
                                   .examples = kCheckExamples,
                                   .groups = kCheckGroups,
                                   .description = kCheckDescription,
                                   .statuses = kCheckStatuses,
                                   .touches = kConfigurations,
                                   .related = kCheckRelated};

// ---- dump

inline constexpr Example kDumpExamples[] = {
    {"cfgmig dump server.conf --redact", "as text, without passwords and keys"},
    {"cfgmig dump server.conf --json -o content.json", "for a program, with passwords and keys"},
};

inline constexpr Option kDumpOptions[] = {
    kAnyFile,
    kJson,
    kOwnersOutput,
    {.name = "--redact", .help = "leave out passwords, keys and what seems to hold one"},
};

inline constexpr OptionGroup kDumpGroups[] = {{"Arguments", kDumpOptions}, kSizeGroup};

inline constexpr char kDumpDescription[] =
    "Shows what the tool has read from a file: every entry in the order of the file\n"
    "with the line that it begins on, its DN as written and in normal form, and every\n"
    "attribute with all of its values, decoded.\n"
    "\n"
    "That includes passwords and keys, which only who may read the file can have shown\n"
    "in this way. Use --redact for a result that others get to see. DNs are names and\n"
    "are always shown.\n"
    "\n"
    "JSON: {\"format_version\": 1, \"file\": F, \"entries\": [{\"dn\": D, \"normal\": N,\n"
    "\"line\": L, \"attributes\": [{\"name\": A, \"values\": [V, ...]}, ...]}, ...]}. A text\n"
    "that is not UTF-8 is an object {\"base64\": ...} in place of a string, and a value\n"
    "that --redact left out is {\"redacted\": true}. An attribute that has a value more\n"
    "than once has \"repeated\", the places of the later ones in \"values\", from 0.";

inline constexpr StatusRow kDumpStatuses[] = {
    {ExitStatus::done, "done"},
    {ExitStatus::failed},
    {ExitStatus::usage},
    {ExitStatus::blocked, "the output has changed meanwhile or is in use; nothing was written"},
    {ExitStatus::notUndone},
};

inline constexpr const char* kDumpRelated[] = {"check", "list"};

inline constexpr Command kDump = {.name = "dump",
                                  .summary = "show the whole content of a configuration",
                                  .examples = kDumpExamples,
                                  .groups = kDumpGroups,
                                  .description = kDumpDescription,
                                  .statuses = kDumpStatuses,
                                  .touches = kConfigurations,
                                  .related = kDumpRelated};

// ---- rewrite

inline constexpr Example kRewriteExamples[] = {
    {"cfgmig rewrite server.conf copy.conf && cmp server.conf copy.conf", "see that it is the same to the byte"},
};

inline constexpr Option kRewriteOptions[] = {
    {.name = "IN",
     .value = "IN",
     .takes = Takes::file,
     .isRequired = true,
     .help = "a configuration, or any LDIF content file; a pipe, too; only read"},
    {.name = "OUT", .value = "OUT", .takes = Takes::file, .isRequired = true, .help = "where it is written"},
};

inline constexpr OptionGroup kRewriteGroups[] = {{"Arguments", kRewriteOptions}, kSizeGroup};

inline constexpr char kRewriteDescription[] =
    "Reads a file and writes what the tool would save without having changed anything,\n"
    "which is the same file to the byte. For those who want to see that for themselves.\n"
    "The result is compared with what was read and the outcome told on standard error.\n"
    "A file that is replaced is kept beside it, with the time in its name.";

inline constexpr const char* kRewriteRelated[] = {"dump"};

inline constexpr Command kRewrite = {.name = "rewrite",
                                     .summary = "write a configuration anew, unchanged",
                                     .examples = kRewriteExamples,
                                     .groups = kRewriteGroups,
                                     .description = kRewriteDescription,
                                     .statuses = kWritingStatuses,
                                     .touches = kConfigurations | kBackups,
                                     .related = kRewriteRelated};

}  // namespace tool::rows

#endif  // CFGMIG_TOOL_OPTIONS_FILECOMMANDS_H
