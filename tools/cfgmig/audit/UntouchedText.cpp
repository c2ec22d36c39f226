#include "audit/UntouchedText.h"

#include <deque>
#include <optional>

namespace tool {
namespace {

using cfgstore::Snapshot;

struct TextLine {
  std::string_view text;  // with the lines that it goes on in
  std::size_t number = 0;
};

// How far to look for the next line that both texts have.
constexpr std::size_t kFar = 64;

// The lines of a text that are not empty and that `skips` does not name, one after the other.
class TextLines {
 public:
  TextLines(std::string_view text, const std::vector<bool>& skips) : m_rest(text), m_skips(skips) {}

  // The line so many behind the one at hand, or null behind the end. Valid until the next call of pass.
  const TextLine* at(std::size_t ahead) {
    while (m_lines.size() <= ahead && !m_rest.empty()) readOne();
    return ahead < m_lines.size() ? &m_lines[ahead] : nullptr;
  }

  void pass() { m_lines.pop_front(); }

 private:
  void readOne() {
    std::size_t end = 0;
    std::size_t physical = 0;
    do {
      const std::size_t newline = m_rest.find('\n', end);
      end = newline == std::string_view::npos ? m_rest.size() : newline + 1;
      ++physical;
    } while (end < m_rest.size() && m_rest[end] == ' ');
    const std::string_view line = m_rest.substr(0, end);
    const bool isSkipped = m_number < m_skips.size() && m_skips[m_number];
    if (!isSkipped && line != "\n" && line != "\r\n") m_lines.push_back({line, m_number});
    m_number += physical;
    m_rest.remove_prefix(end);
  }

  std::string_view m_rest;
  const std::vector<bool>& m_skips;
  std::size_t m_number = 1;      // of the first line of the rest
  std::deque<TextLine> m_lines;  // from the one at hand on, as far as they were looked at
};

std::string_view withoutEnd(std::string_view line) {
  if (line.ends_with('\n')) line.remove_suffix(1);
  if (line.ends_with('\r')) line.remove_suffix(1);
  return line;
}

// Only the last line of a file may lack its end, which it gets when something follows it.
bool isSame(const TextLine& before, const TextLine& result) {
  if (before.text == result.text) return true;
  return !before.text.ends_with('\n') && before.text == withoutEnd(result.text);
}

void mark(std::vector<bool>& lines, std::size_t number) {
  if (lines.size() <= number) lines.resize(number + 1, false);
  lines[number] = true;
}

struct Distance {
  std::size_t before;
  std::size_t result;
};

// How far it is to the nearest lines of both that are the same.
std::optional<Distance> findNext(TextLines& before, TextLines& result) {
  for (std::size_t distance = 1; distance <= kFar; ++distance) {
    for (std::size_t ahead = 0; ahead <= distance; ++ahead) {
      const TextLine* const left = before.at(ahead);
      const TextLine* const right = result.at(distance - ahead);
      if (left != nullptr && right != nullptr && isSame(*left, *right)) return Distance{ahead, distance - ahead};
    }
  }
  return std::nullopt;
}

// Up to so many lines, whose numbers go to `numbers`.
void pass(TextLines& lines, std::size_t count, std::vector<std::size_t>& numbers) {
  for (; count > 0 && lines.at(0) != nullptr; --count) {
    numbers.push_back(lines.at(0)->number);
    lines.pass();
  }
}

}  // namespace

TextDifferences compareUntouched(std::string_view beforeText, std::string_view resultText, const Snapshot& before,
                                 const Snapshot& result, const Audit& audit) {
  std::vector<bool> replaced;
  for (const AuditedReplacement& row : audit.replaced) mark(replaced, before.values()[row.before].line);
  std::vector<bool> brought;
  for (ValueId value = 0; value < audit.resultValues.size(); ++value) {
    const AuditedResultValue& row = audit.resultValues[value];
    if (!row.isExplained || row.origin != ValueOrigin::fromNew) mark(brought, result.values()[value].line);
  }
  for (const cfgstore::SnapshotEntry& entry : result.entries()) {
    if (before.findEntry(entry.normal) == Snapshot::kNone) mark(brought, entry.line);
  }

  TextLines left(beforeText, replaced);
  TextLines right(resultText, brought);
  TextDifferences differences;
  while (left.at(0) != nullptr || right.at(0) != nullptr) {
    if (left.at(0) != nullptr && right.at(0) != nullptr && isSame(*left.at(0), *right.at(0))) {
      left.pass();
      right.pass();
      continue;
    }
    const Distance next = findNext(left, right).value_or(Distance{kFar, kFar});
    pass(left, next.before, differences.missing);
    pass(right, next.result, differences.added);
  }
  return differences;
}

}  // namespace tool
