#include "report/Colours.h"

#include <unistd.h>

#include <cstdlib>
#include <string_view>

namespace tool {

bool wantsColours(int descriptor) {
  const char* const forbidden = std::getenv("NO_COLOR");
  if (forbidden != nullptr && *forbidden != '\0') return false;
  const char* const terminal = std::getenv("TERM");
  if (terminal == nullptr || *terminal == '\0' || std::string_view(terminal) == "dumb") return false;
  return ::isatty(descriptor) == 1;
}

}  // namespace tool
