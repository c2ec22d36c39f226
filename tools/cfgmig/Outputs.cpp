#include "Outputs.h"

#include <cstring>
#include <ostream>

#include "TraceControl.h"

namespace tool {

std::vector<std::string> missingOutputs(Console& console) {
  std::vector<std::string> missing;
  console.out.flush();
  if (!console.out.good()) missing.emplace_back("standard output cannot be written; some or all of it is missing");
  if (const int error = ldtr::textError(); error != 0) {
    missing.push_back(std::string("the trace cannot be written; some or all of it is missing: ") +
                      std::strerror(error));
  }
  return missing;
}

}  // namespace tool
