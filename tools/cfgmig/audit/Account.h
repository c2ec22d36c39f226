// Account.h -- from what the rules do and what is there to what became of each value.

#ifndef CFGMIG_TOOL_AUDIT_ACCOUNT_H
#define CFGMIG_TOOL_AUDIT_ACCOUNT_H

#include "audit/Audit.h"
#include "audit/Prediction.h"
#include "audit/Reconciliation.h"

namespace tool::auditing {

// Fills in the rows of the audit, and the counts.
//
// Where a write was refused, or the result was edited, what is there decides and not what should be: a value that is
// where it was to go has arrived, whatever it took; one that a rule takes out and that is there all the same is
// carried.
void giveAccount(const Contents& contents, const Prediction& prediction, const Reconciliation& reconciliation,
                 Audit& audit);

}  // namespace tool::auditing

#endif  // CFGMIG_TOOL_AUDIT_ACCOUNT_H
