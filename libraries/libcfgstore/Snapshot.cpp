#include "Snapshot.h"

#include <algorithm>
#include <numeric>

#include "Document.h"
#include "FirstEqual.h"
#include "LargeMemory.h"
#include "LineCounter.h"

namespace cfgstore {
namespace {

// Up to here looking at each one is faster than a sorted list.
constexpr std::size_t kFewAttributes = 32;

char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c | 0x20) : c; }

bool isLessName(std::string_view left, std::string_view right) {
  return std::lexicographical_compare(left.begin(), left.end(), right.begin(), right.end(),
                                      [](char a, char b) { return lower(a) < lower(b); });
}

}  // namespace

class Snapshot::Builder {
 public:
  Builder(const Snapshot& snapshot, TextArena& arena)
      : m_to(snapshot), m_arena(arena), m_finished(snapshot.m_attributes.size()) {}

  // `line` is the number of its dn line, or 0 when lines are not wanted.
  void add(const Document::Visited& visited, std::size_t line) {
    SnapshotEntry entry;
    entry.id = visited.id;
    entry.normal = visited.normal;
    entry.firstNumber = m_nextNumber;
    const std::size_t valuesBefore = m_to.m_values.size();
    if (visited.edited != nullptr) {
      addLines(numberOf(m_to.m_entries), *visited.edited, line, entry);
    } else {
      addLines(numberOf(m_to.m_entries), visited.asRead, line, entry);
    }
    m_nextNumber += static_cast<std::uint32_t>(m_to.m_values.size() - valuesBefore);
    m_to.m_entries.push_back(entry);
  }

  void addSetAside(const Document::Visited& visited, std::size_t line) {
    m_to.m_entries.push_back({kept(visited.dn, lineValue(visited.dn, m_scratch)), visited.normal,
                              static_cast<std::uint32_t>(line), numberOf(m_to.m_attributes), 0, m_nextNumber,
                              visited.id, true});
    m_nextNumber += static_cast<std::uint32_t>(visited.valuesSetAside);
  }

  // Fill in all of the entry that comes from its lines. `number` is what it has among the entries.
  void addLines(std::uint32_t number, std::span<const Line> lines, std::size_t line, SnapshotEntry& entry) {
    if (addGroupedLines(number, lines, line, entry)) return;
    m_lines.assign(lines);
    addLines(number, m_lines, line, entry);
  }

  void addLines(std::uint32_t number, const EntryLines& lines, std::size_t line, SnapshotEntry& entry) {
    begin(number, line, entry);
    if (m_lineNumbers.size() < lines.size()) m_lineNumbers.resize(lines.size());
    lines.visitPlaces([&](std::size_t place, const Line& at) { m_lineNumbers[place] = numberOf(at, entry); });
    lines.visitByAttribute([&](std::size_t place, const Line& at, bool first) {
      if (first) startAttribute(at, lineName(at, m_scratch));
      addValue(at, m_lineNumbers[place]);
    });
    end(entry);
  }

 private:
  template <class T>
  static std::uint32_t numberOf(const std::vector<T>& list) {
    return static_cast<std::uint32_t>(list.size());
  }

  void begin(std::uint32_t number, std::size_t line, SnapshotEntry& entry) {
    m_entry = number;
    entry.firstAttribute = numberOf(m_to.m_attributes);
    entry.line = static_cast<std::uint32_t>(line);
    m_nextLine = 0;
  }

  void end(SnapshotEntry& entry) {
    finishAttribute();
    entry.attributes = numberOf(m_to.m_attributes) - entry.firstAttribute;
  }

  // The number of a line of the entry; to be asked for all of them in their order. Lines above the dn line have none.
  std::uint32_t numberOf(const Line& line, SnapshotEntry& entry) {
    if (line.kind == LineKind::dn) {
      entry.dn = kept(line, lineValue(line, m_scratch));
      m_nextLine = entry.line;
    }
    const std::uint32_t number = m_nextLine;
    if (number != 0) m_nextLine += linesIn(line);
    return number;
  }

