// removeDn: a DN leaves the inventory, and the last one takes its place.

#include "ConfigFileFixture.h"
#include "StandaloneMethods.h"

namespace {

using standalone::kRemoveDn;

class RemoveDn : public ConfigFileFixture {
 protected:
  // An inventory of just these DNs; they may repeat.
  void list(const Lines& dns) {
    oldStore().clear();
    // The store lists numbers; their normal forms are the DNs.
    world.formatDnsBy([dns](std::string_view number) {
      return std::make_optional(dns[std::stoul(std::string(number.substr(3, number.find(',') - 3)))]);
    });
    for (std::size_t i = 0; i < dns.size(); ++i) {
      oldStore().put("CN=" + std::to_string(i) + ",CN=CONFIGURATION", {});
    }
    open();
    ASSERT_EQ(inventory(), dns);
  }

  Lines inventory() { return Lines(oldConfig().getCfgDns(), oldConfig().getCfgDns() + oldConfig().getDnNum()); }

  // Removes a DN that stands at `position` at last, and answers what is left. The string is this test's then.
  Lines remove(const std::string& dn, int position) {
    char** dns = oldConfig().getCfgDns();
    const int count = oldConfig().getDnNum();
    char* string = dns[position];
    world.forgetCalls();
    oldConfig().removeDn(modifiable(dn));
    EXPECT_EQ(oldConfig().getCfgDns(), dns);
    EXPECT_EQ(oldConfig().getDnNum(), count - 1);
    EXPECT_EQ(dns[count - 1], nullptr) << "the last slot is nulled";
    EXPECT_STREQ(string, dn.c_str()) << "the string is not released";
    world.resources().freed(string);
    EXPECT_EQ(world.callsWithComparisons(), Lines()) << "the store is not touched";
    EXPECT_EQ(world.trace(), (Lines{entryOf(kRemoveDn), exitOf(kRemoveDn, 0)}));
    return inventory();
  }
};

TEST_F(RemoveDn, TheLastDnTakesThePlaceOfTheRemovedOne) {
  list({"A", "B", "C", "D"});
  EXPECT_EQ(remove("A", 0), (Lines{"D", "B", "C"}));
  EXPECT_EQ(remove("B", 1), (Lines{"D", "C"}));
}

TEST_F(RemoveDn, TheLastDnSimplyGoes) {
  list({"A", "B"});
  EXPECT_EQ(remove("B", 1), (Lines{"A"}));
  EXPECT_EQ(remove("A", 0), Lines());
}

TEST_F(RemoveDn, OfSeveralThatMatchTheLastIsRemoved) {
  list({"A", "B", "A", "C"});
  EXPECT_EQ(remove("A", 2), (Lines{"A", "B", "C"}));
  EXPECT_EQ(remove("A", 0), (Lines{"C", "B"}));
}

TEST_F(RemoveDn, ADnThatIsNotThereChangesNothing) {
  list({"A", "B"});
  char** dns = oldConfig().getCfgDns();
  for (const std::string dn : {"C", "a", "A ", "", "AB"}) {
    world.forgetCalls();
    oldConfig().removeDn(modifiable(dn));
    EXPECT_EQ(inventory(), (Lines{"A", "B"})) << dn;
    EXPECT_EQ(oldConfig().getCfgDns(), dns);
    EXPECT_EQ(world.trace(), (Lines{entryOf(kRemoveDn), exitOf(kRemoveDn, 0)}));
  }
}

TEST_F(RemoveDn, AnEmptyInventoryStaysEmpty) {
  construct();
  oldConfig().removeDn(modifiable("A"));
  EXPECT_EQ(oldConfig().getDnNum(), 0);
  EXPECT_EQ(oldConfig().getCfgDns(), nullptr);
  list({});
  oldConfig().removeDn(modifiable("A"));
  EXPECT_EQ(oldConfig().getDnNum(), 0);
}

TEST_F(RemoveDn, AnEmptySlotThatAFailedListingLeftMovesLikeADn) {
  oldStore().put("CN=A,CN=CONFIGURATION", {});
  oldStore().put("CN=B,CN=CONFIGURATION", {});
  construct();
  world.faults().fail({.operation = "formatDn", .nth = 2}, 1);
  ASSERT_EQ(oldConfig().getDns(), 1);
  char* string = oldConfig().getCfgDns()[0];
  const std::string dn = "CN=A,CN=CONFIGURATION";
  oldConfig().removeDn(modifiable(dn));
  EXPECT_EQ(oldConfig().getDnNum(), 1);
  EXPECT_EQ(oldConfig().getCfgDns()[0], nullptr);
  world.resources().freed(string);
}

TEST_F(RemoveDn, MayBeGivenTheInventorysOwnString) {
  list({"A", "B", "C"});
  char* string = oldConfig().getCfgDns()[0];
  oldConfig().removeDn(string);
  EXPECT_EQ(inventory(), (Lines{"C", "B"}));
  EXPECT_STREQ(string, "A");
  world.resources().freed(string);
}

TEST_F(RemoveDn, TheDestructorReleasesWhatIsLeft) {
  list({"A", "B", "C"});
  remove("B", 1);
  EXPECT_EQ(world.resources().outstanding().size(), 4U);  // two strings and both objects' arrays
  EXPECT_EQ(complaints(), Lines());
}

}  // namespace
