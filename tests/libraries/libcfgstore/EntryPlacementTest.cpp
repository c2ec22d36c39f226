// A new entry goes after its nearest relative.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "TestStore.h"

namespace cfgstore {
namespace {

using test::Strings;
using test::TestStore;
using testing::ElementsAre;

class EntryPlacement : public testing::Test {
 protected:
  // Opens a file with entries of these DNs.
  void open(const Strings& dns) {
    std::string text;
    for (const std::string& dn : dns) text += "dn: " + dn + "\n\n";
    m_store = std::make_unique<TestStore>(text);
  }
  void add(const char* dn) { ASSERT_EQ(m_store->addEntry(dn, "x", "y", "z"), 0); }
  void remove(const char* dn) { ASSERT_EQ(m_store->removeEntry(dn), 0); }
  Strings order() { return TestStore(m_store->text()).subordinates("", 2).values; }

  std::unique_ptr<TestStore> m_store;
};

TEST_F(EntryPlacement, IsAfterTheParentAndItsSubtree) {
  open({"CN=P", "CN=1,CN=P", "CN=2,CN=1,CN=P", "CN=Q", "CN=3,CN=P"});
  add("CN=N,CN=P");
  EXPECT_THAT(order(), ElementsAre("CN=P", "CN=1,CN=P", "CN=2,CN=1,CN=P", "CN=N,CN=P", "CN=Q", "CN=3,CN=P"));
}

TEST_F(EntryPlacement, KeepsTheOrderOfSeveralNewEntries) {
  open({"CN=P", "CN=1,CN=P", "CN=Q"});
  for (const char* dn : {"CN=A,CN=P", "CN=B,CN=A,CN=P", "CN=C,CN=P", "CN=D,CN=A,CN=P", "CN=E,CN=P"}) add(dn);
  EXPECT_THAT(order(), ElementsAre("CN=P", "CN=1,CN=P", "CN=A,CN=P", "CN=B,CN=A,CN=P", "CN=D,CN=A,CN=P", "CN=C,CN=P",
                                   "CN=E,CN=P", "CN=Q"));
}

TEST_F(EntryPlacement, IsAfterTheLastSiblingWhenThereIsNoParent) {
  open({"CN=1,CN=P", "CN=X,CN=1,CN=P", "CN=Q", "CN=2,CN=P", "CN=Y,CN=2,CN=P", "CN=R"});
  add("CN=N,CN=P");
  add("CN=M,CN=P");
  EXPECT_THAT(order(), ElementsAre("CN=1,CN=P", "CN=X,CN=1,CN=P", "CN=Q", "CN=2,CN=P", "CN=Y,CN=2,CN=P", "CN=N,CN=P",
                                   "CN=M,CN=P", "CN=R"));
}

TEST_F(EntryPlacement, IsAfterTheNearestAncestorWhenThereIsNoSibling) {
  open({"CN=R", "CN=P,CN=R", "CN=1,CN=P,CN=R", "CN=Q,CN=R"});
  add("CN=N,CN=X,CN=Y,CN=P,CN=R");
  EXPECT_THAT(order(), ElementsAre("CN=R", "CN=P,CN=R", "CN=1,CN=P,CN=R", "CN=N,CN=X,CN=Y,CN=P,CN=R", "CN=Q,CN=R"));
}

TEST_F(EntryPlacement, IsAtTheEndWhenThereIsNoRelative) {
  open({"CN=1,CN=P", "CN=2,CN=P"});
  add("CN=N,CN=Z");
  add("CN=M,CN=Y");
  EXPECT_THAT(order(), ElementsAre("CN=1,CN=P", "CN=2,CN=P", "CN=N,CN=Z", "CN=M,CN=Y"));
}

TEST_F(EntryPlacement, IsAfterTheLastTopEntryForATopEntry) {
  open({"CN=1", "CN=X,CN=1", "CN=Y,CN=Z"});
  add("CN=N");
  EXPECT_THAT(order(), ElementsAre("CN=1", "CN=X,CN=1", "CN=N", "CN=Y,CN=Z"));
}

TEST_F(EntryPlacement, IsWhereARemovedEntryStood) {
  open({"CN=P", "CN=1,CN=P", "CN=Q"});
  remove("CN=1,CN=P");
  add("CN=1,CN=P");
  EXPECT_THAT(order(), ElementsAre("CN=P", "CN=1,CN=P", "CN=Q"));
}

TEST_F(EntryPlacement, SurvivesTheRemovalOfParentAndSiblings) {
  open({"CN=P", "CN=1,CN=P", "CN=2,CN=P", "CN=Q"});
  add("CN=3,CN=P");
  for (const char* dn : {"CN=P", "CN=1,CN=P", "CN=2,CN=P", "CN=3,CN=P"}) remove(dn);
  add("CN=4,CN=P");
  add("CN=5,CN=P");
  EXPECT_THAT(order(), ElementsAre("CN=4,CN=P", "CN=5,CN=P", "CN=Q"));
}

}  // namespace
}  // namespace cfgstore
