// LineCounter.h -- the numbers of lines, for those who go through a text from its beginning to its end.

#ifndef CFGMIG_LIBCFGSTORE_LINECOUNTER_H
#define CFGMIG_LIBCFGSTORE_LINECOUNTER_H

#include <algorithm>
#include <cstddef>
#include <span>
#include <string_view>

namespace cfgstore {

// Counts line feeds in the pieces of a text, each byte once, however many numbers are asked for.
class LineCounter {
 public:
  // The pieces must stay valid as long as the counter is used.
  explicit LineCounter(std::span<const std::string_view> pieces) : m_pieces(pieces) {
    if (!pieces.empty()) m_at = pieces.front().data();
  }

  // The number, from 1 on, of the physical line with the byte at `at`, which is in one of the pieces and not above the
  // byte asked for last.
  std::size_t numberOf(const char* at) {
    while (at < m_pieces.front().data() || at >= end()) {
      m_number += static_cast<std::size_t>(std::count(m_at, end(), '\n'));
      m_pieces = m_pieces.subspan(1);
      m_at = m_pieces.front().data();
    }
    m_number += static_cast<std::size_t>(std::count(m_at, at, '\n'));
    m_at = at;
    return m_number;
  }

 private:
  const char* end() const { return m_pieces.front().data() + m_pieces.front().size(); }

  std::span<const std::string_view> m_pieces;  // the one at hand and those below it
  const char* m_at = nullptr;                  // up to where line feeds are counted
  std::size_t m_number = 1;
};

}  // namespace cfgstore

#endif  // CFGMIG_LIBCFGSTORE_LINECOUNTER_H
