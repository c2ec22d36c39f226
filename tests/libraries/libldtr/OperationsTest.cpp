// Tests of the operations of ldtr.h: what record each of them makes.

#include <cerrno>
#include <string>

#include "TraceFixture.h"

namespace {

constexpr unsigned long kGetDns = 0x51010100;
constexpr unsigned long kMergeIn60 = 0x51011400;
constexpr unsigned long kDebugRecord = 0x3400000;

class Operations : public TraceFixture {
 protected:
  void SetUp() override {
    TraceFixture::SetUp();
    ldtr::sendTo(keep());
  }
};

TEST_F(Operations, EntryRecordOfAPublicMethodNamesTheMethod) {
  ldtr_write(0x3200000, kGetDns, nullptr);
  ASSERT_EQ(records.size(), 1U);
  EXPECT_EQ(records[0].kind, ldtr::RecordKind::entry);
  EXPECT_EQ(records[0].events, 0x1000U);
  EXPECT_EQ(records[0].identifier, kGetDns);
  EXPECT_EQ(records[0].method, "getDns");
}

TEST_F(Operations, EntryRecordOfAnInternalMethodIsAskedForByItsOwnBit) {
  ldtr_write(0x32a0000, kMergeIn60, nullptr);
  ASSERT_EQ(records.size(), 1U);
  EXPECT_EQ(records[0].events, 0x10000U);
  EXPECT_EQ(records[0].method, "mergeIn60");
}

TEST_F(Operations, ExitRecordCarriesTheResult) {
  ldtr_exit_errcode(kGetDns, 33, 0x1000, 90, nullptr);
  ldtr_exit_errcode(kMergeIn60, 43, 0x10000, -1, nullptr);
  ASSERT_EQ(records.size(), 2U);
  EXPECT_EQ(records[0].kind, ldtr::RecordKind::exit);
  EXPECT_EQ(records[0].events, 0x3000U);
  EXPECT_EQ(records[0].result, 90);
  EXPECT_EQ(records[1].kind, ldtr::RecordKind::exit);
  EXPECT_EQ(records[1].events, 0x30000U);
  EXPECT_EQ(records[1].result, -1);
}

TEST_F(Operations, DebugMessageIsFormattedAndKeepsItsNewline) {
  ldtr_formater_local(kMergeIn60, kDebugRecord, nullptr)
      .debug(0xc8110000, "mergeIn60: delValue for %s has returned rc=%d\n", "zor-slapdPort", 53);
  ASSERT_EQ(records.size(), 1U);
  EXPECT_EQ(records[0].kind, ldtr::RecordKind::debug);
  EXPECT_EQ(records[0].events, 0x4000000U);
  EXPECT_EQ(records[0].identifier, kMergeIn60);
  EXPECT_EQ(records[0].method, "mergeIn60");
  EXPECT_EQ(records[0].messageClass, 0xc8110000UL);
  EXPECT_EQ(records[0].message, "mergeIn60: delValue for zor-slapdPort has returned rc=53\n");
}

TEST_F(Operations, DebugMessageWithoutAMethodHasNeitherIdentifierNorName) {
  ldtr_formater_global(kDebugRecord).debug(0xc8010000, "ConfigFile::freeParamVals passed a null pointer.\n");
  ASSERT_EQ(records.size(), 1U);
  EXPECT_EQ(records[0].identifier, 0U);
  EXPECT_EQ(records[0].method, "");
  EXPECT_EQ(records[0].messageClass, 0xc8010000UL);
  EXPECT_EQ(records[0].message, "ConfigFile::freeParamVals passed a null pointer.\n");
}

TEST_F(Operations, AMessageOfAnyLengthIsKeptWhole) {
  for (const std::size_t length : {0U, 1U, 254U, 255U, 256U, 257U, 4096U, 1'000'000U}) {
    const std::string text(length, 'x');
    records.clear();
    ldtr_formater_local(kMergeIn60, kDebugRecord, nullptr).debug(0, "%s", text.c_str());
    ldtr_formater_global(kDebugRecord).debug(0, "%s|%d", text.c_str(), 7);
    ASSERT_EQ(records.size(), 2U);
    EXPECT_EQ(records[0].message, text) << length;
    EXPECT_EQ(records[1].message, text + "|7") << length;
  }
}

TEST_F(Operations, AMessageWhoseArgumentsCannotBeShownKeepsItsFormat) {
  const wchar_t noCharacter[] = {static_cast<wchar_t>(0x7fffffff), 0};
  ldtr_formater_global(kDebugRecord).debug(0, "name %ls\n", noCharacter);
  ASSERT_EQ(records.size(), 1U);
  EXPECT_EQ(records[0].message, "name %ls\n");
}

TEST_F(Operations, AnUnknownIdentifierIsShownInHexadecimal) {
  ldtr_write(0x3200000, 0x12345678, nullptr);
  ldtr_exit_errcode(~0UL, 33, 0x1000, 0, nullptr);
  ASSERT_EQ(records.size(), 2U);
  EXPECT_EQ(records[0].method, "0x12345678");
  EXPECT_EQ(records[1].method, "0xffffffffffffffff");
}

TEST_F(Operations, WhatTheyAreHandedIsRecordedWhateverTheMaskIs) {
  ldtr::setEvents(0);
  ldtr_write(0x3200000, kGetDns, nullptr);
  ldtr_exit_errcode(kGetDns, 33, 0x1000, 0, nullptr);
  ldtr_formater_local(kGetDns, kDebugRecord, nullptr).debug(0, "text");
  EXPECT_EQ(records.size(), 3U);
}

TEST_F(Operations, ErrnoStaysAsItWas) {
  ldtr::sendTo([](const ldtr::Record&) { errno = EIO; });
  errno = ENOENT;
  ldtr_write(0x3200000, kGetDns, nullptr);
  ldtr_formater_global(kDebugRecord).debug(0, "%s", "text");
  EXPECT_EQ(errno, ENOENT);
}

TEST_F(Operations, SetEventsSetsTheMaskThatTheLibraryReads) {
  EXPECT_EQ(trcEvents, 0U);
  ldtr::setEvents(0x4003000);
  EXPECT_EQ(trcEvents, 0x4003000U);
  trcEvents = 0x1000;
  EXPECT_EQ(ldtr::events(), 0x1000U);
}

}  // namespace
