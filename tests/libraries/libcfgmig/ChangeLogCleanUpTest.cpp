// removeCLInfo and editCLInfo: the change log goes, or its plug-in definitions get their canonical form.

#include "CleanUpFixture.h"

namespace {

using namespace cleanup;
using fake::nullListMessage;
using standalone::kEditCLInfo;
using standalone::kRemoveCLInfo;

const std::string kReadLog = "old.getParamArrayValueInfo(LOG, zor-slapdPlugin) = ";
const std::string kReadSchemaDb = "old.getParamArrayValueInfo(SCHEMADB, zor-slapdPlugin) = ";
const std::string kReadDirectory = "old.getParamArrayValueInfo(DIR, zor-slapdPlugin) = ";

// --- removeCLInfo.

class RemoveCLInfo : public CleanUpFixture {
 protected:
  void putAll() {
    oldStore().clear();
    oldStore().put(kChangeLog, {{"cn", {"CHANGE LOG"}}});
    putPlugins(kSchemaDb, {"a", "x CLInit 1", "x CLInit 2"});
    putPlugins(kDirectory, {"y CLInit 1", "b", "y CLInit 2"});
  }

  int remove() {
    open();
    return oldConfig().removeCLInfo();
  }

  static std::string failedDeletion(int rc, int i) {
    return messageOf(kRemoveCLInfo, "removeCLInfo: delValue for zor-slapdPlugin returned rc=" + std::to_string(rc) +
                                        ", i=" + std::to_string(i) + "\n");
  }

