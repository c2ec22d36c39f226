// Two files that are read as a pair hold what they hold when each is read by itself.

#include "PairReading.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <future>
#include <memory>
#include <new>
#include <optional>

#include "Document.h"
#include "EqualEntries.h"
#include "LdifGenerator.h"
#include "LdifReader.h"
#include "StoreContent.h"
#include "TestStore.h"

namespace cfgstore {
namespace {

using test::contentOf;
using test::entriesOf;
using test::Strings;
using test::TemporaryDirectory;
using test::TestStore;
using testing::ElementsAre;
using testing::IsEmpty;

using Side = PairReading::Side;

bool whicheverItIs(std::string_view, std::span<const Line>) { return true; }

// A store, or why there is none.
struct Opened {
  std::unique_ptr<TestStore> store;
  Strings problems;
};

Opened opened(std::string_view text) {
  Opened result;
  try {
    result.store = std::make_unique<TestStore>(text);
  } catch (const OpenError& error) {
    for (const Problem& problem : error.problems()) {
      result.problems.push_back(std::to_string(problem.line) + " " + problem.text);
    }
  }
  return result;
}

// Two stores that were read beside each other; the habits of the second were learned.
struct Pair {
  Pair(std::string_view lowerFirst, std::string_view upperFirst) {
    PairReading pair;
    auto second = std::async(std::launch::async, [&] {
      const PairReading::Turn turn(pair, Side::upperFirst, true);
      return opened(upperFirst);
    });
    const PairReading::Turn turn(pair, Side::lowerFirst, false);
    one = opened(lowerFirst);
    other = second.get();
  }
  Opened one;
  Opened other;
};

TEST(UpperHalf, BeginsAtADnLineBehindAnEmptyOne) {
  const auto upperOf = [](std::string_view text) {
    const std::size_t at = upperHalfOf(text);
    return at == std::string_view::npos ? "none" : std::string(text.substr(at));
  };
  EXPECT_EQ(upperOf(""), "none");
  EXPECT_EQ(upperOf("dn: CN=A\n"), "none");
  EXPECT_EQ(upperOf("dn: CN=A\n\ndn: CN=B\n"), "dn: CN=B\n");
  EXPECT_EQ(upperOf("dn: CN=A\r\n\r\ndn: CN=B\r\n"), "dn: CN=B\r\n");
  EXPECT_EQ(upperOf("dn: CN=A\n\n\n\ndn: CN=B\n"), "dn: CN=B\n");
  EXPECT_EQ(upperOf("dn: CN=A\n\n# of B\ndn: CN=B\n\ndn: CN=C\n"), "dn: CN=C\n") << "the comment belongs to B";
  EXPECT_EQ(upperOf("dn: CN=A\na: 1\na: 2\na: 3\na: 4\n\n# of B\ndn: CN=B\n"), "none");
  EXPECT_EQ(upperOf("dn: CN=A\na: 1\n dn: x\n"), "none");
}

TEST(UpperHalf, BeginsInTheMiddle) {
  std::string text;
  for (int i = 0; i < 1000; ++i) text += "dn: CN=" + std::to_string(i) + "\na: " + std::string(90, 'x') + "\n\n";
  const std::size_t at = upperHalfOf(text);
  EXPECT_NEAR(static_cast<double>(at), static_cast<double>(text.size()) / 2, 400);
  EXPECT_TRUE(text.substr(at).starts_with("dn: CN=49"));
}

// Which entries of `text` are not taken apart beside `other`.
Strings alikeIn(std::string_view text, std::string_view other) {
  TextArena arena;
  const LdifContent theirs = readLdif(other, arena);
  EXPECT_THAT(theirs.problems, IsEmpty());
  const LdifContent content = readBeside(&theirs, text, arena, text.size());
  EXPECT_THAT(content.problems, IsEmpty());
  Strings alike;
  for (const EntrySpan& entry : content.entries) {
    if (entry.alike == kNoEntry) continue;
    EXPECT_EQ(theirs.entries[entry.alike - 1].normal, entry.normal);
    alike.push_back(std::to_string(entry.line) + "-" + std::to_string(entry.endLine) + " " + std::string(entry.text));
  }
  return alike;
}

TEST(ReadBeside, PassesOverWhatTheOtherTextHasAsWell) {
  const std::string_view other = "dn: CN=A\na: 1\n# in it\nb: 2\n 3\n\ndn: CN=B\na: 1\n";
  EXPECT_THAT(alikeIn(other, other), ElementsAre("1-6 dn: CN=A\na: 1\n# in it\nb: 2\n 3\n", "7-9 dn: CN=B\na: 1\n"));
  // In another order; the dn line spelled otherwise and going on; other comments above it.
  EXPECT_THAT(alikeIn("# head\n\ndn: CN=B\na: 1\n\n\n# mine\ndn: cn =\n  a\na: 1\n# in it\nb: 2\n 3\n", other),
              ElementsAre("3-5 dn: CN=B\na: 1\n", "8-14 # mine\ndn: cn =\n  a\na: 1\n# in it\nb: 2\n 3\n"));
}

TEST(ReadBeside, TakesOneEntryForAnotherInNothing) {
  const std::string_view other = "dn: CN=C\na: 3\n";
  EXPECT_THAT(alikeIn(other, other), ElementsAre("1-3 dn: CN=C\na: 3\n"));
  for (const char* text : {"dn: CN=D\na: 3\n", "dn: CN=C\na: 4\n", "dn: CN=C\na: 3", "dn: CN=C\na: 3\n 4\n",
                           "dn: CN=C\na: 3\nb: 4\n", "dn: CN=C\na: 3\n# more\n\ndn: CN=E\n", "dn: CN=C\n# more\na: 3\n",
                           "dn: CN=C\nA: 3\n", "dn: CN=C\na:  3\n", "dn: CN=C\na: 3\r\n", "dn: CN=C\n", "dn: CN=C"}) {
    EXPECT_THAT(alikeIn(text, other), IsEmpty()) << text;
  }
  EXPECT_THAT(alikeIn("dn: CN=C\na: 3\n\r\n", other), ElementsAre("1-3 dn: CN=C\na: 3\n"));
  EXPECT_THAT(alikeIn("dn: CN=C\n", "dn: CN=C\n"), IsEmpty()) << "nothing would be gained";
  EXPECT_THAT(alikeIn("dn: CN=C\na: 3\n", "dn: CN=C\na: 3"), IsEmpty());
}

TEST(PairReading, TakesApartWhatOneOfThemHasOnly) {
  const std::string text = "dn: CN=A\na: 1\n\ndn: CN=B\na: 2\n\ndn: CN=C\na: 3\n\ndn: CN=D\na: 4\n";
  std::string changed = text;
  changed.replace(changed.find("a: 4"), 4, "a: 5");
  const Pair pair(text, changed);
  EXPECT_THAT(entriesOf(pair.one.store->store()), ElementsAre("1 CN=A", "4 CN=B", "7 CN=C", "10 CN=D"));
  EXPECT_EQ(contentOf(pair.one.store->store()), contentOf(TestStore(text).store()));
  EXPECT_EQ(contentOf(pair.other.store->store()), contentOf(TestStore(changed).store()));
  setAsideEqualEntries(pair.one.store->store(), pair.other.store->store(), whicheverItIs);
  EXPECT_THAT(entriesOf(pair.one.store->store()), ElementsAre("1 CN=A*", "4 CN=B*", "7 CN=C*", "10 CN=D"));
  EXPECT_THAT(entriesOf(pair.other.store->store()), ElementsAre("1 CN=A*", "4 CN=B*", "7 CN=C*", "10 CN=D"));
}

TEST(PairReading, CountsNoFewerValuesThanThereAre) {
  std::string values;
  for (int i = 0; i < 50; ++i) values += "a: " + std::to_string(i) + "\n";
  const std::string text = "dn: CN=A\n" + values + "\ndn: CN=B\n" + values;
  const Pair pair(text, text);
  EXPECT_GE(pair.one.store->store().document().mostValues(), 100U);
  EXPECT_GE(pair.other.store->store().document().mostValues(), 100U);
}

// The one that was read beside another one may be compared with a third.
TEST(PairReading, BindsNobodyAfterwards) {
  const std::string text = "dn: CN=A\na: 1\n\ndn: CN=B\na: 2\n";
  const Pair pair(text, text);
  TestStore third("dn: CN=A\na: 3\n\ndn: CN=B\na: 2\n");
  setAsideEqualEntries(pair.other.store->store(), third.store(), whicheverItIs);
  EXPECT_THAT(entriesOf(pair.other.store->store()), ElementsAre("1 CN=A", "4 CN=B*"));
  EXPECT_THAT(entriesOf(third.store()), ElementsAre("1 CN=A", "4 CN=B*"));
  setAsideEqualEntries(pair.one.store->store(), pair.other.store->store(), whicheverItIs);
  EXPECT_THAT(entriesOf(pair.one.store->store()), ElementsAre("1 CN=A*", "4 CN=B"));
}

TEST(PairReading, TellsOfEitherFileWhatIsWrongWithIt) {
  const std::string good = "dn: CN=A\na: 1\n\ndn: CN=B\na: 2\n\ndn: CN=C\na: 3\n\ndn: CN=D\na: 4\n";
  Strings bad{"dn: CN=A\na\n\ndn: CN=B\na: 2\n\ndn: CN=C\na: 3\n\ndn: CN=D\nb\n",
              "dn: CN=A\na: 1\n\ndn: CN=B\na: 2\n\ndn: CN=C\na: 3\n\ndn: cn=a\na: 1\n",
              "dn: CN=A\na: 1\n\ndn: CN=B\na: 2\n\ndn: CN=B\na: 2\n\ndn: CN=D\n",
              "dn: CN=A\na: 1\n\ndn: CN=B\na: 2\n\ndn: CN=C\na: 3\n\nversion: 1\ndn: CN=D\na: 4\n",
              "\n",
              "no entry at all"};
  std::string hopeless;
  for (std::size_t i = 0; i < 2 * kMostProblems; ++i) hopeless += "dn: CN=" + std::to_string(i) + "\nbad\n\n";
  bad.push_back(hopeless);
  for (const std::string& text : bad) {
    const Opened expected = opened(text);
    const Pair first(text, good);
    const Pair second(good, text);
    EXPECT_EQ(first.one.problems, expected.problems) << text;
    EXPECT_EQ(second.other.problems, expected.problems) << text;
    EXPECT_EQ(contentOf(first.other.store->store()), contentOf(TestStore(good).store()));
    EXPECT_EQ(contentOf(second.one.store->store()), contentOf(TestStore(good).store()));
    EXPECT_EQ(Pair(text, text).one.problems, expected.problems) << text;
  }
}

// Whoever does not come, or comes to nothing, keeps nobody waiting.
TEST(PairReading, GoesOnWithoutTheOther) {
  const std::string good = "dn: CN=A\na: 1\n\ndn: CN=B\na: 2\n";
  for (const bool isOpened : {false, true}) {
    PairReading pair;
    auto second = std::async(std::launch::async, [&] {
      const PairReading::Turn turn(pair, Side::upperFirst, false);
      EXPECT_THROW(ConfigStore("/nonexistent/file"), OpenError);
    });
    const PairReading::Turn turn(pair, Side::lowerFirst, false);
    if (isOpened) {
      EXPECT_EQ(contentOf(opened(good).store->store()), contentOf(TestStore(good).store()));
    }
    second.get();
  }
  PairReading pair;
  pair.giveUp();
  const PairReading::Turn turn(pair, Side::lowerFirst, false);
  EXPECT_EQ(PairReading::Turn::take(), nullptr);
  EXPECT_EQ(contentOf(opened(good).store->store()), contentOf(TestStore(good).store()));
}

TEST(PairReading, IsForOneDocumentInEachThread) {
  PairReading pair;
  auto second = std::async(std::launch::async, [&] { const PairReading::Turn turn(pair, Side::upperFirst, false); });
  {
    const PairReading::Turn turn(pair, Side::lowerFirst, false);
    EXPECT_EQ(PairReading::Turn::take(), &turn);
    EXPECT_EQ(PairReading::Turn::take(), nullptr);
  }
  EXPECT_EQ(PairReading::Turn::take(), nullptr);
}

// A text with some of the paragraphs of another one, some of them changed, in the same order or another one.
std::string likeness(const std::string& text) {
  Strings paragraphs(1);
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t end = std::min(text.find('\n', at), text.size() - 1) + 1;
    const std::string line = text.substr(at, end - at);
    if (line == "\n" || line == "\r\n") {
      paragraphs.emplace_back();
    } else {
      paragraphs.back() += line;
    }
    at = end;
  }
  if (*rc::gen::inRange(0, 4) == 0) std::swap(paragraphs.front(), paragraphs.back());
  std::string like;
  for (std::string& paragraph : paragraphs) {
    switch (*rc::gen::inRange(0, 10)) {
      case 0:
        continue;
      case 1:
        paragraph += "d: more\n";
        break;
      case 2:
        paragraph = "# another comment\n" + paragraph;
        break;
      case 3:
        if (const auto dn = paragraph.find("CN=E"); dn != std::string::npos) paragraph.replace(dn, 2, "cn");
        break;
      case 4:
        paragraph += "# below\n";
        break;
      case 5:
        if (*rc::gen::inRange(0, 4) == 0) paragraph += paragraph;
        break;
      default:
        break;
    }
    like += paragraph;
    like += *rc::gen::element<std::string>("\n", "\n", "\n\n", "\r\n", "");
  }
  return like;
}

void editEach(TestStore& store) {
  for (const char number : std::string("01234567")) {
    const std::string dn = std::string("CN=E") + number + ",CN=CONFIGURATION";
    if (number == '3') store.removeEntry(dn.c_str());
    if (number == '6') store.addEntry(dn.c_str(), "six", "top", "person");
    store.addValue(dn.c_str(), "a", "a long value that goes on and on, to where a line would be folded if lines are");
    store.setValue(dn.c_str(), "b", " \xC3\xA9");
  }
}

enum class Then { setAside, takeApart, nothing };

RC_GTEST_PROP(PairReading, IsReadingEachByItself, ()) {
  const std::string text = (*test::genLdif()).text;
  const std::string like = likeness(text);
  const Pair pair(text, like);
  const Opened one = opened(text);
  const Opened other = opened(like);
  RC_ASSERT(pair.one.problems == one.problems);
  RC_ASSERT(pair.other.problems == other.problems);
  if (!one.store || !other.store) return;
  RC_ASSERT(contentOf(pair.one.store->store()) == contentOf(one.store->store()));
  RC_ASSERT(contentOf(pair.other.store->store()) == contentOf(other.store->store()));
  RC_ASSERT(pair.one.store->text() == text);
  RC_ASSERT(pair.other.store->text() == like);
  const Then then = *rc::gen::element(Then::setAside, Then::takeApart, Then::nothing);
  if (then == Then::setAside) {
    setAsideEqualEntries(pair.one.store->store(), pair.other.store->store(), whicheverItIs);
    setAsideEqualEntries(one.store->store(), other.store->store(), whicheverItIs);
  } else if (then == Then::takeApart) {
    takeApart(pair.one.store->store());
    takeApart(pair.other.store->store());
  }
  RC_ASSERT(contentOf(pair.one.store->store()) == contentOf(one.store->store()));
  RC_ASSERT(contentOf(pair.other.store->store()) == contentOf(other.store->store()));
  for (TestStore* store : {pair.one.store.get(), one.store.get(), pair.other.store.get(), other.store.get()}) {
    editEach(*store);
  }
  RC_ASSERT(pair.one.store->text() == one.store->text());
  RC_ASSERT(pair.other.store->text() == other.store->text());
}

}  // namespace
}  // namespace cfgstore
