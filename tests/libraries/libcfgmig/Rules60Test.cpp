// What a 6.0 configuration must not bring along, and where its entries and settings go.

#include "ConfigFileFixture.h"

namespace {

using namespace traced;

const std::string kMain = "CN=CONFIGURATION";
const std::string kDirectory = "CN=DIRECTORY,CN=RDBM BACKENDS,CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION";
const std::string kAdmin = "CN=ADMIN,CN=CONFIGURATION";
const std::string kSsl = "CN=SSL,CN=CONFIGURATION";
const std::string kSchema = "CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION";
const std::string kReplication = "CN=REPLICATION,CN=CONFIGURATION";
const std::string kLog = "CN=ZORSLAPD,CN=LOG MANAGEMENT,CN=CONFIGURATION";
const std::string kAudit = "CN=AUDIT,CN=CONFIGURATION";
const std::string kMovedAudit = "CN=AUDIT,CN=LOG MANAGEMENT,CN=CONFIGURATION";
const std::string kAdminAudit = "CN=ADMIN AUDIT,CN=CONFIGURATION";
const std::string kMovedAdminAudit = "CN=ADMIN AUDIT,CN=LOG MANAGEMENT,CN=CONFIGURATION";
const std::string kOther = "CN=CONNECTION MANAGEMENT,CN=CONFIGURATION";

class Rules60 : public ConfigFileFixture {
 protected:
  void SetUp() override {
    for (const std::string* dn : {&kReplication, &kLog, &kMovedAudit, &kMovedAdminAudit}) {
      newStore().put(*dn, {{"cn", {"x"}}});
    }
  }

  void put(const std::string& dn, std::vector<fake::Attribute> attributes) {
    oldStore().put(dn, std::move(attributes));
  }

  int mergeIn(const std::string& dn) {
    open();
    return newConfig().mergeIn60(modifiable(dn), &oldConfig());
  }

  int addTo(const std::string& dn) {
    open();
    return newConfig().addTo60(modifiable(dn), &oldConfig());
  }

  // The calls of the rule itself: those before the transfer begins.
  Lines ruleCalls() const {
    Lines lines;
    for (const std::string& line : world.calls()) {
      if (line.starts_with("old.getFirstEntry(")) {
        break;
      }
      lines.push_back(line);
    }
    return lines;
  }

  // The messages of the rule itself.
  Lines ruleMessages(const fake::Traced& rule) const {
    Lines lines;
    for (const fake::TraceRecord& record : world.records()) {
      if (record.kind == fake::TraceRecord::Kind::debug && record.identifier == rule.identifier) {
        lines.push_back(text(record));
      }
    }
    return lines;
  }

  std::string delFailed(const std::string& attribute, int rc) const {
    return messageOf(kMergeIn60,
                     "mergeIn60: delValue for " + attribute + " has returned rc=" + std::to_string(rc) + "\n");
  }

  std::string setFailed(const std::string& attribute, int rc) const {
    return messageOf(kMergeIn60,
                     "mergeIn60: setValue for " + attribute + " has returned rc=" + std::to_string(rc) + "\n");
  }

