// Corpus.h -- LDIF texts that are valid and awkward.

#ifndef CFGMIG_TESTS_LIBCFGSTORE_CORPUS_H
#define CFGMIG_TESTS_LIBCFGSTORE_CORPUS_H

#include <string>
#include <vector>

namespace cfgstore::test {

struct Sample {
  const char* name;
  std::string text;
};

// Each of them holds at least the entries CN=A,CN=CONFIGURATION, with the attribute "port" and its only value "389",
// and CN=B,CN=CONFIGURATION, with the attribute "plugin" and its values "one" and "two".
const std::vector<Sample>& corpus();

}  // namespace cfgstore::test

#endif  // CFGMIG_TESTS_LIBCFGSTORE_CORPUS_H
