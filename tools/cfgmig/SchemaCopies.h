// SchemaCopies.h -- the schema files that a configuration includes, copied into the new installation.

#ifndef CFGMIG_TOOL_SCHEMACOPIES_H
#define CFGMIG_TOOL_SCHEMACOPIES_H

#include <iosfwd>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "Commands.h"
#include "ConfigFile.h"
#include "ConfigStore.h"
#include "FileStaging.h"
#include "Saving.h"
#include "Target.h"

namespace tool {

// What is to be said when SchemaCopies::isComplete is false.
inline constexpr const char* kSchemaFilesMissing = "with schema files missing";

// Where the files are and where they go.
struct SchemaDirectories {
  std::string search;  // the files are in its subdirectory "etc"
  std::string target;  // absolute, for its name becomes part of the configuration

  // What --search-dir and --target-dir say; nothing when neither is given.
  // Throws Failure: usage when only one of them is given, failed for a directory that is none.
  static std::optional<SchemaDirectories> of(const Arguments& arguments);
};

// The copies that a configuration's include list asks for. Made on a configuration, it has changed the list in the
// store and staged the copies; nothing is copied before saveWith.
class SchemaCopies {
 public:
  // Throws Failure when the library could not do its work; the store is then of no use any more.
  SchemaCopies(ConfigFile& configuration, SchemaDirectories directories);

  // Throws Failure when a copy would land on one of these files: the names of copies come from the configuration.
  void refuseToReplace(std::span<const NamedFile> files) const;

  // Makes the copies, then saves the store. When either fails, everything is as it was before.
  // Throws Failure: as saveTo, failed when a copy fails, notUndone when a copy cannot be taken back.
  cfgstore::SaveResult saveWith(cfgstore::ConfigStore& store, const std::string& target,
                                unsigned permissions = kAnyPermissions);

  // True when every schema file that is not the server's own was found and copied.
  bool isComplete() const;

  // Writes what became of each file; `preview` speaks of what would be.
  void tell(bool preview, std::ostream& out) const;

 private:
  void commit();
  void takeBack(const std::vector<std::string>& because);

  SchemaDirectories m_directories;
  std::vector<std::string> m_missing;
  bool m_hasList = false;        // the configuration has the list that is looked at
  bool m_hasLegacyList = false;  // and one under the legacy name, which is not
  cfgstore::FileStaging m_staging;
};

}  // namespace tool

#endif  // CFGMIG_TOOL_SCHEMACOPIES_H
