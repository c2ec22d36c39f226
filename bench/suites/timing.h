// timing.h -- what the suites share: sizes, and how an operation is timed that changes what it works on.

#ifndef CFGMIG_BENCH_SUITES_TIMING_H
#define CFGMIG_BENCH_SUITES_TIMING_H

#include <benchmark/benchmark.h>

#include <chrono>

// Entries, or whatever a benchmark counts, and how its time grows with them.
inline void growing(benchmark::internal::Benchmark* family) {
  family->RangeMultiplier(10)->Range(100, 100000)->Complexity();
}

// For benchmarks whose preparation takes longer than they do. Their column "CPU" has the preparation in it.
inline void growingAndPrepared(benchmark::internal::Benchmark* family) {
  growing(family);
  family->UseManualTime()->Iterations(5)->Unit(benchmark::kMicrosecond);
}

// Runs `operation` on a fresh result of `prepare` in every iteration and counts the time of `operation` alone.
template <class Prepare, class Operation>
void timeEach(benchmark::State& state, Prepare prepare, Operation operation) {
  for (auto _ : state) {
    auto subject = prepare();
    const auto start = std::chrono::steady_clock::now();
    benchmark::DoNotOptimize(operation(*subject));
    state.SetIterationTime(std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
  }
  state.SetComplexityN(state.range(0));
}

#endif  // CFGMIG_BENCH_SUITES_TIMING_H
