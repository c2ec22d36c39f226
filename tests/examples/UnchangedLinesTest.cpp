// A merge changes the lines that it has to change and no other. What may change is written down here line by line.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "ExampleFiles.h"

using namespace examples;
using testing::ElementsAreArray;

namespace {

// The lines of new.ldif that are not in merged.ldif any more, in their order. Every one holds a value that was set.
const std::vector<std::string> kReplacedLines60 = {
    "zor-slapdServerName: localhost",
    "zor-slapdAdminDN: cn=root",
    "zor-slapdAdminPW:: m0ZBS0UtU0VBTEVELUFETUlOLU9GLU5FVy1TRVJWRVKc",
    "zor-slapdsearchsizelmt: 500",
    "zor-slapdIdleTimeOut: 600",
    "zor-slapdContact: directory@localhost",
    "zor-slapdAdminThreads: 4",
    "zor-slapdAdminGroupEnabled: FALSE",
    "cn: FRONT END",
    "zor-slapdWorkerThreads: 24",
    "zor-slapdAclCacheSize: 50000",
    "zor-slapdEntryCacheSize: 100000",
    "zor-slapdListenAddress:: Ojo=",
    "zor-slapdListenBacklog: 128",
    "zor-slapdSecurity: SSLANDPLAIN",
    "zor-slapdKeyStore: /var/opt/zor/7.0/pki/default.p12",
    "zor-slapdKeyStorePW:: m0ZBS0UtU0VBTEVELUtFWS1TVE9SRS1PRi1ORVctU0VSVkVSnA==",
    "zor-slapdCertLabel: server default",
    "zor-slapdRevocationHost: localhost",
    "zor-slapdDigestRealm: localhost",
    "zor-slapdEventsPerConn: 100",
    "zor-slapdPwMinLength: 12",
    "zor-slapdPwMaxAgeDays: 0",
    "zor-slapdPwLockAfter: 5",
    "zor-slapdLogOptions: m",
    "zor-audit: FALSE",
    "zor-auditFailedOnly: TRUE",
    "zor-auditChangeOps: FALSE",
    "zor-auditExtendedOps: FALSE",
    "zor-auditSkipDn: cn=nobody",
    "zor-audit: FALSE",
    "zor-slapdMaxPendingChangesDisplayed: 200",
    "zor-slapdSchemaCheck: V3",
    "zor-slapdDbName: zordb",
    "zor-slapdDbAlias: zordbal",
    "zor-slapdDbInstance: zorinst",
    "zor-slapdDbLocation: /home/zorinst",
    "zor-slapdDbUserID: zorinst",
    "zor-slapdDbUserPW: {sealed}fake-database-of-new-server",
    "zor-slapdDbConnections: 20",
    "zor-slapdIndexKinds: equality",
    "zor-slapdEnabled: TRUE",
    "zor-slapdControlMaxOpen: 3",
    "zor-slapdSortKeyLimit: 3",
    "zor-slapdMonitorSecs: 30",
    "zor-slapdBackupDir: /var/opt/zor/7.0/backup",
    "zor-slapdBackupKeep: 7",
};

// Lines that were taken away and put in at one place.
struct Hunk {
  std::vector<std::string> removed;
  std::vector<std::string> added;
};

// A shortest way from one text to the other, found over the longest common subsequence of their lines.
std::vector<Hunk> differences(const std::vector<std::string>& from, const std::vector<std::string>& to) {
  std::vector<std::vector<std::size_t>> common(from.size() + 1, std::vector<std::size_t>(to.size() + 1, 0));
  for (std::size_t i = from.size(); i-- > 0;) {
    for (std::size_t j = to.size(); j-- > 0;) {
      common[i][j] = from[i] == to[j] ? common[i + 1][j + 1] + 1 : std::max(common[i + 1][j], common[i][j + 1]);
    }
  }
  std::vector<Hunk> hunks;
  bool inHunk = false;
  const auto hunk = [&]() -> Hunk& {
    if (!inHunk) hunks.emplace_back();
    inHunk = true;
    return hunks.back();
  };
  std::size_t i = 0;
  std::size_t j = 0;
  while (i < from.size() || j < to.size()) {
    if (i < from.size() && j < to.size() && from[i] == to[j]) {
      inHunk = false;
      ++i;
      ++j;
    } else if (j == to.size() || (i < from.size() && common[i + 1][j] >= common[i][j + 1])) {
      hunk().removed.push_back(from[i++]);
    } else {
      hunk().added.push_back(to[j++]);
    }
  }
  return hunks;
}

std::string nameOf(const std::string& line) { return line.substr(0, line.find(':')); }

std::vector<Hunk> changes60() {
  return differences(linesOf(contentOf(folder("6.0") / "new.ldif")), linesOf(contentOf(folder("6.0") / "merged.ldif")));
}

TEST(MergedExample60, HasEveryOtherLineOfTheNewConfigurationInItsPlace) {
  std::vector<std::string> removed;
  for (const Hunk& hunk : changes60()) removed.insert(removed.end(), hunk.removed.begin(), hunk.removed.end());
  EXPECT_THAT(removed, ElementsAreArray(kReplacedLines60));
}

TEST(MergedExample60, HasANewLineOfTheSameAttributeWhereALineWasReplaced) {
  for (const Hunk& hunk : changes60()) {
    for (std::size_t i = 0; i < hunk.removed.size(); ++i) {
      const auto sameName = [&](const std::string& line) { return nameOf(line) == nameOf(hunk.removed[i]); };
      EXPECT_EQ(std::count_if(hunk.added.begin(), hunk.added.end(), sameName),
                std::count_if(hunk.removed.begin(), hunk.removed.end(), sameName))
          << hunk.removed[i];
    }
  }
}

// The sum of the README: 140 values are written, each on a line of its own, 47 of them in the place of another.
TEST(MergedExample60, HasOneLineMoreForEachValueThatReplacesNone) {
  const std::size_t before = shapeOf(contentOf(folder("6.0") / "new.ldif")).values;
  const std::size_t after = shapeOf(contentOf(folder("6.0") / "merged.ldif")).values;
  EXPECT_EQ(kReplacedLines60.size(), 47U);
  EXPECT_EQ(after, before + 140 - 47);
}

class MergedExample : public testing::TestWithParam<Merge> {
 protected:
  const std::vector<Hunk> changes = differences(linesOf(contentOf(folder(GetParam().version) / "new.ldif")),
                                                linesOf(contentOf(folder(GetParam().version) / GetParam().mergedFile)));
};

TEST_P(MergedExample, KeepsEveryComment) {
  for (const Hunk& hunk : changes) {
    for (const std::string& line : hunk.added) EXPECT_FALSE(line.starts_with('#')) << line;
    for (const std::string& line : hunk.removed) EXPECT_FALSE(line.starts_with('#')) << line;
  }
}

// Nothing is taken away from the new configuration but a value that another takes the place of.
TEST_P(MergedExample, HasALineOfTheSameSettingForEveryLineThatIsGone) {
  EXPECT_GT(changes.size(), 20U);
  for (const Hunk& hunk : changes) {
    for (const std::string& line : hunk.removed) {
      EXPECT_FALSE(line.starts_with("dn:")) << line;
      if (line.empty() || line.starts_with(' ')) continue;
      const auto sameName = [&](const std::string& other) { return nameOf(other) == nameOf(line); };
      EXPECT_TRUE(std::any_of(hunk.added.begin(), hunk.added.end(), sameName)) << line;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Examples, MergedExample, testing::ValuesIn(kMerges),
                         [](const auto& one) { return examples::nameOf(one.param); });

}  // namespace
