#include "TargetFile.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <vector>

#include "FileError.h"
#include "FileNames.h"
#include "NewFile.h"
#include "OldFile.h"

namespace cfgstore {
namespace {

constexpr const char* kPurposes[] = {"new", "copy"};  // of the files that are NewFile's
constexpr const char* kBeingChanged = "is being changed by another program";
constexpr const char* kNoFile = "no file can be created beside it";

bool isSameFile(const struct stat& left, const struct stat& right) {
  return left.st_dev == right.st_dev && left.st_ino == right.st_ino;
}

bool isSameTime(const timespec& left, const timespec& right) {
  return left.tv_sec == right.tv_sec && left.tv_nsec == right.tv_nsec;
}

bool mayGiveGroup(gid_t group) {
  if (group == ::getegid()) return true;
  const int count = ::getgroups(0, nullptr);
  std::vector<gid_t> groups(static_cast<std::size_t>(std::max(count, 0)));
  if (::getgroups(count, groups.data()) < 0) return false;
  return std::find(groups.begin(), groups.end(), group) != groups.end();
}

}  // namespace

TargetFile::TargetFile(FileSystem& fileSystem, const std::string& name, Access access, Links links)
    : m_fileSystem(fileSystem), m_file(fileSystem, -1) {
  resolve(name, links);
  open(access);
}

void TargetFile::resolve(const std::string& name, Links links) {
  if (links == Links::refuse) {
    m_path = name;
    return;
  }
  if (m_fileSystem.realpath(name.c_str(), m_path) == 0) return;
  if (errno != ENOENT) throw FileError("cannot be found", errno);
  struct stat status {};
  if (m_fileSystem.lstat(name.c_str(), &status) == 0) {
    throw FileError("is a symbolic link to a file that does not exist");
  }
  if (nameOf(name).empty()) throw FileError("is not the name of a file");
  std::string directory;
  if (m_fileSystem.realpath(directoryOf(name).c_str(), directory) != 0) {
    throw FileError("its directory cannot be found", errno);
  }
  m_path = (directory == "/" ? "" : directory) + "/" + nameOf(name);
}

void TargetFile::open(Access access) {
  m_file.reset(m_fileSystem.open(m_path.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, 0));
  if (!m_file) {
    if (errno == ENOENT) return;
    throw FileError("cannot be opened", errno);
  }
  examine();
  if (!S_ISREG(m_status.st_mode)) throw FileError("is not a regular file");
  lockFile(m_fileSystem, m_file.get(), access);
  // Another program may have written between the two steps.
  examine();
  checkUntouched();
}

void TargetFile::examine() {
  if (m_fileSystem.fstat(m_file.get(), &m_status) != 0) throw FileError("cannot be examined", errno);
}

FileAttributes TargetFile::attributes() const { return FileAttributes::of(m_fileSystem, m_file.get()); }

void TargetFile::refuseHardLinks() const {
  if (!exists()) return;
  nlink_t names = m_status.st_nlink;
  if (OldFile(m_fileSystem, m_path).checkLeftover(&m_status)) --names;
  for (const char* purpose : kPurposes) {
    struct stat status {};
    const std::string name = besideName(m_path, purpose);
    if (m_fileSystem.lstat(name.c_str(), &status) == 0 && isSameFile(status, m_status)) --names;
  }
  if (names > 1) {
    throw FileError("has more than one name (hard link), and saving it would give the new content to one of them only");
  }
}

void TargetFile::checkNames() const {
  if (nameOf(backupName(m_path, 0, 1)).size() > NAME_MAX) throw FileError("its name is too long for one of a backup");
  OldFile(m_fileSystem, m_path).checkLeftover(nullptr);
  for (const char* purpose : kPurposes) {
    // The mark is looked at only where the file is not a name of the target's, whose lock is held already.
    struct stat status {};
    const std::string name = besideName(m_path, purpose);
    if (exists() && m_fileSystem.lstat(name.c_str(), &status) == 0 && isSameFile(status, m_status)) continue;
    NewFile::checkLeftover(m_fileSystem, name);
  }
}

void TargetFile::checkDirectory() const {
  if (m_fileSystem.access(directoryOf(m_path).c_str(), W_OK | X_OK) != 0) throw FileError(kNoFile, errno);
}

void TargetFile::foresee(std::size_t size, const FileAttributes& attributes) const {
  const uid_t user = ::geteuid();
  if (user != 0 && attributes.owner) {
    if (attributes.owner->user != user || !mayGiveGroup(attributes.owner->group)) {
      throw FileError("its owner cannot be kept", EPERM);
    }
  }
  struct statvfs disk {};
  if (m_fileSystem.statvfs(directoryOf(m_path).c_str(), &disk) != 0 || disk.f_blocks == 0) return;
  const auto blocks = user == 0 ? disk.f_bfree : disk.f_bavail;
  const auto block = disk.f_frsize != 0 ? disk.f_frsize : disk.f_bsize;
  if (block != 0 && (size + block - 1) / block > blocks) throw FileError("cannot be written", ENOSPC);
}

std::string TargetFile::clearLeftovers(std::time_t now) {
  for (const char* purpose : kPurposes) {
    const std::string name = besideName(m_path, purpose);
    struct stat status {};
    if (exists() && m_fileSystem.lstat(name.c_str(), &status) == 0 && isSameFile(status, m_status)) {
      // Where a file was put in place by a second name, and the first was not removed any more.
      if (m_fileSystem.unlink(name.c_str()) != 0) throw FileError("cannot be cleared (" + name + ")", errno);
    } else {
      NewFile::clearLeftover(m_fileSystem, name);
    }
  }
  std::string backup = OldFile(m_fileSystem, m_path).clearLeftover(now);
  if (exists()) examine();
  return backup;
}

struct stat TargetFile::unchangedStatus() const {
  struct stat now {};
  if (m_fileSystem.lstat(m_path.c_str(), &now) != 0) {
    if (errno == ENOENT) throw FileInUse("was removed by another program");
    throw FileError("cannot be examined", errno);
  }
  const bool unchanged = isSameFile(now, m_status) && now.st_size == m_status.st_size &&
                         isSameTime(now.st_mtim, m_status.st_mtim) && now.st_mode == m_status.st_mode &&
                         now.st_uid == m_status.st_uid && now.st_gid == m_status.st_gid;
  if (!unchanged) throw FileInUse(kBeingChanged);
  return now;
}

void TargetFile::checkUnchanged() const { unchangedStatus(); }

void TargetFile::checkUntouched() const {
  if (!isSameTime(unchangedStatus().st_ctim, m_status.st_ctim)) throw FileInUse(kBeingChanged);
}

}  // namespace cfgstore
