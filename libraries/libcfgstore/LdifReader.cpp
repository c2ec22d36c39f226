#include "LdifReader.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <optional>

#include "LargeMemory.h"
#include "NormalDn.h"
#include "ShownText.h"

namespace cfgstore {
namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr std::size_t kSample = std::size_t{1} << 20;
constexpr std::size_t kShortLine = 8;
constexpr std::size_t kBlock = std::size_t{1} << 16;
constexpr std::size_t kNone = static_cast<std::size_t>(-1);

// What is wrong with a line that is not one of name and value. `name` is known for the last two only.
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
      return "bad base64 in a value of \"" + shownName(name) + "\"; expected whole groups of four characters";
    case LineFault::zeroByte:
      break;
  }
  return "a value of \"" + shownName(name) + "\" holds a zero byte, which no setting can";
}

RemarkKind kindOf(LineFault fault) {
  switch (fault) {
    case LineFault::noColon:
      return RemarkKind::noColon;
    case LineFault::badName:
      return RemarkKind::badName;
    case LineFault::longName:
      return RemarkKind::nameTooLong;
    case LineFault::url:
      return RemarkKind::urlValue;
    case LineFault::badBase64:
      return RemarkKind::badBase64;
    case LineFault::zeroByte:
      break;
  }
  return RemarkKind::zeroByteInValue;
}

std::size_t linesIn(std::string_view text) {
  return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
}

class Reader {
 public:
  Reader(std::string_view text, TextArena& arena, const OnProblem& onProblem, std::size_t mostLines,
         KnownEntries* known)
      : m_text(text),
        m_arena(arena),
        m_onProblem(onProblem),
        m_mostLines(mostLines),
        m_known(known),
        m_room(text.size()) {}

  // Passes over what `other` has as well, and makes room for a text of `room` bytes.
  void beside(const LdifContent* other, std::size_t room) {
    m_other = other;
    m_room = room;
  }

  LdifContent read();

 private:
  enum class Place { outside, inEntry, inEntryWithoutDn };

  void reserveRoom();
  bool passKnown(std::size_t& at);
  void passAlike(std::size_t& at);
  EntryId findInOther(std::string_view normal);
  std::size_t endOfLogicalLine(std::size_t begin);
  void lookForRareBytes(std::size_t end);
  void readLine(std::string_view line);
  void readBlank(std::string_view line);
  void readComment(std::string_view line);
  void readNamed(std::string_view line);
  void skip(std::string_view line);
  void checkSeparated();
  void readVersion(const Line& line);
  void readDn(const Line& line);
  void readAttribute(const Line& line, std::string_view name);
  EntryId findOrEnter(std::string_view normal);
  std::string_view kept(std::string_view normal, std::string_view dn, const Line& line);
  void startEntry(std::optional<std::string_view> normal);
  void endEntry();
  static std::size_t strayReturn(std::string_view line);
  std::size_t physicalLineOf(std::string_view line, std::size_t at) const;
  void problem(RemarkKind kind, std::string text) { problemOn(m_lineNumber, kind, std::move(text)); }
  void problemOn(std::size_t lineNumber, RemarkKind kind, std::string text);

  std::string_view m_text;
  TextArena& m_arena;
  const OnProblem& m_onProblem;
  std::size_t m_mostLines;
  KnownEntries* m_known;
  const LdifContent* m_other = nullptr;
  std::size_t m_nextInOther = 0;  // mostly both have the same order
  bool m_isBelowDn = false;       // right below the dn line of an entry that is named
  std::size_t m_room;
  LdifContent m_content;
  Place m_place = Place::outside;
  std::size_t m_lineNumber = 1;        // of the first physical line of the logical line at hand
  std::size_t m_physicalLines = 0;     // in the logical line at hand
  std::size_t m_firstSize = 0;         // of the first of them
  std::size_t m_lookedAt = 0;          // up to where rare bytes were looked for
  std::size_t m_commentBlock = kNone;  // first of the comments that stand directly above
  bool m_mayHaveVersion = true;
  bool m_hasReturns = false;
  bool m_hasZeros = false;
  bool m_ended = false;  // by a problem
  std::string m_scratch;
  std::string m_value;
};

LdifContent Reader::read() {
  reserveRoom();
  std::size_t at = 0;
  if (m_text.starts_with(kByteOrderMark)) {
    at = kByteOrderMark.size();
    m_content.lines.push_back({m_text.data(), static_cast<std::uint32_t>(at), 0, LineKind::byteOrderMark, 0});
  }
  while (!m_ended) {
    if (m_known != nullptr && passKnown(at)) continue;
    if (at >= m_text.size()) break;
    const std::size_t end = endOfLogicalLine(at);
    lookForRareBytes(end);
    if (m_content.lines.size() >= m_mostLines) {
      problem(RemarkKind::tooManyLines, "more than " + std::to_string(m_mostLines) + " lines; the rest was not read");
      break;
    }
    readLine(m_text.substr(at, end - at));
    m_lineNumber += m_physicalLines;
    at = end;
    if (m_other != nullptr && m_isBelowDn) passAlike(at);
  }
  endEntry();
  m_content.physicalLines = m_lineNumber - 1;
  return std::move(m_content);
}

