// An inspection finds all that is wrong with a file and all that is suspicious, each with its line.

#include "Inspection.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <map>
#include <random>
#include <set>
#include <thread>

#include "Corpus.h"
#include "TestStore.h"

namespace cfgstore {
namespace {

using test::Strings;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

Inspection inspected(std::string_view text, const InspectionLimits& limits = {}) {
  const test::TemporaryDirectory directory;
  return inspect(directory.write("a.ldif", text), limits);
}

// "LINE id: text" for each remark.
Strings shown(const Inspection& inspection) {
  Strings lines;
  for (const Remark& remark : inspection.remarks) {
    lines.push_back(std::to_string(remark.line) + " " + std::string(infoOf(remark.kind).id) + ": " + remark.text);
  }
  return lines;
}

Strings remarksOn(std::string_view text) { return shown(inspected(text)); }

const std::string kRoot = "dn: CN=CONFIGURATION\nobjectClass: top\ncn: CONFIGURATION\n";
const std::string kLong(65536, 'x');
const std::string kZero(1, '\0');

struct Sample {
  std::string text;
  const char* remark;
};

// One for each kind of remark, in the order of the kinds; the remark is the only one on its text.
const Sample kSamples[] = {
    {kRoot + "a: x" + kZero + "\n", "4 zero-byte: a zero byte; expected a text file"},
    {kRoot + "a: x\ry\n", "4 stray-return: a carriage return without a line feed; expected line ends of one kind"},
    {kRoot + "nonsense\n", "4 no-colon: no colon on this line; expected \"attribute: value\""},
    {kRoot + "my name: x\n",
     "4 bad-name: no attribute name before the colon; expected a letter followed by letters, digits and hyphens"},
    {kRoot + kLong + ": x\n", "4 name-too-long: attribute name of more than 65535 bytes"},
    {kRoot + "a:< file:///x\n", "4 url-value: a value is to be read from a URL (\":<\"); expected the value itself"},
    {kRoot + "a:: x\n", "4 bad-base64: bad base64 in a value of \"a\"; expected whole groups of four characters"},
    {kRoot + "a:: YQBi\n", "4 zero-byte-in-value: a value of \"a\" holds a zero byte, which no setting can"},
    {" x\n\n" + kRoot,
     "1 nothing-to-continue: a line that begins with a blank, but there is none above that it could continue"},
    {"version: 1\nversion: 1\n" + kRoot,
     "2 misplaced-version: a version line; expected it once, above the first entry"},
    {"version: 2\n" + kRoot, "1 unknown-version: an LDIF version that is not known; expected \"version: 1\""},
    {kRoot + "dn: CN=A,CN=CONFIGURATION\nobjectClass: top\ncn: A\n",
     "4 dn-inside-entry: \"dn:\" in the middle of an entry; expected a blank line before it"},
    {kRoot + "\ndn: nonsense\nobjectClass: top\n",
     "5 bad-dn: not a distinguished name; expected \"dn: CN=...\" as RFC 4514 writes it"},
    {kRoot + "\ndn: cn=configuration\nobjectClass: top\n",
     "5 duplicate-entry: the entry \"cn=configuration\" a second time; it stands on line 1 already"},
    {kRoot + "\nobjectClass: top\n", "5 missing-dn: an entry that does not begin with its DN; expected \"dn:\""},
    {kRoot + "changetype: add\n",
     "4 change-record: a change record (\"changetype:\"); expected the content of an entry"},

    {"\xEF\xBB\xBF" + kRoot, "1 byte-order-mark: a byte-order mark; it is kept, but other tools may refuse it"},
    {kRoot + "a: x\r\n", "4 mixed-line-ends: mixed line ends: 1 lines end in CRLF, 3 in LF; expected one kind"},
    {kRoot + "a: x", "4 no-final-line-end: no line end at the end of the file; it may have been cut off"},
    {kRoot + "a: x\n \n",
     "5 blank-continuation: a line of nothing but blanks continues the line above; expected an empty line if it is to "
     "separate"},
    {kRoot + "a: x\n# c\n y\n",
     "6 comment-takes-value: a continuation below a comment belongs to the comment; the value above the comment ends "
     "there"},
    {kRoot + "a: x\n " + kLong + "\n", "5 long-line: a line of 65537 bytes; other tools may cut it off"},
    {kRoot + "my_name: x\n",
     "4 underscore-in-name: the attribute name \"my_name\" has an underscore; expected hyphens"},
    {kRoot + "version: 1\n",
     "4 version-in-entry: \"version\" inside an entry is an attribute; expected a version line above the first entry"},
    {kRoot + "a:\n", "4 empty-value: an empty value of \"a\""},
    {kRoot + "a: x \n", "4 trailing-blanks: blanks at the end of a value of \"a\"; they belong to it"},
    {kRoot + "a:: eCA=\n", "4 outer-blanks: a value of \"a\" begins or ends with a blank"},
    {kRoot + "a:\tx\n", "4 tab-after-colon: a tab in front of a value of \"a\"; it belongs to it"},
    {kRoot + "a: x\x1By\n", "4 control-characters: control characters in a value of \"a\""},
    {kRoot + "a: \xFF\n", "4 not-utf-8: bytes that are not UTF-8 in \"a\"; they are kept as they are"},
    {kRoot + "a:: w7w= \n", "4 blank-after-base64: blanks behind the base64 of \"a\"; they are ignored"},
    {kRoot + "a:: eHl6\n", "4 needless-base64: a value of \"a\" is in base64 although it could be plain text"},
    {kRoot + "a: x\na: y\na: x\n", "6 duplicate-value: the same value of \"a\" as on line 4; it is read once"},
    {kRoot + "a: x\nA: y\nA: z\n", "5 name-spelling: \"A\" is the attribute \"a\" of line 4 in different letter case"},
    {kRoot + "a: x\nb: y\n# c\na: z\n", "7 scattered-values: a value of \"a\" apart from the one on line 4"},
    {"dn: CN=CONFIGURATION\nobjectClass: top\ncn: CONFIGURATION\n\ndn: CN=\"A\";CN=CONFIGURATION\nobjectClass: "
     "top\ncn: A\n",
     "5 dn-spelling: a DN with quotes or semicolons; it is read as \"CN=A,CN=CONFIGURATION\""},
    {kRoot + "\ndn: o=x\nobjectClass: top\no: x\n\ndn: cn=y,o=x\nobjectClass: top\ncn: y\n",
     "5 outside-configuration: an entry that is not below \"cn=configuration\"; a migration looks neither at it nor at "
     "what is below it"},
    {"dn: CN=A,CN=CONFIGURATION\nobjectClass: top\ncn: A\n\n" + kRoot,
     "1 parent-below: an entry above its parent, which stands on line 5"},
    {kRoot + "\ndn: CN=A,CN=B,CN=CONFIGURATION\nobjectClass: top\ncn: A\n",
     "5 parent-missing: an entry whose parent \"CN=B,CN=CONFIGURATION\" is not in the file"},
    {kRoot + "\ndn: CN=A,CN=CONFIGURATION\n", "5 no-attributes: an entry without attributes"},
    {kRoot + "\ndn: CN=A,CN=CONFIGURATION\ncn: A\n", "5 no-object-class: an entry without an object class"},
    {kRoot + "\ndn: CN=A,CN=CONFIGURATION\nobjectClass: top\ncn: B\n",
     "5 naming-value-missing: the value of \"CN\" that the DN begins with is not among the attributes of the entry"},
};

TEST(Inspection, FindsEachKindAndNothingElse) {
  for (const Sample& sample : kSamples) {
    EXPECT_THAT(remarksOn(sample.text), ElementsAre(sample.remark));
  }
}

TEST(Inspection, TellsOnceForEachAttributeThatItsValuesAreScattered) {
  EXPECT_THAT(remarksOn(kRoot + "a: x\nb: y\na: z\nb: y2\n# c\nb: y3\na: z2\n"),
              ElementsAre("6 scattered-values: a value of \"a\" apart from the one on line 4",
                          "7 scattered-values: a value of \"b\" apart from the one on line 5"));
}

TEST(Inspection, HasASampleForEachKindThatAFileOfThisSizeCanHave) {
  std::set<std::string> ids;
  for (const RemarkKindInfo& info : remarkKinds()) ids.emplace(info.id);
  for (const Sample& sample : kSamples) {
    const std::string remark = sample.remark;
    const auto blank = remark.find(' ');
    ids.erase(remark.substr(blank + 1, remark.find(':') - blank - 1));
  }
  EXPECT_THAT(ids, ElementsAre("file-too-large", "line-too-long", "too-many-lines", "too-many-problems", "unreadable"));
}

TEST(Inspection, FindsNothingInAFileAsItShouldBe) {
  const std::string text =
      "version: 1\n\n# header\n#  continued\n\n" + kRoot +
      "port: 389\nname: J\xC3\xBCrgen\nname;lang-de: x\nlong: a text that is\n  folded at a blank\nsecret:: "
      "w7wKw7w=\nsecret2:: OmNvbG9u\n\n\ndn: cn=Front End, cn=Configuration\nobjectclass: top\nCN: Front  End\n\n"
      "dn: cn=a+ou=b\\,c,cn=front end,cn=configuration\nobjectClass: top\nou: b,c\ncn: A\n";
  EXPECT_THAT(remarksOn(text), ElementsAre("14 control-characters: control characters in a value of \"secret\""));
  EXPECT_THAT(remarksOn(kRoot), IsEmpty());
  EXPECT_THAT(remarksOn(""), IsEmpty());
  EXPECT_THAT(remarksOn("# c\n"), IsEmpty());
  EXPECT_THAT(remarksOn("version: 1\r\n\r\n"), IsEmpty());
}

TEST(Inspection, HasAnIdentifierAndASentenceForEachKind) {
  std::set<std::string_view> ids;
  for (const RemarkKindInfo& info : remarkKinds()) {
    EXPECT_TRUE(ids.insert(info.id).second) << info.id;
    EXPECT_EQ(info.id.find_first_not_of("abcdefghijklmnopqrstuvwxyz0123456789-"), std::string_view::npos) << info.id;
    EXPECT_TRUE(info.meaning.ends_with('.')) << info.id;
    EXPECT_EQ(&infoOf(info.kind), &info);
  }
}

TEST(Inspection, ListsErrorsAndWarningsTogetherInTheOrderOfLines) {
  const Inspection inspection = inspected("dn: CN=A\nbad\na: 1\na: 1\n\nb:\nbad\n\n" + kRoot + "c: x \nd:: x");
  EXPECT_THAT(shown(inspection),
              ElementsAre("1 outside-configuration: an entry that is not below \"cn=configuration\"; a migration looks "
                          "neither at it nor at what is below it",
                          "2 no-colon: no colon on this line; expected \"attribute: value\"",
                          "4 duplicate-value: the same value of \"a\" as on line 3; it is read once",
                          "6 missing-dn: an entry that does not begin with its DN; expected \"dn:\"",
                          "6 empty-value: an empty value of \"b\"",
                          "7 no-colon: no colon on this line; expected \"attribute: value\"",
                          "12 trailing-blanks: blanks at the end of a value of \"c\"; they belong to it",
                          "13 bad-base64: bad base64 in a value of \"d\"; expected whole groups of four characters",
                          "13 no-final-line-end: no line end at the end of the file; it may have been cut off"));
  EXPECT_EQ(inspection.errors, 4U);
  EXPECT_EQ(inspection.warnings, 5U);
  EXPECT_EQ(inspection.entries, 2U);
  EXPECT_EQ(inspection.values, 5U);
}

TEST(Inspection, ShowsSomeOfEachKindAndCountsAll) {
  std::string text = kRoot;
  for (int i = 0; i < 250; ++i) text += "bad\na" + std::to_string(i) + ":\n";
  InspectionLimits limits;
  limits.mostPerKind = 3;
  const Inspection inspection = inspected(text, limits);
  Strings lines;
  for (const Remark& remark : inspection.remarks) lines.push_back(std::to_string(remark.line));
  EXPECT_THAT(lines, ElementsAre("4", "5", "6", "7", "8", "9"));
  ASSERT_EQ(inspection.counts.size(), 2U);
  EXPECT_EQ(inspection.counts[0].kind, RemarkKind::noColon);
  EXPECT_EQ(inspection.counts[0].found, 250U);
  EXPECT_EQ(inspection.counts[0].shown, 3U);
  EXPECT_EQ(inspection.counts[1].kind, RemarkKind::emptyValue);
  EXPECT_EQ(inspection.counts[1].found, 250U);
  EXPECT_EQ(inspection.errors, 250U);
  EXPECT_EQ(inspection.warnings, 250U);
  EXPECT_EQ(inspected(text).remarks.size(), 200U);
}

TEST(Inspection, GoesOnBelowAHundredErrors) {
  std::string text;
  for (int i = 0; i < 300; ++i) text += "bad\n";
  const Inspection inspection = inspected(text + "\n" + kRoot + "a: x ");
  EXPECT_EQ(inspection.errors, 300U);
  EXPECT_EQ(inspection.warnings, 2U);
  EXPECT_EQ(inspection.entries, 1U);
}

TEST(Inspection, TellsWhyAFileCannotBeRead) {
  const test::TemporaryDirectory directory;
  EXPECT_THAT(shown(inspect(directory.file("none"))),
              ElementsAre("0 unreadable: cannot be opened: No such file or directory"));
  EXPECT_THAT(shown(inspect(directory.path())), ElementsAre("0 unreadable: is a directory; expected an LDIF file"));
}

TEST(Inspection, ReadsAPipe) {
  const test::TemporaryDirectory directory;
  const std::string path = directory.file("pipe");
  ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
  std::thread writer([&] { test::writeFile(path, kRoot + "a:\n"); });
  const Inspection inspection = inspect(path);
  writer.join();
  EXPECT_THAT(shown(inspection), ElementsAre("4 empty-value: an empty value of \"a\""));
}

TEST(Inspection, NamesThePhysicalLineWithinAFoldedOne) {
  EXPECT_THAT(remarksOn(kRoot + "a: x\n y\n \n z\n# c\n d\n \n e\n"),
              ElementsAre("6 blank-continuation: a line of nothing but blanks continues the line above; expected an "
                          "empty line if it is to separate",
                          "9 comment-takes-value: a continuation below a comment belongs to the comment; the value "
                          "above the comment ends there",
                          "10 blank-continuation: a line of nothing but blanks continues the line above; expected an "
                          "empty line if it is to separate"));
}

TEST(Inspection, LeavesAFoldedCommentAloneThatNoValueStandsAbove) {
  EXPECT_THAT(remarksOn("# a\n  b\n\n# c\n  d\n" + kRoot + "\n# e\n f\n"), IsEmpty());
}

TEST(Inspection, FindsALineOfBlanksThatWasToSeparateEntries) {
  EXPECT_THAT(remarksOn(kRoot + " \ndn: CN=A,CN=CONFIGURATION\nobjectClass: top\ncn: A\n"),
              ElementsAre("4 blank-continuation: a line of nothing but blanks continues the line above; expected an "
                          "empty line if it is to separate",
                          "5 dn-inside-entry: \"dn:\" in the middle of an entry; expected a blank line before it"));
}

TEST(Inspection, NamesTheLinesOfTheRarerLineEnd) {
  const auto lineOf = [](std::string_view text) { return inspected(text).remarks.at(0).line; };
  EXPECT_EQ(lineOf("# a\r\n# b\n# c\r\n"), 2U);
  EXPECT_EQ(lineOf("# a\n# b\n# c\r\n"), 3U);
  EXPECT_EQ(lineOf("# a\n# b\r\n"), 2U);
}

TEST(Inspection, ReportsTheFirstOfEntriesThatRunTogetherOnce) {
  EXPECT_THAT(remarksOn("dn: x\nobjectClass: top\ndn:: x\nobjectClass: top\n"),
              ElementsAre("1 bad-dn: not a distinguished name; expected \"dn: CN=...\" as RFC 4514 writes it",
                          "3 bad-base64: bad base64 in a value of \"dn\"; expected whole groups of four characters",
                          "3 dn-inside-entry: \"dn:\" in the middle of an entry; expected a blank line before it"));
  EXPECT_EQ(inspected("dn: x\na: 1\nb: 2\ndn: y\na: 1\n").values, 3U);
}

struct NamingCase {
  const char* dn;
  const char* attributes;
  bool missing;
};

constexpr NamingCase kNaming[] = {
    {"cn=A b", "cn: a  B\n", false},
    {"cn=\\20A\\,b\\+\\23", "cn: a,B+#\n", false},
    {"cn=\xC3\xA4", "cn: \xC3\x84\n", false},
    {"cn=a+ou=b", "cn: a\nou: b\n", false},
    {"cn=a+ou=b", "cn: a\nou: c\n", true},
    {"cn=a+ou=b", "ou: b\n", true},
    {"cn=a", "cn: b\ncn: c\nCN: A\n", false},
    {"cn=a", "cn: ab\n", true},
    {"cn=ab", "cn: a\n", true},
    {"cn=a", "cn;lang-de: a\n", true},
    {"cn=#04024869", "sn: x\n", false},
    {"2.5.4.3=a", "cn: a\n", false},
    {"cn=", "cn:\n", false},
    {"cn=\xFF", "cn:: /w==\n", false},
};

TEST(Inspection, LooksForTheNamingValuesAsDnsAreCompared) {
  for (const NamingCase& naming : kNaming) {
    const Inspection inspection =
        inspected(kRoot + "\ndn: " + naming.dn + ",cn=configuration\nobjectClass: top\n" + naming.attributes);
    bool missing = false;
    for (const RemarkCount& count : inspection.counts) missing |= count.kind == RemarkKind::namingValueMissing;
    EXPECT_EQ(missing, naming.missing) << naming.dn << "\n" << naming.attributes;
  }
}

TEST(Inspection, TellsOnceOfASubtreeOutsideTheConfiguration) {
  const Inspection inspection = inspected(
      "dn:\na: 1\n\ndn: o=x\no: x\n\ndn: cn=y,o=x\ncn: y\n\ndn: cn=z,o=w\ncn: z\n\ndn: cn=xcn=configuration\ncn: "
      "xcn=configuration\n");
  ASSERT_EQ(inspection.counts.size(), 2U);
  EXPECT_EQ(inspection.counts[0].kind, RemarkKind::outsideConfiguration);
  EXPECT_EQ(inspection.counts[0].found, 4U);
}

TEST(Inspection, ComparesValuesDecodedAndAmongMany) {
  std::string text = kRoot;
  for (int i = 0; i < 40; ++i) text += "a: " + std::to_string(i) + "\n";
  EXPECT_THAT(remarksOn(text + "a: \n 7\nA:: Nw== \n"),
              ElementsAre("44 duplicate-value: the same value of \"a\" as on line 11; it is read once",
                          "46 blank-after-base64: blanks behind the base64 of \"A\"; they are ignored",
                          "46 needless-base64: a value of \"A\" is in base64 although it could be plain text",
                          "46 duplicate-value: the same value of \"a\" as on line 11; it is read once",
                          "46 name-spelling: \"A\" is the attribute \"a\" of line 4 in different letter case"));
}

TEST(Inspection, NeverShowsAValueOrAComment) {
  const std::string secret = "S3cr3t";
  std::string text = "# " + secret + "\n  " + secret + "\n" + secret + "\n\n" + kRoot;
  for (const char* line : {"p: S3cr3t \n", "p: S3cr3t \n", "P:: UzNjcjN0\n", "q: 1\n# c\n S3cr3t\n", "p:\tS3cr3t\n",
                           "p: S3cr3t\x01\n", "p: S3cr3t\xFF\n", "p:: S3cr3t!\n", "p:< S3cr3t\n", "S3cr3t x: 1\n"}) {
    text += line;
  }
  const Inspection inspection = inspected(text);
  EXPECT_GT(inspection.remarks.size(), 10U);
  for (const std::string& remark : shown(inspection)) EXPECT_THAT(remark, Not(HasSubstr(secret)));
}

TEST(Inspection, ShowsDnsAndNamesShortenedAndHarmless) {
  const std::string name(60000, 'n');
  EXPECT_THAT(remarksOn(kRoot + name + ":\n"),
              ElementsAre("4 empty-value: an empty value of \"" + name.substr(0, 100) + "...\""));
  const std::string dn = "cn=\x1B[31m\xE2\x80\xAE\xC2\x9B" + std::string(300, 'y') + ",cn=configuration";
  const Strings remarks = remarksOn(kRoot + "\ndn: " + dn + "\n\ndn: " + dn + "\n");
  ASSERT_FALSE(remarks.empty());
  EXPECT_THAT(remarks, testing::Contains("7 duplicate-entry: the entry \"cn=?[31m??" + std::string(190, 'y') +
                                         "...\" a second time; it stands on line 5 already"));
}

// The lines and identifiers alone.
Strings idsOn(std::string_view text) {
  Strings ids;
  for (const Remark& remark : inspected(text).remarks) {
    ids.push_back(std::to_string(remark.line) + " " + std::string(infoOf(remark.kind).id));
  }
  return ids;
}

struct BorderlineCase {
  const char* name;
  std::string text;
  Strings ids;
};

const BorderlineCase kBorderline[] = {
    {"a continued comment below a line that was refused", kRoot + "bad\n# c\n d\n", {"4 no-colon"}},
    {"a continued comment below a version line", "version: 1\n# c\n d\n\n" + kRoot, {"3 comment-takes-value"}},
    {"several lines that a comment takes", kRoot + "a: x\n# c\n d\n e\n", {"6 comment-takes-value"}},
    {"nothing but a byte-order mark", "\xEF\xBB\xBF", {"1 byte-order-mark"}},
    {"a DN that is not UTF-8",
     kRoot + "\ndn: cn=\xFF,cn=configuration\nobjectClass: top\ncn:: /w==\n",
     {"5 not-utf-8"}},
    {"a DN in base64 that is not UTF-8",
     kRoot + "\ndn:: Y249/yxjbj1jb25maWd1cmF0aW9u\nobjectClass: top\ncn:: /w==\n",
     {"5 not-utf-8"}},
    {"a DN with blanks around it", kRoot + "\ndn:  cn=a,cn=configuration \nobjectClass: top\ncn: a\n", {}},
    {"a DN in base64 that need not be", kRoot + "\ndn:: Y249YSxjbj1jb25maWd1cmF0aW9u\nobjectClass: top\ncn: a\n", {}},
    {"bytes in base64, control characters among them", kRoot + "a:: /wEC\n", {}},
    {"text in base64 with a control character", kRoot + "a:: AQ==\n", {"4 control-characters"}},
    {"a tab inside a value", kRoot + "a: x\ty\t\n", {}},
    {"a blank in front in base64", kRoot + "a:: IHg=\n", {"4 outer-blanks"}},
    {"an empty value in base64", kRoot + "a::\n", {"4 empty-value"}},
    {"a line of the greatest usual length", kRoot + "a: " + kLong.substr(0, 65532) + "\n", {}},
    {"a line of one byte more", kRoot + "a: " + kLong.substr(0, 65533) + "\n", {"4 long-line"}},
    {"a long comment", "#" + kLong + "\n" + kRoot, {"1 long-line"}},
    {"another version inside an entry", kRoot + "version: 2\n", {}},
    {"values of one attribute with a comment between", kRoot + "a: x\n# c\na: y\n", {}},
    {"values in different letter case", kRoot + "a: x\na: X\n", {}},
    {"equal values of different attributes", kRoot + "a: x\nb: x\na;lang-de: x\n", {}},
    {"an entry of comments", kRoot + "\ndn: cn=a,cn=configuration\n# c\n", {"5 no-attributes"}},
    {"an entry whose only line was refused", kRoot + "\ndn: cn=a,cn=configuration\nbad\n", {"6 no-colon"}},
    {"a bad DN that no entry is missing", kRoot + "\ndn: bad\na: 1\n", {"5 bad-dn", "5 no-object-class"}},
    {"a child of a bad DN", kRoot + "\ndn: cn=a,cn=\"b,cn=configuration\nobjectClass: top\n", {"5 bad-dn"}},
    {"the naming value of nothing",
     kRoot + "\ndn: cn=a,cn=configuration\nobjectClass: top\n",
     {"5 naming-value-missing"}},
    {"a parent whose DN has an escaped comma",
     kRoot + "\ndn: cn=a\\,b,cn=configuration\nobjectClass: top\ncn: a,b\n",
     {}},
    {"an escaped semicolon and quote",
     kRoot + "\ndn: cn=a\\;\\\"b,cn=configuration\nobjectClass: top\ncn: a;\"b\n",
     {}},
};

TEST(Inspection, DecidesBorderlineCases) {
  for (const BorderlineCase& borderline : kBorderline) {
    EXPECT_EQ(idsOn(borderline.text), borderline.ids) << borderline.name;
  }
}

// Over valid, awkward and damaged files: opening and inspecting agree about what is an error, line by line.
TEST(Inspection, FindsAnErrorExactlyWhereOpeningDoes) {
  std::mt19937 random(20240607);
  const std::string bytes("\n\r :#=<,ad\xC3\xFF\0", 13);
  int bad = 0;
  for (const test::Sample& sample : test::corpus()) {
    for (int round = 0; round < 60; ++round) {
      std::string text = sample.text;
      for (int change = 0; change < round % 4; ++change) {
        const std::size_t at = random() % text.size();
        if (random() % 2 == 0) text.erase(at, random() % 4);
        text.insert(std::min(at, text.size()), 1, bytes[random() % bytes.size()]);
      }
      Strings errors;
      for (const Remark& remark : inspected(text).remarks) {
        if (infoOf(remark.kind).severity == Severity::error) {
          errors.push_back(std::to_string(remark.line) + ": " + remark.text);
        }
      }
      EXPECT_EQ(errors, test::problemsOf(text)) << text;
      bad += errors.empty() ? 0 : 1;
    }
  }
  EXPECT_GT(bad, 100);
}

TEST(Inspection, CountsEntriesAndValuesOfEachSample) {
  for (const test::Sample& sample : test::corpus()) {
    test::TestStore store(sample.text);
    const Inspection inspection = inspected(sample.text);
    EXPECT_EQ(inspection.errors, 0U) << sample.name;
    EXPECT_EQ(inspection.entries, store.subordinates("", 2).values.size()) << sample.name;
  }
}

}  // namespace
}  // namespace cfgstore
