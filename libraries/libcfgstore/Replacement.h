// Replacement.h -- the moment at which a new file takes its place.

#ifndef CFGMIG_LIBCFGSTORE_REPLACEMENT_H
#define CFGMIG_LIBCFGSTORE_REPLACEMENT_H

#include <ctime>
#include <functional>
#include <string>

#include "ConfigStore.h"
#include "NewFile.h"

namespace cfgstore {

// Both bring the directory to the disk, and throw FileError with everything as it was before; FileNotRestored when
// that is not so.

// Puts the file in the place of the one at `path`, which is locked by the caller. `lastCheck` is called immediately
// before that, and may throw. Returns where the old file is kept, empty for Backup::none.
std::string replaceFile(FileSystem& fileSystem, NewFile& file, const std::string& path, Backup backup, std::time_t now,
                        const std::function<void()>& lastCheck);

// Puts the file at `path`, where no file may be. Throws FileNotRestored when it is there although a later step failed.
void createFile(FileSystem& fileSystem, NewFile& file, const std::string& path);

// Brings the directory of `path` to the disk.
void syncDirectoryOf(FileSystem& fileSystem, const std::string& path);

}  // namespace cfgstore

#endif  // CFGMIG_LIBCFGSTORE_REPLACEMENT_H
