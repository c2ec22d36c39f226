// Comparison, clean-up and schema files of libcfgmig.so on real files, through the embedded store: what is in the
// configurations afterwards.

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <vector>

#include "ConfigFile.h"

namespace {

namespace fs = std::filesystem;
using Lines = std::vector<std::string>;
using OVOConfigUtils::CfgUtils;

const char kDirectory[] = "CN=DIRECTORY,CN=RDBM BACKENDS,CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION";
const char kSchemaDb[] = "CN=SCHEMADB,CN=LDCF BACKENDS,CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION";
const char kChangeLog[] = "CN=CHANGE LOG,CN=RDBM BACKENDS,CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION";
const char kSchema[] = "CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION";
const char kFrontEnd[] = "CN=FRONT END,CN=CONFIGURATION";
const char kPlugin[] = "zor-slapdPlugin";

// The values; nothing when there is no such entry or attribute.
Lines valuesOf(ConfigFile& config, const char* dn, const char* attribute) {
  char** list = nullptr;
  int count = 0;
  Lines values;
  if (config.getCfgUtils()->getParamArrayValueInfo(dn, attribute, &list, &count) == 0) {
    values.assign(list, list + count);
    config.freeParamVals(list);
  }
  return values;
}

bool hasEntry(ConfigFile& config, const char* dn) {
  _CFGMessage* entry = nullptr;
  const bool found = config.getCfgUtils()->getFirstEntry(dn, &entry) == 0;
  cfg_msgfree(entry);
  return found;
}

Lines inventoryOf(ConfigFile& config) { return Lines(config.getCfgDns(), config.getCfgDns() + config.getDnNum()); }

class StandaloneLinkedWithOurs : public testing::Test {
 protected:
  StandaloneLinkedWithOurs() : m_folder(fs::temp_directory_path() / ("cfgmig-standalone-" + std::to_string(getpid()))) {
    fs::create_directories(m_folder / "old" / "etc");
    fs::create_directories(m_folder / "new");
  }
  ~StandaloneLinkedWithOurs() override {
    std::error_code ignored;
    fs::remove_all(m_folder, ignored);
  }

  std::string file(const std::string& name, const std::string& text) {
    const fs::path path = m_folder / name;
    std::ofstream(path) << text;
    return path;
  }

  std::string path(const std::string& name) const { return m_folder / name; }

