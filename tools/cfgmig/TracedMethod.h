// TracedMethod.h -- the trace identifiers of the methods that the tool listens to.

#ifndef CFGMIG_TOOL_TRACEDMETHOD_H
#define CFGMIG_TOOL_TRACEDMETHOD_H

namespace tool::traced {

inline constexpr unsigned long kProcessNewEntry = 0x51010700;
inline constexpr unsigned long kProcessUpdatedEntry = 0x51010800;
inline constexpr unsigned long kAddTo41 = 0x51010900;
inline constexpr unsigned long kAddTo52 = 0x51010b00;
inline constexpr unsigned long kAddTo60 = 0x51010c00;
inline constexpr unsigned long kCheck51 = 0x51010e00;
inline constexpr unsigned long kMergeIn41 = 0x51011100;
inline constexpr unsigned long kMergeIn51 = 0x51011200;
inline constexpr unsigned long kMergeIn52 = 0x51011300;
inline constexpr unsigned long kMergeIn60 = 0x51011400;
inline constexpr unsigned long kAddCfgEntry = 0x51011500;
inline constexpr unsigned long kMergeCfgEntry = 0x51011600;
inline constexpr unsigned long kMergeChangeDnEntry = 0x51011700;
inline constexpr unsigned long kReplAddEntry = 0x51011800;
inline constexpr unsigned long kRemoveDbInfo = 0x51011a00;
inline constexpr unsigned long kEditClInfo = 0x51011b00;  // and removeCLInfo
inline constexpr unsigned long kRemoveDbInstInfo = 0x51011c00;
inline constexpr unsigned long kCheckSchemaFiles = 0x51011f00;
inline constexpr unsigned long kProcessIncSchema = 0x51012000;

// The methods that carry an entry, or build it anew from what the old one says.
inline constexpr bool isTransfer(unsigned long identifier) {
  return identifier == kAddCfgEntry || identifier == kMergeCfgEntry || identifier == kMergeChangeDnEntry ||
         identifier == kReplAddEntry;
}

// The methods that clean a configuration up; no merge calls them.
inline constexpr bool isCleanUp(unsigned long identifier) {
  return identifier == kRemoveDbInfo || identifier == kEditClInfo || identifier == kRemoveDbInstInfo ||
         identifier == kCheckSchemaFiles;
}

}  // namespace tool::traced

#endif  // CFGMIG_TOOL_TRACEDMETHOD_H
