// What did not come along: old values that were lost, dropped or cleaned, by reason; and the new server's values that
// were replaced.
#include <map>
#include <ostream>
#include <utility>

#include "report/html/HtmlText.h"
#include "report/html/Page.h"
#include "report/html/Words.h"

namespace tool::html {
namespace {

// Of one reason, and of the replaced values. All of them stand in the tree.
constexpr std::size_t kBehindShown = 100;
constexpr std::size_t kReplacedShown = 200;

// The worst first.
constexpr ValueFate kBehind[] = {ValueFate::lost, ValueFate::dropped, ValueFate::cleaned};

void writeRest(std::ostream& out, std::size_t all, std::size_t shown, std::size_t word) {
  if (all <= shown) return;
  out << "<p class=\"remark\">and " << Number{all - shown} << " more. Tick <label for=\"" << kWordKinds[word].id
      << "\">" << kWordKinds[word].name << "</label> among the sums, and the entries below show all of them.</p>\n";
}

void writeReason(Page& page, ValueFate fate, ReasonId reason, const std::vector<ValueId>& values) {
  std::ostream& out = page.out();
  const cfgstore::Snapshot& old = page.ledger().old;
  out << "<details class=\"reason\"" << (fate == ValueFate::lost ? " open" : "") << "><summary>" << Marked{wordOf(fate)}
      << ' ' << Count{values.size(), "value"} << ": ";
  page.reason(reason);
  out << "</summary>\n<table class=\"left\"><thead><tr><th>Attribute<th>Value<th>Entry</thead>\n<tbody>\n";
  for (std::size_t i = 0; i < values.size() && i < kBehindShown; ++i) {
    const cfgstore::SnapshotValue& value = old.values()[values[i]];
    out << "<tr><th scope=\"row\">" << Text{old.attributeOf(value).name} << "<td>";
    page.value(Content::old, values[i]);
    page.line(Content::old, values[i]);
    out << "<td>";
    page.linkTo(page.account().nodeOf(Content::old, values[i]));
    out << "</td>\n";
  }
  out << "</table>\n";
  writeRest(out, values.size(), kBehindShown, wordOf(fate));
  out << "</details>\n";
}

}  // namespace

void writeBehind(Page& page) {
  const Ledger& ledger = page.ledger();
  std::map<std::pair<std::size_t, ReasonId>, std::vector<ValueId>> groups;
  for (std::size_t i = 0; i < ledger.oldValues.size(); ++i) {
    const OldValueRow& row = ledger.oldValues[i];
    for (std::size_t order = 0; order < std::size(kBehind); ++order) {
      if (row.fate == kBehind[order]) groups[{order, row.reason}].push_back(static_cast<ValueId>(i));
    }
  }
  if (groups.empty()) {
    page.out()
        << "<div class=\"card\"><p>Every old value is in the result, or the new server's own stands in its place "
           "by design.</p></div>";
    return;
  }
  page.out() << "<div class=\"card listed\">\n";
  for (const auto& [key, values] : groups) writeReason(page, kBehind[key.first], key.second, values);
  page.out() << "</div>";
}

void writeReplaced(Page& page) {
  std::ostream& out = page.out();
  const Ledger& ledger = page.ledger();
  if (ledger.replaced.empty()) {
    out << "<div class=\"card\"><p>All values of the new configuration are still there.</p></div>";
    return;
  }
  out << "<div class=\"card listed\">\n<table class=\"swap\"><thead><tr><th>Attribute<th>Was<th>Is now<th>Entry"
         "<th>Why</thead>\n<tbody>\n";
  for (std::size_t i = 0; i < ledger.replaced.size() && i < kReplacedShown; ++i) {
    const ReplacedRow& row = ledger.replaced[i];
    out << "<tr><th scope=\"row\">" << Text{ledger.before.attributeOf(ledger.before.values()[row.before]).name}
        << "<td>";
    page.value(Content::before, row.before);
    page.line(Content::before, row.before);
    out << "<td>";
    if (row.by != kNoValue) {
      page.value(Content::result, row.by);
      page.line(Content::result, row.by);
    }
    out << "<td>";
    page.linkTo(page.account().nodeOf(Content::before, row.before));
    out << "<td>";
    page.reason(row.reason);
    out << "</td>\n";
  }
  out << "</table>\n";
  writeRest(out, ledger.replaced.size(), kReplacedShown, kReplacedWord);
  out << "</div>";
}

}  // namespace tool::html
