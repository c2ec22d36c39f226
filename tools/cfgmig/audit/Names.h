// Names.h -- attribute names as numbers: two names have the same number exactly when they differ in letter case at
// most.

#ifndef CFGMIG_TOOL_AUDIT_NAMES_H
#define CFGMIG_TOOL_AUDIT_NAMES_H

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "Snapshot.h"

namespace tool::auditing {

using NameId = std::uint32_t;

// The names given to it must outlive it.
class Names {
 public:
  NameId of(std::string_view name);

  // The spelling that was seen first.
  std::string_view spelling(NameId id) const { return m_spellings[id]; }

 private:
  std::unordered_map<std::string_view, NameId> m_asWritten;
  std::unordered_map<std::string, NameId> m_inLowerCase;
  std::vector<std::string_view> m_spellings;
};

// The numbers of the names of a snapshot's attributes, by the attribute's number.
std::vector<NameId> nameIds(const cfgstore::Snapshot& snapshot, Names& names);

}  // namespace tool::auditing

#endif  // CFGMIG_TOOL_AUDIT_NAMES_H
