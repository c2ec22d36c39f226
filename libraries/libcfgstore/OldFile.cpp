#include "OldFile.h"

#include <fcntl.h>

#include <array>
#include <cerrno>
#include <string_view>
#include <utility>

#include "NewFile.h"
#include "WholeFile.h"

namespace cfgstore {
namespace {

constexpr int kMostBackupsPerSecond = 1000;

// What link answers where a file system or the system's settings do not allow a second name.
bool hasNoLinks(int error) {
  return error == EPERM || error == EOPNOTSUPP || error == ENOSYS || error == EINVAL || error == EXDEV ||
         error == EMLINK;
}

}  // namespace

OldFile::OldFile(FileSystem& fileSystem, std::string path)
    : m_fileSystem(fileSystem), m_path(std::move(path)), m_secondName(besideName(m_path, "old")) {}

bool OldFile::checkLeftover(const struct stat* inPlace) const {
  struct stat status {};
  if (m_fileSystem.lstat(m_secondName.c_str(), &status) != 0) {
    if (errno == ENOENT) return false;
    throw FileError("cannot be examined (" + m_secondName + ")", errno);
  }
  if (!S_ISREG(status.st_mode)) {
    throw FileError("something else is in the way of a file that is needed; move it away: " + m_secondName);
  }
  return inPlace != nullptr && status.st_dev == inPlace->st_dev && status.st_ino == inPlace->st_ino;
}

std::string OldFile::clearLeftover(std::time_t now) {
  struct stat status {};
  const bool exists = m_fileSystem.lstat(m_path.c_str(), &status) == 0;
  if (!exists && errno != ENOENT) throw FileError("cannot be examined", errno);
  if (!checkLeftover(exists ? &status : nullptr)) {
    struct stat left {};
    if (m_fileSystem.lstat(m_secondName.c_str(), &left) == 0) return renameToBackup(now);
    if (errno == ENOENT) return "";
    throw FileError("cannot be examined (" + m_secondName + ")", errno);
  }
  if (m_fileSystem.unlink(m_secondName.c_str()) != 0) {
    throw FileError("cannot be cleared (" + m_secondName + ")", errno);
  }
  return "";
}

bool OldFile::setAside() {
  if (m_fileSystem.link(m_path.c_str(), m_secondName.c_str()) == 0) {
    m_isAside = true;
  } else if (!hasNoLinks(errno)) {
    throw FileError("the old file cannot be set aside", errno);
  }
  return m_isAside;
}

void OldFile::copyAside() {
  const int flags = O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK;
  const OpenFile old(m_fileSystem, m_fileSystem.open(m_path.c_str(), flags, 0));
  if (!old) throw FileError("the old file cannot be kept", errno);
  const std::string content = readWhole(m_fileSystem, old.get());
  const std::array<std::string_view, 1> pieces{content};
  NewFile copy(m_fileSystem, besideName(m_path, "copy"));
  copy.make(pieces, FileAttributes::of(m_fileSystem, old.get()));
  copy.placeNew(m_secondName);
  m_isAside = true;
}

const std::string& OldFile::keepBackup(std::time_t now) {
  m_backupPath = renameToBackup(now);
  return m_backupPath;
}

std::string OldFile::renameToBackup(std::time_t now) const {
  for (int number = 1; number <= kMostBackupsPerSecond; ++number) {
    std::string name = backupName(m_path, now, number);
    if (m_fileSystem.renameNoReplace(m_secondName.c_str(), name.c_str()) == 0) return name;
    if (errno == EINVAL || errno == ENOSYS) {  // not in one step on this file system
      if (m_fileSystem.link(m_secondName.c_str(), name.c_str()) == 0) {
        if (m_fileSystem.unlink(m_secondName.c_str()) == 0) return name;
        const int error = errno;
        m_fileSystem.unlink(name.c_str());
        throw FileError("the backup cannot be named (" + name + ")", error);
      }
    }
    if (errno != EEXIST) throw FileError("the backup cannot be named (" + name + ")", errno);
  }
  throw FileError("there are too many backups of this second");
}

void OldFile::drop() {
  if (m_fileSystem.unlink(m_secondName.c_str()) != 0) {
    throw FileError("the old file cannot be removed (" + m_secondName + ")", errno);
  }
  m_isAside = false;
}

void OldFile::putBack() {
  const std::string& from = m_backupPath.empty() ? m_secondName : m_backupPath;
  if (m_fileSystem.rename(from.c_str(), m_path.c_str()) != 0) {
    throw FileNotRestored("the old file cannot be put back; it is " + from, errno);
  }
  m_backupPath.clear();
  m_isAside = false;
}

}  // namespace cfgstore
