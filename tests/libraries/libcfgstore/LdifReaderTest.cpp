// What a valid file is read as.

#include "LdifReader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Document.h"
#include "SourceText.h"
#include "TestStore.h"

namespace cfgstore {
namespace {

using test::Strings;
using test::TestStore;
using testing::ElementsAre;

// The values of attribute "a" in the one entry of a file, which has the given lines below its dn line.
Strings valuesOf(std::string_view lines) {
  TestStore store("dn: CN=A\n" + std::string(lines));
  return store.values("CN=A", "a").values;
}

struct ValueCase {
  const char* name;
  const char* lines;
  const char* value;
};

constexpr ValueCase kValues[] = {
    {"plain", "a: x\n", "x"},
    {"no blank after the colon", "a:x\n", "x"},
    {"several blanks after the colon", "a:    x\n", "x"},
    {"empty", "a:\n", ""},
    {"blanks only", "a:   \n", ""},
    {"blanks at the end", "a: x  \n", "x  "},
    {"a tab is no fill", "a:\tx\n", "\tx"},
    {"colons inside", "a: x:y::z\n", "x:y::z"},
    {"hash inside", "a: #x\n", "#x"},
    {"CRLF", "a: x\r\n", "x"},
    {"no newline at the end", "a: x", "x"},
    {"raw UTF-8", "a: J\xC3\xBC\n", "J\xC3\xBC"},
    {"bytes that are no UTF-8", "a: \xFF\xFE\n", "\xFF\xFE"},
    {"base64", "a:: eCB5\n", "x y"},
    {"base64 without a blank", "a::eCB5\n", "x y"},
    {"base64 with several blanks", "a::   eCB5\n", "x y"},
    {"base64 with blanks at the end", "a:: eCB5  \n", "x y"},
    {"empty base64", "a::\n", ""},
    {"base64 of leading and trailing blanks", "a:: IHgg\n", " x "},
    {"base64 of line ends", "a:: eA0KeQ==\n", "x\r\ny"},
    {"folded", "a: x\n y\n", "xy"},
    {"folded, exactly one blank removed", "a: x\n  y\n", "x y"},
    {"folded with CRLF", "a: x\r\n y\r\n", "xy"},
    {"folded with mixed line ends", "a: x\r\n y\n z\r\n", "xyz"},
    {"folded onto an empty line", "a: x\n \n y\n", "xy"},
    {"folded onto blanks", "a: x\n  \n", "x "},
    {"folded directly after the colon", "a:\n x\n", "x"},
    {"folded in the fill", "a: \n  x\n", "x"},
    {"folded before the colon", "a\n : x\n", "x"},
    {"folded between the colons", "a:\n : eCB5\n", "x y"},
    {"folded after the colons", "a::\n eCB5\n", "x y"},
    {"folded base64", "a:: eC\n B5\n", "x y"},
    {"folded, no newline at the end", "a: x\n y", "xy"},
    {"a value that begins with two colons after a fold", "a: x\n ::y\n", "x::y"},
};

TEST(LdifReader, ReadsValuesInEachSpelling) {
  for (const ValueCase& valueCase : kValues) {
    EXPECT_THAT(valuesOf(valueCase.lines), ElementsAre(valueCase.value)) << valueCase.name;
  }
}

TEST(LdifReader, LeavesCommentsOutOfValues) {
  EXPECT_THAT(valuesOf("# c\na: x\n# a: y\na: z\n#\n"), ElementsAre("x", "z"));
}

TEST(LdifReader, CountsAContinuationBelowACommentToTheComment) {
  EXPECT_THAT(valuesOf("a: x\n# c\n y\na: z\n"), ElementsAre("x", "z"));
}

TEST(LdifReader, TakesNamesInDifferentLetterCaseForOneAttribute) {
  EXPECT_THAT(valuesOf("a: x\nA: y\n"), ElementsAre("x", "y"));
}

TEST(LdifReader, KeepsAttributesWithOptionsApart) {
  TestStore store("dn: CN=A\na: 1\na;lang-de: 2\na;LANG-DE;binary: 3\n");
  EXPECT_THAT(store.values("CN=A", "a").values, ElementsAre("1"));
  EXPECT_THAT(store.values("CN=A", "A;lang-DE").values, ElementsAre("2"));
  EXPECT_THAT(store.values("CN=A", "a;lang-de;binary").values, ElementsAre("3"));
}

TEST(LdifReader, GivesAValueOnceThatTheFileHasTwice) {
  EXPECT_THAT(valuesOf("a: x\na: y\na:: eA==\nA: x\n"), ElementsAre("x", "y"));
}

TEST(LdifReader, ReadsNamesAsServersWriteThem) {
  for (const char* name :
       {"a", "zor-slapdPort", "a1-b2", "old_name", "1.3.6.1.4.1.42", "cn;lang-de", "a;x;y", "0", "version"}) {
    TestStore store("dn: CN=A\n" + std::string(name) + ": v\n");
    EXPECT_THAT(store.attributes("CN=A"), ElementsAre(name));
  }
}

struct DnCase {
  const char* name;
  const char* text;
  const char* dn;
};

constexpr DnCase kDns[] = {
    {"plain", "dn: CN=A,CN=B\na: 1\n", "CN=A,CN=B"},
    {"as it is written", "dn: cn=a , cn = b\na: 1\n", "cn=a , cn = b"},
    {"base64", "dn:: Q049QQ==\na: 1\n", "CN=A"},
    {"folded", "dn: CN=\n A\na: 1\n", "CN=A"},
    {"upper case", "DN: CN=A\na: 1\n", "CN=A"},
    {"no blank", "dn:CN=A\na: 1\n", "CN=A"},
    {"no attributes", "dn: CN=A\n", "CN=A"},
    {"below a version line", "version: 1\ndn: CN=A\n", "CN=A"},
    {"below a folded version line", "versi\n on: 1\ndn: CN=A\n", "CN=A"},
    {"below comments and a version line", "# c\n# c\nversion: 1\n# c\ndn: CN=A\n", "CN=A"},
    {"below a byte-order mark",
     "\xEF\xBB\xBF"
     "dn: CN=A\n",
     "CN=A"},
    {"below empty lines", "\n\r\n\ndn: CN=A\n", "CN=A"},
};

TEST(LdifReader, ReadsDnsInEachSpelling) {
  for (const DnCase& dnCase : kDns) {
    TestStore store(dnCase.text);
    EXPECT_THAT(store.subordinates("", 2).values, ElementsAre(dnCase.dn)) << dnCase.name;
  }
}

TEST(LdifReader, FindsNoEntriesInAFileWithoutAny) {
  for (const char* text : {"", "\n", "# only a comment", "version: 1\n", "\xEF\xBB\xBF", "\r\n\r\n"}) {
    TestStore store(text);
    EXPECT_THAT(store.subordinates("CN=CONFIGURATION", 2).values, ElementsAre()) << text;
    EXPECT_EQ(store.text(), text);
  }
}

TEST(LdifReader, TellsTheLinesOfAnEntryFromThoseBetweenEntries) {
  const std::string_view text =
      "version: 1\n# header\n\n# about A\ndn: CN=A\na: 1\n# end of A\n\n# loose\n\ndn: CN=B\nb: 1\n";
  TextArena arena;
  const LdifContent content = readLdif(text, arena);
  ASSERT_TRUE(content.problems.empty());
  ASSERT_EQ(content.entries.size(), 2U);
  const auto textOf = [&](std::size_t first, std::size_t end) {
    std::string lines;
    for (std::size_t i = first; i < end; ++i) lines += content.lines[i].text();
    return lines;
  };
  EXPECT_EQ(textOf(0, content.entries[0].first), "version: 1\n# header\n\n");
  EXPECT_EQ(textOf(content.entries[0].first, content.entries[0].end), "# about A\ndn: CN=A\na: 1\n# end of A\n");
  EXPECT_EQ(textOf(content.entries[0].end, content.entries[1].first), "\n# loose\n\n");
  EXPECT_EQ(textOf(content.entries[1].first, content.entries[1].end), "dn: CN=B\nb: 1\n");
}

TEST(LdifReader, ReadsATextThatNoFileHolds) {
  std::vector<Problem> problems;
  Document document(SourceText("dn: CN=A\na: x\n"), problems);
  EXPECT_TRUE(problems.empty());
  EntryId entry = 0;
  EXPECT_EQ(document.find("cn=a", entry), ResultCode::kSuccess);
  EXPECT_EQ(document.source().text(), "dn: CN=A\na: x\n");
  EXPECT_EQ(document.source().resolvedPath(), "");
  EXPECT_TRUE(SourceText("").text().empty());
}

}  // namespace
}  // namespace cfgstore