  // Of the file that it is written to, where each line has an end.
  static std::uint32_t linesIn(const Line& line) {
    if ((line.flags & Line::kFolded) == 0) return 1;
    const std::string_view text = line.text();
    const auto ends = static_cast<std::uint32_t>(std::count(text.begin(), text.end(), '\n'));
    return ends + (text.ends_with('\n') ? 0U : 1U);
  }

  // As addLines does, if the lines of each attribute follow each other, and there are not so many attributes that
  // looking for one takes longer than a table of them. False if not, with nothing added.
  bool addGroupedLines(std::uint32_t number, std::span<const Line> lines, std::size_t line, SnapshotEntry& entry) {
    begin(number, line, entry);
    const std::size_t values = m_to.m_values.size();
    const std::size_t first = m_to.m_attributes.size();
    for (const Line& at : lines) {
      const std::uint32_t lineNumber = numberOf(at, entry);
      if (at.kind != LineKind::attribute) continue;
      const std::string_view name = lineName(at, m_name);
      const std::size_t count = m_to.m_attributes.size();
      if (count == first || !sameName(m_to.m_attributes[count - 1].name, name)) {
        const auto before = std::span(m_to.m_attributes).subspan(first);
        const bool isBack = std::any_of(before.begin(), before.end(), [&](const SnapshotAttribute& attribute) {
          return sameName(attribute.name, name);
        });
        if (isBack || before.size() > kFewAttributes) {
          m_to.m_values.resize(values);
          m_to.m_attributes.resize(first);
          m_finished = first;
          return false;
        }
        startAttribute(at, name);
      }
      addValue(at, lineNumber);
    }
    end(entry);
    return true;
  }

  // What a line holds, as it is where the line is plain, else copied.
  std::string_view kept(const Line& line, std::string_view part) { return line.flags == 0 ? part : m_arena.keep(part); }

  void startAttribute(const Line& line, std::string_view name) {
    finishAttribute();
    m_to.m_attributes.push_back({kept(line, name), m_entry, numberOf(m_to.m_values), 0});
  }

  void addValue(const Line& line, std::uint32_t number) {
    ++m_to.m_attributes.back().values;
    SnapshotValue& value = m_to.m_values.emplace_back();
    value.value = kept(line, lineValue(line, m_scratch));
    value.line = number;
    value.attribute = (numberOf(m_to.m_attributes) - 1) & 0x7fffffffU;
  }

  void finishAttribute() {
    if (m_finished == m_to.m_attributes.size()) return;
    m_finished = m_to.m_attributes.size();
    const auto values = std::span(m_to.m_values).subspan(m_to.m_attributes.back().firstValue);
    if (values.size() == 1) return;
    m_texts.clear();
    for (const SnapshotValue& value : values) m_texts.push_back(value.value);
    const auto first = m_firstEqual.find(m_texts);
    for (std::size_t i = 0; i < values.size(); ++i) values[i].repeated = first[i] != i;
  }

  const Snapshot& m_to;  // its lists may grow here
  TextArena& m_arena;
  std::size_t m_finished;  // how many attributes have all their values
  std::uint32_t m_entry = 0;
  std::uint32_t m_nextNumber = 0;
  std::uint32_t m_nextLine = 0;  // 0 while there is no number
  std::string m_scratch;
  std::string m_name;
  EntryLines m_lines;
  std::vector<std::string_view> m_texts;
  FirstEqual m_firstEqual;
  std::vector<std::uint32_t> m_lineNumbers;  // of the entry at hand, by place
};

Snapshot::Snapshot(ConfigStore& store, Lines wanted) : m_store(&store) {
  Document& document = store.document();
  reserveLarge(m_entries, document.mostEntries());
  reserveLarge(m_attributes, document.mostValues());
  reserveLarge(m_values, document.mostValues());
  // Edits above an entry move its lines.
  const bool counts = wanted == Lines::counted && document.isEdited();
  LineCounter counter(counts ? std::span(document.pieces()) : std::span<const std::string_view>());
  Builder builder(*this, m_arena);
  document.visitEntries([&](const Document::Visited& entry) {
    const std::size_t line = wanted == Lines::left ? 0 : counts ? counter.numberOf(entry.dn.raw) : entry.lineAsRead;
    if (entry.asRead.empty() && entry.edited == nullptr) {
      builder.addSetAside(entry, line);
    } else {
      builder.add(entry, line);
    }
  });
  m_byNormal = document.index();
  m_numbers.resize(document.mostEntries());
  for (std::uint32_t i = 0; i < m_entries.size(); ++i) m_numbers[m_entries[i].id] = i;
  m_valuesSetAside = document.valuesSetAside();
}

