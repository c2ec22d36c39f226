// RuleAuditTest.cpp -- what an audit says of single values, in configurations small enough to see it.

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <set>
#include <stdexcept>

#include "Audited.h"
#include "ConfigFile.h"
#include "NormalDn.h"
#include "audit/Rules.h"
#include "audit/UntouchedText.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using tool::AuditVerdict;

constexpr char kRoot[] = "dn: cn=Configuration\nobjectClass: top\ncn: Configuration\n\n";

// An old and a new configuration, and the migration of one into the other.
struct Migration {
  std::string version;
  std::string old;
  std::string before;
  std::string result;

  Migration(std::string of, std::string from, std::string into)
      : version(std::move(of)), old(std::move(from)), before(std::move(into)), result(migrated(version, old, before)) {}

  Audited audited() const { return {version, old, before, result}; }

  // With `text` in the result replaced.
  Audited edited(const std::string& text, const std::string& by) const {
    std::string other = result;
    const std::size_t at = other.find(text);
    if (at == std::string::npos) throw std::logic_error("not in the result: " + text);
    return {version, old, before, other.replace(at, text.size(), by)};
  }
};

const Migration& plain() {
  static const Migration migration("6.0",
                                   "dn: cn=Configuration\n"   // 1
                                   "objectClass: top\n"       // 2
                                   "cn: Configuration\n"      // 3
                                   "zor-slapdPort: 389\n"     // 4
                                   "zor-limit: 900\n"         // 5
                                   "zor-limit: 901\n"         // 6
                                   "zor-old: 1\n"             // 7
                                   "zor-slapdPlugin: both\n"  // 8
                                   "zor-slapdPlugin: old\n"   // 9
                                   "zor-same: x\n"            // 10
                                   "zor-slapdVersion: 6.0\n"  // 11
                                   "\n"
                                   "dn: cn=Only,cn=Configuration\n"  // 13
                                   "objectClass: one\n"              // 14
                                   "cn: Only\n"                      // 15
                                   "zor-note: n\n",                  // 16
                                   "dn: cn=Configuration\n"          // 1
                                   "objectClass: top\n"              // 2
                                   "cn: Configuration\n"             // 3
                                   "zor-slapdPort: 1389\n"           // 4
                                   "zor-limit: 500\n"                // 5
                                   "zor-limit: 501\n"                // 6
                                   "# a comment\n"                   // 7
                                   "zor-slapdPlugin: new\n"          // 8
                                   "zor-slapdPlugin: both\n"         // 9
                                   "zor-same: x\n"                   // 10
                                   "zor-slapdVersion: 7.0\n");       // 11
  return migration;
}

// What the library makes of plain().
constexpr char kPlainResult[] =
    "dn: cn=Configuration\n"          // 1
    "objectClass: top\n"              // 2
    "cn: Configuration\n"             // 3
    "zor-slapdPort: 1389\n"           // 4
    "zor-limit: 900\n"                // 5
    "# a comment\n"                   // 6
    "zor-slapdPlugin: new\n"          // 7
    "zor-slapdPlugin: both\n"         // 8
    "zor-slapdPlugin: old\n"          // 9
    "zor-same: x\n"                   // 10
    "zor-slapdVersion: 7.0\n"         // 11
    "zor-old: 1\n"                    // 12
    "\n"                              // 13
    "dn: cn=Only,cn=Configuration\n"  // 14
    "objectClass: one\n"              // 15
    "objectClass: TOP\n"              // 16
    "cn: Only\n"                      // 17
    "zor-note: n\n";                  // 18

std::string inUpperCase(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(), [](char c) { return c >= 'a' && c <= 'z' ? c - 32 : c; });
  return text;
}

