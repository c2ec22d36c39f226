// What a 6.0 configuration must not bring along among settings of several values: a plug-in and schema additions.

#include "Rules60Fixture.h"

namespace {

using namespace rules60;
using namespace traced;

// --- The directory backend's plug-in list.

class Plugins60 : public Rules60 {
 protected:
  int merge(const Lines& plugins) {
    put(kDirectory, {{"zor-slapdPlugin", plugins}});
    newStore().put(kDirectory, {{"zor-slapdPlugin", {"new"}}});
    return mergeIn(kDirectory);
  }

  Lines pluginCalls() const {
    Lines lines = ruleCalls();
    lines.erase(lines.begin(), lines.begin() + 4);  // two drops of absent attributes
    return lines;
  }

  const std::string m_read = call("old.getParamArrayValueInfo", kDirectory, "zor-slapdPlugin");
};

TEST_F(Plugins60, TheFirstNonblockingOneIsDeletedAndSearchedForTheLimit) {
  EXPECT_EQ(
      merge({"database a", "repl nonblocking maxskippedreplerrors=10 x", "other nonblocking maxskippedreplerrors=7"}),
      1);
  EXPECT_EQ(
      pluginCalls(),
      (Lines{m_read, call("old.delValue", kDirectory, "zor-slapdPlugin, [repl nonblocking maxskippedreplerrors=10 x]"),
             call("new.setValue", kReplication, "zor-slapdReplMaxErrors, 10 x")}));
  EXPECT_EQ(newStore().values(kDirectory, "zor-slapdPlugin"),
            (Lines{"new", "database a", "other nonblocking maxskippedreplerrors=7"}));
  EXPECT_EQ(ruleMessages(kMergeIn60), Lines());
}

TEST_F(Plugins60, TheFirstNonblockingOneEndsTheWalkAlsoWithoutALimit) {
  EXPECT_EQ(merge({"nonblocking", "nonblocking maxskippedreplerrors=7"}), 1);
  EXPECT_EQ(pluginCalls(), (Lines{m_read, call("old.delValue", kDirectory, "zor-slapdPlugin, [nonblocking]")}));
}

TEST_F(Plugins60, TheLimitMayStandBeforeTheWordAndIsTheWholeRest) {
  EXPECT_EQ(merge({"x maxskippedreplerrors=, 5 nonblocking"}), 1);
  EXPECT_EQ(newStore().values(kReplication, "zor-slapdReplMaxErrors"), (Lines{", 5 nonblocking"}));
}

TEST_F(Plugins60, AnEmptyLimitIsSetAsAnEmptyText) {
  EXPECT_EQ(merge({"nonblocking maxskippedreplerrors="}), 1);
  EXPECT_EQ(pluginCalls().back(), call("new.setValue", kReplication, "zor-slapdReplMaxErrors, "));
  EXPECT_EQ(newStore().values(kReplication, "zor-slapdReplMaxErrors"), (Lines{""}));
}

TEST_F(Plugins60, TheFirstOfTwoLimitsCounts) {
  EXPECT_EQ(merge({"nonblocking maxskippedreplerrors=1 maxskippedreplerrors=2"}), 1);
  EXPECT_EQ(newStore().values(kReplication, "zor-slapdReplMaxErrors"), (Lines{"1 maxskippedreplerrors=2"}));
}

TEST_F(Plugins60, ALimitWithoutNonblockingIsLeftAlone) {
  EXPECT_EQ(merge({"repl maxskippedreplerrors=10"}), 1);
  EXPECT_EQ(pluginCalls(), (Lines{m_read}));
  EXPECT_EQ(newStore().values(kDirectory, "zor-slapdPlugin"), (Lines{"new", "repl maxskippedreplerrors=10"}));
}

TEST_F(Plugins60, LetterCaseCountsInBothWords) {
  EXPECT_EQ(merge({"NonBlocking maxskippedreplerrors=1", "nonblocking MaxSkippedReplErrors=2"}), 1);
  EXPECT_EQ(pluginCalls(),
            (Lines{m_read, call("old.delValue", kDirectory, "zor-slapdPlugin, [nonblocking MaxSkippedReplErrors=2]")}));
}

TEST_F(Plugins60, TheWordMayBePartOfAnother) {
  EXPECT_EQ(merge({"xnonblockingy"}), 1);
  EXPECT_EQ(newStore().values(kDirectory, "zor-slapdPlugin"), (Lines{"new"}));
}

TEST_F(Plugins60, AFailedDeletionIsReportedUnderTheErrorLogsName) {
  world.faults().fail({.operation = "delValue", .attribute = "zor-slapdPlugin"}, 53);
  EXPECT_EQ(merge({"nonblocking maxskippedreplerrors=3", "nonblocking"}), 1);
  EXPECT_EQ(ruleMessages(kMergeIn60), (Lines{delFailed("zor-slapdErrorLog", 53)}));
  EXPECT_EQ(newStore().values(kReplication, "zor-slapdReplMaxErrors"), (Lines{"3"}));
}

TEST_F(Plugins60, AFailedSetOfTheLimitIsReportedAsADeletionUnderTheErrorLogsName) {
  world.faults().fail({.operation = "setValue", .attribute = "zor-slapdReplMaxErrors"}, 53);
  EXPECT_EQ(merge({"nonblocking maxskippedreplerrors=3"}), 1);
  EXPECT_EQ(ruleMessages(kMergeIn60), (Lines{delFailed("zor-slapdErrorLog", 53)}));
}

TEST_F(Plugins60, AnUnreadableListIsHandedToFreeParamValsWithoutAMessageOfTheRule) {
  world.faults().fail({.operation = "getParamArrayValueInfo", .attribute = "zor-slapdPlugin"}, 80);
  EXPECT_EQ(merge({"nonblocking"}), 1);
  EXPECT_EQ(ruleMessages(kMergeIn60), Lines());
  EXPECT_EQ(world.trace()[1], fake::nullListMessage());
  EXPECT_EQ(world.trace()[2], entryOf(kMergeCfgEntry));
}

TEST_F(Plugins60, AnEmptyListIsReleasedSilently) {
  EXPECT_EQ(merge({}), 1);
  EXPECT_EQ(pluginCalls(), (Lines{m_read}));
  EXPECT_EQ(world.trace()[1], entryOf(kMergeCfgEntry));
}

// --- The schema entry.

class SchemaAdditions60 : public Rules60 {
 protected:
  int merge(const Lines& additions) {
    put(kSchema, {{"zor-slapdSchemaAdditions", additions}, {"zor-other", {"old"}}});
    newStore().put(kSchema, {{"zor-slapdSchemaAdditions", {"new"}}, {"zor-other", {"new"}}});
    return mergeIn(kSchema);
  }
};

TEST_F(SchemaAdditions60, EveryModifiedSchemaIsRemoved) {
  EXPECT_EQ(merge({"/etc/V3.modifiedschema", "mine.oc", "V3.modifiedschema.bak", "V3.MODIFIEDSCHEMA"}), 1);
  EXPECT_EQ(ruleCalls(), (Lines{call("old.getParamArrayValueInfo", kSchema, "zor-slapdSchemaAdditions"),
                                call("old.delValue", kSchema, "zor-slapdSchemaAdditions, [/etc/V3.modifiedschema]"),
                                call("old.delValue", kSchema, "zor-slapdSchemaAdditions, [V3.modifiedschema.bak]")}));
  EXPECT_EQ(newStore().values(kSchema, "zor-slapdSchemaAdditions"), (Lines{"new", "mine.oc", "V3.MODIFIEDSCHEMA"}));
  EXPECT_EQ(newStore().values(kSchema, "zor-other"), (Lines{"old"}));
}

TEST_F(SchemaAdditions60, FailedDeletionsAreReportedAndTheWalkGoesOn) {
  world.faults().fail({.operation = "delValue", .nth = 1}, 53);
  EXPECT_EQ(merge({"1 V3.modifiedschema", "2 V3.modifiedschema"}), 1);
  EXPECT_EQ(ruleMessages(kMergeIn60), (Lines{delFailed("zor-slapdSchemaAdditions", 53)}));
  EXPECT_EQ(newStore().values(kSchema, "zor-slapdSchemaAdditions"), (Lines{"new", "1 V3.modifiedschema"}));
}

TEST_F(SchemaAdditions60, AnUnreadableListEndsTheMergeOfTheEntry) {
  for (const int rc : {16, 32, 80}) {
    oldStore().clear();
    newStore().clear();
    world.faults().clear();
    world.faults().fail({.operation = "getParamArrayValueInfo"}, rc);
    EXPECT_EQ(merge({"V3.modifiedschema"}), 0);
    const std::string code = std::to_string(rc);
    EXPECT_EQ(world.calls(),
              (Lines{"old.getParamArrayValueInfo(" + kSchema + ", zor-slapdSchemaAdditions) = " + code}));
    EXPECT_EQ(
        world.trace(),
        (Lines{entryOf(kMergeIn60),
               messageOf(kMergeIn60,
                         "mergeIn60: getParamArrayValueInfo for zor-slapdSchemaAdditions returned rc=" + code + "\n"),
               exitOf(kMergeIn60, 0)}));
    EXPECT_EQ(newStore().values(kSchema, "zor-other"), (Lines{"new"}));
  }
}

TEST_F(SchemaAdditions60, AnEntryWithoutTheAttributeIsNotMergedAtAll) {
  put(kSchema, {{"zor-other", {"old"}}});
  newStore().put(kSchema, {{"zor-other", {"new"}}});
  EXPECT_EQ(mergeIn(kSchema), 0);
  EXPECT_EQ(newStore().values(kSchema, "zor-other"), (Lines{"new"}));
  EXPECT_EQ(world.messages().size(), 1U);
}

TEST_F(SchemaAdditions60, AnEmptyListGoesOnToTheTransfer) {
  EXPECT_EQ(merge({}), 1);
  EXPECT_EQ(newStore().values(kSchema, "zor-other"), (Lines{"old"}));
  EXPECT_EQ(ruleMessages(kMergeIn60), Lines());
}

}  // namespace
