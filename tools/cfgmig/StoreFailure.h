// StoreFailure.h -- what the store's errors in saving and restoring mean for a command.

#ifndef CFGMIG_TOOL_STOREFAILURE_H
#define CFGMIG_TOOL_STOREFAILURE_H

#include "ConfigStore.h"
#include "Failure.h"
#include "PrintableText.h"

namespace tool {

// Does what the store may refuse, and makes a failure of the command of that. Returns what `work` returns.
template <class Work>
auto asFailure(const Work& work) {
  try {
    return work();
  } catch (const cfgstore::SaveRefused& error) {
    throw Failure(ExitStatus::blocked, ldtr::printable(error.what()));
  } catch (const cfgstore::RestoreError& error) {
    throw Failure(ExitStatus::notUndone, ldtr::printable(error.what()));
  } catch (const cfgstore::SaveError& error) {
    throw Failure(ExitStatus::failed, ldtr::printable(error.what()));
  }
}

}  // namespace tool

#endif  // CFGMIG_TOOL_STOREFAILURE_H
