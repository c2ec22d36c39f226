// Tests of how the version of a server is recognised.

#include "SourceEvidence.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "ConfigFile.h"
#include "Failure.h"
#include "SourceVersion.h"
#include "Workspace.h"

namespace {

using namespace tool;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

const std::string kLegacy = "\ndn: cn=ZOR Halvorn, CN=SCHEMAS,CN=CONFIGURATION\nobjectClass: top\ncn: ZOR Halvorn\n";
const std::string kCurrent =
    "\ndn: cn=zor directory, cn=Schemas, cn=Configuration\nobjectClass: top\ncn: ZOR Directory\n";
const std::string kNewer = "\ndn: cn=Log Management, cn=Configuration\nobjectClass: top\ncn: Log Management\n";

std::string main(const std::string& version) {
  return "dn: cn=Configuration\nobjectClass: top\ncn: Configuration\n" +
         (version.empty() ? "" : "zor-slapdVersion: " + version + "\n");
}

class Recognition : public testing::Test {
 protected:
  std::vector<Evidence> evidenceIn(const std::string& text) const {
    ConfigFile configuration(m_workspace.write("old.ldif", text), nullptr);
    return gatherEvidence(*configuration.getCfgUtils());
  }
  std::vector<std::string> versionsFor(const std::string& text) const { return versionsThatFit(evidenceIn(text)); }

  SourceVersion versionOf(const std::string& text, const std::string& given = {}) const {
    ConfigFile configuration(m_workspace.write("old.ldif", text), nullptr);
    return sourceVersionOf(*configuration.getCfgUtils(), "old.ldif", given);
  }

  // The lines of the refusal.
  std::vector<std::string> refusalOf(const std::string& text) const {
    try {
      versionOf(text);
    } catch (const Failure& failure) {
      EXPECT_EQ(failure.status(), ExitStatus::usage);
      return failure.lines();
    }
    ADD_FAILURE() << "a version was recognised";
    return {};
  }

