// The master server entry that is built afresh from one in the 4.1 form: a replica's, a peer's, or neither.

#include "RulesFixture.h"

namespace {

using namespace rules;
using namespace traced;

// A call that is expected, and what is said when it fails; "" where nothing is.
struct Step {
  std::string operation;
  std::string rest;  // its arguments after the DN
  std::string message;
};

const Step kCreation[] = {
    {"new.addEntry", "MASTER SERVER, TOP, zor-slapdReplication", ""},
    {"new.addValue", "OBJECTCLASS, zor-slapdConfigEntry",
     "replAddEntry: addValue for zor-slapdConfigEntry returned rc="},
    {"new.addValue", "OBJECTCLASS, ZOR-SLAPDPENDINGMIGRATION",
     "replAddEntry: addValue for ZOR-SLAPDPENDINGMIGRATION returned rc="},
};
const Step kReadMasterDn = {"old.getParamValueInfo", "zor-slapdMasterDN",
                            "replAddEntry: getParamArrayValueInfo(replica) for zor-slapdMasterDN returned rc="};
const Step kReadPeerDn = {"old.getParamValueInfo", "zor-slapdPeerDN",
                          "replAddEntry: getParamValueInfo(peer) for zor-slapdPeerDN returned rc="};
const Step kReadReferral = {"old.getParamValueInfo", "zor-slapdMasterReferral",
                            "replAddEntry: getParamValueInfo for zor-slapdMasterReferral returned rc="};

Step addition(const std::string& attribute, const std::string& value) {
  return {"new.addValue", attribute + ", " + value, "replAddEntry: addValue for " + attribute + " returned rc="};
}

std::vector<Step> afterCreation(const std::vector<Step>& more) {
  std::vector<Step> steps(std::begin(kCreation), std::end(kCreation));
  steps.push_back(kReadMasterDn);
  steps.insert(steps.end(), more.begin(), more.end());
  return steps;
}

// The password is read before the marker is written.
std::vector<Step> replicaSteps() {
  return afterCreation({{"old.getParamValueInfo", "zor-slapdMasterPW",
                         "replAddEntry: getParamValueInfo(replica) for zor-slapdMasterPW returned rc="},
                        {"new.addValue", "ZOR-SLAPDMIGRATIONINFO, 4.1 REPLICA",
                         "replAddEntry: addValue(replica) for ZOR-SLAPDMIGRATIONINFO returned rc="},
                        addition("zor-slapdMasterDN", "cn=master"),
                        addition("zor-slapdMasterPW", "master secret"),
                        kReadReferral,
                        addition("zor-slapdMasterReferral", "ldap://master")});
}

// The marker is written before the password is read.
std::vector<Step> peerSteps() {
  return afterCreation({kReadPeerDn,
                        {"new.addValue", "ZOR-SLAPDMIGRATIONINFO, 4.1 PEER",
                         "replAddEntry: addValue(peer) for ZOR-SLAPDMIGRATIONINFO returned rc="},
                        {"old.getParamValueInfo", "zor-slapdPeerPW",
                         "replAddEntry: getParamValueInfo(peer) for zor-slapdPeerPW returned rc="},
                        addition("zor-slapdMasterDN", "cn=peer"),
                        addition("zor-slapdMasterPW", "peer secret"),
                        kReadReferral,
                        addition("zor-slapdMasterReferral", "ldap://master")});
}

const fake::Attribute kMasterDn = {"zor-slapdMasterDN", {"cn=master"}};
const fake::Attribute kMasterPw = {"zor-slapdMasterPW", {"master secret"}};
const fake::Attribute kPeerDn = {"zor-slapdPeerDN", {"cn=peer"}};
const fake::Attribute kPeerPw = {"zor-slapdPeerPW", {"peer secret"}};
const fake::Attribute kReferral = {"zor-slapdMasterReferral", {"ldap://master"}};

class Replication41 : public RulesFixture {
 protected:
  int rebuild(const std::vector<fake::Attribute>& attributes) {
    oldStore().clear();
    oldStore().put(kMaster, attributes);
    return rebuild();
  }
  int rebuild() {
    open();
    return newConfig().replAddEntry(&oldConfig());
  }

  // The calls of the first `count` steps, the last of which answers `rc`.
  static Lines callsOf(const std::vector<Step>& steps, std::size_t count, int rc = 0) {
    Lines lines;
    for (std::size_t i = 0; i < count; ++i) {
      lines.push_back(call(steps[i].operation, kMaster, steps[i].rest, i + 1 == count ? rc : 0));
    }
    return lines;
  }

