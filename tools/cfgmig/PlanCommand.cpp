// PlanCommand.cpp -- cfgmig plan.

#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "Commands.h"
#include "Failure.h"
#include "LeftOpen.h"
#include "Saving.h"
#include "Tracing.h"
#include "migration/AppliedBefore.h"
#include "migration/Migration.h"
#include "migration/MigrationRequest.h"
#include "migration/ReportRequest.h"

namespace tool {
namespace {

// --output is the plan itself: the report in the format of --format, JSON without it.
ReportRequest reportsOf(const Arguments& arguments) {
  ReportRequest reports = reportRequestOf(arguments);
  if (!arguments.has("--output")) return reports;
  reports.files.push_back({reports.onOutput.value_or(Format::json), arguments.value("--output")});
  reports.onOutput.reset();
  return reports;
}

}  // namespace

ExitStatus runPlan(const Arguments& arguments, Console& console) {
  const ReportRequest reports = reportsOf(arguments);
  MigrationRequest asked = requestOf(arguments, false);
  asked.onlySums = !reports.showsValues();
  auto migrationKept = std::make_unique<Migration>(std::move(asked));
  Migration& migration = *migrationKept;
  const MigrationRequest& request = migration.request();
  const NamedFile files[] = {{request.oldPath, "the old configuration"},
                             {request.newPath, "the new configuration"},
                             {request.target, "the target"},
                             {request.traceFile, "the trace file"}};
  settleReports(reports, files);
  startTracing(arguments);
  std::vector<std::string> warnings;
  if (const std::optional<UndoRecord> record = appliedBefore(migration, warnings)) {
    const std::unique_ptr<Migration> replay = replayOf(migration, *record, warnings);
    for (const std::string& warning : warnings) console.err << "cfgmig: " << warning << '\n';
    tellApplied(*record, replay.get(), reports, console);
    return ExitStatus::done;
  }
  migration.merge(warnings);
  for (const std::string& warning : warnings) console.err << "cfgmig: " << warning << '\n';
  migration.account();

  Report report = migration.report(reports.showSecrets);
  for (const ReportRequest::InFile& file : reports.files) {
    if (file.format == Format::json) report.planPath = file.path;
  }
  // What stands against the save is told when the plan has been shown.
  std::vector<std::string> obstacles;
  ExitStatus status = ExitStatus::done;
  try {
    if (!wouldSave(migration.newStore(), request.target)) report.outcome.kind = Outcome::Kind::nothingToDo;
  } catch (const Failure& failure) {
    obstacles = failure.lines();
    status = failure.status();
  }
  saveReports(reports, report);
  tellLosses(report, console);
  showReport(reports, report, console);
  leaveOpen(migrationKept, migration.newStore().textAsRead().size());
  if (status != ExitStatus::done) throw Failure(status, obstacles);
  const bool hasChanges = report.outcome.kind != Outcome::Kind::nothingToDo;
  return hasChanges && arguments.has("--exit-code") ? ExitStatus::differs : ExitStatus::done;
}

}  // namespace tool
