#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <thread>

#include "../Workspace.h"
#include "Failure.h"
#include "SampleReport.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using tool::Format;

class ReportFile : public testing::Test {
 protected:
  Workspace workspace;
  std::unique_ptr<SampleLedger> sample = richLedger();
  tool::Report report = reportOf(sample->ledger());

  std::string refusal(const std::string& path) const {
    try {
      saveReport(report, Format::json, path);
      return {};
    } catch (const tool::Failure& failure) {
      EXPECT_EQ(failure.status(), tool::ExitStatus::failed);
      return failure.lines().front();
    }
  }
};

TEST_F(ReportFile, IsForItsOwnerOnlyWithSecretsAndWithout) {
  const mode_t before = ::umask(0);
  saveReport(report, Format::json, workspace.path("redacted"));
  const tool::Report open = reportOf(sample->ledger(), true);
  saveReport(open, Format::json, workspace.path("open"));
  ::umask(before);
  EXPECT_EQ(workspace.mode("redacted"), 0600U);
  EXPECT_EQ(workspace.mode("open"), 0600U);
  EXPECT_EQ(workspace.read("redacted"), written(report, Format::json));
  EXPECT_EQ(workspace.read("open"), written(open, Format::json));
  EXPECT_THAT(workspace.read("open"), HasSubstr(kPlanted));
  EXPECT_THAT(workspace.names(), ElementsAre("open", "redacted"));
}

TEST_F(ReportFile, ReplacesAReportOfEachFormatAndAnEmptyFile) {
  for (const Format format : {Format::text, Format::json, Format::ldif, Format::html}) {
    saveReport(report, format, workspace.path("file"));
    EXPECT_EQ(refusal(workspace.path("file")), "") << static_cast<int>(format);
  }
  workspace.write("empty", "", 0644);
  EXPECT_EQ(refusal(workspace.path("empty")), "");
  EXPECT_EQ(workspace.mode("empty"), 0600U) << "also when it takes the place of one that others could read";
}

TEST_F(ReportFile, LeavesAnyOtherFileAlone) {
  workspace.write("zor.conf", "dn: cn=Configuration\n");
  const auto before = workspace.state();
  EXPECT_THAT(refusal(workspace.path("zor.conf")), HasSubstr("there is a file that is no report of cfgmig"));
  EXPECT_EQ(workspace.state(), before);
}

TEST_F(ReportFile, LeavesNothingBehindWhenItCannotBeWritten) {
  EXPECT_THAT(refusal(workspace.path("none/file")), HasSubstr("No such file or directory"));
  EXPECT_THAT(refusal(workspace.path(".")), HasSubstr("Is a directory"));
  saveReport(report, Format::text, workspace.path("file"));
  const auto before = workspace.state();
  // A full disk: no file may grow beyond 100 bytes.
  struct rlimit old {};
  ::getrlimit(RLIMIT_FSIZE, &old);
  const struct rlimit limit { 100, old.rlim_max };
  const auto handler = std::signal(SIGXFSZ, SIG_IGN);
  ::setrlimit(RLIMIT_FSIZE, &limit);
  const std::string said = refusal(workspace.path("file"));
  ::setrlimit(RLIMIT_FSIZE, &old);
  std::signal(SIGXFSZ, handler);
  EXPECT_THAT(said, HasSubstr("the report cannot be written: File too large"));
  EXPECT_EQ(workspace.state(), before);
}

TEST_F(ReportFile, FollowsALink) {
  saveReport(report, Format::text, workspace.path("file"));
  ASSERT_EQ(::symlink("file", workspace.path("link").c_str()), 0);
  saveReport(report, Format::json, workspace.path("link"));
  EXPECT_EQ(workspace.read("file"), written(report, Format::json));
  EXPECT_THAT(workspace.names(), ElementsAre("file", "link"));
}

TEST_F(ReportFile, WritesToAPipeAsItIs) {
  const std::string path = workspace.path("pipe");
  ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
  std::string read;
  std::thread reader([&] {
    const int pipe = ::open(path.c_str(), O_RDONLY);
    char buffer[4096];
    for (ssize_t got = 0; (got = ::read(pipe, buffer, sizeof buffer)) > 0;) {
      read.append(buffer, static_cast<std::size_t>(got));
    }
    ::close(pipe);
  });
  saveReport(report, Format::json, path);
  reader.join();
  EXPECT_EQ(read, written(report, Format::json));
}

TEST(TextReport, HasEachValueWithItsFateAndItsPlace) {
  const auto sample = richLedger();
  const std::string text = written(reportOf(sample->ledger()), Format::text);
  EXPECT_THAT(text, HasSubstr("cfgmig report 0.1.0, 2026-11-21T09:14:00Z\n"));
  EXPECT_THAT(text, HasSubstr("  carried  zor-slapdSizeLimit: 900\n"
                              "           line 5 -> zor-slapdSizeLimit, line 4; "
                              "the old server's value is carried (mergeCfgEntry)\n"));
  EXPECT_THAT(text, HasSubstr("  lost     zor-slapdTimeLimit: 61\n"
                              "           line 8; only its first value is carried (mergeCfgEntry)\n"));
  EXPECT_THAT(text, HasSubstr("  moved    zor-slapdSysLogLevel: h\n"
                              "           line 9 -> zor-slapdLogOptions of CN=LOG, CN=CONFIGURATION, line 11; "));
  EXPECT_THAT(text, HasSubstr("  carried  zor-slapdAdminPW: [redacted]\n"));
  EXPECT_THAT(text, HasSubstr("zor-picture: base64:/9j/4EFC\n"));
  EXPECT_THAT(text, HasSubstr("zor-bell: bell\\x07\\x1b[31m\\n\n"));
  EXPECT_THAT(text, HasSubstr("zor-empty:\n"));
  EXPECT_THAT(text, HasSubstr("  added-by-rule ZOR-SLAPDMIGRATIONINFO: 4.1 MASTER\n"));
  EXPECT_THAT(text, HasSubstr("VALUES OF THE NEW SERVER THAT WERE REPLACED\n  CN=CONFIGURATION\n"
                              "           was  zor-slapdSizeLimit: 500\n"
                              "           is   zor-slapdSizeLimit: 900\n"));
  EXPECT_THAT(text, HasSubstr("zor-slapdAdminPW=[redacted] returned rc=53\\x1b[31m\n"));
  EXPECT_EQ(text.find('\x1b'), std::string::npos);
  EXPECT_EQ(text.find('\a'), std::string::npos);
}

TEST(TextReport, NamesEachFaultOfTheSums) {
  const auto sample = richLedger();
  tool::Report report = reportOf(sample->ledger());
  EXPECT_THAT(written(report, Format::text), Not(HasSubstr("  mismatch ")));
  report.mismatches = {"2 values more are the same", "no reason at all"};
  const std::string text = written(report, Format::text);
  EXPECT_THAT(text, HasSubstr("  mismatch 2 values more are the same\n"));
  EXPECT_THAT(text, HasSubstr("  mismatch no reason at all\n"));
}

}  // namespace
