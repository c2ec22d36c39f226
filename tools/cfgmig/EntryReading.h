// EntryReading.h -- what an entry holds, as values.

#ifndef CFGMIG_TOOL_ENTRYREADING_H
#define CFGMIG_TOOL_ENTRYREADING_H

#include <string>
#include <vector>

#include "CfgUtils.h"

namespace tool {

// The values of an attribute, in the store's order; none when there is no such entry or attribute.
std::vector<std::string> valuesOf(OVOConfigUtils::CfgUtils& store, const std::string& dn, const std::string& attribute);

// The names of the entry's attributes, in the store's order; none when there is no such entry.
std::vector<std::string> attributesOf(OVOConfigUtils::CfgUtils& store, const std::string& dn);

bool hasEntry(OVOConfigUtils::CfgUtils& store, const std::string& dn);

}  // namespace tool

#endif  // CFGMIG_TOOL_ENTRYREADING_H
