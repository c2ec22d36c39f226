// Vocabulary.h -- the words that the migration rules look at, for inputs on which the rules do something.

#ifndef CFGMIG_FUZZ_VOCABULARY_H
#define CFGMIG_FUZZ_VOCABULARY_H

#include <span>
#include <string_view>

namespace fuzz {

std::span<const std::string_view> knownDns();
std::span<const std::string_view> knownNames();
std::span<const std::string_view> knownValues();

}  // namespace fuzz

#endif  // CFGMIG_FUZZ_VOCABULARY_H
