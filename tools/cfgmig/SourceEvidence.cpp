#include "SourceEvidence.h"

#include <algorithm>
#include <cctype>

#include "EntryReading.h"
#include "SourceVersions.h"

namespace tool {
namespace {

// What can be found, and what it says. Entries that servers of several generations have alike say nothing and are not
// here: audit entries directly below the main entry, for one, are in the configurations of all four.
enum class Says {
  legacyNames,   // 4.1 and 5.1 servers name the schema and back end entries so
  currentNames,  // 5.2 and later servers name them so
  itsVersion,    // the attribute's value is the version
  newerServer,   // only servers that came after all source versions have it
};

struct Row {
  const char* entry;
  const char* attribute;  // null: the entry itself
  Says says;
};

constexpr Row kRows[] = {
    {"CN=CONFIGURATION", "zor-slapdVersion", Says::itsVersion},
    {"cn=ZOR Halvorn, CN=SCHEMAS,CN=CONFIGURATION", nullptr, Says::legacyNames},
    {"cn=LDCF BACKENDS, cn=ZOR Halvorn, CN=SCHEMAS,CN=CONFIGURATION", nullptr, Says::legacyNames},
    {"cn=RDBM BACKENDS, cn=ZOR Halvorn, CN=SCHEMAS,CN=CONFIGURATION", nullptr, Says::legacyNames},
    {"CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION", nullptr, Says::currentNames},
    {"CN=LDCF BACKENDS,CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION", nullptr, Says::currentNames},
    {"CN=RDBM BACKENDS,CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION", nullptr, Says::currentNames},
    {"CN=LOG MANAGEMENT,CN=CONFIGURATION", nullptr, Says::newerServer},
};

// A version, or one with more numbers or words behind it: "5.2", "5.2.0.1", "5.2 fix 3", and not "5.20".
bool names(const std::string& value, const std::string& version) {
  return value.starts_with(version) &&
         (value.size() == version.size() || std::isdigit(static_cast<unsigned char>(value[version.size()])) == 0);
}

std::vector<std::string> versionsNamedBy(const std::string& value) {
  for (const char* version : sourceVersions()) {
    if (names(value, version)) return {version};
  }
  return {};
}

void gather(OVOConfigUtils::CfgUtils& store, const Row& row, std::vector<Evidence>& evidence) {
  if (row.says == Says::itsVersion) {
    for (const std::string& value : valuesOf(store, row.entry, row.attribute)) {
      if (value.find_first_not_of(' ') == std::string::npos) continue;  // says nothing
      evidence.push_back({std::string(row.attribute) + " of " + row.entry, versionsNamedBy(value)});
    }
    return;
  }
  if (!hasEntry(store, row.entry)) return;
  std::vector<std::string> versions;
  if (row.says == Says::legacyNames) versions = {"4.1", "5.1"};
  if (row.says == Says::currentNames) versions = {"5.2", "6.0"};
  evidence.push_back({std::string("the entry ") + row.entry, std::move(versions)});
}

}  // namespace

bool Evidence::speaksFor(std::string_view version) const {
  return std::find(versions.begin(), versions.end(), version) != versions.end();
}

std::string Evidence::text() const {
  return what + " speaks for " + (versions.empty() ? "a server of another version" : alternatives(versions));
}

std::vector<Evidence> gatherEvidence(OVOConfigUtils::CfgUtils& store) {
  std::vector<Evidence> evidence;
  for (const Row& row : kRows) gather(store, row, evidence);
  return evidence;
}

std::vector<std::string> versionsThatFit(const std::vector<Evidence>& evidence) {
  std::vector<std::string> fitting;
  for (const char* version : sourceVersions()) {
    const bool fits =
        std::all_of(evidence.begin(), evidence.end(), [&](const Evidence& piece) { return piece.speaksFor(version); });
    if (fits) fitting.emplace_back(version);
  }
  return fitting;
}

std::string alternatives(const std::vector<std::string>& versions) {
  std::string text;
  for (std::size_t i = 0; i < versions.size(); ++i) {
    if (i > 0) text += i + 1 == versions.size() ? " or " : ", ";
    text += versions[i];
  }
  return text;
}

}  // namespace tool
