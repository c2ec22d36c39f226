// What happens to the entries of a 5.2 configuration. What mergeIn52 drops is among the drops of DropsTest.cpp.

#include "RulesFixture.h"

namespace {

using namespace rules;
using namespace traced;

const std::string kAge = "zor-slapdChangeLogMaxAge";

class AddTo52 : public RulesFixture {
 protected:
  int addTo(const std::string& dn) { return apply(&ConfigFile::addTo52, dn); }

  void putChangeLog(std::vector<fake::Attribute> more = {}) {
    more.insert(more.begin(), {{"objectclass", {"A"}}, {"cn", {"CHANGE LOG"}}});
    put(kChangeLog, more);
  }
};

TEST_F(AddTo52, ComparesWithTheChangeLogOnly) {
  put(kOther, {});
  addTo(kOther);
  EXPECT_EQ(comparisons(), comparisonsOf(kOther, {kChangeLog}));
}

TEST_F(AddTo52, GivesANewChangeLogAMaximumAgeInTheOldConfiguration) {
  putChangeLog();
  EXPECT_EQ(addTo(kChangeLog), 1);
  ASSERT_GE(world.calls().size(), 2U);
  EXPECT_EQ(world.calls()[0], call("old.addValue", kChangeLog, kAge + ", 0"));
  EXPECT_EQ(world.calls()[1], call("old.getParamValueInfo", kChangeLog, "CN"));
  EXPECT_EQ(oldStore().values(kChangeLog, kAge), (Lines{"0"}));
  EXPECT_EQ(newStore().values(kChangeLog, kAge), (Lines{"0"}));
  EXPECT_EQ(world.trace(),
            (Lines{entryOf(kAddTo52), entryOf(kAddCfgEntry), exitOf(kAddCfgEntry, 1), exitOf(kAddTo52, 1)}));
}

TEST_F(AddTo52, TheMaximumAgeIsAddedBesideAnotherValueNotSet) {
  putChangeLog({{kAge, {"86400"}}});
  EXPECT_EQ(addTo(kChangeLog), 1);
  EXPECT_EQ(newStore().values(kChangeLog, kAge), (Lines{"86400", "0"}));
}

TEST_F(AddTo52, AMaximumAgeThatCannotBeAddedIsIgnored) {
  putChangeLog({{kAge, {"86400"}}});
  world.faults().fail({.store = "old", .operation = "addValue"}, 53);
  EXPECT_EQ(addTo(kChangeLog), 1);
  EXPECT_EQ(newStore().values(kChangeLog, kAge), (Lines{"86400"}));
  EXPECT_EQ(world.messages(), Lines());
  EXPECT_EQ(world.trace().back(), exitOf(kAddTo52, 1));
}

TEST_F(AddTo52, GoesByTheStoresComparisonAndItsOwnSpellingOfTheDn) {
  const std::string spelling = "cn=Change Log, cn=RDBM Backends, cn=Zor Directory, cn=Schemas, cn=Configuration";
  putChangeLog();
  EXPECT_EQ(addTo(spelling), 1);
  EXPECT_EQ(world.calls()[0], call("old.addValue", kChangeLog, kAge + ", 0"));
  EXPECT_EQ(world.calls()[1], call("old.getParamValueInfo", spelling, "CN"));
}

TEST_F(AddTo52, EveryOtherEntryIsAddedAsItIs) {
  for (const std::string* dn : {&kOther, &kMaster, &kDirectory, &kRdbmBackends, &kLegacyChangeLog, &kLegacySchema}) {
    oldStore().clear();
    newStore().clear();
    put(*dn, {{"objectclass", {"A"}}, {"cn", {"x"}}});
    EXPECT_EQ(addTo(*dn), 1);
    EXPECT_EQ(world.trace(),
              (Lines{entryOf(kAddTo52), entryOf(kAddCfgEntry), exitOf(kAddCfgEntry, 1), exitOf(kAddTo52, 1)}));
    ASSERT_EQ(newStore().entries().size(), 1U);
    EXPECT_EQ(newStore().entries().front().dn, *dn);
    EXPECT_EQ(oldStore().find(*dn, kAge), nullptr);
  }
}

TEST_F(AddTo52, AnswersAndReportsTheFailureOfAnAddition) {
  for (const std::string* dn : {&kOther, &kChangeLog}) {
    put(*dn, {{"cn", {"x"}}});
    EXPECT_EQ(addTo(*dn), 0);
    EXPECT_EQ(world.trace().back(), exitOf(kAddTo52, 0));
  }
}

TEST_F(AddTo52, TheFinalCheckDoesNothing) {
  open();
  EXPECT_EQ(newConfig().check52(&oldConfig()), 1);
  EXPECT_EQ(newConfig().check52(nullptr), 1);
  EXPECT_EQ(world.callsWithComparisons(), Lines());
  EXPECT_EQ(world.trace(), (Lines{entryOf(kCheck52), exitOf(kCheck52, 1), entryOf(kCheck52), exitOf(kCheck52, 1)}));
}

// --- Entries of both configurations.

class MergeIn52 : public RulesFixture {
 protected:
  int mergeIn(const std::string& dn) { return apply(&ConfigFile::mergeIn52, dn); }
};

TEST_F(MergeIn52, TriesItsDnsInOrder) {
  put(kOther, {});
  newStore().put(kOther, {});
  EXPECT_EQ(mergeIn(kOther), 1);
  EXPECT_EQ(comparisons(), comparisonsOf(kOther, {kMain, kDirectory}));
}

TEST_F(MergeIn52, TriesNoFurtherDnAfterAMatch) {
  put(kMain, {});
  newStore().put(kMain, {});
  mergeIn(kMain);
  EXPECT_EQ(comparisons(), (Lines{"compareDns(" + kMain + ", " + kMain + ") = 1"}));
}

TEST_F(MergeIn52, EntriesWithoutRuleAreMergedUnchanged) {
  for (const std::string* dn : {&kOther, &kFrontEnd, &kSchemaDb, &kLegacyDirectory, &kChangeLog}) {
    oldStore().clear();
    newStore().clear();
    put(*dn, {{"zor-slapdPageSizeLmt", {"old"}},
              {"zor-slapdSetenv", {"ACLCACHE=YES"}},
              {"zor-slapdPlugin", {"a CLInit"}},
              {"zor-slapdErrorLog", {"old"}}});
    newStore().put(*dn, {{"zor-slapdPageSizeLmt", {"new"}}});
    EXPECT_EQ(mergeIn(*dn), 1);
    EXPECT_EQ(ruleCalls(), Lines()) << *dn;
    EXPECT_EQ(newStore().values(*dn, "zor-slapdPageSizeLmt"), (Lines{"old"}));
    EXPECT_EQ(newStore().values(*dn, "zor-slapdSetenv"), (Lines{"ACLCACHE=YES"}));
    EXPECT_EQ(newStore().values(*dn, "zor-slapdPlugin"), (Lines{"a CLInit"}));
    EXPECT_EQ(newStore().find(*dn, kAge), nullptr) << "a change log that both have gets no maximum age";
    EXPECT_EQ(world.trace().back(), exitOf(kMergeIn52, 1));
  }
}

TEST_F(MergeIn52, TheDirectoryBackendLosesOnlyItsPageSizeLimit) {
  put(kDirectory, {{"zor-slapdACLAccess", {"1"}}, {"zor-slapdPageSizeLmt", {"2"}}, {"zor-slapdDbName", {"3"}}});
  newStore().put(kDirectory, {});
  EXPECT_EQ(mergeIn(kDirectory), 1);
  EXPECT_EQ(newStore().values(kDirectory, "zor-slapdACLAccess"), (Lines{"1"}));
  EXPECT_EQ(newStore().find(kDirectory, "zor-slapdPageSizeLmt"), nullptr);
  EXPECT_EQ(newStore().values(kDirectory, "zor-slapdDbName"), (Lines{"3"}));
}

TEST_F(MergeIn52, OnlyTheMainEntrysExitRecordCarriesZero) {
  for (const std::string* dn : {&kMain, &kDirectory, &kOther}) {
    put(*dn, {{"zor-a", {"1"}}});
    newStore().put(*dn, {});
    EXPECT_EQ(mergeIn(*dn), 1);
    EXPECT_EQ(world.trace().back(), exitOf(kMergeIn52, dn == &kMain ? 0 : 1)) << *dn;
  }
}

TEST_F(MergeIn52, APageSizeLimitThatStaysIsReportedByTwoNames) {
  world.faults().fail({.operation = "delValue", .attribute = "zor-slapdPageSizeLmt", .nth = 0}, 53);
  for (const std::string* dn : {&kMain, &kDirectory}) {
    put(*dn, {{"zor-slapdPageSizeLmt", {"1"}}});
    newStore().put(*dn, {});
    EXPECT_EQ(mergeIn(*dn), 1);
    const std::string name = dn == &kMain ? "zor-slapdPagedSizeLmt" : "zor-slapdPageSizeLmt";
    EXPECT_EQ(ruleMessages(kMergeIn52),
              (Lines{messageOf(kMergeIn52, "mergeIn52: delValue for " + name + " has returned rc=53\n")}));
  }
}

}  // namespace
