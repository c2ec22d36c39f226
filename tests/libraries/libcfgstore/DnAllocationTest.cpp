// How much memory the DN functions ask for, and what they do when there is none. This file replaces the global
// operators new and delete of the test program.

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdlib>
#include <memory>
#include <new>
#include <string>
#include <string_view>

#include "CfgUtils.h"
#include "NormalDn.h"

namespace {

std::size_t allocations = 0;
long allocationsUntilFailure = -1;  // negative: none fails

void* allocate(std::size_t size) {
  ++allocations;
  if (allocationsUntilFailure == 0) throw std::bad_alloc();
  if (allocationsUntilFailure > 0) --allocationsUntilFailure;
  void* const memory = std::malloc(size == 0 ? 1 : size);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}

// Lets the n-th allocation from now on and all after it fail, as long as it lives.
class FailingAllocations {
 public:
  explicit FailingAllocations(long n) { allocationsUntilFailure = n; }
  ~FailingAllocations() { allocationsUntilFailure = -1; }
  FailingAllocations(const FailingAllocations&) = delete;
  FailingAllocations& operator=(const FailingAllocations&) = delete;
};

}  // namespace

// Those for over-aligned types are left alone; nothing here allocates such.
void* operator new(std::size_t size) { return allocate(size); }
void* operator new[](std::size_t size) { return allocate(size); }
void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
  try {
    return allocate(size);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete[](void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t /*size*/) noexcept { std::free(memory); }
void operator delete(void* memory, const std::nothrow_t& /*tag*/) noexcept { std::free(memory); }
void operator delete[](void* memory, std::size_t /*size*/) noexcept { std::free(memory); }

namespace cfgstore {
namespace {

constexpr const char* kPlain = "cn=DIRECTORY, cn=RDBM BACKENDS, cn=ZOR Halvorn, CN=SCHEMAS,CN=CONFIGURATION";
constexpr const char* kPlainNormal = "CN=DIRECTORY,CN=RDBM BACKENDS,CN=ZOR HALVORN,CN=SCHEMAS,CN=CONFIGURATION";
constexpr const char* kEscapedDn = "sn=a long value with an umlaut: \u00e4 + cn=\\,x;ou=\"a,b\",dc=#0c0161,2.5.4.3=a";

TEST(DnAllocation, ComparingPlainDnsNeedsNoMemory) {
  const std::size_t before = allocations;
  const int same = compareDns(kPlain, kPlainNormal);
  const int different = compareDns(kPlain, "cn=configuration");
  const std::size_t after = allocations;
  EXPECT_NE(same, 0);
  EXPECT_EQ(different, 0);
  EXPECT_EQ(after, before);
}

TEST(DnAllocation, NormalisingAPlainDnAllocatesTheResultOnly) {
  const std::size_t before = allocations;
  const auto normal = normalDn(kPlain);
  const std::size_t after = allocations;
  EXPECT_EQ(normal, kPlainNormal);
  EXPECT_EQ(after, before + 1);
}

TEST(DnAllocation, FormatDnGivesNullWhicheverAllocationFails) {
  for (const char* const dn : {kPlain, kEscapedDn}) {
    for (long n = 0;; ++n) {
      char* normal = nullptr;
      bool reached = false;
      {
        const FailingAllocations failing(n);
        normal = formatDn(dn);
        reached = allocationsUntilFailure == 0;
      }
      const std::unique_ptr<char, decltype(&std::free)> owner(normal, &std::free);
      if (normal != nullptr) {
        EXPECT_GT(n, 0);
        break;
      }
      ASSERT_TRUE(reached) << n;
    }
  }
}

TEST(DnAllocation, CompareDnsThrowsRatherThanCallTwoNamesDifferent) {
  for (long n = 0;; ++n) {
    int same = -1;
    try {
      const FailingAllocations failing(n);
      same = compareDns(kEscapedDn, kEscapedDn);
    } catch (const std::bad_alloc&) {
      continue;
    }
    EXPECT_GT(n, 0);
    EXPECT_NE(same, 0);
    break;
  }
}

}  // namespace
}  // namespace cfgstore
