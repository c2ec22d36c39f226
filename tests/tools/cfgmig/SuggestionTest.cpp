// Tests of what a mistyped word was meant to be.

#include "Suggestion.h"

#include <gtest/gtest.h>

namespace {

using tool::nearest;

const std::vector<std::string> kCommands = {"apply", "list", "help", "version"};

TEST(Suggestion, FindsAWordWithOneMistake) {
  EXPECT_EQ(nearest("aply", kCommands), "apply");
  EXPECT_EQ(nearest("applyy", kCommands), "apply");
  EXPECT_EQ(nearest("applu", kCommands), "apply");
  EXPECT_EQ(nearest("lsit", kCommands), "list");
}

TEST(Suggestion, FindsALongerWordWithTwoMistakes) { EXPECT_EQ(nearest("verison2", kCommands), "version"); }

TEST(Suggestion, FindsNothingThatIsFar) {
  EXPECT_EQ(nearest("migrate", kCommands), "");
  EXPECT_EQ(nearest("", kCommands), "");
  EXPECT_EQ(nearest("hi", kCommands), "");
  EXPECT_EQ(nearest(std::string(100'000, 'a'), kCommands), "");
  EXPECT_EQ(nearest("apply", {}), "");
}

TEST(Suggestion, PrefersTheNearest) { EXPECT_EQ(nearest("--outputs", {"--out", "--output"}), "--output"); }

}  // namespace
