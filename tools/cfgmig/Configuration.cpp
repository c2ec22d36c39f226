#include "Configuration.h"

#include <exception>
#include <new>

#include "ConfigStore.h"
#include "Failure.h"
#include "PrintableText.h"

namespace tool {
namespace {

constexpr std::size_t kMostProblems = 20;  // of one file; who has more than that wants to see the first ones

void describe(const cfgstore::OpenError& error, const std::string& path, std::vector<std::string>& problems) {
  const std::string file = ldtr::printable(path);
  std::size_t told = 0;
  for (const cfgstore::Problem& problem : error.problems()) {
    if (told == kMostProblems) {
      problems.push_back(file + ": and " + std::to_string(error.problems().size() - told) + " more problems");
      return;
    }
    const std::string line = problem.line == 0 ? "" : ":" + std::to_string(problem.line);
    problems.push_back(file + line + ": " + ldtr::printable(problem.text));
    ++told;
  }
}

}  // namespace

std::unique_ptr<ConfigFile> openConfiguration(const std::string& path, std::vector<std::string>& problems) {
  try {
    return std::make_unique<ConfigFile>(path, nullptr);
  } catch (const cfgstore::OpenError& error) {
    describe(error, path, problems);
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const std::exception& error) {
    problems.push_back(ldtr::printable(path) + ": " + ldtr::printable(error.what()));
  }
  return nullptr;
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
