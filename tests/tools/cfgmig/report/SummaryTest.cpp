#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "SampleReport.h"
#include "report/TextLines.h"

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

std::vector<std::string> linesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

std::vector<std::string> summaryOf(const tool::Report& report, bool colours = false) {
  std::ostringstream out;
  writeSummary(report, colours, out);
  return linesOf(out.str());
}

constexpr char kSame[] = "dn: cn=Configuration\nobjectClass: top\ncn: Configuration\n";

TEST(Summary, TellsThatNothingWasLost) {
  const SampleLedger sample(kSame, kSame, kSame);
  tool::Report report = reportOf(sample.ledger());
  EXPECT_THAT(summaryOf(report),
              ElementsAre("Plan for a 6.0 configuration; nothing has been written.",  //
                          "  lost      nothing",                                      //
                          "  old       2 values: 2 same",                             //
                          "  result    2 values: 2 new",                              //
                          "  replaced  0 values of the new server",                   //
                          "  version   6.0, recognised from the entry CN=AUDIT,CN=CONFIGURATION",
                          "  target    /etc/zor/new.conf",
                          "  next      cfgmig apply --old /etc/zor/old.conf --new /etc/zor/new.conf"));
  report.recognisedFrom.clear();
  EXPECT_EQ(summaryOf(report).size(), 7U) << "a version that was given is no news";
}

TEST(Summary, TellsTheLossesFirst) {
  const auto sample = richLedger();
  const auto lines = summaryOf(reportOf(sample->ledger()));
  ASSERT_GT(lines.size(), 3U);
  EXPECT_EQ(lines[1], "  lost      2 of 22 old values");
  EXPECT_EQ(lines[2], "  error     1 x Entries of the old configuration were not carried");
  EXPECT_THAT(lines, Contains(StartsWith("  old       22 values: ")));
}

TEST(Summary, HasAtMostFifteenLinesOfEightyColumns) {
  const auto sample = richLedger();
  tool::Report report = reportOf(sample->ledger());
  for (const tool::FindingKind& kind : tool::findingKinds()) {
    report.findings.push_back({&kind, "what", {tool::FindingPlace{}}, kind.id});
  }
  report.mismatches = {"one", "two"};
  for (int i = 0; i < 50; ++i) report.recognisedFrom += " and much more";
  report.outcome.kind = tool::Outcome::Kind::applied;
  report.outcome.backup = "/etc/zor/new.conf.bak";
  // Numbers of seven digits make the sums as long as they get.
  sample->edit().fates.fill(1234567);
  sample->edit().origins.fill(1234567);
  const auto lines = summaryOf(report);
  EXPECT_EQ(lines.size(), 15U);
  for (const std::string& line : lines) {
    EXPECT_TRUE(line.starts_with("  next") || tool::columnsOf(line) <= 80) << line;
  }
  EXPECT_THAT(lines, Contains(HasSubstr("more kinds, in the report")));
  EXPECT_THAT(lines, Contains("  mismatch  the sums do not match, which is an error of cfgmig: 2 faults"));
  EXPECT_THAT(lines, Contains("  next      cfgmig verify --old /etc/zor/old.conf --before /etc/zor/new.conf.bak "
                              "--result /etc/zor/new.conf"));
}

TEST(Summary, HasColoursOnlyWhenTold) {
  const auto sample = richLedger();
  const tool::Report report = reportOf(sample->ledger());
  for (const std::string& line : summaryOf(report)) EXPECT_THAT(line, Not(HasSubstr("\x1b")));
  EXPECT_THAT(summaryOf(report, true), Contains("\x1b[1;31m  lost      2 of 22 old values\x1b[0m"));
  EXPECT_EQ(summaryOf(report, true)[0], summaryOf(report)[0]) << "what is neither good nor bad has none";
}

TEST(Summary, HasTheColourOfGoodNewsWhenNothingWasLost) {
  const SampleLedger sample(kSame, kSame, kSame);
  EXPECT_THAT(summaryOf(reportOf(sample.ledger()), true), Contains("\x1b[32m  lost      nothing\x1b[0m"));
}

