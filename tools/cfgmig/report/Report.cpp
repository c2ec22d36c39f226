#include "report/Report.h"

#include <algorithm>
#include <filesystem>

#include "report/Sha256.h"
#include "report/html/HtmlReport.h"

namespace tool {

InputFile inputOf(const std::string& role, const std::string& path, std::string_view content) {
  return {role, std::filesystem::absolute(path).string(), sha256(content), content.size()};
}

const char* nameOf(SchemaFile::Fate fate) {
  switch (fate) {
    case SchemaFile::Fate::toCopy:
      return "to-copy";
    case SchemaFile::Fate::copied:
      return "copied";
    case SchemaFile::Fate::present:
      return "present";
    case SchemaFile::Fate::notCopied:
      return "not-copied";
    case SchemaFile::Fate::missing:
      break;
  }
  return "missing";
}

const char* nameOf(Outcome::Kind kind) {
  switch (kind) {
    case Outcome::Kind::plan:
      return "plan";
    case Outcome::Kind::nothingToDo:
      return "nothing-to-do";
    case Outcome::Kind::applied:
      break;
  }
  return "applied";
}

const char* nameOf(EntryFate fate) {
  switch (fate) {
    case EntryFate::added:
      return "added";
    case EntryFate::merged:
      return "merged";
    case EntryFate::moved:
      return "moved";
    case EntryFate::rebuilt:
      return "rebuilt";
    case EntryFate::left:
      return "left";
    case EntryFate::skipped:
      return "skipped";
    case EntryFate::outside:
      break;
  }
  return "outside";
}

const InputFile* Report::input(std::string_view role) const {
  const auto found =
      std::find_if(inputs.begin(), inputs.end(), [&](const InputFile& file) { return file.role == role; });
  return found == inputs.end() ? nullptr : &*found;
}

bool needsPerson(const Report& report) {
  return report.ledger.count(ValueFate::lost) > 0 || !report.mismatches.empty() ||
         countOf(report.findings, Severity::error) > 0 || countOf(report.findings, Severity::warning) > 0;
}

void writeReport(const Report& report, Format format, std::ostream& out) {
  switch (format) {
    case Format::text:
      return writeText(report, out);
    case Format::json:
      return writeJson(report, out);
    case Format::ldif:
      return writeLdif(report, out);
    case Format::html:
      return writeHtml(report, out);
  }
}

}  // namespace tool
