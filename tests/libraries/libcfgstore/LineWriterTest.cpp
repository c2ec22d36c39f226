// New lines follow the habits of the file they go to.

#include "LineWriter.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "LdifReader.h"

namespace cfgstore {
namespace {

Habits habitsOf(std::string_view text) {
  TextArena arena;
  const LdifContent content = readLdif(text, arena);
  EXPECT_TRUE(content.problems.empty());
  return Habits::of(content.lines);
}

TEST(LineWriter, WritesAPlainLine) { EXPECT_EQ(writeLine({}, "port", "389"), "port: 389\n"); }

TEST(LineWriter, WritesAnEmptyValueWithoutABlank) { EXPECT_EQ(writeLine({}, "a", ""), "a:\n"); }

struct Written {
  const char* value;
  const char* line;
};

constexpr Written kWritten[] = {
    {"a b", "x: a b\n"},    {"#a", "x: #a\n"},       {"a:b", "x: a:b\n"},     {"a<b", "x: a<b\n"},
    {"a\tb", "x: a\tb\n"},  {"\ta", "x: \ta\n"},     {" a", "x:: IGE=\n"},    {"a ", "x:: YSA=\n"},
    {" ", "x:: IA==\n"},    {":a", "x:: OmE=\n"},    {"<a", "x:: PGE=\n"},    {"a\nb", "x:: YQpi\n"},
    {"a\rb", "x:: YQ1i\n"}, {"a\x01", "x:: YQE=\n"}, {"a\x7f", "x:: YX8=\n"}, {"\xC3\xBC", "x:: w7w=\n"},
    {"\xFF", "x:: /w==\n"},
};

TEST(LineWriter, UsesBase64WhereAPlainValueWouldBeReadDifferently) {
  for (const Written& written : kWritten) EXPECT_EQ(writeLine({}, "x", written.value), written.line);
}

TEST(LineWriter, WritesUtf8AsItIsWhereTheFileDoes) {
  Habits habits;
  habits.rawUtf8 = true;
  EXPECT_EQ(writeLine(habits, "x", "\xC3\xBC"), "x: \xC3\xBC\n");
  EXPECT_EQ(writeLine(habits, "x", "\xFF"), "x:: /w==\n");
}

TEST(LineWriter, FoldsAtTheColumn) {
  Habits habits;
  habits.foldColumn = 20;
  EXPECT_EQ(writeLine(habits, "x", "12345678901234567"), "x: 12345678901234567\n");
  EXPECT_EQ(writeLine(habits, "x", "123456789012345678901234567890123456789"),
            "x: 12345678901234567\n 8901234567890123456\n 789\n");
}

TEST(LineWriter, DoesNotFoldInsideACharacter) {
  Habits habits;
  habits.foldColumn = 20;
  habits.rawUtf8 = true;
  EXPECT_EQ(writeLine(habits, "x", "1234567890123456\xC3\xBCxyz"), "x: 1234567890123456\n \xC3\xBCxyz\n");
}

TEST(LineWriter, DoesNotFoldWhereTheFileDoesNot) {
  Habits habits;
  habits.foldColumn = 0;
  EXPECT_EQ(writeLine(habits, "x", std::string(500, 'y')), "x: " + std::string(500, 'y') + "\n");
}

TEST(Habits, AreThoseOfMostLines) {
  EXPECT_EQ(habitsOf("dn: CN=A\r\na: 1\r\nb: 1\n").lineEnd, "\r\n");
  EXPECT_EQ(habitsOf("dn: CN=A\r\na: 1\nb: 1\n").lineEnd, "\n");
  EXPECT_TRUE(habitsOf("dn: CN=A\na: 1\nb:2\n").blankAfterColon);
  EXPECT_FALSE(habitsOf("dn:CN=A\na:1\nb: 2\n").blankAfterColon);
  EXPECT_TRUE(habitsOf("dn: CN=A\na: \xC3\xBC\n").rawUtf8);
  EXPECT_FALSE(habitsOf("dn: CN=A\na:: w7w=\n").rawUtf8);
  EXPECT_EQ(habitsOf("dn: CN=A\n\n\ndn: CN=B\n\n\ndn: CN=C\n\ndn: CN=D\n").emptyLinesBetweenEntries, 2U);
}

TEST(Habits, HaveTheColumnAtWhichTheFileFolds) {
  EXPECT_EQ(habitsOf("").foldColumn, 76U);
  EXPECT_EQ(habitsOf("dn: CN=A\na: " + std::string(75, 'x') + "\n y\n").foldColumn, 78U);
  EXPECT_EQ(habitsOf("dn: CN=A\na: " + std::string(200, 'x') + "\n").foldColumn, 0U);
  EXPECT_EQ(habitsOf("dn: CN=A\na: " + std::string(75, 'x') + "\n y\nb: " + std::string(75, 'x') +
                     "\n y\nc: " + std::string(200, 'x') + "\n")
                .foldColumn,
            78U);
  EXPECT_EQ(habitsOf("dn: CN=A\na: 1\n 2\n").foldColumn, 76U) << "a fold that is no example to follow";
}

RC_GTEST_PROP(LineWriter, WritesWhatIsReadBackAsTheSame, (std::string value)) {
  std::erase(value, '\0');
  Habits habits;
  habits.foldColumn = *rc::gen::elementOf(std::vector<std::size_t>{0, 20, 76});
  habits.lineEnd = *rc::gen::elementOf(std::vector<std::string_view>{"\n", "\r\n"});
  habits.blankAfterColon = *rc::gen::arbitrary<bool>();
  habits.rawUtf8 = *rc::gen::arbitrary<bool>();
  const std::string name = *rc::gen::elementOf(std::vector<std::string>{"a", "zor-slapdInvalidLineMarker", "cn;x"});
  const std::string text = writeLine(habits, name, value);
  std::string scratch;
  Line line;
  RC_ASSERT(!parseLine(text, scratch, line));
  RC_ASSERT(lineName(line, scratch) == name);
  RC_ASSERT(lineValue(line, scratch) == value);
}

}  // namespace
}  // namespace cfgstore
