// LeftOpen.h -- what is large is not taken apart at the end of the program.

#ifndef CFGMIG_TOOL_LEFTOPEN_H
#define CFGMIG_TOOL_LEFTOPEN_H

#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

namespace tool {

// Keeps what a command no longer needs, if it is about a file of so many bytes and these are many; otherwise it stays
// the caller's. To give the memory of a large configuration back piece by piece takes longer than all else that is done
// at the end, and the system takes it back at once. Only for what has nothing to do when it goes but to give memory
// back, at the end of a command; each type by one thread.
template <class Something>
void leaveOpen(std::unique_ptr<Something>& something, std::uint64_t bytes) {
  constexpr std::uint64_t kMany = std::uint64_t{8} << 20;
  if (bytes < kMany) return;
  static auto& kept = *new std::vector<std::unique_ptr<Something>>();  // intended: it never goes, and can be reached
  kept.push_back(std::move(something));
}

}  // namespace tool

#endif  // CFGMIG_TOOL_LEFTOPEN_H
