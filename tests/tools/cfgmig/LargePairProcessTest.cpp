// Files that are large enough for threads of their own, most of whose entries are the same on both sides. With --trace
// each entry is merged, compared and told of; without it, nobody can tell from the output that most were only counted.

#include <gmock/gmock.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>

#include <filesystem>
#include <string>
#include <vector>

#include "ToolProcess.h"
#include "Workspace.h"

namespace {

using testing::HasSubstr;

constexpr const char* kRoot = "dn: cn=Configuration\nobjectClass: top\ncn: Configuration\nzor-slapdVersion: 6.0\n\n";

// Of 4,000 entries, one in ten differs, one in twenty is on each side only.
std::string configuration(bool isOld, const std::string& besides = "") {
  std::string text = kRoot + besides;
  for (int i = 0; i < 4000; ++i) {
    if (i % 20 == (isOld ? 1 : 2)) continue;
    const std::string number = std::to_string(i);
    text +=
        (isOld ? "dn: cn=A " : "dn: CN=a ") + number + ",cn=Configuration\nobjectClass: top\ncn: A " + number + "\n";
    for (const char* setting : {"one", "two", "three"}) {
      text += "zor-" + std::string(setting) + ": " + std::string(90, static_cast<char>('a' + i % 26)) + number + "\n";
    }
    if (i % 10 == 0) text += isOld ? "zor-four: old\n" : "zor-four: new\n";
    text += "\n";
  }
  return text;
}

bool hasEnded(const ToolProcess& tool) {
  siginfo_t info{};
  ::waitid(P_PID, static_cast<id_t>(tool.id()), &info, WEXITED | WNOHANG | WNOWAIT);
  return info.si_pid != 0;
}

class LargePair : public testing::Test {
 protected:
  LargePair() {
    m_files.write("old.ldif", configuration(true));
    m_files.write("new.ldif", configuration(false));
  }

  // What the command says on standard output, with and without a trace.
  std::string run(std::vector<std::string> words) {
    const ToolResult plain = runTool(words);
    EXPECT_EQ(plain.status, 0) << plain.err;
    return plain.out;
  }
  std::string traced(std::vector<std::string> words) {
    words.insert(words.end(), {"--trace", "/dev/null"});
    return run(std::move(words));
  }
  std::vector<std::string> pair(const std::string& command) const {
    return {command, "--old", m_files.path("old.ldif"), "--new", m_files.path("new.ldif")};
  }

  // As if no apply had run.
  void putBack(const std::string& before) const {
    m_files.write("new.ldif", before);
    for (const std::string& backup : m_files.namesAfter("new.ldif")) std::filesystem::remove(m_files.path(backup));
  }

