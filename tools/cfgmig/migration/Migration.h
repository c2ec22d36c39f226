// Migration.h -- one migration from the files that are read to the report on it; nothing is written.

#ifndef CFGMIG_TOOL_MIGRATION_MIGRATION_H
#define CFGMIG_TOOL_MIGRATION_MIGRATION_H

#include <array>
#include <future>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "ConfigFile.h"
#include "ConfigStore.h"
#include "Configuration.h"
#include "SchemaCopies.h"
#include "ledger/Ledger.h"
#include "ledger/LedgerBuilder.h"
#include "migration/MigrationRequest.h"
#include "migration/SelfCheck.h"
#include "report/Report.h"

namespace tool {

// Used in this order: made, merge, account, report.
class Migration {
 public:
  // Opens both configurations, and tells all that is wrong with them in one Failure.
  explicit Migration(MigrationRequest request);

  const MigrationRequest& request() const { return m_request; }

  // What was read, with its SHA-256, which is made when it is first asked for, or beside the merge if a report is going
  // to show it.
  const InputFile& oldInput() const { return m_inputs.get()[0]; }
  const InputFile& newInput() const { return m_inputs.get()[1]; }

  // What it is known by (Fingerprint.h): made when it is first asked for, or beside the merge if the result is going to
  // be written.
  const std::string& oldFingerprint() const { return m_fingerprints.get()[0]; }
  const std::string& newFingerprint() const { return m_fingerprints.get()[1]; }

  // A line for each input that is not what the plan was made from; empty without a plan.
  std::vector<std::string> staleInputs() const;

  // The result is going to be written, checked and noted: to be called before merge. Much of that is then done beside
  // other work.
  void willBeWritten() { m_willBeWritten = true; }

  // What is wrong with the result that was written, as selfCheck tells it. Valid after merge; to be called once.
  std::vector<std::string> faultsOfResult();

  // Merges in memory. Lines that warn go to `warnings`. The schema files that the request names directories for are
  // staged. Throws Failure. From then on nothing changes in the new configuration.
  void merge(std::vector<std::string>& warnings);

  // Accounts for every value. Throws Failure when that does not add up; nothing must then be put in place.
  void account();

  cfgstore::ConfigStore& oldStore() const { return storeOf(*m_old); }
  cfgstore::ConfigStore& newStore() const { return storeOf(*m_new); }
  const std::string& sourceVersion() const { return m_sourceVersion; }

  // Null when no schema files are copied.
  SchemaCopies* schemas() { return m_schemas ? &*m_schemas : nullptr; }

  // The report on what the merge has made; its outcome is that of a plan. Refers to this object.
  Report report(bool showSecrets) const;

 private:
  bool fileWillExist(const std::string& path) const;

  MigrationRequest m_request;
  std::unique_ptr<ConfigFile> m_old;
  std::unique_ptr<ConfigFile> m_new;
  using Inputs = std::vector<InputFile>;
  std::shared_future<Inputs> inputsHashed(bool isAtOnce) const;
  Inputs inputsUnhashed() const;
  using Fingerprints = std::array<std::string, 2>;
  std::shared_future<Fingerprints> fingerprints(bool isAtOnce) const;

  bool m_willBeWritten = false;
  std::shared_future<Inputs> m_inputs;
  std::shared_future<Fingerprints> m_fingerprints;
  std::string m_sourceVersion;
  std::string m_recognisedFrom;
  std::optional<SchemaCopies> m_schemas;
  std::optional<LedgerBuilder> m_builder;  // from merge to account
  std::shared_ptr<Ledger> m_ledger;
  std::vector<Finding> m_findings;
  std::optional<EarlySelfCheck> m_check;  // behind all that it looks at
};

// What became of the schema files, as a report shows it.
std::vector<SchemaFile> schemaFilesOf(const SchemaCopies& copies, bool isPlan);

// The current time as reports write it, "2026-11-21T09:14:00Z".
std::string timeNow();

}  // namespace tool

#endif  // CFGMIG_TOOL_MIGRATION_MIGRATION_H
