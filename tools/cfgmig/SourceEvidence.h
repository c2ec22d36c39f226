// SourceEvidence.h -- which server wrote a configuration, as far as the configuration tells.

#ifndef CFGMIG_TOOL_SOURCEEVIDENCE_H
#define CFGMIG_TOOL_SOURCEEVIDENCE_H

#include <string>
#include <string_view>
#include <vector>

#include "CfgUtils.h"

namespace tool {

// One thing that was found, and the source versions that it speaks for; none means a server whose configuration is
// no source of a migration.
struct Evidence {
  std::string what;  // in printable form: an entry, or an attribute of an entry; never a value
  std::vector<std::string> versions;

  bool speaksFor(std::string_view version) const;

  // "the entry CN=X speaks for 4.1 or 5.1"
  std::string text() const;
};

// What there is, in the order of the table.
std::vector<Evidence> gatherEvidence(OVOConfigUtils::CfgUtils& store);

// The source versions that all the evidence speaks for, in the order of sourceVersions(): one when the version is
// recognised, several when something is missing, none when the evidence contradicts itself.
std::vector<std::string> versionsThatFit(const std::vector<Evidence>& evidence);

// "4.1", "4.1 or 5.1", "4.1, 5.1 or 5.2".
std::string alternatives(const std::vector<std::string>& versions);

}  // namespace tool

#endif  // CFGMIG_TOOL_SOURCEEVIDENCE_H
