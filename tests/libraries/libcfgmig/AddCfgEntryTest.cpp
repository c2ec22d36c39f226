// addCfgEntry: an entry that only the old configuration has is created in the new one.

#include "ConfigFileFixture.h"

namespace {

using fake::nullListMessage;
using fake::OutParameters;
using namespace traced;

const char kDn[] = "CN=FRONT END,CN=CONFIGURATION";

class AddCfgEntry : public ConfigFileFixture {
 protected:
  void put(std::vector<fake::Attribute> attributes) { oldStore().put(kDn, std::move(attributes)); }

  int add() {
    open();
    return newConfig().addCfgEntry(modifiable(kDn), &oldConfig());
  }

  // What each addition begins with.
  const Lines m_reads = {"old.getParamValueInfo(CN=FRONT END,CN=CONFIGURATION, CN) = 0",
                         "old.getParamArrayValueInfo(CN=FRONT END,CN=CONFIGURATION, OBJECTCLASS) = 0"};

  Lines afterReads(const Lines& rest) const {
    Lines lines = m_reads;
    lines.insert(lines.end(), rest.begin(), rest.end());
    return lines;
  }

  Lines traceWith(const Lines& messages, long result) const {
    Lines lines = {entryOf(kAddCfgEntry)};
    lines.insert(lines.end(), messages.begin(), messages.end());
    lines.push_back(exitOf(kAddCfgEntry, result));
    return lines;
  }
};

TEST_F(AddCfgEntry, CreatesTheEntryWithAllClassesAndCopiesEveryAttribute) {
  put({{"objectClass", {"A", "B", "C", "D"}}, {"cn", {"FRONT END"}}, {"zor-slapdSetenv", {"X=1", "Y=2"}}});
  EXPECT_EQ(add(), 1);
  EXPECT_EQ(world.calls(), afterReads({"new.addEntry(CN=FRONT END,CN=CONFIGURATION, FRONT END, A, B) = 0",
                                       "new.addValue(CN=FRONT END,CN=CONFIGURATION, OBJECTCLASS, C) = 0",
                                       "new.addValue(CN=FRONT END,CN=CONFIGURATION, OBJECTCLASS, D) = 0",
                                       "old.getFirstEntry(CN=FRONT END,CN=CONFIGURATION) = 0",
                                       "old.getFirstAttribute(CN=FRONT END,CN=CONFIGURATION) = 0",
                                       "old.getParamArrayValueInfo(CN=FRONT END,CN=CONFIGURATION, objectClass) = 0",
                                       "new.addValue(CN=FRONT END,CN=CONFIGURATION, objectClass, A) = 0",
                                       "new.addValue(CN=FRONT END,CN=CONFIGURATION, objectClass, B) = 0",
                                       "new.addValue(CN=FRONT END,CN=CONFIGURATION, objectClass, C) = 0",
                                       "new.addValue(CN=FRONT END,CN=CONFIGURATION, objectClass, D) = 0",
                                       "old.getNextAttribute(CN=FRONT END,CN=CONFIGURATION) = 0",
                                       "old.getParamArrayValueInfo(CN=FRONT END,CN=CONFIGURATION, cn) = 0",
                                       "new.addValue(CN=FRONT END,CN=CONFIGURATION, cn, FRONT END) = 0",
                                       "old.getNextAttribute(CN=FRONT END,CN=CONFIGURATION) = 0",
                                       "old.getParamArrayValueInfo(CN=FRONT END,CN=CONFIGURATION, zor-slapdSetenv) = 0",
                                       "new.addValue(CN=FRONT END,CN=CONFIGURATION, zor-slapdSetenv, X=1) = 0",
                                       "new.addValue(CN=FRONT END,CN=CONFIGURATION, zor-slapdSetenv, Y=2) = 0",
                                       "old.getNextAttribute(CN=FRONT END,CN=CONFIGURATION) = 0",
                                       "cfg_ber_free(old:CN=FRONT END,CN=CONFIGURATION)",
                                       "cfg_msgfree(old:CN=FRONT END,CN=CONFIGURATION)"}));
  EXPECT_EQ(world.trace(), traceWith({}, 1));
  EXPECT_EQ(newStore().values(kDn, "OBJECTCLASS"), (Lines{"A", "B", "C", "D"}));
  EXPECT_EQ(newStore().values(kDn, "CN"), (Lines{"FRONT END"}));
  EXPECT_EQ(newStore().values(kDn, "zor-slapdSetenv"), (Lines{"X=1", "Y=2"}));
}

TEST_F(AddCfgEntry, GivesTwoClassesInOneCall) {
  put({{"OBJECTCLASS", {"A", "B"}}, {"CN", {"x"}}});
  EXPECT_EQ(add(), 1);
  EXPECT_EQ(world.calls()[2], "new.addEntry(CN=FRONT END,CN=CONFIGURATION, x, A, B) = 0");
  EXPECT_EQ(world.calls()[3], "old.getFirstEntry(CN=FRONT END,CN=CONFIGURATION) = 0");
}

TEST_F(AddCfgEntry, GivesASingleClassTheCompanionTop) {
  put({{"OBJECTCLASS", {"zor-slapdFrontEnd"}}, {"CN", {"FRONT END"}}});
  EXPECT_EQ(add(), 1);
  EXPECT_EQ(world.calls()[2], "new.addEntry(CN=FRONT END,CN=CONFIGURATION, FRONT END, zor-slapdFrontEnd, TOP) = 0");
  EXPECT_EQ(newStore().values(kDn, "OBJECTCLASS"), (Lines{"zor-slapdFrontEnd", "TOP"}));
}

TEST_F(AddCfgEntry, SkipsNoAttribute) {
  put({{"OBJECTCLASS", {"A", "B"}}, {"CN", {"x"}}, {"zor-slapdVersion", {"6.0"}}, {"zor-slapdPlugin", {"p", "q"}}});
  EXPECT_EQ(add(), 1);
  EXPECT_EQ(newStore().values(kDn, "zor-slapdVersion"), (Lines{"6.0"}));
  EXPECT_EQ(newStore().values(kDn, "zor-slapdPlugin"), (Lines{"p", "q"}));
}

TEST_F(AddCfgEntry, LeavesTheOldConfigurationAsItWas) {
  put({{"OBJECTCLASS", {"A", "B"}}, {"CN", {"x"}}, {"zor-slapdPort", {"389"}}});
  const auto before = oldStore().entries();
  add();
  EXPECT_EQ(oldStore().entries(), before);
}

TEST_F(AddCfgEntry, EndsWhenTheNamingValueCannotBeRead) {
  put({{"OBJECTCLASS", {"A"}}, {"CN", {"x"}}});
  world.faults().fail({.store = "old", .operation = "getParamValueInfo", .attribute = "CN"}, 52);
  EXPECT_EQ(add(), 0);
  EXPECT_EQ(world.calls(), (Lines{"old.getParamValueInfo(CN=FRONT END,CN=CONFIGURATION, CN) = 52"}));
  // No clean-up: a null list would have been reported.
  EXPECT_EQ(world.trace(), traceWith({messageOf(kAddCfgEntry, "addCfgEntry: gerParamValueInfo returned rc=52\n")}, 0));
}

TEST_F(AddCfgEntry, EndsWhenTheObjectClassesCannotBeRead) {
  for (const int rc : {16, 32, 80}) {
    oldStore().clear();
    put({{"OBJECTCLASS", {"A"}}, {"CN", {"x"}}});
    world.faults().clear();
    world.faults().fail({.store = "old", .operation = "getParamArrayValueInfo", .attribute = "OBJECTCLASS"}, rc);
    EXPECT_EQ(add(), 0);
    const std::string code = std::to_string(rc);
    EXPECT_EQ(world.calls(),
              (Lines{"old.getParamValueInfo(CN=FRONT END,CN=CONFIGURATION, CN) = 0",
                     "old.getParamArrayValueInfo(CN=FRONT END,CN=CONFIGURATION, OBJECTCLASS) = " + code}));
    EXPECT_EQ(world.trace(),
              traceWith({messageOf(kAddCfgEntry, "addCfgEntry: gerParamArrayValueInfo returned rc=" + code + "\n"),
                         nullListMessage()},
                        0));
    close();
    EXPECT_EQ(world.resources().outstanding(), Lines());
  }
}

TEST_F(AddCfgEntry, AnEntryWithoutObjectClassAttributeIsNotCreated) {
  put({{"CN", {"x"}}});
  EXPECT_EQ(add(), 0);
  EXPECT_EQ(world.messages(), (Lines{messageOf(kAddCfgEntry, "addCfgEntry: gerParamArrayValueInfo returned rc=16\n"),
                                     nullListMessage()}));
  EXPECT_EQ(newStore().find(kDn), nullptr);
}

TEST_F(AddCfgEntry, ReportsAFailedCreationWithTwoClasses) {
  put({{"OBJECTCLASS", {"A", "B", "C"}}, {"CN", {"x"}}});
  world.faults().fail({.store = "new", .operation = "addEntry"}, 53);
  EXPECT_EQ(add(), 0);
  EXPECT_EQ(world.calls(), afterReads({"new.addEntry(CN=FRONT END,CN=CONFIGURATION, x, A, B) = 53"}));
  EXPECT_EQ(world.trace(),
            traceWith({messageOf(kAddCfgEntry, "addCfgEntry: addEntry(1) returned rc=53\n"), nullListMessage()}, 0));
}

TEST_F(AddCfgEntry, ReportsAFailedCreationWithOneClass) {
  put({{"OBJECTCLASS", {"A"}}, {"CN", {"x"}}});
  newStore().put(kDn, {{"CN", {"x"}}});
  EXPECT_EQ(add(), 0);
  EXPECT_EQ(world.calls(), afterReads({"new.addEntry(CN=FRONT END,CN=CONFIGURATION, x, A, TOP) = 68"}));
  EXPECT_EQ(world.trace(),
            traceWith({messageOf(kAddCfgEntry, "addCfgEntry: addEntry(2) returned rc=68\n"), nullListMessage()}, 0));
}

TEST_F(AddCfgEntry, PassesOnAnAbsentNamingValue) {
  put({{"OBJECTCLASS", {"A"}}});
  EXPECT_EQ(add(), 0);
  EXPECT_EQ(world.calls(), afterReads({"new.addEntry(CN=FRONT END,CN=CONFIGURATION, null, A, TOP) = 34"}));
}

TEST_F(AddCfgEntry, StopsAtTheFirstFurtherClassThatCannotBeAdded) {
  put({{"OBJECTCLASS", {"A", "B", "C", "D", "E"}}, {"CN", {"x"}}});
  world.faults().fail({.store = "new", .operation = "addValue", .nth = 2}, 19);
  EXPECT_EQ(add(), 0);
  EXPECT_EQ(world.calls(), afterReads({"new.addEntry(CN=FRONT END,CN=CONFIGURATION, x, A, B) = 0",
                                       "new.addValue(CN=FRONT END,CN=CONFIGURATION, OBJECTCLASS, C) = 0",
                                       "new.addValue(CN=FRONT END,CN=CONFIGURATION, OBJECTCLASS, D) = 19"}));
  EXPECT_EQ(
      world.trace(),
      traceWith({messageOf(kAddCfgEntry, "addCfgEntry: addValue(1) returned rc=19, i=3\n"), nullListMessage()}, 0));
}

TEST_F(AddCfgEntry, CopiesOnWithoutCreatingWhenTheClassListIsEmpty) {
  put({{"OBJECTCLASS", {}}, {"CN", {"x"}}});
  EXPECT_EQ(add(), 0);
  EXPECT_EQ(world.calls(), afterReads({"old.getFirstEntry(CN=FRONT END,CN=CONFIGURATION) = 0",
                                       "old.getFirstAttribute(CN=FRONT END,CN=CONFIGURATION) = 0",
                                       "old.getParamArrayValueInfo(CN=FRONT END,CN=CONFIGURATION, OBJECTCLASS) = 0",
                                       "old.getNextAttribute(CN=FRONT END,CN=CONFIGURATION) = 0",
                                       "old.getParamArrayValueInfo(CN=FRONT END,CN=CONFIGURATION, CN) = 0",
                                       "new.addValue(CN=FRONT END,CN=CONFIGURATION, CN, x) = 32",
                                       "old.getNextAttribute(CN=FRONT END,CN=CONFIGURATION) = 0",
                                       "cfg_ber_free(old:CN=FRONT END,CN=CONFIGURATION)",
                                       "cfg_msgfree(old:CN=FRONT END,CN=CONFIGURATION)"}));
  EXPECT_EQ(world.trace(), traceWith({}, 0));
  EXPECT_EQ(newStore().find(kDn), nullptr);
}

TEST_F(AddCfgEntry, SucceedsWithAnEmptyClassListWhenTheStoreTakesTheValues) {
  put({{"OBJECTCLASS", {}}, {"CN", {"x"}}});
  newStore().put(kDn, {});
  EXPECT_EQ(add(), 1);
  EXPECT_EQ(newStore().values(kDn, "CN"), (Lines{"x"}));
}

TEST_F(AddCfgEntry, SucceedsWhenThereWasNothingToWrite) {
  put({{"OBJECTCLASS", {}}});
  EXPECT_EQ(add(), 1);
  EXPECT_EQ(newStore().entries().size(), 0U);
}

TEST_F(AddCfgEntry, ReportsTheCreationWhenTheWalkCannotBegin) {
  put({{"OBJECTCLASS", {"A"}}, {"CN", {"x"}}});
  world.faults().fail({.store = "old", .operation = "getFirstEntry"}, 80);
  EXPECT_EQ(add(), 1);
  EXPECT_EQ(world.calls(),
            afterReads({"new.addEntry(CN=FRONT END,CN=CONFIGURATION, x, A, TOP) = 0",
                        "old.getFirstEntry(CN=FRONT END,CN=CONFIGURATION) = 80", "old.getFirstAttribute(null) = 89"}));
  EXPECT_EQ(world.trace(), traceWith({nullListMessage()}, 1));
}

TEST_F(AddCfgEntry, ReleasesTheEntryWhenItsFirstAttributeCannotBeRead) {
  put({{"OBJECTCLASS", {"A"}}, {"CN", {"x"}}});
  world.faults().fail({.store = "old", .operation = "getFirstAttribute"}, 80);
  EXPECT_EQ(add(), 1);
  EXPECT_EQ(world.calls(), afterReads({"new.addEntry(CN=FRONT END,CN=CONFIGURATION, x, A, TOP) = 0",
                                       "old.getFirstEntry(CN=FRONT END,CN=CONFIGURATION) = 0",
                                       "old.getFirstAttribute(CN=FRONT END,CN=CONFIGURATION) = 80",
                                       "cfg_msgfree(old:CN=FRONT END,CN=CONFIGURATION)"}));
  EXPECT_EQ(world.trace(), traceWith({nullListMessage()}, 1));
}

TEST_F(AddCfgEntry, AFailedAdvanceEndsTheWalkSilently) {
  put({{"OBJECTCLASS", {"A"}}, {"CN", {"x"}}, {"zor-slapdPort", {"389"}}});
  for (const OutParameters outParameters : {OutParameters::cleared, OutParameters::untouched}) {
    newStore().clear();
    world.faults().clear();
    world.faults().fail({.store = "old", .operation = "getNextAttribute"}, 80, outParameters);
    EXPECT_EQ(add(), 1);
    EXPECT_EQ(world.calls(), afterReads({"new.addEntry(CN=FRONT END,CN=CONFIGURATION, x, A, TOP) = 0",
                                         "old.getFirstEntry(CN=FRONT END,CN=CONFIGURATION) = 0",
                                         "old.getFirstAttribute(CN=FRONT END,CN=CONFIGURATION) = 0",
                                         "old.getParamArrayValueInfo(CN=FRONT END,CN=CONFIGURATION, OBJECTCLASS) = 0",
                                         "new.addValue(CN=FRONT END,CN=CONFIGURATION, OBJECTCLASS, A) = 0",
                                         "old.getNextAttribute(CN=FRONT END,CN=CONFIGURATION) = 80",
                                         "cfg_ber_free(old:CN=FRONT END,CN=CONFIGURATION)",
                                         "cfg_msgfree(old:CN=FRONT END,CN=CONFIGURATION)"}));
    EXPECT_EQ(world.trace(), traceWith({}, 1));
  }
}

TEST_F(AddCfgEntry, AnUnreadableAttributeIsLeftOutAndTheWalkGoesOn) {
  put({{"OBJECTCLASS", {"A"}}, {"zor-slapdPort", {"389"}}, {"CN", {"x"}}});
  world.faults().fail({.store = "old", .operation = "getParamArrayValueInfo", .attribute = "zor-slapdPort"}, 80);
  EXPECT_EQ(add(), 1);
  // The list of that attribute is null; the next attribute fills it again.
  EXPECT_EQ(world.trace(), traceWith({nullListMessage()}, 1));
  EXPECT_EQ(newStore().find(kDn, "zor-slapdPort"), nullptr);
  EXPECT_EQ(newStore().values(kDn, "CN"), (Lines{"x"}));
}

TEST_F(AddCfgEntry, ALastAttributeThatIsUnreadableMakesTheListNullAtTheEndToo) {
  put({{"OBJECTCLASS", {"A"}}, {"CN", {"x"}}, {"zor-slapdPort", {"389"}}});
  world.faults().fail({.store = "old", .operation = "getParamArrayValueInfo", .attribute = "zor-slapdPort"}, 80);
  EXPECT_EQ(add(), 1);
  EXPECT_EQ(world.trace(), traceWith({nullListMessage(), nullListMessage()}, 1));
}

TEST_F(AddCfgEntry, TheLastAdditionAloneDecides) {
  put({{"OBJECTCLASS", {"A"}}, {"CN", {"x"}}, {"zor-slapdSetenv", {"X=1", "Y=2"}}});
  world.faults().fail({.store = "new", .operation = "addValue", .attribute = "zor-slapdSetenv", .nth = 1}, 80);
  EXPECT_EQ(add(), 1);
  EXPECT_EQ(newStore().values(kDn, "zor-slapdSetenv"), (Lines{"Y=2"}));
  EXPECT_EQ(world.trace(), traceWith({}, 1));

  newStore().clear();
  world.faults().clear();
  world.faults().fail({.store = "new", .operation = "addValue", .attribute = "zor-slapdSetenv", .nth = 2}, 80);
  EXPECT_EQ(add(), 0);
  EXPECT_EQ(newStore().values(kDn, "zor-slapdSetenv"), (Lines{"X=1"}));
  EXPECT_EQ(world.trace(), traceWith({}, 0));
}

TEST_F(AddCfgEntry, WhatTheStoreThrowsPassesAfterTheExitRecord) {
  put({{"OBJECTCLASS", {"A", "B", "C"}}, {"CN", {"x"}}, {"zor-slapdSetenv", {"X=1", "Y=2"}}});
  int call = 1;
  for (;; ++call) {
    newStore().clear();
    world.faults().clear();
    open();
    world.faults().throwAtCall(call);
    try {
      newConfig().addCfgEntry(modifiable(kDn), &oldConfig());
      break;
    } catch (const fake::Thrown&) {
      EXPECT_EQ(world.trace(), traceWith({}, 0));
    }
    EXPECT_EQ(complaints(), Lines()) << "thrown by call " << call;
  }
  EXPECT_EQ(call, 19);
}

}  // namespace
