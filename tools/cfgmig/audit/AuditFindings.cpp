#include "audit/AuditFindings.h"

#include "Secrets.h"

namespace tool {
namespace {

using cfgstore::Snapshot;

FoundValue valueOf(const AuditReport& report, const Snapshot& snapshot, ValueId id) {
  const cfgstore::SnapshotValue& value = snapshot.values()[id];
  const std::string_view name = snapshot.attributeOf(value).name;
  return {value.value, !report.showsSecrets && isSecret(name, value.value), value.line};
}

}  // namespace

std::vector<LostValue> lostValues(const AuditReport& report) {
  std::vector<LostValue> lost;
  for (ValueId id = 0; id < report.audit.oldValues.size(); ++id) {
    const AuditedOldValue& row = report.audit.oldValues[id];
    if (row.fate != ValueFate::lost) continue;
    const cfgstore::SnapshotAttribute& attribute = report.old.attributeOf(report.old.values()[id]);
    lost.push_back({report.old.entryOf(attribute).normal, attribute.name, valueOf(report, report.old, id), row.reason});
  }
  return lost;
}

std::vector<FoundDiscrepancy> foundDiscrepancies(const AuditReport& report) {
  std::vector<FoundDiscrepancy> found;
  for (const Discrepancy& discrepancy : report.audit.discrepancies) {
    FoundDiscrepancy& each = found.emplace_back();
    each.kind = discrepancy.kind;
    each.dn = discrepancy.dn;
    each.attribute = discrepancy.attribute;
    if (discrepancy.old != kNoValue) each.oldLine = report.old.values()[discrepancy.old].line;
    if (discrepancy.isExpected) {
      each.expected = FoundValue{discrepancy.expected,
                                 !report.showsSecrets && isSecret(discrepancy.attribute, discrepancy.expected), 0};
      if (discrepancy.before != kNoValue) each.expected->line = report.before.values()[discrepancy.before].line;
      if (discrepancy.old != kNoValue) each.expected->line = each.oldLine;
      each.isExpectedOfOld = discrepancy.old != kNoValue;
    }
    if (discrepancy.result != kNoValue) each.there = valueOf(report, report.result, discrepancy.result);
    // What a secret was changed from or to tells more of it than it should.
    if (each.expected && each.there && (each.expected->isSecret || each.there->isSecret)) {
      each.expected->isSecret = each.there->isSecret = true;
    }
  }
  return found;
}

std::vector<FoundValue> schemaFilesLeft(const AuditReport& report) {
  std::vector<FoundValue> files;
  for (const ValueId id : report.audit.schemaFilesLeft) files.push_back(valueOf(report, report.result, id));
  return files;
}

}  // namespace tool
