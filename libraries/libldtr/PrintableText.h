// PrintableText.h -- text from elsewhere, made safe to show on a terminal and to keep on one line.

#ifndef CFGMIG_LIBLDTR_PRINTABLETEXT_H
#define CFGMIG_LIBLDTR_PRINTABLETEXT_H

#include <string>
#include <string_view>

namespace ldtr {

// `text` with everything that a terminal might obey, or a reader might not see, written out: control characters and
// bytes that are not UTF-8 as \n, \t, \r or \xNN byte by byte, likewise the invisible characters that break lines or
// turn the writing direction. A backslash is doubled, so that the text can be told from the escapes. All other UTF-8
// stays as it is.
std::string printable(std::string_view text);

// A DN in the same way, but still a DN, and the same one: what is not shown becomes the hex pairs of a DN (\0A), and
// its own backslashes stay as they are.
std::string printableDn(std::string_view dn);

}  // namespace ldtr

#endif  // CFGMIG_LIBLDTR_PRINTABLETEXT_H
