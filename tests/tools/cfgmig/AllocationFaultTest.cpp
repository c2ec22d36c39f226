// When memory runs out, nothing is told of a migration or a clean-up that lacks a part: tested by letting all
// allocations from the N-th on fail.

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <memory>
#include <new>
#include <string>
#include <vector>

#include "CleanUp.h"
#include "ConfigFile.h"
#include "Configuration.h"
#include "Failure.h"
#include "SampleFiles.h"
#include "SchemaCopies.h"
#include "Workspace.h"
#include "ledger/LedgerBuilder.h"

namespace {

// How many allocations are left; negative when there is no end of them. Of all threads together.
std::atomic<long> allocationsLeft{-1};

void* allocate(std::size_t size) {
  if (allocationsLeft >= 0 && allocationsLeft.fetch_sub(1) <= 0) {
    allocationsLeft = 0;
    throw std::bad_alloc();
  }
  void* const block = std::malloc(size == 0 ? 1 : size);
  if (block == nullptr) throw std::bad_alloc();
  return block;
}

}  // namespace

__attribute__((noinline)) void* operator new(std::size_t size) { return allocate(size); }
__attribute__((noinline)) void* operator new[](std::size_t size) { return allocate(size); }
// What a stable sort asks for its buffer, and does without.
__attribute__((noinline)) void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return allocationsLeft == 0 ? nullptr : std::malloc(size == 0 ? 1 : size);
}
__attribute__((noinline)) void operator delete(void* block) noexcept { std::free(block); }
__attribute__((noinline)) void operator delete[](void* block) noexcept { std::free(block); }
__attribute__((noinline)) void operator delete(void* block, std::size_t) noexcept { std::free(block); }
__attribute__((noinline)) void operator delete[](void* block, std::size_t) noexcept { std::free(block); }

namespace {

using Words = std::vector<std::string>;

// Runs `work` with memory for all allocations, for one, for two, and so on, until it gets by with what there is; in
// larger steps as it goes on. `prepare` has all the memory. What the work tells has to be the whole each time, unless
// it tells by an exception that it could not be had.
void sweep(const std::function<void()>& prepare, const std::function<Words()>& work) {
  prepare();
  const Words whole = work();
  int failures = 0;
  bool hasRunOut = true;
  for (long n = 0; hasRunOut; n += 1 + n / 100) {
    ASSERT_LT(n, 1000000) << "the sweep does not end";
    prepare();
    Words told;
    bool failed = false;
    allocationsLeft = n;
    try {
      told = work();
    } catch (const std::bad_alloc&) {
      failed = true;
    } catch (const tool::Failure&) {
      failed = true;
    }
    hasRunOut = allocationsLeft == 0;
    allocationsLeft = -1;
    failures += failed ? 1 : 0;
    if (!failed) {
      ASSERT_EQ(told, whole) << "with " << n << " allocations";
    }
  }
  EXPECT_GT(failures, 10);
}

class AllocationFault : public testing::Test {
 protected:
  std::unique_ptr<ConfigFile> open(const std::string& name) const {
    auto file = std::make_unique<ConfigFile>(m_files.path(name).c_str(), nullptr);
    EXPECT_EQ(file->getDns(), 0);
    return file;
  }

  const Workspace m_files;
};

TEST_F(AllocationFault, LeavesNoLedgerThatLacksARow) {
  m_files.write("old", sample::kOld);
  m_files.write("new", sample::kNew);
  std::unique_ptr<ConfigFile> old;
  std::unique_ptr<ConfigFile> now;
  sweep(
      [&] {
        old = open("old");
        now = open("new");
      },
      [&] {
        const tool::Ledger ledger = tool::migrate(*old, *now, "6.0");
        Words words = {std::to_string(ledger.events.size()), std::to_string(ledger.replaced.size())};
        for (const tool::OldValueRow& row : ledger.oldValues) {
          words.push_back(tool::nameOf(row.fate) + std::to_string(row.place) + ledger.reasonOf(row.reason).words);
        }
        for (const tool::ResultValueRow& row : ledger.resultValues) {
          words.push_back(tool::nameOf(row.origin) + std::to_string(row.from) + ledger.reasonOf(row.reason).words);
        }
        for (const std::string& message : ledger.messages) words.push_back(message);
        return words;
      });
}

TEST_F(AllocationFault, LeavesNoAccountOfSchemaFilesThatLacksOne) {
  for (const char* directory : {"search", "search/etc", "target"}) {
    std::filesystem::create_directory(m_files.path(directory));
  }
  m_files.write("search/etc/my.at", "attributes\n");
  m_files.write("conf",
                "dn: cn=Configuration\ncn: Configuration\n"
                "\ndn: cn=ZOR Directory, cn=Schemas, cn=Configuration\nobjectClass: top\ncn: ZOR Directory\n"
                "zor-slapdIncludeSchema: /opt/my.at\nzor-slapdIncludeSchema: /opt/none.oc\n"
                "zor-slapdIncludeSchema: /opt/\n");
  std::unique_ptr<ConfigFile> conf;
  sweep([&] { conf = open("conf"); },
        [&] {
          const tool::SchemaCopies copies(*conf, {m_files.path("search"), m_files.path("target")});
          Words words = copies.missing();
          for (const cfgstore::StagedCopy& copy : copies.copies()) words.push_back(copy.source + " " + copy.refusal);
          return words;
        });
}

// No memory is nothing that is wrong with a file.
TEST_F(AllocationFault, IsNoProblemOfAFile) {
  m_files.write("conf", sample::kNew);
  sweep([] {},
        [&] {
          Words problems;
          const auto configuration = tool::openConfiguration(m_files.path("conf"), problems);
          if (configuration) problems.emplace_back("open");
          return problems;
        });
}

TEST_F(AllocationFault, LeavesNoAccountOfACleanUpThatLacksAStep) {
  m_files.write("conf",
                "dn: cn=Configuration\ncn: Configuration\n"
                "\ndn: cn=Directory, cn=RDBM Backends, cn=ZOR Directory, cn=Schemas, cn=Configuration\ncn: Directory\n"
                "zor-slapdDbName: name\nzor-slapdDbAlias: alias\nzor-slapdDbInstance: inst\nzor-slapdDbUserID: user\n"
                "zor-slapdDbUserPW: word\nzor-slapdDbLocation: /home\n"
                "zor-slapdPlugin: preoperation /x/libzorldapcl.so CLInit cn=changelog\n"
                "\ndn: cn=Change Log, cn=RDBM Backends, cn=ZOR Directory, cn=Schemas, cn=Configuration\n"
                "cn: Change Log\nzor-slapdPlugin: database /x/libback-rdbm.so rdbm_backend_init\n");
  std::unique_ptr<ConfigFile> conf;
  for (const tool::CleanUpOperation& operation : tool::cleanUpOperations()) {
    SCOPED_TRACE(operation.option);
    sweep([&] { conf = open("conf"); },
          [&] {
            const tool::CleanUpResult result = tool::cleanUp(*conf, operation);
            Words words = {result.failure};
            for (const tool::CleanUpStep& step : result.steps) {
              words.push_back(step.entry + " " + step.attribute + " " + std::to_string(step.count) + " of " +
                              std::to_string(step.count + step.remaining));
            }
            return words;
          });
    if (HasFatalFailure()) return;
  }
}

}  // namespace
