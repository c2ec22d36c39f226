#include "EqualEntries.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>

#include "Document.h"
#include "LargeMemory.h"
#include "LdifReader.h"
#include "NewFile.h"
#include "OpenFile.h"
#include "Threads.h"

namespace cfgstore {
namespace {

// The bytes of lines that follow each other in a file.
std::string_view textOf(std::span<const Line> lines) {
  if (lines.empty()) return {};
  const Line& last = lines.back();
  return {lines.front().raw, static_cast<std::size_t>(last.raw + last.size - lines.front().raw)};
}

// Lines that go on are counted more than once.
std::size_t mostLinesIn(std::string_view text) {
  return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n')) + 1;
}

std::uint32_t valuesIn(std::span<const Line> lines) {
  return static_cast<std::uint32_t>(
      std::count_if(lines.begin(), lines.end(), [](const Line& line) { return line.kind == LineKind::attribute; }));
}

}  // namespace

// A last line without its end gets one when an entry is added behind it, and is then no longer as it was read.
bool Document::Entry::lastsAsRead() const { return isAsRead() && textAsRead().ends_with('\n'); }

std::string_view Document::Entry::textAsRead() const { return body.empty() ? aside : textOf(body); }

std::span<const Line> Document::Entry::linesBelowDn() const {
  const auto at = std::find_if(body.begin(), body.end(), [](const Line& line) { return line.kind == LineKind::dn; });
  return body.subspan(static_cast<std::size_t>(at - body.begin()) + 1);
}

// What was admitted once is read again without a problem, and gives the same lines.
std::span<const Line> Document::bodyOf(const Entry& entry, std::vector<Line>& again) const {
  if (!entry.body.empty() || entry.aside.empty()) return entry.body;
  TextArena unused;
  again = readLdif(entry.aside, unused).lines;
  return again;
}

std::vector<Line> Document::linesAsRead(EntryId entry) const {
  std::vector<Line> again;
  const std::span<const Line> lines = bodyOf(m_entries[entry], again);
  return again.empty() ? std::vector<Line>(lines.begin(), lines.end()) : again;
}

// Lines take a third of the memory that the text takes, and nobody looks at these. Of those that are needed, all are
// there afterwards.
void Document::dropLinesSetAside() {
  std::size_t count = 0;
  for (const Entry& entry : m_entries) {
    const bool comesBack = entry.alike && !entry.setAside;
    count += entry.gap.size() + (entry.setAside ? 0 : comesBack ? mostLinesIn(entry.aside) : entry.body.size());
  }
  std::vector<Line> left;
  reserveLarge(left, count);  // so that the spans stay valid
  const auto keep = [&left](std::span<const Line> lines) { left.insert(left.end(), lines.begin(), lines.end()); };
  std::vector<std::size_t> sizes;  // of what comes back
  std::vector<Line> again;
  for (const Entry& entry : m_entries) {
    if (entry.alike && !entry.setAside) {
      const std::span<const Line> body = bodyOf(entry, again);
      sizes.push_back(body.size());
      keep(body);
    } else if (!entry.setAside) {
      keep(entry.body);
    }
    keep(entry.gap);
  }

  // From here on nothing can fail.
  std::span<const Line> rest(left);
  const auto take = [&rest](std::size_t size) {
    const std::span<const Line> lines = rest.first(size);
    rest = rest.subspan(size);
    return lines;
  };
  auto size = sizes.begin();
  for (Entry& entry : m_entries) {
    if (entry.setAside) {
      if (!entry.body.empty()) entry.aside = textOf(entry.body);
      entry.body = {};
    } else if (entry.alike) {
      entry.body = take(*size++);
      entry.aside = {};
    } else {
      entry.body = take(entry.body.size());
    }
    entry.alike = false;
    entry.gap = take(entry.gap.size());
  }
  m_hasAllLines = m_hasAllLines && left.size() == m_lines.size();
  m_lines = std::move(left);
  m_linesAlike = 0;
}

void Document::takeApart() {
  if (m_readBeside == nullptr) return;
  dropLinesSetAside();
  m_readBeside = nullptr;
}

// Looks at the entries from `begin` on, to before `end`. No two of them have the same counterpart.
std::size_t Document::setAsideEqual(Document& other, const EntryTest& mayBe, EntryId begin, EntryId end) {
  std::size_t count = 0;
  EntryId next = kNoEntry;  // mostly both files have the same order
  for (EntryId id = begin; id < end; ++id) {
    Entry& mine = m_entries[id];
    if (!mine.lastsAsRead() || mine.setAside) continue;
    if (next == kNoEntry || other.m_entries[next].normal != mine.normal) next = other.lookUp(mine.normal);
    if (next == kNoEntry) continue;
    Entry& theirs = other.m_entries[next];
    next = theirs.next;
    if (!theirs.lastsAsRead() || theirs.setAside) continue;
    // Of two that are alike, one was taken apart.
    const std::span<const Line> lines = mine.alike ? theirs.linesBelowDn() : mine.linesBelowDn();
    const bool isEqual = mine.alike || theirs.alike || textOf(lines) == textOf(theirs.linesBelowDn());
    if (!isEqual || !mayBe(mine.normal, lines)) continue;
    mine.setAside = theirs.setAside = true;
    mine.valuesSetAside = theirs.valuesSetAside = valuesIn(lines);
    count += mine.valuesSetAside;
  }
  return count;
}

void Document::setAsideEqual(Document& other, const EntryTest& mayBe) {
  if (m_readBeside != &other || other.m_readBeside != this) {
    takeApart();
    other.takeApart();
  }
  const std::size_t size = m_source.text().size();
  const auto end = static_cast<EntryId>(m_entries.size());
  const EntryId middle = end / 2;
  auto second = doBeside(size, [&] { return setAsideEqual(other, mayBe, middle, end); });
  const std::size_t first = setAsideEqual(other, mayBe, kHead, middle);
  const std::size_t count = first + second.get();
  m_valuesSetAside += count;
  other.m_valuesSetAside += count;
  auto theirs = doBeside(size, [&other] { other.dropLinesSetAside(); });
  dropLinesSetAside();
  theirs.get();
}

std::vector<std::string_view> Document::setAsideLike(const Document& model) {
  std::vector<std::string_view> others;
  bool hasNew = false;
  EntryId next = m_entries[kHead].next;
  for (EntryId id = model.m_entries[kHead].next; id != kNoEntry; id = model.m_entries[id].next) {
    const Entry& entry = model.m_entries[id];
    if (!entry.setAside) continue;
    if (next == kNoEntry || m_entries[next].normal != entry.normal) next = lookUp(entry.normal);
    if (next != kNoEntry && m_entries[next].setAside) {  // when it was read
      next = m_entries[next].next;
      continue;
    }
    if (next == kNoEntry || !m_entries[next].isAsRead() || m_entries[next].textAsRead() != entry.textAsRead()) {
      others.push_back(entry.normal);
      continue;
    }
    m_entries[next].setAside = true;
    m_entries[next].valuesSetAside = entry.valuesSetAside;
    m_valuesSetAside += entry.valuesSetAside;
    next = m_entries[next].next;
    hasNew = true;
  }
  if (hasNew) dropLinesSetAside();
  return others;
}

void Document::putBack(std::string_view normal) {
  const EntryId id = lookUp(normal);
  if (id == kNoEntry || !m_entries[id].setAside) return;
  m_entries[id].setAside = false;
  m_valuesSetAside -= m_entries[id].valuesSetAside;
}

void Document::visitSetAside(const std::function<void(std::string_view, std::string_view)>& visit) const {
  std::string name;
  std::string value;
  std::vector<Line> again;
  for (EntryId id = m_entries[kHead].next; id != kNoEntry; id = m_entries[id].next) {
    if (!m_entries[id].setAside) continue;
    for (const Line& line : bodyOf(m_entries[id], again)) {
      if (line.kind == LineKind::attribute) visit(lineName(line, name), lineValue(line, value));
    }
  }
}

bool Document::isSetAsideUntouched() const {
  return std::all_of(m_entries.begin(), m_entries.end(),
                     [](const Entry& entry) { return !entry.setAside || entry.isAsRead(); });
}

void setAsideEqualEntries(ConfigStore& one, ConfigStore& other, const EqualEntryTest& mayBe) {
  one.document().setAsideEqual(other.document(), mayBe);
}

bool holdsText(const std::string& path, const std::vector<std::string_view>& pieces) {
  FileSystem& files = FileSystem::real();
  const OpenFile file(files, files.open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK, 0));
  struct stat status {};
  if (!file || files.fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode)) return false;
  try {
    return holdsContent(files, file.get(), pieces);
  } catch (const FileError&) {
    return false;
  }
}

void takeApart(ConfigStore& store) { store.document().takeApart(); }

void learnHabits(ConfigStore& store) { store.document().habits(); }

std::vector<std::string_view> setAsideLike(const ConfigStore& model, ConfigStore& store) {
  return store.document().setAsideLike(model.document());
}

void putBack(ConfigStore& store, std::string_view normal) { store.document().putBack(normal); }

bool isSetAsideUntouched(const ConfigStore& store) { return store.document().isSetAsideUntouched(); }

}  // namespace cfgstore
