// ConfigFileFixture.h -- an old and a new configuration over fake stores. At its end every test is asked the same
// questions: did everything come back that the store handed out or the library allocated, exactly once, and did the
// trace records nest.

#ifndef CFGMIG_TESTS_LIBCFGMIG_CONFIGFILEFIXTURE_H
#define CFGMIG_TESTS_LIBCFGMIG_CONFIGFILEFIXTURE_H

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "ConfigFile.h"
#include "TracedMethods.h"
#include "World.h"

// The library's methods take DNs as modifiable strings.
inline char* modifiable(const std::string& text) { return const_cast<char*>(text.c_str()); }

class ConfigFileFixture : public testing::Test {
 protected:
  using Lines = std::vector<std::string>;

  // Opens both configurations as a migration tool does, on what their stores hold now, and forgets the calls of that.
  void open() {
    construct();
    ASSERT_EQ(m_old->getDns(), 0);
    ASSERT_EQ(m_new->getDns(), 0);
    world.forgetCalls();
  }

  // The same without the inventories.
  void construct() {
    m_old = std::make_unique<ConfigFile>("old", nullptr);
    m_new = std::make_unique<ConfigFile>("new", nullptr);
    world.forgetCalls();
  }

  void close() {
    m_old.reset();
    m_new.reset();
  }

  ConfigFile& oldConfig() { return *m_old; }
  ConfigFile& newConfig() { return *m_new; }
  fake::Content& oldStore() { return world.store("old"); }
  fake::Content& newStore() { return world.store("new"); }

  // What is wrong after all is closed; empty lines mean nothing.
  Lines complaints() {
    close();
    Lines lines = world.resources().outstanding();
    const Lines& violations = world.resources().violations();
    lines.insert(lines.end(), violations.begin(), violations.end());
    if (m_tracesWholeMethods) {
      if (std::string wrong = fake::imbalance(world.records()); !wrong.empty()) {
        lines.push_back(wrong);
      }
    }
    return lines;
  }

  // For tests with a mask under which entries and exits do not pair up.
  void tracesPartsOfMethods() { m_tracesWholeMethods = false; }

  void TearDown() override { EXPECT_EQ(complaints(), Lines()); }

  fake::World world;

 private:
  std::unique_ptr<ConfigFile> m_old;
  std::unique_ptr<ConfigFile> m_new;
  bool m_tracesWholeMethods = true;
};

#endif  // CFGMIG_TESTS_LIBCFGMIG_CONFIGFILEFIXTURE_H
