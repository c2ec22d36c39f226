// The built tool, ended or made to fail at each system call from its first new file on: what it was to change is as it
// was or as it was to become, and the next run clears up.

#include <unistd.h>

#include <gmock/gmock.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <thread>

#include "SampleFiles.h"
#include "ToolProcess.h"
#include "TracedTool.h"
#include "Workspace.h"

namespace {

namespace fs = std::filesystem;

using testing::AnyOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr int kKilled = 128 + 9;
constexpr int kTerminated = 128 + 15;

// A call by which a program ends; nothing can fail there, and a signal at it comes too late.
bool isEnd(const SystemCall& call) { return call.name == "exit_group"; }

// The record of what apply has done is there to stay, for undo.
bool isLitter(const std::string& name) { return name.starts_with("."); }

class Interrupted : public testing::Test {
 protected:
  void SetUp() override {
    if (const std::string why = TracedTool::whyNot(); !why.empty()) GTEST_SKIP() << why;
  }
};

class InterruptedApply : public Interrupted {
 protected:
  void SetUp() override {
    Interrupted::SetUp();
    if (IsSkipped()) return;
    prepare();
    m_calls = m_tool.callsFromTheFirstNewFile();
    ASSERT_GT(m_calls.size(), 20U);
    m_result = m_files.read("new.ldif");
    ASSERT_NE(m_result, sample::kNew);
  }

  static void forgetEarlierRuns() { fs::remove_all("/tmp/cfgmig-traced-" + std::to_string(::getpid())); }

  void TearDown() override { forgetEarlierRuns(); }

  // As if nothing had run before: every run makes the same calls.
  void prepare() const {
    forgetEarlierRuns();
    for (const std::string& name : m_files.names()) fs::remove(m_files.path(name));
    m_files.write("old.ldif", sample::kOld, 0600);
    m_files.write("new.ldif", sample::kNew, 0640);
  }

  // Both files and the backup, and nothing else.
  void expectNamesOfASave() const {
    const auto names = m_files.names();
    EXPECT_EQ(names.size(), 3U) << testing::PrintToString(names);
    for (const std::string& name : names) EXPECT_FALSE(isLitter(name)) << name;
  }

  // Whether the result is there; it is that or the file before, whole.
  bool expectOldOrNew() const {
    const std::string content = m_files.read("new.ldif");
    EXPECT_THAT(content, AnyOf(sample::kNew, m_result));
    EXPECT_EQ(m_files.mode("new.ldif"), 0640U);
    return content == m_result;
  }

  void expectFailure(const std::string& error) {
    int failed = 0;
    for (const SystemCall& call : m_calls) {
      if (isEnd(call)) continue;
      SCOPED_TRACE(error + " at " + call.text);
      prepare();
      const int status = m_tool.runWith(call, "error=" + error);
      const bool isNew = expectOldOrNew();
      EXPECT_THAT(status, AnyOf(0, 1, 4, 5));
      EXPECT_EQ(isNew, status == 0 || status == 5) << m_tool.err();
      if (!isNew) {
        ++failed;
        EXPECT_THAT(m_files.names(), ElementsAre("new.ldif", "old.ldif"));
        EXPECT_THAT(m_tool.err(), HasSubstr("cfgmig: "));
      } else {
        expectNamesOfASave();
      }
      if (HasFailure()) return;
    }
    EXPECT_GT(failed, 5) << "at most calls a failure is one of the save";
  }