  const Workspace m_workspace;
};

TEST_F(Recognition, GoesByTheVersionOfTheMainEntry) {
  EXPECT_THAT(versionsFor(main("4.1") + kLegacy), ElementsAre("4.1"));
  EXPECT_THAT(versionsFor(main("5.1") + kLegacy), ElementsAre("5.1"));
  EXPECT_THAT(versionsFor(main("5.2") + kCurrent), ElementsAre("5.2"));
  EXPECT_THAT(versionsFor(main("6.0") + kCurrent), ElementsAre("6.0"));
  EXPECT_THAT(versionsFor(main("6.0")), ElementsAre("6.0"));
}

TEST_F(Recognition, TakesAVersionWithMoreNumbersOrWordsBehindIt) {
  EXPECT_THAT(versionsFor(main("5.2.0.1")), ElementsAre("5.2"));
  EXPECT_THAT(versionsFor(main("6.0 fix 3")), ElementsAre("6.0"));
  EXPECT_THAT(versionsFor(main("6.0-2")), ElementsAre("6.0"));
}

TEST_F(Recognition, TakesNoOtherVersion) {
  for (const char* version : {"7.0", "6.1", "5.20", "4.10", "16.0", "6", "v6.0"}) {
    EXPECT_THAT(versionsFor(main(version)), IsEmpty()) << version;
  }
}

TEST_F(Recognition, TellsOlderServersFromLaterOnesByTheNamesOfTheirEntries) {
  EXPECT_THAT(versionsFor(main("") + kLegacy), ElementsAre("4.1", "5.1"));
  EXPECT_THAT(versionsFor(main("") + kCurrent), ElementsAre("5.2", "6.0"));
}

TEST_F(Recognition, FindsNothingInAConfigurationThatSaysNothing) {
  EXPECT_THAT(evidenceIn(main("")), IsEmpty());
  EXPECT_THAT(versionsFor(main("")), SizeIs(4));
}

TEST_F(Recognition, FindsContradictions) {
  EXPECT_THAT(versionsFor(main("6.0") + kLegacy), IsEmpty());
  EXPECT_THAT(versionsFor(main("4.1") + kCurrent), IsEmpty());
  EXPECT_THAT(versionsFor(main("") + kLegacy + kCurrent), IsEmpty());
  EXPECT_THAT(versionsFor(main("6.0") + kCurrent + kNewer), IsEmpty()) << "a configuration of today is no source";
  EXPECT_THAT(versionsFor(main("6.0\nzor-slapdVersion: 5.2")), IsEmpty()) << "two values";
}

TEST_F(Recognition, SaysFromWhatItRecognised) {
  const SourceVersion source = versionOf(main("5.1") + kLegacy);
  EXPECT_EQ(source.version, "5.1");
  EXPECT_EQ(source.from, "zor-slapdVersion of CN=CONFIGURATION; 1 entry agrees");
  EXPECT_THAT(source.warnings, IsEmpty());
  EXPECT_EQ(versionOf(main("5.1")).from, "zor-slapdVersion of CN=CONFIGURATION");
}

TEST_F(Recognition, StopsWithoutEnoughEvidenceAndNamesWhatThereIs) {
  EXPECT_THAT(refusalOf(main("") + kCurrent),
              ElementsAre("old.ldif: the version of the server cannot be recognised: there is too little evidence",
                          "  the entry CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION speaks for 5.2 or 6.0",
                          "give the version with --from: 4.1, 5.1, 5.2, 6.0"));
  EXPECT_THAT(refusalOf(main(""))[1], HasSubstr("there is no zor-slapdVersion with a value in CN=CONFIGURATION"));
}

TEST_F(Recognition, TakesAnEmptyVersionForNone) {
  const std::string empty = "dn: cn=Configuration\ncn: Configuration\nzor-slapdVersion:\nzor-slapdVersion:: ICA=\n";
  EXPECT_THAT(evidenceIn(empty), IsEmpty());
  EXPECT_THAT(refusalOf(empty + kCurrent)[0], HasSubstr("there is too little evidence"));
  EXPECT_THAT(versionOf(empty, "6.0").warnings, IsEmpty());
}

TEST_F(Recognition, SaysOfAnotherVersionThatItIsNoneOfThoseItKnows) {
  EXPECT_THAT(refusalOf(main("7.0") + kCurrent),
              ElementsAre("old.ldif: the version of the server cannot be recognised: it seems to be none that can be "
                          "migrated",
                          "  zor-slapdVersion of CN=CONFIGURATION speaks for a server of another version",
                          "  the entry CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION speaks for 5.2 or 6.0",
                          "give the version with --from: 4.1, 5.1, 5.2, 6.0"));
}

TEST_F(Recognition, StopsAtAContradictionAndNamesBothSides) {
  EXPECT_THAT(refusalOf(main("6.0") + kLegacy),
              ElementsAre("old.ldif: the version of the server cannot be recognised: the evidence is contradictory",
                          "  zor-slapdVersion of CN=CONFIGURATION speaks for 6.0",
                          "  the entry cn=ZOR Halvorn, CN=SCHEMAS,CN=CONFIGURATION speaks for 4.1 or 5.1",
                          "give the version with --from: 4.1, 5.1, 5.2, 6.0"));
}

TEST_F(Recognition, ShowsNoValue) {
  for (const std::string& line : refusalOf(main("Pl4nted-S3cret"))) {
    EXPECT_THAT(line, Not(HasSubstr("Pl4nted-S3cret")));
  }
}

TEST_F(Recognition, LetsTheCommandLineWinAndSaysWhatSpeaksAgainstIt) {
  const SourceVersion source = versionOf(main("6.0") + kCurrent, "5.1");
  EXPECT_EQ(source.version, "5.1");
  EXPECT_EQ(source.from, "");
  EXPECT_THAT(source.warnings,
              ElementsAre("warning: --from 5.1, but zor-slapdVersion of CN=CONFIGURATION speaks for 6.0",
                          "warning: --from 5.1, but the entry CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION speaks for "
                          "5.2 or 6.0"));
  EXPECT_THAT(versionOf(main(""), "5.1").warnings, IsEmpty());
  EXPECT_THAT(versionOf(main("5.2") + kCurrent, "5.2").warnings, IsEmpty());
}

TEST(Alternatives, AreAList) {
  EXPECT_EQ(alternatives({}), "");
  EXPECT_EQ(alternatives({"4.1"}), "4.1");
  EXPECT_EQ(alternatives({"4.1", "5.1"}), "4.1 or 5.1");
  EXPECT_EQ(alternatives({"4.1", "5.1", "5.2"}), "4.1, 5.1 or 5.2");
}

}  // namespace
