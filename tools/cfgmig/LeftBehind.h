// LeftBehind.h -- what a transfer that ended early has not carried.

#ifndef CFGMIG_TOOL_LEFTBEHIND_H
#define CFGMIG_TOOL_LEFTBEHIND_H

#include <string>
#include <vector>

#include "CfgUtils.h"

namespace tool {

// The names of those attributes of the old entry `oldDn` that have a value which the new entry `newDn` lacks, in the
// old entry's order. Both stores are asked after the merge, so what a rule has taken out is not counted. Left out is
// what no transfer between existing entries carries: object classes, the server's version and, between two DNs, the
// naming value.
std::vector<std::string> attributesLeftBehind(OVOConfigUtils::CfgUtils& oldStore, const std::string& oldDn,
                                              OVOConfigUtils::CfgUtils& newStore, const std::string& newDn);

}  // namespace tool

#endif  // CFGMIG_TOOL_LEFTBEHIND_H
