#include "NewFile.h"

#include <fcntl.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <memory>

#include "AccessList.h"
#include "FileLock.h"
#include "LockHolder.h"

namespace cfgstore {
namespace {

constexpr std::size_t kBlock = std::size_t{1} << 18;

// Gathers small pieces into large writes.
template <class Write>
void inBlocks(std::span<const std::string_view> pieces, const Write& write) {
  std::string block;
  block.reserve(kBlock);
  for (const std::string_view piece : pieces) {
    if (block.size() + piece.size() > kBlock && !block.empty()) {
      write(block);
      block.clear();
    }
    if (piece.size() >= kBlock) {
      write(piece);
    } else {
      block += piece;
    }
  }
  if (!block.empty()) write(block);
}

bool isStillAt(FileSystem& fileSystem, int file, const std::string& path) {
  struct stat open {};
  struct stat there {};
  if (fileSystem.fstat(file, &open) != 0) throw FileError("cannot be examined", errno);
  if (fileSystem.lstat(path.c_str(), &there) != 0) {
    if (errno == ENOENT) return false;
    throw FileError("cannot be examined", errno);
  }
  return open.st_dev == there.st_dev && open.st_ino == there.st_ino;
}

// Whether an open file is one that was being written by a program that is gone. One that is empty was perhaps not
// marked yet, and is no loss.
bool isUnfinished(FileSystem& fileSystem, int file) {
  struct stat status {};
  if (fileSystem.fstat(file, &status) != 0) throw FileError("cannot be examined", errno);
  if (!S_ISREG(status.st_mode)) return false;
  if (status.st_size == 0 || fileSystem.fgetxattr(file, kUnfinishedMark, nullptr, 0) >= 0) return true;
  if (errno == ENODATA) return false;
  if (hasNoAttributes(errno)) return true;
  throw FileError("cannot be examined", errno);
}

// Opens and locks what is left at `path`. No file if nothing is there.
void takeLeftover(FileSystem& fileSystem, const std::string& path, Access access, OpenFile& leftover) {
  struct stat status {};
  if (fileSystem.lstat(path.c_str(), &status) != 0) {
    if (errno == ENOENT) return;
    throw FileError("cannot be examined (" + path + ")", errno);
  }
  const std::string notOurs = "something else is in the way of a file that is needed; move it away: " + path;
  if (!S_ISREG(status.st_mode)) throw FileError(notOurs);
  leftover.reset(fileSystem.open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, 0));
  if (!leftover) {
    if (errno == ENOENT) return;
    throw FileError("a file of that name is left beside it and cannot be examined (" + path + ")", errno);
  }
  lockFile(fileSystem, leftover.get(), access);
  if (!isStillAt(fileSystem, leftover.get(), path)) throw FileInUse(kBusy);
  if (!isUnfinished(fileSystem, leftover.get())) throw FileError(notOurs);
}

}  // namespace

bool holdsContent(FileSystem& fileSystem, int file, std::span<const std::string_view> pieces) {
  const auto buffer = std::make_unique_for_overwrite<char[]>(kBlock);
  std::string_view read;  // what of the buffer has not been compared yet
  off_t offset = 0;
  // False at the end of the file.
  const auto readMore = [&] {
    ssize_t got = 0;
    do got = fileSystem.pread(file, buffer.get(), kBlock, offset);
    while (got < 0 && errno == EINTR);
    if (got < 0) throw FileError("cannot be read", errno);
    offset += got;
    read = {buffer.get(), static_cast<std::size_t>(got)};
    return got > 0;
  };
  for (std::string_view piece : pieces) {
    while (!piece.empty()) {
      if (read.empty() && !readMore()) return false;
      const std::size_t size = std::min(piece.size(), read.size());
      if (std::memcmp(piece.data(), read.data(), size) != 0) return false;
      piece.remove_prefix(size);
      read.remove_prefix(size);
    }
  }
  return read.empty() && !readMore();
}

void NewFile::clearLeftover(FileSystem& fileSystem, const std::string& path) {
  OpenFile leftover(fileSystem, -1);
  takeLeftover(fileSystem, path, Access::write, leftover);
  if (leftover && fileSystem.unlink(path.c_str()) != 0) throw FileError("cannot be cleared (" + path + ")", errno);
}

void NewFile::checkLeftover(FileSystem& fileSystem, const std::string& path) {
  OpenFile leftover(fileSystem, -1);
  takeLeftover(fileSystem, path, Access::look, leftover);
}

NewFile::NewFile(FileSystem& fileSystem, std::string path)
    : m_fileSystem(fileSystem), m_path(std::move(path)), m_file(fileSystem, -1) {
  try {
    create();
    protect();
  } catch (...) {
    if (m_mine) m_fileSystem.unlink(m_path.c_str());
    throw;
  }
}

NewFile::~NewFile() {
  if (m_mine) m_fileSystem.unlink(m_path.c_str());
}

void NewFile::create() {
  constexpr int kFlags = O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW;
  int file = m_fileSystem.open(m_path.c_str(), kFlags, 0600);
  if (file < 0 && errno == EEXIST) {
    clearLeftover(m_fileSystem, m_path);
    file = m_fileSystem.open(m_path.c_str(), kFlags, 0600);
    if (file < 0 && errno == EEXIST) throw FileInUse(kBusy);
  }
  if (file < 0) throw FileError("no file can be created beside it", errno);
  m_mine = true;
  m_file.reset(file);
  try {
    lockFile(m_fileSystem, file, Access::write);
  } catch (const FileInUse&) {
    m_mine = false;
    throw;
  }
  if (!isStillAt(m_fileSystem, file, m_path)) {
    m_mine = false;
    throw FileInUse(kBusy);
  }
}

