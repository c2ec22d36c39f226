// Configurations of 100,000 entries, four out of five identical: every call, in its order, what is left, and the order
// of the inventory afterwards. A step whose cost grows with the square of the inventory runs into the time limit of the
// test.

#include <gtest/gtest.h>

#include <unordered_map>

#include "ConfigFile.h"
#include "World.h"

namespace {

using Lines = std::vector<std::string>;

constexpr int kEntries = 100000;

std::string dnOf(int i) { return "CN=E" + std::to_string(i) + ",CN=CONFIGURATION"; }
bool differs(int i) { return i % 5 == 2; }

std::vector<fake::Attribute> attributes(const std::string& value) {
  return {{"cn", {"x"}}, {"zor-slapdPort", {value, "2"}}};
}

Lines comparisonOf(int i) {
  const std::string dn = dnOf(i);
  Lines lines = {"old.getFirstEntry(" + dn + ") = 0",
                 "new.getFirstEntry(" + dn + ") = 0",
                 "old.getFirstAttribute(" + dn + ") = 0",
                 "new.getFirstAttribute(" + dn + ") = 0",
                 "old.getParamArrayValueInfo(" + dn + ", cn) = 0",
                 "new.getParamArrayValueInfo(" + dn + ", cn) = 0",
                 "old.delValue(" + dn + ", cn, [x]) = 0",
                 "old.delValue(" + dn + ", cn, [x]) = 16",
                 "old.getNextAttribute(" + dn + ") = 0",
                 "new.getNextAttribute(" + dn + ") = 0",
                 "old.getParamArrayValueInfo(" + dn + ", zor-slapdPort) = 0",
                 "new.getParamArrayValueInfo(" + dn + ", zor-slapdPort) = 0"};
  if (!differs(i)) {
    lines.insert(
        lines.end(),
        {"old.delValue(" + dn + ", zor-slapdPort, [same]) = 0", "old.delValue(" + dn + ", zor-slapdPort, [2]) = 0",
         "old.delValue(" + dn + ", zor-slapdPort, [same]) = 16", "old.delValue(" + dn + ", zor-slapdPort, [2]) = 16",
         "old.getNextAttribute(" + dn + ") = 0", "new.getNextAttribute(" + dn + ") = 0"});
  }
  lines.insert(lines.end(), {"cfg_ber_free(old:" + dn + ")", "cfg_ber_free(new:" + dn + ")",
                             "cfg_msgfree(old:" + dn + ")", "cfg_msgfree(new:" + dn + ")"});
  if (!differs(i)) {
    lines.push_back("old.removeEntry(" + dn + ") = 0");
  }
  return lines;
}

// The inventory when each identical DN in turn has given its place to the last one.
Lines inventoryAfterwards() {
  std::vector<int> inventory;
  std::unordered_map<int, std::size_t> place;
  for (int i = 0; i < kEntries; ++i) {
    place[i] = inventory.size();
    inventory.push_back(i);
  }
  for (int i = 0; i < kEntries; ++i) {
    if (!differs(i)) {
      const std::size_t at = place[i];
      inventory[at] = inventory.back();
      place[inventory[at]] = at;
      inventory.pop_back();
    }
  }
  Lines dns;
  for (const int i : inventory) {
    dns.push_back(dnOf(i));
  }
  return dns;
}

TEST(LargeComparison, MakesEveryCallInOrderAndLeavesWhatDiffers) {
  fake::World world;
  world.setEvents(0);
  world.keepCalls(false);
  for (int i = 0; i < kEntries; ++i) {
    world.store("old").put(dnOf(i), attributes(differs(i) ? "old" : "same"));
  }
  // The other configuration lists the same entries from the last to the first.
  for (int i = kEntries - 1; i >= 0; --i) {
    world.store("new").put(dnOf(i), attributes(differs(i) ? "new" : "same"));
  }
  {
    ConfigFile oldConfig("old", nullptr);
    ConfigFile newConfig("new", nullptr);
    ASSERT_EQ(oldConfig.getDns(), 0);
    ASSERT_EQ(newConfig.getDns(), 0);

    int entry = 0;
    Lines expected = comparisonOf(entry);
    std::size_t next = 0;
    int wrong = 0;
    world.onCall([&](const std::string& call) {
      if (call.starts_with("compareDns(") || wrong > 5) {
        return;
      }
      if (next == expected.size()) {
        ++entry;
        expected = entry < kEntries ? comparisonOf(entry) : Lines{"no further call"};
        next = 0;
      }
      EXPECT_EQ(call, expected[next]);
      wrong += call == expected[next++] ? 0 : 1;
    });
    EXPECT_EQ(oldConfig.compareConfigFiles(&newConfig), 1);
    world.onCall(nullptr);
    EXPECT_EQ(entry, kEntries - 1);
    EXPECT_EQ(next, expected.size());

    ASSERT_EQ(oldConfig.getDnNum(), kEntries / 5);
    EXPECT_EQ(Lines(oldConfig.getCfgDns(), oldConfig.getCfgDns() + kEntries / 5), inventoryAfterwards());
    EXPECT_EQ(newConfig.getDnNum(), kEntries);
  }
  EXPECT_EQ(world.store("new").entries().size(), static_cast<std::size_t>(kEntries));
  EXPECT_EQ(world.store("old").entries().size(), static_cast<std::size_t>(kEntries) / 5);
  const std::vector<fake::Attribute> left = {{"zor-slapdPort", {"old", "2"}}};
  int i = 2;
  for (const fake::Entry& entry : world.store("old").entries()) {
    ASSERT_EQ(entry.dn, dnOf(i));
    ASSERT_EQ(entry.attributes, left);
    i += 5;
  }
  EXPECT_EQ(world.resources().outstanding(), Lines());
  EXPECT_EQ(world.resources().violations(), Lines());
}

// These make no account of their calls, so it takes more entries to make a quadratic step last too long.
constexpr int kManyEntries = 2 * kEntries;

// Every DN twice, and each entry without attributes, so that every position of the inventory is removed.
TEST(LargeComparison, RepeatedDnsCostNoMore) {
  fake::World world;
  world.setEvents(0);
  world.keepCalls(false);
  world.formatDnsBy([](std::string_view dn) { return std::make_optional("CN=E" + std::string(dn.substr(4))); });
  for (int i = 0; i < kManyEntries / 2; ++i) {
    for (const std::string name : {"E", "F"}) {
      const std::string dn = "CN=" + name + std::to_string(i) + ",CN=CONFIGURATION";
      world.store("old").put(dn, {});
      world.store("new").put(dn, {});
    }
  }
  ConfigFile oldConfig("old", nullptr);
  ConfigFile newConfig("new", nullptr);
  ASSERT_EQ(oldConfig.getDns(), 0);
  ASSERT_EQ(newConfig.getDns(), 0);
  EXPECT_EQ(oldConfig.compareConfigFiles(&newConfig), 1);
  EXPECT_EQ(oldConfig.getDnNum(), 0);
  EXPECT_EQ(world.resources().violations(), Lines());
}

// One DN at every position.
TEST(LargeComparison, OneDnThroughoutCostsNoMore) {
  fake::World world;
  world.setEvents(0);
  world.keepCalls(false);
  world.formatDnsBy([](std::string_view) { return std::make_optional(std::string("CN=E,CN=CONFIGURATION")); });
  for (int i = 0; i < kManyEntries; ++i) {
    world.store("old").put(dnOf(i), {});
  }
  world.store("new").put("CN=E,CN=CONFIGURATION", {});
  ConfigFile oldConfig("old", nullptr);
  ConfigFile newConfig("new", nullptr);
  ASSERT_EQ(oldConfig.getDns(), 0);
  ASSERT_EQ(newConfig.getDns(), 0);
  EXPECT_EQ(oldConfig.compareConfigFiles(&newConfig), 1);
  EXPECT_EQ(oldConfig.getDnNum(), 0);
  EXPECT_EQ(world.resources().violations(), Lines());
}

}  // namespace
