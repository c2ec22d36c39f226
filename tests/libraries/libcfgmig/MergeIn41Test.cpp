// What a 4.1 configuration must not bring along: the change-log plug-in of two entries. The database settings are
// among the drops of DropsTest.cpp.

#include "RulesFixture.h"

namespace {

using namespace rules;
using namespace traced;

class MergeIn41 : public RulesFixture {
 protected:
  int mergeIn(const std::string& dn) { return apply(&ConfigFile::mergeIn41, dn); }
};

TEST_F(MergeIn41, TriesItsDnsInOrder) {
  put(kOther, {});
  newStore().put(kOther, {});
  EXPECT_EQ(mergeIn(kOther), 1);
  EXPECT_EQ(comparisons(), comparisonsOf(kOther, {kLegacySchemaDb, kLegacyDirectory}));
}

TEST_F(MergeIn41, TriesNoFurtherDnAfterAMatch) {
  put(kLegacySchemaDb, {});
  newStore().put(kLegacySchemaDb, {});
  mergeIn(kLegacySchemaDb);
  EXPECT_EQ(comparisons(), (Lines{"compareDns(" + kLegacySchemaDb + ", " + kLegacySchemaDb + ") = 1"}));
}

TEST_F(MergeIn41, EntriesWithoutRuleAreMergedUnchanged) {
  for (const std::string* dn : {&kOther, &kMain, &kFrontEnd, &kMaster, &kDirectory, &kSchemaDb, &kLegacyChangeLog}) {
    oldStore().clear();
    newStore().clear();
    put(*dn, {{"zor-slapdDbName", {"old"}}, {"zor-slapdPlugin", {"a CLInit"}}, {"zor-slapdSetenv", {"ACLCACHE"}}});
    newStore().put(*dn, {{"zor-slapdDbName", {"new"}}});
    EXPECT_EQ(mergeIn(*dn), 1);
    EXPECT_EQ(ruleCalls(), Lines()) << *dn;
    EXPECT_EQ(newStore().values(*dn, "zor-slapdDbName"), (Lines{"old"}));
    EXPECT_EQ(newStore().values(*dn, "zor-slapdPlugin"), (Lines{"a CLInit"}));
    EXPECT_EQ(world.trace().back(), exitOf(kMergeIn41, 1));
  }
}

TEST_F(MergeIn41, TheSchemaBackendKeepsItsDatabaseSettings) {
  put(kLegacySchemaDb, {{"zor-slapdDbName", {"old"}}});
  newStore().put(kLegacySchemaDb, {{"zor-slapdDbName", {"new"}}});
  EXPECT_EQ(mergeIn(kLegacySchemaDb), 1);
  EXPECT_EQ(newStore().values(kLegacySchemaDb, "zor-slapdDbName"), (Lines{"old"}));
}

TEST_F(MergeIn41, AnswersAsTheTransferOfTheSchemaBackendDoes) {
  put(kLegacySchemaDb, {{"zor-slapdPlugin", {"x"}}});
  newStore().put(kLegacySchemaDb, {});
  EXPECT_EQ(mergeIn(kLegacySchemaDb), 1);
  EXPECT_EQ(world.trace().back(), exitOf(kMergeIn41, 1));
  world.faults().fail({.store = "new", .operation = "addValue"}, 53);
  EXPECT_EQ(mergeIn(kLegacySchemaDb), 0);
  EXPECT_EQ(world.trace().back(), exitOf(kMergeIn41, 0));
}

// --- The change-log plug-in of both backends. Only the report of a failed deletion tells the two apart: the schema
// backend's has the position, the directory backend's has not.

struct Backend {
  const char* name;
  const std::string& dn;
  std::size_t callsBefore;  // drops of absent attributes
  bool reportsPosition;
};

void PrintTo(const Backend& backend, std::ostream* out) { *out << backend.name; }

const Backend kBackends[] = {{"SchemaDb", kLegacySchemaDb, 0, true}, {"Directory", kLegacyDirectory, 10, false}};

class ChangeLogPlugin41 : public MergeIn41, public testing::WithParamInterface<Backend> {
 protected:
  const std::string& dn() const { return GetParam().dn; }

  int merge(const Lines& plugins) {
    oldStore().clear();
    newStore().clear();
    put(dn(), {{"zor-slapdPlugin", plugins}});
    newStore().put(dn(), {{"zor-slapdPlugin", {"new"}}});
    return mergeIn(dn());
  }

