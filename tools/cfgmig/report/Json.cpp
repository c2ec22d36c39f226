// Json.cpp -- a report as JSON, which is also what a plan is saved as. docs/report.schema.json describes it.
//
// Values have the number that they have in their configuration; other parts of the document refer to them by it.

#include <algorithm>
#include <utility>
#include <vector>

#include "StoreCodes.h"
#include "report/JsonWriter.h"
#include "report/Plan.h"
#include "report/Report.h"
#include "report/Unfolded.h"

namespace tool {
namespace {

using cfgstore::Snapshot;

const char* nameOf(cfgstore::Operation operation) {
  switch (operation) {
    case cfgstore::Operation::addValue:
      return "add-value";
    case cfgstore::Operation::delValue:
      return "delete-value";
    case cfgstore::Operation::setValue:
      return "set-value";
    case cfgstore::Operation::addEntry:
      return "add-entry";
    case cfgstore::Operation::removeEntry:
      break;
  }
  return "remove-entry";
}

class JsonReport {
 public:
  JsonReport(const Report& report, std::ostream& out) : m_report(report), m_ledger(report.ledger), m_json(out) {}

  void write() {
    m_json.beginObject();
    writeHead();
    writeInputs();
    writeOptions();
    writeOutcome();
    writeSums();
    writeFindings();
    writeReasons();
    writeContent(Content::old);
    writeContent(Content::before);
    writeContent(Content::result);
    writeEvents();
    writeMessages();
    m_json.endObject();
  }

 private:
  // Null for none.
  void optionalText(const char* key, std::string_view value) {
    m_json.key(key);
    value.empty() ? m_json.null() : m_json.text(value);
  }
  // The number that a value has in the document; nothing for kNoValue.
  void numberOf(const char* key, Content content, ValueId value) {
    if (value != kNoValue) m_json.key(key).number(snapshotOf(m_ledger, content).numberOf(value));
  }

  void writeHead();
  void writeInputs();
  void writeOptions();
  void writeOutcome();
  void writeSums();
  void writeFindings();
  void writePlace(const FindingPlace& place);
  void writeReasons();
  void writeContent(Content content);
  void writeEntry(Content content, std::uint32_t number);
  void writeValue(Content content, ValueId id);
  void writeShown(const ShownValue& value);
  void writeAccountOf(Content content, ValueId id);
  void writeEvents();
  void writeMessages();

