// VerifyCommand.cpp -- cfgmig verify.

#include <algorithm>
#include <filesystem>
#include <memory>
#include <ostream>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "CfgUtils.h"
#include "Commands.h"
#include "ConfigStore.h"
#include "Configuration.h"
#include "Failure.h"
#include "LeftOpen.h"
#include "NormalDn.h"
#include "PrintableText.h"
#include "SettledEntries.h"
#include "Snapshot.h"
#include "SourceVersion.h"
#include "Target.h"
#include "audit/AuditReport.h"
#include "audit/UntouchedText.h"

namespace tool {
namespace {

constexpr std::size_t kMostShown = 20;  // of each list; who has more than that wants to see the first ones

// The three files. What all three hold alike is set aside, and will only be counted.
struct Inputs {
  std::unique_ptr<OVOConfigUtils::CfgUtils> old;
  std::unique_ptr<OVOConfigUtils::CfgUtils> before;
  std::unique_ptr<cfgstore::ConfigStore> result;

  cfgstore::ConfigStore& oldStore() const { return cfgstore::ConfigStore::of(*old); }
  cfgstore::ConfigStore& beforeStore() const { return cfgstore::ConfigStore::of(*before); }
};

// Tells all that is wrong with any of them in one Failure.
Inputs openInputs(const std::string& oldPath, const std::string& beforePath, const std::string& resultPath) {
  std::vector<std::string> problems;
  const std::string paths[] = {oldPath, beforePath};
  auto opened = openAllUtils(paths, problems);
  Inputs inputs{std::move(opened[0]), std::move(opened[1]), nullptr};
  if (!problems.empty()) {
    openAllUtils(std::span(&resultPath, 1), problems);
    throw Failure(ExitStatus::failed, problems);
  }
  setSettledEntriesAside(inputs.oldStore(), inputs.beforeStore());
  inputs.result = openStoreLike(resultPath, inputs.beforeStore());
  settleWithResult(inputs.oldStore(), inputs.beforeStore(), *inputs.result);
  return inputs;
}

void refuseNoConfiguration(const std::string& path, const cfgstore::Snapshot& snapshot) {
  constexpr std::string_view kRoot = "CN=CONFIGURATION";
  const auto entries = snapshot.entries();
  const bool isConfiguration = std::any_of(entries.begin(), entries.end(), [&](const cfgstore::SnapshotEntry& entry) {
    return cfgstore::isWithinNormalDn(entry.normal, kRoot);
  });
  if (isConfiguration) return;
  throw Failure(ExitStatus::failed, ldtr::printable(path) + ": there is no entry under CN=CONFIGURATION");
}

// The directory as apply writes it into the configuration, whether or not it is there.
std::string schemaTargetOf(const Arguments& arguments) {
  if (!arguments.has("--target-dir")) return {};
  const auto trim = [](std::string directory) {
    while (directory.size() > 1 && (directory.ends_with('/') || directory.ends_with("/."))) directory.pop_back();
    return directory;
  };
  return trim(std::filesystem::absolute(trim(arguments.value("--target-dir"))).string());
}

ExitStatus statusOf(AuditVerdict verdict) {
  switch (verdict) {
    case AuditVerdict::agrees:
      return ExitStatus::done;
    case AuditVerdict::lost:
      return ExitStatus::lost;
    case AuditVerdict::differs:
      break;
  }
  return ExitStatus::failed;
}

}  // namespace

ExitStatus runVerify(const Arguments& arguments, Console& console) {
  const std::string given = arguments.value("--from");
  const std::string oldPath = arguments.value("--old");
  const std::string beforePath = arguments.value("--before");
  const std::string resultPath = arguments.value("--result");
  const NamedFile files[] = {{oldPath, "the old configuration"},
                             {beforePath, "the new configuration as it was before"},
                             {resultPath, "the result"}};
  refuseSameFile(files[0], files[1]);
  refuseSameFile(files[0], files[2]);
  refuseSameFile(files[1], files[2]);
  auto inputs = std::make_unique<Inputs>(openInputs(oldPath, beforePath, resultPath));
  const cfgstore::Snapshot oldContent(inputs->oldStore());
  const cfgstore::Snapshot beforeContent(inputs->beforeStore());
  const cfgstore::Snapshot resultContent(*inputs->result);
  refuseNoConfiguration(oldPath, oldContent);
  refuseNoConfiguration(beforePath, beforeContent);
  const SourceVersion source = sourceVersionOf(*inputs->old, oldPath, given);
  for (const std::string& warning : source.warnings) console.err << "cfgmig: " << warning << '\n';

  const Audit found = audit(oldContent, beforeContent, resultContent, source.version, schemaTargetOf(arguments));
  const std::string_view beforeText = inputs->beforeStore().textAsRead();
  const TextDifferences text =
      compareUntouched(beforeText, inputs->result->textAsRead(), beforeContent, resultContent, found);
  const AuditReport report{oldPath,
                           beforePath,
                           resultPath,
                           source.from,
                           oldContent,
                           beforeContent,
                           resultContent,
                           found,
                           text,
                           arguments.has("--show-secrets"),
                           arguments.has("--all") ? 0 : kMostShown};
  if (arguments.has("--json")) {
    writeAuditJson(report, console.out);
  } else {
    writeAuditText(report, console.out);
  }
  leaveOpen(inputs, beforeText.size());
  return statusOf(found.verdict());
}

}  // namespace tool