void Snapshot::unfold(std::uint32_t number) const {
  SnapshotEntry& entry = m_entries[number];
  const std::vector<Line> lines = m_store->document().linesAsRead(entry.id);
  m_unfolded.entry = number;
  m_unfolded.attributes = m_attributes.size();
  m_unfolded.values = m_values.size();
  const std::string_view kept = entry.dn;  // outlives the texts of what is unfolded
  Builder(*this, m_unfolded.arena).addLines(number, lines, entry.line, entry);
  entry.dn = kept;
}

void Snapshot::fold() const {
  if (m_unfolded.entry == kNone) return;
  m_entries[m_unfolded.entry].attributes = 0;
  m_attributes.resize(m_unfolded.attributes);
  m_values.resize(m_unfolded.values);
  m_byName->ofEntry.erase(m_unfolded.entry);
  m_unfolded = {};
}

std::uint32_t Snapshot::numberOf(std::uint32_t value) const {
  const SnapshotEntry& entry = m_entries[m_attributes[m_values[value].attribute].entry];
  return entry.firstNumber + (value - m_attributes[entry.firstAttribute].firstValue);
}

void Snapshot::visitSetAside(const std::function<void(std::string_view, std::string_view)>& visit) const {
  if (m_valuesSetAside > 0) m_store->document().visitSetAside(visit);
}

std::uint32_t Snapshot::findEntry(std::string_view normal) const {
  // Mostly whoever asks goes through another configuration, which has nearly the same order.
  const std::uint32_t last = m_lastFound.get();
  std::uint32_t found = kNone;
  for (std::uint32_t at = last; at < m_entries.size() && at - last < 2 && found == kNone; ++at) {
    if (m_entries[at].normal == normal) found = at;
  }
  if (found == kNone) found = lookUpEntry(normal);
  if (found != kNone && found != last) m_lastFound.set(found);
  return found;
}

std::uint32_t Snapshot::lookUpEntry(std::string_view normal) const {
  static_assert(kNone == kNoEntry);
  const EntryId id = m_byNormal.find(normal, [this](EntryId entry) { return m_entries[m_numbers[entry]].normal; });
  return id == kNoEntry ? kNone : m_numbers[id];
}

std::uint32_t Snapshot::findAttribute(std::uint32_t entry, std::string_view name) const {
  const std::uint32_t first = m_entries[entry].firstAttribute;
  const std::uint32_t count = m_entries[entry].attributes;
  if (count <= kFewAttributes) {
    for (std::uint32_t i = first; i < first + count; ++i) {
      if (sameName(m_attributes[i].name, name)) return i;
    }
    return kNone;
  }
  const Numbers& sorted = byName(entry);
  const auto found =
      std::lower_bound(sorted.begin(), sorted.end(), name,
                       [this](std::uint32_t at, std::string_view to) { return isLessName(m_attributes[at].name, to); });
  return found != sorted.end() && sameName(m_attributes[*found].name, name) ? *found : kNone;
}

const Snapshot::Numbers& Snapshot::byName(std::uint32_t entry) const {
  const std::lock_guard lock(m_byName->mutex);
  Numbers& sorted = m_byName->ofEntry[entry];
  if (!sorted.empty()) return sorted;
  Numbers numbers(m_entries[entry].attributes);
  std::iota(numbers.begin(), numbers.end(), m_entries[entry].firstAttribute);
  std::sort(numbers.begin(), numbers.end(), [this](std::uint32_t a, std::uint32_t b) {
    return isLessName(m_attributes[a].name, m_attributes[b].name);
  });
  return sorted = std::move(numbers);
}

}  // namespace cfgstore
