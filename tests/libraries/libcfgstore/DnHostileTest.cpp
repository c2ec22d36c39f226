// Long and awkward input. None of these would end within the time limit of the tests if any step took time that grows
// with the square of the length.

#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "CfgUtils.h"
#include "NormalDn.h"

namespace cfgstore {
namespace {

std::string repeated(std::string_view unit, std::size_t times) {
  std::string text;
  text.reserve(unit.size() * times);
  for (std::size_t i = 0; i < times; ++i) text += unit;
  return text;
}

constexpr std::size_t kMany = 200'000;
constexpr std::size_t kMegabyte = 1U << 20U;

TEST(DnHostile, ReadsADnOfManyPlainRdns) {
  EXPECT_EQ(normalDn(repeated("cn=a , ", kMany) + "cn=z"), repeated("CN=A,", kMany) + "CN=Z");
}

TEST(DnHostile, ReadsADnOfManyEscapedRdns) {
  EXPECT_EQ(normalDn(repeated("cn=\\,;", kMany) + "cn=z"), repeated("CN=\\,,", kMany) + "CN=Z");
}

TEST(DnHostile, ComparesDnsThatDifferOnlyAtTheEnd) {
  const std::string start = repeated("cn=\\,,", kMany);
  EXPECT_NE(compareDns((start + "cn=z").c_str(), (start + "cn=Z").c_str()), 0);
  EXPECT_EQ(compareDns((start + "cn=z").c_str(), (start + "cn=y").c_str()), 0);
  EXPECT_EQ(compareDns((start + "cn=z").c_str(), (start + "cn").c_str()), 0);
}

TEST(DnHostile, SortsManyPairsOfOneRdn) {
  std::string text;
  std::string normal;
  for (int i = 199'999; i >= 100'000; --i) text += "cn=" + std::to_string(i) + "+";
  for (int i = 100'000; i <= 199'999; ++i) normal += "CN=" + std::to_string(i) + "+";
  text.pop_back();
  normal.pop_back();
  EXPECT_EQ(normalDn(text), normal);
}

TEST(DnHostile, DropsManyEqualPairsOfOneRdn) { EXPECT_EQ(normalDn(repeated("cn=a+", kMany) + "cn=a"), "CN=A"); }

TEST(DnHostile, ReadsLongValues) {
  const std::string z = "z";
  EXPECT_EQ(normalDn("cn=" + repeated("x", kMegabyte)), "CN=" + repeated("X", kMegabyte));
  EXPECT_EQ(normalDn("cn=a" + repeated(" ", kMegabyte) + z), "CN=A Z");
  EXPECT_EQ(normalDn("cn=" + repeated("\\,", kMegabyte)), "CN=" + repeated("\\,", kMegabyte));
  EXPECT_EQ(normalDn("cn=" + repeated("\\61", kMegabyte)), "CN=" + repeated("A", kMegabyte));
  EXPECT_EQ(normalDn("cn=\"" + repeated("a,", kMegabyte) + "\""), "CN=" + repeated("A\\,", kMegabyte));
  EXPECT_EQ(normalDn("cn=" + repeated("\xff", kMegabyte)), "CN=" + repeated("\\FF", kMegabyte));
  EXPECT_EQ(normalDn("cn=" + repeated("\u00c4", kMegabyte)), "CN=" + repeated("\u00c4", kMegabyte));
}

TEST(DnHostile, ReadsALongType) {
  EXPECT_EQ(normalDn(repeated("a", kMegabyte) + "=b"), repeated("A", kMegabyte) + "=B");
  EXPECT_EQ(normalDn("1" + repeated(".1", kMegabyte) + "=b"), "1" + repeated(".1", kMegabyte) + "=B");
}

TEST(DnHostile, ReadsALongHexValue) {
  EXPECT_EQ(normalDn("cn=#0c83100000" + repeated("61", kMegabyte)), "CN=" + repeated("A", kMegabyte));
  EXPECT_EQ(normalDn("cn=#04" + repeated("ab", kMegabyte)), "CN=#04" + repeated("AB", kMegabyte));
}

// Marks of two classes in turns have to be put in order over their whole length.
TEST(DnHostile, OrdersManyMarks) {
  const auto ordered = normalDn("cn=x" + repeated("\u0316", kMany) + repeated("\u0307", kMany));
  ASSERT_NE(ordered, std::nullopt);
  EXPECT_EQ(normalDn("cn=x" + repeated("\u0307\u0316", kMany)), ordered);
}

// Bytes that would nest characters in one another if ignored characters were dropped from what is not UTF-8.
TEST(DnHostile, KeepsBytesThatWouldBecomeCharactersOneInsideTheOther) {
  EXPECT_EQ(normalDn("cn=" + repeated("\xc2", kMany) + repeated("\xad", kMany)),
            "CN=" + repeated("\\C2", kMany) + repeated("\\AD", kMany));
}

TEST(DnHostile, RefusesWhatIsWrongOnlyAtTheEnd) {
  EXPECT_EQ(normalDn(repeated("cn=a,", kMany)), std::nullopt);
  EXPECT_EQ(normalDn(repeated("cn=a+", kMany)), std::nullopt);
  EXPECT_EQ(normalDn(repeated(",", kMany)), std::nullopt);
  EXPECT_EQ(normalDn(repeated("\\", kMany + 1)), std::nullopt);
  EXPECT_EQ(normalDn("cn=\"" + repeated("a", kMegabyte)), std::nullopt);
  EXPECT_EQ(normalDn("cn=" + repeated("\\", kMegabyte + 1)), std::nullopt);
  EXPECT_EQ(normalDn("cn=#" + repeated("a", kMegabyte + 1)), std::nullopt);
}

}  // namespace
}  // namespace cfgstore
