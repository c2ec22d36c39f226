// Entry handles and attribute cursors.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>

#include "ResultCode.h"
#include "TestStore.h"

namespace cfgstore {
namespace {

using test::Strings;
using test::TestStore;
using testing::ElementsAre;
using testing::IsEmpty;

const char* const kWalked = "dn: CN=A\n# c\nb: 1\na: 1\nB: 2\nc;x: 1\n\ndn: CN=EMPTY\n";

class EntryWalk : public testing::Test {
 protected:
  ~EntryWalk() override {
    cfg_ber_free(m_cursor);
    cfg_msgfree(m_entry);
  }

  int begin(const char* dn) {
    int rc = m_store->utils().getFirstEntry(dn, &m_entry);
    if (rc == 0) rc = m_store->utils().getFirstAttribute(m_entry, &m_name, &m_cursor);
    return rc;
  }

  // The name at hand and all that follow.
  Strings rest() {
    Strings names;
    while (m_name != nullptr) {
      names.emplace_back(m_name);
      std::free(m_name);
      EXPECT_EQ(m_store->utils().getNextAttribute(m_entry, &m_name, m_cursor), 0);
    }
    return names;
  }

  std::unique_ptr<TestStore> m_store = std::make_unique<TestStore>(kWalked);
  _CFGMessage* m_entry = nullptr;
  _CFGMessage** m_cursor = nullptr;
  char* m_name = nullptr;
};

TEST_F(EntryWalk, GivesEachAttributeOnceInTheOrderAndSpellingOfItsFirstLine) {
  ASSERT_EQ(begin("cn=a"), 0);
  EXPECT_THAT(rest(), ElementsAre("b", "a", "c;x"));
}

TEST_F(EntryWalk, StaysAtItsEnd) {
  ASSERT_EQ(begin("CN=A"), 0);
  rest();
  EXPECT_EQ(m_store->utils().getNextAttribute(m_entry, &m_name, m_cursor), 0);
  EXPECT_EQ(m_name, nullptr);
}

TEST_F(EntryWalk, SucceedsWithANullNameInAnEntryWithoutAttributes) {
  ASSERT_EQ(begin("CN=EMPTY"), 0);
  EXPECT_EQ(m_name, nullptr);
  EXPECT_NE(m_cursor, nullptr);
}

TEST_F(EntryWalk, IsNotDisturbedByWritesToItsEntry) {
  ASSERT_EQ(begin("CN=A"), 0);
  EXPECT_EQ(m_store->delValue("CN=A", "b", {"1", "2"}), 0);
  EXPECT_EQ(m_store->delValue("CN=A", "a", {"1"}), 0);
  EXPECT_EQ(m_store->addValue("CN=A", "new", "1"), 0);
  EXPECT_THAT(rest(), ElementsAre("b", "a", "c;x"));
  EXPECT_THAT(m_store->attributes("CN=A"), ElementsAre("c;x", "new"));
}

TEST_F(EntryWalk, IsNotDisturbedByTheRemovalOfItsEntry) {
  ASSERT_EQ(begin("CN=A"), 0);
  EXPECT_EQ(m_store->removeEntry("CN=A"), 0);
  EXPECT_THAT(rest(), ElementsAre("b", "a", "c;x"));
}

TEST_F(EntryWalk, CanBeReleasedAfterTheStore) {
  ASSERT_EQ(begin("CN=A"), 0);
  std::free(m_name);
  m_store.reset();
}

TEST_F(EntryWalk, CanBeReleasedInEitherOrder) {
  ASSERT_EQ(begin("CN=A"), 0);
  std::free(m_name);
  cfg_msgfree(m_entry);
  m_entry = nullptr;
  cfg_ber_free(m_cursor);
  m_cursor = nullptr;
}

TEST_F(EntryWalk, CanBeBegunSeveralTimesOnOneHandle) {
  ASSERT_EQ(begin("CN=A"), 0);
  char* name = nullptr;
  _CFGMessage** second = nullptr;
  ASSERT_EQ(m_store->utils().getFirstAttribute(m_entry, &name, &second), 0);
  EXPECT_STREQ(name, "b");
  std::free(name);
  EXPECT_THAT(rest(), ElementsAre("b", "a", "c;x"));
  ASSERT_EQ(m_store->utils().getNextAttribute(m_entry, &name, second), 0);
  EXPECT_STREQ(name, "a");
  std::free(name);
  cfg_ber_free(second);
}

TEST_F(EntryWalk, SeesTheNamesInTheOrderThatTheSavedFileWouldHave) {
  ASSERT_EQ(m_store->delValue("CN=A", "b", {"1"}), 0);
  EXPECT_THAT(m_store->attributes("CN=A"), ElementsAre("a", "B", "c;x"));
  TestStore again(m_store->text());
  EXPECT_THAT(again.attributes("CN=A"), ElementsAre("a", "B", "c;x"));
}

TEST_F(EntryWalk, FailsForAnEntryThatIsNotThere) {
  char dummy = 0;
  m_entry = reinterpret_cast<_CFGMessage*>(&dummy);
  EXPECT_EQ(m_store->utils().getFirstEntry("CN=NONE", &m_entry), kNoSuchObject);
  EXPECT_EQ(m_entry, nullptr);
  EXPECT_EQ(m_store->utils().getFirstEntry("nonsense", &m_entry), kInvalidDnSyntax);
}

TEST_F(EntryWalk, RefusesNullArguments) {
  auto& utils = m_store->utils();
  EXPECT_EQ(utils.getFirstEntry(nullptr, &m_entry), kParamError);
  EXPECT_EQ(utils.getFirstEntry("CN=A", nullptr), kParamError);
  EXPECT_EQ(utils.getFirstAttribute(nullptr, &m_name, &m_cursor), kParamError);
  EXPECT_EQ(m_name, nullptr);
  EXPECT_EQ(m_cursor, nullptr);
  ASSERT_EQ(begin("CN=A"), 0);
  _CFGMessage** cursor = nullptr;
  EXPECT_EQ(utils.getFirstAttribute(m_entry, nullptr, &cursor), kParamError);
  char* name = nullptr;
  EXPECT_EQ(utils.getFirstAttribute(m_entry, &name, nullptr), kParamError);
  EXPECT_EQ(utils.getNextAttribute(m_entry, &name, nullptr), kParamError);
  EXPECT_EQ(utils.getNextAttribute(nullptr, &name, m_cursor), kParamError);
  EXPECT_EQ(utils.getNextAttribute(m_entry, nullptr, m_cursor), kParamError);
  EXPECT_THAT(rest(), ElementsAre("b", "a", "c;x")) << "a refused call does not move the cursor";
}

TEST_F(EntryWalk, RefusesACursorOfAnotherEntry) {
  ASSERT_EQ(begin("CN=A"), 0);
  _CFGMessage* other = nullptr;
  ASSERT_EQ(m_store->utils().getFirstEntry("CN=EMPTY", &other), 0);
  char* name = nullptr;
  EXPECT_EQ(m_store->utils().getNextAttribute(other, &name, m_cursor), kParamError);
  cfg_msgfree(other);
  rest();
}

TEST_F(EntryWalk, ReleasesNothingForNull) {
  cfg_msgfree(nullptr);
  cfg_ber_free(nullptr);
}

}  // namespace
}  // namespace cfgstore
