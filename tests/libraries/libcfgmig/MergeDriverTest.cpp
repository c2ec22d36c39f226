// mergeConfigFiles and the three dispatchers: what is done with which entry, in which order.

#include <cstdlib>
#include <cstring>

#include "ConfigFileFixture.h"

namespace {

using namespace traced;

class MergeDriver : public ConfigFileFixture {
 protected:
  void SetUp() override {
    world.onRecord([this](const fake::TraceRecord& record) { noteRule(record); });
    world.onCall([this](const std::string& call) { noteDn(call); });
  }

  void putBoth(const std::string& dn) {
    putOld(dn);
    newStore().put(dn, {{"objectclass", {"A"}}, {"cn", {"x"}}});
  }
  void putOld(const std::string& dn) { oldStore().put(dn, {{"objectclass", {"A"}}, {"cn", {"x"}}}); }

  // Merges and keeps the rules that ran, as "addTo60 CN=A", in `steps`.
  int merge(const char* version) {
    open();
    steps.clear();
    return newConfig().mergeConfigFiles(&oldConfig(), version);
  }

  Lines steps;

 private:
  void noteRule(const fake::TraceRecord& record) {
    if (record.kind != fake::TraceRecord::Kind::entry) {
      return;
    }
    for (const fake::Traced& step : {kProcessIncSchema, kCheck41, kCheck51, kCheck52, kCheck60}) {
      if (record.identifier == step.identifier) {
        steps.emplace_back(step.name);
      }
    }
    for (const fake::Traced& rule :
         {kAddTo41, kAddTo51, kAddTo52, kAddTo60, kMergeIn41, kMergeIn51, kMergeIn52, kMergeIn60}) {
      if (record.identifier == rule.identifier) {
        steps.emplace_back(rule.name);
        m_awaitsDn = true;
      }
    }
  }

  // A rule begins with comparing its DN with the DNs that it knows.
  void noteDn(const std::string& call) {
    const std::string comparison = "compareDns(";
    if (m_awaitsDn && call.starts_with(comparison)) {
      steps.back() += " " + call.substr(comparison.size(), call.find(", ") - comparison.size());
      m_awaitsDn = false;
    }
  }

