// save_bench.cpp -- what it takes to bring a content to the disk: as it was read, and after an edit of one entry in
// ten. A file system decides about most of the second.

#include <memory>
#include <string>

#include "ConfigStore.h"
#include "open_store.h"
#include "pair_files.h"
#include "timing.h"

namespace {

using cfgstore::Backup;
using cfgstore::ConfigStore;

std::unique_ptr<OpenStore> opened(std::int64_t entries) {
  return std::make_unique<OpenStore>(pairFilesOf(entries).old);
}

std::unique_ptr<OpenStore> edited(std::int64_t entries) {
  auto open = opened(entries);
  for (std::int64_t i = 0; i < entries / 10; ++i) {
    if (open->store.setValue(open->another(), "zor-slapdTimeLimit", "changed") != 0)
      throw std::runtime_error("setValue");
  }
  return open;
}

void textAfterEdits(benchmark::State& state) {
  timeEach(
      state, [&] { return edited(state.range(0)); },
      [](OpenStore& open) { return ConfigStore::of(open.store).text().size(); });
}
BENCHMARK(textAfterEdits)->Apply(growingAndPrepared);

void saveWithoutChange(benchmark::State& state) {
  const PairFiles& files = pairFilesOf(state.range(0));
  timeEach(
      state, [&] { return opened(state.range(0)); },
      [&](OpenStore& open) { return ConfigStore::of(open.store).save(files.old, Backup::keep).written; });
}
BENCHMARK(saveWithoutChange)->Apply(growingAndPrepared);

void saveAfterEdits(benchmark::State& state) {
  const std::string target = pairFilesOf(state.range(0)).directory + "/saved.conf";
  timeEach(
      state,
      [&] {
        std::remove(target.c_str());
        return edited(state.range(0));
      },
      [&](OpenStore& open) { return ConfigStore::of(open.store).save(target, Backup::none).written; });
}
BENCHMARK(saveAfterEdits)->Apply(growingAndPrepared);

}  // namespace

BENCHMARK_MAIN();
