#include "LdifReader.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include "NormalDn.h"

namespace cfgstore {
namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr std::size_t kSample = std::size_t{1} << 20;
constexpr std::size_t kLongestShownDn = 200;
constexpr std::size_t kNone = static_cast<std::size_t>(-1);

std::string describe(LineFault fault, std::string_view name) {
  switch (fault) {
    case LineFault::noColon:
      return "no colon on this line; expected \"attribute: value\"";
    case LineFault::badName:
      return "no attribute name before the colon; expected a letter followed by letters, digits and hyphens";
    case LineFault::longName:
      return "attribute name of more than 65535 bytes";
    case LineFault::url:
      return "a value is to be read from a URL (\":<\"); expected the value itself";
    case LineFault::badBase64:
      return "bad base64 in a value of \"" + std::string(name) + "\"; expected whole groups of four characters";
    case LineFault::zeroByte:
      return "a value of \"" + std::string(name) + "\" holds a zero byte, which no setting can";
  }
  return {};
}

// A DN as part of a message: on one line and of bounded length.
std::string shown(std::string_view dn) {
  std::string text(dn.substr(0, kLongestShownDn));
  std::replace_if(
      text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < ' '; }, '?');
  return dn.size() > kLongestShownDn ? text + "..." : text;
}

class Reader {
 public:
  Reader(std::string_view text, TextArena& arena) : m_text(text), m_arena(arena) {}

  LdifContent read();

 private:
  enum class Place { outside, inEntry, inEntryWithoutDn };

  void reserveLines();
  std::size_t endOfLogicalLine(std::size_t begin);
  void readLine(std::string_view line);
  void readBlank(std::string_view line);
  void readComment(std::string_view line);
  void readNamed(std::string_view line);
  void readVersion(const Line& line);
  void readDn(const Line& line);
  void readAttribute(const Line& line, std::string_view name);
  void startEntry(std::string_view normal);
  void endEntry();
  bool hasStrayReturn(std::string_view line) const;
  std::size_t lineNumberOf(const Line& line) const;
  void problem(std::string text) { m_content.problems.push_back({m_lineNumber, std::move(text)}); }
  bool full() const { return m_content.problems.size() >= kMostProblems; }

  std::string_view m_text;
  TextArena& m_arena;
  LdifContent m_content;
  Place m_place = Place::outside;
  std::size_t m_lineNumber = 1;        // of the first physical line of the logical line at hand
  std::size_t m_physicalLines = 0;     // in the logical line at hand
  std::size_t m_commentBlock = kNone;  // first of the comments that stand directly above
  bool m_mayHaveVersion = true;
  bool m_hasReturns = false;
  std::string m_scratch;
  std::string m_value;
};

LdifContent Reader::read() {
  if (const auto zero = m_text.find('\0'); zero != std::string_view::npos) {
    m_lineNumber = 1 + static_cast<std::size_t>(
                           std::count(m_text.begin(), m_text.begin() + static_cast<std::ptrdiff_t>(zero), '\n'));
    problem("a zero byte; expected a text file");
    return std::move(m_content);
  }
  m_hasReturns = m_text.find('\r') != std::string_view::npos;
  reserveLines();
  std::size_t at = 0;
  if (m_text.starts_with(kByteOrderMark)) {
    at = kByteOrderMark.size();
    m_content.lines.push_back({m_text.data(), static_cast<std::uint32_t>(at), 0, LineKind::byteOrderMark, 0});
  }
  while (at < m_text.size() && !full()) {
    const std::size_t end = endOfLogicalLine(at);
    readLine(m_text.substr(at, end - at));
    m_lineNumber += m_physicalLines;
    at = end;
  }
  if (at < m_text.size()) problem("too many problems; the rest of the file was not read");
  endEntry();
  return std::move(m_content);
}

// The lines of a configuration are much alike, so its first part tells how many there are. Room that is not used is
// never touched and costs nothing.
void Reader::reserveLines() {
  const std::string_view sample = m_text.substr(0, kSample);
  const auto count = static_cast<std::size_t>(std::count(sample.begin(), sample.end(), '\n')) + 1;
  const double perByte = static_cast<double>(count) / static_cast<double>(std::max<std::size_t>(sample.size(), 1));
  m_content.lines.reserve(static_cast<std::size_t>(perByte * 1.1 * static_cast<double>(m_text.size())) + 16);
}

std::size_t Reader::endOfLogicalLine(std::size_t begin) {
  m_physicalLines = 0;
  std::size_t end = begin;
  do {
    const auto newline = m_text.find('\n', end);
    ++m_physicalLines;
    end = newline == std::string_view::npos ? m_text.size() : newline + 1;
  } while (end < m_text.size() && m_text[end] == ' ' && m_text[begin] != '\n' &&
           !(m_text[begin] == '\r' && m_text[begin + 1] == '\n'));
  return end;
}

