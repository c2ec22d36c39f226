// AtomicFile.h -- replaces a file so that at every moment the old one or the new one is there, whole.
//
// How it is done: the target is locked and examined, and whatever speaks against the save is told; the new content is
// written to ".NAME.cfgmig-new" beside it, gets the owner, the permissions and the attributes of the file that it is
// to replace, is brought to the disk and read back; the old file gets the second name ".NAME.cfgmig-old"; the target
// is compared once more with what was read; the new file is renamed to it; ".NAME.cfgmig-old" becomes the backup or
// goes; the directory is brought to the disk. Whichever step fails, the old file is put back or was never moved, and
// what was made on the way is removed. A program that is killed leaves at most these two files (and ".NAME.cfgmig-copy"
// where files cannot have two names), which the next save of the same target clears.

#ifndef CFGMIG_LIBCFGSTORE_ATOMICFILE_H
#define CFGMIG_LIBCFGSTORE_ATOMICFILE_H

#include <ctime>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "ConfigStore.h"
#include "FileSystem.h"
#include "NewFile.h"
#include "SourceText.h"
#include "TargetFile.h"

namespace cfgstore {

// The file that the content was read from, to be recognised when it is the target.
struct SourceFile {
  std::string path;      // as it was opened
  std::string resolved;  // symbolic links resolved
  FileStamp stamp;
  std::optional<std::string_view> text;  // what was read; none once it was saved, the stamp alone has to tell then
};

struct SavedFile {
  SaveResult result;
  FileStamp stamp;        // of the file that is at the target now
  bool isSource = false;  // the target is the file that the content was read from
};

class AtomicFile {
 public:
  AtomicFile(FileSystem& fileSystem, std::string target, const SourceFile& source);

  // Writes the pieces, laid end to end: prepare and finish. `now` is the time in the name of a backup, `permissions`
  // the most that anybody may do with the result. Throws SaveError, and this object is then of no more use.
  SavedFile save(std::span<const std::string_view> pieces, Backup backup, std::time_t now, mode_t permissions = 07777);

  // All but to put the new file in place. It goes with this object unless that was done, and so does the lock.
  void prepare(std::span<const std::string_view> pieces, std::time_t now, mode_t permissions);
  SavedFile finish(Backup backup, std::time_t now);
  const std::string& recoveredPath() const { return m_saved.result.recoveredPath; }  // in between

  // Whether a save would write anything. Throws SaveError as that would, but for what only writing can show. Changes
  // nothing.
  bool check(std::span<const std::string_view> pieces, mode_t permissions = 07777) const;

 private:
  void prepareLocked(std::span<const std::string_view> pieces, std::time_t now, mode_t permissions);
  void putInPlace(Backup backup, std::time_t now);
  bool isSource(const TargetFile& target) const;
  bool isWanted(const TargetFile& target, std::span<const std::string_view> pieces) const;
  void refuse(const TargetFile& target) const;
  void refuseOtherContent(const TargetFile& target) const;
  mode_t modeOfNew(const NewFile& file) const;

  FileSystem& m_fileSystem;
  std::string m_target;  // as the caller named it
  const SourceFile& m_source;
  SavedFile m_saved;
  std::string m_accessList;            // of the new file
  std::optional<TargetFile> m_locked;  // from prepare to finish
  std::optional<NewFile> m_file;       // none when the target holds the pieces already
};

}  // namespace cfgstore

#endif  // CFGMIG_LIBCFGSTORE_ATOMICFILE_H
