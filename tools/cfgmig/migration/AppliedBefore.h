// AppliedBefore.h -- the migration that the target holds already, told by the record of the apply that made it.

#ifndef CFGMIG_TOOL_MIGRATION_APPLIEDBEFORE_H
#define CFGMIG_TOOL_MIGRATION_APPLIEDBEFORE_H

#include <memory>
#include <optional>
#include <vector>

#include "migration/Migration.h"
#include "migration/UndoRecord.h"

namespace tool {

// The record of an apply that has made the new configuration what it is, from the same old configuration and with the
// same options; nothing when there is none. Merging again would not show it: some rules give another result when they
// meet their own. A record that cannot be read is as good as none, and lines for the user go to `warnings`.
std::optional<UndoRecord> appliedBefore(const Migration& migration, std::vector<std::string>& warnings);

// The same migration once more in memory, from the backup that the apply has kept, so that the account is that of what
// the target holds. Null when the backup has gone or gives another result than the target by now.
std::unique_ptr<Migration> replayOf(const Migration& migration, const UndoRecord& record,
                                    std::vector<std::string>& warnings);

}  // namespace tool

#endif  // CFGMIG_TOOL_MIGRATION_APPLIEDBEFORE_H
