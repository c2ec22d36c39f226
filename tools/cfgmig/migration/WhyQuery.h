// WhyQuery.h -- what somebody wants to know of a migration: an entry, an attribute of it, or a value of that.

#ifndef CFGMIG_TOOL_MIGRATION_WHYQUERY_H
#define CFGMIG_TOOL_MIGRATION_WHYQUERY_H

#include <optional>
#include <string>
#include <vector>

namespace tool {

struct WhyQuery {
  std::string normalDn;
  std::string attribute;             // empty: the whole entry
  std::optional<std::string> value;  // none: all values
};

// How DN[:ATTRIBUTE[=VALUE]] can be read. A DN may hold colons and equals signs, and so may a value: the longest DN
// comes first. Empty when no part of the text is a DN.
std::vector<WhyQuery> readingsOf(const std::string& text);

}  // namespace tool

#endif  // CFGMIG_TOOL_MIGRATION_WHYQUERY_H
