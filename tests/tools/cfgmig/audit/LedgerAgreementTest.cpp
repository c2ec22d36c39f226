// LedgerAgreementTest.cpp -- the audit and the ledger, which know nothing of each other, say the same of every value.

#include <gmock/gmock.h>
#include <rapidcheck/gtest.h>

#include <filesystem>
#include <functional>
#include <set>

#include "Audited.h"
#include "ConfigFile.h"
#include "RandomConfiguration.h"
#include "SchemaCopies.h"
#include "TracedMethod.h"
#include "ledger/LedgerBuilder.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

// A migration with its ledger, and the audit of its result.
struct Both {
  Workspace workspace;
  std::unique_ptr<ConfigFile> old;
  std::unique_ptr<ConfigFile> now;
  tool::Ledger ledger;
  tool::Audit audit;

  // Answers 0 for a write that may happen, or the code with which it is refused.
  using Gate = std::function<int(const cfgstore::Write& write)>;

  // The schema files are those that are there to be copied; none are copied when there are none.
  Both(const std::string& version, const std::string& oldText, const std::string& newText,
       const std::vector<std::string>& schemaFiles = {}, const Gate& gate = {})
      : old(std::make_unique<ConfigFile>(workspace.write("old.ldif", oldText), nullptr)),
        now(std::make_unique<ConfigFile>(workspace.write("new.ldif", newText), nullptr)) {
    if (old->getDns() != 0 || now->getDns() != 0) throw std::runtime_error("getDns failed");
    for (ConfigFile* const file : {old.get(), now.get()}) {
      cfgstore::ConfigStore::of(*file->getCfgUtils()).refuseWith(gate);
    }
    tool::LedgerBuilder builder(*old, *now, version);
    builder.merge();
    if (!schemaFiles.empty()) copySchemaFiles(builder, schemaFiles);
    ledger = std::move(*builder.finish());
    audit = tool::audit(ledger.old, ledger.before, ledger.result, version,
                        schemaFiles.empty() ? std::string() : workspace.path("target"));
  }

  void copySchemaFiles(tool::LedgerBuilder& builder, const std::vector<std::string>& files) {
    for (const char* directory : {"search", "search/etc", "target"}) {
      std::filesystem::create_directory(workspace.path(directory));
    }
    for (const std::string& file : files) workspace.write("search/etc/" + file, "# schema\n");
    builder.cleanUpBy(tool::traced::kCheckSchemaFiles);
    const tool::SchemaCopies copies(*now, {workspace.path("search"), workspace.path("target")});
  }
};

RC_GTEST_PROP(LedgerAgreement, HoldsForEveryValueOfArbitraryConfigurations, ()) {
  const std::string version = *rc::gen::element<std::string>("4.1", "5.1", "5.2", "6.0");
  const std::string old = *randomConfiguration();
  const std::string before = *randomConfiguration();
  const Both both(version, old, before);
  const std::vector<std::string> disagreements = tool::compareWithLedger(both.audit, both.ledger);
  if (!disagreements.empty()) {
    RC_LOG() << "version " << version << "\n--- old\n" << old << "--- before\n" << before;
    for (const std::string& line : disagreements) RC_LOG() << line << '\n';
  }
  RC_ASSERT(disagreements.empty());
  // With every write taken, what is missing is a fault of a rule, though both may agree that it is lost.
  RC_ASSERT(both.audit.discrepancies.empty());
  RC_ASSERT(tool::sumErrors(both.ledger).empty());
  RC_ASSERT(both.audit.fates == both.ledger.fates);
  RC_ASSERT(both.audit.origins == both.ledger.origins);
}

RC_GTEST_PROP(LedgerAgreement, HoldsWhenSchemaFilesAreCopied, ()) {
  const std::string old = *randomConfiguration();
  const std::string before = *randomConfiguration();
  const std::string version = *rc::gen::element<std::string>("5.1", "5.2", "6.0");
  const Both both(version, old, before,
                  *rc::gen::element(std::vector<std::string>{"my.at"}, std::vector<std::string>{"my.oc"},
                                    std::vector<std::string>{"my.at", "my.oc"}));
  const std::vector<std::string> disagreements = tool::compareWithLedger(both.audit, both.ledger);
  if (!disagreements.empty()) {
    RC_LOG() << "version " << version << "\n--- old\n" << old << "--- before\n" << before;
    for (const std::string& line : disagreements) RC_LOG() << line << '\n';
  }
  RC_ASSERT(disagreements.empty());
  RC_ASSERT(both.audit.discrepancies.empty());
}

