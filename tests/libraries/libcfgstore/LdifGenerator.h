// LdifGenerator.h -- random LDIF files in every spelling, with what they hold.

#ifndef CFGMIG_TESTS_LIBCFGSTORE_LDIFGENERATOR_H
#define CFGMIG_TESTS_LIBCFGSTORE_LDIFGENERATOR_H

#include <rapidcheck.h>

#include <iosfwd>
#include <string>

#include "StoreModel.h"

namespace cfgstore::test {

struct GeneratedLdif {
  std::string text;
  Content content;
};

void showValue(const GeneratedLdif& file, std::ostream& out);

// A value of one to a few dozen bytes, or empty; no zero bytes. Some of them need base64.
rc::Gen<std::string> genValue();

// Up to five entries with the DNs CN=E0,CN=CONFIGURATION and so on, with the attributes a to d.
rc::Gen<GeneratedLdif> genLdif();

}  // namespace cfgstore::test

#endif  // CFGMIG_TESTS_LIBCFGSTORE_LDIFGENERATOR_H
