// HashedBytes.h -- what every kind of fingerprint needs: the bytes of a file, and digits.

#ifndef CFGMIG_TOOL_REPORT_HASHEDBYTES_H
#define CFGMIG_TOOL_REPORT_HASHEDBYTES_H

#include <functional>
#include <span>
#include <string>
#include <string_view>

namespace tool {

// Calls `visit` with the content of the file at `path`, block by block; false when it cannot be read to its end.
bool visitBlocks(const std::string& path, const std::function<void(std::string_view)>& visit);

// Two lower-case hexadecimal digits for each byte; and whether a text has no others.
std::string hexadecimal(std::span<const unsigned char> bytes);
bool isHexadecimal(std::string_view text);

}  // namespace tool

#endif  // CFGMIG_TOOL_REPORT_HASHEDBYTES_H
