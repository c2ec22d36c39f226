#include "Fuzz.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

namespace fuzz {

void breakOff(const char* promise, std::string_view details) {
  std::fprintf(stderr, "broken promise: %s\n", promise);
  std::fwrite(details.data(), 1, details.size(), stderr);
  std::fputc('\n', stderr);
  std::abort();
}

MemoryFile::MemoryFile(std::string_view content) : m_descriptor(::memfd_create("fuzz", MFD_CLOEXEC)) {
  require(m_descriptor >= 0, "a file in memory can be made");
  while (!content.empty()) {
    const ssize_t written = ::write(m_descriptor, content.data(), content.size());
    require(written > 0, "a file in memory can be written");
    content.remove_prefix(static_cast<std::size_t>(written));
  }
  m_path = "/proc/self/fd/" + std::to_string(m_descriptor);
}

MemoryFile::~MemoryFile() { ::close(m_descriptor); }

}  // namespace fuzz
