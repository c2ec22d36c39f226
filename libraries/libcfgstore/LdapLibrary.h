// LdapLibrary.h -- libldap, loaded when it is first needed.
//
// It brings a dozen other libraries along, for connections that the store never makes, and loading them takes as long
// as all else that a small migration does. Most configurations have no DN that needs it.

#ifndef CFGMIG_LIBCFGSTORE_LDAPLIBRARY_H
#define CFGMIG_LIBCFGSTORE_LDAPLIBRARY_H

#include <ldap.h>

namespace cfgstore {

// The functions of libldap that are used, under their names there.
struct LdapLibrary {
  decltype(&::ldap_str2dn) str2dn;
  decltype(&::ldap_dnfree) dnfree;

  // Loads it at the first call, for good; several threads may call at once. Throws std::runtime_error, which says why,
  // when it is not there.
  static const LdapLibrary& get();
};

}  // namespace cfgstore

#endif  // CFGMIG_LIBCFGSTORE_LDAPLIBRARY_H
