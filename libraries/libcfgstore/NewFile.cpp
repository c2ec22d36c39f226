#include "NewFile.h"

#include <fcntl.h>
#include <sys/file.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <memory>

namespace cfgstore {
namespace {

constexpr std::size_t kBlock = std::size_t{1} << 18;
constexpr std::size_t kLongestNamePart = 200;  // of the 255 bytes that a name may have
constexpr const char* kBusy = "another program is writing this file";

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

}  // namespace

FileError::FileError(const std::string& step, int error) : std::runtime_error(step + ": " + std::strerror(error)) {}

std::string directoryOf(const std::string& path) {
  const auto slash = path.rfind('/');
  if (slash == std::string::npos) return ".";
  return slash == 0 ? "/" : path.substr(0, slash);
}

std::string nameOf(const std::string& path) {
  const auto slash = path.rfind('/');
  return slash == std::string::npos ? path : path.substr(slash + 1);
}

std::string besideName(const std::string& path, std::string_view purpose) {
  return directoryOf(path) + "/." + nameOf(path).substr(0, kLongestNamePart) + ".cfgmig-" + std::string(purpose);
}

bool holdsContent(FileSystem& fileSystem, int file, std::span<const std::string_view> pieces) {
  const auto buffer = std::make_unique_for_overwrite<char[]>(kBlock);
  off_t offset = 0;
  // Reads up to `size` bytes, fewer only at the end of the file.
  const auto readBlock = [&](std::size_t size) {
    std::size_t done = 0;
    while (done < size) {
      const ssize_t got = fileSystem.pread(file, buffer.get() + done, size - done, offset);
      if (got < 0 && errno == EINTR) continue;
      if (got < 0) throw FileError("cannot be read", errno);
      if (got == 0) break;
      done += static_cast<std::size_t>(got);
      offset += got;
    }
    return done;
  };
  bool same = true;
  inBlocks(pieces, [&](std::string_view text) {
    while (same && !text.empty()) {
      const std::size_t size = std::min(text.size(), kBlock);
      same = readBlock(size) == size && std::memcmp(buffer.get(), text.data(), size) == 0;
      text.remove_prefix(size);
    }
  });
  return same && readBlock(1) == 0;
}

NewFile::NewFile(FileSystem& fileSystem, std::string path)
    : m_fileSystem(fileSystem), m_path(std::move(path)), m_file(fileSystem, -1) {
  try {
    create();
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
    removeLeftover();
    file = m_fileSystem.open(m_path.c_str(), kFlags, 0600);
    if (file < 0 && errno == EEXIST) throw FileInUse(kBusy);
  }
  if (file < 0) throw FileError("no file can be created beside it", errno);
  m_mine = true;
  m_file.reset(file);
  if (m_fileSystem.flock(file, LOCK_EX | LOCK_NB) != 0) {
    if (errno != EWOULDBLOCK) throw FileError("cannot be locked", errno);
    m_mine = false;
    throw FileInUse(kBusy);
  }
  if (!isStillAt(file)) {
    m_mine = false;
    throw FileInUse(kBusy);
  }
}

void NewFile::removeLeftover() {
  const int flags = O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK;
  const OpenFile leftover(m_fileSystem, m_fileSystem.open(m_path.c_str(), flags, 0));
  if (!leftover) {
    if (errno == ENOENT) return;
    throw FileError("a file of that name is left beside it and cannot be examined (" + m_path + ")", errno);
  }
  if (m_fileSystem.flock(leftover.get(), LOCK_EX | LOCK_NB) != 0) {
    if (errno == EWOULDBLOCK) throw FileInUse(kBusy);
    throw FileError("cannot be locked", errno);
  }
  if (!isStillAt(leftover.get())) throw FileInUse(kBusy);
  if (m_fileSystem.unlink(m_path.c_str()) != 0) throw FileError("cannot be cleared (" + m_path + ")", errno);
}

bool NewFile::isStillAt(int file) const {
  struct stat open {};
  struct stat there {};
  if (m_fileSystem.fstat(file, &open) != 0) throw FileError("cannot be examined", errno);
  if (m_fileSystem.lstat(m_path.c_str(), &there) != 0) {
    if (errno == ENOENT) return false;
    throw FileError("cannot be examined", errno);
  }
  return open.st_dev == there.st_dev && open.st_ino == there.st_ino;
}

void NewFile::setOwner(uid_t owner, gid_t group) {
  struct stat status {};
  if (m_fileSystem.fstat(file(), &status) != 0) throw FileError("cannot be examined", errno);
  if (status.st_uid == owner && status.st_gid == group) return;
  if (m_fileSystem.fchown(file(), owner, group) != 0) throw FileError("its owner cannot be kept", errno);
}

void NewFile::setMode(mode_t mode) {
  if (m_fileSystem.fchmod(file(), mode) != 0) throw FileError("its permissions cannot be kept", errno);
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
  m_mine = false;
}

void NewFile::placeNew(const std::string& target) {
  if (m_fileSystem.renameNoReplace(m_path.c_str(), target.c_str()) == 0) {
    m_mine = false;
    return;
  }
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
  m_mine = false;
}

}  // namespace cfgstore
