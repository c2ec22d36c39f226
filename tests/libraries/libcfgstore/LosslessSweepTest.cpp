// Every write, on every entry, attribute and value of every awkward file: the text afterwards is the text before with
// the lines that the write concerns gone, and what is new in its place and in the file's own manner. What to expect is
// worked out by a second, simple reading of the file.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "Corpus.h"
#include "PlainLdif.h"
#include "TestStore.h"

namespace cfgstore {
namespace {

using test::PlainLdif;
using test::PlainLine;
using test::squeezed;
using test::TestStore;
using Kind = PlainLine::Kind;

// Values that are new to every file: short, long, beyond ASCII, and two that must be in base64.
const std::string kNewValues[] = {"brand new",
                                  std::string(300, 'n'),
                                  "K\xC3\xA4the \xE2\x82\xAC",
                                  std::string(33, 'u') + std::string("\xC3\xBC\xE2\x82\xAC\xC3\xBC"),
                                  " blank",
                                  "\x01"};

std::vector<test::Sample> awkwardFiles() {
  std::vector<test::Sample> files = test::corpus();
  const std::string narrow = "folded at thirty columns, more or le";
  files.push_back({"CRLF, narrow folds, no blanks after colons",
                   "dn:cn=a,cn=configuration\r\nx:" + narrow.substr(0, 28) + "\r\n " + narrow.substr(28) +
                       "\r\ny:1\r\n\r\n\r\ndn:cn=b,cn=a,cn=configuration\r\n# c\r\ny:" + narrow.substr(0, 28) +
                       "\r\n " + narrow.substr(28) + "\r\nY:2\r\n# d\r\n"});
  files.push_back({"never folded", "dn: cn=a\nx: " + std::string(400, 'w') + "\ny: " + std::string(100, 'v') +
                                       "\n\n\n\ndn: cn=b\nx: 1"});
  files.push_back({"comments between the lines of folded values",
                   "dn: cn=a\nx: on\n e\n# c\n  more of c\nx: t\n wo\n# d\ny: 1\n\n# e\n\n# f\ndn: cn=b,cn=a\nx: 1\n"});
  files.push_back(
      {"duplicates near and far", "dn: cn=a\nx: 1\ny: 2\nx: 1\nX:: MQ==\ny: 3\nx: 2\ny: 2\n\n\ndn: cn=b\nx: 1\nx: 1"});
  files.push_back(
      {"mark, returns and raw text", "\xEF\xBB\xBF# c\r\ndn: cn=\xC3\xA4\r\nx: \xC3\xA4\r\n\r\ndn: cn=b\r\n"});
  files.push_back({"entries without attributes, comments at their ends",
                   "# a\ndn: cn=a\n# b\n\ndn: cn=b\n# c\n# d\n\n# e\n\n\ndn: cn=c,cn=b\n"});
  files.push_back({"tree in no order",
                   "dn: cn=c,cn=b,cn=a\nx: 1\n\ndn: cn=z\nx: 1\n\ndn: cn=a\nx: 1\n\n\ndn: cn=b,cn=a\n"
                   "x: 1\n\ndn: cn=y,cn=z\nx: 1\n# end"});
  return files;
}

// One file, its plain reading, and what is asked of it over and over.
class Sweep {
 public:
  explicit Sweep(const test::Sample& sample) : m_sample(sample), m_plain(sample.text) {}

  const PlainLdif& plain() const { return m_plain; }
  std::string dnOf(int entry) const {
    for (const PlainLine& line : m_plain.lines()) {
      if (line.entry == entry && line.kind == Kind::dn) return line.value;
    }
    return {};
  }
  std::set<std::string> namesOf(int entry) const {
    std::set<std::string> names;
    for (const PlainLine& line : m_plain.lines()) {
      if (line.entry == entry && line.kind == Kind::attribute) names.insert(squeezed(line.name));
    }
    return names;
  }
  static bool isOf(const PlainLine& line, int entry, const std::string& name) {
    return line.entry == entry && line.kind == Kind::attribute && squeezed(line.name) == name;
  }
  // Each value once.
  test::Strings valuesOf(int entry, const std::string& name) const {
    test::Strings values;
    for (const PlainLine& line : m_plain.lines()) {
      if (!isOf(line, entry, name)) continue;
      if (std::find(values.begin(), values.end(), line.value) == values.end()) values.push_back(line.value);
    }
    return values;
  }

