// ComparisonOracle.h -- what a comparison is to leave behind, worked out on plain containers, without stores, calls or
// failures. It shares no code with the library.

#ifndef CFGMIG_TESTS_LIBCFGMIG_COMPARISONORACLE_H
#define CFGMIG_TESTS_LIBCFGMIG_COMPARISONORACLE_H

#include <map>
#include <string>
#include <vector>

#include "Content.h"

namespace oracle {

struct Compared {
  std::vector<std::string> inventory;                           // normal forms, in order
  std::map<std::string, std::vector<fake::Attribute>> entries;  // by the fakes' simple form
  bool operator==(const Compared&) const = default;
};

// Strips from `from` what `with` holds unchanged.
void compare(Compared& from, const Compared& with);

}  // namespace oracle

#endif  // CFGMIG_TESTS_LIBCFGMIG_COMPARISONORACLE_H
