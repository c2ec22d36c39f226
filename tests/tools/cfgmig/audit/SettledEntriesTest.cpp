// What both configurations hold alike is set aside before a merge. Nobody can tell from what comes out of it.

#include "SettledEntries.h"

#include <gmock/gmock.h>
#include <rapidcheck/gtest.h>

#include <memory>
#include <optional>
#include <sstream>

#include "Audited.h"
#include "ConfigFile.h"
#include "Configuration.h"
#include "EqualEntries.h"
#include "RandomConfiguration.h"
#include "audit/Rules.h"
#include "finding/Finding.h"
#include "ledger/LedgerBuilder.h"
#include "migration/SelfCheck.h"
#include "report/Report.h"

namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using tool::storeOf;

// A merge, with or without setting aside what is settled.
struct Merge {
  Merge(const std::string& version, const std::string& oldText, const std::string& newText, bool setsAside)
      : old(workspace.write("old.ldif", oldText), nullptr), now(workspace.write("new.ldif", newText), nullptr) {
    if (setsAside) tool::setSettledEntriesAside(storeOf(old), storeOf(now));
    if (old.getDns() != 0 || now.getDns() != 0) throw std::runtime_error("getDns failed");
    ledger = tool::migrate(old, now, version);
  }

  std::string result() { return storeOf(now).text(); }

  std::string report(tool::Format format, bool showSecrets) const {
    tool::Report report(ledger, showSecrets);
    report.findings = tool::findAll(ledger, {});
    report.time = "2026-11-21T09:14:00Z";
    std::ostringstream out;
    writeReport(report, format, out);
    return out.str();
  }

  Workspace workspace;
  ConfigFile old;
  ConfigFile now;
  tool::Ledger ledger;
};

// Entries with random settings that both configurations have below DNs that no rule names, some of them changed.
struct Shared {
  std::string ofOld;
  std::string ofNew;
};

Shared sharedEntries() {
  Shared shared;
  int number = 0;
  std::istringstream lines(*randomConfiguration());
  bool isChanged = false;
  for (std::string line; std::getline(lines, line);) {
    if (line.starts_with("dn:")) {
      const std::string own = std::to_string(number++);
      shared.ofOld += "dn: cn=Plain " + own + ", cn=Configuration\n";
      shared.ofNew += *rc::gen::arbitrary<bool>() ? "dn: CN=PLAIN " + own + ",CN=CONFIGURATION\n"
                                                  : "dn: cn=Plain " + own + ", cn=Configuration\n";
      isChanged = *rc::gen::inRange(0, 4) == 0;
      continue;
    }
    shared.ofOld += line + "\n";
    shared.ofNew += (isChanged && !line.empty() ? "zor-note: changed\n" + line : line) + "\n";
  }
  return shared;
}

RC_GTEST_PROP(SettledEntries, ChangeNothingThatComesOutOfAMerge, ()) {
  const std::string version = *rc::gen::element<std::string>("4.1", "5.1", "5.2", "6.0");
  const Shared shared = sharedEntries();
  const std::string old = *randomConfiguration() + shared.ofOld;
  const std::string before = *randomConfiguration() + shared.ofNew;
  RC_LOG() << "version " << version << "\n--- old\n" << old << "--- before\n" << before;
  Merge whole(version, old, before, false);
  Merge merge(version, old, before, true);
  RC_ASSERT(merge.result() == whole.result());
  RC_ASSERT(merge.ledger.fates == whole.ledger.fates);
  RC_ASSERT(merge.ledger.origins == whole.ledger.origins);
  RC_ASSERT(merge.ledger.oldValueCount() == whole.ledger.oldValueCount());
  RC_ASSERT(tool::sumErrors(merge.ledger).empty());
  for (const tool::Format format : {tool::Format::text, tool::Format::ldif, tool::Format::html}) {
    RC_ASSERT(merge.report(format, true) == whole.report(format, true));
    RC_ASSERT(merge.report(format, false) == whole.report(format, false));
  }

  // The audit of the result, in which the same is set aside, agrees as well.
  Workspace workspace;
  ConfigFile result(workspace.write("result.ldif", merge.result()), nullptr);
  RC_ASSERT(cfgstore::setAsideLike(storeOf(merge.now), storeOf(result)).empty());
  const cfgstore::Snapshot content(storeOf(result));
  const tool::Audit audit = tool::audit(merge.ledger.old, merge.ledger.before, content, version);
  RC_ASSERT(tool::compareWithLedger(audit, merge.ledger).empty());
  RC_ASSERT(audit.discrepancies.empty());
  RC_ASSERT(audit.fates == merge.ledger.fates);
  RC_ASSERT(audit.origins == merge.ledger.origins);
}

