#include "SettledEntries.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <string>
#include <unordered_set>

#include "EqualEntries.h"
#include "NormalDn.h"
#include "TraceControl.h"
#include "audit/Rules.h"

namespace tool {
namespace {

// What the findings look at in every entry of the result, or of the old configuration, and not only at what was
// carried: files that schema lists name, marks of a migration that is not finished, and paths that tell where the old
// server was installed.
constexpr std::string_view kLookedAt[] = {
    "zor-slapdIncludeSchema", "zor-slapdSchemaAdditions", "ZOR-SLAPDMIGRATIONINFO",
    "zor-slapdErrorLog",      "zor-slapdTraceMessageLog", "zor-slapdLog",
    "zor-auditLog",           "zor-slapdBulkloadErrors",  "zor-slapdCLIErrors",
};
constexpr std::string_view kClass = "objectClass";
constexpr std::string_view kPendingClass = "ZOR-SLAPDPENDINGMIGRATION";

// How long these names are, a bit each: nearly all others have another length.
constexpr std::uint64_t lengths() {
  std::uint64_t bits = std::uint64_t{1} << kClass.size();
  for (const std::string_view name : kLookedAt) bits |= std::uint64_t{1} << name.size();
  return bits;
}

bool hasSuchLength(std::string_view name) { return name.size() < 64 && (lengths() >> name.size() & 1U) != 0; }

bool isLookedAt(const cfgstore::Line& line, std::string& scratch) {
  const std::string_view name = cfgstore::lineName(line, scratch);
  if (!hasSuchLength(name)) return false;
  if (cfgstore::sameName(name, kClass)) return cfgstore::sameName(cfgstore::lineValue(line, scratch), kPendingClass);
  return std::any_of(std::begin(kLookedAt), std::end(kLookedAt),
                     [&](std::string_view each) { return cfgstore::sameName(name, each); });
}

// Without a setting that a merge looks at, the library complains of lists that it has never filled, and reports tell
// that.
bool hasSettings(std::span<const cfgstore::Line> lines, std::string& scratch) {
  return std::any_of(lines.begin(), lines.end(), [&](const cfgstore::Line& line) {
    if (line.kind != cfgstore::LineKind::attribute) return false;
    const std::string_view name = cfgstore::lineName(line, scratch);
    return std::none_of(std::begin(auditing::kNeverCarried), std::end(auditing::kNeverCarried),
                        [&](std::string_view each) { return cfgstore::sameName(name, each); });
  });
}

}  // namespace

void setSettledEntriesAside(cfgstore::ConfigStore& old, cfgstore::ConfigStore& now) {
  const std::vector<std::string_view> named = auditing::entriesOfRules();
  const std::unordered_set<std::string_view> ofRules(named.begin(), named.end());
  cfgstore::setAsideEqualEntries(old, now, [&](std::string_view normal, std::span<const cfgstore::Line> lines) {
    std::string scratch;
    if (!cfgstore::isWithinNormalDn(normal, auditing::kRoot) || ofRules.contains(normal)) return false;
    return hasSettings(lines, scratch) && std::none_of(lines.begin(), lines.end(), [&](const cfgstore::Line& line) {
             return line.kind == cfgstore::LineKind::attribute && isLookedAt(line, scratch);
           });
  });
}

void setSettledEntriesAsideUnlessTraced(cfgstore::ConfigStore& old, cfgstore::ConfigStore& now) {
  if (ldtr::events() == 0) return setSettledEntriesAside(old, now);
  cfgstore::takeApart(old);
  cfgstore::takeApart(now);
}

void settleWithResult(cfgstore::ConfigStore& old, cfgstore::ConfigStore& before, cfgstore::ConfigStore& result) {
  for (const std::string_view dn : cfgstore::setAsideLike(before, result)) {
    cfgstore::putBack(old, dn);
    cfgstore::putBack(before, dn);
  }
}

}  // namespace tool
