// FileCopy.h -- copies one file, whole or not at all, and can take the copy back.

#ifndef CFGMIG_LIBCFGSTORE_FILECOPY_H
#define CFGMIG_LIBCFGSTORE_FILECOPY_H

#include <sys/types.h>

#include <ctime>
#include <string>

#include "FilePlacement.h"
#include "FileSystem.h"

namespace cfgstore {

// What is refused, besides what FilePlacement refuses: a source that is no regular file, a file onto itself, and a
// destination in a directory that is a symbolic link, which may lead anywhere by the time of the copy.
class FileCopy {
 public:
  using Found = FilePlacement::Found;

  // The copy gets exactly the permissions `permissions`.
  FileCopy(FileSystem& fileSystem, std::string source, std::string destination, mode_t permissions);

  // Whether it could be done as things are: reads the source and examines the destination, and changes nothing.
  // Returns what is at the destination. Throws FileError when something speaks against it.
  Found check() const;

  // Copies. A destination that holds the same content already is not touched; a different file there is kept beside
  // it. Throws FileError; nothing has changed then, unless it is FileNotRestored.
  void run(std::time_t now = std::time(nullptr));

  // Takes the copy back. Throws FileNotRestored.
  void undo() { m_placement.undo(); }

  // Where the file is that was replaced; empty if there was none.
  const std::string& backupPath() const { return m_placement.backupPath(); }

 private:
  std::string readSource() const;

  FileSystem& m_fileSystem;
  std::string m_source;
  std::string m_destination;
  FilePlacement m_placement;
};

}  // namespace cfgstore

#endif  // CFGMIG_LIBCFGSTORE_FILECOPY_H
