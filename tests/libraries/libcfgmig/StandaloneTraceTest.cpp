// Which records comparison, clean-up and schema files write under which mask.

#include <gtest/gtest.h>

#include "StandaloneRun.h"

namespace {

using fake::TraceRecord;
using namespace standalone;
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

const unsigned kMasks[] = {0,           0x1000,    0x2000,           0x3000,  0x10000,    0x20000,
                           0x30000,     0x4000000, 0x2000 | 0x10000, 0x33000, 0xffffffff, ~0x33000U & ~0x4000000U,
                           ~0x4000000U, ~0x1000U,  ~0x10000U};

// The methods that only others call, by themselves.
char kDn[] = "CN=SSL,CN=CONFIGURATION";
char kNoDn[] = "CN=NOTHING,CN=CONFIGURATION";

int compareOne(fake::World&, ConfigFile& from, ConfigFile& with) { return from.compareEntries(kDn, &with); }
int removeNone(fake::World&, ConfigFile& from, ConfigFile&) {
  from.removeDn(kNoDn);
  return 0;
}
int thin(fake::World&, ConfigFile& from, ConfigFile& with) { return from.processPlugins(&with, false); }
int equalPlugins(fake::World&, ConfigFile& config, ConfigFile&) { return config.pluginCmp("a  b", "a b"); }
int otherPlugins(fake::World&, ConfigFile& config, ConfigFile&) { return config.pluginCmp("a  b", "A b"); }

std::vector<StandaloneCall> allCalls() {
  std::vector<StandaloneCall> calls = kStandaloneCalls;
  for (const StandaloneCall& inner :
       {StandaloneCall{kCompareEntries, compareOne, 0, nullptr},
        {kRemoveDn, removeNone, 0, nullptr},
        {kProcessPlugins, thin, 1, nullptr},
        {kPluginCmp, equalPlugins, 1, nullptr},
        {{"pluginCmpOfOthers", kPluginCmp.identifier, false}, otherPlugins, 0, nullptr}}) {
    calls.push_back(inner);
  }
  return calls;
}

class StandaloneTrace : public testing::TestWithParam<StandaloneCall> {};

INSTANTIATE_TEST_SUITE_P(Each, StandaloneTrace, testing::ValuesIn(allCalls()),
                         [](const auto& call) { return call.param.method.name; });

TEST_P(StandaloneTrace, WritesEntryAndExitAsTheMaskSays) {
  const fake::Traced& method = GetParam().method;
  for (const unsigned mask : kMasks) {
    StandaloneRun run;
    run.world.setEvents(mask);
    EXPECT_EQ(run.run(GetParam()), GetParam().usualResult);
    Lines frame;
    for (const TraceRecord& record : run.world.records()) {
      if (record.identifier == method.identifier && record.kind != TraceRecord::Kind::debug) {
        frame.push_back(text(record));
      }
    }
    Lines expected;
    if ((mask & (method.isPublic ? 0x1000U : 0x10000U)) != 0) {
      expected.push_back(entryOf(method));
    }
    if ((mask & (method.isPublic ? 0x3000U : 0x30000U)) != 0) {
      expected.push_back(exitOf(method, GetParam().usualResult));
    }
    EXPECT_EQ(frame, expected) << std::hex << mask;
    EXPECT_EQ(trcEvents, mask) << "the library only reads the mask";
  }
}

// The calls and records of one run in which call `failing` fails; while it runs, call `change` sets another mask.
struct Step {
  bool isCall;
  std::string line;
  TraceRecord record;
};

std::vector<Step> stepsOf(const StandaloneCall& call, int failing, unsigned before, unsigned after, int change) {
  StandaloneRun run;
  std::vector<Step> steps;
  int calls = 0;
  run.world.setEvents(before);
  run.world.onRecord([&](const TraceRecord& record) { steps.push_back({false, text(record), record}); });
  run.world.onCall([&](const std::string& line) {
    steps.push_back({true, line, {TraceRecord::Kind::entry}});
    if (++calls == change) {
      run.world.setEvents(after);
    }
  });
  run.world.faults().failCall(failing, 80);
  run.run(call);
  run.world.onRecord(nullptr);
  run.world.onCall(nullptr);
  run.close();
  return steps;
}

TEST_P(StandaloneTrace, FollowsTheMaskWhereverItChanges) {
  for (int failing = 1; failing < 60; failing += 3) {
    const std::vector<Step> everything = stepsOf(GetParam(), failing, fake::kAllEvents, fake::kAllEvents, 0);
    for (std::size_t m = 0; m < std::size(kMasks); ++m) {
      const unsigned before = kMasks[m];
      const unsigned after = kMasks[(m * 7 + 4) % std::size(kMasks)];
      const int change = failing + static_cast<int>(m) - 5;
      Lines expected;
      int calls = 0;
      for (const Step& step : everything) {
        calls += step.isCall ? 1 : 0;
        if (step.isCall || isEnabled(step.record, calls < change || change < 1 ? before : after)) {
          expected.push_back(step.line);
        }
      }
      Lines lines;
      for (const Step& step : stepsOf(GetParam(), failing, before, after, change)) {
        lines.push_back(step.line);
      }
      ASSERT_EQ(lines, expected) << failing << ", " << m;
    }
  }
}

}  // namespace
