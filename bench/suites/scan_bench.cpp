// scan_bench.cpp -- sorting entries the plain way, a scan of the new inventory for every old DN: what the growth of
// mergeConfigFiles over the store that costs nothing is to be seen against.

#include <cstring>
#include <string>

#include "empty_store.h"
#include "library_subject.h"
#include "timing.h"

namespace {

void plainScan(benchmark::State& state) {
  librarySubjectOf(state.range(0));
  for (auto _ : state) {
    int common = 0;
    for (const std::string& oldDn : dnsOf("old")) {
      for (const std::string& newDn : dnsOf("new")) common += std::strcmp(oldDn.c_str(), newDn.c_str()) == 0 ? 1 : 0;
    }
    benchmark::DoNotOptimize(common);
  }
  state.SetComplexityN(state.range(0));
}
BENCHMARK(plainScan)->RangeMultiplier(10)->Range(100, 10000)->Unit(benchmark::kMicrosecond)->Complexity();

}  // namespace
