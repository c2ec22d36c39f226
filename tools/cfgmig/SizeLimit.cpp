#include "SizeLimit.h"

#include "Failure.h"
#include "Limits.h"
#include "PrintableText.h"

namespace tool {

void limitSizes(const Arguments& arguments) {
  constexpr const char* kMaxSize = "--max-size";
  if (!arguments.has(kMaxSize)) return;
  const std::string text = arguments.value(kMaxSize);
  const auto size = cfgstore::parseSize(text);
  if (!size) {
    throw Failure(ExitStatus::usage, std::string(kMaxSize) + " is not a size such as 512M, 4G or a number of bytes: '" +
                                         ldtr::printable(text) + "'");
  }
  cfgstore::setLimits({*size});
}

const char* sizeHint(cfgstore::RemarkKind kind) {
  return kind == cfgstore::RemarkKind::fileTooLarge ? ", and so can --max-size" : "";
}

}  // namespace tool
