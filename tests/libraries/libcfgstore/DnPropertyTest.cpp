// Properties of the normal form, over generated names in generated spellings and over texts that are mostly no DNs.

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "CfgUtils.h"
#include "DnGenerators.h"
#include "NormalDn.h"

namespace cfgstore {
namespace {

using testing::anyDn;
using testing::ModelDn;
using testing::spelled;
using testing::textOf;

// Characters that DNs turn on, so that short texts over them are DNs, nearly DNs, and equal to one another often.
constexpr std::string_view kDense = "aaAA===,,;+ \\\"#24c\xc3\xa4";

std::optional<std::string> formatted(const std::string& dn) {
  const std::unique_ptr<char, decltype(&std::free)> text(formatDn(dn.c_str()), &std::free);
  return text ? std::optional<std::string>(text.get()) : std::nullopt;
}

rc::Gen<std::string> anySpelling() { return rc::gen::apply(spelled, anyDn(), rc::gen::arbitrary<std::uint32_t>()); }

// Either a DN or a text that may be one.
rc::Gen<std::string> anyText() { return rc::gen::oneOf(anySpelling(), textOf(kDense)); }

// The DN and all its parents but the empty one.
std::vector<std::string> lineOf(std::string_view normal) {
  std::vector<std::string> line;
  for (; !normal.empty(); normal = parentOfNormalDn(normal)) line.emplace_back(normal);
  return line;
}

// Checks for all of `dns`, which must be DNs, that each is the same as itself and that being the same goes both ways
// and is passed on.
void checkEquivalence(const std::vector<std::string>& dns) {
  const std::size_t count = dns.size();
  std::vector<bool> same;
  for (const std::string& left : dns) {
    for (const std::string& right : dns) same.push_back(sameDn(left, right));
  }
  const auto isSame = [&](std::size_t left, std::size_t right) { return same[left * count + right]; };
  for (std::size_t a = 0; a < count; ++a) {
    RC_ASSERT(isSame(a, a));
    for (std::size_t b = 0; b < count; ++b) {
      RC_ASSERT(isSame(a, b) == isSame(b, a));
      for (std::size_t c = 0; c < count; ++c) RC_ASSERT(!(isSame(a, b) && isSame(b, c)) || isSame(a, c));
    }
  }
}

RC_GTEST_PROP(DnProperty, AllSpellingsOfOneNameHaveOneNormalForm, ()) {
  const ModelDn dn = *anyDn();
  const std::string left = spelled(dn, *rc::gen::arbitrary<std::uint32_t>());
  const std::string right = spelled(dn, *rc::gen::arbitrary<std::uint32_t>());
  RC_LOG() << left << '\n' << right << '\n';
  const auto normal = normalDn(left);
  RC_ASSERT(normal.has_value());
  RC_ASSERT(normalDn(right) == normal);
  RC_ASSERT(sameDn(left, right));
  RC_ASSERT(lineOf(*normal).size() == dn.size());
}

RC_GTEST_PROP(DnProperty, NormalisingTwiceIsNormalisingOnce, ()) {
  const std::string text = *anyText();
  const auto normal = normalDn(text);
  if (normal) RC_ASSERT(normalDn(*normal) == normal);
}

RC_GTEST_PROP(DnProperty, ANormalFormNamesTheSameEntry, ()) {
  const std::string text = *anyText();
  const auto normal = normalDn(text);
  if (normal) RC_ASSERT(sameDn(text, *normal));
}

RC_GTEST_PROP(DnProperty, AnotherLetterMakesAnotherName, ()) {
  ModelDn dn = *rc::gen::nonEmpty(anyDn());
  const auto seed = *rc::gen::arbitrary<std::uint32_t>();
  auto& rdn = dn[*rc::gen::inRange<std::size_t>(0, dn.size())];
  auto& value = rdn[*rc::gen::inRange<std::size_t>(0, rdn.size())].value;
  value += "q";
  const std::string left = spelled(dn, seed);
  value.back() = 'r';
  const std::string right = spelled(dn, seed);
  RC_ASSERT(normalDn(left).has_value() && normalDn(right).has_value());
  RC_ASSERT(normalDn(left) != normalDn(right));
  RC_ASSERT(!sameDn(left, right));
}

RC_GTEST_PROP(DnProperty, CompareDnsAgreesWithFormatDn, ()) {
  const std::string left = *anyText();
  const std::string right = *rc::gen::oneOf(anyText(), rc::gen::just(left));
  const auto leftForm = formatted(left);
  const auto rightForm = formatted(right);
  RC_CLASSIFY(leftForm && leftForm == rightForm, "same");
  RC_ASSERT((compareDns(left.c_str(), right.c_str()) != 0) == (leftForm && leftForm == rightForm));
}

RC_GTEST_PROP(DnProperty, FormatDnAgreesWithNormalDn, ()) {
  const std::string text = *anyText();
  if (text.find('\0') == std::string::npos) RC_ASSERT(formatted(text) == normalDn(text));
}

RC_GTEST_PROP(DnProperty, BeingTheSameIsAnEquivalence, ()) {
  std::vector<std::string> dns;
  for (const ModelDn& dn : *rc::gen::container<std::vector<ModelDn>>(3, anyDn())) {
    for (int i = 0; i < 2; ++i) dns.push_back(spelled(dn, *rc::gen::arbitrary<std::uint32_t>()));
  }
  checkEquivalence(dns);
}

RC_GTEST_PROP(DnProperty, BeingTheSameIsAnEquivalenceOfShortTexts, ()) {
  std::vector<std::string> dns;
  for (const std::string& value : *rc::gen::container<std::vector<std::string>>(6, textOf("aA \\,+="))) {
    const std::string dn = "a=" + value;
    if (normalDn(dn)) dns.push_back(dn);
  }
  checkEquivalence(dns);
}

// No value of the generators has a hyphen, one of their types has.
RC_GTEST_PROP(DnProperty, AnUnderscoreInATypeIsReadAsAHyphenIs, ()) {
  const auto withUnderscores = [](std::string text) {
    std::replace(text.begin(), text.end(), '-', '_');
    return text;
  };
  const std::string text = *anySpelling();
  const std::string normal = normalDn(text).value();
  RC_CLASSIFY(normal.find('-') != std::string::npos, "with a type that has a hyphen");
  RC_ASSERT(normalDn(withUnderscores(text)) == withUnderscores(normal));
}

RC_GTEST_PROP(DnProperty, AnEntryIsWithinItselfAndItsParentsAndNothingElse, ()) {
  const std::string normal = normalDn(*anySpelling()).value();
  const auto line = lineOf(normal);
  RC_ASSERT(isWithinNormalDn(normal, ""));
  for (const std::string& base : line) RC_ASSERT(isWithinNormalDn(normal, base));
  // Whatever else the text ends in is no entry above it.
  for (std::size_t at = 0; at < normal.size(); ++at) {
    const std::string tail = normal.substr(at);
    const bool inLine = std::find(line.begin(), line.end(), tail) != line.end();
    if (normalDn(tail) == tail) RC_ASSERT(isWithinNormalDn(normal, tail) == inLine);
  }
}

RC_GTEST_PROP(DnProperty, TheParentOfANormalFormIsANormalForm, ()) {
  const std::string normal = normalDn(*anySpelling()).value();
  for (const std::string& dn : lineOf(normal)) RC_ASSERT(normalDn(dn) == dn);
}

RC_GTEST_PROP(DnProperty, AnyBytesGiveANormalFormOrNothing, (const std::string& bytes)) {
  const auto normal = normalDn(bytes);
  RC_ASSERT(sameDn(bytes, bytes) == normal.has_value());
  const auto value = normalDn("cn=" + bytes);
  if (value) RC_ASSERT(normalDn(*value) == value);
}

RC_GTEST_PROP(DnProperty, AnyBytesWrittenAsEscapesAreAValue, (const std::string& bytes)) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  std::string dn = "cn=";
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    dn += {'\\', kDigits[byte >> 4U], kDigits[byte & 0xfU]};
  }
  const auto normal = normalDn(dn);
  RC_ASSERT(normal.has_value());
  RC_ASSERT(normalDn(*normal) == normal);
  RC_ASSERT(normal->find('\0') == std::string::npos);
}

}  // namespace
}  // namespace cfgstore
