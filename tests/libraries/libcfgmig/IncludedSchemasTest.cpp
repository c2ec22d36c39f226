// The server's own schema files, and how they leave a configuration's include list.

#include "ConfigFileFixture.h"

namespace {

using namespace traced;

const std::string kSchema = "CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION";
const std::string kInclude = "zor-slapdIncludeSchema";

const char* const kOwnFiles[] = {"V3.modifiedschema", "V3.config.at",    "V3.config.oc",    "V3.user.at",
                                 "V3.user.oc",        "V3.zor.at",       "V3.zor.oc",       "V3.system.at",
                                 "V3.system.oc",      "V3.ldapsyntaxes", "V3.matchingrules"};

// --- isOVOFile.

class IsOVOFile : public ConfigFileFixture {
 protected:
  void SetUp() override { construct(); }
  int ask(const std::string& name) { return newConfig().isOVOFile(name.c_str()); }
};

TEST_F(IsOVOFile, KnowsEachOwnFileBareAndInAnyPath) {
  for (const std::string name : kOwnFiles) {
    for (const std::string& form : {name, "/opt/server/etc/" + name, "etc/" + name, "C:\\etc\\" + name}) {
      EXPECT_EQ(ask(form), 1) << form;
    }
  }
}

TEST_F(IsOVOFile, ANameThatContainsAnOwnFilesNameCounts) {
  for (const std::string name : kOwnFiles) {
    for (const std::string& form : {name + ".bak", "my" + name, "/" + name + "/other.oc"}) {
      EXPECT_EQ(ask(form), 1) << form;
    }
  }
}

TEST_F(IsOVOFile, LetterCaseCounts) {
  for (std::string name : kOwnFiles) {
    name[0] = 'v';
    EXPECT_EQ(ask(name), 0) << name;
  }
  EXPECT_EQ(ask("V3.ZOR.AT"), 0);
}

TEST_F(IsOVOFile, OtherFilesAreNotTheServersOwn) {
  for (const char* name : {"", "V3", "V3.", "V3.user", "V3.user.a", "V3.my.at", "V2.user.at", "V3user.at", "my.oc"}) {
    EXPECT_EQ(ask(name), 0) << name;
  }
}

TEST_F(IsOVOFile, ReportsWhatItAnswers) {
  ask("V3.user.at");
  ask("my.oc");
  EXPECT_EQ(world.trace(),
            (Lines{entryOf(kIsOVOFile), exitOf(kIsOVOFile, 1), entryOf(kIsOVOFile), exitOf(kIsOVOFile, 0)}));
  EXPECT_EQ(world.callsWithComparisons(), Lines());
}

TEST_F(IsOVOFile, ANullNameIsReportedUnderAClassOfItsOwn) {
  EXPECT_EQ(newConfig().isOVOFile(nullptr), 0);
  EXPECT_EQ(world.trace(),
            (Lines{entryOf(kIsOVOFile), messageOf(kIsOVOFile, "isOVOFile: fileName received is NULL\n", 0xc80c0000),
                   exitOf(kIsOVOFile, 0)}));
}

// --- processIncSchema.

class ProcessIncSchema : public ConfigFileFixture {
 protected:
  int process(const Lines& included) {
    oldStore().put(kSchema, {{kInclude, included}});
    newStore().put(kSchema, {{kInclude, {"V3.user.at"}}});
    open();
    return newConfig().processIncSchema(&oldConfig());
  }

  std::string deletion(const std::string& value, int rc = 0) const {
    return "old.delValue(" + kSchema + ", " + kInclude + ", [" + value + "]) = " + std::to_string(rc);
  }

  // The records of isOVOFile for files of which it says what `answers` says.
  Lines tested(const std::vector<int>& answers) const {
    Lines lines = {entryOf(kProcessIncSchema)};
    for (const int answer : answers) {
      lines.push_back(entryOf(kIsOVOFile));
      lines.push_back(exitOf(kIsOVOFile, answer));
    }
    return lines;
  }

  Lines with(Lines lines, const Lines& rest) const {
    lines.insert(lines.end(), rest.begin(), rest.end());
    return lines;
  }

