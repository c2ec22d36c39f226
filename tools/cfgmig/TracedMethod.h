// TracedMethod.h -- the trace identifiers of the methods that the tool listens to.

#ifndef CFGMIG_TOOL_TRACEDMETHOD_H
#define CFGMIG_TOOL_TRACEDMETHOD_H

namespace tool::traced {

inline constexpr unsigned long kProcessNewEntry = 0x51010700;
inline constexpr unsigned long kProcessUpdatedEntry = 0x51010800;
inline constexpr unsigned long kAddCfgEntry = 0x51011500;
inline constexpr unsigned long kMergeCfgEntry = 0x51011600;
inline constexpr unsigned long kMergeChangeDnEntry = 0x51011700;
inline constexpr unsigned long kReplAddEntry = 0x51011800;
inline constexpr unsigned long kCheckSchemaFiles = 0x51011f00;

// The methods that carry an entry, or build it anew from what the old one says.
inline constexpr bool isTransfer(unsigned long identifier) {
  return identifier == kAddCfgEntry || identifier == kMergeCfgEntry || identifier == kMergeChangeDnEntry ||
         identifier == kReplAddEntry;
}

}  // namespace tool::traced

#endif  // CFGMIG_TOOL_TRACEDMETHOD_H
