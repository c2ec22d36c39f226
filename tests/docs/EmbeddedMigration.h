// EmbeddedMigration.h -- what only the embedded store can do: merge files.

#ifndef CFGMIG_TESTS_DOCS_EMBEDDEDMIGRATION_H
#define CFGMIG_TESTS_DOCS_EMBEDDEDMIGRATION_H

#include <filesystem>
#include <string>

#include "Migration.h"

namespace migration {

// Merges what the files hold; the files stay as they are.
Outcome migrateFiles(const std::string& version, const std::filesystem::path& oldFile,
                     const std::filesystem::path& newFile);

}  // namespace migration

#endif  // CFGMIG_TESTS_DOCS_EMBEDDEDMIGRATION_H
