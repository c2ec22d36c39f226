// DnSpelling.h -- rewrites what older servers write in a DN into what RFC 4514 has for it.

#ifndef CFGMIG_LIBCFGSTORE_DNSPELLING_H
#define CFGMIG_LIBCFGSTORE_DNSPELLING_H

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace cfgstore {

// The length of the first attribute-value pair of `text`, up to a `,` `;` or `+` that is neither escaped nor inside
// quotes, or up to the end. Looks for nothing else; what is cut off may be no pair at all.
std::size_t pairLength(std::string_view text);

// An attribute-value pair as the DN parser takes it.
struct SpelledPair {
  std::string text;
  // Where the type begins in the text that was rewritten. It is as long there as the parser finds it to be in `text`,
  // which has `-` in place of its underscores.
  std::size_t type;
};

// One attribute-value pair without "OID." in front of a numeric type, without underscores in a type, and without quotes
// around the value, which become escapes. Blanks around the parts may stay. Nothing when a quoted value does not end
// with its quote, or when a value that begins with `#` is not hex digits in pairs; all other mistakes are left to the
// DN parser to find.
std::optional<SpelledPair> rfc4514Pair(std::string_view text);

}  // namespace cfgstore

#endif  // CFGMIG_LIBCFGSTORE_DNSPELLING_H
