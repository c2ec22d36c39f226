// FileAttributes.h -- what a file has besides its name and content, to be given to the file that takes its place.

#ifndef CFGMIG_LIBCFGSTORE_FILEATTRIBUTES_H
#define CFGMIG_LIBCFGSTORE_FILEATTRIBUTES_H

#include <sys/types.h>

#include <optional>
#include <string>
#include <vector>

#include "FileSystem.h"

namespace cfgstore {

struct FileOwner {
  uid_t user;
  gid_t group;
};

struct ExtendedAttribute {
  std::string name;
  std::string value;

  // Other kinds of access control lists: they change with the permission bits, and cannot be limited here.
  bool isOfSystem() const { return name.starts_with("system."); }
};

struct FileAttributes {
  std::optional<FileOwner> owner;  // none: that of the process
  mode_t mode = 0600;              // permission bits
  std::string accessList;          // as in AccessList.h; empty for none

  // Without the access control list, without what belongs to the content rather than to the file (signatures and
  // capabilities, which the system itself takes away from a file that is written), and without our own mark.
  std::vector<ExtendedAttribute> extended;

  // Those of an open file. Throws FileError.
  static FileAttributes of(FileSystem& fileSystem, int file);

  // Lets nobody do more than `permissions` allow; lists of other kinds go. Throws FileError.
  void limit(mode_t permissions);
};

// The value of an extended attribute; empty when the file has none of the name, or the file system has none at all.
// Throws FileError.
std::string extendedAttribute(FileSystem& fileSystem, int file, const char* name);

// True for what a file system answers that has no extended attributes.
bool hasNoAttributes(int error);

// The mark of a file that is being written, and that may therefore be removed when its writer is gone.
inline constexpr const char* kUnfinishedMark = "user.cfgmig.unfinished";

}  // namespace cfgstore

#endif  // CFGMIG_LIBCFGSTORE_FILEATTRIBUTES_H
