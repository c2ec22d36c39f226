// Settings of one value that the rules for 4.1, 5.1 and 5.2 sources take out of an old entry before it is merged: the
// first value of each, in the order of the table. Where a message names another attribute than the one concerned,
// it is intended.

#include "RulesFixture.h"

namespace {

using namespace rules;
using namespace traced;

struct Dropped {
  std::string attribute;
  std::string reportedAs;
};

struct DropRule {
  const char* name;
  const fake::Traced& method;
  int (ConfigFile::*mergeIn)(char* dn, ConfigFile* old);
  const std::string& dn;
  const char* otherSpelling;
  std::string failure;  // the message, up to the attribute's name
  std::string failed;   // between that name and the code
  std::vector<Dropped> dropped;
  bool readsPlugins = false;     // then looks for the change-log plug-in
  bool exitCarriesZero = false;  // whatever the result is
};

void PrintTo(const DropRule& rule, std::ostream* out) { *out << rule.name; }

const DropRule kRules[] = {
    {.name = "DirectoryBackend41",
     .method = kMergeIn41,
     .mergeIn = &ConfigFile::mergeIn41,
     .dn = kLegacyDirectory,
     .otherSpelling = "CN=DIRECTORY,CN=RDBM BACKENDS,CN=ZOR HALVORN,CN=SCHEMAS,CN=CONFIGURATION",
     .failure = "mergeIn41: delValue for ",
     .failed = " returned rc=",
     .dropped = {{"zor-slapdDbName", "zor-slapdDbName"},
                 {"zor-slapdDbInstance", "zor-slapdDbInstance"},
                 {"zor-slapdDbLocation", "zor-slapdDbLocation"},
                 {"zor-slapdDbUserPW", "zor-slapdDbUserPW"},
                 {"zor-slapdDbUserID", "zor-slapdDbUserID"}},
     .readsPlugins = true},
    {.name = "MainEntry51",
     .method = kMergeIn51,
     .mergeIn = &ConfigFile::mergeIn51,
     .dn = kMain,
     .otherSpelling = "cn=Configuration",
     .failure = "mergeIn51: delValue for ",
     .failed = " has returned rc=",
     .dropped = {{"zor-slapdSortSrchAllowNonAdmin", "zor-slapdSortSrchAllowNonAdmin"},
                 {"zor-slapdPagedResAllowNonAdmin", "zor-slapdPagedResAllowNonAdmin"},
                 {"zor-slapdPagedResLmt", "zor-slapdSortSrchAllowNonAdmin"},
                 {"zor-slapdIdleTimeOut", "zor-slapdIdleTimeOut"},
                 {"zor-slapdSortKeyLimit", "zor-slapdSortKeyLimit"},
                 {"zor-slapdErrorLog", "zor-slapdErrorLog"},
                 {"zor-slapdPagedSizeLmt", "zor-slapdPagedSizeLmt"},
                 {"zor-slapdPagedResAllowAnon", "zor-slapdPagedResAllowAnon"},
                 {"zor-slapdSortSrchAllowAnon", "zor-slapdSortSrchAllowAnon"}}},
    {.name = "MainEntry52",
     .method = kMergeIn52,
     .mergeIn = &ConfigFile::mergeIn52,
     .dn = kMain,
     .otherSpelling = "cn=Configuration",
     .failure = "mergeIn52: delValue for ",
     .failed = " has returned rc=",
     .dropped = {{"zor-slapdSupportedWebAdmVersion", "zor-slapdSupportedWebAdmVersion"},
                 {"zor-slapdACLAccess", "zor-slapdACLAccess"},
                 {"zor-slapdPageSizeLmt", "zor-slapdPagedSizeLmt"}},
     .exitCarriesZero = true},
    {.name = "DirectoryBackend52",
     .method = kMergeIn52,
     .mergeIn = &ConfigFile::mergeIn52,
     .dn = kDirectory,
     .otherSpelling = "cn=Directory, cn=RDBM Backends, cn=Zor Directory, cn=Schemas, cn=Configuration",
     .failure = "mergeIn52: delValue for ",
     .failed = " has returned rc=",
     .dropped = {{"zor-slapdPageSizeLmt", "zor-slapdPageSizeLmt"}}},
};

class Drops : public RulesFixture, public testing::WithParamInterface<DropRule> {
 protected:
  const DropRule& rule() const { return GetParam(); }

  int merge() { return apply(rule().mergeIn, rule().dn); }