  static std::string call(const std::string& operation, const std::string& dn, const std::string& rest, int rc = 0) {
    return operation + "(" + dn + ", " + rest + ") = " + std::to_string(rc);
  }
};

// --- Which rule a DN gets.

TEST_F(Rules60, MergeTriesItsDnsInOrder) {
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

TEST_F(Rules60, MergeTriesNoFurtherDnAfterAMatch) {
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

TEST_F(Rules60, AddTriesItsDnsInOrder) {
  put(kOther, {});
  addTo(kOther);
  ASSERT_GE(world.callsWithComparisons().size(), 3U);
  EXPECT_EQ(world.callsWithComparisons()[0], "compareDns(" + kOther + ", " + kAdminAudit + ") = 0");
  EXPECT_EQ(world.callsWithComparisons()[1], "compareDns(" + kOther + ", " + kAudit + ") = 0");
  EXPECT_EQ(world.callsWithComparisons()[2], "old.getParamValueInfo(" + kOther + ", CN) = 0");
}

TEST_F(Rules60, DnsAreMatchedByTheStoreNotByTheirSpelling) {
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

TEST_F(Rules60, ADnWithoutRuleIsMergedUnchanged) {
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

TEST_F(Rules60, MaxPendingChangesMovesToTheReplicationEntry) {
  put(kMain, {{"zor-slapdMaxPendingChangesDisplayed", {"200", "300"}}});
  newStore().put(kMain, {});
  EXPECT_EQ(mergeIn(kMain), 1);
  EXPECT_EQ(newStore().values(kReplication, "zor-slapdMaxPendingChangesDisplayed"), (Lines{"200"}));
  EXPECT_EQ(newStore().values(kMain, "zor-slapdMaxPendingChangesDisplayed"), (Lines{"300"}));
}

TEST_F(Rules60, MaxPendingChangesMovesAlsoWhenItCouldNotBeDropped) {
  put(kMain, {{"zor-slapdMaxPendingChangesDisplayed", {"200"}}, {"zor-slapdSysLogLevel", {"m"}}});
  newStore().put(kMain, {});
  world.faults().fail({.operation = "delValue", .attribute = "zor-slapdMaxPendingChangesDisplayed"}, 53);
  EXPECT_EQ(mergeIn(kMain), 1);
  EXPECT_EQ(ruleMessages(kMergeIn60), (Lines{delFailed("zor-slapdMaxPendingChangesDisplayed", 53)}));
  EXPECT_EQ(newStore().values(kReplication, "zor-slapdMaxPendingChangesDisplayed"), (Lines{"200"}));
}

TEST_F(Rules60, AMoveIntoAMissingEntryIsOnlyReported) {
  newStore().clear();
  put(kMain, {{"zor-slapdMaxPendingChangesDisplayed", {"200"}}, {"zor-slapdSysLogLevel", {"h"}}});
  newStore().put(kMain, {});
  EXPECT_EQ(mergeIn(kMain), 1);
  EXPECT_EQ(ruleMessages(kMergeIn60),
            (Lines{setFailed("zor-slapdLogOptions", 32), setFailed("zor-slapdMaxPendingChangesDisplayed", 32)}));
}

TEST_F(Rules60, PasswordEncryptionImaskIsDroppedInAnyLetterCase) {
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

TEST_F(Rules60, AnyOtherPasswordEncryptionIsCarriedOver) {
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

TEST_F(Rules60, ReportsAPasswordEncryptionThatCouldNotBeDropped) {
  put(kMain, {{"zor-slapdPwEncryption", {"imask"}}});
  newStore().put(kMain, {});
  world.faults().fail({.operation = "delValue", .attribute = "zor-slapdPwEncryption"}, 53);
  EXPECT_EQ(mergeIn(kMain), 1);
  EXPECT_EQ(ruleMessages(kMergeIn60).back(), delFailed("zor-slapdPwEncryption", 53));
  EXPECT_EQ(newStore().values(kMain, "zor-slapdPwEncryption"), (Lines{"imask"}));
}

// --- The directory backend's plug-in list.

class Plugins60 : public Rules60 {
 protected:
  int merge(const Lines& plugins) {
    put(kDirectory, {{"zor-slapdPlugin", plugins}});
    newStore().put(kDirectory, {{"zor-slapdPlugin", {"new"}}});
    return mergeIn(kDirectory);
  }

  Lines pluginCalls() const {
    Lines lines = ruleCalls();
    lines.erase(lines.begin(), lines.begin() + 4);  // two drops of absent attributes
    return lines;
  }

  const std::string m_read = call("old.getParamArrayValueInfo", kDirectory, "zor-slapdPlugin");
};

TEST_F(Plugins60, TheFirstNonblockingOneIsDeletedAndSearchedForTheLimit) {
  EXPECT_EQ(
      merge({"database a", "repl nonblocking maxskippedreplerrors=10 x", "other nonblocking maxskippedreplerrors=7"}),
      1);
  EXPECT_EQ(
      pluginCalls(),
      (Lines{m_read, call("old.delValue", kDirectory, "zor-slapdPlugin, [repl nonblocking maxskippedreplerrors=10 x]"),
             call("new.setValue", kReplication, "zor-slapdReplMaxErrors, 10 x")}));
  EXPECT_EQ(newStore().values(kDirectory, "zor-slapdPlugin"),
            (Lines{"new", "database a", "other nonblocking maxskippedreplerrors=7"}));
  EXPECT_EQ(ruleMessages(kMergeIn60), Lines());
}

TEST_F(Plugins60, TheFirstNonblockingOneEndsTheWalkAlsoWithoutALimit) {
  EXPECT_EQ(merge({"nonblocking", "nonblocking maxskippedreplerrors=7"}), 1);
  EXPECT_EQ(pluginCalls(), (Lines{m_read, call("old.delValue", kDirectory, "zor-slapdPlugin, [nonblocking]")}));
}

TEST_F(Plugins60, TheLimitMayStandBeforeTheWordAndIsTheWholeRest) {
  EXPECT_EQ(merge({"x maxskippedreplerrors=, 5 nonblocking"}), 1);
  EXPECT_EQ(newStore().values(kReplication, "zor-slapdReplMaxErrors"), (Lines{", 5 nonblocking"}));
}

TEST_F(Plugins60, AnEmptyLimitIsSetAsAnEmptyText) {
  EXPECT_EQ(merge({"nonblocking maxskippedreplerrors="}), 1);
  EXPECT_EQ(pluginCalls().back(), call("new.setValue", kReplication, "zor-slapdReplMaxErrors, "));
  EXPECT_EQ(newStore().values(kReplication, "zor-slapdReplMaxErrors"), (Lines{""}));
}

TEST_F(Plugins60, TheFirstOfTwoLimitsCounts) {
  EXPECT_EQ(merge({"nonblocking maxskippedreplerrors=1 maxskippedreplerrors=2"}), 1);
  EXPECT_EQ(newStore().values(kReplication, "zor-slapdReplMaxErrors"), (Lines{"1 maxskippedreplerrors=2"}));
}

TEST_F(Plugins60, ALimitWithoutNonblockingIsLeftAlone) {
  EXPECT_EQ(merge({"repl maxskippedreplerrors=10"}), 1);
  EXPECT_EQ(pluginCalls(), (Lines{m_read}));
  EXPECT_EQ(newStore().values(kDirectory, "zor-slapdPlugin"), (Lines{"new", "repl maxskippedreplerrors=10"}));
}

TEST_F(Plugins60, LetterCaseCountsInBothWords) {
  EXPECT_EQ(merge({"NonBlocking maxskippedreplerrors=1", "nonblocking MaxSkippedReplErrors=2"}), 1);
  EXPECT_EQ(pluginCalls(),
            (Lines{m_read, call("old.delValue", kDirectory, "zor-slapdPlugin, [nonblocking MaxSkippedReplErrors=2]")}));
}

TEST_F(Plugins60, TheWordMayBePartOfAnother) {
  EXPECT_EQ(merge({"xnonblockingy"}), 1);
  EXPECT_EQ(newStore().values(kDirectory, "zor-slapdPlugin"), (Lines{"new"}));
}

TEST_F(Plugins60, AFailedDeletionIsReportedUnderTheErrorLogsName) {
  world.faults().fail({.operation = "delValue", .attribute = "zor-slapdPlugin"}, 53);
  EXPECT_EQ(merge({"nonblocking maxskippedreplerrors=3", "nonblocking"}), 1);
  EXPECT_EQ(ruleMessages(kMergeIn60), (Lines{delFailed("zor-slapdErrorLog", 53)}));
  EXPECT_EQ(newStore().values(kReplication, "zor-slapdReplMaxErrors"), (Lines{"3"}));
}

TEST_F(Plugins60, AFailedSetOfTheLimitIsReportedAsADeletionUnderTheErrorLogsName) {
  world.faults().fail({.operation = "setValue", .attribute = "zor-slapdReplMaxErrors"}, 53);
  EXPECT_EQ(merge({"nonblocking maxskippedreplerrors=3"}), 1);
  EXPECT_EQ(ruleMessages(kMergeIn60), (Lines{delFailed("zor-slapdErrorLog", 53)}));
}

TEST_F(Plugins60, AnUnreadableListIsHandedToFreeParamValsWithoutAMessageOfTheRule) {
  world.faults().fail({.operation = "getParamArrayValueInfo", .attribute = "zor-slapdPlugin"}, 80);
  EXPECT_EQ(merge({"nonblocking"}), 1);
  EXPECT_EQ(ruleMessages(kMergeIn60), Lines());
  EXPECT_EQ(world.trace()[1], fake::nullListMessage());
  EXPECT_EQ(world.trace()[2], entryOf(kMergeCfgEntry));
}

TEST_F(Plugins60, AnEmptyListIsReleasedSilently) {
  EXPECT_EQ(merge({}), 1);
  EXPECT_EQ(pluginCalls(), (Lines{m_read}));
  EXPECT_EQ(world.trace()[1], entryOf(kMergeCfgEntry));
}

// --- The schema entry.

class SchemaAdditions60 : public Rules60 {
 protected:
  int merge(const Lines& additions) {
    put(kSchema, {{"zor-slapdSchemaAdditions", additions}, {"zor-other", {"old"}}});
    newStore().put(kSchema, {{"zor-slapdSchemaAdditions", {"new"}}, {"zor-other", {"new"}}});
    return mergeIn(kSchema);
  }
};

TEST_F(SchemaAdditions60, EveryModifiedSchemaIsRemoved) {
  EXPECT_EQ(merge({"/etc/V3.modifiedschema", "mine.oc", "V3.modifiedschema.bak", "V3.MODIFIEDSCHEMA"}), 1);
  EXPECT_EQ(ruleCalls(), (Lines{call("old.getParamArrayValueInfo", kSchema, "zor-slapdSchemaAdditions"),
                                call("old.delValue", kSchema, "zor-slapdSchemaAdditions, [/etc/V3.modifiedschema]"),
                                call("old.delValue", kSchema, "zor-slapdSchemaAdditions, [V3.modifiedschema.bak]")}));
  EXPECT_EQ(newStore().values(kSchema, "zor-slapdSchemaAdditions"), (Lines{"new", "mine.oc", "V3.MODIFIEDSCHEMA"}));
  EXPECT_EQ(newStore().values(kSchema, "zor-other"), (Lines{"old"}));
}

TEST_F(SchemaAdditions60, FailedDeletionsAreReportedAndTheWalkGoesOn) {
  world.faults().fail({.operation = "delValue", .nth = 1}, 53);
  EXPECT_EQ(merge({"1 V3.modifiedschema", "2 V3.modifiedschema"}), 1);
  EXPECT_EQ(ruleMessages(kMergeIn60), (Lines{delFailed("zor-slapdSchemaAdditions", 53)}));
  EXPECT_EQ(newStore().values(kSchema, "zor-slapdSchemaAdditions"), (Lines{"new", "1 V3.modifiedschema"}));
}

TEST_F(SchemaAdditions60, AnUnreadableListEndsTheMergeOfTheEntry) {
  for (const int rc : {16, 32, 80}) {
    oldStore().clear();
    newStore().clear();
    world.faults().clear();
    world.faults().fail({.operation = "getParamArrayValueInfo"}, rc);
    EXPECT_EQ(merge({"V3.modifiedschema"}), 0);
    const std::string code = std::to_string(rc);
    EXPECT_EQ(world.calls(),
              (Lines{"old.getParamArrayValueInfo(" + kSchema + ", zor-slapdSchemaAdditions) = " + code}));
    EXPECT_EQ(
        world.trace(),
        (Lines{entryOf(kMergeIn60),
               messageOf(kMergeIn60,
                         "mergeIn60: getParamArrayValueInfo for zor-slapdSchemaAdditions returned rc=" + code + "\n"),
               exitOf(kMergeIn60, 0)}));
    EXPECT_EQ(newStore().values(kSchema, "zor-other"), (Lines{"new"}));
  }
}

TEST_F(SchemaAdditions60, AnEntryWithoutTheAttributeIsNotMergedAtAll) {
  put(kSchema, {{"zor-other", {"old"}}});
  newStore().put(kSchema, {{"zor-other", {"new"}}});
  EXPECT_EQ(mergeIn(kSchema), 0);
  EXPECT_EQ(newStore().values(kSchema, "zor-other"), (Lines{"new"}));
  EXPECT_EQ(world.messages().size(), 1U);
}

TEST_F(SchemaAdditions60, AnEmptyListGoesOnToTheTransfer) {
  EXPECT_EQ(merge({}), 1);
  EXPECT_EQ(newStore().values(kSchema, "zor-other"), (Lines{"old"}));
  EXPECT_EQ(ruleMessages(kMergeIn60), Lines());
}

// --- Entries that only the old configuration has.

TEST_F(Rules60, AddsAnOrdinaryEntryAndReportsZero) {
  put(kOther, {{"objectclass", {"A"}}, {"cn", {"CONNECTION MANAGEMENT"}}});
  EXPECT_EQ(addTo(kOther), 1);
  EXPECT_EQ(world.trace(),
            (Lines{entryOf(kAddTo60), entryOf(kAddCfgEntry), exitOf(kAddCfgEntry, 1), exitOf(kAddTo60, 0)}));
  ASSERT_NE(newStore().find(kOther), nullptr);
}

TEST_F(Rules60, AnswersTheFailureOfAnAdditionAndReportsZero) {
  put(kOther, {{"cn", {"CONNECTION MANAGEMENT"}}});
  EXPECT_EQ(addTo(kOther), 0);
  EXPECT_EQ(world.trace().back(), exitOf(kAddTo60, 0));
}

TEST_F(Rules60, OnlyTheAuditSettingOfTheAdminAuditEntryIsCarried) {
  put(kAdminAudit, {{"objectclass", {"A"}}, {"cn", {"ADMIN AUDIT"}}, {"zor-audit", {"true", "x"}}, {"zor-a", {"b"}}});
  EXPECT_EQ(addTo(kAdminAudit), 1);
  EXPECT_EQ(world.calls(), (Lines{call("old.getParamValueInfo", kAdminAudit, "zor-audit"),
                                  call("new.setValue", kMovedAdminAudit, "zor-audit, true")}));
  EXPECT_EQ(world.trace(), (Lines{entryOf(kAddTo60), exitOf(kAddTo60, 1)}));
  EXPECT_EQ(newStore().find(kAdminAudit), nullptr);
  EXPECT_EQ(newStore().find(kMovedAdminAudit, "zor-a"), nullptr);
  EXPECT_EQ(oldStore().values(kAdminAudit, "zor-audit"), (Lines{"true", "x"}));
}

TEST_F(Rules60, AdminAuditAnswersOneWhateverHappens) {
  put(kAdminAudit, {{"zor-audit", {"true"}}});
  world.faults().fail({.operation = "getParamValueInfo"}, 80);
  EXPECT_EQ(addTo(kAdminAudit), 1);
  EXPECT_EQ(world.calls(), (Lines{call("old.getParamValueInfo", kAdminAudit, "zor-audit", 80)}));
  EXPECT_EQ(world.trace(), (Lines{entryOf(kAddTo60), exitOf(kAddTo60, 1)}));

  world.faults().clear();
  world.faults().fail({.operation = "setValue"}, 53);
  EXPECT_EQ(addTo(kAdminAudit), 1);
  EXPECT_EQ(world.trace(),
            (Lines{entryOf(kAddTo60), messageOf(kAddTo60, "addTo60: setValue for zor-audit returned rc=53\n"),
                   exitOf(kAddTo60, 1)}));
}

TEST_F(Rules60, AnAbsentAuditSettingIsSetAsNullAndReported) {
  put(kAdminAudit, {{"cn", {"ADMIN AUDIT"}}});
  EXPECT_EQ(addTo(kAdminAudit), 1);
  EXPECT_EQ(world.calls(), (Lines{call("old.getParamValueInfo", kAdminAudit, "zor-audit"),
                                  call("new.setValue", kMovedAdminAudit, "zor-audit, null", 19)}));
  EXPECT_EQ(world.messages(), (Lines{messageOf(kAddTo60, "addTo60: setValue for zor-audit returned rc=19\n")}));
}

class Audit60 : public Rules60 {
 protected:
  void SetUp() override {
    Rules60::SetUp();
    put(kAudit, {{"objectclass", {"A"}},
                 {"cn", {"AUDIT"}},
                 {"zor-slapdLog", {"log"}},
                 {"zor-auditVersion", {"2"}},
                 {"zor-auditLog", {"audit.log"}},
                 {"zor-audit", {"true"}}});
    newStore().setValue(kMovedAudit.c_str(), "zor-audit", "false");
    newStore().setValue(kMovedAudit.c_str(), "zor-slapdLog", "new log");
  }
};

TEST_F(Audit60, MovesWithoutThreeOfItsSettings) {
  EXPECT_EQ(addTo(kAudit), 1);
  EXPECT_EQ(ruleCalls(), (Lines{call("old.getParamValueInfo", kAudit, "zor-slapdLog"),
                                call("old.delValue", kAudit, "zor-slapdLog, [log]"),
                                call("old.getParamValueInfo", kAudit, "zor-auditVersion"),
                                call("old.delValue", kAudit, "zor-auditVersion, [2]"),
                                call("old.getParamValueInfo", kAudit, "zor-auditLog"),
                                call("old.delValue", kAudit, "zor-auditLog, [audit.log]")}));
  EXPECT_EQ(newStore().values(kMovedAudit, "zor-audit"), (Lines{"true"}));
  EXPECT_EQ(newStore().values(kMovedAudit, "zor-slapdLog"), (Lines{"new log"}));
  EXPECT_EQ(newStore().values(kMovedAudit, "cn"), (Lines{"x"}));
  EXPECT_EQ(newStore().find(kAudit), nullptr);
}

TEST_F(Audit60, ReportsZeroWhateverTheTransferAnswers) {
  EXPECT_EQ(addTo(kAudit), 1);
  EXPECT_EQ(world.trace().back(), exitOf(kAddTo60, 0));
  newStore().removeEntry(kMovedAudit.c_str());
  EXPECT_EQ(addTo(kAudit), 0);
  EXPECT_EQ(world.trace().back(), exitOf(kAddTo60, 0));
}

TEST_F(Audit60, AFailedDropOfTheLogIsReportedAsASet) {
  world.faults().fail({.operation = "delValue", .nth = 0}, 53);
  EXPECT_EQ(addTo(kAudit), 0) << "zor-auditVersion has no place in the moved entry";
  EXPECT_EQ(ruleMessages(kAddTo60),
            (Lines{messageOf(kAddTo60, "addTo60: setValue for zor-slapdLog returned rc=53\n"),
                   messageOf(kAddTo60, "addTo60: delValue for zor-auditVersion returned rc=53\n"),
                   messageOf(kAddTo60, "addTo60: delValue for zor-auditLog returned rc=53\n")}));
}

TEST_F(Audit60, UnreadableSettingsAreSkippedSilently) {
  world.faults().fail({.operation = "getParamValueInfo", .nth = 0}, 80);
  addTo(kAudit);
  EXPECT_EQ(ruleCalls(), (Lines{call("old.getParamValueInfo", kAudit, "zor-slapdLog", 80),
                                call("old.getParamValueInfo", kAudit, "zor-auditVersion", 80),
                                call("old.getParamValueInfo", kAudit, "zor-auditLog", 80)}));
  EXPECT_EQ(ruleMessages(kAddTo60), Lines());
}

TEST_F(Audit60, AbsentSettingsMakeEmptyDeletions) {
  oldStore().clear();
  put(kAudit, {});
  EXPECT_EQ(addTo(kAudit), 1);
  EXPECT_EQ(
      ruleCalls(),
      (Lines{call("old.getParamValueInfo", kAudit, "zor-slapdLog"), call("old.delValue", kAudit, "zor-slapdLog, []"),
             call("old.getParamValueInfo", kAudit, "zor-auditVersion"),
             call("old.delValue", kAudit, "zor-auditVersion, []"),
             call("old.getParamValueInfo", kAudit, "zor-auditLog"), call("old.delValue", kAudit, "zor-auditLog, []")}));
}

// --- The final check.

TEST_F(Rules60, TheFinalCheckDoesNothing) {
  open();
  EXPECT_EQ(newConfig().check60(&oldConfig()), 1);
  EXPECT_EQ(world.callsWithComparisons(), Lines());
  EXPECT_EQ(world.trace(), (Lines{entryOf(kCheck60), exitOf(kCheck60, 1)}));
}

}  // namespace
