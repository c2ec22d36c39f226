// FileCopy.h -- copies one file, whole or not at all.

#ifndef CFGMIG_LIBCFGSTORE_FILECOPY_H
#define CFGMIG_LIBCFGSTORE_FILECOPY_H

#include <sys/types.h>

#include <string>

#include "FileSystem.h"

namespace cfgstore {

// A copy appears under its name only when it is complete and on the disk. What is refused: a source that is no regular
// file, a destination that is anything but a regular file or nothing at all, and a file onto itself. A destination
// that is a symbolic link is refused rather than followed: the copy would land outside of the directory that was
// asked for; and rather than replaced: somebody put the link there on purpose.
class FileCopy {
 public:
  FileCopy(FileSystem& fileSystem, std::string source, std::string destination, mode_t permissions)
      : m_fileSystem(fileSystem),
        m_source(std::move(source)),
        m_destination(std::move(destination)),
        m_permissions(permissions) {}

  // Copies. Throws FileError; nothing has changed then.
  void run();

 private:
  FileSystem& m_fileSystem;
  std::string m_source;
  std::string m_destination;
  mode_t m_permissions;
};

}  // namespace cfgstore

#endif  // CFGMIG_LIBCFGSTORE_FILECOPY_H
