// CheckCommand.cpp -- cfgmig check.

#include <limits>
#include <map>
#include <ostream>
#include <string>

#include "Commands.h"
#include "Inspection.h"
#include "JsonText.h"
#include "PrintableText.h"
#include "SizeLimit.h"

namespace tool {
namespace {

using cfgstore::Inspection;
using cfgstore::Remark;
using cfgstore::RemarkKind;
using cfgstore::Severity;

constexpr std::size_t kAll = std::numeric_limits<std::size_t>::max();
constexpr std::size_t kMostWarnings = 100;  // of one kind; errors are shown all

const char* nameOf(Severity severity) { return severity == Severity::error ? "error" : "warning"; }

std::string counted(std::size_t count, const char* what, const char* plural) {
  return std::to_string(count) + ' ' + (count == 1 ? what : plural);
}

// The remarks that are shown, in order, and how many of each kind are not.
class Shown {
 public:
  Shown(const Inspection& inspection, std::size_t mostWarnings) {
    std::map<RemarkKind, std::size_t> seen;
    for (const Remark& remark : inspection.remarks) {
      const std::size_t number = ++seen[remark.kind];
      if (infoOf(remark.kind).severity == Severity::warning && number > mostWarnings) {
        ++m_hidden[remark.kind];
      } else {
        m_remarks.push_back(&remark);
      }
    }
  }

  const std::vector<const Remark*>& remarks() const { return m_remarks; }
  std::size_t hidden(RemarkKind kind) const {
    const auto found = m_hidden.find(kind);
    return found == m_hidden.end() ? 0 : found->second;
  }
  bool hidesNone() const { return m_hidden.empty(); }
  const std::map<RemarkKind, std::size_t>& hidden() const { return m_hidden; }

 private:
  std::vector<const Remark*> m_remarks;
  std::map<RemarkKind, std::size_t> m_hidden;
};

void writeText(const Shown& shown, const std::string& path, std::ostream& out) {
  const std::string file = ldtr::printable(path);
  for (const Remark* remark : shown.remarks()) {
    const cfgstore::RemarkKindInfo& info = infoOf(remark->kind);
    out << file;
    if (remark->line != 0) out << ':' << remark->line;
    // The text may name a DN, whose backslashes are its own.
    out << ": " << nameOf(info.severity) << ": " << ldtr::printableDn(remark->text) << sizeHint(remark->kind) << " ["
        << info.id << "]\n";
  }
}

// One remark a line; written line by line, since a file may have millions of them.
void writeJson(const Inspection& inspection, const Shown& shown, const std::string& path, std::ostream& out) {
  std::string json = "{\n  \"format_version\": 1,\n  \"file\": ";
  appendJsonText(json, path);
  json += ",\n  \"errors\": " + std::to_string(inspection.errors) +
          ",\n  \"warnings\": " + std::to_string(inspection.warnings) +
          ",\n  \"entries\": " + std::to_string(inspection.entries) +
          ",\n  \"values\": " + std::to_string(inspection.values) + ",\n  \"remarks\": [";
  const char* separator = "\n    ";
  for (const Remark* remark : shown.remarks()) {
    const cfgstore::RemarkKindInfo& info = infoOf(remark->kind);
    json += separator;
    separator = ",\n    ";
    json += R"({"line": )" + std::to_string(remark->line) + R"(, "severity": ")" + nameOf(info.severity) +
            R"(", "id": ")" + std::string(info.id) + R"(", "text": )";
    appendJsonText(json, remark->text + sizeHint(remark->kind));
    json += '}';
    out << json;
    json.clear();
  }
  json += shown.remarks().empty() ? "],\n  \"kinds\": [" : "\n  ],\n  \"kinds\": [";
  separator = "\n    ";
  for (const cfgstore::RemarkCount& count : inspection.counts) {
    const cfgstore::RemarkKindInfo& info = infoOf(count.kind);
    json += separator;
    separator = ",\n    ";
    json += R"({"id": ")" + std::string(info.id) + R"(", "severity": ")" + nameOf(info.severity) + R"(", "found": )" +
            std::to_string(count.found) + R"(, "shown": )" + std::to_string(count.found - shown.hidden(count.kind)) +
            "}";
  }
  json += inspection.counts.empty() ? "]\n}\n" : "\n  ]\n}\n";
  out << json;
}

void tellCounts(const Inspection& inspection, const Shown& shown, const std::string& path, Console& console) {
  if (!shown.hidesNone()) {
    std::string text;
    for (const auto& [kind, count] : shown.hidden()) {
      text += (text.empty() ? "" : ", ") + std::to_string(count) + " of " + std::string(infoOf(kind).id);
    }
    console.err << "cfgmig: " << ldtr::printable(path) << ": warnings that are not shown: " << text
                << "; --all shows them\n";
  }
  console.err << "cfgmig: " << ldtr::printable(path) << ": " << counted(inspection.errors, "error", "errors") << ", "
              << counted(inspection.warnings, "warning", "warnings") << "; "
              << counted(inspection.entries, "entry", "entries") << ", "
              << counted(inspection.values, "value", "values") << '\n';
}

}  // namespace

ExitStatus runCheck(const Arguments& arguments, Console& console) {
  const std::string path = arguments.value("FILE");
  const Inspection inspection = cfgstore::inspect(path, {kAll});
  const Shown shown(inspection, arguments.has("--all") ? kAll : kMostWarnings);
  if (arguments.has("--json")) {
    writeJson(inspection, shown, path, console.out);
  } else {
    writeText(shown, path, console.out);
  }
  tellCounts(inspection, shown, path, console);
  if (inspection.errors > 0) return ExitStatus::failed;
  return arguments.has("--exit-code") && inspection.warnings > 0 ? ExitStatus::differs : ExitStatus::done;
}

}  // namespace tool
