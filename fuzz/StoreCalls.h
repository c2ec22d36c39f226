// StoreCalls.h -- the reading operations of a store with values as results. The shape that the contract promises for
// lists, and what the out-parameters hold after a failure, is required of every call.

#ifndef CFGMIG_FUZZ_STORECALLS_H
#define CFGMIG_FUZZ_STORECALLS_H

#include <optional>
#include <string>
#include <vector>

#include "CfgUtils.h"

namespace fuzz {

using Strings = std::vector<std::string>;
using Store = OVOConfigUtils::CfgUtils;

// The normal form that formatDn gives; nothing for null.
std::optional<std::string> formatted(const std::string& dn);

// Each returns what the operation answered; the result is empty unless that is 0.
int subordinates(Store& store, const std::string& base, int scope, Strings& dns);
int firstValue(Store& store, const std::string& dn, const std::string& attribute, std::optional<std::string>& value);
int allValues(Store& store, const std::string& dn, const std::string& attribute, Strings& values);
int attributeNames(Store& store, const std::string& dn, Strings& names);

int delValue(Store& store, const std::string& dn, const std::string& attribute, const Strings& values);

}  // namespace fuzz

#endif  // CFGMIG_FUZZ_STORECALLS_H