TEST(RuleAudit, GivesEachOldValueOneFateAndItsPlace) {
  ASSERT_EQ(inUpperCase(plain().result), inUpperCase(kPlainResult));
  const Audited audited = plain().audited();
  EXPECT_THAT(discrepanciesOf(audited), IsEmpty());
  const std::vector<std::string> fates = {"same 2",     "same 3", "dropped",   "carried 5", "lost",
                                          "carried 12", "same 8", "carried 9", "same 10",   "kept-new 11"};
  for (std::size_t i = 0; i < fates.size(); ++i) EXPECT_EQ(fateOf(audited, i + 2), fates[i]) << "line " << i + 2;
  EXPECT_EQ(fateOf(audited, 14), "carried 15");
  EXPECT_EQ(fateOf(audited, 15), "carried 17");
  EXPECT_EQ(fateOf(audited, 16), "carried 18");
  EXPECT_EQ(audited.audit.count(tool::ValueFate::carried), 6U);
  EXPECT_EQ(audited.audit.count(tool::ValueFate::same), 4U);
  EXPECT_EQ(audited.audit.count(tool::ValueFate::lost), 1U);
}

TEST(RuleAudit, GivesEachValueOfTheResultOneOrigin) {
  const Audited audited = plain().audited();
  EXPECT_EQ(originOf(audited, 4), "new 4");
  EXPECT_EQ(originOf(audited, 5), "carried 5");
  EXPECT_EQ(originOf(audited, 8), "new 9");
  EXPECT_EQ(originOf(audited, 9), "carried 9");
  EXPECT_EQ(originOf(audited, 11), "new 11");
  EXPECT_EQ(originOf(audited, 16), "added-by-rule");
  EXPECT_EQ(originOf(audited, 18), "carried 16");
  EXPECT_EQ(audited.audit.unexplained, 0U);
}

TEST(RuleAudit, ListsWhatWasReplacedAndByWhat) {
  EXPECT_THAT(replacedIn(plain().audited()), ElementsAre("5 by 5", "6 by 5"));
}

TEST(RuleAudit, ASecondValueThatIsNotCarriedIsALossAndNoDiscrepancy) {
  const Audited audited = plain().audited();
  EXPECT_EQ(audited.audit.verdict(), AuditVerdict::lost);
  EXPECT_THAT(discrepanciesOf(audited), IsEmpty());
}

TEST(RuleAudit, AgreesWhenNothingIsLost) {
  const Migration migration("6.0", kRoot, kRoot);
  EXPECT_EQ(migration.audited().audit.verdict(), AuditVerdict::agrees);
}

TEST(RuleAudit, AnOldValueThatIsNotThereIsMissingAndLost) {
  const Audited audited = plain().edited("zor-old: 1\n", "");
  EXPECT_THAT(discrepanciesOf(audited), ElementsAre("missingValue CN=CONFIGURATION zor-old: expected [1]"));
  EXPECT_EQ(fateOf(audited, 7), "lost");
  EXPECT_EQ(audited.audit.verdict(), AuditVerdict::lost);
}

TEST(RuleAudit, ANewValueThatShouldHaveBeenReplacedMayBeALoss) {
  const Audited audited = plain().edited("zor-limit: 900\n", "zor-limit: 500\nzor-limit: 501\n");
  EXPECT_THAT(discrepanciesOf(audited),
              ElementsAre("notReplaced CN=CONFIGURATION zor-limit: expected [900], there is [500]",
                          "notReplaced CN=CONFIGURATION zor-limit: there is [501]"));
  EXPECT_EQ(fateOf(audited, 5), "lost");
  EXPECT_EQ(originOf(audited, 5), "new 5");
  EXPECT_THAT(replacedIn(audited), IsEmpty());
  EXPECT_EQ(audited.audit.verdict(), AuditVerdict::lost);
}

TEST(RuleAudit, AnAddedEntryThatIsNotThereIsMissingAndItsValuesAreLost) {
  const Audited audited = plain().edited(plain().result.substr(plain().result.find("dn: CN=ONLY")), "");
  EXPECT_THAT(discrepanciesOf(audited), ElementsAre("missingEntry CN=ONLY,CN=CONFIGURATION"));
  for (std::size_t line = 14; line <= 16; ++line) EXPECT_EQ(fateOf(audited, line), "lost");
  EXPECT_EQ(audited.audit.verdict(), AuditVerdict::lost);
}

