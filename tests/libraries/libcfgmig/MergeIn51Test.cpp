// What a 5.1 configuration must not bring along: one cache setting of the front end's environment. The main entry's
// settings are among the drops of DropsTest.cpp.

#include "RulesFixture.h"

namespace {

using namespace rules;
using namespace traced;

class MergeIn51 : public RulesFixture {
 protected:
  int mergeIn(const std::string& dn) { return apply(&ConfigFile::mergeIn51, dn); }
};

TEST_F(MergeIn51, TriesItsDnsInOrder) {
  put(kOther, {});
  newStore().put(kOther, {});
  EXPECT_EQ(mergeIn(kOther), 1);
  EXPECT_EQ(comparisons(), comparisonsOf(kOther, {kMain, kFrontEnd}));
}

TEST_F(MergeIn51, TriesNoFurtherDnAfterAMatch) {
  put(kMain, {});
  newStore().put(kMain, {});
  mergeIn(kMain);
  EXPECT_EQ(comparisons(), (Lines{"compareDns(" + kMain + ", " + kMain + ") = 1"}));
}

TEST_F(MergeIn51, EntriesWithoutRuleAreMergedUnchanged) {
  for (const std::string* dn : {&kOther, &kMaster, &kDirectory, &kLegacyDirectory, &kLegacySchemaDb}) {
    oldStore().clear();
    newStore().clear();
    put(*dn, {{"zor-slapdErrorLog", {"old"}},
              {"zor-slapdDbName", {"old"}},
              {"zor-slapdSetenv", {"ACLCACHE=YES"}},
              {"zor-slapdPlugin", {"a CLInit"}}});
    newStore().put(*dn, {{"zor-slapdErrorLog", {"new"}}});
    EXPECT_EQ(mergeIn(*dn), 1);
    EXPECT_EQ(ruleCalls(), Lines()) << *dn;
    EXPECT_EQ(newStore().values(*dn, "zor-slapdErrorLog"), (Lines{"old"}));
    EXPECT_EQ(newStore().values(*dn, "zor-slapdSetenv"), (Lines{"ACLCACHE=YES"}));
    EXPECT_EQ(newStore().values(*dn, "zor-slapdPlugin"), (Lines{"a CLInit"}));
    EXPECT_EQ(world.trace().back(), exitOf(kMergeIn51, 1));
  }
}

TEST_F(MergeIn51, TheMainEntryKeepsItsEnvironment) {
  put(kMain, {{"zor-slapdSetenv", {"ACLCACHE=YES"}}});
  newStore().put(kMain, {});
  EXPECT_EQ(mergeIn(kMain), 1);
  EXPECT_EQ(newStore().values(kMain, "zor-slapdSetenv"), (Lines{"ACLCACHE=YES"}));
}

// --- The front end's environment.

class Setenv51 : public MergeIn51 {
 protected:
  int merge(const Lines& settings) {
    oldStore().clear();
    newStore().clear();
    put(kFrontEnd, {{"zor-slapdSetenv", settings}});
    newStore().put(kFrontEnd, {{"zor-slapdSetenv", {"NEW=1"}}});
    return mergeIn(kFrontEnd);
  }
  static std::string read(int rc = 0) { return call("old.getParamArrayValueInfo", kFrontEnd, "zor-slapdSetenv", rc); }
  static std::string deletion(const std::string& value, int rc = 0) {
    return call("old.delValue", kFrontEnd, "zor-slapdSetenv, [" + value + "]", rc);
  }
};

TEST_F(Setenv51, OnlyTheFirstCacheSettingIsRemoved) {
  EXPECT_EQ(merge({"A=1", "ACLCACHE=YES", "RDBM_FCACHE_SIZE=10", "ACLCACHE=NO"}), 1);
  EXPECT_EQ(ruleCalls(), (Lines{read(), deletion("ACLCACHE=YES")}));
  EXPECT_EQ(newStore().values(kFrontEnd, "zor-slapdSetenv"),
            (Lines{"NEW=1", "A=1", "RDBM_FCACHE_SIZE=10", "ACLCACHE=NO"}));
  EXPECT_EQ(ruleMessages(kMergeIn51), Lines());
}

TEST_F(Setenv51, EachOfThreeWordsIsACacheSetting) {
  for (const char* value : {"ACLCACHE=YES", "RDBM_FCACHE_SIZE=10", "RDBM_CACHE_BYPASS_LIMIT=100", "xACLCACHE_SIZEy"}) {
    EXPECT_EQ(merge({"A=1", value}), 1);
    EXPECT_EQ(ruleCalls(), (Lines{read(), deletion(value)}));
  }
}

// The values are gone through once, each with all the words; not the words, each with all the values.
TEST_F(Setenv51, TheFirstValueCountsNotTheFirstWord) {
  const Lines values = {"RDBM_CACHE_BYPASS_LIMIT=1", "RDBM_FCACHE_SIZE=2", "ACLCACHE=3"};
  EXPECT_EQ(merge(values), 1);
  EXPECT_EQ(ruleCalls(), (Lines{read(), deletion(values[0])}));
  EXPECT_EQ(merge({values[1], values[2], values[0]}), 1);
  EXPECT_EQ(ruleCalls(), (Lines{read(), deletion(values[1])}));
}

TEST_F(Setenv51, AValueWithAllThreeWordsIsRemovedOnce) {
  EXPECT_EQ(merge({"ACLCACHE RDBM_FCACHE_SIZE RDBM_CACHE_BYPASS_LIMIT"}), 1);
  EXPECT_EQ(ruleCalls(), (Lines{read(), deletion("ACLCACHE RDBM_FCACHE_SIZE RDBM_CACHE_BYPASS_LIMIT")}));
}

TEST_F(Setenv51, LetterCaseAndWholeWordsCount) {
  const Lines values = {"aclcache=yes", "AclCache=yes", "ACL_CACHE=1", "RDBM_FCACHE=1", "RDBM_CACHE_BYPASS=1", ""};
  EXPECT_EQ(merge(values), 1);
  EXPECT_EQ(ruleCalls(), (Lines{read()}));
}

TEST_F(Setenv51, AFailedRemovalIsReportedWithItsPositionAndEndsTheScan) {
  world.faults().fail({.operation = "delValue"}, 53);
  EXPECT_EQ(merge({"A=1", "B=2", "ACLCACHE=YES", "RDBM_FCACHE_SIZE=10"}), 1);
  EXPECT_EQ(ruleCalls(), (Lines{read(), deletion("ACLCACHE=YES", 53)}));
  EXPECT_EQ(ruleMessages(kMergeIn51),
            (Lines{messageOf(kMergeIn51, "mergeIn51: delValue for zor-slapdSetenv has returned rc=53, i=2\n")}));
  EXPECT_EQ(newStore().values(kFrontEnd, "zor-slapdSetenv").size(), 5U);
}

TEST_F(Setenv51, AnUnreadableListIsHandedToFreeParamVals) {
  for (const auto outParameters : {fake::OutParameters::cleared, fake::OutParameters::untouched}) {
    for (const int rc : {16, 32, 80}) {
      world.faults().clear();
      world.faults().fail({.operation = "getParamArrayValueInfo"}, rc, outParameters);
      EXPECT_EQ(merge({"ACLCACHE=YES"}), 1);
      EXPECT_EQ(ruleCalls(), (Lines{read(rc)}));
      ASSERT_GE(world.trace().size(), 3U);
      EXPECT_EQ(world.trace()[1], fake::nullListMessage());
      EXPECT_EQ(world.trace()[2], entryOf(kMergeCfgEntry));
    }
  }
}

TEST_F(Setenv51, AFrontEndWithoutAnEnvironmentIsMergedAllTheSame) {
  put(kFrontEnd, {{"zor-other", {"1"}}});
  newStore().put(kFrontEnd, {});
  EXPECT_EQ(mergeIn(kFrontEnd), 1);
  EXPECT_EQ(ruleCalls(), (Lines{read(16)}));
  EXPECT_EQ(world.messages()[0], fake::nullListMessage());
  EXPECT_EQ(newStore().values(kFrontEnd, "zor-other"), (Lines{"1"}));
}

TEST_F(Setenv51, AnEmptyListIsReleasedSilently) {
  EXPECT_EQ(merge({}), 1);
  EXPECT_EQ(ruleCalls(), (Lines{read()}));
  EXPECT_EQ(world.trace()[1], entryOf(kMergeCfgEntry));
}

TEST_F(Setenv51, AnswersAsTheTransferDoes) {
  EXPECT_EQ(merge({"A=1"}), 1);
  EXPECT_EQ(world.trace().back(), exitOf(kMergeIn51, 1));
  world.faults().fail({.store = "new", .operation = "addValue"}, 53);
  EXPECT_EQ(merge({"A=1"}), 0);
  EXPECT_EQ(world.trace().back(), exitOf(kMergeIn51, 0));
}

TEST_F(Setenv51, TheScanPassesOverANullSlot) {
  put(kFrontEnd, {{"zor-slapdSetenv", {"ACLCACHE=1", "ACLCACHE=2"}}});
  newStore().put(kFrontEnd, {});
  open();
  world.onList([&world = world](std::string_view, char** values) {
    values[0] = nullptr;
    world.onList(nullptr);
  });
  EXPECT_EQ(newConfig().mergeIn51(modifiable(kFrontEnd), &oldConfig()), 1);
  EXPECT_EQ(oldStore().values(kFrontEnd, "zor-slapdSetenv"), (Lines{"ACLCACHE=1"}));
  // The strings behind a null slot are out of freeParamVals' reach.
  EXPECT_EQ(complaints().size(), 2U);
  world.resources().forgive();
}

}  // namespace