  const std::string m_read = "old.getParamArrayValueInfo(" + kSchema + ", " + kInclude + ") = 0";
};

TEST_F(ProcessIncSchema, TakesTheServersOwnFilesOutOfTheArgumentsList) {
  EXPECT_EQ(process({"etc/V3.user.at", "my.oc", "V3.modifiedschema", "/x/other.at"}), 1);
  EXPECT_EQ(world.calls(), (Lines{m_read, deletion("etc/V3.user.at"), deletion("V3.modifiedschema")}));
  EXPECT_EQ(world.trace(), with(tested({1, 0, 1, 0}), {exitOf(kProcessIncSchema, 1)}));
  EXPECT_EQ(oldStore().values(kSchema, kInclude), (Lines{"my.oc", "/x/other.at"}));
  EXPECT_EQ(newStore().values(kSchema, kInclude), (Lines{"V3.user.at"}));
}

TEST_F(ProcessIncSchema, AListOfOwnFilesOnlyLosesTheAttribute) {
  EXPECT_EQ(process(Lines(std::begin(kOwnFiles), std::end(kOwnFiles))), 1);
  EXPECT_EQ(world.calls().size(), 12U);
  EXPECT_EQ(oldStore().find(kSchema, kInclude), nullptr);
}

TEST_F(ProcessIncSchema, ReportsAFailedDeletionWithItsPositionAndGoesOn) {
  world.faults().fail({.operation = "delValue", .nth = 1}, 53);
  EXPECT_EQ(process({"my.oc", "V3.user.at", "V3.user.oc"}), 1);
  EXPECT_EQ(world.calls(), (Lines{m_read, deletion("V3.user.at", 53), deletion("V3.user.oc")}));
  EXPECT_EQ(world.messages(),
            (Lines{messageOf(kProcessIncSchema,
                             "processIncSchema: delValue for zor-slapdIncludeSchema returned rc=53, i=1\n")}));
  EXPECT_EQ(oldStore().values(kSchema, kInclude), (Lines{"my.oc", "V3.user.at"}));
}

TEST_F(ProcessIncSchema, ReportsAListThatCannotBeRead) {
  for (const int rc : {16, 32, 80}) {
    oldStore().clear();
    newStore().clear();
    world.faults().clear();
    world.faults().fail({.operation = "getParamArrayValueInfo"}, rc);
    EXPECT_EQ(process({"V3.user.at"}), 0);
    EXPECT_EQ(world.calls().size(), 1U);
    // Nothing was read, so nothing is handed to freeParamVals.
    EXPECT_EQ(world.trace(),
              (Lines{entryOf(kProcessIncSchema),
                     messageOf(kProcessIncSchema,
                               "processIncSchema: getParamArrayValueInfo for zor-slapdIncludeSchema returned rc=" +
                                   std::to_string(rc) + "\n"),
                     exitOf(kProcessIncSchema, 0)}));
    EXPECT_EQ(oldStore().values(kSchema, kInclude), (Lines{"V3.user.at"}));
  }
}

TEST_F(ProcessIncSchema, AListWithNoValueAnswersOne) {
  EXPECT_EQ(process({}), 1);
  EXPECT_EQ(world.calls(), (Lines{m_read}));
  EXPECT_EQ(world.trace(), (Lines{entryOf(kProcessIncSchema), exitOf(kProcessIncSchema, 1)}));
}

TEST_F(ProcessIncSchema, AStoreThatAnswersNoListAtAllMakesFreeParamValsReportIt) {
  // A read that succeeds and fills nothing.
  world.faults().fail({.operation = "getParamArrayValueInfo"}, 0, fake::OutParameters::cleared);
  EXPECT_EQ(process({"V3.user.at"}), 1);
  EXPECT_EQ(world.trace(), (Lines{entryOf(kProcessIncSchema), fake::nullListMessage(), exitOf(kProcessIncSchema, 1)}));
}

TEST_F(ProcessIncSchema, DoesNotLookAtTheLegacySchemaEntry) {
  const char legacy[] = "cn=ZOR Halvorn, CN=SCHEMAS,CN=CONFIGURATION";
  oldStore().put(legacy, {{kInclude, {"V3.user.at"}}});
  open();
  EXPECT_EQ(newConfig().processIncSchema(&oldConfig()), 0);
  EXPECT_EQ(oldStore().values(legacy, kInclude), (Lines{"V3.user.at"}));
}

TEST_F(ProcessIncSchema, MayBeGivenTheConfigurationItself) {
  newStore().put(kSchema, {{kInclude, {"V3.user.at", "my.oc"}}});
  open();
  EXPECT_EQ(newConfig().processIncSchema(&newConfig()), 1);
  EXPECT_EQ(newStore().values(kSchema, kInclude), (Lines{"my.oc"}));
}

TEST_F(ProcessIncSchema, WhatTheStoreThrowsPassesAfterTheExitRecord) {
  for (int call = 1; call <= 3; ++call) {
    oldStore().clear();
    newStore().clear();
    world.faults().clear();
    oldStore().put(kSchema, {{kInclude, {"V3.user.at", "V3.user.oc"}}});
    open();
    world.faults().throwAtCall(call);
    EXPECT_THROW(newConfig().processIncSchema(&oldConfig()), fake::Thrown);
    EXPECT_EQ(world.trace().back(), exitOf(kProcessIncSchema, 0));
    EXPECT_EQ(world.messages(), Lines());
    EXPECT_EQ(complaints(), Lines()) << "thrown by call " << call;
  }
}

}  // namespace
