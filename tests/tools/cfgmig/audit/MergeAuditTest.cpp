// MergeAuditTest.cpp -- the audit's reading of the rules against the library's, over arbitrary configurations.

#include <gmock/gmock.h>
#include <rapidcheck/gtest.h>

#include <sstream>

#include "Audited.h"
#include "RandomConfiguration.h"

namespace {

const std::vector<std::string> kVersions = {"4.1", "5.1", "5.2", "6.0"};

RC_GTEST_PROP(MergeAudit, FindsNothingWrongWithWhatTheLibraryMakes, ()) {
  const std::string version = *rc::gen::elementOf(kVersions);
  const std::string old = *randomConfiguration();
  const std::string before = *randomConfiguration();
  const std::string result = migrated(version, old, before);
  const Audited audited(version, old, before, result);
  const std::vector<std::string> discrepancies = discrepanciesOf(audited);
  if (!discrepancies.empty()) {
    RC_LOG() << "version " << version << "\n--- old\n" << old << "--- before\n" << before << "--- result\n" << result;
    for (const std::string& line : discrepancies) RC_LOG() << line << '\n';
  }
  RC_ASSERT(discrepancies.empty());
  RC_ASSERT(audited.audit.unexplained == 0U);
}

// What a fault in a rule does to a result: a value that should arrive does not, one that should not does, another one
// is there, an entry is not there.
enum class Fault { valueLeftOut, valueBroughtAlong, valueSpoilt, entryLeftOut };

std::string faulty(const std::string& result, Fault fault, const std::string& dropped, std::size_t which) {
  std::vector<std::string> lines;
  std::istringstream in(result);
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  std::vector<std::size_t> at;
  for (std::size_t i = 0; i < lines.size(); ++i) {
    const bool isDn = lines[i].starts_with("dn:");
    const bool isValue = !lines[i].empty() && !isDn && lines[i][0] != ' ';
    if (fault == Fault::entryLeftOut || fault == Fault::valueBroughtAlong ? isDn : isValue) at.push_back(i);
  }
  if (at.empty()) return result;
  std::size_t line = at[which % at.size()];
  switch (fault) {
    case Fault::valueLeftOut:
      do lines.erase(lines.begin() + static_cast<std::ptrdiff_t>(line));
      while (line < lines.size() && lines[line].starts_with(" "));
      break;
    case Fault::valueBroughtAlong:
      while (line + 1 < lines.size() && lines[line + 1].starts_with(" ")) ++line;
      lines.insert(lines.begin() + static_cast<std::ptrdiff_t>(line) + 1, dropped);
      break;
    case Fault::valueSpoilt:
      lines[line] = lines[line].substr(0, lines[line].find(':') + 1) + " spoilt";
      while (line + 1 < lines.size() && lines[line + 1].starts_with(" ")) {
        lines.erase(lines.begin() + static_cast<std::ptrdiff_t>(line) + 1);
      }
      break;
    case Fault::entryLeftOut:
      while (line < lines.size() && !lines[line].empty()) {
        lines.erase(lines.begin() + static_cast<std::ptrdiff_t>(line));
      }
      break;
  }
  std::string text;
  for (const std::string& each : lines) text += each + '\n';
  return text;
}

RC_GTEST_PROP(MergeAudit, NoticesAnyFaultOfARule, ()) {
  const std::string version = *rc::gen::elementOf(kVersions);
  const std::string old = *randomConfiguration();
  const std::string before = *randomConfiguration();
  const Fault fault =
      *rc::gen::element(Fault::valueLeftOut, Fault::valueBroughtAlong, Fault::valueSpoilt, Fault::entryLeftOut);
  // Not one of the values that are there in any configuration.
  const std::string dropped = *rc::gen::element<std::string>("zor-slapdPort: 389", "zor-slapdPlugin: CLInit of old",
                                                             "zor-slapdIncludeSchema: /old/V3.user.at");
  const std::size_t which = *rc::gen::arbitrary<std::size_t>();
  const std::string result = faulty(migrated(version, old, before), fault, dropped, which);
  RC_LOG() << "version " << version << "\n--- old\n" << old << "--- before\n" << before << "--- result\n" << result;
  const Audited audited(version, old, before, result);
  RC_ASSERT(!audited.audit.discrepancies.empty());
  RC_ASSERT(audited.audit.verdict() != tool::AuditVerdict::agrees);
}

}  // namespace
