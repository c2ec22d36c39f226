// InspectionParts.h -- the two halves of an inspection: what single lines look like, and what entries hold.

#ifndef CFGMIG_LIBCFGSTORE_INSPECTIONPARTS_H
#define CFGMIG_LIBCFGSTORE_INSPECTIONPARTS_H

#include <string_view>

#include "LdifReader.h"
#include "RemarkList.h"

namespace cfgstore {

// Remarks on line ends, folding, characters and spelling. `content` is what was read of `text`.
void remarkOnLines(std::string_view text, const LdifContent& content, RemarkList& remarks);

// Remarks on the entries, one by one: their DNs, their places and their attributes. Returns the number of values.
std::size_t remarkOnEntries(std::string_view text, const LdifContent& content, RemarkList& remarks);

}  // namespace cfgstore

#endif  // CFGMIG_LIBCFGSTORE_INSPECTIONPARTS_H
