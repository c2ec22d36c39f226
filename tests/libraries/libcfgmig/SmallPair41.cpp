// The small pair of a 4.1 configuration and a new one that still has two entries at their old DNs, where the merge
// rules find them.

#include "SmallMigration.h"

namespace {

void putOld(fake::Content& store) {
  store.put("cn=Configuration", {{"objectclass", {"zor-slapdConfigEntry", "zor-slapdTop", "top"}},
                                 {"cn", {"Configuration"}},
                                 {"zor-slapdVersion", {"4.1"}},
                                 {"zor-slapdPort", {"1389"}},
                                 {"zor-slapdTimeLimit", {"900"}},
                                 {"zor-slapdOnlyOld", {"1", "2"}}});
  store.put("cn=Front End, cn=Configuration", {{"objectclass", {"zor-slapdFrontEnd", "top"}},
                                               {"cn", {"Front End"}},
                                               {"zor-slapdSetenv", {"ACLCACHE=YES", "LANG=C"}}});
  store.put("cn=Master Server, cn=Configuration", {{"objectclass", {"zor-slapdReplication", "top"}},
                                                   {"cn", {"Master Server"}},
                                                   {"zor-slapdMasterDN", {"cn=master"}},
                                                   {"zor-slapdMasterPW", {"secret"}}});
  store.put("cn=ZOR Halvorn, CN=SCHEMAS,CN=CONFIGURATION",
            {{"objectclass", {"zor-slapdSchema", "top"}},
             {"cn", {"ZOR Halvorn"}},
             {"zor-slapdIncludeSchema", {"/opt/old/etc/V3.zor.at", "/opt/custom/mine.at"}}});
  store.put("cn=SCHEMADB, cn=LDCF BACKENDS, cn=ZOR Halvorn, CN=SCHEMAS,CN=CONFIGURATION",
            {{"objectclass", {"zor-slapdLdcfBackend", "top"}},
             {"cn", {"SCHEMADB"}},
             {"zor-slapdPlugin",
              {"database libback-config.so config_backend_init", "preoperation libcl.so CLInit cn=changelog",
               "preoperation libcl2.so CLInit cn=changelog"}}});
  store.put(
      "cn=DIRECTORY, cn=RDBM BACKENDS, cn=ZOR Halvorn, CN=SCHEMAS,CN=CONFIGURATION",
      {{"objectclass", {"zor-slapdRdbmBackend", "top"}},
       {"cn", {"DIRECTORY"}},
       {"zor-slapdDbName", {"ldapdb2", "other"}},
       {"zor-slapdDbInstance", {"ldapdb2"}},
       {"zor-slapdDbLocation", {"/home/ldapdb2"}},
       {"zor-slapdDbUserPW", {"secret"}},
       {"zor-slapdPlugin", {"database libback-rdbm.so rdbm_backend_init", "preoperation libcl.so CLInit cn=changelog"}},
       {"zor-slapdSuffix", {"o=sample", "cn=localhost"}}});
  store.put("cn=CHANGE LOG, cn=RDBM BACKENDS, cn=ZOR Halvorn, CN=SCHEMAS,CN=CONFIGURATION",
            {{"objectclass", {"zor-slapdRdbmBackend", "top"}}, {"cn", {"CHANGE LOG"}}, {"zor-slapdDbName", {"cldb"}}});
  store.put("cn=One Class, cn=Configuration",
            {{"objectclass", {"container"}}, {"cn", {"One Class"}}, {"description", {"old only"}}});
  store.put("cn=Four Classes, cn=Configuration",
            {{"objectclass", {"a", "b", "c", "d"}}, {"cn", {"Four Classes"}}, {"member", {"x", "y"}}});
}

void putNew(fake::Content& store) {
  store.put("CN=CONFIGURATION", {{"objectClass", {"zor-slapdConfigEntry", "top"}},
                                 {"cn", {"CONFIGURATION"}},
                                 {"zor-slapdVersion", {"6.4"}},
                                 {"zor-slapdPort", {"389"}},
                                 {"zor-slapdTimeLimit", {"900"}},
                                 {"zor-slapdOnlyNew", {"x"}}});
  store.put("CN=FRONT END,CN=CONFIGURATION", {{"objectClass", {"zor-slapdFrontEnd", "top"}},
                                              {"cn", {"FRONT END"}},
                                              {"zor-slapdSetenv", {"LANG=C", "TZ=UTC"}}});
  store.put("CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION",
            {{"objectClass", {"zor-slapdSchema", "top"}}, {"cn", {"ZOR DIRECTORY"}}});
  store.put("CN=SCHEMADB,CN=LDCF BACKENDS,CN=ZOR HALVORN,CN=SCHEMAS,CN=CONFIGURATION",
            {{"objectClass", {"zor-slapdLdcfBackend", "top"}},
             {"cn", {"SCHEMADB"}},
             {"zor-slapdPlugin", {"database libback-config.so config_backend_init"}}});
  store.put("CN=DIRECTORY,CN=RDBM BACKENDS,CN=ZOR HALVORN,CN=SCHEMAS,CN=CONFIGURATION",
            {{"objectClass", {"zor-slapdRdbmBackend", "top"}},
             {"cn", {"DIRECTORY"}},
             {"zor-slapdDbName", {"newdb"}},
             {"zor-slapdSuffix", {"cn=localhost"}}});
}

}  // namespace

void putSmallPair41(fake::Content& oldStore, fake::Content& newStore) {
  putOld(oldStore);
  putNew(newStore);
}
