// Tests of the table of trace identifiers.

#include <gtest/gtest.h>

#include <set>
#include <string>

#include "TraceControl.h"

namespace {

TEST(MethodNames, KnowTheMethodsByTheirIdentifiers) {
  EXPECT_STREQ(ldtr::methodName(0x51010100), "getDns");
  EXPECT_STREQ(ldtr::methodName(0x51010500), "mergeConfigFiles");
  EXPECT_STREQ(ldtr::methodName(0x51010a00), "addTo51");
  EXPECT_STREQ(ldtr::methodName(0x51010c00), "addTo60");
  EXPECT_STREQ(ldtr::methodName(0x51011000), "check60");
  EXPECT_STREQ(ldtr::methodName(0x51011400), "mergeIn60");
  EXPECT_STREQ(ldtr::methodName(0x51011500), "addCfgEntry");
  EXPECT_STREQ(ldtr::methodName(0x51011600), "mergeCfgEntry");
  EXPECT_STREQ(ldtr::methodName(0x51011700), "mergeChangeDnEntry");
  EXPECT_STREQ(ldtr::methodName(0x51011900), "isMultiVal");
  EXPECT_STREQ(ldtr::methodName(0x51011e00), "isOVOFile");
  EXPECT_STREQ(ldtr::methodName(0x51012000), "processIncSchema");
  EXPECT_STREQ(ldtr::methodName(0x51012100), "pluginCmp");
}

TEST(MethodNames, GiveBothMethodsOfASharedIdentifier) {
  EXPECT_STREQ(ldtr::methodName(0x51011b00), "removeCLInfo|editCLInfo");
}

TEST(MethodNames, AreDistinctAndWithoutGapsFromTheFirstToTheLast) {
  std::set<std::string> names;
  for (unsigned long identifier = 0x51010100; identifier <= 0x51012100; identifier += 0x100) {
    const char* name = ldtr::methodName(identifier);
    ASSERT_NE(name, nullptr) << std::hex << identifier;
    EXPECT_TRUE(names.insert(name).second) << name;
  }
  EXPECT_EQ(names.size(), 33U);
}

TEST(MethodNames, DoNotKnowAnythingElse) {
  for (const unsigned long identifier :
       {0UL, 0x51010000UL, 0x51012200UL, 0x5101ff00UL, 0x51010101UL, 0x51020100UL, 0x151010100UL, ~0UL}) {
    EXPECT_EQ(ldtr::methodName(identifier), nullptr) << std::hex << identifier;
  }
}

}  // namespace
