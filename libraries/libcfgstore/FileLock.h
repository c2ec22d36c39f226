// FileLock.h -- the lock that keeps two writers of a file apart.

#ifndef CFGMIG_LIBCFGSTORE_FILELOCK_H
#define CFGMIG_LIBCFGSTORE_FILELOCK_H

#include "FileSystem.h"

namespace cfgstore {

// What a file is opened for.
enum class Access {
  write,  // nobody else may write or look until the file is closed
  look    // any number of programs look at once; none writes at that moment
};

// Locks an open file; throws FileInUse with its holder when a writer has it, and FileError when that cannot be told.
// For Access::write the lock lasts until the file is closed; for Access::look it is given back before this returns, so
// that it is in no writer's way. A writer that meets such a look tries again for a few hundredths of a second; it waits
// for nobody longer.
void lockFile(FileSystem& fileSystem, int file, Access access);

}  // namespace cfgstore

#endif  // CFGMIG_LIBCFGSTORE_FILELOCK_H
