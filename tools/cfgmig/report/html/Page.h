// Page.h -- what the parts of the page share: the report, the account by place, where to write, and the small pieces
// that occur in several of them.

#ifndef CFGMIG_TOOL_REPORT_HTML_PAGE_H
#define CFGMIG_TOOL_REPORT_HTML_PAGE_H

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <string>
#include <string_view>
#include <vector>

#include "report/html/Account.h"

namespace tool::html {

// From this many values on, paper gets only those entries that are open on the screen.
inline constexpr std::size_t kLargeAccount = 3000;

class Page {
 public:
  // Both must outlive it.
  Page(const Report& report, std::ostream& out);

  const Report& report() const { return m_report; }
  const Ledger& ledger() const { return m_report.ledger; }
  const Account& account() const { return m_account; }
  std::ostream& out() { return m_out; }

  // The values of all three configurations.
  std::size_t values() const;
  bool isLarge() const { return values() > kLargeAccount; }

  // The value as it may be shown, as an element. More than kLongestValue bytes are cut off, with a remark.
  void value(Content content, ValueId value);

  // "cn=Front End, cn=Configuration", its first RDN in bold.
  void dn(std::string_view dn);

  // The DN of a node, as a link to it.
  void linkTo(std::uint32_t node);

  // " line 12", where a value stands in its file.
  void line(Content content, ValueId value);

  // The words of a reason and its method; nothing when it has neither.
  void reason(ReasonId reason);

 private:
  const Report& m_report;
  Account m_account;
  std::ostream& m_out;
  std::vector<std::string> m_reasons;  // their words, as they may be shown
};

// The parts, in the order of the page. Each writes the inside of a section or, for a title, its text.
void writeTitle(Page& page);
void writeVerdict(Page& page);
void writeContents(Page& page);
void writeSums(Page& page);
void writeFindings(Page& page);
void writeBehind(Page& page);
void writeTree(Page& page);
void writeReplaced(Page& page);
void writeSchemas(Page& page);
void writeWords(Page& page);
void writeInputs(Page& page);

}  // namespace tool::html

#endif  // CFGMIG_TOOL_REPORT_HTML_PAGE_H
