#include "Snapshot.h"

#include <algorithm>
#include <numeric>

#include "Document.h"
#include "FirstEqual.h"
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
  Builder(const Snapshot& snapshot, TextArena& arena, std::span<const std::string_view> pieces,
          std::size_t firstLine = 1)
      : m_to(snapshot),
        m_arena(arena),
        m_countsLines(!pieces.empty()),
        m_counter(pieces, firstLine),
        m_finished(snapshot.m_attributes.size()) {}

  void add(std::string_view normal, const EntryLines& lines) {
    SnapshotEntry entry;
    entry.normal = normal;
    entry.firstNumber = m_nextNumber;
    const std::size_t valuesBefore = m_to.m_values.size();
    addValues(numberOf(m_to.m_entries), lines, entry);
    m_nextNumber += static_cast<std::uint32_t>(m_to.m_values.size() - valuesBefore);
    m_to.m_entries.push_back(entry);
  }

  // Fills in all of the entry that comes from its lines. `number` is what it has among the entries.
  void addValues(std::uint32_t number, const EntryLines& lines, SnapshotEntry& entry) {
    m_entry = number;
    entry.firstAttribute = numberOf(m_to.m_attributes);
    if (m_lineNumbers.size() < lines.size()) m_lineNumbers.resize(lines.size());
    lines.visitPlaces([&](std::size_t place, const Line& line) {
      m_lineNumbers[place] = numberOf(line.raw);
      if (line.kind != LineKind::dn) return;
      entry.dn = kept(line, lineValue(line, m_scratch));
      entry.line = static_cast<std::uint32_t>(m_lineNumbers[place]);
    });
    lines.visitByAttribute([&](std::size_t place, const Line& line, bool first) {
      if (first) startAttribute(line);
      SnapshotAttribute& attribute = m_to.m_attributes.back();
      ++attribute.values;
      SnapshotValue& value = m_to.m_values.emplace_back();
      value.value = kept(line, lineValue(line, m_scratch));
      value.line = static_cast<std::uint32_t>(m_lineNumbers[place]);
      value.attribute = (numberOf(m_to.m_attributes) - 1) & 0x7fffffffU;
    });
    finishAttribute();
    entry.attributes = numberOf(m_to.m_attributes) - entry.firstAttribute;
  }

  void addSetAside(EntryId id, std::string_view normal, const Line& dn, std::size_t values) {
    m_to.m_entries.push_back({kept(dn, lineValue(dn, m_scratch)), normal, static_cast<std::uint32_t>(numberOf(dn.raw)),
                              numberOf(m_to.m_attributes), 0, m_nextNumber, id, true});
    m_nextNumber += static_cast<std::uint32_t>(values);
  }

 private:
  template <class T>
  static std::uint32_t numberOf(const std::vector<T>& list) {
    return static_cast<std::uint32_t>(list.size());
  }

  // Of a line, by where it begins.
  std::size_t numberOf(const char* line) { return m_countsLines ? m_counter.numberOf(line) : 0; }

  // What a line holds, as it is where the line is plain, else copied.
  std::string_view kept(const Line& line, std::string_view part) { return line.flags == 0 ? part : m_arena.keep(part); }

  void startAttribute(const Line& line) {
    finishAttribute();
    m_to.m_attributes.push_back({kept(line, lineName(line, m_scratch)), m_entry, numberOf(m_to.m_values), 0});
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
  bool m_countsLines;
  LineCounter m_counter;
  std::size_t m_finished;  // how many attributes have all their values
  std::uint32_t m_entry = 0;
  std::uint32_t m_nextNumber = 0;
  std::string m_scratch;
  std::vector<std::string_view> m_texts;
  FirstEqual m_firstEqual;
  std::vector<std::size_t> m_lineNumbers;  // of the entry at hand, by place
};

Snapshot::Snapshot(ConfigStore& store, Lines wanted) : m_store(&store) {
  Document& document = store.document();
  const auto pieces = wanted == Lines::counted ? document.pieces() : std::vector<std::string_view>();
  m_entries.reserve(document.mostEntries());
  m_attributes.reserve(document.mostValues());
  m_values.reserve(document.mostValues());
  Builder builder(*this, m_arena, pieces);
  document.visitEntries([&](std::string_view normal, const EntryLines& lines) { builder.add(normal, lines); },
                        [&](EntryId id, std::string_view normal, const Line& dn, std::size_t values) {
                          builder.addSetAside(id, normal, dn, values);
                        });
  m_valuesSetAside = document.valuesSetAside();
}

void Snapshot::unfold(std::uint32_t number) const {
  SnapshotEntry& entry = m_entries[number];
  const std::vector<Line> lines = m_store->document().linesAsRead(entry.id);
  const auto dn = std::find_if(lines.begin(), lines.end(), [](const Line& line) { return line.kind == LineKind::dn; });
  const char* const begin = lines.front().raw;
  const std::string_view text(begin, static_cast<std::size_t>(lines.back().raw + lines.back().size - begin));
  const auto linesAbove = static_cast<std::size_t>(std::count(begin, dn->raw, '\n'));
  m_unfolded.entry = number;
  m_unfolded.attributes = m_attributes.size();
  m_unfolded.values = m_values.size();
  EntryLines read;
  read.assign(lines);
  const std::string_view kept = entry.dn;  // outlives the texts of what is unfolded
  Builder(*this, m_unfolded.arena, std::span(&text, 1), entry.line - linesAbove).addValues(number, read, entry);
  entry.dn = kept;
}

void Snapshot::fold() const {
  if (m_unfolded.entry == kNone) return;
  m_entries[m_unfolded.entry].attributes = 0;
  m_attributes.resize(m_unfolded.attributes);
  m_values.resize(m_unfolded.values);
  m_byName.erase(m_unfolded.entry);
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
  for (std::uint32_t at = m_lastFound; at < m_entries.size() && at - m_lastFound < 2; ++at) {
    if (m_entries[at].normal == normal) return m_lastFound = at;
  }
  const std::uint32_t found = lookUpEntry(normal);
  if (found != kNone) m_lastFound = found;
  return found;
}

std::uint32_t Snapshot::lookUpEntry(std::string_view normal) const {
  if (!m_hasByNormal) {
    EntryIndex index;
    index.reserve(m_entries.size());
    for (std::size_t i = 0; i < m_entries.size(); ++i) index.insert(m_entries[i].normal, static_cast<EntryId>(i));
    m_byNormal = std::move(index);
    m_hasByNormal = true;
  }
  static_assert(kNone == kNoEntry);
  return m_byNormal.find(normal, [this](EntryId entry) { return m_entries[entry].normal; });
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
  const auto known = m_byName.find(entry);
  if (known != m_byName.end()) return known->second;
  Numbers sorted(m_entries[entry].attributes);
  std::iota(sorted.begin(), sorted.end(), m_entries[entry].firstAttribute);
  std::sort(sorted.begin(), sorted.end(), [this](std::uint32_t a, std::uint32_t b) {
    return isLessName(m_attributes[a].name, m_attributes[b].name);
  });
  return m_byName.emplace(entry, std::move(sorted)).first->second;
}

}  // namespace cfgstore
