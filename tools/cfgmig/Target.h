// Target.h -- where a command writes, settled before any file is opened.

#ifndef CFGMIG_TOOL_TARGET_H
#define CFGMIG_TOOL_TARGET_H

#include <span>
#include <string>

#include "Commands.h"

namespace tool {

// A file of a command line, and what it is there: "the old configuration".
struct NamedFile {
  std::string path;  // empty when the command line names none
  const char* role;
};

// Throws Failure with ExitStatus::usage when two of the files are one, however they are named.
void refuseSameFile(const NamedFile& left, const NamedFile& right);

// The file that a command changes: the one of --output or, without it, `changed`. It may not be one of the files that
// are only read, and the trace file may not be any of them.
// Throws Failure: usage for files that are one, failed when no file can be written there.
std::string targetOf(const Arguments& arguments, const NamedFile& changed, std::span<const NamedFile> onlyRead);

}  // namespace tool

#endif  // CFGMIG_TOOL_TARGET_H