RC_GTEST_PROP(LedgerAgreement, HoldsWhicheverWritesAreRefused, ()) {
  const std::string version = *rc::gen::element<std::string>("4.1", "5.1", "5.2", "6.0");
  const std::string old = *randomConfiguration();
  const std::string before = *randomConfiguration();
  const auto refused = *rc::gen::container<std::set<int>>(rc::gen::inRange(0, 40));
  int number = 0;
  const Both both(version, old, before, {},
                  [&](const cfgstore::Write&) { return refused.count(number++) > 0 ? 80 : 0; });
  const std::vector<std::string> disagreements = tool::compareWithLedger(both.audit, both.ledger);
  if (!disagreements.empty()) {
    RC_LOG() << "version " << version << "\n--- old\n" << old << "--- before\n" << before;
    for (const std::string& line : disagreements) RC_LOG() << line << '\n';
  }
  RC_ASSERT(disagreements.empty());
  const std::vector<std::string> wrongSums = tool::sumErrors(both.ledger);
  for (const std::string& line : wrongSums) RC_LOG() << line << '\n';
  RC_ASSERT(wrongSums.empty());
}

// Refuses the writes with these numbers, counted from 0 over both configurations.
Both::Gate refusing(std::set<int> numbers) {
  return [=, number = 0](const cfgstore::Write&) mutable { return numbers.count(number++) > 0 ? 80 : 0; };
}

tool::ValueFate fateAt(const Both& both, std::size_t line) {
  const auto values = both.ledger.old.values();
  for (tool::ValueId value = 0; value < values.size(); ++value) {
    if (values[value].line == line) return both.audit.oldValues[value].fate;
  }
  throw std::out_of_range("no value on line " + std::to_string(line));
}

constexpr const char* kRootOnly = "dn: cn=Configuration\nobjectClass: top\ncn: a\n";

TEST(LedgerAgreement, CallsNothingTheNewServersOwnInAnEntryThatCouldNotBeAdded) {
  const std::string old =
      "dn: cn=Directory, cn=RDBM Backends, cn=ZOR Directory, cn=Schemas, cn=Configuration\nobjectClass: top\ncn: a\n\n"
      "dn: cn=Directory, cn=RDBM Backends, cn=ZOR Halvorn, cn=Schemas, cn=Configuration\n"
      "objectClass: top\n"  // 6
      "cn: a\n\n" +
      std::string(kRootOnly);
  const Both both("5.1", old, kRootOnly, {}, refusing({0}));
  EXPECT_THAT(tool::compareWithLedger(both.audit, both.ledger), IsEmpty());
  EXPECT_EQ(fateAt(both, 6), tool::ValueFate::lost);
  EXPECT_EQ(fateAt(both, 7), tool::ValueFate::lost);
  EXPECT_EQ(both.audit.verdict(), tool::AuditVerdict::lost);
}

TEST(LedgerAgreement, KnowsALineThatTheNewConfigurationRepeatsAndARefusedWriteLeftThere) {
  const std::string old = std::string(kRootOnly) + "zor-limit: 2\n";
  const std::string before = std::string(kRootOnly) + "zor-limit: 1\nzor-limit: 2\nzor-limit: 2\n";
  const Both both("5.1", old, before, {}, refusing({0}));
  EXPECT_THAT(tool::compareWithLedger(both.audit, both.ledger), IsEmpty());
  EXPECT_THAT(both.audit.replaced, IsEmpty());
  EXPECT_EQ(both.audit.unexplained, 0U);
  EXPECT_EQ(both.audit.verdict(), tool::AuditVerdict::lost);
}

// Its place is where the rule brings it; that it is there a second time is told all the same.
TEST(LedgerAgreement, SaysOfAValueThatCameTwiceThatItIsWhereItsRuleBringsIt) {
  const std::string replication = "\ndn: cn=Replication, cn=Configuration\nobjectClass: top\ncn: r\n";
  const std::string old = std::string(kRootOnly) + "zor-slapdMaxPendingChangesDisplayed: 1\n";  // line 4
  const Both both("6.0", old, kRootOnly + replication, {}, [](const cfgstore::Write& write) {
    return write.operation == cfgstore::Operation::delValue ? 80 : 0;
  });
  EXPECT_THAT(tool::compareWithLedger(both.audit, both.ledger), IsEmpty());
  EXPECT_EQ(fateAt(both, 4), tool::ValueFate::moved);
  ASSERT_THAT(both.audit.discrepancies, SizeIs(1));
  EXPECT_EQ(both.audit.discrepancies[0].kind, tool::Discrepancy::Kind::uncalledFor);
}

