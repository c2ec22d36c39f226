#include "migration/AppliedBefore.h"

#include <filesystem>

#include "Failure.h"
#include "Saving.h"
#include "migration/Fingerprint.h"
#include "report/Sha256.h"

namespace tool {
namespace {

bool sameDirectories(const std::optional<SchemaDirectories>& asked,
                     const std::optional<MergeOptions::Schemas>& recorded) {
  if (!asked || !recorded) return !asked && !recorded;
  return std::filesystem::absolute(asked->search).string() == recorded->searchDirectory &&
         asked->target == recorded->targetDirectory;
}

// A plan may have been made before the apply, or of what it has left.
bool isOfRecord(const Plan& plan, const UndoRecord& record, const Migration& migration) {
  const std::string& planned = plan.newFile.sha256;
  return planned == migration.newInput().sha256 || planned == record.plannedSha256 ||
         (!record.backup.empty() && planned == sha256OfFile(record.backup));
}

}  // namespace

std::optional<UndoRecord> appliedBefore(const Migration& migration, std::vector<std::string>& warnings) {
  const MigrationRequest& request = migration.request();
  if (request.target != request.newPath) return std::nullopt;
  std::optional<UndoRecord> record;
  try {
    record = readUndoRecord(request.target);
  } catch (const Failure& failure) {
    warnings.insert(warnings.end(), failure.lines().begin(), failure.lines().end());
  }
  if (!record || record->fingerprint != migration.newFingerprint()) return std::nullopt;
  if (record->oldFile.fingerprint != migration.oldFingerprint()) return std::nullopt;
  if (!request.version.empty() && request.version != record->sourceVersion) return std::nullopt;
  if (request.plan && !isOfRecord(*request.plan, *record, migration)) return std::nullopt;
  if (!sameDirectories(request.schemas, record->schemas)) return std::nullopt;
  return record;
}

std::unique_ptr<Migration> replayOf(const Migration& migration, const UndoRecord& record,
                                    std::vector<std::string>& warnings) {
  if (record.backup.empty() || fingerprintOfFile(record.backup) != record.newFile.fingerprint) return nullptr;
  MigrationRequest request = migration.request();
  request.newPath = record.backup;
  request.version = record.sourceVersion;
  request.plan.reset();
  try {
    auto replay = std::make_unique<Migration>(std::move(request));
    replay->merge(warnings);
    replay->account();
    return wouldSave(replay->newStore(), replay->request().target) ? nullptr : std::move(replay);
  } catch (const Failure&) {
    return nullptr;  // whatever stands in the way, there is nothing to be done
  }
}

}  // namespace tool
