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

class KnownEntries;
struct LdifContent;

// An operation either succeeds or leaves the document as it was, also when it throws std::bad_alloc.
class Document {
 public:
  // Reads the text; problems, if there are any, go to `problems`, and the document is then not to be used. It is read
  // beside another one if this thread has a turn to do so (PairReading.h).
  Document(SourceText source, std::vector<Problem>& problems);

  // The same, but for entries that `model` has set aside and that stand here with the very same bytes: these are set
  // aside at once and not taken apart. Others of them may stand here as well, at other places.
  Document(SourceText source, std::vector<Problem>& problems, const Document& model);

  // Reads the content of `edited` as if it had been saved. Entries that are set aside there are set aside here, and
  // not even copied: `edited` must outlive this document, and stay as it is. Lines are numbered as in that file.
  Document(Document& edited, std::vector<Problem>& problems);
  Document(const Document&) = delete;
  Document& operator=(const Document&) = delete;

  // The entry with this DN, or why there is none: kNoSuchObject or kInvalidDnSyntax.
  ResultCode find(std::string_view dn, EntryId& entry);

  // The lines of an entry, by attribute. Valid until the next call on the document.
  const EntryLines& linesOf(EntryId entry);

  // Calls `visit` with the DN, as the file writes it, of each entry in the scope of CfgUtils::getSubordinates, in the
  // order of the file. Scope 2 includes the base itself. kInvalidDnSyntax when `baseDn` is no DN.
  ResultCode visitSubordinates(std::string_view baseDn, int scope, const std::function<void(std::string_view)>& visit);

  // An entry as visitEntries shows it.
  struct Visited {
    EntryId id;
    std::string_view normal;
    const Line& dn;
    std::size_t lineAsRead;        // the number of its dn line in the file; 0 for a new entry
    std::size_t valuesSetAside;    // 0 unless it is set aside, and then its lines are not shown
    std::span<const Line> asRead;  // its lines if it is as it was read; valid during the call
    const EntryLines* edited;      // otherwise
  };

  // Calls `visit` with each entry in the order of the file. Neither the document nor what it keeps in memory changes.
  void visitEntries(const std::function<void(const Visited& entry)>& visit) const;

  // Finds entries that are not removed by the normal forms of their DNs.
  const EntryIndex& index() const { return m_index; }

  // Not less than there are entries, and values in those that are not set aside; about as many.
  std::size_t mostEntries() const { return m_entries.size(); }
  std::size_t mostValues() const { return m_lines.size() + m_linesAlike + m_edits; }

  // The lines of an entry as it was read, comments above the dn line included.
  std::vector<Line> linesAsRead(EntryId entry) const;

  // Sets entries aside: visitSubordinates leaves them out. They are found, read, written and saved as before.
  // The first sets aside, in both documents, what both hold alike (EqualEntries.h) and `mayBe` agrees to; the second
  // what `model` has set aside and this document holds with the very same bytes, and returns the normal DNs of the
  // others. Entries that were edited are never set aside.
  // `mayBe` is asked in several threads at once.
  using EntryTest = std::function<bool(std::string_view normal, std::span<const Line> lines)>;
  void setAsideEqual(Document& other, const EntryTest& mayBe);
  void takeApart();  // what was read beside another document, and is not set aside
  std::vector<std::string_view> setAsideLike(const Document& model);
  void putBack(std::string_view normal);

  // How the file is written, which new lines follow. Looked for at the first write otherwise, and then by reading the
  // whole text again when entries are set aside.
  const Habits& habits();

  // How many values the entries have that are set aside, and whether all these entries are as they were read.
  std::size_t valuesSetAside() const { return m_valuesSetAside; }
  void visitSetAside(const std::function<void(std::string_view name, std::string_view value)>& visit) const;
  bool isSetAsideUntouched() const;

