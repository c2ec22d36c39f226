// Tests of how the records of a clean-up operation are judged, and of the operations on a store.

#include "CleanUp.h"

#include <gmock/gmock.h>

#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "Workspace.h"

namespace {

using namespace tool;
using cfgstore::Operation;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using Kind = CleanUpStep::Kind;

const CleanUpOperation& operation(std::string_view option) {
  for (const CleanUpOperation& each : cleanUpOperations()) {
    if (each.option == option) return each;
  }
  throw std::logic_error("no such operation");
}

RecordedWrite removal(const char* attribute, int rc = 0, bool changed = true) {
  return {Operation::delValue, "CN=X", attribute, 1, rc, rc == 0 && changed};
}
RecordedWrite addition(const char* attribute, int rc = 0, bool changed = true) {
  return {Operation::addValue, "CN=X", attribute, 1, rc, rc == 0 && changed};
}

TEST(CleanUpJudgement, NothingWrittenIsNothingToDoWhicheverCodeSaysIt) {
  for (const int result : {0, 16, 32}) {
    const CleanUpResult judged = judge(operation("--database"), {}, result);
    EXPECT_THAT(judged.steps, IsEmpty()) << result;
    EXPECT_EQ(judged.failure, "") << result;
  }
}

TEST(CleanUpJudgement, AnyOtherCodeOfAReadIsAFailure) {
  for (const int result : {1, 51, 53, 80, 90}) {
    const CleanUpResult judged = judge(operation("--instance"), {}, result);
    EXPECT_THAT(judged.failure,
                HasSubstr("removeDBInstInfo: a setting cannot be read: code " + std::to_string(result)));
  }
}

TEST(CleanUpJudgement, AnAbsentValueIsNoStep) {
  EXPECT_THAT(judge(operation("--database"), {removal("zor-slapdDbName", 0, false)}, 0).steps, IsEmpty());
}

TEST(CleanUpJudgement, ARefusedRemovalIsAFailureWhateverItsCode) {
  for (const int rc : {1, 16, 32, 53}) {
    const CleanUpResult judged = judge(operation("--database"), {removal("zor-slapdDbName", rc)}, rc);
    EXPECT_THAT(judged.failure,
                HasSubstr("removeDBInfo: delValue of zor-slapdDbName at CN=X: code " + std::to_string(rc) + " ("));
  }
}

TEST(CleanUpJudgement, OfRemovingAnEntryOnlyItsAbsenceIsHarmless) {
  const auto refused = [](int rc) { return RecordedWrite{Operation::removeEntry, "CN=X", "", 0, rc, false}; };
  EXPECT_EQ(judge(operation("--change-log"), {refused(32)}, 32).failure, "");
  EXPECT_THAT(judge(operation("--change-log"), {refused(66)}, 66).failure, HasSubstr("removeEntry at CN=X: code 66"));
}

TEST(CleanUpJudgement, AValueInThePlaceOfAnotherIsRewritten) {
  const CleanUpResult judged = judge(operation("--rewrite-plugins"), {removal("p"), addition("p")}, 0);
  ASSERT_THAT(judged.steps, SizeIs(1));
  EXPECT_EQ(judged.steps[0].kind, Kind::rewrittenValues);
  EXPECT_EQ(judged.steps[0].count, 1U);
}

TEST(CleanUpJudgement, ADefinitionThatIsReplacedTwiceIsNoFailure) {
  const CleanUpResult judged =
      judge(operation("--rewrite-plugins"), {removal("p"), addition("p"), removal("p", 16), addition("p")}, 0);
  EXPECT_EQ(judged.failure, "");
  ASSERT_THAT(judged.steps, SizeIs(1));
  EXPECT_EQ(judged.steps[0].count, 2U);
}

TEST(CleanUpJudgement, ADefinitionThatCouldNotBeReplacedIsAFailureAlsoWhenTheMethodGoesOn) {
  EXPECT_THAT(judge(operation("--rewrite-plugins"), {removal("p", 53), addition("p")}, 0).failure,
              HasSubstr("code 53"));
  EXPECT_THAT(judge(operation("--rewrite-plugins"), {removal("p"), addition("p", 53)}, 53).failure,
              HasSubstr("addValue of p at CN=X: code 53"));
}

TEST(CleanUpOperations, AreEachNamedOnce) {
  ASSERT_THAT(cleanUpOperations(), SizeIs(4));
  EXPECT_STREQ(cleanUpOperations()[0].option, "--database");
  EXPECT_STREQ(cleanUpOperations()[1].option, "--instance");
  EXPECT_STREQ(cleanUpOperations()[2].option, "--change-log");
  EXPECT_STREQ(cleanUpOperations()[3].option, "--rewrite-plugins");
}

TEST(CleanUp, CountsWhatIsRemovedAndWhatStays) {
  const Workspace workspace;
  ConfigFile configuration(workspace.write("f",
                                           "dn: cn=Front End, cn=Configuration\ncn: Front End\n"
                                           "zor-slapdSetenv: A=1\nzor-slapdSetenv: B=2\nzor-slapdSetenv: C=3\n"),
                           nullptr);
  const CleanUpResult result = cleanUp(configuration, operation("--database"));
  EXPECT_EQ(result.failure, "");
  ASSERT_THAT(result.steps, SizeIs(1));
  EXPECT_EQ(result.steps[0].attribute, "zor-slapdSetenv");
  EXPECT_EQ(result.steps[0].count, 1U);
  EXPECT_EQ(result.steps[0].remaining, 2U);
  EXPECT_FALSE(cfgstore::ConfigStore::of(*configuration.getCfgUtils()).observer()) << "the store is not observed on";
}

}  // namespace
