// merge_driver_bench.cpp -- what mergeConfigFiles costs by itself, as inventories grow, against the plain way of
// sorting entries: a scan of the new inventory for every old DN.

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <cstring>
#include <string>

#include "ConfigFile.h"
#include "empty_store.h"

namespace {

// Half of the DNs stand on both sides, as far apart as a different order makes them.
void fill(int count) {
  auto& oldDns = dnsOf("old");
  auto& newDns = dnsOf("new");
  oldDns.clear();
  newDns.clear();
  for (int i = 0; i < count; ++i) {
    oldDns.push_back("CN=ENTRY " + std::to_string(i) + ",CN=ENTRIES,CN=CONFIGURATION");
    newDns.push_back("CN=ENTRY " + std::to_string(count / 2 + count - 1 - i) + ",CN=ENTRIES,CN=CONFIGURATION");
  }
}

void mergeConfigFiles(benchmark::State& state) {
  fill(static_cast<int>(state.range(0)));
  ConfigFile oldConfig("old", nullptr);
  ConfigFile newConfig("new", nullptr);
  if (oldConfig.getDns() != 0 || newConfig.getDns() != 0) std::abort();
  for (auto _ : state) benchmark::DoNotOptimize(newConfig.mergeConfigFiles(&oldConfig, "6.0"));
  state.SetComplexityN(state.range(0));
}
BENCHMARK(mergeConfigFiles)
    ->Arg(300)
    ->Arg(10000)
    ->Arg(100000)
    ->Arg(1000000)
    ->Unit(benchmark::kMillisecond)
    ->Complexity();

void plainScan(benchmark::State& state) {
  fill(static_cast<int>(state.range(0)));
  for (auto _ : state) {
    int common = 0;
    for (const std::string& oldDn : dnsOf("old")) {
      for (const std::string& newDn : dnsOf("new")) common += std::strcmp(oldDn.c_str(), newDn.c_str()) == 0 ? 1 : 0;
    }
    benchmark::DoNotOptimize(common);
  }
  state.SetComplexityN(state.range(0));
}
BENCHMARK(plainScan)->Arg(300)->Arg(3000)->Arg(10000)->Unit(benchmark::kMillisecond)->Complexity();

}  // namespace

BENCHMARK_MAIN();
