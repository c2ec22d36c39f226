// ledger_bench.cpp -- what the account of every value costs: the merge of two configurations by itself, and the same
// with the ledger made and its sums checked. Opening the files is part of both.
//
//   ledger_bench OLD NEW [BENCHMARK OPTIONS]
//
// The files are those of generate_pair, or any others of version 6.0.

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <iostream>
#include <string>

#include "ConfigFile.h"
#include "ledger/LedgerBuilder.h"

namespace {

struct Pair {
  Pair(const std::string& oldPath, const std::string& newPath)
      : old(oldPath.c_str(), nullptr), now(newPath.c_str(), nullptr) {
    if (old.getDns() != 0 || now.getDns() != 0) std::abort();
  }
  ConfigFile old;
  ConfigFile now;
};

void plainMerge(benchmark::State& state, const std::string& oldPath, const std::string& newPath) {
  for (auto _ : state) {
    Pair pair(oldPath, newPath);
    benchmark::DoNotOptimize(pair.now.mergeConfigFiles(&pair.old, "6.0"));
  }
}

void withLedger(benchmark::State& state, const std::string& oldPath, const std::string& newPath) {
  for (auto _ : state) {
    Pair pair(oldPath, newPath);
    const tool::Ledger ledger = tool::migrate(pair.old, pair.now, "6.0");
    if (!tool::sumErrors(ledger).empty()) std::abort();
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 3) {
    std::cerr << "usage: ledger_bench OLD NEW [BENCHMARK OPTIONS]\n";
    return 2;
  }
  const std::string oldPath = argv[1];
  const std::string newPath = argv[2];
  benchmark::RegisterBenchmark("plainMerge", plainMerge, oldPath, newPath)->Unit(benchmark::kMillisecond);
  benchmark::RegisterBenchmark("withLedger", withLedger, oldPath, newPath)->Unit(benchmark::kMillisecond);
  int rest = argc - 2;
  argv[2] = argv[0];
  benchmark::Initialize(&rest, argv + 2);
  benchmark::RunSpecifiedBenchmarks();
}
