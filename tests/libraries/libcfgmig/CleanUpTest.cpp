// removeDBInfo and removeDBInstInfo: settings that bind a configuration to one database go.

#include "CleanUpFixture.h"

namespace {

using namespace cleanup;
using standalone::kRemoveDBInfo;
using standalone::kRemoveDBInstInfo;

// --- removeDBInfo.

class RemoveDBInfo : public CleanUpFixture {
 protected:
  void SetUp() override { putAll(); }

  void putAll() {
    oldStore().clear();
    oldStore().put(kDirectory, {{"cn", {"DIRECTORY"}},
                                {"zor-slapdDbName", {"name", "second"}},
                                {"zor-slapdDbAlias", {"alias"}},
                                {"zor-slapdDbUserID", {"user"}},
                                {"zor-slapdDbUserPW", {"word"}},
                                {"zor-slapdDbLocation", {"/db"}},
                                {"zor-slapdDbInstance", {"inst"}}});
    oldStore().put(kFrontEnd, {{"zor-slapdSetenv", {"A=1", "B=2"}}});
  }

  int remove() {
    open();
    return oldConfig().removeDBInfo();
  }

  static std::string failed(const std::string& attribute, int rc) {
    return messageOf(kRemoveDBInfo,
                     "removeDBInfo: delValue for " + attribute + " returned rc=" + std::to_string(rc) + "\n");
  }
};

const std::string kRows[] = {"zor-slapdDbName",   "zor-slapdDbAlias",    "zor-slapdDbUserID",
                             "zor-slapdDbUserPW", "zor-slapdDbLocation", "zor-slapdSetenv"};

TEST_F(RemoveDBInfo, DeletesOneValueOfEachSettingInOrder) {
  EXPECT_EQ(remove(), 0);
  EXPECT_EQ(
      world.callsWithComparisons(),
      expanded(
          {"old.getParamValueInfo(DIR, zor-slapdDbName) = 0", "old.delValue(DIR, zor-slapdDbName, [name]) = 0",
           "old.getParamValueInfo(DIR, zor-slapdDbAlias) = 0", "old.delValue(DIR, zor-slapdDbAlias, [alias]) = 0",
           "old.getParamValueInfo(DIR, zor-slapdDbUserID) = 0", "old.delValue(DIR, zor-slapdDbUserID, [user]) = 0",
           "old.getParamValueInfo(DIR, zor-slapdDbUserPW) = 0", "old.delValue(DIR, zor-slapdDbUserPW, [word]) = 0",
           "old.getParamValueInfo(DIR, zor-slapdDbLocation) = 0", "old.delValue(DIR, zor-slapdDbLocation, [/db]) = 0",
           "old.getParamValueInfo(FRONT, zor-slapdSetenv) = 0", "old.delValue(FRONT, zor-slapdSetenv, [A=1]) = 0"}));
  EXPECT_EQ(world.trace(), traceOf(kRemoveDBInfo, {}, 0));
  EXPECT_EQ(oldStore().find(kDirectory)->attributes,
            (std::vector<fake::Attribute>{
                {"cn", {"DIRECTORY"}}, {"zor-slapdDbName", {"second"}}, {"zor-slapdDbInstance", {"inst"}}}));
  EXPECT_EQ(oldStore().find(kFrontEnd)->attributes, (std::vector<fake::Attribute>{{"zor-slapdSetenv", {"B=2"}}}));
  EXPECT_EQ(oldConfig().getDnNum(), 2);
}

TEST_F(RemoveDBInfo, AReadThatFailsLeavesOutItsSettingOnly) {
  for (int row = 0; row < 5; ++row) {
    putAll();
    world.faults().clear();
    world.faults().fail({.operation = "getParamValueInfo", .attribute = kRows[row]}, 80);
    EXPECT_EQ(remove(), 0) << kRows[row] << ": its code is not the result";
    EXPECT_EQ(world.calls().size(), 11U);
    EXPECT_EQ(world.trace(), traceOf(kRemoveDBInfo, {}, 0));
    EXPECT_NE(oldStore().find(kDirectory, kRows[row]), nullptr);
  }
}

TEST_F(RemoveDBInfo, AReadOfTheEnvironmentThatFailsIsTheResult) {
  for (const int rc : {16, 32, -1}) {
    putAll();
    world.faults().clear();
    world.faults().fail({.operation = "getParamValueInfo", .attribute = "zor-slapdSetenv"}, rc);
    EXPECT_EQ(remove(), rc);
    EXPECT_EQ(world.trace(), traceOf(kRemoveDBInfo, {}, rc));
    EXPECT_EQ(oldStore().find(kDirectory, "zor-slapdDbLocation"), nullptr);
  }
}

TEST_F(RemoveDBInfo, WithoutAFrontEndTheCodeOfThatReadIsTheResult) {
  oldStore().removeEntry(kFrontEnd.c_str());
  EXPECT_EQ(remove(), fake::kNoSuchEntry);
  EXPECT_EQ(oldStore().find(kDirectory)->attributes.size(), 3U);
}

TEST_F(RemoveDBInfo, WithoutABackendOnlyTheEnvironmentIsLooked) {
  oldStore().removeEntry(kDirectory.c_str());
  EXPECT_EQ(remove(), 0);
  EXPECT_EQ(world.calls().size(), 7U);
  EXPECT_EQ(oldStore().values(kFrontEnd, "zor-slapdSetenv"), (Lines{"B=2"}));
}

TEST_F(RemoveDBInfo, ASettingThatIsAbsentReadsAsNullAndNothingIsDeleted) {
  oldStore().clear();
  oldStore().put(kDirectory, {{"zor-slapdDbAlias", {"alias"}}});
  oldStore().put(kFrontEnd, {{"cn", {"FRONT END"}}});
  EXPECT_EQ(remove(), 0);
  EXPECT_EQ(world.calls()[0], expanded({"old.getParamValueInfo(DIR, zor-slapdDbName) = 0"})[0]);
  EXPECT_EQ(world.calls()[1], expanded({"old.delValue(DIR, zor-slapdDbName, []) = 0"})[0]);
  EXPECT_EQ(world.calls()[11], expanded({"old.delValue(FRONT, zor-slapdSetenv, []) = 0"})[0]);
  EXPECT_EQ(world.trace(), traceOf(kRemoveDBInfo, {}, 0));
  EXPECT_EQ(oldStore().find(kDirectory)->attributes, std::vector<fake::Attribute>());
}

// The alias is reported under the attribute of the name.
TEST_F(RemoveDBInfo, AFailedDeletionEndsItUnderTheSettingsNameButTheAliasUnderThatOfTheName) {
  const std::string names[] = {"zor-slapdDbName",   "zor-slapdDbName",     "zor-slapdDbUserID",
                               "zor-slapdDbUserPW", "zor-slapdDbLocation", "zor-slapdSetenv"};
  for (int row = 0; row < 6; ++row) {
    putAll();
    world.faults().clear();
    world.faults().fail({.operation = "delValue", .attribute = kRows[row]}, 50 + row);
    EXPECT_EQ(remove(), 50 + row);
    EXPECT_EQ(world.calls().size(), 2U * static_cast<std::size_t>(row + 1)) << "nothing after it";
    EXPECT_EQ(world.trace(), traceOf(kRemoveDBInfo, {failed(names[row], 50 + row)}, 50 + row));
  }
}

TEST_F(RemoveDBInfo, ASecondCallTakesTheNextValues) {
  EXPECT_EQ(remove(), 0);
  EXPECT_EQ(oldConfig().removeDBInfo(), 0);
  EXPECT_EQ(oldStore().find(kDirectory, "zor-slapdDbName"), nullptr);
  EXPECT_EQ(oldStore().find(kFrontEnd, "zor-slapdSetenv"), nullptr);
  EXPECT_EQ(oldConfig().removeDBInfo(), 0);
}

TEST_F(RemoveDBInfo, LeavesLegacyEntriesAlone) {
  const char legacy[] = "cn=DIRECTORY, cn=RDBM BACKENDS, cn=ZOR Halvorn, CN=SCHEMAS,CN=CONFIGURATION";
  oldStore().put(legacy, {{"zor-slapdDbName", {"name"}}});
  EXPECT_EQ(remove(), 0);
  EXPECT_EQ(oldStore().values(legacy, "zor-slapdDbName"), (Lines{"name"}));
}

// --- removeDBInstInfo.

class RemoveDBInstInfo : public CleanUpFixture {
 protected:
  int remove() {
    open();
    return oldConfig().removeDBInstInfo();
  }
};

TEST_F(RemoveDBInstInfo, DeletesTheInstance) {
  oldStore().put(kDirectory, {{"zor-slapdDbInstance", {"first", "second"}}, {"zor-slapdDbName", {"name"}}});
  EXPECT_EQ(remove(), 0);
  EXPECT_EQ(world.callsWithComparisons(), expanded({"old.getParamValueInfo(DIR, zor-slapdDbInstance) = 0",
                                                    "old.delValue(DIR, zor-slapdDbInstance, [first]) = 0"}));
  EXPECT_EQ(world.trace(), traceOf(kRemoveDBInstInfo, {}, 0));
  EXPECT_EQ(oldStore().values(kDirectory, "zor-slapdDbInstance"), (Lines{"second"}));
  EXPECT_EQ(oldStore().values(kDirectory, "zor-slapdDbName"), (Lines{"name"}));
}

TEST_F(RemoveDBInstInfo, AReadThatFailsIsTheResultAndNothingIsSaid) {
  EXPECT_EQ(remove(), fake::kNoSuchEntry);
  EXPECT_EQ(world.calls(), expanded({"old.getParamValueInfo(DIR, zor-slapdDbInstance) = 32"}));
  EXPECT_EQ(world.trace(), traceOf(kRemoveDBInstInfo, {}, 32));
}

// The message has the name of editCLInfo, with a text that editCLInfo itself never writes.
TEST_F(RemoveDBInstInfo, AFailedDeletionIsReportedUnderAnotherMethodsName) {
  oldStore().put(kDirectory, {{"zor-slapdDbInstance", {"first"}}});
  world.faults().fail({.operation = "delValue"}, 53);
  EXPECT_EQ(remove(), 53);
  EXPECT_EQ(
      world.trace(),
      traceOf(kRemoveDBInstInfo,
              {messageOf(kRemoveDBInstInfo, "editCLInfo: delValue for zor-slapdDbInstance returned rc=53\n")}, 53));
}

TEST_F(RemoveDBInstInfo, AnAbsentInstanceReadsAsNullAndNothingIsDeleted) {
  oldStore().put(kDirectory, {{"zor-slapdDbName", {"name"}}});
  EXPECT_EQ(remove(), 0);
  EXPECT_EQ(world.calls(), expanded({"old.getParamValueInfo(DIR, zor-slapdDbInstance) = 0",
                                     "old.delValue(DIR, zor-slapdDbInstance, []) = 0"}));
}

}  // namespace
