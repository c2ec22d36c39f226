// Whatever the rules change when the examples are merged has a line in the tables, and the examples reach the lines.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "Documented.h"
#include "EmbeddedMigration.h"
#include "MigrationPages.h"

using namespace pages;
using migration::Call;
using migration::Outcome;

namespace {

// The old configurations of the example of a version; the new one is new.ldif.
std::vector<Outcome> examplesOf(const std::string& version) {
  const std::filesystem::path folder = std::filesystem::path(CFGMIG_EXAMPLES) / version;
  std::vector<Outcome> outcomes;
  for (const auto& file : std::filesystem::directory_iterator(folder)) {
    const std::string name = file.path().filename().string();
    if (!name.starts_with("old") || file.path().extension() != ".ldif") continue;
    outcomes.push_back(migration::migrateFiles(version, file.path(), folder / "new.ldif"));
  }
  return outcomes;
}

class ExampleOf : public testing::TestWithParam<const char*> {
 protected:
  const Page& page = pages::page(GetParam());
};

TEST_P(ExampleOf, ChangesNothingByARuleThatThePageDoesNotTell) {
  for (const Outcome& outcome : examplesOf(page.version)) {
    std::size_t byRules = 0;
    for (const Call& call : outcome.calls) {
      if (!documented::isRule(call.method())) continue;
      ++byRules;
      EXPECT_NE(documented::lineFor(page, call), nullptr) << documented::describe(call);
    }
    EXPECT_GT(byRules, 4U);
  }
}

// A line about something that is dropped and that no example holds could be about nothing that exists.
TEST_P(ExampleOf, HasSomethingForEveryLineAboutADroppedSetting) {
  std::set<std::string> reached;
  for (const Outcome& outcome : examplesOf(page.version)) {
    for (const Call& call : outcome.calls) {
      if (!documented::isRule(call.method()) || call.operation != "delValue" || call.values.empty()) continue;
      for (const Row& row : page.rows) {
        Page alone = page;
        alone.rows = {row};
        if (documented::lineFor(alone, call) != nullptr) reached.insert(row.place);
      }
    }
  }
  for (const Row& row : page.rows) {
    const bool isRare = row.match.kind == Match::Kind::exactly;  // the examples hold the value that is not dropped
    EXPECT_TRUE(row.fate != Fate::dropped || isRare || reached.contains(row.place)) << row.place;
  }
}

INSTANTIATE_TEST_SUITE_P(Each, ExampleOf, testing::ValuesIn(kVersions), [](const auto& one) {
  std::string name = one.param;
  std::replace(name.begin(), name.end(), '.', '_');
  return "Version" + name;
});

}  // namespace
