// TextLines.h -- how wide text is on a terminal, and where its lines break.

#ifndef CFGMIG_TOOL_REPORT_TEXTLINES_H
#define CFGMIG_TOOL_REPORT_TEXTLINES_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace tool {

inline constexpr std::size_t kLineWidth = 80;

// How many columns UTF-8 text takes, each code point counted as one.
std::size_t columnsOf(std::string_view text);

// `text` in lines of at most `width` columns, broken at blanks; a word that is wider has a line of its own. The first
// line begins with `head`, the others with as many blanks.
std::vector<std::string> wrapped(std::string_view head, std::string_view text, std::size_t width = kLineWidth);

// The same with the words given, which may hold blanks.
std::vector<std::string> wrapped(std::string_view head, const std::vector<std::string>& words,
                                 std::size_t width = kLineWidth);

}  // namespace tool

#endif  // CFGMIG_TOOL_REPORT_TEXTLINES_H
