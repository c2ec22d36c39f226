// FileStaging.h -- file copies that are asked for now and carried out later, all of them or none.
//
// A program that changes a configuration and copies files for it makes a FileStaging, calls the library, looks at
// what was asked for, and then: commit, save the configuration, keep. If the save fails, the copies are taken back.
//
//   cfgstore::FileStaging staging;
//   configuration.checkSchemaFiles(...);   // copyFile answers, and copies nothing
//   staging.commit();                      // the copies are made
//   store.save(...);                       // an exception here takes them back
//   staging.keep();                        // for good

#ifndef CFGMIG_LIBCFGSTORE_FILESTAGING_H
#define CFGMIG_LIBCFGSTORE_FILESTAGING_H

#include <sys/types.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "FileCopy.h"
#include "FileSystem.h"

namespace cfgstore {

// One copy that was asked for.
struct StagedCopy {
  std::string source;
  std::string destination;
  std::string refusal;  // why it cannot be made, a phrase to follow the source's path; empty for one that is staged
  FileCopy::Found found = FileCopy::Found::nothing;  // at the destination when it was asked for
  std::string backupPath;                            // after commit: where the replaced file is; empty if none was

  bool isStaged() const { return refusal.empty(); }
};

// A copy failed; what() names both files, the step and why. All copies have been taken back.
class StagingError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// The exception to that: some copies could not be taken back. what() names the files.
class StagingNotUndone : public StagingError {
 public:
  using StagingError::StagingError;
};

class FileStaging {
 public:
  // From now on and until commit or the end of this object, copyFile in this thread stages. One at a time in a thread:
  // throws std::logic_error if there is one already.
  explicit FileStaging(FileSystem& fileSystem = FileSystem::real());

  // Takes back what was committed and not kept. A failure to do so stays untold here: call rollback to learn of it.
  ~FileStaging();
  FileStaging(const FileStaging&) = delete;
  FileStaging& operator=(const FileStaging&) = delete;

  // The one that is staging in this thread, or null.
  static FileStaging* active();

  // Checks a copy as it would be made now, and records it. True when it is staged, as copyFile tells its caller.
  bool stage(const std::string& source, const std::string& destination, mode_t permissions);

  // All copies that were asked for, in order, also those that were refused.
  const std::vector<StagedCopy>& copies() const { return m_copies; }

  // Makes the staged copies, in order. Throws StagingError.
  void commit();

  // Takes back what commit has made, the last first. Throws StagingNotUndone, after it has tried all.
  void rollback();

  // Makes what was committed final.
  void keep() { m_made.clear(); }

 private:
  void end();

  struct Plan {
    std::size_t copy;  // index into m_copies
    mode_t permissions;
  };
  struct Made {
    std::size_t copy;
    std::unique_ptr<FileCopy> file;
  };

  FileSystem& m_fileSystem;
  std::vector<StagedCopy> m_copies;
  std::vector<Plan> m_plans;
  std::vector<Made> m_made;
};

}  // namespace cfgstore

#endif  // CFGMIG_LIBCFGSTORE_FILESTAGING_H
