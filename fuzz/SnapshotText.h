// SnapshotText.h -- the content of a configuration as one string, so that two can be compared.

#ifndef CFGMIG_FUZZ_SNAPSHOTTEXT_H
#define CFGMIG_FUZZ_SNAPSHOTTEXT_H

#include <string>

#include "Snapshot.h"

namespace fuzz {

// Entries, attributes and values in the order of the file, without their lines. Two snapshots of the same content give
// the same text, and two of different content do not: every part is written with its length.
std::string textOf(const cfgstore::Snapshot& snapshot);

}  // namespace fuzz

#endif  // CFGMIG_FUZZ_SNAPSHOTTEXT_H
