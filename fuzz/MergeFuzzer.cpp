// MergeFuzzer.cpp -- one character that selects what is done, the old configuration, a zero byte, the new
// configuration. The library works on both through the embedded store. What it leaves is what the oracles of the
// library's tests say, can be read again, and nothing else is left: no memory but the array blocks that the store's
// contract has left alone.
//
//   0 1 2 3   a merge from 4.1, 5.1, 5.2, 6.0
//   4         a comparison
//   5         all clean-ups of the new configuration
//   6         its plug-ins rewritten
//   7 to =    the same seven with everything traced

#include <algorithm>
#include <memory>
#include <set>
#include <string>
#include <string_view>

#include "ComparisonOracle.h"
#include "ConfigFile.h"
#include "ConfigStore.h"
#include "Fuzz.h"
#include "ListBlocks.h"
#include "MergeOracle.h"
#include "NormalDn.h"
#include "SimpleDn.h"
#include "Snapshot.h"
#include "SnapshotText.h"
#include "TraceControl.h"

namespace {

enum class Scenario { merge41, merge51, merge52, merge60, compare, clean, rewritePlugins };

constexpr std::size_t kScenarios = 7;
constexpr const char* kVersions[] = {"4.1", "5.1", "5.2", "6.0"};
constexpr std::string_view kBase = "CN=CONFIGURATION";

cfgstore::Snapshot snapshotOf(ConfigFile& configuration) {
  return cfgstore::Snapshot(cfgstore::ConfigStore::of(*configuration.getCfgUtils()));
}

std::vector<std::string> valuesOf(const cfgstore::Snapshot& snapshot, const cfgstore::SnapshotAttribute& attribute) {
  std::vector<std::string> values;
  for (const cfgstore::SnapshotValue& value : snapshot.valuesOf(attribute)) {
    if (!value.repeated) values.emplace_back(value.value);
  }
  return values;
}

oracle::Configuration configurationOf(ConfigFile& from) {
  const cfgstore::Snapshot snapshot = snapshotOf(from);
  oracle::Configuration result;
  for (const cfgstore::SnapshotEntry& entry : snapshot.entries()) {
    const std::string dn(entry.normal);
    if (cfgstore::isWithinNormalDn(dn, kBase)) result.order.push_back(dn);
    oracle::Attributes& attributes = result.entries[dn];
    for (const cfgstore::SnapshotAttribute& attribute : snapshot.attributesOf(entry)) {
      attributes.emplace_back(oracle::upper(std::string(attribute.name)), valuesOf(snapshot, attribute));
    }
  }
  return result;
}

oracle::Compared comparedOf(ConfigFile& from) {
  const cfgstore::Snapshot snapshot = snapshotOf(from);
  oracle::Compared result;
  result.inventory.assign(from.getCfgDns(), from.getCfgDns() + from.getDnNum());
  for (const cfgstore::SnapshotEntry& entry : snapshot.entries()) {
    auto& attributes = result.entries[fake::simpleDn(entry.normal)];
    for (const cfgstore::SnapshotAttribute& attribute : snapshot.attributesOf(entry)) {
      attributes.push_back({oracle::upper(std::string(attribute.name)), valuesOf(snapshot, attribute)});
    }
  }
  return result;
}

// The oracles keep an attribute in its place when its first value goes. The store does not where the values of two
// attributes stand in turns, and a transfer that ends early depends on the order.
bool hasAttributesApart(ConfigFile& configuration) {
  const cfgstore::Snapshot snapshot = snapshotOf(configuration);
  for (const cfgstore::SnapshotEntry& entry : snapshot.entries()) {
    std::size_t above = 0;
    for (const cfgstore::SnapshotAttribute& attribute : snapshot.attributesOf(entry)) {
      if (snapshot.valuesOf(attribute).front().line < above) return false;
      above = snapshot.valuesOf(attribute).back().line;
    }
  }
  return true;
}

// The oracle of the comparison knows DNs by a simple form, which some different ones have in common.
bool hasFormsApart(ConfigFile& configuration) {
  const cfgstore::Snapshot snapshot = snapshotOf(configuration);
  std::set<std::string> forms;
  for (const cfgstore::SnapshotEntry& entry : snapshot.entries()) {
    if (!forms.insert(fake::simpleDn(entry.normal)).second) return false;
  }
  return true;
}

void checkInventory(ConfigFile& configuration) {
  const oracle::Configuration content = configurationOf(configuration);
  fuzz::require(std::vector<std::string>(configuration.getCfgDns(),
                                         configuration.getCfgDns() + configuration.getDnNum()) == content.order,
                "an inventory lists the entries below the main entry");
}

void merge(ConfigFile& oldConfiguration, ConfigFile& newConfiguration, const char* version) {
  oracle::Configuration from = configurationOf(oldConfiguration);
  oracle::Configuration to = configurationOf(newConfiguration);
  oracle::merge(version, from, to);
  const bool isKnown = hasAttributesApart(oldConfiguration) && hasAttributesApart(newConfiguration);
  fuzz::require(newConfiguration.mergeConfigFiles(&oldConfiguration, version) == 1, "a merge is carried out");
  if (!isKnown) return;
  fuzz::require(oracle::sameSettings(configurationOf(newConfiguration), to), "a merge gives what the oracle says");
  fuzz::require(oracle::sameSettings(configurationOf(oldConfiguration), from), "a merge leaves what the oracle says");
}

void compare(ConfigFile& oldConfiguration, ConfigFile& newConfiguration) {
  oracle::Compared from = comparedOf(oldConfiguration);
  const oracle::Compared with = comparedOf(newConfiguration);
  const bool isKnown = hasAttributesApart(oldConfiguration) && hasAttributesApart(newConfiguration) &&
                       hasFormsApart(oldConfiguration) && hasFormsApart(newConfiguration);
  oracle::compare(from, with);
  fuzz::require(oldConfiguration.compareConfigFiles(&newConfiguration) == 1, "a comparison runs");
  fuzz::require(!isKnown || comparedOf(oldConfiguration) == from, "a comparison leaves what the oracle says");
  fuzz::require(!isKnown || comparedOf(newConfiguration) == with, "a comparison only reads the other configuration");
}

// The entries that a clean-up may touch.
bool isCleaned(const std::string& dn) {
  constexpr std::string_view kEntries[] = {
      "CN=FRONT END,CN=CONFIGURATION", "CN=SCHEMADB,CN=LDCF BACKENDS,CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION",
      "CN=DIRECTORY,CN=RDBM BACKENDS,CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION",
      "CN=CHANGE LOG,CN=RDBM BACKENDS,CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION"};
  return std::find(std::begin(kEntries), std::end(kEntries), dn) != std::end(kEntries);
}

void clean(ConfigFile& configuration, bool onlyPlugins) {
  oracle::Configuration before = configurationOf(configuration);
  if (!onlyPlugins) {
    configuration.removeDBInfo();
    configuration.removeDBInstInfo();
    configuration.removeCLInfo();
  }
  configuration.editCLInfo();
  oracle::Configuration after = configurationOf(configuration);
  const auto isTouched = [](const auto& entry) { return isCleaned(entry.first); };
  std::erase_if(before.entries, isTouched);
  std::erase_if(after.entries, isTouched);
  fuzz::require(before.entries == after.entries, "a clean-up touches its own entries only");
}

void run(Scenario scenario, ConfigFile& oldConfiguration, ConfigFile& newConfiguration) {
  switch (scenario) {
    case Scenario::compare:
      return compare(oldConfiguration, newConfiguration);
    case Scenario::clean:
      return clean(newConfiguration, false);
    case Scenario::rewritePlugins:
      return clean(newConfiguration, true);
    default:
      return merge(oldConfiguration, newConfiguration, kVersions[static_cast<std::size_t>(scenario)]);
  }
}

// Null for what the reader refuses.
std::unique_ptr<ConfigFile> opened(std::string_view text) {
  const fuzz::MemoryFile file(text);
  try {
    auto configuration = std::make_unique<ConfigFile>(file.path(), nullptr);
    fuzz::require(configuration->getDns() == 0, "an inventory can be made");
    checkInventory(*configuration);
    return configuration;
  } catch (const cfgstore::OpenError&) {
    return nullptr;
  }
}

void checkReadAgain(ConfigFile& configuration) {
  const std::string text = cfgstore::ConfigStore::of(*configuration.getCfgUtils()).text();
  const auto again = opened(text);
  fuzz::require(again != nullptr, "what was written can be read again", text);
  fuzz::require(fuzz::textOf(snapshotOf(*again)) == fuzz::textOf(snapshotOf(configuration)),
                "what was written is read again as it was", text);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view input = fuzz::viewOf(data, size);
  if (input.empty()) return 0;
  const std::size_t selector = static_cast<unsigned char>(input[0] - '0');
  const std::size_t end = std::min(input.find('\0', 1), input.size());

  std::size_t records = 0;
  ldtr::sendTo([&](const ldtr::Record& record) { records += ldtr::textLine(record).size(); });
  ldtr::setEvents(selector % (2 * kScenarios) >= kScenarios ? ldtr::kEverything : 0);
  const auto oldConfiguration = opened(input.substr(1, end - 1));
  const auto newConfiguration = oldConfiguration ? opened(input.substr(std::min(end + 1, input.size()))) : nullptr;
  if (newConfiguration) {
    run(static_cast<Scenario>(selector % kScenarios), *oldConfiguration, *newConfiguration);
    checkReadAgain(*oldConfiguration);
    checkReadAgain(*newConfiguration);
  }
  ldtr::discard();
  fuzz::releaseListBlocks();
  return 0;
}