TEST(RuleAudit, ANewValueThatIsNotThereDiffers) {
  const Audited audited = plain().edited("zor-slapdPort: 1389\n", "");
  EXPECT_THAT(discrepanciesOf(audited), ElementsAre("missingNewValue CN=CONFIGURATION zor-slapdPort: expected [1389]"));
  EXPECT_THAT(replacedIn(audited), ElementsAre("4 by none", "5 by 4", "6 by 4"));
  EXPECT_EQ(audited.audit.verdict(), AuditVerdict::differs);
}

TEST(RuleAudit, AChangedValueDiffersWhereverItComesFrom) {
  EXPECT_THAT(discrepanciesOf(plain().edited("zor-old: 1\n", "zor-old: 2\n")),
              ElementsAre("changedValue CN=CONFIGURATION zor-old: expected [1], there is [2]"));
  EXPECT_THAT(discrepanciesOf(plain().edited("1389", "1388")),
              ElementsAre("changedValue CN=CONFIGURATION zor-slapdPort: expected [1389], there is [1388]"));
  EXPECT_THAT(discrepanciesOf(plain().edited("TOP", "Top")),
              ElementsAre("changedValue CN=ONLY,CN=CONFIGURATION objectClass: expected [TOP], there is [Top]"));
  const Audited audited = plain().edited("zor-old: 1\n", "zor-old: 2\n");
  EXPECT_EQ(originOf(audited, 12), "unexplained");
  EXPECT_EQ(audited.audit.unexplained, 1U);
  EXPECT_EQ(audited.audit.verdict(), AuditVerdict::differs);
}

TEST(RuleAudit, AnOldValueThatARuleTakesOutAndThatIsThereDiffers) {
  const Audited audited = plain().edited("1389", "389");
  EXPECT_THAT(discrepanciesOf(audited),
              ElementsAre("uncalledFor CN=CONFIGURATION zor-slapdPort: expected [1389], there is [389]"));
  EXPECT_EQ(fateOf(audited, 4), "carried 4");
  EXPECT_EQ(originOf(audited, 4), "carried 4");
  EXPECT_EQ(audited.audit.verdict(), AuditVerdict::differs);
}

TEST(RuleAudit, AValueFromNowhereDiffers) {
  EXPECT_THAT(discrepanciesOf(plain().edited("zor-old: 1\n", "zor-old: 1\nzor-new: 7\n")),
              ElementsAre("unexplainedValue CN=CONFIGURATION zor-new: there is [7]"));
}

TEST(RuleAudit, AnEntryFromNowhereDiffers) {
  const Audited audited = plain().edited("\ndn: CN=ONLY", "\ndn: CN=MORE,CN=CONFIGURATION\ncn: more\n\ndn: CN=ONLY");
  EXPECT_THAT(discrepanciesOf(audited), ElementsAre("unexplainedEntry CN=MORE,CN=CONFIGURATION"));
  EXPECT_EQ(audited.audit.unexplained, 1U);
}

TEST(RuleAudit, AnEntryOfTheNewServerThatIsNotThereDiffers) {
  const Migration migration("6.0", kRoot, std::string(kRoot) + "dn: cn=New,cn=Configuration\ncn: New\n");
  const Audited audited = migration.edited("dn: cn=New,cn=Configuration\ncn: New\n", "");
  EXPECT_THAT(discrepanciesOf(audited), ElementsAre("missingNewEntry CN=NEW,CN=CONFIGURATION"));
  EXPECT_EQ(audited.audit.verdict(), AuditVerdict::differs);
}

TEST(RuleAudit, AValueThatIsWrittenTwiceDiffers) {
  EXPECT_THAT(discrepanciesOf(plain().edited("zor-same: x\n", "zor-same: x\nzor-same: x\n")),
              ElementsAre("repeatedValue CN=CONFIGURATION zor-same: there is [x]"));
}

