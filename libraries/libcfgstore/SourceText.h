// SourceText.h -- the bytes of a file, read once, and what tells whether the file is still the one that was read.

#ifndef CFGMIG_LIBCFGSTORE_SOURCETEXT_H
#define CFGMIG_LIBCFGSTORE_SOURCETEXT_H

#include <sys/stat.h>

#include <cstddef>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "ConfigStore.h"

namespace cfgstore {

// What changes when another program writes or replaces a file.
struct FileStamp {
  dev_t device = 0;
  ino_t inode = 0;
  off_t size = 0;
  timespec modified{};
  timespec changed{};  // of the file or of what is known about it; nobody can set it back
  mode_t mode = 0600;  // the permission bits of a file that nobody may use who may not use this one, access control
                       // list included; neither they nor the group are part of the comparison
  gid_t group = 0;

  static FileStamp of(const struct stat& status, std::string_view accessList = {});
  bool isSameFile(const FileStamp& other) const { return device == other.device && inode == other.inode; }
  bool isUnchanged(const FileStamp& other) const;
  bool isUntouched(const FileStamp& other) const;  // and its names and permissions are unchanged too
};

// Read into memory rather than mapped: a file that another program truncates while it is mapped would end this one.
class SourceText {
 public:
  // Reads the file at `path`: a regular file, or a pipe up to its end. On failure returns nothing and says why in
  // `why`, as a phrase to follow the path. A file larger than limits().fileSize is refused before it is read; a pipe is
  // read up to the limit.
  static std::optional<SourceText> read(const std::string& path, Problem& why);
  static std::optional<SourceText> read(const std::string& path, std::string& why);

  // Nothing yet.
  SourceText() = default;

  // A text that no file holds, or one in pieces that are laid end to end.
  explicit SourceText(std::string_view text);
  explicit SourceText(std::span<const std::string_view> pieces);

  std::string_view text() const { return {m_bytes.get(), m_size}; }
  const FileStamp& stamp() const { return m_stamp; }
  // Where the file was when it was read, symbolic links resolved; empty if it was no file.
  const std::string& resolvedPath() const { return m_resolvedPath; }

 private:
  std::unique_ptr<char[]> m_bytes;
  std::size_t m_size = 0;
  FileStamp m_stamp;
  std::string m_resolvedPath;
};

}  // namespace cfgstore

#endif  // CFGMIG_LIBCFGSTORE_SOURCETEXT_H
