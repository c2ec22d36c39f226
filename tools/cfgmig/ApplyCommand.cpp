// ApplyCommand.cpp -- cfgmig apply.

#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "AccountText.h"
#include "Commands.h"
#include "ConfigStore.h"
#include "Configuration.h"
#include "Failure.h"
#include "LeftBehind.h"
#include "MergeAccount.h"
#include "MergeRecorder.h"
#include "PrintableText.h"
#include "Saving.h"
#include "SchemaCopies.h"
#include "SourceVersion.h"
#include "SourceVersions.h"
#include "Target.h"
#include "Tracing.h"

namespace tool {
namespace {

struct Request {
  std::string oldPath;
  std::string newPath;
  std::string target;
  std::string version;  // empty: to be recognised
  std::optional<SchemaDirectories> schemas;
  bool preview;
  bool verbose;
};

// Reads the arguments, and refuses before any file is opened what must not be done.
Request readRequest(const Arguments& arguments) {
  Request request{arguments.value("--old"),   arguments.value("--new"),  {}, arguments.value("--from"), {},
                  arguments.has("--dry-run"), arguments.has("--verbose")};
  if (arguments.has("--from") && !isSourceVersion(request.version)) {
    throw Failure(ExitStatus::usage,
                  "unknown version '" + ldtr::printable(request.version) + "'; known are: " + listOfSourceVersions());
  }
  const NamedFile oldFile{request.oldPath, "the old configuration"};
  const NamedFile newFile{request.newPath, "the new configuration"};
  refuseSameFile(oldFile, newFile);
  request.target = targetOf(arguments, newFile, {&oldFile, 1});
  request.schemas = SchemaDirectories::of(arguments);
  return request;
}

// Where a transfer ended early, looks up what it left behind.
void nameWhatIsLeftBehind(Account& account, ConfigFile& oldConfiguration, ConfigFile& newConfiguration) {
  for (Loss& loss : account.losses) {
    if (!loss.restNotCarried || loss.entry.empty() || loss.target.empty()) continue;
    loss.behind =
        attributesLeftBehind(*oldConfiguration.getCfgUtils(), loss.entry, *newConfiguration.getCfgUtils(), loss.target);
  }
}

Account merge(const std::string& version, ConfigFile& oldConfiguration, ConfigFile& newConfiguration,
              const std::vector<std::string>& oldEntries) {
  MergeAccount account(oldEntries, readInventory(newConfiguration));
  int result = 0;
  {
    const MergeRecorder recorder(account, oldConfiguration, newConfiguration);
    result = newConfiguration.mergeConfigFiles(&oldConfiguration, version.c_str());
    recorder.check();
  }
  if (result == 0) throw Failure(ExitStatus::failed, "the merge could not begin; nothing was written");
  Account finished = account.finish();
  nameWhatIsLeftBehind(finished, oldConfiguration, newConfiguration);
  return finished;
}

// Old passwords and keys come into the result. A file of its own may be read by those only who may read both
// configurations. The new configuration keeps its permissions, since its server has to read it; what that means is
// told.
unsigned permissionsOf(const Request& request, const cfgstore::ConfigStore& oldStore,
                       const cfgstore::ConfigStore& newStore, Console& console) {
  constexpr unsigned kOfOthers = 07;
  if (request.target != request.newPath) return (oldStore.permissions() & newStore.permissions()) | 0600U;
  if ((newStore.permissions() & ~oldStore.permissions() & kOfOthers) != 0) {
    console.err << "cfgmig: " << ldtr::printable(request.newPath) << " is open to everybody, unlike "
                << ldtr::printable(request.oldPath) << ", whose passwords and keys go into it\n";
  }
  return kAnyPermissions;
}

std::string shortcomingOf(const Account& account, const std::optional<SchemaCopies>& schemas) {
  std::string text = account.losses.empty() ? "" : "with losses";
  if (schemas && !schemas->isComplete()) text += (text.empty() ? "" : ", ") + std::string(kSchemaFilesMissing);
  return text;
}

}  // namespace

ExitStatus runApply(const Arguments& arguments, Console& console) {
  const Request request = readRequest(arguments);
  std::vector<std::string> problems;
  const std::unique_ptr<ConfigFile> oldConfiguration = openConfiguration(request.oldPath, problems);
  const std::unique_ptr<ConfigFile> newConfiguration = openConfiguration(request.newPath, problems);
  if (!problems.empty()) throw Failure(ExitStatus::failed, problems);

  startTracing(arguments);
  const std::vector<std::string> oldEntries = readInventory(*oldConfiguration);
  const SourceVersion source = sourceVersionOf(*oldConfiguration->getCfgUtils(), request.oldPath, request.version);
  for (const std::string& warning : source.warnings) console.err << "cfgmig: " << warning << '\n';
  const Account account = merge(source.version, *oldConfiguration, *newConfiguration, oldEntries);

  console.out << ldtr::printable(request.oldPath) << " (" << source.version << ") into "
              << ldtr::printable(request.newPath) << '\n';
  if (!source.from.empty()) {
    console.out << "  version  " << source.version << ", recognised from " << source.from << '\n';
  }
  writeAccount(account, oldEntries, {request.verbose, request.preview}, console.out);

  std::optional<SchemaCopies> schemas;
  if (request.schemas) {
    schemas.emplace(*newConfiguration, *request.schemas);
    const NamedFile notToReplace[] = {{request.oldPath, "the old configuration"},
                                      {request.newPath, "the new configuration"},
                                      {request.target, "the output"}};
    schemas->refuseToReplace(notToReplace);
  }
  cfgstore::ConfigStore& store = cfgstore::ConfigStore::of(*newConfiguration->getCfgUtils());
  if (request.preview) {
    if (schemas) schemas->tell(true, console.out);
    return tellPreview(store, request.target, console);
  }
  const unsigned permissions =
      permissionsOf(request, cfgstore::ConfigStore::of(*oldConfiguration->getCfgUtils()), store, console);
  const cfgstore::SaveResult saved =
      schemas ? schemas->saveWith(store, request.target, permissions) : saveTo(store, request.target, permissions);
  if (schemas) schemas->tell(false, console.out);
  return tellSaved(saved, request.target, shortcomingOf(account, schemas), console);
}

}  // namespace tool