  const std::string m_removal = "old.removeEntry(LOG) = 0";
};

TEST_F(RemoveCLInfo, RemovesTheEntryAndTheFirstPluginOfEachBackend) {
  putAll();
  EXPECT_EQ(remove(), 0);
  EXPECT_EQ(world.callsWithComparisons(),
            expanded({m_removal, kReadSchemaDb + "0", "old.delValue(SCHEMADB, zor-slapdPlugin, [x CLInit 1]) = 0",
                      kReadDirectory + "0", "old.delValue(DIR, zor-slapdPlugin, [y CLInit 1]) = 0"}));
  EXPECT_EQ(world.trace(), traceOf(kRemoveCLInfo, {}, 0));
  EXPECT_EQ(oldStore().find(kChangeLog), nullptr);
  EXPECT_EQ(plugins(kSchemaDb), (Lines{"a", "x CLInit 2"}));
  EXPECT_EQ(plugins(kDirectory), (Lines{"b", "y CLInit 2"}));
  EXPECT_EQ(oldConfig().getDnNum(), 3) << "the inventory stays as it was";
}

TEST_F(RemoveCLInfo, WithoutAChangeLogNothingElseIsDone) {
  putPlugins(kSchemaDb, {"x CLInit"});
  putPlugins(kDirectory, {"y CLInit"});
  EXPECT_EQ(remove(), fake::kNoSuchEntry);
  EXPECT_EQ(world.calls(), expanded({"old.removeEntry(LOG) = 32"}));
  EXPECT_EQ(
      world.trace(),
      traceOf(kRemoveCLInfo,
              {messageOf(kRemoveCLInfo, "removeCLInfo: removeEntry for " + kChangeLog + " returned rc=32\n")}, 32));
  EXPECT_EQ(plugins(kSchemaDb), (Lines{"x CLInit"}));
  EXPECT_EQ(plugins(kDirectory), (Lines{"y CLInit"}));
}

TEST_F(RemoveCLInfo, LetterCaseOfTheMarkCounts) {
  putAll();
  oldStore().clear();
  oldStore().put(kChangeLog, {});
  putPlugins(kSchemaDb, {"x clinit", "x CLINIT", "CL Init"});
  putPlugins(kDirectory, {"CLInit"});
  EXPECT_EQ(remove(), 0);
  EXPECT_EQ(plugins(kSchemaDb).size(), 3U);
  EXPECT_EQ(plugins(kDirectory), Lines());
}

TEST_F(RemoveCLInfo, BackendsWithoutTheMarkKeepTheirPlugins) {
  oldStore().put(kChangeLog, {});
  putPlugins(kSchemaDb, {"a"});
  putPlugins(kDirectory, {});
  EXPECT_EQ(remove(), 0);
  EXPECT_EQ(world.calls(), expanded({m_removal, kReadSchemaDb + "0", kReadDirectory + "0"}));
  EXPECT_EQ(world.trace(), traceOf(kRemoveCLInfo, {}, 0));
}

TEST_F(RemoveCLInfo, SchemaPluginsThatCannotBeReadDoNotMatter) {
  for (const int rc : {16, 32, 80}) {
    putAll();
    world.faults().clear();
    world.faults().fail({.operation = "getParamArrayValueInfo", .dn = kSchemaDb}, rc);
    EXPECT_EQ(remove(), 0);
    EXPECT_EQ(world.calls(), expanded({m_removal, kReadSchemaDb + std::to_string(rc), kReadDirectory + "0",
                                       "old.delValue(DIR, zor-slapdPlugin, [y CLInit 1]) = 0"}));
    // Only the release of a list that was never filled is heard.
    EXPECT_EQ(world.trace(), traceOf(kRemoveCLInfo, {nullListMessage()}, 0));
  }
}

TEST_F(RemoveCLInfo, DirectoryPluginsThatCannotBeReadAreTheResult) {
  for (const int rc : {16, 32, 80}) {
    putAll();
    world.faults().clear();
    world.faults().fail({.operation = "getParamArrayValueInfo", .dn = kDirectory}, rc);
    EXPECT_EQ(remove(), rc);
    EXPECT_EQ(world.trace(), traceOf(kRemoveCLInfo, {nullListMessage()}, rc));
    EXPECT_EQ(plugins(kSchemaDb), (Lines{"a", "x CLInit 2"}));
  }
}

TEST_F(RemoveCLInfo, AFailedDeletionInTheSchemaBackendEndsIt) {
  putAll();
  world.faults().fail({.operation = "delValue", .dn = kSchemaDb}, 53);
  EXPECT_EQ(remove(), 53);
  EXPECT_EQ(world.calls(),
            expanded({m_removal, kReadSchemaDb + "0", "old.delValue(SCHEMADB, zor-slapdPlugin, [x CLInit 1]) = 53"}));
  EXPECT_EQ(world.trace(), traceOf(kRemoveCLInfo, {failedDeletion(53, 1)}, 53));
}

TEST_F(RemoveCLInfo, AFailedDeletionInTheDirectoryBackendEndsIt) {
  putAll();
  world.faults().fail({.operation = "delValue", .dn = kDirectory}, 54);
  EXPECT_EQ(remove(), 54);
  EXPECT_EQ(world.trace(), traceOf(kRemoveCLInfo, {failedDeletion(54, 0)}, 54));
  EXPECT_EQ(plugins(kDirectory), (Lines{"y CLInit 1", "b", "y CLInit 2"}));
}

TEST_F(RemoveCLInfo, ASecondCallFindsNoEntry) {
  putAll();
  EXPECT_EQ(remove(), 0);
  EXPECT_EQ(oldConfig().removeCLInfo(), fake::kNoSuchEntry);
  EXPECT_EQ(plugins(kSchemaDb), (Lines{"a", "x CLInit 2"}));
}

// --- editCLInfo.

class EditCLInfo : public CleanUpFixture {
 protected:
  void TearDown() override {
    clogPlugInPath = m_clog;
    rdbmPlugInPath = m_rdbm;
    CleanUpFixture::TearDown();
  }

  int edit() {
    open();
    return oldConfig().editCLInfo();
  }

  static std::string failed(const std::string& operation, int rc, int i) {
    return messageOf(kEditCLInfo, "editCLInfo: " + operation + " for zor-slapdPlugin returned rc=" +
                                      std::to_string(rc) + ", i=" + std::to_string(i) + "\n");
  }

