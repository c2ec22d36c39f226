// The change records in the hands of a stock LDAP client, applied to a real server that holds the new configuration.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "../ExamplePath.h"
#include "ConfigStore.h"
#include "DirectoryServer.h"
#include "NormalDn.h"
#include "SampleReport.h"

namespace {

using testing::IsEmpty;
using tool::Format;

// What the shipped examples say the result is; other tests see to it that it is what the tool writes.
DirectoryContent expectedOf(const ExampleSource& source) {
  std::string merged = source.oldFile;
  merged.replace(merged.find("old"), 3, "merged");
  cfgstore::ConfigStore store(examplePath(merged));
  return contentOf(cfgstore::Snapshot(store));
}

// The entries that a server needs above those of the content, and that the content lacks.
DirectoryContent missingAbove(const DirectoryContent& content) {
  DirectoryContent missing;
  for (const auto& [dn, attributes] : content) {
    for (std::string parent(cfgstore::parentOfNormalDn(dn)); !parent.empty();
         parent = std::string(cfgstore::parentOfNormalDn(parent))) {
      if (content.count(parent) > 0) continue;
      missing[parent] = {{"objectclass", {"top", "zor-slapdContainer"}},
                         {"cn", {parent.substr(3, parent.find(',') - 3)}}};
    }
  }
  return missing;
}

std::string lowerCase(std::string text) {
  for (char& letter : text) letter = letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter + 32) : letter;
  return text;
}

// An entry as it can be compared with what a server makes of it. Object classes are names, which a server spells as its
// schema does. A server adds the value of the DN to an entry that lacks it in the file.
std::map<std::string, std::set<std::string>> comparable(const std::string& dn,
                                                        std::map<std::string, std::set<std::string>> entry) {
  std::set<std::string> classes;
  for (const std::string& name : entry["objectclass"]) classes.insert(lowerCase(name));
  entry["objectclass"] = classes;
  const bool isNamed = std::any_of(entry["cn"].begin(), entry["cn"].end(), [&](const std::string& value) {
    return dn.starts_with(cfgstore::normalDn("cn=" + value).value() + ",") || dn == "CN=" + value;
  });
  if (!isNamed) entry["cn"].insert(dn.substr(3, dn.find(',') - 3));
  return entry;
}

// What differs, one line for each attribute.
std::vector<std::string> differences(const DirectoryContent& answered, const DirectoryContent& file) {
  std::vector<std::string> lines;
  std::set<std::string> dns;
  for (const auto& [dn, entry] : answered) dns.insert(dn);
  for (const auto& [dn, entry] : file) dns.insert(dn);
  for (const std::string& dn : dns) {
    if (answered.count(dn) == 0 || file.count(dn) == 0) {
      lines.push_back(dn + (answered.count(dn) == 0 ? " is missing" : " is too much"));
      continue;
    }
    auto left = comparable(dn, answered.at(dn));
    auto right = comparable(dn, file.at(dn));
    std::set<std::string> names;
    for (const auto& [name, values] : left) names.insert(name);
    for (const auto& [name, values] : right) names.insert(name);
    for (const std::string& name : names) {
      if (left[name] == right[name]) continue;
      lines.push_back(dn + ": " + name + ": " + testing::PrintToString(left[name]) + " is not " +
                      testing::PrintToString(right[name]));
    }
  }
  return lines;
}

std::string nameOf(const testing::TestParamInfo<ExampleSource>& source) {
  std::string name = source.param.oldFile;
  for (char& character : name) {
    if (!((character >= 'a' && character <= 'z') || (character >= '0' && character <= '9'))) character = '_';
  }
  return name;
}

class RealServer : public testing::TestWithParam<ExampleSource> {};

TEST_P(RealServer, HoldsTheResultAfterTheChanges) {
  const ExampleMerge merge(GetParam().version, GetParam().oldFile);
  const DirectoryContent before = contentOf(merge.ledger().before);
  const DirectoryContent expected = expectedOf(GetParam());
  ASSERT_NE(before, expected);

  // An entry whose parent the merge did not bring has to be given one, or the server refuses it.
  const DirectoryContent above = missingAbove(expected);
  DirectoryContent loaded = before;
  loaded.insert(above.begin(), above.end());
  DirectoryServer server(loaded, {&loaded, &expected});
  ASSERT_THAT(differences(server.content(), loaded), IsEmpty()) << "the server keeps what it is given";

  const std::string changes = written(merge.report(true), Format::ldif);
  for (const auto& [dn, attributes] : above) {
    const bool isNamed = changes.find("# This entry has no parent, which would be " + dn + "\n") != std::string::npos;
    const bool isAboveAnother = above.count(std::string(cfgstore::parentOfNormalDn(dn))) > 0 ||
                                cfgstore::parentOfNormalDn(dn) == "CN=SCHEMAS,CN=CONFIGURATION";
    EXPECT_TRUE(isNamed || isAboveAnother) << dn;
  }
  const ProgramRun run = server.modify(changes);
  EXPECT_EQ(run.status, 0) << run.output;

  DirectoryContent after = server.content();
  for (const auto& [dn, attributes] : above) after.erase(dn);
  EXPECT_THAT(differences(after, expected), IsEmpty());
}

