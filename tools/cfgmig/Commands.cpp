#include "Commands.h"

#include <iterator>

namespace tool {
namespace {

constexpr const char* kPlanExamples[] = {
    "cfgmig plan --old old.ldif --new new.ldif",
    "cfgmig plan --old old.ldif --new new.ldif -o plan.json --html-report plan.html",
    "cfgmig plan --old old.ldif --new new.ldif --format text",
};

constexpr Option kPlanOptions[] = {
    {"--old", 0, "FILE", true, "the old server's configuration; only read"},
    {"--new", 0, "FILE", true, "the newly installed server's configuration; only read"},
    {"--from", 0, "VERSION", false, "the old server's version: 4.1, 5.1, 5.2, 6.0"},
    {"--target", 0, "FILE", false, "the result is to go here instead of to the new configuration"},
    {"--search-dir", 0, "DIR", false, "copy schema files, too: they are in DIR/etc"},
    {"--target-dir", 0, "DIR", false, "the directory that schema files are copied to"},
    {"--output", 'o', "PLAN", false, "save the plan here, for apply and why; or a report, see --format"},
    {"--format", 0, "FORMAT", false, "write the whole account: text, json, ldif, html"},
    {"--json", 0, nullptr, false, "the same as --format json"},
    {"--text-report", 0, "FILE", false, "write the whole account as text to a file"},
    {"--json-report", 0, "FILE", false, "the same as JSON"},
    {"--ldif-report", 0, "FILE", false, "the changes as LDIF, for a server that is running"},
    {"--html-report", 0, "FILE", false, "the same as a page for a browser"},
    {"--show-secrets", 0, nullptr, false, "show passwords and keys"},
    {"--exit-code", 0, nullptr, false, "exit with 3 when there is something to do"},
    {"--trace", 0, "FILE", false, "append trace records to a file; - is standard error"},
    {"--trace-events", 0, "MASK", false, "which ones, as an event mask (default: all)"},
};

constexpr char kPlanDescription[] =
    "Makes the migration in memory and tells what would become of every value. Nothing\n"
    "is written but the reports that are asked for. A saved plan is the report in JSON:\n"
    "apply carries it out as long as both configurations are what they were, and why\n"
    "answers from it.\n"
    "\n"
    "Every value of the old configuration has one fate:\n"
    "  same      the new configuration already held it\n"
    "  carried   added or set at the same DN\n"
    "  moved     set under another DN or attribute\n"
    "  dropped   a rule for the version removed it\n"
    "  kept-new  the new server's own value stands by design\n"
    "  cleaned   removed or rewritten by a clean-up\n"
    "  lost      it should have arrived and did not\n"
    "\n"
    "Reports are for their owner only. Passwords, keys and values that seem to hold one\n"
    "are not in them unless --show-secrets is given. The changes as LDIF lack what is\n"
    "left out, so a server should be given those with --show-secrets.";

constexpr const char* kApplyExamples[] = {
    "cfgmig apply --old old.ldif --new new.ldif -n",
    "cfgmig apply plan.json",
    "cfgmig apply --old old.ldif --new new.ldif --from 6.0 -o merged.ldif",
};

constexpr Option kApplyOptions[] = {
    {"PLAN", 0, "PLAN", false, "a plan that cfgmig plan -o has saved"},
    {"--old", 0, "FILE", false, "without a plan: the old server's configuration; only read"},
    {"--new", 0, "FILE", false, "without a plan: the newly installed server's configuration"},
    {"--from", 0, "VERSION", false, "the old server's version: 4.1, 5.1, 5.2, 6.0"},
    {"--output", 'o', "FILE", false, "write the result here instead of to the new configuration"},
    {"--dry-run", 'n', nullptr, false, "write nothing; tell what would be done"},
    {"--search-dir", 0, "DIR", false, "copy schema files, too: they are in DIR/etc"},
    {"--target-dir", 0, "DIR", false, "the directory that schema files are copied to"},
    {"--verbose", 'v', nullptr, false, "tell all, value by value: the same as --format text"},
    {"--format", 0, "FORMAT", false, "write the whole account: text, json, ldif, html"},
    {"--json", 0, nullptr, false, "the same as --format json"},
    {"--text-report", 0, "FILE", false, "write the whole account as text to a file"},
    {"--json-report", 0, "FILE", false, "the same as JSON"},
    {"--ldif-report", 0, "FILE", false, "the changes as LDIF, for a server that is running"},
    {"--html-report", 0, "FILE", false, "the same as a page for a browser"},
    {"--show-secrets", 0, nullptr, false, "show passwords and keys in reports"},
    {"--trace", 0, "FILE", false, "append trace records to a file; - is standard error"},
    {"--trace-events", 0, "MASK", false, "which ones, as an event mask (default: all)"},
};

constexpr char kApplyDescription[] =
    "Carries the old configuration's entries and values into the new one by the\n"
    "rules for the old server's version, and says in short what became of them. A\n"
    "file that is replaced is kept beside it, with the time in its name, and\n"
    "cfgmig undo puts it back. A failure leaves every file as it was. The result is\n"
    "read again and audited before the command ends.\n"
    "\n"
    "A plan is refused with status 4 when one of the configurations has changed since\n"
    "it was made. Applying the same again finds nothing to do, and ends with 0.\n"
    "\n"
    "Without --from the version is recognised from the old configuration, and told.\n"
    "When the configuration does not tell, or contradicts itself, the command stops.\n"
    "\n"
    "With --search-dir and --target-dir the schema files that the result includes are\n"
    "copied as cfgmig schemas does it.";

constexpr const char* kWhyExamples[] = {
    "cfgmig why plan.json 'cn=Front End,cn=Configuration'",
    "cfgmig why plan.json 'cn=Front End,cn=Configuration:zor-slapdSetenv'",
};

constexpr Option kWhyOptions[] = {
    {"PLAN", 0, "PLAN", true, "a plan, or any report in JSON"},
    {"WHAT", 0, "DN[:ATTRIBUTE[=VALUE]]", true, "an entry, an attribute of it, or one value"},
    {"--json", 0, nullptr, false, "write JSON instead of text"},
};

constexpr char kWhyDescription[] =
    "Tells what becomes of an entry, an attribute or a value: where it stands in the old\n"
    "configuration, what each step does with it and why, and where it is in the result.\n"
    "A DN or attribute of the new configuration can be asked for as well. Everything is\n"
    "read from the plan; when a configuration has changed since, that is told.";

constexpr const char* kUndoExamples[] = {"cfgmig undo server.conf -n", "cfgmig undo server.conf"};

constexpr Option kUndoOptions[] = {
    {"FILE", 0, "FILE", true, "the file that apply has written"},
    {"--dry-run", 'n', nullptr, false, "write nothing; tell what would be done"},
};

constexpr char kUndoDescription[] =
    "Puts back what was there before the last apply, bit for bit: the configuration\n"
    "and the schema files that were copied with it. Refused with status 4 when one of\n"
    "the files has changed since, and then nothing is done. Backups stay where they are.\n"
    "\n"
    "What apply did is noted in /var/lib/cfgmig for the superuser, in\n"
    "~/.local/state/cfgmig for others, or where CFGMIG_STATE_DIRECTORY says.";

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

constexpr const char* kCheckExamples[] = {
    "cfgmig check server.conf",
    "cfgmig check server.conf --json --all",
};

constexpr Option kCheckOptions[] = {
    {"FILE", 0, "FILE", true, "a configuration, or any LDIF content file; a pipe, too"},
    {"--json", 0, nullptr, false, "write JSON instead of text"},
    {"--all", 0, nullptr, false, "show all warnings, not only the first 100 of a kind"},
    {"--exit-code", 0, nullptr, false, "exit with 3 when there are warnings but no errors"},
};

constexpr char kCheckDescription[] =
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

constexpr const char* kDumpExamples[] = {
    "cfgmig dump server.conf --redact",
    "cfgmig dump server.conf --json -o content.json",
};

constexpr Option kDumpOptions[] = {
    {"FILE", 0, "FILE", true, "a configuration, or any LDIF content file; a pipe, too"},
    {"--json", 0, nullptr, false, "write JSON instead of text"},
    {"--output", 'o', "FILE", false, "write the result here; the file is for its owner only"},
    {"--redact", 0, nullptr, false, "leave out passwords, keys and what seems to hold one"},
};

constexpr char kDumpDescription[] =
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

constexpr const char* kRewriteExamples[] = {
    "cfgmig rewrite server.conf copy.conf && cmp server.conf copy.conf",
};

constexpr Option kRewriteOptions[] = {
    {"IN", 0, "IN", true, "a configuration, or any LDIF content file; a pipe, too; only read"},
    {"OUT", 0, "OUT", true, "where it is written"},
};

constexpr char kRewriteDescription[] =
    "Reads a file and writes what the tool would save without having changed anything,\n"
    "which is the same file to the byte. For those who want to see that for themselves.\n"
    "The result is compared with what was read and the outcome told on standard error.\n"
    "A file that is replaced is kept beside it, with the time in its name.";

constexpr const char* kVerifyExamples[] = {
    "cfgmig verify --old old.ldif --before new.ldif --result merged.ldif",
    "cfgmig verify --old old.ldif --before new.ldif --result merged.ldif --json",
};

constexpr Option kVerifyOptions[] = {
    {"--old", 0, "FILE", true, "the old server's configuration; only read"},
    {"--before", 0, "FILE", true, "the new configuration as it was before; only read"},
    {"--result", 0, "FILE", true, "what the migration made of it; only read"},
    {"--from", 0, "VERSION", false, "the old server's version: 4.1, 5.1, 5.2, 6.0"},
    {"--target-dir", 0, "DIR", false, "schema files were copied to this directory"},
    {"--json", 0, nullptr, false, "write JSON instead of text"},
    {"--all", 0, nullptr, false, "show all that was found, not only the first 20 of each kind"},
    {"--show-secrets", 0, nullptr, false, "show passwords and keys"},
};

constexpr char kVerifyDescription[] =
    "Works out from the two configurations what the migration had to make of them, and\n"
    "compares that with the result, value by value. It uses nothing of the migration\n"
    "itself, so that anybody can run it at any time. A file that apply has replaced is\n"
    "beside the result, with the time in its name: that is the one for --before.\n"
    "\n"
    "The exit status is 0 when the result is exactly what the rules make of the two\n"
    "configurations and nothing was lost; 5 when something was lost, or should be there\n"
    "and is missing; 1 when the result differs in any other way: it was edited since,\n"
    "or the migration was faulty.\n"
    "\n"
    "Lines that no rule touched and that are written differently than before, comments\n"
    "among them, are told, too; that alone does not change the verdict. Passwords, keys\n"
    "and values that seem to hold one are not shown.";

constexpr const char* kHelpExamples[] = {"cfgmig help apply"};

constexpr Option kHelpOptions[] = {
    {"COMMAND", 0, "COMMAND", false, "a command"},
};

constexpr const char* kVersionExamples[] = {"cfgmig version"};

constexpr Command kCommands[] = {
    {"plan", "tell what a migration would make of every value", kPlanExamples, kPlanOptions, kPlanDescription, runPlan},
    {"apply", "carry an old server's configuration into a new one", kApplyExamples, kApplyOptions, kApplyDescription,
     runApply},
    {"verify", "audit a finished migration, from the files alone", kVerifyExamples, kVerifyOptions, kVerifyDescription,
     runVerify},
    {"why", "tell what became of an entry, an attribute or a value", kWhyExamples, kWhyOptions, kWhyDescription, runWhy,
     false},
    {"undo", "put back what was there before the last apply", kUndoExamples, kUndoOptions, kUndoDescription, runUndo,
     false},
    {"compare", "tell what an old configuration holds that a new one does not", kCompareExamples, kCompareOptions,
     kCompareDescription, runCompare},
    {"clean", "remove database and change log settings", kCleanExamples, kCleanOptions, kCleanDescription, runClean},
    {"schemas", "copy the schema files that a configuration includes", kSchemasExamples, kSchemasOptions,
     kSchemasDescription, runSchemas},
    {"list", "list the entries of a configuration", kListExamples, kListOptions, kListDescription, runList},
    {"check", "tell what is wrong or suspicious in a configuration", kCheckExamples, kCheckOptions, kCheckDescription,
     runCheck},
    {"dump", "show the whole content of a configuration", kDumpExamples, kDumpOptions, kDumpDescription, runDump},
    {"rewrite", "write a configuration anew, unchanged", kRewriteExamples, kRewriteOptions, kRewriteDescription,
     runRewrite},
    {"help", "explain the tool or one command", kHelpExamples, kHelpOptions, "", runHelp, false},
    {"version", "tell the version of the tool", kVersionExamples, {}, "", runVersion, false},
};

// What every command has that reads configurations.
constexpr Option kReadingOptions[] = {
    {"--max-size", 0, "SIZE", false, "refuse larger configurations: 512M, 4G, bytes (default: 1G)"},
};

}  // namespace

std::span<const Command> commands() { return kCommands; }

std::vector<Option> optionsOf(const Command& command) {
  std::vector<Option> options(command.options.begin(), command.options.end());
  if (command.readsConfigurations) {
    options.insert(options.end(), std::begin(kReadingOptions), std::end(kReadingOptions));
  }
  return options;
}

const Command* findCommand(std::string_view name) {
  for (const Command& command : kCommands) {
    if (command.name == name) return &command;
  }
  return nullptr;
}

}  // namespace tool