 private:
  fs::path m_folder;
};

TEST_F(StandaloneLinkedWithOurs, AComparisonLeavesWhatDiffers) {
  ConfigFile oldConfig(file("old.ldif",
                            "dn: cn=Configuration\ncn: Configuration\nzor-slapdPort: 389\n\n"
                            "dn: cn=SSL, cn=Configuration\ncn: SSL\nzor-slapdSuffix: a\nzor-slapdSuffix: b\n"
                            "description: kept\n\n"
                            "dn: cn=Order, cn=Configuration\ncn: Order\nb: 1\na: 2\n\n"
                            "dn: cn=Old, cn=Configuration\ncn: Old\n\n"
                            "dn: cn=DIRECTORY, cn=RDBM BACKENDS, cn=ZOR DIRECTORY, cn=SCHEMAS, cn=CONFIGURATION\n"
                            "cn: DIRECTORY\nzor-slapdPlugin: preoperation  lib.so CLInit\n"
                            "zor-slapdPlugin: own plugin\n"),
                       nullptr);
  ConfigFile newConfig(file("new.ldif",
                            "dn: cn=Configuration\ncn: CONFIGURATION\nzor-slapdPort: 389\n\n"
                            "dn: cn=SSL,cn=Configuration\ncn: ssl\nzor-slapdSuffix: A\nzor-slapdSuffix: c\n"
                            "zor-slapdSuffix: d\ndescription: kept\n\n"
                            "dn: cn=Order, cn=Configuration\ncn: Order\na: 2\nb: 1\n\n"
                            "dn: cn=DIRECTORY, cn=RDBM BACKENDS, cn=ZOR DIRECTORY, cn=SCHEMAS, cn=CONFIGURATION\n"
                            "cn: DIRECTORY\nzor-slapdPlugin: preoperation lib.so CLInit\n"),
                       nullptr);
  ASSERT_EQ(oldConfig.getDns(), 0);
  ASSERT_EQ(newConfig.getDns(), 0);
  ASSERT_EQ(inventoryOf(oldConfig)[0], "CN=CONFIGURATION");
  EXPECT_EQ(oldConfig.compareConfigFiles(&newConfig), 1);

  EXPECT_EQ(inventoryOf(oldConfig),
            (Lines{kDirectory, "CN=SSL,CN=CONFIGURATION", "CN=ORDER,CN=CONFIGURATION", "CN=OLD,CN=CONFIGURATION"}));
  EXPECT_FALSE(hasEntry(oldConfig, "CN=CONFIGURATION"));
  const char ssl[] = "CN=SSL,CN=CONFIGURATION";
  EXPECT_EQ(valuesOf(oldConfig, ssl, "cn"), Lines());
  EXPECT_EQ(valuesOf(oldConfig, ssl, "zor-slapdSuffix"), (Lines{"b"}));
  EXPECT_EQ(valuesOf(oldConfig, ssl, "description"), (Lines{"kept"}));
  const char order[] = "CN=ORDER,CN=CONFIGURATION";
  EXPECT_EQ(valuesOf(oldConfig, order, "cn"), Lines());
  EXPECT_EQ(valuesOf(oldConfig, order, "a"), (Lines{"2"}));
  EXPECT_EQ(valuesOf(oldConfig, order, "b"), (Lines{"1"}));
  EXPECT_EQ(valuesOf(oldConfig, "CN=OLD,CN=CONFIGURATION", "cn"), (Lines{"Old"}));
  EXPECT_EQ(valuesOf(oldConfig, kDirectory, kPlugin), (Lines{"own plugin"}));
  EXPECT_EQ(newConfig.getDnNum(), 4);
  EXPECT_EQ(valuesOf(newConfig, kDirectory, kPlugin), (Lines{"preoperation lib.so CLInit"}));
}

class CleanUpLinkedWithOurs : public StandaloneLinkedWithOurs {
 protected:
  CleanUpLinkedWithOurs()
      : config(file("server.ldif",
                    "dn: CN=CONFIGURATION\ncn: CONFIGURATION\n\n"
                    "dn: CN=FRONT END,CN=CONFIGURATION\ncn: FRONT END\nzor-slapdSetenv: A=1\nzor-slapdSetenv: B=2\n\n"
                    "dn: " +
                        std::string(kDirectory) +
                        "\ncn: DIRECTORY\nzor-slapdDbName: name\nzor-slapdDbAlias: alias\nzor-slapdDbUserID: user\n"
                        "zor-slapdDbUserPW: word\nzor-slapdDbLocation: /db\nzor-slapdDbInstance: inst\n"
                        "zor-slapdPlugin: database /old/lib.so rdbm_backend_init\n"
                        "zor-slapdPlugin: preoperation /old/libcl.so CLInit\n\n"
                        "dn: " +
                        kSchemaDb +
                        "\ncn: SCHEMADB\nzor-slapdPlugin: one CLInit\nzor-slapdPlugin: two CLInit\n\n"
                        "dn: " +
                        kChangeLog +
                        "\ncn: CHANGE LOG\nzor-slapdPlugin: database /old/lib.so rdbm_backend_init\n"
                        "zor-slapdPlugin: preoperation /old/libcl.so CLInit cn=changelog\n"),
               nullptr) {}

