#include "report/html/HtmlReport.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <regex>
#include <sstream>

#include "Base64.h"
#include "SampleReports.h"
#include "report/Sha256.h"

namespace {

std::string pageOf(const tool::Report& report) {
  std::ostringstream out;
  writeHtml(report, out);
  return out.str();
}

std::string pageOf(const SampleLedger& sample, bool showSecrets = false) {
  return pageOf(sample::reportOf(sample.ledger(), showSecrets));
}

// A whole page is nothing that a failure should print.
testing::AssertionResult holds(const std::string& page, const std::string& part) {
  if (page.find(part) != std::string::npos) return testing::AssertionSuccess() << "it holds " << part;
  return testing::AssertionFailure() << "it does not hold " << part;
}

std::size_t countOf(const std::string& text, const std::string& part) {
  std::size_t count = 0;
  for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + part.size())) ++count;
  return count;
}

// What stands between the first two of these.
std::string between(const std::string& text, const std::string& begin, const std::string& end) {
  const std::size_t from = text.find(begin);
  if (from == std::string::npos) return "";
  const std::size_t to = text.find(end, from + begin.size());
  return text.substr(from + begin.size(), to - from - begin.size());
}

// As a policy has it.
std::string policyHash(const std::string& text) {
  const std::string digits = tool::sha256(text);
  std::string bytes;
  for (std::size_t i = 0; i < digits.size(); i += 2)
    bytes += static_cast<char>(std::stoi(digits.substr(i, 2), nullptr, 16));
  std::string hash = "'sha256-";
  cfgstore::appendBase64(hash, bytes);
  return hash + "'";
}

TEST(HtmlReport, IsOneWholePage) {
  const std::string page = pageOf(*sample::everyFate());
  EXPECT_EQ(page.find("<!-- cfgmig report -->\n<!doctype html>\n<html lang=\"en\">"), 0U);
  EXPECT_EQ(page.substr(page.size() - 8), "</html>\n");
  EXPECT_EQ(page.find("{{"), std::string::npos) << "a place that nothing was put into";
}

TEST(HtmlReport, NeedsNothingElse) {
  const std::string page = pageOf(*sample::everyFate());
  for (const char* reference :
       {"src=\"", "@import", "url(", "http:", "https:", "<iframe", "<object", "<embed", "<base"}) {
    EXPECT_FALSE(holds(page, reference));
  }
  EXPECT_EQ(countOf(page, "<link"), 1U);
  EXPECT_TRUE(holds(page, "<link rel=\"icon\" href=\"data:,\">"));
}

TEST(HtmlReport, AllowsItsOwnScriptAndStyleAndNothingElse) {
  const std::string page = pageOf(*sample::everyFate());
  const std::string policy = between(page, "http-equiv=\"Content-Security-Policy\" content=\"", "\"");
  EXPECT_EQ(policy, "default-src 'none'; img-src data:; script-src " +
                        policyHash(between(page, "<script>", "</script>")) + "; style-src " +
                        policyHash(between(page, "<style>", "</style>")) + "; base-uri 'none'; form-action 'none'");
  EXPECT_LT(page.find("Content-Security-Policy"), page.find("<style>")) << "it holds from there on";
  EXPECT_EQ(countOf(page, "<script"), 1U);
  EXPECT_EQ(countOf(page, "<style"), 1U);
  EXPECT_FALSE(std::regex_search(page.substr(0, page.find("<script>")), std::regex("<[^>]* (style|on[a-z]+)=")));
}

TEST(HtmlReport, HasTheSectionsInOrder) {
  const std::string page = pageOf(*sample::everyFate());
  std::size_t last = 0;
  for (const char* id : {"verdict", "sums", "person", "behind", "tree", "replaced", "schemas", "words", "inputs"}) {
    const std::size_t at = page.find("id=\"" + std::string(id) + "\"");
    ASSERT_NE(at, std::string::npos) << id;
    EXPECT_GT(at, last) << id;
    last = at;
  }
}