// Marks the file, and takes the list away that it may have got from its directory: with the mask that the creation
// gave it, it lets nobody in yet, but a later change of the permission bits would open it to those whom it names.
void NewFile::protect() {
  if (m_fileSystem.fsetxattr(file(), kUnfinishedMark, "", 0) != 0 && !hasNoAttributes(errno)) {
    throw FileError("no file can be created beside it", errno);
  }
  if (m_fileSystem.fremovexattr(file(), kAccessListAttribute) != 0 && errno != ENODATA && !hasNoAttributes(errno)) {
    throw FileError("its access control list cannot be set", errno);
  }
}

void NewFile::make(std::span<const std::string_view> pieces, const FileAttributes& attributes) {
  std::size_t size = 0;
  for (const std::string_view piece : pieces) size += piece.size();
  if (attributes.owner) setOwner(*attributes.owner);
  for (const ExtendedAttribute& attribute : attributes.extended) setAttribute(attribute);
  reserve(size);
  write(pieces);
  setAccess(attributes);
  check(pieces);
}

void NewFile::setOwner(const FileOwner& owner) {
  struct stat status {};
  if (m_fileSystem.fstat(file(), &status) != 0) throw FileError("cannot be examined", errno);
  if (status.st_uid == owner.user && status.st_gid == owner.group) return;
  if (m_fileSystem.fchown(file(), owner.user, owner.group) != 0) throw FileError("its owner cannot be kept", errno);
}

// A label that the system has given the new file by itself need not be set, which may be forbidden.
void NewFile::setAttribute(const ExtendedAttribute& attribute) {
  const char* const name = attribute.name.c_str();
  std::string there(attribute.value.size() + 1, '\0');
  const ssize_t size = m_fileSystem.fgetxattr(file(), name, there.data(), there.size());
  if (size >= 0 && std::string_view(there).substr(0, static_cast<std::size_t>(size)) == attribute.value) return;
  if (m_fileSystem.fsetxattr(file(), name, attribute.value.data(), attribute.value.size()) != 0) {
    throw FileError("its attribute " + attribute.name + " cannot be kept", errno);
  }
}

// A full disk is told now rather than after half of the file. Where no room can be reserved, the writes tell it.
void NewFile::reserve(std::size_t size) {
  if (size == 0) return;
  int rc = 0;
  do rc = m_fileSystem.fallocate(file(), static_cast<off_t>(size));
  while (rc != 0 && errno == EINTR);
  if (rc == 0 || errno == EOPNOTSUPP || errno == ENOSYS || errno == EINVAL || errno == ENODEV) return;
  throw FileError("cannot be written", errno);
}

// The list comes first, for it sets the permission bits that belong to it in the same step; the other way round, the
// mask would be the group's permissions for a moment.
void NewFile::setAccess(const FileAttributes& attributes) {
  if (!attributes.accessList.empty()) setAttribute({kAccessListAttribute, attributes.accessList});
  if (m_fileSystem.fchmod(file(), attributes.mode) != 0) throw FileError("its permissions cannot be kept", errno);
  for (const ExtendedAttribute& attribute : attributes.extended) {
    if (attribute.isOfSystem()) setAttribute(attribute);
  }
}

void NewFile::write(std::span<const std::string_view> pieces) {
  inBlocks(pieces, [this](std::string_view text) { writeAll(text); });
}

void NewFile::writeAll(std::string_view text) {
  while (!text.empty()) {
    const ssize_t done = m_fileSystem.write(file(), text.data(), text.size());
    if (done < 0 && errno == EINTR) continue;
    if (done <= 0) throw FileError("cannot be written", done == 0 ? ENOSPC : errno);
    text.remove_prefix(static_cast<std::size_t>(done));
  }
}

void NewFile::check(std::span<const std::string_view> pieces) {
  int rc = 0;
  do rc = m_fileSystem.fsync(file());
  while (rc != 0 && errno == EINTR);
  if (rc != 0) throw FileError("cannot be brought to the disk", errno);
  if (!holdsContent(m_fileSystem, file(), pieces)) throw FileError("what was written is not what is read back");
}

void NewFile::replace(const std::string& target) {
  if (m_fileSystem.rename(m_path.c_str(), target.c_str()) != 0) throw FileError("cannot be put in place", errno);
  isInPlace();
}

void NewFile::placeNew(const std::string& target) {
  if (m_fileSystem.renameNoReplace(m_path.c_str(), target.c_str()) == 0) return isInPlace();
  if (errno == EEXIST) throw FileError("was created by another program in the meantime");
  if (errno != EINVAL && errno != ENOSYS) throw FileError("cannot be put in place", errno);
  // A file system that cannot do that in one step: a second name, which fails as well if the first is taken.
  if (m_fileSystem.link(m_path.c_str(), target.c_str()) != 0) {
    if (errno == EEXIST) throw FileError("was created by another program in the meantime");
    throw FileError("cannot be put in place", errno);
  }
  if (m_fileSystem.unlink(m_path.c_str()) != 0) {
    const int error = errno;
    m_fileSystem.unlink(target.c_str());
    throw FileError("cannot be put in place", error);
  }
  isInPlace();
}

// The mark goes last: without it, a file that is left behind would be taken for somebody else's. Where it cannot be
// removed it does no harm, since it means nothing under the file's own name and is not carried to the next file.
void NewFile::isInPlace() {
  m_mine = false;
  m_fileSystem.fremovexattr(file(), kUnfinishedMark);
}

}  // namespace cfgstore
