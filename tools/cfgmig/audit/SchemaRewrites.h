// SchemaRewrites.h -- include lists that name copies of schema files.

#ifndef CFGMIG_TOOL_AUDIT_SCHEMAREWRITES_H
#define CFGMIG_TOOL_AUDIT_SCHEMAREWRITES_H

#include <string_view>

#include "Snapshot.h"
#include "audit/Audit.h"
#include "audit/Prediction.h"

namespace tool::auditing {

// Has the prediction name the copies in `directory` in the place of the schema files that are not the server's own.
// Which files were found cannot be known afterwards: one that the result names still was not, and is listed in the
// audit as left. The audit keeps the names of the copies.
void predictSchemaRewrites(std::string_view directory, const cfgstore::Snapshot& result, Prediction& prediction,
                           Audit& audit);

}  // namespace tool::auditing

#endif  // CFGMIG_TOOL_AUDIT_SCHEMAREWRITES_H
