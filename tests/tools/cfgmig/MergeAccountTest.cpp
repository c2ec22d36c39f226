// Tests of the account of a merge, made from records and writes as a merge makes them.

#include "MergeAccount.h"

#include <gmock/gmock.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "TracedMethod.h"

namespace {

using namespace tool;
using cfgstore::Operation;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr unsigned long kMergeConfigFiles = 0x51010500;
constexpr unsigned long kAdditionalChecks = 0x51010600;
constexpr unsigned long kAddTo41 = 0x51010900;
constexpr unsigned long kAddTo51 = 0x51010a00;
constexpr unsigned long kCheck51 = 0x51010e00;
constexpr unsigned long kAddTo60 = 0x51010c00;
constexpr unsigned long kMergeIn60 = 0x51011400;
constexpr unsigned long kProcessIncSchema = 0x51012000;

constexpr int kDone = 0;
constexpr int kNoSuchAttribute = 16;
constexpr int kNoSuchEntry = 32;

// A merge as the account sees it.
class Merge {
 public:
  Merge(const std::vector<std::string>& oldEntries, const std::vector<std::string>& newEntries)
      : m_account(oldEntries, newEntries) {}

  Merge& enter(unsigned long method) {
    ldtr::Record record;
    record.kind = ldtr::RecordKind::entry;
    record.identifier = method;
    m_account.record(record);
    return *this;
  }

  Merge& leave(unsigned long method, long result = 0) {
    ldtr::Record record;
    record.kind = ldtr::RecordKind::exit;
    record.identifier = method;
    record.result = result;
    m_account.record(record);
    return *this;
  }

  Merge& say(unsigned long method, const std::string& message) {
    ldtr::Record record;
    record.identifier = method;
    record.message = message;
    m_account.record(record);
    return *this;
  }

  Merge& write(Side side, Operation operation, const char* dn, const char* attribute,
               const std::vector<std::string_view>& values, int rc = kDone, bool changed = true) {
    m_account.write(side, {operation, dn, attribute, values, rc, rc == kDone && changed});
    return *this;
  }
  Merge& add(const char* dn, const char* attribute, int rc = kDone, bool changed = true) {
    return write(Side::newConfiguration, Operation::addValue, dn, attribute, {"value"}, rc, changed);
  }
  Merge& set(const char* dn, const char* attribute, std::string_view value, int rc = kDone) {
    return write(Side::newConfiguration, Operation::setValue, dn, attribute, {value}, rc);
  }
  Merge& drop(const char* dn, const char* attribute, std::string_view value, int rc = kDone) {
    return write(Side::oldConfiguration, Operation::delValue, dn, attribute, {value}, rc);
  }

  // A transfer that does nothing but end.
  Merge& transfer(unsigned long method, long result = 1) { return enter(method).leave(method, result); }

  // A common entry that is merged without a change.
  Merge& mergeUnchanged() {
    enter(traced::kProcessUpdatedEntry).transfer(traced::kMergeCfgEntry);
    return leave(traced::kProcessUpdatedEntry);
  }

  Account finish() { return m_account.finish(); }

