// What a 6.0 configuration must not bring along, and where its settings go: which entry gets which rule, and the
// settings of one value.

#include "Rules60Fixture.h"

namespace {

using namespace rules60;
using namespace traced;

class MergeIn60 : public Rules60 {};

// --- Which rule a DN gets.

TEST_F(MergeIn60, TriesItsDnsInOrder) {
  put(kOther, {});
  newStore().put(kOther, {});
  EXPECT_EQ(mergeIn(kOther), 1);
  Lines comparisons;
  for (const std::string& line : world.callsWithComparisons()) {
    if (line.starts_with("compareDns(")) {
      comparisons.push_back(line);
    }
  }
  Lines expected;
  for (const std::string& dn : {kMain, kDirectory, kAdmin, kSsl, kSchema}) {
    expected.push_back("compareDns(" + kOther + ", " + dn + ") = 0");
  }
  EXPECT_EQ(comparisons, expected);
}

TEST_F(MergeIn60, TriesNoFurtherDnAfterAMatch) {
  put(kAdmin, {});
  newStore().put(kAdmin, {});
  mergeIn(kAdmin);
  ASSERT_GE(world.callsWithComparisons().size(), 4U);
  EXPECT_EQ(world.callsWithComparisons()[2], "compareDns(" + kAdmin + ", " + kAdmin + ") = 1");
  EXPECT_EQ(world.callsWithComparisons()[3], "old.getParamValueInfo(" + kAdmin + ", zor-slapdErrorLog) = 0");
  for (const std::string& line : world.callsWithComparisons()) {
    EXPECT_FALSE(line.starts_with("compareDns(" + kAdmin + ", " + kSsl)) << line;
  }
}

TEST_F(MergeIn60, DnsAreMatchedByTheStoreNotByTheirSpelling) {
  put("cn=SSL , cn=configuration", {{"zor-slapdPort", {"1"}}, {"zor-slapdSecurePort", {"2"}}});
  newStore().put(kSsl, {});
  open();
  EXPECT_EQ(newConfig().mergeIn60(modifiable("cn=ssl, cn=Configuration"), &oldConfig()), 1);
  // The rule goes by the name that it knows, the transfer by the one that it was given.
  EXPECT_EQ(ruleCalls(), (Lines{call("old.getParamValueInfo", kSsl, "zor-slapdSecurePort"),
                                call("old.delValue", kSsl, "zor-slapdSecurePort, [2]"),
                                call("old.getParamValueInfo", kSsl, "zor-slapdPort"),
                                call("old.delValue", kSsl, "zor-slapdPort, [1]")}));
  EXPECT_EQ(world.calls()[4], "old.getFirstEntry(cn=ssl, cn=Configuration) = 0");
  EXPECT_EQ(oldStore().find(kSsl, "zor-slapdPort"), nullptr);
  EXPECT_EQ(oldStore().find(kSsl, "zor-slapdSecurePort"), nullptr);
}

TEST_F(MergeIn60, ADnWithoutRuleIsMergedUnchanged) {
  put(kOther, {{"zor-slapdPort", {"1"}}, {"zor-slapdErrorLog", {"log"}}});
  newStore().put(kOther, {{"zor-slapdPort", {"2"}}});
  EXPECT_EQ(mergeIn(kOther), 1);
  EXPECT_EQ(ruleCalls(), Lines());
  EXPECT_EQ(newStore().values(kOther, "zor-slapdPort"), (Lines{"1"}));
  EXPECT_EQ(newStore().values(kOther, "zor-slapdErrorLog"), (Lines{"log"}));
}

// --- Drops.

struct Drop {
  const std::string& dn;
  std::vector<const char*> attributes;
};

void PrintTo(const Drop& drop, std::ostream* out) { *out << drop.dn; }

const Drop kDrops[] = {
    {kMain,
     {"zor-slapdSupportedWebAdmVersion", "zor-slapdErrorLog", "zor-slapdTraceMessageLog",
      "zor-slapdSortSrchAllowNonAdmin", "zor-slapdPagedResAllowNonAdmin", "zor-slapdPort"}},
    {kDirectory, {"zor-slapdBulkloadErrors", "zor-slapdCLIErrors"}},
    {kAdmin, {"zor-slapdErrorLog", "zor-slapdPort", "zor-slapdSecurePort"}},
    {kSsl, {"zor-slapdSecurePort", "zor-slapdPort"}},
};

class Drops60 : public Rules60, public testing::WithParamInterface<Drop> {
 protected:
  // What the rule does after the plain drops, when none of the settings concerned is there.
  Lines remainder(int readRc) const {
    const auto& dn = GetParam().dn;
    if (&dn == &kMain && readRc == 0) {
      return {call("old.getParamValueInfo", kMain, "zor-slapdSysLogLevel"),
              call("old.delValue", kMain, "zor-slapdSysLogLevel, []"),
              call("new.setValue", kLog, "zor-slapdLogOptions, null", 19),
              call("old.getParamValueInfo", kMain, "zor-slapdMaxPendingChangesDisplayed"),
              call("old.delValue", kMain, "zor-slapdMaxPendingChangesDisplayed, []"),
              call("new.setValue", kReplication, "zor-slapdMaxPendingChangesDisplayed, null", 19),
              call("old.getParamValueInfo", kMain, "zor-slapdPwEncryption")};
    }
    if (&dn == &kMain) {
      return {call("old.getParamValueInfo", kMain, "zor-slapdSysLogLevel", readRc),
              call("old.getParamValueInfo", kMain, "zor-slapdMaxPendingChangesDisplayed", readRc),
              call("old.getParamValueInfo", kMain, "zor-slapdPwEncryption", readRc)};
    }
    if (&dn == &kDirectory) {
      return {call("old.getParamArrayValueInfo", kDirectory, "zor-slapdPlugin", 16)};
    }
    return {};
  }

