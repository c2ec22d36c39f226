// Inventories of 100,000 DNs on both sides: every call, in its order, with its arguments. A step whose cost grows with
// the square of the inventory runs into the time limit of the test.

#include <gtest/gtest.h>

#include <functional>

#include "ConfigFile.h"
#include "World.h"

namespace {

using Lines = std::vector<std::string>;

constexpr int kEntries = 100000;

std::string dnOf(const std::string& kind, int i) { return "CN=" + kind + std::to_string(i) + ",CN=CONFIGURATION"; }

// Of the old entries every second one is new; of the others every second differs in its one setting.
bool isAdded(int i) { return i % 2 == 0; }
bool differs(int i) { return i % 4 == 1; }

std::vector<fake::Attribute> attributes(const std::string& value) {
  return {{"objectclass", {"A"}}, {"cn", {"x"}}, {"zor-slapdPort", {value}}};
}

Lines additionOf(int i) {
  const std::string dn = dnOf("E", i);
  return {"old.getParamValueInfo(" + dn + ", CN) = 0",
          "old.getParamArrayValueInfo(" + dn + ", OBJECTCLASS) = 0",
          "new.addEntry(" + dn + ", x, A, TOP) = 0",
          "old.getFirstEntry(" + dn + ") = 0",
          "old.getFirstAttribute(" + dn + ") = 0",
          "old.getParamArrayValueInfo(" + dn + ", objectclass) = 0",
          "new.addValue(" + dn + ", objectclass, A) = 0",
          "old.getNextAttribute(" + dn + ") = 0",
          "old.getParamArrayValueInfo(" + dn + ", cn) = 0",
          "new.addValue(" + dn + ", cn, x) = 0",
          "old.getNextAttribute(" + dn + ") = 0",
          "old.getParamArrayValueInfo(" + dn + ", zor-slapdPort) = 0",
          "new.addValue(" + dn + ", zor-slapdPort, old) = 0",
          "old.getNextAttribute(" + dn + ") = 0",
          "cfg_ber_free(old:" + dn + ")",
          "cfg_msgfree(old:" + dn + ")"};
}

Lines mergeOf(int i) {
  const std::string dn = dnOf("E", i);
  Lines lines = {"old.getFirstEntry(" + dn + ") = 0",
                 "old.getFirstAttribute(" + dn + ") = 0",
                 "old.getNextAttribute(" + dn + ") = 0",
                 "old.getParamArrayValueInfo(" + dn + ", cn) = 0",
                 "new.getParamArrayValueInfo(" + dn + ", cn) = 0",
                 "old.getNextAttribute(" + dn + ") = 0",
                 "old.getParamArrayValueInfo(" + dn + ", zor-slapdPort) = 0",
                 "new.getParamArrayValueInfo(" + dn + ", zor-slapdPort) = 0"};
  if (differs(i)) {
    lines.push_back("new.setValue(" + dn + ", zor-slapdPort, old) = 0");
  }
  lines.insert(lines.end(),
               {"old.getNextAttribute(" + dn + ") = 0", "cfg_ber_free(old:" + dn + ")", "cfg_msgfree(old:" + dn + ")"});
  return lines;
}

// The calls that a merge must make, made up one entry at a time.
class ExpectedCalls {
 public:
  // The next call; empty after the last.
  std::string next() {
    while (m_next == m_lines.size()) {
      m_next = 0;
      if (m_phase == 2) {
        return "";
      }
      m_lines = more();
    }
    return m_lines[m_next++];
  }

 private:
  Lines more() {
    for (; m_entry < kEntries; ++m_entry) {
      if (isAdded(m_entry) == (m_phase == 0)) {
        return m_phase == 0 ? additionOf(m_entry++) : mergeOf(m_entry++);
      }
    }
    m_entry = 0;
    if (++m_phase == 1) {
      return {"old.getParamArrayValueInfo(CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION, zor-slapdIncludeSchema) = 32"};
    }
    return {};
  }

  int m_phase = 0;  // 0 additions, 1 merges, 2 done
  int m_entry = 0;
  Lines m_lines;
  std::size_t m_next = 0;
};

TEST(LargeMerge, MakesEveryCallInOrder) {
  fake::World world;
  world.setEvents(0);
  world.keepCalls(false);
  for (int i = 0; i < kEntries; ++i) {
    world.store("old").put(dnOf("E", i), attributes("old"));
  }
  // The new configuration lists what it shares from the last to the first, between entries of its own.
  for (int i = kEntries - 1; i >= 0; --i) {
    if (isAdded(i)) {
      world.store("new").put(dnOf("N", i), attributes("own"));
    } else {
      world.store("new").put(dnOf("E", i), attributes(differs(i) ? "new" : "old"));
    }
  }
  {
    ConfigFile oldConfig("old", nullptr);
    ConfigFile newConfig("new", nullptr);
    ASSERT_EQ(oldConfig.getDns(), 0);
    ASSERT_EQ(newConfig.getDns(), 0);
    ASSERT_EQ(oldConfig.getDnNum(), kEntries);
    ASSERT_EQ(newConfig.getDnNum(), kEntries);

    ExpectedCalls expected;
    int wrong = 0;
    world.onCall([&](const std::string& call) {
      if (call.starts_with("compareDns(") || wrong > 5) {
        return;
      }
      const std::string line = expected.next();
      EXPECT_EQ(call, line);
      wrong += call == line ? 0 : 1;
    });
    EXPECT_EQ(newConfig.mergeConfigFiles(&oldConfig, "6.0"), 1);
    EXPECT_EQ(expected.next(), "");
    world.onCall(nullptr);
  }
  EXPECT_EQ(world.store("new").entries().size(), static_cast<std::size_t>(kEntries) * 3 / 2);
  EXPECT_EQ(world.resources().outstanding(), Lines());
  EXPECT_EQ(world.resources().violations(), Lines());
}

}  // namespace
