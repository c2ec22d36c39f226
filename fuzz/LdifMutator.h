// LdifMutator.h -- changes LDIF texts into LDIF texts, most of which can be read. Linked with libFuzzer only.

#ifndef CFGMIG_FUZZ_LDIFMUTATOR_H
#define CFGMIG_FUZZ_LDIFMUTATOR_H

#include <cstddef>
#include <random>
#include <string>

namespace fuzz {

using Random = std::minstd_rand;

inline std::size_t below(Random& random, std::size_t count) { return random() % count; }

// One to four changes to a text: of a value, a line, an entry, of how a line is written, or of any bytes.
std::string mutatedLdif(std::string text, Random& random);

// A copy of one of the entries, with all its lines; empty when there is none.
std::string someEntryOf(const std::string& text, Random& random);

// `bytes` after a change by libFuzzer, no longer than `mostBytes`.
std::string mutatedBytes(const std::string& bytes, std::size_t mostBytes);

}  // namespace fuzz

#endif  // CFGMIG_FUZZ_LDIFMUTATOR_H
