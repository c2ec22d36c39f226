// Finding.h -- what a person must look at after a merge: things that no sum shows, each with why and what to do.

#ifndef CFGMIG_TOOL_FINDING_FINDING_H
#define CFGMIG_TOOL_FINDING_FINDING_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <vector>

#include "ledger/Ledger.h"
#include "report/Content.h"

namespace tool {

enum class Severity : std::uint8_t {
  error,    // the new server will not do what the old one did, or may not start
  warning,  // somebody has to decide or to mend something
  note,     // good to know
};
inline constexpr std::size_t kSeverities = 3;

const char* nameOf(Severity severity);  // "error", "warning", "note"

// One kind of finding. The texts hold nothing of a configuration.
struct FindingKind {
  const char* id;  // "value-lost"; never changes, so that other programs can rely on it
  Severity severity;
  const char* title;   // "Old values did not arrive": a phrase without a full stop
  const char* why;     // sentences
  const char* remedy;  // sentences
};

// All kinds, in the order in which findings are listed: errors first.
std::span<const FindingKind> findingKinds();

// Something that a finding is about. An entry, an attribute of it or a value of that, by their numbers in a snapshot.
struct FindingPlace {
  Content content = Content::result;
  std::uint32_t entry = cfgstore::Snapshot::kNone;      // always given
  std::uint32_t attribute = cfgstore::Snapshot::kNone;  // none: the entry as a whole
  ValueId value = kNoValue;                             // none: the attribute as a whole
};

struct Finding {
  const FindingKind* kind = nullptr;  // a row of findingKinds(), never null
  std::string what;                   // one line in printable form, which holds no value: "2 values of cn=X, cn=Y: ..."
  std::vector<FindingPlace> places;   // in the order of the snapshot, at least one

  // "value-lost CN=X,CN=Y": the kind and the normal DN of the entry, which is the same in every run. Two findings of
  // one kind about one entry, which differ in their reason, have a number behind it.
  std::string id;
};

// What else than the ledger a finding may need to know.
struct FindingContext {
  // Whether there is a file of this name on this machine, or will be when the schema files have been copied.
  std::function<bool(const std::string& path)> fileExists;
};

// All findings, in the order of findingKinds() and then of the configuration. Takes time in proportion to the values.
std::vector<Finding> findAll(const Ledger& ledger, const FindingContext& context);

// How many there are of a severity.
std::size_t countOf(std::span<const Finding> findings, Severity severity);

}  // namespace tool

#endif  // CFGMIG_TOOL_FINDING_FINDING_H
