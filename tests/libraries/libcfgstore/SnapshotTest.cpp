// A snapshot holds what the store holds, each value with the line that a save would write it on.

#include "Snapshot.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <set>

#include "Corpus.h"
#include "Document.h"
#include "LdifGenerator.h"
#include "TestStore.h"

namespace cfgstore {
namespace {

using test::Strings;
using test::TestStore;
using testing::ElementsAre;
using testing::IsEmpty;

// "LINE DN", then "LINE name=value" for each value, "*" behind a repeated one.
Strings shown(const Snapshot& snapshot) {
  Strings lines;
  for (const SnapshotEntry& entry : snapshot.entries()) {
    lines.push_back(std::to_string(entry.line) + " " + std::string(entry.dn));
    for (const SnapshotAttribute& attribute : snapshot.attributesOf(entry)) {
      for (const SnapshotValue& value : snapshot.valuesOf(attribute)) {
        lines.push_back(std::to_string(value.line) + " " + std::string(attribute.name) + "=" +
                        std::string(value.value) + (value.repeated ? "*" : ""));
      }
    }
  }
  return lines;
}

Strings shown(TestStore& store) { return shown(Snapshot(store.store())); }

TEST(Snapshot, HoldsEachValueWithItsLine) {
  TestStore store("version: 1\n\n# c\ndn: CN=A\na: 1\n# c\nb: 2\na: 3\n\n\ndn: cn=b, cn=A\n\ndn: CN=C\nA: x\n");
  EXPECT_THAT(shown(store), ElementsAre("4 CN=A", "5 a=1", "8 a=3", "7 b=2", "11 cn=b, cn=A", "13 CN=C", "14 A=x"));
}

TEST(Snapshot, GivesTheNormalFormOfEachDn) {
  TestStore store("dn: cn=b , cn=Configuration\na: 1\n\ndn:: Q049QQ==\n");
  const Snapshot snapshot(store.store());
  ASSERT_EQ(snapshot.entries().size(), 2U);
  EXPECT_EQ(snapshot.entries()[0].normal, "CN=B,CN=CONFIGURATION");
  EXPECT_EQ(snapshot.entries()[1].dn, "CN=A");
  EXPECT_EQ(snapshot.entries()[1].normal, "CN=A");
}

TEST(Snapshot, CountsPhysicalLines) {
  TestStore store("\xEF\xBB\xBF# c\r\n  d\r\ndn: CN=\r\n A\r\na: x\r\n y\r\n z\r\nb::\r\n IA==\r\nc: 1");
  EXPECT_THAT(shown(store), ElementsAre("3 CN=A", "5 a=xyz", "8 b= ", "10 c=1"));
}

TEST(Snapshot, TakesNamesInDifferentLetterCaseForOneAttribute) {
  TestStore store("dn: CN=A\nPort: 1\nx: 2\nPORT: 3\np\n ort: 4\n");
  EXPECT_THAT(shown(store), ElementsAre("1 CN=A", "2 Port=1", "4 Port=3", "5 Port=4", "3 x=2"));
}

TEST(Snapshot, MarksValuesThatStandAboveAlready) {
  TestStore store("dn: CN=A\na: x\na: y\na:: eA==\nb: x\nA: x\na: z\n");
  EXPECT_THAT(shown(store), ElementsAre("1 CN=A", "2 a=x", "3 a=y", "4 a=x*", "6 a=x*", "7 a=z", "5 b=x"));
}

TEST(Snapshot, MarksRepeatedValuesAmongMany) {
  std::string text = "dn: CN=A\n";
  for (int i = 0; i < 300; ++i) text += "a: " + std::to_string(i * 7 % 100) + "\n";
  TestStore store(text);
  const Snapshot snapshot(store.store());
  std::set<std::string_view> seen;
  for (const SnapshotValue& value : snapshot.values()) {
    EXPECT_EQ(value.repeated, !seen.insert(value.value).second) << value.line;
  }
  EXPECT_EQ(seen.size(), 100U);
}

TEST(Snapshot, LinksValuesAttributesAndEntriesBothWays) {
  TestStore store("dn: CN=A\na: 1\nb: 2\nb: 3\n\ndn: CN=B\n\ndn: CN=C\nc: 4\n");
  const Snapshot snapshot(store.store());
  Strings found;
  for (const SnapshotValue& value : snapshot.values()) {
    const SnapshotAttribute& attribute = snapshot.attributeOf(value);
    found.push_back(std::string(snapshot.entryOf(attribute).dn) + " " + std::string(attribute.name) + " " +
                    std::string(value.value));
  }
  EXPECT_THAT(found, ElementsAre("CN=A a 1", "CN=A b 2", "CN=A b 3", "CN=C c 4"));
  ASSERT_EQ(snapshot.entries().size(), 3U);
  EXPECT_THAT(snapshot.attributesOf(snapshot.entries()[1]), IsEmpty());
}

TEST(Snapshot, FindsEntriesByNormalDn) {
  TestStore store("dn: cn=a\n\ndn: cn=b\n\ndn: cn=c\n");
  const Snapshot snapshot(store.store());
  EXPECT_EQ(snapshot.findEntry("CN=A"), 0U);
  EXPECT_EQ(snapshot.findEntry("CN=C"), 2U);
  EXPECT_EQ(snapshot.findEntry("cn=c"), Snapshot::kNone);
  EXPECT_EQ(snapshot.findEntry("CN=D"), Snapshot::kNone);
  EXPECT_EQ(Snapshot().findEntry("CN=A"), Snapshot::kNone);
}

TEST(Snapshot, FindsAttributesInAnyLetterCase) {
  for (const int others : {0, 200}) {
    std::string text = "dn: CN=A\nPort: 1\n\ndn: CN=B\n";
    for (int i = 0; i < others; ++i) text += "x-" + std::to_string(i) + ": 1\n";
    TestStore store(text + "Port: 2\nport;lang-de: 3\n\ndn: CN=C\nlast: 4\n");
    const Snapshot snapshot(store.store());
    const std::uint32_t port = snapshot.findAttribute(1, "pORT");
    ASSERT_NE(port, Snapshot::kNone);
    EXPECT_EQ(snapshot.valuesOf(snapshot.attributes()[port])[0].value, "2");
    const std::uint32_t withOption = snapshot.findAttribute(1, "PORT;LANG-DE");
    ASSERT_NE(withOption, Snapshot::kNone);
    EXPECT_EQ(snapshot.valuesOf(snapshot.attributes()[withOption])[0].value, "3");
    EXPECT_EQ(snapshot.findAttribute(1, "last"), Snapshot::kNone);
    EXPECT_EQ(snapshot.findAttribute(1, ""), Snapshot::kNone);
    EXPECT_EQ(snapshot.findAttribute(1, "zzz"), Snapshot::kNone);
    EXPECT_EQ(snapshot.findAttribute(0, "port"), 0U);
  }
}

TEST(Snapshot, IsOfNothingForAFileWithoutEntries) {
  for (const char* text : {"", "# c\n", "version: 1\n", "\n\n"}) {
    TestStore store(text);
    const Snapshot snapshot(store.store());
    EXPECT_THAT(snapshot.entries(), IsEmpty());
    EXPECT_THAT(snapshot.attributes(), IsEmpty());
    EXPECT_THAT(snapshot.values(), IsEmpty());
  }
}

TEST(Snapshot, StaysAsItWasWhenTheStoreIsEdited) {
  TestStore store("dn: CN=A\na: 1\na:: Mg==\n\ndn: CN=B\nb: 3\n");
  Snapshot snapshot(store.store());
  const Strings before = shown(snapshot);
  ASSERT_EQ(store.setValue("CN=A", "a", "9"), 0);
  ASSERT_EQ(store.removeEntry("CN=B"), 0);
  ASSERT_EQ(store.addEntry("CN=C", "C", "x", "y"), 0);
  const Snapshot moved = std::move(snapshot);
  EXPECT_EQ(shown(moved), before);
}

TEST(Snapshot, CountsTheLinesOfTheEditedText) {
  TestStore store("dn: CN=A\na: 1\n\n\ndn: CN=B\nb: 3\nb: 4\n\n# c\n\ndn: CN=C\nc: 5");
  ASSERT_EQ(store.addValue("CN=A", "z", "1"), 0);
  ASSERT_EQ(store.removeEntry("CN=B"), 0);
  ASSERT_EQ(store.addValue("CN=C", "d", "6"), 0);
  ASSERT_EQ(store.addEntry("CN=D", "D", "x", "y"), 0);
  EXPECT_EQ(
      store.text(),
      "dn: CN=A\na: 1\nz: 1\n\n\n# c\n\ndn: CN=C\nc: 5\nd: 6\n\ndn: CN=D\nobjectClass: x\nobjectClass: y\ncn: D\n");
  EXPECT_THAT(shown(store), ElementsAre("1 CN=A", "2 a=1", "3 z=1", "8 CN=C", "9 c=5", "10 d=6", "12 CN=D",
                                        "13 objectClass=x", "14 objectClass=y", "15 cn=D"));
}

TEST(Snapshot, GivesAnAttributeThatWentAndCameBackItsNewPlace) {
  TestStore store("dn: CN=A\na: 1\nb: 2\n");
  ASSERT_EQ(store.delValue("CN=A", "a", {"1"}), 0);
  ASSERT_EQ(store.addValue("CN=A", "A", "3"), 0);
  EXPECT_THAT(shown(store), ElementsAre("1 CN=A", "2 b=2", "3 A=3"));
}

// What a snapshot says, against the store's own answers and against a store opened on the text that a save would write.
void expectAgreement(TestStore& store) {
  const std::string text = store.text();
  TestStore again(text);
  const Snapshot snapshot(store.store());
  EXPECT_EQ(shown(snapshot), shown(again)) << text;
  Strings dns;
  for (const SnapshotEntry& entry : snapshot.entries()) {
    dns.emplace_back(entry.dn);
    Strings names;
    for (const SnapshotAttribute& attribute : snapshot.attributesOf(entry)) {
      names.emplace_back(attribute.name);
      Strings values;
      for (const SnapshotValue& value : snapshot.valuesOf(attribute)) {
        if (!value.repeated) values.emplace_back(value.value);
      }
      EXPECT_EQ(values, store.values(dns.back().c_str(), names.back().c_str()).values);
    }
    EXPECT_EQ(names, store.attributes(dns.back().c_str()));
  }
  EXPECT_EQ(dns, store.subordinates("", 2).values);
}

TEST(Snapshot, AgreesWithTheStoreOnEachSample) {
  for (const test::Sample& sample : test::corpus()) {
    SCOPED_TRACE(sample.name);
    TestStore store(sample.text);
    expectAgreement(store);
    ASSERT_EQ(store.addValue("CN=B,CN=CONFIGURATION", "plugin", "three"), 0);
    ASSERT_EQ(store.addValue("CN=A,CN=CONFIGURATION", "new", " x"), 0);
    ASSERT_EQ(store.delValue("CN=B,CN=CONFIGURATION", "plugin", {"one"}), 0);
    ASSERT_EQ(store.addEntry("CN=N,CN=A,CN=CONFIGURATION", "N", "x", "y"), 0);
    expectAgreement(store);
    ASSERT_EQ(store.removeEntry("CN=A,CN=CONFIGURATION"), 0);
    expectAgreement(store);
  }
}

// The lines of a file that was just read are found with an editor's means: line N of the text begins the value.
TEST(Snapshot, NamesLinesOnWhichTheAttributesBegin) {
  for (const test::Sample& sample : test::corpus()) {
    Strings lines{""};
    for (const char c : sample.text) {
      lines.back() += c;
      if (c == '\n') lines.emplace_back();
    }
    TestStore store(sample.text);
    const Snapshot snapshot(store.store());
    ASSERT_FALSE(snapshot.values().empty());
    for (const SnapshotValue& value : snapshot.values()) {
      const char first = lines.at(value.line - 1).at(0);
      EXPECT_EQ(first | 0x20, snapshot.attributeOf(value).name[0] | 0x20) << sample.name << value.line;
    }
  }
}

RC_GTEST_PROP(Snapshot, HoldsWhatWasGenerated, ()) {
  const test::GeneratedLdif file = *test::genLdif();
  TestStore store(file.text);
  const Snapshot snapshot(store.store());
  RC_ASSERT(snapshot.entries().size() == file.content.size());
  for (const auto& [dn, attributes] : file.content) {
    const std::uint32_t entry = snapshot.findEntry(dn);
    RC_ASSERT(entry != Snapshot::kNone);
    RC_ASSERT(snapshot.entries()[entry].attributes == attributes.size());
    for (const auto& [name, values] : attributes) {
      const std::uint32_t attribute = snapshot.findAttribute(entry, name);
      RC_ASSERT(attribute != Snapshot::kNone);
      std::vector<std::string> found;
      for (const SnapshotValue& value : snapshot.valuesOf(snapshot.attributes()[attribute])) {
        if (!value.repeated) found.emplace_back(value.value);
      }
      RC_ASSERT(found == values);
    }
  }
}

}  // namespace
}  // namespace cfgstore
