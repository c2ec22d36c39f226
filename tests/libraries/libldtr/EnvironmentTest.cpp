// Tests of the set-up from LDTR_EVENTS and LDTR_FILE.

#include <gmock/gmock.h>

#include "TraceFixture.h"

namespace {

using testing::HasSubstr;

class Environment : public TraceFixture {
 protected:
  static void set(const char* name, const std::string& value) { ASSERT_EQ(::setenv(name, value.c_str(), 1), 0); }
};

void enterGetDns() { ldtr_write(0x3200000, 0x51010100, nullptr); }

TEST_F(Environment, WithoutVariablesNothingChanges) {
  ldtr::setEvents(7);
  ldtr::sendTo(keep());
  EXPECT_EQ(ldtr::setUpFromEnvironment(), "");
  EXPECT_EQ(ldtr::events(), 7U);
  enterGetDns();
  EXPECT_EQ(records.size(), 1U);
}

TEST_F(Environment, EmptyVariablesCountAsAbsent) {
  set("LDTR_EVENTS", "");
  set("LDTR_FILE", "");
  ldtr::setEvents(7);
  EXPECT_EQ(ldtr::setUpFromEnvironment(), "");
  EXPECT_EQ(ldtr::events(), 7U);
}

TEST_F(Environment, BothVariablesGiveMaskAndFile) {
  set("LDTR_EVENTS", "0x1000");
  set("LDTR_FILE", path("trace"));
  EXPECT_EQ(ldtr::setUpFromEnvironment(), "");
  EXPECT_EQ(ldtr::events(), 0x1000U);
  enterGetDns();
  EXPECT_EQ(contentOf(path("trace")), "entry getDns\n");
}

TEST_F(Environment, TextKeepsToTheGivenMaskWhenAProgramEnablesMore) {
  set("LDTR_EVENTS", "0x4000000");
  set("LDTR_FILE", path("trace"));
  EXPECT_EQ(ldtr::setUpFromEnvironment(), "");
  ldtr::setEvents(ldtr::kEverything);
  enterGetDns();
  EXPECT_EQ(contentOf(path("trace")), "");
}

TEST_F(Environment, AFileAloneRecordsEverything) {
  set("LDTR_FILE", path("trace"));
  EXPECT_EQ(ldtr::setUpFromEnvironment(), "");
  EXPECT_EQ(ldtr::events(), ldtr::kEverything);
}

TEST_F(Environment, AMaskAloneWritesToStandardError) {
  set("LDTR_EVENTS", "4096");
  testing::internal::CaptureStderr();
  EXPECT_EQ(ldtr::setUpFromEnvironment(), "");
  enterGetDns();
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "entry getDns\n");
  EXPECT_EQ(ldtr::events(), 0x1000U);
}

TEST_F(Environment, ABadMaskIsToldAndNeitherVariableIsApplied) {
  set("LDTR_FILE", path("trace"));
  for (const char* text : {"x", "0x", "0xg", "-1", "+1", " 1", "1 ", "4294967296", "0x100000000", "12abc"}) {
    set("LDTR_EVENTS", text);
    ldtr::setEvents(7);
    EXPECT_THAT(ldtr::setUpFromEnvironment(), HasSubstr("LDTR_EVENTS is not a mask")) << text;
    EXPECT_EQ(ldtr::events(), 7U) << text;
    EXPECT_FALSE(std::filesystem::exists(path("trace"))) << text;
  }
}

TEST_F(Environment, AFileThatCannotBeOpenedIsToldAndNeitherVariableIsApplied) {
  set("LDTR_EVENTS", "1");
  set("LDTR_FILE", path("missing/trace"));
  const std::string told = ldtr::setUpFromEnvironment();
  EXPECT_THAT(told, HasSubstr("LDTR_FILE cannot be opened"));
  EXPECT_THAT(told, HasSubstr(path("missing/trace")));
  EXPECT_THAT(told, HasSubstr("No such file or directory"));
  EXPECT_EQ(ldtr::events(), 0U);
}

TEST_F(Environment, WhatIsToldOfABadVariableIsPrintable) {
  set("LDTR_EVENTS", "\x1b[2J");
  EXPECT_THAT(ldtr::setUpFromEnvironment(), HasSubstr("\\x1b[2J"));
}

TEST(ParseEvents, ReadsDecimalAndHexadecimal) {
  EXPECT_EQ(ldtr::parseEvents("0"), 0U);
  EXPECT_EQ(ldtr::parseEvents("67108864"), ldtr::kDebug);
  EXPECT_EQ(ldtr::parseEvents("4294967295"), ldtr::kEverything);
  EXPECT_EQ(ldtr::parseEvents("0x4000000"), ldtr::kDebug);
  EXPECT_EQ(ldtr::parseEvents("0XFFFFFFFF"), ldtr::kEverything);
  EXPECT_EQ(ldtr::parseEvents("0xffffFFFF"), ldtr::kEverything);
}

TEST(ParseEvents, RefusesAnythingElse) {
  EXPECT_EQ(ldtr::parseEvents(""), std::nullopt);
  EXPECT_EQ(ldtr::parseEvents("-0"), std::nullopt);
  EXPECT_EQ(ldtr::parseEvents("0x-1"), std::nullopt);
  EXPECT_EQ(ldtr::parseEvents("1,2"), std::nullopt);
}

}  // namespace
