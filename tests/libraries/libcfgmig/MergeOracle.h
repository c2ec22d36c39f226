// MergeOracle.h -- what a merge is to leave behind, worked out on plain containers, without stores, calls or failures.
// It shares no code with the library and is written from the point of view of the settings, not of the calls.

#ifndef CFGMIG_TESTS_LIBCFGMIG_MERGEORACLE_H
#define CFGMIG_TESTS_LIBCFGMIG_MERGEORACLE_H

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

// A whole merge of a 6.0 configuration; changes both.
void merge60(Configuration& from, Configuration& to);

}  // namespace oracle

#endif  // CFGMIG_TESTS_LIBCFGMIG_MERGEORACLE_H