TEST(HtmlReport, ClosesWhatItOpens) {
  for (const auto& sample : {sample::everyFate(), sample::hostile(), sample::ofSize(3000)}) {
    std::string page = pageOf(*sample);
    page.resize(page.find("<script>"));
    for (const std::string element : {"details", "summary", "table", "section", "div", "ul", "dl", "code", "span", "a",
                                      "b", "noscript", "svg", "label", "fieldset", "small"}) {
      const std::regex opening("<" + element + "[ >]");
      const auto opened =
          std::distance(std::sregex_iterator(page.begin(), page.end(), opening), std::sregex_iterator());
      EXPECT_EQ(static_cast<std::size_t>(opened), countOf(page, "</" + element + ">")) << element;
    }
  }
}

TEST(HtmlReport, SaysFirstWhatWouldBeLost) {
  const std::string page = pageOf(*sample::everyFate());
  EXPECT_TRUE(holds(page,
                    "<div class=\"card verdict bad\">\n<h1 id=\"verdict\">1 value would be lost, and 4 findings "
                    "need a person</h1>"));
  EXPECT_TRUE(holds(page, "This is a plan: nothing has been written"));
  EXPECT_TRUE(holds(page, "<code>cfgmig apply migration.plan</code>"));
}

TEST(HtmlReport, SaysWhatWasWrittenAndWhereTheBackupIs) {
  const auto sample = sample::allLost();
  tool::Report report = sample::reportOf(sample->ledger());
  report.outcome.kind = tool::Outcome::Kind::applied;
  report.outcome.backup = "/opt/backup";
  const std::string page = pageOf(report);
  EXPECT_TRUE(holds(page, ">2 values were lost, and "));
  EXPECT_TRUE(holds(page, "The result has been written to <code>/opt/zor/6.3/etc/zorslapd.conf</code>"));
  EXPECT_TRUE(holds(page, "<code>/opt/backup</code>"));
  EXPECT_TRUE(holds(page, "cfgmig verify"));
}

TEST(HtmlReport, SaysWhenAllIsWell) {
  const auto sample = sample::allSame();
  tool::Report report = sample::reportOf(sample->ledger());
  report.outcome.kind = tool::Outcome::Kind::nothingToDo;
  const std::string page = pageOf(report);
  EXPECT_TRUE(holds(page, "<div class=\"card verdict\">\n<h1 id=\"verdict\">Nothing was lost</h1>"));
  EXPECT_TRUE(holds(page, "Nothing had to be written"));
  EXPECT_TRUE(holds(page, "Nothing was found that a person has to look at."));
  EXPECT_TRUE(holds(page, "All values of the new configuration are still there."));
}

TEST(HtmlReport, SaysWhenTheSumsDoNotMatch) {
  const auto sample = sample::allSame();
  tool::Report report = sample::reportOf(sample->ledger());
  report.mismatches = {"2 values, 3 fates", "one <more>"};
  const std::string page = pageOf(report);
  EXPECT_TRUE(holds(page, "verdict bad\">\n<h1 id=\"verdict\">The account does not add up</h1>"));
  EXPECT_TRUE(holds(page, "<li>2 values, 3 fates\n<li>one &#60;more&#62;\n"));
  EXPECT_TRUE(holds(page, "an error of cfgmig itself"));
}

TEST(HtmlReport, GivesEachSumAsWordAndNumber) {
  const auto sample = sample::everyFate();
  const std::string page = pageOf(*sample);
  const tool::Ledger& ledger = sample->ledger();
  for (std::size_t i = 0; i < tool::kValueFates; ++i) {
    EXPECT_TRUE(holds(page, ">" + std::string(nameOf(static_cast<tool::ValueFate>(i))) + "</b> <b>" +
                                std::to_string(ledger.fates[i]) + "</b>"));
  }
  for (std::size_t i = 0; i < tool::kValueOrigins; ++i) {
    EXPECT_TRUE(holds(page, ">" + std::string(nameOf(static_cast<tool::ValueOrigin>(i))) + "</b> <b>" +
                                std::to_string(ledger.origins[i]) + "</b>"));
  }
}

