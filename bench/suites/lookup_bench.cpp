// lookup_bench.cpp -- every reading operation of CfgUtils.h over a store of any size. Of one entry they are to cost the
// same in every size.

#include <cstdlib>

#include "open_store.h"
#include "timing.h"

namespace {

constexpr const char* kOne = "zor-slapdCacheSize";
constexpr const char* kSeveral = "ZOR-SLAPDSUFFIX";

void release(char** values, int count) {
  for (int i = 0; i < count; ++i) std::free(values[i]);
  std::free(values);
}

void getSubordinates(benchmark::State& state) {
  OVOConfigUtils::CfgUtils& store = openStoreOf(state.range(0)).store;
  for (auto _ : state) {
    char** dns = nullptr;
    int count = 0;
    if (store.getSubordinates("CN=CONFIGURATION", 2, &dns, &count) != 0) return state.SkipWithError("failed");
    release(dns, count);
  }
  state.SetComplexityN(state.range(0));
}
BENCHMARK(getSubordinates)->Apply(growing)->Unit(benchmark::kMicrosecond);

void getParamValueInfo(benchmark::State& state) {
  OpenStore& open = openStoreOf(state.range(0));
  for (auto _ : state) {
    char* value = nullptr;
    if (open.store.getParamValueInfo(open.another(), kOne, &value) != 0) return state.SkipWithError("failed");
    std::free(value);
  }
  state.SetComplexityN(state.range(0));
}
BENCHMARK(getParamValueInfo)->Apply(growing);

// The library asks for one attribute of an entry after the other.
void getParamValueInfoOfTheSameEntry(benchmark::State& state) {
  OpenStore& open = openStoreOf(state.range(0));
  const char* const dn = open.another();
  for (auto _ : state) {
    char* value = nullptr;
    if (open.store.getParamValueInfo(dn, kOne, &value) != 0) return state.SkipWithError("failed");
    std::free(value);
  }
  state.SetComplexityN(state.range(0));
}
BENCHMARK(getParamValueInfoOfTheSameEntry)->Apply(growing);

void getParamArrayValueInfo(benchmark::State& state) {
  OpenStore& open = openStoreOf(state.range(0));
  for (auto _ : state) {
    char** values = nullptr;
    int count = 0;
    if (open.store.getParamArrayValueInfo(open.another(), kSeveral, &values, &count) != 0) {
      return state.SkipWithError("failed");
    }
    release(values, count);
  }
  state.SetComplexityN(state.range(0));
}
BENCHMARK(getParamArrayValueInfo)->Apply(growing);

void getFirstEntry(benchmark::State& state) {
  OpenStore& open = openStoreOf(state.range(0));
  for (auto _ : state) {
    _CFGMessage* entry = nullptr;
    if (open.store.getFirstEntry(open.another(), &entry) != 0) return state.SkipWithError("failed");
    cfg_msgfree(entry);
  }
  state.SetComplexityN(state.range(0));
}
BENCHMARK(getFirstEntry)->Apply(growing);

void walkOverAllAttributes(benchmark::State& state) {
  OpenStore& open = openStoreOf(state.range(0));
  std::int64_t attributes = 0;
  for (auto _ : state) {
    _CFGMessage* entry = nullptr;
    _CFGMessage** cursor = nullptr;
    char* name = nullptr;
    if (open.store.getFirstEntry(open.another(), &entry) != 0) return state.SkipWithError("failed");
    int rc = open.store.getFirstAttribute(entry, &name, &cursor);
    for (; rc == 0 && name != nullptr; rc = open.store.getNextAttribute(entry, &name, cursor)) {
      std::free(name);
      ++attributes;
    }
    cfg_ber_free(cursor);
    cfg_msgfree(entry);
    if (rc != 0) return state.SkipWithError("failed");
  }
  state.SetItemsProcessed(attributes);
  state.SetComplexityN(state.range(0));
}
BENCHMARK(walkOverAllAttributes)->Apply(growing);

}  // namespace

BENCHMARK_MAIN();
