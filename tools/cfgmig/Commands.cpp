#include "Commands.h"

namespace tool {
namespace {

constexpr const char* kApplyExamples[] = {
    "cfgmig apply --old old.ldif --new new.ldif -n",
    "cfgmig apply --old old.ldif --new new.ldif --from 6.0 -o merged.ldif",
    "cfgmig apply --old /old/etc/server.conf --new /new/etc/server.conf",
};

constexpr Option kApplyOptions[] = {
    {"--old", 0, "FILE", true, "the old server's configuration; only read"},
    {"--new", 0, "FILE", true, "the newly installed server's configuration"},
    {"--from", 0, "VERSION", false, "the old server's version: 4.1, 5.1, 5.2, 6.0"},
    {"--output", 'o', "FILE", false, "write the result here instead of to the new configuration"},
    {"--dry-run", 'n', nullptr, false, "write nothing; tell what would be done"},
    {"--search-dir", 0, "DIR", false, "copy schema files, too: they are in DIR/etc"},
    {"--target-dir", 0, "DIR", false, "the directory that schema files are copied to"},
    {"--verbose", 'v', nullptr, false, "tell what became of each entry, and the library's messages"},
    {"--trace", 0, "FILE", false, "append trace records to a file; - is standard error"},
    {"--trace-events", 0, "MASK", false, "which ones, as an event mask (default: all)"},
};

constexpr char kApplyDescription[] =
    "Carries the old configuration's entries and values into the new one by the\n"
    "rules for the old server's version, and says in short what became of them. A\n"
    "file that is replaced is kept beside it, with the time in its name. A failure\n"
    "leaves every file as it was.\n"
    "\n"
    "Without --from the version is recognised from the old configuration, and told.\n"
    "When the configuration does not tell, or contradicts itself, the command stops.\n"
    "\n"
    "With --search-dir and --target-dir the schema files that the result includes are\n"
    "copied as cfgmig schemas does it.";

constexpr const char* kCompareExamples[] = {
    "cfgmig compare --old old.ldif --new new.ldif",
    "cfgmig compare --old old.ldif --new new.ldif --json -o differences.json",
};

constexpr Option kCompareOptions[] = {
    {"--old", 0, "FILE", true, "the old server's configuration; only read"},
    {"--new", 0, "FILE", true, "the configuration that it is compared with; only read"},
    {"--output", 'o', "FILE", false, "write the result here; the file is for its owner only"},
    {"--json", 0, nullptr, false, "write JSON instead of LDIF"},
    {"--exit-code", 0, nullptr, false, "exit with 3 when something is left"},
    {"--show-secrets", 0, nullptr, false, "show passwords and keys"},
    {"--trace", 0, "FILE", false, "append trace records to a file; - is standard error"},
    {"--trace-events", 0, "MASK", false, "which ones, as an event mask (default: all)"},
};

constexpr char kCompareDescription[] =
    "Writes what the old configuration holds that the new one does not hold\n"
    "unchanged. Entries are found by their DNs, and one that is equal on both sides\n"
    "goes. An entry that only the old configuration has stays whole. Of an entry that\n"
    "differs, attribute by attribute in the order of the files, what is equal goes up\n"
    "to the first difference: an attribute in another place, another number of values,\n"
    "another value. From there on it stays as it is, also what is equal. Letter case\n"
    "does not matter, nor do blanks in the plug-ins of the two back ends.\n"
    "\n"
    "Passwords, keys and values that seem to hold one are left out and counted.";

constexpr const char* kCleanExamples[] = {
    "cfgmig clean server.conf --database --instance -n",
    "cfgmig clean server.conf --change-log --rewrite-plugins -o cleaned.conf",
};

constexpr Option kCleanOptions[] = {
    {"FILE", 0, "FILE", true, "a configuration"},
    {"--database", 0, nullptr, false, "remove the database's name, alias, user, password and location"},
    {"--instance", 0, nullptr, false, "remove the database's instance"},
    {"--change-log", 0, nullptr, false, "remove the change log and its plug-ins"},
    {"--rewrite-plugins", 0, nullptr, false, "rewrite the plug-ins of change log and database to today's form"},
    {"--output", 'o', "FILE", false, "write the result here instead of to the configuration"},
    {"--dry-run", 'n', nullptr, false, "write nothing; tell what would be done"},
    {"--trace", 0, "FILE", false, "append trace records to a file; - is standard error"},
    {"--trace-events", 0, "MASK", false, "which ones, as an event mask (default: all)"},
};

constexpr char kCleanDescription[] =
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

constexpr const char* kSchemasExamples[] = {
    "cfgmig schemas /new/etc/server.conf --search-dir /old --target-dir /new/etc -n",
};

constexpr Option kSchemasOptions[] = {
    {"FILE", 0, "FILE", true, "a configuration"},
    {"--search-dir", 0, "DIR", true, "the files are in DIR/etc"},
    {"--target-dir", 0, "DIR", true, "the directory that they are copied to"},
    {"--output", 'o', "FILE", false, "write the result here instead of to the configuration"},
    {"--dry-run", 'n', nullptr, false, "copy and write nothing; tell what would be done"},
    {"--trace", 0, "FILE", false, "append trace records to a file; - is standard error"},
    {"--trace-events", 0, "MASK", false, "which ones, as an event mask (default: all)"},
};

constexpr char kSchemasDescription[] =
    "Looks for the schema files that CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION\n"
    "includes and that are not the server's own, copies those that it finds and points\n"
    "the configuration at the copies. A different file of the same name is kept beside\n"
    "the copy, with the time in its name. Copies are readable by owner and group only.\n"
    "Files that are not found or cannot be copied are named, and the exit status is 5.\n"
    "When the configuration cannot be written, the copies are taken back.";

constexpr const char* kListExamples[] = {"cfgmig list server.conf"};

constexpr Option kListOptions[] = {
    {"FILE", 0, "FILE", true, "a configuration"},
};

constexpr char kListDescription[] =
    "Writes the DNs of the entries under CN=CONFIGURATION in normal form, one a\n"
    "line, in the order of the file.";

constexpr const char* kHelpExamples[] = {"cfgmig help apply"};

constexpr Option kHelpOptions[] = {
    {"COMMAND", 0, "COMMAND", false, "a command"},
};

constexpr const char* kVersionExamples[] = {"cfgmig version"};

constexpr Command kCommands[] = {
    {"apply", "carry an old server's configuration into a new one", kApplyExamples, kApplyOptions, kApplyDescription,
     runApply},
    {"compare", "tell what an old configuration holds that a new one does not", kCompareExamples, kCompareOptions,
     kCompareDescription, runCompare},
    {"clean", "remove database and change log settings", kCleanExamples, kCleanOptions, kCleanDescription, runClean},
    {"schemas", "copy the schema files that a configuration includes", kSchemasExamples, kSchemasOptions,
     kSchemasDescription, runSchemas},
    {"list", "list the entries of a configuration", kListExamples, kListOptions, kListDescription, runList},
    {"help", "explain the tool or one command", kHelpExamples, kHelpOptions, "", runHelp},
    {"version", "tell the version of the tool", kVersionExamples, {}, "", runVersion},
};

}  // namespace

std::span<const Command> commands() { return kCommands; }

const Command* findCommand(std::string_view name) {
  for (const Command& command : kCommands) {
    if (command.name == name) return &command;
  }
  return nullptr;
}

}  // namespace tool
