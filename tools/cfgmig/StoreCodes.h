// StoreCodes.h -- what the store's codes mean, in words.

#ifndef CFGMIG_TOOL_STORECODES_H
#define CFGMIG_TOOL_STORECODES_H

namespace tool {

// What the LDAP result code `code` means. Never null.
const char* storeCodeText(int code);

}  // namespace tool

#endif  // CFGMIG_TOOL_STORECODES_H
