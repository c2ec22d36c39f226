// AuditReport.h -- an audit as a person or a program reads it.

#ifndef CFGMIG_TOOL_AUDIT_AUDITREPORT_H
#define CFGMIG_TOOL_AUDIT_AUDITREPORT_H

#include <cstddef>
#include <iosfwd>
#include <string>

#include "Snapshot.h"
#include "audit/Audit.h"
#include "audit/UntouchedText.h"

namespace tool {

// What a report is made of. The references must outlive it.
struct AuditReport {
  std::string oldPath;
  std::string beforePath;
  std::string resultPath;
  std::string versionFrom;  // what the source version was recognised from; empty when it was given
  const cfgstore::Snapshot& old;
  const cfgstore::Snapshot& before;
  const cfgstore::Snapshot& result;
  const Audit& audit;
  const TextDifferences& text;
  bool showsSecrets = false;
  std::size_t most = 0;  // of each kind of list, at most so many are shown; 0: all
};

// "agrees", "lost", "differs".
const char* nameOf(AuditVerdict verdict);

// Lines for a terminal; values are in printable form, and secrets are left out unless they are asked for.
void writeAuditText(const AuditReport& report, std::ostream& out);

// One JSON object, with everything that the text has.
void writeAuditJson(const AuditReport& report, std::ostream& out);

}  // namespace tool

#endif  // CFGMIG_TOOL_AUDIT_AUDITREPORT_H
