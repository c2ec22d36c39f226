// The library over the embedded store, on the examples: what it leaves is what was worked out by hand.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>
#include <string>

#include "ConfigFile.h"
#include "ConfigStore.h"
#include "ExampleFiles.h"
#include "TraceControl.h"

using namespace examples;
using cfgstore::ConfigStore;
using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::UnorderedElementsAre;

namespace {

// Compares texts and, if they differ, shows the first line that does.
void expectSameText(const std::string& actual, const std::string& expected) {
  if (actual == expected) return;
  const std::vector<std::string> is = linesOf(actual);
  const std::vector<std::string> should = linesOf(expected);
  std::size_t at = 0;
  while (at < is.size() && at < should.size() && is[at] == should[at]) ++at;
  const auto line = [at](const std::vector<std::string>& lines) {
    return at < lines.size() ? lines[at] : std::string("(end of file)");
  };
  ADD_FAILURE() << "line " << at + 1 << "\n      is: " << line(is) << "\n  should: " << line(should);
}

class LibraryOnExample : public testing::TestWithParam<Merge> {
 protected:
  LibraryOnExample() {
    const auto failedWrites = [this](const cfgstore::Write& write) {
      if (write.rc == 0) return;
      failures.push_back(std::string(write.dn) + ": " + std::string(write.attribute) + " " + std::to_string(write.rc));
    };
    ConfigStore::of(*old.getCfgUtils()).observe(failedWrites);
    ConfigStore::of(*fresh.getCfgUtils()).observe(failedWrites);
    ldtr::sendTo([this](const ldtr::Record& record) {
      if (record.message.find("passed a null pointer") != std::string_view::npos) return;  // says nothing is wrong
      messages.emplace_back(record.message);
    });
    ldtr::setEvents(ldtr::kDebug);
  }
  ~LibraryOnExample() override {
    ldtr::setEvents(0);
    ldtr::discard();
  }

  const Merge merge = GetParam();
  const std::string version = merge.version;
  const TemporaryFolder files;
  const std::filesystem::path oldFile = files.add(folder(version) / merge.oldFile);
  const std::filesystem::path newFile = files.add(folder(version) / "new.ldif");
  ConfigFile old{oldFile.string(), nullptr};
  ConfigFile fresh{newFile.string(), nullptr};
  std::vector<std::string> failures;
  std::vector<std::string> messages;
};

TEST_P(LibraryOnExample, LeavesTheMergedConfigurationByteForByte) {
  ASSERT_EQ(old.getDns(), 0);
  ASSERT_EQ(fresh.getDns(), 0);
  ASSERT_EQ(fresh.mergeConfigFiles(&old, version.c_str()), 1);
  expectSameText(ConfigStore::of(*fresh.getCfgUtils()).text(), contentOf(folder(version) / merge.mergedFile));
}

TEST_P(LibraryOnExample, MergesWithoutAnyFailure) {
  ASSERT_EQ(old.getDns(), 0);
  ASSERT_EQ(fresh.getDns(), 0);
  ASSERT_EQ(fresh.mergeConfigFiles(&old, version.c_str()), 1);
  EXPECT_THAT(failures, IsEmpty());
  EXPECT_THAT(messages, IsEmpty());
}

TEST_P(LibraryOnExample, WritesNoFile) {
  ASSERT_EQ(old.getDns(), 0);
  ASSERT_EQ(fresh.getDns(), 0);
  ASSERT_EQ(fresh.mergeConfigFiles(&old, version.c_str()), 1);
  EXPECT_EQ(contentOf(oldFile), contentOf(folder(version) / merge.oldFile));
  EXPECT_EQ(contentOf(newFile), contentOf(folder(version) / "new.ldif"));
  EXPECT_THAT(files.names(), UnorderedElementsAre("new.ldif", merge.oldFile));
}

TEST_P(LibraryOnExample, ReadsWhatWasSavedBackUnchanged) {
  ASSERT_EQ(old.getDns(), 0);
  ASSERT_EQ(fresh.getDns(), 0);
  ASSERT_EQ(fresh.mergeConfigFiles(&old, version.c_str()), 1);
  const std::filesystem::path saved = files.path() / "saved.ldif";
  ASSERT_TRUE(ConfigStore::of(*fresh.getCfgUtils()).save(saved.string(), cfgstore::Backup::none).written);
  expectSameText(contentOf(saved), contentOf(folder(version) / merge.mergedFile));
  expectSameText(ConfigStore(saved.string()).text(), contentOf(folder(version) / merge.mergedFile));
}

// Once everything has arrived, there is nothing left to carry. An entry that was built anew is the exception: the
// second time it is one that both have, so the settings that its old form was not asked for are carried to it after
// all.
TEST_P(LibraryOnExample, ChangesNothingElseWhenItMergesASecondTime) {
  const std::filesystem::path result = files.add(folder(version) / merge.mergedFile);
  ConfigFile merged(result.string(), nullptr);
  std::set<std::string> changed;
  ConfigStore::of(*merged.getCfgUtils()).observe([&](const cfgstore::Write& write) {
    if (write.changed) changed.emplace(write.dn);
  });
  ASSERT_EQ(old.getDns(), 0);
  ASSERT_EQ(merged.getDns(), 0);
  ASSERT_EQ(merged.mergeConfigFiles(&old, version.c_str()), 1);
  EXPECT_EQ(ConfigStore::of(*merged.getCfgUtils()).changed(), merge.builtAnew != nullptr);
  EXPECT_EQ(changed, merge.builtAnew != nullptr ? std::set<std::string>{merge.builtAnew} : std::set<std::string>());
  EXPECT_THAT(messages, IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Examples, LibraryOnExample, testing::ValuesIn(kMerges),
                         [](const auto& one) { return nameOf(one.param); });

// What the rules left behind in the old configuration's store; the account of these values is in the README beside it.
TEST(LibraryOnExample60, TakesOutOfTheOldConfigurationWhatMustNotBeCarried) {
  const TemporaryFolder files;
  ConfigFile old(files.add(folder("6.0") / "old.ldif").string(), nullptr);
  ConfigFile fresh(files.add(folder("6.0") / "new.ldif").string(), nullptr);
  ASSERT_EQ(old.getDns(), 0);
  ASSERT_EQ(fresh.getDns(), 0);
  ASSERT_EQ(fresh.mergeConfigFiles(&old, "6.0"), 1);
  const std::string left = ConfigStore::of(*old.getCfgUtils()).text();
  for (const char* gone :
       {"zor-slapdSupportedWebAdmVersion", "zor-slapdErrorLog", "zor-slapdTraceMessageLog",
        "zor-slapdSortSrchAllowNonAdmin", "zor-slapdPagedResAllowNonAdmin", "ZOR-SLAPDPORT", "zor-slapdPort",
        "zor-slapdSecurePort", "zor-slapdSysLogLevel", "zor-slapdMaxPendingChangesDisplayed", "zor-slapdPwEncryption",
        "zor-slapdBulkloadErrors", "zor-slapdCLIErrors", "nonblocking", "V3.modifiedschema", "V3.user.at",
        "V3.matchingrules", "zor-slapdLog:"}) {
    EXPECT_THAT(left, Not(HasSubstr(gone)));
  }
  // Of the admin audit entry nothing is taken out: its settings simply are not carried.
  EXPECT_THAT(left, AllOf(HasSubstr("adminaudit.log"), HasSubstr("acme.person.at"), HasSubstr("acme.additions")));
}

}  // namespace
