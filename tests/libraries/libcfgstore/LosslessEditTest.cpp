// After one change the file shows that change and nothing else.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

#include "Corpus.h"
#include "LdifReader.h"
#include "LineWriter.h"
#include "TestStore.h"

namespace cfgstore {
namespace {

using test::diff;
using test::TestStore;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kA = "CN=A,CN=CONFIGURATION";
constexpr const char* kB = "CN=B,CN=CONFIGURATION";

// Where things are in a text, found with the reader alone; makes the text that an edit should give.
class Expected {
 public:
  explicit Expected(const std::string& text) : m_text(text), m_content(readLdif(m_text, m_arena)) {
    if (!m_content.problems.empty()) throw std::runtime_error("not valid: " + text);
    m_habits = Habits::of(m_content.lines);
  }

  // The text with the line of a value replaced.
  std::string replaced(const char* dn, const char* name, const char* value, const char* newValue) {
    const Line& line = find(dn, name, value);
    return before(line) + writeLine(m_habits, lineName(line, m_scratch), newValue) + behind(line);
  }
  std::string without(const char* dn, const char* name, const char* value) {
    const Line& line = find(dn, name, value);
    return before(line) + behind(line);
  }
  std::string withLineBehind(const Line& line, std::string_view name, const char* value) {
    return terminated(before(line) + std::string(line.text())) + writeLine(m_habits, name, value) + behind(line);
  }
  std::string withEntryBehind(const char* dn, const std::string& entry) {
    const Line& last = m_content.lines[span(dn).end - 1];
    std::string separated;
    for (std::size_t i = 0; i < m_habits.emptyLinesBetweenEntries; ++i) separated += m_habits.lineEnd;
    return terminated(before(last) + std::string(last.text())) + separated + entry + behind(last);
  }
  // The text without an entry and the empty lines below it, or above it when it is the last.
  std::string withoutEntry(const char* dn) {
    const EntrySpan& entry = span(dn);
    std::size_t first = entry.first;
    std::size_t end = entry.end;
    const auto& lines = m_content.lines;
    if (end < lines.size() && lines[end].kind == LineKind::blank) {
      ++end;
    } else if (first > 0 && lines[first - 1].kind == LineKind::blank) {
      --first;
    }
    return before(lines[first]) + behind(lines[end - 1]);
  }

  const Line& find(const char* dn, const char* name, const char* value) {
    const EntrySpan& entry = span(dn);
    for (std::size_t i = entry.dn + 1; i < entry.end; ++i) {
      const Line& line = m_content.lines[i];
      if (line.kind != LineKind::attribute || !sameName(lineName(line, m_scratch), name)) continue;
      if (lineValue(line, m_scratch) == value) return line;
    }
    throw std::runtime_error("no such line");
  }
  const Line& lastNamed(const char* dn) {
    std::size_t last = span(dn).dn;
    for (std::size_t i = last; i < span(dn).end; ++i) {
      if (m_content.lines[i].kind == LineKind::attribute) last = i;
    }
    return m_content.lines[last];
  }
  std::string nameOf(const Line& line) { return std::string(lineName(line, m_scratch)); }
  const Habits& habits() const { return m_habits; }

 private:
  const EntrySpan& span(const char* dn) {
    for (const EntrySpan& entry : m_content.entries) {
      if (entry.normal == dn) return entry;
    }
    throw std::runtime_error("no such entry");
  }
  std::string before(const Line& line) { return m_text.substr(0, offset(line)); }
  std::string behind(const Line& line) { return m_text.substr(offset(line) + line.size); }
  std::size_t offset(const Line& line) { return static_cast<std::size_t>(line.raw - m_text.data()); }
  std::string terminated(std::string text) {
    if (!text.ends_with('\n')) text += m_habits.lineEnd;
    return text;
  }

