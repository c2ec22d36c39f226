// Memory runs out in the middle of a migration: the N-th allocation that the library makes through operator new
// throws. A program of its own, because it replaces operator new for all of itself. Allocations of the fakes do not
// count.

#include <gtest/gtest.h>

#include <cstdlib>
#include <new>

#include "Outside.h"
#include "SmallMigration.h"

namespace {

int g_failing = 0;  // the allocation that is to fail, counted down; 0: none
int g_made = 0;

}  // namespace

// Not inlined: a compiler that sees malloc behind one and not behind the other takes them for a mismatch.
__attribute__((noinline)) void* operator new(std::size_t size) {
  if (!fake::isOutsideLibrary()) {
    ++g_made;
    if (g_failing > 0 && --g_failing == 0) {
      throw std::bad_alloc();
    }
  }
  void* block = std::malloc(size == 0 ? 1 : size);
  if (block == nullptr) {
    throw std::bad_alloc();
  }
  return block;
}

__attribute__((noinline)) void operator delete(void* block) noexcept { std::free(block); }
__attribute__((noinline)) void operator delete(void* block, std::size_t) noexcept { std::free(block); }

namespace {

using Lines = std::vector<std::string>;

class AllocationSweep : public testing::TestWithParam<SmallPair> {};

INSTANTIATE_TEST_SUITE_P(Migrations, AllocationSweep, testing::ValuesIn(smallPairs()),
                         [](const testing::TestParamInfo<SmallPair>& pair) { return pair.param.name; });

TEST_P(AllocationSweep, AnyObjectOfTheLibraryMayFindNoMemory) {
  int n = 1;
  for (;; ++n) {
    SmallMigration migration(GetParam());
    g_made = 0;
    g_failing = n;
    bool thrown = false;
    try {
      const fake::InsideLibrary inside;
      migration.run();
    } catch (const std::bad_alloc&) {
      thrown = true;
    }
    const bool struck = g_made >= n;
    g_failing = 0;
    migration.close();
    ASSERT_EQ(migration.complaints(), Lines()) << n;
    if (!thrown) {
      // Either nothing failed, or the library got by without.
      ASSERT_EQ(migration.merged, 1) << n;
    }
    if (!struck) {
      break;
    }
  }
  EXPECT_GT(n, 3) << "the two objects and what a merge needs";
}

}  // namespace
