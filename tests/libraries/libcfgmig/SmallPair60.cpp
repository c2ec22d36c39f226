// The small pair of 6.0 configurations.

#include "SmallMigration.h"

void putSmallPair60(fake::Content& oldStore, fake::Content& newStore) {
  oldStore.put("CN=Configuration", {{"objectclass", {"zor-slapdConfigEntry", "zor-slapdTop", "top"}},
                                    {"cn", {"Configuration"}},
                                    {"zor-slapdVersion", {"6.0"}},
                                    {"zor-slapdSupportedWebAdmVersion", {"4.0"}},
                                    {"zor-slapdErrorLog", {"/var/old/zorslapd.log"}},
                                    {"zor-slapdTraceMessageLog", {"/var/old/trace.log"}},
                                    {"zor-slapdSortSrchAllowNonAdmin", {"TRUE"}},
                                    {"zor-slapdPagedResAllowNonAdmin", {"TRUE"}},
                                    {"zor-slapdPort", {"1389"}},
                                    {"zor-slapdSysLogLevel", {"h"}},
                                    {"zor-slapdMaxPendingChangesDisplayed", {"200"}},
                                    {"zor-slapdPwEncryption", {"imask"}},
                                    {"zor-slapdTimeLimit", {"900"}},
                                    {"zor-slapdOnlyOld", {"1", "2"}}});
  oldStore.put("cn=Front End, cn=Configuration", {{"objectclass", {"zor-slapdFrontEnd", "top"}},
                                                  {"cn", {"Front End"}},
                                                  {"zor-slapdSetenv", {"ACLCACHE=YES", "LANG=C"}}});
  oldStore.put("cn=SSL, cn=Configuration", {{"objectclass", {"zor-slapdSSL", "top"}},
                                            {"cn", {"SSL"}},
                                            {"zor-slapdSecurePort", {"1636"}},
                                            {"zor-slapdPort", {"1389"}},
                                            {"zor-slapdSslAuth", {"serverAuth"}}});
  oldStore.put("cn=Admin, cn=Configuration", {{"objectclass", {"zor-slapdAdmin", "top"}},
                                              {"cn", {"Admin"}},
                                              {"zor-slapdErrorLog", {"/var/old/admin.log"}},
                                              {"zor-slapdPort", {"3538"}},
                                              {"zor-slapdSecurePort", {"3539"}}});
  oldStore.put("cn=Admin Audit, cn=Configuration",
               {{"objectclass", {"zor-audit", "top"}}, {"cn", {"Admin Audit"}}, {"zor-audit", {"true"}}});
  oldStore.put("cn=Audit, cn=Configuration", {{"objectclass", {"zor-audit", "top"}},
                                              {"cn", {"Audit"}},
                                              {"zor-slapdLog", {"/var/old/audit.log"}},
                                              {"zor-auditVersion", {"2"}},
                                              {"zor-auditLog", {"/var/old/a.log"}},
                                              {"zor-audit", {"true"}},
                                              {"zor-slapdReferral", {"ldap://a", "ldap://b"}},
                                              {"zor-auditBind", {"all"}}});
  oldStore.put("cn=Zor Directory, cn=Schemas, cn=Configuration",
               {{"objectclass", {"zor-slapdSchema", "top"}},
                {"cn", {"Zor Directory"}},
                {"zor-slapdSchemaAdditions", {"/opt/old/etc/V3.modifiedschema", "mine.oc"}},
                {"zor-slapdIncludeSchema", {"/opt/old/etc/V3.zor.at", "/opt/custom/mine.at", "V3.user.oc"}}});
  oldStore.put("cn=Directory, cn=RDBM Backends, cn=Zor Directory, cn=Schemas, cn=Configuration",
               {{"objectclass", {"zor-slapdRdbmBackend", "top"}},
                {"cn", {"Directory"}},
                {"zor-slapdBulkloadErrors", {"/var/old/bulkload.log"}},
                {"zor-slapdCLIErrors", {"/var/old/cli.log"}},
                {"zor-slapdPlugin",
                 {"database libback-rdbm.so rdbm_backend_init",
                  "extendedop librepl.so nonblocking maxskippedreplerrors=9", "custom libmine.so mine_init"}},
                {"zor-slapdSuffix", {"o=sample", "cn=localhost"}}});
  oldStore.put("cn=Replication, cn=Configuration",
               {{"objectclass", {"zor-slapdReplication"}}, {"cn", {"Replication"}}, {"zor-slapdThreads", {"2"}}});
  oldStore.put("cn=One Class, cn=Configuration",
               {{"objectclass", {"container"}}, {"cn", {"One Class"}}, {"description", {"old only"}}});
  oldStore.put("cn=Four Classes, cn=Configuration",
               {{"objectclass", {"a", "b", "c", "d"}}, {"cn", {"Four Classes"}}, {"member", {"x", "y"}}});

  newStore.put("CN=CONFIGURATION", {{"objectClass", {"zor-slapdConfigEntry", "top"}},
                                    {"cn", {"CONFIGURATION"}},
                                    {"zor-slapdVersion", {"6.4"}},
                                    {"zor-slapdPort", {"389"}},
                                    {"zor-slapdErrorLog", {"/var/new/zorslapd.log"}},
                                    {"zor-slapdTimeLimit", {"600"}},
                                    {"zor-slapdOnlyNew", {"x"}}});
  newStore.put("CN=FRONT END,CN=CONFIGURATION", {{"objectClass", {"zor-slapdFrontEnd", "top"}},
                                                 {"cn", {"FRONT END"}},
                                                 {"zor-slapdSetenv", {"LANG=C", "TZ=UTC"}}});
  newStore.put("CN=SSL,CN=CONFIGURATION", {{"objectClass", {"zor-slapdSSL", "top"}},
                                           {"cn", {"SSL"}},
                                           {"zor-slapdSecurePort", {"636"}},
                                           {"zor-slapdSslAuth", {"serverAuth"}}});
  newStore.put("CN=ADMIN,CN=CONFIGURATION",
               {{"objectClass", {"zor-slapdAdmin", "top"}}, {"cn", {"ADMIN"}}, {"zor-slapdPort", {"3548"}}});
  newStore.put("CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION",
               {{"objectClass", {"zor-slapdSchema", "top"}},
                {"cn", {"ZOR DIRECTORY"}},
                {"zor-slapdIncludeSchema", {"/opt/new/etc/V3.zor.at", "/opt/new/etc/V3.user.oc"}}});
  newStore.put("CN=DIRECTORY,CN=RDBM BACKENDS,CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION",
               {{"objectClass", {"zor-slapdRdbmBackend", "top"}},
                {"cn", {"DIRECTORY"}},
                {"zor-slapdPlugin", {"database libback-rdbm.so rdbm_backend_init"}},
                {"zor-slapdSuffix", {"cn=localhost"}}});
  newStore.put("CN=REPLICATION,CN=CONFIGURATION",
               {{"objectClass", {"zor-slapdReplication"}}, {"cn", {"REPLICATION"}}, {"zor-slapdThreads", {"8"}}});
  newStore.put("CN=ZORSLAPD,CN=LOG MANAGEMENT,CN=CONFIGURATION",
               {{"objectClass", {"zor-slapdLogConfig", "top"}}, {"cn", {"ZORSLAPD"}}, {"zor-slapdLogOptions", {"m"}}});
  newStore.put("CN=AUDIT,CN=LOG MANAGEMENT,CN=CONFIGURATION", {{"objectClass", {"zor-audit", "top"}},
                                                               {"cn", {"AUDIT"}},
                                                               {"zor-slapdLog", {"/var/new/audit.log"}},
                                                               {"zor-audit", {"false"}},
                                                               {"zor-slapdReferral", {"ldap://b"}},
                                                               {"zor-auditBind", {"none"}}});
  newStore.put("CN=ADMIN AUDIT,CN=LOG MANAGEMENT,CN=CONFIGURATION",
               {{"objectClass", {"zor-audit", "top"}}, {"cn", {"ADMIN AUDIT"}}, {"zor-audit", {"false"}}});
}
