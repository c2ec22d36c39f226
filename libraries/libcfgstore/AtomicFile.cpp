#include "AtomicFile.h"

#include <fcntl.h>
#include <sys/file.h>

#include <array>
#include <cerrno>

namespace cfgstore {
namespace {

constexpr int kMostBackupsPerSecond = 1000;
constexpr mode_t kPermissions = 07777;

std::size_t sizeOf(std::span<const std::string_view> pieces) {
  std::size_t size = 0;
  for (const std::string_view piece : pieces) size += piece.size();
  return size;
}

// What link answers where a file system or the system's settings do not allow a second name.
bool hasNoLinks(int error) {
  return error == EPERM || error == EOPNOTSUPP || error == ENOSYS || error == EINVAL || error == EXDEV ||
         error == EMLINK;
}

}  // namespace

AtomicFile::AtomicFile(FileSystem& fileSystem, std::string target, const SourceFile& source)
    : m_fileSystem(fileSystem),
      m_target(std::move(target)),
      m_source(source),
      m_file(fileSystem, -1),
      m_directory(fileSystem, -1) {}

SavedFile AtomicFile::save(std::span<const std::string_view> pieces, Backup backup, std::time_t now,
                           mode_t permissions) {
  try {
    return saveLocked(pieces, backup, now, permissions);
  } catch (const FileInUse& error) {
    throw SaveRefused(m_target + ": " + error.what());
  } catch (const FileNotRestored& error) {
    throw RestoreError(m_target + ": " + error.what());
  } catch (const FileError& error) {
    throw SaveError(m_target + ": " + error.what());
  }
}

SavedFile AtomicFile::saveLocked(std::span<const std::string_view> pieces, Backup backup, std::time_t now,
                                 mode_t permissions) {
  resolve();
  openTarget();
  SavedFile saved;
  saved.isSource = isSource();
  if (m_file) {
    const bool sameSize = static_cast<std::size_t>(m_status.st_size) == sizeOf(pieces);
    if (sameSize && holdsContent(m_fileSystem, m_file.get(), pieces)) {
      saved.stamp = FileStamp::of(m_status);
      return saved;
    }
  }
  if (saved.isSource) checkUnchanged();
  m_directory.reset(m_fileSystem.open(directoryOf(m_path).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC, 0));
  if (!m_directory) throw FileError("its directory cannot be opened", errno);
  if (m_file) clearLeftovers(now);

  NewFile file(m_fileSystem, besideName(m_path, "new"));
  if (m_file) file.setOwner(m_status.st_uid, m_status.st_gid);
  file.write(pieces);
  file.setMode(modeFor(file) & permissions);
  file.check(pieces);
  commit(file, backup, now);

  struct stat status {};
  if (m_fileSystem.fstat(file.file(), &status) == 0) saved.stamp = FileStamp::of(status);
  saved.result = {true, m_backupPath};
  return saved;
}

// That of the file that is replaced. A new file gets the mode of the file that was read, without access for a group
// that is not the same.
mode_t AtomicFile::modeFor(const NewFile& file) const {
  if (m_file) return m_status.st_mode & kPermissions;
  struct stat status {};
  const bool sameGroup = m_fileSystem.fstat(file.file(), &status) == 0 && status.st_gid == m_source.stamp.group;
  return m_source.stamp.mode & (sameGroup ? mode_t{0777} : mode_t{0707});
}

// Finds the file itself behind symbolic links.
void AtomicFile::resolve() {
  if (m_fileSystem.realpath(m_target.c_str(), m_path) != 0) {
    if (errno != ENOENT) throw FileError("cannot be found", errno);
    struct stat status {};
    if (m_fileSystem.lstat(m_target.c_str(), &status) == 0) {
      throw FileError("is a symbolic link to a file that does not exist");
    }
    std::string directory;
    if (nameOf(m_target).empty()) throw FileError("is not the name of a file");
    if (m_fileSystem.realpath(directoryOf(m_target).c_str(), directory) != 0) {
      throw FileError("its directory cannot be found", errno);
    }
    m_path = (directory == "/" ? "" : directory) + "/" + nameOf(m_target);
  }
  m_aside = besideName(m_path, "old");
}

void AtomicFile::openTarget() {
  m_file.reset(m_fileSystem.open(m_path.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, 0));
  if (!m_file) {
    if (errno == ENOENT) return;
    throw FileError("cannot be opened", errno);
  }
  if (m_fileSystem.fstat(m_file.get(), &m_status) != 0) throw FileError("cannot be examined", errno);
  if (!S_ISREG(m_status.st_mode)) throw FileError("is not a regular file");
  if (m_fileSystem.flock(m_file.get(), LOCK_EX | LOCK_NB) != 0) {
    if (errno == EWOULDBLOCK) throw FileInUse("another program is writing this file");
    throw FileError("cannot be locked", errno);
  }
  // Another program may have written between the two steps.
  if (m_fileSystem.fstat(m_file.get(), &m_status) != 0) throw FileError("cannot be examined", errno);
  checkStillThere();
}

void AtomicFile::checkStillThere() const {
  struct stat status {};
  if (m_fileSystem.lstat(m_path.c_str(), &status) != 0) throw FileError("cannot be examined", errno);
  if (!FileStamp::of(status).isUnchanged(FileStamp::of(m_status))) {
    throw FileInUse("is being changed by another program");
  }
}

bool AtomicFile::isSource() const {
  if (m_target == m_source.path || m_path == m_source.resolved) return true;
  return m_file && FileStamp::of(m_status).isSameFile(m_source.stamp);
}

void AtomicFile::checkUnchanged() const {
  if (!m_file) throw FileInUse("was removed by another program since it was read");
  if (!FileStamp::of(m_status).isUnchanged(m_source.stamp)) {
    throw FileInUse("was changed by another program since it was read");
  }
}

// What a program that was killed in the middle of a save has left: either a second name of the file that is still in
// place, or the file that was replaced and had not become a backup yet.
void AtomicFile::clearLeftovers(std::time_t now) {
  struct stat aside {};
  if (m_fileSystem.lstat(m_aside.c_str(), &aside) == 0) {
    if (aside.st_dev == m_status.st_dev && aside.st_ino == m_status.st_ino) {
      if (m_fileSystem.unlink(m_aside.c_str()) != 0) throw FileError("cannot be cleared (" + m_aside + ")", errno);
      --m_status.st_nlink;
    } else {
      keepBackup(now);
    }
  } else if (errno != ENOENT) {
    throw FileError("cannot be examined (" + m_aside + ")", errno);
  }
  if (m_status.st_nlink > 1) {
    throw FileError("has more than one name (hard link), and saving it would give the new content to one of them only");
  }
}

// Gives the old file a second name, from which it can be put back.
void AtomicFile::setAside() {
  if (m_fileSystem.link(m_path.c_str(), m_aside.c_str()) == 0) {
    m_isAside = true;
  } else if (!hasNoLinks(errno)) {
    throw FileError("the old file cannot be set aside", errno);
  }
}

// The same by copying, where files cannot have two names.
void AtomicFile::copyAside() {
  const auto size = static_cast<std::size_t>(m_status.st_size);
  const auto bytes = std::make_unique_for_overwrite<char[]>(size);
  std::size_t done = 0;
  while (done < size) {
    const ssize_t got = m_fileSystem.pread(m_file.get(), bytes.get() + done, size - done, static_cast<off_t>(done));
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) throw FileError("cannot be read", errno);
    if (got == 0) throw FileInUse("is being changed by another program");
    done += static_cast<std::size_t>(got);
  }
  const std::array<std::string_view, 1> pieces{std::string_view(bytes.get(), size)};
  NewFile copy(m_fileSystem, besideName(m_path, "copy"));
  copy.setOwner(m_status.st_uid, m_status.st_gid);
  copy.write(pieces);
  copy.setMode(m_status.st_mode & kPermissions);
  copy.check(pieces);
  copy.placeNew(m_aside);
  m_isAside = true;
}

