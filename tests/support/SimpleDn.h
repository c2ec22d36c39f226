// SimpleDn.h -- the fake store's idea of when two DNs are the same: letter case and the blanks around commas do not
// count. Nothing else of DN syntax is known here; the tests use no DN that needs more.

#ifndef CFGMIG_TESTS_SUPPORT_SIMPLEDN_H
#define CFGMIG_TESTS_SUPPORT_SIMPLEDN_H

#include <string>
#include <string_view>

namespace fake {

// Upper-case, without blanks around commas and at the ends. Empty when `dn` names nothing (has no "=").
std::string simpleDn(std::string_view dn);

// Equal without regard to ASCII letter case.
bool equalIgnoringCase(std::string_view left, std::string_view right);

}  // namespace fake

#endif  // CFGMIG_TESTS_SUPPORT_SIMPLEDN_H
