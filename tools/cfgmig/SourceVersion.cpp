#include "SourceVersion.h"

#include <algorithm>

#include "Failure.h"
#include "PrintableText.h"
#include "SourceEvidence.h"
#include "SourceVersions.h"

namespace tool {
namespace {

SourceVersion given(const std::vector<Evidence>& evidence, const std::string& version) {
  SourceVersion result{version, {}, {}};
  for (const Evidence& piece : evidence) {
    if (piece.speaksFor(version)) continue;
    result.warnings.push_back("warning: --from " + version + ", but " + piece.text());
  }
  return result;
}

// Why `fitting`, the versions that all the evidence speaks for, are not one.
const char* reason(const std::vector<Evidence>& evidence, const std::vector<std::string>& fitting) {
  if (!fitting.empty()) return "there is too little evidence";
  const auto isOfAnother = [](const Evidence& piece) { return piece.versions.empty(); };
  return std::any_of(evidence.begin(), evidence.end(), isOfAnother) ? "it seems to be none that can be migrated"
                                                                    : "the evidence is contradictory";
}

[[noreturn]] void refuse(const std::vector<Evidence>& evidence, const std::vector<std::string>& fitting,
                         const std::string& path) {
  std::vector<std::string> lines = {ldtr::printable(path) +
                                    ": the version of the server cannot be recognised: " + reason(evidence, fitting)};
  for (const Evidence& piece : evidence) lines.push_back("  " + piece.text());
  if (evidence.empty()) {
    lines.emplace_back("  there is no zor-slapdVersion with a value in CN=CONFIGURATION and no schema entry");
  }
  lines.push_back("give the version with --from: " + listOfSourceVersions());
  throw Failure(ExitStatus::usage, lines);
}

}  // namespace

SourceVersion sourceVersionOf(OVOConfigUtils::CfgUtils& store, const std::string& path, const std::string& version) {
  const std::vector<Evidence> evidence = gatherEvidence(store);
  if (!version.empty()) return given(evidence, version);

  const std::vector<std::string> fitting = versionsThatFit(evidence);
  if (fitting.size() != 1) refuse(evidence, fitting, path);
  std::string from = evidence.front().what;
  const std::size_t others = evidence.size() - 1;
  if (others > 0) from += "; " + std::to_string(others) + (others == 1 ? " entry agrees" : " entries agree");
  return {fitting.front(), from, {}};
}

}  // namespace tool
