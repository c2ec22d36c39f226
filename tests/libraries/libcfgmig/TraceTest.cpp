// Which records are written under which mask, and that the mask is read afresh at every point.

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <functional>

#include "ConfigFileFixture.h"
#include "SmallMigration.h"

namespace {

using fake::TraceRecord;
using namespace traced;
using Lines = std::vector<std::string>;

// Whether a record is to be written under this mask.
bool isEnabled(const TraceRecord& record, unsigned mask) {
  switch (record.kind) {
    case TraceRecord::Kind::entry:
      return (mask & (record.word == 0x3200000 ? 0x1000U : 0x10000U)) != 0;
    case TraceRecord::Kind::exit:
      return (mask & (record.exitClass == 33 ? 0x3000U : 0x30000U)) != 0;
    default:
      return (mask & 0x4000000U) != 0;
  }
}

const unsigned kMasks[] = {0,
                           0x1000,
                           0x2000,
                           0x3000,
                           0x10000,
                           0x20000,
                           0x30000,
                           0x4000000,
                           0x1000 | 0x4000000,
                           0x2000 | 0x10000,
                           0x33000,
                           0x33000 | 0x4000000,
                           0xffffffff,
                           ~0x33000U & ~0x4000000U,
                           ~0x4000000U,
                           ~0x1000U,
                           ~0x10000U};

// --- Each method by itself.

struct Scenario {
  Traced method;
  std::function<void(ConfigFile& newConfig, ConfigFile& oldConfig)> call;
  long result;  // in the exit record
};

void PrintTo(const Scenario& scenario, std::ostream* out) { *out << scenario.method.name; }

char kNewDn[] = "CN=NEW,CN=CONFIGURATION";
char kBothDn[] = "CN=BOTH,CN=CONFIGURATION";
char kPort[] = "zor-slapdPort";

char kOtherDn[] = "CN=OTHER,CN=CONFIGURATION";
char kSearchDir[] = "/old";

const Scenario kScenarios[] = {
    {kGetDns, [](ConfigFile&, ConfigFile&) { EXPECT_EQ(ConfigFile("third", nullptr).getDns(), 0); }, 0},
    {kCompareConfigFiles, [](ConfigFile& to, ConfigFile& from) { EXPECT_EQ(from.compareConfigFiles(&to), 1); }, 1},
    {kCompareEntries, [](ConfigFile& to, ConfigFile& from) { EXPECT_EQ(from.compareEntries(kBothDn, &to), 1); }, 1},
    {kRemoveDn, [](ConfigFile& to, ConfigFile&) { to.removeDn(kOtherDn); }, 0},
    {kMergeConfigFiles, [](ConfigFile& to, ConfigFile& from) { EXPECT_EQ(to.mergeConfigFiles(&from, "6.0"), 1); }, 1},
    {kAdditionalChecks, [](ConfigFile& to, ConfigFile& from) { EXPECT_EQ(to.additionalChecks(&from, "6.0"), 1); }, 0},
    {kProcessNewEntry, [](ConfigFile& to, ConfigFile& from) { EXPECT_EQ(to.processNewEntry(kNewDn, &from, "6.0"), 1); },
     0},
    {kProcessUpdatedEntry,
     [](ConfigFile& to, ConfigFile& from) { EXPECT_EQ(to.processUpdatedEntry(kBothDn, &from, "6.0"), 1); }, 0},
    {kAddTo41, [](ConfigFile& to, ConfigFile& from) { EXPECT_EQ(to.addTo41(kNewDn, &from), 1); }, 0},
    {kAddTo51, [](ConfigFile& to, ConfigFile& from) { EXPECT_EQ(to.addTo51(kNewDn, &from), 1); }, 1},
    {kAddTo52, [](ConfigFile& to, ConfigFile& from) { EXPECT_EQ(to.addTo52(kNewDn, &from), 1); }, 1},
    {kAddTo60, [](ConfigFile& to, ConfigFile& from) { EXPECT_EQ(to.addTo60(kNewDn, &from), 1); }, 0},
    {kCheck41, [](ConfigFile& to, ConfigFile& from) { EXPECT_EQ(to.check41(&from), 1); }, 1},
    {kCheck51, [](ConfigFile& to, ConfigFile& from) { EXPECT_EQ(to.check51(&from), 1); }, 1},
    {kCheck52, [](ConfigFile& to, ConfigFile& from) { EXPECT_EQ(to.check52(&from), 1); }, 1},
    {kCheck60, [](ConfigFile& to, ConfigFile& from) { EXPECT_EQ(to.check60(&from), 1); }, 1},
    {kMergeIn41, [](ConfigFile& to, ConfigFile& from) { EXPECT_EQ(to.mergeIn41(kBothDn, &from), 1); }, 1},
    {kMergeIn51, [](ConfigFile& to, ConfigFile& from) { EXPECT_EQ(to.mergeIn51(kBothDn, &from), 1); }, 1},
    {kMergeIn52, [](ConfigFile& to, ConfigFile& from) { EXPECT_EQ(to.mergeIn52(kBothDn, &from), 1); }, 1},
    {kMergeIn60, [](ConfigFile& to, ConfigFile& from) { EXPECT_EQ(to.mergeIn60(kBothDn, &from), 1); }, 1},
    {kAddCfgEntry, [](ConfigFile& to, ConfigFile& from) { EXPECT_EQ(to.addCfgEntry(kNewDn, &from), 1); }, 1},
    {kMergeCfgEntry, [](ConfigFile& to, ConfigFile& from) { EXPECT_EQ(to.mergeCfgEntry(kBothDn, &from), 1); }, 1},
    {kMergeChangeDnEntry,
     [](ConfigFile& to, ConfigFile& from) { EXPECT_EQ(to.mergeChangeDnEntry(kNewDn, kBothDn, &from), 1); }, 1},
    {kReplAddEntry, [](ConfigFile& to, ConfigFile& from) { EXPECT_EQ(to.replAddEntry(&from), 1); }, 1},
    {kIsMultiVal, [](ConfigFile& to, ConfigFile&) { EXPECT_EQ(to.isMultiVal(kPort), 0); }, 0},
    {kRemoveDBInfo, [](ConfigFile& to, ConfigFile&) { EXPECT_EQ(to.removeDBInfo(), 32); }, 32},
    {kRemoveCLInfo, [](ConfigFile& to, ConfigFile&) { EXPECT_EQ(to.removeCLInfo(), 32); }, 32},
    {kEditCLInfo, [](ConfigFile& to, ConfigFile&) { EXPECT_EQ(to.editCLInfo(), 32); }, 32},
    {kRemoveDBInstInfo, [](ConfigFile& to, ConfigFile&) { EXPECT_EQ(to.removeDBInstInfo(), 32); }, 32},
    {kProcessPlugins, [](ConfigFile& to, ConfigFile& from) { EXPECT_EQ(from.processPlugins(&to, false), 0); }, 0},
    {kIsOVOFile, [](ConfigFile& to, ConfigFile&) { EXPECT_EQ(to.isOVOFile("V3.user.at"), 1); }, 1},
    {kCheckSchemaFiles,
     [](ConfigFile&, ConfigFile& from) {
       EXPECT_EQ(from.checkSchemaFiles(kSearchDir, "/new", nullptr, nullptr, nullptr), 0);
     },
     0},
    {kProcessIncSchema, [](ConfigFile& to, ConfigFile& from) { EXPECT_EQ(to.processIncSchema(&from), 1); }, 1},
    {kPluginCmp, [](ConfigFile& to, ConfigFile&) { EXPECT_EQ(to.pluginCmp("a  b", "a b"), 1); }, 1},
};

// The exit records of these do not say what the method returned, which is 1 here as above.
char kMainDn[] = "CN=CONFIGURATION";

const Scenario kDeviations[] = {
    {{"mergeIn52", kMergeIn52.identifier, false},
     [](ConfigFile& to, ConfigFile& from) { EXPECT_EQ(to.mergeIn52(kMainDn, &from), 1); },
     0},
    {{"isMultiVal", kIsMultiVal.identifier, false},
     [](ConfigFile& to, ConfigFile&) {
       char name[] = "zor-slapdPlugin";
       EXPECT_EQ(to.isMultiVal(name), 1);
     },
     0},
};

class TracedMethod : public ConfigFileFixture, public testing::WithParamInterface<Scenario> {
 protected:
  void SetUp() override {
    tracesPartsOfMethods();
    putAll();
  }