  std::string m_text;
  TextArena m_arena;
  LdifContent m_content;
  Habits m_habits;
  std::string m_scratch;
};

TEST(LosslessEdit, SetValueReplacesOneLine) {
  for (const test::Sample& sample : test::corpus()) {
    TestStore store(sample.text);
    ASSERT_EQ(store.setValue(kA, "Port", "636"), 0);
    EXPECT_EQ(store.text(), Expected(sample.text).replaced(kA, "port", "389", "636")) << sample.name;
  }
}

TEST(LosslessEdit, SetValueKeepsTheLineOfAValueThatIsThere) {
  for (const test::Sample& sample : test::corpus()) {
    TestStore store(sample.text);
    ASSERT_EQ(store.setValue(kB, "plugin", "two"), 0);
    EXPECT_EQ(store.text(), Expected(sample.text).without(kB, "plugin", "one")) << sample.name;
  }
}

TEST(LosslessEdit, AddValueAddsALineBelowTheLastOfItsAttribute) {
  for (const test::Sample& sample : test::corpus()) {
    TestStore store(sample.text);
    ASSERT_EQ(store.addValue(kB, "PLUGIN", "three"), 0);
    Expected expected(sample.text);
    const std::string name = expected.nameOf(expected.find(kB, "plugin", "one"));
    EXPECT_EQ(store.text(), expected.withLineBehind(expected.find(kB, "plugin", "two"), name, "three")) << sample.name;
  }
}

TEST(LosslessEdit, AddValueAddsANewAttributeBelowTheLastOne) {
  for (const test::Sample& sample : test::corpus()) {
    for (const char* dn : {kA, kB}) {
      TestStore store(sample.text);
      ASSERT_EQ(store.addValue(dn, "brandNew", "x"), 0);
      Expected expected(sample.text);
      EXPECT_EQ(store.text(), expected.withLineBehind(expected.lastNamed(dn), "brandNew", "x")) << sample.name;
    }
  }
}

TEST(LosslessEdit, DelValueRemovesOneLine) {
  for (const test::Sample& sample : test::corpus()) {
    for (const char* value : {"one", "two"}) {
      TestStore store(sample.text);
      ASSERT_EQ(store.delValue(kB, "plugin", {value}), 0);
      EXPECT_EQ(store.text(), Expected(sample.text).without(kB, "plugin", value)) << sample.name;
    }
  }
}

TEST(LosslessEdit, AddEntryAddsAnEntryBelowItsParent) {
  for (const test::Sample& sample : test::corpus()) {
    TestStore store(sample.text);
    ASSERT_EQ(store.addEntry("CN=NEW,CN=A,CN=CONFIGURATION", "NEW", "someClass", "TOP"), 0);
    Expected expected(sample.text);
    std::string entry;
    const std::string className = store.attributes("CN=NEW,CN=A,CN=CONFIGURATION").front();
    for (const auto& [name, value] : {std::pair<std::string, const char*>{"dn", "CN=NEW,CN=A,CN=CONFIGURATION"},
                                      {className, "someClass"},
                                      {className, "TOP"},
                                      {"cn", "NEW"}}) {
      entry += writeLine(expected.habits(), name, value);
    }
    EXPECT_TRUE(sameName(className, "objectClass"));
    EXPECT_EQ(store.text(), expected.withEntryBehind(kA, entry)) << sample.name;
  }
}

TEST(LosslessEdit, RemoveEntryRemovesItsLinesAndTheEmptyLinesBelow) {
  for (const test::Sample& sample : test::corpus()) {
    for (const char* dn : {kA, kB}) {
      TestStore store(sample.text);
      ASSERT_EQ(store.removeEntry(dn), 0);
      EXPECT_EQ(store.text(), Expected(sample.text).withoutEntry(dn)) << sample.name;
    }
  }
}

TEST(LosslessEdit, IsNoChangeWhenItIsUndone) {
  for (const test::Sample& sample : test::corpus()) {
    TestStore store(sample.text);
    ASSERT_EQ(store.addValue(kB, "plugin", "three"), 0);
    ASSERT_EQ(store.addValue(kA, "brandNew", "x"), 0);
    ASSERT_EQ(store.addEntry("CN=NEW,CN=B,CN=CONFIGURATION", "NEW", "a", "b"), 0);
    ASSERT_EQ(store.addEntry("CN=NEWER", "NEWER", "a", "b"), 0);
    EXPECT_TRUE(store.store().changed()) << sample.name;
    ASSERT_EQ(store.delValue(kB, "plugin", {"three"}), 0);
    ASSERT_EQ(store.delValue(kA, "brandNew", {"x"}), 0);
    ASSERT_EQ(store.removeEntry("CN=NEW,CN=B,CN=CONFIGURATION"), 0);
    ASSERT_EQ(store.removeEntry("CN=NEWER"), 0);
    EXPECT_EQ(store.text(), sample.text) << sample.name;
    EXPECT_FALSE(store.store().changed()) << sample.name;
  }
}

TEST(LosslessEdit, GivesATextThatIsReadAsTheSameContent) {
  for (const test::Sample& sample : test::corpus()) {
    TestStore store(sample.text);
    ASSERT_EQ(store.setValue(kA, "port", " 636"), 0);
    ASSERT_EQ(store.addValue(kB, "plugin", std::string(300, 'x').c_str()), 0);
    ASSERT_EQ(store.addEntry("CN=\xC3\x96,CN=B,CN=CONFIGURATION", "\xC3\x96", "a", "b"), 0);
    TestStore again(store.text());
    EXPECT_EQ(again.subordinates("", 2).values, store.subordinates("", 2).values) << sample.name;
    for (const std::string& dn : store.subordinates("", 2).values) {
      EXPECT_EQ(again.attributes(dn.c_str()), store.attributes(dn.c_str())) << sample.name;
      for (const std::string& name : store.attributes(dn.c_str())) {
        EXPECT_EQ(again.values(dn.c_str(), name.c_str()).values, store.values(dn.c_str(), name.c_str()).values);
      }
    }
  }
}

const char* const kCommented =
    "# header\n"
    "\n"
    "# about A\n"
    "dn: CN=A,CN=CONFIGURATION\n"
    "# about the port\n"
    "port: 389\n"
    "# the end of A\n"
    "\n"
    "# loose\n"
    "\n"
    "# about B\n"
    "dn: CN=B,CN=CONFIGURATION\n"
    "plugin: one\n";

TEST(LosslessEditComments, StayWhenTheValueBelowThemGoes) {
  TestStore store(kCommented);
  ASSERT_EQ(store.delValue(kA, "port", {"389"}), 0);
  EXPECT_THAT(diff(kCommented, store.text()), ElementsAre("-port: 389\\n"));
}

TEST(LosslessEditComments, GoWithTheEntryThatTheyTouch) {
  TestStore store(kCommented);
  ASSERT_EQ(store.removeEntry(kA), 0);
  EXPECT_EQ(store.text(), "# header\n\n# loose\n\n# about B\ndn: CN=B,CN=CONFIGURATION\nplugin: one\n");
  ASSERT_EQ(store.removeEntry(kB), 0);
  EXPECT_EQ(store.text(), "# header\n\n# loose\n");
}

TEST(LosslessEditComments, AtTheEndOfAnEntryStayAtItsEnd) {
  TestStore store(kCommented);
  ASSERT_EQ(store.addValue(kA, "x", "1"), 0);
  EXPECT_NE(store.text().find("port: 389\nx: 1\n# the end of A\n"), std::string::npos);
}

TEST(LosslessEditComments, BetweenEntriesStayWithTheEntryBelow) {
  TestStore store(kCommented);
  ASSERT_EQ(store.addEntry("CN=C,CN=A,CN=CONFIGURATION", "C", "x", "y"), 0);
  EXPECT_THAT(diff(kCommented, store.text()), ElementsAre("+dn: CN=C,CN=A,CN=CONFIGURATION\\n", "+objectClass: x\\n",
                                                          "+objectClass: y\\n", "+cn: C\\n", "+\\n"));
  EXPECT_NE(store.text().find("# the end of A\n\ndn: CN=C"), std::string::npos);
  EXPECT_NE(store.text().find("cn: C\n\n# loose\n"), std::string::npos);
}

TEST(LosslessEditComments, InsideAnEntryStayWhereTheyAreWhenAllValuesGo) {
  TestStore store("dn: CN=A\n# 1\na: 1\n# 2\na: 2\n# 3\n");
  ASSERT_EQ(store.delValue("CN=A", "a", {"1", "2"}), 0);
  EXPECT_EQ(store.text(), "dn: CN=A\n# 1\n# 2\n# 3\n");
  ASSERT_EQ(store.addValue("CN=A", "a", "3"), 0);
  EXPECT_EQ(store.text(), "dn: CN=A\na: 3\n# 1\n# 2\n# 3\n");
}

TEST(LosslessEdit, WritesNewLinesAsTheFileDoes) {
  TestStore store("dn:CN=A\r\na:1\r\nb:" + std::string(38, 'x') + "\r\n " + std::string(10, 'y') + "\r\n");
  ASSERT_EQ(store.addValue("CN=A", "c", std::string(60, 'z').c_str()), 0);
  ASSERT_EQ(store.addEntry("CN=B", "B", "t", "u"), 0);
  EXPECT_TRUE(store.text().ends_with("c:" + std::string(38, 'z') + "\r\n " + std::string(22, 'z') +
                                     "\r\n\r\ndn:CN=B\r\nobjectClass:t\r\nobjectClass:u\r\ncn:B\r\n"))
      << store.text();
}

TEST(LosslessEdit, SpellsNamesAsTheEntriesNearbyDo) {
  TestStore store("dn: CN=A\nOBJECTCLASS: top\nCN: A\n");
  ASSERT_EQ(store.addEntry("CN=B,CN=A", "B", "x", "y"), 0);
  EXPECT_THAT(diff("dn: CN=A\nOBJECTCLASS: top\nCN: A\n", store.text()),
              ElementsAre("+\\n", "+dn: CN=B,CN=A\\n", "+OBJECTCLASS: x\\n", "+OBJECTCLASS: y\\n", "+CN: B\\n"));
}

TEST(LosslessEdit, StartsAnEmptyFileWithoutAnEmptyLine) {
  TestStore empty("");
  ASSERT_EQ(empty.addEntry("CN=A", "A", "x", "y"), 0);
  EXPECT_EQ(empty.text(), "dn: CN=A\nobjectClass: x\nobjectClass: y\ncn: A\n");
  TestStore header("version: 1\n# only a header");
  ASSERT_EQ(header.addEntry("CN=A", "A", "x", "y"), 0);
  EXPECT_EQ(header.text(), "version: 1\n# only a header\n\ndn: CN=A\nobjectClass: x\nobjectClass: y\ncn: A\n");
  TestStore mark("\xEF\xBB\xBF");
  ASSERT_EQ(mark.addEntry("CN=A", "A", "x", "x"), 0);
  EXPECT_EQ(mark.text(),
            "\xEF\xBB\xBF"
            "dn: CN=A\nobjectClass: x\ncn: A\n");
}

TEST(LosslessEdit, RemovesAllEntriesButNotTheHeader) {
  TestStore store("version: 1\n\n# header\n\ndn: CN=A\n\n\ndn: CN=B\n\ndn: CN=C\n");
  for (const char* dn : {"CN=B", "CN=A", "CN=C"}) ASSERT_EQ(store.removeEntry(dn), 0);
  EXPECT_EQ(store.text(), "version: 1\n\n# header\n");
  EXPECT_THAT(store.subordinates("", 2).values, IsEmpty());
  ASSERT_EQ(store.addEntry("CN=D", "D", "x", "x"), 0);
  EXPECT_EQ(store.text(), "version: 1\n\n# header\n\ndn: CN=D\nobjectClass: x\ncn: D\n");
}

}  // namespace
}  // namespace cfgstore
