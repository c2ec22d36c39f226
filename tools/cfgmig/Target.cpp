#include "Target.h"

#include "Failure.h"
#include "PrintableText.h"
#include "SameFile.h"
#include "Tracing.h"

namespace tool {

void refuseSameFile(const NamedFile& left, const NamedFile& right) {
  if (left.path.empty() || right.path.empty() || !isSameFile(left.path, right.path)) return;
  throw Failure(ExitStatus::usage,
                ldtr::printable(left.path) + ": " + left.role + " and " + right.role + " are one file");
}

std::string targetOf(const Arguments& arguments, const NamedFile& changed, std::span<const NamedFile> onlyRead) {
  NamedFile output{arguments.value("--output"), "the output"};
  if (output.path.empty()) output.path = changed.path;
  for (const NamedFile& file : onlyRead) refuseSameFile(output, file);
  const NamedFile trace{traceFile(arguments), "the trace file"};
  for (const NamedFile& file : onlyRead) refuseSameFile(trace, file);
  refuseSameFile(trace, changed);
  refuseSameFile(trace, output);
  // The store knows by the path that it saves to the file it has read.
  if (isSameFile(output.path, changed.path)) return changed.path;
  if (const std::string why = whyNoTarget(output.path); !why.empty()) {
    throw Failure(ExitStatus::failed, ldtr::printable(output.path) + ": cannot be written: " + why);
  }
  return output.path;
}

}  // namespace tool
