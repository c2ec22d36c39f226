// TreeFindings.cpp -- entries and DNs of the result that hang in the air.

#include "NormalDn.h"
#include "finding/Finder.h"

namespace tool {
namespace {

using cfgstore::Snapshot;

constexpr std::string_view kRoot = "CN=CONFIGURATION";
constexpr std::string_view kRootName = "configuration";

// Whether the value may be a DN below the root entry, which is worth the work of reading it.
bool maybeDn(std::string_view value) {
  const std::size_t last = value.find_last_not_of(' ');
  if (last == std::string_view::npos || last + 1 <= kRootName.size()) return false;
  return isSameName(value.substr(last + 1 - kRootName.size(), kRootName.size()), kRootName) &&
         value.find('=') != std::string_view::npos;
}

}  // namespace

// What the new server's own values name was not there before either, unless the merge has taken it away.
void findDnsWithoutEntry(const Facts& facts, FindingList& found) {
  const Ledger& ledger = facts.ledger;
  for (ValueId id = 0; id < ledger.result.values().size(); ++id) {
    const std::string_view value = ledger.result.values()[id].value;
    if (!maybeDn(value)) continue;
    const auto normal = cfgstore::normalDn(value);
    if (!normal || !cfgstore::isWithinNormalDn(*normal, kRoot)) continue;
    if (ledger.result.findEntry(*normal) != Snapshot::kNone) continue;
    const bool isOwn = ledger.resultValues[id].origin == ValueOrigin::fromNew;
    if (!isOwn || ledger.before.findEntry(*normal) != Snapshot::kNone) found.addValue(Content::result, id);
  }
}

void findEntriesWithoutParent(const Facts& facts, FindingList& found) {
  const Ledger& ledger = facts.ledger;
  for (std::uint32_t entry = 0; entry < ledger.result.entries().size(); ++entry) {
    const std::string_view normal = ledger.result.entries()[entry].normal;
    const std::string_view parent = cfgstore::parentOfNormalDn(normal);
    if (normal == kRoot || !cfgstore::isWithinNormalDn(normal, kRoot)) continue;
    if (ledger.result.findEntry(parent) != Snapshot::kNone) continue;
    const bool wasSo =
        ledger.before.findEntry(normal) != Snapshot::kNone && ledger.before.findEntry(parent) == Snapshot::kNone;
    if (!wasSo) found.addEntry(Content::result, entry);
  }
}

}  // namespace tool
