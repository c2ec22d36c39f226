// Base64.h -- base64 as LDIF uses it: the standard alphabet, padded, no line breaks of its own.

#ifndef CFGMIG_LIBCFGSTORE_BASE64_H
#define CFGMIG_LIBCFGSTORE_BASE64_H

#include <string>
#include <string_view>

namespace cfgstore {

// Replaces the base64 text from `begin` to the end of `text` by the bytes that it stands for; what is before `begin`
// stays. Blanks at the end are ignored. False, with `text` unspecified from `begin` on, when it is not base64 or
// breaks off in the middle of a group.
bool decodeBase64InPlace(std::string& text, std::size_t begin);

// Appends `bytes`, encoded, to `text`.
void appendBase64(std::string& text, std::string_view bytes);

}  // namespace cfgstore

#endif  // CFGMIG_LIBCFGSTORE_BASE64_H
