#include "options/Names.h"

namespace tool {

std::string wordsOf(std::span<const char* const> words) {
  std::string list;
  for (const char* const word : words) list += (list.empty() ? "" : " ") + std::string(word);
  return list;
}

std::string commandNames() {
  std::string list;
  for (const Command& command : commands()) list += (list.empty() ? "" : " ") + std::string(command.name);
  return list;
}

std::string formsInPlan(const Command& command) {
  std::string list;
  if (!takesPlanOrFiles(command)) return list;
  for (const Option& option : optionsOf(command)) {
    if (!option.isInPlan) continue;
    list += (list.empty() ? "" : " ") + std::string(option.name);
    if (option.letter != 0) list += std::string(" -") + option.letter;
  }
  return list;
}

std::map<char, std::string> lettersOfOptions() {
  std::map<char, std::string> letters;
  for (const Command& command : commands()) {
    for (const Option& option : optionsOf(command)) {
      if (option.letter != 0) letters[option.letter] = option.name;
    }
  }
  return letters;
}

}  // namespace tool