  bool m_awaitsDn = false;
};

TEST_F(MergeDriver, AddsFirstThenTakesSchemasOutThenMergesThenChecks) {
  putBoth("CN=B,CN=CONFIGURATION");
  putOld("CN=A,CN=CONFIGURATION");
  putBoth("CN=C,CN=CONFIGURATION");
  putOld("CN=D,CN=CONFIGURATION");
  EXPECT_EQ(merge("6.0"), 1);
  EXPECT_EQ(steps, (Lines{"addTo60 CN=A,CN=CONFIGURATION", "addTo60 CN=D,CN=CONFIGURATION", "processIncSchema",
                          "mergeIn60 CN=B,CN=CONFIGURATION", "mergeIn60 CN=C,CN=CONFIGURATION", "check60"}));
}

TEST_F(MergeDriver, TheTraceNestsRulesInDispatchersThatReportZero) {
  putBoth("CN=B,CN=CONFIGURATION");
  putOld("CN=A,CN=CONFIGURATION");
  EXPECT_EQ(merge("6.0"), 1);
  Lines frames;
  for (const std::string& line : world.trace()) {
    if (!line.starts_with("debug(")) {
      frames.push_back(line);
    }
  }
  EXPECT_EQ(frames, (Lines{entryOf(kMergeConfigFiles),
                           entryOf(kProcessNewEntry),
                           entryOf(kAddTo60),
                           entryOf(kAddCfgEntry),
                           exitOf(kAddCfgEntry, 1),
                           exitOf(kAddTo60, 0),
                           exitOf(kProcessNewEntry, 0),
                           entryOf(kProcessIncSchema),
                           exitOf(kProcessIncSchema, 0),
                           entryOf(kProcessUpdatedEntry),
                           entryOf(kMergeIn60),
                           entryOf(kMergeCfgEntry),
                           entryOf(kIsMultiVal),
                           exitOf(kIsMultiVal, 0),
                           exitOf(kMergeCfgEntry, 1),
                           exitOf(kMergeIn60, 1),
                           exitOf(kProcessUpdatedEntry, 0),
                           entryOf(kAdditionalChecks),
                           entryOf(kCheck60),
                           exitOf(kCheck60, 1),
                           exitOf(kAdditionalChecks, 0),
                           exitOf(kMergeConfigFiles, 1)}));
}

TEST_F(MergeDriver, ItsListsHaveASlotForEachOldDnAndAreReleased) {
  putBoth("CN=B,CN=CONFIGURATION");
  putOld("CN=A,CN=CONFIGURATION");
  putOld("CN=C,CN=CONFIGURATION");
  open();
  const std::size_t before = world.resources().outstandingLibraryBlocks();
  EXPECT_EQ(newConfig().mergeConfigFiles(&oldConfig(), "6.0"), 1);
  EXPECT_EQ(world.allocationSizes(), (std::vector<std::size_t>{3 * sizeof(char*), 3 * sizeof(char*)}));
  EXPECT_EQ(world.resources().outstandingLibraryBlocks(), before);
}

TEST_F(MergeDriver, AnswersOneWhateverTheRulesAnswer) {
  putBoth("CN=B,CN=CONFIGURATION");
  putOld("CN=A,CN=CONFIGURATION");
  world.faults().fail({.operation = "getFirstEntry", .nth = 0}, 80);
  world.faults().fail({.operation = "getParamValueInfo", .nth = 0}, 80);
  world.faults().fail({.operation = "getParamArrayValueInfo", .nth = 0}, 80);
  EXPECT_EQ(merge("6.0"), 1);
  EXPECT_EQ(steps,
            (Lines{"addTo60 CN=A,CN=CONFIGURATION", "processIncSchema", "mergeIn60 CN=B,CN=CONFIGURATION", "check60"}));
  EXPECT_EQ(world.trace().back(), exitOf(kMergeConfigFiles, 1));
}

TEST_F(MergeDriver, NeedsTheOldInventory) {
  putBoth("CN=B,CN=CONFIGURATION");
  construct();
  ASSERT_EQ(newConfig().getDns(), 0);
  world.forgetCalls();
  EXPECT_EQ(newConfig().mergeConfigFiles(&oldConfig(), "6.0"), 0);
  EXPECT_EQ(world.callsWithComparisons(), Lines());
  EXPECT_EQ(world.trace(),
            (Lines{entryOf(kMergeConfigFiles), messageOf(kMergeConfigFiles, "mergeConfigFiles: cfg2Dns is NULL\n"),
                   exitOf(kMergeConfigFiles, 0)}));
  EXPECT_EQ(world.allocationSizes().size(), 0U);
}

TEST_F(MergeDriver, NeedsMemoryForTheNewEntries) {
  putBoth("CN=B,CN=CONFIGURATION");
  open();
  world.failAllocation(1);
  EXPECT_EQ(newConfig().mergeConfigFiles(&oldConfig(), "6.0"), 0);
  EXPECT_EQ(world.callsWithComparisons(), Lines());
  EXPECT_EQ(world.trace(),
            (Lines{entryOf(kMergeConfigFiles),
                   messageOf(kMergeConfigFiles, "mergeConfigFiles: failed to allocate memory for newEntries\n"),
                   exitOf(kMergeConfigFiles, 0)}));
  EXPECT_EQ(world.allocationSizes().size(), 1U);
}

TEST_F(MergeDriver, NeedsMemoryForTheUpdatedEntries) {
  putBoth("CN=B,CN=CONFIGURATION");
  open();
  world.failAllocation(2);
  EXPECT_EQ(newConfig().mergeConfigFiles(&oldConfig(), "6.0"), 0);
  EXPECT_EQ(world.callsWithComparisons(), Lines());
  EXPECT_EQ(world.trace(),
            (Lines{entryOf(kMergeConfigFiles),
                   messageOf(kMergeConfigFiles, "mergeConfigFiles: failed to allocate memory for updatedEntries\n"),
                   exitOf(kMergeConfigFiles, 0)}));
}

TEST_F(MergeDriver, AnEmptyOldInventoryStillTakesSchemasOutAndChecks) {
  newStore().put("CN=B,CN=CONFIGURATION", {});
  EXPECT_EQ(merge("6.0"), 1);
  EXPECT_EQ(steps, (Lines{"processIncSchema", "check60"}));
  EXPECT_EQ(world.allocationSizes(), (std::vector<std::size_t>{0, 0}));
}

TEST_F(MergeDriver, ANullAnswerToTheEmptyListsRequestIsAFailure) {
  open();
  world.failAllocationOf(0);
  EXPECT_EQ(newConfig().mergeConfigFiles(&oldConfig(), "6.0"), 0);
  EXPECT_EQ(world.messages(),
            (Lines{messageOf(kMergeConfigFiles, "mergeConfigFiles: failed to allocate memory for newEntries\n")}));
}

TEST_F(MergeDriver, AnEmptyNewInventoryMakesEveryEntryNew) {
  putOld("CN=A,CN=CONFIGURATION");
  putOld("CN=B,CN=CONFIGURATION");
  EXPECT_EQ(merge("6.0"), 1);
  EXPECT_EQ(steps,
            (Lines{"addTo60 CN=A,CN=CONFIGURATION", "addTo60 CN=B,CN=CONFIGURATION", "processIncSchema", "check60"}));
}

TEST_F(MergeDriver, InventoriesAreMatchedByteForByte) {
  // A store whose normal form keeps the letter case.
  world.formatDnsBy([](std::string_view dn) { return std::make_optional(std::string(dn)); });
  putOld("cn=a,CN=CONFIGURATION");
  newStore().put("CN=A,CN=CONFIGURATION", {});
  oldStore().put("CN=B,CN=CONFIGURATION", {});
  newStore().put("CN=B ,CN=CONFIGURATION", {});
  EXPECT_EQ(merge("6.0"), 1);
  EXPECT_EQ(steps,
            (Lines{"addTo60 cn=a,CN=CONFIGURATION", "addTo60 CN=B,CN=CONFIGURATION", "processIncSchema", "check60"}));
}

TEST_F(MergeDriver, ADnThatStandsTwiceInTheNewInventoryIsMergedTwice) {
  // Two entries that share a normal form.
  world.formatDnsBy([](std::string_view dn) {
    return std::make_optional(dn.starts_with("CN=B") ? std::string("CN=B,CN=CONFIGURATION") : std::string(dn));
  });
  oldStore().put("CN=B,CN=CONFIGURATION", {});
  newStore().put("CN=B,CN=CONFIGURATION", {});
  newStore().put("CN=C,CN=CONFIGURATION", {});
  newStore().put("CN=B2,CN=CONFIGURATION", {});
  EXPECT_EQ(merge("6.0"), 1);
  EXPECT_EQ(steps, (Lines{"processIncSchema", "mergeIn60 CN=B,CN=CONFIGURATION", "mergeIn60 CN=B,CN=CONFIGURATION",
                          "check60"}));
}

TEST_F(MergeDriver, MoreMatchesThanOldDnsDoNotHarm) {
  // One old DN, four times in the new inventory: its list has room for one.
  world.formatDnsBy([](std::string_view) { return std::make_optional(std::string("CN=B,CN=CONFIGURATION")); });
  oldStore().put("CN=B,CN=CONFIGURATION", {});
  for (const char* dn :
       {"CN=B,CN=CONFIGURATION", "CN=C,CN=CONFIGURATION", "CN=D,CN=CONFIGURATION", "CN=E,CN=CONFIGURATION"}) {
    newStore().put(dn, {});
  }
  EXPECT_EQ(merge("6.0"), 1);
  EXPECT_EQ(steps.size(), 6U);
}

TEST_F(MergeDriver, ADnThatStandsTwiceInTheOldInventoryIsHandledTwice) {
  world.formatDnsBy([](std::string_view dn) {
    return std::make_optional(dn.starts_with("CN=A") ? std::string("CN=A,CN=CONFIGURATION") : std::string(dn));
  });
  oldStore().put("CN=A,CN=CONFIGURATION", {});
  oldStore().put("CN=A2,CN=CONFIGURATION", {});
  EXPECT_EQ(merge("6.0"), 1);
  EXPECT_EQ(steps,
            (Lines{"addTo60 CN=A,CN=CONFIGURATION", "addTo60 CN=A,CN=CONFIGURATION", "processIncSchema", "check60"}));
}

TEST_F(MergeDriver, TheInventoriesStayAsTheyAre) {
  putBoth("CN=B,CN=CONFIGURATION");
  putOld("CN=A,CN=CONFIGURATION");
  open();
  char** oldDns = oldConfig().getCfgDns();
  char** newDns = newConfig().getCfgDns();
  EXPECT_EQ(newConfig().mergeConfigFiles(&oldConfig(), "6.0"), 1);
  EXPECT_EQ(oldConfig().getCfgDns(), oldDns);
  EXPECT_EQ(newConfig().getCfgDns(), newDns);
  EXPECT_EQ(oldConfig().getDnNum(), 2);
  EXPECT_EQ(newConfig().getDnNum(), 1);
  EXPECT_STREQ(newDns[0], "CN=B,CN=CONFIGURATION");
}

// --- The four versions.

struct Version {
  const char* version;
  fake::Traced addTo;
  fake::Traced mergeIn;
  fake::Traced check;
  bool takesSchemasOut;
  long addExit;  // what the exit record carries of a result of 1
};

void PrintTo(const Version& version, std::ostream* out) { *out << version.version; }

const Version kVersions[] = {
    {"4.1", kAddTo41, kMergeIn41, kCheck41, false, 0},
    {"5.1", kAddTo51, kMergeIn51, kCheck51, false, 1},
    {"5.2", kAddTo52, kMergeIn52, kCheck52, false, 1},
    {"6.0", kAddTo60, kMergeIn60, kCheck60, true, 0},
};

class DispatchTable : public MergeDriver, public testing::WithParamInterface<Version> {
 protected:
  const Version& row() const { return GetParam(); }

