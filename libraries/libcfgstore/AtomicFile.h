// AtomicFile.h -- replaces a file so that at every moment the old one or the new one is there, whole.
//
// How it is done: the target is locked and examined; the new content is written to ".NAME.cfgmig-new" beside it,
// brought to the disk and read back; the old file gets the second name ".NAME.cfgmig-old"; the new file is renamed to
// the target; ".NAME.cfgmig-old" becomes the backup or goes; the directory is brought to the disk. Whichever step
// fails, the old file is put back or was never moved, and what was made on the way is removed. A program that is
// killed leaves at most these two files, which the next save of the same target clears.

#ifndef CFGMIG_LIBCFGSTORE_ATOMICFILE_H
#define CFGMIG_LIBCFGSTORE_ATOMICFILE_H

#include <ctime>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "ConfigStore.h"
#include "FileSystem.h"
#include "NewFile.h"
#include "SourceText.h"

namespace cfgstore {

// The file that the content was read from, to be recognised when it is the target.
struct SourceFile {
  std::string path;      // as it was opened
  std::string resolved;  // symbolic links resolved
  FileStamp stamp;
};

struct SavedFile {
  SaveResult result;
  FileStamp stamp;        // of the file that is at the target now
  bool isSource = false;  // the target is the file that the content was read from
};

class AtomicFile {
 public:
  AtomicFile(FileSystem& fileSystem, std::string target, const SourceFile& source);

  // Writes the pieces, laid end to end. Throws SaveError. `now` is the time in the name of a backup, `permissions` the
  // most that anybody may do with the result.
  SavedFile save(std::span<const std::string_view> pieces, Backup backup, std::time_t now, mode_t permissions = 07777);

 private:
  SavedFile saveLocked(std::span<const std::string_view> pieces, Backup backup, std::time_t now, mode_t permissions);
  mode_t modeFor(const NewFile& file) const;
  void resolve();
  void openTarget();
  void clearLeftovers(std::time_t now);
  bool isSource() const;
  void checkUnchanged() const;
  void checkStillThere() const;
  void setAside();
  void copyAside();
  void commit(NewFile& file, Backup backup, std::time_t now);
  std::string keepBackup(std::time_t now);
  void putBack(const std::string& from);
  void syncDirectory() const;
  std::string backupName(std::time_t time, int number) const;

  FileSystem& m_fileSystem;
  std::string m_target;  // as the caller named it
  const SourceFile& m_source;
  std::string m_path;   // symbolic links resolved
  std::string m_aside;  // where the old file gets its second name
  bool m_isAside = false;
  OpenFile m_file;  // the target, locked; none if it does not exist
  OpenFile m_directory;
  struct stat m_status {};
  std::string m_backupPath;
};

}  // namespace cfgstore

#endif  // CFGMIG_LIBCFGSTORE_ATOMICFILE_H
