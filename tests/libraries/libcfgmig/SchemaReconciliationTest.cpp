// checkSchemaFiles: included schema files are looked for, copied and re-pointed, and the caller gets two lists.

#include "ConfigFileFixture.h"
#include "StandaloneMethods.h"

namespace {

using fake::nullListMessage;
using standalone::kCheckSchemaFiles;

const std::string kSchema = "CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION";
const std::string kInclude = "zor-slapdIncludeSchema";
constexpr unsigned long kFileClass = 0xc8010000;

class CheckSchemaFiles : public ConfigFileFixture {
 protected:
  // The caller's pointers before and after: something that is no list.
  CheckSchemaFiles() : mFiles(m_untouched), cFiles(m_untouched) {}

  void put(const Lines& included) {
    oldStore().clear();
    oldStore().put(kSchema, {{kInclude, included}});
  }

  int check() {
    mFiles = cFiles = m_untouched;
    open();
    return oldConfig().checkSchemaFiles(m_searchDir, "/new/etc", m_copyArg, &mFiles, &cFiles);
  }

  int check(const Lines& included) {
    put(included);
    return check();
  }

  bool isUntouched(char** files) const { return files == m_untouched; }

  // What a list holds up to its closing null, "(null)" for a null before the position `atLeast`. Releases the list as
  // its owner does.
  Lines taken(char**& files, std::size_t atLeast = 0) {
    if (files == m_untouched || files == nullptr) {
      return {"no list"};
    }
    Lines names;
    for (std::size_t i = 0; i < atLeast || files[i] != nullptr; ++i) {
      names.emplace_back(files[i] == nullptr ? "(null)" : files[i]);
      world.resources().freed(files[i]);
    }
    world.resources().freed(files);
    files = m_untouched;
    return names;
  }

  void exist(const Lines& names) {
    world.files().clear();
    for (const std::string& name : names) {
      world.files().insert("/old/etc/" + name);
    }
  }

  Lines included() { return oldStore().values(kSchema, kInclude); }

  // The calls after the list was read.
  Lines calls() const {
    Lines lines = world.callsWithComparisons();
    EXPECT_EQ(lines.front(), "old.getParamArrayValueInfo(" + kSchema + ", zor-slapdIncludeSchema) = 0");
    lines.erase(lines.begin());
    return lines;
  }

  static std::string looked(const std::string& name, bool found) {
    return "doesFileExist(/old/etc/" + name + ") = " + (found ? "1" : "0");
  }
  static std::string copied(const std::string& name, bool success = true) {
    return "copyFile(/old/etc/" + name + ", /new/etc/" + name + ", argument, 0, 432) = " + (success ? "1" : "0");
  }
  static std::string deleted(const std::string& value, int rc = 0) {
    return "old.delValue(" + kSchema + ", zor-slapdIncludeSchema, [" + value + "]) = " + std::to_string(rc);
  }
  static std::string added(const std::string& name, int rc = 0) {
    return "old.addValue(" + kSchema + ", zor-slapdIncludeSchema, /new/etc/" + name + ") = " + std::to_string(rc);
  }

  static std::string message(const std::string& text, unsigned long messageClass = 0xc8110000) {
    return messageOf(kCheckSchemaFiles, "checkSchemaFiles: " + text + "\n", messageClass);
  }
  static std::string found(const std::string& name) {
    return message("Found file: /old/etc/" + name + ".", kFileClass);
  }
  static std::string missing(const std::string& name) {
    return message("Couldn't find file: /old/etc/" + name + ".", kFileClass);
  }

