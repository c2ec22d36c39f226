#include "options/Option.h"

namespace tool {

std::string listOf(std::span<const char* const> words) {
  std::string list;
  for (const char* const word : words) list += (list.empty() ? "" : ", ") + std::string(word);
  return list;
}

std::string helpLine(const Option& option) {
  return option.words.empty() ? option.help : option.help + (": " + listOf(option.words));
}

}  // namespace tool
