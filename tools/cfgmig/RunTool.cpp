#include "RunTool.h"

#include <exception>
#include <new>
#include <ostream>

#include "CommandLine.h"
#include "Failure.h"
#include "PrintableText.h"

namespace tool {
namespace {

void tell(Console& console, const std::string& line) { console.err << "cfgmig: " << line << '\n'; }

ExitStatus runCommand(const std::vector<std::string>& words, Console& console) {
  try {
    const Invocation invocation = parseCommandLine(words);
    return invocation.command->run(invocation.arguments, console);
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
  console.out.flush();
  if (console.out.good()) return status;
  tell(console, "standard output cannot be written; the account above is not complete");
  return status == ExitStatus::done ? ExitStatus::failed : status;
}

}  // namespace tool
