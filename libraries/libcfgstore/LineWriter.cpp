#include "LineWriter.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <numeric>

#include "Base64.h"
#include "ShownText.h"

namespace cfgstore {
namespace {

constexpr std::size_t kUsualColumn = 76;  // what RFC 2849 suggests
constexpr std::size_t kNarrowest = 20;    // files folded more narrowly than this are no example to follow
constexpr std::size_t kWidest = 255;      // lines are counted by width up to here
constexpr std::size_t kUsualWidest = 80;  // a line wider than this has not been folded on purpose
constexpr std::size_t kMostEmptyLines = 3;

bool isContinuationByte(char c) { return (static_cast<unsigned char>(c) & 0xc0) == 0x80; }
bool isBeyondAscii(char c) { return static_cast<unsigned char>(c) >= 0x80; }
bool isControl(char c) { return (static_cast<unsigned char>(c) < ' ' && c != '\t') || c == '\x7f'; }

// Eight bytes at a time: of a large file, all have to be looked at.
bool isAnyBeyondAscii(std::string_view text) {
  for (std::uint64_t eight = 0; text.size() >= sizeof eight; text.remove_prefix(sizeof eight)) {
    std::memcpy(&eight, text.data(), sizeof eight);
    if ((eight & 0x8080808080808080U) != 0) return true;
  }
  return std::any_of(text.begin(), text.end(), isBeyondAscii);
}

// Where to fold before `limit`: not in the middle of a UTF-8 character, and never at `from` itself.
std::size_t foldAt(std::string_view text, std::size_t from, std::size_t limit) {
  std::size_t at = limit;
  while (at > from + 1 && isContinuationByte(text[at])) --at;
  return at > from + 1 ? at : limit;
}

// Counts what the lines of a file do.
class HabitCounter {
 public:
  void count(const Line& line);
  Habits result() const;

 private:
  void countNamed(const Line& line);
  std::size_t foldColumn() const;

  std::size_t m_lineFeeds = 0;
  std::size_t m_returns = 0;
  std::size_t m_blanksAfterColon = 0;
  std::size_t m_noBlanksAfterColon = 0;
  std::size_t m_foldedLines = 0;
  bool m_rawUtf8 = false;
  std::array<std::size_t, kWidest + 1> m_foldedAt{};     // by width of the first physical line
  std::array<std::size_t, kWidest + 2> m_notFoldedAt{};  // the last slot: wider than that
  std::array<std::size_t, kMostEmptyLines + 1> m_emptyLines{};
};

void HabitCounter::count(const Line& line) {
  const std::string_view text = line.text();
  if (text.ends_with('\n')) ++(text.ends_with("\r\n") ? m_returns : m_lineFeeds);
  if (line.kind == LineKind::blank) {
    const auto runLength = static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
    ++m_emptyLines[std::min(runLength, kMostEmptyLines)];
  } else if (line.kind == LineKind::attribute || line.kind == LineKind::dn) {
    countNamed(line);
  }
}

void HabitCounter::countNamed(const Line& line) {
  const std::string_view text = line.text();
  if ((line.flags & Line::kFolded) != 0) {
    ++m_foldedLines;
    const std::size_t width = withoutLineEnd(text.substr(0, text.find('\n') + 1)).size();
    if (width >= kNarrowest && width <= kWidest) ++m_foldedAt[width];
  } else {
    ++m_notFoldedAt[std::min(withoutLineEnd(text).size(), kWidest + 1)];
  }
  if (line.flags == 0) {
    const std::size_t afterColon = line.nameLength + std::size_t{1};
    if (afterColon < text.size() && text[afterColon] == ' ') {
      ++m_blanksAfterColon;
    } else if (afterColon < withoutLineEnd(text).size()) {
      ++m_noBlanksAfterColon;
    }
    m_rawUtf8 = m_rawUtf8 || isAnyBeyondAscii(text);
  }
}

std::size_t HabitCounter::foldColumn() const {
  const auto most = std::max_element(m_foldedAt.begin(), m_foldedAt.end());
  const auto column = *most == 0 ? kUsualColumn : static_cast<std::size_t>(most - m_foldedAt.begin());
  const auto wide = static_cast<std::ptrdiff_t>(std::max(column, kUsualWidest)) + 1;
  const auto notFolded = std::accumulate(m_notFoldedAt.begin() + wide, m_notFoldedAt.end(), std::size_t{0});
  return notFolded > m_foldedLines ? 0 : column;
}

Habits HabitCounter::result() const {
  Habits habits;
  habits.lineEnd = m_returns > m_lineFeeds ? "\r\n" : "\n";
  habits.foldColumn = foldColumn();
  habits.blankAfterColon = m_blanksAfterColon >= m_noBlanksAfterColon;
  habits.rawUtf8 = m_rawUtf8;
  const auto most = std::max_element(m_emptyLines.begin(), m_emptyLines.end());
  if (*most != 0) habits.emptyLinesBetweenEntries = static_cast<std::size_t>(most - m_emptyLines.begin());
  return habits;
}

}  // namespace

Habits Habits::of(std::span<const Line> lines) { return of(std::span(&lines, 1)); }

Habits Habits::of(std::span<const std::span<const Line>> parts) {
  HabitCounter counter;
  for (const std::span<const Line> lines : parts) {
    for (const Line& line : lines) counter.count(line);
  }
  return counter.result();
}

bool needsBase64(const Habits& habits, std::string_view value) {
  if (value.empty()) return false;
  if (value.front() == ' ' || value.front() == ':' || value.front() == '<' || value.back() == ' ') return true;
  bool control = false;
  bool beyondAscii = false;
  for (const char c : value) {  // to the end, so that many bytes are looked at at once
    control |= isControl(c);
    beyondAscii |= isBeyondAscii(c);
  }
  if (control) return true;
  return beyondAscii && !(habits.rawUtf8 && isUtf8(value));
}

void appendLine(std::string& to, const Habits& habits, std::string_view name, std::string_view value) {
  const std::size_t begin = to.size();
  to += name;
  to += ':';
  const bool base64 = needsBase64(habits, value);
  if (base64) to += ':';
  if (habits.blankAfterColon && !value.empty()) to += ' ';
  if (base64) {
    appendBase64(to, value);
  } else {
    to += value;
  }

  std::size_t width = habits.foldColumn;
  if (width != 0 && to.size() - begin > width) {
    const std::string text = to.substr(begin);
    to.resize(begin);
    std::size_t from = 0;
    while (text.size() - from > width) {
      const std::size_t end = foldAt(text, from, from + width);
      to.append(text, from, end - from);
      to += habits.lineEnd;
      to += ' ';
      from = end;
      width = habits.foldColumn - 1;
    }
    to.append(text, from);
  }
  to += habits.lineEnd;
}

std::string writeLine(const Habits& habits, std::string_view name, std::string_view value) {
  std::string line;
  appendLine(line, habits, name, value);
  return line;
}

std::string writeSeparator(const Habits& habits) {
  std::string text;
  for (std::size_t i = 0; i < habits.emptyLinesBetweenEntries; ++i) text += habits.lineEnd;
  return text;
}

}  // namespace cfgstore
