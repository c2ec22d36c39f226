// FilePlacement.h -- puts one file in its place, and can take it back.

#ifndef CFGMIG_LIBCFGSTORE_FILEPLACEMENT_H
#define CFGMIG_LIBCFGSTORE_FILEPLACEMENT_H

#include <sys/types.h>

#include <ctime>
#include <string>
#include <string_view>

#include "FileSystem.h"

namespace cfgstore {

// The file appears under its name only when it is complete and on the disk. A different file that is there is kept
// beside it, under a name with the time in it that is never one that exists; a file with the same content is not
// touched. Only a regular file is replaced: a symbolic link at the destination is refused rather than followed, for
// the file would land somewhere else, and rather than replaced, for somebody put it there on purpose.
class FilePlacement {
 public:
  enum class Found { nothing, sameContent, otherContent };

  // The file gets exactly the permissions `mode`.
  FilePlacement(FileSystem& fileSystem, std::string destination, mode_t mode);

  // What is at the destination now. Throws FileError when no file can be put there.
  Found examine(std::string_view content) const;

  // Puts a file with this content there. `now` is the time in the name of a backup. The file belongs to the user that
  // runs the program; a file with the same content is left as it is, permissions included. What a program that was
  // killed here has left is cleared: a file that it had replaced gets the name of a backup.
  // Throws FileError; nothing has changed then, unless it is FileNotRestored.
  void place(std::string_view content, std::time_t now);

  // Takes back what place has done; without that, does nothing. A file that somebody else has put there meanwhile is
  // left alone. Throws FileNotRestored.
  void undo();

  // Where the replaced file is; empty if there was none.
  const std::string& backupPath() const { return m_backupPath; }

 private:
  enum class Done { nothing, created, replaced };

  Found find(std::string_view content) const;

  FileSystem& m_fileSystem;
  std::string m_destination;
  mode_t m_mode;
  Done m_done = Done::nothing;
  struct stat m_placed {};  // the file that was put there
  std::string m_backupPath;
};

}  // namespace cfgstore

#endif  // CFGMIG_LIBCFGSTORE_FILEPLACEMENT_H
