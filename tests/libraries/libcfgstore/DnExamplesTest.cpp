// What a directory expert would try first: the examples that the RFCs print, what their grammars allow and forbid, and
// the preparation of strings for matching, row by row.

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <string_view>

#include "CfgUtils.h"
#include "DnUnicode.h"
#include "NormalDn.h"

namespace cfgstore {
namespace {

struct Form {
  const char* text;
  const char* normal;  // null when the text is no DN
};

constexpr Form kRfc4514[] = {
    // Section 4.
    {"UID=jsmith,DC=example,DC=net", "UID=JSMITH,DC=EXAMPLE,DC=NET"},
    {"OU=Sales+CN=J.  Smith,DC=example,DC=net", "CN=J. SMITH+OU=SALES,DC=EXAMPLE,DC=NET"},
    {R"(CN=James \"Jim\" Smith\, III,DC=example,DC=net)", R"(CN=JAMES \"JIM\" SMITH\, III,DC=EXAMPLE,DC=NET)"},
    {R"(CN=Before\0dAfter,DC=example,DC=net)", "CN=BEFORE AFTER,DC=EXAMPLE,DC=NET"},
    {"1.3.6.1.4.1.1466.0=#04024869", "1.3.6.1.4.1.1466.0=#04024869"},
    {R"(CN=Lu\C4\8Di\C4\87)", "CN=LU\xc4\x8cI\xc4\x86"},
    // Section 2.4: what has to be escaped, and what may be.
    {R"(cn=\ a)", "CN=A"},
    {R"(cn=\#a)", R"(CN=\#A)"},
    {R"(cn=a\ )", "CN=A"},
    {R"(cn=\"\+\,\;\<\>\\)", R"(CN=\"\+\,\;\<\>\\)"},
    {R"(cn=\22\2b\2C\3b\3C\3e\5c)", R"(CN=\"\+\,\;\<\>\\)"},
    {R"(cn=a\=b\ c\#d)", "CN=A=B C#D"},
    {R"(cn=\20\23\3d)", R"(CN=\#=)"},
    // Section 3: strings begin with no blank and no "#"; "=" needs no escape, nor has "#" behind the first character.
    {"cn=a=b=c", "CN=A=B=C"},
    {"cn==", "CN=="},
    {"cn=a#", "CN=A#"},
    {"cn=#", nullptr},
    {"cn=#a", nullptr},
    {"cn=#zz", nullptr},
    {"cn=#0c01g1", nullptr},
    {R"(cn=\a)", nullptr},
    {R"(cn=\4)", nullptr},
    {R"(cn=\4,ou=b)", nullptr},
    {R"(cn=\-)", nullptr},
    {R"(cn=a\)", nullptr},
    // Section 3: types are names or numbers, and nothing else.
    {"a1-b2=x", "A1-B2=X"},
    {"a=x", "A=X"},
    {"0.0=x", "0.0=X"},
    {"2.999.1=x", "2.999.1=X"},
    {"1a=x", nullptr},
    {"a.b=x", nullptr},
    {"1..2=x", nullptr},
    {"1.=x", nullptr},
    {"1.02=x", nullptr},
    {"a;binary=x", nullptr},
    {"c\\6e=x", nullptr},
    {"\"cn\"=x", nullptr},
    {"c n=x", nullptr},
    {"=x", nullptr},
    // Section 3: RDNs are not empty, and separators separate.
    {"cn=a,ou=b", "CN=A,OU=B"},
    {"cn=a,", nullptr},
    {",cn=a", nullptr},
    {"cn=a,,ou=b", nullptr},
    {"cn=a+", nullptr},
    {"+cn=a", nullptr},
    {"cn=a++ou=b", nullptr},
    {"cn=a+,ou=b", nullptr},
    {"cn=a,ou", nullptr},
    {",", nullptr},
    {"+", nullptr},
    {"=", nullptr},
    {"", ""},
};

constexpr Form kOlderServers[] = {
    // Blanks around separators, "=" among them.
    {"CN=Marshall T. Rose, O=Dover Beach Consulting, L=Santa Clara, ST=California, C=US",
     "CN=MARSHALL T. ROSE,O=DOVER BEACH CONSULTING,L=SANTA CLARA,ST=CALIFORNIA,C=US"},
    {"CN = a , OU = b + SN = c ,O=d", "CN=A,OU=B+SN=C,O=D"},
    {"cn=a,\n ou=b", "CN=A,OU=B"},
    {" cn=a ", "CN=A"},
    {"cn= ,ou=b", "CN=,OU=B"},
    // A blank that is escaped belongs to the value, the blanks behind it do not.
    {R"(cn=a\   , ou=\  b )", "CN=A,OU=B"},
    {R"(cn=a\ b)", "CN=A B"},
    // Semicolons.
    {"CN=Christian Huitema; O=INRIA; C=FR", "CN=CHRISTIAN HUITEMA,O=INRIA,C=FR"},
    {"cn=a;", nullptr},
    {"cn=a;;ou=b", nullptr},
    // Quotes around a whole value.
    {R"(OU="Sales; Data transfer and development", O=Widget\, Inc.)",
     R"(OU=SALES\; DATA TRANSFER AND DEVELOPMENT,O=WIDGET\, INC.)"},
    {R"(cn="a \"b\" \\ c",ou=d)", R"(CN=A \"B\" \\ C,OU=D)"},
    {R"(cn="+,;<>=#")", R"(CN=\+\,\;\<\>=#)"},
    {R"(cn="#a")", R"(CN=\#A)"},
    {R"(cn=" a ")", "CN=A"},
    {R"(cn=""+ou="")", "CN=+OU="},
    {R"(cn="a)", nullptr},
    {R"(cn="a"b)", nullptr},
    {R"(cn=a"b")", nullptr},
    {R"(cn="a""b")", nullptr},
    {R"(cn="\q")", nullptr},
    // Numbers with and without their prefix.
    {"OID.2.5.4.3=a", "CN=A"},
    {"oid.2.5.4.10.1=a", "2.5.4.10.1=A"},
    {"OID.cn=a", nullptr},
    {"OID.2=a", nullptr},
    // Underscores in types, where a letter comes first, as LDIF files have them in attribute names.
    {"zor_slapd_name=a", "ZOR_SLAPD_NAME=A"},
    {"a_=b + a__c-d=e", "A_=B+A__C-D=E"},
    {R"( zor_x = "a,b" ; cn=c)", R"(ZOR_X=A\,B,CN=C)"},
    {"zor_x=#0c0161", "ZOR_X=A"},
    {"zor_x=a_b", "ZOR_X=A_B"},
    {"cn=a_b+ou=\\5f", "CN=A_B+OU=_"},
    {"_=a", nullptr},
    {"_cn=a", nullptr},
    {"1_2=a", nullptr},
    {"1.2_3=a", nullptr},
    {"OID.1_2=a", nullptr},
    {"c_n;x=a", nullptr},
    // Not taken for anything: RFC 4514 has these escaped, and nobody can say what was meant without.
    {"cn=a<b", nullptr},
    {"cn=<a>", nullptr},
    {"cn=a\"b", nullptr},
    {"<cn=a>", nullptr},
    {"/cn=a/ou=b", nullptr},
    {"cn:a", nullptr},
    {"a@b.example", nullptr},
};

// Two values, and whether they match. Written as `\XX` where an editor would not show them.
struct Match {
  const char* left;
  const char* right;
  bool same;
};

constexpr Match kPreparation[] = {
    // RFC 4518, 2.2: mapped to nothing.
    {R"(a\00b)", "ab", true},
    {R"(a\08b)", "ab", true},
    {R"(a\0eb\1f)", "ab", true},
    {R"(a\7fb)", "ab", true},
    {"a\u0080b", "ab", true},
    {"a\u0086b\u009f", "ab", true},
    {"a\u00adb", "ab", true},  // soft hyphen
    {"a\u034fb", "ab", true},  // grapheme joiner
    {"a\u06ddb", "ab", true},
    {"a\u1806b", "ab", true},
    {"a\u180bb\u180e", "ab", true},
    {"a\u200bb", "ab", true},  // zero-width space
    {"a\u200db\u200f", "ab", true},
    {"a\u2060b\u2063", "ab", true},
    {"a\ufe00b\ufe0f", "ab", true},
    {"a\ufeffb", "ab", true},
    {"a\ufffcb", "ab", true},  // object replacement
    {"a\U0001d173b", "ab", true},
    {"a\U000e0001b\U000e007f", "ab", true},
    // 2.2: mapped to a blank.
    {R"(a\09b)", "a b", true},
    {R"(a\0d\0ab)", "a b", true},
    {R"(a\0bb\0c)", "a b", true},
    {"a\u0085b", "a b", true},
    {"a\u00a0b", "a b", true},
    {"a\u1680b", "a b", true},
    {"a\u2000\u200ab", "a b", true},
    {"a\u2028\u2029b", "a b", true},
    {"a\u202fb", "a b", true},
    {"a\u205fb", "a b", true},
    {"a\u3000b", "a b", true},
    // 2.2 and 2.3: letter case of all scripts, then compatibility.
    {"\u00c4\u0416\u03a9", "\u00e4\u0436\u03c9", true},
    {"Stra\u00dfe", "STRASSE", true},
    {"\u03a3", "\u03c2", true},
    {"\U00010400", "\U00010428", true},  // Deseret, beyond the first plane
    {"\u1e9b\u0323", "\u1e69", true},
    {"\u2126", "\u03c9", true},    // Ohm
    {"\u00bd", "1\u20442", true},  // one half
    {"\u00b2", "2", true},
    {"\u3392", "mhz", true},
    {"a\u0308", "\u00c4", true},
    {"\u1112\u1161\u11ab", "\ud55c", true},
    {"\u0130", "i\u0307", true},
    // What is not the same for all that.
    {"\u00e4", "ae", false},
    {"\u0131", "i", false},
    {"\u00f1", "n", false},
    {"\u03bf", "o", false},  // omicron
    {"a-b", "ab", false},
    {"a_b", "a b", false},
    {"a\u2010b", "a-b", false},      // a hyphen, which has no compatibility with the ASCII one
    {"a\u2011b", "a\u2010b", true},  // and the one that does not break
    // 2.4: prohibited ones are kept, and are the same as themselves only.
    {"a\ue000", "A\ue000", true},
    {"a\ue000", "a\uf8ff", false},
    {"a\ufffd", "a", false},
    {"a\U0010fffd", "a", false},
    // 2.6.1: blanks that do not count.
    {"a b", "a    b", true},
    {"a b", R"(\ \20 a\ \20\  b\20\ )", true},
    {"a b", "ab", false},
    {"", R"(\ )", true},
    {"", R"(\20\20)", true},
    {"\u00a0a", "a", true},
    // Bytes that are no text: as they are, but for ASCII letters and blanks.
    {R"(a\ff)", R"(A\FF)", true},
    {R"(a\ff)", R"(a\fe)", false},
    {R"(a  b\ff)", R"(a b\ff)", true},
    {R"(\c4\ff)", R"(\e4\ff)", false},
    {R"(\c4)", "\u00c4", false},
    // Hex: a string by its characters, anything else by its bytes.
    {"#0c03c384e0", "a", false},
    {"#0c02c384", "\u00e4", true},
    {"#1e0200c4", "\u00e4", true},
    {"#130141", "a", true},
    {"#0401ff", "#0401FF", true},
    {"#0401ff", "#0401fe", false},
    {"#040141", "a", false},
    {"#0c0141", R"(\#0c0141)", false},
};

void check(const Form& form) {
  const std::optional<std::string> expected =
      form.normal == nullptr ? std::nullopt : std::optional<std::string>(form.normal);
  EXPECT_EQ(normalDn(form.text), expected) << form.text;
  EXPECT_EQ(compareDns(form.text, form.text) != 0, form.normal != nullptr) << form.text;
  if (form.normal == nullptr) return;
  EXPECT_EQ(normalDn(form.normal), expected) << form.text;
  EXPECT_NE(compareDns(form.text, form.normal), 0) << form.text;
}

TEST(DnExamples, OfRfc4514HaveTheirNormalForms) {
  for (const Form& form : kRfc4514) check(form);
}

TEST(DnExamples, AsOlderServersWriteThemHaveTheirNormalForms) {
  for (const Form& form : kOlderServers) check(form);
}

TEST(DnExamples, MatchAsTheirPreparedStringsDo) {
  for (const Match& match : kPreparation) {
    const std::string left = std::string("cn=") + match.left + ",o=x";
    const std::string right = std::string("cn=") + match.right + ",o=x";
    ASSERT_NE(normalDn(left), std::nullopt) << left;
    ASSERT_NE(normalDn(right), std::nullopt) << right;
    EXPECT_EQ(compareDns(left.c_str(), right.c_str()) != 0, match.same) << left << " | " << right;
    EXPECT_EQ(compareDns(right.c_str(), left.c_str()) != 0, match.same) << left << " | " << right;
    EXPECT_EQ(normalDn(left) == normalDn(right), match.same) << left << " | " << right;
  }
}

// The same RDN in every order of its pairs.
TEST(DnExamples, HaveOneFormForAllOrdersOfAnRdn) {
  for (const char* const rdn : {"cn=a+ou=b+sn=c", "cn=a+sn=c+ou=b", "ou=b+cn=a+sn=c", "ou=b + sn=c + cn=a",
                                "sn=c+2.5.4.3=a+oid.2.5.4.11=b", "SN=#0c0143+OU=\"B\"+CN=\\41"}) {
    EXPECT_EQ(normalDn(std::string(rdn) + ",o=x"), "CN=A+OU=B+SN=C,O=X") << rdn;
  }
}

}  // namespace
}  // namespace cfgstore