constexpr const char* kRoot = "dn: cn=Configuration\nobjectClass: top\ncn: Configuration\nzor-slapdVersion: 6.0\n\n";

std::size_t setAside(const std::string& entry) {
  Workspace workspace;
  ConfigFile old(workspace.write("old.ldif", kRoot + entry), nullptr);
  ConfigFile now(workspace.write("new.ldif", kRoot + entry), nullptr);
  tool::setSettledEntriesAside(storeOf(old), storeOf(now));
  return cfgstore::Snapshot(storeOf(now)).valuesSetAside();
}

TEST(SettledEntries, AreNotWrittenToByAMerge) {
  // A rule of 6.0 sets this entry's options, so that it must not be set aside; here it is all the same.
  const std::string level = "dn: cn=Configuration\nobjectClass: top\ncn: Configuration\nzor-slapdSysLogLevel: h\n\n";
  const std::string log = "dn: cn=zorslapd, cn=Log Management, cn=Configuration\nobjectClass: top\ncn: zorslapd\n";
  Workspace workspace;
  ConfigFile old(workspace.write("old.ldif", level + log), nullptr);
  ConfigFile now(workspace.write("new.ldif", kRoot + log), nullptr);
  cfgstore::setAsideEqualEntries(storeOf(old), storeOf(now), [](auto, auto) { return true; });
  ASSERT_GT(cfgstore::Snapshot(storeOf(now)).valuesSetAside(), 0U);
  ASSERT_EQ(old.getDns() + now.getDns(), 0);
  EXPECT_THROW(tool::migrate(old, now, "6.0"), std::logic_error);
}

TEST(SettledEntries, AreLookedForInTheResultToTheByte) {
  const std::string plain = "dn: cn=A, cn=Configuration\nobjectClass: top\ncn: A\nzor-note: x\n";
  Merge merge("6.0", kRoot + plain, kRoot + plain, true);
  ASSERT_EQ(merge.ledger.old.valuesSetAside(), 3U);
  const std::string same = merge.workspace.write("same.ldif", merge.result());
  EXPECT_THAT(tool::selfCheck(merge.ledger, storeOf(merge.now), same, ""), IsEmpty());
  std::string text = merge.result();
  const std::string changed =
      merge.workspace.write("changed.ldif", text.replace(text.find("zor-note: x"), 11, "zor-note:  x"));
  EXPECT_THAT(tool::selfCheck(merge.ledger, storeOf(merge.now), changed, ""),
              testing::ElementsAre(HasSubstr("CN=A,CN=CONFIGURATION: there is something else than before")));
}

// What apply does, up to the check of what it has written.
struct Applied {
  Applied(const std::string& oldText, const std::string& newText)
      : old(workspace.write("old.ldif", oldText), nullptr), now(workspace.write("new.ldif", newText), nullptr) {
    tool::setSettledEntriesAside(storeOf(old), storeOf(now));
    if (old.getDns() != 0 || now.getDns() != 0) throw std::runtime_error("getDns failed");
    tool::LedgerBuilder builder(old, now, "6.0");
    check.emplace(builder.begun(), storeOf(now), "");
    builder.merge();
    check->begin();
    ledger = builder.finish();
  }

  std::vector<std::string> faultsOf(const std::string& text) {
    check->compare();
    return check->faultsOf(workspace.write("result.ldif", text));
  }
  std::string result() { return storeOf(now).text(); }

  Workspace workspace;
  ConfigFile old;
  ConfigFile now;
  std::shared_ptr<tool::Ledger> ledger;
  std::optional<tool::EarlySelfCheck> check;
};

constexpr const char* kSettled = "dn: cn=A, cn=Configuration\nobjectClass: top\ncn: A\nzor-note: x\n";
constexpr const char* kBrought = "\ndn: cn=B, cn=Configuration\nobjectClass: top\ncn: B\nzor-note: y\n";

