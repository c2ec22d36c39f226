// StandaloneMethods.h -- the trace identifiers of what a migration tool may call besides a merge: comparison, clean-up
// and schema files.

#ifndef CFGMIG_TESTS_LIBCFGMIG_STANDALONEMETHODS_H
#define CFGMIG_TESTS_LIBCFGMIG_STANDALONEMETHODS_H

#include "TraceRecord.h"

namespace standalone {

using fake::Traced;

inline constexpr Traced kCompareConfigFiles{"compareConfigFiles", 0x51010200, true};
inline constexpr Traced kCompareEntries{"compareEntries", 0x51010300, false};
inline constexpr Traced kRemoveDn{"removeDn", 0x51010400, false};
inline constexpr Traced kProcessPlugins{"processPlugins", 0x51011d00, false};
inline constexpr Traced kPluginCmp{"pluginCmp", 0x51012100, false};
inline constexpr Traced kRemoveDBInfo{"removeDBInfo", 0x51011a00, true};
inline constexpr Traced kRemoveCLInfo{"removeCLInfo", 0x51011b00, true};
inline constexpr Traced kEditCLInfo{"editCLInfo", 0x51011b00, true};  // intended: that of removeCLInfo
inline constexpr Traced kRemoveDBInstInfo{"removeDBInstInfo", 0x51011c00, true};
inline constexpr Traced kCheckSchemaFiles{"checkSchemaFiles", 0x51011f00, true};

}  // namespace standalone

#endif  // CFGMIG_TESTS_LIBCFGMIG_STANDALONEMETHODS_H
