// InstallationPaths.h -- which directories belong to the old installation, and where values name them.

#ifndef CFGMIG_TOOL_FINDING_INSTALLATIONPATHS_H
#define CFGMIG_TOOL_FINDING_INSTALLATIONPATHS_H

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "Snapshot.h"

namespace tool {

// The directories of the installation that a configuration belongs to, as its settings tell: the place of the server's
// own schema files and of its logs. "/opt/zor/6.0/etc/V3.user.at" tells "/opt/zor/6.0". A directory that the new
// configuration names, too, is left out, as is one directly below the root: both may be anybody's.
std::vector<std::string> directoriesOfInstallation(const cfgstore::Snapshot& old, const cfgstore::Snapshot& before);

// True when the value holds the path of one of the directories, or of something below it. A path ends where a character
// stands that separates the parts of a setting: a blank, a quotation mark, one of , ; : = | & ( ).
bool namesPathIn(std::string_view value, std::span<const std::string> directories);

}  // namespace tool

#endif  // CFGMIG_TOOL_FINDING_INSTALLATIONPATHS_H