void AtomicFile::commit(NewFile& file, Backup backup, std::time_t now) {
  if (!m_file) {
    file.placeNew(m_path);
    try {
      syncDirectory();
    } catch (...) {
      m_fileSystem.unlink(m_path.c_str());
      throw;
    }
    return;
  }
  checkStillThere();
  try {
    setAside();
    if (!m_isAside && backup == Backup::keep) copyAside();
    file.replace(m_path);
  } catch (...) {
    if (m_isAside) m_fileSystem.unlink(m_aside.c_str());
    throw;
  }
  try {
    if (m_isAside && backup == Backup::keep) {
      m_backupPath = keepBackup(now);
    }
    syncDirectory();
    if (m_isAside && backup == Backup::none && m_fileSystem.unlink(m_aside.c_str()) != 0) {
      throw FileError("the old file cannot be removed (" + m_aside + ")", errno);
    }
  } catch (const FileError& error) {
    if (!m_isAside) throw FileNotRestored(std::string(error.what()) + "; the new file is in place all the same");
    putBack(m_backupPath.empty() ? m_aside : m_backupPath);
    throw;
  }
}

// Gives the file that was set aside the name of a backup; never one that exists. Returns the name.
std::string AtomicFile::keepBackup(std::time_t now) {
  for (int number = 1; number <= kMostBackupsPerSecond; ++number) {
    const std::string name = backupName(now, number);
    if (m_fileSystem.renameNoReplace(m_aside.c_str(), name.c_str()) == 0) return name;
    if (errno == EINVAL || errno == ENOSYS) {  // not in one step on this file system
      if (m_fileSystem.link(m_aside.c_str(), name.c_str()) == 0) {
        if (m_fileSystem.unlink(m_aside.c_str()) == 0) return name;
        const int error = errno;
        m_fileSystem.unlink(name.c_str());
        throw FileError("the backup cannot be named (" + name + ")", error);
      }
    }
    if (errno != EEXIST) throw FileError("the backup cannot be named (" + name + ")", errno);
  }
  throw FileError("there are too many backups of this second");
}

std::string AtomicFile::backupName(std::time_t time, int number) const {
  std::tm local{};
  ::localtime_r(&time, &local);
  std::array<char, 32> text{};
  const std::size_t length = std::strftime(text.data(), text.size(), "%Y%m%d-%H%M%S", &local);
  std::string name = m_path + ".";
  name.append(text.data(), length);
  if (number > 1) name.append("-").append(std::to_string(number));
  return name + ".bak";
}

void AtomicFile::putBack(const std::string& from) {
  if (m_fileSystem.rename(from.c_str(), m_path.c_str()) != 0) {
    throw FileNotRestored("the old file cannot be put back; it is " + from, errno);
  }
  m_backupPath.clear();
}

void AtomicFile::syncDirectory() const {
  int rc = 0;
  do rc = m_fileSystem.fsync(m_directory.get());
  while (rc != 0 && errno == EINTR);
  if (rc != 0) throw FileError("its directory cannot be brought to the disk", errno);
}

}  // namespace cfgstore
