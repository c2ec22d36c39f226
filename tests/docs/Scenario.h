// Scenario.h -- small configurations in which one line of a table is tried out.

#ifndef CFGMIG_TESTS_DOCS_SCENARIO_H
#define CFGMIG_TESTS_DOCS_SCENARIO_H

#include <string>
#include <vector>

#include "Migration.h"
#include "MigrationPages.h"

namespace scenario {

using migration::Entries;
using migration::Values;

inline constexpr const char* kRoot = "CN=CONFIGURATION";
inline constexpr const char* kMasterServer = "CN=MASTER SERVER,CN=CONFIGURATION";

// Entries that no rule names: one at the top, one below the older name of the schema entry.
inline constexpr const char* kUnnamedEntries[] = {
    "CN=SOMETHING,CN=CONFIGURATION", "cn=ROADRUNNER, cn=RDBM BACKENDS, cn=ZOR Halvorn, CN=SCHEMAS,CN=CONFIGURATION"};

inline constexpr const char* kUnnamedSetting = "zor-slapdUnnamed";
inline constexpr const char* kUnnamedList = "zor-slapdSuffix";
inline constexpr const char* kNewValue = "value of the new server";

// An entry with object classes, a naming value, and these.
fake::Entry entry(const std::string& dn, std::vector<fake::Attribute> attributes);

// A configuration of the root and these; one of them may be the root.
Entries configuration(Entries entries);

// The values of one attribute of the old entry that a line is tried with.
struct Trial {
  Values old;                     // in order
  std::vector<std::size_t> gone;  // those that a rule takes out
  Values concerned;               // those that the line is about; for a rest, the rest

  Values carried() const;  // those that no rule takes out
};

// `siblings` are the page's lines; "any other" is what none of them says about the same setting of the same entry.
std::vector<Trial> trialsOf(const pages::Row& row, const std::vector<pages::Row>& siblings);

// Whether a line's condition is met by a value, as far as one value by itself can tell.
bool isAbout(const pages::Row& row, const std::string& value, const std::vector<pages::Row>& siblings);

// Two lines about the same setting of the same entry, in the same circumstances.
bool areSiblings(const pages::Row& left, const pages::Row& right);

// The settings by which an entry is that of a replica, a peer, or neither.
std::vector<fake::Attribute> identity(pages::Circumstance circumstance);

}  // namespace scenario

#endif  // CFGMIG_TESTS_DOCS_SCENARIO_H
