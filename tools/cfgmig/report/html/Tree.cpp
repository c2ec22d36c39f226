// Old, new and result side by side: the entries as a tree of <details>, in each a table with a row for what belongs
// together. This is where each value of all three stands.
#include <algorithm>
#include <ostream>

#include "report/Unfolded.h"
#include "report/html/HtmlText.h"
#include "report/html/Page.h"
#include "report/html/Words.h"

namespace tool::html {
namespace {

constexpr std::uint32_t kNone = cfgstore::Snapshot::kNone;

// More entries than this at one place are put into groups, more rows of one entry into several tables, so that opening
// something never shows more than a browser lays out at once.
constexpr std::size_t kMostSiblings = 200;
constexpr std::size_t kSiblingsInGroup = 100;
constexpr std::size_t kRowsInTable = 200;

// Entries below this depth stand beside each other: browsers stop nesting elements at some hundreds.
constexpr std::size_t kDeepest = 24;

// A value that is shown beside an equal one is written out up to this length, and otherwise as "same as".
constexpr std::size_t kWrittenTwice = 60;

// In a large page, what is inside an element that can be opened, up to this many entries and rows, stands in a
// <noscript>. Browsers without scripts show it; the others do not build what nobody has opened.
constexpr std::size_t kMostInNoscript = 500;

class Tree {
 public:
  explicit Tree(Page& page) : m_page(page), m_out(page.out()), m_account(page.account()), m_ledger(page.ledger()) {}

  void write() {
    const std::vector<std::uint32_t>& tops = m_account.tops();
    m_openTops = tops.size() <= 3;
    writeAll(tops, 0);
  }

 private:
  void writeAll(const std::vector<std::uint32_t>& nodes, std::size_t depth) {
    if (nodes.size() <= kMostSiblings) {
      for (const std::uint32_t node : nodes) writeNode(node, depth);
      return;
    }
    for (std::size_t first = 0; first < nodes.size(); first += kSiblingsInGroup) {
      const std::size_t end = std::min(nodes.size(), first + kSiblingsInGroup);
      Words words = 0;
      std::size_t size = 0;
      for (std::size_t i = first; i < end; ++i) {
        words |= m_account.nodes()[nodes[i]].wordsBelow;
        size += m_account.nodes()[nodes[i]].sizeBelow;
      }
      m_out << "<details class=\"g" << Classes{words} << "\"><summary>Entries " << Number{first + 1} << " to "
            << Number{end} << " of " << Number{nodes.size()} << ": <span class=\"dn\">";
      m_page.dn(m_account.nodes()[nodes[first]].dn);
      m_out << "</span> and following</summary>\n";
      const bool isHidden = beginNoscript(size);
      for (std::size_t i = first; i < end; ++i) writeNode(nodes[i], depth);
      endNoscript(isHidden);
      m_out << "</details>\n";
    }
  }

  void writeNode(std::uint32_t number, std::size_t depth) {
    const Node& node = m_account.nodes()[number];
    if (depth < kDeepest) {
      beginNode(number, m_openTops && depth == 0);
      const bool isHidden = beginNoscript(node.sizeBelow);
      writeInside(number);
      if (!node.children.empty()) {
        m_out << "<div class=\"kids\">\n";
        writeAll(node.children, depth + 1);
        m_out << "</div>\n";
      }
      endNoscript(isHidden);
      m_out << "</details>\n";
      return;
    }
    std::vector<std::uint32_t> rest = {number};
    while (!rest.empty()) {
      const std::uint32_t next = rest.back();
      rest.pop_back();
      beginNode(next, false);
      const bool isHidden = beginNoscript(m_account.nodes()[next].size);
      writeInside(next);
      endNoscript(isHidden);
      m_out << "</details>\n";
      const std::vector<std::uint32_t>& below = m_account.nodes()[next].children;
      rest.insert(rest.end(), below.rbegin(), below.rend());
    }
  }

  // True when the element was begun: not in a small page, not for too much, and not inside another one.
  bool beginNoscript(std::size_t size) {
    if (!m_page.isLarge() || m_isInNoscript || size > kMostInNoscript) return false;
    m_out << "<noscript>\n";
    m_isInNoscript = true;
    return true;
  }

  void endNoscript(bool wasBegun) {
    if (!wasBegun) return;
    m_out << "</noscript>";
    m_isInNoscript = false;
  }

  // What is seen of it while it is closed.
  void beginNode(std::uint32_t number, bool isOpen) {
    const Node& node = m_account.nodes()[number];
    const Unfolded unfolded(m_ledger, Content::old, node.entry(Content::old));
    const std::vector<Row> rows = m_account.rowsOf(number);
    m_out << "<details class=\"e" << Classes{node.wordsBelow} << "\" id=\"e" << number << '"' << (isOpen ? " open" : "")
          << "><summary><span class=\"dn\">";
    m_page.dn(node.dn);
    m_out << "</span> <span class=\"counts\">";
    writeCounts(node, rows);
    m_out << "</span></summary>\n";
  }