  void putSchemas() {
    oldStore().put(m_schema, {{"zor-slapdIncludeSchema", {"V3.user.at", "mine.at"}}, {"zor-slapdSchemaAdditions", {}}});
    newStore().put(m_schema, {{"zor-slapdIncludeSchema", {"new.at"}}});
  }

  const std::string m_schema = "CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION";
};

INSTANTIATE_TEST_SUITE_P(Rows, DispatchTable, testing::ValuesIn(kVersions),
                         [](const testing::TestParamInfo<Version>& version) { return version.param.addTo.name + 3; });

TEST_P(DispatchTable, AMergeAddsThenMergesThenChecks) {
  putBoth("CN=B,CN=CONFIGURATION");
  putOld("CN=A,CN=CONFIGURATION");
  putBoth("CN=C,CN=CONFIGURATION");
  putOld("CN=D,CN=CONFIGURATION");
  EXPECT_EQ(merge(row().version), 1);
  const std::string add = row().addTo.name;
  const std::string mergeIn = row().mergeIn.name;
  Lines expected = {add + " CN=A,CN=CONFIGURATION", add + " CN=D,CN=CONFIGURATION"};
  if (row().takesSchemasOut) {
    expected.emplace_back("processIncSchema");
  }
  expected.insert(expected.end(),
                  {mergeIn + " CN=B,CN=CONFIGURATION", mergeIn + " CN=C,CN=CONFIGURATION", row().check.name});
  EXPECT_EQ(steps, expected);
}

TEST_P(DispatchTable, OnlyTheServersOwnSchemasOf60AreTakenOut) {
  putSchemas();
  EXPECT_EQ(merge(row().version), 1);
  EXPECT_EQ(newStore().values(m_schema, "zor-slapdIncludeSchema"),
            row().takesSchemasOut ? (Lines{"new.at", "mine.at"}) : (Lines{"new.at", "V3.user.at", "mine.at"}));
}

TEST_P(DispatchTable, EachDispatcherCallsItsRulePassesItsResultOnAndReportsZero) {
  putBoth("CN=B,CN=CONFIGURATION");
  putOld("CN=A,CN=CONFIGURATION");
  open();
  EXPECT_EQ(newConfig().processNewEntry(modifiable("CN=A,CN=CONFIGURATION"), &oldConfig(), row().version), 1);
  EXPECT_EQ(world.trace(),
            (Lines{entryOf(kProcessNewEntry), entryOf(row().addTo), entryOf(kAddCfgEntry), exitOf(kAddCfgEntry, 1),
                   exitOf(row().addTo, row().addExit), exitOf(kProcessNewEntry, 0)}));
  EXPECT_EQ(newConfig().processNewEntry(modifiable("CN=A,CN=CONFIGURATION"), &oldConfig(), row().version), 0);
  EXPECT_EQ(world.trace().back(), exitOf(kProcessNewEntry, 0));

  world.forgetCalls();
  EXPECT_EQ(newConfig().processUpdatedEntry(modifiable("CN=B,CN=CONFIGURATION"), &oldConfig(), row().version), 1);
  EXPECT_EQ(world.trace()[1], entryOf(row().mergeIn));
  EXPECT_EQ(world.trace().back(), exitOf(kProcessUpdatedEntry, 0));
  EXPECT_EQ(newConfig().processUpdatedEntry(modifiable("CN=Z,CN=CONFIGURATION"), &oldConfig(), row().version), 0);
  EXPECT_EQ(world.trace().back(), exitOf(kProcessUpdatedEntry, 0));

  world.forgetCalls();
  EXPECT_EQ(newConfig().additionalChecks(&oldConfig(), row().version), 1);
  EXPECT_EQ(world.trace(), (Lines{entryOf(kAdditionalChecks), entryOf(row().check), exitOf(row().check, 1),
                                  exitOf(kAdditionalChecks, 0)}));
}

TEST_P(DispatchTable, AnswersOneWhateverTheRulesAnswer) {
  putBoth("CN=B,CN=CONFIGURATION");
  putOld("CN=A,CN=CONFIGURATION");
  world.faults().fail({.operation = "getFirstEntry", .nth = 0}, 80);
  world.faults().fail({.operation = "getParamValueInfo", .nth = 0}, 80);
  world.faults().fail({.operation = "getParamArrayValueInfo", .nth = 0}, 80);
  world.faults().fail({.operation = "addValue", .nth = 0}, 80);
  EXPECT_EQ(merge(row().version), 1);
  EXPECT_EQ(steps.front(), row().addTo.name + std::string(" CN=A,CN=CONFIGURATION"));
  EXPECT_EQ(steps[steps.size() - 2], row().mergeIn.name + std::string(" CN=B,CN=CONFIGURATION"));
  EXPECT_EQ(steps.back(), row().check.name);
  EXPECT_EQ(world.trace().back(), exitOf(kMergeConfigFiles, 1));
}

TEST_P(DispatchTable, AnEmptyOldInventoryIsStillChecked) {
  EXPECT_EQ(merge(row().version), 1);
  EXPECT_EQ(steps, row().takesSchemasOut ? (Lines{"processIncSchema", row().check.name}) : (Lines{row().check.name}));
}

TEST_P(DispatchTable, FourBytesOfTheVersionCount) {
  putOld("CN=A,CN=CONFIGURATION");
  const char version[] = {row().version[0], row().version[1], row().version[2], '\0', 'x'};
  EXPECT_EQ(merge(version), 1);
  EXPECT_EQ(steps.front(), row().addTo.name + std::string(" CN=A,CN=CONFIGURATION"));
  for (const char* more : {"0", ".1", " ", "\t"}) {
    EXPECT_EQ(merge((row().version + std::string(more)).c_str()), 1);
    EXPECT_EQ(steps, Lines()) << row().version << more;
  }
}

TEST_P(DispatchTable, WhatARuleThrowsPassesThroughEveryFrame) {
  putBoth("CN=B,CN=CONFIGURATION");
  open();
  world.faults().throwAt({.store = "old", .operation = "getFirstEntry"});
  EXPECT_THROW(newConfig().mergeConfigFiles(&oldConfig(), row().version), fake::Thrown);
  Lines lines = world.trace();
  ASSERT_GE(lines.size(), 4U);
  lines.erase(lines.begin(), lines.end() - 4);
  EXPECT_EQ(lines, (Lines{exitOf(kMergeCfgEntry, 0), exitOf(row().mergeIn, 0), exitOf(kProcessUpdatedEntry, 0),
                          exitOf(kMergeConfigFiles, 0)}));
}

// --- Other versions.

TEST_F(MergeDriver, AnUnknownVersionMergesNothingAndSucceeds) {
  for (const char* version : {"", "6", "6.", "6.0.1", "6.00", "6.0 ", " 6.0", "6.1", "4.10", "4.1.0", "4.0", "4.2",
                              "5.10", "5.20", "5.0", "5.3", "7.0"}) {
    oldStore().clear();
    newStore().clear();
    putBoth("CN=B,CN=CONFIGURATION");
    putOld("CN=A,CN=CONFIGURATION");
    EXPECT_EQ(merge(version), 1) << version;
    EXPECT_EQ(steps, Lines()) << version;
    EXPECT_EQ(world.callsWithComparisons(), Lines()) << version;
    EXPECT_EQ(world.trace(),
              (Lines{entryOf(kMergeConfigFiles), entryOf(kProcessNewEntry), exitOf(kProcessNewEntry, 0),
                     entryOf(kProcessUpdatedEntry), exitOf(kProcessUpdatedEntry, 0), entryOf(kAdditionalChecks),
                     exitOf(kAdditionalChecks, 0), exitOf(kMergeConfigFiles, 1)}))
        << version;
  }
}

TEST_F(MergeDriver, OnlyFourBytesOfTheVersionCount) {
  putOld("CN=A,CN=CONFIGURATION");
  const char version[] = {'6', '.', '0', '\0', 'x'};
  EXPECT_EQ(merge(version), 1);
  EXPECT_EQ(steps, (Lines{"addTo60 CN=A,CN=CONFIGURATION", "processIncSchema", "check60"}));
}

TEST_F(MergeDriver, AVersionShorterThanFourBytesIsNotReadPastItsEnd) {
  putOld("CN=A,CN=CONFIGURATION");
  for (const char* text : {"", "6", "6."}) {
    char* version = static_cast<char*>(std::malloc(std::strlen(text) + 1));  // a sanitizer guards its end
    std::strcpy(version, text);
    EXPECT_EQ(merge(version), 1);
    EXPECT_EQ(steps, Lines());
    std::free(version);
  }
}

TEST_F(MergeDriver, DispatchersPassTheRulesResultOnAndReportZero) {
  putBoth("CN=B,CN=CONFIGURATION");
  putOld("CN=A,CN=CONFIGURATION");
  open();
  EXPECT_EQ(newConfig().processNewEntry(modifiable("CN=A,CN=CONFIGURATION"), &oldConfig(), "6.0"), 1);
  EXPECT_EQ(world.trace().back(), exitOf(kProcessNewEntry, 0));
  EXPECT_EQ(newConfig().processNewEntry(modifiable("CN=A,CN=CONFIGURATION"), &oldConfig(), "6.0"), 0);
  EXPECT_EQ(world.trace().back(), exitOf(kProcessNewEntry, 0));
  EXPECT_EQ(newConfig().processUpdatedEntry(modifiable("CN=B,CN=CONFIGURATION"), &oldConfig(), "6.0"), 1);
  EXPECT_EQ(world.trace().back(), exitOf(kProcessUpdatedEntry, 0));
  EXPECT_EQ(newConfig().processUpdatedEntry(modifiable("CN=Z,CN=CONFIGURATION"), &oldConfig(), "6.0"), 0);
  EXPECT_EQ(world.trace().back(), exitOf(kProcessUpdatedEntry, 0));
  EXPECT_EQ(newConfig().additionalChecks(&oldConfig(), "6.0"), 1);
  EXPECT_EQ(world.trace().back(), exitOf(kAdditionalChecks, 0));
}

TEST_F(MergeDriver, DispatchersAnswerZeroForAnUnknownVersion) {
  putBoth("CN=B,CN=CONFIGURATION");
  open();
  EXPECT_EQ(newConfig().processNewEntry(modifiable("CN=B,CN=CONFIGURATION"), &oldConfig(), "6.0.1"), 0);
  EXPECT_EQ(newConfig().processUpdatedEntry(modifiable("CN=B,CN=CONFIGURATION"), &oldConfig(), "4.10"), 0);
  EXPECT_EQ(newConfig().additionalChecks(&oldConfig(), ""), 0);
  EXPECT_EQ(world.callsWithComparisons(), Lines());
  EXPECT_EQ(world.trace(),
            (Lines{entryOf(kProcessNewEntry), exitOf(kProcessNewEntry, 0), entryOf(kProcessUpdatedEntry),
                   exitOf(kProcessUpdatedEntry, 0), entryOf(kAdditionalChecks), exitOf(kAdditionalChecks, 0)}));
}

TEST_F(MergeDriver, WhatARuleThrowsPassesThroughEveryFrame) {
  putOld("CN=A,CN=CONFIGURATION");
  open();
  world.faults().throwAt({.operation = "addEntry"});
  EXPECT_THROW(newConfig().mergeConfigFiles(&oldConfig(), "6.0"), fake::Thrown);
  EXPECT_EQ(world.trace(), (Lines{entryOf(kMergeConfigFiles), entryOf(kProcessNewEntry), entryOf(kAddTo60),
                                  entryOf(kAddCfgEntry), exitOf(kAddCfgEntry, 0), exitOf(kAddTo60, 0),
                                  exitOf(kProcessNewEntry, 0), exitOf(kMergeConfigFiles, 0)}));
}

TEST_F(MergeDriver, ASecondMergeFindsTheSameStateOfTheLibrary) {
  putBoth("CN=B,CN=CONFIGURATION");
  putOld("CN=A,CN=CONFIGURATION");
  EXPECT_EQ(merge("6.0"), 1);
  const Lines first = steps;
  steps.clear();
  EXPECT_EQ(newConfig().mergeConfigFiles(&oldConfig(), "6.0"), 1);
  // The inventories are those of the first time, so the added entry is tried again.
  EXPECT_EQ(steps, first);
}

}  // namespace
