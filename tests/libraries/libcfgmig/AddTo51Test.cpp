// Where the entries go that only a 5.1 configuration has.

#include "RulesFixture.h"

namespace {

using namespace rules;
using namespace traced;

class AddTo51 : public RulesFixture {
 protected:
  int addTo(const std::string& dn) { return apply(&ConfigFile::addTo51, dn); }
};

TEST_F(AddTo51, TriesItsDnsInOrder) {
  put(kOther, {});
  addTo(kOther);
  EXPECT_EQ(comparisons(), comparisonsOf(kOther, {kMaster, kLegacySchemaDb, kLegacySchema, kLegacyLdcfBackends,
                                                  kLegacyRdbmBackends, kLegacyDirectory, kLegacyChangeLog}));
}

TEST_F(AddTo51, TriesNoFurtherDnAfterAMatch) {
  put(kLegacyLdcfBackends, {});
  newStore().put(kLdcfBackends, {});
  EXPECT_EQ(addTo(kLegacyLdcfBackends), 1);
  Lines expected = comparisonsOf(kLegacyLdcfBackends, {kMaster, kLegacySchemaDb, kLegacySchema});
  expected.push_back("compareDns(" + kLegacyLdcfBackends + ", " + kLegacyLdcfBackends + ") = 1");
  EXPECT_EQ(comparisons(), expected);
}

// --- The master server entry.

TEST_F(AddTo51, TheMasterServerEntryIsRebuilt) {
  put(kMaster, {{"objectclass", {"A"}}, {"cn", {"x"}}, {"zor-slapdMasterDN", {"1"}}, {"zor-slapdMasterPW", {"2"}}});
  EXPECT_EQ(addTo("cn=Master Server, cn=Configuration"), 1);
  EXPECT_EQ(world.trace(),
            (Lines{entryOf(kAddTo51), entryOf(kReplAddEntry), exitOf(kReplAddEntry, 1), exitOf(kAddTo51, 1)}));
  EXPECT_EQ(comparisons().size(), 1U);
  EXPECT_EQ(newStore().values(kMaster, "ZOR-SLAPDMIGRATIONINFO"), (Lines{"4.1 REPLICA"}));
}

TEST_F(AddTo51, AnswersTheFailureOfTheRebuilding) {
  put(kMaster, {});
  EXPECT_EQ(addTo(kMaster), 0);
  EXPECT_EQ(world.trace().back(), exitOf(kAddTo51, 0));
}

// --- Entries that move.

struct Move {
  const char* name;
  const std::string& oldDn;
  const std::string& newDn;
  const char* normalDn;  // the old DN as an inventory holds it
};

void PrintTo(const Move& move, std::ostream* out) { *out << move.name; }

const Move kMoves[] = {
    {"SchemaDb", kLegacySchemaDb, kSchemaDb, "CN=SCHEMADB,CN=LDCF BACKENDS,CN=ZOR HALVORN,CN=SCHEMAS,CN=CONFIGURATION"},
    {"Schema", kLegacySchema, kSchema, "CN=ZOR HALVORN,CN=SCHEMAS,CN=CONFIGURATION"},
    {"LdcfBackends", kLegacyLdcfBackends, kLdcfBackends, "CN=LDCF BACKENDS,CN=ZOR HALVORN,CN=SCHEMAS,CN=CONFIGURATION"},
    {"RdbmBackends", kLegacyRdbmBackends, kRdbmBackends, "CN=RDBM BACKENDS,CN=ZOR HALVORN,CN=SCHEMAS,CN=CONFIGURATION"},
    {"Directory", kLegacyDirectory, kDirectory,
     "CN=DIRECTORY,CN=RDBM BACKENDS,CN=ZOR HALVORN,CN=SCHEMAS,CN=CONFIGURATION"},
    {"ChangeLog", kLegacyChangeLog, kChangeLog,
     "CN=CHANGE LOG,CN=RDBM BACKENDS,CN=ZOR HALVORN,CN=SCHEMAS,CN=CONFIGURATION"},
};

class Moves51 : public AddTo51, public testing::WithParamInterface<Move> {
 protected:
  void putBoth() {
    put(GetParam().oldDn,
        {{"objectclass", {"OLD"}}, {"cn", {"old"}}, {"zor-a", {"old"}}, {"zor-slapdSuffix", {"o=x"}}});
    newStore().put(GetParam().newDn,
                   {{"objectclass", {"NEW"}}, {"cn", {"new"}}, {"zor-a", {"new"}}, {"zor-slapdSuffix", {"o=y"}}});
  }
};

INSTANTIATE_TEST_SUITE_P(Rows, Moves51, testing::ValuesIn(kMoves),
                         [](const testing::TestParamInfo<Move>& move) { return move.param.name; });

TEST_P(Moves51, CarryTheirSettingsToTheCurrentDn) {
  putBoth();
  EXPECT_EQ(addTo(GetParam().normalDn), 1);
  const std::string from = GetParam().normalDn;
  const std::string to = GetParam().newDn;
  EXPECT_EQ(world.calls(),
            (Lines{"old.getFirstEntry(" + from + ") = 0", "old.getFirstAttribute(" + from + ") = 0",
                   "old.getNextAttribute(" + from + ") = 0", "old.getNextAttribute(" + from + ") = 0",
                   call("old.getParamArrayValueInfo", from, "zor-a"), call("new.getParamArrayValueInfo", to, "zor-a"),
                   call("new.setValue", to, "zor-a, old"), "old.getNextAttribute(" + from + ") = 0",
                   call("old.getParamArrayValueInfo", from, "zor-slapdSuffix"),
                   call("new.getParamArrayValueInfo", to, "zor-slapdSuffix"),
                   call("new.addValue", to, "zor-slapdSuffix, o=x"), "old.getNextAttribute(" + from + ") = 0",
                   "cfg_ber_free(old:" + from + ")", "cfg_msgfree(old:" + from + ")"}));
  ASSERT_EQ(newStore().entries().size(), 1U) << "nothing is added under the old DN";
  EXPECT_EQ(newStore().find(to)->attributes,
            (std::vector<fake::Attribute>{
                {"objectclass", {"NEW"}}, {"cn", {"new"}}, {"zor-a", {"old"}}, {"zor-slapdSuffix", {"o=y", "o=x"}}}));
}

TEST_P(Moves51, AnswerAndReportAsTheTransferDoes) {
  putBoth();
  EXPECT_EQ(addTo(GetParam().oldDn), 1);
  EXPECT_EQ(world.trace().front(), entryOf(kAddTo51));
  EXPECT_EQ(world.trace()[1], entryOf(kMergeChangeDnEntry));
  EXPECT_EQ(world.trace().back(), exitOf(kAddTo51, 1));
  newStore().clear();
  EXPECT_EQ(addTo(GetParam().oldDn), 0);
  EXPECT_EQ(world.trace().back(), exitOf(kAddTo51, 0));
  EXPECT_TRUE(newStore().entries().empty()) << "a missing target is not made";
}

TEST_P(Moves51, AnEntryAtTheCurrentDnIsAddedThere) {
  put(GetParam().newDn, {{"objectclass", {"A"}}, {"cn", {"x"}}});
  EXPECT_EQ(addTo(GetParam().newDn), 1);
  EXPECT_EQ(world.trace(),
            (Lines{entryOf(kAddTo51), entryOf(kAddCfgEntry), exitOf(kAddCfgEntry, 1), exitOf(kAddTo51, 1)}));
  EXPECT_NE(newStore().find(GetParam().newDn), nullptr);
}

// --- All others.

TEST_F(AddTo51, EveryOtherEntryIsAddedUnderItsOwnDn) {
  const std::string custom = "cn=MINE, cn=RDBM BACKENDS, cn=ZOR Halvorn, CN=SCHEMAS,CN=CONFIGURATION";
  for (const std::string* dn : {&kOther, &custom}) {
    put(*dn, {{"objectclass", {"A"}}, {"cn", {"x"}}});
    EXPECT_EQ(addTo(*dn), 1);
    EXPECT_EQ(world.trace(),
              (Lines{entryOf(kAddTo51), entryOf(kAddCfgEntry), exitOf(kAddCfgEntry, 1), exitOf(kAddTo51, 1)}));
    EXPECT_NE(newStore().find(*dn), nullptr);
  }
}

TEST_F(AddTo51, AnswersAndReportsTheFailureOfAnAddition) {
  put(kOther, {{"cn", {"x"}}});
  EXPECT_EQ(addTo(kOther), 0);
  EXPECT_EQ(world.trace().back(), exitOf(kAddTo51, 0));
}

}  // namespace
