// Tests of cfgmig schemas, and of the same options of cfgmig apply, run as a process.

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <sstream>

#include "ToolProcess.h"
#include "Workspace.h"

namespace {

namespace fs = std::filesystem;

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;
using testing::StartsWith;

constexpr char kHead[] =
    "dn: cn=Configuration\ncn: Configuration\nzor-slapdVersion: 6.0\n"
    "\ndn: cn=ZOR Directory, cn=Schemas, cn=Configuration\nobjectClass: top\ncn: ZOR Directory\n";

// The configuration and the three directories that play a part, each in a workspace of its own.
class Schemas : public testing::Test {
 protected:
  Schemas() {
    fs::create_directory(m_old.path("etc"));
    writeOld("my.at", "attributes\n");
    writeOld("my.oc", "classes\n");
    writeConfiguration({"V3.config.at", "/opt/x/my.at", "C:\\schemas\\my.oc"});
  }

  void writeOld(const std::string& name, const std::string& content) { m_old.write("etc/" + name, content); }
  void writeConfiguration(const std::vector<std::string>& includes) {
    std::string text = kHead;
    for (const std::string& include : includes) text += "zor-slapdIncludeSchema: " + include + "\n";
    m_files.write("conf", text, 0640);
  }

  ToolResult run(const std::vector<std::string>& more = {}) const {
    std::vector<std::string> words = {"schemas",      m_files.path("conf"), "--search-dir",
                                      m_old.path(""), "--target-dir",       m_new.path("")};
    words.insert(words.end(), more.begin(), more.end());
    return runTool(words);
  }

  std::string includes() const {
    const std::string text = m_files.read("conf");
    return text.substr(text.find("zor-slapdIncludeSchema"));
  }

  // Runs the command and checks that nothing at all has changed.
  ToolResult runInVain(const std::vector<std::string>& more = {}) const {
    const auto files = m_files.state();
    const auto target = m_new.state();
    auto result = run(more);
    EXPECT_EQ(m_files.state(), files);
    EXPECT_EQ(m_new.state(), target);
    return result;
  }

