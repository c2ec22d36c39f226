// ResultCode.h -- what the operations of the store answer. The numbers are LDAP result codes.

#ifndef CFGMIG_LIBCFGSTORE_RESULTCODE_H
#define CFGMIG_LIBCFGSTORE_RESULTCODE_H

namespace cfgstore {

enum ResultCode : int {
  kSuccess = 0,
  kNoSuchAttribute = 16,         // the entry lacks the attribute, or the attribute lacks a value to be deleted
  kUndefinedAttributeType = 17,  // a name under which no attribute can be written to a file
  kNoSuchObject = 32,
  kInvalidDnSyntax = 34,
  kEntryAlreadyExists = 68,
  kParamError = 89,  // a null argument, an unknown scope, a cursor that does not belong to the entry
};

}  // namespace cfgstore

#endif  // CFGMIG_LIBCFGSTORE_RESULTCODE_H
