#include <string>

#include "empty_store.h"
#include "library_subject.h"

// Half of the DNs stand on both sides, as far apart as a different order makes them.
LibrarySubject librarySubjectOf(std::int64_t entries) {
  auto& oldDns = dnsOf("old");
  auto& newDns = dnsOf("new");
  oldDns.clear();
  newDns.clear();
  for (std::int64_t i = 0; i < entries; ++i) {
    oldDns.push_back("CN=ENTRY " + std::to_string(i) + ",CN=ENTRIES,CN=CONFIGURATION");
    newDns.push_back("CN=ENTRY " + std::to_string(entries / 2 + entries - 1 - i) + ",CN=ENTRIES,CN=CONFIGURATION");
  }
  return {"old", "new", "", ""};
}
