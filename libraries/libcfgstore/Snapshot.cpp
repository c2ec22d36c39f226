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
  Builder(Snapshot& snapshot, std::span<const std::string_view> pieces) : m_to(snapshot), m_counter(pieces) {}

  void add(std::string_view normal, const EntryLines& lines) {
    SnapshotEntry entry{{}, normal, 0, numberOf(m_to.m_attributes), 0};
    if (m_lineNumbers.size() < lines.size()) m_lineNumbers.resize(lines.size());
    lines.visitPlaces([&](std::size_t place, const Line& line) {
      m_lineNumbers[place] = m_counter.numberOf(line.raw);
      if (line.kind != LineKind::dn) return;
      entry.dn = kept(line, lineValue(line, m_scratch));
      entry.line = m_lineNumbers[place];
    });
    lines.visitByAttribute([&](std::size_t place, const Line& line, bool first) {
      if (first) startAttribute(line);
      SnapshotAttribute& attribute = m_to.m_attributes.back();
      ++attribute.values;
      m_to.m_values.push_back(
          {kept(line, lineValue(line, m_scratch)), m_lineNumbers[place], numberOf(m_to.m_attributes) - 1, false});
    });
    finishAttribute();
    entry.attributes = numberOf(m_to.m_attributes) - entry.firstAttribute;
    m_to.m_entries.push_back(entry);
  }

 private:
  template <class T>
  static std::uint32_t numberOf(const std::vector<T>& list) {
    return static_cast<std::uint32_t>(list.size());
  }

  // What a line holds, as it is where the line is plain, else copied.
  std::string_view kept(const Line& line, std::string_view part) {
    return line.flags == 0 ? part : m_to.m_arena.keep(part);
  }

  void startAttribute(const Line& line) {
    finishAttribute();
    m_to.m_attributes.push_back(
        {kept(line, lineName(line, m_scratch)), numberOf(m_to.m_entries), numberOf(m_to.m_values), 0});
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

  Snapshot& m_to;
  LineCounter m_counter;
  std::size_t m_finished = 0;  // how many attributes have all their values
  std::string m_scratch;
  std::vector<std::string_view> m_texts;
  FirstEqual m_firstEqual;
  std::vector<std::size_t> m_lineNumbers;  // of the entry at hand, by place
};

Snapshot::Snapshot(ConfigStore& store) {
  Document& document = store.document();
  const auto pieces = document.pieces();
  Builder builder(*this, pieces);
  document.visitEntries([&](std::string_view normal, const EntryLines& lines) { builder.add(normal, lines); });
}

std::uint32_t Snapshot::findEntry(std::string_view normal) const {
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