TEST(RuleAudit, ValuesInAnotherOrderDiffer) {
  EXPECT_THAT(discrepanciesOf(plain().edited("zor-slapdPlugin: new\nzor-slapdPlugin: both\n",
                                             "zor-slapdPlugin: both\nzor-slapdPlugin: new\n")),
              ElementsAre("otherOrder CN=CONFIGURATION zor-slapdPlugin: there is [both]"));
}

TEST(RuleAudit, LetterCaseOfNamesAndTheOrderOfSettingsAreNoDifference) {
  const Audited audited =
      plain().edited("zor-slapdPort: 1389\nzor-limit: 900\n", "ZOR-LIMIT: 900\nzor-slapdport: 1389\n");
  EXPECT_THAT(discrepanciesOf(audited), IsEmpty());
}

TEST(RuleAudit, WhatNoRuleTouchedHasToBeWrittenAsItWas) {
  const auto differences = [](const Audited& audited) {
    return tool::compareUntouched(audited.beforeStore->text(), audited.resultStore->text(), audited.before,
                                  audited.result, audited.audit);
  };
  EXPECT_TRUE(differences(plain().audited()).isEmpty());
  const tool::TextDifferences comment = differences(plain().edited("# a comment", "# another"));
  EXPECT_THAT(comment.missing, ElementsAre(7U));
  EXPECT_THAT(comment.added, ElementsAre(6U));
  const tool::TextDifferences gone = differences(plain().edited("# a comment\n", ""));
  EXPECT_THAT(gone.missing, ElementsAre(7U));
  EXPECT_THAT(gone.added, IsEmpty());
  const tool::TextDifferences folded = differences(plain().edited("zor-same: x", "zor-same:\n  x"));
  EXPECT_THAT(folded.missing, ElementsAre(10U));
  EXPECT_THAT(folded.added, ElementsAre(10U));
}

// What follows is a second reading of what else the tables say.

TEST(RuleAudit, ATransferToAnotherEntryEndsAtTheFirstSettingThatThereIsNot) {
  const Migration migration("5.1",
                            std::string(kRoot) +
                                "dn: cn=RDBM BACKENDS, cn=ZOR Halvorn, CN=SCHEMAS,CN=CONFIGURATION\n"  // 5
                                "objectClass: old\n"                                                   // 6
                                "cn: old name\n"                                                       // 7
                                "zor-a: 1\n"                                                           // 8
                                "zor-b: 2\n"                                                           // 9
                                "zor-c: 3\n"                                                           // 10
                                "zor-same: x\n",                                                       // 11
                            std::string(kRoot) +
                                "dn: CN=RDBM BACKENDS,CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION\n"  // 5
                                "objectClass: new\n"                                                   // 6
                                "cn: new name\n"                                                       // 7
                                "zor-a: 9\n"                                                           // 8
                                "zor-c: 9\n"                                                           // 9
                                "zor-same: x\n");                                                      // 10
  const Audited audited = migration.audited();
  EXPECT_THAT(discrepanciesOf(audited), IsEmpty());
  EXPECT_EQ(fateOf(audited, 6), "kept-new 6");
  EXPECT_EQ(fateOf(audited, 7), "kept-new 7");
  EXPECT_EQ(fateOf(audited, 8), "moved 8");
  EXPECT_EQ(originOf(audited, 8), "moved 8");
  EXPECT_EQ(fateOf(audited, 9), "lost");
  EXPECT_EQ(fateOf(audited, 10), "lost");
  EXPECT_EQ(fateOf(audited, 11), "same 10");
}

TEST(RuleAudit, AMoveIntoAnEntryThatThereIsNotIsALoss) {
  const Migration migration("6.0", std::string(kRoot, sizeof kRoot - 2) + "zor-slapdSysLogLevel: h\n", kRoot);
  EXPECT_EQ(fateOf(migration.audited(), 4), "lost");
}

