// EditedText.h -- what an edit did to the text of a configuration, line by line.

#ifndef CFGMIG_FUZZ_EDITEDTEXT_H
#define CFGMIG_FUZZ_EDITEDTEXT_H

#include <functional>
#include <string>
#include <string_view>

namespace fuzz {

// One logical line. Blank lines and comments between entries belong to no entry.
struct EditedLine {
  std::string text;   // with its line end
  std::string entry;  // normal DN of the entry that it belongs to
  std::string name;   // lower case; empty for comments, blank lines and the version
  std::string value;
  bool isInEntry = false;
  bool isBlank = false;
};

using LinePredicate = std::function<bool(const EditedLine&)>;

// How the text of an edit may differ from the one before.
struct AllowedEdit {
  LinePredicate mayGo;            // the lines that the edit concerns; all others stay
  std::size_t newLines = 0;       // at most so many lines are new, blank ones not counted
  std::size_t newBlankLines = 0;  // at most
  bool blankLinesMayGo = false;
};

// How many empty lines stand together at most, but at least 1.
std::size_t mostBlankLines(std::string_view text);

// Requires that `after` is `before` but for what is allowed: every line that is not concerned stands there with the
// same bytes, in the same order. Only a line without a line end may get one, and lose it again.
void checkEdit(std::string_view before, std::string_view after, const AllowedEdit& allowed);

}  // namespace fuzz

#endif  // CFGMIG_FUZZ_EDITEDTEXT_H
