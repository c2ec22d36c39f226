// PlainLdif.h -- a second, simple reading of LDIF, for tests that must not trust the store's own.

#ifndef CFGMIG_TESTS_LIBCFGSTORE_PLAINLDIF_H
#define CFGMIG_TESTS_LIBCFGSTORE_PLAINLDIF_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace cfgstore::test {

struct PlainLine {
  enum class Kind { blank, comment, version, dn, attribute };

  std::string text;  // of one logical line: all its physical ones with their line ends
  Kind kind = Kind::blank;
  int entry = -1;     // that it belongs to; comments that touch an entry belong to it
  std::string name;   // as written
  std::string value;  // decoded
  bool base64 = false;
  std::size_t column = 0;  // bytes in the first physical line if it is folded, else 0
};

class PlainLdif {
 public:
  explicit PlainLdif(std::string_view text);  // of a valid file; a byte-order mark belongs to the first line

  const std::vector<PlainLine>& lines() const { return m_lines; }
  int entries() const { return m_entries; }

  // The text without the lines for which `isGone` is true.
  template <class Predicate>
  std::string without(const Predicate& isGone) const {
    std::string text;
    for (const PlainLine& line : m_lines) text += isGone(line) ? std::string() : line.text;
    return text;
  }

  // How most of the file is written, counted anew.
  std::string lineEnd() const;
  std::size_t foldColumn() const;  // 0: not folded
  bool hasBlankAfterColon() const;
  bool hasRawText() const;  // beyond ASCII
  std::string separator() const;

 private:
  std::vector<PlainLine> m_lines;
  int m_entries = 0;
};

// In lower case, without blanks.
std::string squeezed(std::string_view text);

}  // namespace cfgstore::test

#endif  // CFGMIG_TESTS_LIBCFGSTORE_PLAINLDIF_H
