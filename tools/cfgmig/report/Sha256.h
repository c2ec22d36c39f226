// Sha256.h -- the fingerprint by which a file is known again.

#ifndef CFGMIG_TOOL_REPORT_SHA256_H
#define CFGMIG_TOOL_REPORT_SHA256_H

#include <span>
#include <string>
#include <string_view>

namespace tool {

// SHA-256 (FIPS 180-4) of the bytes: 64 lower-case hexadecimal digits. Throws std::bad_alloc.
std::string sha256(std::string_view bytes);

// The same of pieces, laid end to end.
std::string sha256(std::span<const std::string_view> pieces);

// The same of the content of the file at `path`; empty when it cannot be read.
std::string sha256OfFile(const std::string& path);

// True for what sha256 can return.
bool isSha256(std::string_view text);

}  // namespace tool

#endif  // CFGMIG_TOOL_REPORT_SHA256_H
