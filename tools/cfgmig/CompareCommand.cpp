// CompareCommand.cpp -- cfgmig compare.

#include <cstdint>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "Commands.h"
#include "Comparison.h"
#include "Configuration.h"
#include "Failure.h"
#include "LeftOpen.h"
#include "OutputFile.h"
#include "SettledEntries.h"
#include "Target.h"
#include "Tracing.h"

namespace tool {
namespace {

struct Inputs {
  NamedFile oldFile;
  NamedFile newFile;
  NamedFile output;
};

// Refuses before any file is opened what must not be done.
Inputs readInputs(const Arguments& arguments) {
  Inputs inputs{{arguments.value("--old"), "the old configuration"},
                {arguments.value("--new"), "the new configuration"},
                {arguments.value("--output"), "the output"}};
  refuseSameFile(inputs.oldFile, inputs.newFile);
  const NamedFile trace{traceFile(arguments), "the trace file"};
  for (const NamedFile& input : {inputs.oldFile, inputs.newFile}) {
    refuseSameFile(inputs.output, input);
    refuseSameFile(trace, input);
  }
  refuseSameFile(trace, inputs.output);
  refuseNoTarget(inputs.output.path);
  return inputs;
}

}  // namespace

ExitStatus runCompare(const Arguments& arguments, Console& console) {
  const Inputs inputs = readInputs(arguments);
  std::vector<std::string> problems;
  auto [oldConfiguration, newConfiguration] = openConfigurations(inputs.oldFile.path, inputs.newFile.path, problems);
  if (!problems.empty()) throw Failure(ExitStatus::failed, problems);
  startTracing(arguments);
  setSettledEntriesAsideUnlessTraced(storeOf(*oldConfiguration), storeOf(*newConfiguration));
  auto newInventory = readInventoryBeside(*newConfiguration);
  readInventory(*oldConfiguration);
  newInventory.get();

  const Comparison comparison = compare(*oldConfiguration, *newConfiguration, arguments.has("--show-secrets"));
  const std::uint64_t size = storeOf(*newConfiguration).textAsRead().size();
  leaveOpen(oldConfiguration, size);
  leaveOpen(newConfiguration, size);
  const std::string text = arguments.has("--json") ? jsonOf(comparison) : ldifOf(comparison);
  if (inputs.output.path.empty()) {
    console.out << text;
  } else {
    writeOwnFile(inputs.output.path, text, console);
  }
  if (comparison.redacted() > 0) {
    const std::size_t count = comparison.redacted();
    console.err << "cfgmig: " << count << (count == 1 ? " value" : " values")
                << " left out as secret, or possibly so; --show-secrets shows them\n";
  }
  return arguments.has("--exit-code") && !comparison.entries.empty() ? ExitStatus::differs : ExitStatus::done;
}

}  // namespace tool
