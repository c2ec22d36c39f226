// open_store.h -- a store of each size, opened once, and DNs of it to ask for.

#ifndef CFGMIG_BENCH_SUITES_OPEN_STORE_H
#define CFGMIG_BENCH_SUITES_OPEN_STORE_H

#include <cstdint>
#include <string>
#include <vector>

#include "CfgUtils.h"

struct OpenStore {
  explicit OpenStore(const std::string& path);

  // The DN of another entry with every call, all over the file, so that nothing that the store remembers of the last
  // call is of use. Every one has the settings of a generated entry.
  const char* another();

  OVOConfigUtils::CfgUtils store;

 private:
  std::vector<std::string> m_dns;
  std::size_t m_at = 0;
};

// The old side of the generated pair. A benchmark leaves its content as it was.
OpenStore& openStoreOf(std::int64_t entries);

#endif  // CFGMIG_BENCH_SUITES_OPEN_STORE_H
