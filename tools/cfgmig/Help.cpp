// Help.cpp -- the commands help, completion and version.

#include <ostream>
#include <string>

#include "CommandLine.h"
#include "Commands.h"
#include "options/Completion.h"
#include "options/HelpText.h"

namespace tool {

ExitStatus runHelp(const Arguments& arguments, Console& console) {
  if (arguments.has("COMMAND")) {
    writeHelp(commandNamed(arguments.value("COMMAND")), console.out);
  } else {
    writeHelp(console.out);
  }
  return ExitStatus::done;
}

ExitStatus runCompletion(const Arguments& arguments, Console& console) {
  writeCompletion(arguments.value("SHELL"), console.out);
  return ExitStatus::done;
}

ExitStatus runVersion(const Arguments&, Console& console) {
  console.out << "cfgmig " CFGMIG_VERSION "\n";
  return ExitStatus::done;
}

}  // namespace tool
