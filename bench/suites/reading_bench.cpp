// reading_bench.cpp -- what it takes to open a configuration: the bytes, the lines and entries in them, the whole.

#include <memory>
#include <string>
#include <vector>

#include "Document.h"
#include "LdifReader.h"
#include "pair_files.h"
#include "timing.h"

namespace {

void setCounters(benchmark::State& state, std::size_t bytes) {
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(bytes));
  state.SetComplexityN(state.range(0));
}

void bytesOfTheFile(benchmark::State& state) {
  const PairFiles& files = pairFilesOf(state.range(0));
  std::size_t size = 0;
  for (auto _ : state) {
    std::string why;
    const auto source = cfgstore::SourceText::read(files.old, why);
    if (!source) return state.SkipWithError(why.c_str());
    size = source->text().size();
  }
  setCounters(state, size);
}
BENCHMARK(bytesOfTheFile)->Apply(growing)->Unit(benchmark::kMicrosecond);

void linesAndEntries(benchmark::State& state) {
  const std::string text = textOf(pairFilesOf(state.range(0)).old);
  for (auto _ : state) {
    cfgstore::TextArena arena;
    const cfgstore::LdifContent content = cfgstore::readLdif(text, arena);
    if (!content.problems.empty()) return state.SkipWithError("the generated file is not read");
    benchmark::DoNotOptimize(content.entries.data());
  }
  setCounters(state, text.size());
}
BENCHMARK(linesAndEntries)->Apply(growing)->Unit(benchmark::kMicrosecond);

void document(benchmark::State& state) {
  const std::string text = textOf(pairFilesOf(state.range(0)).old);
  for (auto _ : state) {
    std::vector<cfgstore::Problem> problems;
    const cfgstore::Document read(cfgstore::SourceText(text), problems);
    if (!problems.empty()) return state.SkipWithError("the generated file is not read");
  }
  setCounters(state, text.size());
}
BENCHMARK(document)->Apply(growing)->Unit(benchmark::kMicrosecond);

void theStore(benchmark::State& state) {
  const PairFiles& files = pairFilesOf(state.range(0));
  for (auto _ : state) {
    const OVOConfigUtils::CfgUtils store(files.old.c_str(), nullptr);
    benchmark::DoNotOptimize(&store);
  }
  setCounters(state, textOf(files.old).size());
}
BENCHMARK(theStore)->Apply(growing)->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
