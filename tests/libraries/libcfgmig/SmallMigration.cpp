#include "SmallMigration.h"

const std::vector<SmallPair>& smallPairs() {
  static const std::vector<SmallPair> pairs = {
      {"From41", "4.1", putSmallPair41},     {"FromReplica51", "5.1", putSmallReplica51},
      {"FromPeer51", "5.1", putSmallPeer51}, {"FromMaster51", "5.1", putSmallMaster51},
      {"From52", "5.2", putSmallPair52},     {"From60", "6.0", putSmallPair60},
  };
  return pairs;
}

SmallMigration::SmallMigration(const SmallPair& pair) : m_version(pair.version) {
  pair.put(world.store("old"), world.store("new"));
}

void SmallMigration::run() {
  m_old = std::make_unique<ConfigFile>("old", nullptr);
  m_new = std::make_unique<ConfigFile>("new", nullptr);
  oldDns = m_old->getDns();
  newDns = m_new->getDns();
  if (oldDns == 0 && newDns == 0) {
    merged = m_new->mergeConfigFiles(m_old.get(), m_version);
  }
}

void SmallMigration::close() {
  m_old.reset();
  m_new.reset();
}

std::vector<std::string> SmallMigration::complaints() const {
  std::vector<std::string> lines = world.resources().outstanding();
  const auto& violations = world.resources().violations();
  lines.insert(lines.end(), violations.begin(), violations.end());
  if (std::string wrong = fake::imbalance(world.records()); !wrong.empty()) {
    lines.push_back(wrong);
  }
  return lines;
}
