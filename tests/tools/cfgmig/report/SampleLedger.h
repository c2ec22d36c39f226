// SampleLedger.h -- a ledger made by hand: of three configurations, and what a test says became of their values.

#ifndef CFGMIG_TESTS_TOOL_REPORT_SAMPLELEDGER_H
#define CFGMIG_TESTS_TOOL_REPORT_SAMPLELEDGER_H

#include <deque>
#include <memory>
#include <string>
#include <string_view>

#include "ConfigStore.h"
#include "ledger/Ledger.h"
#include "report/Content.h"

// Which configuration is said with tool::Content, which entry with its DN in any spelling.
class SampleLedger {
 public:
  // The texts of the configurations in LDIF. To begin with, the account is the simplest one whose sums hold: a value of
  // the result is the new server's own when `before` holds it at the same place, otherwise carried or moved when the
  // old configuration holds it at the same place or anywhere, otherwise added by a rule. An old value that arrived is
  // same, carried or moved accordingly, one that did not is dropped. A value of `before` that is gone was replaced, by
  // the first value of the setting that is not the new server's own.
  SampleLedger(const std::string& old, const std::string& before, const std::string& result,
               const std::string& version = "6.0");
  ~SampleLedger();
  SampleLedger(const SampleLedger&) = delete;
  SampleLedger& operator=(const SampleLedger&) = delete;

  const tool::Ledger& ledger() const { return m_ledger; }

  // For what the functions below do not do. Counts have to be kept right, see count().
  tool::Ledger& edit() { return m_ledger; }

  // The number of a value; kNoValue is a failure of the test.
  tool::ValueId value(tool::Content content, std::string_view dn, std::string_view attribute,
                      std::string_view text) const;
  std::uint32_t entry(tool::Content content, std::string_view dn) const;
  tool::ReasonId reason(const std::string& method, const std::string& words);

  // An old value that did not arrive.
  void setFate(std::string_view dn, std::string_view attribute, std::string_view text, tool::ValueFate fate,
               const std::string& method, const std::string& words);
  // What became of an old entry. `target` is a DN in any spelling, or empty.
  void setEntry(std::string_view dn, tool::EntryFate fate, const std::string& method, const std::string& words,
                std::string_view target);
  // The texts of the event, which it does not own, have to live as long as the ledger.
  void addEvent(const tool::LedgerEvent& event) { m_ledger.events.push_back(event); }
  void addMessage(const std::string& message) { m_ledger.messages.push_back(message); }

  // Makes the counts those of the rows.
  void count();

 private:
  struct Files;

  void account();

  std::unique_ptr<Files> m_files;
  std::unique_ptr<cfgstore::ConfigStore> m_old;
  std::unique_ptr<cfgstore::ConfigStore> m_before;
  std::unique_ptr<cfgstore::ConfigStore> m_result;
  std::deque<std::string> m_targets;  // that rows refer to
  tool::Ledger m_ledger;
};

#endif  // CFGMIG_TESTS_TOOL_REPORT_SAMPLELEDGER_H
