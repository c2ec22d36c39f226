#include "options/Surroundings.h"

#include <algorithm>

namespace tool {
namespace {

constexpr StatusRow kStatuses[] = {
    {ExitStatus::done, "done and nothing lost; also nothing to do, and a preview"},
    {ExitStatus::failed, "failed, the target is unchanged"},
    {ExitStatus::usage, "the command line is wrong"},
    {ExitStatus::differs, "differences, changes or warnings exist (only with --exit-code)"},
    {ExitStatus::blocked, "the target has changed meanwhile or is in use; nothing was written"},
    {ExitStatus::lost, "written, but something was lost or needs a person"},
    {ExitStatus::notUndone, "failed, and the target could not be restored"},
};

constexpr Surrounding kVariables[] = {
    {"CFGMIG_MAX_FILE_SIZE", "The largest configuration that is read, as for --max-size, which wins over it.",
     kConfigurations},
    {"CFGMIG_STATE_DIRECTORY", "The directory for the records of what apply has done.", kRecords},
    {"XDG_STATE_HOME",
     "For users other than the superuser and without CFGMIG_STATE_DIRECTORY: the records are in cfgmig below it, when "
     "it is an absolute path.",
     kRecords},
    {"HOME", "When none of the above tells, the records are in .local/state/cfgmig below it.", kRecords},
    {"LDTR_EVENTS", "An event mask, as for --trace-events. It switches the trace on, but not against --trace.", kTrace},
    {"LDTR_FILE",
     "The file that trace records are appended to, as for --trace, which wins over it. With LDTR_EVENTS alone they go "
     "to standard error. Neither variable counts for a program that has more rights than its user.",
     kTrace},
    {"NO_COLOR", "When it is set and not empty, nothing is coloured.", kTerminal},
    {"TERM", "On a terminal without it, or with the value dumb, nothing is coloured.", kTerminal},
};

constexpr Surrounding kFiles[] = {
    {"/var/lib/cfgmig",
     "The records of what apply has done, when the superuser runs the tool. undo and a repeated apply go by them.",
     kRecords},
    {"~/.local/state/cfgmig", "The same for other users.", kRecords},
    {"FILE.TIME.bak",
     "What was there before a command replaced FILE, beside it, with the time in its name: "
     "server.conf.20240131-235959.bak.",
     kBackups},
};

}  // namespace

const char kToolDescription[] =
    "cfgmig carries the configuration of an older directory server into that of a\n"
    "newly installed one, without losing a setting.";

const char kToolNotes[] =
    "\n"
    "Every value of the old configuration is accounted for: it gets one fate and a\n"
    "reason, and every value of the result one origin. The file that a command leaves\n"
    "behind is the one that was there with the lines changed that had to change. It is\n"
    "replaced in one step, after a backup, or not at all.\n"
    "\n"
    "A migration goes in this order:\n"
    "\n"
    "  cfgmig check old.ldif\n"
    "  cfgmig plan --old old.ldif --new new.ldif -o plan.json\n"
    "  cfgmig why plan.json 'cn=Front End,cn=Configuration'\n"
    "  cfgmig apply plan.json\n"
    "  cfgmig undo new.ldif\n"
    "\n"
    "The last one only when it has to be taken back. Results go to standard output,\n"
    "everything else to standard error. Options and arguments can stand in any order;\n"
    "behind -- everything is an argument. A name of an option is never shortened.";

std::span<const StatusRow> exitStatuses() { return kStatuses; }

const char* meaningOf(const StatusRow& row) {
  if (row.meaning[0] != 0) return row.meaning;
  const auto isSame = [&](const StatusRow& known) { return known.status == row.status; };
  return std::find_if(std::begin(kStatuses), std::end(kStatuses), isSame)->meaning;
}

std::span<const Surrounding> environmentVariables() { return kVariables; }

std::span<const Surrounding> filesOfTheTool() { return kFiles; }

}  // namespace tool
