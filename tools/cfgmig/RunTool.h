// RunTool.h -- the whole tool as one function.

#ifndef CFGMIG_TOOL_RUNTOOL_H
#define CFGMIG_TOOL_RUNTOOL_H

#include <string>
#include <vector>

#include "Commands.h"

namespace tool {

// Runs the command line `words` (without the program's name). Throws nothing: every failure is told on console.err
// and becomes a status. Results that cannot be written to console.out, and a trace that cannot be written, are a
// failure as well.
ExitStatus runTool(const std::vector<std::string>& words, Console& console);

}  // namespace tool

#endif  // CFGMIG_TOOL_RUNTOOL_H
