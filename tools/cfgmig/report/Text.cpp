// Text.cpp -- a report as text: the summary, the findings, and every value.
//
// Values and names are in printable form, so that no byte of a configuration reaches a terminal as a control character.

#include <algorithm>
#include <ostream>

#include "PrintableText.h"
#include "report/Report.h"
#include "report/TextLines.h"
#include "report/Unfolded.h"

namespace tool {
namespace {

using cfgstore::Snapshot;
using cfgstore::SnapshotAttribute;
using cfgstore::SnapshotEntry;

constexpr std::size_t kFateColumns = 9;

std::string padded(std::string text, std::size_t columns) {
  if (text.size() < columns) text.resize(columns, ' ');
  return text;
}

class TextReport {
 public:
  TextReport(const Report& report, std::ostream& out) : m_report(report), m_ledger(report.ledger), m_out(out) {}

  void write() {
    writeHead();
    writeFindings();
    writeSchemas();
    writeEntries(Content::old, "THE OLD CONFIGURATION");
    writeEntries(Content::result, "THE RESULT");
    writeReplaced();
    writeMessages();
  }

 private:
  void section(const char* title) { m_out << '\n' << title << '\n'; }
  void paragraph(std::string_view head, std::string_view text) {
    for (const std::string& line : wrapped(head, text)) m_out << line << '\n';
  }
  std::string reasonText(ReasonId id) const {
    const Reason& reason = m_ledger.reasonOf(id);
    std::string text = ldtr::printable(m_report.redaction.words(reason.words));
    if (reason.method.empty()) return text;
    return text + (text.empty() ? "" : " ") + "(" + ldtr::printable(reason.method) + ")";
  }
  std::string valueText(Content content, ValueId id) const {
    const Snapshot& snapshot = snapshotOf(m_ledger, content);
    const cfgstore::SnapshotValue& value = snapshot.values()[id];
    const std::string shown = lineOf(m_report.redaction.shown(content, id));
    std::string text = ldtr::printable(snapshot.attributeOf(value).name) + ":";
    if (!shown.empty()) text += " " + shown;
    return text;
  }
  // Where a value is, as far as it is not where another one is.
  std::string placeText(Content content, ValueId id, std::string_view notDn) const {
    const Snapshot& snapshot = snapshotOf(m_ledger, content);
    const SnapshotAttribute& attribute = snapshot.attributeOf(snapshot.values()[id]);
    const SnapshotEntry& entry = snapshot.entryOf(attribute);
    std::string text = ldtr::printable(attribute.name);
    if (entry.normal != notDn) text += " of " + ldtr::printableDn(entry.dn);
    return text + ", line " + std::to_string(snapshot.values()[id].line);
  }

  void writeHead();
  void writeFindings();
  void writeSchemas();
  void writeEntries(Content content, const char* title);
  void writeEntry(Content content, std::uint32_t number);
  void writeOld(ValueId id, std::string_view normal);
  void writeResult(ValueId id, std::string_view normal);
  void writeReplaced();
  void writeMessages();

