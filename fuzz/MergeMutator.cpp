// MergeMutator.cpp -- inputs for merges: another scenario, changes in either configuration, an entry of one in the
// other.

#include "MutateInput.h"

namespace {

std::string mutated(const std::string& input, fuzz::Random& random) {
  std::string scenario = input.substr(0, 1);
  const std::size_t begin = scenario.size();
  const std::size_t end = std::min(input.find('\0', begin), input.size());
  std::string oldText = input.substr(begin, end - begin);
  std::string newText = input.substr(std::min(end + 1, input.size()));
  switch (fuzz::below(random, 8)) {
    case 0:
      scenario = std::string(1, static_cast<char>('0' + fuzz::below(random, 14)));
      break;
    case 1:
      newText += '\n' + fuzz::someEntryOf(oldText, random);
      break;
    case 2:
      oldText += '\n' + fuzz::someEntryOf(newText, random);
      break;
    case 3:
    case 4:
      newText = fuzz::mutatedLdif(newText, random);
      break;
    default:
      oldText = fuzz::mutatedLdif(oldText, random);
  }
  if (scenario.empty()) scenario = "0";
  std::erase(oldText, '\0');
  std::erase(newText, '\0');
  return scenario + oldText + '\0' + newText;
}

}  // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t maxSize,
                                               unsigned seed) {
  return fuzz::mutateInput(data, size, maxSize, seed, mutated);
}
