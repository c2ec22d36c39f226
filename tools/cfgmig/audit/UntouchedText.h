// UntouchedText.h -- whether what a migration did not touch stands in the result as it did before, to the byte.
//
// An audit compares values as they are read. This compares how they are written, and what is no value: comments, the
// spelling of names, folding, line ends. Empty lines are not looked at, nor is how values are written that the
// migration brought.

#ifndef CFGMIG_TOOL_AUDIT_UNTOUCHEDTEXT_H
#define CFGMIG_TOOL_AUDIT_UNTOUCHEDTEXT_H

#include <cstddef>
#include <string_view>
#include <vector>

#include "Snapshot.h"
#include "audit/Audit.h"

namespace tool {

// Lines that do not stand in the other text, or not in this order; of a folded one the first counts.
struct TextDifferences {
  std::vector<std::size_t> missing;  // lines of the new configuration before
  std::vector<std::size_t> added;    // lines of the result

  bool isEmpty() const { return missing.empty() && added.empty(); }
};

// The texts are those that the snapshots `before` and `result` of the audit were taken of. Time is linear in them.
TextDifferences compareUntouched(std::string_view beforeText, std::string_view resultText,
                                 const cfgstore::Snapshot& before, const cfgstore::Snapshot& result,
                                 const Audit& audit);

}  // namespace tool

#endif  // CFGMIG_TOOL_AUDIT_UNTOUCHEDTEXT_H
