// ReaderMutator.cpp -- inputs for the reader: half of them LDIF again, half of them any bytes.

#include "MutateInput.h"

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t maxSize,
                                               unsigned seed) {
  return fuzz::mutateInput(data, size, maxSize, seed, [&](const std::string& input, fuzz::Random& random) {
    if (fuzz::below(random, 2) == 0) return fuzz::mutatedBytes(input, maxSize);
    return fuzz::mutatedLdif(input, random);
  });
}
