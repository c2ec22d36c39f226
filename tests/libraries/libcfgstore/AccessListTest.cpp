// What an access control list allows, in permission bits.

#include "AccessList.h"

#include <gtest/gtest.h>

#include <iterator>

#include "FileError.h"
#include "TestAttributes.h"

namespace cfgstore {
namespace {

using test::kGroupTag;
using test::kMaskTag;
using test::kOtherTag;
using test::kOwnerTag;
using test::kOwningGroupTag;
using test::kUserTag;
using test::ListEntry;
using test::listOf;

struct Case {
  const char* what;
  std::vector<ListEntry> entries;
  mode_t mode;   // of a file with the list
  mode_t plain;  // without it
};

const Case kCases[] = {
    {"no list in fact", {{kOwnerTag, 6}, {kOwningGroupTag, 4}, {kOtherTag, 4}}, 0644, 0644},
    {"a group that the mask limits", {{kOwnerTag, 6}, {kOwningGroupTag, 6}, {kMaskTag, 4}, {kOtherTag, 0}}, 0640, 0640},
    {"a mask that is wider than the group",
     {{kOwnerTag, 6}, {kOwningGroupTag, 0}, {kMaskTag, 6}, {kOtherTag, 0}},
     0660,
     0600},
    {"a user who may do more",
     {{kOwnerTag, 6}, {kUserTag, 6, 5}, {kOwningGroupTag, 4}, {kMaskTag, 6}, {kOtherTag, 4}},
     0664,
     0644},
    {"a user who may do less",
     {{kOwnerTag, 6}, {kUserTag, 0, 5}, {kOwningGroupTag, 4}, {kMaskTag, 4}, {kOtherTag, 4}},
     0644,
     0600},
    {"a user whom the mask limits",
     {{kOwnerTag, 6}, {kUserTag, 6, 5}, {kOwningGroupTag, 4}, {kMaskTag, 0}, {kOtherTag, 4}},
     0604,
     0600},
    {"a group that may do less than all",
     {{kOwnerTag, 6}, {kOwningGroupTag, 4}, {kGroupTag, 0, 5}, {kMaskTag, 4}, {kOtherTag, 4}},
     0644,
     0640},
};

TEST(AccessList, LeavesPlainPermissionsThatLetNobodyDoMore) {
  EXPECT_EQ(plainMode(04755, ""), 04755U);
  for (const Case& c : kCases) EXPECT_EQ(plainMode(c.mode, listOf(c.entries)), c.plain) << c.what;
}

TEST(AccessList, HasTheModeThatTheSystemShows) {
  for (const Case& c : kCases) EXPECT_EQ(modeOfList(listOf(c.entries)), c.mode) << c.what;
}

TEST(AccessList, IsLimitedEntryByEntry) {
  const std::string list = listOf(
      {{kOwnerTag, 7}, {kUserTag, 7, 5}, {kOwningGroupTag, 7}, {kGroupTag, 7, 6}, {kMaskTag, 7}, {kOtherTag, 7}});
  EXPECT_EQ(limitedList(list, 0777), list);
  EXPECT_EQ(
      limitedList(list, 0654),
      listOf(
          {{kOwnerTag, 6}, {kUserTag, 4, 5}, {kOwningGroupTag, 5}, {kGroupTag, 4, 6}, {kMaskTag, 5}, {kOtherTag, 4}}));
  EXPECT_EQ(
      limitedList(list, 0607),
      listOf(
          {{kOwnerTag, 6}, {kUserTag, 0, 5}, {kOwningGroupTag, 0}, {kGroupTag, 0, 6}, {kMaskTag, 0}, {kOtherTag, 7}}));
}

TEST(AccessList, ThatIsNotUnderstoodLeavesTheFileToItsOwner) {
  const std::string good = listOf({{kOwnerTag, 6}, {kOwningGroupTag, 4}, {kOtherTag, 4}});
  std::string otherVersion = good;
  otherVersion[0] = 3;
  const std::string bad[] = {"x", good.substr(0, good.size() - 1), otherVersion, listOf({{0x40, 4}}),
                             listOf({{kOtherTag, 8}})};
  for (const std::string& list : bad) {
    EXPECT_EQ(plainMode(0664, list), 0600U);
    EXPECT_THROW(limitedList(list, 0600), FileError);
  }
}

}  // namespace
}  // namespace cfgstore
