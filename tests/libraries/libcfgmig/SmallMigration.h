// SmallMigration.h -- a whole migration on a pair of small configurations: open both, list both, merge. The pairs of
// a source version together reach every rule of it. For tests that run a migration many times under changing
// conditions.

#ifndef CFGMIG_TESTS_LIBCFGMIG_SMALLMIGRATION_H
#define CFGMIG_TESTS_LIBCFGMIG_SMALLMIGRATION_H

#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "ConfigFile.h"
#include "World.h"

// Each fills both stores. The old one holds every setting that a rule of its version names, on the side of a match
// and on the side of none, and entries of its own with one and with several object classes.
void putSmallPair41(fake::Content& oldStore, fake::Content& newStore);
void putSmallReplica51(fake::Content& oldStore, fake::Content& newStore);  // with a master DN
void putSmallPeer51(fake::Content& oldStore, fake::Content& newStore);     // with a peer DN
void putSmallMaster51(fake::Content& oldStore, fake::Content& newStore);   // without a master server entry
void putSmallPair52(fake::Content& oldStore, fake::Content& newStore);
void putSmallPair60(fake::Content& oldStore, fake::Content& newStore);

struct SmallPair {
  const char* name;  // fit for the name of a test
  const char* version;
  void (*put)(fake::Content& oldStore, fake::Content& newStore);
};
inline std::ostream& operator<<(std::ostream& out, const SmallPair& pair) { return out << pair.name; }

// All of the above.
const std::vector<SmallPair>& smallPairs();

class SmallMigration {
 public:
  explicit SmallMigration(const SmallPair& pair);

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
  const char* m_version;
  std::unique_ptr<ConfigFile> m_old;
  std::unique_ptr<ConfigFile> m_new;
};

#endif  // CFGMIG_TESTS_LIBCFGMIG_SMALLMIGRATION_H
