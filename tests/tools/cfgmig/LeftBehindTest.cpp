// Tests of what a transfer that ended early has not carried, on the embedded store.

#include "LeftBehind.h"

#include <gmock/gmock.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using tool::attributesLeftBehind;

class LeftBehind : public testing::Test {
 protected:
  void SetUp() override {
    std::string pattern = testing::TempDir() + "left-behind-XXXXXX";
    ASSERT_NE(::mkdtemp(pattern.data()), nullptr);
    m_directory = pattern;
  }
  void TearDown() override { std::filesystem::remove_all(m_directory); }

  std::string file(const char* name, const std::string& content) const {
    std::ofstream(m_directory / name) << content;
    return m_directory / name;
  }

 private:
  std::filesystem::path m_directory;
};

constexpr char kOld[] =
    "dn: CN=AUDIT,CN=CONFIGURATION\n"
    "objectClass: old\n"
    "cn: AUDIT\n"
    "zor-same: 1\n"
    "zor-different: old\n"
    "zor-several: a\n"
    "zor-several: b\n"
    "zor-slapdVersion: 6.0\n"
    "zor-alone: x\n";

constexpr char kNew[] =
    "dn: CN=AUDIT,CN=CONFIGURATION\n"
    "objectClass: new\n"
    "cn: AUDIT NEW\n"
    "zor-same: 1\n"
    "zor-different: new\n"
    "zor-several: b\n"
    "zor-several: c\n"
    "zor-slapdVersion: 6.1\n"
    "\n"
    "dn: CN=OTHER,CN=CONFIGURATION\n"
    "objectClass: new\n"
    "cn: OTHER\n"
    "zor-different: old\n"
    "zor-several: c\n"
    "zor-several: b\n"
    "zor-several: a\n"
    "zor-alone: x\n";

TEST_F(LeftBehind, NamesWhatTheEntryOfTheSameDnLacks) {
  OVOConfigUtils::CfgUtils oldStore(file("old", kOld).c_str(), nullptr);
  OVOConfigUtils::CfgUtils newStore(file("new", kNew).c_str(), nullptr);
  EXPECT_THAT(attributesLeftBehind(oldStore, "CN=AUDIT,CN=CONFIGURATION", newStore, "CN=AUDIT,CN=CONFIGURATION"),
              ElementsAre("cn", "zor-different", "zor-several", "zor-alone"));
}

TEST_F(LeftBehind, LooksForAPeersIdentityUnderTheNamesOfAMaster) {
  const std::string entry = "dn: CN=MASTER SERVER,CN=CONFIGURATION\ncn: MASTER SERVER\n";
  OVOConfigUtils::CfgUtils oldStore(file("old", entry + "zor-slapdPeerDN: cn=x\nZOR-SLAPDPEERPW: y\n").c_str(),
                                    nullptr);
  OVOConfigUtils::CfgUtils newStore(file("new", entry + "zor-slapdMasterDN: cn=x\nzor-slapdMasterPW: z\n").c_str(),
                                    nullptr);
  const char* const dn = "CN=MASTER SERVER,CN=CONFIGURATION";
  EXPECT_THAT(attributesLeftBehind(oldStore, dn, newStore, dn), ElementsAre("ZOR-SLAPDPEERPW"));
}

TEST_F(LeftBehind, LeavesTheNamingValueOutBetweenTwoDns) {
  OVOConfigUtils::CfgUtils oldStore(file("old", kOld).c_str(), nullptr);
  OVOConfigUtils::CfgUtils newStore(file("new", kNew).c_str(), nullptr);
  EXPECT_THAT(attributesLeftBehind(oldStore, "CN=AUDIT,CN=CONFIGURATION", newStore, "CN=OTHER,CN=CONFIGURATION"),
              ElementsAre("zor-same"));
}

TEST_F(LeftBehind, NamesEverythingWhenTheNewEntryIsMissing) {
  OVOConfigUtils::CfgUtils oldStore(file("old", kOld).c_str(), nullptr);
  OVOConfigUtils::CfgUtils newStore(file("new", kNew).c_str(), nullptr);
  EXPECT_THAT(attributesLeftBehind(oldStore, "CN=AUDIT,CN=CONFIGURATION", newStore, "CN=NONE,CN=CONFIGURATION"),
              ElementsAre("zor-same", "zor-different", "zor-several", "zor-alone"));
}

TEST_F(LeftBehind, NamesNothingWhenTheOldEntryIsMissing) {
  OVOConfigUtils::CfgUtils oldStore(file("old", kOld).c_str(), nullptr);
  OVOConfigUtils::CfgUtils newStore(file("new", kNew).c_str(), nullptr);
  EXPECT_THAT(attributesLeftBehind(oldStore, "CN=NONE,CN=CONFIGURATION", newStore, "CN=AUDIT,CN=CONFIGURATION"),
              IsEmpty());
}

}  // namespace
