// Finder.h -- what the functions share that look for one kind of finding each.

#ifndef CFGMIG_TOOL_FINDING_FINDER_H
#define CFGMIG_TOOL_FINDING_FINDER_H

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "finding/Finding.h"
#include "ledger/ValueFinder.h"

namespace tool {

struct Facts {
  const Ledger& ledger;
  const FindingContext& context;
  std::vector<std::string> oldInstallation;  // directories of the old server's own, see InstallationPaths.h
};

// Collects the findings of one kind: one for each entry and reason.
class FindingList {
 public:
  FindingList(const Ledger& ledger, const FindingKind& kind) : m_ledger(ledger), m_kind(kind) {}

  void addEntry(Content content, std::uint32_t entry);
  void addEntry(Content content, std::uint32_t entry, ReasonId reason);
  void addValue(Content content, ValueId value);
  void addValue(Content content, ValueId value, ReasonId reason);

  // What was collected, in the order of the first place of each; the list is empty afterwards.
  std::vector<Finding> take();

 private:
  static constexpr ReasonId kNoReason = 0xffffffff;

  struct Group {
    ReasonId reason;
    std::vector<FindingPlace> places;
  };

  void add(const FindingPlace& place, ReasonId reason);
  std::string whatOf(const Group& group) const;

  const Ledger& m_ledger;
  const FindingKind& m_kind;
  std::map<std::pair<std::uint32_t, ReasonId>, std::size_t> m_numbers;  // by entry and reason
  std::vector<Group> m_groups;
};

// Each looks for one kind, in time proportional to the values.
using Finder = void (*)(const Facts& facts, FindingList& found);
void findEntriesNotCarried(const Facts& facts, FindingList& found);
void findTransfersEndedEarly(const Facts& facts, FindingList& found);
void findValuesLost(const Facts& facts, FindingList& found);
void findSecondValues(const Facts& facts, FindingList& found);
void findObjectClassesNotCarried(const Facts& facts, FindingList& found);
void findEntriesOutside(const Facts& facts, FindingList& found);
void findMastersWithoutCredentials(const Facts& facts, FindingList& found);
void findPendingMigrations(const Facts& facts, FindingList& found);
void findSealedSecrets(const Facts& facts, FindingList& found);
void findPlugInsOfOldInstallation(const Facts& facts, FindingList& found);
void findPathsIntoOldInstallation(const Facts& facts, FindingList& found);
void findMissingPlugInLibraries(const Facts& facts, FindingList& found);
void findMissingSchemaFiles(const Facts& facts, FindingList& found);
void findSchemaFilesTwice(const Facts& facts, FindingList& found);
void findDnsWithoutEntry(const Facts& facts, FindingList& found);
void findEntriesWithoutParent(const Facts& facts, FindingList& found);

// Calls `visit(value's number, value)` for each value of the attributes with this name, in the order of the snapshot.
// Repeated values are passed over.
template <class Visit>
void forEachValueOf(const cfgstore::Snapshot& snapshot, std::string_view name, Visit visit) {
  for (const cfgstore::SnapshotAttribute& attribute : snapshot.attributes()) {
    if (!isSameName(attribute.name, name)) continue;
    for (std::uint32_t i = 0; i < attribute.values; ++i) {
      const ValueId value = attribute.firstValue + i;
      if (!snapshot.values()[value].repeated) visit(value, snapshot.values()[value]);
    }
  }
}

}  // namespace tool

#endif  // CFGMIG_TOOL_FINDING_FINDER_H
