#include "WholeFile.h"

#include <array>
#include <cerrno>

#include "FileError.h"

namespace cfgstore {

std::string readWhole(FileSystem& fileSystem, int file) {
  std::string content;
  // NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): pread sets what is read of it
  std::array<char, std::size_t{1} << 16> block;
  while (true) {
    const ssize_t got = fileSystem.pread(file, block.data(), block.size(), static_cast<off_t>(content.size()));
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) throw FileError("cannot be read", errno);
    if (got == 0) return content;
    content.append(block.data(), static_cast<std::size_t>(got));
  }
}

}  // namespace cfgstore