  char m_searchDir[5] = "/old";
  char m_copyArg[9] = "argument";
  char* m_nothing = nullptr;
  char** const m_untouched = &m_nothing;
  char** mFiles;
  char** cFiles;
};

// --- What becomes of the files.

TEST_F(CheckSchemaFiles, AFileThatIsFoundIsCopiedAndReplaced) {
  exist({"my.oc"});
  EXPECT_EQ(check({"/opt/x/my.oc", "etc/V3.user.at"}), 0);
  EXPECT_EQ(calls(), (Lines{looked("my.oc", true), copied("my.oc"), deleted("/opt/x/my.oc"), added("my.oc")}));
  using traced::kIsOVOFile;
  EXPECT_EQ(world.trace(),
            (Lines{entryOf(kCheckSchemaFiles), entryOf(kIsOVOFile), exitOf(kIsOVOFile, 0), found("my.oc"),
                   entryOf(kIsOVOFile), exitOf(kIsOVOFile, 1), exitOf(kCheckSchemaFiles, 0)}));
  EXPECT_EQ(included(), (Lines{"etc/V3.user.at", "/new/etc/my.oc"}));
  EXPECT_TRUE(isUntouched(mFiles));
  EXPECT_EQ(taken(cFiles), (Lines{"my.oc"}));
}

TEST_F(CheckSchemaFiles, TheCopyGetsTheCallersTextItselfAndTheseTwoNumbers) {
  exist({"my.oc"});
  EXPECT_EQ(check({"my/my.oc"}), 0);
  ASSERT_EQ(world.fileCopies().size(), 1U);
  EXPECT_EQ(world.fileCopies()[0].text, m_copyArg);
  EXPECT_EQ(world.fileCopies()[0].reserved, 0);
  EXPECT_EQ(world.fileCopies()[0].permissions, 0660);
  EXPECT_EQ(taken(cFiles), (Lines{"my.oc"}));
}

TEST_F(CheckSchemaFiles, ANullTextForTheCopyIsHandedOnToo) {
  exist({"my.oc"});
  put({"my/my.oc"});
  open();
  EXPECT_EQ(oldConfig().checkSchemaFiles(m_searchDir, "/new/etc", nullptr, &mFiles, &cFiles), 0);
  EXPECT_EQ(world.fileCopies().at(0).text, nullptr);
  EXPECT_EQ(taken(cFiles), (Lines{"my.oc"}));
}

TEST_F(CheckSchemaFiles, AFileThatIsNotFoundIsListedByItsBareName) {
  EXPECT_EQ(check({"/opt/x/my.oc", "/opt/y/z.at"}), 32);
  EXPECT_EQ(calls(), (Lines{looked("my.oc", false), looked("z.at", false)}));
  EXPECT_EQ(world.messages(), (Lines{missing("my.oc"), missing("z.at")}));
  EXPECT_EQ(world.trace().back(), exitOf(kCheckSchemaFiles, 32));
  EXPECT_EQ(included(), (Lines{"/opt/x/my.oc", "/opt/y/z.at"}));
  EXPECT_EQ(taken(mFiles), (Lines{"my.oc", "z.at"}));
  EXPECT_TRUE(isUntouched(cFiles));
}

TEST_F(CheckSchemaFiles, OneMissingFileDecidesWhateverWasCopied) {
  exist({"a.oc", "c.oc"});
  EXPECT_EQ(check({"x/a.oc", "x/b.oc", "x/c.oc"}), 32);
  EXPECT_EQ(taken(mFiles), (Lines{"b.oc"}));
  EXPECT_EQ(taken(cFiles), (Lines{"a.oc", "c.oc"}));
  EXPECT_EQ(included(), (Lines{"x/b.oc", "/new/etc/a.oc", "/new/etc/c.oc"}));
}

TEST_F(CheckSchemaFiles, AFileThatCannotBeCopiedIsInNeitherList) {
  exist({"a.oc", "b.oc"});
  world.faults().fail({.operation = "copyFile", .nth = 1}, 1);
  EXPECT_EQ(check({"x/a.oc", "x/b.oc"}), 0);
  EXPECT_EQ(calls(), (Lines{looked("a.oc", true), copied("a.oc", false), looked("b.oc", true), copied("b.oc"),
                            deleted("x/b.oc"), added("b.oc")}));
  EXPECT_EQ(
      world.messages(),
      (Lines{found("a.oc"), message("Couldn't copy /old/etc/a.oc to /new/etc/a.oc.", kFileClass), found("b.oc")}));
  EXPECT_TRUE(isUntouched(mFiles));
  EXPECT_EQ(taken(cFiles), (Lines{"b.oc"}));
  EXPECT_EQ(included(), (Lines{"x/a.oc", "/new/etc/b.oc"}));
}

TEST_F(CheckSchemaFiles, NoFileThatCouldBeCopiedLeavesBothPointersAlone) {
  exist({"a.oc"});
  world.faults().fail({.operation = "copyFile"}, 1);
  EXPECT_EQ(check({"x/a.oc"}), 0);
  EXPECT_TRUE(isUntouched(mFiles));
  EXPECT_TRUE(isUntouched(cFiles));
}

TEST_F(CheckSchemaFiles, TheServersOwnFilesAreLeftAlone) {
  EXPECT_EQ(check({"/opt/V3.user.at", "V3.system.oc.bak", "V3.modifiedschema"}), 0);
  EXPECT_EQ(calls(), Lines());
  EXPECT_EQ(world.messages(), Lines());
  EXPECT_TRUE(isUntouched(mFiles));
  EXPECT_TRUE(isUntouched(cFiles));
  EXPECT_EQ(included().size(), 3U);
}

// --- The name of the file.

TEST_F(CheckSchemaFiles, TheNameIsWhatFollowsTheLastSlash) {
  struct Case {
    std::string value;
    std::string name;
  };
  for (const Case& at : {Case{"/opt/x/my.oc", "my.oc"},
                         {"x/my.oc", "my.oc"},
                         {"/my.oc", "my.oc"},
                         {"C:\\schemas\\my.oc", "my.oc"},
                         {"\\my.oc", "my.oc"},
                         {"x/y\\my.oc", "y\\my.oc"},  // backslashes only count where there is no slash
                         {"\\x/my.oc", "my.oc"},
                         {"/opt/x/", ""},
                         {"\\opt\\", ""},
                         {"my.oc", ""},
                         {"", ""}}) {
    EXPECT_EQ(check({at.value}), 32) << at.value;
    EXPECT_EQ(calls(), (Lines{looked(at.name, false)})) << at.value;
    EXPECT_EQ(taken(mFiles), (Lines{at.name})) << at.value;
    exist({at.name});
    EXPECT_EQ(check({at.value}), 0) << at.value;
    EXPECT_EQ(calls(), (Lines{looked(at.name, true), copied(at.name), deleted(at.value), added(at.name)})) << at.value;
    EXPECT_EQ(taken(cFiles), (Lines{at.name})) << at.value;
    exist({});
  }
}

TEST_F(CheckSchemaFiles, DirectoriesAreJoinedAsTheyAreGiven) {
  struct Case {
    std::string search, target, source, destination;
  };
  for (const Case& at : {Case{"/old/", "/new/", "/old//etc/my.oc", "/new//my.oc"},
                         {"", "", "/etc/my.oc", "/my.oc"},
                         {"old", "new", "old/etc/my.oc", "new/my.oc"}}) {
    put({"x/my.oc"});
    open();
    world.files() = {at.source};
    EXPECT_EQ(oldConfig().checkSchemaFiles(modifiable(at.search), at.target.c_str(), m_copyArg, &mFiles, &cFiles), 0);
    EXPECT_EQ(world.fileCopies().back().source, at.source);
    EXPECT_EQ(world.fileCopies().back().destination, at.destination);
    EXPECT_EQ(included(), (Lines{at.destination}));
    EXPECT_EQ(taken(cFiles), (Lines{"my.oc"}));
  }
}

// --- The store.

TEST_F(CheckSchemaFiles, AListThatCannotBeReadIsNoFailure) {
  for (const int rc : {16, 32, 80}) {
    put({"x/my.oc"});
    world.faults().clear();
    world.faults().fail({.operation = "getParamArrayValueInfo"}, rc);
    EXPECT_EQ(check(), 0);
    EXPECT_EQ(world.callsWithComparisons().size(), 1U);
    // Nothing is said but by the release of the list that was not filled.
    EXPECT_EQ(world.trace(), (Lines{entryOf(kCheckSchemaFiles), nullListMessage(), exitOf(kCheckSchemaFiles, 0)}));
    EXPECT_EQ(world.allocationSizes().size(), 0U);
    EXPECT_TRUE(isUntouched(mFiles));
    EXPECT_TRUE(isUntouched(cFiles));
  }
}

TEST_F(CheckSchemaFiles, DoesNotLookAtTheLegacySchemaEntry) {
  const char legacy[] = "cn=ZOR Halvorn, CN=SCHEMAS,CN=CONFIGURATION";
  oldStore().put(legacy, {{kInclude, {"x/my.oc"}}});
  EXPECT_EQ(check(), 0);
  EXPECT_EQ(world.callsWithComparisons().size(), 1U);
}

TEST_F(CheckSchemaFiles, AnEmptyListIsASuccess) {
  EXPECT_EQ(check({}), 0);
  EXPECT_EQ(calls(), Lines());
  EXPECT_EQ(world.trace(), (Lines{entryOf(kCheckSchemaFiles), exitOf(kCheckSchemaFiles, 0)}));
  EXPECT_EQ(world.allocationSizes().size(), 2U);
  EXPECT_TRUE(isUntouched(mFiles));
  EXPECT_TRUE(isUntouched(cFiles));
}

TEST_F(CheckSchemaFiles, AFailedDeletionEndsTheWalk) {
  exist({"a.oc", "b.oc", "d.oc"});
  put({"x/a.oc", "x/c.oc", "x/b.oc", "x/d.oc"});
  world.faults().fail({.operation = "delValue", .nth = 2}, 53);
  EXPECT_EQ(check(), 32);
  EXPECT_EQ(calls().back(), deleted("x/b.oc", 53));
  EXPECT_EQ(world.messages(), (Lines{found("a.oc"), missing("c.oc"), found("b.oc"),
                                     message("delValue for zor-slapdIncludeSchema returned rc=53")}));
  EXPECT_EQ(included(), (Lines{"x/c.oc", "x/b.oc", "x/d.oc", "/new/etc/a.oc"}));
  // A walk that was broken off closes no list, yet its reader comes to an end.
  EXPECT_EQ(taken(mFiles), (Lines{"c.oc"}));
  EXPECT_EQ(taken(cFiles), (Lines{"a.oc"}));
}

TEST_F(CheckSchemaFiles, AFailedAdditionEndsTheWalkWithTheOldValueGone) {
  exist({"a.oc", "b.oc"});
  put({"x/a.oc", "x/b.oc"});
  world.faults().fail({.operation = "addValue"}, 53);
  EXPECT_EQ(check(), 0);
  EXPECT_EQ(calls().back(), added("a.oc", 53));
  EXPECT_EQ(world.messages(), (Lines{found("a.oc"), message("addValue for zor-slapdIncludeSchema returned rc=53")}));
  EXPECT_EQ(included(), (Lines{"x/b.oc"}));
  EXPECT_TRUE(isUntouched(mFiles));
  EXPECT_TRUE(isUntouched(cFiles)) << "the file was copied, but is in no list";
}

// --- Memory.

TEST_F(CheckSchemaFiles, EachListHasRoomForItsClosingNull) {
  // Every file in one list, from none to many; a sanitizer guards the end, and the size is looked at besides.
  for (std::size_t count = 1; count <= 9; ++count) {
    Lines values, names;
    for (std::size_t i = 0; i < count; ++i) {
      names.push_back(std::to_string(i) + ".oc");
      values.push_back("x/" + names.back());
    }
    exist({});
    EXPECT_EQ(check(values), 32);
    EXPECT_GE(world.allocationSizes().at(0), (count + 1) * sizeof(char*));
    EXPECT_GE(world.allocationSizes().at(1), (count + 1) * sizeof(char*));
    EXPECT_EQ(mFiles[count], nullptr);
    EXPECT_EQ(taken(mFiles), names);
    exist(names);
    EXPECT_EQ(check(values), 0);
    EXPECT_EQ(cFiles[count], nullptr);
    EXPECT_EQ(taken(cFiles), names);
  }
}

TEST_F(CheckSchemaFiles, NoMemoryForTheMissingFilesAnswersNinety) {
  exist({"my.oc"});
  for (const Lines& values : {Lines{"x/my.oc", "x/other.oc"}, Lines{}}) {
    put(values);
    open();
    mFiles = cFiles = m_untouched;
    world.failAllocation(1);
    EXPECT_EQ(oldConfig().checkSchemaFiles(m_searchDir, "/new/etc", m_copyArg, &mFiles, &cFiles), 90);
    EXPECT_EQ(calls(), Lines());
    EXPECT_EQ(world.trace(), (Lines{entryOf(kCheckSchemaFiles), message("memory allocation failed for mFiles"),
                                    exitOf(kCheckSchemaFiles, 90)}));
    EXPECT_EQ(world.allocationSizes().size(), 1U);
    EXPECT_TRUE(isUntouched(mFiles));
    EXPECT_TRUE(isUntouched(cFiles));
    EXPECT_EQ(included(), values);
  }
}

TEST_F(CheckSchemaFiles, NoMemoryForTheCopiedFilesAnswersZeroWithoutAWalk) {
  put({"x/my.oc", "x/other.oc"});
  open();
  world.failAllocation(2);
  EXPECT_EQ(oldConfig().checkSchemaFiles(m_searchDir, "/new/etc", m_copyArg, &mFiles, &cFiles), 0);
  EXPECT_EQ(calls(), Lines());
  EXPECT_EQ(world.trace(), (Lines{entryOf(kCheckSchemaFiles), message("memory allocation failed for cFiles"),
                                  exitOf(kCheckSchemaFiles, 0)}));
  EXPECT_TRUE(isUntouched(mFiles));
  EXPECT_TRUE(isUntouched(cFiles));
}

TEST_F(CheckSchemaFiles, AMissingFilesNameWithoutMemoryIsANullThatCounts) {
  put({"x/a.oc", "x/b.oc", "x/c.oc"});
  open();
  world.failAllocation(4);  // the name of the second
  EXPECT_EQ(oldConfig().checkSchemaFiles(m_searchDir, "/new/etc", m_copyArg, &mFiles, &cFiles), 32);
  EXPECT_EQ(world.messages(), (Lines{missing("a.oc"), missing("b.oc"), missing("c.oc")}));
  EXPECT_EQ(taken(mFiles, 3), (Lines{"a.oc", "(null)", "c.oc"}));
}

TEST_F(CheckSchemaFiles, TheOnlyMissingFilesNameWithoutMemoryLeavesAListOfNulls) {
  put({"x/a.oc"});
  open();
  world.failAllocation(3);
  EXPECT_EQ(oldConfig().checkSchemaFiles(m_searchDir, "/new/etc", m_copyArg, &mFiles, &cFiles), 32);
  EXPECT_EQ(taken(mFiles, 1), (Lines{"(null)"}));
}

TEST_F(CheckSchemaFiles, ACopiedFilesNameWithoutMemoryEndsTheWalk) {
  exist({"a.oc", "b.oc", "c.oc"});
  put({"x/a.oc", "x/missing.oc", "x/b.oc", "x/c.oc"});
  open();
  world.failAllocation(5);  // the name of the second copy
  EXPECT_EQ(oldConfig().checkSchemaFiles(m_searchDir, "/new/etc", m_copyArg, &mFiles, &cFiles), 32);
  EXPECT_EQ(calls().back(), added("b.oc"));
  EXPECT_EQ(world.messages(), (Lines{found("a.oc"), missing("missing.oc"), found("b.oc"),
                                     message("memory allocation failed for cFiles[1]")}));
  EXPECT_EQ(taken(mFiles), (Lines{"missing.oc"}));
  EXPECT_EQ(taken(cFiles), (Lines{"a.oc"}));
  EXPECT_EQ(included(), (Lines{"x/missing.oc", "x/c.oc", "/new/etc/a.oc", "/new/etc/b.oc"}));
}

TEST_F(CheckSchemaFiles, TheFirstCopiedFilesNameWithoutMemoryHandsOutAListWithoutNames) {
  exist({"a.oc", "b.oc"});
  put({"x/a.oc", "x/b.oc"});
  open();
  world.failAllocation(3);
  EXPECT_EQ(oldConfig().checkSchemaFiles(m_searchDir, "/new/etc", m_copyArg, &mFiles, &cFiles), 0);
  EXPECT_EQ(world.messages(), (Lines{found("a.oc"), message("memory allocation failed for cFiles[0]")}));
  EXPECT_TRUE(isUntouched(mFiles));
  ASSERT_FALSE(isUntouched(cFiles)) << "the list counts as used";
  EXPECT_EQ(taken(cFiles), Lines());
}

// --- Afterwards.

TEST_F(CheckSchemaFiles, ASecondCallLooksForTheCopiesByTheirNames) {
  exist({"my.oc"});
  EXPECT_EQ(check({"x/my.oc"}), 0);
  EXPECT_EQ(taken(cFiles), (Lines{"my.oc"}));
  EXPECT_EQ(check(), 0);
  EXPECT_EQ(calls(), (Lines{looked("my.oc", true), copied("my.oc"), deleted("/new/etc/my.oc"), added("my.oc")}));
  EXPECT_EQ(taken(cFiles), (Lines{"my.oc"}));
  EXPECT_EQ(included(), (Lines{"/new/etc/my.oc"}));
}

TEST_F(CheckSchemaFiles, TwoValuesThatNameOneFileAreBothRepointedAtOneCopy) {
  exist({"my.oc"});
  EXPECT_EQ(check({"x/my.oc", "y/my.oc"}), 0);
  EXPECT_EQ(taken(cFiles), (Lines{"my.oc", "my.oc"}));
  EXPECT_EQ(included(), (Lines{"/new/etc/my.oc"}));
}

}  // namespace
