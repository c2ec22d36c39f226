#include "Configuration.h"

#include <exception>
#include <new>

#include "ConfigStore.h"
#include "Failure.h"
#include "PrintableText.h"
#include "SizeLimit.h"

namespace tool {
namespace {

void describe(const cfgstore::OpenError& error, const std::string& path, std::vector<std::string>& problems) {
  const std::string file = ldtr::printable(path);
  for (const cfgstore::Problem& problem : error.problems()) {
    const std::string line = problem.line == 0 ? "" : ":" + std::to_string(problem.line);
    // The text may name a DN, whose backslashes are its own.
    problems.push_back(file + line + ": " + ldtr::printableDn(problem.text) + sizeHint(problem.kind));
  }
}

// Makes a Store of the file at `path`.
template <class Store, class... Arguments>
std::unique_ptr<Store> open(const std::string& path, std::vector<std::string>& problems, Arguments... arguments) {
  try {
    return std::make_unique<Store>(path.c_str(), arguments...);
  } catch (const cfgstore::OpenError& error) {
    describe(error, path, problems);
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const std::exception& error) {
    problems.push_back(ldtr::printable(path) + ": " + ldtr::printable(error.what()));
  }
  return nullptr;
}

}  // namespace

std::unique_ptr<ConfigFile> openConfiguration(const std::string& path, std::vector<std::string>& problems) {
  return open<ConfigFile>(path, problems, nullptr);
}

std::unique_ptr<OVOConfigUtils::CfgUtils> openUtils(const std::string& path, std::vector<std::string>& problems) {
  return open<OVOConfigUtils::CfgUtils>(path, problems, nullptr);
}

std::unique_ptr<cfgstore::ConfigStore> openStore(const std::string& path) {
  std::vector<std::string> problems;
  auto store = open<cfgstore::ConfigStore>(path, problems);
  if (!store) throw Failure(ExitStatus::failed, problems);
  return store;
}

std::vector<std::string> readInventory(ConfigFile& configuration) {
  const int rc = configuration.getDns();
  const int count = configuration.getDnNum();
  if (rc == 90 && count > 0) throw std::bad_alloc();
  if (rc != 0 || count <= 0) {
    throw Failure(ExitStatus::failed, ldtr::printable(configuration.getFileName()) +
                                          ": there is no entry under CN=CONFIGURATION; this is not the configuration "
                                          "of a server");
  }
  char** const dns = configuration.getCfgDns();
  return {dns, dns + count};
}

}  // namespace tool