TEST(EarlySelfCheck, FindsNothingWrongWithWhatItIsToldOf) {
  Applied applied(std::string(kRoot) + kSettled + kBrought, std::string(kRoot) + kSettled);
  ASSERT_EQ(applied.ledger->old.valuesSetAside(), 3U);
  EXPECT_THAT(applied.faultsOf(applied.result()), IsEmpty());
}

TEST(EarlySelfCheck, ReadsAFileThatHoldsSomethingElse) {
  for (const char* lost : {"zor-note: x\n", "zor-note: y\n", "objectClass: TOP\n"}) {
    Applied applied(std::string(kRoot) + kSettled + kBrought, std::string(kRoot) + kSettled);
    std::string text = applied.result();
    text.erase(text.find(lost), std::string(lost).size());
    EXPECT_THAT(applied.faultsOf(text), Not(IsEmpty())) << lost;
  }
}

TEST(EarlySelfCheck, ComparesWithTheLedger) {
  Applied applied(std::string(kRoot) + kSettled + kBrought, std::string(kRoot) + kSettled);
  for (tool::OldValueRow& row : applied.ledger->oldValues) row.fate = tool::ValueFate::lost;
  EXPECT_THAT(applied.faultsOf(applied.result()), Not(IsEmpty()));
}

TEST(EarlySelfCheck, AuditsWhatWasMerged) {
  Applied applied(std::string(kRoot) + kSettled + kBrought, std::string(kRoot) + kSettled);
  ASSERT_EQ(applied.now.getCfgUtils()->addValue("cn=B,cn=Configuration", "zor-note", "from nowhere"), 0);
  applied.check->begin();
  EXPECT_THAT(applied.faultsOf(applied.result()), Not(IsEmpty()));
}

TEST(EarlySelfCheck, NeedsNoLineEndAtTheEndOfTheFile) {
  std::string settled = std::string(kRoot) + kSettled;
  settled.pop_back();
  Applied applied(std::string(kRoot) + "dn: cn=B, cn=Configuration\nobjectClass: top\ncn: B\n\n" + kSettled, settled);
  const std::string result = applied.result();
  ASSERT_THAT(result, HasSubstr("zor-note: x\n\ndn: CN=B"));
  EXPECT_THAT(applied.faultsOf(result), IsEmpty());
}

TEST(SettledEntries, AreSetAsideWithAllTheirValues) {
  EXPECT_EQ(setAside("dn: cn=A, cn=Configuration\nobjectClass: top\ncn: A\nzor-slapdPlugin: x\nzor-slapdPlugin: x\n"),
            4U);
}

TEST(SettledEntries, AreNoneThatARuleNames) {
  for (const std::string_view dn : tool::auditing::entriesOfRules()) {
    if (dn == "CN=CONFIGURATION") continue;
    EXPECT_EQ(setAside("dn: " + std::string(dn) + "\nobjectClass: top\ncn: A\n"), 0U) << dn;
  }
  EXPECT_EQ(setAside("dn: cn=zor  halvorn , cn=Schemas, cn=Configuration\nobjectClass: top\ncn: A\n"), 0U);
}

TEST(SettledEntries, AreNoneOutsideTheConfiguration) { EXPECT_EQ(setAside("dn: cn=A\nobjectClass: top\ncn: A\n"), 0U); }

TEST(SettledEntries, AreNoneWithSettingsThatFindingsLookAt) {
  const std::string entry = "dn: cn=A, cn=Configuration\nobjectClass: top\n";
  for (const char* line :
       {"zor-slapdIncludeSchema: /etc/a.at", "ZOR-SLAPDSCHEMAADDITIONS: /etc/a.at", "zor-slapdMigrationInfo: 4.1 PEER",
        "objectclass: zor-slapdPendingMigration", "zor-slapdErrorLog: /opt/zor/log/x", "zor-slapdTraceMessageLog: x",
        "zor-slapdLog: x", "zor-auditLog: x", "zor-slapdBulkloadErrors: x", "zor-slapdCLIErrors: x"}) {
    EXPECT_EQ(setAside(entry + line + "\n"), 0U) << line;
  }
  EXPECT_EQ(setAside(entry + "zor-slapdErrorLogs: x\n"), 2U);
}

