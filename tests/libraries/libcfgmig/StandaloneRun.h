// StandaloneRun.h -- each public method that works without a merge, on one pair of small configurations that reaches
// every path of all of them. For tests that run them many times under changing conditions.

#ifndef CFGMIG_TESTS_LIBCFGMIG_STANDALONERUN_H
#define CFGMIG_TESTS_LIBCFGMIG_STANDALONERUN_H

#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "ConfigFile.h"
#include "StandaloneMethods.h"
#include "World.h"

// A call on the old configuration.
struct StandaloneCall {
  fake::Traced method;
  int (*call)(fake::World& world, ConfigFile& oldConfig, ConfigFile& newConfig);
  int usualResult;
  // The result when the call of the store with this line in the log answers `rc`.
  int (*resultAfter)(const std::string& line, int rc);
};

inline void PrintTo(const StandaloneCall& call, std::ostream* out) { *out << call.method.name; }

extern const std::vector<StandaloneCall> kStandaloneCalls;

class StandaloneRun {
 public:
  // Both configurations are open and listed, and nothing of that is in the log.
  StandaloneRun();

  // What is thrown passes.
  int run(const StandaloneCall& call) { return call.call(world, *m_old, *m_new); }
  void close();

  // After close: what is still out, what was released wrongly, which records do not nest.
  std::vector<std::string> complaints() const;

  ConfigFile& oldConfig() { return *m_old; }
  ConfigFile& newConfig() { return *m_new; }

  fake::World world;

 private:
  std::unique_ptr<ConfigFile> m_old;
  std::unique_ptr<ConfigFile> m_new;
};

#endif  // CFGMIG_TESTS_LIBCFGMIG_STANDALONERUN_H
