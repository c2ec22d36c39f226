// Every word that stands in the tables of the rules stands on the page of their version. What a rule looks for inside a
// value cannot be seen from outside until a value has it.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

std::string contentOf(const std::string& file) {
  std::ifstream in(file);
  if (!in) throw std::runtime_error(file + " cannot be read");
  return {std::istreambuf_iterator<char>(in), {}};
}

// The string literals of a source file, but for those of preprocessor lines and comments, for messages and
// the names that only messages use, and for parts of paths.
std::vector<std::string> wordsIn(const std::string& source) {
  std::vector<std::string> words;
  for (std::size_t at = 0; at < source.size();) {
    const std::size_t end = std::min(source.find('\n', at), source.size());
    std::string line = source.substr(at, end - at);
    at = end + 1;
    if (line.starts_with('#')) continue;
    for (std::size_t quote = line.find('"'); quote != std::string::npos; quote = line.find('"', quote)) {
      const std::size_t comment = line.find("//");
      const std::size_t close = line.find('"', quote + 1);
      if (comment < quote || close == std::string::npos) break;
      const std::string word = line.substr(quote + 1, close - quote - 1);
      const bool isMessage = word.find(": ") != std::string::npos;
      const bool isReportedOnly = line.substr(0, quote).ends_with("reportedAs(");
      const bool isPath = word.starts_with('/');
      if (!isMessage && !isReportedOnly && !isPath && !word.empty()) words.push_back(word);
      quote = close + 1;
    }
  }
  return words;
}

struct Source {
  const char* file;
  const char* page;
  std::size_t atLeast;  // so many words
};

void PrintTo(const Source& source, std::ostream* out) { *out << source.file; }

class RuleTexts : public testing::TestWithParam<Source> {};

TEST_P(RuleTexts, AreAllOnThePage) {
  const std::string page = contentOf(CFGMIG_PAGES "/" + std::string(GetParam().page));
  const std::vector<std::string> words = wordsIn(contentOf(CFGMIG_LIBRARY_SOURCES "/" + std::string(GetParam().file)));
  EXPECT_GE(words.size(), GetParam().atLeast);
  for (const std::string& word : words) {
    // An attribute or a text in backquotes, or a part of a DN.
    const bool isNamed =
        page.find("`" + word + "`") != std::string::npos || page.find("=" + word + ",") != std::string::npos;
    EXPECT_TRUE(isNamed) << word;
  }
}

constexpr Source kSources[] = {
    {"Rules41.cpp", "4.1.md", 7},       {"Rules51.cpp", "5.1.md", 13},
    {"Replication41.cpp", "5.1.md", 5}, {"internal/MasterServer.h", "5.1.md", 5},
    {"Rules52.cpp", "5.2.md", 6},       {"Rules60.cpp", "6.0.md", 30},
    {"SchemaFiles.cpp", "6.0.md", 12},  {"EntryTransfer.cpp", "README.md", 11},
};

INSTANTIATE_TEST_SUITE_P(Of, RuleTexts, testing::ValuesIn(kSources), [](const auto& one) {
  std::string name = one.param.file;
  for (char& c : name) {
    if (c == '.' || c == '/') c = '_';
  }
  return name;
});

}  // namespace
