// Tests of where records go.

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <new>
#include <stdexcept>
#include <thread>

#include "TraceFixture.h"

namespace {

using testing::HasSubstr;

constexpr unsigned long kGetDns = 0x51010100;
constexpr unsigned long kMergeIn60 = 0x51011400;

class Sinks : public TraceFixture {};

void enterAndLeaveGetDns() {
  ldtr_write(0x3200000, kGetDns, nullptr);
  ldtr_exit_errcode(kGetDns, 33, 0x1000, 0, nullptr);
}

void say(const char* message) { ldtr_formater_local(kMergeIn60, 0x3400000, nullptr).debug(0xc8110000, "%s", message); }

TEST_F(Sinks, WithoutASinkNothingHappens) {
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  enterAndLeaveGetDns();
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST_F(Sinks, TextFileGetsOneLineARecord) {
  ASSERT_TRUE(ldtr::writeTextTo(path("trace")));
  enterAndLeaveGetDns();
  say("mergeIn60: a text\n");
  EXPECT_EQ(contentOf(path("trace")),
            "entry getDns\n"
            "exit  getDns result=0\n"
            "debug mergeIn60 mergeIn60: a text\n");
}

TEST_F(Sinks, RemembersThatTextCouldNotBeWritten) {
  EXPECT_EQ(ldtr::textError(), 0) << "there is no text";
  ASSERT_TRUE(ldtr::writeTextTo(path("trace")));
  say("a text");
  EXPECT_EQ(ldtr::textError(), 0);
  ASSERT_TRUE(ldtr::writeTextTo("/dev/full"));
  EXPECT_EQ(ldtr::textError(), 0) << "nothing was to be written";
  errno = EDOM;
  say("a text");
  EXPECT_EQ(errno, EDOM);
  EXPECT_EQ(ldtr::textError(), ENOSPC);
  ASSERT_TRUE(ldtr::writeTextTo(path("trace")));
  EXPECT_EQ(ldtr::textError(), 0) << "this is another file";
  ldtr::discard();
  EXPECT_EQ(ldtr::textError(), 0);
}

TEST_F(Sinks, TextFileIsAppendedTo) {
  std::ofstream(path("trace")) << "before\n";
  ASSERT_TRUE(ldtr::writeTextTo(path("trace")));
  say("after");
  EXPECT_EQ(contentOf(path("trace")), "before\ndebug mergeIn60 after\n");
}

TEST_F(Sinks, NewTextFileIsReadableByItsOwnerAlone) {
  const mode_t before = ::umask(0);
  ASSERT_TRUE(ldtr::writeTextTo(path("trace")));
  ::umask(before);
  struct stat status {};
  ASSERT_EQ(::stat(path("trace").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 07777U, 0600U);
}

TEST_F(Sinks, ADashIsStandardError) {
  testing::internal::CaptureStderr();
  ASSERT_TRUE(ldtr::writeTextTo("-"));
  say("text\n");
  ldtr::discard();
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "debug mergeIn60 text\n");
  EXPECT_GE(::fcntl(STDERR_FILENO, F_GETFD), 0) << "standard error must stay open";
}

TEST_F(Sinks, AFileThatCannotBeOpenedLeavesTheSinkAsItWas) {
  ldtr::sendTo(keep());
  errno = 0;
  EXPECT_FALSE(ldtr::writeTextTo(path("missing/trace")));
  EXPECT_EQ(errno, ENOENT);
  say("text");
  EXPECT_EQ(records.size(), 1U);
}

TEST_F(Sinks, TextTakesOnlyTheRecordsThatItsMaskAsksFor) {
  ASSERT_TRUE(ldtr::writeTextTo(path("trace"), ldtr::kPublicExit | ldtr::kInternalEntry));
  ldtr::sendAlsoTo(keep());
  enterAndLeaveGetDns();
  ldtr_write(0x32a0000, kMergeIn60, nullptr);
  ldtr_exit_errcode(kMergeIn60, 43, 0x10000, 1, nullptr);
  say("text");
  EXPECT_EQ(contentOf(path("trace")),
            "exit  getDns result=0\n"
            "entry mergeIn60\n"
            "exit  mergeIn60 result=1\n")
      << "the bit of an entry record asks for the exit record, too";
  EXPECT_EQ(records.size(), 5U) << "a function gets all that is handed over";
}

TEST_F(Sinks, OneSinkReplacesTheOther) {
  ASSERT_TRUE(ldtr::writeTextTo(path("first")));
  say("one");
  ASSERT_TRUE(ldtr::writeTextTo(path("second")));
  say("two");
  ldtr::sendTo(keep());
  say("three");
  ASSERT_TRUE(ldtr::writeTextTo(path("second")));
  say("four");
  ldtr::discard();
  say("five");
  EXPECT_EQ(contentOf(path("first")), "debug mergeIn60 one\n");
  EXPECT_EQ(contentOf(path("second")), "debug mergeIn60 two\ndebug mergeIn60 four\n");
  ASSERT_EQ(records.size(), 1U);
  EXPECT_EQ(records[0].message, "three");
}

TEST_F(Sinks, ASecondFunctionListensBesidesTheTextUntilItIsEnded) {
  ASSERT_TRUE(ldtr::writeTextTo(path("trace")));
  ldtr::sendAlsoTo(keep());
  say("one");
  ldtr::sendAlsoTo({});
  say("two");
  EXPECT_EQ(contentOf(path("trace")), "debug mergeIn60 one\ndebug mergeIn60 two\n");
  ASSERT_EQ(records.size(), 1U);
  EXPECT_EQ(records[0].message, "one");
}

TEST_F(Sinks, DiscardEndsTheSecondFunctionToo) {
  ldtr::sendAlsoTo(keep());
  ldtr::discard();
  say("text");
  EXPECT_TRUE(records.empty());
}

TEST_F(Sinks, WhatAFunctionThrowsGoesNoFurtherAndTheOthersAreStillCalled) {
  ldtr::sendTo([](const ldtr::Record&) { throw std::runtime_error("no"); });
  ldtr::sendAlsoTo(keep());
  EXPECT_NO_THROW(enterAndLeaveGetDns());
  EXPECT_NO_THROW(say("text"));
  EXPECT_EQ(records.size(), 3U);
}

TEST_F(Sinks, AFunctionMayEndItself) {
  int calls = 0;
  ldtr::sendTo([&calls](const ldtr::Record&) {
    ++calls;
    ldtr::discard();
    ++calls;  // what the function captured must still be there
  });
  say("one");
  say("two");
  EXPECT_EQ(calls, 2);
}

TEST_F(Sinks, AFullDeviceLosesTheRecordAndNothingElse) {
  if (::access("/dev/full", W_OK) != 0) GTEST_SKIP() << "no /dev/full here";
  ASSERT_TRUE(ldtr::writeTextTo("/dev/full"));
  ldtr::sendAlsoTo(keep());
  errno = 0;
  EXPECT_NO_THROW(say("text"));
  EXPECT_EQ(errno, 0);
  EXPECT_EQ(records.size(), 1U);
}

TEST_F(Sinks, LinesOfSeveralThreadsStayWhole) {
  ASSERT_TRUE(ldtr::writeTextTo(path("trace")));
  std::atomic<int> seen = 0;
  ldtr::sendAlsoTo([&seen](const ldtr::Record&) { ++seen; });
  constexpr int kLines = 500;
  const auto talk = [] {
    for (int i = 0; i < kLines; ++i) say("a message of some length");
  };
  std::thread other(talk);
  talk();
  other.join();
  EXPECT_EQ(seen, 2 * kLines);

  std::ifstream in(path("trace"));
  int lines = 0;
  for (std::string line; std::getline(in, line); ++lines) {
    ASSERT_EQ(line, "debug mergeIn60 a message of some length");
  }
  EXPECT_EQ(lines, 2 * kLines);
}

}  // namespace