  // All that opening it shows, but the entries below it.
  void writeInside(std::uint32_t number) {
    const Node& node = m_account.nodes()[number];
    const Unfolded unfolded(m_ledger, Content::old, node.entry(Content::old));
    writeEntryFate(node);
    writeRows(m_account.rowsOf(number));
  }

  void writeCounts(const Node& node, const std::vector<Row>& rows) {
    std::array<std::size_t, kWords> counts{};
    for (const Row& row : rows) {
      for (std::size_t word = 0; word < kWords; ++word) counts[word] += (row.words >> word) & 1U;
    }
    const char* separator = "";
    const auto write = [&](std::size_t word) {
      if (counts[word] == 0) return;
      m_out << separator << Number{counts[word]} << ' ';
      // A loss has to be seen while everything is folded up.
      if (word == wordOf(ValueFate::lost)) {
        m_out << Marked{word};
      } else {
        m_out << kWordKinds[word].name;
      }
      separator = ", ";
    };
    if (node.entry(Content::old) == kNone) {
      m_out << (node.entry(Content::before) == kNone ? "written by the merge: " : "only in the new: ");
      for (std::size_t word = kValueFates; word < kWords; ++word) write(word);
      return;
    }
    for (std::size_t word = 0; word < kValueFates; ++word) write(word);
    write(wordOf(ValueOrigin::addedByRule));
    write(kReplacedWord);
  }

  // Where the entry went, when that is not to its own DN.
  void writeEntryFate(const Node& node) {
    if (node.entry(Content::old) == kNone) return;
    const EntryRow& row = m_ledger.oldEntries[node.entry(Content::old)];
    const auto note = [&](const char* words) {
      m_out << "<p class=\"remark\">" << words;
      if (row.fate == EntryFate::moved || row.fate == EntryFate::rebuilt) {
        const std::uint32_t target = m_account.find(row.target);
        if (target != kNone && m_account.nodes()[target].normal != node.normal) {
          m_out << ", as ";
          m_page.linkTo(target);
        }
      }
      m_out << ": ";
      m_page.reason(row.reason);
      m_out << ".</p>\n";
    };
    switch (row.fate) {
      case EntryFate::added:
        note("This entry was created in the new configuration");
        break;
      case EntryFate::merged:
        break;
      case EntryFate::moved:
        note("This entry was moved");
        break;
      case EntryFate::rebuilt:
        note("This entry was made anew from some of its values");
        break;
      case EntryFate::left:
        note("This entry was left behind by design");
        break;
      case EntryFate::skipped:
        note("Nothing of this entry was carried, though it should have been");
        break;
      case EntryFate::outside:
        note("No merge looks at this entry");
        break;
    }
  }

  void writeRows(const std::vector<Row>& rows) {
    if (rows.size() <= kRowsInTable) {
      if (!rows.empty()) writeTable(rows);
      return;
    }
    for (std::size_t first = 0; first < rows.size(); first += kRowsInTable) {
      const std::size_t end = std::min(rows.size(), first + kRowsInTable);
      const auto part = std::span(rows).subspan(first, end - first);
      Words words = 0;
      for (const Row& row : part) words |= row.words;
      m_out << "<details class=\"g" << Classes{words} << "\"><summary>Values " << Number{first + 1} << " to "
            << Number{end} << " of " << Number{rows.size()} << ", from <code>" << Text{part.front().attribute}
            << "</code> on</summary>\n";
      const bool isHidden = beginNoscript(part.size());
      writeTable(part);
      endNoscript(isHidden);
      m_out << "</details>\n";
    }
  }

  void writeTable(std::span<const Row> rows) {
    Words words = 0;
    for (const Row& row : rows) words |= row.words;
    m_out << "<table class=\"" << Classes{words}
          << "\"><thead><tr><th>Attribute<th>What happened<th>Old<th>New, before<th>Result</thead>\n"
             "<tbody>\n";
    for (const Row& row : rows) writeRow(row);
    m_out << "</table>\n";
  }

  void writeRow(const Row& row) {
    m_out << "<tr class=\"" << (row.words == 0 ? "again" : "") << Classes{row.words} << "\"><th scope=\"row\">"
          << Text{row.attribute} << "<td>";
    writeWhatHappened(row);
    m_out << "<td>";
    writeOld(row);
    m_out << "<td>";
    writeBefore(row);
    m_out << "<td>";
    writeResult(row);
    m_out << "</td>\n";  // nothing but the value belongs to the cell: an empty one is shown as such
  }

