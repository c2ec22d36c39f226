// Tests of the lines that the text sink writes.

#include <gtest/gtest.h>

#include "TraceControl.h"

namespace {

ldtr::Record debugRecord(unsigned long identifier, std::string_view method, std::string_view message) {
  ldtr::Record record;
  record.identifier = identifier;
  record.method = method;
  record.message = message;
  return record;
}

TEST(TextLine, NamesKindAndMethodOfAnEntryRecord) {
  ldtr::Record record;
  record.kind = ldtr::RecordKind::entry;
  record.identifier = 0x51010500;
  record.method = "mergeConfigFiles";
  EXPECT_EQ(ldtr::textLine(record), "entry mergeConfigFiles");
}

TEST(TextLine, AddsTheResultOfAnExitRecord) {
  ldtr::Record record;
  record.kind = ldtr::RecordKind::exit;
  record.identifier = 0x51010500;
  record.method = "mergeConfigFiles";
  record.result = 1;
  EXPECT_EQ(ldtr::textLine(record), "exit  mergeConfigFiles result=1");
  record.result = -7;
  EXPECT_EQ(ldtr::textLine(record), "exit  mergeConfigFiles result=-7");
}

TEST(TextLine, AddsTheMessageOfADebugRecordWithoutItsNewline) {
  EXPECT_EQ(ldtr::textLine(debugRecord(1, "addTo60", "addTo60: rc=1\n")), "debug addTo60 addTo60: rc=1");
  EXPECT_EQ(ldtr::textLine(debugRecord(1, "addTo60", "no newline")), "debug addTo60 no newline");
  EXPECT_EQ(ldtr::textLine(debugRecord(1, "addTo60", "")), "debug addTo60 ");
}

TEST(TextLine, SaysThatAMessageHasNoMethod) {
  EXPECT_EQ(ldtr::textLine(debugRecord(0, "", "a text\n")), "debug (no method) a text");
}

TEST(TextLine, StaysOneLineWhateverTheMessageHolds) {
  EXPECT_EQ(ldtr::textLine(debugRecord(1, "m", "a\nexit  forged result=0\n\n")),
            "debug m a\\nexit  forged result=0\\n");
  EXPECT_EQ(ldtr::textLine(debugRecord(1, "m", "\x1b[31mred\r\n")), "debug m \\x1b[31mred\\r");
}

}  // namespace
