// StoreAnswers.h -- store operations whose results are values: what comes back is copied and released at once. For
// tests of a store from the outside, not of the library.

#ifndef CFGMIG_TESTS_SUPPORT_STOREANSWERS_H
#define CFGMIG_TESTS_SUPPORT_STOREANSWERS_H

#include <optional>
#include <string>
#include <vector>

#include "CfgUtils.h"

namespace answers {

using OVOConfigUtils::CfgUtils;

// A code with what came with it. Each out-parameter starts out as rubbish, so that it shows when it is not set.
struct OfValue {
  int rc;
  std::optional<std::string> value;
};

struct OfList {
  int rc;
  bool isNull;  // no list at all
  int count;
  std::vector<std::string> values;
};

OfValue value(CfgUtils& store, const char* dn, const char* attribute);
OfList values(CfgUtils& store, const char* dn, const char* attribute);
OfList subordinates(CfgUtils& store, const char* base, int scope);

// A walk over all attributes: their names, or nothing when any step answers other than 0.
std::optional<std::vector<std::string>> attributeNames(CfgUtils& store, const char* dn);

int remove(CfgUtils& store, const char* dn, const char* attribute, const std::vector<std::string>& values);

// Nothing for null.
std::optional<std::string> normalForm(const char* dn);

}  // namespace answers

#endif  // CFGMIG_TESTS_SUPPORT_STOREANSWERS_H