void Reader::problemOn(std::size_t lineNumber, RemarkKind kind, std::string text) {
  if (m_ended) return;
  if (m_place == Place::inEntry) m_content.entries.back().faulty = true;
  m_ended = !m_onProblem({lineNumber, std::move(text), kind});
}

// The parts of a configuration are much alike, so its first one tells how many lines and entries there are. Room that
// is not used is never touched and costs nothing, but no file shall make the system refuse it: lines of eight bytes are
// short enough, and entries of four such lines.
void Reader::reserveRoom() {
  const std::string_view sample = m_text.substr(0, kSample);
  const double parts = 1.1 * static_cast<double>(m_room) / static_cast<double>(std::max<std::size_t>(1, sample.size()));
  const auto room = [&](std::size_t inSample, std::size_t leastBytes) {
    const auto expected = static_cast<std::size_t>(parts * static_cast<double>(inSample));
    return std::min(expected, m_room / leastBytes) + 16;
  };
  reserveLarge(m_content.lines,
               room(static_cast<std::size_t>(std::count(sample.begin(), sample.end(), '\n')), kShortLine));
  std::size_t entries = 0;
  for (std::size_t at = 0; (at = sample.find("\ndn:", at)) != std::string_view::npos; ++at) ++entries;
  reserveLarge(m_content.entries, room(entries, 4 * kShortLine));
  m_content.index.reserve(room(entries, 4 * kShortLine));
}

// An entry begins behind an empty line or at the head of the text, and goes on to the next empty line or to the end: so
// the same bytes between two such places are the same entry.
bool Reader::passKnown(std::size_t& at) {
  if (m_place != Place::outside || m_commentBlock != kNone) return false;
  const KnownEntries::Entry& known = m_known->expected();
  if (known.number == kNoEntry) return false;
  if (known.cutAt ? *known.cutAt != at : !m_text.substr(at).starts_with(known.text)) return false;
  const std::size_t end = known.cutAt ? at : at + known.text.size();
  const std::string_view rest = m_text.substr(end);
  const bool ends = rest.starts_with('\n') || rest.starts_with("\r\n");
  if (!rest.empty() && !ends) return false;
  if (findOrEnter(known.normal) <= m_content.entries.size()) return false;  // a second time, which is to be told

  const auto dnAt = static_cast<std::size_t>(known.dn.raw - known.text.data());
  EntrySpan entry;
  entry.first = entry.dn = entry.end = m_content.lines.size();
  entry.line = m_lineNumber + linesIn(known.text.substr(0, dnAt));
  entry.text = known.cutAt ? known.text : m_text.substr(at, known.text.size());
  Line dn = known.dn;
  dn.raw = entry.text.data() + dnAt;
  entry.normal = kept(known.normal, lineValue(dn, m_value), dn);
  entry.known = known.number;
  m_content.entries.push_back(entry);
  m_lineNumber += linesIn(known.text);
  m_lookedAt = std::max(m_lookedAt, end);
  m_mayHaveVersion = false;
  m_known->wasThere();
  at = end;
  return true;
}

EntryId Reader::findInOther(std::string_view normal) {
  const auto& entries = m_other->entries;
  if (m_nextInOther < entries.size() && entries[m_nextInOther].normal == normal) {
    return static_cast<EntryId>(++m_nextInOther);
  }
  const EntryId found = m_other->index.find(normal, [&](EntryId id) { return entries[id - 1].normal; });
  if (found != kNoEntry) m_nextInOther = found;
  return found;
}

// An entry goes on to the next empty line or to the end: so the same bytes between such places are the same lines, and
// there is nothing wrong with them if there was nothing wrong with them there.
void Reader::passAlike(std::size_t& at) {
  m_isBelowDn = false;
  EntrySpan& mine = m_content.entries.back();
  const EntryId found = findInOther(mine.normal);
  if (found == kNoEntry) return;
  const EntrySpan& theirs = m_other->entries[found - 1];
  if (theirs.alike != kNoEntry || theirs.end == theirs.dn + 1) return;
  const Line& dn = m_other->lines[theirs.dn];
  const Line& last = m_other->lines[theirs.end - 1];
  const char* const begin = dn.raw + dn.size;
  const std::string_view below(begin, static_cast<std::size_t>(last.raw + last.size - begin));
  if (!below.ends_with('\n') || !m_text.substr(at).starts_with(below)) return;
  const std::string_view rest = m_text.substr(at + below.size());
  if (!rest.empty() && !rest.starts_with('\n') && !rest.starts_with("\r\n")) return;

  at += below.size();
  const char* const text = m_content.lines[mine.first].raw;
  mine.text = {text, static_cast<std::size_t>(m_text.data() + at - text)};
  mine.alike = found;
  m_lineNumber += theirs.endLine - theirs.line - linesIn(dn.text());
  m_lookedAt = std::max(m_lookedAt, at);
}

