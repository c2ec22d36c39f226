// SizeLimit.h -- the largest configuration that a command reads.

#ifndef CFGMIG_TOOL_SIZELIMIT_H
#define CFGMIG_TOOL_SIZELIMIT_H

#include "Commands.h"
#include "RemarkKind.h"

namespace tool {

// Sets the limit that --max-size gives for every configuration that is opened from now on. Without it the store's own
// holds, or that of its environment variable.
// Throws Failure with ExitStatus::usage when the value is no size.
void limitSizes(const Arguments& arguments);

// What is to follow the text of a problem of this kind: how this tool raises the limit of size, else nothing.
const char* sizeHint(cfgstore::RemarkKind kind);

}  // namespace tool

#endif  // CFGMIG_TOOL_SIZELIMIT_H
