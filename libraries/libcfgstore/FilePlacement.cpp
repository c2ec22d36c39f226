#include "FilePlacement.h"

#include <fcntl.h>

#include <array>
#include <cerrno>
#include <span>
#include <utility>

#include "NewFile.h"
#include "Replacement.h"
#include "TargetFile.h"

namespace cfgstore {
namespace {

bool isSame(const struct stat& left, const struct stat& right) {
  return left.st_dev == right.st_dev && left.st_ino == right.st_ino;
}

bool isFileName(const std::string& name) { return !name.empty() && name != "." && name != ".."; }

}  // namespace

FilePlacement::FilePlacement(FileSystem& fileSystem, std::string destination, mode_t mode)
    : m_fileSystem(fileSystem), m_destination(std::move(destination)), m_mode(mode) {}

FilePlacement::Found FilePlacement::examine(std::string_view content) const {
  const Found found = find(content);
  try {
    TargetFile(m_fileSystem, m_destination, Access::look, TargetFile::Links::refuse).checkNames();
  } catch (const FileInUse&) {
    return found;  // whoever is at work there now may be done when the file is placed
  }
  return found;
}

FilePlacement::Found FilePlacement::find(std::string_view content) const {
  if (!isFileName(nameOf(m_destination))) throw FileError("the destination is not the name of a file");
  struct stat there {};
  if (m_fileSystem.lstat(m_destination.c_str(), &there) != 0) {
    if (errno != ENOENT) throw FileError("the destination cannot be examined", errno);
    const int flags = O_RDONLY | O_DIRECTORY | O_CLOEXEC;
    const OpenFile directory(m_fileSystem, m_fileSystem.open(directoryOf(m_destination).c_str(), flags, 0));
    if (!directory) throw FileError("the destination's directory cannot be opened", errno);
    return Found::nothing;
  }
  if (S_ISLNK(there.st_mode)) throw FileError("the destination is a symbolic link");
  if (!S_ISREG(there.st_mode)) throw FileError("the destination is not a regular file");
  if (there.st_size != static_cast<off_t>(content.size())) return Found::otherContent;

  const int flags = O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK;
  const OpenFile file(m_fileSystem, m_fileSystem.open(m_destination.c_str(), flags, 0));
  if (!file) throw FileError("the destination cannot be opened", errno);
  const std::array<std::string_view, 1> pieces{content};
  return holdsContent(m_fileSystem, file.get(), pieces) ? Found::sameContent : Found::otherContent;
}

void FilePlacement::place(std::string_view content, std::time_t now) {
  find(content);
  TargetFile target(m_fileSystem, m_destination, Access::write, TargetFile::Links::refuse);
  target.clearLeftovers(now);
  const std::array<std::string_view, 1> pieces{content};
  if (target.exists() && holdsContent(m_fileSystem, target.file(), pieces)) return;

  NewFile file(m_fileSystem, besideName(m_destination, "new"));
  FileAttributes attributes;
  attributes.mode = m_mode;
  file.make(pieces, attributes);
  if (m_fileSystem.fstat(file.file(), &m_placed) != 0) throw FileError("cannot be examined", errno);
  if (target.exists()) {
    target.checkUntouched();
    const auto lastCheck = [&] { target.checkUnchanged(); };
    m_backupPath = replaceFile(m_fileSystem, file, m_destination, Backup::keep, now, lastCheck);
    m_done = Done::replaced;
  } else {
    createFile(m_fileSystem, file, m_destination);
    m_done = Done::created;
  }
}

void FilePlacement::undo() {
  if (m_done == Done::nothing) return;
  const std::string kept = m_backupPath.empty() ? "" : "; the old file is " + m_backupPath;
  struct stat there {};
  const bool isThere = m_fileSystem.lstat(m_destination.c_str(), &there) == 0;
  if (!isThere && errno != ENOENT) throw FileNotRestored("cannot be taken back" + kept, errno);
  if (isThere && !isSame(there, m_placed)) {
    throw FileNotRestored("cannot be taken back: another program has put a file there" + kept);
  }
  if (m_done == Done::replaced) {
    if (m_fileSystem.rename(m_backupPath.c_str(), m_destination.c_str()) != 0) {
      throw FileNotRestored("the old file cannot be put back; it is " + m_backupPath, errno);
    }
  } else if (isThere && m_fileSystem.unlink(m_destination.c_str()) != 0) {
    throw FileNotRestored("cannot be taken back", errno);
  }
  m_done = Done::nothing;
  m_backupPath.clear();
  try {
    syncDirectoryOf(m_fileSystem, m_destination);
  } catch (const FileError&) {
    return;  // what is undone in the directory is undone, on the disk sooner or later
  }
}

}  // namespace cfgstore
