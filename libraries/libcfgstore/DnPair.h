// DnPair.h -- one attribute-value pair of a DN in any spelling, read by the DN parser of libldap.

#ifndef CFGMIG_LIBCFGSTORE_DNPAIR_H
#define CFGMIG_LIBCFGSTORE_DNPAIR_H

#include <string>
#include <string_view>

namespace cfgstore {

// Appends the normal form of the pair `text`, as "CN=FRONT END". False when it is no attribute-value pair; `out` is
// then as it was. Throws std::bad_alloc, and std::runtime_error when libldap is not there.
bool appendNormalPair(std::string_view text, std::string& out);

}  // namespace cfgstore

#endif  // CFGMIG_LIBCFGSTORE_DNPAIR_H
