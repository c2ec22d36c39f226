// The object and its inventory: construction, destruction, accessors, getDns, dumpDns, freeParamVals.

#include <gmock/gmock.h>

#include <cstdlib>
#include <cstring>

#include "ConfigFileFixture.h"

namespace {

using fake::OutParameters;
using testing::HasSubstr;
using namespace traced;

const char kTop[] = "CN=CONFIGURATION";

class ConfigFileTest : public ConfigFileFixture {
 protected:
  // Three entries, listed in an order that is not that of their names.
  void putThree() {
    oldStore().put("cn=Configuration", {{"cn", {"Configuration"}}});
    oldStore().put("cn=SSL, cn=Configuration", {{"cn", {"SSL"}}});
    oldStore().put("cn=Admin , cn=Configuration", {{"cn", {"Admin"}}});
  }

  Lines inventory(const ConfigFile& config) {
    return Lines(config.getCfgDns(), config.getCfgDns() + config.getDnNum());
  }
};

const std::vector<std::string> kThreeDns = {"CN=CONFIGURATION", "CN=SSL,CN=CONFIGURATION", "CN=ADMIN,CN=CONFIGURATION"};

// --- Construction and destruction.

TEST_F(ConfigFileTest, ConstructorOpensTheStoreOnTheFileNameWithTheKey) {
  int keyRecord = 0;
  auto* key = reinterpret_cast<aes_key_data*>(&keyRecord);
  {
    ConfigFile config("conf/old.ldif", key);
    EXPECT_EQ(world.keyOf("conf/old.ldif"), key);
    EXPECT_EQ(config.getFileName(), "conf/old.ldif");
  }
  EXPECT_EQ(world.calls(), (Lines{"conf/old.ldif.open() = 0", "conf/old.ldif.close()"}));
  EXPECT_EQ(world.trace(), Lines());
}

TEST_F(ConfigFileTest, StoreGetsTheFileNameAsACStringAndTheObjectKeepsAllOfIt) {
  const std::string name("old\0rest", 8);
  ConfigFile config(name, nullptr);
  EXPECT_EQ(world.calls(), (Lines{"old.open() = 0"}));
  EXPECT_EQ(config.getFileName(), name);
}

TEST_F(ConfigFileTest, AnEmptyFileNameIsPassedOnToo) {
  ConfigFile config("", nullptr);
  EXPECT_EQ(config.getFileName(), "");
  EXPECT_EQ(world.calls(), (Lines{"open() = 0"}));
}

TEST_F(ConfigFileTest, WhatTheStoreThrowsOnOpeningReachesTheCaller) {
  world.faults().throwAt({.operation = "open"});
  EXPECT_THROW(ConfigFile("old", nullptr), fake::Thrown);
  EXPECT_EQ(world.calls(), (Lines{"old.open() throws"}));
}

TEST_F(ConfigFileTest, HasNoInventoryBeforeGetDns) {
  putThree();
  ConfigFile config("old", nullptr);
  EXPECT_EQ(config.getDnNum(), 0);
  EXPECT_EQ(config.getCfgDns(), nullptr);
}

TEST_F(ConfigFileTest, StoreIsAMemberOfTheObject) {
  construct();
  const auto* store = reinterpret_cast<const char*>(oldConfig().getCfgUtils());
  const auto* object = reinterpret_cast<const char*>(&oldConfig());
  EXPECT_GT(store, object);
  EXPECT_LE(store + sizeof(OVOConfigUtils::CfgUtils), object + sizeof(ConfigFile));
  EXPECT_NE(oldConfig().getCfgUtils(), newConfig().getCfgUtils());
  EXPECT_EQ(oldConfig().getCfgUtils(), oldConfig().getCfgUtils());
}

TEST_F(ConfigFileTest, DestructorFreesTheInventoryBeforeItClosesTheStore) {
  putThree();
  construct();
  ASSERT_EQ(oldConfig().getDns(), 0);
  EXPECT_EQ(world.resources().outstandingLibraryBlocks(), 1U);
  std::size_t outAtClosing = 99;
  Lines stringsAtClosing = {"not closed"};
  world.onCall([&](const std::string& call) {
    if (call == "old.close()") {
      outAtClosing = world.resources().outstandingLibraryBlocks();
      stringsAtClosing = world.resources().outstanding();
    }
  });
  close();
  EXPECT_EQ(outAtClosing, 0U);
  EXPECT_EQ(stringsAtClosing, Lines());
  world.onCall(nullptr);
}

TEST_F(ConfigFileTest, AccessorsMakeNoStoreCallAndWriteNoRecord) {
  putThree();
  open();
  (void)oldConfig().getFileName();
  (void)oldConfig().getDnNum();
  (void)oldConfig().getCfgDns();
  (void)oldConfig().getCfgUtils();
  close();
  EXPECT_EQ(world.calls(), (Lines{"old.close()", "new.close()"}));
  EXPECT_EQ(world.trace(), Lines());
}

// --- getDns.

TEST_F(ConfigFileTest, GetDnsKeepsTheNormalFormsInTheOrderOfTheStore) {
  putThree();
  construct();
  EXPECT_EQ(oldConfig().getDns(), 0);
  EXPECT_EQ(inventory(oldConfig()), kThreeDns);
  EXPECT_EQ(world.calls(),
            (Lines{"old.getSubordinates(CN=CONFIGURATION, 2) = 0", "formatDn(cn=Configuration) = CN=CONFIGURATION",
                   "formatDn(cn=SSL, cn=Configuration) = CN=SSL,CN=CONFIGURATION",
                   "formatDn(cn=Admin , cn=Configuration) = CN=ADMIN,CN=CONFIGURATION"}));
  EXPECT_EQ(world.trace(), (Lines{entryOf(kGetDns), exitOf(kGetDns, 0)}));
  EXPECT_EQ(world.allocationSizes(), (std::vector<std::size_t>{3 * sizeof(char*)}));
}

TEST_F(ConfigFileTest, GetDnsReleasesTheListOfTheStoreButNotTheInventory) {
  putThree();
  construct();
  ASSERT_EQ(oldConfig().getDns(), 0);
  // Three strings and the array are out, and all four are the inventory.
  EXPECT_EQ(world.resources().outstanding().size(), 4U);
  EXPECT_EQ(inventory(oldConfig()), kThreeDns);
}

TEST_F(ConfigFileTest, GetDnsLeavesOutTheBaseWhenTheStoreDoes) {
  putThree();
  oldStore().listBase(false);
  construct();
  EXPECT_EQ(oldConfig().getDns(), 0);
  EXPECT_EQ(inventory(oldConfig()), (Lines{"CN=SSL,CN=CONFIGURATION", "CN=ADMIN,CN=CONFIGURATION"}));
}

TEST_F(ConfigFileTest, GetDnsAnswersOneForAnyFailureOfTheListing) {
  putThree();
  construct();
  for (const int rc : {1, 16, 32, 80, 90, -1}) {
    world.forgetCalls();
    world.faults().clear();
    world.faults().fail({.operation = "getSubordinates"}, rc);
    EXPECT_EQ(oldConfig().getDns(), 1);
    EXPECT_EQ(oldConfig().getCfgDns(), nullptr);
    EXPECT_EQ(oldConfig().getDnNum(), 0);
    EXPECT_EQ(world.calls(), (Lines{"old.getSubordinates(CN=CONFIGURATION, 2) = " + std::to_string(rc)}));
    EXPECT_EQ(world.trace(), (Lines{entryOf(kGetDns), exitOf(kGetDns, 1)}));
    EXPECT_EQ(world.allocationSizes().size(), 0U);
  }
}

TEST_F(ConfigFileTest, FailingListingLeavesTheInventoryPointerAlone) {
  putThree();
  construct();
  ASSERT_EQ(oldConfig().getDns(), 0);
  char** before = oldConfig().getCfgDns();
  world.faults().fail({.operation = "getSubordinates"}, 80, OutParameters::untouched);
  EXPECT_EQ(oldConfig().getDns(), 1);
  EXPECT_EQ(oldConfig().getCfgDns(), before);
  EXPECT_EQ(inventory(oldConfig()), kThreeDns);
}

TEST_F(ConfigFileTest, StoreWritesItsCountStraightIntoTheObject) {
  putThree();
  construct();
  ASSERT_EQ(oldConfig().getDns(), 0);
  char** before = oldConfig().getCfgDns();
  world.faults().fail({.operation = "getSubordinates"}, 80, OutParameters::cleared);
  EXPECT_EQ(oldConfig().getDns(), 1);
  EXPECT_EQ(oldConfig().getCfgDns(), before);
  EXPECT_EQ(oldConfig().getDnNum(), 0);
  // The strings are out of the object's reach now.
  for (int i = 0; i < 3; ++i) {
    world.resources().freed(before[i]);
  }
}

TEST_F(ConfigFileTest, GetDnsAnswersNinetyWithoutMemoryForTheInventory) {
  putThree();
  construct();
  world.failAllocationOf(3 * sizeof(char*));
  EXPECT_EQ(oldConfig().getDns(), 90);
  EXPECT_EQ(oldConfig().getCfgDns(), nullptr);
  EXPECT_EQ(world.calls(), (Lines{"old.getSubordinates(CN=CONFIGURATION, 2) = 0"}));
  EXPECT_EQ(world.trace(),
            (Lines{entryOf(kGetDns), messageOf(kGetDns, "getDns: could not allocate memory for m_cfgDns\n"),
                   exitOf(kGetDns, 90)}));
  EXPECT_EQ(world.resources().outstanding(), Lines());
}

TEST_F(ConfigFileTest, AnEmptyConfigurationHasAnInventoryOfNoSlots) {
  construct();
  EXPECT_EQ(oldConfig().getDns(), 0);
  EXPECT_NE(oldConfig().getCfgDns(), nullptr);
  EXPECT_EQ(oldConfig().getDnNum(), 0);
  EXPECT_EQ(world.allocationSizes(), (std::vector<std::size_t>{0}));
}

TEST_F(ConfigFileTest, ANullAnswerToTheEmptyInventorysRequestIsAFailure) {
  construct();
  world.failAllocationOf(0);
  EXPECT_EQ(oldConfig().getDns(), 90);
  EXPECT_EQ(oldConfig().getCfgDns(), nullptr);
  EXPECT_EQ(world.messages(), (Lines{messageOf(kGetDns, "getDns: could not allocate memory for m_cfgDns\n")}));
}

TEST_F(ConfigFileTest, GetDnsStopsAtADnWithoutNormalForm) {
  putThree();
  for (int failing = 1; failing <= 3; ++failing) {
    construct();
    world.faults().clear();
    world.faults().fail({.operation = "formatDn", .nth = failing}, 1);
    EXPECT_EQ(oldConfig().getDns(), 1);
    ASSERT_NE(oldConfig().getCfgDns(), nullptr);
    EXPECT_EQ(oldConfig().getDnNum(), 3);
    EXPECT_EQ(world.calls().size(), 1U + static_cast<std::size_t>(failing));
    EXPECT_THAT(world.calls().back(), HasSubstr("= null"));
    for (int i = 0; i < 3; ++i) {
      if (i < failing - 1) {
        EXPECT_STREQ(oldConfig().getCfgDns()[i], kThreeDns[static_cast<std::size_t>(i)].c_str());
      } else {
        EXPECT_EQ(oldConfig().getCfgDns()[i], nullptr);
      }
    }
    EXPECT_EQ(world.trace(), (Lines{entryOf(kGetDns), exitOf(kGetDns, 1)}));
    close();
    EXPECT_EQ(world.resources().outstanding(), Lines());
  }
}

TEST_F(ConfigFileTest, ASecondGetDnsReplacesTheInventoryWithoutReleasingTheFirst) {
  putThree();
  construct();
  ASSERT_EQ(oldConfig().getDns(), 0);
  char** first = oldConfig().getCfgDns();
  oldStore().put("cn=Audit,cn=Configuration", {{"cn", {"Audit"}}});
  EXPECT_EQ(oldConfig().getDns(), 0);
  EXPECT_NE(oldConfig().getCfgDns(), first);
  EXPECT_EQ(oldConfig().getDnNum(), 4);
  close();
  // The first inventory is still there: array and strings.
  EXPECT_EQ(world.resources().outstanding().size(), 4U);
  EXPECT_EQ(Lines(first, first + 3), kThreeDns);
  for (int i = 0; i < 3; ++i) {
    world.resources().freed(first[i]);
  }
  world.resources().freed(first);
}

TEST_F(ConfigFileTest, WhatTheStoreThrowsInGetDnsPassesAfterTheExitRecord) {
  putThree();
  for (int call = 1; call <= 4; ++call) {
    construct();
    world.faults().clear();
    world.faults().throwAtCall(call);
    EXPECT_THROW(oldConfig().getDns(), fake::Thrown);
    EXPECT_EQ(world.trace(), (Lines{entryOf(kGetDns), exitOf(kGetDns, 0)}));
    close();
    EXPECT_EQ(world.resources().outstanding(), Lines()) << "thrown by call " << call;
  }
}

// --- dumpDns.

TEST_F(ConfigFileTest, DumpDnsPrintsOneDnALineAndAnEmptyLine) {
  putThree();
  open();
  testing::internal::CaptureStdout();
  oldConfig().dumpDns();
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "CN=CONFIGURATION\nCN=SSL,CN=CONFIGURATION\nCN=ADMIN,CN=CONFIGURATION\n\n");
  EXPECT_EQ(world.calls(), Lines());
  EXPECT_EQ(world.trace(), Lines());
}

