// PagePieces.h -- page.html, page.css and the scripts, as they are beside this file, put into the program by the build.

#ifndef CFGMIG_TOOL_REPORT_HTML_PAGEPIECES_H
#define CFGMIG_TOOL_REPORT_HTML_PAGEPIECES_H

#include <string_view>

namespace tool::html {

// Valid as long as the program runs.
struct PagePieces {
  std::string_view page;  // with {{name}} where something belongs
  std::string_view style;
  std::string_view script;
  std::string_view styleSha256;  // 64 hexadecimal digits
  std::string_view scriptSha256;
};
extern const PagePieces kPagePieces;

}  // namespace tool::html

#endif  // CFGMIG_TOOL_REPORT_HTML_PAGEPIECES_H
