// SampleReport.h -- reports of sample ledgers and of the shipped examples, with everything filled in.

#ifndef CFGMIG_TESTS_TOOL_REPORT_SAMPLEREPORT_H
#define CFGMIG_TESTS_TOOL_REPORT_SAMPLEREPORT_H

#include <memory>
#include <string>
#include <string_view>

#include "ConfigFile.h"
#include "SampleLedger.h"
#include "report/Report.h"

// A word that stands for a secret in a sample, and must never be seen in a report unless secrets were asked for.
inline constexpr char kPlanted[] = "Pl4nted-S3cret";

// A ledger with a bit of everything: values of each fate and origin but cleaned, findings, events, messages, secrets in
// each of the three configurations (all of them hold kPlanted), text that wants to be markup, and bytes that are none.
std::unique_ptr<SampleLedger> richLedger();

// A plan made of the ledger.
tool::Report reportOf(const tool::Ledger& ledger, bool showSecrets = false);

// The whole report.
std::string written(const tool::Report& report, tool::Format format);

// A real merge of one of the examples, as a plan.
class ExampleMerge {
 public:
  // "5.1", "5.1/old-peer.ldif"
  ExampleMerge(const std::string& version, const std::string& oldFile);

  const tool::Ledger& ledger() const { return m_ledger; }
  tool::Report report(bool showSecrets = false) const;

 private:
  std::unique_ptr<ConfigFile> m_old;
  std::unique_ptr<ConfigFile> m_new;
  tool::Ledger m_ledger;
};

#endif  // CFGMIG_TESTS_TOOL_REPORT_SAMPLEREPORT_H
