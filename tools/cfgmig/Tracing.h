// Tracing.h -- where a command's trace records go.

#ifndef CFGMIG_TOOL_TRACING_H
#define CFGMIG_TOOL_TRACING_H

#include <string>

#include "Commands.h"

namespace tool {

// The file that trace records will be appended to: that of --trace, else that of the environment. Empty when there is
// none or it is standard error. Throws Failure with ExitStatus::usage when the arguments make no sense.
std::string traceFile(const Arguments& arguments);

// Starts tracing as --trace and --trace-events say or, without them, as the environment says.
// Throws Failure: usage for a wrong environment, failed for a file that cannot be opened.
void startTracing(const Arguments& arguments);

}  // namespace tool

#endif  // CFGMIG_TOOL_TRACING_H
