// Plan.h -- what a saved plan says, as far as it takes to carry it out.

#ifndef CFGMIG_TOOL_REPORT_PLAN_H
#define CFGMIG_TOOL_REPORT_PLAN_H

#include <string>

#include "report/Report.h"

namespace tool {

inline constexpr unsigned kPlanFormatVersion = 1;

struct Plan {
  InputFile oldFile;
  InputFile newFile;
  MergeOptions options;
  std::string sourceVersion;                    // that the plan was made for, given or recognised
  std::string toolVersion;                      // that made it
  std::string time;                             // when
  Outcome::Kind outcome = Outcome::Kind::plan;  // what had been written when the report was
};

// Reads a report in JSON. The whole file is read, and refused when it is not what writeJson writes: cut off, of another
// format version, with something missing, named twice or of a wrong type. Only as much is kept in memory as the result
// holds. Whether the inputs are still what they were is not looked at; see isStale.
// Throws Failure with ExitStatus::failed: the file, and what is wrong.
Plan readPlan(const std::string& path);

// Whether an input is no longer the file that the plan was made from: `content` is what is there now.
bool isStale(const InputFile& input, std::string_view content);

}  // namespace tool

#endif  // CFGMIG_TOOL_REPORT_PLAN_H