TEST(RuleAudit, AnEntryThatItsRuleGivesUpIsALoss) {
  const std::string entry = "dn: CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION\nobjectClass: top\ncn: ZOR DIRECTORY\n";
  const Migration migration("6.0",
                            kRoot + entry + "zor-slapdIncludeSchema: /old/my.at\nzor-slapdIncludeSchema: V3.user.at\n",
                            kRoot + entry + "zor-slapdIncludeSchema: /new/V3.user.at\n");
  const Audited audited = migration.audited();
  EXPECT_THAT(discrepanciesOf(audited), IsEmpty());
  EXPECT_EQ(fateOf(audited, 8), "lost");
  EXPECT_EQ(fateOf(audited, 9), "dropped");
  EXPECT_EQ(fateOf(audited, 7), "same 7");
}

TEST(RuleAudit, APartOfAPlugInThatBecomesASettingComesFromARule) {
  const std::string dn = "dn: CN=DIRECTORY,CN=RDBM BACKENDS,CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION\n";
  const Migration migration("6.0",
                            kRoot + dn + "zor-slapdPlugin: nonblocking maxskippedreplerrors=25\n",  // 6
                            kRoot + dn + "cn: d\n\ndn: cn=Replication,cn=Configuration\ncn: r\n");
  const Audited audited = migration.audited();
  EXPECT_THAT(discrepanciesOf(audited), IsEmpty());
  EXPECT_EQ(fateOf(audited, 6), "dropped 10");
  EXPECT_EQ(originOf(audited, 10), "added-by-rule 6");
}

TEST(RuleAudit, KnowsEveryEntryByItsNormalForm) {
  for (const char* version : {"4.1", "5.1", "5.2", "6.0"}) {
    const tool::auditing::SourceRules* const rules = tool::auditing::rulesFor(version);
    ASSERT_NE(rules, nullptr);
    EXPECT_FALSE(rules->oldEntries.empty());
    for (const auto& row : rules->oldEntries) {
      EXPECT_EQ(cfgstore::normalDn(row.dn), row.dn);
      EXPECT_EQ(cfgstore::normalDn(row.toDn).value_or(""), row.toDn);
    }
    for (const auto& row : rules->commonEntries) {
      EXPECT_EQ(cfgstore::normalDn(row.dn), row.dn);
      for (const auto& setting : row.settings) EXPECT_EQ(cfgstore::normalDn(setting.toDn).value_or(""), setting.toDn);
    }
  }
  EXPECT_EQ(tool::auditing::rulesFor("6.0.1"), nullptr);
  EXPECT_EQ(tool::auditing::rulesFor(""), nullptr);
}

TEST(RuleAudit, RefusesAVersionThatIsNone) { EXPECT_THROW(Audited("6.1", kRoot, kRoot, kRoot), std::invalid_argument); }

// Anything that takes time in proportion to the square would not end here.
TEST(RuleAudit, TakesLongListsAndLargeEntriesInItsStride) {
  constexpr int kMany = 30'000;
  std::string old = kRoot;
  std::string before = kRoot;
  old.pop_back();
  before.pop_back();
  for (int i = 0; i < kMany; ++i) {
    const std::string number = std::to_string(i);
    old += "zor-slapdPlugin: old " + number + "\n";
    before += "zor-slapdPlugin: new " + number + "\n";
    old += "zor-setting-" + number + ": " + number + "\n";
    before += "zor-setting-" + number + ": other\n";
    before += "zor-single: " + number + "\n";
  }
  old += "zor-single: x\n";
  const std::string result = migrated("6.0", old, before);
  const Audited audited("6.0", old, before, result);
  EXPECT_EQ(audited.audit.verdict(), AuditVerdict::agrees);
  EXPECT_EQ(audited.audit.count(tool::ValueFate::carried), 2U * kMany + 1);
  EXPECT_EQ(audited.audit.replaced.size(), 2U * kMany);
  const Audited swapped("6.0", before, old, result);
  EXPECT_EQ(swapped.audit.verdict(), AuditVerdict::differs);
}

