// ExampleTool.h -- runs the built tool as a process.

#ifndef CFGMIG_TESTS_EXAMPLES_EXAMPLETOOL_H
#define CFGMIG_TESTS_EXAMPLES_EXAMPLETOOL_H

#include <filesystem>
#include <string>
#include <vector>

namespace examples {

struct Outcome {
  int status = -1;     // what the process exited with; -1 when it did not exit by itself
  std::string output;  // standard output and standard error together
};

// Runs the tool with its output going to `log`, which is overwritten.
Outcome runTool(std::vector<std::string> arguments, const std::filesystem::path& log);

}  // namespace examples

#endif  // CFGMIG_TESTS_EXAMPLES_EXAMPLETOOL_H
