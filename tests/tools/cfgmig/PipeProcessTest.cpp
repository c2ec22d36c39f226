// Configurations that come through a pipe.

#include <gmock/gmock.h>
#include <sys/stat.h>

#include <cstdio>
#include <cstdlib>

#include "SampleFiles.h"
#include "ToolProcess.h"
#include "Workspace.h"

namespace {

using testing::HasSubstr;

TEST(Pipe, OfTheShellIsRead) {
  const Workspace workspace;
  workspace.write("new.ldif", sample::kNew);
  const std::string command = std::string("bash -c '\"") + CFGMIG_TOOL + "\" list <(sleep 0.3; cat \"" +
                              workspace.path("new.ldif") + "\")' > \"" + workspace.path("out") + "\"";
  ASSERT_EQ(std::system(command.c_str()), 0);
  EXPECT_EQ(workspace.read("out"), runTool({"list", workspace.path("new.ldif")}).out);
  EXPECT_THAT(workspace.read("out"), HasSubstr("CONFIGURATION"));
}

TEST(Pipe, WithoutAWriterIsToldAndNotWaitedForForEver) {
  const Workspace workspace;
  ASSERT_EQ(::mkfifo(workspace.path("pipe").c_str(), 0600), 0);
  const auto result = runTool({"list", workspace.path("pipe")});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.err, "cfgmig: " + workspace.path("pipe") + ": is a pipe to which no program writes\n");
}

}  // namespace