const std::string kOtherEntry = "\ndn: cn=Other, cn=Configuration\nobjectClass: top\ncn: Other\n";

// A refused write in the main entry, and nothing unusual in the other one.
Both withARefusal() {
  return {"6.0",
          kRootOnly + std::string("zor-slapdErrorLog: x\nzor-slapdPort: 1\n") + kOtherEntry + "zor-a: 1\nzor-b: 2\n",
          kRootOnly + kOtherEntry + "zor-a: 9\n",
          {},
          [](const cfgstore::Write& write) { return write.attribute == "zor-slapdPort" ? 80 : 0; }};
}

bool isOfTheOther(const cfgstore::Snapshot& snapshot, std::size_t value) {
  return snapshot.entryOf(snapshot.attributeOf(snapshot.values()[value])).normal == "CN=OTHER,CN=CONFIGURATION";
}

// Where nothing was refused, everything counts.
TEST(LedgerAgreement, TellsEveryRowThatDiffersInEntriesThatTookAllWrites) {
  Both both = withARefusal();
  ASSERT_THAT(tool::compareWithLedger(both.audit, both.ledger), IsEmpty());
  std::size_t compared = 0;
  for (std::size_t i = 0; i < both.ledger.oldValues.size(); ++i) {
    if (!isOfTheOther(both.ledger.old, i)) continue;
    tool::OldValueRow& row = both.ledger.oldValues[i];
    const tool::OldValueRow kept = row;
    for (std::size_t fate = 0; fate < tool::kValueFates; ++fate) {
      row.fate = static_cast<tool::ValueFate>(fate);
      EXPECT_THAT(tool::compareWithLedger(both.audit, both.ledger), SizeIs(row.fate == kept.fate ? 0 : 1)) << fate;
    }
    row = kept;
    ++compared;
  }
  for (std::size_t i = 0; i < both.ledger.resultValues.size(); ++i) {
    if (!isOfTheOther(both.ledger.result, i)) continue;
    tool::ResultValueRow& row = both.ledger.resultValues[i];
    const tool::ResultValueRow kept = row;
    row.origin = kept.origin == tool::ValueOrigin::moved ? tool::ValueOrigin::carried : tool::ValueOrigin::moved;
    EXPECT_THAT(tool::compareWithLedger(both.audit, both.ledger), SizeIs(1));
    row = kept;
    ++row.from;
    EXPECT_THAT(tool::compareWithLedger(both.audit, both.ledger), SizeIs(1));
    row = kept;
    ++compared;
  }
  EXPECT_EQ(compared, 8U);
}

// Where a write was refused, a loss that the audit does not see is told all the same.
TEST(LedgerAgreement, TellsALossThatOnlyTheLedgerKnowsAlsoInAnEntryWithARefusedWrite) {
  Both both = withARefusal();
  const auto values = both.ledger.old.values();
  std::size_t compared = 0;
  for (std::size_t i = 0; i < values.size(); ++i) {
    if (isOfTheOther(both.ledger.old, i)) continue;
    tool::OldValueRow& theirs = both.ledger.oldValues[i];
    tool::AuditedOldValue& ours = both.audit.oldValues[i];
    const auto before = std::pair(theirs, ours);
    theirs.fate = tool::ValueFate::lost;
    theirs.place = tool::kNoValue;
    ours.place = tool::kNoValue;
    for (const tool::ValueFate fate : {tool::ValueFate::same, tool::ValueFate::carried, tool::ValueFate::keptNew}) {
      ours.fate = fate;
      EXPECT_THAT(tool::compareWithLedger(both.audit, both.ledger), SizeIs(1));
    }
    std::tie(theirs, ours) = before;
    ++compared;
  }
  EXPECT_EQ(compared, 4U);
}

