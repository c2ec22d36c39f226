// Tests of the reasons' words.

#include "ledger/Why.h"

#include <gmock/gmock.h>

#include "TracedMethod.h"

namespace {

using testing::HasSubstr;
using tool::ReasonId;
using tool::Reasons;
using tool::Why;

constexpr auto kLast = static_cast<int>(Why::entryPartMoved);

TEST(Reasons, HaveWordsForEverythingThatCanBeKnown) {
  Reasons reasons;
  EXPECT_EQ(reasons.of(0, Why::unknown), 0U) << "what nothing explains has no words";
  std::vector<ReasonId> all;
  for (int why = static_cast<int>(Why::unknown) + 1; why <= kLast; ++why) {
    all.push_back(reasons.of(tool::traced::kMergeCfgEntry, static_cast<Why>(why), 53));
    EXPECT_NE(all.back(), 0U) << "number " << why;
  }
  const std::vector<tool::Reason> texts = reasons.take();
  EXPECT_EQ(texts[0].words, "");
  for (const ReasonId id : all) {
    EXPECT_EQ(texts[id].method, "mergeCfgEntry");
    EXPECT_FALSE(texts[id].words.empty());
    EXPECT_FALSE(texts[id].words.ends_with('.')) << texts[id].words;
    EXPECT_EQ(texts[id].words.find('%'), std::string::npos) << texts[id].words;
  }
}

TEST(Reasons, AreEachThereOnce) {
  Reasons reasons;
  const ReasonId port = reasons.of(tool::traced::kMergeIn60, Why::dropped, 0, "zor-slapdPort");
  EXPECT_EQ(reasons.of(tool::traced::kMergeIn60, Why::dropped, 0, "ZOR-SLAPDSECUREPORT"), port);
  EXPECT_NE(reasons.of(tool::traced::kMergeIn60, Why::dropped, 0, "zor-slapdErrorLog"), port);
  EXPECT_NE(reasons.of(tool::traced::kMergeIn51, Why::dropped, 0, "zor-slapdPort"), port);
  const ReasonId refused = reasons.of(1, Why::refused, 53);
  EXPECT_EQ(reasons.of(1, Why::refused, 53), refused);
  EXPECT_NE(reasons.of(1, Why::refused, 32), refused);
  EXPECT_NE(reasons.of(1, Why::refused, -53), refused);
}

TEST(Reasons, SayWhatTheStoreAnswered) {
  Reasons reasons;
  const ReasonId refused = reasons.of(0, Why::refused, 53);
  EXPECT_THAT(reasons.take()[refused].words, HasSubstr("code 53, the store is not willing to do this"));
}

TEST(Reasons, OfAFileNamedTwiceAreAddedToTheOthers) {
  Reasons reasons;
  const ReasonId own = reasons.of(0, Why::newServers);
  const ReasonId twice = reasons.namedTwice(own);
  EXPECT_EQ(reasons.namedTwice(own), twice);
  const std::vector<tool::Reason> texts = reasons.take();
  EXPECT_EQ(texts[twice].words, texts[own].words + "; " + std::string(tool::kSchemaFileNamedTwice));
}

}  // namespace
