#include "MergeRules.h"

#include "ValueFinder.h"

namespace tool {
namespace {

struct Moved {
  std::string_view from;  // both in normal form
  std::string_view to;
};

constexpr Moved kMoved[] = {
    {"CN=SCHEMADB,CN=LDCF BACKENDS,CN=ZOR HALVORN,CN=SCHEMAS,CN=CONFIGURATION",
     "CN=SCHEMADB,CN=LDCF BACKENDS,CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION"},
    {"CN=ZOR HALVORN,CN=SCHEMAS,CN=CONFIGURATION", "CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION"},
    {"CN=LDCF BACKENDS,CN=ZOR HALVORN,CN=SCHEMAS,CN=CONFIGURATION",
     "CN=LDCF BACKENDS,CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION"},
    {"CN=RDBM BACKENDS,CN=ZOR HALVORN,CN=SCHEMAS,CN=CONFIGURATION",
     "CN=RDBM BACKENDS,CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION"},
    {"CN=DIRECTORY,CN=RDBM BACKENDS,CN=ZOR HALVORN,CN=SCHEMAS,CN=CONFIGURATION",
     "CN=DIRECTORY,CN=RDBM BACKENDS,CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION"},
    {"CN=CHANGE LOG,CN=RDBM BACKENDS,CN=ZOR HALVORN,CN=SCHEMAS,CN=CONFIGURATION",
     "CN=CHANGE LOG,CN=RDBM BACKENDS,CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION"},
    {"CN=AUDIT,CN=CONFIGURATION", "CN=AUDIT,CN=LOG MANAGEMENT,CN=CONFIGURATION"},
    {"CN=ADMIN AUDIT,CN=CONFIGURATION", "CN=ADMIN AUDIT,CN=LOG MANAGEMENT,CN=CONFIGURATION"},
};

constexpr std::string_view kLists[] = {
    kObjectClass,        "zor-slapdCachedAttribute", "zor-slapdSchemaAdditions", kIncludeSchema,
    "zor-slapdReferral", "zor-slapdSetenv",          "zor-slapdSuffix",          "zor-slapdPlugin",
};

struct Rebuilt {
  MasterKind kind;
  std::string_view from;
  std::string_view to;
};

constexpr std::string_view kReferral = "zor-slapdMasterReferral";

constexpr Rebuilt kRebuilt[] = {
    {MasterKind::replica, kMasterDn, kMasterDn}, {MasterKind::replica, kMasterPw, kMasterPw},
    {MasterKind::replica, kReferral, kReferral}, {MasterKind::peer, kPeerDn, kMasterDn},
    {MasterKind::peer, kPeerPw, kMasterPw},      {MasterKind::peer, kReferral, kReferral},
    {MasterKind::neither, kReferral, kReferral},
};

}  // namespace

std::string_view targetOfMoved(std::string_view oldDn) {
  for (const Moved& row : kMoved) {
    if (row.from == oldDn) return row.to;
  }
  return {};
}

bool isList(std::string_view attribute) {
  for (const std::string_view name : kLists) {
    if (isSameName(name, attribute)) return true;
  }
  return false;
}

bool isServersOwn(std::string_view attribute, bool sameDn) {
  return isSameName(attribute, kObjectClass) || isSameName(attribute, "zor-slapdVersion") ||
         (!sameDn && isSameName(attribute, kCn));
}

std::string_view rebuiltAs(std::string_view attribute, MasterKind kind) {
  for (const Rebuilt& row : kRebuilt) {
    if (row.kind == kind && isSameName(row.from, attribute)) return row.to;
  }
  return {};
}

}  // namespace tool