 private:
  MergeAccount m_account;
};

TEST(MergeAccount, OfNothingIsEmpty) {
  const Account account = Merge({}, {"CN=A"}).finish();
  EXPECT_THAT(account.fates, IsEmpty());
  EXPECT_THAT(account.losses, IsEmpty());
  EXPECT_THAT(account.messages, IsEmpty());
  EXPECT_EQ(account.valuesWritten, 0U);
}

TEST(MergeAccount, GivesEachOldEntryItsFateInTheOrderOfTheOldInventory) {
  Merge merge({"CN=COMMON", "CN=NEW", "CN=MOVED", "CN=RULE", "CN=COMMON2"}, {"CN=COMMON2", "CN=COMMON", "CN=OTHER"});
  merge.enter(kMergeConfigFiles);
  merge.enter(traced::kProcessNewEntry).transfer(traced::kAddCfgEntry).leave(traced::kProcessNewEntry);
  merge.enter(traced::kProcessNewEntry).transfer(traced::kMergeChangeDnEntry).leave(traced::kProcessNewEntry);
  merge.enter(traced::kProcessNewEntry).set("CN=ELSEWHERE", "zor-audit", "true").leave(traced::kProcessNewEntry);
  merge.mergeUnchanged().mergeUnchanged().leave(kMergeConfigFiles, 1);

  const Account account = merge.finish();
  EXPECT_THAT(account.fates, ElementsAre(Fate::merged, Fate::added, Fate::moved, Fate::moved, Fate::merged));
  EXPECT_EQ(account.of(Fate::added), 1U);
  EXPECT_EQ(account.of(Fate::merged), 2U);
  EXPECT_EQ(account.of(Fate::moved), 2U);
  EXPECT_EQ(account.of(Fate::skipped), 0U);
  EXPECT_THAT(account.losses, IsEmpty());
}

TEST(MergeAccount, ComparesDnsExactlyAsTheDriverDoes) {
  Merge merge({"cn=a"}, {"CN=A"});
  merge.enter(traced::kProcessNewEntry).transfer(traced::kAddCfgEntry).leave(traced::kProcessNewEntry);
  EXPECT_THAT(merge.finish().fates, ElementsAre(Fate::added));
}

TEST(MergeAccount, CountsAnEntryOnceThatTheNewInventoryHoldsTwice) {
  Merge merge({"CN=A"}, {"CN=A", "CN=A"});
  merge.mergeUnchanged().mergeUnchanged();
  EXPECT_THAT(merge.finish().fates, ElementsAre(Fate::merged));
}

TEST(MergeAccount, LeavesAnEntryBehindOfWhichItsRuleCarriesNothing) {
  Merge merge({"CN=RULE"}, {});
  merge.enter(traced::kProcessNewEntry).enter(kAddTo60);
  merge.write(Side::newConfiguration, Operation::setValue, "CN=X", "zor-audit", {}, 89);
  merge.leave(kAddTo60, 1).leave(traced::kProcessNewEntry);
  const Account account = merge.finish();
  EXPECT_THAT(account.fates, ElementsAre(Fate::left));
  EXPECT_THAT(account.losses, IsEmpty()) << "there was nothing to carry";
}

TEST(MergeAccount, CountsTheValuesThatTheNewConfigurationDidNotHold) {
  Merge merge({"CN=A"}, {"CN=A"});
  merge.enter(traced::kProcessUpdatedEntry).enter(traced::kMergeCfgEntry);
  merge.add("CN=A", "zor-slapdSuffix").add("CN=A", "zor-slapdSuffix", kDone, false).set("CN=A", "zor-x", "1");
  merge.leave(traced::kMergeCfgEntry, 1).leave(traced::kProcessUpdatedEntry);
  EXPECT_EQ(merge.finish().valuesWritten, 2U);
}

TEST(MergeAccount, CountsTheValuesOfACreatedEntryOnce) {
  Merge merge({"CN=A"}, {});
  merge.enter(traced::kProcessNewEntry).enter(traced::kAddCfgEntry);
  merge.write(Side::newConfiguration, Operation::addEntry, "CN=A", "", {"A", "container", "TOP"});
  merge.add("CN=A", "cn", kDone, false).add("CN=A", "zor-x");
  merge.leave(traced::kAddCfgEntry, 1).leave(traced::kProcessNewEntry);
  EXPECT_EQ(merge.finish().valuesWritten, 4U);
}

TEST(MergeAccount, TellsAMovedValueFromADroppedOne) {
  Merge merge({"CN=A"}, {"CN=A"});
  merge.enter(kProcessIncSchema).drop("CN=S", "zor-slapdIncludeSchema", "V3.config.at").leave(kProcessIncSchema, 1);
  merge.enter(traced::kProcessUpdatedEntry).enter(kMergeIn60);
  merge.drop("CN=A", "zor-slapdPort", "389").drop("CN=A", "zor-level", "h").set("CN=LOG", "zor-options", "h");
  merge.drop("CN=A", "zor-plugin", "x limit=5").set("CN=REPL", "zor-limit", "5");
  merge.transfer(traced::kMergeCfgEntry).leave(kMergeIn60, 1).leave(traced::kProcessUpdatedEntry);
  const Account account = merge.finish();
  EXPECT_EQ(account.valuesDropped, 3U) << "the schema file, the port, the plug-in";
  EXPECT_EQ(account.valuesMoved, 1U) << "the level";
  EXPECT_EQ(account.valuesWritten, 2U);
}

TEST(MergeAccount, DoesNotCallAValueMovedThatTheNewConfigurationRefused) {
  Merge merge({"CN=A"}, {"CN=A"});
  merge.enter(traced::kProcessUpdatedEntry).enter(kMergeIn60);
  merge.drop("CN=A", "zor-pending", "20").set("CN=REPLICATION", "zor-pending", "20", kNoSuchEntry);
  merge.transfer(traced::kMergeCfgEntry).leave(kMergeIn60, 1).leave(traced::kProcessUpdatedEntry);
  const Account account = merge.finish();
  EXPECT_EQ(account.valuesDropped, 0U);
  EXPECT_EQ(account.valuesMoved, 0U);
  ASSERT_THAT(account.losses, SizeIs(1));
  const Loss& loss = account.losses[0];
  EXPECT_EQ(loss.kind, Loss::Kind::write);
  EXPECT_EQ(loss.method, "mergeIn60");
  EXPECT_EQ(loss.operation, "setValue");
  EXPECT_EQ(loss.entry, "CN=A");
  EXPECT_EQ(loss.target, "CN=REPLICATION");
  EXPECT_EQ(loss.attribute, "zor-pending");
  EXPECT_EQ(loss.code, kNoSuchEntry);
  EXPECT_FALSE(loss.restNotCarried);
}

TEST(MergeAccount, ReportsAWriteThatEndedATransferOnce) {
  Merge merge({"CN=A"}, {"CN=A"});
  merge.enter(traced::kProcessUpdatedEntry).enter(traced::kMergeCfgEntry);
  merge.add("CN=A", "zor-x").add("CN=A", "zor-y", 53);
  merge.say(traced::kMergeCfgEntry, "mergeCfgEntry: addValue returned rc=53, i=0\n");
  merge.leave(traced::kMergeCfgEntry, 0).leave(traced::kProcessUpdatedEntry);
  const Account account = merge.finish();
  EXPECT_THAT(account.fates, ElementsAre(Fate::merged));
  ASSERT_THAT(account.losses, SizeIs(1));
  EXPECT_EQ(account.losses[0].kind, Loss::Kind::write);
  EXPECT_EQ(account.losses[0].attribute, "zor-y");
  EXPECT_EQ(account.losses[0].code, 53);
  EXPECT_TRUE(account.losses[0].restNotCarried);
}

TEST(MergeAccount, KnowsThatAddingAnEntryGoesOnAfterARefusedValue) {
  Merge merge({"CN=A"}, {});
  merge.enter(traced::kProcessNewEntry).enter(traced::kAddCfgEntry);
  merge.write(Side::newConfiguration, Operation::addEntry, "CN=A", "", {"A", "container", "TOP"});
  merge.add("CN=A", "zor-x", 53).add("CN=A", "zor-y").add("CN=A", "zor-z", 53);
  merge.leave(traced::kAddCfgEntry, 0).leave(traced::kProcessNewEntry);
  const Account account = merge.finish();
  EXPECT_THAT(account.fates, ElementsAre(Fate::added));
  ASSERT_THAT(account.losses, SizeIs(2));
  EXPECT_EQ(account.losses[0].attribute, "zor-x");
  EXPECT_FALSE(account.losses[0].restNotCarried);
  EXPECT_EQ(account.losses[1].attribute, "zor-z");
  EXPECT_FALSE(account.losses[1].restNotCarried);
}

TEST(MergeAccount, SkipsAnEntryThatCouldNotBeCreated) {
  Merge merge({"CN=A"}, {});
  merge.enter(traced::kProcessNewEntry).enter(traced::kAddCfgEntry);
  merge.write(Side::newConfiguration, Operation::addEntry, "CN=A", "", {"A", "container", "TOP"}, 53);
  merge.say(traced::kAddCfgEntry, "addCfgEntry: addEntry(1) returned rc=53\n");
  merge.leave(traced::kAddCfgEntry, 0).leave(traced::kProcessNewEntry);
  const Account account = merge.finish();
  EXPECT_THAT(account.fates, ElementsAre(Fate::skipped));
  ASSERT_THAT(account.losses, SizeIs(1));
  EXPECT_EQ(account.losses[0].operation, "addEntry");
  EXPECT_EQ(account.losses[0].attribute, "");
  EXPECT_TRUE(account.losses[0].restNotCarried);
}

TEST(MergeAccount, ExplainsATransferThatEndedAtAReadByTheLibrarysMessage) {
  Merge merge({"CN=AUDIT"}, {"CN=OTHER"});
  merge.enter(traced::kProcessNewEntry).enter(kAddTo60).enter(traced::kMergeChangeDnEntry);
  merge.set("CN=AUDIT,CN=LOG MANAGEMENT", "zor-audit", "true");
  merge.say(traced::kMergeChangeDnEntry, "mergeChangeDnEntry: getParamArrayValueInfo(2) returned rc=16\n");
  merge.say(0, "ConfigFile::freeParamVals passed a null pointer.\n");
  merge.leave(traced::kMergeChangeDnEntry, 0).leave(kAddTo60).leave(traced::kProcessNewEntry);
  const Account account = merge.finish();
  EXPECT_THAT(account.fates, ElementsAre(Fate::moved));
  ASSERT_THAT(account.losses, SizeIs(1));
  const Loss& loss = account.losses[0];
  EXPECT_EQ(loss.kind, Loss::Kind::endedEarly);
  EXPECT_EQ(loss.method, "mergeChangeDnEntry");
  EXPECT_EQ(loss.entry, "CN=AUDIT");
  EXPECT_EQ(loss.target, "CN=AUDIT,CN=LOG MANAGEMENT");
  EXPECT_EQ(loss.reason, "getParamArrayValueInfo(2) returned rc=16");
  EXPECT_EQ(loss.code, kNoSuchAttribute);
  EXPECT_TRUE(loss.restNotCarried);
}

TEST(MergeAccount, SkipsAnEntryWhoseTransferEndedBeforeItWroteAnything) {
  Merge merge({"CN=AUDIT", "CN=A"}, {"CN=A"});
  merge.enter(traced::kProcessNewEntry).enter(traced::kMergeChangeDnEntry);
  merge.say(traced::kMergeChangeDnEntry, "mergeChangeDnEntry: getParamArrayValueInfo(2) returned rc=32\n");
  merge.leave(traced::kMergeChangeDnEntry, 0).leave(traced::kProcessNewEntry);
  merge.enter(traced::kProcessUpdatedEntry).transfer(traced::kMergeCfgEntry, 0).leave(traced::kProcessUpdatedEntry);
  const Account account = merge.finish();
  EXPECT_THAT(account.fates, ElementsAre(Fate::skipped, Fate::skipped));
  ASSERT_THAT(account.losses, SizeIs(2));
  EXPECT_EQ(account.losses[0].target, "") << "where it was to go is only seen from what is written";
  EXPECT_EQ(account.losses[1].target, "CN=A");
  EXPECT_EQ(account.losses[1].code, std::nullopt) << "no message told the code";
}

TEST(MergeAccount, ReportsACommonEntryThatItsRuleGaveUp) {
  Merge merge({"CN=SCHEMA"}, {"CN=SCHEMA"});
  merge.enter(traced::kProcessUpdatedEntry).enter(kMergeIn60);
  merge.say(kMergeIn60, "mergeIn60: getParamArrayValueInfo for zor-slapdSchemaAdditions returned rc=16\n");
  merge.leave(kMergeIn60, 0).leave(traced::kProcessUpdatedEntry);
  const Account account = merge.finish();
  EXPECT_THAT(account.fates, ElementsAre(Fate::skipped));
  ASSERT_THAT(account.losses, SizeIs(1));
  const Loss& loss = account.losses[0];
  EXPECT_EQ(loss.kind, Loss::Kind::givenUp);
  EXPECT_EQ(loss.method, "mergeIn60");
  EXPECT_EQ(loss.entry, "CN=SCHEMA");
  EXPECT_EQ(loss.target, "CN=SCHEMA");
  EXPECT_EQ(loss.reason, "getParamArrayValueInfo for zor-slapdSchemaAdditions returned rc=16");
  EXPECT_EQ(loss.code, kNoSuchAttribute);
}

TEST(MergeAccount, ReportsAnEntryThatWasGivenUpInSilence) {
  Merge merge({"CN=A"}, {"CN=A"});
  merge.enter(traced::kProcessUpdatedEntry).leave(traced::kProcessUpdatedEntry);
  const Account account = merge.finish();
  ASSERT_THAT(account.losses, SizeIs(1));
  EXPECT_EQ(account.losses[0].method, "processUpdatedEntry");
  EXPECT_EQ(account.losses[0].reason, "");
}

TEST(MergeAccount, ReportsAFailureOutsideAnyEntry) {
  Merge merge({}, {});
  merge.enter(kProcessIncSchema).drop("CN=S", "zor-slapdIncludeSchema", "x", 53).leave(kProcessIncSchema, 1);
  const Account account = merge.finish();
  ASSERT_THAT(account.losses, SizeIs(1));
  EXPECT_EQ(account.losses[0].method, "processIncSchema");
  EXPECT_EQ(account.losses[0].entry, "");
  EXPECT_EQ(account.losses[0].reason, "in the old configuration");
  EXPECT_EQ(account.valuesDropped, 0U);
}

TEST(MergeAccount, DoesNotReportThatThereWasNothingToCarry) {
  Merge merge({"CN=A"}, {"CN=A"});
  merge.enter(traced::kProcessUpdatedEntry).enter(kMergeIn60);
  merge.write(Side::oldConfiguration, Operation::delValue, "CN=A", "zor-pending", {});
  merge.write(Side::newConfiguration, Operation::setValue, "CN=REPL", "zor-pending", {}, 89);
  merge.transfer(traced::kMergeCfgEntry).leave(kMergeIn60, 1).leave(traced::kProcessUpdatedEntry);
  const Account account = merge.finish();
  EXPECT_THAT(account.losses, IsEmpty());
  EXPECT_EQ(account.valuesDropped, 0U);
}

TEST(MergeAccount, TellsAnEntryLeftBehindFromOneThatItsRuleCouldNotCarry) {
  Merge merge({"CN=CHANGE LOG", "CN=ADMIN AUDIT"}, {});
  merge.enter(traced::kProcessNewEntry).enter(kAddTo41).leave(kAddTo41).leave(traced::kProcessNewEntry);
  merge.enter(traced::kProcessNewEntry).enter(kAddTo60).set("CN=X", "zor-audit", "true", kNoSuchEntry);
  merge.leave(kAddTo60, 1).leave(traced::kProcessNewEntry);
  const Account account = merge.finish();
  EXPECT_THAT(account.fates, ElementsAre(Fate::left, Fate::skipped));
  EXPECT_THAT(account.losses, SizeIs(1)) << "what is left behind by rule is no loss";
}

TEST(MergeAccount, CallsAnEntryRebuiltThatIsMadeAnew) {
  Merge merge({"CN=MASTER SERVER"}, {});
  merge.enter(traced::kProcessNewEntry).enter(kAddTo51).enter(traced::kReplAddEntry);
  merge.write(Side::newConfiguration, Operation::addEntry, "CN=MASTER SERVER", "", {"MASTER SERVER", "TOP", "x"});
  merge.add("CN=MASTER SERVER", "zor-slapdMasterDN").add("CN=MASTER SERVER", "zor-slapdMasterPW");
  merge.leave(traced::kReplAddEntry, 1).leave(kAddTo51, 1).leave(traced::kProcessNewEntry);
  const Account account = merge.finish();
  EXPECT_THAT(account.fates, ElementsAre(Fate::rebuilt));
  EXPECT_THAT(account.losses, IsEmpty());
  EXPECT_THAT(account.addedByRule, IsEmpty()) << "the old entry stands for it";
  EXPECT_EQ(account.valuesWritten, 5U);
}

TEST(MergeAccount, ReportsAnEntryThatIsRebuiltWithoutAnIdentity) {
  Merge merge({"CN=MASTER SERVER"}, {});
  merge.enter(traced::kProcessNewEntry).enter(traced::kReplAddEntry);
  merge.write(Side::newConfiguration, Operation::addEntry, "CN=MASTER SERVER", "", {"MASTER SERVER", "TOP", "x"});
  merge.write(Side::newConfiguration, Operation::addValue, "CN=MASTER SERVER", "zor-slapdMasterDN", {}, 89);
  merge.say(traced::kReplAddEntry, "replAddEntry: addValue for zor-slapdMasterDN returned rc=89\n");
  merge.leave(traced::kReplAddEntry, 0).leave(traced::kProcessNewEntry);
  const Account account = merge.finish();
  EXPECT_THAT(account.fates, ElementsAre(Fate::rebuilt));
  ASSERT_THAT(account.losses, SizeIs(1));
  EXPECT_EQ(account.losses[0].kind, Loss::Kind::endedEarly);
  EXPECT_EQ(account.losses[0].method, "replAddEntry");
  EXPECT_EQ(account.losses[0].target, "CN=MASTER SERVER");
  EXPECT_EQ(account.losses[0].reason, "addValue for zor-slapdMasterDN returned rc=89");
  EXPECT_TRUE(account.losses[0].restNotCarried);
}

TEST(MergeAccount, DoesNotReportThatTheEntryToBeRebuiltIsThere) {
  Merge merge({"CN=MASTER SERVER"}, {});
  merge.enter(traced::kProcessNewEntry).enter(traced::kReplAddEntry);
  merge.write(Side::newConfiguration, Operation::addEntry, "CN=MASTER SERVER", "", {"MASTER SERVER", "TOP", "x"}, 68);
  merge.add("CN=MASTER SERVER", "zor-slapdMasterDN");
  merge.leave(traced::kReplAddEntry, 1).leave(traced::kProcessNewEntry);
  const Account account = merge.finish();
  EXPECT_THAT(account.fates, ElementsAre(Fate::rebuilt));
  EXPECT_THAT(account.losses, IsEmpty());
}

TEST(MergeAccount, NamesAnEntryThatTheFinalCheckAdds) {
  Merge merge({}, {});
  merge.enter(kAdditionalChecks).enter(kCheck51);
  merge.write(Side::newConfiguration, Operation::addEntry, "CN=MASTER SERVER", "", {"MASTER SERVER", "TOP", "x"});
  merge.add("CN=MASTER SERVER", "ZOR-SLAPDMIGRATIONINFO").leave(kCheck51, 1).leave(kAdditionalChecks);
  EXPECT_THAT(merge.finish().addedByRule, ElementsAre("CN=MASTER SERVER"));
}

TEST(MergeAccount, DoesNotCallAValueMovedThatTheTransferHappensToWriteNext) {
  Merge merge({"CN=A"}, {"CN=A"});
  merge.enter(traced::kProcessUpdatedEntry).enter(kMergeIn60).drop("CN=A", "zor-slapdPageSizeLmt", "50");
  merge.enter(traced::kMergeCfgEntry).set("CN=A", "zor-slapdSizeLimit", "50").leave(traced::kMergeCfgEntry, 1);
  merge.leave(kMergeIn60, 1).leave(traced::kProcessUpdatedEntry);
  const Account account = merge.finish();
  EXPECT_EQ(account.valuesDropped, 1U);
  EXPECT_EQ(account.valuesMoved, 0U);
}

TEST(MergeAccount, KeepsTheMessagesInOrderAndFoldsRepetitions) {
  Merge merge({}, {});
  merge.say(kMergeIn60, "one\n").say(0, "two\n").say(0, "two\n").say(0, "two\n").say(kMergeIn60, "one\n");
  merge.say(0, "bell\a\nforged");
  EXPECT_THAT(merge.finish().messages, ElementsAre("one", "two (3 times)", "one", "bell\\x07\\nforged"));
}

TEST(MergeAccount, IsRefusedWhenAnOldEntryWasNotWorkedOn) {
  Merge nothingDone({"CN=A"}, {});
  EXPECT_THROW(nothingDone.finish(), std::logic_error);
  Merge commonForgotten({"CN=A", "CN=B"}, {"CN=A", "CN=B"});
  commonForgotten.mergeUnchanged();
  EXPECT_THROW(commonForgotten.finish(), std::logic_error);
}

TEST(MergeAccount, IsRefusedWhenMoreEntriesWereWorkedOnThanThereAre) {
  Merge merge({"CN=A"}, {"CN=A"});
  merge.mergeUnchanged();
  EXPECT_THROW(merge.mergeUnchanged(), std::logic_error);
}

TEST(MergeAccount, IsRefusedWhenRecordsAreNotBalanced) {
  EXPECT_THROW(Merge({}, {}).leave(kMergeIn60), std::logic_error);
  EXPECT_THROW(Merge({}, {}).enter(kAddTo60).leave(kMergeIn60), std::logic_error);
  EXPECT_THROW(Merge({}, {}).enter(kMergeConfigFiles).finish(), std::logic_error);
  Merge nested({"CN=A", "CN=B"}, {});
  nested.enter(traced::kProcessNewEntry);
  EXPECT_THROW(nested.enter(traced::kProcessNewEntry), std::logic_error);
}

}  // namespace
