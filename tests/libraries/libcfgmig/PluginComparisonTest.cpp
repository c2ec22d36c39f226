// pluginCmp, and processPlugins, which thins the plug-in lists of the two backend entries.

#include "ConfigFileFixture.h"
#include "StandaloneMethods.h"

namespace {

using fake::nullListMessage;
using standalone::kPluginCmp;
using standalone::kProcessPlugins;

// --- pluginCmp.

class PluginCmp : public ConfigFileFixture {
 protected:
  void SetUp() override { open(); }

  int compare(const char* plugin1, const char* plugin2) {
    world.forgetCalls();
    const int result = oldConfig().pluginCmp(plugin1, plugin2);
    EXPECT_EQ(world.trace(), (Lines{entryOf(kPluginCmp), exitOf(kPluginCmp, result)}));
    EXPECT_EQ(world.callsWithComparisons(), Lines());
    return result;
  }

  // Both ways round.
  int bothWays(const char* plugin1, const char* plugin2) {
    const int result = compare(plugin1, plugin2);
    EXPECT_EQ(compare(plugin2, plugin1), result);
    return result;
  }
};

TEST_F(PluginCmp, ADefinitionEqualsItself) {
  for (const char* plugin : {"", " ", "a", "database libback-rdbm.so rdbm_backend_init"}) {
    EXPECT_EQ(compare(plugin, plugin), 1) << plugin;
  }
}

TEST_F(PluginCmp, ARunOfBlanksCountsAsOne) {
  const char one[] = "preoperation libzorldapcl.so CLInit cn=changelog";
  EXPECT_EQ(bothWays("preoperation  libzorldapcl.so CLInit cn=changelog", one), 1);
  EXPECT_EQ(bothWays("preoperation   libzorldapcl.so CLInit cn=changelog", one), 1);
  EXPECT_EQ(bothWays("preoperation    libzorldapcl.so     CLInit         cn=changelog", one), 1);
  EXPECT_EQ(bothWays("a  b", "a   b"), 1);
}

TEST_F(PluginCmp, BlanksAtTheEndsAreKept) {
  EXPECT_EQ(bothWays(" a", "a"), 0);
  EXPECT_EQ(bothWays("a ", "a"), 0);
  EXPECT_EQ(bothWays("  a", " a"), 1);
  EXPECT_EQ(bothWays("a   ", "a "), 1);
  EXPECT_EQ(bothWays("", "  "), 0);
  EXPECT_EQ(bothWays(" ", "      "), 1);
}

TEST_F(PluginCmp, NoBlankIsNotARunOfBlanks) { EXPECT_EQ(bothWays("ab", "a b"), 0); }

TEST_F(PluginCmp, LetterCaseTabsAndPathsCount) {
  EXPECT_EQ(bothWays("database lib.so init", "Database lib.so init"), 0);
  EXPECT_EQ(bothWays("database lib.so init", "database\tlib.so init"), 0);
  EXPECT_EQ(bothWays("database\t\tlib.so", "database\tlib.so"), 0);
  EXPECT_EQ(bothWays("database \tlib.so", "database  \tlib.so"), 1);
  EXPECT_EQ(bothWays("database /usr/lib/lib.so init", "database lib.so init"), 0);
}

TEST_F(PluginCmp, ABeginningIsNotTheWhole) {
  EXPECT_EQ(bothWays("database lib.so", "database lib.so init"), 0);
  EXPECT_EQ(bothWays("", "a"), 0);
}

TEST_F(PluginCmp, BytesAreComparedAsTheyAre) {
  EXPECT_EQ(bothWays("\xc3\xa4", "\xc3\x84"), 0);
  EXPECT_EQ(bothWays("\xff", "\x7f"), 0);
  EXPECT_EQ(bothWays("\xff  x", "\xff x"), 1);
}

TEST_F(PluginCmp, ALongRunOfBlanksIsNoTrouble) {
  const std::string many = "a" + std::string(200000, ' ') + "b";
  EXPECT_EQ(bothWays(many.c_str(), "a b"), 1);
}

// --- processPlugins.

const std::string kPlugin = "zor-slapdPlugin";

struct Form {
  bool legacy;
  std::string directory;
  std::string schema;
};

void PrintTo(const Form& form, std::ostream* out) { *out << (form.legacy ? "legacy" : "current"); }

const Form kForms[] = {{false, "CN=DIRECTORY,CN=RDBM BACKENDS,CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION",
                        "CN=SCHEMADB,CN=LDCF BACKENDS,CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION"},
                       {true, "cn=DIRECTORY, cn=RDBM BACKENDS, cn=ZOR Halvorn, CN=SCHEMAS,CN=CONFIGURATION",
                        "cn=SCHEMADB, cn=LDCF BACKENDS, cn=ZOR Halvorn, CN=SCHEMAS,CN=CONFIGURATION"}};

class ProcessPlugins : public ConfigFileFixture, public testing::WithParamInterface<Form> {
 protected:
  const std::string& directory() const { return GetParam().directory; }
  const std::string& schema() const { return GetParam().schema; }

