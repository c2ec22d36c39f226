// The other direction: whatever a rule looks at, takes out or writes has a line in the tables. The entries that the
// rules know are not listed here: they are seen in the comparisons that the rules make.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "Documented.h"
#include "FakeMigration.h"
#include "MigrationPages.h"
#include "Scenario.h"
#include "SimpleDn.h"

using namespace pages;
using migration::Call;
using migration::Entries;
using migration::Outcome;

namespace {

constexpr const char* kSomeEntry = "CN=SOMETHING,CN=CONFIGURATION";

// The DNs with which the rules of a version compare that of an entry which matches none.
std::set<std::string> entriesThatRulesKnow(const std::string& version) {
  std::set<std::string> known;
  const auto note = [&](const std::string& method, const std::string& call) {
    const std::string before = "compareDns(" + std::string(kSomeEntry) + ", ";
    if (!documented::isRule(method) || !call.starts_with(before)) return;
    known.insert(fake::simpleDn(call.substr(before.size(), call.rfind(") = ") - before.size())));
  };
  const Entries with = scenario::configuration({scenario::entry(kSomeEntry, {})});
  const Entries without = scenario::configuration({});
  migration::migrateComparing(version, with, without, note);
  migration::migrateComparing(version, with, with, note);
  return known;
}

class Rules : public testing::TestWithParam<const char*> {
 protected:
  // Every entry that a rule knows or that the page names; `change` gives it what it holds.
  template <class Change>
  Entries everyEntry(Change change) const {
    std::set<std::string> dns = entriesThatRulesKnow(page.version);
    for (const auto& [name, dn] : page.dns) dns.insert(fake::simpleDn(dn));
    Entries entries;
    for (const std::string& dn : dns) {
      entries.push_back(scenario::entry(dn, {}));
      change(entries.back());
    }
    return scenario::configuration(entries);
  }

  void expectLinesForAllCalls(const Entries& old, const Entries& fresh) const {
    const Outcome outcome = migration::migrate(page.version, old, fresh);
    for (const Call& call : outcome.calls) {
      if (!documented::isRule(call.method())) continue;
      EXPECT_NE(documented::lineFor(page, call), nullptr) << "no line in the table for " << documented::describe(call);
    }
  }

  // With all entries on both sides, with all of them in the old one alone, and with the targets of moves missing.
  template <class Change>
  void expectLinesWhenOldEntriesHold(Change change) const {
    const Entries old = everyEntry(change);
    const Entries everything = everyEntry([](fake::Entry&) {});
    Entries targets;
    for (const Row& row : page.rows) {
      const auto named = page.dns.find(row.goesTo.entry);
      if (named != page.dns.end()) targets.push_back(scenario::entry(named->second, {}));
    }
    Entries oldOnly = old;
    std::erase_if(oldOnly, [&](const fake::Entry& entry) {
      return std::any_of(targets.begin(), targets.end(), [&](const fake::Entry& target) {
        return fake::simpleDn(target.dn) == fake::simpleDn(entry.dn);
      });
    });
    expectLinesForAllCalls(old, everything);
    expectLinesForAllCalls(oldOnly, scenario::configuration(targets));
    expectLinesForAllCalls(old, scenario::configuration({}));
  }

  const Page& page = pages::page(GetParam());
};

TEST_P(Rules, KnowNoEntryThatThePageDoesNotName) {
  const std::set<std::string> known = entriesThatRulesKnow(page.version);
  EXPECT_GE(known.size(), 3U);
  for (const std::string& dn : known) {
    EXPECT_TRUE(std::any_of(page.dns.begin(), page.dns.end(), [&](const auto& named) {
      return fake::simpleDn(named.second) == dn;
    })) << dn;
  }
}

TEST_P(Rules, ReadAndWriteNothingThatThePageDoesNotTellOfEmptyEntries) {
  expectLinesWhenOldEntriesHold([](fake::Entry&) {});
}

// Each setting of each line in turn, in every entry: a rule may look at it in an entry that no line names.
TEST_P(Rules, ReadAndWriteNothingThatThePageDoesNotTell) {
  for (const Row& row : page.rows) {
    if (row.attribute.empty() || row.subject != Subject::attribute || row.fate == Fate::addedByRule) continue;
    if (row.attribute == "OBJECTCLASS" || row.attribute == "CN") continue;
    SCOPED_TRACE(row.place);
    for (const scenario::Trial& trial : scenario::trialsOf(row, page.rows)) {
      expectLinesWhenOldEntriesHold([&](fake::Entry& entry) {
        for (const fake::Attribute& attribute : scenario::identity(row.circumstance)) {
          if (attribute.name != row.attribute) entry.attributes.push_back(attribute);
        }
        entry.attributes.push_back({row.attribute, trial.old});
      });
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Of, Rules, testing::ValuesIn(kVersions), [](const auto& one) {
  std::string name = one.param;
  std::replace(name.begin(), name.end(), '.', '_');
  return "Version" + name;
});

}  // namespace
