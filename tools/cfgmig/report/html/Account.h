// Account.h -- a ledger turned by place: for each DN, what the old configuration, the new one and the result hold
// there, side by side.
//
//   1. Each value of the old configuration, each value of the result and each replaced value of the new configuration
//      is counted by exactly one row. A row can count one of each.
//   2. Each entry of any of the three is in exactly one place of the tree; its DN is below that of its parent.

#ifndef CFGMIG_TOOL_REPORT_HTML_ACCOUNT_H
#define CFGMIG_TOOL_REPORT_HTML_ACCOUNT_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "report/Report.h"

namespace tool::html {

// The words that rows can be filtered by: the fates, the origins, and "replaced". A set of them is a mask of bits.
inline constexpr std::size_t kWords = kValueFates + kValueOrigins + 1;
using Words = std::uint32_t;

constexpr std::size_t wordOf(ValueFate fate) { return static_cast<std::size_t>(fate); }
constexpr std::size_t wordOf(ValueOrigin origin) { return kValueFates + static_cast<std::size_t>(origin); }
inline constexpr std::size_t kReplacedWord = kValueFates + kValueOrigins;
constexpr Words bitOf(std::size_t word) { return Words{1} << word; }

inline constexpr std::uint32_t kNone = cfgstore::Snapshot::kNone;
inline constexpr Content kAll[] = {Content::old, Content::before, Content::result};

// What of the three contents belongs together under one attribute of one DN. kNoValue where there is nothing.
struct Row {
  std::string_view attribute;
  ValueId old = kNoValue;
  ValueId before = kNoValue;
  ValueId result = kNoValue;
  ValueId elsewhere = kNoValue;  // where the old value is in the result, when that is under another DN or attribute
  ValueId origin = kNoValue;     // the old value that the result's comes from, when that stands elsewhere
  std::uint32_t replaced = kNoValue;  // the number of the row in Ledger::replaced that this one counts
  Words words = 0;                    // what it counts: at most one fate, one origin and "replaced"
};

// One DN. The numbers of entries are those of the snapshots, kNone where it has none there.
struct Node {
  std::string_view dn;      // as it is written in the first of the three that has it
  std::string_view normal;  // in normal form
  std::array<std::uint32_t, kContents> entries{};
  std::uint32_t parent = cfgstore::Snapshot::kNone;  // the number of the nearest DN above it
  std::vector<std::uint32_t> children;               // in the order of the configurations
  Words words = 0;                                   // of its rows
  Words wordsBelow = 0;                              // of its rows and of those of all nodes below it
  std::size_t size = 0;                              // 1 for itself and 1 for each row
  std::size_t sizeBelow = 0;                         // of itself and all nodes below it

  std::uint32_t entry(Content content) const { return entries[static_cast<std::size_t>(content)]; }
};

class Account {
 public:
  // The ledger must outlive it.
  explicit Account(const Ledger& ledger);

  const Ledger& ledger() const { return m_ledger; }
  const std::vector<Node>& nodes() const { return m_nodes; }
  const std::vector<std::uint32_t>& tops() const { return m_tops; }  // the nodes without a parent

  // The node that the entry of a value belongs to.
  std::uint32_t nodeOf(Content content, ValueId value) const;
  std::uint32_t nodeOfEntry(Content content, std::uint32_t entry) const;
  // The node with this normal DN, or kNone.
  std::uint32_t find(std::string_view normal) const;

  // The rows of a node, by attribute, in the order of the configurations. A node whose entries were set aside has rows,
  // and these are valid, while they are unfolded.
  std::vector<Row> rowsOf(std::uint32_t node) const;

 private:
  void addEntries(Content content);
  void connect();
  void linkReplaced();
  void sumUp();

  const Ledger& m_ledger;
  std::vector<Node> m_nodes;
  std::vector<std::uint32_t> m_tops;
  std::vector<std::uint32_t> m_byNormal;                            // the numbers of the nodes, sorted by normal DN
  std::array<std::vector<std::uint32_t>, kContents> m_nodeOfEntry;  // by number of the entry
  std::vector<std::uint32_t> m_replacedBy;    // by value of the result: the first row of Ledger::replaced it stands for
  std::vector<std::uint32_t> m_nextReplaced;  // by row of Ledger::replaced: the next one with the same `by`
  std::vector<std::uint32_t> m_replacedRow;   // by value of the new configuration: its row in Ledger::replaced
};

}  // namespace tool::html

#endif  // CFGMIG_TOOL_REPORT_HTML_ACCOUNT_H
