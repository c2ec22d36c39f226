#include "SourceVersions.h"

#include <algorithm>

namespace tool {
namespace {

constexpr const char* kVersions[] = {"4.1", "5.1", "5.2", "6.0"};

}  // namespace

std::span<const char* const> sourceVersions() { return kVersions; }

bool isSourceVersion(std::string_view version) {
  return std::any_of(std::begin(kVersions), std::end(kVersions), [&](const char* known) { return known == version; });
}

std::string listOfSourceVersions() {
  std::string list;
  for (const char* version : kVersions) list += (list.empty() ? "" : ", ") + std::string(version);
  return list;
}

}  // namespace tool
