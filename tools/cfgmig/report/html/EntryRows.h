// EntryRows.h -- puts the values of one DN side by side.

#ifndef CFGMIG_TOOL_REPORT_HTML_ENTRYROWS_H
#define CFGMIG_TOOL_REPORT_HTML_ENTRYROWS_H

#include <array>
#include <cstdint>
#include <span>
#include <unordered_set>
#include <vector>

#include "report/html/Account.h"

namespace tool::html {

// Which values were replaced, and by which; see the members of Account with the same names.
struct ReplacedLinks {
  std::span<const std::uint32_t> by;
  std::span<const std::uint32_t> next;
  std::span<const std::uint32_t> row;
};

class EntryRows {
 public:
  // All of it must outlive the object.
  EntryRows(const Ledger& ledger, ReplacedLinks replaced) : m_ledger(ledger), m_replaced(replaced) {}

  // The rows of the entries with these numbers, one for each content, kNone where there is none. To be called once.
  std::vector<Row> of(const std::array<std::uint32_t, kContents>& entries);

 private:
  // The attributes of one name, by their numbers.
  using Attributes = std::array<std::uint32_t, kContents>;

  std::vector<Attributes> sideBySide(const std::array<std::uint32_t, kContents>& entries) const;
  void addAttribute(const Attributes& attributes);
  void addOld(ValueId value, const Attributes& attributes);
  ValueId standsInstead(ValueId value, const Attributes& attributes) const;
  void addResult(ValueId value, const Attributes& attributes);
  void addBefore(ValueId value);
  void placeResult(Row& row, ValueId value, const Attributes& attributes);
  void placeBefore(Row& row, ValueId value);
  bool isIn(Content content, ValueId value, const Attributes& attributes) const;

  const Ledger& m_ledger;
  ReplacedLinks m_replaced;
  std::vector<Row> m_rows;
  std::unordered_set<ValueId> m_resultSeen;
  std::unordered_set<ValueId> m_beforeSeen;
};

}  // namespace tool::html

#endif  // CFGMIG_TOOL_REPORT_HTML_ENTRYROWS_H
