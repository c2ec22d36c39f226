// Comparison.h -- what an old configuration holds that a new one does not hold unchanged.

#ifndef CFGMIG_TOOL_COMPARISON_H
#define CFGMIG_TOOL_COMPARISON_H

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "ConfigFile.h"
#include "Snapshot.h"

namespace tool {

struct ComparedAttribute {
  std::string_view name;
  std::size_t firstValue = 0;  // of those of the comparison
  std::size_t values = 0;      // that are shown
  std::size_t redacted = 0;    // how many are not
};

struct ComparedEntry {
  std::string_view dn;             // as the file writes it
  std::string_view normalDn;       // as the inventory does
  bool onlyOld = false;            // the new configuration has no such entry
  std::size_t firstAttribute = 0;  // of those of the comparison
  std::size_t attributes = 0;      // in the order of the file; none when the new entry only holds more
};

// Holds views into the old configuration, which must outlive it.
struct Comparison {
  std::vector<ComparedEntry> entries;  // in the order of the old file
  std::vector<ComparedAttribute> attributes;
  std::vector<std::string_view> values;
  cfgstore::Snapshot content;  // what the views are into

  std::span<const ComparedAttribute> attributesOf(const ComparedEntry& entry) const {
    return std::span(attributes).subspan(entry.firstAttribute, entry.attributes);
  }
  std::span<const std::string_view> valuesOf(const ComparedAttribute& attribute) const {
    return std::span(values).subspan(attribute.firstValue, attribute.values);
  }

  std::size_t redacted() const;  // values, of all entries
};

// Compares. Both inventories have to be filled. The store of the old configuration is of no use for anything else any
// more afterwards; no file is written. Throws Failure when the comparison could not begin.
Comparison compare(ConfigFile& oldConfiguration, ConfigFile& newConfiguration, bool showSecrets);

// The comparison as text that the other side of a pipe understands.
std::string ldifOf(const Comparison& comparison);
std::string jsonOf(const Comparison& comparison);

}  // namespace tool

#endif  // CFGMIG_TOOL_COMPARISON_H
