// Where the entries go that only a 4.1 configuration has, and the final check.

#include "RulesFixture.h"

namespace {

using namespace rules;
using namespace traced;

class AddTo41 : public RulesFixture {
 protected:
  int addTo(const std::string& dn) { return apply(&ConfigFile::addTo41, dn); }

  static std::vector<fake::Attribute> plain() { return {{"objectclass", {"A"}}, {"cn", {"x"}}}; }
};

TEST_F(AddTo41, LeavesTheOldChangeLogBehind) {
  put(kLegacyChangeLog, plain());
  EXPECT_EQ(addTo(kLegacyChangeLog), 1);
  EXPECT_EQ(world.callsWithComparisons(),
            (Lines{"compareDns(" + kLegacyChangeLog + ", " + kLegacyChangeLog + ") = 1"}));
  EXPECT_EQ(world.trace(), (Lines{entryOf(kAddTo41), exitOf(kAddTo41, 0)}));
  EXPECT_TRUE(newStore().entries().empty());
  EXPECT_NE(oldStore().find(kLegacyChangeLog), nullptr);
}

TEST_F(AddTo41, TheChangeLogIsKnownByTheStoresComparison) {
  const std::string normal = "CN=CHANGE LOG,CN=RDBM BACKENDS,CN=ZOR HALVORN,CN=SCHEMAS,CN=CONFIGURATION";
  put(kLegacyChangeLog, plain());
  EXPECT_EQ(addTo(normal), 1);
  EXPECT_EQ(world.calls(), Lines());
}

TEST_F(AddTo41, AChangeLogAtItsCurrentDnIsAdded) {
  put(kChangeLog, plain());
  EXPECT_EQ(addTo(kChangeLog), 1);
  EXPECT_NE(newStore().find(kChangeLog), nullptr);
}

TEST_F(AddTo41, ComparesWithNoOtherDn) {
  put(kOther, plain());
  addTo(kOther);
  EXPECT_EQ(comparisons(), comparisonsOf(kOther, {kLegacyChangeLog}));
}

// Unlike the rules for 5.1 these move nothing and do not rebuild the master server entry.
TEST_F(AddTo41, EveryOtherEntryIsAddedUnderItsOwnDn) {
  for (const std::string* dn : {&kOther, &kMaster, &kLegacySchema, &kLegacyLdcfBackends, &kLegacySchemaDb,
                                &kLegacyRdbmBackends, &kLegacyDirectory}) {
    oldStore().clear();
    newStore().clear();
    put(*dn, plain());
    EXPECT_EQ(addTo(*dn), 1) << *dn;
    EXPECT_EQ(world.trace(),
              (Lines{entryOf(kAddTo41), entryOf(kAddCfgEntry), exitOf(kAddCfgEntry, 1), exitOf(kAddTo41, 0)}));
    ASSERT_EQ(newStore().entries().size(), 1U);
    EXPECT_EQ(newStore().entries().front().dn, *dn);
  }
}

TEST_F(AddTo41, AnswersTheFailureOfAnAdditionAndReportsZero) {
  put(kOther, {{"cn", {"x"}}});
  EXPECT_EQ(addTo(kOther), 0);
  EXPECT_EQ(world.trace().back(), exitOf(kAddTo41, 0));
}

TEST_F(AddTo41, TheFinalCheckDoesNothing) {
  open();
  EXPECT_EQ(newConfig().check41(&oldConfig()), 1);
  EXPECT_EQ(newConfig().check41(nullptr), 1);
  EXPECT_EQ(world.callsWithComparisons(), Lines());
  EXPECT_EQ(world.trace(), (Lines{entryOf(kCheck41), exitOf(kCheck41, 1), entryOf(kCheck41), exitOf(kCheck41, 1)}));
}

}  // namespace
