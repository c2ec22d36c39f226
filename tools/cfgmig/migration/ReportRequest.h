// ReportRequest.h -- which reports a command line asks for, and where they go.

#ifndef CFGMIG_TOOL_MIGRATION_REPORTREQUEST_H
#define CFGMIG_TOOL_MIGRATION_REPORTREQUEST_H

#include <optional>
#include <span>
#include <string>
#include <vector>

#include "Commands.h"
#include "Target.h"
#include "migration/Migration.h"
#include "migration/UndoRecord.h"
#include "report/Report.h"

namespace tool {

struct ReportRequest {
  struct InFile {
    Format format;
    std::string path;
  };

  std::optional<Format> onOutput;  // on standard output, in place of the summary
  std::vector<InFile> files;
  bool showSecrets = false;

  // Whether there is a report with single values in it, and not only the summary.
  bool showsValues() const { return onOutput.has_value() || !files.empty(); }
};

// Reads --format, --json, --verbose (which is --format text), --text-report, --json-report, --ldif-report,
// --html-report and --show-secrets. Throws Failure with ExitStatus::usage for two different formats on
// standard output.
ReportRequest reportRequestOf(const Arguments& arguments);

// Throws Failure: usage when a report would go to one of these files, failed when no file can be written there.
void settleReports(const ReportRequest& request, std::span<const NamedFile> files);

// Writes the files. Throws Failure at the first that cannot be written.
void saveReports(const ReportRequest& request, const Report& report);

// Writes the report that standard output is to have, or the summary.
void showReport(const ReportRequest& request, const Report& report, Console& console);

// Tells that the target holds the result of the apply of `record` already, with the account of `replay`. Without one,
// nothing but that is told, and reports that are asked for are refused: throws Failure with ExitStatus::failed.
void tellApplied(const UndoRecord& record, const Migration* replay, const ReportRequest& request, Console& console);

// Names on standard error what was lost, or would be, with its line in the old configuration, and the schema files that
// did not come along; at most 20 lines of each.
void tellLosses(const Report& report, Console& console);

}  // namespace tool

#endif  // CFGMIG_TOOL_MIGRATION_REPORTREQUEST_H
