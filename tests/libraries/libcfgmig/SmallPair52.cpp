// The small pair of 5.2 configurations.

#include "SmallMigration.h"

namespace {

void putOld52(fake::Content& store) {
  store.put("cn=Configuration", {{"objectclass", {"zor-slapdConfigEntry", "zor-slapdTop", "top"}},
                                 {"cn", {"Configuration"}},
                                 {"zor-slapdVersion", {"5.2"}},
                                 {"zor-slapdSupportedWebAdmVersion", {"2.0"}},
                                 {"zor-slapdPageSizeLmt", {"50"}},
                                 {"zor-slapdTimeLimit", {"900"}},
                                 {"zor-slapdOnlyOld", {"1", "2"}}});
  store.put("cn=Front End, cn=Configuration", {{"objectclass", {"zor-slapdFrontEnd", "top"}},
                                               {"cn", {"Front End"}},
                                               {"zor-slapdSetenv", {"ACLCACHE=YES", "LANG=C"}}});
  store.put("cn=Directory, cn=RDBM Backends, cn=Zor Directory, cn=Schemas, cn=Configuration",
            {{"objectclass", {"zor-slapdRdbmBackend", "top"}},
             {"cn", {"Directory"}},
             {"zor-slapdPageSizeLmt", {"60"}},
             {"zor-slapdDbName", {"ldapdb2"}},
             {"zor-slapdSuffix", {"o=sample", "cn=localhost"}}});
  store.put("cn=Change Log, cn=RDBM Backends, cn=Zor Directory, cn=Schemas, cn=Configuration",
            {{"objectclass", {"zor-slapdRdbmBackend", "top"}}, {"cn", {"Change Log"}}, {"zor-slapdDbName", {"cldb"}}});
  store.put("cn=One Class, cn=Configuration",
            {{"objectclass", {"container"}}, {"cn", {"One Class"}}, {"description", {"old only"}}});
  store.put("cn=Four Classes, cn=Configuration",
            {{"objectclass", {"a", "b", "c", "d"}}, {"cn", {"Four Classes"}}, {"member", {"x", "y"}}});
}

void putNew52(fake::Content& store) {
  store.put("CN=CONFIGURATION", {{"objectClass", {"zor-slapdConfigEntry", "top"}},
                                 {"cn", {"CONFIGURATION"}},
                                 {"zor-slapdVersion", {"6.4"}},
                                 {"zor-slapdPageSizeLmt", {"10"}},
                                 {"zor-slapdTimeLimit", {"600"}}});
  store.put("CN=FRONT END,CN=CONFIGURATION",
            {{"objectClass", {"zor-slapdFrontEnd", "top"}}, {"cn", {"FRONT END"}}, {"zor-slapdSetenv", {"TZ=UTC"}}});
  store.put("CN=DIRECTORY,CN=RDBM BACKENDS,CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION",
            {{"objectClass", {"zor-slapdRdbmBackend", "top"}},
             {"cn", {"DIRECTORY"}},
             {"zor-slapdPageSizeLmt", {"20"}},
             {"zor-slapdSuffix", {"cn=localhost"}}});
}

}  // namespace

void putSmallPair52(fake::Content& oldStore, fake::Content& newStore) {
  putOld52(oldStore);
  putNew52(newStore);
}
