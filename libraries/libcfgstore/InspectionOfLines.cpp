#include <algorithm>
#include <string>

#include "InspectionParts.h"
#include "LineCounter.h"
#include "LineWriter.h"
#include "ShownText.h"

namespace cfgstore {
namespace {

using enum RemarkKind;

constexpr std::size_t kLongestLine = 65535;  // bytes of a physical line

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

bool isControl(char c) { return (static_cast<unsigned char>(c) < ' ' && c != '\t') || c == '\x7f'; }

// Calls `visit` with each physical line of a text, its line end included.
template <class Visit>
void visitPhysicalLines(std::string_view text, const Visit& visit) {
  while (!text.empty()) {
    const std::size_t newline = text.find('\n');
    const std::string_view line = text.substr(0, newline == std::string_view::npos ? newline : newline + 1);
    visit(line);
    text.remove_prefix(line.size());
  }
}

// Line ends of both kinds, or none at the end.
void remarkOnLineEnds(std::string_view text, RemarkList& remarks) {
  if (text.empty()) return;
  std::size_t lines = 0;
  std::size_t feeds = 0;
  std::size_t returns = 0;
  std::size_t firstFeed = 0;
  std::size_t firstReturn = 0;
  visitPhysicalLines(text, [&](std::string_view line) {
    ++lines;
    if (!line.ends_with('\n')) return;
    if (line.ends_with("\r\n")) {
      if (returns++ == 0) firstReturn = lines;
    } else if (feeds++ == 0) {
      firstFeed = lines;
    }
  });
  if (feeds > 0 && returns > 0) {
    remarks.add(returns <= feeds ? firstReturn : firstFeed, mixedLineEnds, [&] {
      return "mixed line ends: " + std::to_string(returns) + " lines end in CRLF, " + std::to_string(feeds) +
             " in LF; expected one kind";
    });
  }
  if (text.back() != '\n' && text != kByteOrderMark) {
    remarks.add(lines, noFinalLineEnd, [] { return "no line end at the end of the file; it may have been cut off"; });
  }
}

class LineInspector {
 public:
  LineInspector(std::string_view text, RemarkList& remarks)
      : m_pieces(1, text), m_counter(m_pieces), m_remarks(remarks) {}

  void inspect(const Line& line) {
    // A line that the reader refused may have been here.
    if (line.raw != m_end) m_canContinue = false;
    m_end = line.raw + line.size;
    switch (line.kind) {
      case LineKind::byteOrderMark:
        m_remarks.add(1, byteOrderMark, [] { return "a byte-order mark; it is kept, but other tools may refuse it"; });
        break;
      case LineKind::blank:
        m_canContinue = false;
        break;
      case LineKind::comment:
        inspectShape(line);
        break;
      case LineKind::version:
        inspectShape(line);
        m_canContinue = true;
        break;
      case LineKind::dn:
      case LineKind::attribute:
        inspectShape(line);
        m_canContinue = true;
        inspectName(line);
        inspectValue(line);
        break;
    }
  }

 private:
  std::size_t numberOf(const Line& line) { return m_counter.numberOf(line.raw); }

  // The physical lines that it consists of.
  void inspectShape(const Line& line) {
    if (line.flags == 0 && line.size <= kLongestLine) return;
    std::size_t number = numberOf(line);
    bool first = true;
    bool taken = line.kind != LineKind::comment || !m_canContinue;
    visitPhysicalLines(line.text(), [&](std::string_view physical) {
      const std::string_view content = withoutLineEnd(physical);
      if (content.size() > kLongestLine) {
        m_remarks.add(number, longLine, [&] {
          return "a line of " + std::to_string(content.size()) + " bytes; other tools may cut it off";
        });
      }
      if (!first && content.find_first_not_of(' ') == std::string_view::npos) {
        m_remarks.add(number, blankContinuation, [] {
          return "a line of nothing but blanks continues the line above; expected an empty line if it is to separate";
        });
      } else if (!first && !taken) {
        taken = true;
        m_remarks.add(number, commentTakesValue, [] {
          return "a continuation below a comment belongs to the comment; the value above the comment ends there";
        });
      }
      first = false;
      ++number;
    });
  }

  void inspectName(const Line& line) {
    const std::string_view name = lineName(line, m_scratch);
    if (name.find('_') != std::string_view::npos) {
      m_remarks.add(numberOf(line), underscoreInName, [&] {
        return "the attribute name \"" + shownName(name) + "\" has an underscore; expected hyphens";
      });
    }
  }

  void inspectValue(const Line& line) {
    const bool isDn = line.kind == LineKind::dn;
    const bool base64 = (line.flags & Line::kBase64) != 0;
    m_name = shownName(lineName(line, m_scratch));
    const std::string_view value = lineValue(line, m_scratch);
    const bool utf8 = isUtf8(value);
    if (base64 && withoutLineEnd(line.text()).ends_with(' ')) {
      add(line, blankAfterBase64, "blanks behind the base64 of ", "; they are ignored");
    }
    if (!utf8 && (isDn || !base64)) add(line, notUtf8, "bytes that are not UTF-8 in ", "; they are kept as they are");
    if (isDn) return;
    if (value.empty()) return add(line, emptyValue, "an empty value of ", "");
    if (!base64 && sameName(m_name, "version") && value == "1") {
      add(line, versionInEntry, "", " inside an entry is an attribute; expected a version line above the first entry");
    }
    if (!base64 && value.ends_with(' '))
      add(line, trailingBlanks, "blanks at the end of a value of ", "; they belong to it");
    if (base64 && (value.ends_with(' ') || value.starts_with(' '))) {
      add(line, outerBlanks, "a value of ", " begins or ends with a blank");
    }
    if (!base64 && value.starts_with('\t'))
      add(line, tabAfterColon, "a tab in front of a value of ", "; it belongs to it");
    if (utf8 && std::any_of(value.begin(), value.end(), isControl)) {
      add(line, controlCharacters, "control characters in a value of ", "");
    }
    if (base64 && !needsBase64(Habits(), value)) {
      add(line, needlessBase64, "a value of ", " is in base64 although it could be plain text");
    }
  }

  void add(const Line& line, RemarkKind kind, const char* before, const char* behind) {
    m_remarks.add(numberOf(line), kind, [&] { return before + ("\"" + m_name + "\"") + behind; });
  }

  std::vector<std::string_view> m_pieces;
  LineCounter m_counter;
  RemarkList& m_remarks;
  const char* m_end = nullptr;  // of the line above
  bool m_canContinue = false;   // above, with no empty line between, is a line that a continuation could belong to
  std::string m_name;
  std::string m_scratch;
};

}  // namespace

void remarkOnLines(std::string_view text, const LdifContent& content, RemarkList& remarks) {
  remarkOnLineEnds(text, remarks);
  LineInspector inspector(text, remarks);
  for (const Line& line : content.lines) inspector.inspect(line);
}

}  // namespace cfgstore
