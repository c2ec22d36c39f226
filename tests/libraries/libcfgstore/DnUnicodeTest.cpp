#include "DnUnicode.h"

#include <gtest/gtest.h>
#include <utf8proc.h>

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "DnCharacterMap.h"
#include "NormalDn.h"

namespace cfgstore {
namespace {

struct Pair {
  std::string_view left;
  std::string_view right;
};

constexpr Pair kSame[] = {
    {"\u00c4\u00d6\u00dc", "\u00e4\u00f6\u00fc"},  // letter case
    {"\u0391\u03a3", "\u03b1\u03c2"},              // Greek, final sigma
    {"\u0414\u042f", "\u0434\u044f"},              // Cyrillic
    {"stra\u00dfe", "STRASSE"},                    // sharp s
    {"\u1e9e", "ss"},                              // capital sharp s
    {"\u017f", "S"},                               // long s
    {"\u212a", "k"},                               // Kelvin sign
    {"\u00e9", "e\u0301"},                         // composed and decomposed
    {"\u00c9", "e\u0301"},                         //
    {"q\u0307\u0323", "Q\u0323\u0307"},            // order of marks
    {"\u03b1\u0345\u0313", "\u03b1\u0313\u0345"},  // order of marks, one of which folds to a letter
    {"\ufb01", "FI"},                              // ligature
    {"\uff26\uff4f\uff4f", "foo"},                 // full width
    {"\u2460", "1"},                               // circled
    {"\uac00", "\u1100\u1161"},                    // Hangul
    {"a\u00adb", "ab"},                            // soft hyphen
    {"a\u200bb", "ab"},                            // zero-width space
    {"\ufeffab", "ab"},                            // byte-order mark
    {"a\u00a0b", "a b"},                           // no-break space
    {"a \u3000\u2003 b", "a b"},                   // wide blanks in a run
    {"\u00a0a\u00a0", "a"},                        // and at the ends
    {"a\u0085b", "a b"},                           // next line
    {"\uff0c", "\\,"},                             // full-width comma
    {"\uff03", "\\#"},                             // full-width number sign
    {"\uff0b\uff1b\uff1c\uff1e\uff02\uff3c", "\\+\\;\\<\\>\\\"\\\\"},
    {"\u037e", "\\;"},  // Greek question mark
};

constexpr Pair kDifferent[] = {
    {"\u00e4", "a"},              // a mark counts
    {"\u0430", "a"},              // Cyrillic a
    {"\u00f8", "o"},              //
    {"\u0131", "i"},              // dotless i
    {"\u0130", "i"},              // dotted capital I keeps its dot
    {"a\u0301 b", "a \u0301b"},   // a mark on a letter, and on a blank
    {"\\ \u0301", "\u0301"},      //
    {"\u4e00", "\u4e8c"},         //
    {"\ue000", "\ue001"},         // private use
    {"\U0001f600", "\U0001f601"}  //
};

std::optional<std::string> normalOfValue(std::string_view value) { return normalDn("cn=" + std::string(value)); }

std::string utf8Of(CodePoint point) {
  std::string text;
  appendUtf8(point, text);
  return text;
}

// Calls `check` with every character of the planes that have any, and with some of the empty planes between.
template <class Check>
void forEveryCharacter(Check check) {
  const auto step = [](std::uint32_t number) {
    return number < 0x32400 || (number >= 0xe0000 && number < 0xe1000) ? 1U : 0x80U;
  };
  for (std::uint32_t number = 0; number <= 0x10ffff && !::testing::Test::HasFailure(); number += step(number)) {
    if (isCodePoint(number)) check(static_cast<CodePoint>(number));
  }
}

TEST(DnUnicode, TakesCharactersForTheSameThatMatch) {
  for (const Pair& pair : kSame) {
    ASSERT_NE(normalOfValue(pair.left), std::nullopt) << pair.left;
    EXPECT_EQ(normalOfValue(pair.left), normalOfValue(pair.right)) << pair.left << " | " << pair.right;
  }
}

TEST(DnUnicode, KeepsCharactersApartThatDoNotMatch) {
  for (const Pair& pair : kDifferent) {
    ASSERT_NE(normalOfValue(pair.left), std::nullopt) << pair.left;
    EXPECT_NE(normalOfValue(pair.left), normalOfValue(pair.right)) << pair.left << " | " << pair.right;
  }
}

TEST(DnUnicode, KeepsABlankThatCarriesAMark) {
  EXPECT_EQ(normalDn("cn=\u00a8"), "CN=\\ \u0308");
  EXPECT_EQ(normalDn("cn=\\  \u0308"), "CN=\\ \u0308");
  EXPECT_EQ(normalDn("cn=\" \u0308\""), "CN=\\ \u0308");
  EXPECT_EQ(normalDn("cn=\\ \u0903"), "CN=\\ \u0903");  // a mark with a width of its own
  EXPECT_EQ(normalDn("cn=\\ \u20dd"), "CN=\\ \u20dd");  // an enclosing one
  EXPECT_EQ(normalDn("cn=a   \u0308b"), "CN=A  \u0308B");
}

TEST(DnUnicode, WritesCapitalsWhereTheyFoldBack) {
  EXPECT_EQ(normalDn("cn=M\u00fcller"), "CN=M\u00dcLLER");
  EXPECT_EQ(normalDn("cn=Z\u00dcRICH"), "CN=Z\u00dcRICH");
  EXPECT_EQ(normalDn("cn=\u03c3\u03c2"), "CN=\u03a3\u03a3");
}

TEST(DnUnicode, WritesOnlyAsciiInCapitalsWhereALetterHasNoCapitalThatFoldsBack) {
  // The capital of the dotless i is the I, which folds to another letter.
  EXPECT_EQ(normalDn("cn=a\u0131"), "CN=A\u0131");
  EXPECT_EQ(normalDn("cn=\u00dca\u0131"), "CN=\u00fcA\u0131");
  EXPECT_EQ(normalDn("cn=\u0130"), "CN=I\u0307");
}

TEST(DnUnicode, LeavesAFoldedCharacterAsItIs) {
  forEveryCharacter([](CodePoint point) {
    const CodePoints folded = foldedForMatching({'a', point, 'b'});
    ASSERT_EQ(foldedForMatching(folded), folded) << std::hex << point;
  });
}

TEST(DnUnicode, FoldsADecomposedCharacterToTheSame) {
  forEveryCharacter([](CodePoint point) {
    std::array<utf8proc_int32_t, 32> parts;
    int boundary = 0;
    const auto count =
        utf8proc_decompose_char(point, parts.data(), 32, static_cast<utf8proc_option_t>(UTF8PROC_DECOMPOSE), &boundary);
    ASSERT_GT(count, 0);
    ASSERT_EQ(foldedForMatching({parts.begin(), parts.begin() + count}), foldedForMatching({point}))
        << std::hex << point;
  });
}

TEST(DnUnicode, KeepsTheNormalFormOfEveryCharacterWhenReadAgain) {
  forEveryCharacter([](CodePoint point) {
    std::string dn = "cn=";
    for (const char byte : utf8Of(point)) {
      constexpr std::string_view kDigits = "0123456789abcdef";
      const auto number = static_cast<unsigned char>(byte);
      dn += {'\\', kDigits[number >> 4U], kDigits[number & 0xfU]};
    }
    const auto normal = normalDn(dn);
    ASSERT_NE(normal, std::nullopt) << dn;
    ASSERT_EQ(normalDn(*normal), normal) << dn;
  });
}

// The order of the two sets of marks is the canonical one in the first text only.
TEST(DnUnicode, PutsMarksInOrderHoweverManyThereAre) {
  std::string ordered = "x";
  std::string mixed = "x";
  for (int i = 0; i < 100; ++i) ordered += "\u0323";
  for (int i = 0; i < 100; ++i) ordered += "\u0307";
  for (int i = 0; i < 100; ++i) mixed += "\u0307\u0323";
  EXPECT_EQ(normalOfValue(mixed), normalOfValue(ordered));
}

TEST(DnUnicode, ReadsNothingButUtf8) {
  for (const std::string_view bytes :
       {"\x80", "\xc3", "\xc3(", "\xc0\x80", "\xed\xa0\x80", "\xf4\x90\x80\x80", "\xff"}) {
    EXPECT_EQ(codePointsOf(bytes), std::nullopt);
  }
  EXPECT_EQ(codePointsOf("a\u00e4\u20ac\U0001f600"), (CodePoints{'a', 0xe4, 0x20ac, 0x1f600}));
}

TEST(DnCharacterMap, GivesEveryCharacterOneRole) {
  EXPECT_EQ(matchingRoleOf('a'), MatchingRole::kept);
  EXPECT_EQ(matchingRoleOf(' '), MatchingRole::kept);
  EXPECT_EQ(matchingRoleOf(0x0000), MatchingRole::ignored);
  EXPECT_EQ(matchingRoleOf(0x0008), MatchingRole::ignored);
  EXPECT_EQ(matchingRoleOf(0x0009), MatchingRole::blank);
  EXPECT_EQ(matchingRoleOf(0x000d), MatchingRole::blank);
  EXPECT_EQ(matchingRoleOf(0x000e), MatchingRole::ignored);
  EXPECT_EQ(matchingRoleOf(0x007f), MatchingRole::ignored);
  EXPECT_EQ(matchingRoleOf(0x0085), MatchingRole::blank);
  EXPECT_EQ(matchingRoleOf(0x00a1), MatchingRole::kept);
  EXPECT_EQ(matchingRoleOf(0xe007f), MatchingRole::ignored);
  EXPECT_EQ(matchingRoleOf(0xe0080), MatchingRole::kept);
  EXPECT_EQ(matchingRoleOf(0x10ffff), MatchingRole::kept);
}

}  // namespace
}  // namespace cfgstore
