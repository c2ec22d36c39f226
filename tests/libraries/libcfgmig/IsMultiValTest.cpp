// isMultiVal: which attributes are merged value by value.

#include <cctype>

#include "ConfigFileFixture.h"

namespace {

using namespace traced;

class IsMultiVal : public ConfigFileFixture {
 protected:
  int ask(const std::string& name) {
    if (!m_opened) {
      construct();
      m_opened = true;
    }
    return newConfig().isMultiVal(modifiable(name));
  }

 private:
  bool m_opened = false;
};

const char* const kTable[] = {
    "OBJECTCLASS",       "zor-slapdCachedAttribute", "zor-slapdSchemaAdditions", "zor-slapdIncludeSchema",
    "zor-slapdReferral", "zor-slapdSetenv",          "zor-slapdSuffix",          "zor-slapdPlugin"};

std::string inCase(std::string text, int (*convert)(int)) {
  for (char& c : text) {
    c = static_cast<char>(convert(static_cast<unsigned char>(c)));
  }
  return text;
}

TEST_F(IsMultiVal, KnowsEachNameOfTheTableInAnyLetterCase) {
  for (const std::string name : kTable) {
    EXPECT_EQ(ask(name), 1) << name;
    EXPECT_EQ(ask(inCase(name, std::toupper)), 1) << name;
    EXPECT_EQ(ask(inCase(name, std::tolower)), 1) << name;
    std::string mixed = inCase(name, std::tolower);
    for (std::size_t i = 0; i < mixed.size(); i += 2) {
      mixed[i] = static_cast<char>(std::toupper(static_cast<unsigned char>(mixed[i])));
    }
    EXPECT_EQ(ask(mixed), 1) << mixed;
  }
}

TEST_F(IsMultiVal, ComparesWholeNames) {
  for (const std::string name : kTable) {
    EXPECT_EQ(ask(name + "es"), 0) << name;
    EXPECT_EQ(ask("x" + name), 0) << name;
    EXPECT_EQ(ask(name.substr(0, name.size() - 1)), 0) << name;
    EXPECT_EQ(ask(name + " "), 0) << name;
  }
}

TEST_F(IsMultiVal, EveryOtherAttributeIsSingleValued) {
  for (const char* name : {"", "CN", "zor-slapdPort", "zor-slapdVersion", "member", "zor-slapd", "zor-slapdInclude"}) {
    EXPECT_EQ(ask(name), 0) << name;
  }
}

TEST_F(IsMultiVal, ReportsZeroWhateverItAnswers) {
  EXPECT_EQ(ask("zor-slapdPlugin"), 1);
  EXPECT_EQ(ask("zor-slapdPort"), 0);
  EXPECT_EQ(world.trace(),
            (Lines{entryOf(kIsMultiVal), exitOf(kIsMultiVal, 0), entryOf(kIsMultiVal), exitOf(kIsMultiVal, 0)}));
  EXPECT_EQ(world.calls(), Lines());
}

}  // namespace
