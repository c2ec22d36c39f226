// mergeCfgEntry and mergeChangeDnEntry: values of an old entry go into an existing new one, at the same DN or at
// another. What the two have in common is tested on both; what sets them apart has tests of its own.

#include "ConfigFileFixture.h"

namespace {

using fake::nullListMessage;
using fake::OutParameters;
using namespace traced;

const std::string kOldDn = "CN=AUDIT,CN=CONFIGURATION";
const std::string kMovedDn = "CN=AUDIT,CN=LOG MANAGEMENT,CN=CONFIGURATION";

class MergeEntry : public ConfigFileFixture {
 protected:
  void put(std::vector<fake::Attribute> oldAttributes, std::vector<fake::Attribute> newAttributes) {
    oldStore().clear();
    newStore().clear();
    oldStore().put(kOldDn, std::move(oldAttributes));
    newStore().put(m_newDn, std::move(newAttributes));
  }

  int merge() {
    if (m_traced.identifier == kMergeCfgEntry.identifier) {
      return newConfig().mergeCfgEntry(modifiable(kOldDn), &oldConfig());
    }
    return newConfig().mergeChangeDnEntry(modifiable(kOldDn), modifiable(m_newDn), &oldConfig());
  }

  int openAndMerge() {
    open();
    return merge();
  }

  void useMove() {
    m_traced = kMergeChangeDnEntry;
    m_newDn = kMovedDn;
  }

  // Lines of the log with "OLD" and "NEW" standing for the two DNs.
  Lines expanded(Lines lines) const {
    for (std::string& line : lines) {
      if (const auto at = line.find("OLD"); at != std::string::npos) {
        line.replace(at, 3, kOldDn);
      }
      if (const auto at = line.find("NEW"); at != std::string::npos) {
        line.replace(at, 3, m_newDn);
      }
    }
    return lines;
  }

  // A message of the method under test, which begins with its name.
  std::string message(const std::string& text) const {
    return messageOf(m_traced, std::string(m_traced.name) + ": " + text);
  }

  Lines traceWith(const Lines& inner, long result) const {
    Lines lines = {entryOf(m_traced)};
    lines.insert(lines.end(), inner.begin(), inner.end());
    lines.push_back(exitOf(m_traced, result));
    return lines;
  }

  Lines asked() const { return {entryOf(kIsMultiVal), exitOf(kIsMultiVal, 0)}; }

