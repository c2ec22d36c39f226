// UndoRecord.h -- what the last apply did to a file, noted so that it can be taken back.
//
// The record names files and has their fingerprints; it holds no value of a configuration.

#ifndef CFGMIG_TOOL_MIGRATION_UNDORECORD_H
#define CFGMIG_TOOL_MIGRATION_UNDORECORD_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "report/Report.h"

namespace tool {

// A schema file that was put in its place.
struct UndoCopy {
  std::string path;
  std::string fingerprint;        // of what was put there
  std::string backup;             // where a different file went that was there; empty when there was none
  std::string backupFingerprint;  // of that; empty when there was none
};

// A configuration that was read.
struct UndoInput {
  std::string path;
  std::string fingerprint;
  std::uint64_t size = 0;  // in bytes
};

struct UndoRecord {
  std::string toolVersion;
  std::string time;               // of the apply
  std::string sourceVersion;      // that was applied
  std::string target;             // the file that was written, symbolic links resolved
  std::string fingerprint;        // of what was written
  std::string backup;             // where the file went that was there; empty when there was none
  std::string backupFingerprint;  // of that; empty when there was none
  UndoInput oldFile;
  UndoInput newFile;
  std::string plannedSha256;  // of the new configuration, as a plan has it; empty when none was carried out
  std::optional<MergeOptions::Schemas> schemas;
  std::vector<UndoCopy> copies;
};

// Where the record of a file is, symbolic links followed: in the directory that CFGMIG_STATE_DIRECTORY names, else in
// /var/lib/cfgmig for the superuser, else in $XDG_STATE_HOME/cfgmig or ~/.local/state/cfgmig.
std::string undoRecordPath(const std::string& target);

// The record of `target`; nothing when there is none. Throws Failure with ExitStatus::failed for one that cannot be
// read or that is not what writeUndoRecord writes.
std::optional<UndoRecord> readUndoRecord(const std::string& target);

// Writes the record of `record.target`, in place of an older one, readable by its owner only. Throws Failure with
// ExitStatus::failed; an older record is then still there.
void writeUndoRecord(const UndoRecord& record);

// Removes what a program that was killed has left while it wrote the record. Throws Failure with ExitStatus::failed.
void clearHalfUndoRecord(const std::string& target);

// Removes it. Throws Failure with ExitStatus::failed.
void removeUndoRecord(const std::string& target);

}  // namespace tool

#endif  // CFGMIG_TOOL_MIGRATION_UNDORECORD_H
