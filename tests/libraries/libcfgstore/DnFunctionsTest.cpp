#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <string>

#include "CfgUtils.h"

namespace {

struct Free {
  void operator()(char* text) const { std::free(text); }
};

using HeapString = std::unique_ptr<char, Free>;

constexpr const char* kLegacy = "cn=DIRECTORY, cn=RDBM BACKENDS, cn=ZOR Halvorn, CN=SCHEMAS,CN=CONFIGURATION";
constexpr const char* kCurrent = "CN=DIRECTORY,CN=RDBM BACKENDS,CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION";

// Each backend entry by its current and its legacy name.
struct Names {
  const char* current;
  const char* legacy;
};

constexpr Names kBackends[] = {
    {kCurrent, kLegacy},
    {"CN=SCHEMADB,CN=LDCF BACKENDS,CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION",
     "cn=SCHEMADB, cn=LDCF BACKENDS, cn=ZOR Halvorn, CN=SCHEMAS,CN=CONFIGURATION"},
    {"CN=CHANGE LOG,CN=RDBM BACKENDS,CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION",
     "cn=CHANGE LOG, cn=RDBM BACKENDS, cn=ZOR Halvorn, CN=SCHEMAS,CN=CONFIGURATION"},
    {"CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION", "cn=ZOR Halvorn, CN=SCHEMAS,CN=CONFIGURATION"},
};

TEST(FormatDn, GivesAHeapStringInNormalForm) {
  const HeapString normal(formatDn("cn=Front  End , cn=Configuration"));
  ASSERT_NE(normal, nullptr);
  EXPECT_STREQ(normal.get(), "CN=FRONT END,CN=CONFIGURATION");
}

TEST(FormatDn, GivesAnEmptyStringForTheEmptyDn) {
  const HeapString normal(formatDn(""));
  ASSERT_NE(normal, nullptr);
  EXPECT_STREQ(normal.get(), "");
}

TEST(FormatDn, GivesNullForNullAndForWhatIsNoDn) {
  EXPECT_EQ(formatDn(nullptr), nullptr);
  EXPECT_EQ(formatDn("no dn"), nullptr);
  EXPECT_EQ(formatDn("cn=a,"), nullptr);
}

TEST(FormatDn, NeverWritesANullByteInsideTheString) {
  const HeapString text(formatDn(R"(cn=a\00b)"));
  ASSERT_NE(text, nullptr);
  EXPECT_STREQ(text.get(), "CN=AB");
  const HeapString bytes(formatDn(R"(cn=a\00\ffb)"));
  ASSERT_NE(bytes, nullptr);
  EXPECT_STREQ(bytes.get(), R"(CN=A\00\FFB)");
}

TEST(CompareDns, KnowsALegacyNameInItsNormalForm) {
  for (const Names& names : kBackends) {
    for (const char* const name : {names.current, names.legacy}) {
      const HeapString normal(formatDn(name));
      ASSERT_NE(normal, nullptr);
      EXPECT_NE(compareDns(name, normal.get()), 0) << name;
      EXPECT_NE(compareDns(normal.get(), name), 0) << name;
    }
  }
}

TEST(CompareDns, TellsTheLegacyNameFromTheCurrentOne) {
  for (const Names& left : kBackends) {
    for (const Names& right : kBackends) {
      EXPECT_EQ(compareDns(left.current, right.legacy), 0);
      EXPECT_EQ(compareDns(left.current, right.current) != 0, &left == &right);
      EXPECT_EQ(compareDns(left.legacy, right.legacy) != 0, &left == &right);
    }
  }
}

TEST(CompareDns, IsZeroForNullAndForWhatIsNoDn) {
  EXPECT_EQ(compareDns(nullptr, nullptr), 0);
  EXPECT_EQ(compareDns(nullptr, "cn=a"), 0);
  EXPECT_EQ(compareDns("cn=a", nullptr), 0);
  EXPECT_EQ(compareDns("a", "a"), 0);
  EXPECT_EQ(compareDns("cn=a,", "cn=a,"), 0);
}

TEST(CompareDns, TakesTheEmptyDnForItself) {
  EXPECT_NE(compareDns("", ""), 0);
  EXPECT_EQ(compareDns("", "cn=a"), 0);
  EXPECT_EQ(compareDns("cn=a", ""), 0);
}

}  // namespace
