#include "EditedText.h"

#include <algorithm>
#include <vector>

#include "Fuzz.h"
#include "LdifReader.h"
#include "LowerCase.h"
#include "TextArena.h"

namespace fuzz {
namespace {

using cfgstore::LineKind;

bool isNamed(LineKind kind) { return kind == LineKind::attribute || kind == LineKind::dn; }

// The reader keeps empty lines that follow each other as one line; here each is one.
void addBlankLines(std::string_view text, std::vector<EditedLine>& lines) {
  while (!text.empty()) {
    const std::size_t size = std::min(text.find('\n'), text.size() - 1) + 1;
    EditedLine line;
    line.text = text.substr(0, size);
    line.isBlank = true;
    lines.push_back(line);
    text.remove_prefix(size);
  }
}

std::vector<EditedLine> linesOf(std::string_view text) {
  cfgstore::TextArena arena;
  const cfgstore::LdifContent content = cfgstore::readLdif(text, arena);
  require(content.problems.empty(), "what an edit leaves can be read", text);
  std::vector<EditedLine> lines;
  auto entry = content.entries.begin();
  std::string scratch;
  for (std::size_t i = 0; i < content.lines.size(); ++i) {
    const cfgstore::Line& from = content.lines[i];
    while (entry != content.entries.end() && i >= entry->end) ++entry;
    if (from.kind == LineKind::blank) {
      addBlankLines(from.text(), lines);
      continue;
    }
    EditedLine line;
    line.text = from.text();
    line.isInEntry = entry != content.entries.end() && i >= entry->first;
    if (line.isInEntry) line.entry = entry->normal;
    if (isNamed(from.kind)) {
      line.name = lowerCase(cfgstore::lineName(from, scratch));
      line.value = cfgstore::lineValue(from, scratch);
    }
    lines.push_back(line);
  }
  return lines;
}

// The last line of a file may get a line end that it lacks, and lose it again when it is the last one once more.
bool isSameLine(const EditedLine& before, const EditedLine& after) {
  if (before.text == after.text) return true;
  const bool isUnterminated = !before.text.ends_with('\n') || !after.text.ends_with('\n');
  return isUnterminated && cfgstore::withoutLineEnd(before.text) == cfgstore::withoutLineEnd(after.text);
}

}  // namespace

std::size_t mostBlankLines(std::string_view text) {
  std::size_t most = 1;
  std::size_t together = 0;
  for (const EditedLine& line : linesOf(text)) {
    together = line.isBlank ? together + 1 : 0;
    most = std::max(most, together);
  }
  return most;
}

void checkEdit(std::string_view before, std::string_view after, const AllowedEdit& allowed) {
  const std::vector<EditedLine> old = linesOf(before);
  std::size_t newLines = 0;
  std::size_t newBlankLines = 0;
  auto kept = old.begin();
  const auto passOver = [&] {
    while (kept != old.end() && (allowed.mayGo(*kept) || (allowed.blankLinesMayGo && kept->isBlank))) ++kept;
  };
  passOver();
  for (const EditedLine& line : linesOf(after)) {
    if (kept != old.end() && isSameLine(*kept, line)) {
      ++kept;
      passOver();
    } else {
      ++(line.isBlank ? newBlankLines : newLines);
    }
  }
  const auto check = [&](bool holds, const char* promise) {
    if (!holds) require(false, promise, std::string(before) + "--- after the edit:\n" + std::string(after));
  };
  std::size_t oldBlankLines = 0;
  if (allowed.blankLinesMayGo) {
    for (const EditedLine& line : old) oldBlankLines += line.isBlank ? 1 : 0;
  }
  check(kept == old.end(), "lines that an edit does not concern stay as they are");
  check(newLines <= allowed.newLines, "an edit writes no more lines than it needs");
  check(newBlankLines <= allowed.newBlankLines + oldBlankLines, "an edit adds no needless empty lines");
}

}  // namespace fuzz
