#include "migration/MigrationRequest.h"

#include "Target.h"
#include "Tracing.h"

namespace tool {
namespace {

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
  settleFiles(request, arguments, outputIsTarget ? arguments.value("--output") : arguments.value("--target"));
  request.schemas = SchemaDirectories::of(arguments);
  return request;
}

MigrationRequest requestOfPlan(const Arguments& arguments) {
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
