// MutateInput.h -- what the custom mutators have in common: an input as a string, and back.

#ifndef CFGMIG_FUZZ_MUTATEINPUT_H
#define CFGMIG_FUZZ_MUTATEINPUT_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>

#include "Fuzz.h"
#include "LdifMutator.h"

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t maxSize,
                                               unsigned seed);

namespace fuzz {

// Replaces the input by what `mutate(input, random)` makes of it, cut to `maxSize`; returns the new size.
template <class Mutate>
std::size_t mutateInput(std::uint8_t* data, std::size_t size, std::size_t maxSize, unsigned seed, Mutate mutate) {
  Random random(seed);
  const std::string input = mutate(std::string(viewOf(data, size)), random);
  const std::size_t kept = std::min(input.size(), maxSize);
  std::copy_n(input.begin(), kept, data);
  return kept;
}

}  // namespace fuzz

#endif  // CFGMIG_FUZZ_MUTATEINPUT_H