TEST(HtmlReport, GivesEachFindingWithWhyAndRemedy) {
  const auto sample = sample::everyFate();
  const tool::Report report = sample::reportOf(sample->ledger());
  const std::string page = pageOf(report);
  ASSERT_EQ(report.findings.size(), 6U);
  for (const tool::Finding& finding : report.findings) {
    EXPECT_TRUE(holds(page, finding.kind->title));
    EXPECT_TRUE(holds(page, "<dd>" + std::string(finding.kind->why)));
    EXPECT_TRUE(holds(page, "<dd>" + std::string(finding.kind->remedy)));
    EXPECT_TRUE(holds(page, ">" + finding.id + "</code>"));
  }
  EXPECT_LT(page.find("finding error"), page.find("finding warning"));
  EXPECT_LT(page.find("finding warning"), page.find("finding note"));
}

TEST(HtmlReport, FoldsManyFindingsOfAKindAndManyPlacesUp) {
  const auto sample = sample::ofSize(3000);
  tool::Report report = sample::reportOf(sample->ledger());
  const tool::Finding one = report.findings.front();
  report.findings.assign(25, one);
  for (std::uint32_t entry = 0; entry < 40; ++entry) report.findings[0].places.push_back(one.places[0]);
  const std::string page = pageOf(report);
  EXPECT_TRUE(holds(page, "<details><summary>15 more</summary>"));
  EXPECT_TRUE(holds(page, "and 31 more places"));
  EXPECT_EQ(countOf(page, "1 value of an entry, for the tests"), 25U);
}

TEST(HtmlReport, ListsWhatWasDroppedByItsReason) {
  const std::string page = pageOf(*sample::everyFate());
  const std::string behind = between(page, "id=\"behind\"", "<h2");
  EXPECT_TRUE(holds(behind, ">dropped</b> 2 values: the new server no longer has this setting (mergeIn51)</summary>"));
  EXPECT_TRUE(
      holds(behind, "<th scope=\"row\">zor-slapdPagedResLmt<td><code>3</code> line\u00A012<td><a class=\"dn\" "));
  EXPECT_LT(behind.find(">lost</b>"), behind.find(">dropped</b>"));
}

TEST(HtmlReport, ShowsEachValueBesideTheOthersWithItsLine) {
  const std::string page = pageOf(*sample::everyFate());
  EXPECT_TRUE(holds(page,
                    "<tr class=\" fc oc rr\"><th scope=\"row\">zor-slapdPort<td>carried <small>the old server&#39;s "
                    "value is carried (mergeCfgEntry)</small><td><code>1389</code> line\u00A06<td><code>389</code> "
                    "line\u00A06 <b class=\"w w-r\">replaced</b><td><code>1389</code> line\u00A06</td>\n"));
  EXPECT_TRUE(holds(page,
                    "<tr class=\" fl\"><th scope=\"row\">zor-auditLog<td>lost <small>the store refused it: code 53 "
                    "(mergeCfgEntry)</small><td><code>/var/log/zor/audit.log</code> line\u00A057<td><td></td>\n"));
}

TEST(HtmlReport, HidesSecretsUnlessAskedForThem) {
  const auto sample = sample::everyFate();
  const std::string page = pageOf(*sample);
  EXPECT_FALSE(holds(page, sample::kOldSecret));
  EXPECT_FALSE(holds(page, sample::kNewSecret));
  EXPECT_TRUE(holds(page, "<code class=\"hidden\">[redacted]</code>"));
  EXPECT_TRUE(holds(page, "are not shown"));
  const std::string open = pageOf(*sample, true);
  EXPECT_TRUE(holds(open, "<code>" + std::string(sample::kOldSecret) + "</code>"));
  EXPECT_TRUE(holds(open, "<code>" + std::string(sample::kNewSecret) + "</code>"));
  EXPECT_TRUE(holds(open, "This report shows passwords and keys"));
}

