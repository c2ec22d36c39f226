// OldFile.h -- the file that is replaced: it gets a second name before the new one is put in its place, from which it
// can be put back, and ends as a backup or not at all.

#ifndef CFGMIG_LIBCFGSTORE_OLDFILE_H
#define CFGMIG_LIBCFGSTORE_OLDFILE_H

#include <sys/stat.h>

#include <ctime>
#include <string>

#include "FileSystem.h"

namespace cfgstore {

// All functions throw FileError. The file has to be locked by the caller.
class OldFile {
 public:
  OldFile(FileSystem& fileSystem, std::string path);

  const std::string& secondName() const { return m_secondName; }

  // What a program that was killed has left under the second name: either the file that is in place still, which loses
  // that name; or the one that was replaced and had not become a backup yet, which becomes one now. Returns the name
  // of that backup, or nothing. What is no regular file is none of ours: it is not touched, and an error.
  std::string clearLeftover(std::time_t now);
  // What clearLeftover would throw for what is there, without changing anything. Returns whether the file in place has
  // the second name.
  bool checkLeftover(const struct stat* inPlace) const;

  // Gives the file its second name. False where files cannot have two.
  bool setAside();
  // The same by copying, with all attributes.
  void copyAside();
  bool isAside() const { return m_isAside; }

  // Once the new file is in place: the second name becomes that of a backup, never one that exists, or goes.
  const std::string& keepBackup(std::time_t now);
  void drop();
  const std::string& backupPath() const { return m_backupPath; }

  // Puts the file back in its place, in one step. Throws FileNotRestored.
  void putBack();

 private:
  std::string renameToBackup(std::time_t now) const;

  FileSystem& m_fileSystem;
  std::string m_path;
  std::string m_secondName;
  std::string m_backupPath;
  bool m_isAside = false;
};

}  // namespace cfgstore

#endif  // CFGMIG_LIBCFGSTORE_OLDFILE_H
