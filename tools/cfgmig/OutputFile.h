// OutputFile.h -- a result of a command in a file of its own.

#ifndef CFGMIG_TOOL_OUTPUTFILE_H
#define CFGMIG_TOOL_OUTPUTFILE_H

#include <string>
#include <string_view>

#include "Commands.h"

namespace tool {

// Throws Failure when no file can be written at `path`. An empty path is none, and is no failure.
void refuseNoTarget(const std::string& path);

// Writes `text` to the file at `path`, which nobody but its owner may read: the text may hold what only the owner of a
// configuration may know. The file appears when it is whole; a different one that it replaces is kept beside it, and
// told. Throws Failure: failed, blocked or notUndone.
void writeOwnFile(const std::string& path, std::string_view text, Console& console);

}  // namespace tool

#endif  // CFGMIG_TOOL_OUTPUTFILE_H
