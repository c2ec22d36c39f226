// Words.h -- the words that say what became of values, as the page shows them.

#ifndef CFGMIG_TOOL_REPORT_HTML_WORDS_H
#define CFGMIG_TOOL_REPORT_HTML_WORDS_H

#include <array>
#include <iosfwd>

#include "report/html/Account.h"

namespace tool::html {

// `id` is the element id of the word's filter and the class of rows that the word counts; `sign` the end of the class
// that gives it its colour and sign. Both are known to the style sheet.
struct WordKind {
  const char* id;
  char sign;
  const char* name;
  const char* meaning;
};

// By number: wordOf(fate), wordOf(origin), kReplacedWord.
extern const std::array<WordKind, kWords> kWordKinds;

// The word with its colour and sign.
struct Marked {
  std::size_t word;
};
std::ostream& operator<<(std::ostream& out, Marked word);

// The ids of all words of a set, each with a blank before it.
struct Classes {
  Words words;
};
std::ostream& operator<<(std::ostream& out, Classes classes);

}  // namespace tool::html

#endif  // CFGMIG_TOOL_REPORT_HTML_WORDS_H
