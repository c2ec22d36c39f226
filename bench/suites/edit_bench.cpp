// edit_bench.cpp -- every writing operation of CfgUtils.h, over stores of any size and attributes of any number of
// values. Each benchmark undoes what it has done, so that what is measured stays what it is.

#include <cstdlib>
#include <string>
#include <vector>

#include "open_store.h"
#include "pair_files.h"
#include "timing.h"

namespace {

constexpr const char* kSeveral = "zor-slapdSuffix";
constexpr const char* kAdded = "ou=one more";

char* unconst(const char* text) { return const_cast<char*>(text); }  // delValue reads only

int removeValue(OVOConfigUtils::CfgUtils& store, const char* dn, const char* attribute, const char* value) {
  char* list[] = {unconst(value), nullptr};
  return store.delValue(dn, attribute, list);
}

// The store, after a first edit: before that it finds out once how the file is written.
OpenStore& editedStoreOf(std::int64_t entries) {
  OpenStore& open = openStoreOf(entries);
  const char* const dn = open.another();
  if (open.store.addValue(dn, kSeveral, kAdded) != 0 || removeValue(open.store, dn, kSeveral, kAdded) != 0)
    std::abort();
  return open;
}

void addValueAndDelValue(benchmark::State& state) {
  OpenStore& open = editedStoreOf(state.range(0));
  for (auto _ : state) {
    const char* const dn = open.another();
    if (open.store.addValue(dn, kSeveral, kAdded) != 0 || removeValue(open.store, dn, kSeveral, kAdded) != 0) {
      return state.SkipWithError("failed");
    }
  }
  state.SetComplexityN(state.range(0));
}
BENCHMARK(addValueAndDelValue)->Apply(growing);

void addValueThatIsThere(benchmark::State& state) {
  OpenStore& open = editedStoreOf(state.range(0));
  for (auto _ : state) {
    if (open.store.addValue(open.another(), "objectClass", "top") != 0) return state.SkipWithError("failed");
  }
  state.SetComplexityN(state.range(0));
}
BENCHMARK(addValueThatIsThere)->Apply(growing);

void setValue(benchmark::State& state) {
  OpenStore& open = editedStoreOf(state.range(0));
  const char* value = "one";
  for (auto _ : state) {
    if (open.store.setValue(open.another(), "zor-slapdTimeLimit", value) != 0) return state.SkipWithError("failed");
    value = value[0] == 'o' ? "another" : "one";
  }
  state.SetComplexityN(state.range(0));
}
BENCHMARK(setValue)->Apply(growing);

void addEntryAndRemoveEntry(benchmark::State& state) {
  OpenStore& open = editedStoreOf(state.range(0));
  const char* const dn = "CN=ADDED,CN=GROUP 0,CN=CONFIGURATION";
  for (auto _ : state) {
    if (open.store.addEntry(dn, "Added", "top", "zor-slapdConfigEntry") != 0 || open.store.removeEntry(dn) != 0) {
      return state.SkipWithError("failed");
    }
  }
  state.SetComplexityN(state.range(0));
}
BENCHMARK(addEntryAndRemoveEntry)->Apply(growing);

// So many entries after each other, as a merge adds them, below one parent.
void addManyEntries(benchmark::State& state) {
  const PairFiles& files = pairFilesOf(100);
  std::vector<std::string> dns;
  for (std::int64_t i = 0; i < state.range(0); ++i) {
    dns.push_back("CN=ADDED " + std::to_string(i) + ",CN=GROUP 0,CN=CONFIGURATION");
  }
  for (auto _ : state) {
    OVOConfigUtils::CfgUtils store(files.now.c_str(), nullptr);
    for (const std::string& dn : dns) {
      if (store.addEntry(dn.c_str(), "Added", "top", "zor-slapdConfigEntry") != 0) return state.SkipWithError("failed");
    }
  }
  state.SetComplexityN(state.range(0));
}
BENCHMARK(addManyEntries)->Apply(growing)->Unit(benchmark::kMicrosecond);

// So many values of one attribute, one call for each.
void addManyValues(benchmark::State& state) {
  const PairFiles& files = pairFilesOf(100);
  for (auto _ : state) {
    OVOConfigUtils::CfgUtils store(files.now.c_str(), nullptr);
    for (std::int64_t i = 0; i < state.range(0); ++i) {
      const std::string value = "ou=number " + std::to_string(i);
      if (store.addValue("cn=Front End, cn=Configuration", kSeveral, value.c_str()) != 0) {
        return state.SkipWithError("failed");
      }
    }
  }
  state.SetComplexityN(state.range(0));
}
BENCHMARK(addManyValues)->Apply(growing)->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
