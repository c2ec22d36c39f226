// libcfgmig.so as it is installed, with a store and a trace facility that it has never seen.

#include <gtest/gtest.h>

#include <type_traits>

#include "ConfigFile.h"
#include "SmallMigration.h"
#include "TracedMethods.h"
#include "World.h"

namespace {

using Lines = std::vector<std::string>;

TEST(LinkedWithFakes, AMigrationRunsOnThem) {
  fake::World world(fake::World::Memory::unseen);
  putSmallPair60(world.store("old"), world.store("new"));
  {
    ConfigFile oldConfig("old", nullptr);
    ConfigFile newConfig("new", nullptr);
    ASSERT_EQ(oldConfig.getDns(), 0);
    ASSERT_EQ(newConfig.getDns(), 0);
    EXPECT_EQ(oldConfig.getDnNum(), 11);
    EXPECT_EQ(newConfig.mergeConfigFiles(&oldConfig, "6.0"), 1);
  }
  EXPECT_EQ(world.store("new").values("CN=CONFIGURATION", "zor-slapdTimeLimit"), (Lines{"900"}));
  EXPECT_EQ(world.store("new").values("CN=CONFIGURATION", "zor-slapdPort"), (Lines{"389"}));
  EXPECT_EQ(world.store("new").values("CN=REPLICATION,CN=CONFIGURATION", "zor-slapdReplMaxErrors"), (Lines{"9"}));
  EXPECT_NE(world.store("new").find("CN=ONE CLASS,CN=CONFIGURATION"), nullptr);
  EXPECT_EQ(imbalance(world.records()), "");
  EXPECT_EQ(text(world.records().front()), entryOf(traced::kGetDns));
  EXPECT_EQ(text(world.records().back()), exitOf(traced::kMergeConfigFiles, 1));
}

// A product may derive from the class and delete through it.
TEST(LinkedWithFakes, TheClassCanBeDerivedFromAndDeletedThroughItsBase) {
  fake::World world(fake::World::Memory::unseen);
  struct Derived : ConfigFile {
    explicit Derived(bool& destroyed) : ConfigFile("old", nullptr), m_destroyed(destroyed) {}
    ~Derived() override { m_destroyed = true; }
    bool& m_destroyed;
  };
  bool destroyed = false;
  ConfigFile* config = new Derived(destroyed);
  EXPECT_NE(dynamic_cast<Derived*>(config), nullptr);
  delete config;
  EXPECT_TRUE(destroyed);
  EXPECT_EQ(world.calls(), (Lines{"old.open() = 0", "old.close()"}));
}

// The internal methods are nobody else's business.
template <class Config>
constexpr bool showsItsInternals() {
  return requires { &Config::mergeIn60; }
  || requires { &Config::addCfgEntry; }
  || requires { &Config::processNewEntry; }
  || requires { &Config::isOVOFile; }
  || requires { &Config::m_cfgDns; }
  || requires { &Config::m_cfgUtils; };
}
static_assert(!showsItsInternals<ConfigFile>());

}  // namespace