void Reader::readLine(std::string_view line) {
  if (line.size() > std::numeric_limits<std::uint32_t>::max()) return problem("a line of more than 4 GiB");
  if (line[0] == '\n' || line == "\r\n") return readBlank(line);
  if (line[0] == '#') return readComment(line);
  m_mayHaveVersion = m_mayHaveVersion && m_place == Place::outside;
  if (line[0] == ' ') return problem("a line that begins with a blank, but there is none above that it could continue");
  if (m_hasReturns && hasStrayReturn(line)) {
    problem("a carriage return without a line feed; expected line ends of one kind");
    return;
  }
  readNamed(line);
}

// Empty lines that follow each other are kept as one.
void Reader::readBlank(std::string_view line) {
  endEntry();
  m_place = Place::outside;
  m_commentBlock = kNone;
  auto& lines = m_content.lines;
  if (!lines.empty() && lines.back().kind == LineKind::blank &&
      lines.back().size <= std::numeric_limits<std::uint32_t>::max() - line.size()) {
    lines.back().size += static_cast<std::uint32_t>(line.size());
  } else {
    lines.push_back({line.data(), static_cast<std::uint32_t>(line.size()), 0, LineKind::blank, 0});
  }
}

void Reader::readComment(std::string_view line) {
  if (m_place == Place::outside && m_commentBlock == kNone) m_commentBlock = m_content.lines.size();
  const std::uint8_t flags = m_physicalLines > 1 ? Line::kFolded : std::uint8_t{0};
  m_content.lines.push_back({line.data(), static_cast<std::uint32_t>(line.size()), 0, LineKind::comment, flags});
}

void Reader::readNamed(std::string_view text) {
  Line line;
  if (const auto fault = parseLine(text, m_scratch, line)) {
    const bool named = *fault == LineFault::badBase64 || *fault == LineFault::zeroByte;
    problem(describe(*fault, named ? lineName(line, m_scratch) : std::string_view()));
    if (line.kind != LineKind::dn || !named) return;
    return startEntry({});  // an entry all the same, so that its attributes are not reported as well
  }
  if (line.kind == LineKind::dn) return readDn(line);
  const std::string_view name = lineName(line, m_scratch);
  if (m_mayHaveVersion && sameName(name, "version")) return readVersion(line);
  readAttribute(line, name);
}

void Reader::readVersion(const Line& line) {
  m_mayHaveVersion = false;
  m_commentBlock = kNone;
  if (lineValue(line, m_scratch) != "1") problem("an LDIF version that is not known; expected \"version: 1\"");
  m_content.lines.push_back(line);
  m_content.lines.back().kind = LineKind::version;
}

void Reader::readDn(const Line& line) {
  m_mayHaveVersion = false;
  if (m_place != Place::outside) {
    problem("\"dn:\" in the middle of an entry; expected a blank line before it");
    endEntry();
  }
  const std::string_view dn = lineValue(line, m_value);
  const auto normal = normalDn(dn);
  if (!normal) {
    problem("not a distinguished name; expected \"dn: CN=...\" as RFC 4514 writes it");
    startEntry({});
  } else {
    const auto keyOf = [&](EntryId id) { return m_content.entries[id - 1].normal; };
    const EntryId earlier = m_content.index.find(*normal, keyOf);
    if (earlier != kNoEntry) {
      const Line& first = m_content.lines[m_content.entries[earlier - 1].dn];
      problem("the entry \"" + shown(dn) + "\" a second time; it stands on line " +
              std::to_string(lineNumberOf(first)) + " already");
      startEntry({});
    } else {
      startEntry(*normal == dn && line.flags == 0 ? dn : m_arena.keep(*normal));
      const std::string_view key = m_content.entries.back().normal;
      m_content.index.insert(key, static_cast<EntryId>(m_content.entries.size()));
    }
  }
  m_content.lines.push_back(line);
}

void Reader::startEntry(std::string_view normal) {
  const std::size_t at = m_content.lines.size();
  m_content.entries.push_back({m_commentBlock == kNone ? at : m_commentBlock, at, at, normal});
  m_commentBlock = kNone;
  m_place = Place::inEntry;
}

void Reader::endEntry() {
  if (m_place == Place::inEntry) m_content.entries.back().end = m_content.lines.size();
}

void Reader::readAttribute(const Line& line, std::string_view name) {
  m_mayHaveVersion = false;
  if (m_place == Place::outside) {
    problem("an entry that does not begin with its DN; expected \"dn:\"");
    m_place = Place::inEntryWithoutDn;
  }
  if (sameName(name, "changetype") || sameName(name, "control")) {
    problem("a change record (\"" + std::string(name) + ":\"); expected the content of an entry");
  }
  m_content.lines.push_back(line);
}

bool Reader::hasStrayReturn(std::string_view line) const {
  for (auto at = line.find('\r'); at != std::string_view::npos; at = line.find('\r', at + 1)) {
    if (at + 1 == line.size() || line[at + 1] != '\n') return true;
  }
  return false;
}

std::size_t Reader::lineNumberOf(const Line& line) const {
  return 1 + static_cast<std::size_t>(std::count(m_text.data(), line.raw, '\n'));
}

}  // namespace

LdifContent readLdif(std::string_view text, TextArena& arena) { return Reader(text, arena).read(); }

}  // namespace cfgstore