  const char* const m_clog = clogPlugInPath;
  const char* const m_rdbm = rdbmPlugInPath;
};

TEST_F(EditCLInfo, TheCanonicalDefinitionsAreThese) {
  EXPECT_EQ(clogPlugInPath, kCanonicalChangeLog);
  EXPECT_EQ(rdbmPlugInPath, kCanonicalBackend);
  open();
}

TEST_F(EditCLInfo, RewritesEveryDefinitionOfTheChangeLogAndTheFirstOfEachBackend) {
  putPlugins(kChangeLog, {"p /old/libcl.so CLInit 1", "other", "database /old/lib.so rdbm_backend_init",
                          "p /old/libcl.so CLInit 2"});
  putPlugins(kSchemaDb, {"a", "x CLInit 1", "x CLInit 2", "x rdbm_backend_init"});
  putPlugins(kDirectory, {"y rdbm_backend_init", "y CLInit 1", "y CLInit 2"});
  EXPECT_EQ(edit(), 0);
  EXPECT_EQ(world.callsWithComparisons(),
            expanded({kReadLog + "0", "old.delValue(LOG, zor-slapdPlugin, [p /old/libcl.so CLInit 1]) = 0",
                      "old.addValue(LOG, zor-slapdPlugin, preoperation  libzorldapcl.so CLInit cn=changelog) = 0",
                      "old.delValue(LOG, zor-slapdPlugin, [database /old/lib.so rdbm_backend_init]) = 0",
                      "old.addValue(LOG, zor-slapdPlugin, database libback-rdbm.so rdbm_backend_init) = 0",
                      "old.delValue(LOG, zor-slapdPlugin, [p /old/libcl.so CLInit 2]) = 0",
                      "old.addValue(LOG, zor-slapdPlugin, preoperation  libzorldapcl.so CLInit cn=changelog) = 0",
                      kReadSchemaDb + "0", "old.delValue(SCHEMADB, zor-slapdPlugin, [x CLInit 1]) = 0",
                      "old.addValue(SCHEMADB, zor-slapdPlugin, preoperation  libzorldapcl.so CLInit cn=changelog) = 0",
                      kReadDirectory + "0", "old.delValue(DIR, zor-slapdPlugin, [y CLInit 1]) = 0",
                      "old.addValue(DIR, zor-slapdPlugin, preoperation  libzorldapcl.so CLInit cn=changelog) = 0"}));
  EXPECT_EQ(world.trace(), traceOf(kEditCLInfo, {}, 0));
  EXPECT_EQ(plugins(kChangeLog), (Lines{"other", kCanonicalChangeLog, kCanonicalBackend}));
  EXPECT_EQ(plugins(kSchemaDb), (Lines{"a", "x CLInit 2", "x rdbm_backend_init", kCanonicalChangeLog}));
  EXPECT_EQ(plugins(kDirectory), (Lines{"y rdbm_backend_init", "y CLInit 2", kCanonicalChangeLog}));
  EXPECT_EQ(oldConfig().getDnNum(), 3);
}

TEST_F(EditCLInfo, TracesUnderTheIdentifierOfRemoveCLInfo) {
  putPlugins(kDirectory, {});
  putPlugins(kSchemaDb, {});
  putPlugins(kChangeLog, {});
  EXPECT_EQ(edit(), 0);
  EXPECT_EQ(world.trace(), (Lines{entryOf(kRemoveCLInfo), exitOf(kRemoveCLInfo, 0)}));
  EXPECT_EQ(world.records().front().identifier, 0x51011b00UL);
}

TEST_F(EditCLInfo, AValueWithBothMarksIsReplacedTwice) {
  putPlugins(kChangeLog, {"p CLInit rdbm_backend_init"});
  putPlugins(kSchemaDb, {});
  putPlugins(kDirectory, {});
  EXPECT_EQ(edit(), 0);
  EXPECT_EQ(world.calls(),
            expanded({kReadLog + "0", "old.delValue(LOG, zor-slapdPlugin, [p CLInit rdbm_backend_init]) = 0",
                      "old.addValue(LOG, zor-slapdPlugin, preoperation  libzorldapcl.so CLInit cn=changelog) = 0",
                      "old.delValue(LOG, zor-slapdPlugin, [p CLInit rdbm_backend_init]) = 16",
                      "old.addValue(LOG, zor-slapdPlugin, database libback-rdbm.so rdbm_backend_init) = 0",
                      kReadSchemaDb + "0", kReadDirectory + "0"}));
  EXPECT_EQ(world.trace(), traceOf(kEditCLInfo, {failed("delValue", 16, 0)}, 0));
  EXPECT_EQ(plugins(kChangeLog), (Lines{kCanonicalChangeLog, kCanonicalBackend}));
}

TEST_F(EditCLInfo, CanonicalDefinitionsAreRewrittenAsWell) {
  putPlugins(kChangeLog, {kCanonicalChangeLog, kCanonicalBackend});
  putPlugins(kDirectory, {kCanonicalChangeLog, "z"});
  EXPECT_EQ(edit(), 0);
  EXPECT_EQ(plugins(kChangeLog), (Lines{kCanonicalChangeLog, kCanonicalBackend}));
  EXPECT_EQ(plugins(kDirectory), (Lines{"z", kCanonicalChangeLog}));
}

TEST_F(EditCLInfo, LetterCaseOfTheMarksCounts) {
  putPlugins(kChangeLog, {"p clinit", "p RDBM_BACKEND_INIT"});
  putPlugins(kDirectory, {"p ClInit"});
  EXPECT_EQ(edit(), 0);
  EXPECT_EQ(world.calls(), expanded({kReadLog + "0", kReadSchemaDb + "32", kReadDirectory + "0"}));
}

TEST_F(EditCLInfo, ReadsThePointersAtEachAddition) {
  putPlugins(kChangeLog, {"p CLInit", "q rdbm_backend_init", "r CLInit", "s rdbm_backend_init"});
  putPlugins(kSchemaDb, {"p CLInit"});
  putPlugins(kDirectory, {"p CLInit"});
  const char* const clog[] = {"c1", "c1", "c2", "c2", "c3", "c4"};
  const char* const rdbm[] = {"r1", "r1", "r1", "r2", "r2", "r2"};
  int additions = 0;
  world.onCall([&](const std::string& call) {
    if (call.find("delValue") != std::string::npos) {
      clogPlugInPath = clog[additions];
      rdbmPlugInPath = rdbm[additions];
      ++additions;
    }
  });
  EXPECT_EQ(edit(), 0);
  world.onCall(nullptr);
  EXPECT_EQ(plugins(kChangeLog), (Lines{"c1", "r1", "c2", "r2"}));
  EXPECT_EQ(plugins(kSchemaDb), (Lines{"c3"}));
  EXPECT_EQ(plugins(kDirectory), (Lines{"c4"}));
}

TEST_F(EditCLInfo, ADefinitionThatPointsNowhereCannotBeAdded) {
  putPlugins(kChangeLog, {"p CLInit"});
  clogPlugInPath = nullptr;
  EXPECT_EQ(edit(), fake::kBadValue);
  EXPECT_EQ(world.trace(), traceOf(kEditCLInfo, {failed("addValue", fake::kBadValue, 0)}, fake::kBadValue));
}

TEST_F(EditCLInfo, AfterTheChangeLogWasRemovedTheBackendsAreEditedAllTheSame) {
  putPlugins(kChangeLog, {"p CLInit"});
  putPlugins(kSchemaDb, {"x CLInit 1", "x CLInit 2"});
  putPlugins(kDirectory, {"y CLInit 1", "y CLInit 2"});
  open();
  EXPECT_EQ(oldConfig().removeCLInfo(), 0);
  EXPECT_EQ(oldConfig().editCLInfo(), 0);
  EXPECT_EQ(plugins(kSchemaDb), (Lines{kCanonicalChangeLog}));
  EXPECT_EQ(plugins(kDirectory), (Lines{kCanonicalChangeLog}));
}

// --- editCLInfo: failures.

class EditCLInfoFailure : public EditCLInfo {
 protected:
  void SetUp() override { putAll(); }

