#include "audit/UntouchedText.h"

#include <algorithm>

namespace tool {
namespace {

using cfgstore::Snapshot;

struct TextLine {
  std::string_view text;  // with the lines that it goes on in
  std::size_t number = 0;
};

// The lines of a text that are not empty and that `skips` does not name.
std::vector<TextLine> linesOf(std::string_view text, const std::vector<bool>& skips) {
  std::vector<TextLine> lines;
  std::size_t number = 1;
  for (std::size_t at = 0; at < text.size();) {
    std::size_t end = at;
    std::size_t physical = 0;
    do {
      const std::size_t newline = text.find('\n', end);
      end = newline == std::string_view::npos ? text.size() : newline + 1;
      ++physical;
    } while (end < text.size() && text[end] == ' ');
    const std::string_view line = text.substr(at, end - at);
    const bool isSkipped = number < skips.size() && skips[number];
    if (!isSkipped && line != "\n" && line != "\r\n") lines.push_back({line, number});
    number += physical;
    at = end;
  }
  return lines;
}

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

// How far to look for the next line that both texts have.
constexpr std::size_t kFar = 64;

// The nearest places from `left` and `right` on that hold the same line.
bool findNext(const std::vector<TextLine>& before, const std::vector<TextLine>& result, std::size_t& left,
              std::size_t& right) {
  for (std::size_t distance = 1; distance <= kFar; ++distance) {
    for (std::size_t ahead = 0; ahead <= distance; ++ahead) {
      const std::size_t i = left + ahead;
      const std::size_t j = right + (distance - ahead);
      if (i >= before.size() || j >= result.size() || !isSame(before[i], result[j])) continue;
      left = i;
      right = j;
      return true;
    }
  }
  return false;
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

  const std::vector<TextLine> left = linesOf(beforeText, replaced);
  const std::vector<TextLine> right = linesOf(resultText, brought);
  TextDifferences differences;
  std::size_t i = 0;
  std::size_t j = 0;
  while (i < left.size() || j < right.size()) {
    if (i < left.size() && j < right.size() && isSame(left[i], right[j])) {
      ++i;
      ++j;
      continue;
    }
    std::size_t nextLeft = i;
    std::size_t nextRight = j;
    if (!findNext(left, right, nextLeft, nextRight)) {
      nextLeft = std::min(i + kFar, left.size());
      nextRight = std::min(j + kFar, right.size());
    }
    for (; i < nextLeft; ++i) differences.missing.push_back(left[i].number);
    for (; j < nextRight; ++j) differences.added.push_back(right[j].number);
  }
  return differences;
}

}  // namespace tool
