// Each thing that an LDIF content file can have: how it is read, and that it is kept byte for byte, both when nothing
// changes and when something else does.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Snapshot.h"
#include "TestStore.h"

namespace cfgstore {
namespace {

using test::Strings;
using test::TestStore;
using testing::ElementsAre;
using testing::ElementsAreArray;

// "LINE DN" and "LINE name=value", attribute by attribute.
Strings contentOf(TestStore& store) {
  Strings lines;
  const Snapshot snapshot(store.store());
  for (const SnapshotEntry& entry : snapshot.entries()) {
    lines.push_back(std::to_string(entry.line) + " " + std::string(entry.dn));
    for (const SnapshotAttribute& attribute : snapshot.attributesOf(entry)) {
      for (const SnapshotValue& value : snapshot.valuesOf(attribute)) {
        std::string line = std::to_string(value.line);
        line.append(" ").append(attribute.name).append("=").append(value.value);
        lines.push_back(line);
      }
    }
  }
  return lines;
}

struct Feature {
  const char* name;
  std::string text;
  Strings content;
};

const std::string kMark = "\xEF\xBB\xBF";

const Feature kFeatures[] = {
    {"version line", "version: 1\ndn: cn=a\nx: 1\n", {"2 cn=a", "3 x=1"}},
    {"version line without a blank", "version:1\n\ndn: cn=a\nx: 1\n", {"3 cn=a", "4 x=1"}},
    {"version line in capitals and base64", "VERSION:: MQ==\n\ndn: cn=a\nx: 1\n", {"3 cn=a", "4 x=1"}},
    {"version line below comments and empty lines", "\n# c\n\nversion: 1\n\ndn: cn=a\nx: 1\n", {"6 cn=a", "7 x=1"}},
    {"version line of an otherwise empty file", "version: 1\n", {}},
    {"an attribute called version", "dn: cn=a\nversion: 1\nversion: 7\n", {"1 cn=a", "2 version=1", "3 version=7"}},
    {"comments in every place",
     "# 1\n\n# 2\ndn: cn=a\n# 3\nx: 1\n# 4\n#5\n\n#\n\n# 6\ndn: cn=b\nx: 2\n# 7",
     {"4 cn=a", "6 x=1", "13 cn=b", "14 x=2"}},
    {"a folded comment", "# one\n  two\n dn: no entry\ndn: cn=a\nx: 1\n", {"4 cn=a", "5 x=1"}},
    {"a folded comment between the lines of a folded value",
     "dn: cn=a\nx: on\n e\n# c\n  continued\ny: 2\n",
     {"1 cn=a", "2 x=one", "6 y=2"}},
    {"a continuation below a comment belongs to the comment",
     "dn: cn=a\nx: one\n# c\n two\ny: 2\n",
     {"1 cn=a", "2 x=one", "5 y=2"}},
    {"a comment with a carriage return inside", "# a\rb\ndn: cn=a\nx: 1\n", {"2 cn=a", "3 x=1"}},
    {"a comment that is not UTF-8", "# \xFF\ndn: cn=a\nx: 1\n", {"2 cn=a", "3 x=1"}},
    {"a folded name", "dn: cn=a\nlong\n na\n me: 1\n", {"1 cn=a", "2 longname=1"}},
    {"a fold before the colon and behind it", "dn: cn=a\nx\n :\n  1\n", {"1 cn=a", "2 x=1"}},
    {"a folded DN", "dn: cn=\n a,cn\n =b\nx: 1\n", {"1 cn=a,cn=b", "4 x=1"}},
    {"a folded dn word", "d\n n: cn=a\nx: 1\n", {"1 cn=a", "3 x=1"}},
    {"a folded DN in base64", "dn:: Y249\n Y\n Q==\nx: 1\n", {"1 cn=a", "4 x=1"}},
    {"a folded value, one blank removed", "dn: cn=a\nx: on\n e\n  two\n   three\n", {"1 cn=a", "2 x=one two  three"}},
    {"a folded value in base64", "dn: cn=a\nx:: b2\n 5l\n", {"1 cn=a", "2 x=one"}},
    {"base64 folded within a group and before its padding", "dn: cn=a\nx:: b\n 25lMQ=\n =\n", {"1 cn=a", "2 x=one1"}},
    {"a fold with nothing behind it", "dn: cn=a\nx: one\n \ny: 1\n", {"1 cn=a", "2 x=one", "4 y=1"}},
    {"a fold with blanks behind it", "dn: cn=a\nx: one\n   \ny: 1\n", {"1 cn=a", "2 x=one  ", "4 y=1"}},
    {"a fold inside a UTF-8 character", "dn: cn=a\nx: \xC3\n \xBC\n", {"1 cn=a", "2 x=\xC3\xBC"}},
    {"a fold at the end of the file", "dn: cn=a\nx: one\n two", {"1 cn=a", "2 x=onetwo"}},
    {"base64 with a blank", "dn: cn=a\nx:: b25l\n", {"1 cn=a", "2 x=one"}},
    {"base64 without a blank", "dn: cn=a\nx::b25l\n", {"1 cn=a", "2 x=one"}},
    {"base64 between blanks", "dn: cn=a\nx::    b25l   \n", {"1 cn=a", "2 x=one"}},
    {"DN in base64 with and without a blank",
     "dn:: Y249YQ==\nx: 1\n\ndn::Y249Yg==\nx: 2\n",
     {"1 cn=a", "2 x=1", "4 cn=b", "5 x=2"}},
    {"base64 of line ends", "dn: cn=a\nx:: YQ0KYgo=\n", {"1 cn=a", "2 x=a\r\nb\n"}},
    {"base64 of bytes", "dn: cn=a\nx:: //4B\n", {"1 cn=a", "2 x=\xFF\xFE\x01"}},
    {"empty values", "dn: cn=a\nx:\ny:   \nz::\nz::  \n", {"1 cn=a", "2 x=", "3 y=", "4 z=", "5 z="}},
    {"leading and trailing blanks", "dn: cn=a\nx:   one  \ny:: IG9uZSA=\n", {"1 cn=a", "2 x=one  ", "3 y= one "}},
    {"attribute options are attributes of their own",
     "dn: cn=a\nx: 1\nx;lang-de: 2\nx;binary:: Mw==\nX;LANG-DE: 4\nx;lang-de;binary: 5\n",
     {"1 cn=a", "2 x=1", "3 x;lang-de=2", "5 x;lang-de=4", "4 x;binary=3", "6 x;lang-de;binary=5"}},
    {"OIDs as names", "dn: cn=a\n2.5.4.3: 1\n2.5.4.3;x: 2\n", {"1 cn=a", "2 2.5.4.3=1", "3 2.5.4.3;x=2"}},
    {"names in different letter case",
     "dn: cn=a\nName: 1\nnAME: 2\nNAME: 3\n",
     {"1 cn=a", "2 Name=1", "3 Name=2", "4 Name=3"}},
    {"values apart from each other", "dn: cn=a\nx: 1\ny: 2\nx: 3\n", {"1 cn=a", "2 x=1", "4 x=3", "3 y=2"}},
    {"duplicate values", "dn: cn=a\nx: 1\nx: 1\nx:: MQ==\n", {"1 cn=a", "2 x=1", "3 x=1", "4 x=1"}},
    {"LF", "dn: cn=a\nx: 1\n\ndn: cn=b\n", {"1 cn=a", "2 x=1", "4 cn=b"}},
    {"CRLF", "dn: cn=a\r\nx: 1\r\n 2\r\n\r\ndn: cn=b\r\n", {"1 cn=a", "2 x=12", "5 cn=b"}},
    {"mixed line ends", "dn: cn=a\r\nx: 1\n 2\r\n 3\n\r\n\ndn: cn=b\n", {"1 cn=a", "2 x=123", "7 cn=b"}},
    {"no line end at the end", "dn: cn=a\nx: 1", {"1 cn=a", "2 x=1"}},
    {"nothing behind the last colon", "dn: cn=a\nx:", {"1 cn=a", "2 x="}},
    {"byte-order mark", kMark + "dn: cn=a\nx: 1\n", {"1 cn=a", "2 x=1"}},
    {"byte-order mark and version", kMark + "version: 1\n\ndn: cn=a\n", {"3 cn=a"}},
    {"byte-order mark and comment", kMark + "# c\ndn: cn=a\n", {"2 cn=a"}},
    {"UTF-8", "dn: cn=\xC3\xA4\nx: \xE2\x82\xAC\n", {"1 cn=\xC3\xA4", "2 x=\xE2\x82\xAC"}},
    {"bytes that are not UTF-8", "dn: cn=\xE4\nx: \xFF\xC3\n", {"1 cn=\xE4", "2 x=\xFF\xC3"}},
    {"many empty lines",
     std::string(1000, '\n') + "dn: cn=a\nx: 1\n" + std::string(1000, '\n'),
     {"1001 cn=a", "1002 x=1"}},
    {"tabs", "dn: cn=a\nx:\t1\ny: 2\t\nz: 3\t4\n", {"1 cn=a", "2 x=\t1", "3 y=2\t", "4 z=3\t4"}},
    {"control characters", "dn: cn=a\nx: \x01\x1B\x7F\n", {"1 cn=a", "2 x=\x01\x1B\x7F"}},
    {"colons and what looks like other lines",
     "dn: cn=a\nx: :y\ny: dn: cn=b\nz: # c\n",
     {"1 cn=a", "2 x=:y", "3 y=dn: cn=b", "4 z=# c"}},
    {"names of change records without one",
     "dn: cn=a\nadd: x\ndelete: y\nreplace: z\nnewrdn: w\n",
     {"1 cn=a", "2 add=x", "3 delete=y", "4 replace=z", "5 newrdn=w"}},
    {"entries without attributes", "dn: cn=a\n\ndn: cn=b\n", {"1 cn=a", "3 cn=b"}},
    {"entries before their parents",
     "dn: cn=x,cn=a\nx: 1\n\ndn: cn=a\nx: 2\n",
     {"1 cn=x,cn=a", "2 x=1", "4 cn=a", "5 x=2"}},
    {"unknown top entries and the empty DN", "dn: o=x\nx: 1\n\ndn:\nx: 2\n", {"1 o=x", "2 x=1", "4 ", "5 x=2"}},
    {"an empty file", "", {}},
    {"a file of comments", "# a\n#\n\n# b", {}},
    {"a file of empty lines", "\n\r\n\n", {}},
};

TEST(LdifFeatures, AreReadAsTheStandardHasThem) {
  for (const Feature& feature : kFeatures) {
    TestStore store(feature.text);
    EXPECT_THAT(contentOf(store), ElementsAreArray(feature.content)) << feature.name;
  }
}

TEST(LdifFeatures, AreKeptByteForByteWhenNothingChanges) {
  for (const Feature& feature : kFeatures) {
    TestStore store(feature.text);
    EXPECT_EQ(store.text(), feature.text) << feature.name;
    EXPECT_FALSE(store.store().changed()) << feature.name;
  }
}

TEST(LdifFeatures, AreKeptByteForByteWhenSomethingElseChanges) {
  for (const Feature& feature : kFeatures) {
    TestStore store(feature.text);
    ASSERT_EQ(store.addEntry("cn=new", "new", "y", "z"), 0) << feature.name;
    const Strings added = test::diff(feature.text, store.text());
    for (const std::string& line : added) {
      // A last line without line end gets one; it is the one line that the diff may show twice.
      const bool isLast = !feature.text.ends_with('\n') && line.starts_with("-");
      EXPECT_TRUE(line.starts_with("+") || isLast) << feature.name << ": " << line;
    }
    ASSERT_EQ(store.addValue("cn=new", "w", "1"), 0);
    ASSERT_EQ(store.removeEntry("cn=new"), 0);
    EXPECT_EQ(store.text(), feature.text) << feature.name;
  }
}

TEST(LdifFeatures, AreKeptByteForByteWhenTheEntryIsEdited) {
  for (const Feature& feature : kFeatures) {
    TestStore store(feature.text);
    for (const std::string& dn : store.subordinates("", 2).values) {
      ASSERT_EQ(store.addValue(dn.c_str(), "brand-new", "1"), 0) << feature.name;
      ASSERT_NE(store.text(), feature.text);
      ASSERT_EQ(store.delValue(dn.c_str(), "brand-new", {"1"}), 0);
      EXPECT_EQ(store.text(), feature.text) << feature.name;
    }
  }
}

TEST(LdifFeatures, ReadTenMegabytesOnOneLineAndFolded) {
  const std::string value(10 << 20, 'x');
  std::string folded;
  for (std::size_t at = 0; at < value.size(); at += 75) folded += value.substr(at, 75) + "\n ";
  for (const std::string& text : {"dn: cn=a\nx: " + value + "\ny: 1\n", "dn: cn=a\nx: " + folded + "\ny: 1\n"}) {
    TestStore store(text);
    EXPECT_TRUE(store.value("cn=a", "x").value == value);
    EXPECT_EQ(store.value("cn=a", "y").value, "1");
    EXPECT_TRUE(store.text() == text);
  }
}

// What a configuration file has no business with, or what cannot be told apart from a mistake.
struct Refusal {
  const char* name;
  std::string text;
  const char* problem;
};

const Refusal kRefusals[] = {
    {"a URL", "dn: cn=a\nx:<file:///x\n", "2: a value is to be read from a URL (\":<\"); expected the value itself"},
    {"a URL behind a fold", "dn: cn=a\nx:\n <file:///x\n",
     "2: a value is to be read from a URL (\":<\"); expected the value itself"},
    {"a URL as DN", "dn:< file:///x\nx: 1\n",
     "1: a value is to be read from a URL (\":<\"); expected the value itself"},
    {"a change record", "dn: cn=a\nChangeType: add\nx: 1\n",
     "2: a change record (\"ChangeType:\"); expected the content of an entry"},
    {"a control", "dn: cn=a\ncontrol: 1.2.3\nx: 1\n",
     "2: a change record (\"control:\"); expected the content of an entry"},
    {"a line of tabs", "dn: cn=a\nx: 1\n\t\t\n", "3: no colon on this line; expected \"attribute: value\""},
    {"a tab as continuation", "dn: cn=a\nx: 1\n\ty: 2\n",
     "3: no attribute name before the colon; expected a letter followed by letters, digits and hyphens"},
    {"a blank before the colon", "dn: cn=a\nx : 1\n",
     "2: no attribute name before the colon; expected a letter followed by letters, digits and hyphens"},
    {"a blank before the colon of a DN", "dn : cn=a\n",
     "1: no attribute name before the colon; expected a letter followed by letters, digits and hyphens"},
    {"two carriage returns", "dn: cn=a\nx: 1\r\r\n",
     "2: a carriage return without a line feed; expected line ends of one kind"},
    {"a second version line", "version: 1\nversion: 1\n\ndn: cn=a\n",
     "2: a version line; expected it once, above the first entry"},
    {"a version with a blank behind it", "version: 1 \n\ndn: cn=a\n",
     "1: an LDIF version that is not known; expected \"version: 1\""},
    {"a second byte-order mark", kMark + kMark + "dn: cn=a\n",
     "1: no attribute name before the colon; expected a letter followed by letters, digits and hyphens"},
    {"a line of blanks at the start", "  \ndn: cn=a\n",
     "1: a line that begins with a blank, but there is none above that it could continue"},
    {"a line of blanks below an empty one", "dn: cn=a\n\n  \ndn: cn=b\n",
     "3: a line that begins with a blank, but there is none above that it could continue"},
    {"a DN twice in one entry", "dn: cn=a\ndn: cn=b\n",
     "2: \"dn:\" in the middle of an entry; expected a blank line before it"},
    {"the same entry in base64", "dn: cn=a\n\ndn:: Q049QQ==\n",
     "3: the entry \"CN=A\" a second time; it stands on line 1 already"},
    {"a DN with a tab in front that is none", "dn:\tx\n",
     "1: not a distinguished name; expected \"dn: CN=...\" as RFC 4514 writes it"},
    {"URL-safe base64", "dn: cn=a\nx:: _-8=\n",
     "2: bad base64 in a value of \"x\"; expected whole groups of four characters"},
    {"a blank inside base64", "dn: cn=a\nx:: b2 5l\n",
     "2: bad base64 in a value of \"x\"; expected whole groups of four characters"},
    {"padding inside base64", "dn: cn=a\nx:: YQ==YQ==\n",
     "2: bad base64 in a value of \"x\"; expected whole groups of four characters"},
};

TEST(LdifFeatures, AreRefusedWithTheirLineWhereTheyHaveNoBusiness) {
  for (const Refusal& refusal : kRefusals) {
    EXPECT_THAT(test::problemsOf(refusal.text), ElementsAre(refusal.problem)) << refusal.name;
  }
}

}  // namespace
}  // namespace cfgstore
