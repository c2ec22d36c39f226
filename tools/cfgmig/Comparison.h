// Comparison.h -- what an old configuration holds that a new one does not hold unchanged.

#ifndef CFGMIG_TOOL_COMPARISON_H
#define CFGMIG_TOOL_COMPARISON_H

#include <cstddef>
#include <string>
#include <vector>

#include "ConfigFile.h"

namespace tool {

struct ComparedAttribute {
  std::string name;
  std::vector<std::string> values;  // those that are shown
  std::size_t redacted = 0;         // how many are not
};

struct ComparedEntry {
  std::string dn;                             // as the file writes it
  std::string normalDn;                       // as the inventory does
  bool onlyOld = false;                       // the new configuration has no such entry
  std::vector<ComparedAttribute> attributes;  // in the order of the file; none when the new entry only holds more
};

struct Comparison {
  std::vector<ComparedEntry> entries;  // in the order of the old file

  std::size_t redacted() const;  // values, of all entries
};

// Compares. Both inventories have to be filled. The store of the old configuration is of no use any more afterwards;
// no file is written. Throws Failure when the comparison could not begin.
Comparison compare(ConfigFile& oldConfiguration, ConfigFile& newConfiguration, bool showSecrets);

// The comparison as text that the other side of a pipe understands.
std::string ldifOf(const Comparison& comparison);
std::string jsonOf(const Comparison& comparison);

}  // namespace tool

#endif  // CFGMIG_TOOL_COMPARISON_H
