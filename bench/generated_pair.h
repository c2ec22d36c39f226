// generated_pair.h -- two configurations to measure with: what an old server of version 6.0 and a new server might
// hold, of any size, always the same for the same numbers.

#ifndef CFGMIG_BENCH_GENERATED_PAIR_H
#define CFGMIG_BENCH_GENERATED_PAIR_H

#include <cstdint>
#include <ostream>

// Of `count` entries 80 % are the same on both sides, 10 % differ in some settings, and 5 % are on each side only. An
// entry has about 1,100 bytes: settings of one and of several values, folded ones, values in base64 and here and there
// a comment. The two sides spell the DN of every third entry differently. Before them stand the few entries that the
// clean-ups and the copying of schema files look for.
void generatePair(std::uint64_t count, std::uint64_t seed, std::ostream& old, std::ostream& now);

#endif  // CFGMIG_BENCH_GENERATED_PAIR_H
