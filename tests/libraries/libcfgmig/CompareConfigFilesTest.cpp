// compareConfigFiles: which entries are compared, in which order, and what becomes of the identical ones.

#include <algorithm>

#include "ConfigFileFixture.h"
#include "StandaloneMethods.h"

namespace {

using fake::TraceRecord;
using namespace standalone;

const std::string kDirectory = "CN=DIRECTORY,CN=RDBM BACKENDS,CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION";
const std::string kLegacyDirectory = "cn=DIRECTORY, cn=RDBM BACKENDS, cn=ZOR Halvorn, CN=SCHEMAS,CN=CONFIGURATION";
const std::string kLegacyForm = "CN=DIRECTORY,CN=RDBM BACKENDS,CN=ZOR HALVORN,CN=SCHEMAS,CN=CONFIGURATION";
const std::string kSchemaDb = "CN=SCHEMADB,CN=LDCF BACKENDS,CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION";

std::string dnOf(const std::string& name) { return "CN=" + name + ",CN=CONFIGURATION"; }

class CompareConfigFiles : public ConfigFileFixture {
 protected:
  void putOld(const std::string& name, const std::string& value = "same") {
    oldStore().put(dnOf(name), {{"cn", {name}}, {"x", {value}}});
  }
  void putNew(const std::string& name, const std::string& value = "same") {
    newStore().put(dnOf(name), {{"cn", {name}}, {"x", {value}}});
  }
  void putBoth(const std::string& name, const std::string& oldValue = "same", const std::string& newValue = "same") {
    putOld(name, oldValue);
    putNew(name, newValue);
  }

  int compare() {
    open();
    return compareAgain();
  }

  int compareAgain() {
    world.forgetCalls();
    const int result = oldConfig().compareConfigFiles(&newConfig());
    EXPECT_EQ(world.trace().front(), entryOf(kCompareConfigFiles));
    EXPECT_EQ(world.trace().back(), exitOf(kCompareConfigFiles, result));
    return result;
  }

  Lines inventory() { return Lines(oldConfig().getCfgDns(), oldConfig().getCfgDns() + oldConfig().getDnNum()); }
  static Lines dns(const std::vector<std::string>& names) {
    Lines lines;
    for (const std::string& name : names) {
      lines.push_back(dnOf(name));
    }
    return lines;
  }

  // The DNs whose walk was begun, in order.
  Lines compared() const {
    const std::string opening = "old.getFirstEntry(";
    Lines lines;
    for (const std::string& call : world.calls()) {
      if (call.starts_with(opening)) {
        lines.push_back(call.substr(opening.size(), call.find(')') - opening.size()));
      }
    }
    return lines;
  }

