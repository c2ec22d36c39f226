#include "Comparison.h"

#include <strings.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <string_view>
#include <unordered_set>

#include "EntryReading.h"
#include "Failure.h"
#include "Secrets.h"

namespace tool {
namespace {

using Inventory = std::vector<std::string>;

Inventory inventoryOf(const ConfigFile& configuration) {
  char** const dns = configuration.getCfgDns();
  return {dns, dns + configuration.getDnNum()};
}

// The DNs as the file writes them, in the order of the inventory.
Inventory writtenDns(OVOConfigUtils::CfgUtils& store) {
  char** list = nullptr;
  int count = 0;
  Inventory dns;
  if (store.getSubordinates("CN=CONFIGURATION", 2, &list, &count) != 0) return dns;
  for (char** dn = list; *dn != nullptr; ++dn) {
    dns.emplace_back(*dn);
    std::free(*dn);
  }
  std::free(list);
  return dns;
}

void add(Comparison& comparison, const cfgstore::SnapshotAttribute& from, NameSays name, bool showSecrets) {
  ComparedAttribute& attribute = comparison.attributes.emplace_back();
  attribute.name = from.name;
  attribute.firstValue = comparison.values.size();
  for (const cfgstore::SnapshotValue& value : comparison.content.valuesOf(from)) {
    if (value.repeated) continue;
    if (!showSecrets && isSecret(name, value.value)) {
      ++attribute.redacted;
    } else {
      comparison.values.push_back(value.value);
    }
  }
  attribute.values = comparison.values.size() - attribute.firstValue;
}

// The library takes the equal plug-ins out of these entries before it compares them, and then finds them different even
// where they are equal.
constexpr const char* kThinnedEntries[] = {
    "CN=DIRECTORY,CN=RDBM BACKENDS,CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION",
    "CN=SCHEMADB,CN=LDCF BACKENDS,CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION",
    "cn=DIRECTORY, cn=RDBM BACKENDS, cn=ZOR Halvorn, CN=SCHEMAS,CN=CONFIGURATION",
    "cn=SCHEMADB, cn=LDCF BACKENDS, cn=ZOR Halvorn, CN=SCHEMAS,CN=CONFIGURATION",
};

bool isEqual(const std::vector<std::string>& left, const std::vector<std::string>& right) {
  return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                    [](const std::string& a, const std::string& b) { return strcasecmp(a.c_str(), b.c_str()) == 0; });
}

// The same attributes with the same values, all in the same order.
bool isEqualEntry(OVOConfigUtils::CfgUtils& left, OVOConfigUtils::CfgUtils& right, const std::string& dn) {
  const std::vector<std::string> names = attributesOf(left, dn);
  return isEqual(names, attributesOf(right, dn)) && std::all_of(names.begin(), names.end(), [&](const auto& name) {
           return isEqual(valuesOf(left, dn, name), valuesOf(right, dn, name));
         });
}

// The thinned entries that are equal, as the inventory names them.
std::unordered_set<std::string> equalThinnedEntries(OVOConfigUtils::CfgUtils& oldStore,
                                                    OVOConfigUtils::CfgUtils& newStore) {
  std::unordered_set<std::string> equal;
  for (const char* dn : kThinnedEntries) {
    if (!hasEntry(oldStore, dn) || !hasEntry(newStore, dn) || !isEqualEntry(oldStore, newStore, dn)) continue;
    const std::unique_ptr<char, decltype(&std::free)> normal(formatDn(dn), &std::free);
    if (normal) equal.emplace(normal.get());
  }
  return equal;
}

}  // namespace

std::size_t Comparison::redacted() const {
  std::size_t sum = 0;
  for (const ComparedAttribute& attribute : attributes) sum += attribute.redacted;
  return sum;
}

Comparison compare(ConfigFile& oldConfiguration, ConfigFile& newConfiguration, bool showSecrets) {
  OVOConfigUtils::CfgUtils& store = *oldConfiguration.getCfgUtils();
  const Inventory before = inventoryOf(oldConfiguration);
  const Inventory written = writtenDns(store);
  const Inventory others = inventoryOf(newConfiguration);
  const std::unordered_set<std::string_view> newEntries(others.begin(), others.end());
  const auto equal = equalThinnedEntries(store, *newConfiguration.getCfgUtils());
  if (oldConfiguration.compareConfigFiles(&newConfiguration) == 0) {
    throw Failure(ExitStatus::failed, "the comparison could not begin");
  }

  const Inventory after = inventoryOf(oldConfiguration);  // in another order
  const std::unordered_set<std::string_view> left(after.begin(), after.end());
  Comparison comparison;
  // What the comparison has left of it.
  comparison.content = cfgstore::Snapshot(cfgstore::ConfigStore::of(store), cfgstore::Snapshot::Lines::left);
  const cfgstore::Snapshot& content = comparison.content;
  comparison.attributes.reserve(content.attributes().size());
  comparison.values.reserve(content.values().size());
  SecretNames names;
  for (std::size_t i = 0; i < before.size(); ++i) {
    if (!left.contains(before[i]) || equal.contains(before[i])) continue;
    ComparedEntry& entry = comparison.entries.emplace_back();
    entry.normalDn = before[i];
    entry.dn = i < written.size() ? written[i] : before[i];
    entry.onlyOld = !newEntries.contains(before[i]);
    entry.firstAttribute = comparison.attributes.size();
    const std::uint32_t number = content.findEntry(before[i]);
    if (number == cfgstore::Snapshot::kNone) continue;
    for (const cfgstore::SnapshotAttribute& attribute : content.attributesOf(content.entries()[number])) {
      add(comparison, attribute, names.says(attribute.name), showSecrets);
    }
    entry.attributes = comparison.attributes.size() - entry.firstAttribute;
  }
  return comparison;
}

}  // namespace tool
