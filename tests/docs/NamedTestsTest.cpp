// NamedTestsTest.cpp -- where a page of docs/ says which test proves something, there is such a test.

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>
#include <set>
#include <string>

namespace {

std::string contentOf(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

// "Suite.Name" of each test that the sources define.
std::set<std::string> definedTests() {
  static const std::regex definition(
      R"((?:TEST|TEST_F|TEST_P|RC_GTEST_PROP|RC_GTEST_FIXTURE_PROP)\(\s*(\w+),\s*(\w+))");
  std::set<std::string> tests;
  for (const auto& file : std::filesystem::recursive_directory_iterator(CFGMIG_TESTS_DIRECTORY)) {
    if (file.path().extension() != ".cpp") continue;
    const std::string text = contentOf(file.path());
    for (std::sregex_iterator match(text.begin(), text.end(), definition), end; match != end; ++match) {
      tests.insert((*match)[1].str() + "." + (*match)[2].str());
    }
  }
  return tests;
}

// What the page names: `Suite.NameOfATest` in backticks, both words in capitals and without blanks.
std::set<std::string> namedTests(const std::string& page) {
  static const std::regex name(R"(`([A-Z]\w+\.[A-Z]\w+)`)");
  std::set<std::string> tests;
  for (std::sregex_iterator match(page.begin(), page.end(), name), end; match != end; ++match) {
    tests.insert((*match)[1].str());
  }
  return tests;
}

}  // namespace

TEST(Pages, NameTestsThatThereAre) {
  const std::set<std::string> defined = definedTests();
  std::size_t named = 0;
  for (const auto& file : std::filesystem::recursive_directory_iterator(CFGMIG_DOCS_DIRECTORY)) {
    if (file.path().extension() != ".md") continue;
    for (const std::string& test : namedTests(contentOf(file.path()))) {
      ++named;
      EXPECT_TRUE(defined.contains(test)) << file.path() << " names " << test;
    }
  }
  EXPECT_GT(named, 50U);
}