  void putAll() {
    oldStore().clear();
    newStore().clear();
    const std::vector<fake::Attribute> attributes = {{"objectclass", {"A"}}, {"cn", {"x"}}, {"zor-slapdPort", {"389"}}};
    oldStore().put(kNewDn, attributes);
    oldStore().put(kBothDn, attributes);
    newStore().put(kBothDn, attributes);
    oldStore().put("CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION", {{"zor-slapdIncludeSchema", {"V3.user.at"}}});
    oldStore().put("CN=MASTER SERVER,CN=CONFIGURATION", {{"zor-slapdMasterDN", {"x"}}, {"zor-slapdMasterPW", {"y"}}});
    oldStore().put(kMainDn, {});
    newStore().put(kMainDn, {});
  }

  // The method's own entry and exit records among those that were written.
  Lines ownFrame() const {
    Lines lines;
    for (const TraceRecord& record : world.records()) {
      if (record.identifier == GetParam().method.identifier && record.kind != TraceRecord::Kind::debug) {
        lines.push_back(text(record));
      }
    }
    return lines;
  }
};

INSTANTIATE_TEST_SUITE_P(Deviations, TracedMethod, testing::ValuesIn(kDeviations),
                         [](const testing::TestParamInfo<Scenario>& scenario) { return scenario.param.method.name; });

INSTANTIATE_TEST_SUITE_P(All, TracedMethod, testing::ValuesIn(kScenarios),
                         [](const testing::TestParamInfo<Scenario>& scenario) { return scenario.param.method.name; });

TEST_P(TracedMethod, WritesEntryAndExitAsTheMaskSays) {
  const Traced& method = GetParam().method;
  for (const unsigned mask : kMasks) {
    putAll();
    open();
    world.setEvents(mask);
    GetParam().call(newConfig(), oldConfig());
    Lines expected;
    if ((mask & (method.isPublic ? 0x1000U : 0x10000U)) != 0) {
      expected.push_back(entryOf(method));
    }
    if ((mask & (method.isPublic ? 0x3000U : 0x30000U)) != 0) {
      expected.push_back(exitOf(method, GetParam().result));
    }
    EXPECT_EQ(ownFrame(), expected) << std::hex << mask;
    for (const TraceRecord& record : world.records()) {
      EXPECT_TRUE(isEnabled(record, mask)) << std::hex << mask << ": " << text(record);
    }
    world.setEvents(fake::kAllEvents);
  }
}

TEST_P(TracedMethod, WritesNothingUnderAnEmptyMask) {
  open();
  world.setEvents(0);
  GetParam().call(newConfig(), oldConfig());
  EXPECT_EQ(world.trace(), Lines());
  EXPECT_EQ(trcEvents, 0U) << "the library only reads the mask";
}

// --- A whole merge.

// The records and calls of a migration in the order in which they happened; calls are empty records.
struct Step {
  bool isCall;
  std::string line;
  TraceRecord record;
};

// Runs a migration in which call `failing` fails; `atCall` is told the number of each call that was made.
std::vector<Step> stepsOf(SmallMigration& migration, int failing, const std::function<void(int)>& atCall) {
  std::vector<Step> steps;
  int calls = 0;
  migration.world.onRecord([&](const TraceRecord& record) { steps.push_back({false, text(record), record}); });
  migration.world.onCall([&](const std::string& call) {
    steps.push_back({true, call, {TraceRecord::Kind::entry}});
    atCall(++calls);
  });
  migration.world.faults().failCall(failing, 80);
  migration.run();
  migration.world.onRecord(nullptr);
  migration.world.onCall(nullptr);
  migration.close();
  return steps;
}

Lines linesOf(const std::vector<Step>& steps) {
  Lines lines;
  for (const Step& step : steps) {
    lines.push_back(step.line);
  }
  return lines;
}

// What a migration does and writes when the mask changes from `before` to `after` in the middle of call `change`.
Lines underMasks(const std::vector<Step>& everything, unsigned before, unsigned after, int change) {
  Lines lines;
  int calls = 0;
  for (const Step& step : everything) {
    if (step.isCall) {
      ++calls;
      lines.push_back(step.line);
    } else if (isEnabled(step.record, calls < change ? before : after)) {
      lines.push_back(step.line);
    }
  }
  return lines;
}

RC_GTEST_PROP(TraceOfAMerge, FollowsTheMaskWhereverItChanges, ()) {
  const SmallPair pair = *rc::gen::elementOf(smallPairs());
  const int failing = *rc::gen::inRange(1, 400);
  const int change = *rc::gen::inRange(1, 400);
  const unsigned before = *rc::gen::elementOf(std::vector<unsigned>(std::begin(kMasks), std::end(kMasks)));
  const unsigned after = *rc::gen::elementOf(std::vector<unsigned>(std::begin(kMasks), std::end(kMasks)));
  std::vector<Step> everything;
  {
    SmallMigration migration(pair);
    everything = stepsOf(migration, failing, [](int) {});
  }
  SmallMigration migration(pair);
  migration.world.setEvents(before);
  const std::vector<Step> masked = stepsOf(migration, failing, [&](int call) {
    if (call == change) {
      migration.world.setEvents(after);
    }
  });
  RC_ASSERT(linesOf(masked) == underMasks(everything, before, after, change));
}

TEST(TraceOfAMerge, IsTheSameButForWhatEachMaskLeavesOut) {
  for (const SmallPair& pair : smallPairs()) {
    std::vector<Step> everything;
    {
      SmallMigration migration(pair);
      everything = stepsOf(migration, 0, [](int) {});
    }
    for (const unsigned mask : kMasks) {
      SmallMigration migration(pair);
      migration.world.setEvents(mask);
      EXPECT_EQ(linesOf(stepsOf(migration, 0, [](int) {})), underMasks(everything, mask, mask, 0))
          << pair << std::hex << mask;
    }
  }
}

TEST(TraceOfAMerge, TheMaskMayChangeWithEveryRecord) {
  // An entry record switches its own exit record off; an exit is then written by nobody.
  SmallMigration migration(smallPairs().back());
  migration.world.onRecord([&](const TraceRecord& record) {
    if (record.kind == TraceRecord::Kind::entry && record.identifier == kMergeConfigFiles.identifier) {
      migration.world.setEvents(0);
    }
  });
  migration.run();
  ASSERT_EQ(migration.merged, 1);
  EXPECT_EQ(migration.world.trace(), (Lines{entryOf(kGetDns), exitOf(kGetDns, 0), entryOf(kGetDns), exitOf(kGetDns, 0),
                                            entryOf(kMergeConfigFiles)}));
  migration.close();
}

}  // namespace