  const Workspace m_files;
  const Workspace m_old;
  const Workspace m_new;
};

TEST_F(Schemas, CopiesTheFilesAndPointsTheConfigurationAtThem) {
  const auto result = run();
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(result.err, "");
  EXPECT_THAT(result.out, HasSubstr("    copied     my.at\n    copied     my.oc\n"));
  EXPECT_THAT(result.out, EndsWith("Written: " + m_files.path("conf") + ".\n"));
  EXPECT_THAT(m_new.names(), ElementsAre("my.at", "my.oc"));
  EXPECT_EQ(m_new.read("my.at"), "attributes\n");
  EXPECT_EQ(m_new.mode("my.at"), 0660U);
  EXPECT_EQ(includes(), "zor-slapdIncludeSchema: V3.config.at\nzor-slapdIncludeSchema: " + m_new.path("my.at") +
                            "\nzor-slapdIncludeSchema: " + m_new.path("my.oc") + "\n");
  EXPECT_EQ(m_files.mode("conf"), 0640U);
  EXPECT_THAT(m_files.namesAfter("conf"), SizeIs(1)) << "the backup";
}

TEST_F(Schemas, HasNothingToDoTheSecondTime) {
  ASSERT_EQ(run().status, 0);
  const auto result = runInVain();
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_THAT(result.out, HasSubstr("    present    my.at\n    present    my.oc\n"));
  EXPECT_THAT(result.out, HasSubstr("Nothing to do: "));
}

TEST_F(Schemas, PreviewCopiesAndWritesNothing) {
  writeConfiguration({"/opt/x/my.at", "/opt/x/none.at"});
  m_new.write("my.at", "another\n");
  const auto result = runInVain({"-n"});
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_THAT(result.out, HasSubstr("    to copy    my.at, in place of a different file, which is kept\n"));
  EXPECT_THAT(result.out, HasSubstr("    not found  none.at\n"));
  EXPECT_THAT(result.out, HasSubstr("Preview: nothing was written"));
}

TEST_F(Schemas, WritesToAnotherFile) {
  const auto before = m_files.state();
  const auto result = run({"-o", m_files.path("out")});
  EXPECT_EQ(result.status, 0) << result.err;
  auto after = m_files.state();
  EXPECT_THAT(m_files.read("out"), HasSubstr(m_new.path("my.at")));
  after.erase("out");
  EXPECT_EQ(after, before);
}

TEST_F(Schemas, NamesFilesThatAreNotFoundAndExitsWithFive) {
  writeConfiguration({"/opt/x/my.at", "/opt/x/none.at", "no-directory"});
  const auto result = run();
  EXPECT_EQ(result.status, 5) << result.err;
  EXPECT_THAT(result.out, HasSubstr("    copied     my.at\n    not found  none.at\n"));
  EXPECT_THAT(result.out, HasSubstr("    not found  (a value without a file name)\n"));
  EXPECT_THAT(result.out, EndsWith(", with schema files missing.\n"));
  EXPECT_THAT(includes(), HasSubstr("zor-slapdIncludeSchema: /opt/x/none.at\n")) << "it stays as it was";
}

TEST_F(Schemas, NamesFilesThatCannotBeCopiedAndExitsWithFive) {
  fs::remove(m_old.path("etc/my.oc"));
  fs::create_symlink("/dev/null", m_old.path("etc/my.oc"));
  const auto result = run();
  EXPECT_EQ(result.status, 5) << result.err;
  EXPECT_THAT(result.out, HasSubstr("    not copied my.oc: is not a regular file\n"));
  EXPECT_THAT(includes(), HasSubstr("zor-slapdIncludeSchema: C:\\schemas\\my.oc\n"));
  EXPECT_THAT(m_new.names(), ElementsAre("my.at"));
}

TEST_F(Schemas, KeepsADifferentFileAndSaysWhere) {
  m_new.write("my.at", "another\n", 0604);
  const auto result = run();
  EXPECT_EQ(result.status, 0) << result.err;
  const auto kept = m_new.namesAfter("my.at");
  ASSERT_THAT(kept, SizeIs(1));
  EXPECT_THAT(result.out,
              HasSubstr("    copied     my.at, in place of a different file, which is kept\n    kept       " +
                        m_new.path(kept[0]) + "\n"));
  EXPECT_EQ(m_new.read(kept[0]), "another\n");
  EXPECT_EQ(m_new.mode(kept[0]), 0604U);
  EXPECT_EQ(m_new.read("my.at"), "attributes\n");
  EXPECT_EQ(m_new.mode("my.at"), 0660U);
}

TEST_F(Schemas, DoesNotFollowALinkOutOfTheTargetDirectory) {
  const Workspace outside;
  outside.write("mine", "mine\n");
  fs::create_symlink(outside.path("mine"), m_new.path("my.at"));
  fs::create_symlink(outside.path("none"), m_new.path("my.oc"));
  const auto before = outside.state();
  const auto result = runInVain();
  EXPECT_EQ(result.status, 5) << result.err;
  EXPECT_THAT(result.out, HasSubstr("    not copied my.at: the destination is a symbolic link\n"));
  EXPECT_EQ(outside.state(), before);
}

TEST_F(Schemas, WantsTheTargetDirectoryItselfAndNoLinkToIt) {
  const Workspace links;
  for (const char* end : {"", "/", "/."}) {
    fs::remove(links.path("link"));
    fs::create_directory_symlink(m_new.path(""), links.path("link"));
    const auto result = runTool(
        {"schemas", m_files.path("conf"), "--search-dir", m_old.path(""), "--target-dir", links.path("link") + end});
    EXPECT_EQ(result.status, 1) << end;
    EXPECT_THAT(result.err, HasSubstr("it is a symbolic link"));
    EXPECT_THAT(m_new.names(), IsEmpty());
  }
}

TEST_F(Schemas, WantsADirectoryAtTheEndOfALinkToWhereFilesAre) {
  const Workspace links;
  fs::create_directory_symlink(m_old.path("none"), links.path("link"));
  const auto words = [&] {
    return std::vector<std::string>{"schemas",          m_files.path("conf"), "--search-dir",
                                    links.path("link"), "--target-dir",       m_new.path("")};
  };
  const auto result = runTool(words());
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.err, HasSubstr("--search-dir " + links.path("link") + ": No such file or directory"));
  fs::remove(links.path("link"));
  fs::create_directory_symlink(m_old.path(""), links.path("link"));
  EXPECT_EQ(runTool(words()).status, 0);
  EXPECT_EQ(m_new.read("my.at"), "attributes\n");
}

