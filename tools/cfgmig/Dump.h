// Dump.h -- the whole content of a configuration, for people and for programs.

#ifndef CFGMIG_TOOL_DUMP_H
#define CFGMIG_TOOL_DUMP_H

#include <cstddef>
#include <iosfwd>
#include <string_view>

#include "Snapshot.h"

namespace tool {

enum class DumpSecrets { show, leaveOut };

// Both write entries, attributes and values in the order of the snapshot, and return how many values were left out.
// `file` is the name of the file, as the user gave it. docs/dump.md describes the two forms.

// Every text from the file is in printable form, so that a line is a line.
std::size_t writeDumpText(const cfgstore::Snapshot& content, DumpSecrets secrets, std::ostream& out);

// ASCII throughout.
std::size_t writeDumpJson(const cfgstore::Snapshot& content, std::string_view file, DumpSecrets secrets,
                          std::ostream& out);

}  // namespace tool

#endif  // CFGMIG_TOOL_DUMP_H
