#include "migration/ReportRequest.h"

#include <unistd.h>

#include <algorithm>
#include <iostream>
#include <iterator>

#include "Failure.h"
#include "PrintableText.h"
#include "SameFile.h"
#include "report/Colours.h"

namespace tool {
namespace {

struct FormatRow {
  Format format;
  const char* name;
  const char* option;  // that writes a file in this format
};

constexpr FormatRow kFormats[] = {
    {Format::text, "text", "--text-report"},
    {Format::json, "json", "--json-report"},
    {Format::ldif, "ldif", "--ldif-report"},
    {Format::html, "html", "--html-report"},
};

// Of one of the words that the table of options has for --format.
Format formatOf(const std::string& name) {
  const auto isIt = [&](const FormatRow& row) { return name == row.name; };
  return std::find_if(std::begin(kFormats), std::end(kFormats), isIt)->format;
}

// Whether a value of the old configuration at this place was lost.
bool hasLoss(const Ledger& ledger, const FindingPlace& place) {
  const auto isLost = [&](ValueId value) { return ledger.oldValues[value].fate == ValueFate::lost; };
  if (place.value != kNoValue) return isLost(place.value);
  for (const cfgstore::SnapshotAttribute& attribute : ledger.old.attributesOf(ledger.old.entries()[place.entry])) {
    if (place.attribute != cfgstore::Snapshot::kNone && &attribute != &ledger.old.attributes()[place.attribute])
      continue;
    for (std::uint32_t i = 0; i < attribute.values; ++i) {
      if (isLost(attribute.firstValue + i)) return true;
    }
  }
  return false;
}

std::size_t lineOf(const Ledger& ledger, const FindingPlace& place) {
  if (place.value != kNoValue) return ledger.old.values()[place.value].line;
  return ledger.old.entries()[place.entry].line;
}

}  // namespace

ReportRequest reportRequestOf(const Arguments& arguments) {
  ReportRequest request;
  request.showSecrets = arguments.has("--show-secrets");
  if (arguments.has("--format")) request.onOutput = formatOf(arguments.value("--format"));
  if (arguments.has("--verbose") && !request.onOutput) request.onOutput = Format::text;
  if (arguments.has("--json")) {
    if (request.onOutput && *request.onOutput != Format::json) {
      throw Failure(ExitStatus::usage, "--json and --format name different formats");
    }
    request.onOutput = Format::json;
  }
  for (const FormatRow& row : kFormats) {
    if (arguments.has(row.option)) request.files.push_back({row.format, arguments.value(row.option)});
  }
  return request;
}

void settleReports(const ReportRequest& request, std::span<const NamedFile> files) {
  for (std::size_t i = 0; i < request.files.size(); ++i) {
    const NamedFile report{request.files[i].path, "a report"};
    for (const NamedFile& file : files) refuseSameFile(report, file);
    for (std::size_t j = 0; j < i; ++j) refuseSameFile(report, {request.files[j].path, "another report"});
    if (const std::string why = whyNoTarget(report.path); !why.empty()) {
      throw Failure(ExitStatus::failed, ldtr::printable(report.path) + ": cannot be written: " + why);
    }
    refuseForeignFile(report.path);
  }
}

void saveReports(const ReportRequest& request, const Report& report) {
  for (const ReportRequest::InFile& file : request.files) saveReport(report, file.format, file.path);
}

void showReport(const ReportRequest& request, const Report& report, Console& console) {
  if (request.onOutput) return writeReport(report, *request.onOutput, console.out);
  const bool isTerminal = &console.out == &std::cout && wantsColours(STDOUT_FILENO);
  writeSummary(report, isTerminal, console.out);
}

void tellApplied(const UndoRecord& record, const Migration* replay, const ReportRequest& request, Console& console) {
  if (replay != nullptr) {
    Report report = replay->report(request.showSecrets);
    report.outcome.kind = Outcome::Kind::nothingToDo;
    for (const ReportRequest::InFile& file : request.files) {
      if (file.format == Format::json) report.planPath = file.path;
    }
    saveReports(request, report);
    tellLosses(report, console);
    return showReport(request, report, console);
  }
  const std::string target = ldtr::printable(record.target);
  if (request.onOutput || !request.files.empty()) {
    throw Failure(ExitStatus::failed, target + ": there is nothing to do, and no account of the apply of " +
                                          ldtr::printable(record.time) + " any more: its backup, " +
                                          ldtr::printable(record.backup) + ", does not give this result");
  }
  console.out << "Nothing to do: " << target << " is what the apply of " << ldtr::printable(record.time) << " made.\n";
}

void tellLosses(const Report& report, Console& console) {
  constexpr std::size_t kMost = 20;
  const InputFile* const old = report.input("old");
  const std::string path = old != nullptr ? ldtr::printable(old->path) : "";
  std::size_t losses = 0;
  for (const Finding& finding : report.findings) {
    const auto lost = std::find_if(finding.places.begin(), finding.places.end(), [&](const FindingPlace& place) {
      return place.content == Content::old && hasLoss(report.ledger, place);
    });
    if (lost == finding.places.end() || ++losses > kMost) continue;
    console.err << "cfgmig: " << path << ':' << lineOf(report.ledger, *lost)
                << ": lost: " << report.redaction.words(finding.what) << '\n';
  }
  if (losses > kMost) console.err << "cfgmig: and " << losses - kMost << " more; see --format text\n";

  std::size_t files = 0;
  for (const SchemaFile& file : report.outcome.schemas) {
    const bool isMissing = file.fate == SchemaFile::Fate::missing;
    if ((!isMissing && file.fate != SchemaFile::Fate::notCopied) || ++files > kMost) continue;
    console.err << "cfgmig: schema file " << ldtr::printable(file.source)
                << (isMissing ? ": not found" : ": not copied: " + ldtr::printable(file.why)) << '\n';
  }
  if (files > kMost) console.err << "cfgmig: and " << files - kMost << " more schema files; see --format text\n";
}

}  // namespace tool
