// Saving.h -- how a command that changes a configuration ends: it saves, or tells what it would save.

#ifndef CFGMIG_TOOL_SAVING_H
#define CFGMIG_TOOL_SAVING_H

#include <string>

#include "Commands.h"
#include "ConfigStore.h"

namespace tool {

inline constexpr unsigned kAnyPermissions = 07777;

// Writes the store's content to `target`, keeping a file that it replaces. Nothing is told. The result has no more
// permission bits than `permissions`.
// Throws Failure: blocked, failed or notUndone.
cfgstore::SaveResult saveTo(cfgstore::ConfigStore& store, const std::string& target,
                            unsigned permissions = kAnyPermissions);

// Tells what a save did. `shortcoming` is empty, or says in a few words what is not as it should be: "with losses".
// Returns the status of the command: done, or lost when there is a shortcoming or the account cannot be written.
ExitStatus tellSaved(const cfgstore::SaveResult& saved, const std::string& target, const std::string& shortcoming,
                     Console& console);

// Tells what a save would do; returns done.
ExitStatus tellPreview(const cfgstore::ConfigStore& store, const std::string& target, Console& console);

}  // namespace tool

#endif  // CFGMIG_TOOL_SAVING_H
