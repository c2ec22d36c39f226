// One thing goes wrong in a comparison, a clean-up or a walk over the schema files, everywhere that it can: the N-th
// call answers a failure, the N-th call throws, the N-th allocation fails, for every N until nothing is left to fail.

#include <gtest/gtest.h>

#include "StandaloneRun.h"

namespace {

using fake::OutParameters;
using fake::TraceRecord;
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

class StandaloneFaultSweep : public testing::TestWithParam<StandaloneCall> {
 protected:
  const fake::Traced& method() const { return GetParam().method; }

  // How many calls that can go wrong there are when nothing does.
  int callsThatMayFail() {
    StandaloneRun run;
    run.run(GetParam());
    int calls = 0;
    for (const std::string& call : run.world.callsWithComparisons()) {
      calls += call.starts_with("cfg_") ? 0 : 1;
    }
    run.close();
    return calls;
  }

  // Writes that fail, and steps of a walk, are always reported at once with their code. The removal of an identical
  // entry is not.
  bool isReported(const std::string& call) const {
    for (const char* operation : {"delValue(", "addValue(", "getNextAttribute("}) {
      if (call.find(operation) != std::string::npos) {
        return true;
      }
    }
    return call.find("removeEntry(") != std::string::npos &&
           method().identifier != standalone::kCompareConfigFiles.identifier;
  }

  void expectReport(const StandaloneRun& run, const Strike& strike) {
    ASSERT_LT(strike.recordsThen, run.world.records().size()) << strike.call;
    const TraceRecord& next = run.world.records()[strike.recordsThen];
    const bool isMessage = next.kind == TraceRecord::Kind::debug && next.message.find("rc=81") != std::string::npos;
    EXPECT_EQ(isMessage, isReported(strike.call)) << strike.call << ": " << text(next);
  }

  void sweepFailures(OutParameters outParameters) {
    int n = 1;
    for (;; ++n) {
      StandaloneRun run;
      Strike strike;
      watch(run.world, strike);
      run.world.faults().fail({.nth = n}, kRc, outParameters);
      const int result = run.run(GetParam());
      if (!run.world.faults().struck()) {
        EXPECT_EQ(result, GetParam().usualResult);
        break;
      }
      EXPECT_EQ(result, GetParam().resultAfter(strike.call, kRc)) << strike.call;
      EXPECT_EQ(run.world.trace().back(), exitOf(method(), result)) << strike.call;
      expectReport(run, strike);
      run.close();
      EXPECT_EQ(run.complaints(), Lines()) << n << ": " << strike.call;
      ASSERT_FALSE(HasFailure());
    }
    EXPECT_EQ(n - 1, callsThatMayFail());
  }
};

INSTANTIATE_TEST_SUITE_P(Each, StandaloneFaultSweep, testing::ValuesIn(kStandaloneCalls),
                         [](const auto& call) { return call.param.method.name; });

TEST_P(StandaloneFaultSweep, NothingGoesWrongWithoutAFault) {
  StandaloneRun run;
  EXPECT_EQ(run.run(GetParam()), GetParam().usualResult);
  run.close();
  EXPECT_EQ(run.complaints(), Lines());
}

TEST_P(StandaloneFaultSweep, AnyCallMayFailAndClearItsOutParameters) { sweepFailures(OutParameters::cleared); }

TEST_P(StandaloneFaultSweep, AnyCallMayFailAndLeaveItsOutParameters) { sweepFailures(OutParameters::untouched); }

TEST_P(StandaloneFaultSweep, AnyCallMayThrow) {
  int n = 1;
  for (;; ++n) {
    StandaloneRun run;
    Strike strike;
    watch(run.world, strike);
    run.world.faults().throwAtCall(n);
    bool thrown = false;
    try {
      run.run(GetParam());
    } catch (const fake::Thrown&) {
      thrown = true;
    }
    EXPECT_EQ(thrown, run.world.faults().struck());
    if (!thrown) {
      break;
    }
    run.close();
    EXPECT_EQ(run.complaints(), Lines()) << n << ": " << strike.call;
    // Every frame writes its exit record with what it has recorded so far, and nobody says anything more. Two entries
    // count as identical from the beginning of their comparison; nobody else has recorded anything.
    ASSERT_LT(strike.recordsThen, run.world.records().size());
    for (std::size_t i = strike.recordsThen; i < run.world.records().size(); ++i) {
      const TraceRecord& record = run.world.records()[i];
      EXPECT_EQ(record.kind, TraceRecord::Kind::exit) << strike.call << ": " << text(record);
      EXPECT_EQ(record.result, record.identifier == standalone::kCompareEntries.identifier ? 1 : 0)
          << strike.call << ": " << text(record);
    }
    ASSERT_FALSE(HasFailure());
  }
  EXPECT_EQ(n - 1, callsThatMayFail());
}

TEST_P(StandaloneFaultSweep, FailuresActAlikeWithAndWithoutTrace) {
  for (int n = 1;; ++n) {
    Lines calls;
    int result = 0;
    {
      StandaloneRun run;
      run.world.faults().failCall(n, kRc);
      result = run.run(GetParam());
      calls = run.world.callsWithComparisons();
      run.close();
      if (!run.world.faults().struck()) {
        break;
      }
    }
    StandaloneRun run;
    run.world.setEvents(0);
    run.world.faults().failCall(n, kRc);
    EXPECT_EQ(run.run(GetParam()), result);
    EXPECT_EQ(run.world.callsWithComparisons(), calls);
    EXPECT_EQ(run.world.trace(), Lines());
    run.close();
    ASSERT_EQ(run.complaints(), Lines());
  }
}

// One fault may hide the effect of another.
TEST_P(StandaloneFaultSweep, TwoCallsMayFail) {
  const int calls = callsThatMayFail();
  const int step = calls < 30 ? 1 : 5;
  for (int first = 1; first <= calls; first += step) {
    for (int second = first + 1; second <= calls; second += step) {
      StandaloneRun run;
      run.world.faults().failCall(first, kRc);
      run.world.faults().failCall(second, kRc, OutParameters::untouched);
      run.run(GetParam());
      run.close();
      ASSERT_EQ(run.complaints(), Lines()) << first << ", " << second;
    }
  }
}

TEST_P(StandaloneFaultSweep, AnyAllocationOfTheLibraryMayFail) {
  int n = 1;
  for (;; ++n) {
    StandaloneRun run;
    run.world.failAllocation(n);
    run.run(GetParam());
    const bool struck = run.world.allocationSizes().size() >= static_cast<std::size_t>(n);
    run.close();
    ASSERT_EQ(run.complaints(), Lines()) << n;
    if (!struck) {
      break;
    }
  }
  // The list of the common entries; the two lists of files and a name in the one for each file.
  const bool compares = method().identifier == standalone::kCompareConfigFiles.identifier;
  const bool checks = method().identifier == standalone::kCheckSchemaFiles.identifier;
  EXPECT_EQ(n - 1, compares ? 1 : checks ? 4 : 0);
}

TEST_P(StandaloneFaultSweep, AnAllocationAndACallMayFail) {
  const int calls = callsThatMayFail();
  for (int allocation = 1; allocation <= 4; ++allocation) {
    for (int call = 1; call <= calls; ++call) {
      StandaloneRun run;
      run.world.failAllocation(allocation);
      run.world.faults().failCall(call, kRc);
      run.run(GetParam());
      run.close();
      ASSERT_EQ(run.complaints(), Lines()) << allocation << ", " << call;
    }
  }
}

}  // namespace
