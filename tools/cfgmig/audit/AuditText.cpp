// AuditText.cpp -- an audit for a terminal.

#include <algorithm>
#include <ostream>
#include <span>
#include <string>

#include "PrintableText.h"
#include "audit/AuditFindings.h"

namespace tool {
namespace {

class Writer {
 public:
  Writer(const AuditReport& report, std::ostream& out) : m_report(report), m_out(out) {}

  void write() {
    m_out << file(m_report.oldPath) << " (" << m_report.audit.sourceVersion << ") into " << file(m_report.beforePath)
          << " gave " << file(m_report.resultPath) << '\n';
    if (!m_report.versionFrom.empty()) {
      m_out << "  version  " << m_report.audit.sourceVersion << ", recognised from " << m_report.versionFrom << '\n';
    }
    writeSums();
    writeLost();
    writeDiscrepancies();
    writeSchemaFiles();
    writeTextLines();
    writeVerdict();
  }

 private:
  static std::string file(const std::string& path) { return ldtr::printable(path); }
  static std::string at(const std::string& path, std::size_t line) { return file(path) + ":" + std::to_string(line); }

  static std::string shown(const FoundValue& value) {
    return value.isSecret ? std::string("(a secret)") : "\"" + ldtr::printable(value.text) + "\"";
  }

  static std::string counted(std::size_t count, const char* one, const char* many) {
    return std::to_string(count) + " " + (count == 1 ? one : many);
  }

  // How many of so many are shown.
  std::size_t shownOf(std::size_t count) const { return m_report.most == 0 ? count : std::min(count, m_report.most); }

  void writeRest(std::size_t count) {
    if (shownOf(count) < count) m_out << "    and " << count - shownOf(count) << " more; --all shows them\n";
  }

  template <class Id>
  void writeCounts(std::span<const std::size_t> counts) {
    const char* separator = "";
    for (std::size_t i = 0; i < counts.size(); ++i) {
      m_out << separator << counts[i] << ' ' << nameOf(static_cast<Id>(i));
      separator = ", ";
    }
  }

  void writeSums() {
    const Audit& audit = m_report.audit;
    m_out << "  old      " << counted(audit.oldValues.size() + m_report.old.valuesSetAside(), "value: ", "values: ");
    writeCounts<ValueFate>(audit.fates);
    m_out << "\n  result   "
          << counted(audit.resultValues.size() + m_report.result.valuesSetAside(), "value: ", "values: ");
    writeCounts<ValueOrigin>(audit.origins);
    if (audit.unexplained > 0) m_out << ", " << audit.unexplained << " unexplained";
    m_out << "\n  replaced " << counted(audit.replaced.size(), "value", "values") << " of the new configuration\n";
  }

  void writeLost() {
    const std::vector<LostValue> lost = lostValues(m_report);
    m_out << "  lost     " << lost.size() << '\n';
    for (const LostValue& each : std::span(lost).first(shownOf(lost.size()))) {
      m_out << "    " << at(m_report.oldPath, each.value.line) << ": " << ldtr::printable(each.attribute) << " of "
            << ldtr::printableDn(each.dn) << ": " << shown(each.value) << ": " << wordsFor(each.reason) << '\n';
    }
    writeRest(lost.size());
  }

  void writeDiscrepancies() {
    const std::vector<FoundDiscrepancy> found = foundDiscrepancies(m_report);
    m_out << "  differs  " << found.size() << '\n';
    for (const FoundDiscrepancy& each : std::span(found).first(shownOf(found.size()))) write(each);
    writeRest(found.size());
  }

  void write(const FoundDiscrepancy& each) {
    m_out << "    " << ldtr::printableDn(each.dn);
    if (!each.attribute.empty()) m_out << ", " << ldtr::printable(each.attribute);
    m_out << ": " << wordsFor(each.kind) << '\n';
    if (each.expected) {
      m_out << "      expected: " << shown(*each.expected);
      if (each.expected->line != 0) {
        m_out << ", " << at(each.isExpectedOfOld ? m_report.oldPath : m_report.beforePath, each.expected->line);
      }
      m_out << '\n';
    }
    if (each.there) {
      m_out << "      there is: " << shown(*each.there) << ", " << at(m_report.resultPath, each.there->line) << '\n';
    }
    if (!each.expected && each.oldLine != 0)
      m_out << "      it is that of " << at(m_report.oldPath, each.oldLine) << '\n';
  }

  void writeSchemaFiles() {
    const std::vector<FoundValue> files = schemaFilesLeft(m_report);
    if (files.empty()) return;
    m_out << "  schemas  " << counted(files.size(), "file is", "files are") << " included as before, not as a copy\n";
    for (const FoundValue& each : std::span(files).first(shownOf(files.size()))) {
      m_out << "    " << at(m_report.resultPath, each.line) << ": " << shown(each) << '\n';
    }
    writeRest(files.size());
  }

  void writeTextLines() {
    if (m_report.text.isEmpty()) return;
    m_out << "  text     what no rule touched is written differently\n";
    writeLines(m_report.beforePath, m_report.text.missing, "no longer there as it was");
    writeLines(m_report.resultPath, m_report.text.added, "not there before");
  }

  void writeLines(const std::string& path, const std::vector<std::size_t>& lines, const char* what) {
    for (const std::size_t line : std::span(lines).first(shownOf(lines.size()))) {
      m_out << "    " << at(path, line) << ": " << what << '\n';
    }
    writeRest(lines.size());
  }

  void writeVerdict() {
    m_out << "  verdict  " << nameOf(m_report.audit.verdict()) << ": ";
    switch (m_report.audit.verdict()) {
      case AuditVerdict::agrees:
        m_out << "the result is exactly what the rules make of the two configurations\n";
        return;
      case AuditVerdict::lost:
        m_out
            << (m_report.audit.discrepancies.empty()
                    ? "the result is what the rules make of the two configurations, and not all of the old one is in it"
                    : "values are missing that should have arrived: their writes failed, or they were deleted since")
            << '\n';
        return;
      case AuditVerdict::differs:
        m_out << "the result is not what the rules make of the two configurations: it was edited since, or the "
                 "migration was faulty\n";
        return;
    }
  }

  const AuditReport& m_report;
  std::ostream& m_out;
};

}  // namespace

const char* nameOf(AuditVerdict verdict) {
  switch (verdict) {
    case AuditVerdict::agrees:
      return "agrees";
    case AuditVerdict::lost:
      return "lost";
    case AuditVerdict::differs:
      break;
  }
  return "differs";
}

void writeAuditText(const AuditReport& report, std::ostream& out) { Writer(report, out).write(); }

}  // namespace tool
