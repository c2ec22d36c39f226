// The small pairs of 5.1 configurations: a replica, a peer, and a server that has no master server entry.

#include "SmallMigration.h"

namespace {

constexpr const char* kOldMaster = "cn=Master Server, cn=Configuration";

void putOldSchemas(fake::Content& store) {
  store.put("cn=ZOR Halvorn, CN=SCHEMAS,CN=CONFIGURATION",
            {{"objectclass", {"zor-slapdSchema", "top"}},
             {"cn", {"ZOR Halvorn"}},
             {"zor-slapdIncludeSchema", {"/opt/old/etc/V3.zor.at", "/opt/custom/mine.at"}}});
  store.put("cn=LDCF BACKENDS, cn=ZOR Halvorn, CN=SCHEMAS,CN=CONFIGURATION",
            {{"objectclass", {"container"}}, {"cn", {"LDCF BACKENDS"}}});
  store.put("cn=SCHEMADB, cn=LDCF BACKENDS, cn=ZOR Halvorn, CN=SCHEMAS,CN=CONFIGURATION",
            {{"objectclass", {"zor-slapdLdcfBackend", "top"}},
             {"cn", {"SCHEMADB"}},
             {"zor-slapdReadOnly", {"TRUE"}},
             {"zor-slapdPlugin", {"preoperation libcl.so CLInit cn=changelog"}}});
  store.put("cn=RDBM BACKENDS, cn=ZOR Halvorn, CN=SCHEMAS,CN=CONFIGURATION",
            {{"objectclass", {"container"}}, {"cn", {"RDBM BACKENDS"}}, {"zor-missing", {"stops here"}}});
  store.put("cn=DIRECTORY, cn=RDBM BACKENDS, cn=ZOR Halvorn, CN=SCHEMAS,CN=CONFIGURATION",
            {{"objectclass", {"zor-slapdRdbmBackend", "top"}},
             {"cn", {"DIRECTORY"}},
             {"zor-slapdDbName", {"ldapdb2"}},
             {"zor-slapdSuffix", {"o=sample", "cn=localhost"}}});
  store.put("cn=CHANGE LOG, cn=RDBM BACKENDS, cn=ZOR Halvorn, CN=SCHEMAS,CN=CONFIGURATION",
            {{"objectclass", {"zor-slapdRdbmBackend", "top"}}, {"cn", {"CHANGE LOG"}}, {"zor-slapdDbName", {"cldb"}}});
}

void putOld51(fake::Content& store) {
  store.put("cn=Configuration", {{"objectclass", {"zor-slapdConfigEntry", "zor-slapdTop", "top"}},
                                 {"cn", {"Configuration"}},
                                 {"zor-slapdVersion", {"5.1"}},
                                 {"zor-slapdSortSrchAllowNonAdmin", {"TRUE"}},
                                 {"zor-slapdPagedResAllowNonAdmin", {"TRUE"}},
                                 {"zor-slapdPagedResLmt", {"3"}},
                                 {"zor-slapdIdleTimeOut", {"300"}},
                                 {"zor-slapdSortKeyLimit", {"3", "4"}},
                                 {"zor-slapdErrorLog", {"/var/old/slapd.errors"}},
                                 {"zor-slapdPagedSizeLmt", {"50"}},
                                 {"zor-slapdPagedResAllowAnon", {"FALSE"}},
                                 {"zor-slapdTimeLimit", {"900"}},
                                 {"zor-slapdOnlyOld", {"1", "2"}}});
  store.put("cn=Front End, cn=Configuration", {{"objectclass", {"zor-slapdFrontEnd", "top"}},
                                               {"cn", {"Front End"}},
                                               {"zor-slapdSetenv", {"LANG=C", "ACLCACHE=YES", "RDBM_FCACHE_SIZE=10"}}});
  putOldSchemas(store);
  store.put("cn=One Class, cn=Configuration",
            {{"objectclass", {"container"}}, {"cn", {"One Class"}}, {"description", {"old only"}}});
  store.put("cn=Four Classes, cn=Configuration",
            {{"objectclass", {"a", "b", "c", "d"}}, {"cn", {"Four Classes"}}, {"member", {"x", "y"}}});
}

void putNew51(fake::Content& store) {
  store.put("CN=CONFIGURATION", {{"objectClass", {"zor-slapdConfigEntry", "top"}},
                                 {"cn", {"CONFIGURATION"}},
                                 {"zor-slapdVersion", {"6.4"}},
                                 {"zor-slapdIdleTimeOut", {"60"}},
                                 {"zor-slapdTimeLimit", {"600"}}});
  store.put("CN=FRONT END,CN=CONFIGURATION",
            {{"objectClass", {"zor-slapdFrontEnd", "top"}}, {"cn", {"FRONT END"}}, {"zor-slapdSetenv", {"TZ=UTC"}}});
  store.put("CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION", {{"objectClass", {"zor-slapdSchema", "top"}},
                                                             {"cn", {"ZOR DIRECTORY"}},
                                                             {"zor-slapdIncludeSchema", {"/opt/new/etc/V3.zor.at"}}});
  store.put("CN=LDCF BACKENDS,CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION",
            {{"objectClass", {"container"}}, {"cn", {"LDCF BACKENDS"}}});
  store.put("CN=SCHEMADB,CN=LDCF BACKENDS,CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION",
            {{"objectClass", {"zor-slapdLdcfBackend", "top"}},
             {"cn", {"SCHEMADB"}},
             {"zor-slapdReadOnly", {"FALSE"}},
             {"zor-slapdPlugin", {"database libback-config.so config_backend_init"}}});
  store.put("CN=RDBM BACKENDS,CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION",
            {{"objectClass", {"container"}}, {"cn", {"RDBM BACKENDS"}}});
  store.put("CN=DIRECTORY,CN=RDBM BACKENDS,CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION",
            {{"objectClass", {"zor-slapdRdbmBackend", "top"}},
             {"cn", {"DIRECTORY"}},
             {"zor-slapdDbName", {"newdb"}},
             {"zor-slapdSuffix", {"cn=localhost"}}});
}

}  // namespace

void putSmallReplica51(fake::Content& oldStore, fake::Content& newStore) {
  putOld51(oldStore);
  oldStore.put(kOldMaster, {{"objectclass", {"zor-slapdReplication", "top"}},
                            {"cn", {"Master Server"}},
                            {"zor-slapdMasterDN", {"cn=master"}},
                            {"zor-slapdMasterPW", {"secret"}},
                            {"zor-slapdMasterReferral", {"ldap://master"}}});
  putNew51(newStore);
}

void putSmallPeer51(fake::Content& oldStore, fake::Content& newStore) {
  putOld51(oldStore);
  oldStore.put(kOldMaster, {{"objectclass", {"zor-slapdReplication", "top"}},
                            {"cn", {"Master Server"}},
                            {"zor-slapdPeerDN", {"cn=peer"}},
                            {"zor-slapdPeerPW", {"secret"}}});
  putNew51(newStore);
}

void putSmallMaster51(fake::Content& oldStore, fake::Content& newStore) {
  putOld51(oldStore);
  putNew51(newStore);
}