  void putAll() {
    oldStore().clear();
    world.faults().clear();
    putPlugins(kChangeLog, {"p", "p CLInit", "q rdbm_backend_init"});
    putPlugins(kSchemaDb, {"p", "q", "p CLInit"});
    putPlugins(kDirectory, {"p CLInit"});
  }
};

TEST_F(EditCLInfoFailure, ReadsOfTheChangeLogAndTheSchemaBackendDoNotMatter) {
  for (const int rc : {16, 32, 80}) {
    putAll();
    world.faults().fail({.operation = "getParamArrayValueInfo", .dn = kChangeLog}, rc);
    world.faults().fail({.operation = "getParamArrayValueInfo", .dn = kSchemaDb}, rc);
    EXPECT_EQ(edit(), 0);
    EXPECT_EQ(world.calls().size(), 5U);
    EXPECT_EQ(world.trace(), traceOf(kEditCLInfo, {nullListMessage(), nullListMessage()}, 0));
    EXPECT_EQ(plugins(kDirectory), (Lines{kCanonicalChangeLog}));
  }
}

TEST_F(EditCLInfoFailure, AReadOfTheDirectoryBackendIsTheResult) {
  for (const int rc : {16, 32, 80}) {
    putAll();
    world.faults().fail({.operation = "getParamArrayValueInfo", .dn = kDirectory}, rc);
    EXPECT_EQ(edit(), rc);
    EXPECT_EQ(world.trace(), traceOf(kEditCLInfo, {nullListMessage()}, rc));
    EXPECT_EQ(plugins(kSchemaDb), (Lines{"p", "q", kCanonicalChangeLog}));
  }
}

TEST_F(EditCLInfoFailure, AFailedDeletionOfAChangeLogPluginEndsIt) {
  struct Case {
    std::string dn;
    int i;
    std::size_t calls;
  };
  for (const Case& at : {Case{kChangeLog, 1, 2}, Case{kSchemaDb, 2, 7}, Case{kDirectory, 0, 10}}) {
    putAll();
    world.faults().fail({.operation = "delValue", .dn = at.dn}, 53);
    EXPECT_EQ(edit(), 53);
    EXPECT_EQ(world.calls().size(), at.calls) << at.dn;
    EXPECT_EQ(world.trace(), traceOf(kEditCLInfo, {failed("delValue", 53, at.i)}, 53)) << at.dn;
  }
}

TEST_F(EditCLInfoFailure, AFailedDeletionOfABackendPluginDoesNot) {
  world.faults().fail({.operation = "delValue", .dn = kChangeLog, .nth = 2}, 53);
  EXPECT_EQ(edit(), 0);
  EXPECT_EQ(world.calls().size(), 11U);
  EXPECT_EQ(world.trace(), traceOf(kEditCLInfo, {failed("delValue", 53, 2)}, 0));
  EXPECT_EQ(plugins(kChangeLog), (Lines{"p", "q rdbm_backend_init", kCanonicalChangeLog, kCanonicalBackend}));
}

TEST_F(EditCLInfoFailure, AFailedAdditionEndsIt) {
  struct Case {
    std::string dn;
    int nth;
    int i;
    std::size_t calls;
  };
  for (const Case& at :
       {Case{kChangeLog, 1, 1, 3}, Case{kChangeLog, 2, 2, 5}, Case{kSchemaDb, 1, 2, 8}, Case{kDirectory, 1, 0, 11}}) {
    putAll();
    world.faults().fail({.operation = "addValue", .dn = at.dn, .nth = at.nth}, 53);
    EXPECT_EQ(edit(), 53);
    EXPECT_EQ(world.calls().size(), at.calls) << at.dn;
    EXPECT_EQ(world.trace(), traceOf(kEditCLInfo, {failed("addValue", 53, at.i)}, 53)) << at.dn;
  }
}

}  // namespace