  const Report& m_report;
  const Ledger& m_ledger;
  JsonWriter m_json;
};

void JsonReport::writeHead() {
  m_json.key("format").text(kReportMark).key("format_version").number(kPlanFormatVersion);
  m_json.newLine().key("tool_version").text(m_report.toolVersion).key("time").text(m_report.time);
  m_json.newLine().key("shows_secrets").boolean(m_report.redaction.showsSecrets());
  m_json.newLine().key("source_version").text(m_ledger.sourceVersion);
  optionalText("recognised_from", m_report.redaction.words(m_report.recognisedFrom));
}

void JsonReport::writeInputs() {
  m_json.newLine().key("inputs").beginList();
  for (const InputFile& input : m_report.inputs) {
    m_json.newLine().beginObject();
    m_json.key("role").text(input.role).key("path").text(input.path);
    m_json.key("sha256").text(input.sha256).key("size").number(input.size).endObject();
  }
  m_json.endList();
}

void JsonReport::writeOptions() {
  m_json.newLine().key("options").beginObject();
  optionalText("from", m_report.options.from);
  m_json.key("target").text(m_report.options.target).key("schemas");
  if (const auto& schemas = m_report.options.schemas) {
    m_json.beginObject().key("search_directory").text(schemas->searchDirectory);
    m_json.key("target_directory").text(schemas->targetDirectory).endObject();
  } else {
    m_json.null();
  }
  m_json.endObject();
}

void JsonReport::writeOutcome() {
  m_json.newLine().key("outcome").beginObject().key("kind").text(nameOf(m_report.outcome.kind));
  optionalText("backup", m_report.outcome.backup);
  m_json.key("schemas").beginList();
  for (const SchemaFile& file : m_report.outcome.schemas) {
    m_json.newLine().beginObject().key("fate").text(nameOf(file.fate)).key("source").text(file.source);
    optionalText("destination", file.destination);
    optionalText("backup", file.backup);
    optionalText("why", m_report.redaction.words(file.why));
    m_json.endObject();
  }
  m_json.endList().endObject();
}

void JsonReport::writeSums() {
  m_json.newLine().key("sums").beginObject().key("old_values").beginObject();
  m_json.key("all").number(m_ledger.oldValueCount());
  for (std::size_t i = 0; i < kValueFates; ++i) {
    m_json.key(nameOf(static_cast<ValueFate>(i))).number(m_ledger.fates[i]);
  }
  m_json.endObject().key("result_values").beginObject().key("all").number(m_ledger.resultValueCount());
  for (std::size_t i = 0; i < kValueOrigins; ++i) {
    m_json.key(nameOf(static_cast<ValueOrigin>(i))).number(m_ledger.origins[i]);
  }
  m_json.endObject().key("replaced_values").number(m_ledger.replaced.size());
  m_json.key("mismatches").beginList();
  for (const std::string& mismatch : m_report.mismatches) m_json.text(m_report.redaction.words(mismatch));
  m_json.endList().endObject();
}

void JsonReport::writePlace(const FindingPlace& place) {
  const Snapshot& snapshot = snapshotOf(m_ledger, place.content);
  m_json.beginObject().key("in").text(nameOf(place.content)).key("dn").text(snapshot.entries()[place.entry].dn);
  if (place.attribute != Snapshot::kNone) {
    m_json.key("attribute").text(snapshot.attributes()[place.attribute].name);
  }
  if (place.value != kNoValue) {
    numberOf("value", place.content, place.value);
    m_json.key("line").number(snapshot.values()[place.value].line);
  }
  m_json.endObject();
}

void JsonReport::writeFindings() {
  m_json.newLine().key("findings").beginList();
  for (const Finding& finding : m_report.findings) {
    m_json.newLine().beginObject().key("id").text(finding.id).key("kind").text(finding.kind->id);
    m_json.key("severity").text(nameOf(finding.kind->severity)).key("title").text(finding.kind->title);
    m_json.key("what").text(m_report.redaction.words(finding.what)).key("why").text(finding.kind->why);
    m_json.key("remedy").text(finding.kind->remedy).key("places").beginList();
    for (const FindingPlace& place : finding.places) writePlace(place);
    m_json.endList().endObject();
  }
  m_json.endList();
}

void JsonReport::writeReasons() {
  m_json.newLine().key("reasons").beginList();
  for (const Reason& reason : m_ledger.reasons) {
    m_json.newLine().beginObject();
    optionalText("method", reason.method);
    m_json.key("words").text(m_report.redaction.words(reason.words)).endObject();
  }
  m_json.endList();
}

void JsonReport::writeShown(const ShownValue& value) {
  switch (value.form) {
    case ShownValue::Form::text:
      m_json.key("text").text(value.text);
      break;
    case ShownValue::Form::base64:
      m_json.key("base64").text(value.text);
      break;
    case ShownValue::Form::redacted:
      m_json.key("redacted").boolean(true);
      break;
  }
}

// The fate of an old value, the origin of a value of the result, what became of one of the new configuration.
void JsonReport::writeAccountOf(Content content, ValueId id) {
  if (content == Content::old) {
    const OldValueRow& row = m_ledger.oldValues[id];
    m_json.key("fate").text(nameOf(row.fate)).key("reason").number(row.reason);
    numberOf("place", Content::result, row.place);
  } else if (content == Content::result) {
    const ResultValueRow& row = m_ledger.resultValues[id];
    m_json.key("origin").text(nameOf(row.origin)).key("reason").number(row.reason);
    numberOf("from", row.origin == ValueOrigin::fromNew ? Content::before : Content::old, row.from);
  } else {
    const auto& replaced = m_ledger.replaced;
    const auto found = std::lower_bound(replaced.begin(), replaced.end(), id,
                                        [](const ReplacedRow& row, ValueId value) { return row.before < value; });
    if (found == replaced.end() || found->before != id) return;
    m_json.key("replaced").boolean(true).key("reason").number(found->reason);
    numberOf("by", Content::result, found->by);
  }
}

void JsonReport::writeValue(Content content, ValueId id) {
  const cfgstore::SnapshotValue& value = snapshotOf(m_ledger, content).values()[id];
  m_json.newLine().beginObject();
  numberOf("number", content, id);
  m_json.key("line").number(value.line);
  if (value.repeated) m_json.key("repeated").boolean(true);
  writeShown(m_report.redaction.shown(content, id));
  writeAccountOf(content, id);
  m_json.endObject();
}

void JsonReport::writeEntry(Content content, std::uint32_t number) {
  const Unfolded unfolded(m_ledger, content, number);
  const Snapshot& snapshot = snapshotOf(m_ledger, content);
  const cfgstore::SnapshotEntry& entry = snapshot.entries()[number];
  m_json.newLine().beginObject().key("dn").text(entry.dn).key("normal_dn").text(entry.normal);
  m_json.key("line").number(entry.line);
  if (content == Content::old) {
    const EntryRow& row = m_ledger.oldEntries[number];
    m_json.key("fate").text(nameOf(row.fate)).key("reason").number(row.reason);
    optionalText("target", row.target);
  }
  m_json.key("attributes").beginList();
  for (std::uint32_t i = entry.firstAttribute; i < entry.firstAttribute + entry.attributes; ++i) {
    const cfgstore::SnapshotAttribute& attribute = snapshot.attributes()[i];
    m_json.beginObject().key("name").text(attribute.name).key("values").beginList();
    for (std::uint32_t value = 0; value < attribute.values; ++value) {
      writeValue(content, attribute.firstValue + value);
    }
    m_json.endList().endObject();
  }
  m_json.endList().endObject();
}

void JsonReport::writeContent(Content content) {
  m_json.newLine().key(nameOf(content)).beginList();
  const std::size_t entries = snapshotOf(m_ledger, content).entries().size();
  for (std::uint32_t entry = 0; entry < entries; ++entry) writeEntry(content, entry);
  m_json.endList();
}

void JsonReport::writeEvents() {
  m_json.newLine().key("events").beginList();
  for (const LedgerEvent& event : m_ledger.events) {
    m_json.newLine().beginObject().key("in").text(event.onOld ? "old" : "new");
    m_json.key("operation").text(nameOf(static_cast<cfgstore::Operation>(event.operation)));
    m_json.key("changed").boolean(event.changed).key("code").signedNumber(event.rc).key("reason").number(event.reason);
    if (event.oldEntry != Snapshot::kNone) m_json.key("old_entry").number(event.oldEntry);
    m_json.key("dn").text(event.dn);
    if (!event.attribute.empty()) m_json.key("attribute").text(event.attribute);
    m_json.key("values").beginList();
    for (const std::string_view value : event.values) {
      m_json.beginObject();
      writeShown(m_report.redaction.shown(event.attribute, value));
      m_json.endObject();
    }
    m_json.endList().endObject();
  }
  m_json.endList();
}

void JsonReport::writeMessages() {
  m_json.newLine().key("messages").beginList();
  for (const std::string& message : m_ledger.messages) m_json.newLine().text(m_report.redaction.words(message));
  m_json.endList();
}

}  // namespace

void writeJson(const Report& report, std::ostream& out) {
  JsonReport(report, out).write();
  out << '\n';
}

}  // namespace tool