  // The writes of CfgUtils.
  ResultCode addValue(std::string_view dn, std::string_view attribute, std::string_view value);
  ResultCode delValues(std::string_view dn, std::string_view attribute, std::span<const std::string_view> values);
  ResultCode setValue(std::string_view dn, std::string_view attribute, std::string_view value);
  ResultCode addEntry(std::string_view dn, std::string_view cn, std::string_view objectClass,
                      std::string_view secondObjectClass);
  ResultCode removeEntry(std::string_view dn);

  // The content, in pieces to be laid end to end. Valid until the next edit.
  const std::vector<std::string_view>& pieces();
  bool changed();
  bool isEdited() const { return m_edited; }  // perhaps to what it was before

  // How many edits there have been; an operation that found nothing to do is none.
  std::size_t edits() const { return m_edits; }

  const SourceText& source() const { return m_source; }

 private:
  // Invariants:
  //   1. Entry 0 is no entry but the head of the file: what stands before the first entry is its `gap`.
  //   2. The entries are linked in the order of the file. A removed entry stays in its place, for its gap.
  //   3. An entry has its own `lines` if it was edited, is new, or is so large that they are worth keeping.
  struct Entry {
    std::span<const Line> body;  // as read; empty for a new entry, and for one that was set aside
    std::string_view aside;      // instead of it then: the text, which is read again when its lines are needed
                                 // (also while `alike`)
    std::span<const Line> gap;   // what stands between this entry and the next
    std::string_view normal;
    std::unique_ptr<EntryLines> lines;
    Line dn;
    EntryId previous = kNoEntry;
    EntryId next = kNoEntry;
    EntryId subtreeEnd = kNoEntry;  // where a search for the end of the subtree last ended
    std::uint32_t valuesSetAside = 0;
    std::uint32_t lineAsRead = 0;
    bool removed = false;
    bool edited = false;
    bool setAside = false;
    bool alike = false;  // was read beside one of the same name that has the same bytes below the dn line

    std::string_view textAsRead() const;
    bool isAsRead() const { return !edited && !removed && !(body.empty() && aside.empty()); }
    bool lastsAsRead() const;
    std::span<const Line> linesBelowDn() const;
  };
  class Renderer;
  class SetAsideBefore;
  class CutOut;

  static constexpr EntryId kHead = 0;

  EntryLines& editable(EntryId entry);
  std::span<const Line> bodyOf(const Entry& entry, std::vector<Line>& again) const;
  std::size_t setAsideEqual(Document& other, const EntryTest& mayBe, EntryId begin, EntryId end);
  void read(std::vector<Problem>& problems, const Document* model, KnownEntries* known);
  bool readInTurn(LdifContent& content);
  void take(LdifContent content, const Document* model);
  EntryId setAsideBehind(EntryId entry) const;
  void takeOver(std::string_view text, const Entry& like, Entry& entry);
  void dropLinesSetAside();
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
  std::string m_newLine;               // working space
  std::vector<Line> m_lines;           // of the source, in order, but for those that were set aside
  std::optional<LineKind> m_lastLine;  // of the source; nothing for an empty one
  std::vector<Entry> m_entries;
  EntryIndex m_index;
  EntryId m_last = kHead;
  bool m_edited = false;
  std::size_t m_edits = 0;
  std::size_t m_valuesSetAside = 0;
  const Document* m_readBeside = nullptr;  // what entries are alike to; it may be gone
  std::size_t m_linesAlike = 0;            // that are not in m_lines since their entries are alike, or more
  std::optional<Habits> m_habits;
  bool m_hasAllLines = true;
  std::string m_separator;
  std::vector<std::string_view> m_pieces;                    // as they were asked for last
  std::size_t m_piecesEdits = static_cast<std::size_t>(-1);  // m_edits then

  std::string m_recentDn;  // as the caller wrote it
  EntryId m_recent = kNoEntry;
  EntryLines m_readLines;  // of the entry read last
  EntryId m_readEntry = kNoEntry;

  std::size_t m_longestNormal = 0;
  std::optional<std::unordered_map<std::string_view, EntryId, TextHash>> m_lastChild;  // by normal DN of the parent
};

}  // namespace cfgstore

#endif  // CFGMIG_LIBCFGSTORE_DOCUMENT_H