  fake::Traced m_traced = kMergeCfgEntry;
  std::string m_newDn = kOldDn;
};

class BothMerges : public MergeEntry, public testing::WithParamInterface<bool> {
 protected:
  void SetUp() override {
    if (GetParam()) {
      useMove();
    }
  }
};

INSTANTIATE_TEST_SUITE_P(Methods, BothMerges, testing::Bool(), [](const testing::TestParamInfo<bool>& method) {
  return method.param ? "mergeChangeDnEntry" : "mergeCfgEntry";
});

TEST_P(BothMerges, OverwritesADifferentSingleValue) {
  put({{"zor-slapdPort", {"1389"}}}, {{"zor-slapdPort", {"389"}}});
  EXPECT_EQ(openAndMerge(), 1);
  EXPECT_EQ(world.calls(), expanded({"old.getFirstEntry(OLD) = 0", "old.getFirstAttribute(OLD) = 0",
                                     "old.getParamArrayValueInfo(OLD, zor-slapdPort) = 0",
                                     "new.getParamArrayValueInfo(NEW, zor-slapdPort) = 0",
                                     "new.setValue(NEW, zor-slapdPort, 1389) = 0", "old.getNextAttribute(OLD) = 0",
                                     "cfg_ber_free(old:OLD)", "cfg_msgfree(old:OLD)"}));
  EXPECT_EQ(world.trace(), traceWith(asked(), 1));
  EXPECT_EQ(newStore().values(m_newDn, "zor-slapdPort"), (Lines{"1389"}));
}

TEST_P(BothMerges, LeavesAnEqualSingleValueAlone) {
  put({{"zor-slapdPort", {"389"}}}, {{"ZOR-SLAPDPORT", {"389"}}});
  EXPECT_EQ(openAndMerge(), 1);
  EXPECT_EQ(world.calls(),
            expanded({"old.getFirstEntry(OLD) = 0", "old.getFirstAttribute(OLD) = 0",
                      "old.getParamArrayValueInfo(OLD, zor-slapdPort) = 0",
                      "new.getParamArrayValueInfo(NEW, zor-slapdPort) = 0", "old.getNextAttribute(OLD) = 0",
                      "cfg_ber_free(old:OLD)", "cfg_msgfree(old:OLD)"}));
}

TEST_P(BothMerges, ASingleValueInAnotherLetterCaseIsOverwritten) {
  put({{"zor-slapdLog", {"/VAR/log"}}}, {{"zor-slapdLog", {"/var/log"}}});
  EXPECT_EQ(openAndMerge(), 1);
  EXPECT_EQ(newStore().values(m_newDn, "zor-slapdLog"), (Lines{"/VAR/log"}));
}

TEST_P(BothMerges, ComparesAndSetsOnlyTheFirstValueOfAnAttributeOutsideTheTable) {
  put({{"zor-one", {"a", "x"}}, {"zor-two", {"b", "x"}}}, {{"zor-one", {"a", "y"}}, {"zor-two", {"c", "y"}}});
  EXPECT_EQ(openAndMerge(), 1);
  EXPECT_EQ(newStore().values(m_newDn, "zor-one"), (Lines{"a", "y"}));
  EXPECT_EQ(newStore().values(m_newDn, "zor-two"), (Lines{"b"}));
}

TEST_P(BothMerges, AddsEveryOldValueOfAMultiValuedAttribute) {
  put({{"zor-slapdSuffix", {"o=a", "o=b", "o=c"}}}, {{"zor-slapdSuffix", {"o=b", "o=d"}}});
  EXPECT_EQ(openAndMerge(), 1);
  EXPECT_EQ(
      world.calls(),
      expanded({"old.getFirstEntry(OLD) = 0", "old.getFirstAttribute(OLD) = 0",
                "old.getParamArrayValueInfo(OLD, zor-slapdSuffix) = 0",
                "new.getParamArrayValueInfo(NEW, zor-slapdSuffix) = 0", "new.addValue(NEW, zor-slapdSuffix, o=a) = 0",
                "new.addValue(NEW, zor-slapdSuffix, o=b) = 0", "new.addValue(NEW, zor-slapdSuffix, o=c) = 0",
                "old.getNextAttribute(OLD) = 0", "cfg_ber_free(old:OLD)", "cfg_msgfree(old:OLD)"}));
  EXPECT_EQ(newStore().values(m_newDn, "zor-slapdSuffix"), (Lines{"o=b", "o=d", "o=a", "o=c"}));
}

TEST_P(BothMerges, KeepsWhatOnlyTheNewEntryHas) {
  put({{"zor-slapdPort", {"1389"}}}, {{"zor-slapdPort", {"389"}}, {"zor-slapdNew", {"x"}}});
  EXPECT_EQ(openAndMerge(), 1);
  EXPECT_EQ(newStore().values(m_newDn, "zor-slapdNew"), (Lines{"x"}));
}

TEST_P(BothMerges, LeavesTheOldConfigurationAsItWas) {
  put({{"zor-slapdPort", {"1389"}}, {"zor-slapdSuffix", {"o=a"}}},
      {{"zor-slapdPort", {"389"}}, {"zor-slapdSuffix", {"o=b"}}});
  const auto before = oldStore().entries();
  EXPECT_EQ(openAndMerge(), 1);
  EXPECT_EQ(oldStore().entries(), before);
}

TEST_P(BothMerges, NeverTouchesObjectClassesAndVersion) {
  put({{"objectClass", {"A"}}, {"Zor-SlapdVersion", {"6.0"}}, {"OBJECTCLASS", {"B"}}, {"zor-slapdVERSION", {"7"}}},
      {{"objectClass", {"C"}}, {"zor-slapdVersion", {"8"}}});
  EXPECT_EQ(openAndMerge(), 1);
  EXPECT_EQ(world.calls(),
            expanded({"old.getFirstEntry(OLD) = 0", "old.getFirstAttribute(OLD) = 0", "old.getNextAttribute(OLD) = 0",
                      "old.getNextAttribute(OLD) = 0", "old.getNextAttribute(OLD) = 0", "old.getNextAttribute(OLD) = 0",
                      "cfg_ber_free(old:OLD)", "cfg_msgfree(old:OLD)"}));
  // Neither list was ever filled.
  EXPECT_EQ(world.trace(), traceWith({nullListMessage(), nullListMessage()}, 1));
}

TEST_P(BothMerges, NamesThatMerelyBeginLikeASkippedOneAreCarried) {
  put({{"OBJECTCLASSES", {"A"}}, {"zor-slapdVersion2", {"6"}}, {"CNX", {"q"}}, {"OBJECTCLAS", {"z"}}},
      {{"OBJECTCLASSES", {"a"}}, {"zor-slapdVersion2", {"7"}}, {"CNX", {"r"}}, {"OBJECTCLAS", {"y"}}});
  EXPECT_EQ(openAndMerge(), 1);
  EXPECT_EQ(newStore().values(m_newDn, "OBJECTCLASSES"), (Lines{"A"}));
  EXPECT_EQ(newStore().values(m_newDn, "zor-slapdVersion2"), (Lines{"6"}));
  EXPECT_EQ(newStore().values(m_newDn, "CNX"), (Lines{"q"}));
  EXPECT_EQ(newStore().values(m_newDn, "OBJECTCLAS"), (Lines{"z"}));
}

TEST_P(BothMerges, AnEntryWithoutAttributesIsMergedAtOnce) {
  put({}, {{"zor-slapdPort", {"389"}}});
  EXPECT_EQ(openAndMerge(), 1);
  EXPECT_EQ(world.calls(), expanded({"old.getFirstEntry(OLD) = 0", "old.getFirstAttribute(OLD) = 0",
                                     "cfg_ber_free(old:OLD)", "cfg_msgfree(old:OLD)"}));
  EXPECT_EQ(world.trace(), traceWith({nullListMessage(), nullListMessage()}, 1));
}

TEST_P(BothMerges, ReportsAFirstAttributeThatCannotBeRead) {
  put({{"zor-slapdPort", {"1389"}}}, {{"zor-slapdPort", {"389"}}});
  world.faults().fail({.operation = "getFirstAttribute"}, 80);
  EXPECT_EQ(openAndMerge(), 0);
  EXPECT_EQ(world.calls(),
            expanded({"old.getFirstEntry(OLD) = 0", "old.getFirstAttribute(OLD) = 80", "cfg_msgfree(old:OLD)"}));
  EXPECT_EQ(world.trace(),
            traceWith({message("getFirstAttribute returned rc=80\n"), nullListMessage(), nullListMessage()}, 0));
}

TEST_P(BothMerges, ReportsAnOldAttributeThatCannotBeRead) {
  for (const int rc : {16, 32, 80}) {
    put({{"zor-slapdPort", {"1389"}}, {"zor-slapdLog", {"x"}}}, {{"zor-slapdPort", {"389"}}});
    world.faults().clear();
    world.faults().fail({.store = "old", .operation = "getParamArrayValueInfo"}, rc);
    EXPECT_EQ(openAndMerge(), 0);
    const std::string code = std::to_string(rc);
    EXPECT_EQ(world.calls(), expanded({"old.getFirstEntry(OLD) = 0", "old.getFirstAttribute(OLD) = 0",
                                       "old.getParamArrayValueInfo(OLD, zor-slapdPort) = " + code,
                                       "cfg_ber_free(old:OLD)", "cfg_msgfree(old:OLD)"}));
    EXPECT_EQ(world.trace(), traceWith({message("getParamArrayValueInfo(1) returned rc=" + code + "\n"),
                                        nullListMessage(), nullListMessage()},
                                       0));
  }
}

TEST_P(BothMerges, ReportsANewAttributeThatCannotBeRead) {
  put({{"zor-slapdPort", {"1389"}}, {"zor-slapdLog", {"x"}}}, {{"zor-slapdPort", {"389"}}});
  world.faults().fail({.store = "new", .operation = "getParamArrayValueInfo"}, 80);
  EXPECT_EQ(openAndMerge(), 0);
  EXPECT_EQ(world.calls(), expanded({"old.getFirstEntry(OLD) = 0", "old.getFirstAttribute(OLD) = 0",
                                     "old.getParamArrayValueInfo(OLD, zor-slapdPort) = 0",
                                     "new.getParamArrayValueInfo(NEW, zor-slapdPort) = 80", "cfg_ber_free(old:OLD)",
                                     "cfg_msgfree(old:OLD)"}));
  EXPECT_EQ(world.trace(), traceWith({message("getParamArrayValueInfo(2) returned rc=80\n"), nullListMessage()}, 0));
}

TEST_P(BothMerges, AMissingNewEntryIsAnAttributeThatCannotBeRead) {
  put({{"zor-slapdPort", {"1389"}}}, {});
  newStore().clear();
  EXPECT_EQ(openAndMerge(), 0);
  EXPECT_EQ(world.messages(), (Lines{message("getParamArrayValueInfo(2) returned rc=32\n"), nullListMessage()}));
}

TEST_P(BothMerges, StopsAtTheFirstMultiValueThatCannotBeAdded) {
  put({{"zor-slapdSetenv", {"a", "b", "c"}}, {"zor-slapdPort", {"1"}}},
      {{"zor-slapdSetenv", {"d"}}, {"zor-slapdPort", {"2"}}});
  world.faults().fail({.operation = "addValue", .nth = 2}, 53);
  EXPECT_EQ(openAndMerge(), 0);
  EXPECT_EQ(newStore().values(m_newDn, "zor-slapdSetenv"), (Lines{"d", "a"}));
  EXPECT_EQ(newStore().values(m_newDn, "zor-slapdPort"), (Lines{"2"}));
  Lines inner = asked();
  inner.push_back(message("addValue returned rc=53, k=1\n"));
  EXPECT_EQ(world.trace(), traceWith(inner, 0));
  EXPECT_EQ(world.calls().back(), "cfg_msgfree(old:" + kOldDn + ")");
}

TEST_P(BothMerges, StopsAtASingleValueThatCannotBeSet) {
  put({{"zor-slapdPort", {"1"}}, {"zor-slapdLog", {"x"}}}, {{"zor-slapdPort", {"2"}}, {"zor-slapdLog", {"y"}}});
  world.faults().fail({.operation = "setValue"}, 53);
  EXPECT_EQ(openAndMerge(), 0);
  EXPECT_EQ(newStore().values(m_newDn, "zor-slapdLog"), (Lines{"y"}));
  Lines inner = asked();
  inner.push_back(message("setValue returned rc=53\n"));
  EXPECT_EQ(world.trace(), traceWith(inner, 0));
}

TEST_P(BothMerges, StopsWhenTheWalkCannotAdvance) {
  for (const OutParameters outParameters : {OutParameters::cleared, OutParameters::untouched}) {
    put({{"zor-slapdPort", {"1"}}, {"zor-slapdLog", {"x"}}}, {{"zor-slapdPort", {"1"}}, {"zor-slapdLog", {"y"}}});
    world.faults().clear();
    world.faults().fail({.operation = "getNextAttribute"}, 80, outParameters);
    EXPECT_EQ(openAndMerge(), 0);
    Lines inner = asked();
    inner.push_back(message("getNextAttribute returned rc=80\n"));
    // Both lists were filled and emptied: nothing is said about them.
    EXPECT_EQ(world.trace(), traceWith(inner, 0));
    EXPECT_EQ(newStore().values(m_newDn, "zor-slapdLog"), (Lines{"y"}));
  }
}

TEST_P(BothMerges, AListOnceFilledIsNotNullAtTheEndAlthoughLaterAttributesWereSkipped) {
  put({{"zor-slapdPort", {"1"}}, {"OBJECTCLASS", {"A"}}}, {{"zor-slapdPort", {"1"}}});
  EXPECT_EQ(openAndMerge(), 1);
  EXPECT_EQ(world.trace(), traceWith(asked(), 1));
}

TEST_P(BothMerges, ListsOfEarlierAttributesAreLeftWhenAReadTouchesNothing) {
  put({{"zor-slapdPort", {"1"}}, {"zor-slapdLog", {"x"}}}, {{"zor-slapdPort", {"1"}}, {"zor-slapdLog", {"y"}}});
  world.faults().fail({.store = "old", .operation = "getParamArrayValueInfo", .attribute = "zor-slapdLog"}, 80,
                      OutParameters::untouched);
  EXPECT_EQ(openAndMerge(), 0);
  Lines inner = asked();
  inner.push_back(message("getParamArrayValueInfo(1) returned rc=80\n"));
  EXPECT_EQ(world.trace(), traceWith(inner, 0));
}

TEST_P(BothMerges, AListThatAFailedReadNulledIsReportedAtTheEnd) {
  put({{"zor-slapdPort", {"1"}}, {"zor-slapdLog", {"x"}}}, {{"zor-slapdPort", {"1"}}, {"zor-slapdLog", {"y"}}});
  world.faults().fail({.store = "old", .operation = "getParamArrayValueInfo", .attribute = "zor-slapdLog"}, 80);
  EXPECT_EQ(openAndMerge(), 0);
  Lines inner = asked();
  inner.push_back(message("getParamArrayValueInfo(1) returned rc=80\n"));
  inner.push_back(nullListMessage());
  EXPECT_EQ(world.trace(), traceWith(inner, 0));
}

TEST_P(BothMerges, WhatTheStoreThrowsPassesAfterTheExitRecords) {
  int call = 1;
  for (;; ++call) {
    put({{"zor-slapdPort", {"1"}}, {"zor-slapdSuffix", {"x", "y"}}},
        {{"zor-slapdPort", {"2"}}, {"zor-slapdSuffix", {"z"}}});
    world.faults().clear();
    open();
    world.faults().throwAtCall(call);
    try {
      merge();
      break;
    } catch (const fake::Thrown&) {
      EXPECT_EQ(world.trace().back(), exitOf(m_traced, 0));
      EXPECT_EQ(world.messages(), Lines()) << "thrown by call " << call;
    }
    EXPECT_EQ(complaints(), Lines()) << "thrown by call " << call;
  }
  EXPECT_EQ(call, 12);
}

// --- mergeCfgEntry alone.

TEST_F(MergeEntry, MergeCfgEntryAddsAnAttributeThatTheNewEntryLacks) {
  put({{"zor-slapdPort", {"1", "2"}}, {"zor-slapdLog", {"x"}}}, {{"zor-slapdLog", {"x"}}});
  EXPECT_EQ(openAndMerge(), 1);
  EXPECT_EQ(world.calls(),
            expanded({"old.getFirstEntry(OLD) = 0", "old.getFirstAttribute(OLD) = 0",
                      "old.getParamArrayValueInfo(OLD, zor-slapdPort) = 0",
                      "new.getParamArrayValueInfo(NEW, zor-slapdPort) = 16", "new.addValue(NEW, zor-slapdPort, 1) = 0",
                      "new.addValue(NEW, zor-slapdPort, 2) = 0", "old.getNextAttribute(OLD) = 0",
                      "old.getParamArrayValueInfo(OLD, zor-slapdLog) = 0",
                      "new.getParamArrayValueInfo(NEW, zor-slapdLog) = 0", "old.getNextAttribute(OLD) = 0",
                      "cfg_ber_free(old:OLD)", "cfg_msgfree(old:OLD)"}));
  // isMultiVal is asked only about attributes on both sides; the new side's list was null for the first one.
  EXPECT_EQ(world.trace(), traceWith({nullListMessage(), entryOf(kIsMultiVal), exitOf(kIsMultiVal, 0)}, 1));
  EXPECT_EQ(newStore().values(kOldDn, "zor-slapdPort"), (Lines{"1", "2"}));
}

TEST_F(MergeEntry, MergeCfgEntryStopsAtTheFirstValueOfALackingAttributeThatCannotBeAdded) {
  put({{"zor-slapdPort", {"1", "2", "3"}}, {"zor-slapdLog", {"x"}}}, {{"zor-slapdLog", {"y"}}});
  world.faults().fail({.operation = "addValue", .nth = 3}, 53);
  EXPECT_EQ(openAndMerge(), 0);
  EXPECT_EQ(world.trace(), traceWith({message("addValue returned rc=53, i=2\n"), nullListMessage()}, 0));
  EXPECT_EQ(newStore().values(kOldDn, "zor-slapdPort"), (Lines{"1", "2"}));
  EXPECT_EQ(newStore().values(kOldDn, "zor-slapdLog"), (Lines{"y"}));
}

TEST_F(MergeEntry, MergeCfgEntryCarriesTheNamingValue) {
  put({{"CN", {"Audit"}}}, {{"CN", {"AUDIT"}}});
  EXPECT_EQ(openAndMerge(), 1);
  EXPECT_EQ(newStore().values(kOldDn, "CN"), (Lines{"Audit"}));
}

TEST_F(MergeEntry, MergeCfgEntryCleansNothingUpWhenTheEntryCannotBeFound) {
  put({{"CN", {"Audit"}}}, {{"CN", {"AUDIT"}}});
  world.faults().fail({.operation = "getFirstEntry"}, 80);
  EXPECT_EQ(openAndMerge(), 0);
  EXPECT_EQ(world.calls(), expanded({"old.getFirstEntry(OLD) = 80"}));
  EXPECT_EQ(world.trace(), traceWith({message("getFirstEntry returned rc=80\n")}, 0));
}

// --- mergeChangeDnEntry alone.

TEST_F(MergeEntry, MergeChangeDnEntryCleansUpWhenTheEntryCannotBeFound) {
  useMove();
  put({{"zor-slapdLog", {"x"}}}, {{"zor-slapdLog", {"y"}}});
  world.faults().fail({.operation = "getFirstEntry"}, 80);
  EXPECT_EQ(openAndMerge(), 0);
  EXPECT_EQ(world.calls(), expanded({"old.getFirstEntry(OLD) = 80"}));
  EXPECT_EQ(world.trace(),
            traceWith({message("getFirstEntry returned rc=80\n"), nullListMessage(), nullListMessage()}, 0));
}

TEST_F(MergeEntry, MergeChangeDnEntryEndsAtAnAttributeThatTheNewEntryLacks) {
  useMove();
  put({{"zor-slapdPort", {"1"}}, {"zor-slapdLog", {"x"}}}, {{"zor-slapdLog", {"y"}}});
  EXPECT_EQ(openAndMerge(), 0);
  EXPECT_EQ(world.calls(), expanded({"old.getFirstEntry(OLD) = 0", "old.getFirstAttribute(OLD) = 0",
                                     "old.getParamArrayValueInfo(OLD, zor-slapdPort) = 0",
                                     "new.getParamArrayValueInfo(NEW, zor-slapdPort) = 16", "cfg_ber_free(old:OLD)",
                                     "cfg_msgfree(old:OLD)"}));
  EXPECT_EQ(world.trace(), traceWith({message("getParamArrayValueInfo(2) returned rc=16\n"), nullListMessage()}, 0));
  EXPECT_EQ(newStore().find(kMovedDn, "zor-slapdPort"), nullptr);
  EXPECT_EQ(newStore().values(kMovedDn, "zor-slapdLog"), (Lines{"y"}));
}

TEST_F(MergeEntry, MergeChangeDnEntryEndsThereForAMultiValuedAttributeToo) {
  useMove();
  put({{"zor-slapdSuffix", {"o=a"}}}, {});
  EXPECT_EQ(openAndMerge(), 0);
  EXPECT_EQ(newStore().find(kMovedDn, "zor-slapdSuffix"), nullptr);
}

TEST_F(MergeEntry, MergeChangeDnEntryLeavesTheNamingValue) {
  useMove();
  put({{"cn", {"old name"}}, {"zor-slapdLog", {"x"}}}, {{"CN", {"AUDIT"}}, {"zor-slapdLog", {"y"}}});
  EXPECT_EQ(openAndMerge(), 1);
  EXPECT_EQ(newStore().values(kMovedDn, "CN"), (Lines{"AUDIT"}));
  EXPECT_EQ(newStore().values(kMovedDn, "zor-slapdLog"), (Lines{"x"}));
}

TEST_F(MergeEntry, MergeChangeDnEntryWritesOnlyAtTheNewDn) {
  useMove();
  put({{"zor-slapdLog", {"x"}}}, {{"zor-slapdLog", {"y"}}});
  newStore().put(kOldDn, {{"zor-slapdLog", {"z"}}});
  EXPECT_EQ(openAndMerge(), 1);
  EXPECT_EQ(newStore().values(kOldDn, "zor-slapdLog"), (Lines{"z"}));
  EXPECT_EQ(newStore().values(kMovedDn, "zor-slapdLog"), (Lines{"x"}));
}

}  // namespace
