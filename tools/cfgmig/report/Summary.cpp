// Summary.cpp -- what a terminal shows of a report.
//
//   Plan for a 6.0 configuration; nothing has been written.
//     lost      2 of 412 old values
//     error     1 x Entries were not carried to their end
//     warning   4 x Paths point into the old installation
//     old       412 values: 120 same, 75 carried, 10 moved, 20 dropped, 185 kept-new
//     result    500 values: 370 new, 120 carried, 10 moved
//     replaced  47 values of the new server
//     schemas   2 copied, 1 missing
//     target    /etc/zor/zor.conf
//     next      cfgmig apply plan.json

#include <algorithm>
#include <ostream>
#include <vector>

#include "PrintableText.h"
#include "report/Report.h"
#include "report/TextLines.h"

namespace tool {
namespace {

constexpr std::size_t kMostLines = 15;
constexpr std::size_t kMostVersionLines = 2;  // the whole evidence is in the report
constexpr std::size_t kNameColumns = 10;

enum class Tone { plain, good, bad, doubtful };

const char* startOf(Tone tone) {
  switch (tone) {
    case Tone::good:
      return "\x1b[32m";
    case Tone::bad:
      return "\x1b[1;31m";
    case Tone::doubtful:
      return "\x1b[33m";
    case Tone::plain:
      break;
  }
  return "";
}

Tone toneOf(Severity severity) {
  return severity == Severity::error ? Tone::bad : severity == Severity::warning ? Tone::doubtful : Tone::plain;
}

struct SummaryLine {
  std::string text;
  Tone tone = Tone::plain;
};
using Lines = std::vector<SummaryLine>;

std::string head(std::string_view name) {
  std::string text = "  " + std::string(name);
  text.resize(2 + kNameColumns, ' ');
  return text;
}

template <class Text>
void add(Lines& lines, std::string_view name, const Text& text, Tone tone = Tone::plain) {
  for (std::string& line : wrapped(head(name), text)) lines.push_back({std::move(line), tone});
}

// A path or a command, which must not be broken.
void addWhole(Lines& lines, std::string_view name, const std::string& text) {
  if (!text.empty()) lines.push_back({head(name) + text, Tone::plain});
}

std::string counted(std::size_t count, const char* what) {
  return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

// "412 values:", "120 same,", "75 carried"; those that are 0 are left out.
template <class Name, class Counts>
std::vector<std::string> sumsOf(std::size_t all, const Counts& counts) {
  std::vector<std::string> words{counted(all, "value")};
  for (std::size_t i = 0; i < counts.size(); ++i) {
    if (counts[i] == 0) continue;
    words.back() += words.size() == 1 ? ":" : ",";
    words.push_back(std::to_string(counts[i]) + " " + nameOf(static_cast<Name>(i)));
  }
  return words;
}

std::string verdict(const Report& report) {
  const std::string source = "a " + ldtr::printable(report.ledger.sourceVersion) + " configuration";
  switch (report.outcome.kind) {
    case Outcome::Kind::plan:
      return "Plan for " + source + "; nothing has been written.";
    case Outcome::Kind::nothingToDo:
      return "Nothing to do: the target holds what " + source + " gives.";
    case Outcome::Kind::applied:
      break;
  }
  return "Applied " + source + ".";
}

Lines linesOfLosses(const Report& report) {
  Lines lines;
  const std::size_t lost = report.ledger.count(ValueFate::lost);
  const std::string text = lost == 0 ? "nothing" : std::to_string(lost) + " of ";
  add(lines, "lost", lost == 0 ? text : text + counted(report.ledger.oldValueCount(), "old value"),
      lost == 0 ? Tone::good : Tone::bad);
  if (!report.mismatches.empty()) {
    add(lines, "mismatch",
        "the sums do not match, which is an error of cfgmig: " + counted(report.mismatches.size(), "fault"), Tone::bad);
  }
  return lines;
}

Lines linesOfSums(const Report& report) {
  const Ledger& ledger = report.ledger;
  Lines lines;
  add(lines, "old", sumsOf<ValueFate>(ledger.oldValueCount(), ledger.fates));
  add(lines, "result", sumsOf<ValueOrigin>(ledger.resultValueCount(), ledger.origins));
  add(lines, "replaced", counted(ledger.replaced.size(), "value") + " of the new server");
  return lines;
}

// "2 copied, 1 present, 37 missing"; the files themselves are in the report.
std::string schemasOf(const Report& report) {
  std::string text;
  for (const SchemaFile::Fate fate : {SchemaFile::Fate::toCopy, SchemaFile::Fate::copied, SchemaFile::Fate::present,
                                      SchemaFile::Fate::notCopied, SchemaFile::Fate::missing}) {
    const auto count = std::count_if(report.outcome.schemas.begin(), report.outcome.schemas.end(),
                                     [&](const SchemaFile& file) { return file.fate == fate; });
    if (count > 0) text += (text.empty() ? "" : ", ") + std::to_string(count) + " " + nameOf(fate);
  }
  return text.empty() ? "none but the server's own are included" : text;
}

Lines linesOfFiles(const Report& report) {
  Lines lines;
  if (report.options.schemas) add(lines, "schemas", schemasOf(report));
  if (!report.recognisedFrom.empty()) {
    add(lines, "version",
        ldtr::printable(report.ledger.sourceVersion) + ", recognised from " + ldtr::printable(report.recognisedFrom));
    lines.resize(std::min(lines.size(), kMostVersionLines));
  }
  addWhole(lines, "target", ldtr::printable(report.options.target));
  addWhole(lines, "backup", ldtr::printable(report.outcome.backup));
  addWhole(lines, "next", nextCommand(report));
  return lines;
}

// One line for each kind that was found, in as many lines as there are.
Lines linesOfFindings(const Report& report, std::size_t most) {
  Lines lines;
  for (const FindingKind& kind : findingKinds()) {
    const auto count = std::count_if(report.findings.begin(), report.findings.end(),
                                     [&](const Finding& finding) { return finding.kind == &kind; });
    if (count == 0) continue;
    lines.push_back({head(nameOf(kind.severity)) + std::to_string(count) + " x " + kind.title, toneOf(kind.severity)});
  }
  if (lines.size() <= most) return lines;
  const std::size_t left = lines.size() - (most - 1);
  lines.resize(most - 1);
  lines.push_back({head("") + "and " + std::to_string(left) + " more kinds, in the report", Tone::plain});
  return lines;
}

}  // namespace

void writeSummary(const Report& report, bool colours, std::ostream& out) {
  const Lines losses = linesOfLosses(report);
  const Lines sums = linesOfSums(report);
  const Lines files = linesOfFiles(report);
  const std::size_t others = 1 + losses.size() + sums.size() + files.size();
  const Lines findings = linesOfFindings(report, kMostLines - std::min(others, kMostLines - 2));

  out << verdict(report) << '\n';
  for (const Lines* lines : {&losses, &findings, &sums, &files}) {
    for (const SummaryLine& line : *lines) {
      const bool isColoured = colours && line.tone != Tone::plain;
      out << (colours ? startOf(line.tone) : "") << line.text << (isColoured ? "\x1b[0m" : "") << '\n';
    }
  }
}

}  // namespace tool
