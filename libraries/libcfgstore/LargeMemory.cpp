#include "LargeMemory.h"

#include <sys/mman.h>

#include <cerrno>

namespace cfgstore {

void askForLargePages(const void* memory, std::size_t bytes) noexcept {
  constexpr std::uintptr_t kLargePage = std::uintptr_t{2} << 20;
  constexpr std::size_t kWorthIt = 4 * kLargePage;
  if (bytes < kWorthIt) return;
  const auto begin = (reinterpret_cast<std::uintptr_t>(memory) + kLargePage - 1) & ~(kLargePage - 1);
  const auto end = (reinterpret_cast<std::uintptr_t>(memory) + bytes) & ~(kLargePage - 1);
  const int before = errno;
  ::madvise(reinterpret_cast<void*>(begin), end - begin, MADV_HUGEPAGE);
  errno = before;
}

}  // namespace cfgstore
