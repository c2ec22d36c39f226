// One thing goes wrong in a whole migration, everywhere that it can: the N-th call answers a failure, the N-th call
// throws, the N-th allocation fails, for every N until nothing is left to fail.

#include <gtest/gtest.h>

#include "SmallMigration.h"
#include "TracedMethods.h"

namespace {

using fake::OutParameters;
using fake::TraceRecord;
using namespace traced;
using Lines = std::vector<std::string>;

constexpr int kRc = 81;

// What happened in one run, seen from the moment at which the fault struck.
struct Strike {
  std::string call;             // its line in the log
  std::size_t recordsThen = 0;  // how many records there were
};

// Has `strike` filled when the fault strikes.
void watch(fake::World& world, Strike& strike) {
  world.onCall([&world, &strike, seen = false](const std::string& call) mutable {
    if (world.faults().struck() && !seen) {
      seen = true;
      strike = {call, world.records().size()};
    }
  });
}

bool isOf(const Strike& strike, const char* operation) {
  return strike.call.find(std::string(operation) + "(") != std::string::npos;
}

// The results that a failure at this call must bring about.
void expectResults(const SmallMigration& migration, const Strike& strike) {
  const bool oldListing =
      strike.call.starts_with("old.getSubordinates(") || (isOf(strike, "formatDn") && migration.newDns == 0);
  const bool newListing =
      strike.call.starts_with("new.getSubordinates(") || (isOf(strike, "formatDn") && migration.oldDns == 0);
  EXPECT_EQ(migration.oldDns, oldListing ? 1 : 0) << strike.call;
  EXPECT_EQ(migration.newDns, newListing ? 1 : 0) << strike.call;
  EXPECT_EQ(migration.merged, oldListing || newListing ? -1 : 1) << strike.call;
}

// A deletion or a set that fails is always reported at once, with its code.
void expectReport(const SmallMigration& migration, const Strike& strike) {
  if (!isOf(strike, "delValue") && !isOf(strike, "setValue")) {
    return;
  }
  ASSERT_LT(strike.recordsThen, migration.world.records().size()) << strike.call;
  const TraceRecord& next = migration.world.records()[strike.recordsThen];
  EXPECT_EQ(next.kind, TraceRecord::Kind::debug) << strike.call;
  EXPECT_NE(next.message.find("rc=81"), std::string::npos) << next.message;
}

// How many calls that can go wrong a migration without faults makes.
int callsThatMayFail(const SmallPair& pair) {
  SmallMigration migration(pair);
  migration.run();
  int calls = 0;
  for (const std::string& call : migration.world.callsWithComparisons()) {
    calls += call.starts_with("cfg_") ? 0 : 1;
  }
  migration.close();
  return calls;
}

// Fails each call but the two that open the stores, and answers how many there were.
int sweepFailures(const SmallPair& pair, OutParameters outParameters) {
  for (int n = 1;; ++n) {
    SmallMigration migration(pair);
    Strike strike;
    watch(migration.world, strike);
    migration.world.faults().fail({.nth = n + 2}, kRc, outParameters);  // after the two openings
    migration.run();
    migration.close();
    EXPECT_EQ(migration.complaints(), Lines()) << n << ": " << strike.call;
    if (!migration.world.faults().struck()) {
      return n - 1;
    }
    expectResults(migration, strike);
    expectReport(migration, strike);
    if (testing::Test::HasFailure()) {
      return n;
    }
  }
}

class FaultSweep : public testing::TestWithParam<SmallPair> {
 protected:
  const SmallPair& pair = GetParam();
};

INSTANTIATE_TEST_SUITE_P(Migrations, FaultSweep, testing::ValuesIn(smallPairs()),
                         [](const testing::TestParamInfo<SmallPair>& pair) { return pair.param.name; });

TEST_P(FaultSweep, NothingGoesWrongWithoutAFault) {
  SmallMigration migration(pair);
  migration.run();
  EXPECT_EQ(migration.oldDns, 0);
  EXPECT_EQ(migration.newDns, 0);
  EXPECT_EQ(migration.merged, 1);
  migration.close();
  EXPECT_EQ(migration.complaints(), Lines());
}

TEST_P(FaultSweep, AnyCallMayFailAndClearItsOutParameters) {
  EXPECT_EQ(sweepFailures(pair, OutParameters::cleared), callsThatMayFail(pair) - 2);
}

TEST_P(FaultSweep, AnyCallMayFailAndLeaveItsOutParameters) {
  EXPECT_EQ(sweepFailures(pair, OutParameters::untouched), callsThatMayFail(pair) - 2);
}

TEST_P(FaultSweep, AnyCallMayThrow) {
  int n = 1;
  for (;; ++n) {
    SmallMigration migration(pair);
    Strike strike;
    watch(migration.world, strike);
    migration.world.faults().throwAtCall(n);
    bool thrown = false;
    try {
      migration.run();
    } catch (const fake::Thrown&) {
      thrown = true;
    }
    migration.close();
    EXPECT_EQ(thrown, migration.world.faults().struck());
    EXPECT_EQ(migration.complaints(), Lines()) << n << ": " << strike.call;
    if (!thrown) {
      break;
    }
    // Every frame writes its exit record with nothing recorded, and nobody says anything more.
    for (std::size_t i = strike.recordsThen; i < migration.world.records().size(); ++i) {
      const TraceRecord& record = migration.world.records()[i];
      EXPECT_EQ(record.kind, TraceRecord::Kind::exit) << strike.call << ": " << text(record);
      EXPECT_EQ(record.result, 0) << strike.call << ": " << text(record);
    }
    ASSERT_FALSE(testing::Test::HasFailure());
  }
  EXPECT_EQ(n - 1, callsThatMayFail(pair));
}

TEST_P(FaultSweep, FailuresActAlikeWithAndWithoutTrace) {
  for (int n = 1;; ++n) {
    Lines calls;
    int results[3] = {};
    {
      SmallMigration migration(pair);
      migration.world.faults().failCall(n, kRc);
      migration.run();
      calls = migration.world.callsWithComparisons();
      results[0] = migration.oldDns, results[1] = migration.newDns, results[2] = migration.merged;
      migration.close();
      if (!migration.world.faults().struck()) {
        break;
      }
    }
    SmallMigration migration(pair);
    migration.world.setEvents(0);
    migration.world.faults().failCall(n, kRc);
    migration.run();
    EXPECT_EQ(migration.world.callsWithComparisons(), calls);
    EXPECT_EQ(migration.oldDns, results[0]);
    EXPECT_EQ(migration.newDns, results[1]);
    EXPECT_EQ(migration.merged, results[2]);
    EXPECT_EQ(migration.world.trace(), Lines());
    migration.close();
    ASSERT_EQ(migration.complaints(), Lines());
  }
}

// One fault may hide the effect of another: pairs of them, in steps.
TEST_P(FaultSweep, TwoCallsMayFail) {
  for (int first = 3;; first += 7) {
    int second = first + 1;
    for (;; second += 11) {
      SmallMigration migration(pair);
      migration.world.faults().failCall(first, kRc);
      migration.world.faults().failCall(second, kRc, OutParameters::untouched);
      migration.run();
      migration.close();
      ASSERT_EQ(migration.complaints(), Lines()) << first << ", " << second;
      if (migration.world.callsWithComparisons().size() < static_cast<std::size_t>(second)) {
        break;
      }
    }
    if (second == first + 1) {
      break;
    }
  }
}

TEST_P(FaultSweep, AnyAllocationOfTheLibraryMayFail) {
  const Lines messages[] = {
      {messageOf(kGetDns, "getDns: could not allocate memory for m_cfgDns\n")},
      {messageOf(kGetDns, "getDns: could not allocate memory for m_cfgDns\n")},
      {messageOf(kMergeConfigFiles, "mergeConfigFiles: failed to allocate memory for newEntries\n")},
      {messageOf(kMergeConfigFiles, "mergeConfigFiles: failed to allocate memory for updatedEntries\n")}};
  const int results[][3] = {{90, 0, -1}, {0, 90, -1}, {0, 0, 0}, {0, 0, 0}, {0, 0, 1}};
  for (int n = 1; n <= 5; ++n) {
    SmallMigration migration(pair);
    migration.world.failAllocation(n);
    migration.run();
    EXPECT_EQ(migration.oldDns, results[n - 1][0]) << n;
    EXPECT_EQ(migration.newDns, results[n - 1][1]) << n;
    EXPECT_EQ(migration.merged, results[n - 1][2]) << n;
    if (n <= 4) {
      EXPECT_EQ(migration.world.messages(), messages[n - 1]) << n;
    } else {
      EXPECT_EQ(migration.world.allocationSizes().size(), 4U);
    }
    migration.close();
    EXPECT_EQ(migration.complaints(), Lines()) << n;
  }
}

}  // namespace