  Lines withRemainder(Lines lines, int readRc = 0) const {
    const Lines rest = remainder(readRc);
    lines.insert(lines.end(), rest.begin(), rest.end());
    return lines;
  }

  std::vector<fake::Attribute> everyAttribute() const {
    std::vector<fake::Attribute> attributes;
    for (const char* name : GetParam().attributes) {
      attributes.push_back({name, {std::string("value of ") + name, "second"}});
    }
    return attributes;
  }
};

INSTANTIATE_TEST_SUITE_P(Rules, Drops60, testing::ValuesIn(kDrops), [](const testing::TestParamInfo<Drop>& drop) {
  return std::string(drop.param.dn == kMain        ? "MainEntry"
                     : drop.param.dn == kDirectory ? "DirectoryBackend"
                     : drop.param.dn == kAdmin     ? "Admin"
                                                   : "Ssl");
});

TEST_P(Drops60, DeletesTheFirstValueOfEachAttributeInOrder) {
  put(GetParam().dn, everyAttribute());
  newStore().put(GetParam().dn, {});
  EXPECT_EQ(mergeIn(GetParam().dn), 1);
  Lines expected;
  for (const char* name : GetParam().attributes) {
    expected.push_back(call("old.getParamValueInfo", GetParam().dn, name));
    expected.push_back(call("old.delValue", GetParam().dn, std::string(name) + ", [value of " + name + "]"));
  }
  EXPECT_EQ(ruleCalls(), withRemainder(expected));
  for (const char* name : GetParam().attributes) {
    EXPECT_EQ(oldStore().values(GetParam().dn, name), (Lines{"second"}));
    EXPECT_EQ(newStore().values(GetParam().dn, name), (Lines{"second"}));
  }
}

TEST_P(Drops60, DeletesNothingOfAnAbsentAttributeButAsksForIt) {
  put(GetParam().dn, {});
  newStore().put(GetParam().dn, {});
  EXPECT_EQ(mergeIn(GetParam().dn), 1);
  Lines expected;
  for (const char* name : GetParam().attributes) {
    expected.push_back(call("old.getParamValueInfo", GetParam().dn, name));
    expected.push_back(call("old.delValue", GetParam().dn, std::string(name) + ", []"));
  }
  EXPECT_EQ(ruleCalls(), withRemainder(expected));
}

TEST_P(Drops60, SkipsAnUnreadableAttributeSilently) {
  put(GetParam().dn, everyAttribute());
  newStore().put(GetParam().dn, {});
  world.faults().fail({.store = "old", .operation = "getParamValueInfo", .nth = 0}, 80);
  EXPECT_EQ(mergeIn(GetParam().dn), 1);
  Lines expected;
  for (const char* name : GetParam().attributes) {
    expected.push_back(call("old.getParamValueInfo", GetParam().dn, name, 80));
  }
  EXPECT_EQ(ruleCalls(), withRemainder(expected, 80));
  EXPECT_EQ(ruleMessages(kMergeIn60), Lines());
}

TEST_P(Drops60, ReportsEachFailedDeletionAndGoesOn) {
  put(GetParam().dn, everyAttribute());
  newStore().put(GetParam().dn, {});
  world.faults().fail({.store = "old", .operation = "delValue", .nth = 0}, 53);
  EXPECT_EQ(mergeIn(GetParam().dn), 1);
  Lines expected;
  for (const char* name : GetParam().attributes) {
    expected.push_back(delFailed(name, 53));
  }
  if (GetParam().dn == kMain) {
    expected.push_back(delFailed("zor-slapdSysLogLevel", 53));
    expected.push_back(setFailed("zor-slapdLogOptions", 19));
    expected.push_back(delFailed("zor-slapdMaxPendingChangesDisplayed", 53));
    expected.push_back(setFailed("zor-slapdMaxPendingChangesDisplayed", 19));
  }
  EXPECT_EQ(ruleMessages(kMergeIn60), expected);
  for (const char* name : GetParam().attributes) {
    EXPECT_EQ(newStore().values(GetParam().dn, name).size(), 2U) << "what was not deleted is carried over";
  }
}

TEST_P(Drops60, ResultAndExitRecordAreThoseOfTheTransfer) {
  put(GetParam().dn, {{"zor-other", {"1"}}});
  newStore().put(GetParam().dn, {{"zor-other", {"2"}}});
  EXPECT_EQ(mergeIn(GetParam().dn), 1);
  EXPECT_EQ(world.trace().front(), entryOf(kMergeIn60));
  EXPECT_EQ(world.trace().back(), exitOf(kMergeIn60, 1));
  oldStore().setValue(GetParam().dn.c_str(), "zor-other", "3");
  world.forgetCalls();
  world.faults().fail({.store = "new", .operation = "setValue", .attribute = "zor-other"}, 53);
  EXPECT_EQ(newConfig().mergeIn60(modifiable(GetParam().dn), &oldConfig()), 0);
  EXPECT_EQ(world.trace().back(), exitOf(kMergeIn60, 0));
}

// --- The main entry's three particular settings.

class SysLogLevel60 : public Rules60 {
 protected:
  // What is left on both sides after merging a main entry with this value.
  void merge(const std::string& value) {
    oldStore().clear();
    newStore().removeEntry(kMain.c_str());
    newStore().setValue(kLog.c_str(), "zor-slapdLogOptions", "new");
    put(kMain, {{"zor-slapdSysLogLevel", {value}}});
    newStore().put(kMain, {});
    EXPECT_EQ(mergeIn(kMain), 1);
  }
};

TEST_F(SysLogLevel60, IsDroppedAndSetAsLogOptions) {
  for (const char* value : {"M", "mm", "m ", " m", "", "l", "h", "mn"}) {
    merge(value);
    EXPECT_EQ(oldStore().find(kMain, "zor-slapdSysLogLevel"), nullptr) << value;
    EXPECT_EQ(newStore().find(kMain, "zor-slapdSysLogLevel"), nullptr) << value;
    EXPECT_EQ(newStore().values(kLog, "zor-slapdLogOptions"), (Lines{value})) << value;
    EXPECT_EQ(ruleMessages(kMergeIn60), (Lines{setFailed("zor-slapdMaxPendingChangesDisplayed", 19)}));
  }
}

TEST_F(SysLogLevel60, OfExactlyMIsDroppedAndNotSet) {
  merge("m");
  EXPECT_EQ(oldStore().find(kMain, "zor-slapdSysLogLevel"), nullptr);
  EXPECT_EQ(newStore().find(kMain, "zor-slapdSysLogLevel"), nullptr);
  EXPECT_EQ(newStore().values(kLog, "zor-slapdLogOptions"), (Lines{"new"}));
}

TEST_F(SysLogLevel60, IsSetAlsoWhenItCouldNotBeDropped) {
  world.faults().fail({.operation = "delValue", .attribute = "zor-slapdSysLogLevel"}, 53);
  merge("h");
  EXPECT_EQ(newStore().values(kLog, "zor-slapdLogOptions"), (Lines{"h"}));
  EXPECT_EQ(newStore().values(kMain, "zor-slapdSysLogLevel"), (Lines{"h"}));
  EXPECT_EQ(ruleMessages(kMergeIn60)[0], delFailed("zor-slapdSysLogLevel", 53));
}

TEST_F(SysLogLevel60, ReportsAFailedSetByTheNewAttributesName) {
  world.faults().fail({.operation = "setValue", .attribute = "zor-slapdLogOptions"}, 53);
  merge("h");
  EXPECT_EQ(ruleMessages(kMergeIn60)[0], setFailed("zor-slapdLogOptions", 53));
}

TEST_F(MergeIn60, MaxPendingChangesMovesToTheReplicationEntry) {
  put(kMain, {{"zor-slapdMaxPendingChangesDisplayed", {"200", "300"}}});
  newStore().put(kMain, {});
  EXPECT_EQ(mergeIn(kMain), 1);
  EXPECT_EQ(newStore().values(kReplication, "zor-slapdMaxPendingChangesDisplayed"), (Lines{"200"}));
  EXPECT_EQ(newStore().values(kMain, "zor-slapdMaxPendingChangesDisplayed"), (Lines{"300"}));
}

TEST_F(MergeIn60, MaxPendingChangesMovesAlsoWhenItCouldNotBeDropped) {
  put(kMain, {{"zor-slapdMaxPendingChangesDisplayed", {"200"}}, {"zor-slapdSysLogLevel", {"m"}}});
  newStore().put(kMain, {});
  world.faults().fail({.operation = "delValue", .attribute = "zor-slapdMaxPendingChangesDisplayed"}, 53);
  EXPECT_EQ(mergeIn(kMain), 1);
  EXPECT_EQ(ruleMessages(kMergeIn60), (Lines{delFailed("zor-slapdMaxPendingChangesDisplayed", 53)}));
  EXPECT_EQ(newStore().values(kReplication, "zor-slapdMaxPendingChangesDisplayed"), (Lines{"200"}));
}

TEST_F(MergeIn60, AMoveIntoAMissingEntryIsOnlyReported) {
  newStore().clear();
  put(kMain, {{"zor-slapdMaxPendingChangesDisplayed", {"200"}}, {"zor-slapdSysLogLevel", {"h"}}});
  newStore().put(kMain, {});
  EXPECT_EQ(mergeIn(kMain), 1);
  EXPECT_EQ(ruleMessages(kMergeIn60),
            (Lines{setFailed("zor-slapdLogOptions", 32), setFailed("zor-slapdMaxPendingChangesDisplayed", 32)}));
}

TEST_F(MergeIn60, PasswordEncryptionImaskIsDroppedInAnyLetterCase) {
  for (const char* value : {"IMASK", "imask", "IMask"}) {
    oldStore().clear();
    newStore().removeEntry(kMain.c_str());
    put(kMain, {{"zor-slapdPwEncryption", {value}}});
    newStore().put(kMain, {{"zor-slapdPwEncryption", {"sha"}}});
    EXPECT_EQ(mergeIn(kMain), 1);
    EXPECT_EQ(ruleCalls().back(), call("old.delValue", kMain, "zor-slapdPwEncryption, [" + std::string(value) + "]"));
    EXPECT_EQ(newStore().values(kMain, "zor-slapdPwEncryption"), (Lines{"sha"}));
  }
}

TEST_F(MergeIn60, AnyOtherPasswordEncryptionIsCarriedOver) {
  for (const char* value : {"SHA", "IMASK ", "IMAS", "XIMASK", "", "none"}) {
    oldStore().clear();
    newStore().removeEntry(kMain.c_str());
    put(kMain, {{"zor-slapdPwEncryption", {value}}});
    newStore().put(kMain, {{"zor-slapdPwEncryption", {"aes"}}});
    EXPECT_EQ(mergeIn(kMain), 1);
    EXPECT_EQ(ruleCalls().back(), call("old.getParamValueInfo", kMain, "zor-slapdPwEncryption"));
    EXPECT_EQ(newStore().values(kMain, "zor-slapdPwEncryption"), (Lines{value}));
  }
}

TEST_F(MergeIn60, ReportsAPasswordEncryptionThatCouldNotBeDropped) {
  put(kMain, {{"zor-slapdPwEncryption", {"imask"}}});
  newStore().put(kMain, {});
  world.faults().fail({.operation = "delValue", .attribute = "zor-slapdPwEncryption"}, 53);
  EXPECT_EQ(mergeIn(kMain), 1);
  EXPECT_EQ(ruleMessages(kMergeIn60).back(), delFailed("zor-slapdPwEncryption", 53));
  EXPECT_EQ(newStore().values(kMain, "zor-slapdPwEncryption"), (Lines{"imask"}));
}

}  // namespace
