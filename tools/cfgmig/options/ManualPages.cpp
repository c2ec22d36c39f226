#include "options/ManualPages.h"

#include <algorithm>
#include <ostream>
#include <utility>
#include <vector>

#include "options/Roff.h"
#include "options/Surroundings.h"

namespace tool {
namespace {

using Reference = std::pair<std::string, int>;

void writeReferences(RoffPage& page, std::vector<Reference> references) {
  page.section("SEE ALSO");
  const auto bySection = [](const Reference& left, const Reference& right) {
    return std::pair(left.second, left.first) < std::pair(right.second, right.first);
  };
  std::sort(references.begin(), references.end(), bySection);
  for (const Reference& each : references) page.reference(each.first, each.second, each == references.back());
}

void writeStatuses(RoffPage& page, std::span<const StatusRow> rows) {
  page.section("EXIT STATUS");
  for (const StatusRow& row : rows) {
    page.item(std::to_string(static_cast<int>(row.status)), "");
    page.text(meaningOf(row));
  }
}

void writeSurroundings(RoffPage& page, const char* title, std::span<const Surrounding> all, unsigned touches) {
  bool isBegun = false;
  for (const Surrounding& each : all) {
    if ((each.touches & touches) == 0) continue;
    if (!isBegun) page.section(title);
    isBegun = true;
    page.item(each.name, "");
    page.text(each.meaning);
  }
}

void writeExample(RoffPage& page, const Example& example) {
  page.item(example.line, "");
  page.text(example.what);
}

void writeOption(RoffPage& page, const Option& option) {
  const std::string letter = option.letter == 0 ? "" : std::string{'-', option.letter, ',', ' '};
  page.item(letter + option.name, option.isPositional() ? "" : option.value);
  page.text(helpLine(option) + (option.more[0] == 0 ? "." : std::string(". ") + option.more));
}

// What follows "NAME" is read by programs that index pages: a name, a minus, a line.
void writeName(RoffPage& page, std::ostream& out, const std::string& name, const std::string& summary) {
  page.section("NAME");
  out << roffEscaped(name) << " \\- " << roffEscaped(summary) << '\n';
}

}  // namespace

std::string pageOf(const Command& command) { return std::string("cfgmig-") + command.name; }

void writeCommandPage(const Command& command, std::ostream& out) {
  RoffPage page(out, pageOf(command), 1);
  writeName(page, out, pageOf(command), command.summary);
  page.section("SYNOPSIS");
  for (const std::string& line : usageOf(command)) page.commandLine(line);
  page.section("EXAMPLES");
  for (const Example& example : command.examples) writeExample(page, example);
  page.section("DESCRIPTION");
  page.text(command.description);
  page.section("OPTIONS");
  for (const OptionGroup& group : command.groups) {
    page.subsection(group.title);
    for (const Option& option : group.options) writeOption(page, option);
  }
  page.subsection("Help");
  page.item("-h, --help", "");
  page.text("explain the command and do nothing else.");
  writeStatuses(page, command.statuses);
  writeSurroundings(page, "ENVIRONMENT", environmentVariables(), command.touches);
  writeSurroundings(page, "FILES", filesOfTheTool(), command.touches);
  std::vector<Reference> references = {{"cfgmig", 1}};
  for (const char* const other : command.related) references.emplace_back(std::string("cfgmig-") + other, 1);
  if ((command.touches & kReports) != 0) references.emplace_back(kReportPage, 5);
  writeReferences(page, references);
}

void writeToolPage(std::ostream& out) {
  RoffPage page(out, "cfgmig", 1);
  writeName(page, out, "cfgmig", "carry the configuration of an older directory server into a new one");
  page.section("SYNOPSIS");
  page.commandLine("cfgmig COMMAND [OPTION...]");
  page.commandLine("cfgmig COMMAND --help");
  page.section("EXAMPLES");
  std::vector<Reference> references = {{kReportPage, 5}};
  for (const Command& command : commands()) writeExample(page, command.examples.front());
  page.section("DESCRIPTION");
  page.text(kToolDescription);
  page.text(kToolNotes);
  page.section("COMMANDS");
  for (const Command& command : commands()) {
    page.item(command.name, "");
    page.text(command.summary + std::string("; see ") + pageOf(command) + "(1)");
    references.emplace_back(pageOf(command), 1);
  }
  page.section("OPTIONS");
  page.text("Each command has its own; those that go without a command are:");
  page.item("-h, --help", "");
  page.text("explain the tool.");
  page.item("--version", "");
  page.text("tell the version of the tool.");
  writeStatuses(page, exitStatuses());
  writeSurroundings(page, "ENVIRONMENT", environmentVariables(), ~0U);
  writeSurroundings(page, "FILES", filesOfTheTool(), ~0U);
  writeReferences(page, references);
}

}  // namespace tool
