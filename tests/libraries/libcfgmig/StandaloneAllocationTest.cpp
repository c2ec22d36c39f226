// Memory runs out in the middle of a comparison, a clean-up or a walk over the schema files: the N-th allocation that
// the library makes through operator new throws. In a program of its own, because it replaces operator new for all of
// itself. Allocations of the fakes do not count.

#include <gtest/gtest.h>

#include <cstdlib>
#include <new>

#include "Outside.h"
#include "StandaloneRun.h"

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

class StandaloneAllocation : public testing::TestWithParam<StandaloneCall> {};

INSTANTIATE_TEST_SUITE_P(Each, StandaloneAllocation, testing::ValuesIn(kStandaloneCalls),
                         [](const auto& call) { return call.param.method.name; });

TEST_P(StandaloneAllocation, AnyObjectOfTheLibraryMayFindNoMemory) {
  for (int n = 1;; ++n) {
    StandaloneRun run;
    g_made = 0;
    g_failing = n;
    bool thrown = false;
    int result = -1;
    try {
      const fake::InsideLibrary inside;
      result = run.run(GetParam());
    } catch (const std::bad_alloc&) {
      thrown = true;
    }
    const bool struck = g_made >= n;
    g_failing = 0;
    EXPECT_EQ(run.world.records().back().result, thrown ? 0 : result);
    run.close();
    ASSERT_EQ(run.complaints(), Lines()) << n;
    if (!thrown) {
      // Either nothing failed, or the library got by without.
      ASSERT_EQ(result, GetParam().usualResult) << n;
    }
    if (!struck) {
      break;
    }
  }
}

}  // namespace
