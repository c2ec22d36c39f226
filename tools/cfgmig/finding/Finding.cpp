#include "finding/Finding.h"

#include <algorithm>
#include <iterator>
#include <unordered_map>

#include "PrintableText.h"
#include "finding/FindingKinds.h"
#include "finding/InstallationPaths.h"

namespace tool {
namespace {

using cfgstore::Snapshot;

constexpr std::size_t kMostNames = 6;  // attributes that the line about a finding names

// Tells findings of one kind about one entry apart.
void giveIds(const Ledger& ledger, std::vector<Finding>& findings) {
  std::unordered_map<std::string, std::size_t> seen;
  for (Finding& finding : findings) {
    const FindingPlace& place = finding.places.front();
    std::string id = finding.kind->id;
    id += ' ';
    id += ldtr::printableDn(snapshotOf(ledger, place.content).entries()[place.entry].normal);
    const std::size_t count = ++seen[id];
    if (count > 1) id += " #" + std::to_string(count);
    finding.id = std::move(id);
  }
}

}  // namespace

const char* nameOf(Severity severity) {
  switch (severity) {
    case Severity::error:
      return "error";
    case Severity::warning:
      return "warning";
    case Severity::note:
      break;
  }
  return "note";
}

void FindingList::addEntry(Content content, std::uint32_t entry) { addEntry(content, entry, kNoReason); }

void FindingList::addEntry(Content content, std::uint32_t entry, ReasonId reason) {
  add({content, entry, Snapshot::kNone, kNoValue}, reason);
}

void FindingList::addValue(Content content, ValueId value) { addValue(content, value, kNoReason); }

void FindingList::addValue(Content content, ValueId value, ReasonId reason) {
  const Snapshot& snapshot = snapshotOf(m_ledger, content);
  const std::uint32_t attribute = snapshot.values()[value].attribute;
  add({content, snapshot.attributes()[attribute].entry, attribute, value}, reason);
}

void FindingList::add(const FindingPlace& place, ReasonId reason) {
  const auto [found, isNew] = m_numbers.try_emplace({place.entry, reason}, m_groups.size());
  if (isNew) m_groups.push_back({reason, {}});
  m_groups[found->second].places.push_back(place);
}

// "cn=X, cn=Y: zor-a, zor-b (2 values): the reason (method)"
std::string FindingList::whatOf(const Group& group) const {
  const FindingPlace& first = group.places.front();
  const Snapshot& snapshot = snapshotOf(m_ledger, first.content);
  std::string what = ldtr::printableDn(snapshot.entries()[first.entry].dn);
  std::vector<std::pair<std::uint32_t, std::size_t>> attributes;  // each with the number of its values
  for (const FindingPlace& place : group.places) {
    if (place.attribute == Snapshot::kNone) continue;
    if (attributes.empty() || attributes.back().first != place.attribute) attributes.emplace_back(place.attribute, 0);
    ++attributes.back().second;
  }
  for (std::size_t i = 0; i < attributes.size() && i < kMostNames; ++i) {
    what += i == 0 ? ": " : ", ";
    what += ldtr::printable(snapshot.attributes()[attributes[i].first].name);
    if (attributes[i].second > 1) what += " (" + std::to_string(attributes[i].second) + " values)";
  }
  if (attributes.size() > kMostNames) what += " and " + std::to_string(attributes.size() - kMostNames) + " more";
  if (group.reason == kNoReason) return what;
  const Reason& reason = m_ledger.reasonOf(group.reason);
  if (!reason.words.empty()) what += ": " + ldtr::printable(reason.words);
  if (!reason.method.empty()) what += " (" + ldtr::printable(reason.method) + ")";
  return what;
}

std::vector<Finding> FindingList::take() {
  std::vector<Finding> findings;
  findings.reserve(m_groups.size());
  for (Group& group : m_groups) {
    std::string what = whatOf(group);
    findings.push_back({&m_kind, std::move(what), std::move(group.places), {}});
  }
  m_groups.clear();
  m_numbers.clear();
  return findings;
}

std::span<const FindingKind> findingKinds() {
  static const std::vector<FindingKind> kinds = [] {
    std::vector<FindingKind> all;
    for (const FindingRow& row : findingRows()) all.push_back(row.kind);
    return all;
  }();
  return kinds;
}

std::vector<Finding> findAll(const Ledger& ledger, const FindingContext& context) {
  const Facts facts{ledger, context, directoriesOfInstallation(ledger.old, ledger.before)};
  std::vector<Finding> all;
  const auto kinds = findingKinds();
  const auto rows = findingRows();
  for (std::size_t i = 0; i < rows.size(); ++i) {
    FindingList found(ledger, kinds[i]);
    rows[i].find(facts, found);
    std::vector<Finding> findings = found.take();
    std::move(findings.begin(), findings.end(), std::back_inserter(all));
  }
  giveIds(ledger, all);
  return all;
}

std::size_t countOf(std::span<const Finding> findings, Severity severity) {
  return static_cast<std::size_t>(std::count_if(
      findings.begin(), findings.end(), [&](const Finding& finding) { return finding.kind->severity == severity; }));
}

}  // namespace tool