TEST_F(Schemas, WantsDirectoriesThatExist) {
  const std::string conf = m_files.path("conf");
  for (const auto& [search, target, part] : std::vector<std::tuple<std::string, std::string, std::string>>{
           {m_old.path("none"), m_new.path(""), "--search-dir " + m_old.path("none") + ": No such file or directory"},
           {m_new.path(""), m_new.path(""), "/etc: No such file or directory"},
           {m_old.path(""), m_new.path("none"), "--target-dir " + m_new.path("none") + ": No such file or directory"},
           {m_old.path(""), conf, "it is not a directory"}}) {
    const auto before = m_files.state();
    const auto result = runTool({"schemas", conf, "--search-dir", search, "--target-dir", target});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.err, HasSubstr(part));
    EXPECT_EQ(m_files.state(), before);
  }
}

TEST_F(Schemas, TakesNoNameThatLeadsOutOfTheDirectories) {
  m_old.write("secret", "not below etc\n");
  const Workspace above;
  writeConfiguration({"/x/..", "/x/.", "/x/", "../../secret", "/etc/../secret", "/x/my.at\x1b[2J"});
  const auto result = runInVain();
  EXPECT_EQ(result.status, 5) << result.err;
  EXPECT_THAT(result.out, HasSubstr("    not found  ..\n"));
  EXPECT_THAT(result.out, HasSubstr("    not found  secret\n"));
  EXPECT_THAT(result.out, HasSubstr("    not found  my.at\\x1b[2J\n"));
  EXPECT_THAT(result.out, Not(HasSubstr("\x1b")));
}

TEST_F(Schemas, RefusesACopyOverTheConfigurationItself) {
  writeOld("conf", "a file of the same name\n");
  writeConfiguration({"/x/conf"});
  const auto before = m_files.state();
  const auto result =
      runTool({"schemas", m_files.path("conf"), "--search-dir", m_old.path(""), "--target-dir", m_files.path("")});
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.err, HasSubstr("its copy would replace the configuration"));
  EXPECT_EQ(m_files.state(), before);
}

TEST_F(Schemas, RefusesACopyOverTheOutput) {
  writeOld("out", "a file of the same name\n");
  writeConfiguration({"/x/out"});
  const auto result = runInVain({"-o", m_new.path("out")});
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.err, HasSubstr("its copy would replace the output"));
}

// The trace would be appended to it before it is looked at.
TEST_F(Schemas, RefusesASchemaFileAndAPlaceOfACopyAsTraceFile) {
  fs::create_symlink(m_old.path("etc/my.at"), m_files.path("link"));
  fs::create_hard_link(m_old.path("etc/my.oc"), m_files.path("hard"));
  const auto etc = m_old.read("etc/my.at");
  for (const std::string& trace : {m_old.path("etc/my.at"), m_files.path("link"), m_files.path("hard")}) {
    const auto result = runInVain({"--trace", trace});
    EXPECT_EQ(result.status, 2) << trace;
    EXPECT_THAT(result.err, HasSubstr("the trace file and a schema file are one file"));
  }
  EXPECT_EQ(m_old.read("etc/my.at"), etc);
  for (const char* name : {"my.at", "my.oc"}) {
    const auto result = runInVain({"-n", "--trace", m_new.path(name)});
    EXPECT_EQ(result.status, 2) << name;
    EXPECT_THAT(result.err, HasSubstr("the trace file and the copy of a schema file are one file"));
  }
  EXPECT_EQ(run({"-n", "--trace", m_new.path("trace")}).status, 0) << "any other name will do";
}

TEST_F(Schemas, TakesTheCopiesBackWhenTheConfigurationCannotBeSaved) {
  m_new.write("my.at", "another\n", 0604);
  const int file = ::open(m_files.path("conf").c_str(), O_RDONLY | O_CLOEXEC);
  ASSERT_GE(file, 0);
  ASSERT_EQ(::flock(file, LOCK_EX | LOCK_NB), 0);
  const auto names = m_new.names();
  const auto result = run();
  ::close(file);
  EXPECT_EQ(result.status, 4);
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(m_new.names(), names);
  EXPECT_EQ(m_new.read("my.at"), "another\n");
  EXPECT_EQ(m_new.mode("my.at"), 0604U);
  EXPECT_THAT(includes(), HasSubstr("/opt/x/my.at"));
}

