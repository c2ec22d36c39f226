#include "Suggestion.h"

#include <algorithm>
#include <cstddef>

namespace tool {
namespace {

constexpr std::size_t kMostChanges = 2;
constexpr std::size_t kLongestWord = 64;  // nothing that is longer is near to anything; bounds the work below

std::size_t changesBetween(std::string_view left, std::string_view right) {
  const std::size_t width = right.size() + 1;
  std::vector<std::size_t> changes((left.size() + 1) * width);
  const auto at = [&](std::size_t i, std::size_t j) -> std::size_t& { return changes[i * width + j]; };
  for (std::size_t i = 0; i <= left.size(); ++i) at(i, 0) = i;
  for (std::size_t j = 0; j <= right.size(); ++j) at(0, j) = j;
  for (std::size_t i = 1; i <= left.size(); ++i) {
    for (std::size_t j = 1; j <= right.size(); ++j) {
      const std::size_t replaced = at(i - 1, j - 1) + (left[i - 1] == right[j - 1] ? 0 : 1);
      at(i, j) = std::min({at(i - 1, j) + 1, at(i, j - 1) + 1, replaced});
      const bool exchanged = i > 1 && j > 1 && left[i - 1] == right[j - 2] && left[i - 2] == right[j - 1];
      if (exchanged) at(i, j) = std::min(at(i, j), at(i - 2, j - 2) + 1);
    }
  }
  return at(left.size(), right.size());
}

}  // namespace

std::string nearest(std::string_view word, const std::vector<std::string>& known) {
  if (word.size() > kLongestWord) return "";
  std::size_t fewest = std::min(kMostChanges, std::max<std::size_t>(word.size() / 3, 1)) + 1;
  std::string best;
  for (const std::string& candidate : known) {
    const std::size_t changes = changesBetween(word, candidate);
    if (changes < fewest) {
      fewest = changes;
      best = candidate;
    }
  }
  return best;
}

}  // namespace tool