  // `after` is `before` with one logical line inserted at `at`, written as the file would.
  void expectInserted(const std::string& before, std::size_t at, const std::string& after, const std::string& name,
                      const std::string& value) const {
    std::string head = before.substr(0, at);
    if (!head.ends_with('\n')) head += m_plain.lineEnd();
    const std::string tail = before.substr(at);
    ASSERT_TRUE(after.starts_with(head)) << after;
    ASSERT_TRUE(after.ends_with(tail)) << after;
    ASSERT_GT(after.size(), head.size() + tail.size()) << after;
    expectInTheManner(after.substr(head.size(), after.size() - head.size() - tail.size()), name, value);
  }

  void expectInTheManner(const std::string& text, const std::string& name, const std::string& value) const {
    // An entry is needed for the line to be an attribute.
    const PlainLdif read("dn: cn=x\n" + text);
    ASSERT_EQ(read.lines().size(), 2U) << text;
    const PlainLine& line = read.lines()[1];
    EXPECT_EQ(line.name, name);
    EXPECT_EQ(line.value, value);
    const bool plainText = std::all_of(value.begin(), value.end(), [](char c) { return c >= ' ' && c <= '~'; });
    const bool beyondAscii = std::any_of(value.begin(), value.end(), [](char c) { return (c & 0x80) != 0; });
    const bool plain = value.empty() || (plainText && value[0] != ' ' && value[0] != ':' && value.back() != ' ');
    EXPECT_EQ(line.base64, !plain && !(beyondAscii && m_plain.hasRawText())) << text;
    const std::size_t behindColon = name.size() + (line.base64 ? 2 : 1);
    EXPECT_EQ(text.at(behindColon) == ' ', m_plain.hasBlankAfterColon() && !value.empty()) << text;
    const std::size_t column = m_plain.foldColumn();
    std::size_t begin = 0;
    while (begin < text.size()) {
      const std::size_t end = text.find(m_plain.lineEnd(), begin);
      ASSERT_NE(end, std::string::npos) << "another line end: " << text;
      const bool isLast = end + m_plain.lineEnd().size() == text.size();
      EXPECT_TRUE(isLast || column != 0) << "folded: " << text;
      EXPECT_TRUE(end - begin <= column || column == 0) << "too long: " << text;
      // A character of several bytes is not broken, so that a line may be up to three bytes shorter.
      EXPECT_TRUE(isLast || end - begin + 4 > column) << "too short: " << text;
      EXPECT_EQ(text.substr(begin, end - begin).find('\r'), std::string::npos) << text;
      begin = end + m_plain.lineEnd().size();
    }
  }

  // The offset behind the last line for which `matches` is true.
  template <class Predicate>
  std::size_t behindLast(const Predicate& matches) const {
    std::size_t offset = 0;
    std::size_t found = 0;
    for (const PlainLine& line : m_plain.lines()) {
      offset += line.text.size();
      if (matches(line)) found = offset;
    }
    return found;
  }

  const std::string& text() const { return m_sample.text; }

