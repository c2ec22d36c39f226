// CleanCommand.cpp -- cfgmig clean.

#include <algorithm>
#include <memory>
#include <ostream>
#include <sstream>
#include <string>
#include <vector>

#include "CleanUp.h"
#include "Commands.h"
#include "ConfigStore.h"
#include "Configuration.h"
#include "Failure.h"
#include "HeldSignals.h"
#include "PrintableText.h"
#include "Saving.h"
#include "Target.h"
#include "Tracing.h"

namespace tool {
namespace {

std::string values(std::size_t count) { return std::to_string(count) + (count == 1 ? " value" : " values"); }

void tell(const CleanUpStep& step, std::ostream& out) {
  const std::string entry = ldtr::printableDn(step.entry);
  switch (step.kind) {
    case CleanUpStep::Kind::removedEntry:
      out << "    removed    the entry " << entry << '\n';
      break;
    case CleanUpStep::Kind::removedValues:
      out << "    removed    " << ldtr::printable(step.attribute) << " of " << entry << ": " << values(step.count);
      if (step.remaining > 0) out << ", " << step.remaining << (step.remaining == 1 ? " stays" : " stay");
      out << '\n';
      break;
    case CleanUpStep::Kind::rewrittenValues:
      out << "    rewritten  " << ldtr::printable(step.attribute) << " of " << entry << ": " << values(step.count)
          << '\n';
      break;
  }
}

void refuseNoOperation(const Arguments& arguments) {
  const auto operations = cleanUpOperations();
  const auto isGiven = [&](const CleanUpOperation& operation) { return arguments.has(operation.option); };
  if (std::any_of(operations.begin(), operations.end(), isGiven)) return;
  std::string list;
  for (const CleanUpOperation& operation : operations)
    list += (list.empty() ? "" : ", ") + std::string(operation.option);
  throw Failure(ExitStatus::usage,
                {"nothing to clean is named: give at least one of " + list, "see: cfgmig help clean"});
}

}  // namespace

ExitStatus runClean(const Arguments& arguments, Console& console) {
  refuseNoOperation(arguments);
  const std::string path = arguments.value("FILE");
  const std::string target = targetOf(arguments, {path, "the configuration"}, {});
  std::vector<std::string> problems;
  const std::unique_ptr<ConfigFile> configuration = openConfiguration(path, problems);
  if (!configuration) throw Failure(ExitStatus::failed, problems);
  startTracing(arguments);
  readInventory(*configuration);

  // All or nothing: after a failure, what the other operations have done is not saved either.
  std::vector<std::string> failures;
  std::ostringstream account;
  account << ldtr::printable(path) << '\n';
  for (const CleanUpOperation& operation : cleanUpOperations()) {
    if (!arguments.has(operation.option)) continue;
    const CleanUpResult result = cleanUp(*configuration, operation);
    if (!result.failure.empty()) failures.push_back(result.failure);
    account << "  " << operation.option
            << (result.steps.empty() && result.failure.empty() ? ": nothing to do\n" : "\n");
    for (const CleanUpStep& step : result.steps) tell(step, account);
  }
  if (!failures.empty()) {
    failures.push_back(ldtr::printable(path) + ": nothing was written");
    throw Failure(ExitStatus::failed, failures);
  }

  cfgstore::ConfigStore& store = cfgstore::ConfigStore::of(*configuration->getCfgUtils());
  if (arguments.has("--dry-run")) {
    console.out << account.view();
    return tellPreview(store, target, console);
  }
  const HeldSignals signals;  // what was done is told, too
  // Only what has happened is told on standard output.
  const cfgstore::SaveResult saved = saveTo(store, target);
  console.out << account.view();
  return tellSaved(saved, target, "", console);
}

}  // namespace tool
