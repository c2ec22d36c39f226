// A save in two steps: what there is between them, and what becomes of it.

#include "SaveAhead.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>

#include "TestStore.h"

namespace cfgstore {
namespace {

using test::readFile;
using test::TemporaryDirectory;
using test::TestStore;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;

constexpr char kText[] = "dn: cn=A\ncn: A\n";
constexpr char kEdited[] = "dn: cn=A\ncn: A\nzor-b: 1\n";

class SavedAhead : public testing::Test {
 protected:
  SavedAhead() { EXPECT_EQ(m_store.addValue("cn=A", "zor-b", "1"), 0); }

  std::string refusalAtTheEnd(SaveAhead& save) const {
    try {
      save.finish(Backup::keep);
      return "saved";
    } catch (const SaveRefused& error) {
      return error.what();
    }
  }

  TestStore m_store{kText};
  const std::string m_path = m_store.path();
  const TemporaryDirectory& m_directory = m_store.directory();
  const std::string m_name = m_path.substr(m_path.rfind('/') + 1);
};

TEST_F(SavedAhead, LeavesTheTargetAsItIsUntilTheEnd) {
  SaveAhead save(m_store.store(), m_path);
  EXPECT_EQ(readFile(m_path), kText);
  EXPECT_EQ(readFile(m_directory.file("." + m_name + ".cfgmig-new")), kEdited) << "whole, and beside it";
  const SaveResult result = save.finish(Backup::keep);
  EXPECT_TRUE(result.written);
  EXPECT_EQ(readFile(m_path), kEdited);
  EXPECT_EQ(readFile(result.backupPath), kText);
  EXPECT_EQ(m_directory.names().size(), 2U);
}

TEST_F(SavedAhead, GoesWithoutATraceWhenItIsNotWanted) {
  { const SaveAhead save(m_store.store(), m_path); }
  EXPECT_EQ(readFile(m_path), kText);
  EXPECT_THAT(m_directory.names(), ElementsAre(m_name));
  EXPECT_TRUE(m_store.store().save(m_path, Backup::none).written) << "and is in nobody's way";
  EXPECT_EQ(readFile(m_path), kEdited);
}

TEST_F(SavedAhead, MakesAFileThatIsNotThere) {
  const std::string target = m_directory.file("result");
  SaveAhead save(m_store.store(), target);
  EXPECT_THAT(m_directory.names(), ElementsAre(".result.cfgmig-new", m_name));
  EXPECT_TRUE(save.finish(Backup::keep).written);
  EXPECT_THAT(m_directory.names(), ElementsAre(m_name, "result"));
  EXPECT_EQ(readFile(target), kEdited);
}

TEST_F(SavedAhead, DoesNotReplaceAFileThatAppearsMeanwhile) {
  const std::string target = m_directory.file("result");
  SaveAhead save(m_store.store(), target);
  m_directory.write("result", "another's\n");
  EXPECT_THROW(save.finish(Backup::keep), SaveError);
  EXPECT_EQ(readFile(target), "another's\n");
}

TEST_F(SavedAhead, NoticesAChangeOfTheTargetMeanwhile) {
  SaveAhead save(m_store.store(), m_path);
  test::writeFile(m_path, "another's\n");
  EXPECT_THAT(refusalAtTheEnd(save), HasSubstr("is being changed by another program"));
  EXPECT_EQ(readFile(m_path), "another's\n");
}

TEST_F(SavedAhead, NoticesThatTheTargetIsGone) {
  SaveAhead save(m_store.store(), m_path);
  std::filesystem::remove(m_path);
  EXPECT_EQ(refusalAtTheEnd(save), m_path + ": was removed by another program");
  EXPECT_FALSE(std::filesystem::exists(m_path));
}

TEST_F(SavedAhead, TellsWhatAnInterruptedRunHadReplacedBeforeItEnds) {
  test::writeFile(m_directory.file("." + m_name + ".cfgmig-old"), "older\n");
  const SaveAhead save(m_store.store(), m_path);
  EXPECT_EQ(readFile(save.recoveredPath()), "older\n");
}

TEST_F(SavedAhead, LetsNoSecondOneIn) {
  TestStore second("dn: cn=B\ncn: B\n");
  auto save = std::make_unique<SaveAhead>(m_store.store(), m_path);
  EXPECT_THROW(second.store().save(m_path, Backup::none), SaveRefused);
  EXPECT_TRUE(save->finish(Backup::none).written);
  EXPECT_TRUE(second.store().save(m_path, Backup::none).written) << "nothing is locked any more";
}

TEST_F(SavedAhead, DoesNothingForATargetThatHoldsTheContent) {
  test::writeFile(m_directory.file("same"), kEdited);
  SaveAhead save(m_store.store(), m_directory.file("same"));
  EXPECT_THAT(m_directory.names(), testing::Not(testing::Contains(EndsWith("cfgmig-new"))));
  EXPECT_FALSE(save.finish(Backup::keep).written);
}

TEST_F(SavedAhead, IsRefusedAtOnceLikeAnySave) {
  EXPECT_THROW(SaveAhead(m_store.store(), m_directory.path()), SaveError);
  EXPECT_THROW(SaveAhead(m_store.store(), m_directory.file("none/result")), SaveError);
}

TEST_F(SavedAhead, KnowsWhatItHasSavedTheNextTime) {
  SaveAhead(m_store.store(), m_path).finish(Backup::none);
  EXPECT_EQ(m_store.addValue("cn=A", "zor-b", "2"), 0);
  EXPECT_TRUE(m_store.store().save(m_path, Backup::none).written) << "it is the file that was written last";
}

}  // namespace
}  // namespace cfgstore
