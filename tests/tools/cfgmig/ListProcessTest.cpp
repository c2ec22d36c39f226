// Tests of cfgmig list, run as a process.

#include <gmock/gmock.h>

#include <algorithm>

#include "SampleFiles.h"
#include "ToolProcess.h"
#include "Workspace.h"

namespace {

using testing::HasSubstr;
using testing::Not;

TEST(List, WritesTheNormalDnsInTheOrderOfTheFile) {
  const Workspace workspace;
  const auto result = runTool({"list", workspace.write("old.ldif", sample::kOld)});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.out,
            "CN=CONFIGURATION\n"
            "CN=FRONT END,CN=CONFIGURATION\n"
            "CN=ONLY OLD,CN=CONFIGURATION\n"
            "CN=ADMIN AUDIT,CN=CONFIGURATION\n"
            "CN=AUDIT,CN=CONFIGURATION\n");
  EXPECT_EQ(result.err, "");
}

TEST(List, TouchesNothing) {
  const Workspace workspace;
  workspace.write("old.ldif", sample::kOld);
  const auto before = workspace.state();
  EXPECT_EQ(runTool({"list", workspace.path("old.ldif")}).status, 0);
  EXPECT_EQ(workspace.state(), before);
}

TEST(List, RefusesToTraceIntoTheConfiguration) {
  const Workspace workspace;
  workspace.write("old.ldif", sample::kOld);
  const auto before = workspace.state();
  const std::string file = workspace.path("old.ldif");
  const auto result = runTool(ToolSetup{{"list", file}, {"LDTR_FILE=" + file}});
  EXPECT_EQ(result.status, 2);
  EXPECT_THAT(result.err, HasSubstr("the trace file and the configuration are one file"));
  EXPECT_EQ(workspace.state(), before);
}

TEST(List, LeavesOutWhatIsNotUnderConfiguration) {
  const Workspace workspace;
  workspace.write("f", "dn: cn=other\ncn: other\n\ndn: cn=configuration\ncn: configuration\n");
  EXPECT_EQ(runTool({"list", workspace.path("f")}).out, "CN=CONFIGURATION\n");
}

TEST(List, RefusesAFileWithoutAConfiguration) {
  const Workspace workspace;
  for (const char* content : {"", "# nothing\n", "dn: cn=other\ncn: other\n"}) {
    const auto result = runTool({"list", workspace.write("f", content)});
    EXPECT_EQ(result.status, 1) << content;
    EXPECT_THAT(result.err, HasSubstr(workspace.path("f") + ": ")) << content;
    EXPECT_EQ(result.out, "") << content;
  }
}

TEST(List, TellsAMissingFile) {
  const Workspace workspace;
  const auto result = runTool({"list", workspace.path("missing.ldif")});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.out, "");
  EXPECT_THAT(result.err, HasSubstr("cfgmig: " + workspace.path("missing.ldif") + ": "));
  EXPECT_THAT(result.err, HasSubstr("No such file or directory"));
}

TEST(List, TellsEveryMalformedLineWithItsNumber) {
  const Workspace workspace;
  const std::string file = workspace.write("f",
                                           "dn: cn=configuration\n"
                                           "no colon here\n"
                                           "cn: configuration\n"
                                           "zor-adminPW:: !!Pl4nted-S3cret!!\n");
  const auto result = runTool({"list", file});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.out, "");
  EXPECT_THAT(result.err, HasSubstr("cfgmig: " + file + ":2: "));
  EXPECT_THAT(result.err, HasSubstr("cfgmig: " + file + ":4: "));
  EXPECT_THAT(result.err, Not(HasSubstr(sample::kSecret)));
}

TEST(List, TellsAllProblemsInOneRun) {
  const Workspace workspace;
  std::string content = "dn: cn=configuration\n";
  for (int i = 0; i < 60; ++i) content += "no colon here\n";
  const std::string file = workspace.write("f", content);
  const auto result = runTool({"list", file});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 60);
  EXPECT_THAT(result.err, HasSubstr("cfgmig: " + file + ":61: "));
}

TEST(List, TellsTheFirstOfMoreProblemsThanAnybodyMends) {
  const Workspace workspace;
  std::string content = "dn: cn=configuration\n";
  for (int i = 0; i < 100000; ++i) content += "no colon here\n";
  const auto result = runTool({"list", workspace.write("f", content)});
  EXPECT_EQ(result.status, 1);
  EXPECT_LE(std::count(result.err.begin(), result.err.end(), '\n'), 1001);
  EXPECT_THAT(result.err, HasSubstr("too many problems"));
}

TEST(List, ShowsAPathInPrintableForm) {
  const auto result = runTool({"list", "/no\x1b[2Jsuch\nfile"});
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.err, HasSubstr("/no\\x1b[2Jsuch\\nfile"));
}

TEST(List, ShowsDnsInPrintableForm) {
  const Workspace workspace;
  // A value that is not UTF-8: an escaped byte 0xff.
  workspace.write("f", "dn: cn=configuration\ncn: configuration\n\ndn:: Y249QVxGRkIsY249Y29uZmlndXJhdGlvbg==\ncn: x\n");
  const auto result = runTool({"list", workspace.path("f")});
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(result.out, "CN=CONFIGURATION\nCN=A\\FFB,CN=CONFIGURATION\n");
}

TEST(List, TellsThatItsOutputCannotBeWritten) {
  const Workspace workspace;
  const auto result = runTool(ToolSetup{{"list", workspace.write("f", sample::kOld)}, {}, {}, "/dev/full"});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.err, "cfgmig: standard output cannot be written; some or all of it is missing\n");
}

}  // namespace
