#include "Document.h"

#include <algorithm>
#include <array>
#include <utility>

#include "LargeMemory.h"
#include "LdifReader.h"
#include "NormalDn.h"
#include "PairReading.h"

namespace cfgstore {
namespace {

// An entry with more lines than this keeps its table of attributes once it was read.
constexpr std::size_t kManyLines = 256;

// The names that give a line of an entry another meaning.
bool isReservedName(std::string_view name) {
  return sameName(name, "dn") || sameName(name, "changetype") || sameName(name, "control");
}

// Whether an attribute that an entry lacks can be written under this name, and read again.
bool canBeNewName(std::string_view name) {
  return isAttributeName(name) && !isReservedName(name) && name.size() <= kMostNameBytes;
}

// Of a text that was read in halves; lines that are not there are those of `other`.
Habits habitsOf(std::span<const LdifContent> halves, const LdifContent* other) {
  std::vector<std::span<const Line>> parts;
  for (const LdifContent& half : halves) {
    parts.emplace_back(half.lines);
    for (const EntrySpan& entry : half.entries) {
      if (entry.alike == kNoEntry) continue;
      const EntrySpan& theirs = other->entries[entry.alike - 1];
      parts.push_back(std::span(other->lines).subspan(theirs.dn + 1, theirs.end - theirs.dn - 1));
    }
  }
  return Habits::of(parts);
}

}  // namespace

// Those that a model has set aside, in the order of its file.
class Document::SetAsideBefore : public KnownEntries {
 public:
  explicit SetAsideBefore(const Document& model) : m_model(model) { expectBehind(kHead); }
  const Entry& expected() const override { return m_expected; }
  void wasThere() override { expectBehind(m_expected.number); }
  void wasRead(std::string_view normal) override {
    const EntryId id = m_model.lookUp(normal);
    if (id != kNoEntry) expectBehind(id);
  }

 private:
  void expectBehind(EntryId id) {
    m_expected.number = m_model.setAsideBehind(id);
    if (m_expected.number == kNoEntry) return;
    const Document::Entry& entry = m_model.m_entries[m_expected.number];
    m_expected = {m_expected.number, entry.textAsRead(), entry.normal, entry.dn, {}};
  }

  const Document& m_model;
  Entry m_expected;
};

// Those that an edited document has set aside, and the rest of its text.
class Document::CutOut : public KnownEntries {
 public:
  explicit CutOut(Document& edited) : m_edited(edited) {
    const std::string_view source = edited.m_source.text();
    EntryId id = edited.setAsideBehind(kHead);
    for (std::string_view piece : edited.pieces()) {
      const bool isSource = piece.data() >= source.data() && piece.data() < source.data() + source.size();
      while (isSource && id != kNoEntry) {
        const std::string_view entry = edited.m_entries[id].textAsRead();
        if (entry.data() + entry.size() > piece.data() + piece.size()) break;
        add(piece.substr(0, static_cast<std::size_t>(entry.data() - piece.data())));
        m_cuts.push_back({m_size, id});
        piece.remove_prefix(static_cast<std::size_t>(entry.data() + entry.size() - piece.data()));
        id = edited.setAsideBehind(id);
      }
      add(piece);
    }
    expect(0);
  }

  std::span<const std::string_view> rest() const { return m_rest; }

  const Entry& expected() const override { return m_expected; }
  void wasThere() override { expect(m_next + 1); }
  void wasRead(std::string_view) override {}

 private:
  struct Cut {
    std::size_t at;
    EntryId id;
  };

  void add(std::string_view text) {
    m_rest.push_back(text);
    m_size += text.size();
  }

  void expect(std::size_t cut) {
    m_next = cut;
    m_expected.number = kNoEntry;
    if (cut == m_cuts.size()) return;
    const Document::Entry& entry = m_edited.m_entries[m_cuts[cut].id];
    m_expected = {m_cuts[cut].id, entry.textAsRead(), entry.normal, entry.dn, m_cuts[cut].at};
  }

