// What is wrong with a file is reported with its line, all of it in one run, and without its values.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "LdifReader.h"
#include "TestStore.h"

namespace cfgstore {
namespace {

using test::problemsOf;
using test::Strings;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

struct BadFile {
  const char* name;
  std::string text;
  const char* problem;
};

const std::string kZeroByte(1, '\0');

const BadFile kBadFiles[] = {
    {"no colon", "dn: CN=A\na: 1\nnonsense\n", "3: no colon on this line; expected \"attribute: value\""},
    {"no colon on a folded line", "dn: CN=A\nnon\n sense\na: 1\n",
     "2: no colon on this line; expected \"attribute: value\""},
    {"a separator of a change record", "dn: CN=A\na: 1\n-\n",
     "3: no colon on this line; expected \"attribute: value\""},
    {"a blank in a name", "dn: CN=A\n\n# c\ndn: CN=B\nmy name: 1\n",
     "5: no attribute name before the colon; expected a letter followed by letters, digits and hyphens"},
    {"no name", "dn: CN=A\n: 1\n",
     "2: no attribute name before the colon; expected a letter followed by letters, digits and hyphens"},
    {"a name that begins with a hyphen", "dn: CN=A\n-a: 1\n",
     "2: no attribute name before the colon; expected a letter followed by letters, digits and hyphens"},
    {"an option without a name", "dn: CN=A\na;: 1\n",
     "2: no attribute name before the colon; expected a letter followed by letters, digits and hyphens"},
    {"an OID that ends in a dot", "dn: CN=A\n1.2.: 1\n",
     "2: no attribute name before the colon; expected a letter followed by letters, digits and hyphens"},
    {"a name beyond ASCII", "dn: CN=A\nn\xC3\xA4me: 1\n",
     "2: no attribute name before the colon; expected a letter followed by letters, digits and hyphens"},
    {"a very long name", "dn: CN=A\n" + std::string(65536, 'a') + ": 1\n",
     "2: attribute name of more than 65535 bytes"},
    {"a URL", "dn: CN=A\na:< file:///etc/passwd\n",
     "2: a value is to be read from a URL (\":<\"); expected the value itself"},
    {"bad base64", "dn: CN=A\nsecret:: not base64\n",
     "2: bad base64 in a value of \"secret\"; expected whole groups of four characters"},
    {"base64 that breaks off",
     "dn: CN=A\nsecret:: Zm9vYg=", "2: bad base64 in a value of \"secret\"; expected whole groups of four characters"},
    {"bad base64 in a DN", "dn:: Q0\na: 1\n",
     "1: bad base64 in a value of \"dn\"; expected whole groups of four characters"},
    {"a zero byte in base64", "dn: CN=A\nkey:: YQBi\n",
     "2: a value of \"key\" holds a zero byte, which no setting can"},
    {"a zero byte", "dn: CN=A\na: x" + kZeroByte + "y\n", "2: a zero byte; expected a text file"},
    {"a zero byte in a continuation", "dn: CN=A\na: x\n y\n z" + kZeroByte + "\n",
     "4: a zero byte; expected a text file"},
    {"a zero byte in a comment", "# x" + kZeroByte + "\ndn: CN=A\n", "1: a zero byte; expected a text file"},
    {"a zero byte in a dn line", "dn: CN=A" + kZeroByte + "\na: 1\n", "1: a zero byte; expected a text file"},
    {"a binary file",
     std::string("\x7F"
                 "ELF\x02\x01\x01") +
         std::string(9, '\0'),
     "1: a zero byte; expected a text file"},
    {"no dn", "dn: CN=A\na: 1\n\ncn: B\nb: 1\nc: 2\n", "4: an entry that does not begin with its DN; expected \"dn:\""},
    {"no empty line above a dn", "dn: CN=A\na: 1\ndn: CN=B\nb: 1\n",
     "3: \"dn:\" in the middle of an entry; expected a blank line before it"},
    {"not a DN", "dn: nonsense\na: 1\n", "1: not a distinguished name; expected \"dn: CN=...\" as RFC 4514 writes it"},
    {"the same entry twice", "dn: CN=A,CN=B\na: 1\n\n\ndn: cn=a, cn=b\na: 1\n",
     "5: the entry \"cn=a, cn=b\" a second time; it stands on line 1 already"},
    {"a continuation at the start", " a: 1\ndn: CN=A\n",
     "1: a line that begins with a blank, but there is none above that it could continue"},
    {"a continuation below an empty line", "dn: CN=A\na: 1\n\n b\n",
     "4: a line that begins with a blank, but there is none above that it could continue"},
    {"an unknown version", "version: 2\n\ndn: CN=A\n", "1: an LDIF version that is not known; expected \"version: 1\""},
    {"a version line after an entry", "dn: CN=A\n\nversion: 1\ndn: CN=B\ncn: B\n",
     "3: a version line; expected it once, above the first entry"},
    {"a carriage return in a folded line", "dn: CN=A\r\na: x\r\n y\rz\r\n",
     "3: a carriage return without a line feed; expected line ends of one kind"},
    {"a change record", "dn: CN=A\nchangetype: delete\n",
     "2: a change record (\"changetype:\"); expected the content of an entry"},
    {"a control", "dn: CN=A\ncontrol: 1.2.3 true\n",
     "2: a change record (\"control:\"); expected the content of an entry"},
    {"a carriage return inside a line", "dn: CN=A\na: x\ry\n",
     "2: a carriage return without a line feed; expected line ends of one kind"},
    {"line ends of carriage returns", "dn: CN=A\ra: x\r",
     "1: a carriage return without a line feed; expected line ends of one kind"},
};

TEST(LdifProblems, NamesTheLineAndWhatWasExpected) {
  for (const BadFile& bad : kBadFiles) EXPECT_THAT(problemsOf(bad.text), ElementsAre(bad.problem)) << bad.name;
}

TEST(LdifProblems, AreInTheOrderOfTheLinesAlsoInsideAFoldedOne) {
  EXPECT_THAT(problemsOf("dn: CN=A\r\ndn: C\r\n N\r=B\r\n"),
              ElementsAre("2: \"dn:\" in the middle of an entry; expected a blank line before it",
                          "3: a carriage return without a line feed; expected line ends of one kind"));
}

TEST(LdifProblems, AVersionLineIsToldFromTheEntriesAroundIt) {
  EXPECT_THAT(problemsOf("bad\nversion: b\ndn: CN=A\n\nversion: 1\ndn: CN=B\ncn: B\n"),
              ElementsAre("1: no colon on this line; expected \"attribute: value\"",
                          "2: a version line; expected it once, above the first entry",
                          "5: a version line; expected it once, above the first entry"));
}

TEST(LdifProblems, CountsLinesAsAnEditorDoes) {
  EXPECT_THAT(problemsOf("version: 1\r\n\r\n\r\n# a\r\n  b\r\ndn: CN=A\r\na: x\r\n y\r\n z\r\nbad\r\n"),
              ElementsAre("10: no colon on this line; expected \"attribute: value\""));
}

TEST(LdifProblems, ReportsAllThatIsWrongInOneRun) {
  EXPECT_THAT(problemsOf("dn: CN=A\nbad\na:: x\n\nb: 1\nbad\n\ndn: CN=a\n\ndn: x\nc: 1\n"),
              ElementsAre("2: no colon on this line; expected \"attribute: value\"",
                          "3: bad base64 in a value of \"a\"; expected whole groups of four characters",
                          "5: an entry that does not begin with its DN; expected \"dn:\"",
                          "6: no colon on this line; expected \"attribute: value\"",
                          "8: the entry \"CN=a\" a second time; it stands on line 1 already",
                          "10: not a distinguished name; expected \"dn: CN=...\" as RFC 4514 writes it"));
}

TEST(LdifProblems, ReportsInTheOrderOfTheLinesAlsoWithinOneFoldedLine) {
  EXPECT_THAT(problemsOf("dn: CN=A\ndn: CN=B\n " + kZeroByte + "\n"),
              ElementsAre("2: \"dn:\" in the middle of an entry; expected a blank line before it",
                          "3: a zero byte; expected a text file"));
}

TEST(LdifProblems, StopsAtTheHundredth) {
  std::string text = "dn: CN=A\n";
  for (int i = 0; i < 150; ++i) text += "bad\n";
  const Strings problems = problemsOf(text);
  ASSERT_EQ(problems.size(), 101U);
  EXPECT_EQ(problems[99], "101: no colon on this line; expected \"attribute: value\"");
  EXPECT_EQ(problems[100], "102: too many problems; the rest of the file was not read");
}

TEST(LdifProblems, EndAtMoreLinesThanCanBeNumbered) {
  for (const std::size_t most : {std::size_t{3}, std::size_t{2}}) {
    TextArena arena;
    Strings problems;
    readLdif(
        "dn: CN=A\na: 1\na: 2\n", arena,
        [&](const Problem& problem) {
          problems.push_back(std::to_string(problem.line) + ": " + problem.text);
          return true;
        },
        most);
    EXPECT_EQ(problems, most == 3 ? Strings() : Strings{"3: more than 2 lines; the rest was not read"});
  }
}

TEST(LdifProblems, EndTheReadingWhenNoMoreAreWanted) {
  TextArena arena;
  int told = 0;
  const auto tell = [&](const Problem&) { return ++told < 2; };
  readLdif("bad\ndn: CN=A\ndn:: x\nbad\n", arena, tell);
  EXPECT_EQ(told, 2);
}

// What is read besides them is in order: lines do not overlap, and nothing but the lines with problems is left out.
TEST(LdifProblems, LeaveTheOtherLinesInTheTable) {
  const std::string text = "# c\n\nbad\n\n\nbad\ndn: CN=A\na: 1\nbad\n\n\ndn: bad\nb: 1\n\ndn: CN=A\n";
  TextArena arena;
  std::string kept;
  const LdifContent content = readLdif(text, arena, [](const Problem&) { return true; });
  for (const Line& line : content.lines) kept += line.text();
  EXPECT_EQ(kept, "# c\n\n\n\ndn: CN=A\na: 1\n\n\ndn: bad\nb: 1\n\ndn: CN=A\n");
  ASSERT_EQ(content.entries.size(), 3U);
  EXPECT_TRUE(content.entries[0].named && content.entries[0].faulty);
  EXPECT_FALSE(content.entries[1].named || content.entries[1].faulty);
  EXPECT_FALSE(content.entries[2].named || content.entries[2].faulty);
  EXPECT_EQ(content.entries[2].line, 15U);
}

TEST(LdifProblems, NeverShowAValue) {
  const std::string secret = "S3cr3t-in-the-file";
  const Strings texts{"dn: CN=A\n" + secret + "\n",
                      "dn: CN=A\n" + secret + " x: 1\n",
                      "dn: CN=A\n\n" + secret + ": 1\n",
                      "dn: CN=A\npassword:: " + secret + "!\n",
                      "dn: CN=A\npassword:< file:///" + secret + "\n",
                      "dn: CN=A\npassword: " + secret + "\r" + secret + "\n",
                      "dn: " + secret + "\n",
                      "version: " + secret + "\n",
                      " " + secret + "\n",
                      "dn: CN=A\npassword: " + secret + "\nchangetype: " + secret + "\n"};
  for (const std::string& text : texts) {
    try {
      test::TestStore store(text);
      ADD_FAILURE() << "was read: " << text;
    } catch (const OpenError& error) {
      EXPECT_THAT(error.what(), Not(HasSubstr(secret)));
      for (const Problem& problem : error.problems()) EXPECT_THAT(problem.text, Not(HasSubstr(secret)));
    }
  }
}

TEST(LdifProblems, ShowsALongDnInPartAndOnOneLine) {
  const std::string dn = "CN=" + std::string(1000, 'x');
  const Strings problems = problemsOf("dn: " + dn + "\n\ndn: " + dn + "\n");
  ASSERT_EQ(problems.size(), 1U);
  EXPECT_EQ(problems[0], "3: the entry \"" + dn.substr(0, 200) + "...\" a second time; it stands on line 1 already");
}

TEST(LdifProblems, ShowWhatIsNoVisibleCharacterOfADnAsAQuestionMark) {
  // No character, a private one, a change of the direction of writing, a blank that is not the usual one; and a letter.
  const std::string dn =
      "CN=a\xCD\xB8"
      "b\xEE\x80\x80"
      "c\xE2\x80\xAE"
      "d\xC2\xA0"
      "e\xC3\xA9";
  const Strings problems = problemsOf("dn: " + dn + "\n\ndn: " + dn + "\n");
  ASSERT_EQ(problems.size(), 1U);
  EXPECT_EQ(problems[0], "3: the entry \"CN=a?b?c?d?e\xC3\xA9\" a second time; it stands on line 1 already");
}

// A file that was cut off is an error or a shorter file, never a crash and never a half-read value in base64.
TEST(LdifProblems, AreFoundWhereverAFileIsCutOff) {
  const std::string text =
      "\xEF\xBB\xBFversion: 1\r\n\r\n# c\r\n d\r\ndn:: Q049QQ==\r\na: x\r\n y\r\nb:: Zm9vYg==\r\n\r\ndn: CN=B\nb: 1\n";
  for (std::size_t size = 0; size <= text.size(); ++size) {
    const std::string cut = text.substr(0, size);
    try {
      test::TestStore store(cut);
      EXPECT_EQ(store.text(), cut);
      const auto value = store.value("CN=A", "b").value;
      EXPECT_TRUE(!value || *value == "foob" || *value == "foo" || value->empty()) << *value;
    } catch (const OpenError& error) {
      EXPECT_FALSE(error.problems().empty());
    }
  }
}

}  // namespace
}  // namespace cfgstore
