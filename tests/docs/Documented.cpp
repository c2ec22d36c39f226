#include "Documented.h"

#include "Scenario.h"
#include "SimpleDn.h"

namespace documented {

using migration::Call;
using pages::Fate;
using pages::Page;
using pages::Presence;
using pages::Row;

namespace {

bool isAt(const Page& page, const std::string& name, const Call& call) {
  const auto found = page.dns.find(name);
  return found != page.dns.end() && fake::simpleDn(found->second) == fake::simpleDn(call.dn);
}

bool isAboutSetting(const Page& page, const Row& row, const Call& call) {
  return isAt(page, row.entry, call) && pages::sameText(row.attribute, call.attribute);
}

bool accountsForDeletion(const Page& page, const Row& row, const Call& call) {
  const bool takesOut = row.fate == Fate::dropped || row.fate == Fate::moved;
  if (row.by != call.method() || !takesOut || !isAboutSetting(page, row, call)) return false;
  return call.values.empty() || scenario::isAbout(row, call.values.front(), page.rows);
}

// A value that is written: moved here from somewhere else, carried by the rule itself, or its own. Where the old
// configuration has none, the attempt to write none is accounted for as well.
bool accountsForValue(const Page& page, const Row& row, const Call& call) {
  if (row.by != call.method()) return false;
  if (row.fate == Fate::moved) {
    return pages::sameText(row.goesTo.attribute, call.attribute) && isAt(page, row.goesTo.entry, call);
  }
  const bool writes = row.fate == Fate::carried || row.fate == Fate::addedByRule;
  if (!writes || !isAboutSetting(page, row, call)) return false;
  return call.values.empty() || scenario::isAbout(row, call.values.front(), page.rows);
}

bool accountsFor(const Page& page, const Row& row, const Call& call) {
  if (call.operation == "getFirstEntry") {
    return isAt(page, row.entry, call) && (row.presence == Presence::newOnly || row.presence == Presence::neither);
  }
  if (call.operation == "addEntry") {
    return row.by == call.method() && row.fate == Fate::built && isAt(page, row.entry, call);
  }
  if (call.operation.starts_with("getParam")) return isAboutSetting(page, row, call);
  return call.operation == "delValue" ? accountsForDeletion(page, row, call) : accountsForValue(page, row, call);
}

}  // namespace

bool isRule(const std::string& method) {
  return method.starts_with("addTo") || method.starts_with("mergeIn") || method.starts_with("check") ||
         method == "replAddEntry" || method == "processIncSchema";
}

const Row* lineFor(const Page& page, const Call& call) {
  for (const Row& row : page.rows) {
    if (accountsFor(page, row, call)) return &row;
  }
  return nullptr;
}

std::string describe(const Call& call) {
  std::string text = call.method() + ": " + call.store + "." + call.operation + " " + call.dn + " " + call.attribute;
  for (const std::string& value : call.values) text += " [" + value + "]";
  return text;
}

}  // namespace documented
