// AuditFindings.h -- what an audit found, row by row, with the values that may be shown. Both forms of a report are
// made from it.

#ifndef CFGMIG_TOOL_AUDIT_AUDITFINDINGS_H
#define CFGMIG_TOOL_AUDIT_AUDITFINDINGS_H

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "audit/AuditReport.h"

namespace tool {

// A value of one of the files, or one that should be in the result.
struct FoundValue {
  std::string_view text;
  bool isSecret = false;  // not to be shown
  std::size_t line = 0;   // of the file that it is from; 0 when it is from none
};

struct LostValue {
  std::string_view dn;  // in normal form
  std::string_view attribute;
  FoundValue value;  // of the old configuration
  AuditReason reason = AuditReason::missing;
};

struct FoundDiscrepancy {
  Discrepancy::Kind kind = Discrepancy::Kind::missingValue;
  std::string_view dn;
  std::string_view attribute;
  std::optional<FoundValue> expected;  // with its line in the old configuration or in the new one before
  bool isExpectedOfOld = false;        // which of the two
  std::optional<FoundValue> there;     // with its line in the result
  std::size_t oldLine = 0;             // of the old value that it is about, 0 for none
};

// All of them, in order.
std::vector<LostValue> lostValues(const AuditReport& report);
std::vector<FoundDiscrepancy> foundDiscrepancies(const AuditReport& report);

// The schema files of the result that were not copied.
std::vector<FoundValue> schemaFilesLeft(const AuditReport& report);

}  // namespace tool

#endif  // CFGMIG_TOOL_AUDIT_AUDITFINDINGS_H