TEST_F(Schemas, CopiesNothingWhenOneCopyOfSeveralCannotBeMade) {
  // The second copy is possible when it is looked at, and then somebody is at work on it.
  const std::string busy = m_new.write(".my.oc.cfgmig-new", "");
  const int file = ::open(busy.c_str(), O_RDONLY | O_CLOEXEC);
  ASSERT_GE(file, 0);
  ASSERT_EQ(::flock(file, LOCK_EX | LOCK_NB), 0);
  const auto result = runInVain();
  ::close(file);
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.err, HasSubstr(m_old.path("etc/my.oc") + ": cannot be copied to " + m_new.path("my.oc")));
}

TEST_F(Schemas, SaysThatThereIsNoListAndWhereOneIsThatItDoesNotLookAt) {
  m_files.write("conf", "dn: cn=Configuration\ncn: Configuration\n");
  EXPECT_EQ(runInVain().status, 0);
  EXPECT_THAT(runInVain().out, HasSubstr("    none are included\n"));
  m_files.write("conf",
                "dn: cn=Configuration\ncn: Configuration\n\ndn: cn=ZOR Halvorn, CN=SCHEMAS,CN=CONFIGURATION\n"
                "cn: ZOR Halvorn\nzor-slapdIncludeSchema: /x/my.at\n");
  const auto result = runInVain();
  EXPECT_EQ(result.status, 5);
  EXPECT_THAT(result.out, HasSubstr("not looked at: the list of cn=ZOR Halvorn"));
}

TEST_F(Schemas, NeedsNoCopyOfTheServersOwnFiles) {
  writeConfiguration({"/x/V3.config.at", "/x/V3.user.oc.bak"});
  const auto result = runInVain();
  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(result.out, HasSubstr("    none but the server's own are included\n"));
}

TEST_F(Schemas, GivesTheConfigurationAbsoluteNames) {
  const auto result = runTool(ToolSetup{
      {"schemas", m_files.path("conf"), "--search-dir", m_old.path(""), "--target-dir", "."}, {}, m_new.path("")});
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_THAT(includes(), HasSubstr("zor-slapdIncludeSchema: " + fs::canonical(m_new.path("my.at")).string() + "\n"));
}

TEST_F(Schemas, RefusesAMalformedOrMissingConfiguration) {
  m_files.write("conf", "dn: cn=configuration\nno colon\n");
  EXPECT_THAT(runInVain().err, HasSubstr(m_files.path("conf") + ":2: "));
  EXPECT_EQ(runInVain().status, 1);
  fs::remove(m_files.path("conf"));
  EXPECT_EQ(runInVain().status, 1);
}

class ApplyWithSchemas : public Schemas {
 protected:
  ApplyWithSchemas() {
    m_files.write("old", std::string(kHead) + "zor-slapdIncludeSchema: /opt/x/my.at\nzor-slapdSchemaAdditions: a\n");
    m_files.write("new", std::string(kHead) + "zor-slapdIncludeSchema: V3.config.at\n");
  }

  ToolResult apply(const std::vector<std::string>& more = {}) const {
    std::vector<std::string> words = {
        "apply",        "--old",        m_files.path("old"), "--new",       m_files.path("new"),
        "--search-dir", m_old.path(""), "--target-dir",      m_new.path("")};
    words.insert(words.end(), more.begin(), more.end());
    return runTool(words);
  }
};

TEST_F(ApplyWithSchemas, CopiesWhatTheResultIncludes) {
  const auto result = apply();
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_THAT(result.out, HasSubstr("\n  schemas   1 copied\n"));
  EXPECT_THAT(m_files.read("new"), HasSubstr("zor-slapdIncludeSchema: " + m_new.path("my.at") + "\n"));
  EXPECT_EQ(m_new.read("my.at"), "attributes\n");
}

TEST_F(ApplyWithSchemas, PreviewCopiesNothing) {
  const auto files = m_files.state();
  const auto result = apply({"-n"});
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_THAT(result.out, HasSubstr("\n  schemas   1 to-copy\n"));
  EXPECT_THAT(m_new.names(), IsEmpty());
  EXPECT_EQ(m_files.state(), files);
}

