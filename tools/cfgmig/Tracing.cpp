#include "Tracing.h"

#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "Failure.h"
#include "PrintableText.h"
#include "TraceControl.h"

namespace tool {
namespace {

constexpr const char* kStandardError = "-";

std::uint32_t traceMask(const Arguments& arguments) {
  if (!arguments.has("--trace-events")) return ldtr::kEverything;
  const std::string text = arguments.value("--trace-events");
  const auto mask = ldtr::parseEvents(text);
  if (mask) return *mask;
  throw Failure(ExitStatus::usage, "--trace-events is not a mask of 32 bits, decimal or hexadecimal with 0x: '" +
                                       ldtr::printable(text) + "'");
}

}  // namespace

std::string traceFile(const Arguments& arguments) {
  traceMask(arguments);
  std::string file = arguments.value("--trace");
  if (file.empty()) {
    const char* fromEnvironment = ::secure_getenv("LDTR_FILE");
    if (fromEnvironment != nullptr) file = fromEnvironment;
  }
  return file == kStandardError ? std::string() : file;
}

void startTracing(const Arguments& arguments) {
  if (!arguments.has("--trace")) {
    const std::string wrong = ldtr::setUpFromEnvironment();
    if (!wrong.empty()) throw Failure(ExitStatus::usage, wrong);
    return;
  }
  const std::uint32_t mask = traceMask(arguments);
  const std::string file = arguments.value("--trace");
  if (!ldtr::writeTextTo(file, mask)) {
    const std::string why = std::strerror(errno);
    throw Failure(ExitStatus::failed, ldtr::printable(file) + ": the trace file cannot be opened: " + why);
  }
  ldtr::setEvents(mask);
}

}  // namespace tool
