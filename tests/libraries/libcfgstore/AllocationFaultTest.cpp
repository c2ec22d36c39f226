// When memory runs out, an operation throws, hands out nothing and has changed nothing: tested by failing the N-th
// allocation for every N. The sanitizers see to it that nothing is lost on the way.

#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <new>

#include "Inspection.h"
#include "Snapshot.h"
#include "TestStore.h"

namespace {

// The allocation that fails, counted down; negative when none does.
long allocationsLeft = -1;

void* allocate(std::size_t size) {
  if (allocationsLeft == 0) throw std::bad_alloc();
  if (allocationsLeft > 0) --allocationsLeft;
  void* const block = std::malloc(size == 0 ? 1 : size);
  if (block == nullptr) throw std::bad_alloc();
  return block;
}

}  // namespace

void* operator new(std::size_t size) { return allocate(size); }
void* operator new[](std::size_t size) { return allocate(size); }
// What a stable sort asks for its buffer, and does without.
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return allocationsLeft == 0 ? nullptr : allocate(size);
}
void operator delete(void* block) noexcept { std::free(block); }
void operator delete[](void* block) noexcept { std::free(block); }
void operator delete(void* block, std::size_t) noexcept { std::free(block); }
void operator delete[](void* block, std::size_t) noexcept { std::free(block); }

