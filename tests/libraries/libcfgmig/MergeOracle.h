// MergeOracle.h -- what a merge is to leave behind, worked out on plain containers, without stores, calls or failures.
// It shares no code with the library and is written from the point of view of the settings, not of the calls.

#ifndef CFGMIG_TESTS_LIBCFGMIG_MERGEORACLE_H
#define CFGMIG_TESTS_LIBCFGMIG_MERGEORACLE_H

#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "Content.h"

namespace oracle {

using Values = std::vector<std::string>;

// An entry's attributes in their order; names in upper case.
using Attributes = std::vector<std::pair<std::string, Values>>;

// A configuration: normal DN to attributes, and the order of the DNs.
struct Configuration {
  std::vector<std::string> order;
  std::map<std::string, Attributes> entries;
};

Configuration configurationOf(const fake::Content& content);

// Attribute orders within an entry do not count in this.
bool sameSettings(const Configuration& left, const Configuration& right);

// The transfers of one entry. `false` when the library's method answers 0.
bool addEntry(const std::string& dn, const Configuration& from, Configuration& to);
bool mergeEntry(const std::string& dn, const Configuration& from, Configuration& to);
bool moveEntry(const std::string& dn, const std::string& newDn, const Configuration& from, Configuration& to);

// A whole merge of a configuration of this version; changes both.
void merge(const std::string& version, Configuration& from, Configuration& to);

// What the rules are made of. Attribute names in upper case, DNs in normal form.
std::string upper(std::string text);
bool contains(const std::string& text, const std::string& part);
// The values, null where there are none.
Values* find(Configuration& in, const std::string& dn, const std::string& attribute);
const Values* find(const Configuration& in, const std::string& dn, const std::string& attribute);
// Nothing happens where there is no such entry.
void set(Configuration& in, const std::string& dn, const std::string& attribute, const std::string& value);
void unite(Configuration& in, const std::string& dn, const std::string& attribute, const Values& more);
void removeIf(Configuration& in, const std::string& dn, const std::string& attribute,
              const std::function<bool(const std::string& value)>& condition);
// Takes the first value away and gives it; `false` when there is none.
bool takeFirst(Configuration& in, const std::string& dn, const std::string& attribute, std::string& value);
// Takes the first value of each away.
void drop(Configuration& in, const std::string& dn, const std::vector<std::string>& attributes);

}  // namespace oracle

#endif  // CFGMIG_TESTS_LIBCFGMIG_MERGEORACLE_H
