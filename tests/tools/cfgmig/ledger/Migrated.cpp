#include "Migrated.h"

#include <stdexcept>
#include <utility>

namespace {

using cfgstore::Snapshot;
using tool::ValueId;

cfgstore::ConfigStore& storeOf(ConfigFile& configuration) {
  return cfgstore::ConfigStore::of(*configuration.getCfgUtils());
}

ValueId valueAt(const Snapshot& snapshot, std::size_t line) {
  for (ValueId i = 0; i < snapshot.values().size(); ++i) {
    if (snapshot.values()[i].line == line) return i;
  }
  throw std::logic_error("there is no value on line " + std::to_string(line));
}

std::string lineOf(const Snapshot& snapshot, ValueId value) {
  return value == tool::kNoValue ? "none" : std::to_string(snapshot.values()[value].line);
}

std::string byMethod(const tool::Ledger& ledger, tool::ReasonId reason) {
  const std::string& method = ledger.reasonOf(reason).method;
  return method.empty() ? "" : " by " + method;
}

constexpr const char* kEntryFates[] = {"added", "merged", "moved", "rebuilt", "left", "skipped", "outside"};

}  // namespace

Migrated::Migrated(const std::string& version, const std::string& oldPath, const std::string& newPath, const Gate& gate,
                   const Afterwards& afterwards, std::unique_ptr<Workspace> workspace)
    : m_workspace(std::move(workspace)),
      m_old(std::make_unique<ConfigFile>(oldPath, nullptr)),
      m_now(std::make_unique<ConfigFile>(newPath, nullptr)) {
  if (m_old->getDns() != 0 || m_now->getDns() != 0) throw std::runtime_error("getDns failed");
  if (gate) {
    storeOf(*m_old).refuseWith([&](const cfgstore::Write& write) { return gate(tool::Side::oldConfiguration, write); });
    storeOf(*m_now).refuseWith([&](const cfgstore::Write& write) { return gate(tool::Side::newConfiguration, write); });
  }
  tool::LedgerBuilder builder(*m_old, *m_now, version);
  builder.merge();
  if (afterwards) afterwards(*m_now, builder);
  m_ledger = std::move(*builder.finish());
  storeOf(*m_old).refuseWith({});
  storeOf(*m_now).refuseWith({});
}

Migrated::Migrated(const std::string& version, const std::string& oldText, const std::string& newText, const Gate& gate,
                   const Afterwards& afterwards)
    : Migrated([&] {
        auto workspace = std::make_unique<Workspace>();
        const std::string oldPath = workspace->write("old.ldif", oldText);
        const std::string newPath = workspace->write("new.ldif", newText);
        return Migrated(version, oldPath, newPath, gate, afterwards, std::move(workspace));
      }()) {}

Migrated Migrated::ofFiles(const std::string& version, const std::string& oldPath, const std::string& newPath) {
  return Migrated(version, oldPath, newPath, {}, {}, nullptr);
}

std::string Migrated::text() const { return storeOf(*m_now).text(); }

std::string Migrated::fateAt(std::size_t line) const {
  const tool::OldValueRow& row = m_ledger.oldValues[valueAt(m_ledger.old, line)];
  const std::string place = row.place == tool::kNoValue ? "" : " " + lineOf(m_ledger.result, row.place);
  return tool::nameOf(row.fate) + place + byMethod(m_ledger, row.reason);
}

std::string Migrated::whyAt(std::size_t line) const {
  return m_ledger.reasonOf(m_ledger.oldValues[valueAt(m_ledger.old, line)].reason).words;
}

std::string Migrated::originAt(std::size_t line) const {
  const tool::ResultValueRow& row = m_ledger.resultValues[valueAt(m_ledger.result, line)];
  const bool isNew = row.origin == tool::ValueOrigin::fromNew;
  const std::string from =
      row.from == tool::kNoValue ? "" : " from " + lineOf(isNew ? m_ledger.before : m_ledger.old, row.from);
  return tool::nameOf(row.origin) + from + byMethod(m_ledger, row.reason);
}

std::string Migrated::originWhyAt(std::size_t line) const {
  return m_ledger.reasonOf(m_ledger.resultValues[valueAt(m_ledger.result, line)].reason).words;
}

std::vector<std::string> Migrated::replaced() const {
  std::vector<std::string> lines;
  for (const tool::ReplacedRow& row : m_ledger.replaced) {
    lines.push_back(lineOf(m_ledger.before, row.before) + " by " + lineOf(m_ledger.result, row.by) + " (" +
                    m_ledger.reasonOf(row.reason).method + ")");
  }
  return lines;
}

std::string Migrated::entryAt(std::size_t line) const {
  for (std::size_t i = 0; i < m_ledger.oldEntries.size(); ++i) {
    if (m_ledger.old.entries()[i].line != line) continue;
    const tool::EntryRow& row = m_ledger.oldEntries[i];
    return kEntryFates[static_cast<std::size_t>(row.fate)] +
           (row.target.empty() ? "" : " to " + std::string(row.target));
  }
  throw std::logic_error("there is no entry on line " + std::to_string(line));
}
