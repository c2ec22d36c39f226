#include "SourceVersions.h"

#include <algorithm>

#include "options/Option.h"

namespace tool {

bool isSourceVersion(std::string_view version) {
  const auto isIt = [&](const char* known) { return known == version; };
  return std::any_of(std::begin(kSourceVersions), std::end(kSourceVersions), isIt);
}

std::string listOfSourceVersions() { return listOf(kSourceVersions); }

}  // namespace tool
