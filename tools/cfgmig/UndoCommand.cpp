// UndoCommand.cpp -- cfgmig undo.

#include <exception>
#include <fstream>
#include <iterator>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "Commands.h"
#include "Failure.h"
#include "FileRestore.h"
#include "HeldSignals.h"
#include "Outputs.h"
#include "PrintableText.h"
#include "StoreFailure.h"
#include "migration/Fingerprint.h"
#include "migration/UndoRecord.h"

namespace tool {
namespace {

// One file to be put back as it was before.
struct Step {
  std::string path;
  std::string fingerprint;        // of what apply has put there
  std::string backup;             // of what was there; empty when there was nothing
  std::string backupFingerprint;  // of that
};

// The configuration first: once it is back, nothing includes the copies any more.
std::vector<Step> stepsOf(const UndoRecord& record) {
  std::vector<Step> steps{{record.target, record.fingerprint, record.backup, record.backupFingerprint}};
  for (const UndoCopy& copy : record.copies) {
    steps.push_back({copy.path, copy.fingerprint, copy.backup, copy.backupFingerprint});
  }
  return steps;
}

// What apply has put there, or what was there before: an undo that was interrupted can be run again.
cfgstore::IsExpected expectationOf(const Step& step) {
  return [&step](std::string_view content) {
    const std::string found = fingerprint(content);
    return found == step.fingerprint || (!step.backup.empty() && found == step.backupFingerprint);
  };
}

// Collects what stands against a step, so that all of it is told at once.
void check(const Step& step, std::vector<std::string>& lines) {
  if (!step.backup.empty() && fingerprintOfFile(step.backup) != step.backupFingerprint) {
    lines.push_back(ldtr::printable(step.backup) + ": the backup has changed since, or is gone");
  }
  try {
    asFailure([&] { cfgstore::checkRestore(step.path, step.backup, expectationOf(step)); });
  } catch (const Failure& failure) {
    lines.insert(lines.end(), failure.lines().begin(), failure.lines().end());
  }
}

void carryOut(const Step& step) {
  asFailure([&] {
    if (step.backup.empty()) {
      cfgstore::removeFile(step.path, expectationOf(step));
    } else {
      cfgstore::restoreFile(step.path, step.backup, expectationOf(step), cfgstore::Backup::none);
    }
  });
}

std::string wordsFor(const Step& step) {
  if (step.backup.empty()) return "remove   " + ldtr::printable(step.path) + ", which was not there before";
  return "put back " + ldtr::printable(step.path) + " from " + ldtr::printable(step.backup);
}

}  // namespace

ExitStatus runUndo(const Arguments& arguments, Console& console) {
  const std::string file = arguments.value("FILE");
  const std::optional<UndoRecord> record = readUndoRecord(file);
  if (!record) {
    throw Failure(ExitStatus::failed, ldtr::printable(file) + ": there is nothing to take back: " +
                                          ldtr::printable(undoRecordPath(file)) + ", which apply writes, is not there");
  }
  const std::vector<Step> steps = stepsOf(*record);
  std::vector<std::string> obstacles;
  for (const Step& step : steps) check(step, obstacles);
  if (!obstacles.empty()) {
    obstacles.emplace_back("nothing was done");
    throw Failure(ExitStatus::blocked, obstacles);
  }
  const bool isPreview = arguments.has("--dry-run");
  console.out << (isPreview ? "Would undo" : "Undo of") << " the apply of " << ldtr::printable(record->time) << ":\n";
  if (isPreview) {
    for (const Step& step : steps) console.out << "  " << wordsFor(step) << '\n';
    return ExitStatus::done;
  }
  const HeldSignals signals;
  bool isBegun = false;
  for (const Step& step : steps) {
    try {
      carryOut(step);
    } catch (const Failure& failure) {
      if (!isBegun) throw;
      std::vector<std::string> lines = failure.lines();
      lines.emplace_back("the configuration is back; run cfgmig undo again for the rest");
      throw Failure(ExitStatus::lost, lines);
    }
    isBegun = true;
    console.out << "  " << wordsFor(step) << '\n';
  }
  removeUndoRecord(file);
  return missingOutputs(console).empty() ? ExitStatus::done
                                         : ExitStatus::lost;  // the file is back, and that is not told
}

}  // namespace tool
