// Migration.h -- runs a merge of two configurations and tells what it left and which method did what. Each test program
// has one implementation: over the fake store, which also shows reads, or over the embedded one.

#ifndef CFGMIG_TESTS_DOCS_MIGRATION_H
#define CFGMIG_TESTS_DOCS_MIGRATION_H

#include <map>
#include <string>
#include <vector>

#include "Content.h"

namespace migration {

using Entries = std::vector<fake::Entry>;
using Values = std::vector<std::string>;

// The content of a configuration, to be asked in any spelling.
class Configuration {
 public:
  void add(const std::string& dn, const std::string& attribute, const Values& values);
  bool has(const std::string& dn) const;
  Values values(const std::string& dn, const std::string& attribute) const;  // empty when there are none
  bool holdsAnywhere(const std::string& value) const;
  bool operator==(const Configuration&) const = default;

 private:
  std::map<std::string, std::map<std::string, Values>> m_entries;  // by normal form and lower-case name
};

// A call of a store: where, and on whose account.
struct Call {
  std::string store;      // "old" or "new"
  std::string operation;  // "delValue"
  std::string dn;
  std::string attribute;  // empty where the operation has none
  Values values;          // of a write; empty for a read
  int rc;
  std::vector<std::string> methods;  // that were running, the outermost first

  const std::string& method() const { return methods.back(); }
};

struct Outcome {
  Configuration oldBefore;
  Configuration oldLeft;
  Configuration newBefore;
  Configuration merged;
  std::vector<Call> calls;        // during the merge; with the embedded store, writes only
  std::vector<Call> comparisons;  // of a DN with another, by compareDns; with the embedded store, none
  bool showsReads = false;
  std::vector<std::string> entered;  // the methods, in the order in which they were called
  std::vector<std::string> failed;   // the method of each debug message, but for those about a list that is null
};

// Merges configurations that are made for it. Values are plain texts.
Outcome migrate(const std::string& version, const Entries& old, const Entries& fresh);

}  // namespace migration

#endif  // CFGMIG_TESTS_DOCS_MIGRATION_H