TEST(Summary, KeepsControlCharactersFromTheTerminal) {
  const SampleLedger sample(kSame, kSame, kSame, "6.0\x1b[31m");
  tool::Report report = reportOf(sample.ledger());
  report.options.target = "/etc/\x1b]0;title\a";
  report.recognisedFrom = "\x1b[1m";
  report.inputs[0].path = "/etc/a\nb";
  for (const std::string& line : summaryOf(report)) {
    EXPECT_EQ(line.find_first_of("\x1b\a"), std::string::npos) << line;
  }
}

TEST(Summary, TellsWhenThereIsNothingToDo) {
  const SampleLedger sample(kSame, kSame, kSame);
  tool::Report report = reportOf(sample.ledger());
  report.outcome.kind = tool::Outcome::Kind::nothingToDo;
  const auto lines = summaryOf(report);
  EXPECT_EQ(lines.front(), "Nothing to do: the target holds what a 6.0 configuration gives.");
  EXPECT_THAT(lines, Not(Contains(StartsWith("  next"))));
}

TEST(NextCommand, AppliesAPlanByItsName) {
  const SampleLedger sample(kSame, kSame, kSame);
  tool::Report report = reportOf(sample.ledger());
  report.planPath = "my plan's.json";
  EXPECT_EQ(nextCommand(report), "cfgmig apply 'my plan'\\''s.json'");
  report.planPath = "-x.json";
  EXPECT_EQ(nextCommand(report), "cfgmig apply ./-x.json") << "it must not be taken for an option";
  report.planPath = "a\nb\\c'.json";
  EXPECT_EQ(nextCommand(report), "cfgmig apply $'a\\012b\\134c\\047.json'");
}

TEST(NextCommand, RepeatsTheOptions) {
  const SampleLedger sample(kSame, kSame, kSame);
  tool::Report report = reportOf(sample.ledger());
  report.options.from = "6.0";
  report.options.target = "/tmp/out";
  report.options.schemas = {"/old", "/new"};
  EXPECT_EQ(nextCommand(report),
            "cfgmig apply --old /etc/zor/old.conf --new /etc/zor/new.conf --from 6.0 --output /tmp/out "
            "--search-dir /old --target-dir /new");
}

TEST(NextCommand, VerifiesAgainstTheNewFileWhenTheResultIsElsewhere) {
  const SampleLedger sample(kSame, kSame, kSame);
  tool::Report report = reportOf(sample.ledger());
  report.outcome.kind = tool::Outcome::Kind::applied;
  report.options.target = "/srv/out";
  EXPECT_EQ(nextCommand(report), "cfgmig verify --old /etc/zor/old.conf --before /etc/zor/new.conf --result /srv/out");
  report.options.target = "/etc/zor/new.conf";
  EXPECT_EQ(nextCommand(report), "") << "without a backup there is nothing to compare with";
}

TEST(Report, NeedsAPersonForLossesAndFindingsAboveANote) {
  const SampleLedger sample(kSame, kSame, kSame);
  tool::Report report = reportOf(sample.ledger());
  EXPECT_FALSE(needsPerson(report));
  const auto kinds = tool::findingKinds();
  report.findings = {{&kinds.back(), "what", {tool::FindingPlace{}}, "id"}};
  ASSERT_EQ(kinds.back().severity, tool::Severity::note);
  EXPECT_FALSE(needsPerson(report));
  report.findings = {{&kinds.front(), "what", {tool::FindingPlace{}}, "id"}};
  EXPECT_TRUE(needsPerson(report));
  report.findings.clear();
  report.mismatches = {"a sum"};
  EXPECT_TRUE(needsPerson(report));
  report.mismatches.clear();
  EXPECT_FALSE(needsPerson(report));
  SampleLedger lossy(kSame, kSame, kSame);
  lossy.setFate("cn=Configuration", "cn", "Configuration", tool::ValueFate::lost, "m", "w");
  tool::Report other(lossy.ledger(), false);
  EXPECT_TRUE(needsPerson(other));
}

TEST(TextLines, BreakAtBlanks) {
  EXPECT_THAT(tool::wrapped("- ", "one two three", 9), ElementsAre("- one two", "  three"));
  EXPECT_THAT(tool::wrapped("- ", "", 9), ElementsAre("- "));
  EXPECT_THAT(tool::wrapped("- ", "averyverylongword two", 9), ElementsAre("- averyverylongword", "  two"));
  EXPECT_EQ(tool::columnsOf("\xc3\xbc"
                            "b"),
            2U);
}

}  // namespace
