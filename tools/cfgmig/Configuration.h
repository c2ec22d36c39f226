// Configuration.h -- opening configurations, and telling what is wrong with one that cannot be opened.

#ifndef CFGMIG_TOOL_CONFIGURATION_H
#define CFGMIG_TOOL_CONFIGURATION_H

#include <future>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "ConfigFile.h"
#include "ConfigStore.h"

namespace tool {

inline cfgstore::ConfigStore& storeOf(ConfigFile& configuration) {
  return cfgstore::ConfigStore::of(*configuration.getCfgUtils());
}

// Opens the configuration at `path`.
// Null when it cannot be opened or understood; all that the store finds wrong with it is then appended to `problems`, a
// line each: "path:line: text".
std::unique_ptr<ConfigFile> openConfiguration(const std::string& path, std::vector<std::string>& problems);

// The old and the new configuration, both at once. A configuration that could not be opened is null, and what is wrong
// with the old one comes first in `problems`.
struct OpenPair {
  std::unique_ptr<ConfigFile> old;
  std::unique_ptr<ConfigFile> now;
};
// Learns::habits: the new one is going to be written to, and how its file is written is learned as well, which is done
// beside other work here.
enum class Learns { nothing, habits };
OpenPair openConfigurations(const std::string& oldPath, const std::string& newPath, std::vector<std::string>& problems,
                            Learns learns = Learns::nothing);

// The same without the library, the store alone: all of them, several at once, in their order.
std::vector<std::unique_ptr<OVOConfigUtils::CfgUtils>> openAllUtils(std::span<const std::string> paths,
                                                                    std::vector<std::string>& problems);

// Opens any LDIF content file at `path`, or a pipe, without the library. Throws Failure with the same lines.
std::unique_ptr<cfgstore::ConfigStore> openStore(const std::string& path);

// The same for a file that holds much of what is set aside in `model` (cfgstore::openLike).
std::unique_ptr<cfgstore::ConfigStore> openStoreLike(const std::string& path, const cfgstore::ConfigStore& model);

// Fills the inventory of an open configuration and hands out its DNs, which belong to it. Throws Failure when there is
// no entry under CN=CONFIGURATION: such a file is not the configuration of a server.
std::span<const char* const> readInventory(ConfigFile& configuration);

// The same of a large one beside other work; with its result comes what it throws. Nothing else may use the
// configuration meanwhile.
std::future<std::span<const char* const>> readInventoryBeside(ConfigFile& configuration);

}  // namespace tool

#endif  // CFGMIG_TOOL_CONFIGURATION_H
