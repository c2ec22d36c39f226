// ConfigStore.h -- what the embedded store offers beyond the contract of CfgUtils.h: errors with line numbers, the
// content as text, an explicit and atomic save, and a journal of every write.
//
// A program reaches the store of a ConfigFile with ConfigStore::of(*configFile.getCfgUtils()).

#ifndef CFGMIG_LIBCFGSTORE_CONFIGSTORE_H
#define CFGMIG_LIBCFGSTORE_CONFIGSTORE_H

#include <cstddef>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "CfgUtils.h"
#include "Limits.h"
#include "RemarkKind.h"

namespace cfgstore {

class Document;

// Something that is wrong with a file. Lines are counted from 1 as an editor counts them; 0 is the file as a whole.
// The text says what is wrong and what was expected; it never holds a value.
struct Problem {
  std::size_t line = 0;
  std::string text;
  RemarkKind kind = RemarkKind::unreadable;  // one whose severity is error
};

// Thrown by the constructor of CfgUtils when a file cannot be opened, read or understood. what() names the file,
// the first line that is wrong and what is wrong with it, and how many more problems there are.
class OpenError : public std::runtime_error {
 public:
  // `problems` has at least one.
  OpenError(const std::string& path, std::vector<Problem> problems);
  const std::string& path() const { return m_path; }                   // as it was passed to the constructor
  const std::vector<Problem>& problems() const { return m_problems; }  // in file order, at least one

 private:
  std::string m_path;
  std::vector<Problem> m_problems;
};

// Thrown by save. what() names the file, the step that failed and why. The file at the target is then the one that
// was there before, and nothing is left beside it.
class SaveError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// The save was refused before anything was written: the file has changed on disk since it was read, or somebody else
// holds its lock.
class SaveRefused : public SaveError {
 public:
  using SaveError::SaveError;
};

// The exception to what SaveError promises: the save failed when the new file was in place, and that could not be taken
// back. what() says where the old one is, if there was one.
class RestoreError : public SaveError {
 public:
  using SaveError::SaveError;
};

// The write operations of CfgUtils.
enum class Operation { addValue, delValue, setValue, addEntry, removeEntry };

// One write that the store was asked for, successful or not. Valid during the call of the observer only.
struct Write {
  Operation operation;
  std::string_view dn;                   // as the caller wrote it
  std::string_view attribute;            // as the caller wrote it; empty for addEntry and removeEntry
  std::vector<std::string_view> values;  // addValue, setValue: one, or none for null; delValue: those listed;
                                         // addEntry: cn and the two object classes; removeEntry: none
  int rc;                                // what the store answered
  bool changed = false;                  // whether the content is different now: false for a failure, a value that
                                         // was there already, a list of nothing
};

// Told of a write after it.
using Observer = std::function<void(const Write&)>;

// Asked before a write: 0 lets it happen, anything else is what the store answers instead. `rc` of the write is 0.
using WriteGate = std::function<int(const Write&)>;

// Whether the file that a save replaces is kept beside the new one.
enum class Backup { none, keep };

struct SaveResult {
  bool written = false;    // false: the target already held exactly this content and was not touched
  std::string backupPath;  // where the replaced file went; empty if there was none or none was asked for

  // Where a file went that an earlier save had replaced when its program was killed; empty if there was none.
  std::string recoveredPath;
};

// The store behind one CfgUtils. It lives as long as the CfgUtils, which owns it.
class ConfigStore {
 public:
  // That of an open CfgUtils.
  static ConfigStore& of(OVOConfigUtils::CfgUtils& utils);

  explicit ConfigStore(const std::string& path);  // throws OpenError
  ~ConfigStore();
  ConfigStore(const ConfigStore&) = delete;
  ConfigStore& operator=(const ConfigStore&) = delete;

  // As it was passed to the constructor.
  const std::string& path() const;

  // Calls `observer` after every write operation from now on, also for those that failed. One observer at a time;
  // an empty function ends it. The observer must not use the store, and must not throw: the write has been done.
  void observe(Observer observer);
  const Observer& observer() const;

  // Every write from now on is refused that `gate` refuses; an empty function ends it. For tests and failure drills: a
  // product's store may refuse any write, and this one hardly ever does. The gate must not use the store; what it
  // throws reaches the caller, and nothing is written then.
  void refuseWith(WriteGate gate);
  const WriteGate& gate() const;

  // True when the content is no longer byte for byte what was read.
  bool changed() const;

  // The whole content as it would be saved.
  std::string text() const;

  // The same in pieces to be laid end to end. Valid until the next write.
  std::vector<std::string_view> pieces() const;

  // The content as it was read. Valid as long as the store.
  std::string_view textAsRead() const;

  // Writes the content to `target`, atomically: afterwards the file there is wholly the new one or, after a
  // SaveError, wholly the one that was there before. A target that holds this very content already is not touched.
  // Symbolic links are followed. Owner, mode, access control list and extended attributes of a replaced file are kept;
  // a new file gets the mode of the file that was read. With Backup::keep the file that is replaced stays beside it,
  // under a name with the time in it that is never one that exists.
  // Refused before anything is written: a target that is the file that was read and has changed on disk since, also
  // where only its content shows it; one that another program is saving at the same time, or that has a second name
  // (hard link); one whose owner or attributes could not be kept; a full disk, and a directory that cannot be written;
  // and what is no regular file.
  // Nobody may do more with the result than `permissions`, as permission bits, allow everybody of his kind, and a new
  // file that does not belong to the group of the file that was read gives its group no access: a configuration holds
  // secrets.
  SaveResult save(const std::string& target, Backup backup, unsigned permissions = 07777);

  // Whether a save would write anything. Throws what the save would be refused with, but for what no program can know
  // before it tries; changes nothing.
  bool checkSave(const std::string& target, unsigned permissions = 07777) const;

  // Permission bits that let nobody do more than those of the file that was read do, together with its access control
  // list if it has one.
  unsigned permissions() const;

  // For the store's own code and its tests.
  Document& document();
  const Document& document() const;

 private:
  friend std::unique_ptr<ConfigStore> openLike(const std::string& path, const ConfigStore& model);
  friend std::unique_ptr<ConfigStore> readAsSaved(ConfigStore& store);
  friend class SaveAhead;

  struct State;
  explicit ConfigStore(std::unique_ptr<State> state);
  std::unique_ptr<State> m_state;
};

}  // namespace cfgstore

#endif  // CFGMIG_LIBCFGSTORE_CONFIGSTORE_H