  void putEveryAttribute() {
    std::vector<fake::Attribute> attributes;
    for (const Dropped& dropped : rule().dropped) {
      attributes.push_back({dropped.attribute, {"value of " + dropped.attribute, "second"}});
    }
    put(rule().dn, attributes);
    newStore().put(rule().dn, {});
  }

  std::string read(const Dropped& dropped, int rc = 0) const {
    return call("old.getParamValueInfo", rule().dn, dropped.attribute, rc);
  }
  std::string deletion(const Dropped& dropped, const std::string& value, int rc = 0) const {
    return call("old.delValue", rule().dn, dropped.attribute + ", [" + value + "]", rc);
  }
  std::string report(const Dropped& dropped, int rc) const {
    return messageOf(rule().method, rule().failure + dropped.reportedAs + rule().failed + std::to_string(rc) + "\n");
  }

  // What the rule does after the drops, when there are no plug-ins.
  Lines withPluginRead(Lines lines) const {
    if (rule().readsPlugins) {
      lines.push_back(call("old.getParamArrayValueInfo", rule().dn, "zor-slapdPlugin", 16));
    }
    return lines;
  }
};

INSTANTIATE_TEST_SUITE_P(Rules, Drops, testing::ValuesIn(kRules),
                         [](const testing::TestParamInfo<DropRule>& rule) { return rule.param.name; });

TEST_P(Drops, DeletesTheFirstValueOfEachAttributeInOrder) {
  putEveryAttribute();
  EXPECT_EQ(merge(), 1);
  Lines expected;
  for (const Dropped& dropped : rule().dropped) {
    expected.push_back(read(dropped));
    expected.push_back(deletion(dropped, "value of " + dropped.attribute));
  }
  EXPECT_EQ(ruleCalls(), withPluginRead(expected));
  EXPECT_EQ(ruleMessages(rule().method), Lines());
  for (const Dropped& dropped : rule().dropped) {
    EXPECT_EQ(oldStore().values(rule().dn, dropped.attribute), (Lines{"second"}));
    EXPECT_EQ(newStore().values(rule().dn, dropped.attribute), (Lines{"second"}));
  }
}

TEST_P(Drops, KeepsTheNewServersOwnValues) {
  std::vector<fake::Attribute> oldValues;
  std::vector<fake::Attribute> newValues;
  for (const Dropped& dropped : rule().dropped) {
    oldValues.push_back({dropped.attribute, {"old"}});
    newValues.push_back({dropped.attribute, {"new"}});
  }
  put(rule().dn, oldValues);
  newStore().put(rule().dn, newValues);
  EXPECT_EQ(merge(), 1);
  for (const Dropped& dropped : rule().dropped) {
    EXPECT_EQ(oldStore().find(rule().dn, dropped.attribute), nullptr);
    EXPECT_EQ(newStore().values(rule().dn, dropped.attribute), (Lines{"new"}));
  }
}

TEST_P(Drops, DeletesNothingOfAnAbsentAttributeButAsksForIt) {
  put(rule().dn, {{"zor-other", {"1"}}});
  newStore().put(rule().dn, {});
  EXPECT_EQ(merge(), 1);
  Lines expected;
  for (const Dropped& dropped : rule().dropped) {
    expected.push_back(read(dropped));
    expected.push_back(deletion(dropped, ""));
  }
  EXPECT_EQ(ruleCalls(), withPluginRead(expected));
  EXPECT_EQ(ruleMessages(rule().method), Lines());
  EXPECT_EQ(newStore().values(rule().dn, "zor-other"), (Lines{"1"}));
}

TEST_P(Drops, SkipsAnUnreadableAttributeSilently) {
  for (const auto outParameters : {fake::OutParameters::cleared, fake::OutParameters::untouched}) {
    oldStore().clear();
    newStore().clear();
    putEveryAttribute();
    world.faults().clear();
    world.faults().fail({.store = "old", .operation = "getParamValueInfo", .nth = 0}, 80, outParameters);
    EXPECT_EQ(merge(), 1);
    Lines expected;
    for (const Dropped& dropped : rule().dropped) {
      expected.push_back(read(dropped, 80));
    }
    EXPECT_EQ(ruleCalls(), withPluginRead(expected));
    EXPECT_EQ(ruleMessages(rule().method), Lines());
  }
}

TEST_P(Drops, AnUnreadableAttributeDoesNotStopTheOthers) {
  putEveryAttribute();
  world.faults().fail({.store = "old", .operation = "getParamValueInfo"}, 80);
  EXPECT_EQ(merge(), 1);
  Lines expected = {read(rule().dropped.front(), 80)};
  for (std::size_t i = 1; i < rule().dropped.size(); ++i) {
    expected.push_back(read(rule().dropped[i]));
    expected.push_back(deletion(rule().dropped[i], "value of " + rule().dropped[i].attribute));
  }
  EXPECT_EQ(ruleCalls(), withPluginRead(expected));
}

TEST_P(Drops, ReportsEachFailedDeletionAndGoesOn) {
  putEveryAttribute();
  world.faults().fail({.store = "old", .operation = "delValue", .nth = 0}, 53);
  EXPECT_EQ(merge(), 1);
  Lines calls;
  Lines messages;
  for (const Dropped& dropped : rule().dropped) {
    calls.push_back(read(dropped));
    calls.push_back(deletion(dropped, "value of " + dropped.attribute, 53));
    messages.push_back(report(dropped, 53));
  }
  EXPECT_EQ(ruleCalls(), withPluginRead(calls));
  EXPECT_EQ(ruleMessages(rule().method), messages);
  for (const Dropped& dropped : rule().dropped) {
    EXPECT_EQ(newStore().values(rule().dn, dropped.attribute).size(), 2U) << "what was not deleted is carried over";
  }
}

TEST_P(Drops, ReportsTheOneThatFailed) {
  for (const Dropped& failing : rule().dropped) {
    oldStore().clear();
    newStore().clear();
    putEveryAttribute();
    world.faults().clear();
    world.faults().fail({.store = "old", .operation = "delValue", .attribute = failing.attribute}, 7);
    EXPECT_EQ(merge(), 1);
    EXPECT_EQ(ruleMessages(rule().method), (Lines{report(failing, 7)})) << failing.attribute;
  }
}

TEST_P(Drops, SaysNothingUnderAMaskWithoutMessages) {
  tracesPartsOfMethods();
  putEveryAttribute();
  world.faults().fail({.store = "old", .operation = "delValue", .nth = 0}, 53);
  open();
  world.setEvents(~0x4000000U);
  EXPECT_EQ((newConfig().*rule().mergeIn)(modifiable(rule().dn), &oldConfig()), 1);
  EXPECT_EQ(world.messages(), Lines());
}

TEST_P(Drops, GoesByTheStoresComparisonAndItsOwnSpellingOfTheDn) {
  putEveryAttribute();
  open();
  EXPECT_EQ((newConfig().*rule().mergeIn)(modifiable(rule().otherSpelling), &oldConfig()), 1);
  const Dropped& first = rule().dropped.front();
  ASSERT_GE(ruleCalls().size(), 2U);
  EXPECT_EQ(ruleCalls()[0], read(first));
  EXPECT_EQ(ruleCalls()[1], deletion(first, "value of " + first.attribute));
  EXPECT_EQ(world.calls()[ruleCalls().size()], std::string("old.getFirstEntry(") + rule().otherSpelling + ") = 0");
}

TEST_P(Drops, AnswersAsTheTransferDoes) {
  put(rule().dn, {{"zor-other", {"1"}}});
  newStore().put(rule().dn, {{"zor-other", {"2"}}});
  EXPECT_EQ(merge(), 1);
  EXPECT_EQ(world.trace().front(), entryOf(rule().method));
  EXPECT_EQ(world.trace().back(), exitOf(rule().method, rule().exitCarriesZero ? 0 : 1));
  oldStore().setValue(rule().dn.c_str(), "zor-other", "3");
  world.forgetCalls();
  world.faults().fail({.store = "new", .operation = "setValue", .attribute = "zor-other"}, 53);
  EXPECT_EQ((newConfig().*rule().mergeIn)(modifiable(rule().dn), &oldConfig()), 0);
  EXPECT_EQ(world.trace().back(), exitOf(rule().method, 0));
}

TEST_P(Drops, FailedDeletionsDoNotChangeTheResult) {
  put(rule().dn, {});
  newStore().put(rule().dn, {});
  world.faults().fail({.store = "old", .operation = "delValue", .nth = 0}, 53);
  EXPECT_EQ(merge(), 1);
  EXPECT_EQ(ruleMessages(rule().method).size(), rule().dropped.size());
}

TEST_P(Drops, AnEntryThatCannotBeOpenedFailsAfterTheDrops) {
  putEveryAttribute();
  world.faults().fail({.store = "old", .operation = "getFirstEntry"}, 80);
  EXPECT_EQ(merge(), 0);
  EXPECT_EQ(ruleCalls().size(), 2 * rule().dropped.size() + (rule().readsPlugins ? 1U : 0U));
  EXPECT_EQ(world.trace().back(), exitOf(rule().method, 0));
}

}  // namespace
