// Outputs.h -- whether what a command has to say reached the place where it was to go.

#ifndef CFGMIG_TOOL_OUTPUTS_H
#define CFGMIG_TOOL_OUTPUTS_H

#include <string>
#include <vector>

#include "Commands.h"

namespace tool {

// Flushes standard output. A line for standard output and one for the trace, if some of it could not be written; none
// when everything was.
std::vector<std::string> missingOutputs(Console& console);

}  // namespace tool

#endif  // CFGMIG_TOOL_OUTPUTS_H
