#include "audit/Audit.h"

#include <algorithm>
#include <stdexcept>

#include "audit/Account.h"
#include "audit/Prediction.h"
#include "audit/Reconciliation.h"
#include "audit/Rules.h"
#include "audit/SchemaRewrites.h"

namespace tool {

Audit audit(const cfgstore::Snapshot& old, const cfgstore::Snapshot& before, const cfgstore::Snapshot& result,
            std::string_view version, std::string_view schemaTarget) {
  using namespace auditing;
  const SourceRules* const rules = rulesFor(version);
  if (rules == nullptr) throw std::invalid_argument("no source version: " + std::string(version));
  Audit audit;
  audit.sourceVersion = version;
  Prediction prediction(before);
  predict(old, *rules, prediction);
  const bool copiesSchemaFiles = !schemaTarget.empty();
  if (copiesSchemaFiles) predictSchemaRewrites(schemaTarget, result, prediction, audit);
  const Contents contents{old, before, result};
  const Reconciliation reconciliation(contents, prediction, copiesSchemaFiles, audit);
  giveAccount(contents, prediction, reconciliation, audit);
  return audit;
}

AuditVerdict Audit::verdict() const {
  const bool areLosses = std::all_of(discrepancies.begin(), discrepancies.end(),
                                     [](const Discrepancy& discrepancy) { return discrepancy.mayBeLoss(); });
  if (!areLosses) return AuditVerdict::differs;
  const bool isWhole = discrepancies.empty() && count(ValueFate::lost) == 0 && schemaFilesLeft.empty();
  return isWhole ? AuditVerdict::agrees : AuditVerdict::lost;
}

}  // namespace tool
