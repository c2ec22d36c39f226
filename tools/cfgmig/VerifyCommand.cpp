// VerifyCommand.cpp -- cfgmig verify.

#include <algorithm>
#include <filesystem>
#include <memory>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "CfgUtils.h"
#include "Commands.h"
#include "ConfigStore.h"
#include "Configuration.h"
#include "Failure.h"
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

// One of the three files.
struct Input {
  std::string path;
  std::unique_ptr<OVOConfigUtils::CfgUtils> utils;

  cfgstore::ConfigStore& store() const { return cfgstore::ConfigStore::of(*utils); }
};

void refuseNoConfiguration(const Input& input, const cfgstore::Snapshot& snapshot) {
  constexpr std::string_view kRoot = "CN=CONFIGURATION";
  const auto entries = snapshot.entries();
  const bool isConfiguration = std::any_of(entries.begin(), entries.end(), [&](const cfgstore::SnapshotEntry& entry) {
    return cfgstore::isWithinNormalDn(entry.normal, kRoot);
  });
  if (isConfiguration) return;
  throw Failure(ExitStatus::failed, ldtr::printable(input.path) + ": there is no entry under CN=CONFIGURATION");
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
  Input old{arguments.value("--old"), nullptr};
  Input before{arguments.value("--before"), nullptr};
  Input result{arguments.value("--result"), nullptr};
  const NamedFile files[] = {{old.path, "the old configuration"},
                             {before.path, "the new configuration as it was before"},
                             {result.path, "the result"}};
  refuseSameFile(files[0], files[1]);
  refuseSameFile(files[0], files[2]);
  refuseSameFile(files[1], files[2]);
  std::vector<std::string> problems;
  const std::string paths[] = {old.path, before.path, result.path};
  auto opened = openAllUtils(paths, problems);
  old.utils = std::move(opened[0]);
  before.utils = std::move(opened[1]);
  result.utils = std::move(opened[2]);
  if (!problems.empty()) throw Failure(ExitStatus::failed, problems);

  // What all three hold alike is only counted.
  setSettledEntriesAside(old.store(), before.store(), result.store());
  const cfgstore::Snapshot oldContent(old.store());
  const cfgstore::Snapshot beforeContent(before.store());
  const cfgstore::Snapshot resultContent(result.store());
  refuseNoConfiguration(old, oldContent);
  refuseNoConfiguration(before, beforeContent);
  const SourceVersion source = sourceVersionOf(*old.utils, old.path, given);
  for (const std::string& warning : source.warnings) console.err << "cfgmig: " << warning << '\n';

  const Audit found = audit(oldContent, beforeContent, resultContent, source.version, schemaTargetOf(arguments));
  const TextDifferences text =
      compareUntouched(before.store().text(), result.store().text(), beforeContent, resultContent, found);
  const AuditReport report{old.path,
                           before.path,
                           result.path,
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
  return statusOf(found.verdict());
}

}  // namespace tool
