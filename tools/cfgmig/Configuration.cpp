#include "Configuration.h"

#include <sys/stat.h>

#include <chrono>
#include <cstdint>
#include <exception>
#include <future>
#include <new>
#include <optional>
#include <type_traits>
#include <utility>

#include "ConfigStore.h"
#include "EqualEntries.h"
#include "Failure.h"
#include "LargeHeap.h"
#include "PairReading.h"
#include "PrintableText.h"
#include "SizeLimit.h"
#include "Threads.h"
#include "TraceControl.h"

namespace tool {
namespace {

void describe(const cfgstore::OpenError& error, const std::string& path, std::vector<std::string>& problems) {
  const std::string file = ldtr::printable(path);
  for (const cfgstore::Problem& problem : error.problems()) {
    const std::string line = problem.line == 0 ? "" : ":" + std::to_string(problem.line);
    // The text may name a DN, whose backslashes are its own.
    problems.push_back(file + line + ": " + ldtr::printableDn(problem.text) + sizeHint(problem.kind));
  }
}

std::uint64_t sizeOf(const std::string& path) {
  struct stat status {};
  return ::stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) ? static_cast<std::uint64_t>(status.st_size) : 0;
}

// What `make` makes of the file at `path`.
template <class Make>
auto openBy(const Make& make, const std::string& path, std::vector<std::string>& problems) -> decltype(make()) {
  try {
    return make();
  } catch (const cfgstore::OpenError& error) {
    describe(error, path, problems);
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const std::exception& error) {
    problems.push_back(ldtr::printable(path) + ": " + ldtr::printable(error.what()));
  }
  return nullptr;
}

// Makes a Store of the file at `path`.
template <class Store, class... Arguments>
std::unique_ptr<Store> open(const std::string& path, std::vector<std::string>& problems, Arguments... arguments) {
  return openBy([&] { return std::make_unique<Store>(path.c_str(), arguments...); }, path, problems);
}

using cfgstore::PairReading;

bool isDeferred(const auto& future) { return future.wait_for(std::chrono::seconds(0)) == std::future_status::deferred; }

// Reading a large file is worth a thread; what is opened does not share anything. Two of them are read as a pair.
template <class Store>
std::vector<std::unique_ptr<Store>> openAll(std::span<const std::string> paths, std::vector<std::string>& problems,
                                            Learns learns = Learns::nothing) {
  struct Opened {
    std::unique_ptr<Store> store;
    std::vector<std::string> problems;
  };
  PairReading pair;
  if (paths.size() != 2) pair.giveUp();
  const auto openOne = [&](const std::string& path) {
    const bool isFirst = &path == &paths.front();
    const bool learnsHabits = !isFirst && learns == Learns::habits;
    const PairReading::Turn turn(pair, isFirst ? PairReading::Side::lowerFirst : PairReading::Side::upperFirst,
                                 learnsHabits);
    Opened opened;
    opened.store = open<Store>(path, opened.problems, nullptr);
    if constexpr (std::is_same_v<Store, ConfigFile>) {
      if (opened.store && learnsHabits) cfgstore::learnHabits(storeOf(*opened.store));
    }
    return opened;
  };
  std::uint64_t all = 0;
  for (const std::string& path : paths) all += sizeOf(path);
  makeRoomFor(all);
  std::vector<std::future<Opened>> pending;
  pending.reserve(paths.size());  // nothing may fail between two turns
  for (const std::string& path : paths) {
    const std::uint64_t bytes = &path == &paths.front() ? 0 : sizeOf(path);  // one can be read in this thread
    pending.push_back(cfgstore::doBeside(bytes, [&openOne, &path] { return openOne(path); }));
  }
  if (isDeferred(pending.back())) pair.giveUp();
  std::vector<std::unique_ptr<Store>> stores;
  for (std::future<Opened>& each : pending) {
    Opened opened = each.get();
    stores.push_back(std::move(opened.store));
    problems.insert(problems.end(), opened.problems.begin(), opened.problems.end());
  }
  return stores;
}

}  // namespace

std::unique_ptr<ConfigFile> openConfiguration(const std::string& path, std::vector<std::string>& problems) {
  makeRoomFor(sizeOf(path));
  return open<ConfigFile>(path, problems, nullptr);
}

OpenPair openConfigurations(const std::string& oldPath, const std::string& newPath, std::vector<std::string>& problems,
                            Learns learns) {
  const std::string paths[] = {oldPath, newPath};
  auto opened = openAll<ConfigFile>(paths, problems, learns);
  return {std::move(opened[0]), std::move(opened[1])};
}

std::vector<std::unique_ptr<OVOConfigUtils::CfgUtils>> openAllUtils(std::span<const std::string> paths,
                                                                    std::vector<std::string>& problems) {
  return openAll<OVOConfigUtils::CfgUtils>(paths, problems);
}

std::unique_ptr<cfgstore::ConfigStore> openStore(const std::string& path) {
  makeRoomFor(sizeOf(path));
  std::vector<std::string> problems;
  auto store = open<cfgstore::ConfigStore>(path, problems);
  if (!store) throw Failure(ExitStatus::failed, problems);
  return store;
}

std::unique_ptr<cfgstore::ConfigStore> openStoreLike(const std::string& path, const cfgstore::ConfigStore& model) {
  std::vector<std::string> problems;
  auto store = openBy([&] { return cfgstore::openLike(path, model); }, path, problems);
  if (!store) throw Failure(ExitStatus::failed, problems);
  return store;
}

std::span<const char* const> readInventory(ConfigFile& configuration) {
  const int rc = configuration.getDns();
  const int count = configuration.getDnNum();
  // What was listed has normal forms: the file was read by them.
  if (rc != 0 && count > 0) throw std::bad_alloc();
  if (rc != 0 || count <= 0) {
    throw Failure(ExitStatus::failed, ldtr::printable(configuration.getFileName()) +
                                          ": there is no entry under CN=CONFIGURATION; this is not the configuration "
                                          "of a server");
  }
  return {configuration.getCfgDns(), static_cast<std::size_t>(count)};
}

// A trace tells of the entries one after the other.
std::future<std::span<const char* const>> readInventoryBeside(ConfigFile& configuration) {
  const std::uint64_t bytes = ldtr::events() == 0 ? storeOf(configuration).textAsRead().size() : 0;
  return cfgstore::doBeside(bytes, [&configuration] { return readInventory(configuration); });
}

}  // namespace tool
