// DocumentText.cpp -- puts the text of a document together again from what was read and what was written anew.

#include <cstring>

#include "Document.h"

namespace cfgstore {

// Invariant: everything that was added so far is in m_pieces, but for one run of empty lines that may be held back.
class Document::Renderer {
 public:
  explicit Renderer(Document& document) : m_document(document), m_source(document.m_source.text()) {
    const auto last = document.m_lastLine;
    const bool ends = !last || m_source.ends_with('\n') || *last == LineKind::byteOrderMark;
    if (!ends) m_unterminated = m_source.data() + m_source.size();
  }

  std::vector<std::string_view> render() {
    const auto& entries = m_document.m_entries;
    addGap(entries[kHead].gap);
    for (EntryId id = entries[kHead].next; id != kNoEntry; id = entries[id].next) addEntry(entries[id]);
    // When the last entry is removed, the empty line above it goes too, unless the file always ended in one.
    if (m_document.m_lastLine == LineKind::blank) releaseBlank();
    return std::move(m_pieces);
  }

 private:
  void addEntry(const Entry& entry) {
    if (entry.removed) {
      const bool twice = m_separated && !entry.gap.empty() && entry.gap.front().kind == LineKind::blank;
      addGap(entry.gap.subspan(twice ? 1 : 0));
      return;
    }
    if (!m_separated) add(m_document.m_separator);
    if (entry.edited) {
      entry.lines->visitLines([this](const Line& line) { add(line.text()); });
    } else {
      add(entry.textAsRead());
    }
    m_separated = false;
    addGap(entry.gap);
  }

  void addGap(std::span<const Line> gap) {
    if (gap.empty()) return;
    const bool endsBlank = gap.back().kind == LineKind::blank;
    addLines(gap.first(gap.size() - (endsBlank ? 1 : 0)));
    m_separated = gap.back().kind != LineKind::comment;  // a comment would become one of the entry below it
    if (!endsBlank) return;
    releaseBlank();
    m_blank = gap.back().text();
  }

  void addLines(std::span<const Line> lines) {
    if (lines.empty()) return;
    const Line& last = lines.back();
    add({lines.front().raw, static_cast<std::size_t>(last.raw + last.size - lines.front().raw)});
  }

  void releaseBlank() {
    if (m_blank.empty()) return;
    const std::string_view blank = m_blank;
    m_blank = {};
    add(blank);
  }

  // Pieces that follow each other in the source become one.
  void add(std::string_view text) {
    if (text.empty()) return;
    releaseBlank();
    if (!m_pieces.empty()) {
      std::string_view& last = m_pieces.back();
      const char* const end = last.data() + last.size();
      if (end == text.data() && isInSource(text)) {
        last = {last.data(), last.size() + text.size()};
        return;
      }
      if (end == m_unterminated) m_pieces.push_back(m_document.habits().lineEnd);
    }
    m_pieces.push_back(text);
  }

  bool isInSource(std::string_view text) const {
    return text.data() >= m_source.data() && text.data() < m_source.data() + m_source.size();
  }

  Document& m_document;
  std::string_view m_source;
  std::vector<std::string_view> m_pieces;
  std::string_view m_blank;              // held back until something follows it
  bool m_separated = true;               // an entry can follow without an empty line
  const char* m_unterminated = nullptr;  // the end of a last line that has no line end
};

const std::vector<std::string_view>& Document::pieces() {
  if (m_piecesEdits != m_edits) {
    m_pieces = m_edited ? Renderer(*this).render() : std::vector<std::string_view>{m_source.text()};
    m_piecesEdits = m_edits;
  }
  return m_pieces;
}

bool Document::changed() {
  if (!m_edited) return false;
  std::string_view source = m_source.text();
  for (const std::string_view piece : pieces()) {
    if (piece.size() > source.size()) return true;
    if (piece.data() != source.data() && std::memcmp(piece.data(), source.data(), piece.size()) != 0) return true;
    source.remove_prefix(piece.size());
  }
  return !source.empty();
}

}  // namespace cfgstore
