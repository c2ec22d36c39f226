// The sums: a band for the fates of old values and one for the origins of the result's, each part a filter.
#include <algorithm>
#include <ostream>

#include "report/html/HtmlText.h"
#include "report/html/Page.h"
#include "report/html/Words.h"

namespace tool::html {
namespace {

// Of a band, in units of its own. The least is what can still be seen and hit.
constexpr std::size_t kBandWidth = 1000;
constexpr std::size_t kLeastWidth = 8;

struct Sum {
  std::size_t word;
  std::size_t number;
};

void writeBand(std::ostream& out, const std::vector<Sum>& sums) {
  std::size_t all = 0;
  std::size_t shown = 0;
  for (const Sum& sum : sums) {
    all += sum.number;
    if (sum.number > 0) ++shown;
  }
  if (all == 0) return;
  const std::size_t spread = kBandWidth - kLeastWidth * shown;
  out << "<svg class=\"band\" viewBox=\"0 0 " << kBandWidth
      << " 10\" preserveAspectRatio=\"none\" aria-hidden=\"true\" focusable=\"false\">";
  std::size_t left = 0;
  std::size_t before = 0;
  for (const Sum& sum : sums) {
    if (sum.number == 0) continue;
    before += sum.number;
    // Of what is spread, everything up to this part, so that rounding does not add up.
    const auto share =
        static_cast<std::size_t>(static_cast<double>(spread) * static_cast<double>(before) / static_cast<double>(all));
    const std::size_t right =
        share + kLeastWidth * static_cast<std::size_t>(
                                  std::count_if(sums.data(), &sum + 1, [](const Sum& one) { return one.number > 0; }));
    const WordKind& kind = kWordKinds[sum.word];
    out << "<rect class=\"w-" << kind.sign << "\" data-for=\"" << kind.id << "\" x=\"" << left << "\" width=\""
        << right - left << "\" height=\"10\"><title>" << kind.name << ": " << Number{sum.number} << "</title></rect>";
    left = right;
  }
  out << "</svg>\n";
}

void writeChips(std::ostream& out, const std::vector<Sum>& sums) {
  out << "<div class=\"chips\">\n";
  for (const Sum& sum : sums) {
    const WordKind& kind = kWordKinds[sum.word];
    out << "<label class=\"chip\"><input type=\"checkbox\" id=\"" << kind.id << '"'
        << (sum.number == 0 ? " disabled" : "") << "> " << Marked{sum.word} << " <b>" << Number{sum.number}
        << "</b> <small>" << kind.meaning << "</small></label>\n";
  }
  out << "</div>\n";
}

}  // namespace

void writeSums(Page& page) {
  std::ostream& out = page.out();
  const Ledger& ledger = page.ledger();
  std::vector<Sum> fates;
  for (std::size_t i = 0; i < kValueFates; ++i) fates.push_back({wordOf(static_cast<ValueFate>(i)), ledger.fates[i]});
  std::vector<Sum> origins;
  for (std::size_t i = 0; i < kValueOrigins; ++i) {
    origins.push_back({wordOf(static_cast<ValueOrigin>(i)), ledger.origins[i]});
  }
  out << "<p class=\"soft\">Tick words to see only the values that they count, in the entries below.</p>\n"
      << "<div class=\"bands\">\n<fieldset class=\"card\"><legend>"
      << Count{ledger.oldValueCount(), "value of the old configuration", "values of the old configuration"}
      << "</legend>\n";
  writeBand(out, fates);
  writeChips(out, fates);
  out << "</fieldset>\n<fieldset class=\"card\"><legend>"
      << Count{ledger.resultValueCount(), "value of the result", "values of the result"} << "</legend>\n";
  writeBand(out, origins);
  origins.push_back({kReplacedWord, ledger.replaced.size()});
  writeChips(out, origins);
  out << "</fieldset>\n</div>";
}

void writeWords(Page& page) {
  std::ostream& out = page.out();
  out << "<div class=\"card\">\n<dl class=\"wordlist\">\n";
  for (std::size_t word = 0; word < kWords; ++word) {
    const bool isOrigin = word >= kValueFates && word < kReplacedWord;
    out << "<div><dt>" << Marked{word} << "<dd>" << kWordKinds[word].meaning
        << (word < kValueFates ? " (a value of the old configuration)"
            : isOrigin         ? " (a value of the result)"
                               : "")
        << "</div>\n";
  }
  out << "</dl>\n<p class=\"soft\">Lines are counted in the files named below; those of the result as it is written. "
         "<b class=\"esc\">Marked escapes</b> as \\n and \\u{202E} stand for characters that cannot be "
         "seen.</p>\n</div>";
}

}  // namespace tool::html
