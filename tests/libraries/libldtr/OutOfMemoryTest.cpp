// When memory runs out, a record is lost rather than the work of the program that traces, and that is remembered. This
// file replaces the allocation functions of the whole test program, which fail when a test says so.

#include <cerrno>
#include <cstdlib>
#include <new>

#include "TraceFixture.h"

namespace {

thread_local bool t_hasMemory = true;

}  // namespace

__attribute__((noinline)) void* operator new(std::size_t size) {
  void* const block = t_hasMemory ? std::malloc(size == 0 ? 1 : size) : nullptr;
  if (block == nullptr) throw std::bad_alloc();
  return block;
}
__attribute__((noinline)) void operator delete(void* block) noexcept { std::free(block); }
__attribute__((noinline)) void operator delete(void* block, std::size_t) noexcept { std::free(block); }

namespace {

constexpr unsigned long kMergeIn60 = 0x51011400;

// Too long for what is formatted without memory.
const std::string kLong(1000, 'x');

void sayWithoutMemory(const char* message) {
  t_hasMemory = false;
  ldtr_formater_local(kMergeIn60, 0x3400000, nullptr).debug(0xc8110000, "%s", message);
  t_hasMemory = true;
}

void say(const char* message) { ldtr_formater_local(kMergeIn60, 0x3400000, nullptr).debug(0xc8110000, "%s", message); }

class OutOfMemory : public TraceFixture {};

TEST_F(OutOfMemory, LosesALongMessageAndNothingElse) {
  ldtr::sendTo(keep());
  errno = EDOM;
  EXPECT_NO_THROW(sayWithoutMemory(kLong.c_str()));
  EXPECT_EQ(errno, EDOM);
  EXPECT_TRUE(records.empty());
  say(kLong.c_str());
  ASSERT_EQ(records.size(), 1U);
  EXPECT_EQ(records[0].message, kLong);
}

TEST_F(OutOfMemory, HandsAShortMessageOverAllTheSame) {
  std::size_t size = 0;
  ldtr::sendTo([&size](const ldtr::Record& record) { size = record.message.size(); });
  sayWithoutMemory("a text");
  EXPECT_EQ(size, 6U);
}

TEST_F(OutOfMemory, IsRememberedAsAFailureOfTheTextThatLacksTheRecord) {
  ASSERT_TRUE(ldtr::writeTextTo(path("trace")));
  say("one");
  errno = EDOM;
  EXPECT_NO_THROW(sayWithoutMemory("two, in a line that is too long for a string without memory of its own"));
  EXPECT_EQ(errno, EDOM);
  say("three");
  EXPECT_EQ(ldtr::textError(), ENOMEM);
  EXPECT_EQ(contentOf(path("trace")), "debug mergeIn60 one\ndebug mergeIn60 three\n");
}

}  // namespace
