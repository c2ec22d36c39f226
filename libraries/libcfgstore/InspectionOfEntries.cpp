#include <algorithm>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "EntryLines.h"
#include "FirstEqual.h"
#include "InspectionParts.h"
#include "LineCounter.h"
#include "NormalDn.h"
#include "ShownText.h"

namespace cfgstore {
namespace {

using enum RemarkKind;

constexpr std::string_view kRoot = "CN=CONFIGURATION";

// An RDN of more pairs than this is not looked for among the attributes: pairs times values would be too many.
constexpr std::size_t kMostPairs = 8;

std::string quoted(std::string_view name) { return "\"" + shownName(name) + "\""; }
std::string onLine(std::size_t line) { return "line " + std::to_string(line); }

// The length of `normal` up to the first `separator` that is not escaped.
std::size_t lengthUpTo(std::string_view normal, char separator) {
  std::size_t at = 0;
  while (at < normal.size() && normal[at] != separator) at += normal[at] == '\\' ? 2U : 1U;
  return std::min(at, normal.size());
}

// True when a DN that can be read uses what only older servers write.
bool isOldSpelling(std::string_view dn) {
  for (std::size_t at = 0; at < dn.size(); ++at) {
    if (dn[at] == '\\') {
      ++at;
    } else if (dn[at] == ';' || dn[at] == '"') {
      return true;
    }
  }
  return false;
}

char upper(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 0x20) : c; }

// True when `value`, as the value of `type`, has the normal form `pair`, which is TYPE=NORMAL VALUE.
bool isNamedBy(std::string_view pair, std::string_view type, std::string_view value) {
  const std::string_view named = pair.substr(type.size() + 1);
  const bool plain = std::equal(named.begin(), named.end(), value.begin(), value.end(),
                                [](char a, char b) { return a == upper(b) && a != '\\'; });
  if (plain) return true;
  std::string dn(type);
  dn += '=';
  for (const char c : value) {
    static constexpr std::string_view kDigits = "0123456789ABCDEF";
    const auto byte = static_cast<unsigned char>(c);
    const bool harmless = byte >= 0x80 || (upper(c) >= 'A' && upper(c) <= 'Z') || (c >= '0' && c <= '9');
    if (harmless) {
      dn += c;
    } else {
      dn.append(1, '\\').append(1, kDigits[byte >> 4]).append(1, kDigits[byte & 15]);
    }
  }
  return normalDn(dn) == pair;
}

class EntryInspector {
 public:
  EntryInspector(std::string_view text, const LdifContent& content, RemarkList& remarks)
      : m_content(content), m_pieces(1, text), m_counter(m_pieces), m_remarks(remarks) {}

  // `id` is the number of the entry, from 1 on.
  void inspect(EntryId id);
  std::size_t values() const { return m_valueCount; }

 private:
  struct Value {
    std::size_t line;     // its number
    std::size_t ordinal;  // among the attribute lines of the entry
    const Line* at;
  };

  void readEntry(const EntrySpan& span);
  void inspectPlace(EntryId id);
  void inspectNaming(const EntrySpan& span);
  void inspectAttribute(std::span<const Value> values);
  void inspectRepetition(std::span<const Value> values, std::string_view name);

  const LdifContent& m_content;
  std::vector<std::string_view> m_pieces;
  LineCounter m_counter;
  RemarkList& m_remarks;
  std::size_t m_valueCount = 0;

