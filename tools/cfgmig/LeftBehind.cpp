#include "LeftBehind.h"

#include <strings.h>

#include <algorithm>
#include <iterator>
#include <utility>

#include "EntryReading.h"

namespace tool {
namespace {

using OVOConfigUtils::CfgUtils;

// What a rule carries into an attribute of another name.
struct Renamed {
  const char* oldName;
  const char* newName;
};

constexpr Renamed kRenamed[] = {
    {"zor-slapdPeerDN", "zor-slapdMasterDN"},  // a peer's identity becomes that of a master
    {"zor-slapdPeerPW", "zor-slapdMasterPW"},
};

bool is(const std::string& attribute, const char* name) { return strcasecmp(attribute.c_str(), name) == 0; }

bool isCarried(const std::string& attribute, bool sameDn) {
  return !is(attribute, "OBJECTCLASS") && !is(attribute, "zor-slapdVersion") && (sameDn || !is(attribute, "CN"));
}

// Whether the new entry holds all values under this name.
bool holdsAll(CfgUtils& store, const std::string& dn, const std::string& attribute, std::vector<std::string> wanted) {
  std::vector<std::string> present = valuesOf(store, dn, attribute);
  std::sort(wanted.begin(), wanted.end());
  std::sort(present.begin(), present.end());
  return std::includes(present.begin(), present.end(), wanted.begin(), wanted.end());
}

bool hasArrived(CfgUtils& store, const std::string& dn, const std::string& attribute,
                const std::vector<std::string>& wanted) {
  if (holdsAll(store, dn, attribute, wanted)) return true;
  return std::any_of(std::begin(kRenamed), std::end(kRenamed), [&](const Renamed& renamed) {
    return is(attribute, renamed.oldName) && holdsAll(store, dn, renamed.newName, wanted);
  });
}

}  // namespace

std::vector<std::string> attributesLeftBehind(CfgUtils& oldStore, const std::string& oldDn, CfgUtils& newStore,
                                              const std::string& newDn) {
  const bool sameDn = compareDns(oldDn.c_str(), newDn.c_str()) != 0;
  std::vector<std::string> behind;
  for (std::string& attribute : attributesOf(oldStore, oldDn)) {
    if (!isCarried(attribute, sameDn)) continue;
    if (!hasArrived(newStore, newDn, attribute, valuesOf(oldStore, oldDn, attribute))) {
      behind.push_back(std::move(attribute));
    }
  }
  return behind;
}

}  // namespace tool
