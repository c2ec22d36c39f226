// TargetFile.h -- the place where a file is to be written: found, examined and locked before anything is written.

#ifndef CFGMIG_LIBCFGSTORE_TARGETFILE_H
#define CFGMIG_LIBCFGSTORE_TARGETFILE_H

#include <sys/stat.h>

#include <ctime>
#include <string>

#include "FileAttributes.h"
#include "FileLock.h"
#include "FileSystem.h"
#include "OpenFile.h"

namespace cfgstore {

// All functions throw FileError, and FileInUse when another program is at work on the file. The lock of Access::write
// goes with the object, or with the program, however that ends.
class TargetFile {
 public:
  // Whether a symbolic link at the place leads to the file that is meant.
  enum class Links { follow, refuse };

  // Finds the file, opens it and locks it. A file that does not exist is no error, but its directory has to.
  TargetFile(FileSystem& fileSystem, const std::string& name, Access access, Links links = Links::follow);

  bool exists() const { return static_cast<bool>(m_file); }
  const std::string& path() const { return m_path; }      // symbolic links resolved
  int file() const { return m_file.get(); }               // if it exists
  const struct stat& status() const { return m_status; }  // if it exists
  FileAttributes attributes() const;                      // if it exists

  // Refuses a file with several names: they would part. What a program that was killed has left does not count.
  void refuseHardLinks() const;

  // Refuses what stands under the names that a save needs and is none of ours.
  void checkNames() const;

  // Refuses a directory in which no file can be made.
  void checkDirectory() const;

  // Refuses an owner that this process cannot give a file, and a disk without room for `size` bytes. A save finds
  // both for certain, and before it writes the first byte; this is what can be known without making a file.
  void foresee(std::size_t size, const FileAttributes& attributes) const;

  // Clears what a program that was killed in the middle of a save has left. Returns the name of the backup that it
  // made of a file that had been replaced, or nothing.
  std::string clearLeftovers(std::time_t now);

  // Throws FileInUse unless the file has not been touched in any way since it was locked and cleared.
  void checkUntouched() const;
  // The same but for the number of its names, which a save changes itself.
  void checkUnchanged() const;

 private:
  void resolve(const std::string& name, Links links);
  void open(Access access);
  void examine();
  struct stat unchangedStatus() const;

  FileSystem& m_fileSystem;
  std::string m_path;
  OpenFile m_file;
  struct stat m_status {};
};

}  // namespace cfgstore

#endif  // CFGMIG_LIBCFGSTORE_TARGETFILE_H
