// SchemaCopies.h -- the schema files that a configuration includes, copied into the new installation.

#ifndef CFGMIG_TOOL_SCHEMACOPIES_H
#define CFGMIG_TOOL_SCHEMACOPIES_H

#include <initializer_list>
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
  // Throws Failure with ExitStatus::failed for a directory that is none.
  static std::optional<SchemaDirectories> of(const Arguments& arguments);
  static SchemaDirectories of(const std::string& search, const std::string& target);
};

// Throws Failure with ExitStatus::usage when `traceFile` is a schema file that may be copied, or the place where a copy
// may land: one that the include list of any entry of the configurations names. To be called before the trace is
// started, which would append to it. An empty name is no file.
void refuseTraceInSchemaFiles(const std::string& traceFile, const SchemaDirectories& directories,
                              std::initializer_list<ConfigFile*> configurations);

// The copies that a configuration's include list asks for. Made on a configuration, it has changed the list in the
// store and staged the copies; nothing is copied before saveWith.
class SchemaCopies {
 public:
  // Throws Failure when the library could not do its work; the store is then of no use any more.
  SchemaCopies(ConfigFile& configuration, SchemaDirectories directories);

  // Throws Failure when a copy would land on one of these files: the names of copies come from the configuration.
  void refuseToReplace(std::span<const NamedFile> files) const;

  // Makes the copies, then saves the store. When either fails, everything is as it was before; what can be known to
  // fail is told before the first copy is made. A wish of the user to stop waits until all is done or taken back.
  // Throws Failure: as saveTo, failed when a copy fails, notUndone when a copy cannot be taken back.
  cfgstore::SaveResult saveWith(cfgstore::ConfigStore& store, const std::string& target,
                                unsigned permissions = kAnyPermissions);

  // True when every schema file that is not the server's own was found and copied.
  bool isComplete() const;

  // All copies that the library asked for, in order, also those that were refused; and the names that it did not find.
  const std::vector<cfgstore::StagedCopy>& copies() const { return m_staging.copies(); }
  const std::vector<std::string>& missing() const { return m_missing; }

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