TEST_F(ConfigFileTest, DumpDnsOfNoInventoryPrintsTheEmptyLineOnly) {
  construct();
  testing::internal::CaptureStdout();
  oldConfig().dumpDns();
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "\n");
  ASSERT_EQ(oldConfig().getDns(), 0);
  testing::internal::CaptureStdout();
  oldConfig().dumpDns();
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "\n");
}

TEST_F(ConfigFileTest, NothingElsePrints) {
  putThree();
  newStore().put(kTop, {{"cn", {"CONFIGURATION"}}});
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  open();
  newConfig().mergeConfigFiles(&oldConfig(), "6.0");
  close();
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

// --- freeParamVals.

TEST_F(ConfigFileTest, FreeParamValsFreesAndNullsEachStringAndKeepsTheArray) {
  construct();
  char** list = world.resources().newList({"a", "b", "c"}, fake::Kind::valueBlock);
  EXPECT_EQ(oldConfig().freeParamVals(list), 0);
  EXPECT_EQ(Lines(), world.resources().outstanding());
  EXPECT_EQ(world.resources().outstandingValueBlocks(), 1U);
  for (int i = 0; i < 4; ++i) {
    EXPECT_EQ(list[i], nullptr);
  }
  EXPECT_EQ(world.trace(), Lines());
  EXPECT_EQ(world.calls(), Lines());
}

TEST_F(ConfigFileTest, FreeParamValsMayBeCalledAgain) {
  construct();
  char** list = world.resources().newList({"a"}, fake::Kind::valueBlock);
  EXPECT_EQ(oldConfig().freeParamVals(list), 0);
  EXPECT_EQ(oldConfig().freeParamVals(list), 0);
  EXPECT_EQ(world.trace(), Lines());
}

TEST_F(ConfigFileTest, FreeParamValsStopsAtTheFirstNullSlot) {
  construct();
  char** list = world.resources().newList({"a", "b", "c"}, fake::Kind::valueBlock);
  char* second = list[1];
  list[1] = nullptr;
  EXPECT_EQ(oldConfig().freeParamVals(list), 0);
  EXPECT_STREQ(list[2], "c");
  world.resources().freed(list[2]);
  world.resources().freed(second);
}

TEST_F(ConfigFileTest, FreeParamValsOfAnEmptyListSaysNothing) {
  construct();
  char* list[] = {nullptr};
  EXPECT_EQ(oldConfig().freeParamVals(list), 0);
  EXPECT_EQ(world.trace(), Lines());
}

TEST_F(ConfigFileTest, FreeParamValsOfANullListAnswers56AndReportsItGlobally) {
  construct();
  EXPECT_EQ(oldConfig().freeParamVals(nullptr), 56);
  EXPECT_EQ(world.trace(), (Lines{"debug(global, 0xc8010000) ConfigFile::freeParamVals passed a null pointer.\n"}));
}

TEST_F(ConfigFileTest, FreeParamValsReportsOnlyUnderTheDebugBit) {
  construct();
  for (const unsigned mask : {0U, ~0x4000000U, 0x33000U}) {
    world.setEvents(mask);
    EXPECT_EQ(oldConfig().freeParamVals(nullptr), 56);
  }
  EXPECT_EQ(world.trace(), Lines());
  world.setEvents(0x4000000);
  EXPECT_EQ(oldConfig().freeParamVals(nullptr), 56);
  EXPECT_EQ(world.trace(), (Lines{fake::nullListMessage()}));
}

}  // namespace