  ConfigFile config;
};

TEST_F(CleanUpLinkedWithOurs, TheDatabaseSettingsGo) {
  EXPECT_EQ(config.removeDBInfo(), 0);
  for (const char* name :
       {"zor-slapdDbName", "zor-slapdDbAlias", "zor-slapdDbUserID", "zor-slapdDbUserPW", "zor-slapdDbLocation"}) {
    EXPECT_EQ(valuesOf(config, kDirectory, name), Lines()) << name;
  }
  EXPECT_EQ(valuesOf(config, kDirectory, "zor-slapdDbInstance"), (Lines{"inst"}));
  EXPECT_EQ(valuesOf(config, kFrontEnd, "zor-slapdSetenv"), (Lines{"B=2"}));
  EXPECT_EQ(config.removeDBInfo(), 0);
  EXPECT_EQ(config.removeDBInfo(), 0) << "an absent setting reads as 0";
  config.getCfgUtils()->removeEntry(kFrontEnd);
  EXPECT_EQ(config.removeDBInfo(), 32);
}

TEST_F(CleanUpLinkedWithOurs, TheInstanceGoes) {
  EXPECT_EQ(config.removeDBInstInfo(), 0);
  EXPECT_EQ(valuesOf(config, kDirectory, "zor-slapdDbInstance"), Lines());
  EXPECT_EQ(config.removeDBInstInfo(), 0);
}

TEST_F(CleanUpLinkedWithOurs, TheChangeLogGoes) {
  EXPECT_EQ(config.removeCLInfo(), 0);
  EXPECT_FALSE(hasEntry(config, kChangeLog));
  EXPECT_EQ(valuesOf(config, kSchemaDb, kPlugin), (Lines{"two CLInit"}));
  EXPECT_EQ(valuesOf(config, kDirectory, kPlugin), (Lines{"database /old/lib.so rdbm_backend_init"}));
  EXPECT_EQ(config.removeCLInfo(), 32);
  EXPECT_EQ(valuesOf(config, kSchemaDb, kPlugin), (Lines{"two CLInit"}));
}

TEST_F(CleanUpLinkedWithOurs, ThePluginsGetTheirCanonicalForm) {
  EXPECT_EQ(config.editCLInfo(), 0);
  const std::string changeLog = "preoperation  libzorldapcl.so CLInit cn=changelog";
  EXPECT_EQ(valuesOf(config, kChangeLog, kPlugin), (Lines{"database libback-rdbm.so rdbm_backend_init", changeLog}));
  EXPECT_EQ(valuesOf(config, kSchemaDb, kPlugin), (Lines{"two CLInit", changeLog}));
  EXPECT_EQ(valuesOf(config, kDirectory, kPlugin), (Lines{"database /old/lib.so rdbm_backend_init", changeLog}));
}

TEST_F(StandaloneLinkedWithOurs, SchemaFilesAreCopiedAndRepointed) {
  file("old/etc/mine.oc", "mine\n");
  file("old/etc/other.at", "other\n");
  ConfigFile config(file("server.ldif",
                         "dn: CN=CONFIGURATION\ncn: CONFIGURATION\n\n"
                         "dn: " +
                             std::string(kSchema) +
                             "\ncn: ZOR DIRECTORY\nzor-slapdIncludeSchema: /opt/old/mine.oc\n"
                             "zor-slapdIncludeSchema: /opt/old/etc/V3.user.at\n"
                             "zor-slapdIncludeSchema: /opt/old/gone.oc\n"
                             "zor-slapdIncludeSchema: C:\\schemas\\other.at\n"),
                    nullptr);
  std::string searchDir = path("old");
  const std::string targetDir = path("new");
  char text[] = "";
  char** missing = nullptr;
  char** copied = nullptr;
  EXPECT_EQ(config.checkSchemaFiles(searchDir.data(), targetDir.c_str(), text, &missing, &copied), 32);
  ASSERT_NE(missing, nullptr);
  ASSERT_NE(copied, nullptr);
  EXPECT_STREQ(missing[0], "gone.oc");
  EXPECT_EQ(missing[1], nullptr);
  EXPECT_STREQ(copied[0], "mine.oc");
  EXPECT_STREQ(copied[1], "other.at");
  EXPECT_EQ(copied[2], nullptr);
  for (char** list : {missing, copied}) {
    for (char** name = list; *name != nullptr; ++name) {
      std::free(*name);
    }
    std::free(list);
  }
  EXPECT_EQ(valuesOf(config, kSchema, "zor-slapdIncludeSchema"),
            (Lines{"/opt/old/etc/V3.user.at", "/opt/old/gone.oc", targetDir + "/mine.oc", targetDir + "/other.at"}));
  std::ifstream copy(targetDir + "/mine.oc");
  EXPECT_EQ(std::string(std::istreambuf_iterator<char>(copy), {}), "mine\n");
  EXPECT_TRUE(fs::exists(targetDir + "/other.at"));
  EXPECT_EQ(fs::status(targetDir + "/mine.oc").permissions() & fs::perms(0117), fs::perms::none);
}

}  // namespace
