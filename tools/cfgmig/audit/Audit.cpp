#include "audit/Audit.h"

#include <algorithm>
#include <stdexcept>
#include <string>

#include "audit/Account.h"
#include "audit/Prediction.h"
#include "audit/Reconciliation.h"
#include "audit/Rules.h"
#include "audit/SchemaRewrites.h"

namespace tool {

struct Auditor::State {
  State(const cfgstore::Snapshot& ofOld, const cfgstore::Snapshot& ofNew, std::string_view ofVersion,
        const auditing::SourceRules& rules)
      : old(ofOld), before(ofNew), version(ofVersion), prediction(before) {
    auditing::predict(old, rules, prediction);
  }

  const cfgstore::Snapshot& old;
  const cfgstore::Snapshot& before;
  std::string version;
  auditing::Prediction prediction;
};

Auditor::Auditor(const cfgstore::Snapshot& old, const cfgstore::Snapshot& before, std::string_view version) {
  const auditing::SourceRules* const rules = auditing::rulesFor(version);
  if (rules == nullptr) throw std::invalid_argument("no source version: " + std::string(version));
  m_state = std::make_unique<State>(old, before, version, *rules);
}

Auditor::~Auditor() = default;
Auditor::Auditor(Auditor&&) noexcept = default;
Auditor& Auditor::operator=(Auditor&&) noexcept = default;

Audit Auditor::audit(const cfgstore::Snapshot& result, std::string_view schemaTarget) {
  using namespace auditing;
  Prediction& prediction = m_state->prediction;
  Audit audit;
  audit.sourceVersion = m_state->version;
  const bool copiesSchemaFiles = !schemaTarget.empty();
  if (copiesSchemaFiles) predictSchemaRewrites(schemaTarget, result, prediction, audit);
  const Contents contents{m_state->old, m_state->before, result};
  const Reconciliation reconciliation(contents, prediction, copiesSchemaFiles, audit);
  giveAccount(contents, prediction, reconciliation, audit);
  return audit;
}

Audit audit(const cfgstore::Snapshot& old, const cfgstore::Snapshot& before, const cfgstore::Snapshot& result,
            std::string_view version, std::string_view schemaTarget) {
  return Auditor(old, before, version).audit(result, schemaTarget);
}

AuditVerdict Audit::verdict() const {
  const bool areLosses = std::all_of(discrepancies.begin(), discrepancies.end(),
                                     [](const Discrepancy& discrepancy) { return discrepancy.mayBeLoss(); });
  if (!areLosses) return AuditVerdict::differs;
  const bool isWhole = discrepancies.empty() && count(ValueFate::lost) == 0 && schemaFilesLeft.empty();
  return isWhole ? AuditVerdict::agrees : AuditVerdict::lost;
}

}  // namespace tool
