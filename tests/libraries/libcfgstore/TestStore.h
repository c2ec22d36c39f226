// TestStore.h -- what the tests of the store share: files in a directory that goes with the test, and a store whose
// results are values.

#ifndef CFGMIG_TESTS_LIBCFGSTORE_TESTSTORE_H
#define CFGMIG_TESTS_LIBCFGSTORE_TESTSTORE_H

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "CfgUtils.h"
#include "ConfigStore.h"

namespace cfgstore::test {

using Strings = std::vector<std::string>;

// A directory for one test, removed with everything in it.
class TemporaryDirectory {
 public:
  TemporaryDirectory();
  ~TemporaryDirectory();
  TemporaryDirectory(const TemporaryDirectory&) = delete;
  TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

  const std::string& path() const { return m_path; }
  std::string file(std::string_view name) const { return m_path + "/" + std::string(name); }
  std::string write(std::string_view name, std::string_view content) const;  // returns the path
  Strings names() const;                                                     // what is in it, sorted

 private:
  std::string m_path;
};

// Gives up the superuser's rights, if the test has them, until the object goes. The directory and the file in it are
// handed to the user that the test then is.
class AsOrdinaryUser {
 public:
  AsOrdinaryUser(const TemporaryDirectory& directory, const std::string& file);
  ~AsOrdinaryUser();
  AsOrdinaryUser(const AsOrdinaryUser&) = delete;
  AsOrdinaryUser& operator=(const AsOrdinaryUser&) = delete;

 private:
  bool m_changed = false;
};

std::string readFile(const std::string& path);
void writeFile(const std::string& path, std::string_view content);

// What an operation with a list or a string as its result gave.
struct ListResult {
  int rc = 0;
  Strings values;
};
struct ValueResult {
  int rc = 0;
  std::optional<std::string> value;  // nothing for null
};

// A store opened on a file with the given text. Results are checked for the shape that the contract promises, and
// released.
class TestStore {
 public:
  explicit TestStore(std::string_view text);

  OVOConfigUtils::CfgUtils& utils() { return *m_utils; }
  ConfigStore& store() { return ConfigStore::of(*m_utils); }
  std::string text() { return store().text(); }
  const std::string& path() const { return m_path; }
  const TemporaryDirectory& directory() const { return m_directory; }

  ListResult subordinates(const char* base, int scope);
  ListResult values(const char* dn, const char* attribute);
  ValueResult value(const char* dn, const char* attribute);
  Strings attributes(const char* dn);  // by a walk
  int addValue(const char* dn, const char* attribute, const char* value);
  int delValue(const char* dn, const char* attribute, const Strings& values);
  int setValue(const char* dn, const char* attribute, const char* value);
  int addEntry(const char* dn, const char* cn, const char* objectClass, const char* secondObjectClass);
  int removeEntry(const char* dn);

 private:
  TemporaryDirectory m_directory;
  std::string m_path;
  std::unique_ptr<OVOConfigUtils::CfgUtils> m_utils;
};

// The problems that opening a file with this text reports, each as "LINE: TEXT"; empty if it opens.
Strings problemsOf(std::string_view text);

// What is in `after` and not in `before`, and the other way round, by lines: "-line" and "+line", as a textual diff
// shows it. Line ends belong to the lines, as "\n" and "\r\n" spelled out.
Strings diff(std::string_view before, std::string_view after);

}  // namespace cfgstore::test

#endif  // CFGMIG_TESTS_LIBCFGSTORE_TESTSTORE_H
