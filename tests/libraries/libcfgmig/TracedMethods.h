// TracedMethods.h -- the trace identifiers, as a product's trace tools know them.

#ifndef CFGMIG_TESTS_LIBCFGMIG_TRACEDMETHODS_H
#define CFGMIG_TESTS_LIBCFGMIG_TRACEDMETHODS_H

#include "TraceRecord.h"

namespace traced {

using fake::Traced;

inline constexpr Traced kGetDns{"getDns", 0x51010100, true};
inline constexpr Traced kCompareConfigFiles{"compareConfigFiles", 0x51010200, true};
inline constexpr Traced kCompareEntries{"compareEntries", 0x51010300, false};
inline constexpr Traced kRemoveDn{"removeDn", 0x51010400, false};
inline constexpr Traced kMergeConfigFiles{"mergeConfigFiles", 0x51010500, true};
inline constexpr Traced kAdditionalChecks{"additionalChecks", 0x51010600, false};
inline constexpr Traced kProcessNewEntry{"processNewEntry", 0x51010700, false};
inline constexpr Traced kProcessUpdatedEntry{"processUpdatedEntry", 0x51010800, false};
inline constexpr Traced kAddTo41{"addTo41", 0x51010900, false};
inline constexpr Traced kAddTo51{"addTo51", 0x51010a00, false};
inline constexpr Traced kAddTo52{"addTo52", 0x51010b00, false};
inline constexpr Traced kAddTo60{"addTo60", 0x51010c00, false};
inline constexpr Traced kCheck41{"check41", 0x51010d00, false};
inline constexpr Traced kCheck51{"check51", 0x51010e00, false};
inline constexpr Traced kCheck52{"check52", 0x51010f00, false};
inline constexpr Traced kCheck60{"check60", 0x51011000, false};
inline constexpr Traced kMergeIn41{"mergeIn41", 0x51011100, false};
inline constexpr Traced kMergeIn51{"mergeIn51", 0x51011200, false};
inline constexpr Traced kMergeIn52{"mergeIn52", 0x51011300, false};
inline constexpr Traced kMergeIn60{"mergeIn60", 0x51011400, false};
inline constexpr Traced kAddCfgEntry{"addCfgEntry", 0x51011500, false};
inline constexpr Traced kMergeCfgEntry{"mergeCfgEntry", 0x51011600, false};
inline constexpr Traced kMergeChangeDnEntry{"mergeChangeDnEntry", 0x51011700, false};
inline constexpr Traced kReplAddEntry{"replAddEntry", 0x51011800, false};
inline constexpr Traced kIsMultiVal{"isMultiVal", 0x51011900, false};
inline constexpr Traced kRemoveDBInfo{"removeDBInfo", 0x51011a00, true};
inline constexpr Traced kRemoveCLInfo{"removeCLInfo", 0x51011b00, true};
inline constexpr Traced kEditCLInfo{"editCLInfo", 0x51011b00, true};  // intended: the identifier of removeCLInfo
inline constexpr Traced kRemoveDBInstInfo{"removeDBInstInfo", 0x51011c00, true};
inline constexpr Traced kProcessPlugins{"processPlugins", 0x51011d00, false};
inline constexpr Traced kIsOVOFile{"isOVOFile", 0x51011e00, false};
inline constexpr Traced kCheckSchemaFiles{"checkSchemaFiles", 0x51011f00, true};
inline constexpr Traced kProcessIncSchema{"processIncSchema", 0x51012000, false};
inline constexpr Traced kPluginCmp{"pluginCmp", 0x51012100, false};

}  // namespace traced

#endif  // CFGMIG_TESTS_LIBCFGMIG_TRACEDMETHODS_H
