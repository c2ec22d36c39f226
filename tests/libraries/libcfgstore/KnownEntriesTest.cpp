// A file that is read beside another one that it is much like is read as if there were no other.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "EqualEntries.h"
#include "LdifGenerator.h"
#include "StoreContent.h"
#include "TestStore.h"

namespace cfgstore {
namespace {

using test::contentOf;
using test::editSome;
using test::entriesOf;
using test::Strings;
using test::TemporaryDirectory;
using test::TestStore;
using testing::ElementsAre;
using testing::IsEmpty;

bool always(std::string_view, std::span<const Line>) { return true; }

Strings sorted(const std::vector<std::string_view>& texts) {
  Strings all(texts.begin(), texts.end());
  std::sort(all.begin(), all.end());
  return all;
}

// A store with all that it can have set aside.
struct Model {
  explicit Model(const char* text) : store(text), twin(text) {
    setAsideEqualEntries(store.store(), twin.store(), always);
  }
  std::unique_ptr<ConfigStore> open(std::string_view text) {
    return openLike(store.directory().write("like.ldif", text), store.store());
  }
  TestStore store;
  TestStore twin;
};

constexpr const char* kText = "# head\n\n# of A\ndn: CN=A\na: 1\n\ndn: cn=b, CN=A\na: 1\nb:: IA==\n\ndn: CN=C\na: 3\n";

TEST(OpenLike, SetsAsideWhatStandsThereWithTheSameBytes) {
  Model model(kText);
  EXPECT_THAT(entriesOf(*model.open(kText)), ElementsAre("4 CN=A*", "7 cn=b, CN=A*", "11 CN=C*"));
  EXPECT_THAT(entriesOf(*model.open("# of A\ndn: CN=A\na: 1\n\ndn: cn=x\na: 1\n\ndn: cn=b, CN=A\na: 2\nb:: IA==\n\n\n"
                                    "dn: CN=C\na: 3\n")),
              ElementsAre("2 CN=A*", "5 cn=x", "8 cn=b, CN=A", "13 CN=C*"));
}

TEST(OpenLike, TakesOneEntryForAnotherInNothing) {
  Model model("dn: CN=C\na: 3\n");
  EXPECT_THAT(entriesOf(*model.open("dn: CN=C\na: 3\n")), ElementsAre("1 CN=C*"));
  const Strings all{"1 CN=C", "5 CN=D"};
  // More below it, another comment above it, another spelling of its DN, a line that goes on.
  EXPECT_THAT(entriesOf(*model.open("dn: CN=C\na: 3\n# more\n\ndn: CN=D\n")), all);
  EXPECT_THAT(entriesOf(*model.open("# mine\ndn: CN=C\na: 3\n")), ElementsAre("2 CN=C"));
  EXPECT_THAT(entriesOf(*model.open("dn: cn=c\na: 3\n")), ElementsAre("1 cn=c"));
  EXPECT_THAT(entriesOf(*model.open("dn: CN=C\na: 3\n 4\n")), ElementsAre("1 CN=C"));
  EXPECT_THAT(entriesOf(*model.open("dn: CN=C\na: 3\nb: 4\n")), ElementsAre("1 CN=C"));
  EXPECT_THAT(entriesOf(*model.open("dn: CN=C\na: 3")), ElementsAre("1 CN=C"));
  EXPECT_THAT(entriesOf(*model.open("dn: CN=C\na: 3\n\r\n")), ElementsAre("1 CN=C*"));
}

TEST(OpenLike, GoesOnWithWhatFollowsInTheModel) {
  Model model("dn: CN=A\n\ndn: CN=B\n\ndn: CN=C\n\ndn: CN=D\n");
  EXPECT_THAT(entriesOf(*model.open("dn: CN=C\n\ndn: CN=D\n\ndn: CN=A\n\ndn: CN=B\n")),
              ElementsAre("1 CN=C", "3 CN=D*", "5 CN=A", "7 CN=B*"));
}

// The same problems as when the file is opened by itself.
void expectSameProblems(std::string_view text) {
  Model model(kText);
  const std::string path = model.store.directory().write("bad.ldif", text);
  Strings expected;
  Strings told;
  const auto add = [](const OpenError& error, Strings& to) {
    for (const Problem& problem : error.problems()) to.push_back(std::to_string(problem.line) + " " + problem.text);
  };
  try {
    const ConfigStore plain(path);
  } catch (const OpenError& error) {
    add(error, expected);
  }
  try {
    openLike(path, model.store.store());
  } catch (const OpenError& error) {
    add(error, told);
  }
  EXPECT_FALSE(expected.empty());
  EXPECT_EQ(told, expected);
}

TEST(OpenLike, TellsWhatIsWrongWithTheFile) {
  expectSameProblems("dn: CN=C\na: 3\n\ndn: CN=A\na: 1\n\ndn: cn = c\na: 3\n");
  expectSameProblems("# of A\ndn: CN=A\na: 1\n\ndn: cn=b, CN=A\na: 1\nb:: IA==\n\n# of A\ndn: CN=A\na: 1\n");
  expectSameProblems("# of A\ndn: CN=A\na: 1\n\nb: 2\n\ndn: CN=C\na: 3\n\ndn: x\n");
  expectSameProblems(std::string("# of A\ndn: CN=A\na: 1\n\ndn: CN=D\na: x") + '\0' + "\n");
  expectSameProblems("# of A\ndn: CN=A\na: 1\n\nversion: 1\n\ndn: CN=D\na: \rx\n");
}

// A random selection of the entries E0 to E7.
EqualEntryTest someEntries() {
  const unsigned chosen = *rc::gen::inRange(0U, 256U);
  return [chosen](std::string_view normal, std::span<const Line>) {
    return (chosen >> (static_cast<unsigned>(normal[4] - '0') & 7U) & 1U) != 0;
  };
}

RC_GTEST_PROP(OpenLike, IsOpeningAndThenSettingAside, ()) {
  TestStore model((*test::genLdif()).text);
  TestStore twin(model.text());
  setAsideEqualEntries(model.store(), twin.store(), someEntries());
  TestStore edited(*rc::gen::arbitrary<bool>() ? model.text() : (*test::genLdif()).text);
  editSome(edited);
  TestStore plain(edited.text());
  const auto others = setAsideLike(model.store(), plain.store());
  const auto like = openLike(plain.path(), model.store());
  RC_ASSERT(sorted(setAsideLike(model.store(), *like)) == sorted(others));
  RC_ASSERT(contentOf(*like) == contentOf(plain.store()));
  RC_ASSERT(like->text() == plain.text());
  RC_ASSERT(!like->changed());
}

RC_GTEST_PROP(ReadAsSaved, IsSavingAndThenOpening, ()) {
  TestStore store((*test::genLdif()).text);
  TestStore twin(store.text());
  setAsideEqualEntries(store.store(), twin.store(), someEntries());
  editSome(store);
  TestStore saved(store.text());
  RC_ASSERT(setAsideLike(store.store(), saved.store()).empty());
  const auto read = readAsSaved(store.store());
  RC_ASSERT(setAsideLike(store.store(), *read).empty());
  RC_ASSERT(contentOf(*read) == contentOf(saved.store()));
}

TEST(ReadAsSaved, TellsWhatCouldNotBeOpened) {
  // Nothing that the store writes is like that, so that the text is spoilt behind its back.
  TestStore store("dn: CN=A\na: 1\n\ndn: CN=B\na: 2\n");
  const std::string_view text = store.store().textAsRead();
  const_cast<char&>(text[text.find("a: 2") + 1]) = '-';
  EXPECT_THROW(readAsSaved(store.store()), OpenError);
}

TEST(HoldsText, ComparesEveryByteOfAFile) {
  const TemporaryDirectory directory;
  const std::string path = directory.write("file", "one two");
  EXPECT_TRUE(holdsText(path, {"one", " ", "two"}));
  EXPECT_FALSE(holdsText(path, {"one", " ", "twa"}));
  EXPECT_FALSE(holdsText(path, {"one", " ", "tw"}));
  EXPECT_FALSE(holdsText(path, {"one", " ", "two", "\n"}));
  EXPECT_TRUE(holdsText(directory.write("empty", ""), {}));
}

TEST(HoldsText, IsFalseWhereNothingCanBeRead) {
  const TemporaryDirectory directory;
  EXPECT_FALSE(holdsText(directory.file("nothing"), {}));
  EXPECT_FALSE(holdsText(directory.path(), {}));
  EXPECT_FALSE(holdsText("/dev/null", {}));
}

}  // namespace
}  // namespace cfgstore
