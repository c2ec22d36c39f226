// Random configurations that have much in common, compared by the library and by the oracle: entries, values, and the
// order of the inventory afterwards.

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>

#include "ComparisonOracle.h"
#include "ConfigFile.h"
#include "SimpleDn.h"
#include "World.h"

namespace {

using fake::Attribute;
using Values = std::vector<std::string>;

// Some stand twice: what follows a "~" is left out of the normal form.
const Values kDns = {"CN=CONFIGURATION",
                     "cn=A,cn=Configuration",
                     "CN=B,CN=CONFIGURATION",
                     "CN=B~2,CN=CONFIGURATION",
                     "CN=C,CN=CONFIGURATION",
                     "CN=B~3,CN=CONFIGURATION",
                     "CN=D~2,CN=CONFIGURATION",
                     "CN=D,CN=CONFIGURATION",
                     "CN=DIRECTORY,CN=RDBM BACKENDS,CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION",
                     "CN=SCHEMADB,CN=LDCF BACKENDS,CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION",
                     "cn=DIRECTORY, cn=RDBM BACKENDS, cn=ZOR Halvorn, CN=SCHEMAS,CN=CONFIGURATION",
                     "cn=SCHEMADB, cn=LDCF BACKENDS, cn=ZOR Halvorn, CN=SCHEMAS,CN=CONFIGURATION"};

const Values kNames = {"cn", "zor-slapdPlugin", "zor-slapdSuffix", "zor-slapdPort"};
const Values kValues = {"a", "A", "b", "a  b", "a b", "a   b", "c", "d"};

// Different values in random order.
Values someValues() {
  Values values;
  for (int n = *rc::gen::inRange(0, 4); n >= 0; --n) {
    const std::string value = *rc::gen::elementOf(kValues);
    if (std::find(values.begin(), values.end(), value) == values.end()) {
      values.push_back(value);
    }
  }
  return values;
}

std::vector<Attribute> someAttributes() {
  std::vector<Attribute> attributes;
  for (const std::string& name : kNames) {
    if (*rc::gen::inRange(0, 3) != 0) {
      attributes.push_back({name, someValues()});
    }
  }
  return attributes;
}

std::string upper(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return std::toupper(c); });
  return text;
}

// The same attributes with perhaps a small change.
std::vector<Attribute> nearly(std::vector<Attribute> attributes) {
  if (attributes.empty() || *rc::gen::inRange(0, 3) == 0) {
    return attributes;
  }
  Attribute& one = attributes[*rc::gen::inRange<std::size_t>(0, attributes.size())];
  switch (*rc::gen::inRange(0, 6)) {
    case 0:
      one.name = upper(one.name);
      break;
    case 1:
      one.values.push_back("e");
      break;
    case 2:
      one.values.insert(one.values.begin(), "e");
      break;
    case 3:
      one.values.front() = "e";
      break;
    case 4:
      std::reverse(one.values.begin(), one.values.end());
      break;
    default:
      std::swap(one, attributes.front());
      break;
  }
  return attributes;
}

Values inSomeOrder(Values dns) {
  for (std::size_t i = dns.size() - 1; i > 0; --i) {
    std::swap(dns[i], dns[i - *rc::gen::inRange<std::size_t>(0, i + 1)]);
  }
  return dns;
}

std::string withoutMark(std::string form) {
  if (const auto at = form.find('~'); at != std::string::npos) {
    form.erase(at, form.find(',') - at);
  }
  return form;
}

// A pair of configurations; the second one is made from the first.
struct Pair {
  Pair() {
    world.setEvents(0);
    world.formatDnsBy([](std::string_view dn) { return std::make_optional(withoutMark(fake::simpleDn(dn))); });
    std::map<std::string, std::vector<Attribute>> first;
    for (const std::string& dn : inSomeOrder(kDns)) {
      if (*rc::gen::inRange(0, 6) != 0) {
        world.store("old").put(dn, first[dn] = someAttributes());
      }
    }
    for (const std::string& dn : inSomeOrder(kDns)) {
      if (*rc::gen::inRange(0, 6) != 0) {
        world.store("new").put(dn, first.contains(dn) ? nearly(first[dn]) : someAttributes());
      }
    }
    RC_ASSERT(oldConfig.getDns() == 0);
    RC_ASSERT(newConfig.getDns() == 0);
  }

  oracle::Compared state(const std::string& store, const ConfigFile& config) {
    oracle::Compared result;
    result.inventory.assign(config.getCfgDns(), config.getCfgDns() + config.getDnNum());
    for (const fake::Entry& entry : world.store(store).entries()) {
      result.entries[fake::simpleDn(entry.dn)] = entry.attributes;
    }
    return result;
  }
  oracle::Compared oldState() { return state("old", oldConfig); }
  oracle::Compared newState() { return state("new", newConfig); }

  fake::World world;
  ConfigFile oldConfig{"old", nullptr};
  ConfigFile newConfig{"new", nullptr};
};

RC_GTEST_PROP(ComparisonProperty, LeavesWhatTheOracleSays, ()) {
  Pair pair;
  oracle::Compared expected = pair.oldState();
  const oracle::Compared other = pair.newState();
  oracle::compare(expected, other);
  RC_ASSERT(pair.oldConfig.compareConfigFiles(&pair.newConfig) == 1);
  RC_ASSERT(pair.oldState() == expected);
  RC_ASSERT(pair.newState() == other);
  RC_ASSERT(pair.world.resources().violations().empty());
}

RC_GTEST_PROP(ComparisonProperty, ASecondComparisonDoesSoToo, ()) {
  Pair pair;
  oracle::Compared expected = pair.oldState();
  const oracle::Compared other = pair.newState();
  oracle::compare(expected, other);
  oracle::compare(expected, other);
  RC_ASSERT(pair.oldConfig.compareConfigFiles(&pair.newConfig) == 1);
  RC_ASSERT(pair.oldConfig.compareConfigFiles(&pair.newConfig) == 1);
  RC_ASSERT(pair.oldState() == expected);
}

RC_GTEST_PROP(ComparisonProperty, NothingIsLeftBehindWhateverFails, ()) {
  Pair pair;
  const int nth = *rc::gen::inRange(1, 200);
  const bool throws = *rc::gen::inRange(0, 2) == 1;
  if (throws) {
    pair.world.faults().throwAtCall(nth);
  } else {
    pair.world.faults().failCall(nth, 80);
  }
  const oracle::Compared other = pair.newState();
  try {
    RC_ASSERT(pair.oldConfig.compareConfigFiles(&pair.newConfig) == 1);
  } catch (const fake::Thrown&) {
  }
  RC_ASSERT(pair.newState() == other);
  RC_ASSERT(pair.world.resources().violations().empty());
  // What is out is the two inventories, array and strings.
  const int dns = pair.oldConfig.getDnNum() + pair.newConfig.getDnNum();
  RC_ASSERT(pair.world.resources().outstanding().size() == static_cast<std::size_t>(dns + 2));
}

}  // namespace
