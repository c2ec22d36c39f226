// Ldif.cpp -- a report as LDIF change records (RFC 2849): what an LDAP client applies to a running server that holds
// the new configuration, to give it the content of the result.
//
// Secrets that are not to be shown are left out, with a comment in their place, so that the rest can be applied.

#include <ostream>
#include <string>

#include "LineWriter.h"
#include "PrintableText.h"
#include "report/ChangeRecords.h"
#include "report/Report.h"

namespace tool {
namespace {

const cfgstore::Habits kHabits;

const char* operationOf(AttributeChange::Kind kind) {
  switch (kind) {
    case AttributeChange::Kind::add:
      return "add";
    case AttributeChange::Kind::remove:
      return "delete";
    case AttributeChange::Kind::replace:
      break;
  }
  return "replace";
}

const char* typeOf(ChangeRecord::Kind kind) {
  switch (kind) {
    case ChangeRecord::Kind::modify:
      return "modify";
    case ChangeRecord::Kind::add:
      return "add";
    case ChangeRecord::Kind::remove:
      break;
  }
  return "delete";
}

std::string comment(const std::string& text) { return "# " + text + "\n"; }

std::string secretsLeftOut(std::size_t count, const std::string& where) {
  return comment(std::to_string(count) + (count == 1 ? " value" : " values") + " left out, being secret: " + where);
}

class LdifReport {
 public:
  explicit LdifReport(const Report& report)
      : m_report(report), m_records(changeRecords(report.ledger.before, report.ledger.result)) {}

  void write(std::ostream& out) const {
    writeHead(out);
    for (const ChangeRecord& record : m_records) out << '\n' << textOf(record);
  }

 private:
  // A value of the change that may be shown. A removal of all values names none, and nothing is said by it.
  bool isShown(const AttributeChange& change, ValueId value) const {
    return m_report.redaction.showsSecrets() || !m_report.redaction.isSecret(change.content, value);
  }
  std::size_t hiddenOf(const AttributeChange& change) const {
    std::size_t hidden = 0;
    for (const ValueId value : change.values) hidden += isShown(change, value) ? 0U : 1U;
    return hidden;
  }
  bool isHidden(const AttributeChange& change) const {
    return !change.values.empty() && hiddenOf(change) == change.values.size();
  }

  void writeHead(std::ostream& out) const;
  std::string textOf(const ChangeRecord& record) const;
  std::string linesOf(const AttributeChange& change) const;

  const Report& m_report;
  std::vector<ChangeRecord> m_records;
};

void LdifReport::writeHead(std::ostream& out) const {
  std::size_t hidden = 0;
  std::size_t inTheAir = 0;
  for (const ChangeRecord& record : m_records) {
    inTheAir += record.missingParent.empty() ? 0U : 1U;
    for (const AttributeChange& change : record.changes) hidden += hiddenOf(change);
  }
  out << "version: 1\n" << comment(std::string(kReportMark) + " " + m_report.toolVersion + ", " + m_report.time);
  out << comment("Changes for a running server that holds the new configuration: " + std::to_string(m_records.size()) +
                 (m_records.size() == 1 ? " record." : " records."));
  if (hidden > 0) {
    out << comment(std::to_string(hidden) + (hidden == 1 ? " secret is" : " secrets are") +
                   " left out, so these records do not give the whole result;")
        << comment("with --show-secrets they do.");
  }
  if (inTheAir > 0) {
    out << comment("A server refuses " + std::string(inTheAir == 1 ? "one entry" : "entries") +
                   " at the end whose parent is not there.");
  }
}

// The values of one change, with a comment for those that are left out.
std::string LdifReport::linesOf(const AttributeChange& change) const {
  const cfgstore::Snapshot& snapshot = snapshotOf(m_report.ledger, change.content);
  std::string text;
  for (const ValueId value : change.values) {
    if (isShown(change, value)) text += writeLine(kHabits, change.attribute, snapshot.values()[value].value);
  }
  if (const std::size_t hidden = hiddenOf(change); hidden > 0) {
    text += secretsLeftOut(hidden, ldtr::printable(change.attribute));
  }
  return text;
}

std::string LdifReport::textOf(const ChangeRecord& record) const {
  std::string head;
  if (!record.missingParent.empty()) {
    head = comment("This entry has no parent, which would be " + ldtr::printableDn(record.missingParent));
  }
  std::string body;
  bool hasChanges = record.kind != ChangeRecord::Kind::modify;
  for (const AttributeChange& change : record.changes) {
    if (record.kind == ChangeRecord::Kind::add || isHidden(change)) {
      body += linesOf(change);
      continue;
    }
    hasChanges = true;
    body += writeLine(kHabits, operationOf(change.kind), change.attribute) + linesOf(change) + "-\n";
  }
  // A record without a change is none, and its comments stand alone.
  if (!hasChanges) return comment("of " + ldtr::printableDn(record.dn)) + body;
  return head + writeLine(kHabits, "dn", record.dn) + writeLine(kHabits, "changetype", typeOf(record.kind)) + body;
}

}  // namespace

void writeLdif(const Report& report, std::ostream& out) { LdifReport(report).write(out); }

}  // namespace tool
