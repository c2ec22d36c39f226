// LedgerAgreementTest.cpp -- the audit and the ledger, which know nothing of each other, say the same of every value.

#include <gmock/gmock.h>
#include <rapidcheck/gtest.h>

#include <filesystem>
#include <functional>

#include "Audited.h"
#include "ConfigFile.h"
#include "RandomConfiguration.h"
#include "SchemaCopies.h"
#include "TracedMethod.h"
#include "ledger/LedgerBuilder.h"

namespace {

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
    ledger = builder.finish();
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

}  // namespace