TEST(HtmlReport, HidesSecretsInReasonsAndFindings) {
  auto sample = sample::everyFate();
  const std::string words = "instead of " + std::string(sample::kOldSecret) + " nothing";
  sample->edit().oldValues[0].reason = sample->reason("mergeIn51", words);
  sample->edit().oldValues[0].fate = tool::ValueFate::dropped;
  sample->edit().reasons[1].words = words;
  tool::Report report = sample::reportOf(sample->ledger());
  report.findings[0].what = words;
  report.mismatches = {words};
  EXPECT_FALSE(holds(pageOf(report), sample::kOldSecret));
}

TEST(HtmlReport, WritesHostileTextAsText) {
  const auto sample = sample::hostile();
  tool::Report report = sample::reportOf(sample->ledger());
  const std::string evil = "</title></code><script>alert(1)</script>\"'\xE2\x80\xAE\n\xFF";
  report.toolVersion = report.time = report.recognisedFrom = report.planPath = evil;
  sample->edit().sourceVersion = evil;
  report.options.target = report.outcome.backup = evil;
  report.inputs = {{"old", evil, evil, 1}, {"new", evil, evil, 1}};
  report.outcome.schemas = {{tool::SchemaFile::Fate::notCopied, evil, evil, evil, evil}};
  report.mismatches = {evil};
  for (tool::Finding& finding : report.findings) finding.what = finding.id = evil;
  const std::string page = pageOf(report);
  EXPECT_EQ(countOf(page, "<script"), 1U);
  EXPECT_EQ(countOf(page, "</title>"), countOf(page, "<title>"));
  EXPECT_EQ(countOf(page, "<img"), 0U);
  EXPECT_EQ(countOf(page, "\xE2\x80\xAE"), 0U);
  EXPECT_EQ(countOf(page, "\xFF"), 0U);
  EXPECT_TRUE(holds(page, "&#60;img src=x onerror=&#34;window.planted = 2&#34;&#62;"));
}

// In the tree an entry stands below those that it belongs to, so that its first name is enough.
TEST(HtmlReport, ShowsTheFirstNameOfAnEntryWholeHoweverItIsWritten) {
  const std::string root = "dn: cn=Configuration\ncn: Configuration\n";
  for (const std::string name : {"cn=\"a,b\"", "cn=a\\,b"}) {
    const std::string text = root + "\ndn: " + name + ", cn=Configuration\nou: x\n";
    const SampleLedger sample(text, text, text);
    std::string shown = name;
    for (std::size_t at = 0; (at = shown.find('"', at)) != std::string::npos; at += 5) shown.replace(at, 1, "&#34;");
    EXPECT_TRUE(holds(pageOf(sample), ">" + shown + "<")) << shown;
  }
}

TEST(HtmlReport, SaysWhatBecameOfAnEntryThatNoMergeLooksAt) {
  const std::string root = "dn: cn=Configuration\ncn: Configuration\n";
  SampleLedger sample(root + "\ndn: o=Acme\no: Acme\n", root, root);
  EXPECT_FALSE(holds(pageOf(sample), "No merge looks at this entry"));
  sample.setEntry("o=Acme", tool::EntryFate::outside, "", "it is not below the configuration", "");
  EXPECT_TRUE(holds(pageOf(sample), "No merge looks at this entry: it is not below the configuration.</p>"));
}

TEST(HtmlReport, IsUtf8ThroughoutWithoutControls) {
  const std::string page = pageOf(*sample::hostile());
  EXPECT_FALSE(
      std::any_of(page.begin(), page.end(), [](char c) { return (c >= 0 && c < ' ' && c != '\n') || c == 0x7F; }));
}

TEST(HtmlReport, CutsValuesThatAreNoTextForAPersonAndSaysSo) {
  const std::string value(50000, 'x');
  const std::string entry = "dn: cn=a\ncn: a\n";
  const SampleLedger sample(entry + "long: " + value + "\n", entry, entry + "long: " + value + "\n");
  const std::string page = pageOf(sample);
  EXPECT_TRUE(holds(page, "(the first 16,384 of 50,000 characters)"));
  EXPECT_FALSE(holds(page, std::string(16385, 'x')));
}

