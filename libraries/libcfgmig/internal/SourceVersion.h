// SourceVersion.h -- how source versions are told apart.

#ifndef CFGMIG_LIBCFGMIG_INTERNAL_SOURCEVERSION_H
#define CFGMIG_LIBCFGMIG_INTERNAL_SOURCEVERSION_H

#include <cstring>

namespace cfgmig {

// True when `version` is exactly `key`, a text of three characters: four bytes are compared, the closing null among
// them, so "6.0.1" is not "6.0". A version of fewer characters is not read beyond its end; null is no version.
inline bool isSourceVersion(const char* version, const char* key) {
  return version != nullptr && std::strncmp(version, key, 4) == 0;
}

}  // namespace cfgmig

#endif  // CFGMIG_LIBCFGMIG_INTERNAL_SOURCEVERSION_H
