// Fingerprint.h -- by what undo, and an apply that was made before, know a file again.

#ifndef CFGMIG_TOOL_MIGRATION_FINGERPRINT_H
#define CFGMIG_TOOL_MIGRATION_FINGERPRINT_H

#include <span>
#include <string>
#include <string_view>

namespace tool {

// XXH3 of the bytes, 128 bits of it: "xxh3:" and 32 lower-case hexadecimal digits. Made as fast as memory is read, and
// for one purpose: to notice that somebody has changed a file. Whoever may write the file and wants it not to be
// noticed can have that more easily; what is handed on from one person to another, as a plan is, has SHA-256
// (Sha256.h).
std::string fingerprint(std::string_view bytes);

// The same of pieces, laid end to end.
std::string fingerprint(std::span<const std::string_view> pieces);

// The same of the content of the file at `path`; empty when it cannot be read.
std::string fingerprintOfFile(const std::string& path);

// True for what fingerprint can return.
bool isFingerprint(std::string_view text);

}  // namespace tool

#endif  // CFGMIG_TOOL_MIGRATION_FINGERPRINT_H
