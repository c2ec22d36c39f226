#include "DnUnicode.h"

#include <utf8proc.h>

#include <algorithm>
#include <array>
#include <iterator>

#include "DnCharacterMap.h"

namespace cfgstore {
namespace {

// Canonical composition (NFC), and compatibility composition (NFKC) of the case-folded text.
constexpr int kCanonical = UTF8PROC_STABLE | UTF8PROC_COMPOSE;
constexpr int kFolded = UTF8PROC_STABLE | UTF8PROC_COMPOSE | UTF8PROC_COMPAT | UTF8PROC_CASEFOLD;

// With the tables of today one pass settles every text; the next one finds nothing to change and ends the loop. The
// loop is there so that this need not be believed of the tables of another Unicode version, the limit so that it ends.
constexpr int kMostPasses = 8;

utf8proc_option_t optionOf(int flags) { return static_cast<utf8proc_option_t>(flags); }

void appendDecomposed(CodePoint point, int flags, CodePoints& out) {
  std::array<utf8proc_int32_t, 32> parts{};  // the longest decomposition in Unicode has 18
  int boundary = 0;
  const auto count = utf8proc_decompose_char(point, parts.data(), static_cast<utf8proc_ssize_t>(parts.size()),
                                             optionOf(flags), &boundary);
  if (count < 0 || static_cast<std::size_t>(count) > parts.size()) {
    out.push_back(point);
    return;
  }
  out.insert(out.end(), parts.begin(), parts.begin() + count);
}

int combiningClass(CodePoint point) { return utf8proc_get_property(point)->combining_class; }

// Puts the marks behind each character into the order of their classes. utf8proc_decompose would do it by swapping
// neighbours, whose time grows with the square of the number of marks.
void orderMarks(CodePoints& text) {
  const auto isMark = [](CodePoint point) { return combiningClass(point) != 0; };
  const auto byClass = [](CodePoint left, CodePoint right) { return combiningClass(left) < combiningClass(right); };
  for (auto first = text.begin(); first != text.end();) {
    first = std::find_if(first, text.end(), isMark);
    const auto last = std::find_if_not(first, text.end(), isMark);
    std::stable_sort(first, last, byClass);
    first = last;
  }
}

CodePoints normalized(const CodePoints& text, int flags) {
  CodePoints result;
  result.reserve(text.size());
  for (const CodePoint point : text) appendDecomposed(point, flags, result);
  orderMarks(result);
  const auto count =
      utf8proc_normalize_utf32(result.data(), static_cast<utf8proc_ssize_t>(result.size()), optionOf(flags));
  if (count >= 0) result.resize(static_cast<std::size_t>(count));
  return result;
}

// The step Map of RFC 4518 but for case folding.
CodePoints mapped(const CodePoints& text) {
  CodePoints result;
  result.reserve(text.size());
  for (const CodePoint point : text) {
    switch (matchingRoleOf(point)) {
      case MatchingRole::kept:
        result.push_back(point);
        break;
      case MatchingRole::blank:
        result.push_back(' ');
        break;
      case MatchingRole::ignored:
        break;
    }
  }
  return result;
}

bool isAscii(CodePoint point) { return point < 0x80; }

// What the general way does with ASCII, in a single pass.
CodePoints foldedAscii(const CodePoints& text) {
  CodePoints result = mapped(text);
  const auto lower = [](CodePoint point) { return point >= 'A' && point <= 'Z' ? point - 'A' + 'a' : point; };
  std::transform(result.begin(), result.end(), result.begin(), lower);
  return result;
}

}  // namespace

bool isCodePoint(std::uint32_t number) { return number <= 0x10ffff && (number < 0xd800 || number > 0xdfff); }

std::optional<CodePoints> codePointsOf(std::string_view utf8) {
  CodePoints result;
  result.reserve(utf8.size());
  while (!utf8.empty()) {
    utf8proc_int32_t point = 0;
    const auto length = utf8proc_iterate(reinterpret_cast<const utf8proc_uint8_t*>(utf8.data()),
                                         static_cast<utf8proc_ssize_t>(utf8.size()), &point);
    if (length <= 0) return std::nullopt;
    result.push_back(point);
    utf8.remove_prefix(static_cast<std::size_t>(length));
  }
  return result;
}

void appendUtf8(CodePoint point, std::string& out) {
  std::array<utf8proc_uint8_t, 4> bytes{};
  const auto length = utf8proc_encode_char(point, bytes.data());
  std::copy_n(bytes.begin(), length, std::back_inserter(out));
}

bool isCombiningMark(CodePoint point) {
  const utf8proc_category_t category = utf8proc_category(point);
  return category == UTF8PROC_CATEGORY_MN || category == UTF8PROC_CATEGORY_MC || category == UTF8PROC_CATEGORY_ME;
}

CodePoint upperCaseOf(CodePoint point) { return utf8proc_toupper(point); }

CodePoints foldedForMatching(CodePoints text) {
  if (std::all_of(text.begin(), text.end(), isAscii)) return foldedAscii(text);
  // Composed first, since folding is not the same for all orders of marks that mean the same. A text that has passed
  // through the loop below is composed already.
  text = normalized(text, kCanonical);
  for (int pass = 0; pass < kMostPasses; ++pass) {
    CodePoints folded = normalized(mapped(text), kFolded);
    if (folded == text) break;
    text = std::move(folded);
  }
  return text;
}

}  // namespace cfgstore
