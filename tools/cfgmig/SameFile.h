// SameFile.h -- questions about paths that must be answered before a file is touched.

#ifndef CFGMIG_TOOL_SAMEFILE_H
#define CFGMIG_TOOL_SAMEFILE_H

#include <string>

namespace tool {

// True when both paths lead to one file, be it through symbolic or hard links. Two files that do not exist yet are the
// same when they have the same name in the same directory.
bool isSameFile(const std::string& left, const std::string& right);

// Why no file can be written at `path`: its directory is missing, it is itself a directory. Empty when nothing speaks
// against it so far.
std::string whyNoTarget(const std::string& path);

}  // namespace tool

#endif  // CFGMIG_TOOL_SAMEFILE_H
