// EqualEntries.h -- sets aside what two configurations hold alike, so that nobody goes through it value by value.
//
// Two configurations of one server have most of their entries in common, to the byte. Whoever knows that nothing is to
// be done with these can set them aside before he begins: CfgUtils::getSubordinates does not list them, and a Snapshot
// has them without attributes, but with the number of their values. In everything else they are as before: found by
// their DNs, read, and saved where they stand.

#ifndef CFGMIG_LIBCFGSTORE_EQUALENTRIES_H
#define CFGMIG_LIBCFGSTORE_EQUALENTRIES_H

#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "ConfigStore.h"
#include "Line.h"

namespace cfgstore {

// Whether an entry may be set aside that both configurations hold: its DN in normal form, and its lines below the dn
// line. Asked in several threads at once.
using EqualEntryTest = std::function<bool(std::string_view normal, std::span<const Line> lines)>;

// Sets aside in both stores the entries that stand in both under the same DN, however it is spelled, with the same
// bytes below the dn line, where `mayBe` agrees. Entries that were edited stay, and one at the end of a file whose last
// line has no end.
void setAsideEqualEntries(ConfigStore& one, ConfigStore& other, const EqualEntryTest& mayBe);

// Of stores that were opened as a pair (PairReading.h) and in which nothing is going to be set aside: has what both
// hold alike taken apart in this one as well. Without it, such an entry is read again whenever it is looked at.
void takeApart(ConfigStore& store);

// Looks at how the file of `store` is written, which new lines will follow. Worth calling before entries are set aside
// in a store that is going to be written to: afterwards the first write has to read the whole file again for it.
void learnHabits(ConfigStore& store);

// Opens a file that holds much of what `model` holds, which need not outlive the store: entries that are set aside in
// `model` and stand here with the same bytes are set aside at once, in a fraction of the time and memory that taking
// them apart needs. Throws OpenError.
std::unique_ptr<ConfigStore> openLike(const std::string& path, const ConfigStore& model);

// Reads what a save of `store` would write now, as if it were a file. What is set aside in `store` is set aside in the
// result, which holds views into `store`: that must outlive it, and must not be written to. Throws OpenError, without a
// path. Where ConfigStore::pieces was called since the last write, nothing in `store` changes, so that another thread
// may do this.
std::unique_ptr<ConfigStore> readAsSaved(ConfigStore& store);

// Whether a file holds this text and nothing else. False also when it cannot be read.
bool holdsText(const std::string& path, const std::vector<std::string_view>& pieces);

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
