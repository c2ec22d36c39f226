// The support that other tests rest on: what it must notice, it notices.

#include <gtest/gtest.h>

#include "SimpleDn.h"
#include "World.h"

extern "C" void* __wrap_malloc(std::size_t size);
extern "C" char* __wrap_strdup(const char* text);
extern "C" void __wrap_free(void* block);

namespace {

using fake::OutParameters;
using OVOConfigUtils::CfgUtils;
using Lines = std::vector<std::string>;

class Support : public testing::Test {
 protected:
  Support() { world.store("old").put("CN=A", {{"cn", {"a"}}, {"x", {"1", "2"}}}); }
  fake::World world;
};

TEST_F(Support, AStringThatIsNotFreedIsNoticed) {
  CfgUtils store("old", nullptr);
  char* value = nullptr;
  ASSERT_EQ(store.getParamValueInfo("CN=A", "cn", &value), 0);
  EXPECT_EQ(world.resources().outstanding(), (Lines{"string a"}));
  __wrap_free(value);
  EXPECT_EQ(world.resources().outstanding(), Lines());
  EXPECT_EQ(world.resources().violations(), Lines());
}

TEST_F(Support, AStringThatIsFreedTwiceIsNoticed) {
  char* value = world.resources().newString("a");
  __wrap_free(value);
  __wrap_free(value);
  EXPECT_EQ(world.resources().violations().size(), 1U);
}

TEST_F(Support, ABlockOfAValueListMayBeLeftButItsStringsMayNot) {
  CfgUtils store("old", nullptr);
  char** values = nullptr;
  int count = 0;
  ASSERT_EQ(store.getParamArrayValueInfo("CN=A", "x", &values, &count), 0);
  EXPECT_EQ(world.resources().outstanding().size(), 2U);
  __wrap_free(values[0]);
  __wrap_free(values[1]);
  EXPECT_EQ(world.resources().outstanding(), Lines());
  EXPECT_EQ(world.resources().outstandingValueBlocks(), 1U);
}

TEST_F(Support, HandlesAreNoticedWhenLeftReleasedTwiceOrInTheWrongOrder) {
  CfgUtils store("old", nullptr);
  _CFGMessage* entry = nullptr;
  _CFGMessage** cursor = nullptr;
  char* name = nullptr;
  ASSERT_EQ(store.getFirstEntry("CN=A", &entry), 0);
  ASSERT_EQ(store.getFirstAttribute(entry, &name, &cursor), 0);
  __wrap_free(name);
  EXPECT_EQ(world.resources().outstanding(), (Lines{"entry handle old:CN=A", "cursor of old:CN=A"}));
  cfg_msgfree(entry);
  EXPECT_EQ(world.resources().violations(), (Lines{"cfg_msgfree before cfg_ber_free: old:CN=A"}));
  cfg_ber_free(cursor);
  cfg_ber_free(cursor);
  cfg_msgfree(entry);
  EXPECT_EQ(world.resources().violations().size(), 3U);
  EXPECT_EQ(world.resources().outstanding(), Lines());
}

TEST_F(Support, AHandleOfAnotherStoreIsNoticed) {
  world.store("new").put("CN=A", {});
  CfgUtils oldStore("old", nullptr);
  CfgUtils newStore("new", nullptr);
  _CFGMessage* entry = nullptr;
  _CFGMessage** cursor = nullptr;
  char* name = nullptr;
  ASSERT_EQ(oldStore.getFirstEntry("CN=A", &entry), 0);
  EXPECT_NE(newStore.getFirstAttribute(entry, &name, &cursor), 0);
  EXPECT_EQ(world.resources().violations().size(), 1U);
  cfg_msgfree(entry);
}

TEST_F(Support, AllocationsFailWhereTheyAreToldTo) {
  world.failAllocation(2);
  void* first = __wrap_malloc(8);
  EXPECT_NE(first, nullptr);
  EXPECT_EQ(__wrap_strdup("x"), nullptr);
  world.failAllocationOf(24);
  char* third = __wrap_strdup("y");
  EXPECT_EQ(__wrap_malloc(24), nullptr);
  EXPECT_EQ(world.allocationSizes(), (std::vector<std::size_t>{8, 2, 2, 24}));
  EXPECT_EQ(world.resources().outstandingLibraryBlocks(), 2U);
  __wrap_free(first);
  __wrap_free(third);
}

TEST_F(Support, FaultsStrikeTheCallsThatTheyName) {
  CfgUtils store("old", nullptr);
  world.faults().fail({.store = "old", .operation = "addValue", .attribute = "x", .nth = 2}, 80);
  EXPECT_EQ(store.addValue("CN=A", "x", "3"), 0);
  EXPECT_EQ(store.addValue("CN=A", "y", "3"), 0);
  EXPECT_FALSE(world.faults().struck());
  EXPECT_EQ(store.addValue("CN=A", "x", "4"), 80);
  EXPECT_TRUE(world.faults().struck());
  EXPECT_EQ(store.addValue("CN=A", "x", "5"), 0);
  EXPECT_EQ(world.store("old").values("CN=A", "x"), (Lines{"1", "2", "3", "5"}));
  world.faults().throwAtCall(1);
  EXPECT_THROW(store.setValue("CN=A", "x", "6"), fake::Thrown);
  EXPECT_EQ(world.calls().back(), "old.setValue(CN=A, x, 6) throws");
}

TEST_F(Support, FailingCallsClearTheirOutParametersOrLeaveThem) {
  CfgUtils store("old", nullptr);
  char text[] = "before";
  char* value = text;
  world.faults().failCall(1, 80, OutParameters::untouched);
  EXPECT_EQ(store.getParamValueInfo("CN=A", "cn", &value), 80);
  EXPECT_EQ(value, text);
  world.faults().failCall(1, 80);
  EXPECT_EQ(store.getParamValueInfo("CN=A", "cn", &value), 80);
  EXPECT_EQ(value, nullptr);
}

TEST_F(Support, FileFunctionsKnowTheWorldsFiles) {
  char note[] = "note";
  EXPECT_EQ(doesFileExist("/a"), 0);
  world.files().insert("/a");
  EXPECT_NE(doesFileExist("/a"), 0);
  EXPECT_NE(copyFile("/a", "/b", note, 0, 0660), 0);
  EXPECT_NE(doesFileExist("/b"), 0);
  world.faults().fail({.operation = "copyFile"}, 1);
  EXPECT_EQ(copyFile("/a", "/c", note, 0, 0660), 0);
  EXPECT_EQ(world.fileCopies().size(), 1U);
  EXPECT_EQ(world.calls()[2], "copyFile(/a, /b, note, 0, 432) = 1");
}

TEST_F(Support, UnbalancedRecordsAreNoticed) {
  ldtr_write(0x3200000, 1, nullptr);
  ldtr_write(0x32a0000, 2, nullptr);
  EXPECT_NE(fake::imbalance(world.records()), "");
  ldtr_exit_errcode(1, 33, 0x1000, 0, nullptr);
  EXPECT_NE(fake::imbalance(world.records()), "");
  world.forgetCalls();
  ldtr_write(0x3200000, 1, nullptr);
  ldtr_formater_local(1, 0x3400000, nullptr).debug(0xc8110000, "%s %d\n", "x", 1);
  ldtr_exit_errcode(1, 33, 0x1000, 0, nullptr);
  EXPECT_EQ(fake::imbalance(world.records()), "");
  EXPECT_EQ(world.messages(), (Lines{"debug(0x1, 0xc8110000) x 1\n"}));
}

TEST_F(Support, UnusualTraceArgumentsShowInTheTexts) {
  ldtr_formater_global(0x3400001).debug(0xc8010000, "x\n");
  ldtr_formater_local(1, 0x3400000, this).debug(0xc8110000, "y\n");
  ldtr_exit_errcode(1, 43, 0x10000, -1, this);
  EXPECT_EQ(world.trace(), (Lines{"debug(global, 0xc8010000) x\n formatter of 0x3400001",
                                  "debug(0x1, 0xc8110000) y\n with data", "exit(0x1, 43, 0x10000, -1) with data"}));
}

TEST_F(Support, SimpleDnsIgnoreCaseAndBlanksAroundCommas) {
  EXPECT_EQ(fake::simpleDn(" cn=Front End , cn=x "), "CN=FRONT END,CN=X");
  EXPECT_EQ(fake::simpleDn("nothing"), "");
}

}  // namespace
