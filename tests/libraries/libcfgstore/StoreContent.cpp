#include "StoreContent.h"

#include <rapidcheck.h>

#include <cstdint>
#include <string>

#include "LdifGenerator.h"
#include "Snapshot.h"

namespace cfgstore::test {

Strings contentOf(ConfigStore& store) {
  const Snapshot snapshot(store);
  Strings all;
  for (std::uint32_t i = 0; i < snapshot.entries().size(); ++i) {
    const bool isSetAside = snapshot.entries()[i].setAside;
    if (isSetAside) snapshot.unfold(i);
    const SnapshotEntry& entry = snapshot.entries()[i];
    all.push_back(std::to_string(entry.line) + " " + std::string(entry.dn) + " " + std::string(entry.normal) +
                  (isSetAside ? "*" : ""));
    for (const SnapshotAttribute& attribute : snapshot.attributesOf(entry)) {
      for (const SnapshotValue& value : snapshot.valuesOf(attribute)) {
        all.push_back(std::to_string(value.line) + " " + std::string(attribute.name) + "=" + std::string(value.value) +
                      (value.repeated ? "!" : ""));
      }
    }
    snapshot.fold();
  }
  all.push_back(std::to_string(snapshot.valuesSetAside()) + " values are set aside");
  return all;
}

Strings entriesOf(ConfigStore& store) {
  const Snapshot snapshot(store);
  Strings entries;
  for (const SnapshotEntry& entry : snapshot.entries()) {
    entries.push_back(std::to_string(entry.line) + " " + std::string(entry.dn) + (entry.setAside ? "*" : ""));
  }
  return entries;
}

void editSome(TestStore& store) {
  for (int steps = *rc::gen::inRange(0, 6); steps > 0; --steps) {
    const std::string number(1, *rc::gen::inRange<char>('0', '8'));
    const std::string dn = "CN=E" + number + ",CN=CONFIGURATION";
    const Snapshot now(store.store());
    const std::uint32_t entry = now.findEntry(dn);
    if (entry != Snapshot::kNone && now.entries()[entry].setAside) continue;
    const std::string value = *rc::gen::oneOf(rc::gen::just(std::string("x")), genValue());
    switch (*rc::gen::inRange(0, 4)) {
      case 0:
        store.addValue(dn.c_str(), "a", value.c_str());
        break;
      case 1:
        store.setValue(dn.c_str(), "b", value.c_str());
        break;
      case 2:
        store.addEntry(("cn=e" + number + ", cn=Configuration").c_str(), value.c_str(), "top", "person");
        break;
      default:
        store.removeEntry(dn.c_str());
    }
  }
}

}  // namespace cfgstore::test
