// Tests that no secret of a configuration is seen where it does not belong: in no output of any command, in no trace,
// in no error, and in no file that others than the owner of the configuration may read.

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <iterator>

#include "ExamplePath.h"
#include "PlantedSecrets.h"
#include "ToolProcess.h"
#include "Workspace.h"

namespace {

namespace fs = std::filesystem;

using testing::AnyOf;
using testing::HasSubstr;

using Words = std::vector<std::string>;

// The words of a command line, with "@" in place of the directory of the files.
struct ToolRun {
  Words words;
  std::vector<int> statuses;  // that show that it did what it is here for
  Words environment = {};
  std::string outTo = {};
  std::vector<ResourceLimit> limits = {};
};

class SecretsInOutputs : public testing::Test {
 protected:
  SecretsInOutputs() : m_umask(::umask(0)) {
    fs::create_directories(m_files.path("old-server/etc"));
    fs::create_directory(m_files.path("target"));
  }
  ~SecretsInOutputs() override { ::umask(m_umask); }

  void writeConfigurations(const std::string& oldContent, const std::string& newContent) {
    m_files.write("old", oldContent, 0600);
    m_files.write("new", newContent, 0600);
  }

  std::string inPlace(std::string word) const {
    for (auto at = word.find('@'); at != std::string::npos; at = word.find('@')) word.replace(at, 1, m_files.path(""));
    return word;
  }

  ToolResult run(const ToolRun& run) const {
    ToolSetup setup{{}, {}, {}, inPlace(run.outTo), {}, run.limits};
    for (const std::string& word : run.words) setup.arguments.push_back(inPlace(word));
    for (const std::string& variable : run.environment) setup.environment.push_back(inPlace(variable));
    return runTool(setup);
  }

  // Runs the command and searches all that it leaves behind.
  ToolResult search(const ToolRun& run) const {
    SCOPED_TRACE(testing::PrintToString(run.words));
    ToolResult result = this->run(run);
    EXPECT_THAT(run.statuses, testing::Contains(result.status)) << result.err.substr(0, 1000);
    expectNone("standard output", result.out);
    expectNone("standard error", result.err);
    searchFiles();
    return result;
  }

  // What holds a secret must be closed to others, and be no trace.
  void searchFiles() const {
    for (const auto& file : fs::recursive_directory_iterator(m_files.path(""))) {
      if (!file.is_regular_file()) continue;
      const std::string name = file.path().filename();
      const std::string content = readFile(file.path());
      if (name.starts_with("trace")) expectNone(name, content);
      struct stat status {};
      ASSERT_EQ(::stat(file.path().c_str(), &status), 0);
      if ((status.st_mode & 077U) != 0) expectNone(name, content);
      EXPECT_THAT(name, testing::Not(HasSubstr(".cfgmig-"))) << "no temporary file is left";
    }
  }

  static void expectNone(const std::string& where, const std::string& text) {
    const auto at = planted::findSecret(text);
    if (at == std::string::npos) return;
    const auto begin = at < 100 ? 0 : at - 100;
    ADD_FAILURE() << "a secret in " << where << ": " << text.substr(begin, 200);
  }

  const Workspace m_files;

