#include "SimpleDn.h"

#include <strings.h>

namespace fake {

namespace {

char upper(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }

}  // namespace

std::string simpleDn(std::string_view dn) {
  if (dn.find('=') == std::string_view::npos) {
    return {};
  }
  std::string result;
  result.reserve(dn.size());
  for (std::size_t i = 0; i < dn.size(); ++i) {
    const char c = dn[i];
    if (c == ' ' && (result.empty() || result.back() == ',')) {
      continue;
    }
    if (c == ',') {
      while (!result.empty() && result.back() == ' ') {
        result.pop_back();
      }
    }
    result.push_back(upper(c));
  }
  while (!result.empty() && result.back() == ' ') {
    result.pop_back();
  }
  return result;
}

bool equalIgnoringCase(std::string_view left, std::string_view right) {
  return left.size() == right.size() && strncasecmp(left.data(), right.data(), left.size()) == 0;
}

}  // namespace fake
