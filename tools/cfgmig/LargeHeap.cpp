#include "LargeHeap.h"

#include <malloc.h>
#include <unistd.h>

#include <cstdlib>

#include "LargeMemory.h"

namespace tool {
namespace {

// Less gains nothing, and large pages that are used in part would be a good part of its memory.
constexpr std::uint64_t kLarge = std::uint64_t{32} << 20;

// The allocator takes all from the heap that finds room there, texts and large tables as well.
constexpr std::uint64_t kTimesTheFiles = 3;

constexpr int kMostMappings = 65536;  // the allocator's own

}  // namespace

void makeRoomFor(std::uint64_t bytes) {
  static bool isDone = false;
  if (isDone || bytes < kLarge) return;
  isDone = true;
  ::mallopt(M_ARENA_MAX, 1);
  ::mallopt(M_TRIM_THRESHOLD, -1);  // never: what is given back would be asked for again
  ::mallopt(M_MMAP_MAX, 0);         // the piece has to come from the heap, and leaves its room there
  char* const begin = static_cast<char*>(::sbrk(0));
  void* volatile const piece = std::malloc(kTimesTheFiles * bytes);  // volatile: a compiler would leave both out
  std::free(piece);
  const char* const end = static_cast<const char*>(::sbrk(0));
  ::mallopt(M_MMAP_MAX, kMostMappings);
  cfgstore::askForLargePages(begin, static_cast<std::size_t>(end - begin));
}

}  // namespace tool
