// MergeOracleRules.cpp -- the version rules, as effects on settings.

#include <algorithm>

#include "MergeOracle.h"

namespace oracle {

namespace {

const char* const kOwnSchemas[] = {"V3.modifiedschema", "V3.config.at",    "V3.config.oc",    "V3.user.at",
                                   "V3.user.oc",        "V3.zor.at",       "V3.zor.oc",       "V3.system.at",
                                   "V3.system.oc",      "V3.ldapsyntaxes", "V3.matchingrules"};

const std::string kMain = "CN=CONFIGURATION";
const std::string kFrontEnd = "CN=FRONT END,CN=CONFIGURATION";
const std::string kMaster = "CN=MASTER SERVER,CN=CONFIGURATION";
const std::string kReplication = "CN=REPLICATION,CN=CONFIGURATION";
const std::string kSchemas = "CN=SCHEMAS,CN=CONFIGURATION";
const std::string kSchema = "CN=ZOR DIRECTORY," + kSchemas;
const std::string kOldSchema = "CN=ZOR HALVORN," + kSchemas;
const std::string kDirectory = "CN=DIRECTORY,CN=RDBM BACKENDS,";
const std::string kChangeLog = "CN=CHANGE LOG,CN=RDBM BACKENDS,";
const std::string kSchemaDb = "CN=SCHEMADB,CN=LDCF BACKENDS,";

// The first value that has one of these words in it goes.
void dropFirstWith(Configuration& in, const std::string& dn, const std::string& attribute, const Values& words) {
  removeIf(in, dn, attribute, [&, done = false](const std::string& value) mutable {
    const bool matches =
        !done && std::any_of(words.begin(), words.end(), [&](const auto& word) { return contains(value, word); });
    done = done || matches;
    return matches;
  });
}

// --- 4.1

void addTo41(const std::string& dn, Configuration& from, Configuration& to) {
  if (dn != kChangeLog + kOldSchema) {
    addEntry(dn, from, to);
  }
}

void mergeIn41(const std::string& dn, Configuration& from, Configuration& to) {
  if (dn == kDirectory + kOldSchema) {
    drop(from, dn,
         {"ZOR-SLAPDDBNAME", "ZOR-SLAPDDBINSTANCE", "ZOR-SLAPDDBLOCATION", "ZOR-SLAPDDBUSERPW", "ZOR-SLAPDDBUSERID"});
  }
  if (dn == kDirectory + kOldSchema || dn == kSchemaDb + kOldSchema) {
    dropFirstWith(from, dn, "ZOR-SLAPDPLUGIN", {"CLInit"});
  }
  mergeEntry(dn, from, to);
}

// --- 5.1

// Makes the master server entry unless there is one.
void markMaster(Configuration& to) {
  if (!to.entries.contains(kMaster)) {
    to.order.push_back(kMaster);
    to.entries[kMaster] = {
        {"OBJECTCLASS", {"TOP", "zor-slapdReplication", "zor-slapdConfigEntry", "ZOR-SLAPDPENDINGMIGRATION"}},
        {"CN", {"MASTER SERVER"}}};
  }
}

void rebuildMaster(const Configuration& from, Configuration& to) {
  markMaster(to);
  const Values* masterDn = find(from, kMaster, "ZOR-SLAPDMASTERDN");
  const Values* peerDn = find(from, kMaster, "ZOR-SLAPDPEERDN");
  const Values* identity = masterDn != nullptr ? masterDn : peerDn;
  if (identity == nullptr) {
    return;
  }
  unite(to, kMaster, "ZOR-SLAPDMIGRATIONINFO", {masterDn != nullptr ? "4.1 REPLICA" : "4.1 PEER"});
  unite(to, kMaster, "ZOR-SLAPDMASTERDN", {identity->front()});
  const Values* password = find(from, kMaster, masterDn != nullptr ? "ZOR-SLAPDMASTERPW" : "ZOR-SLAPDPEERPW");
  if (password == nullptr) {
    return;
  }
  unite(to, kMaster, "ZOR-SLAPDMASTERPW", {password->front()});
  if (const Values* referral = find(from, kMaster, "ZOR-SLAPDMASTERREFERRAL")) {
    unite(to, kMaster, "ZOR-SLAPDMASTERREFERRAL", {referral->front()});
  }
}

void addTo51(const std::string& dn, Configuration& from, Configuration& to) {
  const Values moving = {"", "CN=LDCF BACKENDS,", "CN=RDBM BACKENDS,", kSchemaDb, kDirectory, kChangeLog};
  const auto moved =
      std::find_if(moving.begin(), moving.end(), [&](const std::string& part) { return dn == part + kOldSchema; });
  if (dn == kMaster) {
    rebuildMaster(from, to);
  } else if (moved != moving.end()) {
    moveEntry(dn, *moved + kSchema, from, to);
  } else {
    addEntry(dn, from, to);
  }
}

void mergeIn51(const std::string& dn, Configuration& from, Configuration& to) {
  if (dn == kMain) {
    drop(from, dn,
         {"ZOR-SLAPDSORTSRCHALLOWNONADMIN", "ZOR-SLAPDPAGEDRESALLOWNONADMIN", "ZOR-SLAPDPAGEDRESLMT",
          "ZOR-SLAPDIDLETIMEOUT", "ZOR-SLAPDSORTKEYLIMIT", "ZOR-SLAPDERRORLOG", "ZOR-SLAPDPAGEDSIZELMT",
          "ZOR-SLAPDPAGEDRESALLOWANON", "ZOR-SLAPDSORTSRCHALLOWANON"});
  } else if (dn == kFrontEnd) {
    dropFirstWith(from, dn, "ZOR-SLAPDSETENV", {"ACLCACHE", "RDBM_FCACHE_SIZE", "RDBM_CACHE_BYPASS_LIMIT"});
  }
  mergeEntry(dn, from, to);
}

void check51(Configuration& to) {
  if (!to.entries.contains(kMaster)) {
    markMaster(to);
    unite(to, kMaster, "ZOR-SLAPDMIGRATIONINFO", {"4.1 MASTER"});
  }
}

// --- 5.2

void addTo52(const std::string& dn, Configuration& from, Configuration& to) {
  if (dn == kChangeLog + kSchema) {
    unite(from, dn, "ZOR-SLAPDCHANGELOGMAXAGE", {"0"});
  }
  addEntry(dn, from, to);
}

void mergeIn52(const std::string& dn, Configuration& from, Configuration& to) {
  if (dn == kMain) {
    drop(from, dn, {"ZOR-SLAPDSUPPORTEDWEBADMVERSION", "ZOR-SLAPDACLACCESS", "ZOR-SLAPDPAGESIZELMT"});
  } else if (dn == kDirectory + kSchema) {
    drop(from, dn, {"ZOR-SLAPDPAGESIZELMT"});
  }
  mergeEntry(dn, from, to);
}

// --- 6.0

void addTo60(const std::string& dn, Configuration& from, Configuration& to) {
  if (dn == "CN=ADMIN AUDIT,CN=CONFIGURATION") {
    if (const Values* audit = find(from, dn, "ZOR-AUDIT")) {
      set(to, "CN=ADMIN AUDIT,CN=LOG MANAGEMENT,CN=CONFIGURATION", "ZOR-AUDIT", audit->front());
    }
  } else if (dn == "CN=AUDIT,CN=CONFIGURATION") {
    drop(from, dn, {"ZOR-SLAPDLOG", "ZOR-AUDITVERSION", "ZOR-AUDITLOG"});
    moveEntry(dn, "CN=AUDIT,CN=LOG MANAGEMENT,CN=CONFIGURATION", from, to);
  } else {
    addEntry(dn, from, to);
  }
}

void cleanMainEntry(Configuration& from, Configuration& to) {
  drop(from, kMain,
       {"ZOR-SLAPDSUPPORTEDWEBADMVERSION", "ZOR-SLAPDERRORLOG", "ZOR-SLAPDTRACEMESSAGELOG",
        "ZOR-SLAPDSORTSRCHALLOWNONADMIN", "ZOR-SLAPDPAGEDRESALLOWNONADMIN", "ZOR-SLAPDPORT"});
  std::string value;
  if (takeFirst(from, kMain, "ZOR-SLAPDSYSLOGLEVEL", value) && value != "m") {
    set(to, "CN=ZORSLAPD,CN=LOG MANAGEMENT,CN=CONFIGURATION", "ZOR-SLAPDLOGOPTIONS", value);
  }
  if (takeFirst(from, kMain, "ZOR-SLAPDMAXPENDINGCHANGESDISPLAYED", value)) {
    set(to, kReplication, "ZOR-SLAPDMAXPENDINGCHANGESDISPLAYED", value);
  }
  const Values* encryption = find(from, kMain, "ZOR-SLAPDPWENCRYPTION");
  if (encryption != nullptr && upper(encryption->front()) == "IMASK") {
    drop(from, kMain, {"ZOR-SLAPDPWENCRYPTION"});
  }
}

void cleanDirectoryEntry(const std::string& dn, Configuration& from, Configuration& to) {
  drop(from, dn, {"ZOR-SLAPDBULKLOADERRORS", "ZOR-SLAPDCLIERRORS"});
  const Values* plugins = find(from, dn, "ZOR-SLAPDPLUGIN");
  if (plugins == nullptr) {
    return;
  }
  const auto plugin =
      std::find_if(plugins->begin(), plugins->end(), [](const auto& text) { return contains(text, "nonblocking"); });
  if (plugin == plugins->end()) {
    return;
  }
  const std::string definition = *plugin;
  removeIf(from, dn, "ZOR-SLAPDPLUGIN", [&](const std::string& value) { return value == definition; });
  const std::string key = "maxskippedreplerrors=";
  if (contains(definition, key)) {
    set(to, kReplication, "ZOR-SLAPDREPLMAXERRORS", definition.substr(definition.find(key) + key.size()));
  }
}

void mergeIn60(const std::string& dn, Configuration& from, Configuration& to) {
  if (dn == kMain) {
    cleanMainEntry(from, to);
  } else if (dn == kDirectory + kSchema) {
    cleanDirectoryEntry(dn, from, to);
  } else if (dn == "CN=ADMIN,CN=CONFIGURATION") {
    drop(from, dn, {"ZOR-SLAPDERRORLOG", "ZOR-SLAPDPORT", "ZOR-SLAPDSECUREPORT"});
  } else if (dn == "CN=SSL,CN=CONFIGURATION") {
    drop(from, dn, {"ZOR-SLAPDSECUREPORT", "ZOR-SLAPDPORT"});
  } else if (dn == kSchema) {
    if (find(from, dn, "ZOR-SLAPDSCHEMAADDITIONS") == nullptr) {
      return;
    }
    removeIf(from, dn, "ZOR-SLAPDSCHEMAADDITIONS",
             [](const std::string& value) { return contains(value, "V3.modifiedschema"); });
  }
  mergeEntry(dn, from, to);
}

void takeOwnSchemasOut(Configuration& from) {
  removeIf(from, kSchema, "ZOR-SLAPDINCLUDESCHEMA", [](const std::string& value) {
    return std::any_of(std::begin(kOwnSchemas), std::end(kOwnSchemas),
                       [&](const char* own) { return contains(value, own); });
  });
}

using Rule = void (*)(const std::string& dn, Configuration& from, Configuration& to);

struct Version {
  const char* name;
  Rule addTo;
  Rule mergeIn;
};

const Version kVersions[] = {
    {"4.1", addTo41, mergeIn41}, {"5.1", addTo51, mergeIn51}, {"5.2", addTo52, mergeIn52}, {"6.0", addTo60, mergeIn60}};

}  // namespace

void merge(const std::string& version, Configuration& from, Configuration& to) {
  const auto rules =
      std::find_if(std::begin(kVersions), std::end(kVersions), [&](const auto& row) { return row.name == version; });
  if (rules == std::end(kVersions)) {
    return;
  }
  const auto isNew = [present = to.entries](const std::string& dn) { return !present.contains(dn); };
  for (const std::string& dn : from.order) {
    if (isNew(dn)) {
      rules->addTo(dn, from, to);
    }
  }
  if (version == "6.0") {
    takeOwnSchemasOut(from);
  }
  for (const std::string& dn : from.order) {
    if (!isNew(dn)) {
      rules->mergeIn(dn, from, to);
    }
  }
  if (version == "5.1") {
    check51(to);
  }
}

}  // namespace oracle