TEST_F(ApplyWithSchemas, ExitsWithFiveWhenAFileIsMissing) {
  fs::remove(m_old.path("etc/my.at"));
  const auto result = apply();
  EXPECT_EQ(result.status, 5) << result.err;
  EXPECT_THAT(result.out, HasSubstr("\n  schemas   1 missing\n"));
  EXPECT_THAT(result.err, HasSubstr("cfgmig: schema file my.at: not found\n"));
  EXPECT_THAT(result.out, StartsWith("Applied a 6.0 configuration.\n"));
}

// Its account is that of the apply, and what the next command is told to be is true.
TEST_F(ApplyWithSchemas, HasNothingToDoTheSecondTime) {
  ASSERT_EQ(apply().status, 0);
  const auto files = m_files.state();
  const auto copies = m_new.state();
  const auto second = apply();
  EXPECT_EQ(second.status, 0) << second.err;
  EXPECT_THAT(second.out, StartsWith("Nothing to do: "));
  EXPECT_THAT(second.out, HasSubstr("\n  schemas   1 present\n"));
  EXPECT_EQ(m_files.state(), files);
  EXPECT_EQ(m_new.state(), copies);
}

TEST_F(ApplyWithSchemas, NamesTheDirectoryInTheCommandThatAuditsTheResult) {
  const auto result = apply();
  const std::string next = result.out.substr(result.out.find("  next      cfgmig ") + 19);
  std::istringstream words(next);
  EXPECT_EQ(runTool({std::istream_iterator<std::string>(words), {}}).status, 0) << next;
}

// However many files do not come along, the summary is one.
TEST_F(ApplyWithSchemas, SumsUpInFifteenLines) {
  std::string text = std::string(kHead) + "zor-slapdSchemaAdditions: a\n";
  for (int i = 0; i < 40; ++i) text += "zor-slapdIncludeSchema: /opt/x/none" + std::to_string(i) + ".at\n";
  m_files.write("old", text);
  const auto result = apply();
  EXPECT_EQ(result.status, 5);
  EXPECT_LE(std::count(result.out.begin(), result.out.end(), '\n'), 15) << result.out;
  EXPECT_THAT(result.out, HasSubstr("\n  schemas   40 missing\n"));
  EXPECT_THAT(result.err, HasSubstr("cfgmig: and 20 more schema files; see --format text\n"));
}

TEST_F(ApplyWithSchemas, TakesTheCopiesBackWhenTheResultCannotBeSaved) {
  const int file = ::open(m_files.path("new").c_str(), O_RDONLY | O_CLOEXEC);
  ASSERT_EQ(::flock(file, LOCK_EX | LOCK_NB), 0);
  const auto files = m_files.state();
  const auto result = apply();
  ::close(file);
  EXPECT_EQ(result.status, 4);
  EXPECT_THAT(m_new.names(), IsEmpty());
  EXPECT_EQ(m_files.state(), files);
}

TEST_F(ApplyWithSchemas, RefusesASchemaFileOfEitherConfigurationAsTraceFile) {
  m_files.write("new", std::string(kHead) + "zor-slapdIncludeSchema: V3.config.at\nzor-slapdIncludeSchema: /y/my.oc\n");
  const auto files = m_files.state();
  for (const char* name : {"my.at", "my.oc"}) {
    EXPECT_EQ(apply({"--trace", m_old.path("etc/") + name}).status, 2) << name;
    EXPECT_EQ(apply({"--trace", m_new.path(name)}).status, 2) << name;
  }
  EXPECT_EQ(m_old.read("etc/my.at"), "attributes\n");
  EXPECT_THAT(m_new.names(), IsEmpty());
  EXPECT_EQ(m_files.state(), files);
}

TEST_F(ApplyWithSchemas, RefusesACopyOverTheOldConfiguration) {
  writeOld("old", "a file of the same name\n");
  m_files.write("old", std::string(kHead) + "zor-slapdIncludeSchema: /opt/x/old\nzor-slapdSchemaAdditions: a\n");
  const auto files = m_files.state();
  const auto result = runTool({"apply", "--old", m_files.path("old"), "--new", m_files.path("new"), "--search-dir",
                               m_old.path(""), "--target-dir", m_files.path("")});
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.err, HasSubstr("its copy would replace the old configuration"));
  EXPECT_EQ(m_files.state(), files);
}

}  // namespace
