// KnownSecrets.h -- finds secrets that are known where they stand in other texts.

#ifndef CFGMIG_TOOL_REPORT_KNOWNSECRETS_H
#define CFGMIG_TOOL_REPORT_KNOWNSECRETS_H

#include <bitset>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace tool {

// A set of texts. Looking for all of them takes time in proportion to the length of the text, mostly.
class KnownSecrets {
 public:
  // `secret` is looked for as it is, and in the form that ldtr::printable gives it.
  void add(std::string_view secret);
  // To be called when all are added, before anything is looked for.
  void finish();

  // True when `value` is one of them that has 6 bytes or more, or holds one of 8 bytes or more. Shorter ones are too
  // often ordinary words: that a password is "admin" must not hide each value with "admin" in it.
  bool isRepeatedIn(std::string_view value) const;

  // `text` with each secret in it replaced; one of less than 4 bytes only where it stands as a word of its own.
  std::string replacedIn(std::string_view text, std::string_view replacement) const;

 private:
  std::size_t longestAt(std::string_view text, std::size_t position) const;

  std::vector<std::string> m_secrets;  // sorted, each once
  std::bitset<65536> m_beginnings;     // the pairs of bytes that secrets of two bytes or more begin with
};

}  // namespace tool

#endif  // CFGMIG_TOOL_REPORT_KNOWNSECRETS_H
