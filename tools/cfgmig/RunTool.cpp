#include "RunTool.h"

#include <exception>
#include <new>
#include <ostream>

#include "CommandLine.h"
#include "Failure.h"
#include "Outputs.h"
#include "PrintableText.h"
#include "SizeLimit.h"

namespace tool {
namespace {

void tell(Console& console, const std::string& line) { console.err << "cfgmig: " << line << '\n'; }

ExitStatus runCommand(const std::vector<std::string>& words, Console& console) {
  try {
    const Invocation invocation = parseCommandLine(words);
    limitSizes(invocation.arguments);
    return runnerOf(invocation.command->name)(invocation.arguments, console);
  } catch (const Failure& failure) {
    for (const std::string& line : failure.lines()) tell(console, line);
    return failure.status();
  } catch (const std::bad_alloc&) {
    tell(console, "not enough memory");
  } catch (const std::exception& error) {
    tell(console, ldtr::printable(error.what()));
  }
  return ExitStatus::failed;
}

}  // namespace

ExitStatus runTool(const std::vector<std::string>& words, Console& console) {
  const ExitStatus status = runCommand(words, console);
  const std::vector<std::string> missing = missingOutputs(console);
  for (const std::string& line : missing) tell(console, line);
  return status == ExitStatus::done && !missing.empty() ? ExitStatus::failed : status;
}

}  // namespace tool
