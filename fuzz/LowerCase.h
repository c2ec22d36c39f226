// LowerCase.h -- attribute names as the models of the fuzz targets know them.

#ifndef CFGMIG_FUZZ_LOWERCASE_H
#define CFGMIG_FUZZ_LOWERCASE_H

#include <string>
#include <string_view>

namespace fuzz {

// ASCII letters in lower case, everything else as it is.
inline std::string lowerCase(std::string_view text) {
  std::string lower(text);
  for (char& c : lower) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return lower;
}

}  // namespace fuzz

#endif  // CFGMIG_FUZZ_LOWERCASE_H
