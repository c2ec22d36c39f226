#include "FileCopy.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

#include "NewFile.h"
#include "WholeFile.h"

namespace cfgstore {

FileCopy::FileCopy(FileSystem& fileSystem, std::string source, std::string destination, mode_t permissions)
    : m_fileSystem(fileSystem),
      m_source(std::move(source)),
      m_destination(std::move(destination)),
      m_placement(fileSystem, m_destination, permissions) {}

std::string FileCopy::readSource() const {
  const int flags = O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
  const OpenFile source(m_fileSystem, m_fileSystem.open(m_source.c_str(), flags, 0));
  if (!source) throw FileError("cannot be opened", errno);
  struct stat from {};
  if (m_fileSystem.fstat(source.get(), &from) != 0) throw FileError("cannot be examined", errno);
  if (!S_ISREG(from.st_mode)) throw FileError("is not a regular file");

  struct stat to {};
  if (m_fileSystem.lstat(m_destination.c_str(), &to) == 0) {
    if (from.st_dev == to.st_dev && from.st_ino == to.st_ino) throw FileError("is the destination itself");
  } else if (errno != ENOENT) {
    throw FileError("the destination cannot be examined", errno);
  }
  if (m_fileSystem.lstat(directoryOf(m_destination).c_str(), &to) != 0) {
    throw FileError("the destination's directory cannot be examined", errno);
  }
  if (S_ISLNK(to.st_mode)) throw FileError("the destination's directory is a symbolic link");
  return readWhole(m_fileSystem, source.get());
}

FileCopy::Found FileCopy::check() const {
  const Found found = m_placement.examine(readSource());
  const std::string directory = directoryOf(m_destination);
  if (found != Found::sameContent && m_fileSystem.access(directory.c_str(), W_OK | X_OK) != 0) {
    throw FileError("the destination's directory cannot be written", errno);
  }
  return found;
}

void FileCopy::run(std::time_t now) { m_placement.place(readSource(), now); }

}  // namespace cfgstore
