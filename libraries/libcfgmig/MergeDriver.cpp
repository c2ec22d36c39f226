// MergeDriver.cpp -- sorts the old configuration's entries into new and common ones and hands each to the rules of
// the source version.

#include <cstring>
#include <string_view>
#include <unordered_map>

#include "ConfigFile.h"
#include "internal/SourceVersion.h"
#include "internal/StoreResults.h"
#include "internal/TraceScope.h"

using namespace cfgmig;

namespace {

enum MergeResult { kNotStarted = 0, kCarriedOut = 1 };

constexpr PlainMessage kNoOldInventory{"mergeConfigFiles: cfg2Dns is NULL\n"};
constexpr PlainMessage kNoMemoryForNew{"mergeConfigFiles: failed to allocate memory for newEntries\n"};
constexpr PlainMessage kNoMemoryForUpdated{"mergeConfigFiles: failed to allocate memory for updatedEntries\n"};

// How often each DN stands in an inventory; lives for one call. Two inventories are compared by their exact texts.
class DnCounts {
 public:
  DnCounts(char** dns, int count) {
    if (dns == nullptr) return;
    m_counts.reserve(static_cast<std::size_t>(count > 0 ? count : 0));
    for (int i = 0; i < count; ++i) {
      if (dns[i] != nullptr) ++m_counts[dns[i]];
    }
  }
  int of(const char* dn) const {
    const auto found = m_counts.find(dn);
    return found == m_counts.end() ? 0 : found->second;
  }

 private:
  std::unordered_map<std::string_view, int> m_counts;
};

}  // namespace

// What a source version does with entries that only the old configuration has, with entries that both have, and once
// at the end.
struct ConfigFile::VersionRules {
  const char* version;
  int (ConfigFile::*addTo)(char* dn, ConfigFile* old);
  int (ConfigFile::*mergeIn)(char* dn, ConfigFile* old);
  int (ConfigFile::*check)(ConfigFile* old);
};

const ConfigFile::VersionRules* ConfigFile::rulesFor(const char* version) {
  static constexpr VersionRules kRules[] = {
      {"4.1", &ConfigFile::addTo41, &ConfigFile::mergeIn41, &ConfigFile::check41},
      {"5.1", &ConfigFile::addTo51, &ConfigFile::mergeIn51, &ConfigFile::check51},
      {"5.2", &ConfigFile::addTo52, &ConfigFile::mergeIn52, &ConfigFile::check52},
      {"6.0", &ConfigFile::addTo60, &ConfigFile::mergeIn60, &ConfigFile::check60},
  };
  for (const VersionRules& rules : kRules) {
    if (isSourceVersion(version, rules.version)) return &rules;
  }
  return nullptr;
}

int ConfigFile::mergeConfigFiles(ConfigFile* old, const char* version) {
  TraceScope trace(kMergeConfigFiles);
  char** const oldDns = old->getCfgDns();
  if (oldDns == nullptr) {
    trace.debug(kNoOldInventory);
    return trace.result(kNotStarted);
  }
  const PointerArray newEntries = allocatePointers(old->getDnNum());
  if (newEntries == nullptr) {
    trace.debug(kNoMemoryForNew);
    return trace.result(kNotStarted);
  }
  const PointerArray updatedEntries = allocatePointers(old->getDnNum());
  if (updatedEntries == nullptr) {
    trace.debug(kNoMemoryForUpdated);
    return trace.result(kNotStarted);
  }

  const DnCounts inNewInventory(m_cfgDns, m_dnNum);
  int newCount = 0;
  int updatedCount = 0;
  for (int i = 0; i < old->getDnNum(); ++i) {
    char* const dn = oldDns[i];
    if (dn == nullptr) continue;  // the inventory of a getDns that failed
    if (inNewInventory.of(dn) == 0) {
      newEntries[static_cast<std::size_t>(newCount++)] = dn;
    } else {
      updatedEntries[static_cast<std::size_t>(updatedCount++)] = dn;
    }
  }

  // No step's result changes what later steps do.
  for (int i = 0; i < newCount; ++i) processNewEntry(newEntries[static_cast<std::size_t>(i)], old, version);
  if (isSourceVersion(version, "6.0")) processIncSchema(old);
  for (int i = 0; i < updatedCount; ++i) {
    char* const dn = updatedEntries[static_cast<std::size_t>(i)];
    // An entry that stands more than once in the new inventory is merged as often.
    for (int times = inNewInventory.of(dn); times > 0; --times) processUpdatedEntry(dn, old, version);
  }
  additionalChecks(old, version);
  return trace.result(kCarriedOut);
}

// Intended, in these three: the exit record always carries 0.

int ConfigFile::processNewEntry(char* dn, ConfigFile* old, const char* version) {
  TraceScope trace(kProcessNewEntry);
  const VersionRules* const rules = rulesFor(version);
  return trace.unreported(rules == nullptr ? 0 : (this->*rules->addTo)(dn, old));
}

int ConfigFile::processUpdatedEntry(char* dn, ConfigFile* old, const char* version) {
  TraceScope trace(kProcessUpdatedEntry);
  const VersionRules* const rules = rulesFor(version);
  return trace.unreported(rules == nullptr ? 0 : (this->*rules->mergeIn)(dn, old));
}

int ConfigFile::additionalChecks(ConfigFile* old, const char* version) {
  TraceScope trace(kAdditionalChecks);
  const VersionRules* const rules = rulesFor(version);
  return trace.unreported(rules == nullptr ? 0 : (this->*rules->check)(old));
}
