// The ways by which a DN can be read agree: the short way for plain RDNs, the general way for single pairs, and libldap
// given the whole text at once.

#include <gtest/gtest.h>
#include <ldap.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "DnGenerators.h"
#include "DnPair.h"
#include "DnPlain.h"
#include "DnSpelling.h"
#include "DnValue.h"
#include "NormalDn.h"

namespace cfgstore {
namespace {

using testing::anyDn;
using testing::spelled;
using testing::textOf;

std::optional<std::string> plainRdn(std::string_view text) {
  std::vector<char> out(text.size());
  const auto rdn = readPlainRdn(text, out);
  if (!rdn) return std::nullopt;
  return std::string(out.data(), rdn->written);
}

std::optional<std::string> generalRdn(std::string_view text) {
  std::string out;
  if (!appendNormalPair(text.substr(0, pairLength(text)), out)) return std::nullopt;
  return out;
}

// The normal form of a DN that libldap has split into pairs, and nothing where it refuses the DN.
std::optional<std::string> normalByLibldap(const std::string& text) {
  LDAPDN dn = nullptr;
  if (ldap_str2dn(text.c_str(), &dn, LDAP_DN_FORMAT_LDAPV3) != LDAP_SUCCESS) return std::nullopt;
  std::string normal;
  for (LDAPRDN* rdn = dn; rdn != nullptr && *rdn != nullptr; ++rdn) {
    std::vector<std::string> pairs;
    for (LDAPAVA** pair = *rdn; *pair != nullptr; ++pair) {
      std::string one((*pair)->la_attr.bv_val, (*pair)->la_attr.bv_len);
      std::transform(one.begin(), one.end(), one.begin(),
                     [](char c) { return c >= 'a' && c <= 'z' ? c - 'a' + 'A' : c; });
      one += '=';
      const berval& value = (*pair)->la_value;
      if (value.bv_len != 0) appendNormalValue({value.bv_val, value.bv_len}, one);
      pairs.push_back(one);
    }
    std::sort(pairs.begin(), pairs.end());
    pairs.erase(std::unique(pairs.begin(), pairs.end()), pairs.end());
    for (const std::string& one : pairs) {
      if (!normal.empty()) normal += &one == &pairs.front() ? "," : "+";
      normal += one;
    }
  }
  ldap_dnfree(dn);
  return normal;
}

// Texts put together from `pieces`.
rc::Gen<std::string> textOfPieces(const std::vector<std::string>& pieces) {
  return rc::gen::map(rc::gen::container<std::vector<std::string>>(rc::gen::elementOf(pieces)),
                      [](const std::vector<std::string>& chosen) {
                        std::string text;
                        for (const std::string& piece : chosen) text += piece;
                        return text;
                      });
}

RC_GTEST_PROP(DnAgreement, ThePlainWayGivesWhatTheGeneralWayGives, ()) {
  const std::string text =
      *textOfPieces({" ", "c", ""}) + "c" + *rc::gen::element("", " ", "-", "=") + "=" + *textOf("acZ09-= /'#,;  ~");
  const auto plain = plainRdn(text);
  RC_CLASSIFY(plain.has_value(), "plain");
  if (plain) RC_ASSERT(generalRdn(text) == plain);
}

RC_GTEST_PROP(DnAgreement, ThePlainWayTakesEveryPlainValue, ()) {
  const std::string text = " cn = a" + *textOf("acZ09-= /'#~!|{}[]^`$%&()*.:?@_");
  RC_ASSERT(plainRdn(text).has_value());
  RC_ASSERT(generalRdn(text) == plainRdn(text));
}

RC_GTEST_PROP(DnAgreement, ThePlainWayLeavesWhatItDoesNotKnow, ()) {
  const auto text = *rc::gen::oneOf(textOf("ac== \\\"#+,;<>\xc3\xa4\t"),
                                    rc::gen::apply(spelled, anyDn(), rc::gen::arbitrary<std::uint32_t>()));
  const auto plain = plainRdn(text);
  if (plain) RC_ASSERT(generalRdn(text) == plain);
}

std::optional<std::string> plainPair(std::string_view text) {
  std::string out = "before";
  if (appendPlainPair(text, out)) return out.substr(6);
  RC_ASSERT(out == "before");
  return std::nullopt;
}

// Letters with and without marks, a mark that stands alone, what folds to two letters, a blank beyond ASCII, and bytes
// that are not UTF-8.
const std::vector<std::string> kBeyondAscii{"\u00fc", "\u00dc", "u\u0308", "\u0308", "\u00df", "\ufb01",
                                            "\u00a0", "\u200b", "\u0130",  "\xff",   "\xc3"};

RC_GTEST_PROP(DnAgreement, ThePlainWayBeyondAsciiGivesWhatTheGeneralWayGives, ()) {
  std::vector<std::string> pieces{" ", "a", "B", "=", "#", "\\", "\"", "<", "\t", "-", "_", "1"};
  pieces.insert(pieces.end(), kBeyondAscii.begin(), kBeyondAscii.end());
  const std::string text =
      *textOfPieces({" ", "c", "_", "1"}) + *rc::gen::element("=", " = ", "=#", "") + *textOfPieces(pieces);
  const auto plain = plainPair(text);
  RC_CLASSIFY(plain.has_value(), "plain");
  if (plain) RC_ASSERT(generalRdn(text) == plain);
}

RC_GTEST_PROP(DnAgreement, ThePlainWayBeyondAsciiTakesEveryNameInUtf8, ()) {
  const std::string text = "cn=" + *textOfPieces({"\u00fc", "u\u0308", "\u00df", " ", "a", "B", "=", "'"}) + "\u00e9";
  RC_ASSERT(plainPair(text).has_value());
  RC_ASSERT(generalRdn(text) == plainPair(text));
}

RC_GTEST_PROP(DnAgreement, ThePlainWayFailsWhenThereIsNoRoom, ()) {
  const std::string text = " c =" + *textOf("ab  ") + "z";
  const auto whole = plainRdn(text);
  RC_ASSERT(whole.has_value());
  std::vector<char> out(whole->size());
  RC_ASSERT(readPlainRdn(text, out).has_value());
  out.pop_back();
  RC_ASSERT(!readPlainRdn(text, out).has_value());
}

// Without the characters at which this project reads more or less than libldap: `;` quotes `#` and digits.
RC_GTEST_PROP(DnAgreement, LibldapAcceptsTheSameTextsAndReadsTheSame, ()) {
  static const std::vector<std::string> kPieces = {"a",    "B",   "\xc3", "\xc3\xa4", " ",   "\t",      "-", "/", "=",
                                                   "\\AB", "\\,", "\\ ",  ",a=",      "+B=", " , a = ", ",", "\\"};
  const std::string text = *rc::gen::element("", "a", "a=", " a-b = ") + *textOfPieces(kPieces);
  RC_CLASSIFY(normalDn(text).has_value(), "valid");
  RC_ASSERT(normalDn(text) == normalByLibldap(text));
}

RC_GTEST_PROP(DnAgreement, LibldapReadsNormalFormsAsTheyAreMeant, ()) {
  const auto normal = normalDn(spelled(*anyDn(), *rc::gen::arbitrary<std::uint32_t>()));
  RC_ASSERT(normal.has_value());
  RC_ASSERT(normalByLibldap(*normal) == *normal);
}

TEST(DnAgreement, LengthsAroundTheLimitOfThePlainWayMakeNoDifference) {
  for (std::size_t length = 240; length < 270; ++length) {
    const std::string value(length, 'x');
    EXPECT_EQ(normalDn("cn= " + value + " ,cn=b"), "CN=" + std::string(length, 'X') + ",CN=B");
    EXPECT_TRUE(sameDn("cn=" + value, "CN =" + value));
    EXPECT_FALSE(sameDn("cn=" + value, "cn=" + value + "x"));
  }
}

}  // namespace
}  // namespace cfgstore
