// Tests of the manual pages as they were built, against the table of options and with programs that show such pages.

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <sstream>
#include <string>

#include "Shell.h"
#include "options/Command.h"
#include "options/ManualPages.h"
#include "options/Roff.h"
#include "options/Surroundings.h"

namespace {

using namespace tool;
using testing::HasSubstr;

constexpr char kManuals[] = CFGMIG_MANUALS;

std::string contentOf(const std::string& page) {
  std::ifstream in(std::string(kManuals) + "/" + page, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

std::string pageOn(const Command& command) { return contentOf("man1/" + pageOf(command) + ".1"); }

std::set<std::string> builtPages() {
  std::set<std::string> pages;
  for (const auto& file : std::filesystem::recursive_directory_iterator(kManuals)) {
    if (file.is_regular_file()) pages.insert(file.path().lexically_relative(kManuals).string());
  }
  return pages;
}

std::string bold(const std::string& text) { return "\\fB" + roffEscaped(text) + "\\fR"; }

TEST(ManualPages, ThereIsOneForTheToolOneForEachCommandAndOneForReports) {
  std::set<std::string> expected = {"man1/cfgmig.1", "man5/cfgmig-report.5"};
  for (const Command& command : commands()) expected.insert(std::string("man1/cfgmig-") + command.name + ".1");
  EXPECT_EQ(builtPages(), expected);
}

TEST(ManualPages, TellAllThatTheTableKnowsOfACommand) {
  for (const Command& command : commands()) {
    const std::string page = pageOn(command);
    SCOPED_TRACE(command.name);
    EXPECT_THAT(page, HasSubstr(roffEscaped(pageOf(command)) + " \\- " + roffEscaped(command.summary) + "\n"));
    for (const std::string& line : usageOf(command)) EXPECT_THAT(page, HasSubstr(roffEscaped(line) + "\n"));
    for (const Example& example : command.examples) EXPECT_THAT(page, HasSubstr(bold(example.line)));
    for (const Option& option : optionsOf(command)) {
      const std::string letter = option.letter == 0 ? "" : std::string{'-', option.letter, ',', ' '};
      const std::string value =
          option.isPositional() || option.isFlag() ? "" : std::string(" \\fI") + option.value + "\\fR";
      EXPECT_THAT(page, HasSubstr(".TP\n" + bold(letter + option.name) + value + "\n" + roffEscaped(helpLine(option))));
      EXPECT_THAT(page, HasSubstr(roffEscaped(option.more)));
    }
    for (const StatusRow& row : command.statuses) {
      const std::string status = std::to_string(static_cast<int>(row.status));
      EXPECT_THAT(page, HasSubstr(".TP\n" + bold(status) + "\n" + roffEscaped(meaningOf(row)) + "\n"));
    }
    for (const Surrounding& variable : environmentVariables()) {
      EXPECT_EQ(page.find(bold(variable.name)) != std::string::npos, (variable.touches & command.touches) != 0)
          << variable.name;
    }
  }
}

TEST(ManualPages, ThePageOnTheToolNamesEachCommandAndStatusAndVariable) {
  const std::string page = contentOf("man1/cfgmig.1");
  for (const Command& command : commands()) {
    EXPECT_THAT(page, HasSubstr(".TP\n" + bold(command.name) + "\n"));
    EXPECT_THAT(page, HasSubstr(".BR " + roffEscaped(pageOf(command)) + " (1)"));
  }
  for (const StatusRow& row : exitStatuses()) EXPECT_THAT(page, HasSubstr(roffEscaped(meaningOf(row))));
  for (const Surrounding& variable : environmentVariables()) EXPECT_THAT(page, HasSubstr(bold(variable.name)));
  for (const Surrounding& file : filesOfTheTool()) EXPECT_THAT(page, HasSubstr(bold(file.name)));
}

TEST(ManualPages, ReferToPagesThatThereAre) {
  const std::set<std::string> pages = builtPages();
  for (const std::string& page : pages) {
    std::istringstream lines(contentOf(page));
    int references = 0;
    for (std::string line; std::getline(lines, line);) {
      if (!line.starts_with(".BR ")) continue;
      ++references;
      std::string name = line.substr(4, line.find(" (") - 4);
      std::erase(name, '\\');
      const std::string section = line.substr(line.find('(') + 1, 1);
      EXPECT_TRUE(pages.contains("man" + section + "/" + name + "." + section)) << page << ": " << line;
    }
    EXPECT_GT(references, 0) << page;
  }
}

// Pages have no date: they belong to a version, and two builds of it give the same bytes.
TEST(ManualPages, AreWithoutFaultForMandoc) {
  if (!isInstalled("mandoc")) GTEST_SKIP() << "mandoc is not installed, so the pages were not checked with it";
  for (const std::string& page : builtPages()) {
    const CommandResult result =
        runLine("mandoc -Tlint -Wwarning " + page + " | grep -v 'missing date, using' || :", kManuals);
    EXPECT_EQ(result.output, "") << page;
  }
}

TEST(ManualPages, AreWithoutFaultForGroff) {
  if (!isInstalled("groff")) GTEST_SKIP() << "groff is not installed, so the pages were not checked with it";
  for (const std::string& page : builtPages()) {
    const CommandResult result = runLine("groff -ww -man -Tutf8 -rLL=78n " + page + " >/dev/null", kManuals);
    EXPECT_EQ(result.status, 0) << page;
    EXPECT_EQ(result.output, "") << page;
  }
}

// What is copied from a page is what was meant: no typographic hyphens and quotes.
TEST(ManualPages, ShowCommandLinesAsTheyAreTyped) {
  if (!isInstalled("mandoc")) GTEST_SKIP() << "mandoc is not installed, so the pages were not shown with it";
  const CommandResult why = runLine("mandoc -Tutf8 -Owidth=120 man1/cfgmig-why.1 | sed 's/.\\x08//g'", kManuals);
  EXPECT_THAT(why.output, HasSubstr("cfgmig why plan.json 'cn=Front End,cn=Configuration:zor-slapdSetenv'"));
  const CommandResult undo = runLine("mandoc -Tutf8 man1/cfgmig-undo.1 | sed 's/.\\x08//g'", kManuals);
  EXPECT_THAT(undo.output, HasSubstr("-n, --dry-run\n"));
  EXPECT_THAT(undo.output, HasSubstr("~/.local/state/cfgmig"));
}

TEST(Roff, EscapesWhatAFormatterWouldTakeForItself) {
  EXPECT_EQ(roffEscaped("a-b 'c' `d` ~e ^f g\\h"), "a\\-b \\(aqc\\(aq \\(gad\\(ga \\(tie \\(haf g\\eh");
}

TEST(Roff, TakesNoTextForARequest) {
  std::ostringstream out;
  RoffPage page(out, "cfgmig-x", 1);
  out.str("");
  page.text("first\n.second\n\n  'shown\n  .shown\nlast");
  EXPECT_EQ(out.str(), "first\n\\&.second\n.PP\n.RS 2\n.EX\n\\(aqshown\n\\&.shown\n.EE\n.RE\n.PP\nlast\n");
}

}  // namespace