  const Workspace m_files;
};

TEST_F(LargePair, IsPlannedAsEntryByEntry) {
  const std::string plan = run(pair("plan"));
  EXPECT_THAT(plan, HasSubstr("19403 values: 18003 same, 1400 carried"));
  EXPECT_EQ(plan, traced(pair("plan")));
}

TEST_F(LargePair, IsComparedAsEntryByEntry) {
  const std::string difference = run(pair("compare"));
  EXPECT_THAT(difference, HasSubstr("zor-four: old"));
  EXPECT_EQ(difference, traced(pair("compare")));
}

TEST_F(LargePair, IsAppliedAsEntryByEntryAndAudited) {
  auto first = pair("apply");
  first.insert(first.end(), {"-o", m_files.path("a.ldif")});
  auto second = pair("apply");
  second.insert(second.end(), {"-o", m_files.path("b.ldif")});
  run(first);
  traced(second);
  EXPECT_EQ(m_files.read("a.ldif"), m_files.read("b.ldif"));
  const std::string audit = run({"verify", "--old", m_files.path("old.ldif"), "--before", m_files.path("new.ldif"),
                                 "--result", m_files.path("a.ldif")});
  EXPECT_THAT(audit, HasSubstr("verdict  agrees"));
}

// Configurations of many megabytes are not given back piece by piece at the end.
TEST_F(LargePair, IsMergedTheSameWithManyMegabytesBesides) {
  std::string besides = "dn: cn=Large,cn=Configuration\nobjectClass: top\ncn: Large\n";
  for (char value = 'a'; value < 's'; ++value) besides += "zor-large: " + std::string(1 << 20, value) + "\n";
  besides += "\n";
  auto words = pair("apply");
  words.insert(words.end(), {"-o", m_files.path("a.ldif")});
  run(words);
  const std::string difference = run(pair("compare"));

  m_files.write("old.ldif", configuration(true, besides));
  m_files.write("new.ldif", configuration(false, besides));
  EXPECT_EQ(run(pair("compare")), difference);
  words.back() = m_files.path("b.ldif");
  EXPECT_THAT(run(words), HasSubstr("19423 values: 18023 same, 1400 carried"));
  std::string result = m_files.read("b.ldif");
  const std::size_t at = result.find(besides);
  ASSERT_NE(at, std::string::npos);
  EXPECT_EQ(result.erase(at, besides.size()), m_files.read("a.ldif"));
}

TEST_F(LargePair, TellsOfAChangeInAnEntryThatWasTheSame) {
  auto words = pair("apply");
  words.insert(words.end(), {"-o", m_files.path("a.ldif")});
  run(words);
  std::string text = m_files.read("a.ldif");
  const std::string line = "zor-two: " + std::string(90, static_cast<char>('a' + 3003 % 26)) + "3003\n";
  ASSERT_NE(text.find(line), std::string::npos);
  m_files.write("a.ldif", text.replace(text.find(line), line.size(), "zor-two: other\n"));
  const ToolResult audit = runTool({"verify", "--old", m_files.path("old.ldif"), "--before", m_files.path("new.ldif"),
                                    "--result", m_files.path("a.ldif")});
  EXPECT_EQ(audit.status, 1);
  EXPECT_THAT(audit.out, HasSubstr("CN=A 3003,CN=CONFIGURATION, zor-two: "));
}

// Has an apply stopped as soon as its new file is seen; what it said.
ToolResult applyStopped(const Workspace& files, const std::vector<std::string>& words) {
  ToolProcess tool(ToolSetup{words});
  while (!std::filesystem::exists(files.path(".new.ldif.cfgmig-new")) && !hasEnded(tool)) {
  }
  ::kill(tool.id(), SIGTERM);
  return tool.wait();
}

// Its new file is made beside other work. When it is stopped meanwhile, all is done and told, or nothing is left of it.
TEST_F(LargePair, LeavesNothingHalfDoneWhenItIsStopped) {
  const std::string before = m_files.read("new.ldif");
  int stopped = 0;
  for (int run = 0; run < 100 && stopped < 3; ++run) {
    const ToolResult result = applyStopped(m_files, pair("apply"));
    EXPECT_THAT(result.status, testing::AnyOf(128 + SIGTERM, 0)) << result.err;
    const auto names = m_files.names();
    if (m_files.read("new.ldif") == before) {
      ++stopped;
      EXPECT_THAT(names, testing::ElementsAre("new.ldif", "old.ldif"));
    } else {
      EXPECT_EQ(names.size(), 3U) << testing::PrintToString(names);
      EXPECT_THAT(result.out, HasSubstr("Applied"));
      putBack(before);
    }
    if (HasFailure()) return;
  }
  EXPECT_GT(stopped, 0);
}

TEST_F(LargePair, TellsWhatItHasClearedUpEvenWhenItIsStopped) {
  const std::string before = m_files.read("new.ldif");
  bool isStopped = false;
  for (int run = 0; run < 100 && !isStopped; ++run) {
    m_files.write(".new.ldif.cfgmig-old", "what a killed run had replaced\n");
    const ToolResult result = applyStopped(m_files, pair("apply"));
    EXPECT_THAT(result.err, HasSubstr("kept: " + m_files.path("new.ldif.")));
    isStopped = m_files.read("new.ldif") == before;
    putBack(before);
    if (HasFailure()) return;
  }
  EXPECT_TRUE(isStopped);
}

TEST_F(LargePair, IsMergedWithoutThreadsWhereThereAreNone) {
  const std::string plan = run(pair("plan"));
  ToolSetup setup{pair("plan")};
  setup.limits = {{RLIMIT_STACK, 1UL << 46U}};  // of each thread: more than there are addresses
  const ToolResult result = runTool(setup);
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(result.out, plan);
}

// Status 1 says that nothing was changed. With very little, it does not even begin, whatever the status then is.
TEST_F(LargePair, TellsWhetherItChangedSomethingHoweverLittleMemoryThereIs) {
  const std::string before = m_files.read("new.ldif");
  int changed = 0;
  for (unsigned long limit = 16; limit <= 46; ++limit) {
    SCOPED_TRACE(limit);
    ToolSetup setup{pair("apply")};
    setup.limits = {{RLIMIT_AS, limit == 46 ? RLIM_INFINITY : limit << 20U}};
    const ToolResult result = runTool(setup);
    const bool isChanged = m_files.read("new.ldif") != before;
    EXPECT_EQ(result.status == 0 || result.status == 5, isChanged) << result.status << result.err;
    if (!isChanged) continue;
    ++changed;
    putBack(before);
  }
  EXPECT_GT(changed, 0);
}

TEST_F(LargePair, NamesWhatIsWrongWithTheOldOneFirst) {
  m_files.write("old.ldif", configuration(true) + "wrong\n");
  m_files.write("new.ldif", configuration(false) + "wrong\n");
  const ToolResult result = runTool(pair("plan"));
  EXPECT_EQ(result.status, 1);
  EXPECT_LT(result.err.find("old.ldif"), result.err.find("new.ldif"));
}

}  // namespace
