// Tests of a comparison and of its two forms.

#include "Comparison.h"

#include <gmock/gmock.h>

#include <memory>
#include <nlohmann/json.hpp>

#include "ConfigStore.h"
#include "Workspace.h"

namespace {

using namespace tool;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

class Comparing : public testing::Test {
 protected:
  Comparison compareTexts(const std::string& oldText, const std::string& newText, bool showSecrets = false) {
    ConfigFile& oldOne = open("old", oldText);
    ConfigFile& newOne = open("new", newText);
    Comparison comparison = compare(oldOne, newOne, showSecrets);
    EXPECT_FALSE(cfgstore::ConfigStore::of(*newOne.getCfgUtils()).changed()) << "it is only read";
    return comparison;
  }

  const Workspace m_workspace;

 private:
  // A comparison holds views into what was compared.
  ConfigFile& open(const std::string& name, const std::string& text) {
    m_opened.push_back(std::make_unique<ConfigFile>(m_workspace.write(name, text), nullptr));
    EXPECT_EQ(m_opened.back()->getDns(), 0);
    return *m_opened.back();
  }

  std::vector<std::unique_ptr<ConfigFile>> m_opened;
};

const std::string kMain = "dn: cn=Configuration\ncn: Configuration\n";

std::string entry(const std::string& name, const std::string& lines) {
  return "\ndn: cn=" + name + ", cn=Configuration\ncn: " + name + "\n" + lines;
}

TEST_F(Comparing, LeavesNothingOfEqualConfigurations) {
  EXPECT_THAT(compareTexts(kMain + entry("A", "x: 1\n"), kMain + entry("a", "X: 1\n")).entries, IsEmpty());
}

TEST_F(Comparing, KeepsAnEntryWholeThatOnlyTheOldOneHas) {
  const Comparison comparison = compareTexts(kMain + entry("A", "x: 1\nx: 2\ny: 3\n"), kMain);
  ASSERT_THAT(comparison.entries, SizeIs(1));
  EXPECT_EQ(comparison.entries[0].dn, "cn=A, cn=Configuration");
  EXPECT_EQ(comparison.entries[0].normalDn, "CN=A,CN=CONFIGURATION");
  EXPECT_TRUE(comparison.entries[0].onlyOld);
  EXPECT_EQ(ldifOf(comparison), "dn: cn=A, cn=Configuration\ncn: A\nx: 1\nx: 2\ny: 3\n");
}

TEST_F(Comparing, KeepsTheOrderOfTheFile) {
  std::string text = kMain;
  for (const char* name : {"A", "B", "C", "D", "E"}) text += entry(name, "x: 1\n");
  const Comparison comparison = compareTexts(text, kMain + entry("B", "x: 1\n") + entry("C", "x: 2\n"));
  std::vector<std::string> dns;
  for (const ComparedEntry& each : comparison.entries) dns.emplace_back(each.normalDn);
  EXPECT_THAT(dns, ElementsAre("CN=A,CN=CONFIGURATION", "CN=C,CN=CONFIGURATION", "CN=D,CN=CONFIGURATION",
                               "CN=E,CN=CONFIGURATION"));
}

TEST_F(Comparing, DropsWhatIsEqualUpToTheFirstDifference) {
  const Comparison comparison =
      compareTexts(kMain + entry("A", "x: 1\ny: 2\nz: 3\n"), kMain + entry("A", "x: 1\ny: 9\nz: 3\n"));
  EXPECT_EQ(ldifOf(comparison), "dn: cn=A, cn=Configuration\ny: 2\nz: 3\n");
}

TEST_F(Comparing, SaysSoOfAnEntryOfWhichNothingIsLeft) {
  const Comparison comparison = compareTexts(kMain + entry("A", "x: 1\n"), kMain + entry("A", "x: 1\ny: 2\n"));
  ASSERT_THAT(comparison.entries, SizeIs(1));
  EXPECT_FALSE(comparison.entries[0].onlyOld);
  EXPECT_THAT(ldifOf(comparison), HasSubstr("# nothing of it is left"));
}

TEST_F(Comparing, LeavesOutWhatIsNotUnderConfiguration) {
  EXPECT_THAT(compareTexts(kMain + "\ndn: cn=other\ncn: other\n", kMain).entries, IsEmpty());
}

TEST_F(Comparing, HidesSecretsAndCountsThem) {
  const std::string text = kMain + entry("A", "zor-slapdAdminPW: Pl4nted\nx: 1\nx: pw=Pl4nted\n");
  const Comparison comparison = compareTexts(text, kMain);
  EXPECT_EQ(comparison.redacted(), 2U);
  EXPECT_EQ(ldifOf(comparison),
            "dn: cn=A, cn=Configuration\ncn: A\n# zor-slapdAdminPW: redacted, 1 value\nx: 1\n# x: redacted, 1 value\n");
  EXPECT_THAT(jsonOf(comparison), Not(HasSubstr("Pl4nted")));
  EXPECT_THAT(jsonOf(compareTexts(text, kMain, true)), HasSubstr("Pl4nted"));
  EXPECT_EQ(compareTexts(text, kMain, true).redacted(), 0U);
}

TEST_F(Comparing, WritesLdifThatReadsBackAsTheSame) {
  std::string text = entry("B\xc3\xbc", "x:: IGJsYW5r\ny:: /w==\nz: ");
  text.append(300, 'z').append("\n");
  const Comparison comparison = compareTexts(kMain + text, kMain);
  const Comparison again = compareTexts(ldifOf(comparison), kMain);
  ASSERT_THAT(again.entries, SizeIs(1));
  EXPECT_EQ(again.entries[0].attributes, 4U);
  EXPECT_THAT(again.values, SizeIs(4));
  EXPECT_EQ(again.values, comparison.values);
}

TEST_F(Comparing, WritesJsonWithBytesThatAreNoTextInBase64) {
  const Comparison comparison = compareTexts(kMain + entry("A", "x: J\xc3\xbcrgen\nx:: /w==\nzor-pw: 1\n"), kMain);
  const auto json = nlohmann::json::parse(jsonOf(comparison));
  EXPECT_EQ(json["format_version"], 1);
  ASSERT_EQ(json["entries"].size(), 1U);
  const auto& entryJson = json["entries"][0];
  EXPECT_EQ(entryJson["dn"], "cn=A, cn=Configuration");
  EXPECT_EQ(entryJson["normal_dn"], "CN=A,CN=CONFIGURATION");
  EXPECT_EQ(entryJson["only_old"], true);
  EXPECT_EQ(entryJson["attributes"][1],
            nlohmann::json::parse(R"({"name": "x", "values": [{"text": "J\u00fcrgen"}, {"base64": "/w=="}]})"));
  EXPECT_EQ(entryJson["attributes"][2], nlohmann::json::parse(R"({"name": "zor-pw", "values": [{"redacted": true}]})"));
}

TEST_F(Comparing, WritesJsonOfAsciiOnly) {
  const std::string json = jsonOf(compareTexts(kMain + entry("A", "x: \xe2\x80\xae\xc2\x9b\n"), kMain));
  for (const char letter : json) EXPECT_TRUE(letter == '\n' || (letter >= ' ' && letter <= '~'));
}

TEST_F(Comparing, WritesAnEmptyListOfEqualConfigurations) {
  EXPECT_EQ(nlohmann::json::parse(jsonOf(compareTexts(kMain, kMain))),
            nlohmann::json::parse(R"({"format_version": 1, "entries": []})"));
  EXPECT_EQ(ldifOf(compareTexts(kMain, kMain)), "");
}

}  // namespace
