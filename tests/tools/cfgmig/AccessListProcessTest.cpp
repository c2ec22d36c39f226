// Who may read a result: nobody who may not read both configurations, access control lists included.

#include <gmock/gmock.h>
#include <sys/stat.h>
#include <sys/xattr.h>

#include <array>
#include <cstdint>

#include "ApplyFixture.h"

namespace {

constexpr char kList[] = "system.posix_acl_access";

// A list as the system keeps it: the owner reads and writes, user 1234 may do `user`, the group `group`, under `mask`,
// the others `other`.
std::string listOf(unsigned user, unsigned group, unsigned mask, unsigned other) {
  std::string list = {2, 0, 0, 0};
  const auto entry = [&](unsigned tag, unsigned permissions, std::uint32_t id) {
    for (const unsigned number : {tag, permissions}) {
      list += static_cast<char>(number);
      list += '\0';
    }
    for (int i = 0; i < 4; ++i) list += static_cast<char>(id >> 8 * i & 0xff);
  };
  constexpr std::uint32_t kNobody = 0xffffffff;
  entry(0x01, 6, kNobody);
  entry(0x02, user, 1234);
  entry(0x04, group, kNobody);
  entry(0x10, mask, kNobody);
  entry(0x20, other, kNobody);
  return list;
}

class ApplyWithAccessLists : public ApplyFixture {
 protected:
  bool give(const std::string& name, const std::string& list) const {
    return ::setxattr(workspace.path(name).c_str(), kList, list.data(), list.size(), 0) == 0;
  }
  std::string listAt(const std::string& name) const {
    std::array<char, 256> list{};
    const ssize_t size = ::getxattr(workspace.path(name).c_str(), kList, list.data(), list.size());
    return size < 0 ? "" : std::string(list.data(), static_cast<std::size_t>(size));
  }
};

TEST_F(ApplyWithAccessLists, GivesAResultInAFileOfItsOwnToThoseOnlyWhoMayReadBoth) {
  const std::string list = listOf(4, 0, 4, 0);
  if (!give("old.ldif", list)) GTEST_SKIP() << "the file system has no access control lists";
  EXPECT_EQ(workspace.mode("old.ldif"), 0640U) << "which is not the group's but the mask";
  const auto result = apply({"-o", workspace.path("out.ldif")});
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(workspace.mode("out.ldif"), 0600U);
  EXPECT_EQ(listAt("out.ldif"), "");
}

TEST_F(ApplyWithAccessLists, LimitsTheListOfAnotherFileThatTheResultGoesTo) {
  workspace.write("out.ldif", "another\n", 0664);
  if (!give("out.ldif", listOf(6, 4, 6, 4))) GTEST_SKIP() << "the file system has no access control lists";
  const auto result = apply({"-o", workspace.path("out.ldif")});
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(workspace.mode("out.ldif"), 0600U) << "as the old configuration";
  EXPECT_EQ(listAt("out.ldif"), listOf(0, 0, 0, 0));
}

TEST_F(ApplyWithAccessLists, KeepsTheListOfTheNewConfigurationAndOfItsBackup) {
  const std::string list = listOf(4, 0, 4, 0);
  if (!give("new.ldif", list)) GTEST_SKIP() << "the file system has no access control lists";
  const auto result = apply();
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(listAt("new.ldif"), list);
  const auto backups = workspace.namesAfter("new.ldif");
  ASSERT_EQ(backups.size(), 1U);
  EXPECT_EQ(listAt(backups[0]), list);
}

}  // namespace
