// HtmlText.h -- text as HTML.

#ifndef CFGMIG_TOOL_REPORT_HTML_HTMLTEXT_H
#define CFGMIG_TOOL_REPORT_HTML_HTMLTEXT_H

#include <cstddef>
#include <iosfwd>
#include <string>
#include <string_view>

namespace tool::html {

// Text of any bytes, as the content of an element. `&`, `<`, `>` and the quotes become references. Control characters,
// line ends, what turns the writing direction, what has no width and bytes that are not UTF-8 become a marked escape
// that can be seen: <b class="esc">\u{202E}</b>, \n, \x{FF}.
struct Text {
  std::string_view text;
};
std::ostream& operator<<(std::ostream& out, Text text);

// The same without marks, for attributes in double quotes and for elements that hold no others, as <title>.
struct Plain {
  std::string_view text;
};
std::ostream& operator<<(std::ostream& out, Plain text);

// "1,234,567"
struct Number {
  std::size_t number;
};
std::ostream& operator<<(std::ostream& out, Number number);

// "1 value", "1,234 values"; `noun` in the singular, `plural` when an s is not enough.
struct Count {
  std::size_t number;
  std::string_view noun;
  std::string_view plural = {};
};
std::ostream& operator<<(std::ostream& out, Count count);

}  // namespace tool::html

#endif  // CFGMIG_TOOL_REPORT_HTML_HTMLTEXT_H