TEST(SettledEntries, KeepTheirSecretsOutOfWhatIsSaidOfOthers) {
  const std::string plain = "dn: cn=A, cn=Configuration\nobjectClass: top\ncn: A\nzor-slapdAdminPW: Pl4nted-S3cret\n\n";
  const std::string other = "dn: cn=B, cn=Configuration\nobjectClass: top\ncn: B\nzor-note: ";
  const Merge merge("6.0", kRoot + plain + other + "see Pl4nted-S3cret\n", kRoot + plain + other + "x\n", true);
  EXPECT_EQ(merge.ledger.old.valuesSetAside(), 3U);
  EXPECT_THAT(merge.report(tool::Format::text, false), Not(HasSubstr("Pl4nted")));
  EXPECT_THAT(merge.report(tool::Format::text, true), HasSubstr("see Pl4nted-S3cret"));
}

TEST(SettledEntries, TellWhichPathsAreAnybodys) {
  const std::string log =
      "dn: cn=Log, cn=Configuration\nobjectClass: top\ncn: Log\nzor-slapdErrorLog: /opt/acme/log/e\n\n";
  const std::string shared = "dn: cn=A, cn=Configuration\nobjectClass: top\ncn: A\nzor-note: /opt/acme/x\n\n";
  const std::string carried = "dn: cn=B, cn=Configuration\nobjectClass: top\ncn: B\nzor-note: /opt/acme/y\n";
  for (const bool setsAside : {false, true}) {
    const Merge with("6.0", kRoot + log + shared + carried, kRoot + shared, setsAside);
    EXPECT_THAT(with.report(tool::Format::text, true), Not(HasSubstr("old installation"))) << setsAside;
    const Merge without("6.0", kRoot + log + carried, std::string(kRoot), setsAside);
    EXPECT_THAT(without.report(tool::Format::text, true), HasSubstr("old installation")) << setsAside;
  }
}

TEST(SettledEntries, AreShownLikeTheOthersWhenTheyHaveALineTwice) {
  const std::string plain =
      "dn: cn=A, cn=Configuration\nobjectClass: top\ncn: A\nzor-note: x\nzor-note: y\nzor-note: y\nzor-note: x\n";
  const Merge whole("6.0", kRoot + plain, kRoot + plain, false);
  const Merge merge("6.0", kRoot + plain, kRoot + plain, true);
  ASSERT_EQ(merge.ledger.old.valuesSetAside(), 6U);
  for (const tool::Format format : {tool::Format::text, tool::Format::ldif, tool::Format::html}) {
    EXPECT_EQ(merge.report(format, true), whole.report(format, true));
  }
}

TEST(SettledEntries, AreOfOneNumberInTheThreeConfigurations) {
  const std::string plain = "dn: cn=A, cn=Configuration\nobjectClass: top\ncn: A\n";
  Merge merge("6.0", kRoot + plain, kRoot + plain, true);
  ASSERT_THAT(tool::sumErrors(merge.ledger), IsEmpty());
  ConfigFile other(merge.workspace.path("new.ldif").c_str(), nullptr);
  merge.ledger.before = cfgstore::Snapshot(storeOf(other));
  EXPECT_THAT(tool::sumErrors(merge.ledger),
              testing::Contains(HasSubstr("different numbers of values that were set aside")));
}

TEST(SelfCheck, NamesWhatIsInTheResultAndNoRuleBringsThere) {
  Merge merge("6.0", kRoot, kRoot, false);
  const auto check = [&](const std::string& text) {
    return tool::selfCheck(merge.ledger, storeOf(merge.now), merge.workspace.write("result.ldif", text), "");
  };
  const std::string text = merge.result();
  EXPECT_THAT(check(text), IsEmpty());
  std::string more = text;
  more.insert(more.find("cn: Configuration"), "zor-b: Pl4nted\n");
  EXPECT_THAT(check(more), testing::Contains("in CN=CONFIGURATION, zor-b: a value is there that neither configuration "
                                             "explains"));
  EXPECT_THAT(check(more), testing::Each(Not(HasSubstr("Pl4nted"))));
  EXPECT_THAT(check(text + "\ndn: cn=B, cn=Configuration\ncn: B\n"),
              testing::Contains("in CN=B,CN=CONFIGURATION: an entry is there that neither configuration explains"));
}

}  // namespace
