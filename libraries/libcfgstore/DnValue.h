// DnValue.h -- the normal form of attribute values in DNs.

#ifndef CFGMIG_LIBCFGSTORE_DNVALUE_H
#define CFGMIG_LIBCFGSTORE_DNVALUE_H

#include <string>
#include <string_view>

namespace cfgstore {

// Appends the normal form of `value`, whose escapes and quotes have been undone already: prepared for comparison as
// NormalDn.h describes it, and with the escapes that a DN needs. Any bytes will do.
void appendNormalValue(std::string_view value, std::string& out);

// Appends `bytes` as `#` and upper-case hex digits.
void appendHexValue(std::string_view bytes, std::string& out);

}  // namespace cfgstore

#endif  // CFGMIG_LIBCFGSTORE_DNVALUE_H
