// Limits.h -- how much the store takes from a file.
//
// A configuration is kilobytes, with a hundred thousand entries some tens of megabytes. The limit is there for what is
// opened by mistake or sent in malice: a disk image, a log, a pipe that never ends. Reading takes about twice the
// size of a usual file in memory, and 10 times that of a file of the shortest lines there can be.

#ifndef CFGMIG_LIBCFGSTORE_LIMITS_H
#define CFGMIG_LIBCFGSTORE_LIMITS_H

#include <cstdint>
#include <optional>
#include <string_view>

namespace cfgstore {

struct Limits {
  std::uint64_t fileSize = std::uint64_t{1} << 30;  // in bytes; a larger file is refused before it is read
};

// The environment variable with the largest file size, as parseSize reads it. Looked at when the limits are first
// needed and were not set.
inline constexpr const char* kFileSizeVariable = "CFGMIG_MAX_FILE_SIZE";

// The limits for all files that are opened from now on, in the whole process. May be called from any thread at any
// time; a file that is being opened meanwhile is held to the old limits or the new ones. A file size of 0 takes back
// what was set.
void setLimits(const Limits& limits);

// The limits in force: those that were set, else those of the environment, else the usual ones. Throws
// std::runtime_error when the environment has something that is no size; the text says what was expected.
Limits limits();

// A number of bytes: decimal digits, with K, M or G behind them (in either letter case) for units of 1024. Nothing for
// anything else, zero and what does not fit included.
std::optional<std::uint64_t> parseSize(std::string_view text);

}  // namespace cfgstore

#endif  // CFGMIG_LIBCFGSTORE_LIMITS_H
