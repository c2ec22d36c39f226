// Tests of cfgmig compare, run as a process.

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/file.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>

#include "ExamplePath.h"
#include "SampleFiles.h"
#include "ToolProcess.h"
#include "Workspace.h"

namespace {

namespace fs = std::filesystem;

using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

class Compare : public testing::Test {
 protected:
  Compare() {
    m_files.write("old", sample::kOld, 0644);
    m_files.write("new", sample::kNew, 0644);
  }

  ToolResult run(std::vector<std::string> more = {}) const {
    more.insert(more.begin(), {"compare", "--old", m_files.path("old"), "--new", m_files.path("new")});
    return runTool(more);
  }
  ToolResult runInVain(const std::vector<std::string>& more) const {
    const auto before = m_files.state();
    auto result = run(more);
    EXPECT_EQ(m_files.state(), before);
    return result;
  }

  const Workspace m_files;
};

TEST_F(Compare, WritesLdifToStandardOutputAndTouchesNothing) {
  const auto result = runInVain({});
  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(result.out, testing::StartsWith("dn: cn=Configuration\nzor-slapdPort: 389\nzor-slapdSysLogLevel: h\n"));
  EXPECT_THAT(result.out, HasSubstr("\n\ndn: cn=Only Old, cn=Configuration\nobjectClass: container\ncn: Only Old\n"));
  EXPECT_THAT(result.err, HasSubstr("--show-secrets"));
}

TEST_F(Compare, ExitsWithThreeOnlyWhenAskedAndOnlyForDifferences) {
  EXPECT_EQ(run().status, 0);
  EXPECT_EQ(run({"--exit-code"}).status, 3);
  m_files.write("new", sample::kOld);
  const auto result = run({"--exit-code"});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(result.err, "");
}

// Equal entries are passed over unless somebody looks.
TEST_F(Compare, TracesEachEntryWhereverTheTraceGoes) {
  std::string text = sample::kOld;
  for (int i = 0; i < 20; ++i) text += "\ndn: cn=Equal " + std::to_string(i) + ", cn=Configuration\nzor-x: 1\n";
  for (const char* const name : {"old", "new"}) m_files.write(name, text);
  const auto lines = [](const std::string& records) { return std::count(records.begin(), records.end(), '\n'); };
  EXPECT_EQ(run({"--trace", m_files.path("trace")}).status, 0);
  const auto all = lines(m_files.read("trace"));
  EXPECT_GT(all, 100);
  EXPECT_EQ(lines(run({"--trace", "-"}).err), all);
  const std::vector<std::string> words = {"compare", "--old", m_files.path("old"), "--new", m_files.path("new")};
  EXPECT_EQ(lines(runTool(ToolSetup{words, {"LDTR_EVENTS=0xffffffff"}}).err), all);
}

TEST_F(Compare, WritesAFileForItsOwnerOnly) {
  const auto result = run({"-o", m_files.path("out"), "--show-secrets"});
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(m_files.mode("out"), 0600U);
  EXPECT_THAT(m_files.read("out"), HasSubstr(sample::kSecret));
}

TEST_F(Compare, KeepsADifferentFileBesideItsOutput) {
  m_files.write("out", "something else\n", 0644);
  const auto result = run({"-o", m_files.path("out")});
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(m_files.mode("out"), 0600U) << "not the mode of the file that was there";
  const auto kept = m_files.namesAfter("out");
  ASSERT_THAT(kept, SizeIs(1));
  EXPECT_EQ(m_files.read(kept[0]), "something else\n");
  EXPECT_THAT(result.err, HasSubstr("kept: " + m_files.path(kept[0])));
  EXPECT_EQ(run({"-o", m_files.path("out")}).status, 0);
  EXPECT_THAT(m_files.namesAfter("out"), SizeIs(1)) << "the same result again is no different file";
}

TEST_F(Compare, ShowsPasswordsOnlyWhenAsked) {
  m_files.write("old",
                "dn: cn=Configuration\ncn: Configuration\nzor-slapdAdminPW: Pl4nted-S3cret\n"
                "zor-slapdPlugin: postoperation lib.so init password=Pl4nted-S3cret\n");
  for (const std::vector<std::string>& form : {std::vector<std::string>{}, {"--json"}}) {
    const auto hidden = run(form);
    EXPECT_THAT(hidden.out + hidden.err, Not(HasSubstr(sample::kSecret)));
    EXPECT_THAT(hidden.out, HasSubstr("redacted"));
    std::vector<std::string> asked = form;
    asked.emplace_back("--show-secrets");
    const auto shown = run(asked);
    EXPECT_THAT(shown.out, HasSubstr(sample::kSecret));
    EXPECT_THAT(shown.out, Not(HasSubstr("redacted")));
    EXPECT_EQ(shown.err, "");
  }
}

TEST_F(Compare, ShowsNoSecretOfAnyExample) {
  for (const ExampleSource& source : kExampleSources) {
    const std::string newFile = examplePath(std::string(source.version) + "/new.ldif");
    for (const char* form : {"--json", "--exit-code"}) {
      const auto result = runTool({"compare", "--old", examplePath(source.oldFile), "--new", newFile, form});
      EXPECT_THAT(result.out, Not(HasSubstr("{sealed}"))) << source.oldFile;
      EXPECT_THAT(result.out, Not(HasSubstr("m0ZBS0U"))) << source.oldFile;
      EXPECT_THAT(result.out, Not(HasSubstr("FAKE"))) << source.oldFile;
      EXPECT_THAT(result.out, HasSubstr("redacted")) << source.oldFile;
    }
  }
}

TEST_F(Compare, WritesJsonThatOthersReadOfEveryExample) {
  for (const ExampleSource& source : kExampleSources) {
    const std::string newFile = examplePath(std::string(source.version) + "/new.ldif");
    const auto result = runTool({"compare", "--old", examplePath(source.oldFile), "--new", newFile, "--json"});
    ASSERT_EQ(result.status, 0) << result.err;
    const auto json = nlohmann::json::parse(result.out);
    EXPECT_EQ(json["format_version"], 1);
    ASSERT_GT(json["entries"].size(), 10U);
    for (const auto& entry : json["entries"]) {
      EXPECT_TRUE(entry["dn"].is_string());
      EXPECT_TRUE(entry["only_old"].is_boolean());
      for (const auto& attribute : entry["attributes"]) {
        EXPECT_FALSE(attribute["values"].empty()) << attribute;
        for (const auto& value : attribute["values"]) EXPECT_EQ(value.size(), 1U) << value;
      }
    }
  }
}

TEST_F(Compare, FindsNothingBetweenAnExampleAndItself) {
  for (const ExampleSource& source : kExampleSources) {
    const Workspace workspace;
    fs::copy_file(examplePath(source.oldFile), workspace.path("copy"));
    const auto result =
        runTool({"compare", "--old", examplePath(source.oldFile), "--new", workspace.path("copy"), "--exit-code"});
    EXPECT_EQ(result.status, 0) << source.oldFile << result.out;
    EXPECT_EQ(result.out, "");
  }
}

TEST_F(Compare, RefusesAnInputAsOutputHoweverItIsNamed) {
  fs::create_symlink("old", m_files.path("soft"));
  fs::create_hard_link(m_files.path("new"), m_files.path("hard"));
  for (const char* name : {"old", "new", "./old", "soft", "hard"}) {
    const auto result = runInVain({"-o", m_files.path(name)});
    EXPECT_EQ(result.status, 2) << name;
    EXPECT_THAT(result.err, HasSubstr("are one file"));
    EXPECT_EQ(runInVain({"--trace", m_files.path(name)}).status, 2) << name;
  }
  EXPECT_EQ(runTool({"compare", "--old", m_files.path("old"), "--new", m_files.path("soft")}).status, 2);
}

TEST_F(Compare, RefusesAnOutputThatCannotBeWritten) {
  EXPECT_EQ(runInVain({"-o", m_files.path("none/out")}).status, 1);
  EXPECT_EQ(runInVain({"-o", m_files.path(".")}).status, 1);
  EXPECT_EQ(runInVain({"-o", "/dev/null"}).status, 1);
}

TEST_F(Compare, DoesNotFollowALinkAtItsOutput) {
  const Workspace outside;
  outside.write("mine", "mine\n");
  fs::create_symlink(outside.path("mine"), m_files.path("out"));
  EXPECT_EQ(runInVain({"-o", m_files.path("out")}).status, 1);
  EXPECT_EQ(outside.read("mine"), "mine\n");
}

TEST_F(Compare, DoesNotWriteWhereAnotherProgramIsAtWork) {
  const int file = ::open(m_files.write("out", "mine\n").c_str(), O_RDONLY | O_CLOEXEC);
  ASSERT_GE(file, 0);
  ASSERT_EQ(::flock(file, LOCK_EX | LOCK_NB), 0);
  const auto result = runInVain({"-o", m_files.path("out")});
  ::close(file);
  EXPECT_EQ(result.status, 4);
  EXPECT_THAT(result.err, HasSubstr(m_files.path("out") + ": another program is writing this file"));
}

TEST_F(Compare, RefusesWhatIsNoConfiguration) {
  m_files.write("new", "dn: cn=configuration\nno colon\n");
  EXPECT_THAT(runInVain({}).err, HasSubstr(m_files.path("new") + ":2: "));
  m_files.write("new", "");
  const auto result = runInVain({"-o", m_files.path("out")});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.out, "");
}

TEST_F(Compare, TellsThatItsOutputCannotBeWritten) {
  const auto result =
      runTool(ToolSetup{{"compare", "--old", m_files.path("old"), "--new", m_files.path("new")}, {}, {}, "/dev/full"});
  EXPECT_EQ(result.status, 1);
}

}  // namespace
