#include "LdifMutator.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <span>
#include <string_view>
#include <vector>

#include "Base64.h"
#include "Vocabulary.h"

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t maxSize);

namespace fuzz {
namespace {

using Lines = std::vector<std::string>;

constexpr std::size_t kLongestLine = 200;

// Physical lines with their line ends.
Lines split(std::string_view text) {
  Lines lines;
  while (!text.empty()) {
    const std::size_t size = std::min(text.find('\n'), text.size() - 1) + 1;
    lines.emplace_back(text.substr(0, size));
    text.remove_prefix(size);
  }
  return lines;
}

std::string joined(const Lines& lines) {
  std::string text;
  for (const std::string& line : lines) text += line;
  return text;
}

std::string someOf(std::span<const std::string_view> words, Random& random) {
  return std::string(words[below(random, words.size())]);
}

std::string newLine(Random& random) {
  return someOf(knownNames(), random) + ": " + someOf(knownValues(), random) + "\n";
}

std::string newEntry(Random& random) {
  std::string text = "\ndn: " + someOf(knownDns(), random) + "\n";
  if (below(random, 8) != 0) text += "objectClass: top\nobjectClass: zor-slapdConfigEntry\n";
  if (below(random, 8) != 0) text += "cn: x\n";
  for (std::size_t lines = below(random, 6); lines > 0; --lines) text += newLine(random);
  return text;
}

bool isBlank(const std::string& line) { return line == "\n" || line == "\r\n"; }

struct Range {
  std::size_t first;
  std::size_t end;
};

// The lines between two blank ones, around a random line.
Range someParagraph(const Lines& lines, Random& random) {
  std::size_t first = below(random, lines.size());
  std::size_t end = first;
  while (first > 0 && !isBlank(lines[first - 1])) --first;
  while (end < lines.size() && !isBlank(lines[end])) ++end;
  return {first, end};
}

std::ptrdiff_t at(std::size_t position) { return static_cast<std::ptrdiff_t>(position); }

std::string withoutEnd(std::string line) {
  while (line.ends_with('\n') || line.ends_with('\r')) line.pop_back();
  return line;
}

// --- changes; `lines` has at least one line, `line` is a random one of them

void changeValue(Lines& lines, std::size_t line, Random&) {
  const std::string text = withoutEnd(lines[line]);
  const std::size_t colon = std::min(text.find(':'), text.size());
  const std::size_t value = std::min(text.find_first_not_of(": ", colon), text.size());
  lines[line] = text.substr(0, value) + mutatedBytes(text.substr(value), kLongestLine) + "\n";
}

void setKnownValue(Lines& lines, std::size_t line, Random& random) {
  const std::string text = withoutEnd(lines[line]);
  const bool isDn = text.starts_with("dn:");
  lines[line] = text.substr(0, text.find(':')) + ": " + someOf(isDn ? knownDns() : knownValues(), random) + "\n";
}

void removeLine(Lines& lines, std::size_t line, Random&) { lines.erase(lines.begin() + at(line)); }

void repeatLine(Lines& lines, std::size_t line, Random& random) {
  const std::string copy = lines[line];
  lines.insert(lines.begin() + at(below(random, lines.size() + 1)), copy);
}

void swapLines(Lines& lines, std::size_t line, Random& random) {
  std::swap(lines[line], lines[below(random, lines.size())]);
}

void insertLine(Lines& lines, std::size_t line, Random& random) {
  lines.insert(lines.begin() + at(line) + 1, newLine(random));
}

void insertEntry(Lines& lines, std::size_t line, Random& random) {
  const auto blank = std::find_if(lines.begin() + at(line), lines.end(), isBlank);
  lines.insert(blank, newEntry(random));
}

void removeEntry(Lines& lines, std::size_t, Random& random) {
  const Range range = someParagraph(lines, random);
  lines.erase(lines.begin() + at(range.first), lines.begin() + at(range.end));
}

void fold(Lines& lines, std::size_t line, Random& random) {
  const std::string end = below(random, 4) == 0 ? "\r\n " : "\n ";
  lines[line].insert(below(random, lines[line].size() + 1), end);
}

void writeBase64(Lines& lines, std::size_t line, Random&) {
  const std::string text = withoutEnd(lines[line]);
  const std::size_t colon = text.find(':');
  if (colon == std::string::npos || text.starts_with('#') || text.starts_with(' ')) return;
  std::string written = text.substr(0, colon) + ":: ";
  const std::size_t value = std::min(text.find_first_not_of(": ", colon), text.size());
  cfgstore::appendBase64(written, text.substr(value));
  lines[line] = written + "\n";
}

void changeLineEnd(Lines& lines, std::size_t line, Random&) {
  std::string& text = lines[line];
  text = withoutEnd(text) + (text.ends_with("\r\n") ? "\n" : "\r\n");
}

void insertComment(Lines& lines, std::size_t line, Random& random) {
  static const char* const kLines[] = {"# comment\n", "#\n", "\n", "\r\n", "\n\n", "# dn: cn=x\n on and on\n"};
  lines.insert(lines.begin() + at(line), kLines[below(random, std::size(kLines))]);
}

void changeCase(Lines& lines, std::size_t line, Random& random) {
  std::string& text = lines[line];
  const std::size_t from = below(random, text.size() + 1);
  for (std::size_t i = from; i < text.size() && i < from + 8; ++i) {
    const bool isLetter = (text[i] >= 'a' && text[i] <= 'z') || (text[i] >= 'A' && text[i] <= 'Z');
    if (isLetter) text[i] = static_cast<char>(text[i] ^ 0x20);
  }
}

using Change = void (*)(Lines&, std::size_t, Random&);

constexpr Change kChanges[] = {changeValue, changeValue, changeValue, setKnownValue, setKnownValue, removeLine,
                               repeatLine,  swapLines,   insertLine,  insertLine,    insertEntry,   insertEntry,
                               removeEntry, fold,        writeBase64, changeLineEnd, insertComment, changeCase};

}  // namespace

std::string mutatedBytes(const std::string& bytes, std::size_t mostBytes) {
  std::vector<std::uint8_t> buffer(std::max(mostBytes, bytes.size()));
  std::copy(bytes.begin(), bytes.end(), buffer.begin());
  const std::size_t size = LLVMFuzzerMutate(buffer.data(), bytes.size(), buffer.size());
  return {buffer.begin(), buffer.begin() + at(size)};
}

std::string mutatedLdif(std::string text, Random& random) {
  if (below(random, 10) == 0) return mutatedBytes(text, text.size() + kLongestLine);
  Lines lines = split(text);
  for (std::size_t changes = 1 + below(random, 4); changes > 0; --changes) {
    if (lines.empty()) {
      lines = split(newEntry(random));
      continue;
    }
    kChanges[below(random, std::size(kChanges))](lines, below(random, lines.size()), random);
  }
  return joined(lines);
}

std::string someEntryOf(const std::string& text, Random& random) {
  const Lines lines = split(text);
  if (lines.empty()) return {};
  const Range range = someParagraph(lines, random);
  return joined({lines.begin() + at(range.first), lines.begin() + at(range.end)});
}

}  // namespace fuzz
