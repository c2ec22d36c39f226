// Where the entries go that only a 6.0 configuration has, and the final check.

#include "Rules60Fixture.h"

namespace {

using namespace rules60;
using namespace traced;

class AddTo60 : public Rules60 {};

TEST_F(AddTo60, TriesItsDnsInOrder) {
  put(kOther, {});
  addTo(kOther);
  ASSERT_GE(world.callsWithComparisons().size(), 3U);
  EXPECT_EQ(world.callsWithComparisons()[0], "compareDns(" + kOther + ", " + kAdminAudit + ") = 0");
  EXPECT_EQ(world.callsWithComparisons()[1], "compareDns(" + kOther + ", " + kAudit + ") = 0");
  EXPECT_EQ(world.callsWithComparisons()[2], "old.getParamValueInfo(" + kOther + ", CN) = 0");
}

TEST_F(AddTo60, AddsAnOrdinaryEntryAndReportsZero) {
  put(kOther, {{"objectclass", {"A"}}, {"cn", {"CONNECTION MANAGEMENT"}}});
  EXPECT_EQ(addTo(kOther), 1);
  EXPECT_EQ(world.trace(),
            (Lines{entryOf(kAddTo60), entryOf(kAddCfgEntry), exitOf(kAddCfgEntry, 1), exitOf(kAddTo60, 0)}));
  ASSERT_NE(newStore().find(kOther), nullptr);
}

TEST_F(AddTo60, AnswersTheFailureOfAnAdditionAndReportsZero) {
  put(kOther, {{"cn", {"CONNECTION MANAGEMENT"}}});
  EXPECT_EQ(addTo(kOther), 0);
  EXPECT_EQ(world.trace().back(), exitOf(kAddTo60, 0));
}

TEST_F(AddTo60, OnlyTheAuditSettingOfTheAdminAuditEntryIsCarried) {
  put(kAdminAudit, {{"objectclass", {"A"}}, {"cn", {"ADMIN AUDIT"}}, {"zor-audit", {"true", "x"}}, {"zor-a", {"b"}}});
  EXPECT_EQ(addTo(kAdminAudit), 1);
  EXPECT_EQ(world.calls(), (Lines{call("old.getParamValueInfo", kAdminAudit, "zor-audit"),
                                  call("new.setValue", kMovedAdminAudit, "zor-audit, true")}));
  EXPECT_EQ(world.trace(), (Lines{entryOf(kAddTo60), exitOf(kAddTo60, 1)}));
  EXPECT_EQ(newStore().find(kAdminAudit), nullptr);
  EXPECT_EQ(newStore().find(kMovedAdminAudit, "zor-a"), nullptr);
  EXPECT_EQ(oldStore().values(kAdminAudit, "zor-audit"), (Lines{"true", "x"}));
}

TEST_F(AddTo60, AdminAuditAnswersOneWhateverHappens) {
  put(kAdminAudit, {{"zor-audit", {"true"}}});
  world.faults().fail({.operation = "getParamValueInfo"}, 80);
  EXPECT_EQ(addTo(kAdminAudit), 1);
  EXPECT_EQ(world.calls(), (Lines{call("old.getParamValueInfo", kAdminAudit, "zor-audit", 80)}));
  EXPECT_EQ(world.trace(), (Lines{entryOf(kAddTo60), exitOf(kAddTo60, 1)}));

  world.faults().clear();
  world.faults().fail({.operation = "setValue"}, 53);
  EXPECT_EQ(addTo(kAdminAudit), 1);
  EXPECT_EQ(world.trace(),
            (Lines{entryOf(kAddTo60), messageOf(kAddTo60, "addTo60: setValue for zor-audit returned rc=53\n"),
                   exitOf(kAddTo60, 1)}));
}

TEST_F(AddTo60, AnAbsentAuditSettingIsSetAsNullAndReported) {
  put(kAdminAudit, {{"cn", {"ADMIN AUDIT"}}});
  EXPECT_EQ(addTo(kAdminAudit), 1);
  EXPECT_EQ(world.calls(), (Lines{call("old.getParamValueInfo", kAdminAudit, "zor-audit"),
                                  call("new.setValue", kMovedAdminAudit, "zor-audit, null", 19)}));
  EXPECT_EQ(world.messages(), (Lines{messageOf(kAddTo60, "addTo60: setValue for zor-audit returned rc=19\n")}));
}

class Audit60 : public Rules60 {
 protected:
  void SetUp() override {
    Rules60::SetUp();
    put(kAudit, {{"objectclass", {"A"}},
                 {"cn", {"AUDIT"}},
                 {"zor-slapdLog", {"log"}},
                 {"zor-auditVersion", {"2"}},
                 {"zor-auditLog", {"audit.log"}},
                 {"zor-audit", {"true"}}});
    newStore().setValue(kMovedAudit.c_str(), "zor-audit", "false");
    newStore().setValue(kMovedAudit.c_str(), "zor-slapdLog", "new log");
  }
};

TEST_F(Audit60, MovesWithoutThreeOfItsSettings) {
  EXPECT_EQ(addTo(kAudit), 1);
  EXPECT_EQ(ruleCalls(), (Lines{call("old.getParamValueInfo", kAudit, "zor-slapdLog"),
                                call("old.delValue", kAudit, "zor-slapdLog, [log]"),
                                call("old.getParamValueInfo", kAudit, "zor-auditVersion"),
                                call("old.delValue", kAudit, "zor-auditVersion, [2]"),
                                call("old.getParamValueInfo", kAudit, "zor-auditLog"),
                                call("old.delValue", kAudit, "zor-auditLog, [audit.log]")}));
  EXPECT_EQ(newStore().values(kMovedAudit, "zor-audit"), (Lines{"true"}));
  EXPECT_EQ(newStore().values(kMovedAudit, "zor-slapdLog"), (Lines{"new log"}));
  EXPECT_EQ(newStore().values(kMovedAudit, "cn"), (Lines{"x"}));
  EXPECT_EQ(newStore().find(kAudit), nullptr);
}

TEST_F(Audit60, ReportsZeroWhateverTheTransferAnswers) {
  EXPECT_EQ(addTo(kAudit), 1);
  EXPECT_EQ(world.trace().back(), exitOf(kAddTo60, 0));
  newStore().removeEntry(kMovedAudit.c_str());
  EXPECT_EQ(addTo(kAudit), 0);
  EXPECT_EQ(world.trace().back(), exitOf(kAddTo60, 0));
}

TEST_F(Audit60, AFailedDropOfTheLogIsReportedAsASet) {
  world.faults().fail({.operation = "delValue", .nth = 0}, 53);
  EXPECT_EQ(addTo(kAudit), 0) << "zor-auditVersion has no place in the moved entry";
  EXPECT_EQ(ruleMessages(kAddTo60),
            (Lines{messageOf(kAddTo60, "addTo60: setValue for zor-slapdLog returned rc=53\n"),
                   messageOf(kAddTo60, "addTo60: delValue for zor-auditVersion returned rc=53\n"),
                   messageOf(kAddTo60, "addTo60: delValue for zor-auditLog returned rc=53\n")}));
}

TEST_F(Audit60, UnreadableSettingsAreSkippedSilently) {
  world.faults().fail({.operation = "getParamValueInfo", .nth = 0}, 80);
  addTo(kAudit);
  EXPECT_EQ(ruleCalls(), (Lines{call("old.getParamValueInfo", kAudit, "zor-slapdLog", 80),
                                call("old.getParamValueInfo", kAudit, "zor-auditVersion", 80),
                                call("old.getParamValueInfo", kAudit, "zor-auditLog", 80)}));
  EXPECT_EQ(ruleMessages(kAddTo60), Lines());
}

TEST_F(Audit60, AbsentSettingsMakeEmptyDeletions) {
  oldStore().clear();
  put(kAudit, {});
  EXPECT_EQ(addTo(kAudit), 1);
  EXPECT_EQ(
      ruleCalls(),
      (Lines{call("old.getParamValueInfo", kAudit, "zor-slapdLog"), call("old.delValue", kAudit, "zor-slapdLog, []"),
             call("old.getParamValueInfo", kAudit, "zor-auditVersion"),
             call("old.delValue", kAudit, "zor-auditVersion, []"),
             call("old.getParamValueInfo", kAudit, "zor-auditLog"), call("old.delValue", kAudit, "zor-auditLog, []")}));
}

// --- The final check.

TEST_F(AddTo60, TheFinalCheckDoesNothing) {
  open();
  EXPECT_EQ(newConfig().check60(&oldConfig()), 1);
  EXPECT_EQ(world.callsWithComparisons(), Lines());
  EXPECT_EQ(world.trace(), (Lines{entryOf(kCheck60), exitOf(kCheck60, 1)}));
}

}  // namespace