// Once there has been a zero byte or a carriage return, lines are searched for more. Looked for in blocks that stay in
// the processor's cache, up to the line at hand at least.
void Reader::lookForRareBytes(std::size_t end) {
  while (m_lookedAt < end) {
    const std::string_view block = m_text.substr(m_lookedAt, kBlock);
    m_hasZeros = m_hasZeros || block.find('\0') != std::string_view::npos;
    m_hasReturns = m_hasReturns || block.find('\r') != std::string_view::npos;
    m_lookedAt += block.size();
  }
}

std::size_t Reader::endOfLogicalLine(std::size_t begin) {
  m_physicalLines = 0;
  std::size_t end = begin;
  do {
    const auto newline = m_text.find('\n', end);
    end = newline == std::string_view::npos ? m_text.size() : newline + 1;
    if (++m_physicalLines == 1) m_firstSize = end - begin;
  } while (end < m_text.size() && m_text[end] == ' ' && m_text[begin] != '\n' &&
           !(m_text[begin] == '\r' && m_text[begin + 1] == '\n'));
  return end;
}

void Reader::readLine(std::string_view line) {
  if (line.size() > std::numeric_limits<std::uint32_t>::max())
    return problem(RemarkKind::lineTooLong, "a line of more than 4 GiB");
  if (m_hasZeros) {
    if (const auto zero = line.find('\0'); zero != std::string_view::npos) {
      skip(line);  // first, since what it reports is of the line's beginning
      return problemOn(physicalLineOf(line, zero), RemarkKind::zeroByte, "a zero byte; expected a text file");
    }
  }
  if (line[0] == '\n' || line == "\r\n") return readBlank(line);
  if (line[0] == '#') return readComment(line);
  m_mayHaveVersion = m_mayHaveVersion && m_place == Place::outside;
  if (line[0] == ' ') {
    return problem(RemarkKind::nothingToContinue,
                   "a line that begins with a blank, but there is none above that it could continue");
  }
  if (const std::size_t at = m_hasReturns ? strayReturn(line) : kNone; at != kNone) {
    skip(line);
    return problemOn(physicalLineOf(line, at), RemarkKind::strayReturn,
                     "a carriage return without a line feed; expected line ends of one kind");
  }
  readNamed(line);
}