  const Document& m_edited;
  std::vector<std::string_view> m_rest;
  std::size_t m_size = 0;
  std::vector<Cut> m_cuts;
  std::size_t m_next = 0;
  Entry m_expected;
};

Document::Document(SourceText source, std::vector<Problem>& problems) : m_source(std::move(source)) {
  LdifContent content;
  if (readInTurn(content)) {
    take(std::move(content), nullptr);
  } else {
    read(problems, nullptr, nullptr);
  }
}

Document::Document(SourceText source, std::vector<Problem>& problems, const Document& model)
    : m_source(std::move(source)) {
  SetAsideBefore known(model);
  read(problems, &model, &known);
}

Document::Document(Document& edited, std::vector<Problem>& problems) {
  CutOut known(edited);
  m_source = SourceText(known.rest());
  read(problems, &edited, &known);
}

void Document::read(std::vector<Problem>& problems, const Document* model, KnownEntries* known) {
  LdifContent content = readLdif(m_source.text(), m_arena, known);
  problems = std::move(content.problems);
  if (problems.empty()) take(std::move(content), model);
}

// False when there is no turn, or the text is not without problems: then it has to be read by itself.
bool Document::readInTurn(LdifContent& content) {
  PairReading::Turn* const turn = PairReading::Turn::take();
  const std::size_t middle = turn == nullptr ? std::string_view::npos : upperHalfOf(m_source.text());
  if (middle == std::string_view::npos) {
    if (turn != nullptr) turn->pass();
    return false;
  }
  const std::string_view text = m_source.text();
  LdifContent halves[2];  // the lower one and the upper one
  const auto read = [&](std::size_t half, const LdifContent* other) {
    halves[half] = half == 0 ? readBeside(other, text.substr(0, middle), m_arena, text.size())
                             : readBeside(other, text.substr(middle), m_arena, text.size() - middle);
    return halves[half].problems.empty();
  };
  const std::size_t first = turn->side() == PairReading::Side::lowerFirst ? 0 : 1;
  bool isWell = read(first, nullptr);
  {
    const PairReading::Exchange exchange(*turn, {this, isWell ? &halves[first] : nullptr});
    isWell = isWell && read(1 - first, exchange.theirs().content);
    if (isWell && turn->learnsHabits()) m_habits = habitsOf(halves, exchange.theirs().content);
    m_readBeside = exchange.theirs().document;
  }
  if (!isWell || !join(halves[0], halves[1])) return false;
  content = std::move(halves[0]);
  return true;
}

void Document::take(LdifContent content, const Document* model) {
  m_lines = std::move(content.lines);
  m_index = std::move(content.index);
  const std::span<const Line> lines(m_lines);
  const std::size_t count = content.entries.size();
  reserveLarge(m_entries, count + 1);
  m_entries.resize(count + 1);
  m_entries[kHead].gap = lines.first(count == 0 ? lines.size() : content.entries[0].first);
  m_entries[kHead].removed = true;
  for (std::size_t i = 0; i < count; ++i) {
    const EntrySpan& span = content.entries[i];
    const std::size_t next = i + 1 < count ? content.entries[i + 1].first : lines.size();
    Entry& entry = m_entries[i + 1];
    entry.body = lines.subspan(span.first, span.end - span.first);
    entry.gap = lines.subspan(span.end, next - span.end);
    entry.normal = span.normal;
    entry.lineAsRead = static_cast<std::uint32_t>(span.line);
    entry.previous = static_cast<EntryId>(i);
    m_entries[i].next = static_cast<EntryId>(i + 1);
    m_longestNormal = std::max(m_longestNormal, span.normal.size());
    if (span.known != kNoEntry) {
      takeOver(span.text, model->m_entries[span.known], entry);
      continue;
    }
    entry.dn = lines[span.dn];
    if (span.alike == kNoEntry) continue;
    entry.body = {};
    entry.aside = span.text;
    entry.alike = true;
    m_linesAlike += span.endLine - span.line;
    m_hasAllLines = false;
  }
  m_last = static_cast<EntryId>(count);
  if (!m_lines.empty()) m_lastLine = m_lines.back().kind;
  if (m_entries[m_last].setAside && m_entries[m_last].gap.empty()) m_lastLine = LineKind::attribute;
}

// The next entry behind this one that is set aside and as it was read.
EntryId Document::setAsideBehind(EntryId entry) const {
  do entry = m_entries[entry].next;
  while (entry != kNoEntry && !(m_entries[entry].setAside && m_entries[entry].isAsRead()));
  return entry;
}

// `like` has the same text, and is set aside.
void Document::takeOver(std::string_view text, const Entry& like, Entry& entry) {
  entry.aside = text;
  entry.dn = like.dn;
  entry.dn.raw = text.data() + (like.dn.raw - like.textAsRead().data());
  entry.setAside = true;
  entry.valuesSetAside = like.valuesSetAside;
  m_valuesSetAside += like.valuesSetAside;
  m_hasAllLines = false;
}

EntryId Document::lookUp(std::string_view normal) const {
  return m_index.find(normal, [this](EntryId id) { return m_entries[id].normal; });
}

ResultCode Document::find(std::string_view dn, EntryId& entry) {
  if (m_recent != kNoEntry && m_recentDn == dn) {
    entry = m_recent;
    return kSuccess;
  }
  EntryId found = lookUp(dn);  // a normal form is its own normal form
  if (found == kNoEntry) {
    const auto normal = normalDn(dn);
    if (!normal) return kInvalidDnSyntax;
    found = lookUp(*normal);
    if (found == kNoEntry) return kNoSuchObject;
  }
  m_recent = kNoEntry;
  m_recentDn.assign(dn);
  m_recent = entry = found;
  return kSuccess;
}

const EntryLines& Document::linesOf(EntryId id) {
  Entry& entry = m_entries[id];
  if (entry.lines) return *entry.lines;
  if (entry.body.size() > kManyLines) {
    auto lines = std::make_unique<EntryLines>();
    lines->assign(entry.body);
    entry.lines = std::move(lines);
    return *entry.lines;
  }
  if (m_readEntry != id) {
    m_readEntry = kNoEntry;
    std::vector<Line> again;
    m_readLines.assign(bodyOf(entry, again));
    m_readEntry = id;
  }
  return m_readLines;
}

EntryLines& Document::editable(EntryId id) {
  if (!m_entries[id].lines) {
    m_entries[id].lines = std::make_unique<EntryLines>(linesOf(id));
    m_readEntry = kNoEntry;
  }
  m_entries[id].edited = true;
  m_edited = true;
  ++m_edits;
  return *m_entries[id].lines;
}

const Habits& Document::habits() {
  if (!m_habits) {
    TextArena unused;
    m_habits = Habits::of(m_hasAllLines ? m_lines : readLdif(m_source.text(), unused).lines);
  }
  return *m_habits;
}

Line Document::newLine(std::string_view name, std::string_view value) {
  m_newLine.clear();
  appendLine(m_newLine, habits(), name, value);
  const std::string_view text = m_arena.keep(m_newLine);
  std::string scratch;
  Line line;
  parseLine(text, scratch, line);
  return line;
}

ResultCode Document::visitSubordinates(std::string_view baseDn, int scope,
                                       const std::function<void(std::string_view)>& visit) {
  const auto base = normalDn(baseDn);
  if (!base) return kInvalidDnSyntax;
  const auto isInScope = [&](std::string_view normal) {
    if (scope == 0 || normal == *base) return scope != 1 && normal == *base;
    return scope == 1 ? parentOfNormalDn(normal) == *base : isWithinNormalDn(normal, *base);
  };
  std::string scratch;
  for (EntryId id = m_entries[kHead].next; id != kNoEntry; id = m_entries[id].next) {
    const Entry& entry = m_entries[id];
    if (!entry.removed && !entry.setAside && isInScope(entry.normal)) visit(lineValue(entry.dn, scratch));
  }
  return kSuccess;
}

void Document::visitEntries(const std::function<void(const Visited& entry)>& visit) const {
  std::vector<Line> again;
  for (EntryId id = m_entries[kHead].next; id != kNoEntry; id = m_entries[id].next) {
    const Entry& entry = m_entries[id];
    if (entry.removed) continue;
    Visited visited{id, entry.normal, entry.dn, entry.lineAsRead, entry.valuesSetAside, {}, nullptr};
    if (!entry.setAside) {
      visited.valuesSetAside = 0;
      if (entry.edited || !entry.isAsRead()) {
        visited.edited = entry.lines.get();
      } else {
        visited.asRead = bodyOf(entry, again);
      }
    }
    visit(visited);
  }
}

ResultCode Document::addValue(std::string_view dn, std::string_view name, std::string_view value) {
  EntryId id = kNoEntry;
  if (const ResultCode rc = find(dn, id); rc != kSuccess) return rc;
  const EntryLines& lines = linesOf(id);
  const EntryLines::Attribute attribute = lines.find(name);
  if (attribute == EntryLines::kNone) {
    if (!canBeNewName(name)) return kUndefinedAttributeType;
    const Line line = newLine(name, value);
    editable(id).appendNew(line);
  } else if (!lines.hasValue(attribute, value)) {
    const Line line = newLine(lines.nameAsWritten(attribute), value);
    editable(id).append(attribute, line);
  }
  return kSuccess;
}

ResultCode Document::delValues(std::string_view dn, std::string_view name, std::span<const std::string_view> values) {
  EntryId id = kNoEntry;
  if (const ResultCode rc = find(dn, id); rc != kSuccess) return rc;
  if (values.empty()) return kSuccess;
  const EntryLines& lines = linesOf(id);
  const EntryLines::Attribute attribute = lines.find(name);
  if (attribute == EntryLines::kNone) return kNoSuchAttribute;
  for (const std::string_view value : values) {
    if (!lines.hasValue(attribute, value)) return kNoSuchAttribute;
  }
  EntryLines& edited = editable(id);
  for (const std::string_view value : values) edited.remove(attribute, value);
  return kSuccess;
}

ResultCode Document::setValue(std::string_view dn, std::string_view name, std::string_view value) {
  EntryId id = kNoEntry;
  if (const ResultCode rc = find(dn, id); rc != kSuccess) return rc;
  const EntryLines& lines = linesOf(id);
  const EntryLines::Attribute attribute = lines.find(name);
  if (attribute == EntryLines::kNone) return addValue(dn, name, value);
  if (lines.isOnlyValue(attribute, value)) return kSuccess;
  const Line line = newLine(lines.nameAsWritten(attribute), value);
  editable(id).replace(attribute, value, line);
  return kSuccess;
}

ResultCode Document::addEntry(std::string_view dn, std::string_view cn, std::string_view objectClass,
                              std::string_view secondObjectClass) {
  const auto normal = normalDn(dn);
  if (!normal || normal->empty()) return kInvalidDnSyntax;
  if (lookUp(*normal) != kNoEntry) return kEntryAlreadyExists;

  const EntryId after = placeFor(*normal);
  const std::string className = spellingNear(after, "objectClass", "objectClass");
  const std::string cnName = spellingNear(after, "cn", "cn");
  std::vector<Line> lines{newLine("dn", dn.substr(std::min(dn.find_first_not_of(' '), dn.size()))),
                          newLine(className, objectClass)};
  if (secondObjectClass != objectClass) lines.push_back(newLine(className, secondObjectClass));
  lines.push_back(newLine(cnName, cn));

  Entry entry;
  entry.lines = std::make_unique<EntryLines>();
  entry.lines->assign(lines);
  entry.normal = m_arena.keep(*normal);
  entry.dn = lines[0];
  entry.edited = true;
  if (m_separator.empty()) m_separator = writeSeparator(habits());
  m_index.reserve(1);
  if (m_lastChild) m_lastChild->try_emplace(parentOfNormalDn(entry.normal), kNoEntry);
  const auto id = static_cast<EntryId>(m_entries.size());
  m_entries.push_back(std::move(entry));  // the last step that can fail
  m_index.insert(m_entries[id].normal, id);
  link(id, after);
  m_edited = true;
  ++m_edits;
  return kSuccess;
}

ResultCode Document::removeEntry(std::string_view dn) {
  EntryId id = kNoEntry;
  if (const ResultCode rc = find(dn, id); rc != kSuccess) return rc;
  Entry& entry = m_entries[id];
  m_index.erase(entry.normal, id);
  entry.removed = true;
  entry.lines.reset();
  m_recent = kNoEntry;
  if (m_readEntry == id) m_readEntry = kNoEntry;
  m_edited = true;
  ++m_edits;
  return kSuccess;
}

}  // namespace cfgstore
