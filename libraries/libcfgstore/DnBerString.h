// DnBerString.h -- strings inside `#hex` values of DNs.

#ifndef CFGMIG_LIBCFGSTORE_DNBERSTRING_H
#define CFGMIG_LIBCFGSTORE_DNBERSTRING_H

#include <optional>
#include <string>
#include <string_view>

namespace cfgstore {

// The characters, in UTF-8, of a BER-encoded directory string. Nothing when `ber` is anything else: another type, a
// length that is not the length of what follows, an indefinite length, or content that the type does not allow.
std::optional<std::string> directoryStringOfBer(std::string_view ber);

}  // namespace cfgstore

#endif  // CFGMIG_LIBCFGSTORE_DNBERSTRING_H