  const Workspace m_files;
  TracedTool m_tool{{"apply", "--old", m_files.path("old.ldif"), "--new", m_files.path("new.ldif"), "--from", "6.0"}};
  std::vector<SystemCall> m_calls;
  std::string m_result;
};

TEST_F(InterruptedApply, LeavesTheOldOrTheNewFileWhenItIsKilledAtAnyCall) {
  int killed = 0;
  for (const SystemCall& call : m_calls) {
    SCOPED_TRACE("killed at " + call.text);
    prepare();
    const int status = m_tool.runWith(call, "signal=KILL");
    if (status == kKilled) ++killed;
    expectOldOrNew();
    const auto again =
        runTool({"apply", "--old", m_files.path("old.ldif"), "--new", m_files.path("new.ldif"), "--from", "6.0"});
    EXPECT_EQ(again.status, 0) << again.err;
    EXPECT_EQ(m_files.read("new.ldif"), m_result);
    bool kept = false;
    for (const std::string& name : m_files.names()) {
      EXPECT_FALSE(isLitter(name)) << name;
      kept = kept || (name.ends_with(".bak") && m_files.read(name) == sample::kNew);
    }
    EXPECT_TRUE(kept) << "the file before is kept, whichever of the two runs replaced it";
    if (HasFailure()) return;
  }
  EXPECT_GT(killed, 20);
}

TEST_F(InterruptedApply, FailsWholeOrNotAtAllWhenACallAnswersEio) { expectFailure("EIO"); }

TEST_F(InterruptedApply, FailsWholeOrNotAtAllWhenACallAnswersEnospc) { expectFailure("ENOSPC"); }

TEST_F(InterruptedApply, FailsWholeOrNotAtAllWhenACallAnswersEintr) { expectFailure("EINTR"); }

TEST_F(InterruptedApply, IsNotStoppedByASignalBeforeItHasToldWhatItDid) {
  for (const char* signal : {"TERM", "INT", "HUP"}) {
    int told = 0;
    for (const SystemCall& call : m_calls) {
      if (isEnd(call)) continue;
      SCOPED_TRACE(std::string(signal) + " at " + call.text);
      prepare();
      const int status = m_tool.runWith(call, std::string("signal=") + signal);
      EXPECT_GE(status, 128) << "it ends by the signal, but later";
      EXPECT_TRUE(expectOldOrNew());
      expectNamesOfASave();
      if (m_tool.out().find("Applied ") != std::string::npos) ++told;
      if (HasFailure()) return;
      if (std::string(signal) != "TERM" && told == 3) break;  // the others are held in the same way
    }
    EXPECT_GE(told, 3);
  }
}

TEST_F(InterruptedApply, TellsASecondOneWhoIsAtWork) {
  prepare();
  m_tool.startDelaying("?rename,?renameat,?renameat2", 3);
  for (int i = 0; i < 3000 && !fs::exists(m_files.path(".new.ldif.cfgmig-old")); ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  const auto second =
      runTool({"apply", "--old", m_files.path("old.ldif"), "--new", m_files.path("new.ldif"), "--from", "6.0"});
  EXPECT_EQ(second.status, 4);
  EXPECT_THAT(second.err, testing::ContainsRegex("new.ldif: another program is writing this file: process [0-9]+ "
                                                 "\\(cfgmig\\), running since [0-9]{4}-[0-9]{2}-[0-9]{2} "));
  EXPECT_EQ(m_tool.wait(), 0) << m_tool.err();
  EXPECT_EQ(m_files.read("new.ldif"), m_result);
  expectNamesOfASave();
}

// What the tool says when another program writes the result anew right after it was put in place.
TEST_F(InterruptedApply, TellsOfAResultThatIsNotWhatItWrote) {
  const auto isRename = [](const SystemCall& call) { return call.name.starts_with("rename"); };
  const auto rename = std::find_if(m_calls.begin(), m_calls.end(), isRename);
  const auto sync = std::find_if(rename, m_calls.end(), [](const SystemCall& call) { return call.name == "fsync"; });
  ASSERT_NE(sync, m_calls.end());
  const struct {
    std::string content;
    std::string told;
  } cases[] = {
      {sample::kNew, "cfgmig: and 1 more\n"},  // of more lines than anybody reads
      {m_result + "\ndn: cn=Strange,cn=Configuration\nobjectClass: top\n",
       "in CN=STRANGE,CN=CONFIGURATION: an entry is there that neither configuration explains\n"},
      {"no configuration\n", "new.ldif:1: no colon on this line"},
  };
  for (const auto& each : cases) {
    SCOPED_TRACE(each.told);
    prepare();
    m_tool.startDelaying(*sync, 2);
    for (int i = 0; i < 3000 && m_files.read("new.ldif") != m_result; ++i) {
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    m_files.write("new.ldif", each.content, 0640);
    EXPECT_EQ(m_tool.wait(), 5) << m_tool.out();
    EXPECT_THAT(m_tool.err(), HasSubstr("new.ldif: the check of the result has failed\n"));
    EXPECT_THAT(m_tool.err(), HasSubstr(each.told));
    EXPECT_THAT(m_tool.err(), HasSubstr("see cfgmig verify; cfgmig undo "));
  }
}

TEST_F(InterruptedApply, RefusesAFileWhoseAttributesCannotBeRead) {
  prepare();
  EXPECT_EQ(m_tool.runWith({"fgetxattr", 1, ""}, "error=EIO"), 1);
  EXPECT_THAT(m_tool.err(), HasSubstr("old.ldif: its attribute system.posix_acl_access cannot be read: "));
  EXPECT_EQ(m_files.read("new.ldif"), sample::kNew);
}

constexpr char kConfiguration[] =
    "dn: cn=Configuration\ncn: Configuration\nzor-slapdVersion: 6.0\n"
    "\ndn: cn=ZOR Directory, cn=Schemas, cn=Configuration\nobjectClass: top\ncn: ZOR Directory\n"
    "zor-slapdIncludeSchema: /opt/x/my.at\nzor-slapdIncludeSchema: /opt/x/my.oc\n";

// One file is copied, another one replaces a different file.
class InterruptedSchemas : public Interrupted {
 protected:
  void SetUp() override {
    Interrupted::SetUp();
    if (IsSkipped()) return;
    fs::create_directory(m_old.path("etc"));
    m_old.write("etc/my.at", "attributes\n");
    m_old.write("etc/my.oc", "classes\n");
    prepare();
    m_calls = m_tool.callsFromTheFirstNewFile();
    ASSERT_GT(m_calls.size(), 50U);
    m_result = m_files.read("conf");
    ASSERT_THAT(m_result, HasSubstr(m_new.path("my.at")));
  }

  void prepare() const {
    for (const Workspace* workspace : {&m_files, &m_new}) {
      for (const std::string& name : workspace->names()) fs::remove(workspace->path(name));
    }
    m_files.write("conf", kConfiguration, 0640);
    m_new.write("my.oc", "another\n", 0604);
  }

  bool isAsBefore() const {
    return m_files.read("conf") == kConfiguration && m_files.names().size() == 1 && m_new.names().size() == 1 &&
           m_new.read("my.oc") == "another\n" && m_new.mode("my.oc") == 0604U;
  }
  bool isDone() const {
    return m_files.read("conf") == m_result && m_files.names().size() == 2 && m_new.names().size() == 3 &&
           m_new.read("my.at") == "attributes\n" && m_new.read("my.oc") == "classes\n";
  }
  std::string describe() const {
    return testing::PrintToString(m_files.names()) + testing::PrintToString(m_new.names()) + m_tool.err();
  }

  const Workspace m_files;
  const Workspace m_old;
  const Workspace m_new;
  const std::vector<std::string> m_words = {"schemas",      m_files.path("conf"), "--search-dir",
                                            m_old.path(""), "--target-dir",       m_new.path("")};
  TracedTool m_tool{m_words};
  std::vector<SystemCall> m_calls;
  std::string m_result;
};

TEST_F(InterruptedSchemas, IsCompletedByTheNextRunWhenItIsKilledAtAnyCall) {
  int killed = 0;
  for (const SystemCall& call : m_calls) {
    SCOPED_TRACE("killed at " + call.text);
    prepare();
    if (m_tool.runWith(call, "signal=KILL") == kKilled) ++killed;
    EXPECT_THAT(m_files.read("conf"), AnyOf(kConfiguration, m_result));
    EXPECT_THAT(m_new.read("my.oc"), AnyOf("another\n", "classes\n"));
    if (fs::exists(m_new.path("my.at"))) {
      EXPECT_EQ(m_new.read("my.at"), "attributes\n");
    }
    const auto again = runTool(m_words);
    EXPECT_EQ(again.status, 0) << again.err;
    EXPECT_TRUE(isDone()) << describe();
    if (HasFailure()) return;
  }
  EXPECT_GT(killed, 50);
}

TEST_F(InterruptedSchemas, IsDoneOrTakenBackWholeWhenACallFails) {
  for (const char* error : {"EIO", "ENOSPC"}) {
    int takenBack = 0;
    for (const SystemCall& call : m_calls) {
      if (isEnd(call)) continue;
      SCOPED_TRACE(std::string(error) + " at " + call.text);
      prepare();
      const int status = m_tool.runWith(call, std::string("error=") + error);
      EXPECT_THAT(status, AnyOf(0, 1, 4, 5));
      const bool failed = status == 1 || status == 4;
      EXPECT_TRUE(failed ? isAsBefore() : isDone()) << describe();
      if (failed) ++takenBack;
      if (HasFailure()) return;
    }
    EXPECT_GT(takenBack, 20);
  }
}

// The copies without the configuration, or the configuration without the copies, would be half of a migration.
TEST_F(InterruptedSchemas, IsNotStoppedByASignalBetweenTheCopiesAndTheSave) {
  for (const SystemCall& call : m_calls) {
    if (isEnd(call)) continue;
    SCOPED_TRACE("stopped at " + call.text);
    prepare();
    const int status = m_tool.runWith(call, "signal=TERM");
    EXPECT_EQ(status, kTerminated) << "it ends by the signal, but later";
    EXPECT_TRUE(isDone()) << describe();
    if (HasFailure()) return;
  }
}

}  // namespace