  // The entry records of these methods, in order.
  Lines entered(const std::vector<fake::Traced>& methods) const {
    Lines lines;
    for (const TraceRecord& record : world.records()) {
      for (const fake::Traced& method : methods) {
        if (record.kind == TraceRecord::Kind::entry && record.identifier == method.identifier) {
          lines.emplace_back(method.name);
        }
      }
    }
    return lines;
  }
};

// --- What is compared.

TEST_F(CompareConfigFiles, AnIdenticalEntryLeavesInventoryAndStore) {
  putBoth("A");
  EXPECT_EQ(compare(), 1);
  const std::string dn = dnOf("A");
  EXPECT_EQ(world.callsWithComparisons(), (Lines{"compareDns(" + dn + ", " + kDirectory + ") = 0",
                                                 "compareDns(" + dn + ", " + kLegacyDirectory + ") = 0",
                                                 "old.getFirstEntry(" + dn + ") = 0",
                                                 "new.getFirstEntry(" + dn + ") = 0",
                                                 "old.getFirstAttribute(" + dn + ") = 0",
                                                 "new.getFirstAttribute(" + dn + ") = 0",
                                                 "old.getParamArrayValueInfo(" + dn + ", cn) = 0",
                                                 "new.getParamArrayValueInfo(" + dn + ", cn) = 0",
                                                 "old.delValue(" + dn + ", cn, [A]) = 0",
                                                 "old.delValue(" + dn + ", cn, [A]) = 16",
                                                 "old.getNextAttribute(" + dn + ") = 0",
                                                 "new.getNextAttribute(" + dn + ") = 0",
                                                 "old.getParamArrayValueInfo(" + dn + ", x) = 0",
                                                 "new.getParamArrayValueInfo(" + dn + ", x) = 0",
                                                 "old.delValue(" + dn + ", x, [same]) = 0",
                                                 "old.delValue(" + dn + ", x, [same]) = 16",
                                                 "old.getNextAttribute(" + dn + ") = 0",
                                                 "new.getNextAttribute(" + dn + ") = 0",
                                                 "cfg_ber_free(old:" + dn + ")",
                                                 "cfg_ber_free(new:" + dn + ")",
                                                 "cfg_msgfree(old:" + dn + ")",
                                                 "cfg_msgfree(new:" + dn + ")",
                                                 "old.removeEntry(" + dn + ") = 0"}));
  EXPECT_EQ(
      world.trace(),
      (Lines{entryOf(kCompareConfigFiles), entryOf(kCompareEntries),
             messageOf(kCompareEntries, "compareEntries: delValue(4) for cn returned rc=16, i=0\n"),
             messageOf(kCompareEntries, "compareEntries: delValue(4) for x returned rc=16, i=0\n"),
             exitOf(kCompareEntries, 1), entryOf(kRemoveDn), exitOf(kRemoveDn, 0), exitOf(kCompareConfigFiles, 1)}));
  EXPECT_EQ(oldConfig().getDnNum(), 0);
  EXPECT_EQ(oldStore().entries().size(), 0U);
  EXPECT_EQ(newStore().entries().size(), 1U);
  EXPECT_EQ(newConfig().getDnNum(), 1);
}

TEST_F(CompareConfigFiles, AnEntryThatDiffersStaysWithWhatDiffers) {
  putBoth("A", "one", "two");
  EXPECT_EQ(compare(), 1);
  EXPECT_EQ(inventory(), dns({"A"}));
  EXPECT_EQ(oldStore().find(dnOf("A"))->attributes, (std::vector<fake::Attribute>{{"x", {"one"}}}));
  for (const std::string& call : world.calls()) {
    EXPECT_FALSE(call.starts_with("old.removeEntry")) << call;
  }
  EXPECT_EQ(entered({kRemoveDn}), Lines());
}

TEST_F(CompareConfigFiles, EntriesOfOneSideOnlyAreNotCompared) {
  putOld("A");
  putBoth("B", "one", "two");
  putNew("C");
  EXPECT_EQ(compare(), 1);
  EXPECT_EQ(compared(), dns({"B"}));
  EXPECT_EQ(oldStore().find(dnOf("A"))->attributes.size(), 2U);
}

TEST_F(CompareConfigFiles, CommonEntriesAreComparedInTheOrderOfThisInventory) {
  for (const char* name : {"D", "B", "C", "A"}) {
    putOld(name, "old");
  }
  for (const char* name : {"A", "C", "B", "E", "D"}) {
    putNew(name, "new");
  }
  EXPECT_EQ(compare(), 1);
  EXPECT_EQ(compared(), dns({"D", "B", "C", "A"}));
  EXPECT_EQ(inventory(), dns({"D", "B", "C", "A"}));
  EXPECT_EQ(world.allocationSizes(), (std::vector<std::size_t>{4 * sizeof(char*)}));
}

TEST_F(CompareConfigFiles, TheOrderOfComparisonIsTheOneBeforeAnythingWasRemoved) {
  for (const char* name : {"A", "B", "C", "D", "E"}) {
    putBoth(name, "old", std::string("BD").find(name) == std::string::npos ? "old" : "new");
  }
  EXPECT_EQ(compare(), 1);
  EXPECT_EQ(compared(), dns({"A", "B", "C", "D", "E"}));
  // A goes and E takes its place, C goes and D takes its place, E goes and D, now the last, takes its place.
  EXPECT_EQ(inventory(), dns({"D", "B"}));
  EXPECT_EQ(entered({kCompareEntries, kRemoveDn}),
            (Lines{"compareEntries", "removeDn", "compareEntries", "compareEntries", "removeDn", "compareEntries",
                   "compareEntries", "removeDn"}));
}

TEST_F(CompareConfigFiles, TheLastDnOfTheInventoryTakesTheRemovedOnesPlaceAlsoWhenItIsNotCommon) {
  putBoth("A");
  putOld("B");
  putBoth("C");
  putOld("D");
  EXPECT_EQ(compare(), 1);
  EXPECT_EQ(inventory(), dns({"D", "B"}));
}

TEST_F(CompareConfigFiles, DnsAreMatchedByteForByte) {
  world.formatDnsBy([](std::string_view dn) { return std::make_optional(std::string(dn)); });
  oldStore().put("cn=a,CN=CONFIGURATION", {{"cn", {"a"}}});
  oldStore().put("CN=B, CN=CONFIGURATION", {{"cn", {"a"}}});
  newStore().put("CN=A,CN=CONFIGURATION", {{"cn", {"a"}}});
  newStore().put("CN=B,CN=CONFIGURATION", {{"cn", {"a"}}});
  EXPECT_EQ(compare(), 1);
  EXPECT_EQ(world.callsWithComparisons(), Lines());
  EXPECT_EQ(oldConfig().getDnNum(), 2);
}

TEST_F(CompareConfigFiles, NothingInCommonIsASuccess) {
  putOld("A");
  putNew("B");
  EXPECT_EQ(compare(), 1);
  EXPECT_EQ(world.callsWithComparisons(), Lines());
  EXPECT_EQ(world.trace(), (Lines{entryOf(kCompareConfigFiles), exitOf(kCompareConfigFiles, 1)}));
  EXPECT_EQ(inventory(), dns({"A"}));
}

TEST_F(CompareConfigFiles, AnEmptyInventoryOnEitherSideIsASuccess) {
  putOld("A");
  EXPECT_EQ(compare(), 1);
  EXPECT_EQ(world.callsWithComparisons(), Lines());
  EXPECT_EQ(world.allocationSizes(), (std::vector<std::size_t>{0}));
  oldStore().clear();
  putNew("A");
  EXPECT_EQ(compare(), 1);
  EXPECT_EQ(world.allocationSizes(), (std::vector<std::size_t>{0}));
  newStore().clear();
  EXPECT_EQ(compare(), 1);
}

TEST_F(CompareConfigFiles, ThisSideNeedsNoInventory) {
  putBoth("A");
  construct();
  ASSERT_EQ(newConfig().getDns(), 0);
  EXPECT_EQ(compareAgain(), 1);
  EXPECT_EQ(world.callsWithComparisons(), Lines());
}

TEST_F(CompareConfigFiles, SlotsThatAFailedListingLeftEmptyArePassedOver) {
  for (const char* name : {"A", "B", "C", "D"}) {
    putBoth(name);
  }
  // Of this configuration A, B and C are listed, of the other A and B.
  construct();
  world.faults().fail({.operation = "formatDn", .nth = 4}, 1);
  ASSERT_EQ(oldConfig().getDns(), 1);
  world.faults().fail({.operation = "formatDn", .nth = 3}, 1);
  ASSERT_EQ(newConfig().getDns(), 1);
  ASSERT_EQ(oldConfig().getDnNum(), 4);
  EXPECT_EQ(compareAgain(), 1);
  EXPECT_EQ(compared(), dns({"A", "B"}));
  EXPECT_EQ(oldConfig().getDnNum(), 2);
  EXPECT_EQ(oldStore().entries().size(), 2U);
}

// --- What keeps it from starting.

TEST_F(CompareConfigFiles, NeedsTheOthersInventory) {
  putBoth("A");
  construct();
  ASSERT_EQ(oldConfig().getDns(), 0);
  EXPECT_EQ(compareAgain(), 0);
  EXPECT_EQ(world.callsWithComparisons(), Lines());
  EXPECT_EQ(world.trace(), (Lines{entryOf(kCompareConfigFiles),
                                  messageOf(kCompareConfigFiles, "compareConfigFiles: cfg2Dns is NULL\n"),
                                  exitOf(kCompareConfigFiles, 0)}));
  EXPECT_EQ(world.allocationSizes().size(), 0U);
  EXPECT_EQ(inventory(), dns({"A"}));
}

// The method's own name is misspelt in this message.
TEST_F(CompareConfigFiles, NeedsMemoryForTheCommonEntries) {
  putBoth("A");
  putBoth("B");
  putOld("C");
  open();
  world.failAllocationOf(2 * sizeof(char*));
  EXPECT_EQ(compareAgain(), 0);
  EXPECT_EQ(world.callsWithComparisons(), Lines());
  EXPECT_EQ(world.trace(),
            (Lines{entryOf(kCompareConfigFiles),
                   messageOf(kCompareConfigFiles, "comapreConfigFiles: memory allocation failed for commonEntries\n"),
                   exitOf(kCompareConfigFiles, 0)}));
  EXPECT_EQ(inventory(), dns({"A", "B", "C"}));
  EXPECT_EQ(oldStore().entries().size(), 3U);
  EXPECT_EQ(compareAgain(), 1) << "the same with memory";
}

TEST_F(CompareConfigFiles, ANullAnswerToTheEmptyListsRequestIsAFailure) {
  putOld("A");
  open();
  world.failAllocationOf(0);
  EXPECT_EQ(compareAgain(), 0);
  EXPECT_EQ(
      world.messages(),
      (Lines{messageOf(kCompareConfigFiles, "comapreConfigFiles: memory allocation failed for commonEntries\n")}));
}

// --- Plug-ins.

TEST_F(CompareConfigFiles, ThePluginsOfTheDirectoryBackendAreThinnedBeforeItIsCompared) {
  putBoth("A", "one", "two");
  oldStore().put(kDirectory, {{"cn", {"DIRECTORY"}}, {"zor-slapdPlugin", {"p  x", "q"}}});
  newStore().put(kDirectory, {{"cn", {"DIRECTORY"}}, {"zor-slapdPlugin", {"p x", "r"}}});
  EXPECT_EQ(compare(), 1);
  EXPECT_EQ(entered({kCompareEntries, kProcessPlugins}), (Lines{"compareEntries", "processPlugins", "compareEntries"}));
  const Lines calls = world.calls();
  const auto thinned =
      std::find(calls.begin(), calls.end(), "old.delValue(" + kDirectory + ", zor-slapdPlugin, [p  x]) = 0");
  const auto opened = std::find(calls.begin(), calls.end(), "old.getFirstEntry(" + kDirectory + ") = 0");
  EXPECT_LT(thinned, opened);
  EXPECT_NE(opened, calls.end());
  EXPECT_EQ(oldStore().values(kDirectory, "zor-slapdPlugin"), (Lines{"q"}));
}

TEST_F(CompareConfigFiles, ThinningTheSchemaBackendFirstMakesItDifferent) {
  // Its plug-ins are gone before its own comparison comes, where the other side still has them.
  for (fake::Content* store : {&oldStore(), &newStore()}) {
    store->put(kDirectory, {{"zor-slapdPlugin", {"p"}}});
    store->put(kSchemaDb, {{"zor-slapdPlugin", {"s"}}, {"cn", {"SCHEMADB"}}});
  }
  EXPECT_EQ(compare(), 1);
  EXPECT_EQ(inventory(), (Lines{kDirectory, kSchemaDb}));
  EXPECT_EQ(oldStore().find(kDirectory)->attributes, std::vector<fake::Attribute>());
  EXPECT_EQ(oldStore().find(kSchemaDb)->attributes, (std::vector<fake::Attribute>{{"cn", {"SCHEMADB"}}}));
}

TEST_F(CompareConfigFiles, PluginsThatDifferInBlanksOnlyAreDeletedWhereTheEntryStays) {
  oldStore().put(kDirectory, {{"zor-slapdPlugin", {"p  x", "own"}}, {"cn", {"DIRECTORY"}}});
  newStore().put(kDirectory, {{"zor-slapdPlugin", {"p x"}}, {"cn", {"DIRECTORY"}}});
  EXPECT_EQ(compare(), 1);
  EXPECT_EQ(oldStore().find(kDirectory)->attributes,
            (std::vector<fake::Attribute>{{"zor-slapdPlugin", {"own"}}, {"cn", {"DIRECTORY"}}}));
}

TEST_F(CompareConfigFiles, TheLegacyBackendIsThinnedUnderItsLegacyNames) {
  oldStore().put(kLegacyDirectory, {{"zor-slapdPlugin", {"p"}}});
  newStore().put(kLegacyDirectory, {{"zor-slapdPlugin", {"p"}}});
  EXPECT_EQ(compare(), 1);
  EXPECT_EQ(world.callsWithComparisons()[0], "compareDns(" + kLegacyForm + ", " + kDirectory + ") = 0");
  EXPECT_EQ(world.callsWithComparisons()[1], "compareDns(" + kLegacyForm + ", " + kLegacyDirectory + ") = 1");
  EXPECT_EQ(world.callsWithComparisons()[2],
            "new.getParamArrayValueInfo(" + kLegacyDirectory + ", zor-slapdPlugin) = 0");
  EXPECT_EQ(inventory(), (Lines{kLegacyForm}));
}

TEST_F(CompareConfigFiles, BothFormsAreTriedForEveryDn) {
  // A store for which the two forms name one entry.
  world.formatDnsBy([](std::string_view dn) {
    const bool isDirectory = dn == kDirectory || dn == kLegacyDirectory;
    return std::make_optional(isDirectory ? kDirectory : std::string(dn));
  });
  oldStore().put(kDirectory, {{"cn", {"a"}}});
  newStore().put(kDirectory, {{"cn", {"b"}}});
  EXPECT_EQ(compare(), 1);
  EXPECT_EQ(entered({kProcessPlugins, kCompareEntries}), (Lines{"processPlugins", "processPlugins", "compareEntries"}));
  const Lines& calls = world.callsWithComparisons();
  EXPECT_EQ(calls[0], "compareDns(" + kDirectory + ", " + kDirectory + ") = 1");
  EXPECT_EQ(calls[1], "new.getParamArrayValueInfo(" + kDirectory + ", zor-slapdPlugin) = 16");
  EXPECT_EQ(calls[2], "compareDns(" + kDirectory + ", " + kLegacyDirectory + ") = 1");
  EXPECT_EQ(calls[3], "new.getParamArrayValueInfo(" + kLegacyDirectory + ", zor-slapdPlugin) = 32");
}

TEST_F(CompareConfigFiles, OtherEntriesDoNotHaveTheirPluginsThinned) {
  for (fake::Content* store : {&oldStore(), &newStore()}) {
    store->put(kSchemaDb, {{"zor-slapdPlugin", {"s"}}});
  }
  EXPECT_EQ(compare(), 1);
  EXPECT_EQ(entered({kProcessPlugins}), Lines());
  EXPECT_EQ(inventory(), Lines());
}

TEST_F(CompareConfigFiles, WhatBecomesOfThePluginsDoesNotMatter) {
  oldStore().put(kDirectory, {{"cn", {"a"}}});
  newStore().put(kDirectory, {{"cn", {"a"}}});  // no plug-ins: the thinning ends early
  EXPECT_EQ(compare(), 1);
  EXPECT_EQ(inventory(), Lines());
}

// --- Removal.

TEST_F(CompareConfigFiles, AnEntryThatCannotBeRemovedIsGoneFromTheInventoryAllTheSameAndNothingIsSaid) {
  putBoth("A");
  putBoth("B");
  world.faults().fail({.operation = "removeEntry", .dn = dnOf("A")}, 80);
  EXPECT_EQ(compare(), 1);
  EXPECT_EQ(inventory(), Lines());
  EXPECT_EQ(oldStore().entries().size(), 1U);
  EXPECT_EQ(oldStore().find(dnOf("A"))->attributes, std::vector<fake::Attribute>());
  for (const std::string& message : world.messages()) {
    EXPECT_NE(message.find("delValue(4)"), std::string::npos) << message;
  }
}

TEST_F(CompareConfigFiles, TheInventoryIsShrunkBeforeTheEntryIsRemoved) {
  putBoth("A");
  open();
  int dnsAtRemoval = -1;
  world.onCall([&](const std::string& call) {
    if (call.starts_with("old.removeEntry(")) {
      dnsAtRemoval = oldConfig().getDnNum();
    }
  });
  EXPECT_EQ(compareAgain(), 1);
  world.onCall(nullptr);
  EXPECT_EQ(dnsAtRemoval, 0);
}

TEST_F(CompareConfigFiles, ASecondComparisonFindsWhatTheFirstLeft) {
  putBoth("A");
  putBoth("B", "one", "two");
  putOld("C");
  EXPECT_EQ(compare(), 1);
  EXPECT_EQ(inventory(), dns({"C", "B"}));
  EXPECT_EQ(compareAgain(), 1);
  EXPECT_EQ(compared(), dns({"B"}));
  EXPECT_EQ(inventory(), dns({"C", "B"}));
}

// --- DNs that stand more than once in an inventory.

class CompareRepeatedDns : public CompareConfigFiles {
 protected:
  // "CN=A~2,..." has the normal form of "CN=A,...".
  void SetUp() override {
    world.formatDnsBy([](std::string_view dn) {
      std::string form(dn);
      if (const auto at = form.find('~'); at != std::string::npos) {
        form.erase(at, form.find(',') - at);
      }
      return std::make_optional(form);
    });
  }
};

TEST_F(CompareRepeatedDns, OnlyTheFirstComparisonFindsTheEntryAndTheLastPositionIsRemoved) {
  putBoth("A");
  putOld("B");
  putOld("A~2");
  putOld("C");
  EXPECT_EQ(compare(), 1);
  EXPECT_EQ(compared(), dns({"A", "A"}));
  EXPECT_EQ(inventory(), dns({"A", "B", "C"}));
}

TEST_F(CompareRepeatedDns, AnEntryWithoutAttributesIsIdenticalEachTime) {
  for (const char* name : {"A", "A~2", "B", "A~3"}) {
    oldStore().put(dnOf(name), {});
  }
  newStore().put(dnOf("A"), {});
  // Three common DNs, where the shorter inventory has one.
  EXPECT_EQ(compare(), 1);
  EXPECT_EQ(inventory(), dns({"B"}));
  const Lines calls = world.calls();
  EXPECT_EQ(std::count(calls.begin(), calls.end(), "old.removeEntry(" + dnOf("A") + ") = 0"), 1);
  EXPECT_EQ(std::count(calls.begin(), calls.end(), "old.removeEntry(" + dnOf("A") + ") = 32"), 2);
}

TEST_F(CompareRepeatedDns, MoreCommonDnsThanTheShorterInventoryHasMayFindNoMemory) {
  for (const char* name : {"A", "A~2", "A~3"}) {
    putOld(name);
  }
  putNew("A");
  open();
  world.failAllocation(2);
  EXPECT_EQ(compareAgain(), 0);
  EXPECT_EQ(world.callsWithComparisons(), Lines());
  EXPECT_EQ(
      world.messages(),
      (Lines{messageOf(kCompareConfigFiles, "comapreConfigFiles: memory allocation failed for commonEntries\n")}));
  EXPECT_EQ(inventory(), dns({"A", "A", "A"}));
}

TEST_F(CompareRepeatedDns, TheStringThatStoodFirstMayBeTheOneThatGoesFirst) {
  // Z goes first and the later A moves before the earlier one, which then stands at the last position.
  for (const char* name : {"Z", "A", "B", "A~2"}) {
    oldStore().put(dnOf(name), {});
    newStore().put(dnOf(name), {});
  }
  EXPECT_EQ(compare(), 1);
  EXPECT_EQ(compared(), dns({"Z", "A", "B", "A"}));
  EXPECT_EQ(inventory(), Lines());
}

TEST_F(CompareRepeatedDns, ADnThatStandsTwiceInTheOtherInventoryIsComparedOnce) {
  putBoth("A", "one", "two");
  putNew("A~2");
  EXPECT_EQ(compare(), 1);
  EXPECT_EQ(compared(), dns({"A"}));
}

}  // namespace
