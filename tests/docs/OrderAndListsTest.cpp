// What the pages of docs/migration say beside their tables: the order, which settings are lists, and that each page
// covers what it has to.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <set>

#include "Migration.h"
#include "MigrationPages.h"
#include "Scenario.h"

using namespace pages;
using migration::Entries;
using migration::Outcome;
using migration::Values;
using testing::ElementsAreArray;
using testing::IsEmpty;
using testing::Not;
using testing::UnorderedElementsAreArray;

namespace {

constexpr const char* kSomeEntry = "CN=SOMETHING,CN=CONFIGURATION";

// An old configuration with entries of both kinds, in a mixed order.
Outcome mixedMerge(const std::string& version) {
  const auto entry = [](const std::string& name) { return scenario::entry("CN=" + name + ",CN=CONFIGURATION", {}); };
  return migration::migrate(version,
                            scenario::configuration({entry("OLD 1"), entry("BOTH 1"), entry("OLD 2"), entry("BOTH 2")}),
                            scenario::configuration({entry("BOTH 2"), entry("NEW"), entry("BOTH 1")}));
}

// What the lines about an entry are about.
std::vector<std::string> toldAbout(const Page& page, const std::string& entry) {
  std::vector<std::string> told;
  for (const Row& row : page.rows) {
    if (row.entry == entry) told.push_back(row.about);
  }
  return told;
}

class MigrationPage : public testing::TestWithParam<const char*> {
 protected:
  const Page& page = pages::page(GetParam());
};

TEST_P(MigrationPage, NumbersTheMethodsInTheirOrder) {
  std::vector<std::string> order;
  for (const std::string& method : mixedMerge(page.version).entered) {
    const bool isNumbered = std::find(page.order.begin(), page.order.end(), method) != page.order.end();
    if (isNumbered && (order.empty() || order.back() != method)) order.push_back(method);
  }
  EXPECT_THAT(order, ElementsAreArray(page.order));
}

// Each method below the three that choose a version's rules is numbered.
TEST_P(MigrationPage, NumbersEveryMethodOfItsVersion) {
  const Outcome outcome = mixedMerge(page.version);
  const std::set<std::string> driver = {"mergeConfigFiles", "processNewEntry", "processUpdatedEntry",
                                        "additionalChecks"};
  const std::set<std::string> helpers = {"addCfgEntry", "mergeCfgEntry", "isMultiVal", "isOVOFile"};
  for (const std::string& method : outcome.entered) {
    if (driver.contains(method) || helpers.contains(method)) continue;
    EXPECT_THAT(page.order, testing::Contains(method));
  }
}

TEST_P(MigrationPage, NamesNoEntryThatItSaysNothingAbout) {
  for (const auto& [name, dn] : page.dns) {
    const bool used = std::any_of(page.rows.begin(), page.rows.end(), [&, wanted = name](const Row& row) {
      return row.entry == wanted || row.goesTo.entry == wanted;
    });
    EXPECT_TRUE(used) << name;
  }
}

TEST_P(MigrationPage, TellsWhatBecomesOfEveryOtherEntry) {
  for (const auto& [presence, fate] : {std::pair(Presence::oldOnly, Fate::added), {Presence::both, Fate::merged}}) {
    EXPECT_TRUE(std::any_of(page.rows.begin(), page.rows.end(), [&, p = presence, f = fate](const Row& row) {
      return row.entry == kAnyOtherEntry && row.presence == p && row.fate == f;
    }));
  }
}

// The lines about one setting of one entry leave no value out and tell nothing twice.
TEST_P(MigrationPage, TellsOfEveryValueOfASetting) {
  using Kind = Match::Kind;
  for (const Row& row : page.rows) {
    if (row.subject != Subject::attribute && row.subject != Subject::other) continue;
    SCOPED_TRACE(row.place);
    const auto count = [&](Kind kind) {
      return std::count_if(page.rows.begin(), page.rows.end(), [&](const Row& other) {
        return scenario::areSiblings(row, other) && row.circumstance == other.circumstance && other.match.kind == kind;
      });
    };
    const bool isBuilt = std::any_of(page.rows.begin(), page.rows.end(), [&](const Row& other) {
      return other.entry == row.entry && other.circumstance == row.circumstance && other.fate == Fate::built;
    });
    if (row.circumstance != Circumstance::nothingThere) {
      EXPECT_EQ(count(Kind::any) + count(Kind::other), row.match.kind == Kind::literal && isBuilt ? 0 : 1);
    }
    if (row.match.kind == Kind::other && row.circumstance == Circumstance::none) {
      EXPECT_GT(
          count(Kind::exactly) + count(Kind::inAnyCase) + count(Kind::firstContaining) + count(Kind::eachContaining), 0)
          << "other than what?";
    }
    EXPECT_EQ(count(Kind::firstContaining), count(Kind::laterContaining));
    EXPECT_LE(count(row.match.kind), 1);
  }
}

// An entry that is built anew has what a line says, and a line says so of the rest.
TEST_P(MigrationPage, TellsEverythingAboutEntriesThatAreBuilt) {
  for (const Row& row : page.rows) {
    if (row.fate != Fate::built) continue;
    SCOPED_TRACE(row.place);
    const auto isTold = [&](Subject subject, const std::string& attribute) {
      return std::any_of(page.rows.begin(), page.rows.end(), [&](const Row& other) {
        return other.entry == row.entry && other.presence == row.presence && other.circumstance == row.circumstance &&
               other.subject == subject && other.attribute == attribute;
      });
    };
    EXPECT_TRUE(isTold(Subject::attribute, "OBJECTCLASS"));
    EXPECT_EQ(isTold(Subject::other, ""), row.presence != Presence::neither);
  }
}

// A setting that moves needs an entry to move to.
TEST_P(MigrationPage, TellsWhatBecomesOfAMoveToAnEntryThatIsMissing) {
  for (const Row& row : page.rows) {
    if (row.goesTo.entry.empty() || row.goesTo.entry == row.entry || row.subject == Subject::entry) continue;
    EXPECT_TRUE(std::any_of(page.rows.begin(), page.rows.end(), [&](const Row& other) {
      return scenario::areSiblings(row, other) && other.match.kind == row.match.kind &&
             other.circumstance == Circumstance::nothingThere;
    })) << row.place;
  }
}

TEST_P(MigrationPage, TellsEverythingAboutMovedEntriesIfThereAreSome) {
  const bool moves = std::any_of(page.rows.begin(), page.rows.end(), [](const Row& row) {
    return row.subject == Subject::entry && row.fate == Fate::moved;
  });
  const std::vector<std::string> everything = {
      "old only | `CN` | any",
      "old only | `OBJECTCLASS` | any",
      "old only | `zor-slapdVersion` | any",
      "old only | a list, in both | any",
      "old only | any other, in both | the first",
      "old only | any other, in both | a later one",
      "old only | any other, in the old entry | any",
      "old only | any other, behind one in the old entry | any",
      "old only, nothing there | the entry | ",
      "both | the entry | ",
  };
  EXPECT_THAT(toldAbout(page, kMovedEntry), UnorderedElementsAreArray(moves ? everything : std::vector<std::string>()));
}

// A second value of a setting that should have one is not what a rule looks at.
TEST_P(MigrationPage, SaysOfTheFirstValueOnlyThatItIsDropped) {
  for (const Row& row : page.rows) {
    const bool isSingle = row.fate == Fate::dropped && row.presence == Presence::both &&
                          row.match.kind == Match::Kind::any && row.subject == Subject::attribute;
    if (!isSingle) continue;
    SCOPED_TRACE(row.place);
    const std::string& dn = page.dn(row.entry);
    const Outcome outcome = migration::migrate(
        page.version, scenario::configuration({scenario::entry(dn, {{row.attribute, {"first", "second"}}})}),
        scenario::configuration({scenario::entry(dn, {{row.attribute, {"new"}}})}));
    EXPECT_EQ(outcome.merged.values(dn, row.attribute), Values{"second"});
  }
}

INSTANTIATE_TEST_SUITE_P(Each, MigrationPage, testing::ValuesIn(kVersions), [](const auto& one) {
  std::string name = one.param;
  std::replace(name.begin(), name.end(), '.', '_');
  return "From" + name;
});

// The names of all settings of a configuration file.
void addNamesIn(const std::filesystem::path& file, std::set<std::string>& names) {
  std::ifstream in(file);
  std::string line;
  while (std::getline(in, line)) {
    const std::size_t colon = line.find(':');
    if (line.empty() || line[0] == '#' || line[0] == ' ' || colon == std::string::npos) continue;
    const std::string name = line.substr(0, colon);
    if (name != "dn" && name != "version") names.insert(name);
  }
}

// Of every setting that the examples have, and every one that a page names, an entry of no rule shows how it is
// carried.
TEST(PageForEveryVersion, NamesTheSettingsThatHoldSeveralValuesAndNoOther) {
  std::set<std::string> names;
  for (const auto& file : std::filesystem::recursive_directory_iterator(CFGMIG_EXAMPLES)) {
    if (file.path().extension() == ".ldif") addNamesIn(file.path(), names);
  }
  for (const char* version : kVersions) {
    for (const Row& row : page(version).rows) {
      if (!row.attribute.empty()) names.insert(row.attribute);
    }
  }
  const Page& everyVersion = page(kEveryVersion);
  for (const std::string& list : everyVersion.lists) names.insert(list);
  ASSERT_GT(names.size(), 60U);

  for (const std::string& name : names) {
    SCOPED_TRACE(name);
    const bool isNeverCarried = std::any_of(everyVersion.rows.begin(), everyVersion.rows.end(), [&](const Row& row) {
      return row.fate == Fate::keptNew && row.subject == Subject::attribute && sameText(row.attribute, name);
    });
    const auto with = [&](const char* value) {
      fake::Entry entry{kSomeEntry, {}};
      if (!sameText(name, "OBJECTCLASS")) entry.attributes.push_back({"OBJECTCLASS", {"TOP"}});
      if (!sameText(name, "CN")) entry.attributes.push_back({"CN", {"SOMETHING"}});
      entry.attributes.push_back({name, {value}});
      return scenario::configuration({entry});
    };
    const Values expected = isNeverCarried ? Values{"new"} : isList(name) ? Values{"new", "old"} : Values{"old"};
    EXPECT_EQ(migration::migrate("5.2", with("old"), with("new")).merged.values(kSomeEntry, name), expected);
  }
}

TEST(PageForEveryVersion, TellsEverythingAboutAnyEntry) {
  EXPECT_THAT(toldAbout(page(kEveryVersion), kAnyEntry), UnorderedElementsAreArray(std::vector<std::string>{
                                                             "both | `OBJECTCLASS` | any",
                                                             "both | `zor-slapdVersion` | any",
                                                             "both | a list | any",
                                                             "both | any other, in both | the first",
                                                             "both | any other, in both | a later one",
                                                             "both | any other, in the old entry | any",
                                                             "both | any other, in the new entry | any",
                                                             "old only | the entry | ",
                                                             "old only | `OBJECTCLASS`, the only one | `TOP`",
                                                             "old only | the entry, without `OBJECTCLASS` | ",
                                                             "old only | the entry, without `CN` | ",
                                                             "new only | the entry | ",
                                                         }));
}

// The page of every version links the others, and each exists.
TEST(PageForEveryVersion, LinksEachVersion) {
  std::ifstream in(CFGMIG_PAGES "/README.md");
  const std::string text{std::istreambuf_iterator<char>(in), {}};
  for (const char* version : kVersions) {
    EXPECT_THAT(text, testing::HasSubstr("(" + std::string(version) + ".md)"));
    EXPECT_THAT(page(version).rows, Not(IsEmpty()));
  }
}

// What the reader of the pages relies on.
TEST(PhrasesOfTheTables, ThatAreNotKnownAreRefused) {
  EXPECT_THROW(whenFrom("sometimes"), std::runtime_error);
  EXPECT_THROW(whenFrom("both, perhaps"), std::runtime_error);
  EXPECT_THROW(settingFrom("`a` and `b`"), std::runtime_error);
  EXPECT_THROW(settingFrom("some setting"), std::runtime_error);
  EXPECT_THROW(matchFrom("about `x`"), std::runtime_error);
  EXPECT_THROW(fateFrom("Dropped"), std::runtime_error);
  EXPECT_THROW(goesToFrom("`a` in b"), std::runtime_error);
  EXPECT_THROW(nameFrom("`a` or `b`x"), std::runtime_error);
}

}  // namespace
