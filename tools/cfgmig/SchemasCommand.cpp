// SchemasCommand.cpp -- cfgmig schemas.

#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "Commands.h"
#include "ConfigStore.h"
#include "Configuration.h"
#include "Failure.h"
#include "HeldSignals.h"
#include "PrintableText.h"
#include "Saving.h"
#include "SchemaCopies.h"
#include "Target.h"
#include "Tracing.h"

namespace tool {

ExitStatus runSchemas(const Arguments& arguments, Console& console) {
  const std::string path = arguments.value("FILE");
  const NamedFile file{path, "the configuration"};
  const std::string target = targetOf(arguments, file, {});
  const std::optional<SchemaDirectories> directories = SchemaDirectories::of(arguments);
  std::vector<std::string> problems;
  const std::unique_ptr<ConfigFile> configuration = openConfiguration(path, problems);
  if (!configuration) throw Failure(ExitStatus::failed, problems);
  refuseTraceInSchemaFiles(traceFile(arguments), directories.value(), {configuration.get()});
  startTracing(arguments);
  readInventory(*configuration);

  SchemaCopies copies(*configuration, directories.value());
  const NamedFile notToReplace[] = {file, {target, "the output"}};
  copies.refuseToReplace(notToReplace);
  cfgstore::ConfigStore& store = cfgstore::ConfigStore::of(*configuration->getCfgUtils());
  if (arguments.has("--dry-run")) {
    console.out << ldtr::printable(path) << '\n';
    copies.tell(true, console.out);
    return tellPreview(store, target, console);
  }
  const HeldSignals signals;  // what was done is told, too
  // Only what has happened is told on standard output.
  const cfgstore::SaveResult saved = copies.saveWith(store, target);
  console.out << ldtr::printable(path) << '\n';
  copies.tell(false, console.out);
  return tellSaved(saved, target, copies.isComplete() ? "" : kSchemaFilesMissing, console);
}

}  // namespace tool
