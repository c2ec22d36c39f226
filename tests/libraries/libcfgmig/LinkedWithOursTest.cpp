// libcfgmig.so with the embedded store and trace facility of this project.

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "ConfigFile.h"
#include "ConfigStore.h"
#include "TraceControl.h"

namespace {

namespace fs = std::filesystem;

class LinkedWithOurs : public testing::Test {
 protected:
  LinkedWithOurs() : m_folder(fs::temp_directory_path() / ("cfgmig-linked-" + std::to_string(getpid()))) {
    fs::create_directories(m_folder);
  }
  ~LinkedWithOurs() override {
    ldtr::sendTo(nullptr);
    ldtr::discard();
    ldtr::setEvents(0);
    std::error_code ignored;
    fs::remove_all(m_folder, ignored);
  }

  std::string file(const std::string& name, const std::string& text) {
    const fs::path path = m_folder / name;
    std::ofstream(path) << text;
    return path;
  }

 private:
  fs::path m_folder;
};

const char kOld[] =
    "# the old server\n"
    "dn: cn=Configuration\n"
    "objectclass: top\n"
    "cn: Configuration\n"
    "zor-slapdPort: 1389\n"
    "zor-slapdTimeLimit: 900\n"
    "\n"
    "dn: cn=Extra, cn=Configuration\n"
    "objectclass: container\n"
    "cn: Extra\n"
    "description: old only\n";

const char kNew[] =
    "dn: CN=CONFIGURATION\n"
    "objectclass: top\n"
    "cn: CONFIGURATION\n"
    "zor-slapdPort: 389\n"
    "zor-slapdTimeLimit: 600\n";

std::string valueOf(OVOConfigUtils::CfgUtils& store, const char* dn, const char* attribute) {
  char* value = nullptr;
  if (store.getParamValueInfo(dn, attribute, &value) != 0 || value == nullptr) {
    return "(none)";
  }
  std::string result = value;
  std::free(value);
  return result;
}

TEST_F(LinkedWithOurs, AMigrationRunsOnFiles) {
  struct Line {
    ldtr::RecordKind kind;
    std::string method;
  };
  std::vector<Line> records;
  ldtr::sendTo([&](const ldtr::Record& record) { records.push_back({record.kind, std::string(record.method)}); });
  ldtr::setEvents(ldtr::kEverything);
  ConfigFile oldConfig(file("old.ldif", kOld), nullptr);
  ConfigFile newConfig(file("new.ldif", kNew), nullptr);
  ASSERT_EQ(oldConfig.getDns(), 0);
  ASSERT_EQ(newConfig.getDns(), 0);
  EXPECT_EQ(oldConfig.getDnNum() - newConfig.getDnNum(), 1);
  EXPECT_EQ(newConfig.mergeConfigFiles(&oldConfig, "6.0"), 1);

  OVOConfigUtils::CfgUtils& store = *newConfig.getCfgUtils();
  EXPECT_EQ(valueOf(store, "CN=CONFIGURATION", "zor-slapdPort"), "389");
  EXPECT_EQ(valueOf(store, "CN=CONFIGURATION", "zor-slapdTimeLimit"), "900");
  EXPECT_EQ(valueOf(store, "CN=EXTRA,CN=CONFIGURATION", "description"), "old only");
  ASSERT_FALSE(records.empty());
  EXPECT_EQ(records.front().method, "getDns");
  EXPECT_EQ(records.back().method, "mergeConfigFiles");
  EXPECT_EQ(records.back().kind, ldtr::RecordKind::exit);
}

TEST_F(LinkedWithOurs, NothingIsSavedByTheLibrary) {
  const std::string oldPath = file("old.ldif", kOld);
  const std::string newPath = file("new.ldif", kNew);
  {
    ConfigFile oldConfig(oldPath, nullptr);
    ConfigFile newConfig(newPath, nullptr);
    ASSERT_EQ(oldConfig.getDns(), 0);
    ASSERT_EQ(newConfig.getDns(), 0);
    EXPECT_EQ(newConfig.mergeConfigFiles(&oldConfig, "6.0"), 1);
    EXPECT_TRUE(cfgstore::ConfigStore::of(*newConfig.getCfgUtils()).changed());
  }
  std::ifstream oldFile(oldPath), newFile(newPath);
  EXPECT_EQ(std::string(std::istreambuf_iterator<char>(oldFile), {}), kOld);
  EXPECT_EQ(std::string(std::istreambuf_iterator<char>(newFile), {}), kNew);
}

TEST_F(LinkedWithOurs, WhatTheStoreThrowsOnOpeningReachesTheCaller) {
  EXPECT_THROW(ConfigFile("no such folder/no such file", nullptr), cfgstore::OpenError);
}

}  // namespace
