// Tests of cfgmig clean, run as a process.

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/file.h>
#include <unistd.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <sstream>

#include "ExamplePath.h"
#include "ToolProcess.h"
#include "Workspace.h"

namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

const std::string kFrontEnd =
    "dn: cn=Configuration\ncn: Configuration\n"
    "\ndn: cn=Front End, cn=Configuration\ncn: Front End\n";
const std::string kSetenv = "zor-slapdSetenv: A=1\nzor-slapdSetenv: B=2\n";
const std::string kDirectory =
    "\ndn: cn=Directory, cn=RDBM Backends, cn=ZOR Directory, cn=Schemas, cn=Configuration\ncn: Directory\n";
const std::string kDatabase =
    "zor-slapdDbName: name\nzor-slapdDbAlias: alias\nzor-slapdDbInstance: inst\nzor-slapdDbUserID: user\n"
    "zor-slapdDbUserPW: Pl4nted-S3cret\nzor-slapdDbLocation: /home\n";
const std::string kChangeLogPlugin = "zor-slapdPlugin: preoperation /x/libzorldapcl.so CLInit cn=changelog\n";
const std::string kCanonicalPlugin = "zor-slapdPlugin: preoperation  libzorldapcl.so CLInit cn=changelog\n";
const std::string kOtherPlugin = "zor-slapdPlugin: postoperation /x/lib.so init\n";
const std::string kSchemaDb =
    "\ndn: cn=SchemaDB, cn=LDCF Backends, cn=ZOR Directory, cn=Schemas, cn=Configuration\ncn: SchemaDB\n";
const std::string kChangeLog =
    "\ndn: cn=Change Log, cn=RDBM Backends, cn=ZOR Directory, cn=Schemas, cn=Configuration\ncn: Change Log\n";
const std::string kRdbmPlugin = "zor-slapdPlugin: database /x/libback-rdbm.so rdbm_backend_init\n";

class Clean : public testing::Test {
 protected:
  ToolResult clean(const std::string& content, std::vector<std::string> options) {
    m_files.write("conf", content, 0640);
    return run(std::move(options));
  }
  ToolResult run(std::vector<std::string> options) const {
    options.insert(options.begin(), {"clean", m_files.path("conf")});
    auto result = runTool(options);
    EXPECT_THAT(result.out + result.err, Not(HasSubstr("Pl4nted-S3cret")));
    EXPECT_THAT(result.out + result.err, Not(HasSubstr("libzorldapcl"))) << "names only";
    return result;
  }
  std::string content() const { return m_files.read("conf"); }

  const Workspace m_files;
};

TEST_F(Clean, DatabaseRemovesFiveSettingsAndOneOfTheFrontEnd) {
  const auto result = clean(kFrontEnd + kSetenv + kDirectory + kDatabase, {"--database"});
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(content(), kFrontEnd + "zor-slapdSetenv: B=2\n" + kDirectory + "zor-slapdDbInstance: inst\n");
  EXPECT_THAT(result.out,
              HasSubstr("  --database\n    removed    zor-slapdDbName of CN=DIRECTORY,CN=RDBM BACKENDS,CN=ZOR "
                        "DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION: 1 value\n"));
  EXPECT_THAT(result.out, HasSubstr("removed    zor-slapdSetenv of CN=FRONT END,CN=CONFIGURATION: 1 value, 1 stays\n"));
  EXPECT_EQ(m_files.mode("conf"), 0640U);
  const auto backups = m_files.namesAfter("conf");
  ASSERT_THAT(backups, SizeIs(1));
  EXPECT_EQ(m_files.read(backups[0]), kFrontEnd + kSetenv + kDirectory + kDatabase);
}

// The result of the method is then the code of a read that found nothing, which is no failure.
TEST_F(Clean, DatabaseDoesNotNeedASettingOfTheFrontEnd) {
  auto result = clean(kFrontEnd + kDirectory + kDatabase, {"--database"});
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(content(), kFrontEnd + kDirectory + "zor-slapdDbInstance: inst\n");
  const std::string noFrontEnd = "dn: cn=Configuration\ncn: Configuration\n";
  result = clean(noFrontEnd + kDirectory + kDatabase, {"--database"});
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(content(), noFrontEnd + kDirectory + "zor-slapdDbInstance: inst\n");
}

