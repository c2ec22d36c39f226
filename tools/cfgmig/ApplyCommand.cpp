// ApplyCommand.cpp -- cfgmig apply.

#include <cstdint>
#include <filesystem>
#include <future>
#include <memory>
#include <new>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "Commands.h"
#include "ConfigStore.h"
#include "Configuration.h"
#include "Failure.h"
#include "HeldSignals.h"
#include "LeftOpen.h"
#include "Outputs.h"
#include "PrintableText.h"
#include "Saving.h"
#include "Threads.h"
#include "TraceControl.h"
#include "Tracing.h"
#include "migration/AppliedBefore.h"
#include "migration/Fingerprint.h"
#include "migration/Migration.h"
#include "migration/MigrationRequest.h"
#include "migration/ReportRequest.h"
#include "migration/UndoRecord.h"

namespace tool {
namespace {

MigrationRequest readRequest(const Arguments& arguments, const ReportRequest& reports) {
  MigrationRequest request = arguments.has("PLAN") ? requestOfPlan(arguments) : requestOf(arguments, true);
  request.onlySums = !reports.showsValues();
  return request;
}

void tellAll(const std::vector<std::string>& lines, Console& console) {
  for (const std::string& line : lines) console.err << "cfgmig: " << line << '\n';
}

void refuseStalePlan(const Migration& migration) {
  std::vector<std::string> lines = migration.staleInputs();
  if (lines.empty()) return;
  lines.push_back(ldtr::printable(migration.request().planPath) +
                  ": the plan is stale; make a new one with cfgmig plan");
  throw Failure(ExitStatus::blocked, lines);
}

// Old passwords and keys come into the result. A file of its own may be read by
// those only who may read both configurations. The new configuration keeps its
// permissions, since its server has to read it; what that means is told.
unsigned permissionsOf(const Migration& migration, Console& console) {
  constexpr unsigned kOfOthers = 07;
  const MigrationRequest& request = migration.request();
  const unsigned ofOld = migration.oldStore().permissions();
  const unsigned ofNew = migration.newStore().permissions();
  if (request.target != request.newPath) return (ofOld & ofNew) | 0600U;
  if ((ofNew & ~ofOld & kOfOthers) != 0) {
    console.err << "cfgmig: " << ldtr::printable(request.newPath) << " is open to everybody, unlike "
                << ldtr::printable(request.oldPath) << ", whose passwords and keys go into it\n";
  }
  return kAnyPermissions;
}

std::string fingerprintOf(const std::string& path) { return path.empty() ? "" : fingerprintOfFile(path); }

// `result` is the fingerprint of what was written.
UndoRecord recordOf(const Migration& migration, const Report& report, const std::string& backup,
                    const std::string& result) {
  const MigrationRequest& request = migration.request();
  UndoRecord record;
  record.toolVersion = report.toolVersion;
  record.time = report.time;
  record.sourceVersion = migration.sourceVersion();
  record.target = std::filesystem::canonical(request.target).string();
  record.fingerprint = result;
  record.backup = backup.empty() ? "" : std::filesystem::absolute(backup).string();
  // A new configuration that is replaced is the one that was read: the save makes sure of that.
  const bool isOfInput = !backup.empty() && request.target == request.newPath;
  record.backupFingerprint = isOfInput ? migration.newFingerprint() : fingerprintOf(record.backup);
  const auto inputOf = [](const std::string& path, const std::string& fingerprint, const cfgstore::ConfigStore& store) {
    return UndoInput{std::filesystem::absolute(path).string(), fingerprint, store.textAsRead().size()};
  };
  record.oldFile = inputOf(request.oldPath, migration.oldFingerprint(), migration.oldStore());
  record.newFile = inputOf(request.newPath, migration.newFingerprint(), migration.newStore());
  record.plannedSha256 = request.plan ? request.plan->newFile.sha256 : "";
  record.schemas = report.options.schemas;
  for (const SchemaFile& file : report.outcome.schemas) {
    if (file.fate != SchemaFile::Fate::copied) continue;
    record.copies.push_back(
        {file.destination, fingerprintOf(file.destination), file.backup, fingerprintOf(file.backup)});
  }
  return record;
}

// Of what a save would write, made while it is written. Schema copies are staged by now, so that nothing changes in it.
std::future<std::string> fingerprintOfResult(cfgstore::ConfigStore& store) {
  std::vector<std::string_view> pieces = store.pieces();
  return cfgstore::doBeside(store.textAsRead().size(), [pieces = std::move(pieces)] { return fingerprint(pieces); });
}

// Without anything that was replaced there is nothing that an undo could put back.
void noteForUndo(const UndoRecord& record) {
  if (record.backup.empty() && record.copies.empty()) return removeUndoRecord(record.target);
  writeUndoRecord(record);
}

// What is done when the target has been written. A failure of it takes nothing
// back, and is told; true when all went well.
template <class Step>
bool afterwards(const Step& step, Console& console) {
  try {
    step();
    return true;
  } catch (const Failure& failure) {
    tellAll(failure.lines(), console);
  } catch (const std::filesystem::filesystem_error& error) {
    tellAll({ldtr::printable(error.what())}, console);
  } catch (const std::bad_alloc&) {
    console.err << "cfgmig: not enough memory for what follows the save\n";  // without asking for any
  }
  return false;
}

void tellRecovered(const std::string& path, Console& console) {
  if (path.empty()) return;
  tellAll({"kept: " + ldtr::printable(path) + ", which an interrupted run had replaced"}, console);
}

std::vector<std::string> faultsOfResult(Migration& migration) {
  try {
    return migration.faultsOfResult();
  } catch (const std::bad_alloc&) {
    return {"there is not enough memory for it"};
  }
}

// Looked for beside what is noted of the save; when they are asked for, if there is not enough memory for that or a
// trace tells of what is done.
std::future<std::vector<std::string>> faultsLookedFor(Migration& migration) {
  try {
    const std::uint64_t size = ldtr::events() == 0 ? migration.newStore().textAsRead().size() : 0;
    return cfgstore::doBeside(size, [&migration] { return faultsOfResult(migration); });
  } catch (const std::bad_alloc&) {
    return {};
  }
}

bool isFaultless(const Migration& migration, std::vector<std::string> faults, Console& console) {
  if (faults.empty()) return true;
  constexpr std::size_t kMost = 20;
  const std::size_t left = faults.size() > kMost ? faults.size() - kMost : 0;
  faults.resize(faults.size() - left);
  if (left > 0) faults.push_back("and " + std::to_string(left) + " more");
  const std::string target = ldtr::printable(migration.request().target);
  faults.insert(faults.begin(), target + ": the check of the result has failed");
  faults.push_back("see cfgmig verify; cfgmig undo " + target + " puts back what was there before");
  tellAll(faults, console);
  return false;
}

// A run that was killed may have left something although it had written the result.
void clearUp(const std::string& target, Console& console) {
  const std::unique_ptr<cfgstore::ConfigStore> store = openStore(target);
  tellRecovered(saveTo(*store, target).recoveredPath, console);
}

// `early` is the save, if it was begun.
ExitStatus write(Migration& migration, unsigned permissions, EarlySave* early, const ReportRequest& reports,
                 Report& report, Console& console) {
  const MigrationRequest& request = migration.request();
  const HeldSignals signals;  // what was done is told, too
  SchemaCopies* const schemas = migration.schemas();
  std::future<std::string> fingerprint = fingerprintOfResult(migration.newStore());
  const cfgstore::SaveResult saved = early != nullptr ? early->finish()
                                     : schemas != nullptr
                                         ? schemas->saveWith(migration.newStore(), request.target, permissions)
                                         : saveTo(migration.newStore(), request.target, permissions);
  if (schemas != nullptr) report.outcome.schemas = schemaFilesOf(*schemas, false);
  tellRecovered(saved.recoveredPath, console);
  bool isWell = schemas == nullptr || schemas->isComplete();
  if (saved.written) {
    report.outcome.kind = Outcome::Kind::applied;
    report.outcome.backup = saved.backupPath;
    std::future<std::vector<std::string>> faults = faultsLookedFor(migration);
    isWell &=
        afterwards([&] { noteForUndo(recordOf(migration, report, saved.backupPath, fingerprint.get())); }, console);
    bool isRight = false;
    const auto check = [&] { return faults.valid() ? faults.get() : faultsOfResult(migration); };
    isWell &= afterwards([&] { isRight = isFaultless(migration, check(), console); }, console);
    isWell &= isRight;
  } else {
    report.outcome.kind = Outcome::Kind::nothingToDo;
    isWell &= afterwards([&] { clearHalfUndoRecord(request.target); }, console);
  }
  isWell &= report.ledger.count(ValueFate::lost) == 0;
  isWell &= afterwards([&] { saveReports(reports, report); }, console);
  isWell &= afterwards(
      [&] {
        tellLosses(report, console);
        showReport(reports, report, console);
      },
      console);
  isWell &= missingOutputs(console).empty();
  return isWell ? ExitStatus::done : ExitStatus::lost;
}

ExitStatus preview(Migration& migration, unsigned permissions, const ReportRequest& reports, Report& report,
                   Console& console) {
  std::optional<Failure> obstacle;
  try {
    if (!wouldSave(migration.newStore(), migration.request().target, permissions)) {
      report.outcome.kind = Outcome::Kind::nothingToDo;
    }
  } catch (const Failure& failure) {
    obstacle = failure;
  }
  saveReports(reports, report);
  tellLosses(report, console);
  showReport(reports, report, console);
  if (obstacle) throw Failure(*obstacle);
  return ExitStatus::done;
}

}  // namespace

ExitStatus runApply(const Arguments& arguments, Console& console) {
  const ReportRequest reports = reportRequestOf(arguments);
  auto migrationKept = std::make_unique<Migration>(readRequest(arguments, reports));
  Migration& migration = *migrationKept;
  const MigrationRequest& request = migration.request();
  const NamedFile files[] = {{request.oldPath, "the old configuration"},
                             {request.newPath, "the new configuration"},
                             {request.target, "the target"},
                             {request.planPath, "the plan"},
                             {request.traceFile, "the trace file"}};
  settleReports(reports, files);
  std::vector<std::string> warnings;
  const std::optional<UndoRecord> record = appliedBefore(migration, warnings);
  if (!record) refuseStalePlan(migration);
  startTracing(arguments);
  if (record) {
    if (!arguments.has("--dry-run")) clearUp(request.target, console);
    const std::unique_ptr<Migration> replay = replayOf(migration, *record, warnings);
    tellAll(warnings, console);
    tellApplied(*record, replay.get(), reports, console);
    return missingOutputs(console).empty() ? ExitStatus::done : ExitStatus::failed;
  }
  const bool isPreview = arguments.has("--dry-run");
  if (!isPreview) migration.willBeWritten();
  migration.merge(warnings);
  tellAll(warnings, console);
  const unsigned permissions = permissionsOf(migration, console);
  std::optional<EarlySave> early;
  // Schema files have to be there before a configuration that names them.
  if (!isPreview && migration.schemas() == nullptr) early.emplace(migration.newStore(), request.target, permissions);
  migration.account();
  Report report = migration.report(reports.showSecrets);
  if (early && HeldSignals::isOneWaiting()) {
    tellRecovered(early->recoveredPath(), console);
    early.reset();  // which lets it arrive; nothing is in place yet
  }
  const ExitStatus status = isPreview
                                ? preview(migration, permissions, reports, report, console)
                                : write(migration, permissions, early ? &*early : nullptr, reports, report, console);
  leaveOpen(migrationKept, migration.newStore().textAsRead().size());
  return status;
}

}  // namespace tool
