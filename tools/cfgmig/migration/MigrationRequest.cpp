#include "migration/MigrationRequest.h"

#include "Failure.h"
#include "PrintableText.h"
#include "SourceVersions.h"
#include "Target.h"
#include "Tracing.h"

namespace tool {
namespace {

constexpr const char* kOfPlan[] = {"--old", "--new", "--from", "--output", "--search-dir", "--target-dir"};

const std::string kSeeHelp = "see: cfgmig help apply";

// The files of a request must be different ones, and its target one that can be written. `target` is empty for the new
// configuration.
void settleFiles(MigrationRequest& request, const Arguments& arguments, const std::string& target) {
  const NamedFile oldFile{request.oldPath, "the old configuration"};
  const NamedFile newFile{request.newPath, "the new configuration"};
  refuseSameFile(oldFile, newFile);
  Arguments ofTarget = arguments;
  ofTarget.set("--output", target);
  request.target = targetOf(ofTarget, newFile, {&oldFile, 1});
  request.traceFile = traceFile(arguments);
}

}  // namespace

MigrationRequest requestOf(const Arguments& arguments, bool outputIsTarget) {
  MigrationRequest request;
  request.oldPath = arguments.value("--old");
  request.newPath = arguments.value("--new");
  request.version = arguments.value("--from");
  if (request.oldPath.empty() || request.newPath.empty()) {
    const std::string missing = request.oldPath.empty() ? "--old" : "--new";
    throw Failure(ExitStatus::usage, {"missing option: " + missing + " FILE", kSeeHelp});
  }
  if (arguments.has("--from") && !isSourceVersion(request.version)) {
    throw Failure(ExitStatus::usage,
                  "unknown version '" + ldtr::printable(request.version) + "'; known are: " + listOfSourceVersions());
  }
  settleFiles(request, arguments, outputIsTarget ? arguments.value("--output") : arguments.value("--target"));
  request.schemas = SchemaDirectories::of(arguments);
  return request;
}

MigrationRequest requestOfPlan(const Arguments& arguments) {
  for (const char* option : kOfPlan) {
    if (!arguments.has(option)) continue;
    throw Failure(ExitStatus::usage, {std::string(option) + " cannot be given with a plan, which has it", kSeeHelp});
  }
  MigrationRequest request;
  request.planPath = arguments.value("PLAN");
  request.plan = readPlan(request.planPath);
  const Plan& plan = *request.plan;
  request.oldPath = plan.oldFile.path;
  request.newPath = plan.newFile.path;
  request.version = plan.sourceVersion;
  const NamedFile planFile{request.planPath, "the plan"};
  refuseSameFile(planFile, {request.oldPath, "the old configuration"});
  refuseSameFile(planFile, {request.newPath, "the new configuration"});
  refuseSameFile(planFile, {plan.options.target, "the output"});
  settleFiles(request, arguments, plan.options.target);
  if (const auto& schemas = plan.options.schemas) {
    request.schemas = SchemaDirectories::of(schemas->searchDirectory, schemas->targetDirectory);
  }
  return request;
}

}  // namespace tool