TEST_F(Clean, InstanceRemovesIt) {
  const auto result = clean(kFrontEnd + kDirectory + kDatabase, {"--instance"});
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_THAT(content(), Not(HasSubstr("zor-slapdDbInstance")));
  EXPECT_THAT(content(), HasSubstr("zor-slapdDbName: name\n"));
}

TEST_F(Clean, ChangeLogRemovesTheEntryAndAPluginOfEachBackend) {
  const auto result = clean(kFrontEnd + kSchemaDb + kChangeLogPlugin + kOtherPlugin + kDirectory + kOtherPlugin +
                                kChangeLogPlugin + kChangeLog + kRdbmPlugin,
                            {"--change-log"});
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(content(), kFrontEnd + kSchemaDb + kOtherPlugin + kDirectory + kOtherPlugin);
  EXPECT_THAT(result.out, HasSubstr("removed    the entry CN=CHANGE LOG,"));
}

TEST_F(Clean, ChangeLogDoesNothingWithoutTheEntry) {
  m_files.write("conf", kFrontEnd + kSchemaDb + kChangeLogPlugin);
  const auto before = m_files.state();
  const auto result = run({"--change-log"});
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_THAT(result.out, HasSubstr("  --change-log: nothing to do\nNothing to do: "));
  EXPECT_EQ(m_files.state(), before);
}

TEST_F(Clean, ChangeLogDoesNotNeedTheBackends) {
  const auto result = clean(kFrontEnd + kChangeLog, {"--change-log"});
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(content(), kFrontEnd);
}

TEST_F(Clean, RewritePluginsGivesThemTheirCanonicalForm) {
  const auto result = clean(kFrontEnd + kSchemaDb + kChangeLogPlugin + kDirectory + kChangeLogPlugin + kChangeLog +
                                kChangeLogPlugin + kRdbmPlugin,
                            {"--rewrite-plugins"});
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(content(), kFrontEnd + kSchemaDb + kCanonicalPlugin + kDirectory + kCanonicalPlugin + kChangeLog +
                           kCanonicalPlugin + "zor-slapdPlugin: database libback-rdbm.so rdbm_backend_init\n");
  EXPECT_THAT(result.out, HasSubstr("    rewritten  zor-slapdPlugin of CN=CHANGE LOG,CN=RDBM BACKENDS,CN=ZOR "
                                    "DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION: 2 values\n"));
}

TEST_F(Clean, RewritePluginsReplacesADefinitionOfBothKindsTwice) {
  const auto result =
      clean(kFrontEnd + kChangeLog + "zor-slapdPlugin: CLInit rdbm_backend_init\n" + kDirectory + kOtherPlugin,
            {"--rewrite-plugins"});
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_THAT(content(), HasSubstr(kCanonicalPlugin + "zor-slapdPlugin: database libback-rdbm.so rdbm_backend_init\n"));
}

TEST_F(Clean, DoesEverythingAtOnceInItsOwnOrder) {
  const auto result =
      clean(kFrontEnd + kSetenv + kSchemaDb + kChangeLogPlugin + kChangeLogPlugin + kDirectory + kDatabase + kChangeLog,
            {"--rewrite-plugins", "--change-log", "--instance", "--database"});
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_LT(result.out.find("  --database\n"), result.out.find("  --instance\n"));
  EXPECT_LT(result.out.find("  --instance\n"), result.out.find("  --change-log\n"));
  EXPECT_LT(result.out.find("  --change-log\n"), result.out.find("  --rewrite-plugins"));
}

TEST_F(Clean, HasNothingToDoTheSecondTime) {
  ASSERT_EQ(clean(kFrontEnd + kDirectory + kDatabase + kChangeLog, {"--database", "--instance", "--change-log"}).status,
            0);
  const auto before = m_files.state();
  const auto result = run({"--database", "--instance", "--change-log"});
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_THAT(result.out,
              HasSubstr("  --database: nothing to do\n  --instance: nothing to do\n  --change-log: nothing to do\n"));
  EXPECT_EQ(m_files.state(), before);
}