  void put(const std::string& dn, const Lines& oldPlugins, const Lines& newPlugins) {
    oldStore().put(dn, {{kPlugin, oldPlugins}});
    newStore().put(dn, {{kPlugin, newPlugins}});
  }

  void putBoth() {
    put(directory(), {"a", "b"}, {"a", "c"});
    put(schema(), {"d", "e"}, {"d", "e"});
  }

  int process() {
    open();
    const int result = oldConfig().processPlugins(&newConfig(), GetParam().legacy);
    EXPECT_EQ(world.trace().front(), entryOf(kProcessPlugins));
    EXPECT_EQ(world.trace().back(), exitOf(kProcessPlugins, result));
    return result;
  }

  static std::string read(const std::string& store, const std::string& dn, int rc = 0) {
    return store + ".getParamArrayValueInfo(" + dn + ", zor-slapdPlugin) = " + std::to_string(rc);
  }
  static std::string deletion(const std::string& dn, const std::string& value, int rc = 0) {
    return "old.delValue(" + dn + ", zor-slapdPlugin, [" + value + "]) = " + std::to_string(rc);
  }
  static std::string failedDeletion(int rc, int i) {
    return messageOf(kProcessPlugins, "processPlugins: delValue for zor-slapdPlugin returned rc=" + std::to_string(rc) +
                                          ", i=" + std::to_string(i) + "\n");
  }

