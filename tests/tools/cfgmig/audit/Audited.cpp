#include "Audited.h"

#include <map>
#include <stdexcept>

#include "ConfigFile.h"

namespace {

using cfgstore::Snapshot;
using tool::ValueId;

std::unique_ptr<cfgstore::ConfigStore> storeOf(const Workspace& workspace, const char* name, const std::string& text) {
  return std::make_unique<cfgstore::ConfigStore>(workspace.write(name, text));
}

ValueId valueOnLine(const Snapshot& snapshot, std::size_t line) {
  for (ValueId value = 0; value < snapshot.values().size(); ++value) {
    if (snapshot.values()[value].line == line) return value;
  }
  throw std::out_of_range("no value on line " + std::to_string(line));
}

std::string withLine(std::string word, const Snapshot& snapshot, ValueId value) {
  if (value != tool::kNoValue) word += " " + std::to_string(snapshot.values()[value].line);
  return word;
}

const char* nameOf(tool::Discrepancy::Kind kind) {
  using Kind = tool::Discrepancy::Kind;
  static const std::map<Kind, const char*> names = {
      {Kind::missingValue, "missingValue"},
      {Kind::missingEntry, "missingEntry"},
      {Kind::notReplaced, "notReplaced"},
      {Kind::missingNewValue, "missingNewValue"},
      {Kind::missingNewEntry, "missingNewEntry"},
      {Kind::changedValue, "changedValue"},
      {Kind::uncalledFor, "uncalledFor"},
      {Kind::unexplainedValue, "unexplainedValue"},
      {Kind::unexplainedEntry, "unexplainedEntry"},
      {Kind::repeatedValue, "repeatedValue"},
      {Kind::otherOrder, "otherOrder"},
  };
  return names.at(kind);
}

}  // namespace

std::string migrated(const std::string& version, const std::string& old, const std::string& before) {
  const Workspace workspace;
  ConfigFile oldFile(workspace.write("old.ldif", old), nullptr);
  ConfigFile newFile(workspace.write("new.ldif", before), nullptr);
  if (oldFile.getDns() != 0 || newFile.getDns() != 0) throw std::runtime_error("getDns failed");
  if (newFile.mergeConfigFiles(&oldFile, version.c_str()) != 1) throw std::runtime_error("no merge");
  return cfgstore::ConfigStore::of(*newFile.getCfgUtils()).text();
}

Audited::Audited(const std::string& version, const std::string& oldText, const std::string& beforeText,
                 const std::string& resultText, const std::string& schemaTarget)
    : oldStore(storeOf(workspace, "old.ldif", oldText)),
      beforeStore(storeOf(workspace, "new.ldif", beforeText)),
      resultStore(storeOf(workspace, "result.ldif", resultText)),
      old(*oldStore),
      before(*beforeStore),
      result(*resultStore),
      audit(tool::audit(old, before, result, version, schemaTarget)) {}

std::vector<std::string> discrepanciesOf(const Audited& audited) {
  std::vector<std::string> lines;
  for (const tool::Discrepancy& discrepancy : audited.audit.discrepancies) {
    std::string line = std::string(nameOf(discrepancy.kind)) + " " + std::string(discrepancy.dn);
    if (!discrepancy.attribute.empty()) line += " " + std::string(discrepancy.attribute);
    if (discrepancy.isExpected) line += ": expected [" + std::string(discrepancy.expected) + "]";
    if (discrepancy.result != tool::kNoValue) {
      line += std::string(discrepancy.isExpected ? "," : ":") + " there is [" +
              std::string(audited.result.values()[discrepancy.result].value) + "]";
    }
    lines.push_back(line);
  }
  return lines;
}

std::string fateOf(const Audited& audited, std::size_t line) {
  const tool::AuditedOldValue& row = audited.audit.oldValues[valueOnLine(audited.old, line)];
  return withLine(tool::nameOf(row.fate), audited.result, row.place);
}

std::string originOf(const Audited& audited, std::size_t line) {
  const tool::AuditedResultValue& row = audited.audit.resultValues[valueOnLine(audited.result, line)];
  if (!row.isExplained) return "unexplained";
  return withLine(tool::nameOf(row.origin), row.origin == tool::ValueOrigin::fromNew ? audited.before : audited.old,
                  row.from);
}

std::vector<std::string> replacedIn(const Audited& audited) {
  std::vector<std::string> lines;
  for (const tool::AuditedReplacement& row : audited.audit.replaced) {
    lines.push_back(withLine("", audited.before, row.before).substr(1) + " by" +
                    (row.by == tool::kNoValue ? " none" : withLine("", audited.result, row.by)));
  }
  return lines;
}
