// EditMutator.cpp -- inputs for the edit script: changes the text, the script behind its zero byte, or both.

#include "MutateInput.h"

namespace {

constexpr std::size_t kLongestScript = 256;

std::string mutated(const std::string& input, fuzz::Random& random) {
  const std::size_t end = std::min(input.find('\0'), input.size());
  std::string text = input.substr(0, end);
  std::string script = input.substr(std::min(end + 1, input.size()));
  const std::size_t what = fuzz::below(random, 4);
  if (what < 2) text = fuzz::mutatedLdif(text, random);
  if (what > 0) script = fuzz::mutatedBytes(script, std::max(kLongestScript, script.size()));
  std::erase(text, '\0');
  return text + '\0' + script;
}

}  // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t maxSize,
                                               unsigned seed) {
  return fuzz::mutateInput(data, size, maxSize, seed, mutated);
}