TEST_F(Clean, HasNothingToDoInAConfigurationWithoutAnyOfIt) {
  m_files.write("conf", "dn: cn=Configuration\ncn: Configuration\n");
  const auto before = m_files.state();
  const auto result = run({"--database", "--instance", "--change-log", "--rewrite-plugins"});
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_THAT(result.out, HasSubstr("Nothing to do: "));
  EXPECT_EQ(m_files.state(), before);
}

TEST_F(Clean, PreviewWritesNothing) {
  m_files.write("conf", kFrontEnd + kSetenv + kDirectory + kDatabase);
  const auto before = m_files.state();
  const auto result = run({"-n", "--database"});
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_THAT(result.out, HasSubstr("    removed    zor-slapdDbName"));
  EXPECT_THAT(result.out,
              EndsWith("Preview: nothing was written; the result would go to " + m_files.path("conf") + ".\n"));
  EXPECT_EQ(m_files.state(), before);
}

TEST_F(Clean, WritesToAnotherFile) {
  m_files.write("conf", kFrontEnd + kDirectory + kDatabase, 0600);
  const auto before = m_files.state();
  const auto result = run({"--database", "--instance", "-o", m_files.path("out")});
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(m_files.read("out"), kFrontEnd + kDirectory);
  EXPECT_EQ(m_files.mode("out"), 0600U);
  auto after = m_files.state();
  after.erase("out");
  EXPECT_EQ(after, before);
}

TEST_F(Clean, KeepsEveryOtherLineOfAnExample) {
  const Workspace workspace;
  const auto result = runTool({"clean", examplePath("6.0/merged.ldif"), "--database", "-o", workspace.path("out")});
  EXPECT_EQ(result.status, 0) << result.err;
  std::ifstream in(examplePath("6.0/merged.ldif"));
  const std::string out = workspace.read("out");
  const auto linesOf = [](const std::string& text) { return std::count(text.begin(), text.end(), '\n'); };
  const std::string before{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
  EXPECT_EQ(linesOf(out), linesOf(before) - 6);
  std::istringstream lines(out);
  std::size_t at = 0;
  for (std::string line; std::getline(lines, line); at += line.size() + 1) {
    at = before.find(line + "\n", at);
    ASSERT_NE(at, std::string::npos) << line << " is not of the original, or not in its order";
  }
}

TEST_F(Clean, WritesNothingOfAFileThatAnotherProgramHasLocked) {
  m_files.write("conf", kFrontEnd + kDirectory + kDatabase);
  const int file = ::open(m_files.path("conf").c_str(), O_RDONLY | O_CLOEXEC);
  ASSERT_EQ(::flock(file, LOCK_EX | LOCK_NB), 0);
  const auto before = m_files.state();
  const auto result = run({"--database"});
  ::close(file);
  EXPECT_EQ(result.status, 4);
  EXPECT_EQ(result.out, "") << "nothing has happened";
  EXPECT_EQ(m_files.state(), before);
}

TEST_F(Clean, RefusesWhatIsNoConfiguration) {
  EXPECT_EQ(run({"--database"}).status, 1) << "there is no file";
  EXPECT_EQ(clean("", {"--database"}).status, 1);
  EXPECT_THAT(clean("dn: cn=configuration\nno colon\n", {"--database"}).err, HasSubstr(m_files.path("conf") + ":2: "));
  EXPECT_THAT(m_files.namesAfter("conf"), IsEmpty());
}

TEST_F(Clean, RefusesTheConfigurationAsTraceFile) {
  m_files.write("conf", kFrontEnd);
  const auto before = m_files.state();
  EXPECT_EQ(run({"--database", "--trace", m_files.path("conf")}).status, 2);
  EXPECT_EQ(m_files.state(), before);
}

TEST_F(Clean, CanBeTraced) {
  m_files.write("conf", kFrontEnd);
  const auto result = run({"--instance", "-n", "--trace", "-"});
  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(result.err, HasSubstr("entry removeDBInstInfo\nexit  removeDBInstInfo result=32\n"));
}

}  // namespace
