// Audited.h -- configurations as texts, migrated by the library and audited.

#ifndef CFGMIG_TESTS_TOOL_AUDIT_AUDITED_H
#define CFGMIG_TESTS_TOOL_AUDIT_AUDITED_H

#include <memory>
#include <string>
#include <vector>

#include "ConfigStore.h"
#include "Snapshot.h"
#include "Workspace.h"
#include "audit/Audit.h"

// The result of a migration by the library, as it would be saved.
std::string migrated(const std::string& version, const std::string& old, const std::string& before);

// An audit together with the three contents that it is about.
struct Audited {
  Workspace workspace;
  std::unique_ptr<cfgstore::ConfigStore> oldStore;
  std::unique_ptr<cfgstore::ConfigStore> beforeStore;
  std::unique_ptr<cfgstore::ConfigStore> resultStore;
  cfgstore::Snapshot old;
  cfgstore::Snapshot before;
  cfgstore::Snapshot result;
  tool::Audit audit;

  Audited(const std::string& version, const std::string& oldText, const std::string& beforeText,
          const std::string& resultText, const std::string& schemaTarget = {});
};

// Discrepancies in words, with values: "changedValue CN=X a: expected [1], there is [2]".
std::vector<std::string> discrepanciesOf(const Audited& audited);

// "carried 12" for the value on line 12 of the result; without a number when it has no place. `line` is one of the old
// configuration.
std::string fateOf(const Audited& audited, std::size_t line);

// "moved 7" for the old value on line 7, likewise; "unexplained" when nothing explains the value on this line of the
// result.
std::string originOf(const Audited& audited, std::size_t line);

// "4 by 5", "6 by none": lines of the new configuration before and of the result.
std::vector<std::string> replacedIn(const Audited& audited);

#endif  // CFGMIG_TESTS_TOOL_AUDIT_AUDITED_H
