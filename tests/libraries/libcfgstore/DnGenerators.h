// DnGenerators.h -- DNs for property tests: names that are made first, and the many ways of writing one.

#ifndef CFGMIG_TESTS_LIBCFGSTORE_DNGENERATORS_H
#define CFGMIG_TESTS_LIBCFGSTORE_DNGENERATORS_H

#include <rapidcheck.h>

#include <cstdint>
#include <iosfwd>
#include <string>
#include <string_view>
#include <vector>

namespace cfgstore::testing {

// A DN as a name, before it is written. Values are bytes without escapes, without blanks at the ends, and without
// runs of blanks. The types of one RDN differ, so that no two of its pairs can be equal.
struct ModelPair {
  std::size_t type;  // row of the table of types
  std::string value;
};
using ModelRdn = std::vector<ModelPair>;  // at least one
using ModelDn = std::vector<ModelRdn>;

void showValue(const ModelPair& pair, std::ostream& out);  // for RapidCheck

rc::Gen<std::string> anyValue();
rc::Gen<ModelDn> anyDn();

// One spelling of `dn`, the same for the same `seed`: letter case, blanks, separators, the order of pairs, names or
// OIDs as types, and escapes, quotes or hex for the values.
std::string spelled(const ModelDn& dn, std::uint32_t seed);

// Texts over the characters of `alphabet`.
rc::Gen<std::string> textOf(std::string_view alphabet);

}  // namespace cfgstore::testing

#endif  // CFGMIG_TESTS_LIBCFGSTORE_DNGENERATORS_H
