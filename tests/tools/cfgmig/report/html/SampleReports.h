// SampleReports.h -- reports to make pages of: one of each fate, one of hostile values, and ones of any size.

#ifndef CFGMIG_TESTS_TOOL_REPORT_SAMPLEREPORTS_H
#define CFGMIG_TESTS_TOOL_REPORT_SAMPLEREPORTS_H

#include <cstddef>
#include <memory>

#include "SampleLedger.h"
#include "report/Report.h"

namespace sample {

// A password of the old server and one of the new one. Neither may be in a page unless secrets are asked for.
inline constexpr char kOldSecret[] = "Pl4nted-S3cret";
inline constexpr char kNewSecret[] = "N3w-Pl4nted-S3cret";

// About fifty old values: each fate, each origin, each severity of a finding.
std::unique_ptr<SampleLedger> everyFate();

// Values, DNs and attribute values that try to become markup or to run, that cannot be seen, that are no text. Those
// that would run set the property "planted" of the window.
std::unique_ptr<SampleLedger> hostile();

// This many old values, in entries with ten values each. Some of them have many children, one has many values.
std::unique_ptr<SampleLedger> ofSize(std::size_t oldValues);

// A report of a plan with findings of each severity about the first entries of the result, and schema files. Nothing is
// found where nothing changed, and no error where nothing is lost.
tool::Report reportOf(const tool::Ledger& ledger, bool showSecrets = false);

// All values of an old configuration lost, which is what makes the worst verdict.
std::unique_ptr<SampleLedger> allLost();

// Nothing but what is the same.
std::unique_ptr<SampleLedger> allSame();

}  // namespace sample

#endif  // CFGMIG_TESTS_TOOL_REPORT_SAMPLEREPORTS_H
