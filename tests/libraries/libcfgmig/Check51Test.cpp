// The final check of a 5.1 source: a server without a master server entry was a master.

#include "RulesFixture.h"

namespace {

using namespace rules;
using namespace traced;

class Check51 : public RulesFixture {
 protected:
  int check() {
    open();
    return newConfig().check51(&oldConfig());
  }

  // Handles that are null are nobody's; whether they are released does not matter.
  Lines callsWithoutNull() const {
    Lines lines = world.callsWithComparisons();
    std::erase(lines, "cfg_msgfree(null)");
    return lines;
  }

  const std::string m_lookUp = "new.getFirstEntry(" + kMaster + ") = ";
  const std::string m_creation = call("new.addEntry", kMaster, "MASTER SERVER, TOP, zor-slapdReplication");
};

TEST_F(Check51, AMasterServerEntryIsLeftAlone) {
  newStore().put(kMaster, {{"cn", {"x"}}});
  EXPECT_EQ(check(), 1);
  EXPECT_EQ(world.callsWithComparisons(), (Lines{m_lookUp + "0", "cfg_msgfree(new:" + kMaster + ")"}));
  EXPECT_EQ(world.trace(), (Lines{entryOf(kCheck51), exitOf(kCheck51, 1)}));
  EXPECT_EQ(newStore().find(kMaster)->attributes, (std::vector<fake::Attribute>{{"cn", {"x"}}}));
}

TEST_F(Check51, AMissingOneIsMadeAndMarkedAsAFormerMasters) {
  oldStore().put(kMaster, {{"cn", {"the old one does not count"}}});
  EXPECT_EQ(check(), 1);
  EXPECT_EQ(callsWithoutNull(),
            (Lines{m_lookUp + "32", m_creation, call("new.addValue", kMaster, "OBJECTCLASS, zor-slapdConfigEntry"),
                   call("new.addValue", kMaster, "OBJECTCLASS, ZOR-SLAPDPENDINGMIGRATION"),
                   call("new.addValue", kMaster, "ZOR-SLAPDMIGRATIONINFO, 4.1 MASTER")}));
  EXPECT_EQ(world.trace(), (Lines{entryOf(kCheck51), exitOf(kCheck51, 1)}));
  EXPECT_EQ(newStore().find(kMaster)->attributes,
            (std::vector<fake::Attribute>{
                {"OBJECTCLASS", {"TOP", "zor-slapdReplication", "zor-slapdConfigEntry", "ZOR-SLAPDPENDINGMIGRATION"}},
                {"CN", {"MASTER SERVER"}},
                {"ZOR-SLAPDMIGRATIONINFO", {"4.1 MASTER"}}}));
}

TEST_F(Check51, ItsArgumentDoesNotCount) {
  open();
  EXPECT_EQ(newConfig().check51(nullptr), 1);
  EXPECT_NE(newStore().find(kMaster), nullptr);
}

TEST_F(Check51, AFailedCreationIsNeitherReportedNorAFailure) {
  world.faults().fail({.operation = "addEntry"}, 53);
  EXPECT_EQ(check(), 1);
  EXPECT_EQ(callsWithoutNull(),
            (Lines{m_lookUp + "32", call("new.addEntry", kMaster, "MASTER SERVER, TOP, zor-slapdReplication", 53)}));
  EXPECT_EQ(world.trace(), (Lines{entryOf(kCheck51), exitOf(kCheck51, 1)}));
  EXPECT_TRUE(newStore().entries().empty());
}

// Whatever keeps the entry from being found: it is then made, which fails when it exists.
TEST_F(Check51, AFailedLookUpCountsAsMissing) {
  for (const auto outParameters : {fake::OutParameters::cleared, fake::OutParameters::untouched}) {
    newStore().clear();
    newStore().put(kMaster, {{"cn", {"x"}}});
    world.faults().clear();
    world.faults().fail({.operation = "getFirstEntry"}, 80, outParameters);
    EXPECT_EQ(check(), 1);
    EXPECT_EQ(callsWithoutNull(),
              (Lines{m_lookUp + "80", call("new.addEntry", kMaster, "MASTER SERVER, TOP, zor-slapdReplication", 68)}));
    EXPECT_EQ(world.trace(), (Lines{entryOf(kCheck51), exitOf(kCheck51, 1)}));
  }
}

TEST_F(Check51, EachFailedAdditionIsReportedAndEndsTheCheck) {
  const struct {
    std::string rest;
    std::string reported;
  } additions[] = {{"OBJECTCLASS, zor-slapdConfigEntry", "zor-slapdConfigEntry"},
                   {"OBJECTCLASS, ZOR-SLAPDPENDINGMIGRATION", "ZOR-SLAPDPENDINGMIGRATION"},
                   {"ZOR-SLAPDMIGRATIONINFO, 4.1 MASTER", "ZOR-SLAPDMIGRATIONINFO"}};
  for (int failing = 1; failing <= 3; ++failing) {
    newStore().clear();
    world.faults().clear();
    world.faults().fail({.operation = "addValue", .nth = failing}, 53);
    EXPECT_EQ(check(), 0);
    Lines calls = {m_lookUp + "32", m_creation};
    for (int i = 1; i <= failing; ++i) {
      calls.push_back(call("new.addValue", kMaster, additions[i - 1].rest, i == failing ? 53 : 0));
    }
    EXPECT_EQ(callsWithoutNull(), calls);
    EXPECT_EQ(
        world.trace(),
        (Lines{entryOf(kCheck51),
               messageOf(kCheck51, "check51: addValue for " + additions[failing - 1].reported + " returned rc=53\n"),
               exitOf(kCheck51, 0)}));
    EXPECT_NE(newStore().find(kMaster), nullptr) << "what was added stays";
  }
}

TEST_F(Check51, WhatARebuildingLeftIsFound) {
  put(kMaster, {{"zor-slapdPeerDN", {"cn=peer"}}, {"zor-slapdPeerPW", {"secret"}}});
  EXPECT_EQ(apply(&ConfigFile::addTo51, kMaster), 1);
  EXPECT_EQ(newConfig().check51(&oldConfig()), 1);
  EXPECT_EQ(newStore().values(kMaster, "ZOR-SLAPDMIGRATIONINFO"), (Lines{"4.1 PEER"}));
}

}  // namespace
