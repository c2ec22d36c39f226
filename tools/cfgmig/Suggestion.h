// Suggestion.h -- what a mistyped word was probably meant to be.

#ifndef CFGMIG_TOOL_SUGGESTION_H
#define CFGMIG_TOOL_SUGGESTION_H

#include <string>
#include <string_view>
#include <vector>

namespace tool {

// The one of `known` that needs the fewest changes to become `word`: a character put in, left out or replaced, or two
// neighbours exchanged. Empty when none is near: more than two changes, or more than a third of the word.
std::string nearest(std::string_view word, const std::vector<std::string>& known);

}  // namespace tool

#endif  // CFGMIG_TOOL_SUGGESTION_H
