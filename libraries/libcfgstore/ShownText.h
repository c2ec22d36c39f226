// ShownText.h -- parts of a file as they may stand in a message: on one line, of bounded length, harmless on a
// terminal.

#ifndef CFGMIG_LIBCFGSTORE_SHOWNTEXT_H
#define CFGMIG_LIBCFGSTORE_SHOWNTEXT_H

#include <string>
#include <string_view>

namespace cfgstore {

// True for valid UTF-8, the empty text included.
bool isUtf8(std::string_view text);

// A DN: what is no visible character is shown as '?', and what goes beyond 200 bytes as "...".
std::string shownDn(std::string_view dn);

// A valid attribute name: what goes beyond 100 bytes is shown as "...".
std::string shownName(std::string_view name);

}  // namespace cfgstore

#endif  // CFGMIG_LIBCFGSTORE_SHOWNTEXT_H
