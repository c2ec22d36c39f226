#include "LargeMemory.h"

#include <sys/mman.h>

#include <cerrno>

namespace cfgstore {

void askForLargePages(void* memory, std::size_t bytes) noexcept {
  constexpr std::uintptr_t kLargePage = std::uintptr_t{2} << 20;
  constexpr std::size_t kWorthIt = 4 * kLargePage;
  if (bytes < kWorthIt) return;
  const auto address = reinterpret_cast<std::uintptr_t>(memory);
  const std::uintptr_t begin = (address + kLargePage - 1) & ~(kLargePage - 1);
  const std::uintptr_t end = (address + bytes) & ~(kLargePage - 1);
  const int before = errno;
  ::madvise(static_cast<char*>(memory) + (begin - address), end - begin, MADV_HUGEPAGE);
  errno = before;
}

}  // namespace cfgstore
