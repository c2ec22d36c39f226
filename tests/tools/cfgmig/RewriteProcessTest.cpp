// Tests of cfgmig rewrite, run as a process.

#include <gmock/gmock.h>

#include <filesystem>

#include "ExamplePath.h"
#include "SampleFiles.h"
#include "ToolProcess.h"
#include "Workspace.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

class Rewrite : public testing::Test {
 protected:
  ToolResult rewrite(const std::string& in = "in", const std::string& out = "out") const {
    return runTool({"rewrite", m_files.path(in), m_files.path(out)});
  }

  const Workspace m_files;
};

TEST_F(Rewrite, WritesTheSameBytes) {
  const std::string contents[] = {
      "",
      "\n\n",
      "# only a comment",
      sample::kOld,
      sample::kNew,
      "\xEF\xBB\xBFversion: 1\r\ndn: cn=x\r\ncn:x\r\n",
      "dn:   cn = x ,  cn=y\r\nCN::  eA== \r\ncn: a\n b\n  c\n# comment\n folded\nb:\r\n\r\n\n\n\ndn: cn=z\nb: "
      "\xFF\nx:\t1",
  };
  for (const std::string& content : contents) {
    m_files.write("in", content);
    const auto result = rewrite();
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.out, "");
    EXPECT_THAT(result.err, HasSubstr("cfgmig: " + m_files.path("out") + ": identical, " +
                                      std::to_string(content.size()) + " bytes"));
    EXPECT_EQ(m_files.read("out"), content);
  }
}

TEST_F(Rewrite, TellsOfAFileThatAnInterruptedRunHadReplaced) {
  m_files.write("in", sample::kOld);
  m_files.write(".out.cfgmig-old", "the file before\n");
  const auto result = rewrite();
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(m_files.read("out"), sample::kOld);
  const auto kept = m_files.namesAfter("out");
  ASSERT_THAT(kept, SizeIs(1));
  EXPECT_EQ(m_files.read(kept[0]), "the file before\n");
  EXPECT_THAT(result.err,
              HasSubstr("cfgmig: kept: " + m_files.path(kept[0]) + ", which an interrupted run had replaced\n"));
}

TEST_F(Rewrite, WritesTheExamplesAsTheyAre) {
  for (const ExampleSource& source : kExampleSources) {
    const std::string in = examplePath(source.oldFile);
    const std::string out = m_files.path("out-" + std::string(source.version));
    const auto result = runTool({"rewrite", in, out});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(std::filesystem::file_size(in), std::filesystem::file_size(out));
    EXPECT_THAT(result.err, HasSubstr(": identical, "));
  }
}

TEST_F(Rewrite, KeepsAFileThatItReplaces) {
  m_files.write("in", sample::kOld, 0600);
  m_files.write("out", "something else\n", 0644);
  const auto result = rewrite();
  EXPECT_EQ(result.status, 0) << result.err;
  const auto kept = m_files.namesAfter("out");
  ASSERT_THAT(kept, SizeIs(1));
  EXPECT_THAT(result.err, HasSubstr("cfgmig: kept: " + m_files.path(kept[0]) + "\n"));
  EXPECT_EQ(m_files.read(kept[0]), "something else\n");
  EXPECT_EQ(m_files.read("out"), sample::kOld);
  EXPECT_EQ(m_files.mode("out"), 0600U) << "nobody else may read the result";
}

TEST_F(Rewrite, LeavesAFileAloneThatIsIdenticalAlready) {
  m_files.write("in", sample::kOld);
  ASSERT_EQ(rewrite().status, 0);
  const auto before = m_files.state();
  const auto result = rewrite();
  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(result.err, HasSubstr("; it was there already\n"));
  EXPECT_EQ(m_files.state(), before);
}

TEST_F(Rewrite, GivesANewFileThePermissionsOfTheOld) {
  for (const mode_t mode : {0600U, 0640U, 0644U}) {
    m_files.write("in", sample::kOld, mode);
    std::filesystem::remove(m_files.path("out"));
    EXPECT_EQ(rewrite().status, 0);
    EXPECT_EQ(m_files.mode("out"), mode);
  }
}

TEST_F(Rewrite, RefusesOneFileForBothHoweverItIsNamed) {
  m_files.write("in", sample::kOld);
  std::filesystem::create_symlink("in", m_files.path("soft"));
  std::filesystem::create_hard_link(m_files.path("in"), m_files.path("hard"));
  const auto before = m_files.state();
  for (const char* name : {"in", "./in", "soft", "hard"}) {
    const auto result = rewrite("in", name);
    EXPECT_EQ(result.status, 2) << name;
    EXPECT_THAT(result.err, HasSubstr("IN and OUT are one file"));
  }
  EXPECT_EQ(m_files.state(), before);
}

TEST_F(Rewrite, WritesNothingOfAFileThatHasAnError) {
  m_files.write("in", "dn: cn=x\nno colon Pl4nted-S3cret\nzor-a:: Pl4nted-S3cret!\n");
  m_files.write("out", "as it was\n");
  const auto before = m_files.state();
  const auto result = rewrite();
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.err, HasSubstr(m_files.path("in") + ":2: "));
  EXPECT_THAT(result.err, HasSubstr(m_files.path("in") + ":3: "));
  EXPECT_THAT(result.err, Not(HasSubstr(sample::kSecret)));
  EXPECT_EQ(m_files.state(), before);
}

TEST_F(Rewrite, RefusesAnOutputThatCannotBeWritten) {
  m_files.write("in", sample::kOld);
  EXPECT_EQ(rewrite("in", "none/out").status, 1);
  EXPECT_EQ(rewrite("in", ".").status, 1);
  EXPECT_EQ(runTool({"rewrite", m_files.path("in"), "/dev/null"}).status, 1);
  EXPECT_THAT(m_files.names(), ElementsAre("in"));
}

TEST_F(Rewrite, ReadsAPipe) {
  const auto result = runTool(ToolSetup{{"rewrite", "/dev/stdin", m_files.path("out")}, {}, {}, {}, sample::kOld});
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(m_files.read("out"), sample::kOld);
  EXPECT_EQ(m_files.mode("out") & 077U, 0U);
}

}  // namespace
