#include "DnCharacterMap.h"

#include <algorithm>
#include <iterator>

namespace cfgstore {
namespace {

struct Range {
  CodePoint first;
  CodePoint last;
  MatchingRole role;
};

constexpr MatchingRole kBlank = MatchingRole::blank;
constexpr MatchingRole kIgnored = MatchingRole::ignored;

// In ascending order, without overlaps.
constexpr Range kRanges[] = {
    {0x0000, 0x0008, kIgnored},    // controls
    {0x0009, 0x000d, kBlank},      // tab, line ends
    {0x000e, 0x001f, kIgnored},    // controls
    {0x007f, 0x0084, kIgnored},    // delete, controls
    {0x0085, 0x0085, kBlank},      // next line
    {0x0086, 0x009f, kIgnored},    // controls
    {0x00a0, 0x00a0, kBlank},      // no-break space
    {0x00ad, 0x00ad, kIgnored},    // soft hyphen
    {0x034f, 0x034f, kIgnored},    // combining grapheme joiner
    {0x06dd, 0x06dd, kIgnored},    // Arabic end of ayah
    {0x070f, 0x070f, kIgnored},    // Syriac abbreviation mark
    {0x1680, 0x1680, kBlank},      // Ogham space mark
    {0x1806, 0x1806, kIgnored},    // Mongolian todo soft hyphen
    {0x180b, 0x180e, kIgnored},    // Mongolian variation selectors, vowel separator
    {0x2000, 0x200a, kBlank},      // spaces of various widths
    {0x200b, 0x200f, kIgnored},    // zero-width space, joiners, direction marks
    {0x2028, 0x2029, kBlank},      // line and paragraph separators
    {0x202a, 0x202e, kIgnored},    // direction controls
    {0x202f, 0x202f, kBlank},      // narrow no-break space
    {0x205f, 0x205f, kBlank},      // mathematical space
    {0x2060, 0x2063, kIgnored},    // word joiner, invisible operators
    {0x206a, 0x206f, kIgnored},    // shaping controls
    {0x3000, 0x3000, kBlank},      // ideographic space
    {0xfe00, 0xfe0f, kIgnored},    // variation selectors
    {0xfeff, 0xfeff, kIgnored},    // byte-order mark
    {0xfff9, 0xfffc, kIgnored},    // annotations, object replacement
    {0x1d173, 0x1d17a, kIgnored},  // musical controls
    {0xe0001, 0xe0001, kIgnored},  // language tag
    {0xe0020, 0xe007f, kIgnored},  // tags
};

}  // namespace

MatchingRole matchingRoleOf(CodePoint point) {
  const auto* const range = std::lower_bound(std::begin(kRanges), std::end(kRanges), point,
                                             [](const Range& candidate, CodePoint p) { return candidate.last < p; });
  return range != std::end(kRanges) && range->first <= point ? range->role : MatchingRole::kept;
}

}  // namespace cfgstore