  Lines pluginCalls() const {
    Lines lines = ruleCalls();
    lines.erase(lines.begin(), lines.begin() + static_cast<std::ptrdiff_t>(GetParam().callsBefore));
    return lines;
  }
  std::string read(int rc = 0) const { return call("old.getParamArrayValueInfo", dn(), "zor-slapdPlugin", rc); }
  std::string deletion(const std::string& value, int rc = 0) const {
    return call("old.delValue", dn(), "zor-slapdPlugin, [" + value + "]", rc);
  }
};

INSTANTIATE_TEST_SUITE_P(Backends, ChangeLogPlugin41, testing::ValuesIn(kBackends),
                         [](const testing::TestParamInfo<Backend>& backend) { return backend.param.name; });

TEST_P(ChangeLogPlugin41, OnlyTheFirstIsDeleted) {
  EXPECT_EQ(merge({"database a", "preoperation /x/libcl.so CLInit", "second CLInit"}), 1);
  EXPECT_EQ(pluginCalls(), (Lines{read(), deletion("preoperation /x/libcl.so CLInit")}));
  EXPECT_EQ(oldStore().values(dn(), "zor-slapdPlugin"), (Lines{"database a", "second CLInit"}));
  EXPECT_EQ(newStore().values(dn(), "zor-slapdPlugin"), (Lines{"new", "database a", "second CLInit"}));
  EXPECT_EQ(ruleMessages(kMergeIn41), Lines());
}

TEST_P(ChangeLogPlugin41, IsKnownByAPartOfTheTextInItsLetterCase) {
  EXPECT_EQ(merge({"clinit", "CLINIT", "CL Init", "xCLInity"}), 1);
  EXPECT_EQ(pluginCalls(), (Lines{read(), deletion("xCLInity")}));
}

TEST_P(ChangeLogPlugin41, WithoutOneNothingIsDeleted) {
  EXPECT_EQ(merge({"database a", "custom b"}), 1);
  EXPECT_EQ(pluginCalls(), (Lines{read()}));
  EXPECT_EQ(newStore().values(dn(), "zor-slapdPlugin"), (Lines{"new", "database a", "custom b"}));
}

TEST_P(ChangeLogPlugin41, AFailedDeletionIsReportedAndEndsTheScan) {
  world.faults().fail({.operation = "delValue", .attribute = "zor-slapdPlugin"}, 53);
  EXPECT_EQ(merge({"a", "b", "first CLInit", "second CLInit"}), 1);
  EXPECT_EQ(pluginCalls(), (Lines{read(), deletion("first CLInit", 53)}));
  const std::string position = GetParam().reportsPosition ? ", i=2" : "";
  EXPECT_EQ(ruleMessages(kMergeIn41),
            (Lines{messageOf(kMergeIn41, "mergeIn41: delValue for zor-slapdPlugin returned rc=53" + position + "\n")}));
  EXPECT_EQ(newStore().values(dn(), "zor-slapdPlugin"), (Lines{"new", "a", "b", "first CLInit", "second CLInit"}));
}

TEST_P(ChangeLogPlugin41, AnUnreadableListIsHandedToFreeParamVals) {
  for (const auto outParameters : {fake::OutParameters::cleared, fake::OutParameters::untouched}) {
    for (const int rc : {16, 32, 80}) {
      world.faults().clear();
      world.faults().fail({.operation = "getParamArrayValueInfo", .attribute = "zor-slapdPlugin"}, rc, outParameters);
      EXPECT_EQ(merge({"first CLInit"}), 1);
      EXPECT_EQ(pluginCalls(), (Lines{read(rc)}));
      ASSERT_GE(world.trace().size(), 3U);
      EXPECT_EQ(world.trace()[1], fake::nullListMessage());
      EXPECT_EQ(world.trace()[2], entryOf(kMergeCfgEntry));
      EXPECT_EQ(newStore().values(dn(), "zor-slapdPlugin"), (Lines{"new", "first CLInit"}));
    }
  }
}

TEST_P(ChangeLogPlugin41, AnEmptyListIsReleasedSilently) {
  EXPECT_EQ(merge({}), 1);
  EXPECT_EQ(pluginCalls(), (Lines{read()}));
  EXPECT_EQ(world.trace()[1], entryOf(kMergeCfgEntry));
}

// The schema backend's plug-ins are not tested for null: the store does not do that.
TEST_F(MergeIn41, TheDirectoryBackendsScanPassesOverANullSlot) {
  put(kLegacyDirectory, {{"zor-slapdPlugin", {"lost CLInit", "found CLInit"}}});
  newStore().put(kLegacyDirectory, {});
  open();
  world.onList([&world = world](std::string_view, char** values) {
    values[0] = nullptr;
    world.onList(nullptr);
  });
  EXPECT_EQ(newConfig().mergeIn41(modifiable(kLegacyDirectory), &oldConfig()), 1);
  EXPECT_EQ(oldStore().values(kLegacyDirectory, "zor-slapdPlugin"), (Lines{"lost CLInit"}));
  // The strings behind a null slot are out of freeParamVals' reach.
  EXPECT_EQ(complaints().size(), 2U);
  world.resources().forgive();
}

}  // namespace
