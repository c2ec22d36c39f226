// Configuration.h -- opening configurations, and telling what is wrong with one that cannot be opened.

#ifndef CFGMIG_TOOL_CONFIGURATION_H
#define CFGMIG_TOOL_CONFIGURATION_H

#include <memory>
#include <string>
#include <vector>

#include "ConfigFile.h"

namespace tool {

// Opens the configuration at `path`.
// Null when it cannot be opened or understood; what is wrong is then appended to `problems`, a line each, all problems
// of the file up to a limit: "path:line: text".
std::unique_ptr<ConfigFile> openConfiguration(const std::string& path, std::vector<std::string>& problems);

// Fills the inventory of an open configuration and hands out a copy of it. Throws Failure when there is no entry under
// CN=CONFIGURATION: such a file is not the configuration of a server.
std::vector<std::string> readInventory(ConfigFile& configuration);

}  // namespace tool

#endif  // CFGMIG_TOOL_CONFIGURATION_H
