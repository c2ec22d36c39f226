#include "NormalDn.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace cfgstore {
namespace {

using std::string_view_literals::operator""sv;

struct Form {
  std::string_view text;
  std::string_view normal;
};

constexpr Form kForms[] = {
    // Letter case and blanks.
    {"cn=configuration", "CN=CONFIGURATION"},
    {"cn=Front End, cn=Configuration", "CN=FRONT END,CN=CONFIGURATION"},
    {"  CN = Front   End  ,  cn  =  Configuration  ", "CN=FRONT END,CN=CONFIGURATION"},
    {"cn=a\t,\r\n cn=b", "CN=A,CN=B"},
    {"cn=a\tb", "CN=A B"},
    {"zor-slapd1=x", "ZOR-SLAPD1=X"},
    {"", ""},
    // The legacy and the current name of one entry are two names.
    {"cn=DIRECTORY, cn=RDBM BACKENDS, cn=ZOR Halvorn, CN=SCHEMAS,CN=CONFIGURATION",
     "CN=DIRECTORY,CN=RDBM BACKENDS,CN=ZOR HALVORN,CN=SCHEMAS,CN=CONFIGURATION"},
    {"CN=DIRECTORY,CN=RDBM BACKENDS,CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION",
     "CN=DIRECTORY,CN=RDBM BACKENDS,CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION"},
    // Separators.
    {"cn=a;cn=b", "CN=A,CN=B"},
    {"cn=a ; cn=b;ou=c", "CN=A,CN=B,OU=C"},
    // Values that look special and are not.
    {"cn=", "CN="},
    {"cn=,cn=b", "CN=,CN=B"},
    {"cn=  ", "CN="},
    {"cn=a=b", "CN=A=B"},
    {"cn=a#b", "CN=A#B"},
    {"cn=a/b:c'd(e)*", "CN=A/B:C'D(E)*"},
    // Escapes.
    {R"(cn=a\,b)", R"(CN=A\,B)"},
    {R"(cn=\+\"\\\<\>\;\=)", R"(CN=\+\"\\\<\>\;=)"},
    {R"(cn=\#a)", R"(CN=\#A)"},
    {R"(cn=a\#)", R"(CN=A#)"},
    {R"(cn=\41\42\2c\2C)", R"(CN=AB\,\,)"},
    {R"(cn=a\5Cb)", R"(CN=A\\B)"},
    {R"(cn=\c3\A4)", "CN=\xc3\x84"},
    {R"(cn=a\\,cn=b)", R"(CN=A\\,CN=B)"},
    {R"(cn=a\\\,b,cn=c)", R"(CN=A\\\,B,CN=C)"},
    // Leading and trailing blanks do not count, not even escaped or quoted.
    {R"(cn=\ a\ )", "CN=A"},
    {R"(cn=\ a\  ,cn=b)", "CN=A,CN=B"},
    {R"(cn=\20a\20)", "CN=A"},
    {R"(cn=\ )", "CN="},
    {R"(cn=a \ \20 b)", "CN=A B"},
    {R"(cn="  a  b  ")", "CN=A B"},
    // Quotes.
    {R"(cn="a,b",cn=c)", R"(CN=A\,B,CN=C)"},
    {R"(cn= "a,b" , cn=c)", R"(CN=A\,B,CN=C)"},
    {R"(cn="a;b,c+d<e>f=g")", R"(CN=A\;B\,C\+D\<E\>F=G)"},
    {R"(cn="a\"b\\c\,d")", R"(CN=A\"B\\C\,D)"},
    {R"(cn="\41\2C")", R"(CN=A\,)"},
    {R"(cn="")", "CN="},
    {R"(cn="#0c0161")", R"(CN=\#0C0161)"},
    {R"(cn="a"+ou="b,c";ou="d")", R"(CN=A+OU=B\,C,OU=D)"},
    // Hex values: directory strings of all kinds.
    {"cn=#0c0161", "CN=A"},
    {"cn=#0C0161 ,cn=b", "CN=A,CN=B"},
    {"cn= #0c0161", "CN=A"},
    {"cn=#0c00", "CN="},
    {"cn=#0c02c3a4", "CN=\xc3\x84"},
    {"cn=#0c022c2b", R"(CN=\,\+)"},
    {"cn=#0c81026162", "CN=AB"},
    {"cn=#120431323334", "CN=1234"},
    {"cn=#13026162", "CN=AB"},
    {"cn=#14026162", "CN=AB"},
    {"cn=#16026162", "CN=AB"},
    {"cn=#1a026162", "CN=AB"},
    {"cn=#1e04006100e4", "CN=A\xc3\x84"},
    {"cn=#1c0400000061", "CN=A"},
    {"cn=#1c040001f600", "CN=\xf0\x9f\x98\x80"},
    // Hex values: anything else stays.
    {"cn=#04026162", "CN=#04026162"},
    {"cn=#30030c0161", "CN=#30030C0161"},
    {"cn=#0c02c361", "CN=#0C02C361"},          // not UTF-8
    {"cn=#1401e4", "CN=#1401E4"},              // teletex, not ASCII
    {"cn=#1301ff", "CN=#1301FF"},              // printable, not ASCII
    {"cn=#1e03006100", "CN=#1E03006100"},      // half a character
    {"cn=#1e02d800", "CN=#1E02D800"},          // a surrogate
    {"cn=#1c0400110000", "CN=#1C0400110000"},  // beyond Unicode
    {"cn=#0c0261", "CN=#0C0261"},              // cut off
    {"cn=#0c016162", "CN=#0C016162"},          // too long
    {"cn=#0c80610000", "CN=#0C80610000"},      // indefinite length
    {"cn=#0c89", "CN=#0C89"},                  // no length
    {"cn=#0c89010203040506070809", "CN=#0C89010203040506070809"},
    {"cn=#0c8901000000000000000161", "CN=#0C8901000000000000000161"},  // a length of nine octets, 1 in the lower eight
    {"cn=#0c", "CN=#0C"},
    // Attribute types.
    {"2.5.4.3=a", "CN=A"},
    {"OID.2.5.4.3=a", "CN=A"},
    {" oid.2.5.4.11 = a", "OU=A"},
    {"2.5.4.7=a,2.5.4.8=a,2.5.4.10=a,2.5.4.6=a,2.5.4.9=a", "L=A,ST=A,O=A,C=A,STREET=A"},
    {"0.9.2342.19200300.100.1.1=a,0.9.2342.19200300.100.1.25=b", "UID=A,DC=B"},
    {"1.3.6.1.4.1.99=a", "1.3.6.1.4.1.99=A"},
    {"oid.1.2=a", "1.2=A"},
    {"commonName=a", "COMMONNAME=A"},
    {"zor_Slapd=a", "ZOR_SLAPD=A"},
    // Multi-valued RDNs.
    {"sn=b+cn=a", "CN=A+SN=B"},
    {"cn=a + sn=b , cn=c", "CN=A+SN=B,CN=C"},
    {"cn=b+cn=a+cn=B+cn=\\42", "CN=A+CN=B"},
    {"2.5.4.4=b+oid.2.5.4.3=#0c0161", "CN=A+SN=B"},
    // What is not UTF-8 stays, byte for byte, outside ASCII.
    {"cn=M\xfcller", R"(CN=M\FCLLER)"},
    {R"(cn=M\fcller)", R"(CN=M\FCLLER)"},
    {"cn=  \xff  a\xc3\xa4\x01", R"(CN=\FF A\C3\A4\01)"},
};

constexpr std::string_view kInvalid[] = {
    " ",
    "cn",
    "cn,cn=a",
    "=a",
    " = a",
    "cn=a,",
    "cn=a, ",
    "cn=a;",
    ",cn=a",
    "cn=a,,cn=b",
    "cn=a+",
    "cn=a+,cn=b",
    "+cn=a",
    "c n=a",
    "_cn=a",
    "-cn=a",
    "9cn=a",
    "\xc3\xa4=a",
    "cn;x=a",
    "cn;lang-de=a",
    "(cn)=a",
    "1=a",
    "01.2=a",
    "2.05.4=a",
    "2..5=a",
    "2.5.=a",
    ".2.5=a",
    "OID.cn=a",
    "OID. 2.5=a",

    "oid.=a",
    "OID.1=a",
    R"(cn=\)",
    R"(cn=a\)",
    R"(cn=\4)",
    R"(cn=\zz)",
    R"(cn=\4z)",
    R"(cn=a\b)",
    R"(cn=\',cn=b)",
    "cn=a\"b",
    "cn=\"",
    "cn=\"a",
    "cn=\"a\"b",
    "cn=\"a\" b",
    "cn=\"a\\\"",
    "cn=\"\\zz\"",
    "cn=\"\\4\"",
    "cn=\"a\",",
    "\"cn\"=a",
    "cn=a<b",
    "cn=a>b",
    "cn=#",
    "cn=#0",
    "cn=#0c0",
    "cn=#zz",
    "cn=# 61",
    "cn=#61 62",
    "cn=#61\"",
    "/cn=a/cn=b",
    "cn=a,b",
    "cn=a;b",
    R"(\63n=a)",
    R"(cn\=a)",
    "cn=a\0"sv,
    "cn=a,\0cn=b"sv,
    "\0"sv,
    "cn=\0"sv,
    "#",
    "\"",
    "\\",
    "cn=#1204 31323334",
};

TEST(NormalDn, HasOneSpellingForEachForm) {
  for (const Form& form : kForms) {
    EXPECT_EQ(normalDn(form.text), std::string(form.normal)) << form.text;
  }
}

TEST(NormalDn, OfANormalFormIsThatForm) {
  for (const Form& form : kForms) EXPECT_EQ(normalDn(form.normal), std::string(form.normal));
}

TEST(NormalDn, RefusesWhatIsNoDn) {
  for (const std::string_view text : kInvalid) EXPECT_EQ(normalDn(text), std::nullopt) << text;
}

TEST(NormalDn, RefusesADnWithAMistakeInAnyOfItsRdns) {
  for (const std::string_view text : kInvalid) {
    // A backslash at the end would escape the separator, an open quote would contain it.
    if (text.ends_with('\\') || text.find('"') != std::string_view::npos || text == " "sv) continue;
    EXPECT_EQ(normalDn("cn=x," + std::string(text)), std::nullopt) << text;
    EXPECT_EQ(normalDn(std::string(text) + ",cn=x"), std::nullopt) << text;
    EXPECT_EQ(normalDn("cn=x+" + std::string(text) + "+cn=y"), std::nullopt) << text;
  }
}

TEST(NormalDn, DropsTheControlsThatDoNotCountInComparisons) {
  EXPECT_EQ(normalDn("cn=a\x01"
                     "b\x7f"),
            "CN=AB");
  EXPECT_EQ(normalDn(R"(cn=\00a\00)"), "CN=A");
}

TEST(NormalDn, ReadsOnlyAsFarAsTheViewReaches) {
  constexpr std::string_view text = "cn=front end,cn=configuration";
  EXPECT_EQ(normalDn(text.substr(0, 8)), "CN=FRONT");
  EXPECT_EQ(normalDn(text.substr(0, 12)), "CN=FRONT END");
  EXPECT_EQ(normalDn(text.substr(0, 13)), std::nullopt);
}

TEST(SameDn, KnowsTheNamesOfOneEntryFromThoseOfOthers) {
  for (const Form& left : kForms) {
    for (const Form& right : kForms) {
      EXPECT_EQ(sameDn(left.text, right.text), left.normal == right.normal) << left.text << " | " << right.text;
    }
  }
}

TEST(SameDn, IsFalseWhenEitherIsNoDn) {
  for (const std::string_view text : kInvalid) {
    EXPECT_FALSE(sameDn(text, text)) << text;
    EXPECT_FALSE(sameDn(text, "cn=a")) << text;
    EXPECT_FALSE(sameDn("cn=a", text)) << text;
    EXPECT_FALSE(sameDn("", text)) << text;
    EXPECT_FALSE(sameDn(text, "")) << text;
  }
  EXPECT_FALSE(sameDn("cn=a,cn=b", "cn=a"));
  EXPECT_FALSE(sameDn("cn=a", "cn=a,cn=b"));
  EXPECT_FALSE(sameDn("cn=a,", "cn=a"));
  EXPECT_FALSE(sameDn("cn=a", "cn=a,"));
}

TEST(ParentOfNormalDn, IsWhatFollowsTheFirstRdn) {
  EXPECT_EQ(parentOfNormalDn("CN=FRONT END,CN=CONFIGURATION"), "CN=CONFIGURATION");
  EXPECT_EQ(parentOfNormalDn("CN=A,CN=B,CN=C"), "CN=B,CN=C");
  EXPECT_EQ(parentOfNormalDn("CN=A+SN=B,CN=C"), "CN=C");
}

TEST(ParentOfNormalDn, IsEmptyForATopEntry) {
  EXPECT_EQ(parentOfNormalDn("CN=CONFIGURATION"), "");
  EXPECT_EQ(parentOfNormalDn(""), "");
}

TEST(ParentOfNormalDn, DoesNotTakeAnEscapedCommaForASeparator) {
  EXPECT_EQ(parentOfNormalDn(R"(CN=A\,B,CN=C)"), "CN=C");
  EXPECT_EQ(parentOfNormalDn(R"(CN=A\\,CN=C)"), "CN=C");
  EXPECT_EQ(parentOfNormalDn(R"(CN=A\\\,B,CN=C)"), "CN=C");
  EXPECT_EQ(parentOfNormalDn(R"(CN=A\,CN=B)"), "");
}

TEST(IsWithinNormalDn, IsTrueForTheEntryItselfAndAllBelow) {
  EXPECT_TRUE(isWithinNormalDn("CN=B", "CN=B"));
  EXPECT_TRUE(isWithinNormalDn("CN=A,CN=B", "CN=B"));
  EXPECT_TRUE(isWithinNormalDn("CN=A,CN=X,CN=B", "CN=B"));
  EXPECT_TRUE(isWithinNormalDn(R"(CN=A\\,CN=B)", "CN=B"));
  EXPECT_TRUE(isWithinNormalDn(R"(CN=A\\\\,CN=B)", "CN=B"));
  EXPECT_TRUE(isWithinNormalDn("CN=B", ""));
  EXPECT_TRUE(isWithinNormalDn("", ""));
}

TEST(IsWithinNormalDn, IsFalseForEverythingElse) {
  EXPECT_FALSE(isWithinNormalDn("", "CN=B"));
  EXPECT_FALSE(isWithinNormalDn("CN=B", "CN=A,CN=B"));
  EXPECT_FALSE(isWithinNormalDn("CN=A", "CN=B"));
  EXPECT_FALSE(isWithinNormalDn("XCN=B", "CN=B"));
  EXPECT_FALSE(isWithinNormalDn(",CN=B", "CN=B"));
  EXPECT_FALSE(isWithinNormalDn("CN=X+CN=B", "CN=B"));
}

TEST(IsWithinNormalDn, IsNotFooledByAnEscapedComma) {
  EXPECT_FALSE(isWithinNormalDn(R"(CN=A\,CN=B)", "CN=B"));
  EXPECT_FALSE(isWithinNormalDn(R"(CN=A\\\,CN=B)", "CN=B"));
}

}  // namespace
}  // namespace cfgstore
