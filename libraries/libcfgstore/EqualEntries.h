// EqualEntries.h -- sets aside what two configurations hold alike, so that nobody goes through it value by value.
//
// Two configurations of one server have most of their entries in common, to the byte. Whoever knows that nothing is to
// be done with these can set them aside before he begins: CfgUtils::getSubordinates does not list them, and a Snapshot
// has them without attributes, but with the number of their values. In everything else they are as before: found by
// their DNs, read, and saved where they stand.

#ifndef CFGMIG_LIBCFGSTORE_EQUALENTRIES_H
#define CFGMIG_LIBCFGSTORE_EQUALENTRIES_H

#include <functional>
#include <span>
#include <string_view>
#include <vector>

#include "ConfigStore.h"
#include "Line.h"

namespace cfgstore {

// Whether an entry may be set aside that both configurations hold: its DN in normal form, and its lines below the dn
// line. Asked in several threads at once.
using EqualEntryTest = std::function<bool(std::string_view normal, std::span<const Line> lines)>;

// Sets aside in both stores the entries that stand in both under the same DN, however it is spelled, with the same
// bytes below the dn line, where `mayBe` agrees. Entries that were edited stay.
void setAsideEqualEntries(ConfigStore& one, ConfigStore& other, const EqualEntryTest& mayBe);

// Looks at how the file of `store` is written, which new lines will follow. Worth calling before entries are set aside
// in a store that is going to be written to: afterwards the first write has to read the whole file again for it.
void learnHabits(ConfigStore& store);

// Sets aside in `store` the entries that are set aside in `model`, where both hold them with the same bytes, dn line
// and comments above it included. Returns the normal DNs of the others, which `store` lacks or holds otherwise; they
// are views into `model`.
std::vector<std::string_view> setAsideLike(const ConfigStore& model, ConfigStore& store);

// The entry with this normal DN is not set aside any more, if it was.
void putBack(ConfigStore& store, std::string_view normal);

// Whether all entries that are set aside are still as they were read.
bool isSetAsideUntouched(const ConfigStore& store);

}  // namespace cfgstore

#endif  // CFGMIG_LIBCFGSTORE_EQUALENTRIES_H
