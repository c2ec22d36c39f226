// TableLineExpectations.h -- for the parts of TableLine: what calls and entries are like.

#ifndef CFGMIG_TESTS_DOCS_TABLELINEEXPECTATIONS_H
#define CFGMIG_TESTS_DOCS_TABLELINEEXPECTATIONS_H

#include <algorithm>
#include <string>
#include <vector>

#include "SimpleDn.h"
#include "TableLine.h"

namespace pages {

inline constexpr const char* kOldValue = "value of the old server";
inline constexpr const char* kClass = "OBJECTCLASS";

inline bool samePlace(const std::string& left, const std::string& right) {
  return fake::simpleDn(left) == fake::simpleDn(right);
}

inline bool has(const std::vector<std::string>& names, const std::string& name) {
  return std::find(names.begin(), names.end(), name) != names.end();
}

// Gives an entry this setting, in place of the one it has.
inline void set(fake::Entry& entry, const std::string& name, const migration::Values& values) {
  for (fake::Attribute& attribute : entry.attributes) {
    if (!sameText(attribute.name, name)) continue;
    attribute.values = values;
    return;
  }
  entry.attributes.push_back({name, values});
}

inline void take(fake::Entry& entry, const std::string& name) {
  std::erase_if(entry.attributes, [&](const fake::Attribute& attribute) { return sameText(attribute.name, name); });
}

// Tests of a call: it writes this value to this setting of the new configuration; it adds this entry.
inline auto isValueWrite(const std::string& dn, const std::string& attribute, const std::string& value) {
  return [=](const migration::Call& call) {
    return call.store == "new" && (call.operation == "addValue" || call.operation == "setValue") &&
           samePlace(call.dn, dn) && sameText(call.attribute, attribute) && has(call.values, value);
  };
}

inline auto isEntryAddition(const std::string& dn) {
  return [=](const migration::Call& call) {
    return call.store == "new" && call.operation == "addEntry" && samePlace(call.dn, dn) && call.rc == 0;
  };
}

template <class IsIt>
void TableLine::expectCall(const Outcome& outcome, const char* what, IsIt isIt) const {
  const bool made = std::any_of(outcome.calls.begin(), outcome.calls.end(),
                                [&](const migration::Call& call) { return call.method() == row.by && isIt(call); });
  EXPECT_TRUE(made) << row.by << " did not " << what;
}

template <class IsIt>
void TableLine::expectCallUnder(const Outcome& outcome, const char* what, IsIt isIt) const {
  const bool made = std::any_of(outcome.calls.begin(), outcome.calls.end(),
                                [&](const migration::Call& call) { return has(call.methods, row.by) && isIt(call); });
  EXPECT_TRUE(made) << "nothing did " << what << " for " << row.by;
}

}  // namespace pages

#endif  // CFGMIG_TESTS_DOCS_TABLELINEEXPECTATIONS_H
