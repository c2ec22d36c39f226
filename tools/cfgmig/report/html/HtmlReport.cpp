#include "report/html/HtmlReport.h"

#include <array>
#include <ostream>
#include <string>

#include "Base64.h"
#include "report/html/Page.h"
#include "report/html/PagePieces.h"

namespace tool {
namespace html {
namespace {

unsigned digitOf(char digit) { return static_cast<unsigned>(digit <= '9' ? digit - '0' : digit - 'a' + 10); }

// As a policy names an inline script or style.
std::string sourceOf(std::string_view sha256) {
  std::string bytes;
  for (std::size_t i = 0; i + 1 < sha256.size(); i += 2) {
    bytes.push_back(static_cast<char>(digitOf(sha256[i]) << 4U | digitOf(sha256[i + 1])));
  }
  std::string source = "'sha256-";
  cfgstore::appendBase64(source, bytes);
  return source + "'";
}

// Nothing is loaded, nothing is sent, and nothing runs but the page's own script. The icon is an empty data: address,
// which keeps browsers from asking for one.
void writePolicy(Page& page) {
  page.out() << "default-src 'none'; img-src data:; script-src " << sourceOf(kPagePieces.scriptSha256) << "; style-src "
             << sourceOf(kPagePieces.styleSha256) << "; base-uri 'none'; form-action 'none'";
}

void writeStyle(Page& page) { page.out() << kPagePieces.style; }
void writeScript(Page& page) { page.out() << kPagePieces.script; }
void writeSize(Page& page) { page.out() << (page.isLarge() ? " class=\"large\"" : ""); }

struct Part {
  std::string_view name;
  void (*write)(Page& page);
};

constexpr Part kParts[] = {
    {"policy", writePolicy},   {"title", writeTitle},       {"style", writeStyle},       {"size", writeSize},
    {"verdict", writeVerdict}, {"contents", writeContents}, {"sums", writeSums},         {"findings", writeFindings},
    {"behind", writeBehind},   {"tree", writeTree},         {"replaced", writeReplaced}, {"schemas", writeSchemas},
    {"words", writeWords},     {"inputs", writeInputs},     {"script", writeScript},
};

void writePart(Page& page, std::string_view name) {
  for (const Part& part : kParts) {
    if (part.name == name) part.write(page);
  }
}

}  // namespace
}  // namespace html

void writeHtml(const Report& report, std::ostream& out) {
  html::Page page(report, out);
  std::string_view rest = html::kPagePieces.page;
  while (!rest.empty()) {
    const std::size_t open = rest.find("{{");
    out << rest.substr(0, open);
    if (open == std::string_view::npos) return;
    const std::size_t close = rest.find("}}", open);
    html::writePart(page, rest.substr(open + 2, close - open - 2));
    rest.remove_prefix(close + 2);
  }
}

}  // namespace tool
