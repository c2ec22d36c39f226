// Roff.h -- text as the man macros take it.

#ifndef CFGMIG_TOOL_OPTIONS_ROFF_H
#define CFGMIG_TOOL_OPTIONS_ROFF_H

#include <iosfwd>
#include <string>
#include <string_view>

namespace tool {

// A manual page that is being written. All texts are plain; what would mean something to a formatter is escaped. Every
// hyphen becomes a minus, since what looks like an option or a name in a page is copied from there.
class RoffPage {
 public:
  // Begins the page `name`(`section`).
  RoffPage(std::ostream& out, const std::string& name, int section);

  void section(std::string_view title);
  void subsection(std::string_view title);

  // Text with paragraphs between empty lines. Lines that begin with blanks are shown as they are.
  void text(std::string_view text);

  // A line as it would be typed.
  void commandLine(std::string_view line);

  // An item with its explanation behind it: `tag` is in bold, `value` behind it in italics.
  void item(std::string_view tag, std::string_view value);

  // The item's explanation may go on with a list of its own, up to endNested.
  void beginNested();
  void endNested();

  // Other pages: cfgmig(1), cfgmig-plan(1). The last one of a list is `isLast`.
  void reference(std::string_view page, int section, bool isLast);

 private:
  std::ostream& m_out;
  bool m_isInItem = false;
};

// The text with everything escaped that means something within a line.
std::string roffEscaped(std::string_view text);

}  // namespace tool

#endif  // CFGMIG_TOOL_OPTIONS_ROFF_H
