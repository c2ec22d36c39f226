// Rules.h -- what a migration from each source version has to do, as tables.
//
// The tables are this audit's own reading of the migration rules: they are not made from the rules of the library, so
// that a mistake in one of the two shows as a difference. What the tables do not name is added or merged as every entry
// is. Nothing here knows how an entry is read or written.

#ifndef CFGMIG_TOOL_AUDIT_RULES_H
#define CFGMIG_TOOL_AUDIT_RULES_H

#include <span>
#include <string_view>
#include <vector>

namespace tool::auditing {

using Words = std::span<const std::string_view>;

// Of which values of a setting a row speaks.
enum class Which {
  first,       // the first, whatever it is
  firstEqual,  // the first, if it is the word in any letter case
  firstWith,   // the first that contains one of the words
  eachWith,    // each that contains one of the words
};

// One setting of an entry that both configurations have. The value goes out of the old configuration, so that it is not
// carried with the rest of the entry, and into another entry if `toDn` names one.
struct Setting {
  std::string_view name;
  Which which = Which::first;
  Words words = {};
  std::string_view toDn = {};  // normal form; empty: the value is dropped
  std::string_view toName = {};
  std::string_view butDropped = {};  // a value that is exactly this is dropped and goes nowhere
  std::string_view onlyBehind = {};  // not the value goes there but what follows this word in it, if it is in it
};

// What becomes of an entry that both configurations have, besides that the rest of it is merged.
struct CommonEntry {
  std::string_view dn;  // normal form, as in all tables
  std::span<const Setting> settings;
  std::string_view needs = {};  // a setting that the old entry has to have: without it, nothing of the entry is carried
};

// What becomes of an entry that only the old configuration has and that is not simply added.
struct OldEntry {
  enum class Goes {
    nowhere,      // it is left behind
    elsewhere,    // its settings are merged into the entry `toDn`
    onlySetting,  // nothing but the first value of `setting`, which is set in the entry `toDn`
    rebuilt,      // as a master server
    withSetting,  // it is added, and `setting` gets the value `value` besides those it has
  };
  std::string_view dn;
  Goes goes;
  std::string_view toDn = {};
  std::span<const Setting> settings = {};  // that are taken out first
  std::string_view setting = {};
  std::string_view value = {};
};

struct SourceRules {
  std::string_view version;
  std::span<const OldEntry> oldEntries;
  std::span<const CommonEntry> commonEntries;
  bool marksFormerMaster;  // a new configuration left without a master server entry gets one that says so
};

// The rules for a source version, or null.
const SourceRules* rulesFor(std::string_view version);

// What holds for every source version.
inline constexpr std::string_view kRoot = "CN=CONFIGURATION";
inline constexpr std::string_view kNamingName = "CN";
inline constexpr std::string_view kClassName = "OBJECTCLASS";
inline constexpr std::string_view kOnlyClassJoinedBy = "TOP";

// The new server's own always stand in an entry that is merged; in one of another DN the naming value does, too.
inline constexpr std::string_view kNeverCarried[] = {kClassName, "zor-slapdVersion"};

// Attributes with several values, which are united. Every other attribute takes the old server's first value.
inline constexpr std::string_view kLists[] = {
    kClassName,          "zor-slapdCachedAttribute", "zor-slapdSchemaAdditions", "zor-slapdIncludeSchema",
    "zor-slapdReferral", "zor-slapdSetenv",          "zor-slapdSuffix",          "zor-slapdPlugin",
};

// The schema files that a server brings itself: a path that contains one of these names is the server's own.
inline constexpr std::string_view kServersOwnFiles[] = {
    "V3.modifiedschema", "V3.config.at", "V3.config.oc", "V3.user.at",      "V3.user.oc",       "V3.zor.at",
    "V3.zor.oc",         "V3.system.at", "V3.system.oc", "V3.ldapsyntaxes", "V3.matchingrules",
};

inline constexpr std::string_view kSchemaEntry = "CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION";
inline constexpr std::string_view kIncludeList = "zor-slapdIncludeSchema";

// A master server entry that is built anew.
inline constexpr std::string_view kMasterServer = "CN=MASTER SERVER,CN=CONFIGURATION";
inline constexpr std::string_view kMasterServerName = "MASTER SERVER";
inline constexpr std::string_view kMasterServerClasses[] = {"TOP", "zor-slapdReplication", "zor-slapdConfigEntry",
                                                            "ZOR-SLAPDPENDINGMIGRATION"};
inline constexpr std::string_view kMarker = "ZOR-SLAPDMIGRATIONINFO";
inline constexpr std::string_view kFormerReplica = "4.1 REPLICA";
inline constexpr std::string_view kFormerPeer = "4.1 PEER";
inline constexpr std::string_view kFormerMaster = "4.1 MASTER";
inline constexpr std::string_view kMasterDn = "zor-slapdMasterDN";
inline constexpr std::string_view kMasterPassword = "zor-slapdMasterPW";
inline constexpr std::string_view kPeerDn = "zor-slapdPeerDN";
inline constexpr std::string_view kPeerPassword = "zor-slapdPeerPW";
inline constexpr std::string_view kMasterReferral = "zor-slapdMasterReferral";

// The DNs, in normal form, of all entries that the rules of any version name: those whose settings they look at, and
// those that they write to.
std::vector<std::string_view> entriesOfRules();

bool containsOneOf(std::string_view text, Words words);

}  // namespace tool::auditing

#endif  // CFGMIG_TOOL_AUDIT_RULES_H