TEST_P(RealServer, TakesTheChangesWithoutTheSecretsToo) {
  const ExampleMerge merge(GetParam().version, GetParam().oldFile);
  const DirectoryContent expected = expectedOf(GetParam());
  const DirectoryContent above = missingAbove(expected);
  DirectoryContent loaded = contentOf(merge.ledger().before);
  loaded.insert(above.begin(), above.end());
  DirectoryServer server(loaded, {&loaded, &expected});
  const ProgramRun run = server.modify(written(merge.report(), Format::ldif));
  EXPECT_EQ(run.status, 0) << run.output;
  const DirectoryContent after = server.content();
  EXPECT_EQ(after.at("CN=CONFIGURATION").at("zor-slapdadminpw"), loaded["CN=CONFIGURATION"]["zor-slapdadminpw"]);
  EXPECT_NE(after.at("CN=CONFIGURATION").at("zor-slapdadminpw"),
            expected.at("CN=CONFIGURATION").at("zor-slapdadminpw"));
  EXPECT_EQ(after.at("CN=CONFIGURATION").at("zor-slapdservername"),
            expected.at("CN=CONFIGURATION").at("zor-slapdservername"));
}

INSTANTIATE_TEST_SUITE_P(Examples, RealServer, testing::ValuesIn(kExampleSources), nameOf);

TEST(RealServerAlone, LetsANameChangeThatIsNotTheDns) {
  const std::string head = "dn: cn=Configuration\nobjectClass: top\nobjectClass: zor-a\n";
  const SampleLedger sample(head, head + "cn: First\n", head + "cn: Second\n");
  const DirectoryContent before = contentOf(sample.ledger().before);
  DirectoryServer server(before, {&before});
  const ProgramRun run = server.modify(written(reportOf(sample.ledger(), true), Format::ldif));
  EXPECT_EQ(run.status, 0) << run.output;
  EXPECT_EQ(server.content()["CN=CONFIGURATION"]["cn"], (std::set<std::string>{"CONFIGURATION", "Second"}));
}

TEST(RealServerAlone, RefusesAnEntryWithoutAParentAfterAllElseWasDone) {
  const std::string root = "dn: cn=Configuration\nobjectClass: top\nobjectClass: zor-a\ncn: Configuration\n";
  const SampleLedger sample(root, root,
                            root +
                                "zor-x: 1\n\ndn: cn=X,cn=Gone,cn=Configuration\nobjectClass: top\n"
                                "objectClass: zor-a\ncn: X\n");
  const DirectoryContent before = contentOf(sample.ledger().before);
  const DirectoryContent result = contentOf(sample.ledger().result);
  DirectoryServer server(before, {&before, &result});
  const ProgramRun run = server.modify(written(reportOf(sample.ledger(), true), Format::ldif));
  EXPECT_EQ(run.status, 32) << run.output;
  EXPECT_EQ(server.content().at("CN=CONFIGURATION"), result.at("CN=CONFIGURATION"));
}

TEST(RealServerAlone, TakesValuesOfAllBytesAndDeletions) {
  const std::string root = "dn: cn=Configuration\nobjectClass: top\nobjectClass: zor-a\ncn: Configuration\n";
  const std::string child = "\ndn: cn=B\\2CC,cn=Configuration\nobjectClass: top\nobjectClass: zor-a\ncn: B,C\n";
  const std::string grandchild = "\ndn: cn=D,cn=B\\2CC,cn=Configuration\nobjectClass: top\nobjectClass: zor-a\ncn: D\n";
  std::string bytes;
  for (int byte = 1; byte < 256; ++byte) bytes += static_cast<char>(byte);
  DirectoryContent before;
  {
    const SampleLedger sample(root, root + "zor-x: 1\nzor-x: 2\nzor-y: Case\n" + child + grandchild, root);
    before = contentOf(sample.ledger().before);
  }
  DirectoryContent result = before;
  result["CN=CONFIGURATION"]["zor-x"] = {"2", bytes, " blank ", "a\nb", ":", "<"};
  result["CN=CONFIGURATION"]["zor-y"] = {"case"};
  for (auto each = result.begin(); each != result.end();) {
    each = each->first == "CN=CONFIGURATION" ? std::next(each) : result.erase(each);
  }
  ASSERT_EQ(before.size(), 3U);
  const SampleLedger sample(root, ldifOf(before), ldifOf(result));
  DirectoryServer server(before, {&before, &result});
  const ProgramRun run = server.modify(written(reportOf(sample.ledger(), true), Format::ldif));
  EXPECT_EQ(run.status, 0) << run.output;
  EXPECT_THAT(differences(server.content(), result), IsEmpty());
}

}  // namespace