// The comparison has to see what is different.
TEST(LedgerAgreement, TellsEveryRowThatDiffers) {
  const std::string old = "dn: cn=Configuration\nobjectClass: top\ncn: a\nzor-a: 1\nzor-b: 2\n";
  const std::string before = "dn: cn=Configuration\nobjectClass: top\ncn: a\nzor-a: 9\n";
  Both both("6.0", old, before);
  ASSERT_THAT(tool::compareWithLedger(both.audit, both.ledger), IsEmpty());
  for (tool::OldValueRow& row : both.ledger.oldValues) {
    const tool::OldValueRow kept = row;
    row.fate = kept.fate == tool::ValueFate::lost ? tool::ValueFate::dropped : tool::ValueFate::lost;
    EXPECT_THAT(tool::compareWithLedger(both.audit, both.ledger), SizeIs(1));
    row = kept;
    row.place = kept.place == 0 ? 1 : 0;
    EXPECT_THAT(tool::compareWithLedger(both.audit, both.ledger), SizeIs(1));
    row = kept;
  }
  for (tool::ResultValueRow& row : both.ledger.resultValues) {
    const tool::ResultValueRow kept = row;
    row.origin = kept.origin == tool::ValueOrigin::moved ? tool::ValueOrigin::carried : tool::ValueOrigin::moved;
    EXPECT_THAT(tool::compareWithLedger(both.audit, both.ledger), SizeIs(1));
    row = kept;
    ++row.from;
    EXPECT_THAT(tool::compareWithLedger(both.audit, both.ledger), SizeIs(1));
    row = kept;
  }
  ASSERT_THAT(both.ledger.replaced, SizeIs(1));
  both.ledger.replaced[0].by = 0;
  EXPECT_THAT(tool::compareWithLedger(both.audit, both.ledger), SizeIs(1));
  both.ledger.replaced[0].before = 0;
  EXPECT_THAT(tool::compareWithLedger(both.audit, both.ledger), SizeIs(2));
  both.ledger.replaced.clear();
  EXPECT_THAT(tool::compareWithLedger(both.audit, both.ledger), SizeIs(1));
}

TEST(LedgerAgreement, TellsAnotherVersionAndAnotherNumberOfValues) {
  const std::string old = kRootOnly + std::string("zor-a: 1\n");
  Both both("6.0", old, kRootOnly);
  const auto lines = [&] { return tool::compareWithLedger(both.audit, both.ledger); };
  ASSERT_THAT(lines(), IsEmpty());
  both.ledger.sourceVersion = "5.1";
  EXPECT_THAT(lines(), ElementsAre("the source version is 6.0 in the audit and 5.1 in the ledger"));
  both.ledger.sourceVersion = "6.0";
  both.audit.oldValues.pop_back();
  EXPECT_THAT(lines(), ElementsAre("old values: 2 in the audit and 3 in the ledger"));
  both.audit.oldValues.clear();
  both.ledger.oldValues.clear();
  both.audit.resultValues.clear();
  EXPECT_THAT(lines(), ElementsAre("values of the result: 0 in the audit and 3 in the ledger"));
}

TEST(LedgerAgreement, TellsAReplacementThatOnlyTheLedgerKnows) {
  Both both("6.0", kRootOnly + std::string("zor-a: 1\n"), kRootOnly + std::string("zor-a: 9\n"));
  ASSERT_THAT(both.audit.replaced, SizeIs(1));
  both.audit.replaced.clear();
  EXPECT_THAT(tool::compareWithLedger(both.audit, both.ledger),
              ElementsAre(HasSubstr("only the ledger says that it was replaced")));
}

TEST(LedgerAgreement, TakesAnyValueOfTheSettingForTheOneThatStands) {
  Both both("6.0", kRootOnly + std::string("zor-a: 1\n"), kRootOnly + std::string("zor-a: 8\nzor-b: 9\n"));
  tool::AuditedOldValue& ours = both.audit.oldValues[2];
  tool::OldValueRow& theirs = both.ledger.oldValues[2];
  ours.fate = theirs.fate = tool::ValueFate::keptNew;
  const auto disagreements = [&](tool::ValueId our, tool::ValueId their) {
    ours.place = our;
    theirs.place = their;
    return tool::compareWithLedger(both.audit, both.ledger).size();
  };
  EXPECT_EQ(disagreements(2, tool::kNoValue), 0U) << "the ledger need not name it";
  EXPECT_EQ(disagreements(2, 2), 0U);
  EXPECT_EQ(disagreements(0, 1), 1U) << "the values of two settings";
  EXPECT_EQ(disagreements(tool::kNoValue, 2), 1U);
}

}  // namespace
