// ExamplePath.h -- where the shipped examples are.

#ifndef CFGMIG_TESTS_TOOL_EXAMPLEPATH_H
#define CFGMIG_TESTS_TOOL_EXAMPLEPATH_H

#include <string>

// "5.1/old.ldif" is a file of the example of that version.
inline std::string examplePath(const std::string& name) { return CFGMIG_EXAMPLES "/" + name; }

// The old configurations of the examples, and their versions.
struct ExampleSource {
  const char* version;
  const char* oldFile;
};
inline constexpr ExampleSource kExampleSources[] = {
    {"4.1", "4.1/old.ldif"},      {"5.1", "5.1/old.ldif"},
    {"5.1", "5.1/old-peer.ldif"}, {"5.1", "5.1/old-former-master.ldif"},
    {"5.2", "5.2/old.ldif"},      {"6.0", "6.0/old.ldif"},
};

#endif  // CFGMIG_TESTS_TOOL_EXAMPLEPATH_H
