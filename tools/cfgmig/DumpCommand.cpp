// DumpCommand.cpp -- cfgmig dump.

#include <memory>
#include <ostream>
#include <sstream>
#include <string>
#include <vector>

#include "Commands.h"
#include "ConfigStore.h"
#include "Configuration.h"
#include "Dump.h"
#include "OutputFile.h"
#include "Snapshot.h"
#include "Target.h"

namespace tool {
namespace {

std::size_t write(const cfgstore::Snapshot& content, const Arguments& arguments, std::ostream& out) {
  const DumpSecrets secrets = arguments.has("--redact") ? DumpSecrets::leaveOut : DumpSecrets::show;
  return arguments.has("--json") ? writeDumpJson(content, arguments.value("FILE"), secrets, out)
                                 : writeDumpText(content, secrets, out);
}

}  // namespace

ExitStatus runDump(const Arguments& arguments, Console& console) {
  const std::string output = arguments.value("--output");
  refuseSameFile({output, "the output"}, {arguments.value("FILE"), "the configuration"});
  refuseNoTarget(output);
  const std::unique_ptr<cfgstore::ConfigStore> store = openStore(arguments.value("FILE"));
  const cfgstore::Snapshot content(*store);

  std::size_t leftOut = 0;
  if (output.empty()) {
    leftOut = write(content, arguments, console.out);
  } else {
    std::ostringstream text;
    leftOut = write(content, arguments, text);
    writeOwnFile(output, text.view(), console);
  }
  if (leftOut > 0) {
    console.err << "cfgmig: " << leftOut << (leftOut == 1 ? " value" : " values")
                << " left out as secret, or possibly so\n";
  }
  return ExitStatus::done;
}

}  // namespace tool