  const Report& m_report;
  const Ledger& m_ledger;
  std::ostream& m_out;
};

void TextReport::writeHead() {
  m_out << kReportMark << ' ' << m_report.toolVersion << ", " << m_report.time << "\n\n";
  writeSummary(m_report, false, m_out);
  section("INPUTS");
  for (const InputFile& input : m_report.inputs) {
    m_out << "  " << padded(input.role, kFateColumns) << ldtr::printable(input.path) << '\n'
          << "           " << input.size << " bytes, SHA-256 " << input.sha256 << '\n';
  }
  const std::string& recognisedFrom = m_report.recognisedFrom;
  paragraph("  version  ", ldtr::printable(m_ledger.sourceVersion) +
                               (recognisedFrom.empty() ? ", as given" : ", recognised: " + recognisedFrom));
  if (!m_report.redaction.showsSecrets()) m_out << "  Secrets are not shown; with --show-secrets they are.\n";
  for (const std::string& mismatch : m_report.mismatches) {
    paragraph("  mismatch ", ldtr::printable(m_report.redaction.words(mismatch)));
  }
}

void TextReport::writeFindings() {
  if (m_report.findings.empty()) return;
  section("TO LOOK AT");
  const FindingKind* kind = nullptr;
  for (const Finding& finding : m_report.findings) {
    if (finding.kind != kind) {
      kind = finding.kind;
      paragraph("  " + padded(nameOf(kind->severity), kFateColumns), std::string(kind->title) + " [" + kind->id + "]");
      paragraph("           ", kind->why);
      paragraph("           ", kind->remedy);
    }
    paragraph("           - ", m_report.redaction.words(finding.what));
    for (const FindingPlace& place : finding.places) {
      if (place.value == kNoValue) continue;
      const auto line = snapshotOf(m_ledger, place.content).values()[place.value].line;
      m_out << "             " << (place.content == Content::result ? "result" : "old") << " line " << line << ": "
            << valueText(place.content, place.value) << '\n';
    }
  }
}

void TextReport::writeSchemas() {
  if (m_report.outcome.schemas.empty()) return;
  section("SCHEMA FILES");
  for (const SchemaFile& file : m_report.outcome.schemas) {
    m_out << "  " << padded(nameOf(file.fate), kFateColumns + 2) << ldtr::printable(file.source);
    if (!file.destination.empty()) m_out << " -> " << ldtr::printable(file.destination);
    if (!file.why.empty()) m_out << ": " << ldtr::printable(m_report.redaction.words(file.why));
    m_out << '\n';
    if (!file.backup.empty()) m_out << "             kept " << ldtr::printable(file.backup) << '\n';
  }
}

void TextReport::writeOld(ValueId id, std::string_view normal) {
  const OldValueRow& row = m_ledger.oldValues[id];
  m_out << "  " << padded(nameOf(row.fate), kFateColumns) << valueText(Content::old, id) << '\n';
  std::string account = "line " + std::to_string(m_ledger.old.values()[id].line);
  if (row.place != kNoValue) account += " -> " + placeText(Content::result, row.place, normal);
  m_out << "           " << account << "; " << reasonText(row.reason) << '\n';
}

void TextReport::writeResult(ValueId id, std::string_view normal) {
  const ResultValueRow& row = m_ledger.resultValues[id];
  m_out << "  " << padded(nameOf(row.origin), kFateColumns) << (row.origin == ValueOrigin::addedByRule ? " " : "")
        << valueText(Content::result, id) << '\n';
  std::string account = "line " + std::to_string(m_ledger.result.values()[id].line);
  if (row.from != kNoValue && isFromOld(row)) account += " <- " + placeText(Content::old, row.from, normal);
  m_out << "           " << account << "; " << reasonText(row.reason) << '\n';
}

void TextReport::writeEntry(Content content, std::uint32_t number) {
  const Unfolded unfolded(m_ledger, content, number);
  const Snapshot& snapshot = snapshotOf(m_ledger, content);
  const SnapshotEntry& entry = snapshot.entries()[number];
  m_out << '\n' << ldtr::printableDn(entry.dn) << '\n';
  if (content == Content::old) {
    const EntryRow& row = m_ledger.oldEntries[number];
    m_out << "  (line " << entry.line << "; " << nameOf(row.fate);
    if (!row.target.empty() && row.target != entry.normal) m_out << " to " << ldtr::printableDn(row.target);
    m_out << ": " << reasonText(row.reason) << ")\n";
  } else {
    m_out << "  (line " << entry.line << ")\n";
  }
  for (const SnapshotAttribute& attribute : snapshot.attributesOf(entry)) {
    for (std::uint32_t i = 0; i < attribute.values; ++i) {
      const ValueId id = attribute.firstValue + i;
      content == Content::old ? writeOld(id, entry.normal) : writeResult(id, entry.normal);
    }
  }
}

void TextReport::writeEntries(Content content, const char* title) {
  section(title);
  const std::size_t entries = snapshotOf(m_ledger, content).entries().size();
  for (std::uint32_t entry = 0; entry < entries; ++entry) writeEntry(content, entry);
}

void TextReport::writeReplaced() {
  if (m_ledger.replaced.empty()) return;
  section("VALUES OF THE NEW SERVER THAT WERE REPLACED");
  for (const ReplacedRow& row : m_ledger.replaced) {
    const Snapshot& before = m_ledger.before;
    const SnapshotAttribute& attribute = before.attributeOf(before.values()[row.before]);
    m_out << "  " << ldtr::printableDn(before.entryOf(attribute).dn) << '\n'
          << "           was  " << valueText(Content::before, row.before) << '\n';
    if (row.by != kNoValue) m_out << "           is   " << valueText(Content::result, row.by) << '\n';
    m_out << "           " << reasonText(row.reason) << '\n';
  }
}

void TextReport::writeMessages() {
  if (m_ledger.messages.empty()) return;
  section("MESSAGES OF THE LIBRARY");
  for (const std::string& message : m_ledger.messages) {
    m_out << "  " << ldtr::printable(m_report.redaction.words(message)) << '\n';
  }
}

}  // namespace

void writeText(const Report& report, std::ostream& out) { TextReport(report, out).write(); }

}  // namespace tool
