#include "options/Roff.h"

#include <ostream>
#include <sstream>

namespace tool {
namespace {

// What begins with one of these at the beginning of a line is a request.
std::string atLineBegin(const std::string& escaped) {
  const bool isRequest = !escaped.empty() && (escaped.front() == '.' || escaped.front() == '\'');
  return (isRequest ? "\\&" : "") + escaped;
}

}  // namespace

std::string roffEscaped(std::string_view text) {
  std::string result;
  for (const char c : text) {
    switch (c) {
      case '\\':
        result += "\\e";
        break;
      case '-':
        result += "\\-";
        break;
      case '\'':
        result += "\\(aq";
        break;
      case '`':
        result += "\\(ga";
        break;
      case '^':
        result += "\\(ha";
        break;
      case '~':
        result += "\\(ti";
        break;
      default:
        result += c;
    }
  }
  return result;
}

RoffPage::RoffPage(std::ostream& out, const std::string& name, int section) : m_out(out) {
  std::string title = name;
  for (char& c : title) {
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  }
  m_out << ".\\\" Made from the tool's tables; not to be edited.\n"
        << ".TH " << roffEscaped(title) << ' ' << section
        << " \"\" \"cfgmig " CFGMIG_VERSION "\" \"cfgmig manual\"\n"
        // Left-aligned, so that what can be copied has no wide blanks in it.
        << ".ad l\n";
}

void RoffPage::section(std::string_view title) {
  m_isInItem = false;
  m_out << ".SH " << roffEscaped(title) << '\n';
}

void RoffPage::subsection(std::string_view title) {
  m_isInItem = false;
  m_out << ".SS " << roffEscaped(title) << '\n';
}

void RoffPage::text(std::string_view text) {
  std::istringstream lines{std::string(text)};
  bool isVerbatim = false;
  bool isParagraphDue = false;
  for (std::string line; std::getline(lines, line);) {
    if (line.empty()) {
      isParagraphDue = true;
      continue;
    }
    const bool beginsBlock = line.front() == ' ';
    if (isVerbatim && !beginsBlock) m_out << ".EE\n.RE\n";
    if (isParagraphDue || (isVerbatim && !beginsBlock)) m_out << ".PP\n";
    if (beginsBlock && !isVerbatim) m_out << (m_isInItem ? ".RS 9\n.EX\n" : ".RS 2\n.EX\n");
    isVerbatim = beginsBlock;
    isParagraphDue = false;
    const std::size_t begin = isVerbatim ? std::min<std::size_t>(line.find_first_not_of(' '), 2) : 0;
    m_out << atLineBegin(roffEscaped(std::string_view(line).substr(begin))) << '\n';
  }
  if (isVerbatim) m_out << ".EE\n.RE\n";
}

void RoffPage::commandLine(std::string_view line) { m_out << ".EX\n" << atLineBegin(roffEscaped(line)) << "\n.EE\n"; }

void RoffPage::item(std::string_view tag, std::string_view value) {
  m_isInItem = true;
  m_out << ".TP\n\\fB" << roffEscaped(tag) << "\\fR";
  if (!value.empty()) m_out << " \\fI" << roffEscaped(value) << "\\fR";
  m_out << '\n';
}

void RoffPage::beginNested() {
  m_isInItem = false;
  m_out << ".RS\n";
}

void RoffPage::endNested() {
  m_isInItem = false;
  m_out << ".RE\n";
}

void RoffPage::reference(std::string_view page, int section, bool isLast) {
  m_out << ".BR " << roffEscaped(page) << " (" << section << ')' << (isLast ? "" : ",") << '\n';
}

}  // namespace tool
