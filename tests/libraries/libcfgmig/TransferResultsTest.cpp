// Which rule passes the result of a transfer on as it is and which reduces it to 0 or 1, and which exit record carries
// it. The transfers themselves only ever answer 0 or 1, so this program has its own in their place: its definitions
// come before the library's when the program is loaded.

#include <climits>
#include <ostream>

#include "RulesFixture.h"

namespace {

int g_result = 0;                  // what the transfers answer
std::vector<std::string> g_calls;  // how they were called

int transfer(const std::string& call) {
  g_calls.push_back(call);
  return g_result;
}

}  // namespace

int ConfigFile::addCfgEntry(char* dn, ConfigFile*) { return transfer(std::string("addCfgEntry ") + dn); }
int ConfigFile::mergeCfgEntry(char* dn, ConfigFile*) { return transfer(std::string("mergeCfgEntry ") + dn); }
int ConfigFile::mergeChangeDnEntry(char* oldDn, char* newDn, ConfigFile*) {
  return transfer(std::string("mergeChangeDnEntry ") + oldDn + " to " + newDn);
}
int ConfigFile::replAddEntry(ConfigFile*) { return transfer("replAddEntry"); }

namespace {

using namespace rules;
using namespace traced;

enum class Answers { result, oneOrZero };
enum class Exit { result, zero };

struct Path {
  const char* name;
  const fake::Traced& method;
  int (ConfigFile::*rule)(char* dn, ConfigFile* old);
  std::string dn;
  std::string call;  // of the transfer
  Answers answers;
  Exit exit;
};

void PrintTo(const Path& path, std::ostream* out) { *out << path.name; }

const std::string kAudit = "CN=AUDIT,CN=CONFIGURATION";
const std::string kMovedAudit = "CN=AUDIT,CN=LOG MANAGEMENT,CN=CONFIGURATION";

const Path kPaths[] = {
    {"AddTo41", kAddTo41, &ConfigFile::addTo41, kOther, "addCfgEntry " + kOther, Answers::result, Exit::zero},
    {"AddTo51", kAddTo51, &ConfigFile::addTo51, kOther, "addCfgEntry " + kOther, Answers::oneOrZero, Exit::result},
    {"AddTo51Move", kAddTo51, &ConfigFile::addTo51, kLegacyChangeLog,
     "mergeChangeDnEntry " + kLegacyChangeLog + " to " + kChangeLog, Answers::oneOrZero, Exit::result},
    {"AddTo51Master", kAddTo51, &ConfigFile::addTo51, kMaster, "replAddEntry", Answers::oneOrZero, Exit::result},
    {"AddTo52", kAddTo52, &ConfigFile::addTo52, kOther, "addCfgEntry " + kOther, Answers::oneOrZero, Exit::result},
    {"AddTo52ChangeLog", kAddTo52, &ConfigFile::addTo52, kChangeLog, "addCfgEntry " + kChangeLog, Answers::oneOrZero,
     Exit::result},
    {"AddTo60", kAddTo60, &ConfigFile::addTo60, kOther, "addCfgEntry " + kOther, Answers::result, Exit::zero},
    {"AddTo60Audit", kAddTo60, &ConfigFile::addTo60, kAudit, "mergeChangeDnEntry " + kAudit + " to " + kMovedAudit,
     Answers::result, Exit::zero},
    {"MergeIn41", kMergeIn41, &ConfigFile::mergeIn41, kOther, "mergeCfgEntry " + kOther, Answers::oneOrZero,
     Exit::result},
    {"MergeIn41Directory", kMergeIn41, &ConfigFile::mergeIn41, kLegacyDirectory, "mergeCfgEntry " + kLegacyDirectory,
     Answers::oneOrZero, Exit::result},
    {"MergeIn51", kMergeIn51, &ConfigFile::mergeIn51, kOther, "mergeCfgEntry " + kOther, Answers::oneOrZero,
     Exit::result},
    {"MergeIn51Main", kMergeIn51, &ConfigFile::mergeIn51, kMain, "mergeCfgEntry " + kMain, Answers::oneOrZero,
     Exit::result},
    {"MergeIn52", kMergeIn52, &ConfigFile::mergeIn52, kOther, "mergeCfgEntry " + kOther, Answers::oneOrZero,
     Exit::result},
    {"MergeIn52Main", kMergeIn52, &ConfigFile::mergeIn52, kMain, "mergeCfgEntry " + kMain, Answers::result, Exit::zero},
    {"MergeIn52Directory", kMergeIn52, &ConfigFile::mergeIn52, kDirectory, "mergeCfgEntry " + kDirectory,
     Answers::oneOrZero, Exit::result},
    {"MergeIn60", kMergeIn60, &ConfigFile::mergeIn60, kOther, "mergeCfgEntry " + kOther, Answers::oneOrZero,
     Exit::result},
    {"MergeIn60Main", kMergeIn60, &ConfigFile::mergeIn60, kMain, "mergeCfgEntry " + kMain, Answers::oneOrZero,
     Exit::result},
};

class TransferResults : public RulesFixture, public testing::WithParamInterface<Path> {
 protected:
  void SetUp() override { g_calls.clear(); }
};

INSTANTIATE_TEST_SUITE_P(Paths, TransferResults, testing::ValuesIn(kPaths),
                         [](const testing::TestParamInfo<Path>& path) { return path.param.name; });

TEST_P(TransferResults, AreAnsweredAndReportedByEachRuleInItsWay) {
  const Path& path = GetParam();
  for (const int result : {0, 1, 2, 7, 256, -1, INT_MAX, INT_MIN}) {
    g_result = result;
    g_calls.clear();
    const int expected = path.answers == Answers::result ? result : static_cast<int>(result != 0);
    EXPECT_EQ(apply(path.rule, path.dn), expected) << result;
    EXPECT_EQ(g_calls, (Lines{path.call}));
    EXPECT_EQ(world.trace().front(), entryOf(path.method));
    EXPECT_EQ(world.trace().back(), exitOf(path.method, path.exit == Exit::result ? result : 0)) << result;
  }
}

class DispatchedResults : public RulesFixture {};

TEST_F(DispatchedResults, AreThoseOfTheRulesWithExitRecordsOfZero) {
  open();
  g_result = 7;
  const struct {
    const char* version;
    int added;
    int mainEntryMerged;
  } rows[] = {{"4.1", 7, 1}, {"5.1", 1, 1}, {"5.2", 1, 7}, {"6.0", 7, 1}, {"7.0", 0, 0}};
  for (const auto& row : rows) {
    EXPECT_EQ(newConfig().processNewEntry(modifiable(kOther), &oldConfig(), row.version), row.added) << row.version;
    EXPECT_EQ(world.trace().back(), exitOf(kProcessNewEntry, 0));
    EXPECT_EQ(newConfig().processUpdatedEntry(modifiable(kMain), &oldConfig(), row.version), row.mainEntryMerged)
        << row.version;
    EXPECT_EQ(world.trace().back(), exitOf(kProcessUpdatedEntry, 0));
  }
}

}  // namespace
