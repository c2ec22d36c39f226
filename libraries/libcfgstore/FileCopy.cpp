#include "FileCopy.h"

#include <fcntl.h>

#include <array>
#include <cerrno>
#include <string_view>

#include "NewFile.h"

namespace cfgstore {
namespace {

std::string readWhole(FileSystem& fileSystem, int file) {
  std::string content;
  std::array<char, std::size_t{1} << 16> block;
  while (true) {
    const ssize_t got = fileSystem.read(file, block.data(), block.size());
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) throw FileError("cannot be read", errno);
    if (got == 0) return content;
    content.append(block.data(), static_cast<std::size_t>(got));
  }
}

}  // namespace

void FileCopy::run() {
  const OpenFile source(m_fileSystem,
                        m_fileSystem.open(m_source.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY, 0));
  if (!source) throw FileError("cannot be opened", errno);
  struct stat from {};
  if (m_fileSystem.fstat(source.get(), &from) != 0) throw FileError("cannot be examined", errno);
  if (!S_ISREG(from.st_mode)) throw FileError("is not a regular file");

  struct stat to {};
  if (m_fileSystem.lstat(m_destination.c_str(), &to) == 0) {
    if (!S_ISREG(to.st_mode)) throw FileError("the destination is not a regular file");
    if (from.st_dev == to.st_dev && from.st_ino == to.st_ino) throw FileError("is the destination itself");
  } else if (errno != ENOENT) {
    throw FileError("the destination cannot be examined", errno);
  }
  if (nameOf(m_destination).empty()) throw FileError("the destination is not the name of a file");

  const std::string directory = directoryOf(m_destination);
  const OpenFile open(m_fileSystem, m_fileSystem.open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC, 0));
  if (!open) throw FileError("the destination's directory cannot be opened", errno);

  const std::string content = readWhole(m_fileSystem, source.get());
  const std::array<std::string_view, 1> pieces{content};
  NewFile copy(m_fileSystem, besideName(m_destination, "new"));
  copy.write(pieces);
  copy.setMode(m_permissions);
  copy.check(pieces);
  copy.replace(m_destination);
  // The copy is whole and in its place; whether the directory has reached the disk does not undo that.
  m_fileSystem.fsync(open.get());
}

}  // namespace cfgstore
