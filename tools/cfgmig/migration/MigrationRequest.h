// MigrationRequest.h -- what a command line asks plan or apply to migrate.

#ifndef CFGMIG_TOOL_MIGRATION_MIGRATIONREQUEST_H
#define CFGMIG_TOOL_MIGRATION_MIGRATIONREQUEST_H

#include <optional>
#include <string>

#include "Commands.h"
#include "SchemaCopies.h"
#include "report/Plan.h"

namespace tool {

struct MigrationRequest {
  std::string oldPath;
  std::string newPath;
  std::string target;   // where the result goes; newPath, or a file that is no input
  std::string version;  // empty: to be recognised
  std::optional<SchemaDirectories> schemas;
  std::string traceFile;     // empty for none
  bool onlySums = false;     // no report is asked for but the summary, which has no SHA-256
  std::optional<Plan> plan;  // that the request was read from
  std::string planPath;      // of it
};

// Reads --old, --new, --from, --output, --search-dir and --target-dir; `outputIsTarget` is false for a command whose
// --output is something else. Refuses before any file is opened what must not be done.
// Throws Failure: usage when files are one, failed for what cannot be written.
MigrationRequest requestOf(const Arguments& arguments, bool outputIsTarget);

// The same from a saved plan, which the argument PLAN names.
// Throws Failure as requestOf and readPlan do.
MigrationRequest requestOfPlan(const Arguments& arguments);

}  // namespace tool

#endif  // CFGMIG_TOOL_MIGRATION_MIGRATIONREQUEST_H
