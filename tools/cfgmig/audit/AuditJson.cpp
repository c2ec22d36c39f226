// AuditJson.cpp -- an audit as JSON.
//
// {
//   "format_version": 1,
//   "verdict": "agrees",                         or "lost" or "differs"
//   "source_version": "6.0",
//   "files": {"old": "old.ldif", "before": "new.ldif", "result": "merged.ldif"},
//   "old_values": {"same": 1, "carried": 1, ...},
//   "result_values": {"new": 1, "carried": 1, ..., "unexplained": 0},
//   "replaced": 1,
//   "lost": [{"dn": D, "attribute": A, "line": 1, "value": V, "reason": R}, ...],
//   "discrepancies": [
//     {"kind": K, "dn": D, "attribute": A,       no attribute for a whole entry
//      "expected": {"value": V, "old_line": 1},  or "before_line", or neither for what a rule writes
//      "found": {"value": V, "line": 1}, "old_line": 1}, ...
//   ],
//   "schema_files_left": [{"line": 1, "value": V}, ...],
//   "text": {"missing_lines": [1, ...], "added_lines": [1, ...]}
// }
//
// A value is a string, {"base64": "..."} when it is not UTF-8, or {"redacted": true}; so are names and DNs, which are
// never redacted.

#include <ostream>
#include <string>

#include "JsonText.h"
#include "audit/AuditFindings.h"

namespace tool {
namespace {

using Json = nlohmann::ordered_json;

constexpr int kFormatVersion = 1;

Json valueOf(const FoundValue& value) { return value.isSecret ? Json{{"redacted", true}} : jsonText(value.text); }

template <class Id, std::size_t N>
Json countsOf(const std::array<std::size_t, N>& counts) {
  Json json = Json::object();
  for (std::size_t i = 0; i < N; ++i) json[nameOf(static_cast<Id>(i))] = counts[i];
  return json;
}

Json jsonOf(const LostValue& lost) {
  return Json{{"dn", jsonText(lost.dn)},
              {"attribute", jsonText(lost.attribute)},
              {"line", lost.value.line},
              {"value", valueOf(lost.value)},
              {"reason", wordsFor(lost.reason)}};
}

Json jsonOf(const FoundDiscrepancy& each) {
  Json json{{"kind", wordsFor(each.kind)}, {"dn", jsonText(each.dn)}};
  if (!each.attribute.empty()) json["attribute"] = jsonText(each.attribute);
  if (each.expected) {
    json["expected"] = Json{{"value", valueOf(*each.expected)}};
    if (each.expected->line != 0)
      json["expected"][each.isExpectedOfOld ? "old_line" : "before_line"] = each.expected->line;
  }
  if (each.there) json["found"] = Json{{"value", valueOf(*each.there)}, {"line", each.there->line}};
  if (!each.expected && each.oldLine != 0) json["old_line"] = each.oldLine;
  return json;
}

Json jsonOf(const FoundValue& file) { return Json{{"line", file.line}, {"value", valueOf(file)}}; }

template <class List>
Json listOf(const List& list) {
  Json json = Json::array();
  for (const auto& each : list) json.push_back(jsonOf(each));
  return json;
}

}  // namespace

void writeAuditJson(const AuditReport& report, std::ostream& out) {
  const Audit& audit = report.audit;
  Json resultValues = countsOf<ValueOrigin>(audit.origins);
  resultValues["unexplained"] = audit.unexplained;
  const Json json{
      {"format_version", kFormatVersion},
      {"verdict", nameOf(audit.verdict())},
      {"source_version", audit.sourceVersion},
      {"files", Json{{"old", jsonText(report.oldPath)},
                     {"before", jsonText(report.beforePath)},
                     {"result", jsonText(report.resultPath)}}},
      {"old_values", countsOf<ValueFate>(audit.fates)},
      {"result_values", resultValues},
      {"replaced", audit.replaced.size()},
      {"lost", listOf(lostValues(report))},
      {"discrepancies", listOf(foundDiscrepancies(report))},
      {"schema_files_left", listOf(schemaFilesLeft(report))},
      {"text", Json{{"missing_lines", report.text.missing}, {"added_lines", report.text.added}}},
  };
  out << json.dump(2, ' ', true) << '\n';
}

}  // namespace tool
