// What needs a person: the findings by kind, the worst first, each kind with why it matters and what to do.
#include <algorithm>
#include <ostream>

#include "report/html/HtmlText.h"
#include "report/html/Page.h"

namespace tool::html {
namespace {

// Of one kind, and of one finding. What goes beyond is folded up, or told by a number.
constexpr std::size_t kFindingsShown = 10;
constexpr std::size_t kPlacesShown = 10;

const char* wordOf(Severity severity) {
  return severity == Severity::error ? "Error" : severity == Severity::warning ? "Warning" : "Note";
}

const char* fileOf(Content content) {
  return content == Content::old ? "old" : content == Content::before ? "new, before" : "result";
}

void writePlace(Page& page, const Finding& finding, const FindingPlace& place) {
  std::ostream& out = page.out();
  const cfgstore::Snapshot& snapshot = snapshotOf(page.ledger(), place.content);
  const cfgstore::SnapshotEntry& entry = snapshot.entries()[place.entry];
  const std::uint32_t node = page.account().nodeOfEntry(place.content, place.entry);
  const bool hasAttribute = place.attribute != cfgstore::Snapshot::kNone;
  std::size_t line = entry.line;
  out << "<li>";
  // The id names the entry already, as a rule.
  const bool isNamed = finding.id.find(entry.normal) != std::string::npos;
  if (!isNamed) page.linkTo(node);
  if (isNamed && !hasAttribute) out << "<a href=\"#e" << node << "\">the entry</a>";
  if (hasAttribute) {
    const cfgstore::SnapshotAttribute& attribute = snapshot.attributes()[place.attribute];
    if (isNamed) {
      out << "<a class=\"dn\" href=\"#e" << node << "\">" << Text{attribute.name} << "</a>";
    } else {
      out << ", " << Text{attribute.name};
    }
    line = snapshot.values()[attribute.firstValue].line;
  }
  if (place.value != kNoValue) {
    line = snapshot.values()[place.value].line;
    out << ": ";
    page.value(place.content, place.value);
  }
  out << " <span class=\"soft\">(" << fileOf(place.content) << ", line\u00A0" << line << ")</span>\n";
}

void writeFinding(Page& page, const Finding& finding) {
  std::ostream& out = page.out();
  out << "<li><p>" << Text{page.report().redaction.words(finding.what)} << "<br><code class=\"soft\">"
      << Text{finding.id} << "</code></p>\n<ul class=\"places\">\n";
  for (std::size_t i = 0; i < finding.places.size() && i < kPlacesShown; ++i)
    writePlace(page, finding, finding.places[i]);
  if (finding.places.size() > kPlacesShown) {
    out << "<li class=\"soft\">and " << Count{finding.places.size() - kPlacesShown, "more place"} << '\n';
  }
  out << "</ul>\n";
}

// All findings of one kind.
void writeKind(Page& page, std::span<const Finding> findings) {
  std::ostream& out = page.out();
  const FindingKind& kind = *findings.front().kind;
  out << "<article class=\"card finding " << nameOf(kind.severity) << "\">\n<h3><code class=\"id\">" << Text{kind.id}
      << "</code><span class=\"sev\">" << wordOf(kind.severity) << "</span>" << Text{kind.title};
  if (findings.size() > 1) out << " <span class=\"soft\">(" << Number{findings.size()} << " times)</span>";
  out << "</h3>\n<dl><dt>Why it matters<dd>" << Text{kind.why} << "<dt>What to do<dd>" << Text{kind.remedy}
      << "</dl>\n<ul class=\"cases\">\n";
  const std::size_t shown = std::min(findings.size(), kFindingsShown);
  for (std::size_t i = 0; i < shown; ++i) writeFinding(page, findings[i]);
  out << "</ul>\n";
  if (findings.size() > shown) {
    out << "<details><summary>" << Number{findings.size() - shown} << " more</summary>\n<ul class=\"cases\">\n";
    for (std::size_t i = shown; i < findings.size(); ++i) writeFinding(page, findings[i]);
    out << "</ul></details>\n";
  }
  out << "</article>\n";
}

}  // namespace

void writeFindings(Page& page) {
  const std::vector<Finding>& findings = page.report().findings;
  if (findings.empty()) {
    page.out() << "<div class=\"card\"><p>Nothing was found that a person has to look at.</p></div>";
    return;
  }
  page.out() << "<div class=\"findings\">\n";
  // Those of one kind follow each other.
  for (std::size_t first = 0; first < findings.size();) {
    std::size_t end = first;
    while (end < findings.size() && findings[end].kind == findings[first].kind) ++end;
    writeKind(page, std::span(findings).subspan(first, end - first));
    first = end;
  }
  page.out() << "</div>";
}

}  // namespace tool::html