  // Lets each step fail in turn: the first one is passed over in silence, every other one ends the method.
  void expectEveryFailure(const std::vector<fake::Attribute>& attributes, const std::vector<Step>& steps,
                          fake::OutParameters outParameters) {
    for (std::size_t failing = 1; failing < steps.size(); ++failing) {
      newStore().clear();
      world.faults().clear();
      oldStore().clear();
      oldStore().put(kMaster, attributes);
      open();
      world.faults().failCall(static_cast<int>(failing) + 1, 53, outParameters);
      EXPECT_EQ(newConfig().replAddEntry(&oldConfig()), 0) << steps[failing].message;
      EXPECT_EQ(world.callsWithComparisons(), callsOf(steps, failing + 1, 53));
      EXPECT_EQ(world.trace(), (Lines{entryOf(kReplAddEntry), messageOf(kReplAddEntry, steps[failing].message + "53\n"),
                                      exitOf(kReplAddEntry, 0)}));
    }
  }
};

TEST_F(Replication41, AReplicaIsRebuiltStepByStep) {
  EXPECT_EQ(rebuild({kMasterDn, kMasterPw, kReferral}), 1);
  EXPECT_EQ(world.callsWithComparisons(), callsOf(replicaSteps(), replicaSteps().size()));
  EXPECT_EQ(world.trace(), (Lines{entryOf(kReplAddEntry), exitOf(kReplAddEntry, 1)}));
}

TEST_F(Replication41, APeerIsRebuiltStepByStep) {
  EXPECT_EQ(rebuild({kPeerDn, kPeerPw, kReferral}), 1);
  EXPECT_EQ(world.callsWithComparisons(), callsOf(peerSteps(), peerSteps().size()));
  EXPECT_EQ(world.trace(), (Lines{entryOf(kReplAddEntry), exitOf(kReplAddEntry, 1)}));
}

TEST_F(Replication41, AReplicaIsMarkedAsOne) {
  EXPECT_EQ(rebuild({{"objectclass", {"OLD"}}, {"cn", {"Master"}}, kMasterDn, kMasterPw}), 1);
  ASSERT_NE(newStore().find(kMaster), nullptr);
  EXPECT_EQ(newStore().find(kMaster)->attributes,
            (std::vector<fake::Attribute>{
                {"OBJECTCLASS", {"TOP", "zor-slapdReplication", "zor-slapdConfigEntry", "ZOR-SLAPDPENDINGMIGRATION"}},
                {"CN", {"MASTER SERVER"}},
                {"ZOR-SLAPDMIGRATIONINFO", {"4.1 REPLICA"}},
                kMasterDn,
                kMasterPw}));
}

TEST_F(Replication41, APeersIdentityBecomesTheMasters) {
  EXPECT_EQ(rebuild({kPeerDn, kPeerPw}), 1);
  ASSERT_NE(newStore().find(kMaster), nullptr);
  EXPECT_EQ(newStore().find(kMaster)->attributes,
            (std::vector<fake::Attribute>{
                {"OBJECTCLASS", {"TOP", "zor-slapdReplication", "zor-slapdConfigEntry", "ZOR-SLAPDPENDINGMIGRATION"}},
                {"CN", {"MASTER SERVER"}},
                {"ZOR-SLAPDMIGRATIONINFO", {"4.1 PEER"}},
                {"zor-slapdMasterDN", {"cn=peer"}},
                {"zor-slapdMasterPW", {"peer secret"}}}));
}

TEST_F(Replication41, AMasterDnMakesAReplicaAlsoBesideAPeerDn) {
  EXPECT_EQ(rebuild({kPeerDn, kPeerPw, kMasterDn, kMasterPw, kReferral}), 1);
  EXPECT_EQ(world.callsWithComparisons(), callsOf(replicaSteps(), replicaSteps().size()));
}

TEST_F(Replication41, OnlyFirstValuesAreCopiedAndNothingElse) {
  EXPECT_EQ(rebuild({{"zor-slapdMasterDN", {"1", "2"}},
                     {"zor-slapdMasterPW", {"3", "4"}},
                     {"zor-slapdMasterReferral", {"5", "6"}},
                     {"zor-other", {"7"}}}),
            1);
  EXPECT_EQ(newStore().values(kMaster, "zor-slapdMasterDN"), (Lines{"1"}));
  EXPECT_EQ(newStore().values(kMaster, "zor-slapdMasterPW"), (Lines{"3"}));
  EXPECT_EQ(newStore().values(kMaster, "zor-slapdMasterReferral"), (Lines{"5"}));
  EXPECT_EQ(newStore().find(kMaster, "zor-other"), nullptr);
  EXPECT_EQ(oldStore().values(kMaster, "zor-slapdMasterDN"), (Lines{"1", "2"})) << "the old entry stays";
}

TEST_F(Replication41, AnEmptyMasterDnIsAMasterDn) {
  EXPECT_EQ(rebuild({{"zor-slapdMasterDN", {""}}, kMasterPw, kPeerDn}), 1);
  EXPECT_EQ(newStore().values(kMaster, "ZOR-SLAPDMIGRATIONINFO"), (Lines{"4.1 REPLICA"}));
}

TEST_F(Replication41, AnAbsentReferralIsNoFailure) {
  EXPECT_EQ(rebuild({kMasterDn, kMasterPw}), 1);
  EXPECT_EQ(world.callsWithComparisons(), callsOf(replicaSteps(), replicaSteps().size() - 1));
  EXPECT_EQ(world.messages(), Lines());
}

// --- Failures.

TEST_F(Replication41, EveryFailureOfAReplicaIsReportedAndEndsIt) {
  expectEveryFailure({kMasterDn, kMasterPw, kReferral}, replicaSteps(), fake::OutParameters::cleared);
  expectEveryFailure({kMasterDn, kMasterPw, kReferral}, replicaSteps(), fake::OutParameters::untouched);
}

TEST_F(Replication41, EveryFailureOfAPeerIsReportedAndEndsIt) {
  expectEveryFailure({kPeerDn, kPeerPw, kReferral}, peerSteps(), fake::OutParameters::cleared);
  expectEveryFailure({kPeerDn, kPeerPw, kReferral}, peerSteps(), fake::OutParameters::untouched);
}

TEST_F(Replication41, WhatWasAddedBeforeAFailureStays) {
  world.faults().fail({.operation = "addValue", .attribute = "zor-slapdMasterPW"}, 53);
  EXPECT_EQ(rebuild({kMasterDn, kMasterPw, kReferral}), 0);
  EXPECT_EQ(newStore().values(kMaster, "ZOR-SLAPDMIGRATIONINFO"), (Lines{"4.1 REPLICA"}));
  EXPECT_EQ(newStore().values(kMaster, "zor-slapdMasterDN"), (Lines{"cn=master"}));
  EXPECT_EQ(newStore().find(kMaster, "zor-slapdMasterReferral"), nullptr);
}

TEST_F(Replication41, AReplicaWhosePasswordCannotBeReadIsNotMarked) {
  world.faults().fail({.operation = "getParamValueInfo", .attribute = "zor-slapdMasterPW"}, 53);
  EXPECT_EQ(rebuild({kMasterDn, kMasterPw}), 0);
  EXPECT_EQ(newStore().find(kMaster, "ZOR-SLAPDMIGRATIONINFO"), nullptr);
  EXPECT_EQ(newStore().find(kMaster, "zor-slapdMasterDN"), nullptr);
}

TEST_F(Replication41, APeerWhosePasswordCannotBeReadIsMarked) {
  world.faults().fail({.operation = "getParamValueInfo", .attribute = "zor-slapdPeerPW"}, 53);
  EXPECT_EQ(rebuild({kPeerDn, kPeerPw}), 0);
  EXPECT_EQ(newStore().values(kMaster, "ZOR-SLAPDMIGRATIONINFO"), (Lines{"4.1 PEER"}));
  EXPECT_EQ(newStore().find(kMaster, "zor-slapdMasterDN"), nullptr);
  EXPECT_EQ(newStore().find(kMaster, "zor-slapdMasterPW"), nullptr);
}

TEST_F(Replication41, AFailedCreationIsPassedOverSilentlyWithoutTheTwoClasses) {
  newStore().put(kMaster, {{"objectclass", {"NEW"}}, {"zor-slapdMasterDN", {"cn=new"}}});
  EXPECT_EQ(rebuild({kMasterDn, kMasterPw}), 1);
  const auto steps = replicaSteps();
  Lines expected = {call(steps[0].operation, kMaster, steps[0].rest, fake::kEntryExists)};
  for (std::size_t i = 3; i + 1 < steps.size(); ++i) {
    expected.push_back(call(steps[i].operation, kMaster, steps[i].rest));
  }
  EXPECT_EQ(world.callsWithComparisons(), expected);
  EXPECT_EQ(world.trace(), (Lines{entryOf(kReplAddEntry), exitOf(kReplAddEntry, 1)}));
  EXPECT_EQ(newStore().values(kMaster, "objectclass"), (Lines{"NEW"}));
  EXPECT_EQ(newStore().values(kMaster, "ZOR-SLAPDMIGRATIONINFO"), (Lines{"4.1 REPLICA"}));
  EXPECT_EQ(newStore().values(kMaster, "zor-slapdMasterDN"), (Lines{"cn=new", "cn=master"}));
}

TEST_F(Replication41, WithoutAnEntryTheFirstAdditionIsReported) {
  world.faults().fail({.operation = "addEntry"}, 53);
  EXPECT_EQ(rebuild({kMasterDn, kMasterPw}), 0);
  EXPECT_EQ(
      world.messages(),
      (Lines{messageOf(kReplAddEntry, "replAddEntry: addValue(replica) for ZOR-SLAPDMIGRATIONINFO returned rc=32\n")}));
}

// --- Absent values.

TEST_F(Replication41, NeitherReplicaNorPeerHandsTheStoreANullDn) {
  EXPECT_EQ(rebuild({kMasterPw, kPeerPw, kReferral}), 0);
  auto steps = afterCreation({kReadPeerDn, addition("zor-slapdMasterDN", "null")});
  EXPECT_EQ(world.callsWithComparisons(), callsOf(steps, steps.size(), 19));
  EXPECT_EQ(world.trace(),
            (Lines{entryOf(kReplAddEntry),
                   messageOf(kReplAddEntry, "replAddEntry: addValue for zor-slapdMasterDN returned rc=19\n"),
                   exitOf(kReplAddEntry, 0)}));
  EXPECT_EQ(newStore().find(kMaster, "ZOR-SLAPDMIGRATIONINFO"), nullptr);
}

// A store may take a null value for nothing to do.
TEST_F(Replication41, AStoreThatAcceptsNullsIsAskedForBothAndThenForTheReferral) {
  world.faults().fail({.operation = "addValue", .attribute = "zor-slapdMasterDN"}, 0);
  world.faults().fail({.operation = "addValue", .attribute = "zor-slapdMasterPW"}, 0);
  EXPECT_EQ(rebuild({kMasterPw, kPeerPw, kReferral}), 1);
  auto steps = afterCreation({kReadPeerDn, addition("zor-slapdMasterDN", "null"), addition("zor-slapdMasterPW", "null"),
                              kReadReferral, addition("zor-slapdMasterReferral", "ldap://master")});
  EXPECT_EQ(world.callsWithComparisons(), callsOf(steps, steps.size()));
}

TEST_F(Replication41, AReplicaWithoutAPasswordFailsAtThePassword) {
  EXPECT_EQ(rebuild({kMasterDn, kPeerPw, kReferral}), 0);
  EXPECT_EQ(world.callsWithComparisons().back(), call("new.addValue", kMaster, "zor-slapdMasterPW, null", 19));
  EXPECT_EQ(world.messages(),
            (Lines{messageOf(kReplAddEntry, "replAddEntry: addValue for zor-slapdMasterPW returned rc=19\n")}));
  EXPECT_EQ(newStore().values(kMaster, "ZOR-SLAPDMIGRATIONINFO"), (Lines{"4.1 REPLICA"}));
  EXPECT_EQ(newStore().values(kMaster, "zor-slapdMasterDN"), (Lines{"cn=master"}));
}

TEST_F(Replication41, APeerWithoutAPasswordFailsAtThePassword) {
  EXPECT_EQ(rebuild({kPeerDn, kMasterPw}), 0);
  EXPECT_EQ(world.callsWithComparisons().back(), call("new.addValue", kMaster, "zor-slapdMasterPW, null", 19));
  EXPECT_EQ(newStore().values(kMaster, "ZOR-SLAPDMIGRATIONINFO"), (Lines{"4.1 PEER"}));
  EXPECT_EQ(newStore().values(kMaster, "zor-slapdMasterDN"), (Lines{"cn=peer"}));
}

TEST_F(Replication41, WithoutAnOldEntryItEndsAtTheFirstRead) {
  EXPECT_EQ(rebuild(), 0);
  EXPECT_EQ(world.callsWithComparisons(), callsOf(afterCreation({}), 4, 32));
  EXPECT_EQ(world.messages(),
            (Lines{messageOf(kReplAddEntry,
                             "replAddEntry: getParamArrayValueInfo(replica) for zor-slapdMasterDN returned rc=32\n")}));
}

}  // namespace
