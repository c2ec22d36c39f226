// StoreCodes.h -- what the store's codes mean and its operations are called, in words.

#ifndef CFGMIG_TOOL_STORECODES_H
#define CFGMIG_TOOL_STORECODES_H

#include "ConfigStore.h"

namespace tool {

// What the LDAP result code `code` means. Never null.
const char* storeCodeText(int code);

// As the store's interface names it: "addValue". Never null.
const char* operationName(cfgstore::Operation operation);

}  // namespace tool

#endif  // CFGMIG_TOOL_STORECODES_H
