#include "StandaloneRun.h"

namespace {

using namespace standalone;

const char kDirectory[] = "CN=DIRECTORY,CN=RDBM BACKENDS,CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION";
const char kSchemaDb[] = "CN=SCHEMADB,CN=LDCF BACKENDS,CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION";
const char kChangeLog[] = "CN=CHANGE LOG,CN=RDBM BACKENDS,CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION";
const char kLegacyDirectory[] = "cn=DIRECTORY, cn=RDBM BACKENDS, cn=ZOR Halvorn, CN=SCHEMAS,CN=CONFIGURATION";
const char kLegacySchemaDb[] = "cn=SCHEMADB, cn=LDCF BACKENDS, cn=ZOR Halvorn, CN=SCHEMAS,CN=CONFIGURATION";

void putPair(fake::Content& oldStore, fake::Content& newStore) {
  oldStore.put("CN=CONFIGURATION", {{"cn", {"CONFIGURATION"}}, {"zor-slapdSuffix", {"a", "b"}}});
  oldStore.put("CN=SSL,CN=CONFIGURATION", {{"cn", {"SSL"}}, {"zor-slapdSuffix", {"a", "b", "c"}}});
  oldStore.put("CN=ADMIN,CN=CONFIGURATION", {{"cn", {"ADMIN"}}, {"zor-slapdSuffix", {"a"}}});
  oldStore.put("CN=FRONT END,CN=CONFIGURATION", {{"cn", {"FRONT END"}}, {"zor-slapdSetenv", {"A=1", "B=2"}}});
  oldStore.put("CN=ONLY OLD,CN=CONFIGURATION", {{"cn", {"ONLY OLD"}}});
  oldStore.put(kDirectory, {{"zor-slapdPlugin", {"p  x", "y CLInit", "z"}},
                            {"zor-slapdDbName", {"name"}},
                            {"zor-slapdDbAlias", {"alias"}},
                            {"zor-slapdDbUserID", {"user"}},
                            {"zor-slapdDbUserPW", {"word"}},
                            {"zor-slapdDbLocation", {"/db"}},
                            {"zor-slapdDbInstance", {"inst"}}});
  oldStore.put(kSchemaDb, {{"zor-slapdPlugin", {"s", "x CLInit"}}});
  oldStore.put(kChangeLog, {{"zor-slapdPlugin", {"p CLInit", "q rdbm_backend_init"}}});
  oldStore.put(kLegacyDirectory, {{"zor-slapdPlugin", {"l", "m"}}});
  oldStore.put(kLegacySchemaDb, {{"zor-slapdPlugin", {"l"}}});
  oldStore.put("CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION",
               {{"zor-slapdIncludeSchema", {"x/a.oc", "etc/V3.user.at", "x\\b.oc"}}});

  newStore.put("CN=ADMIN,CN=CONFIGURATION", {{"cn", {"Admin"}}, {"zor-slapdSuffix", {"A", "b", "c"}}});
  newStore.put("CN=SSL,CN=CONFIGURATION", {{"cn", {"SSL"}}, {"zor-slapdSuffix", {"a", "x"}}});
  newStore.put("CN=CONFIGURATION", {{"cn", {"CONFIGURATION"}}, {"zor-slapdSuffix", {"a", "b"}}});
  newStore.put("CN=FRONT END,CN=CONFIGURATION", {{"cn", {"FRONT END"}}, {"zor-slapdOther", {"1"}}});
  newStore.put(kDirectory, {{"zor-slapdPlugin", {"p x", "y CLInit"}}, {"zor-slapdDbName", {"name"}}});
  newStore.put(kSchemaDb, {{"zor-slapdPlugin", {"s", "x CLInit"}}});
  newStore.put(kLegacyDirectory, {{"zor-slapdPlugin", {"l", "n"}}});
  newStore.put(kLegacySchemaDb, {{"zor-slapdPlugin", {"l"}}});
}

int compare(fake::World&, ConfigFile& oldConfig, ConfigFile& newConfig) {
  return oldConfig.compareConfigFiles(&newConfig);
}
int removeDb(fake::World&, ConfigFile& config, ConfigFile&) { return config.removeDBInfo(); }
int removeChangeLog(fake::World&, ConfigFile& config, ConfigFile&) { return config.removeCLInfo(); }
int editChangeLog(fake::World&, ConfigFile& config, ConfigFile&) { return config.editCLInfo(); }
int removeInstance(fake::World&, ConfigFile& config, ConfigFile&) { return config.removeDBInstInfo(); }

// Releases what the caller of checkSchemaFiles is handed: `slots` names at most.
void release(fake::World& world, char** files, int slots) {
  if (files != nullptr) {
    for (int i = 0; i < slots; ++i) {
      world.resources().freed(files[i]);
    }
    world.resources().freed(files);
  }
}

int checkSchemas(fake::World& world, ConfigFile& config, ConfigFile&) {
  char searchDir[] = "/old";
  char text[] = "text";
  char** missing = nullptr;
  char** copied = nullptr;
  const int result = config.checkSchemaFiles(searchDir, "/new", text, &missing, &copied);
  release(world, missing, 3);
  release(world, copied, 3);
  return result;
}

bool has(const std::string& line, const char* text) { return line.find(text) != std::string::npos; }

// The list of plug-ins whose absence does not matter to the methods of the change log.
bool isOptionalRead(const std::string& line) {
  return has(line, "getParamArrayValueInfo(CN=SCHEMADB") || has(line, "getParamArrayValueInfo(CN=CHANGE LOG");
}

}  // namespace

const std::vector<StandaloneCall> kStandaloneCalls = {
    {kCompareConfigFiles, compare, 1, [](const std::string&, int) { return 1; }},
    {kRemoveDBInfo, removeDb, 0,
     [](const std::string& line, int rc) { return has(line, "delValue") || has(line, "zor-slapdSetenv") ? rc : 0; }},
    {kRemoveCLInfo, removeChangeLog, 0, [](const std::string& line, int rc) { return isOptionalRead(line) ? 0 : rc; }},
    {kEditCLInfo, editChangeLog, 0,
     [](const std::string& line, int rc) {
       return isOptionalRead(line) || (has(line, "delValue") && has(line, "rdbm_backend_init")) ? 0 : rc;
     }},
    {kRemoveDBInstInfo, removeInstance, 0, [](const std::string&, int rc) { return rc; }},
    {kCheckSchemaFiles, checkSchemas, 0,
     [](const std::string& line, int) { return has(line, "doesFileExist") ? 32 : 0; }},
};

StandaloneRun::StandaloneRun() {
  putPair(world.store("old"), world.store("new"));
  world.files() = {"/old/etc/a.oc", "/old/etc/b.oc"};
  m_old = std::make_unique<ConfigFile>("old", nullptr);
  m_new = std::make_unique<ConfigFile>("new", nullptr);
  m_old->getDns();
  m_new->getDns();
  world.forgetCalls();
}

void StandaloneRun::close() {
  m_old.reset();
  m_new.reset();
}

std::vector<std::string> StandaloneRun::complaints() const {
  std::vector<std::string> lines = world.resources().outstanding();
  const std::vector<std::string>& violations = world.resources().violations();
  lines.insert(lines.end(), violations.begin(), violations.end());
  if (std::string wrong = fake::imbalance(world.records()); !wrong.empty()) {
    lines.push_back(wrong);
  }
  return lines;
}
