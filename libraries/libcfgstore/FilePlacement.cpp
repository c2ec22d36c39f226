#include "FilePlacement.h"

#include <fcntl.h>

#include <array>
#include <cerrno>
#include <span>
#include <utility>

#include "NewFile.h"
#include "WholeFile.h"

namespace cfgstore {
namespace {

constexpr int kMostBackupsPerSecond = 1000;
constexpr mode_t kPermissions = 07777;

// What link answers where a file system or the system's settings do not allow a second name.
bool hasNoLinks(int error) {
  return error == EPERM || error == EOPNOTSUPP || error == ENOSYS || error == EINVAL || error == EXDEV ||
         error == EMLINK;
}

bool isSame(const struct stat& left, const struct stat& right) {
  return left.st_dev == right.st_dev && left.st_ino == right.st_ino;
}

bool isFileName(const std::string& name) { return !name.empty() && name != "." && name != ".."; }

}  // namespace

FilePlacement::FilePlacement(FileSystem& fileSystem, std::string destination, mode_t mode)
    : m_fileSystem(fileSystem), m_destination(std::move(destination)), m_mode(mode) {}

FilePlacement::Found FilePlacement::examine(std::string_view content) const {
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
  if (!file) {
    if (errno == EACCES) return Found::otherContent;  // it can be kept without being read
    throw FileError("the destination cannot be opened", errno);
  }
  const std::array<std::string_view, 1> pieces{content};
  return holdsContent(m_fileSystem, file.get(), pieces) ? Found::sameContent : Found::otherContent;
}

void FilePlacement::place(std::string_view content, std::time_t now) {
  const Found found = examine(content);
  if (found == Found::sameContent) return;

  const std::array<std::string_view, 1> pieces{content};
  NewFile file(m_fileSystem, besideName(m_destination, "new"));
  file.write(pieces);
  file.setMode(m_mode);
  file.check(pieces);
  if (m_fileSystem.fstat(file.file(), &m_placed) != 0) throw FileError("cannot be examined", errno);
  if (found == Found::nothing) {
    file.placeNew(m_destination);
    m_done = Done::created;
  } else {
    m_backupPath = keepOld(now);
    try {
      file.replace(m_destination);
    } catch (...) {
      m_fileSystem.unlink(m_backupPath.c_str());
      m_backupPath.clear();
      throw;
    }
    m_done = Done::replaced;
  }

  if (syncDirectory() != 0) {
    const FileError error("its directory cannot be brought to the disk", errno);
    undo();
    throw error;
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
  syncDirectory();  // what is undone in the directory is undone, on the disk sooner or later
}

// Gives the old file a second name, never one that exists, and returns it.
std::string FilePlacement::keepOld(std::time_t now) const {
  for (int number = 1; number <= kMostBackupsPerSecond; ++number) {
    std::string name = backupName(now, number);
    if (m_fileSystem.link(m_destination.c_str(), name.c_str()) == 0) return name;
    if (errno == EEXIST) continue;
    if (!hasNoLinks(errno)) throw FileError("the old file cannot be kept as " + name, errno);
    struct stat taken {};
    if (m_fileSystem.lstat(name.c_str(), &taken) == 0) continue;
    copyOld(name);
    return name;
  }
  throw FileError("there are too many backups of this second");
}

// The same by copying, where files cannot have two names.
void FilePlacement::copyOld(const std::string& backup) const {
  const int flags = O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK;
  const OpenFile old(m_fileSystem, m_fileSystem.open(m_destination.c_str(), flags, 0));
  struct stat status {};
  if (!old || m_fileSystem.fstat(old.get(), &status) != 0) throw FileError("the old file cannot be kept", errno);
  const std::string content = readWhole(m_fileSystem, old.get());
  const std::array<std::string_view, 1> pieces{content};
  NewFile copy(m_fileSystem, besideName(m_destination, "copy"));
  copy.setOwner(status.st_uid, status.st_gid);
  copy.write(pieces);
  copy.setMode(status.st_mode & kPermissions);
  copy.check(pieces);
  copy.placeNew(backup);
}

std::string FilePlacement::backupName(std::time_t now, int number) const {
  std::tm local{};
  ::localtime_r(&now, &local);
  std::array<char, 32> text{};
  const std::size_t length = std::strftime(text.data(), text.size(), "%Y%m%d-%H%M%S", &local);
  const std::string suffix = number == 1 ? "" : "-" + std::to_string(number);
  return m_destination + "." + std::string(text.data(), length) + suffix + ".bak";
}

// 0, or -1 and errno.
int FilePlacement::syncDirectory() const {
  const int flags = O_RDONLY | O_DIRECTORY | O_CLOEXEC;
  const OpenFile directory(m_fileSystem, m_fileSystem.open(directoryOf(m_destination).c_str(), flags, 0));
  if (!directory) return -1;
  int rc = 0;
  do rc = m_fileSystem.fsync(directory.get());
  while (rc != 0 && errno == EINTR);
  return rc;
}

}  // namespace cfgstore
