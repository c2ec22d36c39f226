// Report.h -- what every report shows: a ledger, what was found, where it all came from and what was written.
//
// The writers of the formats read nothing else. Whatever is a value goes through `redaction`; what else comes from a
// file, a DN say, is hostile text that each format has to escape.

#ifndef CFGMIG_TOOL_REPORT_REPORT_H
#define CFGMIG_TOOL_REPORT_REPORT_H

#include <cstdint>
#include <iosfwd>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "finding/Finding.h"
#include "ledger/Ledger.h"
#include "report/Redaction.h"

namespace tool {

// A file that the merge read.
struct InputFile {
  std::string role;        // "old" or "new"
  std::string path;        // absolute, any bytes but zero
  std::string sha256;      // of the bytes that were read: 64 lower-case hexadecimal digits
  std::uint64_t size = 0;  // of them, in bytes
};

// The input of this role with what `content`, the bytes that were read, says of itself. `path` is made absolute.
InputFile inputOf(const std::string& role, const std::string& path, std::string_view content);

// What the merge was asked for.
struct MergeOptions {
  struct Schemas {
    std::string searchDirectory;  // absolute
    std::string targetDirectory;  // absolute
  };

  std::string from;    // the version that was given; empty when it is to be recognised
  std::string target;  // where the result goes, absolute
  std::optional<Schemas> schemas;
};

// A schema file that the result includes and that does not belong to the server.
struct SchemaFile {
  enum class Fate : std::uint8_t {
    toCopy,  // a plan: it would be copied
    copied,
    present,    // an equal file was there already
    notCopied,  // refused: see why
    missing,    // not found
  };

  Fate fate = Fate::missing;
  std::string source;       // where it is, or the name that was looked for
  std::string destination;  // where it goes; empty when it goes nowhere
  std::string backup;       // where a different file went that was there; empty when there was none
  std::string why;          // notCopied: a phrase
};
const char* nameOf(SchemaFile::Fate fate);  // "to-copy", "copied", "present", "not-copied", "missing"

// What was written.
struct Outcome {
  enum class Kind : std::uint8_t {
    plan,         // nothing
    nothingToDo,  // nothing, since the target held the result already
    applied,
  };

  Kind kind = Kind::plan;
  std::string backup;               // where the file went that the target was; empty when there was none
  std::vector<SchemaFile> schemas;  // in the order of the include list
};
const char* nameOf(Outcome::Kind kind);  // "plan", "nothing-to-do", "applied"

struct Report {
  // Makes the decisions about secrets; everything else is filled in by the caller. The ledger must outlive the report.
  Report(const Ledger& ofLedger, bool showSecrets) : ledger(ofLedger), redaction(ofLedger, showSecrets) {}

  const Ledger& ledger;
  Redaction redaction;
  std::vector<Finding> findings;
  std::vector<std::string> mismatches;  // what sumErrors says of the ledger

  std::string toolVersion;     // "0.1.0"
  std::string time;            // when the merge was made, "2026-11-21T09:14:00Z"
  std::string recognisedFrom;  // what told the source version, in printable form; empty when it was given
  std::vector<InputFile> inputs;
  MergeOptions options;
  Outcome outcome;
  std::string planPath;  // where the plan was saved, as the user wrote it; empty when it was not

  // The input with this role, or null.
  const InputFile* input(std::string_view role) const;
};
const char* nameOf(EntryFate fate);  // "added", "merged", "moved", "rebuilt", "left", "skipped", "outside"

// Whether a person has to look: values were lost, the sums do not match, or there is a finding above a note.
bool needsPerson(const Report& report);

// The command that the user would run next, quoted for a shell, on one line: after a plan the one that applies it,
// after an apply the one that audits the result. Empty when there is nothing to do.
std::string nextCommand(const Report& report);

enum class Format : std::uint8_t { text, json, ldif, html };

// Writes the whole report, value by value. `out` tells by its state whether it could be written.
void writeReport(const Report& report, Format format, std::ostream& out);

// One for each format; writeHtml is in html/HtmlReport.h.
void writeText(const Report& report, std::ostream& out);
void writeJson(const Report& report, std::ostream& out);
void writeLdif(const Report& report, std::ostream& out);

// The summary for a terminal: at most 15 lines, losses first. Lines have at most 80 columns, but for paths and
// commands, which are never cut. `colours`: with the escape sequences of a terminal.
void writeSummary(const Report& report, bool colours, std::ostream& out);

// Writes the report to a file that only its owner can read, whether it holds secrets or not: what is left out as a
// secret is a matter of guessing. The file appears when it is whole. One that is there already is replaced when it is
// empty or a report of ours, and left alone otherwise: a wrong name must not cost anybody a file. What is no regular
// file (a pipe) is written to as it is. Throws Failure with ExitStatus::failed; what was at `path` is then unchanged.
void saveReport(const Report& report, Format format, const std::string& path);

// What saveReport would refuse of a file that is there already: throws the same, and changes nothing.
void refuseForeignFile(const std::string& path);

// The first words of every report, in whatever a comment is in its format.
inline constexpr std::string_view kReportMark = "cfgmig report";

}  // namespace tool

#endif  // CFGMIG_TOOL_REPORT_REPORT_H
