// TracedMethods.h -- the methods that write trace records: identifier and class of each. Not installed.

#ifndef CFGMIG_LIBCFGMIG_INTERNAL_TRACEDMETHODS_H
#define CFGMIG_LIBCFGMIG_INTERNAL_TRACEDMETHODS_H

#include <cstdint>

namespace cfgmig {

// The words that all records of a class of methods carry, and the bits of the event mask that enable them.
struct MethodClass {
  unsigned long entryRecord;
  std::uint32_t entryEvents;
  unsigned long exitClass;
  unsigned long exitEvent;
  std::uint32_t exitEvents;
};

inline constexpr MethodClass kPublic{0x3200000, 0x1000, 33, 0x1000, 0x3000};       // what a migration tool calls
inline constexpr MethodClass kInternal{0x32a0000, 0x10000, 43, 0x10000, 0x30000};  // everything else

struct TracedMethod {
  unsigned long identifier;
  const MethodClass& methodClass;
};

inline constexpr TracedMethod kGetDns{0x51010100, kPublic};
inline constexpr TracedMethod kCompareConfigFiles{0x51010200, kPublic};
inline constexpr TracedMethod kCompareEntries{0x51010300, kInternal};
inline constexpr TracedMethod kRemoveDn{0x51010400, kInternal};
inline constexpr TracedMethod kMergeConfigFiles{0x51010500, kPublic};
inline constexpr TracedMethod kAdditionalChecks{0x51010600, kInternal};
inline constexpr TracedMethod kProcessNewEntry{0x51010700, kInternal};
inline constexpr TracedMethod kProcessUpdatedEntry{0x51010800, kInternal};
inline constexpr TracedMethod kAddTo41{0x51010900, kInternal};
inline constexpr TracedMethod kAddTo51{0x51010a00, kInternal};
inline constexpr TracedMethod kAddTo52{0x51010b00, kInternal};
inline constexpr TracedMethod kAddTo60{0x51010c00, kInternal};
inline constexpr TracedMethod kCheck41{0x51010d00, kInternal};
inline constexpr TracedMethod kCheck51{0x51010e00, kInternal};
inline constexpr TracedMethod kCheck52{0x51010f00, kInternal};
inline constexpr TracedMethod kCheck60{0x51011000, kInternal};
inline constexpr TracedMethod kMergeIn41{0x51011100, kInternal};
inline constexpr TracedMethod kMergeIn51{0x51011200, kInternal};
inline constexpr TracedMethod kMergeIn52{0x51011300, kInternal};
inline constexpr TracedMethod kMergeIn60{0x51011400, kInternal};
inline constexpr TracedMethod kAddCfgEntry{0x51011500, kInternal};
inline constexpr TracedMethod kMergeCfgEntry{0x51011600, kInternal};
inline constexpr TracedMethod kMergeChangeDnEntry{0x51011700, kInternal};
inline constexpr TracedMethod kReplAddEntry{0x51011800, kInternal};
inline constexpr TracedMethod kIsMultiVal{0x51011900, kInternal};
inline constexpr TracedMethod kRemoveDBInfo{0x51011a00, kPublic};
inline constexpr TracedMethod kRemoveCLInfo{0x51011b00, kPublic};
inline constexpr TracedMethod kEditCLInfo{0x51011b00, kPublic};  // intended: it traces as removeCLInfo
inline constexpr TracedMethod kRemoveDBInstInfo{0x51011c00, kPublic};
inline constexpr TracedMethod kProcessPlugins{0x51011d00, kInternal};
inline constexpr TracedMethod kIsOVOFile{0x51011e00, kInternal};
inline constexpr TracedMethod kCheckSchemaFiles{0x51011f00, kPublic};
inline constexpr TracedMethod kProcessIncSchema{0x51012000, kInternal};
inline constexpr TracedMethod kPluginCmp{0x51012100, kInternal};

}  // namespace cfgmig

#endif  // CFGMIG_LIBCFGMIG_INTERNAL_TRACEDMETHODS_H