 private:
  const test::Sample& m_sample;
  PlainLdif m_plain;
};

// Calls `visit(sweep, entry, dn, name)` for each attribute of each entry of each file.
template <class Visit>
int forEachAttribute(const Visit& visit) {
  int visited = 0;
  for (const test::Sample& sample : awkwardFiles()) {
    SCOPED_TRACE(sample.name);
    const Sweep sweep(sample);
    for (int entry = 0; entry < sweep.plain().entries(); ++entry) {
      for (const std::string& name : sweep.namesOf(entry)) {
        SCOPED_TRACE(sweep.dnOf(entry) + " " + name);
        visit(sweep, entry, sweep.dnOf(entry), name);
        ++visited;
      }
    }
  }
  return visited;
}

template <class Visit>
void forEachEntry(const Visit& visit) {
  for (const test::Sample& sample : awkwardFiles()) {
    SCOPED_TRACE(sample.name);
    const Sweep sweep(sample);
    for (int entry = 0; entry < sweep.plain().entries(); ++entry) {
      SCOPED_TRACE(sweep.dnOf(entry));
      visit(sweep, entry, sweep.dnOf(entry));
    }
  }
}

TEST(LosslessSweep, DelValueRemovesTheLinesOfTheValueAndNoOther) {
  const int visited =
      forEachAttribute([](const Sweep& sweep, int entry, const std::string& dn, const std::string& name) {
        for (const std::string& value : sweep.valuesOf(entry, name)) {
          TestStore store(sweep.text());
          ASSERT_EQ(store.delValue(dn.c_str(), name.c_str(), {value}), 0);
          EXPECT_EQ(store.text(), sweep.plain().without([&](const PlainLine& line) {
            return Sweep::isOf(line, entry, name) && line.value == value;
          }));
        }
      });
  EXPECT_GT(visited, 100);
}

TEST(LosslessSweep, DelValueOfAllRemovesTheLinesOfTheAttributeAndNoOther) {
  forEachAttribute([](const Sweep& sweep, int entry, const std::string& dn, const std::string& name) {
    TestStore store(sweep.text());
    ASSERT_EQ(store.delValue(dn.c_str(), name.c_str(), sweep.valuesOf(entry, name)), 0);
    EXPECT_EQ(store.text(),
              sweep.plain().without([&](const PlainLine& line) { return Sweep::isOf(line, entry, name); }));
  });
}

TEST(LosslessSweep, FailedWritesChangeNothing) {
  forEachAttribute([](const Sweep& sweep, int, const std::string& dn, const std::string& name) {
    TestStore store(sweep.text());
    EXPECT_NE(store.delValue(dn.c_str(), name.c_str(), {"not there"}), 0);
    EXPECT_NE(store.delValue(dn.c_str(), "not-there", {"1"}), 0);
    EXPECT_NE(store.addValue(dn.c_str(), "no name", "1"), 0);
    EXPECT_NE(store.setValue("cn=not there", name.c_str(), "1"), 0);
    EXPECT_NE(store.addEntry(dn.c_str(), "1", "2", "3"), 0);
    EXPECT_NE(store.removeEntry("cn=not there"), 0);
    EXPECT_EQ(store.text(), sweep.text());
  });
}

TEST(LosslessSweep, AddValueOfOneThatIsThereChangesNothing) {
  forEachAttribute([](const Sweep& sweep, int entry, const std::string& dn, const std::string& name) {
    TestStore store(sweep.text());
    for (const std::string& value : sweep.valuesOf(entry, name)) {
      ASSERT_EQ(store.addValue(dn.c_str(), name.c_str(), value.c_str()), 0);
    }
    EXPECT_EQ(store.text(), sweep.text());
  });
}

TEST(LosslessSweep, AddValueAddsOneLineBelowTheLastOfItsAttribute) {
  forEachAttribute([](const Sweep& sweep, int entry, const std::string& dn, const std::string& name) {
    const auto isOfIt = [&](const PlainLine& line) { return Sweep::isOf(line, entry, name); };
    const auto& lines = sweep.plain().lines();
    const std::string asWritten = std::find_if(lines.begin(), lines.end(), isOfIt)->name;
    for (const std::string& value : kNewValues) {
      TestStore store(sweep.text());
      ASSERT_EQ(store.addValue(dn.c_str(), name.c_str(), value.c_str()), 0);
      sweep.expectInserted(sweep.text(), sweep.behindLast(isOfIt), store.text(), asWritten, value);
    }
  });
}

TEST(LosslessSweep, AddValueAddsANewAttributeBelowTheLastOne) {
  forEachEntry([](const Sweep& sweep, int entry, const std::string& dn) {
    const std::size_t at = sweep.behindLast([&](const PlainLine& line) {
      return line.entry == entry && (line.kind == Kind::attribute || line.kind == Kind::dn);
    });
    for (const std::string& value : kNewValues) {
      TestStore store(sweep.text());
      ASSERT_EQ(store.addValue(dn.c_str(), "Brand-New", value.c_str()), 0);
      sweep.expectInserted(sweep.text(), at, store.text(), "Brand-New", value);
    }
  });
}

// The first line of the attribute is replaced; the others go.
TEST(LosslessSweep, SetValueReplacesTheFirstLineAndRemovesTheOthers) {
  forEachAttribute([](const Sweep& sweep, int entry, const std::string& dn, const std::string& name) {
    std::string before;
    std::size_t at = 0;
    std::string asWritten;
    for (const PlainLine& line : sweep.plain().lines()) {
      if (!Sweep::isOf(line, entry, name)) {
        before += line.text;
      } else if (asWritten.empty()) {
        asWritten = line.name;
        at = before.size();
      }
    }
    for (const std::string& value : kNewValues) {
      TestStore store(sweep.text());
      ASSERT_EQ(store.setValue(dn.c_str(), name.c_str(), value.c_str()), 0);
      sweep.expectInserted(before, at, store.text(), asWritten, value);
    }
  });
}

TEST(LosslessSweep, SetValueOfOneThatIsThereKeepsItsLineAndRemovesTheOthers) {
  forEachAttribute([](const Sweep& sweep, int entry, const std::string& dn, const std::string& name) {
    const test::Strings values = sweep.valuesOf(entry, name);
    for (const std::string& value : values) {
      TestStore store(sweep.text());
      ASSERT_EQ(store.setValue(dn.c_str(), name.c_str(), value.c_str()), 0);
      bool kept = false;
      const std::string expected = sweep.plain().without([&](const PlainLine& line) {
        if (!Sweep::isOf(line, entry, name)) return false;
        const bool keeps = !kept && line.value == value;
        kept = kept || keeps;
        return !keeps;
      });
      EXPECT_EQ(store.text(), values.size() == 1 ? sweep.text() : expected);
    }
  });
}

// Its lines go, with the comments that touch it; of the empty lines around it those below, or those above if it is the
// last thing in the file.
TEST(LosslessSweep, RemoveEntryRemovesItsLinesAndTheEmptyOnesBelow) {
  forEachEntry([](const Sweep& sweep, int entry, const std::string& dn) {
    TestStore store(sweep.text());
    ASSERT_EQ(store.removeEntry(dn.c_str()), 0);
    const auto& lines = sweep.plain().lines();
    std::size_t first = 0;
    while (lines[first].entry != entry) ++first;
    std::size_t end = first;
    while (end < lines.size() && lines[end].entry == entry) ++end;
    if (end < lines.size()) {
      while (end < lines.size() && lines[end].kind == Kind::blank) ++end;
    } else {
      while (first > 0 && lines[first - 1].kind == Kind::blank) --first;
    }
    std::string expected;
    for (std::size_t i = 0; i < lines.size(); ++i) {
      if (i < first || i >= end) expected += lines[i].text;
    }
    // A byte-order mark belongs to the file.
    if (first == 0 && sweep.text().starts_with("\xEF\xBB\xBF")) expected.insert(0, "\xEF\xBB\xBF");
    EXPECT_EQ(store.text(), expected);
  });
}

// Behind the parent and the entries below it that follow it without another one between.
std::size_t behindSubtree(const Sweep& sweep, int parent) {
  const std::string base = squeezed(sweep.dnOf(parent));
  int last = parent;
  while (last + 1 < sweep.plain().entries() && squeezed(sweep.dnOf(last + 1)).ends_with("," + base)) ++last;
  return sweep.behindLast([&](const PlainLine& line) { return line.entry == last; });
}

TEST(LosslessSweep, AddEntryAddsOneBehindTheSubtreeOfItsParent) {
  forEachEntry([](const Sweep& sweep, int entry, const std::string& parent) {
    const std::string dn = "cn=N\xC3\xA9w," + parent;
    TestStore store(sweep.text());
    ASSERT_EQ(store.addEntry(dn.c_str(), "N\xC3\xA9w", "classOne", "top"), 0);
    const std::size_t at = behindSubtree(sweep, entry);
    std::string head = sweep.text().substr(0, at);
    if (!head.ends_with('\n')) head += sweep.plain().lineEnd();
    head += sweep.plain().separator();
    const std::string tail = sweep.text().substr(at);
    const std::string after = store.text();
    ASSERT_TRUE(after.starts_with(head)) << after;
    ASSERT_TRUE(after.ends_with(tail)) << after;
    const PlainLdif added(after.substr(head.size(), after.size() - head.size() - tail.size()));
    ASSERT_EQ(added.lines().size(), 4U) << after;
    sweep.expectInTheManner(added.lines()[1].text, added.lines()[1].name, "classOne");
    sweep.expectInTheManner(added.lines()[2].text, added.lines()[1].name, "top");
    sweep.expectInTheManner(added.lines()[3].text, added.lines()[3].name, "N\xC3\xA9w");
    EXPECT_EQ(added.lines()[0].name, "dn");
    EXPECT_EQ(added.lines()[0].value, dn);
    EXPECT_EQ(squeezed(added.lines()[1].name), "objectclass");
    EXPECT_EQ(squeezed(added.lines()[3].name), "cn");
  });
}

}  // namespace
}  // namespace cfgstore
