#include "Comparison.h"

#include <strings.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <span>
#include <string_view>
#include <unordered_set>

#include "EntryReading.h"
#include "Failure.h"
#include "Secrets.h"
#include "Threads.h"

namespace tool {
namespace {

std::span<const char* const> inventoryOf(const ConfigFile& configuration) {
  return {configuration.getCfgDns(), static_cast<std::size_t>(configuration.getDnNum())};
}

// The entries that the comparison has left in the inventory, by their numbers in what it has left of the content, in
// the order of the file.
std::vector<std::uint32_t> entriesLeft(const ConfigFile& configuration, const cfgstore::Snapshot& content) {
  std::vector<std::uint32_t> numbers;
  for (const char* const dn : inventoryOf(configuration)) {
    const std::uint32_t number = content.findEntry(dn);
    if (number != cfgstore::Snapshot::kNone) numbers.push_back(number);
  }
  std::sort(numbers.begin(), numbers.end());
  return numbers;
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
std::vector<std::string> equalThinnedEntries(OVOConfigUtils::CfgUtils& oldStore, OVOConfigUtils::CfgUtils& newStore) {
  std::vector<std::string> equal;
  for (const char* dn : kThinnedEntries) {
    if (!hasEntry(oldStore, dn) || !hasEntry(newStore, dn) || !isEqualEntry(oldStore, newStore, dn)) continue;
    const std::unique_ptr<char, decltype(&std::free)> normal(formatDn(dn), &std::free);
    if (normal) equal.emplace_back(normal.get());
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
  const std::span<const char* const> others = inventoryOf(newConfiguration);
  const std::size_t size = cfgstore::ConfigStore::of(store).textAsRead().size();
  auto newEntries =
      cfgstore::doBeside(size, [others] { return std::unordered_set<std::string_view>(others.begin(), others.end()); });
  const auto equal = equalThinnedEntries(store, *newConfiguration.getCfgUtils());
  if (oldConfiguration.compareConfigFiles(&newConfiguration) == 0) {
    throw Failure(ExitStatus::failed, "the comparison could not begin");
  }

  Comparison comparison;
  // What the comparison has left of it.
  comparison.content = cfgstore::Snapshot(cfgstore::ConfigStore::of(store), cfgstore::Snapshot::Lines::left);
  const cfgstore::Snapshot& content = comparison.content;
  comparison.attributes.reserve(content.attributes().size());
  comparison.values.reserve(content.values().size());
  const std::unordered_set<std::string_view> ofNew = newEntries.get();
  SecretNames names;
  for (const std::uint32_t number : entriesLeft(oldConfiguration, content)) {
    const cfgstore::SnapshotEntry& left = content.entries()[number];
    if (std::find(equal.begin(), equal.end(), left.normal) != equal.end()) continue;
    ComparedEntry& entry = comparison.entries.emplace_back();
    entry.dn = left.dn;
    entry.normalDn = left.normal;
    entry.onlyOld = !ofNew.contains(left.normal);
    entry.firstAttribute = comparison.attributes.size();
    for (const cfgstore::SnapshotAttribute& attribute : content.attributesOf(left)) {
      add(comparison, attribute, names.says(attribute.name), showSecrets);
    }
    entry.attributes = comparison.attributes.size() - entry.firstAttribute;
  }
  return comparison;
}

}  // namespace tool
