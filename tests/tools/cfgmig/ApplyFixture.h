// ApplyFixture.h -- a workspace with an old and a new configuration, and the command that merges them.

#ifndef CFGMIG_TESTS_TOOL_APPLYFIXTURE_H
#define CFGMIG_TESTS_TOOL_APPLYFIXTURE_H

#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "SampleFiles.h"
#include "ToolProcess.h"
#include "Workspace.h"

class ApplyFixture : public testing::Test {
 protected:
  ApplyFixture() {
    workspace.write("old.ldif", sample::kOld, 0600);
    workspace.write("new.ldif", sample::kNew, 0640);
  }

  // The words of the command, with `more` behind them.
  std::vector<std::string> words(const std::vector<std::string>& more = {}) const {
    std::vector<std::string> all = {"apply",  "--old", workspace.path("old.ldif"), "--new", workspace.path("new.ldif"),
                                    "--from", "6.0"};
    all.insert(all.end(), more.begin(), more.end());
    return all;
  }

  ToolResult apply(const std::vector<std::string>& more = {}) const { return runTool(words(more)); }

  const Workspace workspace;
};

#endif  // CFGMIG_TESTS_TOOL_APPLYFIXTURE_H
