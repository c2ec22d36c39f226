// SmallMigration.h -- a whole migration on a pair of small 6.0 configurations that reach every rule: open both, list
// both, merge. For tests that run it many times under changing conditions.

#ifndef CFGMIG_TESTS_LIBCFGMIG_SMALLMIGRATION_H
#define CFGMIG_TESTS_LIBCFGMIG_SMALLMIGRATION_H

#include <memory>
#include <string>
#include <vector>

#include "ConfigFile.h"
#include "World.h"

// Fills both stores. The old one holds every setting that a 6.0 rule names, a custom plug-in, schema files of its own,
// entries of its own with one and with several object classes, and the audit entries at their former DNs.
void putSmallPair(fake::Content& oldStore, fake::Content& newStore);

class SmallMigration {
 public:
  SmallMigration() { putSmallPair(world.store("old"), world.store("new")); }

  // Runs it to the end, or as far as it goes; what is thrown passes. The results so far are in the members.
  void run();
  void close();

  // After close: what is still out, what was released wrongly, which records do not nest.
  std::vector<std::string> complaints() const;

  fake::World world;
  int oldDns = -1;
  int newDns = -1;
  int merged = -1;  // stays -1 unless both listings answered 0

 private:
  std::unique_ptr<ConfigFile> m_old;
  std::unique_ptr<ConfigFile> m_new;
};

#endif  // CFGMIG_TESTS_LIBCFGMIG_SMALLMIGRATION_H
