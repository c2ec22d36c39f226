// DnCharacterMap.h -- the characters that do not count, or count as blanks, when strings are compared.

#ifndef CFGMIG_LIBCFGSTORE_DNCHARACTERMAP_H
#define CFGMIG_LIBCFGSTORE_DNCHARACTERMAP_H

#include "DnUnicode.h"

namespace cfgstore {

enum class MatchingRole { kept, blank, ignored };

// The role that RFC 4518 section 2.2 gives to a character.
MatchingRole matchingRoleOf(CodePoint point);

}  // namespace cfgstore

#endif  // CFGMIG_LIBCFGSTORE_DNCHARACTERMAP_H
