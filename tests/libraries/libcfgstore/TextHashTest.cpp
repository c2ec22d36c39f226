#include "TextHash.h"

#include <gtest/gtest.h>

#include <string>

namespace cfgstore {
namespace {

struct Known {
  const char* text;
  std::uint64_t hash;
};

// What Python's hash() gives for these byte strings, whose key is zero when its randomization is off.
constexpr Known kKnown[] = {{"a", 0x407448d2b89b1813},
                            {"1234567", 0xa33d651594fdae81},
                            {"12345678", 0x3489982430560a87},
                            {"123456789", 0x0fbc0f0007965fcf},
                            {"CN=A,CN=CONFIGURATION", 0xce7a5c971c91dc29}};

TEST(TextHash, GivesWhatOtherProgramsGive) {
  for (const Known& known : kKnown) EXPECT_EQ(sipHash13({0, 0}, known.text), known.hash) << known.text;
}

TEST(TextHash, DependsOnTheKeyAndOnEachBit) {
  const std::string text = "CN=A,CN=CONFIGURATION";
  const HashKey key{1, 2};
  EXPECT_NE(sipHash13(key, text), sipHash13({1, 3}, text));
  EXPECT_NE(sipHash13(key, text), sipHash13({0, 2}, text));
  for (std::size_t bit = 0; bit < text.size() * 8; ++bit) {
    std::string other = text;
    other[bit / 8] = static_cast<char>(other[bit / 8] ^ 1 << bit % 8);
    EXPECT_NE(sipHash13(key, text), sipHash13(key, other)) << bit;
  }
}

TEST(TextHash, IsTheSameThroughoutAProcess) {
  EXPECT_EQ(hashOfText("a text of more than eight bytes"), hashOfText(std::string("a text of more than eight bytes")));
  EXPECT_NE(hashOfText("a"), hashOfText("b"));
  EXPECT_NE(hashOfText("a"), hashOfText(std::string_view("a\0", 2)));
}

}  // namespace
}  // namespace cfgstore
