// KnownDns.h -- the entries that the rules know by name. They are always matched with compareDns.

#ifndef CFGMIG_LIBCFGMIG_INTERNAL_KNOWNDNS_H
#define CFGMIG_LIBCFGMIG_INTERNAL_KNOWNDNS_H

namespace cfgmig::dn {

inline constexpr const char* kMain = "CN=CONFIGURATION";
inline constexpr const char* kAdmin = "CN=ADMIN,CN=CONFIGURATION";
inline constexpr const char* kFrontEnd = "CN=FRONT END,CN=CONFIGURATION";
inline constexpr const char* kMasterServer = "CN=MASTER SERVER,CN=CONFIGURATION";
inline constexpr const char* kReplication = "CN=REPLICATION,CN=CONFIGURATION";
inline constexpr const char* kSsl = "CN=SSL,CN=CONFIGURATION";

// The schema entry and what is below it, in the current form.
inline constexpr const char* kSchema = "CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION";
inline constexpr const char* kLdcfBackends = "CN=LDCF BACKENDS,CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION";
inline constexpr const char* kRdbmBackends = "CN=RDBM BACKENDS,CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION";
inline constexpr const char* kSchemaBackend =
    "CN=SCHEMADB,CN=LDCF BACKENDS,CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION";
inline constexpr const char* kDirectoryBackend =
    "CN=DIRECTORY,CN=RDBM BACKENDS,CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION";
inline constexpr const char* kChangeLog = "CN=CHANGE LOG,CN=RDBM BACKENDS,CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION";

// The same entries as 4.1 and 5.1 servers named them.
inline constexpr const char* kLegacySchema = "cn=ZOR Halvorn, CN=SCHEMAS,CN=CONFIGURATION";
inline constexpr const char* kLegacyLdcfBackends = "cn=LDCF BACKENDS, cn=ZOR Halvorn, CN=SCHEMAS,CN=CONFIGURATION";
inline constexpr const char* kLegacyRdbmBackends = "cn=RDBM BACKENDS, cn=ZOR Halvorn, CN=SCHEMAS,CN=CONFIGURATION";
inline constexpr const char* kLegacySchemaBackend =
    "cn=SCHEMADB, cn=LDCF BACKENDS, cn=ZOR Halvorn, CN=SCHEMAS,CN=CONFIGURATION";
inline constexpr const char* kLegacyDirectoryBackend =
    "cn=DIRECTORY, cn=RDBM BACKENDS, cn=ZOR Halvorn, CN=SCHEMAS,CN=CONFIGURATION";
inline constexpr const char* kLegacyChangeLog =
    "cn=CHANGE LOG, cn=RDBM BACKENDS, cn=ZOR Halvorn, CN=SCHEMAS,CN=CONFIGURATION";

// Where audit and logging entries stood in a 6.0 configuration, and where they stand now.
inline constexpr const char* kOldAudit = "CN=AUDIT,CN=CONFIGURATION";
inline constexpr const char* kOldAdminAudit = "CN=ADMIN AUDIT,CN=CONFIGURATION";
inline constexpr const char* kAudit = "CN=AUDIT,CN=LOG MANAGEMENT,CN=CONFIGURATION";
inline constexpr const char* kAdminAudit = "CN=ADMIN AUDIT,CN=LOG MANAGEMENT,CN=CONFIGURATION";
inline constexpr const char* kServerLog = "CN=ZORSLAPD,CN=LOG MANAGEMENT,CN=CONFIGURATION";

}  // namespace cfgmig::dn

#endif  // CFGMIG_LIBCFGMIG_INTERNAL_KNOWNDNS_H
