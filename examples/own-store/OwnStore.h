// OwnStore.h -- a product's own configuration store: settings in sections, not LDIF.
//
//   [CN=FRONT END,CN=CONFIGURATION]      an entry
//   cn = Front End                       one value a line; blanks around the first '=' do not count
//
// A line that begins with '#' is a comment. Comments and empty lines are not kept.

#ifndef OWN_STORE_H
#define OWN_STORE_H

#include <CfgUtils.h>

#include <string>

// Writes the content of a store to the file at `path`. Throws std::runtime_error when that fails.
void writeStore(const OVOConfigUtils::CfgUtils& store, const std::string& path);

#endif  // OWN_STORE_H
