#include "Commands.h"

namespace tool {
namespace {

// Apart from the table, so that manual pages and completions can be made without the commands themselves.
struct Row {
  std::string_view command;
  Runner run;
};

constexpr Row kRunners[] = {
    {"apply", runApply},
    {"check", runCheck},
    {"clean", runClean},
    {"compare", runCompare},
    {"completion", runCompletion},
    {"dump", runDump},
    {"help", runHelp},
    {"list", runList},
    {"plan", runPlan},
    {"rewrite", runRewrite},
    {"schemas", runSchemas},
    {"undo", runUndo},
    {"verify", runVerify},
    {"version", runVersion},
    {"why", runWhy},
};

}  // namespace

Runner runnerOf(std::string_view command) {
  for (const Row& row : kRunners) {
    if (row.command == command) return row.run;
  }
  return nullptr;
}

}  // namespace tool
