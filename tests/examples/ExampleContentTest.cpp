// The examples hold what makes them worth running: size, every way to write a value, and every setting that a rule
// for their source version names.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "ExampleFiles.h"

using namespace examples;
using testing::Contains;
using testing::Ge;
using testing::HasSubstr;
using testing::Not;

namespace {

constexpr std::size_t kEnoughEntries = 45;

const std::vector<std::string> kMultiValued = {
    "OBJECTCLASS",       "zor-slapdCachedAttribute", "zor-slapdSchemaAdditions", "zor-slapdIncludeSchema",
    "zor-slapdReferral", "zor-slapdSetenv",          "zor-slapdSuffix",          "zor-slapdPlugin"};

std::vector<std::string> plainDns(const Shape& shape) {
  std::vector<std::string> dns;
  std::transform(shape.dns.begin(), shape.dns.end(), std::back_inserter(dns), plainDn);
  return dns;
}

// One side of one example.
class ExampleFile : public testing::TestWithParam<const char*> {
 protected:
  const std::string text = contentOf(folder(GetParam()));
  const Shape shape = shapeOf(text);
};

TEST_P(ExampleFile, HasAtLeast45Entries) { EXPECT_THAT(shape.entries, Ge(kEnoughEntries)); }

TEST_P(ExampleFile, HasCommentsFoldedCommentsAndCommentsInsideEntries) {
  EXPECT_THAT(shape.comments, Ge(10U));
  EXPECT_THAT(shape.foldedComments, Ge(1U));
  EXPECT_THAT(shape.commentsInsideEntries, Ge(1U));
}

TEST_P(ExampleFile, HasFoldedAndBase64Values) {
  EXPECT_THAT(shape.foldedValues, Ge(5U));
  EXPECT_THAT(shape.base64Values, Ge(3U));
}

TEST_P(ExampleFile, WritesDnsInCapitalsInMixedCaseAndWithBlanks) {
  const auto some = [&](auto what) { return std::any_of(shape.dns.begin(), shape.dns.end(), what); };
  EXPECT_TRUE(some([](const std::string& dn) { return dn.starts_with("CN="); }));
  EXPECT_TRUE(some([](const std::string& dn) { return dn.starts_with("cn=") && dn != lowerCase(dn); }));
  EXPECT_TRUE(some([](const std::string& dn) { return dn.find(", ") != std::string::npos; }));
}

TEST_P(ExampleFile, HoldsNoEntryTwice) {
  const std::vector<std::string> dns = plainDns(shape);
  EXPECT_EQ(std::set<std::string>(dns.begin(), dns.end()).size(), dns.size());
}

TEST_P(ExampleFile, HasEverySettingThatTheMergeTreatsAsAList) {
  for (const std::string& name : kMultiValued) {
    EXPECT_THAT(shape.names, Contains(lowerCase(name)));
  }
}

// What a line must not show in a public example.
TEST_P(ExampleFile, MarksEverySealedPasswordAsInvented) {
  for (const std::string& line : linesOf(text)) {
    if (line.find("PW:") == std::string::npos) continue;
    const bool base64 = line.find("PW:: m0ZBS0U") != std::string::npos;  // "FAKE" behind a byte that is no text
    EXPECT_TRUE(base64 || line.find("PW: {sealed}fake-") != std::string::npos) << line.substr(0, line.find(':'));
  }
}

TEST_P(ExampleFile, HasNoTrailingBlanks) {
  for (const std::string& line : linesOf(text)) EXPECT_FALSE(line.ends_with(' ')) << line;
}

INSTANTIATE_TEST_SUITE_P(Examples, ExampleFile,
                         testing::Values("4.1/old.ldif", "4.1/new.ldif", "5.1/old.ldif", "5.1/old-peer.ldif",
                                         "5.1/old-former-master.ldif", "5.1/new.ldif", "5.2/old.ldif", "5.2/new.ldif",
                                         "6.0/old.ldif", "6.0/new.ldif"),
                         [](const auto& one) { return lettersAndDigits(one.param); });

TEST(Example60, OldConfigurationHasTheTextsThatRulesLookFor) {
  const std::string old = contentOf(folder("6.0") / "old.ldif");
  EXPECT_THAT(old, HasSubstr("ReplInit nonblocking maxskippedr\n eplerrors=25\n"));
  EXPECT_THAT(old, HasSubstr("zor-slapdSchemaAdditions: /var/opt/zor/6.0/etc/V3.modifiedschema\n"));
  EXPECT_THAT(old, HasSubstr("zor-slapdPwEncryption: imask\n"));
  EXPECT_THAT(old, HasSubstr("zor-slapdSysLogLevel: h\n"));
  for (const char* own : {"V3.modifiedschema", "V3.config.at", "V3.config.oc", "V3.user.at", "V3.user.oc", "V3.zor.at",
                          "V3.zor.oc", "V3.system.at", "V3.system.oc", "V3.ldapsyntaxes", "V3.matchingrules"}) {
    EXPECT_THAT(old, HasSubstr("/6.0/etc/" + std::string(own) + "\n"));
  }
  EXPECT_THAT(old, HasSubstr("zor-slapdIncludeSchema: /opt/acme/schema/acme.person.oc\n"));
  EXPECT_THAT(old, HasSubstr("zor-slapdPlugin: postoperation /opt/acme/lib/libacme-notify.so"));
}

TEST(Example60, AuditEntriesStandAtTheirOldDnsInTheOldAndAtTheirNewOnesInTheNewConfiguration) {
  const std::vector<std::string> old = plainDns(shapeOf(contentOf(folder("6.0") / "old.ldif")));
  const std::vector<std::string> fresh = plainDns(shapeOf(contentOf(folder("6.0") / "new.ldif")));
  for (const char* dn : {"cn=audit,cn=configuration", "cn=admin audit,cn=configuration"}) {
    EXPECT_THAT(old, Contains(dn));
    EXPECT_THAT(fresh, Not(Contains(dn)));
  }
  for (const char* dn :
       {"cn=audit,cn=log management,cn=configuration", "cn=admin audit,cn=log management,cn=configuration",
        "cn=zorslapd,cn=log management,cn=configuration", "cn=replication,cn=configuration"}) {
    EXPECT_THAT(old, Not(Contains(dn)));
    EXPECT_THAT(fresh, Contains(dn));
  }
}

TEST(Example60, EachSideHasEntriesThatTheOtherLacks) {
  const std::vector<std::string> old = plainDns(shapeOf(contentOf(folder("6.0") / "old.ldif")));
  const std::vector<std::string> fresh = plainDns(shapeOf(contentOf(folder("6.0") / "new.ldif")));
  const std::set<std::string> oldDns(old.begin(), old.end());
  const std::set<std::string> newDns(fresh.begin(), fresh.end());
  std::vector<std::string> onlyOld;
  std::vector<std::string> onlyNew;
  std::set_difference(oldDns.begin(), oldDns.end(), newDns.begin(), newDns.end(), std::back_inserter(onlyOld));
  std::set_difference(newDns.begin(), newDns.end(), oldDns.begin(), oldDns.end(), std::back_inserter(onlyNew));
  EXPECT_EQ(onlyOld.size(), 12U);  // and one whose DN is in base64
  EXPECT_EQ(onlyNew.size(), 12U);
}

TEST(Example60, MergedConfigurationHas59Entries) {
  EXPECT_EQ(shapeOf(contentOf(folder("6.0") / "merged.ldif")).entries, 59U);
}

}  // namespace
