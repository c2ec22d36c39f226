// pair_files.h -- a generated pair on the disk.

#ifndef CFGMIG_BENCH_SUITES_PAIR_FILES_H
#define CFGMIG_BENCH_SUITES_PAIR_FILES_H

#include <cstdint>
#include <string>

struct PairFiles {
  std::string old;
  std::string now;
  std::string directory;  // where both are, and anything else that a benchmark writes
};

// The pair of so many entries, written when it is asked for first and removed when the program ends. Throws when it
// cannot be written.
const PairFiles& pairFilesOf(std::int64_t entries);

// Everything in a file.
std::string textOf(const std::string& path);

#endif  // CFGMIG_BENCH_SUITES_PAIR_FILES_H
