// FindingKinds.h -- the table of what is looked for.

#ifndef CFGMIG_TOOL_FINDING_FINDINGKINDS_H
#define CFGMIG_TOOL_FINDING_FINDINGKINDS_H

#include <span>

#include "finding/Finder.h"

namespace tool {

struct FindingRow {
  FindingKind kind;
  Finder find;
};

std::span<const FindingRow> findingRows();

}  // namespace tool

#endif  // CFGMIG_TOOL_FINDING_FINDINGKINDS_H
