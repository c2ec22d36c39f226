// Line.h -- one logical line of an LDIF file: its bytes as they stand in the file, and where name and value are.
//
// Lines are views: their bytes belong to the file's text or to the arena of the document, and outlive them.

#ifndef CFGMIG_LIBCFGSTORE_LINE_H
#define CFGMIG_LIBCFGSTORE_LINE_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace cfgstore {

enum class LineKind : std::uint8_t {
  attribute,
  dn,
  comment,
  blank,  // a run of empty lines
  version,
  byteOrderMark
};

// Invariants:
//   1. `raw` and `size` span all physical lines of the logical one, their line ends included. Laid end to end, the
//      lines of a file are the file.
//   2. Only the last line of a file may lack its line end.
//   3. A line of kind attribute, dn or version has a valid name, and a value that can be decoded and that holds no
//      zero byte: the reader admits no other.
// Small, because a file has millions of them: names are limited to 64 KiB and lines to 4 GiB by the reader.
struct Line {
  static constexpr std::uint8_t kFolded = 1;      // goes on in at least one continuation line
  static constexpr std::uint8_t kBase64 = 2;      // the value is written after "::"
  static constexpr std::uint8_t kHeadFolded = 4;  // folded before the value begins; nameLength says nothing then

  const char* raw = nullptr;
  std::uint32_t size = 0;
  std::uint16_t nameLength = 0;
  LineKind kind = LineKind::blank;
  std::uint8_t flags = 0;

  std::string_view text() const { return {raw, size}; }
};
static_assert(sizeof(Line) == 16);

// What keeps a logical line from being one of name and value.
enum class LineFault { noColon, badName, longName, url, badBase64, zeroByte };

// Takes apart a logical line that is neither blank nor a comment. `text` is all of it, line ends included, `firstSize`
// how much of that the first physical line is; `scratch` is working space. The kind of the result is attribute or, for
// the name "dn", dn.
std::optional<LineFault> parseLine(std::string_view text, std::size_t firstSize, std::string& scratch, Line& line);
std::optional<LineFault> parseLine(std::string_view text, std::string& scratch, Line& line);

// The attribute name as written, folding removed. A view into the line, or into `scratch` if the name is folded.
std::string_view lineName(const Line& line, std::string& scratch);

// The value, unfolded and decoded. A view into the line if it is plain, else into `scratch`.
std::string_view lineValue(const Line& line, std::string& scratch);

// `text` without the line end that it may have.
inline std::string_view withoutLineEnd(std::string_view text) {
  if (text.ends_with('\n')) {
    text.remove_suffix(1);
    if (text.ends_with('\r')) text.remove_suffix(1);
  }
  return text;
}

// The longest attribute name that the reader takes, so that a Line stays small.
inline constexpr std::size_t kMostNameBytes = 65535;

// True when `name` can stand for an attribute in an LDIF file: a letter followed by letters, digits, '-' and '_' (which
// older servers use), or an OID; then options, each after a ';'.
bool isAttributeName(std::string_view name);

// Whether two texts of the same size are equal without regard to ASCII letter case.
bool sameLetters(std::string_view left, std::string_view right);

// Attribute names are compared without regard to ASCII letter case. Most names differ in their lengths already.
inline bool sameName(std::string_view left, std::string_view right) {
  return left.size() == right.size() && sameLetters(left, right);
}

}  // namespace cfgstore

#endif  // CFGMIG_LIBCFGSTORE_LINE_H