// An object class does not go with its entry: it is the new server's own, or the server's others stand in its place.
TEST(RuleAudit, FindsAValueThatTheNewServerHeldAmongManyAsAmongFew) {
  for (const int many : {3, 60}) {
    const std::string head = kRoot + std::string("dn: cn=A,cn=Configuration\n");  // 5
    std::string classes;
    for (int i = 0; i < many; ++i) classes += "objectClass: c" + std::to_string(i) + "\n";
    const std::string old = head + "cn: A\n" + classes + "objectClass: mine\n";  // from line 7 on
    const std::string before = head + "cn: A\nobjectClass: theirs\n" + classes;  // from line 8 on
    const Audited audited("6.0", old, before, migrated("6.0", old, before));
    EXPECT_THAT(discrepanciesOf(audited), IsEmpty());
    for (std::size_t i = 0; i < static_cast<std::size_t>(many); ++i) {
      EXPECT_EQ(fateOf(audited, 7 + i), "same " + std::to_string(8 + i)) << many;
    }
    EXPECT_EQ(fateOf(audited, 7 + static_cast<std::size_t>(many)), "kept-new 7") << many;
  }
}

TEST(RuleAudit, HasWordsOfItsOwnForEachReasonAndEachKindOfDiscrepancy) {
  std::set<std::string> words;
  for (int i = 0; i <= static_cast<int>(tool::AuditReason::outside); ++i) {
    EXPECT_TRUE(words.insert(wordsFor(static_cast<tool::AuditReason>(i))).second) << i;
  }
  EXPECT_FALSE(words.contains("")) << "a reason without words";
  words.clear();
  using Kind = tool::Discrepancy::Kind;
  for (const Kind kind : {Kind::missingValue, Kind::missingEntry, Kind::notReplaced, Kind::missingNewValue,
                          Kind::missingNewEntry, Kind::changedValue, Kind::uncalledFor, Kind::unexplainedValue,
                          Kind::unexplainedEntry, Kind::repeatedValue, Kind::otherOrder}) {
    EXPECT_TRUE(words.insert(wordsFor(kind)).second);
  }
  EXPECT_FALSE(words.contains("")) << "a kind without words";
}

// ---- Schema files --------------------------------------------------------------------------------------------------

constexpr char kSchemaEntry[] =
    "dn: CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION\n"  // 5
    "zor-slapdSchemaAdditions: a\n";                      // 6

// The migration, and behind it the library's own reconciliation of schema files with these files there.
struct SchemaMigration {
  Workspace workspace;
  std::string old;
  std::string before;
  std::string result;
  std::string target;

  SchemaMigration(const std::string& oldIncludes, const std::string& newIncludes, const std::vector<std::string>& files)
      : old(std::string(kRoot) + kSchemaEntry + oldIncludes),
        before(std::string(kRoot) + kSchemaEntry + newIncludes),
        target(workspace.path("target")) {
    for (const char* directory : {"search", "search/etc", "target"}) {
      std::filesystem::create_directory(workspace.path(directory));
    }
    for (const std::string& file : files) workspace.write("search/etc/" + file, "# schema\n");
    ConfigFile now(workspace.write("new.ldif", migrated("6.0", old, before)), nullptr);
    std::string search = workspace.path("search");
    std::string text;
    char** missing = nullptr;
    char** copied = nullptr;
    now.checkSchemaFiles(search.data(), target.c_str(), text.data(), &missing, &copied);
    for (char** const list : {missing, copied}) {
      for (char** name = list; name != nullptr && *name != nullptr; ++name) std::free(*name);
      std::free(list);
    }
    result = cfgstore::ConfigStore::of(*now.getCfgUtils()).text();
  }

  Audited audited() const { return {"6.0", old, before, result, target}; }
};

