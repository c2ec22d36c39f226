// What a reader has to know first: whether all went well, what is written where, and what to do next.
#include <algorithm>
#include <ostream>

#include "report/html/HtmlText.h"
#include "report/html/Page.h"

namespace tool::html {
namespace {

bool isPlan(const Report& report) { return report.outcome.kind == Outcome::Kind::plan; }

std::size_t openFindings(const Report& report) {
  return countOf(report.findings, Severity::error) + countOf(report.findings, Severity::warning);
}

enum class Mood { good, look, bad };

Mood moodOf(const Report& report, bool addsUp) {
  if (!addsUp || report.ledger.count(ValueFate::lost) > 0 || countOf(report.findings, Severity::error) > 0) {
    return Mood::bad;
  }
  return needsPerson(report) ? Mood::look : Mood::good;
}

void writeHeading(Page& page, bool addsUp) {
  const Report& report = page.report();
  std::ostream& out = page.out();
  const std::size_t lost = page.ledger().count(ValueFate::lost);
  const std::size_t open = openFindings(report);
  if (!addsUp) {
    out << "The account does not add up";
    return;
  }
  if (lost > 0) {
    out << Count{lost, "value"} << (isPlan(report) ? " would be lost" : lost == 1 ? " was lost" : " were lost");
  } else {
    out << (isPlan(report) ? "Nothing would be lost" : "Nothing was lost");
  }
  if (open > 0) {
    out << (lost > 0 ? ", and " : ", but ") << Count{open, "finding"} << (open == 1 ? " needs" : " need")
        << " a person";
  }
}

void writeOutcome(Page& page) {
  const Report& report = page.report();
  std::ostream& out = page.out();
  switch (report.outcome.kind) {
    case Outcome::Kind::plan:
      out << "<li>This is a plan: nothing has been written to <code>" << Text{report.options.target} << "</code>.";
      break;
    case Outcome::Kind::nothingToDo:
      out << "<li>Nothing had to be written: <code>" << Text{report.options.target}
          << "</code> holds the result already.";
      break;
    case Outcome::Kind::applied:
      out << "<li>The result has been written to <code>" << Text{report.options.target} << "</code>.";
      break;
  }
  out << '\n';
  if (!report.outcome.backup.empty()) {
    out << "<li>What was there before is in <code>" << Text{report.outcome.backup} << "</code>.\n";
  }
  if (!report.planPath.empty()) out << "<li>The plan is saved in <code>" << Text{report.planPath} << "</code>.\n";
}

// An option is never broken after its hyphens, where it would read as two.
void writeCommand(std::ostream& out, std::string_view command) {
  for (std::size_t at = 0; at < command.size();) {
    const std::size_t option = std::min(command.find(" --", at), command.size());
    out << Text{command.substr(at, option - at)};
    if (option == command.size()) return;
    at = std::min(command.find(' ', option + 1), command.size());
    out << " <span class=\"opt\">" << Text{command.substr(option + 1, at - option - 1)} << "</span>";
  }
}

}  // namespace

void writeTitle(Page& page) {
  page.out() << "Migration report, from a " << Plain{page.ledger().sourceVersion} << " server";
}

void writeVerdict(Page& page) {
  const Report& report = page.report();
  std::ostream& out = page.out();
  const std::vector<std::string>& errors = report.mismatches;
  const Mood mood = moodOf(report, errors.empty());
  out << "<div class=\"card verdict"
      << (mood == Mood::bad    ? " bad"
          : mood == Mood::look ? " look"
                               : "")
      << "\">\n<h1 id=\"verdict\">";
  writeHeading(page, errors.empty());
  out << "</h1>\n<ul>\n";
  if (!errors.empty()) {
    out << "<li>This is an error of cfgmig itself, not of a configuration. Do not rely on this report:\n<ul>\n";
    for (const std::string& error : errors) out << "<li>" << Text{report.redaction.words(error)} << '\n';
    out << "</ul>\n";
  }
  out << "<li>" << Count{page.ledger().oldValueCount(), "value"} << " in "
      << Count{page.ledger().old.entries().size(), "entry", "entries"} << " of a " << Text{page.ledger().sourceVersion}
      << " server, "
      << (errors.empty() ? "each of them accounted for below." : "accounted for below as far as possible.") << '\n';
  writeOutcome(page);
  if (report.redaction.showsSecrets()) {
    out << "<li><strong>This report shows passwords and keys.</strong> Keep it as safe as the configurations.\n";
  } else {
    out << "<li>Passwords, keys and what looks like them are not shown.\n";
  }
  out << "</ul>\n";
  const std::string next = nextCommand(report);
  if (!next.empty()) {
    out << "<div class=\"next\">\n<h2 id=\"next\">Next</h2>\n"
        << (isPlan(report) ? "<p>Carry out this plan:</p>" : "<p>Check the result from the files alone:</p>")
        << "\n<code>";
    writeCommand(out, next);
    out << "</code>\n</div>\n";
  }
  out << "</div>";
}

void writeContents(Page& page) {
  std::ostream& out = page.out();
  const Ledger& ledger = page.ledger();
  const auto link = [&](const char* target, const char* words) -> std::ostream& {
    return out << "<li><a href=\"#" << target << "\">" << words << "</a>";
  };
  link("sums", "Every value, counted") << '\n';
  link("person", "What needs a person") << " (" << Number{openFindings(page.report())} << ")\n";
  link("behind", "What did not come along")
      << " ("
      << Number{ledger.count(ValueFate::lost) + ledger.count(ValueFate::dropped) + ledger.count(ValueFate::cleaned)}
      << ")\n";
  link("tree", "Old, new and result") << '\n';
  link("replaced", "Replaced values") << " (" << Number{ledger.replaced.size()} << ')';
}

}  // namespace tool::html
