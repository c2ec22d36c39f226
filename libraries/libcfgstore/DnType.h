// DnType.h -- attribute types in DNs.

#ifndef CFGMIG_LIBCFGSTORE_DNTYPE_H
#define CFGMIG_LIBCFGSTORE_DNTYPE_H

#include <cstddef>
#include <string>
#include <string_view>

namespace cfgstore {

// 4 when `text` begins with "OID." in any letter case and a digit, else 0.
std::size_t oidPrefixLength(std::string_view text);

// Appends the normal form of an attribute type: a name in upper-case letters, the name that belongs to a well-known
// OID, or another OID as it is. `type` is a name or dotted numbers, as the DN parser has let it through. False when it
// begins with a digit and is not an OID as RFC 4512 writes it (two numbers at least, no leading zeros); `out` is then
// as it was.
bool appendNormalType(std::string_view type, std::string& out);

}  // namespace cfgstore

#endif  // CFGMIG_LIBCFGSTORE_DNTYPE_H