  // The messages of failed operations: without those about lists that were never filled.
  Lines failures() const {
    Lines lines = world.messages();
    std::erase(lines, nullListMessage());
    return lines;
  }
};

INSTANTIATE_TEST_SUITE_P(Both, ProcessPlugins, testing::ValuesIn(kForms), [](const testing::TestParamInfo<Form>& form) {
  return form.param.legacy ? "LegacyNames" : "CurrentNames";
});

TEST_P(ProcessPlugins, DeletesWhatTheOtherHoldsAtTheSamePosition) {
  put(directory(), {"a  x", "b", "c"}, {"a x", "B", "c"});
  put(schema(), {"d", "e"}, {"d", "e"});
  EXPECT_EQ(process(), 1);
  EXPECT_EQ(world.callsWithComparisons(),
            (Lines{read("new", directory()), read("old", directory()), deletion(directory(), "a  x"),
                   deletion(directory(), "c"), read("new", schema()), read("old", schema()), deletion(schema(), "d"),
                   deletion(schema(), "e")}));
  EXPECT_EQ(world.trace(),
            (Lines{entryOf(kProcessPlugins), entryOf(kPluginCmp), exitOf(kPluginCmp, 1), entryOf(kPluginCmp),
                   exitOf(kPluginCmp, 0), entryOf(kPluginCmp), exitOf(kPluginCmp, 1), entryOf(kPluginCmp),
                   exitOf(kPluginCmp, 1), entryOf(kPluginCmp), exitOf(kPluginCmp, 1), exitOf(kProcessPlugins, 1)}));
  EXPECT_EQ(oldStore().values(directory(), kPlugin), (Lines{"b"}));
  EXPECT_EQ(oldStore().find(schema(), kPlugin), nullptr);
  EXPECT_EQ(newStore().values(directory(), kPlugin), (Lines{"a x", "B", "c"}));
  EXPECT_EQ(newStore().values(schema(), kPlugin), (Lines{"d", "e"}));
}

TEST_P(ProcessPlugins, TheSamePluginsInAnotherOrderStay) {
  put(directory(), {"a", "b"}, {"b", "a"});
  put(schema(), {"d"}, {"d"});
  EXPECT_EQ(process(), 1);
  EXPECT_EQ(oldStore().values(directory(), kPlugin), (Lines{"a", "b"}));
}

TEST_P(ProcessPlugins, SurplusPluginsStay) {
  put(directory(), {"a", "b", "c"}, {"a"});
  put(schema(), {"d"}, {"d", "e"});
  EXPECT_EQ(process(), 1);
  EXPECT_EQ(oldStore().values(directory(), kPlugin), (Lines{"b", "c"}));
  EXPECT_EQ(oldStore().find(schema(), kPlugin), nullptr);
}

TEST_P(ProcessPlugins, AReadOfTheOthersDirectoryPluginsThatFailsEndsItAll) {
  for (const int rc : {16, 32, 80}) {
    oldStore().clear();
    newStore().clear();
    world.faults().clear();
    putBoth();
    world.faults().fail({.store = "new", .operation = "getParamArrayValueInfo"}, rc);
    EXPECT_EQ(process(), 0);
    EXPECT_EQ(world.callsWithComparisons(), (Lines{read("new", directory(), rc)}));
    EXPECT_EQ(failures(), Lines());
    EXPECT_EQ(oldStore().values(schema(), kPlugin), (Lines{"d", "e"}));
  }
}

TEST_P(ProcessPlugins, NoDirectoryPluginInTheOtherEndsItAll) {
  put(directory(), {"a"}, {});
  put(schema(), {"d"}, {"d"});
  EXPECT_EQ(process(), 0);
  EXPECT_EQ(world.callsWithComparisons(), (Lines{read("new", directory())}));
  EXPECT_EQ(failures(), Lines());
  EXPECT_EQ(oldStore().values(schema(), kPlugin), (Lines{"d"}));
}

TEST_P(ProcessPlugins, AReadOfThisDirectorysPluginsThatFailsEndsItAll) {
  for (const int rc : {16, 32, 80}) {
    oldStore().clear();
    newStore().clear();
    world.faults().clear();
    putBoth();
    world.faults().fail({.store = "old", .operation = "getParamArrayValueInfo"}, rc);
    EXPECT_EQ(process(), 0);
    EXPECT_EQ(world.callsWithComparisons(), (Lines{read("new", directory()), read("old", directory(), rc)}));
    EXPECT_EQ(failures(), Lines());
  }
}

TEST_P(ProcessPlugins, NoPluginHereIsNotTheEnd) {
  put(directory(), {}, {"a"});
  put(schema(), {"d"}, {"d"});
  EXPECT_EQ(process(), 1);
  EXPECT_EQ(world.callsWithComparisons(),
            (Lines{read("new", directory()), read("old", directory()), read("new", schema()), read("old", schema()),
                   deletion(schema(), "d")}));
}

TEST_P(ProcessPlugins, TheSchemaBackendEndsItInTheSameWays) {
  for (const std::string store : {"new", "old"}) {
    oldStore().clear();
    newStore().clear();
    world.faults().clear();
    putBoth();
    world.faults().fail({.store = store, .operation = "getParamArrayValueInfo", .dn = schema()}, 80);
    EXPECT_EQ(process(), 0) << store;
    EXPECT_EQ(oldStore().values(directory(), kPlugin), (Lines{"b"}));
    EXPECT_EQ(oldStore().values(schema(), kPlugin), (Lines{"d", "e"}));
    EXPECT_EQ(failures(), Lines());
  }
  oldStore().clear();
  newStore().clear();
  world.faults().clear();
  put(directory(), {"a"}, {"a"});
  put(schema(), {"d"}, {});
  EXPECT_EQ(process(), 0);
  EXPECT_EQ(world.callsWithComparisons().back(), read("new", schema()));
  EXPECT_EQ(oldStore().find(directory(), kPlugin), nullptr);
}

TEST_P(ProcessPlugins, AFailedDeletionIsReportedWithItsPositionAndGoesOn) {
  put(directory(), {"x", "a", "b"}, {"y", "a", "b"});
  put(schema(), {"d", "e"}, {"d", "e"});
  world.faults().fail({.operation = "delValue", .dn = directory(), .nth = 1}, 53);
  world.faults().fail({.operation = "delValue", .dn = schema(), .nth = 2}, 54);
  EXPECT_EQ(process(), 1);
  EXPECT_EQ(world.messages(), (Lines{failedDeletion(53, 1), failedDeletion(54, 1)}));
  EXPECT_EQ(oldStore().values(directory(), kPlugin), (Lines{"x", "a"}));
  EXPECT_EQ(oldStore().values(schema(), kPlugin), (Lines{"e"}));
}

TEST_P(ProcessPlugins, AnEntryThatIsNotThereEndsItToo) {
  putBoth();
  newStore().clear();
  EXPECT_EQ(process(), 0);
  EXPECT_EQ(world.callsWithComparisons(), (Lines{read("new", directory(), 32)}));
}

TEST_P(ProcessPlugins, TheEntriesOfTheOtherFormAreLeftAlone) {
  putBoth();
  const Form& other = kForms[GetParam().legacy ? 0 : 1];
  put(other.directory, {"a"}, {"a"});
  put(other.schema, {"d"}, {"d"});
  EXPECT_EQ(process(), 1);
  EXPECT_EQ(oldStore().values(other.directory, kPlugin), (Lines{"a"}));
  EXPECT_EQ(oldStore().values(other.schema, kPlugin), (Lines{"d"}));
}

// A path that ends early goes through the release of both lists all the same, and freeParamVals says which were null.
TEST_P(ProcessPlugins, ListsThatWereNeverFilledAreReportedOnTheWayOut) {
  putBoth();
  world.faults().fail({.store = "new", .operation = "getParamArrayValueInfo"}, 80);
  EXPECT_EQ(process(), 0);
  EXPECT_EQ(world.messages(), (Lines{nullListMessage(), nullListMessage()}));
  oldStore().clear();
  newStore().clear();
  world.faults().clear();
  putBoth();
  world.faults().fail({.store = "old", .operation = "getParamArrayValueInfo"}, 80);
  EXPECT_EQ(process(), 0);
  EXPECT_EQ(world.messages(), (Lines{nullListMessage()}));
}

}  // namespace
