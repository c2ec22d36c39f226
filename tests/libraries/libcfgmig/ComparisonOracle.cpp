#include "ComparisonOracle.h"

#include <algorithm>

#include "SimpleDn.h"

namespace oracle {

namespace {

using fake::Attribute;
using fake::equalIgnoringCase;
using Values = std::vector<std::string>;
using Attributes = std::vector<Attribute>;

// Dropped when empty.
void keep(Attributes& attributes, const std::string& name, const Values& values) {
  const auto at = std::find_if(attributes.begin(), attributes.end(),
                               [&](const Attribute& held) { return equalIgnoringCase(held.name, name); });
  if (values.empty()) {
    attributes.erase(at);
  } else {
    at->values = values;
  }
}

std::string withSingleBlanks(const std::string& text) {
  std::string result;
  for (const char c : text) {
    if (c != ' ' || result.empty() || result.back() != ' ') {
      result += c;
    }
  }
  return result;
}

const Values* plugins(const Compared& configuration, const std::string& dn) {
  const auto entry = configuration.entries.find(dn);
  if (entry == configuration.entries.end()) {
    return nullptr;
  }
  for (const Attribute& attribute : entry->second) {
    if (equalIgnoringCase(attribute.name, "zor-slapdPlugin")) {
      return &attribute.values;
    }
  }
  return nullptr;
}

bool thin(Compared& from, const Compared& with, const std::string& dn) {
  const Values* theirs = plugins(with, dn);
  const Values* ours = plugins(from, dn);
  if (theirs == nullptr || theirs->empty() || ours == nullptr) {
    return false;
  }
  Values left;
  for (std::size_t i = 0; i < ours->size(); ++i) {
    if (i >= theirs->size() || withSingleBlanks((*ours)[i]) != withSingleBlanks((*theirs)[i])) {
      left.push_back((*ours)[i]);
    }
  }
  if (left != *ours) {
    keep(from.entries[dn], "zor-slapdPlugin", left);
  }
  return true;
}

void thinBackends(Compared& from, const Compared& with, const std::string& product) {
  const std::string end = ",CN=ZOR " + product + ",CN=SCHEMAS,CN=CONFIGURATION";
  if (thin(from, with, "CN=DIRECTORY,CN=RDBM BACKENDS" + end)) {
    thin(from, with, "CN=SCHEMADB,CN=LDCF BACKENDS" + end);
  }
}

// Whether both entries are the same; what matches before the first difference is taken out of `ours`.
bool strip(Attributes& ours, const Attributes& theirs) {
  const Attributes before = ours;
  for (std::size_t n = 0; n < before.size() && n < theirs.size(); ++n) {
    const Attribute& our = before[n];
    const Attribute& their = theirs[n];
    if (!equalIgnoringCase(our.name, their.name)) {
      return false;
    }
    const bool equalCounts = our.values.size() == their.values.size();
    bool allMatch = equalCounts;
    Values left;
    for (std::size_t i = 0; i < our.values.size(); ++i) {
      const bool matches = i < their.values.size() && equalIgnoringCase(our.values[i], their.values[i]);
      allMatch = allMatch && matches;
      // Lists of one length are given up at the first difference, lists of two lengths are not.
      if (!matches || (equalCounts && !allMatch)) {
        left.push_back(our.values[i]);
      }
    }
    if (left != our.values) {
      keep(ours, our.name, left);
    }
    if (!allMatch) {
      return false;
    }
  }
  return before.size() == theirs.size();
}

}  // namespace

void compare(Compared& from, const Compared& with) {
  const std::vector<std::string> before = from.inventory;
  for (const std::string& dn : before) {
    if (std::find(with.inventory.begin(), with.inventory.end(), dn) == with.inventory.end()) {
      continue;
    }
    const std::string form = fake::simpleDn(dn);
    for (const char* product : {"DIRECTORY", "HALVORN"}) {
      if (form == std::string("CN=DIRECTORY,CN=RDBM BACKENDS,CN=ZOR ") + product + ",CN=SCHEMAS,CN=CONFIGURATION") {
        thinBackends(from, with, product);
      }
    }
    const auto ours = from.entries.find(form);
    const auto theirs = with.entries.find(form);
    Attributes none;
    if (!strip(ours == from.entries.end() ? none : ours->second,
               theirs == with.entries.end() ? Attributes() : theirs->second)) {
      continue;
    }
    for (std::size_t i = from.inventory.size(); i-- > 0;) {
      if (from.inventory[i] == dn) {
        from.inventory[i] = from.inventory.back();
        from.inventory.pop_back();
        break;
      }
    }
    from.entries.erase(form);
  }
}

}  // namespace oracle
