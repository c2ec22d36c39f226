// Document.h -- an LDIF file as it was read, and the edits made to it since.
//
// The document is not a map that is printed out again: it keeps every byte of the file in its place. An edit changes
// the lines of one entry and nothing else, so that what nobody touched is written back as it was.

#ifndef CFGMIG_LIBCFGSTORE_DOCUMENT_H
#define CFGMIG_LIBCFGSTORE_DOCUMENT_H

#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "ConfigStore.h"
#include "EntryIndex.h"
#include "EntryLines.h"
#include "Line.h"
#include "LineWriter.h"
#include "ResultCode.h"
#include "SourceText.h"
#include "TextArena.h"

namespace cfgstore {

// An operation either succeeds or leaves the document as it was, also when it throws std::bad_alloc.
class Document {
 public:
  // Reads the text; problems, if there are any, go to `problems`, and the document is then not to be used.
  Document(SourceText source, std::vector<Problem>& problems);
  Document(const Document&) = delete;
  Document& operator=(const Document&) = delete;

  // The entry with this DN, or why there is none: kNoSuchObject or kInvalidDnSyntax.
  ResultCode find(std::string_view dn, EntryId& entry);

  // The lines of an entry, by attribute. Valid until the next call on the document.
  const EntryLines& linesOf(EntryId entry);

  // Calls `visit` with the DN, as the file writes it, of each entry in the scope of CfgUtils::getSubordinates, in the
  // order of the file. Scope 2 includes the base itself. kInvalidDnSyntax when `baseDn` is no DN.
  ResultCode visitSubordinates(std::string_view baseDn, int scope, const std::function<void(std::string_view)>& visit);

  // Calls `visit` with each entry in the order of the file: its DN in normal form, and its lines, which are valid
  // during the call. Neither the document nor what it keeps in memory changes.
  void visitEntries(const std::function<void(std::string_view normal, const EntryLines& lines)>& visit) const;

  // The writes of CfgUtils.
  ResultCode addValue(std::string_view dn, std::string_view attribute, std::string_view value);
  ResultCode delValues(std::string_view dn, std::string_view attribute, std::span<const std::string_view> values);
  ResultCode setValue(std::string_view dn, std::string_view attribute, std::string_view value);
  ResultCode addEntry(std::string_view dn, std::string_view cn, std::string_view objectClass,
                      std::string_view secondObjectClass);
  ResultCode removeEntry(std::string_view dn);

  // The content, in pieces to be laid end to end. Valid until the next edit.
  std::vector<std::string_view> pieces();
  bool changed();

  // How many edits there have been; an operation that found nothing to do is none.
  std::size_t edits() const { return m_edits; }

  const SourceText& source() const { return m_source; }

 private:
  // Invariants:
  //   1. Entry 0 is no entry but the head of the file: what stands before the first entry is its `gap`.
  //   2. The entries are linked in the order of the file. A removed entry stays in its place, for its gap.
  //   3. An entry has its own `lines` if it was edited, is new, or is so large that they are worth keeping.
  struct Entry {
    std::span<const Line> body;  // as read; empty for a new entry
    std::span<const Line> gap;   // what stands between this entry and the next
    std::string_view normal;
    std::unique_ptr<EntryLines> lines;
    Line dn;
    EntryId previous = kNoEntry;
    EntryId next = kNoEntry;
    EntryId subtreeEnd = kNoEntry;  // where a search for the end of the subtree last ended
    bool removed = false;
    bool edited = false;
  };
  class Renderer;

  static constexpr EntryId kHead = 0;

  EntryLines& editable(EntryId entry);
  const Habits& habits();
  Line newLine(std::string_view name, std::string_view value);
  EntryId lookUp(std::string_view normal) const;

  // EntryPlacement.cpp: where a new entry goes.
  EntryId placeFor(std::string_view normal);
  EntryId endOfSubtree(EntryId entry);
  EntryId lastChildOf(std::string_view normalParent);
  void link(EntryId entry, EntryId after);
  std::string spellingNear(EntryId entry, std::string_view name, std::string_view usual);

  SourceText m_source;
  TextArena m_arena;
  std::vector<Line> m_lines;  // all of the source, in order; never changes
  std::vector<Entry> m_entries;
  EntryIndex m_index;
  EntryId m_last = kHead;
  bool m_edited = false;
  std::size_t m_edits = 0;
  std::optional<Habits> m_habits;
  std::string m_separator;

  std::string m_recentDn;  // as the caller wrote it
  EntryId m_recent = kNoEntry;
  EntryLines m_readLines;  // of the entry read last
  EntryId m_readEntry = kNoEntry;

  std::size_t m_longestNormal = 0;
  std::optional<std::unordered_map<std::string_view, EntryId, TextHash>> m_lastChild;  // by normal DN of the parent
};

}  // namespace cfgstore

#endif  // CFGMIG_LIBCFGSTORE_DOCUMENT_H
