// MigrationCommands.h -- the rows of the commands that make, check and take back a migration.
//
// A part of the table of commands; only CommandTable.cpp includes it.

#ifndef CFGMIG_TOOL_OPTIONS_MIGRATIONCOMMANDS_H
#define CFGMIG_TOOL_OPTIONS_MIGRATIONCOMMANDS_H

#include "options/SharedOptions.h"

namespace tool::rows {

using namespace tool::shared;

// ---- plan

inline constexpr Example kPlanExamples[] = {
    {"cfgmig plan --old old.ldif --new new.ldif", "a summary of what a migration would do"},
    {"cfgmig plan --old old.ldif --new new.ldif -o plan.json --html-report plan.html",
     "save the plan, and look at it in a browser"},
    {"cfgmig plan --old old.ldif --new new.ldif --format text", "all of it, value by value"},
};

inline constexpr Option kPlanOptions[] = {
    kOld,
    kNew,
    kFrom,
    {.name = "--target",
     .value = "FILE",
     .takes = Takes::file,
     .help = "the result is to go here instead of to the new configuration"},
    {.name = "--output",
     .letter = 'o',
     .value = "PLAN",
     .takes = Takes::file,
     .help = "save the plan here, for apply and why; or a report, see --format"},
    meaning(kExitCode, "exit with 3 when there is something to do"),
};

inline constexpr OptionGroup kPlanGroups[] = {
    {"Arguments", kPlanOptions}, kSchemaGroup, kReportGroup, kTraceGroup, kSizeGroup};

inline constexpr char kPlanDescription[] =
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

inline constexpr StatusRow kPlanStatuses[] = {
    {ExitStatus::done, "the plan was made; also when it tells of losses"},
    {ExitStatus::failed, "failed: a file cannot be read or written, or an apply would fail"},
    {ExitStatus::usage},
    {ExitStatus::differs, "there is something to do (only with --exit-code)"},
    {ExitStatus::blocked, "the target is in use, so that an apply would be refused"},
};

inline constexpr const char* kPlanRelated[] = {"apply", "why", "verify"};

inline constexpr Command kPlan = {.name = "plan",
                                  .summary = "tell what a migration would make of every value",
                                  .examples = kPlanExamples,
                                  .groups = kPlanGroups,
                                  .description = kPlanDescription,
                                  .statuses = kPlanStatuses,
                                  .touches = kConfigurations | kTrace | kRecords | kTerminal | kReports,
                                  .related = kPlanRelated};

// ---- apply

inline constexpr Example kApplyExamples[] = {
    {"cfgmig apply --old old.ldif --new new.ldif -n", "a preview: nothing is written"},
    {"cfgmig apply plan.json", "carry out a plan that was saved"},
    {"cfgmig apply --old old.ldif --new new.ldif --from 6.0 -o merged.ldif",
     "leave the new configuration as it is, and write the result elsewhere"},
};

inline constexpr Option kApplyOptions[] = {
    {.name = "PLAN", .value = "PLAN", .takes = Takes::file, .help = "a plan that cfgmig plan -o has saved"},
    meaning(kOld, "without a plan: the old server's configuration; only read"),
    meaning(kNew, "without a plan: the newly installed server's configuration"),
    kFrom,
    meaning(kOutput, "write the result here instead of to the new configuration", kOutput.more),
    kDryRun,
    {.name = "--verbose", .letter = 'v', .help = "tell all, value by value: the same as --format text"},
};

inline constexpr OptionGroup kApplyGroups[] = {
    {"Arguments", kApplyOptions}, kSchemaGroup, kReportGroup, kTraceGroup, kSizeGroup};

inline constexpr char kApplyDescription[] =
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

inline constexpr StatusRow kApplyStatuses[] = {
    {ExitStatus::done},
    {ExitStatus::failed},
    {ExitStatus::usage},
    {ExitStatus::blocked, "the plan is stale, or the target has changed meanwhile or is in use; nothing was written"},
    {ExitStatus::lost},
    {ExitStatus::notUndone},
};

inline constexpr const char* kApplyRelated[] = {"plan", "verify", "undo", "schemas"};

inline constexpr Command kApply = {.name = "apply",
                                   .summary = "carry an old server's configuration into a new one",
                                   .examples = kApplyExamples,
                                   .groups = kApplyGroups,
                                   .description = kApplyDescription,
                                   .statuses = kApplyStatuses,
                                   .touches = kConfigurations | kTrace | kRecords | kTerminal | kBackups | kReports,
                                   .related = kApplyRelated};

// ---- verify

inline constexpr Example kVerifyExamples[] = {
    {"cfgmig verify --old old.ldif --before new.ldif --result merged.ldif", "what was found, in short"},
    {"cfgmig verify --old old.ldif --before new.ldif --result merged.ldif --json", "the same for a program"},
};

inline constexpr Option kVerifyOptions[] = {
    kOld,
    {.name = "--before",
     .value = "FILE",
     .takes = Takes::file,
     .isRequired = true,
     .help = "the new configuration as it was before; only read"},
    {.name = "--result",
     .value = "FILE",
     .takes = Takes::file,
     .isRequired = true,
     .help = "what the migration made of it; only read"},
    kFrom,
    {.name = "--target-dir",
     .value = "DIR",
     .takes = Takes::directory,
     .help = "schema files were copied to this directory"},
    kJson,
    {.name = "--all", .help = "show all that was found, not only the first 20 of each kind"},
    kShowSecrets,
};

inline constexpr OptionGroup kVerifyGroups[] = {{"Arguments", kVerifyOptions}, kSizeGroup};

inline constexpr char kVerifyDescription[] =
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

inline constexpr StatusRow kVerifyStatuses[] = {
    {ExitStatus::done, "the result is exactly what the rules give, and nothing was lost"},
    {ExitStatus::failed, "the result differs in another way, or a file cannot be read"},
    {ExitStatus::usage},
    {ExitStatus::lost, "something was lost, or should be there and is missing"},
};

inline constexpr const char* kVerifyRelated[] = {"apply", "undo"};

inline constexpr Command kVerify = {.name = "verify",
                                    .summary = "audit a finished migration, from the files alone",
                                    .examples = kVerifyExamples,
                                    .groups = kVerifyGroups,
                                    .description = kVerifyDescription,
                                    .statuses = kVerifyStatuses,
                                    .touches = kConfigurations,
                                    .related = kVerifyRelated};

// ---- why

inline constexpr Example kWhyExamples[] = {
    {"cfgmig why plan.json 'cn=Front End,cn=Configuration'", "what becomes of an entry"},
    {"cfgmig why plan.json 'cn=Front End,cn=Configuration:zor-slapdSetenv'", "the values of one attribute"},
};

inline constexpr Option kWhyOptions[] = {
    {.name = "PLAN",
     .value = "PLAN",
     .takes = Takes::file,
     .isRequired = true,
     .help = "a plan, or any report in JSON"},
    {.name = "WHAT",
     .value = "DN[:ATTRIBUTE[=VALUE]]",
     .takes = Takes::question,
     .isRequired = true,
     .help = "an entry, an attribute of it, or one value: DN[:ATTRIBUTE[=VALUE]]"},
    kJson,
};

inline constexpr OptionGroup kWhyGroups[] = {{"Arguments", kWhyOptions}};

inline constexpr char kWhyDescription[] =
    "Tells what becomes of an entry, an attribute or a value: where it stands in the old\n"
    "configuration, what each step does with it and why, and where it is in the result.\n"
    "A DN or attribute of the new configuration can be asked for as well. Everything is\n"
    "read from the plan; when a configuration has changed since, that is told.";

inline constexpr StatusRow kWhyStatuses[] = {
    {ExitStatus::done, "there is an answer"},
    {ExitStatus::failed, "none of the configurations has what is asked for, or the plan cannot be read"},
    {ExitStatus::usage},
};

inline constexpr const char* kWhyRelated[] = {"plan"};

inline constexpr Command kWhy = {.name = "why",
                                 .summary = "tell what became of an entry, an attribute or a value",
                                 .examples = kWhyExamples,
                                 .groups = kWhyGroups,
                                 .description = kWhyDescription,
                                 .statuses = kWhyStatuses,
                                 .touches = kReports,
                                 .related = kWhyRelated};

// ---- undo

inline constexpr Example kUndoExamples[] = {
    {"cfgmig undo server.conf -n", "a preview: nothing is written"},
    {"cfgmig undo server.conf", "put it back"},
};

inline constexpr Option kUndoOptions[] = {meaning(kFile, "the file that apply has written"), kDryRun};

inline constexpr OptionGroup kUndoGroups[] = {{"Arguments", kUndoOptions}};

inline constexpr char kUndoDescription[] =
    "Puts back what was there before the last apply, bit for bit: the configuration\n"
    "and the schema files that were copied with it. Refused with status 4 when one of\n"
    "the files has changed since, and then nothing is done. Backups stay where they are.\n"
    "\n"
    "What apply did is noted in /var/lib/cfgmig for the superuser, in\n"
    "~/.local/state/cfgmig for others, or where CFGMIG_STATE_DIRECTORY says.";

inline constexpr StatusRow kUndoStatuses[] = {
    {ExitStatus::done},
    {ExitStatus::failed, "failed, or there is nothing to take back; the files are unchanged"},
    {ExitStatus::usage},
    {ExitStatus::blocked, "one of the files has changed since or is in use; nothing was done"},
    {ExitStatus::lost, "the configuration is back, and something else is not"},
    {ExitStatus::notUndone},
};

inline constexpr const char* kUndoRelated[] = {"apply"};

inline constexpr Command kUndo = {.name = "undo",
                                  .summary = "put back what was there before the last apply",
                                  .examples = kUndoExamples,
                                  .groups = kUndoGroups,
                                  .description = kUndoDescription,
                                  .statuses = kUndoStatuses,
                                  .touches = kRecords,
                                  .related = kUndoRelated};

}  // namespace tool::rows

#endif  // CFGMIG_TOOL_OPTIONS_MIGRATIONCOMMANDS_H