TEST(HtmlReport, CutsNoCharacterInTwo) {
  std::string value = "x";
  while (value.size() < 20000) value += "\xE2\x82\xAC";
  const std::string entry = "dn: cn=a\ncn: a\n";
  std::string line = "long:: ";
  cfgstore::appendBase64(line, value);
  const SampleLedger sample(entry + line + "\n", entry, entry);
  EXPECT_FALSE(holds(pageOf(sample), "\\x{"));
}

TEST(HtmlReport, SurvivesDnsOfAnyDepth) {
  std::string dn = "cn=Configuration";
  std::string text = "dn: " + dn + "\ncn: Configuration\n";
  for (int i = 0; i < 600; ++i) {
    dn = "cn=" + std::to_string(i) + "," + dn;
    text += "\ndn: " + dn + "\ncn: " + std::to_string(i) + "\n";
  }
  const SampleLedger sample(text, text, text);
  const std::string page = pageOf(sample);
  EXPECT_EQ(countOf(page, "<tr class=\" fs on\">"), 601U);
  std::size_t depth = 0;
  std::size_t deepest = 0;
  for (std::size_t at = page.find("details", page.find("id=\"entries\"")); at != std::string::npos;
       at = page.find("details", at + 1)) {
    if (page[at - 1] == '<') deepest = std::max(deepest, ++depth);
    if (page[at - 1] == '/') --depth;
  }
  EXPECT_LE(deepest, 30U) << "browsers stop nesting elements";
}

TEST(HtmlReport, SurvivesAnEmptyLedger) {
  const SampleLedger sample("", "", "");
  const std::string page = pageOf(sample);
  EXPECT_TRUE(holds(page, "0 values in 0 entries"));
  EXPECT_TRUE(holds(page, "Nothing would be lost"));
}

TEST(HtmlReport, HoldsEachOldValueOfALargeAccountOnce) {
  const auto sample = sample::ofSize(5000);
  const std::string page = pageOf(*sample);
  const std::string entries = between(page, "id=\"entries\"", "<h2");
  std::size_t rows = 0;
  for (const char* fate : {"fs", "fc", "fm", "fd", "fk", "fx", "fl"})
    rows += countOf(entries, "<tr class=\" " + std::string(fate));
  EXPECT_EQ(rows, 5000U);
}

TEST(HtmlReport, KeepsWhatBrowsersBuildAtOnceSmall) {
  const std::string page = pageOf(*sample::ofSize(5000));
  EXPECT_TRUE(holds(page, "<body class=\"large\">"));
  std::size_t inside = 0;  // rows in a <noscript>
  std::size_t from = page.find("<noscript>");
  while (from != std::string::npos) {
    const std::size_t to = page.find("</noscript>", from);
    const std::string part = page.substr(from, to - from);
    EXPECT_LE(countOf(part, "\n<tr "), 500U);
    EXPECT_EQ(countOf(part, "<noscript>"), 1U) << "browsers do not nest them";
    inside += countOf(part, "\n<tr ");
    from = page.find("<noscript>", to);
  }
  EXPECT_GT(inside, 4900U);
  EXPECT_FALSE(holds(pageOf(*sample::everyFate()), "<noscript>"));
}

TEST(HtmlReport, ListsTheSchemaFilesOnlyWhenThereAreSome) {
  const auto sample = sample::everyFate();
  tool::Report report = sample::reportOf(sample->ledger());
  EXPECT_TRUE(holds(pageOf(report), "<code>/srv/old/etc/acme.oc</code><td>to-copy"));
  report.outcome.schemas.clear();
  EXPECT_FALSE(holds(pageOf(report), "id=\"schemas\""));
}

TEST(HtmlReport, NamesItsInputs) {
  const std::string page = pageOf(*sample::everyFate());
  EXPECT_TRUE(holds(page, "<code>/srv/old/etc/zorslapd.conf</code>, 15,206 bytes<br><small>SHA-256 <code>aaaa"));
  EXPECT_TRUE(holds(page, "2026-11-21T09:14:00Z by cfgmig 0.1.0"));
}

}  // namespace
