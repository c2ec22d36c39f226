#include "SourceVersion.h"

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

[[noreturn]] void refuse(const std::vector<Evidence>& evidence, bool isContradictory, const std::string& path) {
  std::vector<std::string> lines = {
      ldtr::printable(path) + ": the version of the server cannot be recognised: " +
      (isContradictory ? "the evidence is contradictory" : "there is too little evidence")};
  for (const Evidence& piece : evidence) lines.push_back("  " + piece.text());
  if (evidence.empty()) lines.emplace_back("  there is no zor-slapdVersion in CN=CONFIGURATION and no schema entry");
  lines.push_back("give the version with --from: " + listOfSourceVersions());
  throw Failure(ExitStatus::usage, lines);
}

}  // namespace

SourceVersion sourceVersionOf(OVOConfigUtils::CfgUtils& store, const std::string& path, const std::string& version) {
  const std::vector<Evidence> evidence = gatherEvidence(store);
  if (!version.empty()) return given(evidence, version);

  const std::vector<std::string> fitting = versionsThatFit(evidence);
  if (fitting.size() != 1) refuse(evidence, fitting.empty(), path);
  std::string from = evidence.front().what;
  const std::size_t others = evidence.size() - 1;
  if (others > 0) from += "; " + std::to_string(others) + (others == 1 ? " entry agrees" : " entries agree");
  return {fitting.front(), from, {}};
}

}  // namespace tool
