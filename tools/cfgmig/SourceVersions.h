// SourceVersions.h -- the old server versions that can be migrated.

#ifndef CFGMIG_TOOL_SOURCEVERSIONS_H
#define CFGMIG_TOOL_SOURCEVERSIONS_H

#include <span>
#include <string>
#include <string_view>

namespace tool {

// The versions for which the library has rules. It merges nothing for any other and calls that a success, so a version
// that is not in this table never reaches it.
inline constexpr const char* kSourceVersions[] = {"4.1", "5.1", "5.2", "6.0"};

inline std::span<const char* const> sourceVersions() { return kSourceVersions; }

bool isSourceVersion(std::string_view version);

// The versions as a text: "4.1, 5.1, 5.2, 6.0".
std::string listOfSourceVersions();

}  // namespace tool

#endif  // CFGMIG_TOOL_SOURCEVERSIONS_H
