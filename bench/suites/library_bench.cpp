// library_bench.cpp -- every public operation of ConfigFile over inventories of any size. Opening the files is not
// counted.

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <stdexcept>

#include "ConfigFile.h"
#include "library_subject.h"
#include "timing.h"

namespace {

struct Pair {
  explicit Pair(const LibrarySubject& subject) : old(subject.old, nullptr), now(subject.now, nullptr) {
    if (old.getDns() != 0 || now.getDns() != 0) throw std::runtime_error("no inventory");
  }
  ConfigFile old;
  ConfigFile now;
};

template <class Operation>
void timePair(benchmark::State& state, Operation operation) {
  const LibrarySubject subject = librarySubjectOf(state.range(0));
  timeEach(
      state, [&] { return std::make_unique<Pair>(subject); }, operation);
}

void getDns(benchmark::State& state) {
  const LibrarySubject subject = librarySubjectOf(state.range(0));
  timeEach(
      state, [&] { return std::make_unique<ConfigFile>(subject.old, nullptr); },
      [](ConfigFile& file) { return file.getDns(); });
}
BENCHMARK(getDns)->Apply(growingAndPrepared);

// Standard output goes nowhere meanwhile.
class NoOutput {
 public:
  NoOutput() : m_before((std::fflush(stdout), ::dup(STDOUT_FILENO))) {
    const int nowhere = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
    ::dup2(nowhere, STDOUT_FILENO);
    ::close(nowhere);
  }
  ~NoOutput() {
    std::fflush(stdout);
    ::dup2(m_before, STDOUT_FILENO);
    ::close(m_before);
  }
  NoOutput(const NoOutput&) = delete;
  NoOutput& operator=(const NoOutput&) = delete;

 private:
  int m_before;
};

void dumpDns(benchmark::State& state) {
  const NoOutput noOutput;
  timePair(state, [](Pair& pair) {
    pair.now.dumpDns();
    return std::fflush(stdout);
  });
}
BENCHMARK(dumpDns)->Apply(growingAndPrepared);

void compareConfigFiles(benchmark::State& state) {
  timePair(state, [](Pair& pair) { return pair.old.compareConfigFiles(&pair.now); });
}
BENCHMARK(compareConfigFiles)->Apply(growingAndPrepared);

void mergeConfigFiles(benchmark::State& state, const char* version) {
  timePair(state, [version](Pair& pair) { return pair.now.mergeConfigFiles(&pair.old, version); });
}
BENCHMARK_CAPTURE(mergeConfigFiles, from41, "4.1")->Apply(growingAndPrepared);
BENCHMARK_CAPTURE(mergeConfigFiles, from51, "5.1")->Apply(growingAndPrepared);
BENCHMARK_CAPTURE(mergeConfigFiles, from52, "5.2")->Apply(growingAndPrepared);
BENCHMARK_CAPTURE(mergeConfigFiles, from60, "6.0")->Apply(growingAndPrepared);

void removeDBInfo(benchmark::State& state) {
  timePair(state, [](Pair& pair) { return pair.now.removeDBInfo(); });
}
BENCHMARK(removeDBInfo)->Apply(growingAndPrepared);

void removeCLInfo(benchmark::State& state) {
  timePair(state, [](Pair& pair) { return pair.now.removeCLInfo(); });
}
BENCHMARK(removeCLInfo)->Apply(growingAndPrepared);

void editCLInfo(benchmark::State& state) {
  timePair(state, [](Pair& pair) { return pair.now.editCLInfo(); });
}
BENCHMARK(editCLInfo)->Apply(growingAndPrepared);

void removeDBInstInfo(benchmark::State& state) {
  timePair(state, [](Pair& pair) { return pair.now.removeDBInstInfo(); });
}
BENCHMARK(removeDBInstInfo)->Apply(growingAndPrepared);

void release(char** list) {
  for (char** each = list; each != nullptr && *each != nullptr; ++each) std::free(*each);
  std::free(list);
}

void checkSchemaFiles(benchmark::State& state) {
  LibrarySubject subject = librarySubjectOf(state.range(0));
  timeEach(
      state, [&] { return std::make_unique<Pair>(subject); },
      [&](Pair& pair) {
        char** missing = nullptr;
        char** copied = nullptr;
        const int rc = pair.now.checkSchemaFiles(subject.schemaSource.data(), subject.schemaTarget.c_str(), nullptr,
                                                 &missing, &copied);
        release(missing);
        release(copied);
        return rc;
      });
}
BENCHMARK(checkSchemaFiles)->Apply(growingAndPrepared);

void freeParamVals(benchmark::State& state) {
  ConfigFile file(librarySubjectOf(100).old, nullptr);
  const auto count = static_cast<std::size_t>(state.range(0));
  const auto list = [&] {
    auto values = std::make_unique<char*[]>(count + 1);
    for (std::size_t i = 0; i < count; ++i) values[i] = strdup("a value");
    return std::make_unique<std::unique_ptr<char*[]>>(std::move(values));
  };
  timeEach(state, list, [&](std::unique_ptr<char*[]>& values) { return file.freeParamVals(values.get()); });
}
BENCHMARK(freeParamVals)->Apply(growingAndPrepared);

}  // namespace

BENCHMARK_MAIN();