  EntryLines m_lines;           // of the entry at hand
  std::vector<Value> m_values;  // of the entry at hand, by attribute
  std::vector<Value> m_byPlace;
  std::vector<std::string_view> m_texts;
  FirstEqual m_firstEqual;
  std::string m_scratch;
};

void EntryInspector::inspect(EntryId id) {
  const EntrySpan& span = m_content.entries[id - 1];
  readEntry(span);
  if (span.named) inspectPlace(id);
  if (!span.faulty) {
    if (m_values.empty()) {
      m_remarks.add(span.line, noAttributes, [] { return "an entry without attributes"; });
    } else if (m_lines.find("objectClass") == EntryLines::kNone) {
      m_remarks.add(span.line, noObjectClass, [] { return "an entry without an object class"; });
    }
    if (span.named && !m_values.empty()) inspectNaming(span);
  }
}

// Reads the lines of an entry and inspects its attributes one by one.
void EntryInspector::readEntry(const EntrySpan& span) {
  m_lines.assign(std::span(m_content.lines).subspan(span.first, span.end - span.first));
  m_byPlace.clear();
  m_byPlace.resize(m_lines.size());
  std::size_t ordinal = 0;
  m_lines.visitPlaces([&](std::size_t place, const Line& line) {
    if (line.kind == LineKind::attribute) m_byPlace[place] = {m_counter.numberOf(line.raw), ordinal++, &line};
  });
  m_values.clear();
  std::size_t first = 0;
  m_lines.visitByAttribute([&](std::size_t place, const Line&, bool isFirst) {
    if (isFirst && !m_values.empty()) inspectAttribute(std::span(m_values).subspan(first));
    if (isFirst) first = m_values.size();
    m_values.push_back(m_byPlace[place]);
  });
  if (!m_values.empty()) inspectAttribute(std::span(m_values).subspan(first));
  m_valueCount += m_values.size();
}

// Where the entry stands in the tree and in the file.
void EntryInspector::inspectPlace(EntryId id) {
  const EntrySpan& span = m_content.entries[id - 1];
  if (span.dn < span.end && isOldSpelling(lineValue(m_content.lines[span.dn], m_scratch))) {
    m_remarks.add(span.line, dnSpelling,
                  [&] { return "a DN with quotes or semicolons; it is read as \"" + shownDn(span.normal) + "\""; });
  }
  if (span.normal == kRoot) return;
  const std::string_view parent = parentOfNormalDn(span.normal);
  const auto keyOf = [&](EntryId entry) { return m_content.entries[entry - 1].normal; };
  const EntryId above = parent.empty() ? kNoEntry : m_content.index.find(parent, keyOf);
  if (above != kNoEntry && above > id) {
    m_remarks.add(span.line, parentBelow, [&] {
      return "an entry above its parent, which stands on " + onLine(m_content.entries[above - 1].line);
    });
  }
  if (above != kNoEntry) return;
  if (isWithinNormalDn(span.normal, kRoot)) {
    m_remarks.add(span.line, parentMissing,
                  [&] { return "an entry whose parent \"" + shownDn(parent) + "\" is not in the file"; });
  } else {
    m_remarks.add(span.line, outsideConfiguration, [] {
      return "an entry that is not below \"cn=configuration\"; a migration looks neither at it nor at what is below it";
    });
  }
}

// Whether the entry has the values that its DN begins with.
void EntryInspector::inspectNaming(const EntrySpan& span) {
  std::string_view rdn = span.normal.substr(0, lengthUpTo(span.normal, ','));
  std::vector<std::string_view> pairs;
  while (!rdn.empty() && pairs.size() <= kMostPairs) {
    pairs.push_back(rdn.substr(0, lengthUpTo(rdn, '+')));
    rdn.remove_prefix(std::min(rdn.size(), pairs.back().size() + 1));
  }
  if (pairs.size() > kMostPairs) return;
  for (const std::string_view pair : pairs) {
    const std::string_view type = pair.substr(0, pair.find('='));
    if (pair.substr(type.size() + 1).starts_with('#')) continue;  // encoded, and of a kind that no text has
    const EntryLines::Attribute attribute = m_lines.find(type);
    bool found = false;
    if (attribute != EntryLines::kNone) {
      m_lines.visitValues(attribute, [&](std::string_view value) { found = found || isNamedBy(pair, type, value); });
    }
    if (found) continue;
    m_remarks.add(span.line, namingValueMissing, [&] {
      return "the value of " + quoted(type) + " that the DN begins with is not among the attributes of the entry";
    });
  }
}

// `values` are those of one attribute, in the order of their lines.
void EntryInspector::inspectAttribute(std::span<const Value> values) {
  const std::string name(lineName(*values.front().at, m_scratch));
  for (const Value& value : values) {
    const std::string_view spelling = lineName(*value.at, m_scratch);
    if (spelling == name) continue;
    m_remarks.add(value.line, nameSpelling, [&] {
      return quoted(spelling) + " is the attribute " + quoted(name) + " of " + onLine(values.front().line) +
             " in different letter case";
    });
    break;
  }
  for (std::size_t i = 1; i < values.size(); ++i) {
    if (values[i].ordinal == values[i - 1].ordinal + 1) continue;
    m_remarks.add(values[i].line, scatteredValues, [&] {
      return "a value of " + quoted(name) + " apart from the one on " + onLine(values[i - 1].line);
    });
    break;
  }
  if (values.size() > 1) inspectRepetition(values, name);
}

void EntryInspector::inspectRepetition(std::span<const Value> values, std::string_view name) {
  TextArena decoded;
  m_texts.clear();
  for (const Value& value : values) {
    const std::string_view text = lineValue(*value.at, m_scratch);
    m_texts.push_back(value.at->flags == 0 ? text : decoded.keep(text));
  }
  const auto first = m_firstEqual.find(m_texts);
  for (std::size_t i = 0; i < values.size(); ++i) {
    if (first[i] == i) continue;
    m_remarks.add(values[i].line, duplicateValue, [&] {
      return "the same value of " + quoted(name) + " as on " + onLine(values[first[i]].line) + "; it is read once";
    });
  }
}

}  // namespace

std::size_t remarkOnEntries(std::string_view text, const LdifContent& content, RemarkList& remarks) {
  EntryInspector inspector(text, content, remarks);
  for (std::size_t i = 0; i < content.entries.size(); ++i) inspector.inspect(static_cast<EntryId>(i + 1));
  return inspector.values();
}

}  // namespace cfgstore
