// CleanUp.h -- the clean-up operations of the library, and what they did to a configuration.

#ifndef CFGMIG_TOOL_CLEANUP_H
#define CFGMIG_TOOL_CLEANUP_H

#include <cstddef>
#include <span>
#include <string>
#include <vector>

#include "ConfigFile.h"
#include "ConfigStore.h"

namespace tool {

struct CleanUpOperation {
  const char* option;  // of the command line
  const char* method;  // of the library
  int (ConfigFile::*run)();
};

// In the order in which they are carried out: what is removed is not rewritten first.
std::span<const CleanUpOperation> cleanUpOperations();

// One thing that an operation did.
struct CleanUpStep {
  enum class Kind { removedEntry, removedValues, rewrittenValues };

  Kind kind = Kind::removedValues;
  std::string entry;
  std::string attribute;      // empty for a whole entry
  std::size_t count = 0;      // of values
  std::size_t remaining = 0;  // values that the attribute holds afterwards
};

struct CleanUpResult {
  std::vector<CleanUpStep> steps;  // in the order in which they happened; none: there was nothing to do
  std::string failure;             // why the operation failed, a line; empty when it did not
};

// Carries the operation out in the store of the configuration, and tells what it did. That there was nothing to remove
// is no failure, whichever of its codes the store says it with.
CleanUpResult cleanUp(ConfigFile& configuration, const CleanUpOperation& operation);

// What the records of an operation say: `writes` are those of the store, in order, `result` what the method returned.
// Of use to cleanUp and its tests.
struct RecordedWrite {
  cfgstore::Operation operation;
  std::string entry;
  std::string attribute;
  std::size_t values = 0;
  int rc = 0;
  bool changed = false;
};
CleanUpResult judge(const CleanUpOperation& operation, const std::vector<RecordedWrite>& writes, int result);

}  // namespace tool

#endif  // CFGMIG_TOOL_CLEANUP_H
