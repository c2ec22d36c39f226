// StoreContent.h -- all that a store holds, as lines that a test can compare.

#ifndef CFGMIG_TESTS_LIBCFGSTORE_STORECONTENT_H
#define CFGMIG_TESTS_LIBCFGSTORE_STORECONTENT_H

#include "ConfigStore.h"
#include "TestStore.h"

namespace cfgstore::test {

// Entries and values with the numbers of their lines, with "*" behind the entries that are set aside and "!" behind
// values that are repeated.
Strings contentOf(ConfigStore& store);

// The entries by themselves.
Strings entriesOf(ConfigStore& store);

// Edits some of the entries E0 to E7 at random (LdifGenerator.h), but not those that are set aside.
void editSome(TestStore& store);

}  // namespace cfgstore::test

#endif  // CFGMIG_TESTS_LIBCFGSTORE_STORECONTENT_H
