// TracedMethods.h -- the trace identifiers, as a product's trace tools know them.

#ifndef CFGMIG_TESTS_LIBCFGMIG_TRACEDMETHODS_H
#define CFGMIG_TESTS_LIBCFGMIG_TRACEDMETHODS_H

#include "TraceRecord.h"

namespace traced {

using fake::Traced;

inline constexpr Traced kGetDns{"getDns", 0x51010100, true};
inline constexpr Traced kMergeConfigFiles{"mergeConfigFiles", 0x51010500, true};
inline constexpr Traced kAdditionalChecks{"additionalChecks", 0x51010600, false};
inline constexpr Traced kProcessNewEntry{"processNewEntry", 0x51010700, false};
inline constexpr Traced kProcessUpdatedEntry{"processUpdatedEntry", 0x51010800, false};
inline constexpr Traced kAddTo60{"addTo60", 0x51010c00, false};
inline constexpr Traced kCheck60{"check60", 0x51011000, false};
inline constexpr Traced kMergeIn60{"mergeIn60", 0x51011400, false};
inline constexpr Traced kAddCfgEntry{"addCfgEntry", 0x51011500, false};
inline constexpr Traced kMergeCfgEntry{"mergeCfgEntry", 0x51011600, false};
inline constexpr Traced kMergeChangeDnEntry{"mergeChangeDnEntry", 0x51011700, false};
inline constexpr Traced kIsMultiVal{"isMultiVal", 0x51011900, false};
inline constexpr Traced kIsOVOFile{"isOVOFile", 0x51011e00, false};
inline constexpr Traced kProcessIncSchema{"processIncSchema", 0x51012000, false};

}  // namespace traced

#endif  // CFGMIG_TESTS_LIBCFGMIG_TRACEDMETHODS_H
