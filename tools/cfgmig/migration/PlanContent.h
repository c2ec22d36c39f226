// PlanContent.h -- the account of single values, looked up in a saved report.

#ifndef CFGMIG_TOOL_MIGRATION_PLANCONTENT_H
#define CFGMIG_TOOL_MIGRATION_PLANCONTENT_H

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "ledger/Ledger.h"
#include "migration/WhyQuery.h"
#include "report/Content.h"

namespace tool {

// A value as the report has it.
struct ToldValue {
  Content in = Content::old;
  ValueId number = kNoValue;
  std::string dn;  // as its file writes it
  std::string attribute;
  std::size_t line = 0;
  std::string text;  // decoded; empty when it is a secret that the report does not show
  bool isRedacted = false;
  std::string fate;          // the name of its fate or origin; of the new configuration before: "replaced" or "kept"
  Reason reason;             // empty for what was kept
  ValueId other = kNoValue;  // old: its place in the result; before: what replaced it; result: what it came from
};

struct ToldEntry {
  std::string dn;
  std::size_t line = 0;
  std::string fate;
  Reason reason;
  std::string target;  // the normal DN that it went to; empty when it went nowhere
};

// A write that was asked of one of the two configurations.
struct ToldEvent {
  bool onOld = false;
  std::string operation;  // "set-value"
  bool changed = false;
  int code = 0;
  Reason reason;
  std::string dn;
  std::string attribute;
  std::vector<std::string> values;  // as they can be shown
};

struct PlanAnswer {
  WhyQuery query;                                           // the reading of the question that was answered
  std::vector<ToldEntry> entries;                           // of the old configuration
  std::vector<ToldValue> values;                            // of old, before and result, in this order
  std::map<std::pair<Content, ValueId>, ToldValue> others;  // that `other` of a value names
  std::vector<ToldEvent> events;                            // in the order of what happened
  std::size_t hidden = 0;  // values that might be the one that was asked for, were they not secrets

  // An entry without the attribute or the value that was asked for is no answer.
  bool isEmpty() const { return values.empty() && events.empty() && (entries.empty() || !query.attribute.empty()); }
};

// Answers the first of the readings that the report at `path` has an entry for; an empty answer when there is none.
// The report has been read by readPlan before. It is read from the disk as often as it takes, and only what is asked
// for stays in memory. Throws Failure with ExitStatus::failed when it is not what writeJson writes.
PlanAnswer answerFrom(const std::string& path, const std::vector<WhyQuery>& readings);

}  // namespace tool

#endif  // CFGMIG_TOOL_MIGRATION_PLANCONTENT_H
