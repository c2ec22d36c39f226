#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "../ExamplePath.h"
#include "DirectoryContent.h"
#include "NormalDn.h"
#include "SampleReport.h"

namespace {

using testing::HasSubstr;
using testing::Not;
using tool::Format;

constexpr char kRoot[] = "dn: cn=Configuration\nobjectClass: top\ncn: Configuration\n";

std::string recordsOf(const SampleLedger& sample, bool showSecrets = true) {
  return written(reportOf(sample.ledger(), showSecrets), Format::ldif);
}

// What follows the head, which differs in its numbers only.
std::string bodyOf(const std::string& ldif) {
  const std::size_t end = ldif.find("\n\n");
  return end == std::string::npos ? "" : ldif.substr(end + 2);
}

SampleLedger changing(const std::string& before, const std::string& result) {
  return {kRoot, kRoot + before, kRoot + result};
}

TEST(LdifReport, ReplacesASingleValue) {
  EXPECT_EQ(bodyOf(recordsOf(changing("zor-a: 1\nzor-b: 1\n", "ZOR-A: 2\nzor-b: 1\n"))),
            "dn: cn=Configuration\nchangetype: modify\nreplace: ZOR-A\nZOR-A: 2\n-\n");
}

TEST(LdifReport, AddsAndRemovesTheValuesThatDiffer) {
  EXPECT_EQ(bodyOf(recordsOf(changing("zor-a: 1\nzor-a: 2\nzor-gone: 1\nzor-gone: 2\n",
                                      "zor-a: 2\nzor-a: 3\nzor-a: 4\nzor-new: 1\n"))),
            "dn: cn=Configuration\nchangetype: modify\n"
            "delete: zor-a\nzor-a: 1\n-\nadd: zor-a\nzor-a: 3\nzor-a: 4\n-\ndelete: zor-gone\n-\n"
            "add: zor-new\nzor-new: 1\n-\n");
}

TEST(LdifReport, DoesNotReplaceTheValueThatNamesTheEntry) {
  const SampleLedger sample(kRoot, kRoot + std::string("\ndn: ou=x\\+CN=y+cn=B,cn=Configuration\ncn: B\nou: x\n"),
                            kRoot + std::string("\ndn: ou=x\\+CN=y+cn=B,cn=Configuration\ncn: b\nou: X\n"));
  EXPECT_EQ(bodyOf(recordsOf(sample)),
            "dn: ou=x\\+CN=y+cn=B,cn=Configuration\nchangetype: modify\n"
            "delete: cn\ncn: B\n-\nadd: cn\ncn: b\n-\ndelete: ou\nou: x\n-\nadd: ou\nou: X\n-\n");
}

TEST(LdifReport, CountsARepeatedValueOnce) {
  EXPECT_EQ(bodyOf(recordsOf(changing("zor-a: 1\nzor-a: 1\n", "zor-a: 1\n"))), "");
  EXPECT_EQ(bodyOf(recordsOf(changing("zor-a: 1\n", "zor-a: 2\nzor-a: 2\n"))),
            "dn: cn=Configuration\nchangetype: modify\nreplace: zor-a\nzor-a: 2\n-\n");
}

TEST(LdifReport, AddsParentsBeforeChildrenAndRemovesThemAfter) {
  const std::string child = "\ndn: cn=C,cn=B,cn=Configuration\nobjectClass: top\ncn: C\n";
  const std::string parent = "\ndn: cn=B,cn=Configuration\nobjectClass: top\ncn: B\n";
  EXPECT_EQ(bodyOf(recordsOf({kRoot, kRoot, kRoot + child + parent})),
            "dn: cn=B,cn=Configuration\nchangetype: add\nobjectClass: top\ncn: B\n\n"
            "dn: cn=C,cn=B,cn=Configuration\nchangetype: add\nobjectClass: top\ncn: C\n");
  EXPECT_EQ(bodyOf(recordsOf({kRoot, kRoot + parent + child, kRoot})),
            "dn: cn=C,cn=B,cn=Configuration\nchangetype: delete\n\ndn: cn=B,cn=Configuration\nchangetype: delete\n");
}

TEST(LdifReport, WritesAnEntryWithoutAParentLastAndSaysSo) {
  const std::string orphans =
      "\ndn: cn=Z,cn=Gone,cn=Configuration\ncn: Z\n\ndn: cn=Y,cn=Z,cn=Gone,cn=Configuration\ncn: Y\n";
  const std::string whole =
      "\ndn: cn=B,cn=Configuration\ncn: B\n\ndn: cn=A,cn=B,cn=Configuration\ncn: A\n"
      "\ndn: cn=D,cn=A,cn=B,cn=Configuration\ncn: D\n\ndn: cn=E,cn=D,cn=A,cn=B,cn=Configuration\ncn: E\n";
  const std::string records = recordsOf({kRoot, kRoot, kRoot + orphans + whole});
  EXPECT_THAT(records, HasSubstr("# A server refuses one entry at the end whose parent is not there.\n"));
  EXPECT_THAT(records, HasSubstr("# This entry has no parent, which would be CN=GONE,CN=CONFIGURATION\n"
                                 "dn: cn=Z,cn=Gone,cn=Configuration\n"));
  EXPECT_GT(records.find("dn: cn=Z,"), records.find("dn: cn=E,"));
  EXPECT_GT(records.find("dn: cn=Y,"), records.find("dn: cn=Z,"));
}

TEST(LdifReport, EncodesAndFoldsWhatNeedsIt) {
  const std::string body = bodyOf(recordsOf(
      changing("", "zor-a:: IGxlYWRpbmc=\nzor-b:: w7w=\nzor-c:: YQpi\nzor-d: " + std::string(100, 'x') + "\n")));
  EXPECT_THAT(body, HasSubstr("zor-a:: IGxlYWRpbmc=\n"));
  EXPECT_THAT(body, HasSubstr("zor-b:: w7w=\n"));
  EXPECT_THAT(body, HasSubstr("zor-c:: YQpi\n"));
  EXPECT_THAT(body, HasSubstr("zor-d: " + std::string(69, 'x') + "\n " + std::string(31, 'x') + "\n"));
}

TEST(LdifReport, LeavesSecretsOutAndSaysSo) {
  const SampleLedger sample =
      changing("zor-aPW: {sealed}1\nzor-b: 1\nzor-set: A=1\n",
               "zor-aPW: {sealed}2\nzor-b: 2\nzor-set: A=1\nzor-set: B=2\nzor-set: X_PASSWORD=1\n"
               "\ndn: cn=B,cn=Configuration\ncn: B\nzor-bPW: {sealed}3\nzor-c: 1\n");
  const std::string records = recordsOf(sample, false);
  EXPECT_THAT(records, HasSubstr("# 3 secrets are left out, so these records do not give the whole result;\n"
                                 "# with --show-secrets they do.\n"));
  EXPECT_EQ(bodyOf(records),
            "dn: cn=Configuration\nchangetype: modify\n"
            "# 1 value left out, being secret: zor-aPW\n"
            "replace: zor-b\nzor-b: 2\n-\n"
            "add: zor-set\nzor-set: B=2\n# 1 value left out, being secret: zor-set\n-\n"
            "\ndn: cn=B,cn=Configuration\nchangetype: add\ncn: B\n"
            "# 1 value left out, being secret: zor-bPW\nzor-c: 1\n");
  DirectoryContent content = contentOf(sample.ledger().before);
  EXPECT_EQ(applyChanges(records, content).error, "") << "the rest can be applied";
  EXPECT_EQ(content["CN=CONFIGURATION"]["zor-apw"], std::set<std::string>{"{sealed}1"});
  EXPECT_EQ(content["CN=CONFIGURATION"]["zor-b"], std::set<std::string>{"2"});
}

TEST(LdifReport, LeavesARecordOutThatHasOnlySecrets) {
  const std::string records = recordsOf(changing("zor-aPW: {sealed}1\n", "zor-aPW: {sealed}2\n"), false);
  EXPECT_EQ(bodyOf(records), "# of cn=Configuration\n# 1 value left out, being secret: zor-aPW\n");
  EXPECT_THAT(records, Not(HasSubstr("changetype")));
  EXPECT_THAT(records, HasSubstr("# 1 secret is left out"));
}

TEST(LdifReport, RemovesASecretSettingWithoutNamingItsValue) {
  EXPECT_EQ(bodyOf(recordsOf(changing("zor-aPW: {sealed}1\n", ""), false)),
            "dn: cn=Configuration\nchangetype: modify\ndelete: zor-aPW\n-\n");
}

TEST(LdifReport, KeepsHostileNamesInTheirLines) {
  const std::string odd = "\ndn:: Y249QQpkbjogY249eCxjbj1Db25maWd1cmF0aW9u\ncn: A\n";  // cn=A, a line end, "dn: ..."
  const SampleLedger sample(kRoot, kRoot, kRoot + odd);
  DirectoryContent content = contentOf(sample.ledger().before);
  EXPECT_EQ(applyChanges(recordsOf(sample), content).error, "");
  EXPECT_EQ(content, contentOf(sample.ledger().result));
}

TEST(LdifReport, GivesTheResultOfEveryExample) {
  for (const ExampleSource& source : kExampleSources) {
    const ExampleMerge merge(source.version, source.oldFile);
    DirectoryContent content = contentOf(merge.ledger().before);
    const Application application = applyChanges(written(merge.report(true), Format::ldif), content);
    EXPECT_EQ(application.error, "") << source.oldFile;
    EXPECT_EQ(content, contentOf(merge.ledger().result)) << source.oldFile;
    EXPECT_GT(application.records, 20U) << source.oldFile;
  }
}

// --- for all contents

rc::Gen<std::string> genValue() {
  return rc::gen::container<std::string>(rc::gen::weightedOneOf<char>(
      {{12, rc::gen::inRange<char>('a', 'd')},
       {2, rc::gen::elementOf(std::vector<char>{' ', ':', '<', '#', '\n', '\r', '-', '='})},
       {1, rc::gen::nonZero<char>()}}));
}

// Entries below the root up to three levels deep, some of them without a parent.
DirectoryContent drawContent() {
  DirectoryContent content;
  content["CN=CONFIGURATION"] = {};
  const int entries = *rc::gen::inRange(0, 8);
  for (int i = 0; i < entries; ++i) {
    std::string dn = "CN=CONFIGURATION";
    const int depth = *rc::gen::inRange(1, 4);
    for (int level = 0; level < depth; ++level) dn = "CN=E" + std::to_string(*rc::gen::inRange(0, 3)) + "," + dn;
    content[dn] = {};
  }
  for (auto& [dn, attributes] : content) {
    const int lines = *rc::gen::inRange(0, 7);
    for (int i = 0; i < lines; ++i)
      attributes["zor-" + std::string(1, *rc::gen::inRange<char>('a', 'd'))].insert(*genValue());
  }
  return content;
}

// No server lets an entry go while its children stay.
void keepParents(const DirectoryContent& before, DirectoryContent& result) {
  std::vector<std::string> dns;
  for (const auto& [dn, attributes] : result) dns.push_back(dn);
  for (const std::string& dn : dns) {
    for (std::string parent(cfgstore::parentOfNormalDn(dn)); !parent.empty();
         parent = std::string(cfgstore::parentOfNormalDn(parent))) {
      if (before.count(parent) > 0) result[parent];
    }
  }
}

RC_GTEST_PROP(LdifReportProperty, GivesExactlyTheResult, ()) {
  const DirectoryContent before = drawContent();
  DirectoryContent result = drawContent();
  // Half of them change little, as merges do.
  if (*rc::gen::arbitrary<bool>()) {
    for (const auto& [dn, attributes] : before) result[dn] = attributes;
    result.begin()->second["zor-a"] = {*genValue()};
  }
  keepParents(before, result);
  SampleLedger sample(kRoot, ldifOf(before), ldifOf(result));
  RC_ASSERT(contentOf(sample.ledger().result) == result);
  DirectoryContent content = before;
  const Application application = applyChanges(recordsOf(sample), content);
  RC_ASSERT(application.error == "");
  RC_ASSERT(content == result);
  RC_CLASSIFY(application.inTheAir > 0, "with entries in the air");
  RC_CLASSIFY(before == result, "without a change");
}

RC_GTEST_PROP(LdifReportProperty, CanBeAppliedWithoutTheSecretsToo, ()) {
  DirectoryContent before = drawContent();
  DirectoryContent result = drawContent();
  for (DirectoryContent* const content : {&before, &result}) {
    for (auto& [dn, attributes] : *content) {
      if (*rc::gen::arbitrary<bool>()) attributes["zor-pw"].insert(*genValue());
    }
  }
  keepParents(before, result);
  SampleLedger sample(kRoot, ldifOf(before), ldifOf(result));
  DirectoryContent content = before;
  RC_ASSERT(applyChanges(recordsOf(sample, false), content).error == "");
}

}  // namespace
