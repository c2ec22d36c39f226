// SourceVersion.h -- the source version of a merge: given on the command line, or recognised.

#ifndef CFGMIG_TOOL_SOURCEVERSION_H
#define CFGMIG_TOOL_SOURCEVERSION_H

#include <string>
#include <vector>

#include "CfgUtils.h"

namespace tool {

struct SourceVersion {
  std::string version;
  std::string from;                   // what it was recognised from; empty when it was given
  std::vector<std::string> warnings;  // lines: what speaks against a version that was given
};

// `given` is the value of --from, a source version or empty. `path` is the old configuration's.
// Throws Failure with ExitStatus::usage when no version is given and the configuration does not tell: the lines name
// what was found.
SourceVersion sourceVersionOf(OVOConfigUtils::CfgUtils& store, const std::string& path, const std::string& given);

}  // namespace tool

#endif  // CFGMIG_TOOL_SOURCEVERSION_H
