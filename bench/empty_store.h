// empty_store.h -- a store and a trace facility that cost next to nothing: entries have DNs and no attributes.

#ifndef CFGMIG_BENCH_EMPTY_STORE_H
#define CFGMIG_BENCH_EMPTY_STORE_H

#include <string>
#include <vector>

// The DNs that a store opened on this file name lists.
std::vector<std::string>& dnsOf(const std::string& fileName);

#endif  // CFGMIG_BENCH_EMPTY_STORE_H