TEST(RuleAudit, AnIncludeThatNamesItsCopyIsCleaned) {
  const SchemaMigration migration(
      "zor-slapdIncludeSchema: /old/my.at\n"          // 7
      "zor-slapdIncludeSchema: C:\\old\\my.oc\n"      // 8
      "zor-slapdIncludeSchema: /old/V3.user.at\n",    // 9
      "zor-slapdIncludeSchema: /new/V3.user.at\n"     // 7
      "zor-slapdIncludeSchema: /else/where/our.at\n"  // 8
      "zor-slapdIncludeSchema: V3.system.at\n",       // 9
      {"my.at", "my.oc", "our.at"});
  const Audited audited = migration.audited();
  EXPECT_THAT(discrepanciesOf(audited), IsEmpty());
  EXPECT_EQ(audited.audit.unexplained, 0U);
  EXPECT_EQ(audited.audit.verdict(), AuditVerdict::agrees);
  const std::string cleaned = fateOf(audited, 7);
  ASSERT_THAT(cleaned, testing::StartsWith("cleaned "));
  const std::size_t line = std::stoul(cleaned.substr(cleaned.find(' ')));
  EXPECT_EQ(originOf(audited, line), "added-by-rule 7");
  EXPECT_THAT(fateOf(audited, 8), testing::StartsWith("cleaned "));
  EXPECT_EQ(fateOf(audited, 9), "dropped");
  EXPECT_EQ(replacedIn(audited).size(), 1U);
}

TEST(RuleAudit, AnIncludeThatWasNotFoundNeedsAPerson) {
  const SchemaMigration migration("zor-slapdIncludeSchema: /old/my.at\nzor-slapdIncludeSchema: noslash\n", "", {});
  const Audited audited = migration.audited();
  EXPECT_THAT(discrepanciesOf(audited), IsEmpty());
  EXPECT_EQ(audited.audit.schemaFilesLeft.size(), 2U);
  EXPECT_EQ(audited.audit.verdict(), AuditVerdict::lost);
}

TEST(RuleAudit, TwoIncludesOfOneNameBecomeOneCopy) {
  const SchemaMigration migration("zor-slapdIncludeSchema: /old/my.at\nzor-slapdIncludeSchema: /other/my.at\n",
                                  "zor-slapdIncludeSchema: /new/V3.user.at\n", {"my.at"});
  const Audited audited = migration.audited();
  EXPECT_THAT(discrepanciesOf(audited), IsEmpty());
  EXPECT_EQ(fateOf(audited, 7), fateOf(audited, 8));
}

TEST(RuleAudit, AnIncludeThatNamesItsCopyAlreadyIsLeftAsItIs) {
  SchemaMigration first("zor-slapdIncludeSchema: /old/my.at\n", "", {"my.at"});
  const std::string own = "zor-slapdIncludeSchema: " + first.target + "/my.at\n";
  ASSERT_THAT(first.result, testing::HasSubstr(own));
  const Audited audited("6.0", kRoot, std::string(kRoot) + kSchemaEntry + own, std::string(kRoot) + kSchemaEntry + own,
                        first.target);
  EXPECT_EQ(audited.audit.verdict(), AuditVerdict::agrees);
}

TEST(RuleAudit, CopiedSchemaFilesThatTheAuditIsNotToldOfDiffer) {
  const SchemaMigration migration("zor-slapdIncludeSchema: /old/my.at\n", "", {"my.at"});
  const Audited audited("6.0", migration.old, migration.before, migration.result);
  EXPECT_THAT(discrepanciesOf(audited), Not(IsEmpty()));
  EXPECT_EQ(audited.audit.verdict(), AuditVerdict::differs);
}

TEST(RuleAudit, AnIncludeThatNamesAFileElsewhereDiffers) {
  SchemaMigration migration("zor-slapdIncludeSchema: /old/my.at\n", "", {"my.at"});
  migration.result.replace(migration.result.find("/target/my.at"), 13, "/targex/my.at");
  EXPECT_EQ(migration.audited().audit.verdict(), AuditVerdict::differs);
}

}  // namespace
