// ListCommand.cpp -- cfgmig list.

#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "Commands.h"
#include "Configuration.h"
#include "Failure.h"
#include "PrintableText.h"
#include "Target.h"
#include "Tracing.h"

namespace tool {

ExitStatus runList(const Arguments& arguments, Console& console) {
  refuseSameFile({traceFile(arguments), "the trace file"}, {arguments.value("FILE"), "the configuration"});
  std::vector<std::string> problems;
  const std::unique_ptr<ConfigFile> configuration = openConfiguration(arguments.value("FILE"), problems);
  if (!configuration) throw Failure(ExitStatus::failed, problems);
  startTracing(arguments);
  for (const char* const dn : readInventory(*configuration)) console.out << ldtr::printableDn(dn) << '\n';
  return ExitStatus::done;
}

}  // namespace tool