// Empty lines that follow each other are kept as one.
void Reader::readBlank(std::string_view line) {
  endEntry();
  m_place = Place::outside;
  m_commentBlock = kNone;
  auto& lines = m_content.lines;
  if (!lines.empty() && lines.back().kind == LineKind::blank && lines.back().raw + lines.back().size == line.data() &&
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
  if (const auto fault = parseLine(text, m_firstSize, m_scratch, line)) {
    const bool named = *fault == LineFault::badBase64 || *fault == LineFault::zeroByte;
    problem(kindOf(*fault), describe(*fault, named ? lineName(line, m_scratch) : std::string_view()));
    return skip(text);
  }
  if (line.kind == LineKind::dn) return readDn(line);
  const std::string_view name = lineName(line, m_scratch);
  if (m_mayHaveVersion && sameName(name, "version")) return readVersion(line);
  readAttribute(line, name);
}

// After a problem with a line that is left out of the table. An entry begins with it all the same where it looks like a
// dn line, so that its attributes are not reported as well.
void Reader::skip(std::string_view line) {
  m_mayHaveVersion = false;
  if (!sameName(line.substr(0, 3), "dn:")) return;
  checkSeparated();
  startEntry(std::nullopt);
}

void Reader::checkSeparated() {
  if (m_place == Place::outside) return;
  problem(RemarkKind::dnInsideEntry, "\"dn:\" in the middle of an entry; expected a blank line before it");
}

void Reader::readVersion(const Line& line) {
  m_mayHaveVersion = false;
  m_commentBlock = kNone;
  if (lineValue(line, m_scratch) != "1") {
    problem(RemarkKind::unknownVersion, "an LDIF version that is not known; expected \"version: 1\"");
  }
  m_content.lines.push_back(line);
  m_content.lines.back().kind = LineKind::version;
}

void Reader::readDn(const Line& line) {
  m_mayHaveVersion = false;
  checkSeparated();
  const std::string_view dn = lineValue(line, m_value);
  const auto normal = normalDn(dn);
  if (!normal) {
    problem(RemarkKind::badDn, "not a distinguished name; expected \"dn: CN=...\" as RFC 4514 writes it");
    startEntry(std::nullopt);
  } else {
    const EntryId earlier = findOrEnter(*normal);
    if (m_known != nullptr) m_known->wasRead(*normal);
    if (earlier <= m_content.entries.size()) {
      problem(RemarkKind::duplicateEntry, "the entry \"" + shownDn(dn) + "\" a second time; it stands on line " +
                                              std::to_string(m_content.entries[earlier - 1].line) + " already");
      startEntry(std::nullopt);
    } else {
      startEntry(kept(*normal, dn, line));
      m_isBelowDn = true;
    }
  }
  m_content.lines.push_back(line);
}

// The number of the entry with this DN: an earlier one, or the one that is to be added next.
EntryId Reader::findOrEnter(std::string_view normal) {
  const auto keyOf = [&](EntryId id) { return m_content.entries[id - 1].normal; };
  return m_content.index.findOrInsert(normal, static_cast<EntryId>(m_content.entries.size() + 1), keyOf);
}

// A normal form that lasts: mostly the DN is written in it.
std::string_view Reader::kept(std::string_view normal, std::string_view dn, const Line& line) {
  return normal == dn && line.flags == 0 ? dn : m_arena.keep(normal);
}

void Reader::startEntry(std::optional<std::string_view> normal) {
  endEntry();
  const std::size_t at = m_content.lines.size();
  const std::size_t first = m_commentBlock == kNone ? at : m_commentBlock;
  m_content.entries.push_back({first, at, at, m_lineNumber, m_lineNumber, normal.value_or(""), normal.has_value()});
  m_commentBlock = kNone;
  m_place = Place::inEntry;
}

void Reader::endEntry() {
  if (m_place != Place::inEntry) return;
  m_content.entries.back().end = m_content.lines.size();
  m_content.entries.back().endLine = m_lineNumber;
}

void Reader::readAttribute(const Line& line, std::string_view name) {
  m_mayHaveVersion = false;
  if (m_place == Place::outside && sameName(name, "version")) {
    problem(RemarkKind::misplacedVersion, "a version line; expected it once, above the first entry");
    m_content.lines.push_back(line);
    m_content.lines.back().kind = LineKind::version;
    return;
  }
  if (m_place == Place::outside) {
    problem(RemarkKind::missingDn, "an entry that does not begin with its DN; expected \"dn:\"");
    m_place = Place::inEntryWithoutDn;
  }
  if (sameName(name, "changetype") || sameName(name, "control")) {
    problem(RemarkKind::changeRecord,
            "a change record (\"" + std::string(name) + ":\"); expected the content of an entry");
  }
  m_content.lines.push_back(line);
}

// Where a carriage return stands without a line feed behind it, or kNone.
std::size_t Reader::strayReturn(std::string_view line) {
  for (auto at = line.find('\r'); at != std::string_view::npos; at = line.find('\r', at + 1)) {
    if (at + 1 == line.size() || line[at + 1] != '\n') return at;
  }
  return kNone;
}

// The number of the physical line of `line`, the logical one at hand, in which the character at `at` stands.
std::size_t Reader::physicalLineOf(std::string_view line, std::size_t at) const {
  const auto above = std::count(line.begin(), line.begin() + static_cast<std::ptrdiff_t>(at), '\n');
  return m_lineNumber + static_cast<std::size_t>(above);
}

// Those that one run tells.
class FirstProblems {
 public:
  bool operator()(Problem problem) {
    if (m_problems.size() == kMostProblems) {
      m_problems.push_back(
          {problem.line, "too many problems; the rest of the file was not read", RemarkKind::tooManyProblems});
      return false;
    }
    m_problems.push_back(std::move(problem));
    return true;
  }
  std::vector<Problem> take() { return std::move(m_problems); }

 private:
  std::vector<Problem> m_problems;
};

}  // namespace

LdifContent readLdif(std::string_view text, TextArena& arena, KnownEntries* known) {
  FirstProblems problems;
  LdifContent content = readLdif(text, arena, std::ref(problems), kMostLines, known);
  content.problems = problems.take();
  return content;
}

LdifContent readBeside(const LdifContent* other, std::string_view text, TextArena& arena, std::size_t room) {
  FirstProblems problems;
  const OnProblem onProblem = std::ref(problems);
  Reader reader(text, arena, onProblem, kMostLines, nullptr);
  reader.beside(other, room);
  LdifContent content = reader.read();
  content.problems = problems.take();
  return content;
}

LdifContent readLdif(std::string_view text, TextArena& arena, const OnProblem& onProblem, std::size_t mostLines,
                     KnownEntries* known) {
  return Reader(text, arena, onProblem, mostLines, known).read();
}

}  // namespace cfgstore
