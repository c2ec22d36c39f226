#include "LdapLibrary.h"

#include <dlfcn.h>

#include <stdexcept>
#include <string>

namespace cfgstore {
namespace {

[[noreturn]] void fail() {
  const char* const why = ::dlerror();
  throw std::runtime_error(std::string("a DN needs libldap to be read, which cannot be loaded: ") +
                           (why != nullptr ? why : CFGSTORE_LDAP_FILE));
}

template <class Function>
Function find(void* library, const char* name) {
  void* const found = ::dlsym(library, name);
  if (found == nullptr) fail();
  return reinterpret_cast<Function>(found);
}

LdapLibrary load() {
  void* const library = ::dlopen(CFGSTORE_LDAP_FILE, RTLD_NOW | RTLD_LOCAL);
  if (library == nullptr) fail();
  return {find<decltype(LdapLibrary::str2dn)>(library, "ldap_str2dn"),
          find<decltype(LdapLibrary::dnfree)>(library, "ldap_dnfree")};
}

}  // namespace

const LdapLibrary& LdapLibrary::get() {
  static const LdapLibrary library = load();  // tried again at the next call if it throws
  return library;
}

}  // namespace cfgstore