  void writeWhatHappened(const Row& row) {
    if (row.old != kNoValue) {
      const OldValueRow& fate = m_ledger.oldValues[row.old];
      m_out << kWordKinds[wordOf(fate.fate)].name;
      const bool isWritten = (row.words & bitOf(wordOf(ValueOrigin::addedByRule))) != 0;
      if (isWritten) m_out << ' ' << Marked{wordOf(ValueOrigin::addedByRule)};
      // The word says it all for a value that was there already.
      if (fate.fate != ValueFate::same) writeReason(fate.reason);
      if (isWritten) writeReason(m_ledger.resultValues[row.result].reason);
    } else if (row.result != kNoValue) {
      const ResultValueRow& origin = m_ledger.resultValues[row.result];
      m_out << kWordKinds[wordOf(origin.origin)].name;
      if (origin.origin != ValueOrigin::fromNew) writeReason(origin.reason);
    } else {
      m_out << kWordKinds[kReplacedWord].name;
      if (row.replaced != kNone) writeReason(m_ledger.replaced[row.replaced].reason);
    }
  }

  void writeReason(ReasonId reason) {
    m_out << " <small>";
    m_page.reason(reason);
    m_out << "</small>";
  }

  void writeOld(const Row& row) {
    if (row.old != kNoValue) {
      m_page.value(Content::old, row.old);
      m_page.line(Content::old, row.old);
    } else if (row.origin != kNoValue) {
      writeOtherPlace("from ", Content::old, row.origin);
    }
  }

  void writeBefore(const Row& row) {
    if (row.before == kNoValue) return;
    if (row.old != kNoValue && areEqual(Content::old, row.old, Content::before, row.before)) {
      writeEqual("as old", Content::before, row.before);
    } else {
      m_page.value(Content::before, row.before);
    }
    m_page.line(Content::before, row.before);
    if (row.replaced == kNone || (row.old == kNoValue && row.result == kNoValue)) return;
    m_out << ' ' << Marked{kReplacedWord};
  }

  void writeResult(const Row& row) {
    if (row.result != kNoValue) {
      if (row.old != kNoValue && areEqual(Content::old, row.old, Content::result, row.result)) {
        writeEqual("as old", Content::result, row.result);
      } else if (row.before != kNoValue && areEqual(Content::before, row.before, Content::result, row.result)) {
        writeEqual("as new", Content::result, row.result);
      } else {
        m_page.value(Content::result, row.result);
      }
      m_page.line(Content::result, row.result);
    }
    if (row.elsewhere != kNoValue) writeOtherPlace("to ", Content::result, row.elsewhere);
    if (row.replaced != kNone && row.result == kNoValue && m_ledger.replaced[row.replaced].by != kNoValue) {
      writeOtherPlace("replaced by ", Content::result, m_ledger.replaced[row.replaced].by);
    }
  }

  // The attribute and the entry that a value is in, when that is not this row's.
  void writeOtherPlace(const char* words, Content content, ValueId value) {
    const cfgstore::Snapshot& snapshot = snapshotOf(m_ledger, content);
    m_out << words << "<code>" << Text{snapshot.attributeOf(snapshot.values()[value]).name} << "</code> in ";
    m_page.linkTo(m_account.nodeOf(content, value));
    m_page.line(content, value);
  }

  void writeEqual(const char* words, Content content, ValueId value) {
    if (snapshotOf(m_ledger, content).values()[value].value.size() > kWrittenTwice) {
      m_out << "<em>" << words << "</em>";
    } else {
      m_page.value(content, value);
    }
  }

  bool areEqual(Content left, ValueId leftValue, Content right, ValueId rightValue) const {
    return snapshotOf(m_ledger, left).values()[leftValue].value ==
           snapshotOf(m_ledger, right).values()[rightValue].value;
  }

  Page& m_page;
  std::ostream& m_out;
  const Account& m_account;
  const Ledger& m_ledger;
  bool m_openTops = false;
  bool m_isInNoscript = false;
};

}  // namespace

void writeTree(Page& page) {
  std::ostream& out = page.out();
  out << "<p class=\"tools\" id=\"tools\" hidden><button type=\"button\" id=\"open-all\">Open all entries</button> "
         "<button type=\"button\" id=\"close-all\">Close all entries</button> <span id=\"shown\" "
         "class=\"soft\"></span></p>\n";
  if (page.isLarge()) {
    out << "<p class=\"paper\">Only the entries that were open on the screen are printed here. The text report has all "
           "of them.</p>\n";
  }
  out << "<div class=\"card entries\" id=\"entries\">\n";
  Tree(page).write();
  out << "</div>";
}

}  // namespace tool::html
