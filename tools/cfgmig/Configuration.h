// Configuration.h -- opening configurations, and telling what is wrong with one that cannot be opened.

#ifndef CFGMIG_TOOL_CONFIGURATION_H
#define CFGMIG_TOOL_CONFIGURATION_H

#include <memory>
#include <string>
#include <vector>

#include "ConfigFile.h"
#include "ConfigStore.h"

namespace tool {

// Opens the configuration at `path`.
// Null when it cannot be opened or understood; all that the store finds wrong with it is then appended to `problems`, a
// line each: "path:line: text".
std::unique_ptr<ConfigFile> openConfiguration(const std::string& path, std::vector<std::string>& problems);

// The same without the library: the store alone.
std::unique_ptr<OVOConfigUtils::CfgUtils> openUtils(const std::string& path, std::vector<std::string>& problems);

// Opens any LDIF content file at `path`, or a pipe, without the library. Throws Failure with the same lines.
std::unique_ptr<cfgstore::ConfigStore> openStore(const std::string& path);

// Fills the inventory of an open configuration and hands out a copy of it. Throws Failure when there is no entry under
// CN=CONFIGURATION: such a file is not the configuration of a server.
std::vector<std::string> readInventory(ConfigFile& configuration);

}  // namespace tool

#endif  // CFGMIG_TOOL_CONFIGURATION_H
