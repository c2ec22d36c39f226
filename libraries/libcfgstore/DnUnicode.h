// DnUnicode.h -- strings as sequences of Unicode code points, and their preparation for comparison.

#ifndef CFGMIG_LIBCFGSTORE_DNUNICODE_H
#define CFGMIG_LIBCFGSTORE_DNUNICODE_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace cfgstore {

using CodePoint = std::int32_t;
using CodePoints = std::vector<CodePoint>;

// True for the numbers that are characters: up to 0x10ffff, no surrogates.
bool isCodePoint(std::uint32_t number);

// The code points of a UTF-8 text. Nothing when it is not UTF-8.
std::optional<CodePoints> codePointsOf(std::string_view utf8);

// Appends one code point, which must be one, in UTF-8.
void appendUtf8(CodePoint point, std::string& out);

// True for marks that combine with the character before them.
bool isCombiningMark(CodePoint point);

// The capital of a letter where that is a single character; any other character as it is.
CodePoint upperCaseOf(CodePoint point);

// Prepares a text for a comparison that ignores letter case: the steps Map and Normalize of RFC 4518, repeated until
// nothing changes, so that a prepared text stays as it is when it is prepared again. Texts that Unicode calls
// canonically equivalent become equal. Blanks are left for another step.
CodePoints foldedForMatching(CodePoints text);

}  // namespace cfgstore

#endif  // CFGMIG_LIBCFGSTORE_DNUNICODE_H
