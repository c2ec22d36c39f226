// Entries that are set aside are not listed, and in everything else they are as if they were not.

#include "EqualEntries.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "Document.h"
#include "LdifGenerator.h"
#include "Snapshot.h"
#include "TestStore.h"

namespace cfgstore {
namespace {

using test::Strings;
using test::TestStore;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kOne =
    "dn: CN=A\na: 1\n\n# note\ndn: cn=b, cn=A\na: 1\nb:: IA==\n\ndn: CN=C\na: 1\n\ndn: CN=D\na: 1\n";
constexpr const char* kOther =
    "dn: CN=A\na: 1\n\n# other\ndn: CN = B,CN=A\na: 1\nb:: IA==\n\ndn: CN=C\na: 2\n\ndn: CN=D\na:  1\n";

bool always(std::string_view, std::span<const Line>) { return true; }

struct Pair {
  Pair(const char* oneText, const char* otherText, const EqualEntryTest& mayBe = always)
      : one(oneText), other(otherText) {
    setAsideEqualEntries(one.store(), other.store(), mayBe);
  }
  TestStore one;
  TestStore other;
};

// The DNs of a snapshot's entries, "*" behind those that are set aside.
Strings entriesOf(const Snapshot& snapshot) {
  Strings entries;
  for (const SnapshotEntry& entry : snapshot.entries()) {
    entries.push_back(std::string(entry.dn) + (entry.setAside ? "*" : ""));
  }
  return entries;
}

// "LINE name=value" of an entry, "#NUMBER" behind each, and "!" behind a repeated one.
Strings valuesOf(const Snapshot& snapshot, const SnapshotEntry& entry) {
  Strings lines;
  for (const SnapshotAttribute& attribute : snapshot.attributesOf(entry)) {
    for (const SnapshotValue& value : snapshot.valuesOf(attribute)) {
      const auto id = static_cast<std::uint32_t>(&value - snapshot.values().data());
      lines.push_back(std::to_string(value.line) + " " + std::string(attribute.name) + "=" + std::string(value.value) +
                      "#" + std::to_string(snapshot.numberOf(id)) + (value.repeated ? "!" : ""));
    }
  }
  return lines;
}

TEST(EqualEntries, AreThoseWithTheSameBytesBelowTheirDn) {
  Pair pair(kOne, kOther);
  EXPECT_THAT(entriesOf(Snapshot(pair.one.store())), ElementsAre("CN=A*", "cn=b, cn=A*", "CN=C", "CN=D"));
  EXPECT_THAT(entriesOf(Snapshot(pair.other.store())), ElementsAre("CN=A*", "CN = B,CN=A*", "CN=C", "CN=D"));
}

TEST(EqualEntries, StayWhereTheTestSaysNo) {
  Strings asked;
  const auto hasB = [&](std::string_view normal, std::span<const Line> lines) {
    asked.push_back(std::string(normal) + " " + std::to_string(lines.size()));
    return lines.size() > 1;
  };
  Pair pair(kOne, kOther, hasB);
  EXPECT_THAT(asked, ElementsAre("CN=A 1", "CN=B,CN=A 2"));
  EXPECT_THAT(entriesOf(Snapshot(pair.one.store())), ElementsAre("CN=A", "cn=b, cn=A*", "CN=C", "CN=D"));
}

TEST(EqualEntries, AreFoundInAnyOrder) {
  Pair pair("dn: CN=A\na: 1\n\ndn: CN=B\na: 2\n\ndn: CN=C\na: 3\n",
            "dn: CN=C\na: 3\n\ndn: CN=A\na: 1\n\ndn: CN=X\na: 9\n");
  EXPECT_THAT(entriesOf(Snapshot(pair.one.store())), ElementsAre("CN=A*", "CN=B", "CN=C*"));
  EXPECT_THAT(entriesOf(Snapshot(pair.other.store())), ElementsAre("CN=C*", "CN=A*", "CN=X"));
}

TEST(EqualEntries, StayWhereTheirLastLineHasNoEnd) {
  for (const char* other : {"dn: CN=A\na: 1\n", "dn: CN=A\na: 1"}) {
    Pair pair("dn: CN=A\na: 1", other);
    EXPECT_THAT(entriesOf(Snapshot(pair.one.store())), ElementsAre("CN=A"));
  }
}

TEST(EqualEntries, AreNotListedButFoundReadAndWritten) {
  Pair pair(kOne, kOther);
  EXPECT_THAT(pair.one.subordinates("", 2).values, ElementsAre("CN=C", "CN=D"));
  EXPECT_THAT(pair.one.values("CN=B,CN=A", "B").values, ElementsAre(" "));
  EXPECT_EQ(pair.one.value("cn=a", "a").value, "1");
  EXPECT_EQ(pair.one.text(), kOne);
  EXPECT_FALSE(pair.one.store().changed());
  EXPECT_EQ(pair.one.addValue("CN=A", "a", "2"), 0);
  EXPECT_THAT(test::diff(kOne, pair.one.text()), ElementsAre("+a: 2\\n"));
}

TEST(EqualEntries, KnowWhetherTheyAreAsTheyWereRead) {
  Pair pair(kOne, kOther);
  EXPECT_TRUE(isSetAsideUntouched(pair.one.store()));
  EXPECT_EQ(pair.one.addValue("CN=C", "a", "2"), 0);
  EXPECT_TRUE(isSetAsideUntouched(pair.one.store()));
  EXPECT_EQ(pair.one.addValue("CN=A", "a", "2"), 0);
  EXPECT_FALSE(isSetAsideUntouched(pair.one.store()));
  EXPECT_EQ(pair.other.removeEntry("CN=A"), 0);
  EXPECT_FALSE(isSetAsideUntouched(pair.other.store()));
}

TEST(EqualEntries, ThatWereEditedStay) {
  TestStore one(kOne);
  TestStore other(kOther);
  ASSERT_EQ(one.addValue("CN=A", "a", "2"), 0);
  ASSERT_EQ(other.removeEntry("CN=B,CN=A"), 0);
  setAsideEqualEntries(one.store(), other.store(), always);
  EXPECT_THAT(entriesOf(Snapshot(one.store())), ElementsAre("CN=A", "cn=b, cn=A", "CN=C", "CN=D"));
}

TEST(EqualEntries, AreSetAsideInAnotherStoreThatHoldsTheVeryBytes) {
  Pair pair(kOne, kOther);
  TestStore third("dn: CN=A\na: 1\n\n# different\ndn: CN = B,CN=A\na: 1\nb:: IA==\n\ndn: CN=C\na: 2\n");
  EXPECT_THAT(setAsideLike(pair.other.store(), third.store()), ElementsAre("CN=B,CN=A"));
  EXPECT_THAT(entriesOf(Snapshot(third.store())), ElementsAre("CN=A*", "CN = B,CN=A", "CN=C"));
  TestStore without("dn: CN=C\na: 2\n");
  EXPECT_THAT(setAsideLike(pair.other.store(), without.store()), ElementsAre("CN=A", "CN=B,CN=A"));
}

TEST(EqualEntries, CanBePutBack) {
  Pair pair(kOne, kOther);
  putBack(pair.one.store(), "CN=B,CN=A");
  putBack(pair.one.store(), "CN=C");
  putBack(pair.one.store(), "CN=NOWHERE");
  const Snapshot snapshot(pair.one.store());
  EXPECT_THAT(entriesOf(snapshot), ElementsAre("CN=A*", "cn=b, cn=A", "CN=C", "CN=D"));
  EXPECT_EQ(snapshot.valuesSetAside(), 1U);
  EXPECT_THAT(valuesOf(snapshot, snapshot.entries()[1]), ElementsAre("6 a=1#1", "7 b= #2"));
  EXPECT_EQ(pair.one.text(), kOne);
  EXPECT_THAT(pair.one.subordinates("", 2).values, ElementsAre("cn=b, cn=A", "CN=C", "CN=D"));
}

TEST(EqualEntries, AreCountedAndVisitedInASnapshot) {
  Pair pair(kOne, kOther);
  const Snapshot snapshot(pair.one.store());
  EXPECT_EQ(snapshot.valuesSetAside(), 3U);
  EXPECT_EQ(snapshot.values().size(), 2U);
  Strings visited;
  snapshot.visitSetAside([&](std::string_view name, std::string_view value) {
    visited.push_back(std::string(name) + "=" + std::string(value));
  });
  EXPECT_THAT(visited, ElementsAre("a=1", "a=1", "b= "));
}

TEST(EqualEntries, UnfoldInASnapshotOneAtATime) {
  Pair pair(kOne, kOther);
  const Snapshot snapshot(pair.one.store());
  EXPECT_THAT(valuesOf(snapshot, snapshot.entries()[1]), IsEmpty());
  snapshot.unfold(1);
  EXPECT_THAT(valuesOf(snapshot, snapshot.entries()[1]), ElementsAre("6 a=1#1", "7 b= #2"));
  EXPECT_EQ(snapshot.attributeOf(snapshot.values()[3]).entry, 1U);
  EXPECT_EQ(snapshot.lastingValues(), 2U);
  EXPECT_NE(snapshot.findAttribute(1, "B"), Snapshot::kNone);
  snapshot.fold();
  EXPECT_THAT(valuesOf(snapshot, snapshot.entries()[1]), IsEmpty());
  EXPECT_EQ(snapshot.values().size(), 2U);
  EXPECT_EQ(snapshot.findAttribute(1, "B"), Snapshot::kNone);
  snapshot.unfold(0);
  EXPECT_THAT(valuesOf(snapshot, snapshot.entries()[0]), ElementsAre("2 a=1#0"));
  snapshot.fold();
  EXPECT_THAT(valuesOf(snapshot, snapshot.entries()[2]), ElementsAre("10 a=1#3"));
}

// All that a snapshot tells, whatever of it was set aside.
Strings unfolded(const Snapshot& snapshot) {
  Strings all;
  for (std::uint32_t i = 0; i < snapshot.entries().size(); ++i) {
    if (snapshot.entries()[i].setAside) snapshot.unfold(i);
    const SnapshotEntry& entry = snapshot.entries()[i];
    all.push_back(std::to_string(entry.line) + " " + std::string(entry.dn) + " " + std::string(entry.normal));
    for (std::string& line : valuesOf(snapshot, entry)) all.push_back(std::move(line));
    snapshot.fold();
  }
  return all;
}

// A random selection of the entries E0 to E7.
EqualEntryTest someEntries() {
  const unsigned chosen = *rc::gen::inRange(0U, 256U);
  return [chosen](std::string_view normal, std::span<const Line>) {
    return (chosen >> (static_cast<unsigned>(normal[4] - '0') & 7U) & 1U) != 0;
  };
}

RC_GTEST_PROP(EqualEntries, UnfoldToWhatTheyAreOtherwise, ()) {
  const test::GeneratedLdif file = *test::genLdif();
  TestStore whole(file.text);
  TestStore one(file.text);
  TestStore other(file.text);
  setAsideEqualEntries(one.store(), other.store(), someEntries());
  const Snapshot expected(whole.store());
  for (TestStore* const store : {&one, &other}) {
    const Snapshot snapshot(store->store());
    RC_ASSERT(unfolded(snapshot) == unfolded(expected));
    RC_ASSERT(snapshot.values().size() + snapshot.valuesSetAside() == expected.values().size());
    RC_ASSERT(store->text() == file.text);
  }
}

// One random write to both; they must answer the same.
void step(TestStore& left, TestStore& right) {
  const std::string dn = "cn=e" + std::string(1, *rc::gen::inRange<char>('0', '8')) + ", cn=configuration";
  const std::string name(1, *rc::gen::inRange<char>('a', 'f'));
  const std::string value = *rc::gen::oneOf(rc::gen::elementOf(Strings{"x", "y", ""}), test::genValue());
  const auto both = [&](const auto& write) { RC_ASSERT(write(left) == write(right)); };
  switch (*rc::gen::weightedElement<int>({{6, 0}, {5, 1}, {3, 2}, {1, 3}, {1, 4}})) {
    case 0:
      return both([&](TestStore& store) { return store.addValue(dn.c_str(), name.c_str(), value.c_str()); });
    case 1: {
      Strings listed = left.values(dn.c_str(), name.c_str()).values;
      if (listed.empty()) listed.push_back(value);
      listed.resize(1);
      return both([&](TestStore& store) { return store.delValue(dn.c_str(), name.c_str(), listed); });
    }
    case 2:
      return both([&](TestStore& store) { return store.setValue(dn.c_str(), name.c_str(), value.c_str()); });
    case 3:
      return both([&](TestStore& store) { return store.addEntry(dn.c_str(), value.c_str(), "top", "person"); });
    default:
      return both([&](TestStore& store) { return store.removeEntry(dn.c_str()); });
  }
}

RC_GTEST_PROP(EqualEntries, AreWrittenToAsIfTheyHadNotBeenSetAside, ()) {
  const test::GeneratedLdif file = *test::genLdif();
  TestStore whole(file.text);
  TestStore one(file.text);
  TestStore other(file.text);
  if (*rc::gen::arbitrary<bool>()) learnHabits(one.store());
  setAsideEqualEntries(one.store(), other.store(), someEntries());
  for (int steps = *rc::gen::inRange(0, 30); steps > 0; --steps) {
    step(one, whole);
    if (*rc::gen::inRange(0, 8) == 0) putBack(one.store(), "CN=E1,CN=CONFIGURATION");
    RC_ASSERT(one.text() == whole.text());
  }
}

}  // namespace
}  // namespace cfgstore
