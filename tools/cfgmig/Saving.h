// Saving.h -- how a command that changes a configuration ends: it saves, or tells what it would save.

#ifndef CFGMIG_TOOL_SAVING_H
#define CFGMIG_TOOL_SAVING_H

#include <future>
#include <memory>
#include <string>

#include "Commands.h"
#include "ConfigStore.h"
#include "HeldSignals.h"
#include "SaveAhead.h"

namespace tool {

inline constexpr unsigned kAnyPermissions = 07777;

// Writes the store's content to `target`, keeping a file that it replaces. Nothing is told. A wish of the user to stop
// waits until it is done. The result has no more
// permission bits than `permissions` and, unless it goes to the file that was read, than that file has.
// Throws Failure: blocked, failed or notUndone.
cfgstore::SaveResult saveTo(cfgstore::ConfigStore& store, const std::string& target,
                            unsigned permissions = kAnyPermissions);

// saveTo in two steps: of a large configuration, the new file is made beside other work, and put in place when that has
// come out well. It goes again with this object unless it was put in place. The store must not be written to meanwhile.
// A wish of the user to stop waits as long as this object lives, so that nothing is left behind.
class EarlySave {
 public:
  EarlySave(cfgstore::ConfigStore& store, const std::string& target, unsigned permissions = kAnyPermissions);

  // What saveTo returns and throws. To be called once.
  cfgstore::SaveResult finish();

  // SaveResult::recoveredPath, of what has been done by now.
  std::string recoveredPath() const;

 private:
  HeldSignals m_signals;
  std::shared_future<std::unique_ptr<cfgstore::SaveAhead>> m_ahead;
};

// Whether saveTo would write anything. Throws what it would throw, but for what only writing shows. Writes nothing.
bool wouldSave(const cfgstore::ConfigStore& store, const std::string& target, unsigned permissions = kAnyPermissions);

// Tells what a save did. `shortcoming` is empty, or says in a few words what is not as it should be: "with losses".
// Returns the status of the command: done, or lost when there is a shortcoming or the account or the trace cannot be
// written.
ExitStatus tellSaved(const cfgstore::SaveResult& saved, const std::string& target, const std::string& shortcoming,
                     Console& console);

// Tells what a save would do; returns done. Throws what saveTo would throw: the account of a preview is shown all the
// same, and then why it cannot be written as things are.
ExitStatus tellPreview(const cfgstore::ConfigStore& store, const std::string& target, Console& console);

}  // namespace tool

#endif  // CFGMIG_TOOL_SAVING_H