 private:
  mode_t m_umask;
};

// Every command in every form that reads, but writes nothing but what it is asked for.
std::vector<ToolRun> readingRuns(const std::string& version) {
  const Words apply = {"apply", "--old", "@old", "--new", "@new", "--from", version};
  const Words compare = {"compare", "--old", "@old", "--new", "@new"};
  const Words clean = {"clean", "@old", "--database", "--instance", "--change-log", "--rewrite-plugins"};
  const Words schemas = {"schemas", "@old", "--search-dir", "@old-server", "--target-dir", "@target"};
  const Words plan = {"plan", "--old", "@old", "--new", "@new", "--from", version};
  const Words verify = {"verify", "--old", "@old", "--before", "@new", "--result", "@out", "--from", version};
  const auto with = [](Words words, const Words& more) {
    words.insert(words.end(), more.begin(), more.end());
    return words;
  };
  const std::vector<int> fine = {0, 5};
  return {
      {with(apply, {"-n"}), fine},
      {with(apply, {"-n", "-v"}), fine},
      {with(apply, {"-n", "-v", "--trace", "@trace"}), fine},
      {with(apply, {"-n", "--trace", "-"}), fine},
      {with(apply, {"-n", "--trace", "@trace", "--trace-events", "0xffffffff"}), fine},
      {with(apply, {"-n"}), fine, {"LDTR_EVENTS=0xffffffff"}},
      {with(apply, {"-n"}), fine, {"LDTR_FILE=@trace"}},
      {with(apply, {"-o", "@out", "-v"}), fine},
      {with(apply, {"-o", "@out", "-v", "--search-dir", "@old-server", "--target-dir", "@target"}), fine},
      {with(apply, {"-o", "@out2"}), {1, 5}, {}, "/dev/full"},
      {with(apply, {"-o", "@none/out", "--trace", "@trace"}), {1}},
      {with(apply, {"-o", "@out3", "--trace", "/dev/full"}), {5}},
      {with(apply, {"-o", "@out4", "-v", "--trace", "-"}), {1}, {}, {}, {{RLIMIT_FSIZE, 4096}}},
      {compare, {0}},
      {with(compare, {"--json"}), {0}},
      {with(compare, {"--json", "--exit-code", "--trace", "-"}), {3}},
      {with(compare, {"-o", "@differences", "--trace", "@trace"}), {0}},
      {with(compare, {"-o", "@differences.json", "--json"}), {0}},
      {with(compare, {"-o", "@all", "--show-secrets"}), {0}},
      {with(compare, {"-o", "@all.json", "--show-secrets", "--json"}), {0}},
      {with(clean, {"-n"}), {0}},
      {with(clean, {"-o", "@cleaned", "--trace", "@trace"}), {0}},
      {with(clean, {"-o", "@cleaned2", "--trace", "-"}), {0}},
      {with(schemas, {"-n", "--trace", "-"}), {0}},
      {with(schemas, {"-o", "@reconciled", "--trace", "@trace"}), fine},
      {{"list", "@old"}, {0}},
      {{"list", "@old"}, {0}, {"LDTR_EVENTS=0xffffffff"}},
      {{"list", "@new"}, {1}, {}, "/dev/full"},
      {{"check", "@old", "--all"}, {0}},
      {{"check", "@new", "--json", "--all"}, {0}},
      {{"dump", "@old", "--redact"}, {0}},
      {{"dump", "@old", "--redact", "--json"}, {0}},
      {{"dump", "@old", "-o", "@dump"}, {0}},
      {{"dump", "@old", "--json", "-o", "@dump.json"}, {0}},
      {{"rewrite", "@old", "@copy"}, {0}},
      {with(plan, {"--trace", "@trace"}), fine},
      {with(plan, {"--format", "text"}), fine},
      {with(plan, {"--format", "json"}), fine},
      {with(plan, {"--format", "ldif"}), fine},
      {with(plan, {"--format", "html"}), fine},
      {with(plan, {"--format", "html", "-o", "@report.html", "--show-secrets"}), fine},
      {with(plan, {"-o", "@plan", "--text-report", "@t", "--json-report", "@j", "--ldif-report", "@l", "--html-report",
                   "@h", "--trace", "-"}),
       fine},
      {{"why", "@plan", "cn=configuration"}, {0}},
      {{"why", "@plan", "cn=configuration", "--json"}, {0}},
      {{"why", "@plan", "cn=configuration:zor-slapdAdminPW"}, {0}},
      {{"why", "@plan", "cn=front end,cn=configuration:zor-slapdSetenv"}, {0}},
      {with(verify, {"--all"}), fine},
      {with(verify, {"--all", "--json"}), fine},
      {{"verify", "--old", "@old", "--before", "@new", "--result", "@new", "--from", version, "--all"}, {1, 2, 5}},
      {{"verify", "--old", "@old", "--before", "@new", "--result", "@old", "--from", version, "--all"}, {1, 2, 5}},
      {{"help"}, {0}},
  };
}

class SecretsOfAMigration : public SecretsInOutputs, public testing::WithParamInterface<const char*> {
 protected:
  SecretsOfAMigration() {
    const std::string version = GetParam();
    writeConfigurations(planted::withSecrets(readFile(examplePath(version + "/old.ldif"))),
                        planted::withSecrets(readFile(examplePath(version + "/new.ldif"))));
  }
};

TEST_P(SecretsOfAMigration, AreNotSeenInWhatCommandsSay) {
  for (const ToolRun& each : readingRuns(GetParam())) search(each);
  EXPECT_NE(planted::findSecret(m_files.read("out")), std::string::npos) << "the result has them";
  EXPECT_NE(planted::findSecret(m_files.read("all")), std::string::npos);
  EXPECT_NE(planted::findSecret(m_files.read("dump.json")), std::string::npos);
  EXPECT_GT(m_files.read("trace").size(), 1000U);
}

TEST_P(SecretsOfAMigration, StayPrivateWhenFilesAreReplaced) {
  m_files.write("out", "of others\n", 0666);
  search({{"apply", "--old", "@old", "--new", "@new", "--from", GetParam(), "-o", "@out"}, {0, 5}});
  EXPECT_EQ(m_files.mode("out"), 0600U);
  for (const char* name : {"cleaned", "reconciled", "copy"}) m_files.write(name, "of others\n", 0666);
  search({{"clean", "@old", "--database", "-o", "@cleaned"}, {0}});
  search({{"schemas", "@old", "--search-dir", "@old-server", "--target-dir", "@target", "-o", "@reconciled"}, {0, 5}});
  search({{"rewrite", "@old", "@copy"}, {0}});
  for (const char* name : {"cleaned", "reconciled", "copy"}) EXPECT_EQ(m_files.mode(name), 0600U) << name;

  search({{"apply", "--old", "@old", "--new", "@new", "--from", GetParam(), "-v", "--trace", "-"}, {0, 5}});
  search({{"clean", "@new", "--database", "--change-log", "--instance", "--rewrite-plugins", "--trace", "-"}, {0}});
  search({{"schemas", "@old", "--search-dir", "@old-server", "--target-dir", "@target", "--trace", "-"}, {0, 5}});
  const auto backups = m_files.namesAfter("new");
  EXPECT_GE(backups.size(), 1U);
  for (const std::string& backup : backups) EXPECT_EQ(m_files.mode(backup), 0600U) << backup;
}

TEST_P(SecretsOfAMigration, AreNotSeenWhenTheTargetIsInUse) {
  const int file = ::open(m_files.path("new").c_str(), O_RDONLY | O_CLOEXEC);
  ASSERT_GE(file, 0);
  ASSERT_EQ(::flock(file, LOCK_EX | LOCK_NB), 0);
  const auto before = m_files.state();
  const auto result = search({{"apply", "--old", "@old", "--new", "@new", "--from", GetParam(), "-v"}, {4}});
  search({{"clean", "@new", "--database", "--rewrite-plugins"}, {0, 4}});
  ::close(file);
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(m_files.state(), before);
}

INSTANTIATE_TEST_SUITE_P(Versions, SecretsOfAMigration, testing::Values("4.1", "5.1", "5.2", "6.0"),
                         [](const auto& test) {
                           std::string name = test.param;
                           name[1] = '_';
                           return "From" + name;
                         });

// A secret on the line that is wrong, one above it and one below.
const std::string kWrongLines[] = {
    "userPassword Pl4nted-S3cret",
    "Pl4nted-S3cret",
    "user password: Pl4nted-S3cret",
    ": Pl4nted-S3cret",
    "userPassword:: !Pl4nted-S3cret!",
    "userPassword:: UGw0bnRlZC1TM2NyZXQ",   // broken off
    "userPassword:: UGw0bnRlZC1TM2NyZXQA",  // a zero byte behind it
    "userPassword:< file:///Pl4nted-S3cret",
    "userPassword: Pl4nted\rS3cret",
    std::string("userPassword: Pl4nted-S3cret\0x", 30),
    "\n userPassword: Pl4nted-S3cret",
    "\nuserPassword: Pl4nted-S3cret",
    "dn: Pl4nted-S3cret",
    "\ndn:: UGw0bnRlZC1TM2NyZXQ",
    "changetype: add\nuserPassword: Pl4nted-S3cret",
    "userPassword: Pl4n\n ted-S3cret\n\tPl4nted-S3cret",
    "version: Pl4nted-S3cret\nno colon Pl4nted-S3cret",
};

TEST_F(SecretsInOutputs, AreNotSeenInErrorsAboutTheLinesThatHoldThem) {
  const std::string head = "dn: cn=configuration\ncn: configuration\nzor-slapdAdminPW: Pl4nted-S3cret\n";
  for (const std::string& line : kWrongLines) {
    std::string content = head;
    content += line;
    content += "\nzor-slapdAdminPW: Pl4nted-S3cret\n";
    SCOPED_TRACE(testing::PrintToString(line));
    writeConfigurations(content, content);
    const auto result = search({{"check", "@old"}, {1}});
    EXPECT_THAT(result.out, HasSubstr(": error: "));
    for (const Words& words : std::vector<Words>{
             {"check", "@old", "--json", "--all"},
             {"list", "@old"},
             {"dump", "@old"},
             {"dump", "@old", "--json", "-o", "@dump"},
             {"rewrite", "@old", "@copy"},
             {"apply", "--old", "@old", "--new", "@new", "-v", "--trace", "-"},
             {"compare", "--old", "@old", "--new", "@new", "--show-secrets"},
             {"clean", "@old", "--database", "--trace", "@trace"},
             {"schemas", "@old", "--search-dir", "@old-server", "--target-dir", "@target"},
         }) {
      search({words, {1}});
    }
  }
}

TEST_F(SecretsInOutputs, AreNotSeenInWarningsAboutThem) {
  writeConfigurations(
      "dn: cn=configuration\ncn: configuration\nuserPassword: Pl4nted-S3cret\nuserPassword: Pl4nted-S3cret\n"
      "USERpassword: Pl4nted-S3cret2  \nuserPassword:: UGw0bnRlZC1TM2NyZXQ= \nuserPassword:: UGw0bnRlZC1TM2NyZXT/\n"
      "userPassword:\tPl4nted-S3cret3\nuserPassword: Pl4nted-S3cret4\x07\nx: 1\nuserPassword: Pl4nted-\n S3cret5\n"
      "# Pl4nted-S3cret6\n userPassword: Pl4nted-S3cret7\n",
      "dn: cn=x\n");
  const auto result = search({{"check", "@old", "--all"}, {0}});
  EXPECT_THAT(result.out, HasSubstr("[duplicate-value]"));
  search({{"check", "@old", "--all", "--json", "--exit-code"}, {3}});
}

TEST_F(SecretsInOutputs, AreNotSeenWhenTheyStandInThePlaceOfAVersion) {
  writeConfigurations("dn: cn=configuration\ncn: configuration\nzor-slapdVersion: Pl4nted-S3cret\n",
                      "dn: cn=configuration\ncn: configuration\nzor-slapdVersion: Pl4nted-S3cret\n");
  search({{"apply", "--old", "@old", "--new", "@new"}, {2}});
  search({{"apply", "--old", "@old", "--new", "@new", "--from", "6.0", "-n", "--trace", "-"}, {0}});
}

std::string largeConfiguration() {
  std::string content = "dn: cn=configuration\ncn: configuration\n";
  for (int i = 0; i < 5000; ++i) {
    content += "\ndn: cn=" + std::to_string(i) + ",cn=configuration\nobjectClass: top\ncn: " + std::to_string(i) +
               "\nuserPassword: Pl4nted-S3cret-" + std::to_string(i) + "\n";
  }
  return content;
}

#if defined(__SANITIZE_ADDRESS__)
#define CFGMIG_SANITIZED 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define CFGMIG_SANITIZED 1
#endif
#endif

#ifndef CFGMIG_SANITIZED  // the sanitizer itself needs more than any such limit

TEST_F(SecretsInOutputs, AreNotSeenWhenMemoryRunsOut) {
  writeConfigurations(largeConfiguration(), "dn: cn=configuration\ncn: configuration\nuserPassword: Pl4nted-S3cret\n");
  for (const Words& words : std::vector<Words>{
           {"apply", "--old", "@old", "--new", "@new", "--from", "6.0", "-n", "-v"},
           {"compare", "--old", "@old", "--new", "@new"},
           {"clean", "@old", "--database", "-n"},
           {"check", "@old", "--all"},
           {"dump", "@old", "--redact", "--json", "-o", "@dump"},
           {"rewrite", "@old", "@copy"},
           {"list", "@old"},
       }) {
    bool ranOut = false;
    for (unsigned long most = 8UL << 20U; most < 1UL << 30U; most += most / 10) {
      const auto result = run({words, {}, {}, {}, {{RLIMIT_AS, most}, {RLIMIT_CORE, RLIM_INFINITY}}});
      SCOPED_TRACE(testing::PrintToString(words) + " in " + std::to_string(most));
      expectNone("standard output", result.out);
      expectNone("standard error", result.err);
      searchFiles();
      // In a build that counts lines, what counts them complains as well.
      ranOut = ranOut || result.err.starts_with("cfgmig: not enough memory\n");
      if (result.status == 0) break;
      EXPECT_THAT(result.status, AnyOf(1, 127)) << result.err;  // 127: not even the program could be loaded
    }
    EXPECT_TRUE(ranOut) << testing::PrintToString(words);
  }
}

#endif

TEST_F(SecretsInOutputs, AreNotLeftBehindAsAnImageOfTheMemoryOfACrash) {
  writeConfigurations(largeConfiguration(), "dn: cn=configuration\ncn: configuration\n");
  const std::string pipe = m_files.path("pipe");
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  ToolProcess tool(
      ToolSetup{{"apply", "--old", m_files.path("old"), "--new", m_files.path("new"), "--from", "6.0", "--trace", pipe},
                {},
                m_files.path("target"),
                {},
                {},
                {{RLIMIT_CORE, RLIM_INFINITY}}});
  const int reader = ::open(pipe.c_str(), O_RDONLY | O_CLOEXEC);  // returns when both files have been read
  ASSERT_GE(reader, 0);
  ASSERT_EQ(::kill(tool.id(), SIGABRT), 0);
  const auto result = tool.wait();
  ::close(reader);
  EXPECT_EQ(result.status, 128 + SIGABRT);
  EXPECT_FALSE(tool.leftImage());
  fs::remove(pipe);
  searchFiles();
  expectNone("standard error", result.err);
}

}  // namespace
