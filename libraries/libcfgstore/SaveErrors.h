// SaveErrors.h -- errors of files as the errors of a save, with the name of the file in them.

#ifndef CFGMIG_LIBCFGSTORE_SAVEERRORS_H
#define CFGMIG_LIBCFGSTORE_SAVEERRORS_H

#include <string>

#include "ConfigStore.h"
#include "FileError.h"

namespace cfgstore {

// Does the work and returns what it returns; a FileError becomes a SaveError.
template <class Work>
auto asSaveErrors(const std::string& file, const Work& work) {
  try {
    return work();
  } catch (const FileInUse& error) {
    throw SaveRefused(file + ": " + error.what());
  } catch (const FileNotRestored& error) {
    throw RestoreError(file + ": " + error.what());
  } catch (const FileError& error) {
    throw SaveError(file + ": " + error.what());
  }
}

}  // namespace cfgstore

#endif  // CFGMIG_LIBCFGSTORE_SAVEERRORS_H
