#include "SampleLedger.h"

#include <algorithm>
#include <map>
#include <tuple>
#include <unordered_map>

#include "../Workspace.h"
#include "NormalDn.h"

using cfgstore::Snapshot;
using tool::Content;
using tool::kNoValue;
using tool::ValueFate;
using tool::ValueId;
using tool::ValueOrigin;

struct SampleLedger::Files {
  Workspace workspace;
};

namespace {

std::string lowerCase(std::string_view text) {
  std::string lower(text);
  std::transform(lower.begin(), lower.end(), lower.begin(),
                 [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
  return lower;
}

// Where values are, by entry, attribute and text; and any place of a text. Of equal ones the first counts.
struct Places {
  explicit Places(const Snapshot& snapshot) {
    for (ValueId id = 0; id < snapshot.values().size(); ++id) {
      const auto& value = snapshot.values()[id];
      const auto& attribute = snapshot.attributeOf(value);
      const std::string name = lowerCase(attribute.name);
      const std::string_view dn = snapshot.entryOf(attribute).normal;
      exact.try_emplace({dn, name, value.value}, id);
      settings[{dn, name}].push_back(id);
      anywhere.try_emplace(value.value, id);
    }
  }
  ValueId at(const Snapshot& of, ValueId id) const {
    const auto& value = of.values()[id];
    const auto& attribute = of.attributeOf(value);
    const auto found = exact.find({of.entryOf(attribute).normal, lowerCase(attribute.name), value.value});
    return found == exact.end() ? kNoValue : found->second;
  }
  ValueId anyOf(std::string_view text) const {
    const auto found = anywhere.find(text);
    return found == anywhere.end() ? kNoValue : found->second;
  }

  std::map<std::tuple<std::string_view, std::string, std::string_view>, ValueId> exact;
  std::map<std::pair<std::string_view, std::string>, std::vector<ValueId>> settings;
  std::unordered_map<std::string_view, ValueId> anywhere;
};

std::unique_ptr<cfgstore::ConfigStore> open(const Workspace& workspace, const std::string& name,
                                            const std::string& text) {
  return std::make_unique<cfgstore::ConfigStore>(workspace.write(name, text));
}

}  // namespace

SampleLedger::SampleLedger(const std::string& old, const std::string& before, const std::string& result,
                           const std::string& version)
    : m_files(std::make_unique<Files>()),
      m_old(open(m_files->workspace, "old.ldif", old)),
      m_before(open(m_files->workspace, "before.ldif", before)),
      m_result(open(m_files->workspace, "result.ldif", result)) {
  m_ledger.sourceVersion = version;
  m_ledger.old = Snapshot(*m_old);
  m_ledger.before = Snapshot(*m_before);
  m_ledger.result = Snapshot(*m_result);
  m_ledger.reasons.emplace_back();
  account();
  count();
}

SampleLedger::~SampleLedger() = default;

void SampleLedger::account() {
  const Places inOld(m_ledger.old);
  const Places inBefore(m_ledger.before);
  const Places inResult(m_ledger.result);

  for (ValueId id = 0; id < m_ledger.result.values().size(); ++id) {
    tool::ResultValueRow row;
    if (const ValueId own = inBefore.at(m_ledger.result, id); own != kNoValue) {
      row = {ValueOrigin::fromNew, reason("", "the new server's own"), own};
    } else if (const ValueId carried = inOld.at(m_ledger.result, id); carried != kNoValue) {
      row = {ValueOrigin::carried, reason("mergeCfgEntry", "the old server's value is carried"), carried};
    } else if (const ValueId moved = inOld.anyOf(m_ledger.result.values()[id].value); moved != kNoValue) {
      row = {ValueOrigin::moved, reason("mergeIn60", "the new server has the setting elsewhere"), moved};
    } else {
      row = {ValueOrigin::addedByRule, reason("check51", "written by the rule"), kNoValue};
    }
    m_ledger.resultValues.push_back(row);
  }

  std::map<ValueId, ValueId> moved;  // old value to its place
  for (ValueId id = 0; id < m_ledger.resultValues.size(); ++id) {
    const auto& row = m_ledger.resultValues[id];
    if (row.origin == ValueOrigin::moved) moved.try_emplace(row.from, id);
  }
  for (ValueId id = 0; id < m_ledger.old.values().size(); ++id) {
    const ValueId place = inResult.at(m_ledger.old, id);
    tool::OldValueRow row;
    if (place != kNoValue) {
      const bool isSame = m_ledger.resultValues[place].origin == ValueOrigin::fromNew;
      row = {isSame ? ValueFate::same : ValueFate::carried,
             isSame ? reason("mergeCfgEntry", "the new configuration has the same already")
                    : reason("mergeCfgEntry", "the old server's value is carried"),
             place};
    } else if (const auto found = moved.find(id); found != moved.end()) {
      row = {ValueFate::moved, reason("mergeIn60", "the new server has the setting elsewhere"), found->second};
    } else {
      row = {ValueFate::dropped, reason("mergeIn60", "the old server's setting is not carried"), kNoValue};
    }
    m_ledger.oldValues.push_back(row);
  }

  for (ValueId id = 0; id < m_ledger.before.values().size(); ++id) {
    if (inResult.at(m_ledger.before, id) != kNoValue) continue;
    tool::ReplacedRow row{id, kNoValue, reason("mergeCfgEntry", "the old server's value takes its place")};
    const auto& attribute = m_ledger.before.attributeOf(m_ledger.before.values()[id]);
    const auto setting = inResult.settings.find({m_ledger.before.entryOf(attribute).normal, lowerCase(attribute.name)});
    if (setting != inResult.settings.end()) {
      for (const ValueId by : setting->second) {
        if (m_ledger.resultValues[by].origin == ValueOrigin::fromNew) continue;
        row.by = by;
        break;
      }
    }
    m_ledger.replaced.push_back(row);
  }

  for (const auto& entry : m_ledger.old.entries()) {
    const bool isMerged = m_ledger.before.findEntry(entry.normal) != Snapshot::kNone;
    const bool isThere = m_ledger.result.findEntry(entry.normal) != Snapshot::kNone;
    tool::EntryRow row;
    row.fate = isMerged ? tool::EntryFate::merged : isThere ? tool::EntryFate::added : tool::EntryFate::left;
    row.reason = isMerged  ? reason("mergeCfgEntry", "both configurations have the entry")
                 : isThere ? reason("addCfgEntry", "only the old configuration has the entry")
                           : reason("addTo60", "the rule carries nothing of the entry");
    if (isThere) row.target = entry.normal;
    m_ledger.oldEntries.push_back(row);
  }
}

void SampleLedger::count() {
  m_ledger.fates.fill(0);
  m_ledger.origins.fill(0);
  for (const auto& row : m_ledger.oldValues) ++m_ledger.fates[static_cast<std::size_t>(row.fate)];
  for (const auto& row : m_ledger.resultValues) ++m_ledger.origins[static_cast<std::size_t>(row.origin)];
}

std::uint32_t SampleLedger::entry(Content content, std::string_view dn) const {
  return tool::snapshotOf(m_ledger, content).findEntry(cfgstore::normalDn(dn).value());
}

ValueId SampleLedger::value(Content content, std::string_view dn, std::string_view attribute,
                            std::string_view text) const {
  const Snapshot& snapshot = tool::snapshotOf(m_ledger, content);
  const std::uint32_t number = snapshot.findAttribute(entry(content, dn), attribute);
  if (number == Snapshot::kNone) return kNoValue;
  const auto& found = snapshot.attributes()[number];
  for (ValueId id = found.firstValue; id < found.firstValue + found.values; ++id) {
    if (snapshot.values()[id].value == text) return id;
  }
  return kNoValue;
}

tool::ReasonId SampleLedger::reason(const std::string& method, const std::string& words) {
  auto& reasons = m_ledger.reasons;
  const auto found = std::find_if(reasons.begin(), reasons.end(), [&](const tool::Reason& reason) {
    return reason.method == method && reason.words == words;
  });
  if (found != reasons.end()) return static_cast<tool::ReasonId>(found - reasons.begin());
  reasons.push_back({method, words});
  return static_cast<tool::ReasonId>(reasons.size() - 1);
}

void SampleLedger::setFate(std::string_view dn, std::string_view attribute, std::string_view text, ValueFate fate,
                           const std::string& method, const std::string& words) {
  m_ledger.oldValues.at(value(Content::old, dn, attribute, text)) = {fate, reason(method, words), kNoValue};
  count();
}

void SampleLedger::setEntry(std::string_view dn, tool::EntryFate fate, const std::string& method,
                            const std::string& words, std::string_view target) {
  tool::EntryRow row{fate, reason(method, words), {}};
  if (!target.empty()) row.target = m_targets.emplace_back(cfgstore::normalDn(target).value());
  m_ledger.oldEntries.at(entry(Content::old, dn)) = row;
}