namespace cfgstore {
namespace {

using test::TestStore;

std::string sampleText() {
  std::string text = "version: 1\n\ndn: CN=A, cn=X\nobjectClass: top\nlong: folded\n  value\nb:: Zm9v\n";
  for (int i = 0; i < 70; ++i) text += "many: " + std::to_string(i) + "\nname" + std::to_string(i) + ": 1\n";
  return text + "\n# c\n\ndn: CN=B, cn=A, cn=X\ncn: B\n\ndn: CN=C,CN=Y\n";
}

// Runs `operation` on a fresh store with the N-th allocation failing, for every N until none fails. A run that throws
// must leave the text alone; the last one must succeed.
void sweep(const std::function<void(OVOConfigUtils::CfgUtils&)>& operation) {
  const std::string text = sampleText();
  for (long n = 0;; ++n) {
    ASSERT_LT(n, 10000) << "the sweep does not end";
    TestStore store(text);
    bool failed = false;
    allocationsLeft = n;
    try {
      operation(store.utils());
    } catch (const std::bad_alloc&) {
      failed = true;
    }
    allocationsLeft = -1;
    if (!failed) return;
    ASSERT_EQ(store.text(), text) << "changed although allocation " << n << " failed";
    ASSERT_FALSE(store.store().changed());
    ASSERT_EQ(store.values("CN=A,CN=X", "many").values.size(), 70U);
    operation(store.utils());  // it still works
  }
}

TEST(AllocationFault, ChangesNothingInAddValue) {
  sweep([](auto& utils) { EXPECT_EQ(utils.addValue("CN=A,CN=X", "many", "a new value"), 0); });
  sweep([](auto& utils) {
    EXPECT_EQ(utils.addValue("cn=b, cn=a, cn=x", "aNewAttribute", std::string(200, 'x').c_str()), 0);
  });
}

TEST(AllocationFault, ChangesNothingInDelValue) {
  sweep([](auto& utils) {
    char first[] = "7";
    char second[] = "8";
    char* values[] = {first, second, nullptr};
    EXPECT_EQ(utils.delValue("CN=A,CN=X", "many", values), 0);
  });
}

TEST(AllocationFault, ChangesNothingInSetValue) {
  sweep([](auto& utils) { EXPECT_EQ(utils.setValue("CN=A,CN=X", "many", "the only value"), 0); });
  sweep([](auto& utils) { EXPECT_EQ(utils.setValue("CN=A,CN=X", "aNewAttribute", "the only value"), 0); });
}

TEST(AllocationFault, ChangesNothingInAddEntry) {
  sweep([](auto& utils) { EXPECT_EQ(utils.addEntry("CN=a longer name,CN=A,CN=X", "N", "first", "second"), 0); });
  sweep([](auto& utils) { EXPECT_EQ(utils.addEntry("CN=a longer name,CN=Y", "N", "first", "second"), 0); });
}

TEST(AllocationFault, ChangesNothingInRemoveEntry) {
  sweep([](auto& utils) { EXPECT_EQ(utils.removeEntry("cn=b, cn=a, cn=x"), 0); });
}

TEST(AllocationFault, HandsOutNothingInReads) {
  sweep([](auto& utils) {
    char** list = nullptr;
    int count = 0;
    try {
      EXPECT_EQ(utils.getParamArrayValueInfo("cn=a,cn=x", "many", &list, &count), 0);
    } catch (...) {
      EXPECT_EQ(list, nullptr);
      EXPECT_EQ(count, 0);
      throw;
    }
    for (int i = 0; i < count; ++i) std::free(list[i]);
    std::free(list);
  });
  sweep([](auto& utils) {
    char** list = nullptr;
    int count = 0;
    EXPECT_EQ(utils.getSubordinates("cn=x", 2, &list, &count), 0);
    for (int i = 0; i < count; ++i) std::free(list[i]);
    std::free(list);
  });
  sweep([](auto& utils) {
    char* value = nullptr;
    EXPECT_EQ(utils.getParamValueInfo("cn=a,cn=x", "long", &value), 0);
    std::free(value);
  });
}

TEST(AllocationFault, HandsOutNothingInWalks) {
  sweep([](auto& utils) {
    struct Walk {
      _CFGMessage* entry = nullptr;
      _CFGMessage** cursor = nullptr;
      ~Walk() {
        cfg_ber_free(cursor);
        cfg_msgfree(entry);
      }
    } walk;
    EXPECT_EQ(utils.getFirstEntry("cn=a,cn=x", &walk.entry), 0);
    char* name = nullptr;
    EXPECT_EQ(utils.getFirstAttribute(walk.entry, &name, &walk.cursor), 0);
    while (name != nullptr) {
      std::free(name);
      EXPECT_EQ(utils.getNextAttribute(walk.entry, &name, walk.cursor), 0);
    }
  });
}

TEST(AllocationFault, OpensNothing) {
  const test::TemporaryDirectory directory;
  const std::string path = directory.write("a.ldif", sampleText());
  for (long n = 0;; ++n) {
    ASSERT_LT(n, 10000) << "the sweep does not end";
    bool failed = false;
    allocationsLeft = n;
    try {
      const OVOConfigUtils::CfgUtils utils(path.c_str(), nullptr);
    } catch (const std::bad_alloc&) {
      failed = true;
    }
    allocationsLeft = -1;
    if (!failed) return;
  }
}

TEST(AllocationFault, TakesNoHalfASnapshot) {
  sweep([](auto& utils) {
    const Snapshot snapshot(ConfigStore::of(utils));
    EXPECT_EQ(snapshot.findEntry("CN=C,CN=Y"), 2U);
    EXPECT_NE(snapshot.findAttribute(0, "NAME69"), Snapshot::kNone);
    EXPECT_EQ(snapshot.values().size(), 144U);
  });
}

TEST(AllocationFault, EndsAnInspectionWithoutAResult) {
  const test::TemporaryDirectory directory;
  const std::string path = directory.write("a.ldif", sampleText() + "a: 1\na: 1\nbad\n");
  for (long n = 0;; ++n) {
    ASSERT_LT(n, 10000) << "the sweep does not end";
    allocationsLeft = n;
    try {
      const Inspection inspection = inspect(path);
      allocationsLeft = -1;
      EXPECT_EQ(inspection.errors, 1U);
      return;
    } catch (const std::bad_alloc&) {
      allocationsLeft = -1;
    }
  }
}

}  // namespace
}  // namespace cfgstore
