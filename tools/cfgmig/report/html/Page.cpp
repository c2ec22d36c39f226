#include "report/html/Page.h"

#include <ostream>

#include "report/html/HtmlText.h"

namespace tool::html {
namespace {

// Of one value, in bytes. Settings are far shorter; what is longer is no text for a person.
constexpr std::size_t kLongestValue = 16384;

// Where the first RDN of a DN as somebody wrote it ends. Only for the eye: what is taken for its end does no harm.
std::size_t endOfFirstRdn(std::string_view dn) {
  bool isQuoted = false;
  for (std::size_t i = 0; i < dn.size(); ++i) {
    if (dn[i] == '\\') {
      ++i;
    } else if (dn[i] == '"') {
      isQuoted = !isQuoted;
    } else if (!isQuoted && (dn[i] == ',' || dn[i] == ';')) {
      return i;
    }
  }
  return dn.size();
}

// At most `most` bytes, and no character of UTF-8 cut in two.
std::string_view beginningOf(std::string_view text, std::size_t most) {
  if (text.size() <= most) return text;
  while (most > 0 && (static_cast<unsigned char>(text[most]) & 0xC0U) == 0x80) --most;
  return text.substr(0, most);
}

}  // namespace

Page::Page(const Report& report, std::ostream& out) : m_report(report), m_account(report.ledger), m_out(out) {
  m_reasons.reserve(report.ledger.reasons.size());
  for (const Reason& reason : report.ledger.reasons) m_reasons.push_back(report.redaction.words(reason.words));
}

std::size_t Page::values() const {
  std::size_t count = 0;
  for (const Content content : {Content::old, Content::before, Content::result}) {
    const cfgstore::Snapshot& snapshot = snapshotOf(ledger(), content);
    count += snapshot.values().size() + snapshot.valuesSetAside();
  }
  return count;
}

void Page::value(Content content, ValueId value) {
  const ShownValue shown = m_report.redaction.shown(content, value);
  if (shown.isRedacted()) {
    m_out << "<code class=\"hidden\">" << Text{shown.text} << "</code>";
    return;
  }
  const std::string_view beginning = beginningOf(shown.text, kLongestValue);
  m_out << "<code>";
  if (shown.form == ShownValue::Form::base64) m_out << "<b class=\"esc\">base64:</b>";
  m_out << Text{beginning} << "</code>";
  if (beginning.size() < shown.text.size()) {
    m_out << " <small>(the first " << Number{beginning.size()} << " of " << Number{shown.text.size()}
          << " characters)</small>";
  }
}

void Page::dn(std::string_view dn) {
  const std::size_t end = endOfFirstRdn(dn);
  m_out << "<b>" << Text{dn.substr(0, end)} << "</b>" << Text{dn.substr(end)};
}

void Page::linkTo(std::uint32_t node) {
  m_out << "<a class=\"dn\" href=\"#e" << node << "\">" << Text{m_account.nodes()[node].dn} << "</a>";
}

void Page::line(Content content, ValueId value) {
  m_out << " line\u00A0" << snapshotOf(ledger(), content).values()[value].line;
}

void Page::reason(ReasonId reason) {
  const std::string& method = ledger().reasonOf(reason).method;
  m_out << Text{m_reasons[reason]};
  if (!method.empty()) m_out << (m_reasons[reason].empty() ? "" : " ") << '(' << Text{method} << ')';
}

}  // namespace tool::html
