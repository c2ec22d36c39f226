// What a line says about an entry as a whole, and about values that rules write.

#include <gmock/gmock.h>

#include "TableLineExpectations.h"

namespace pages {

using migration::Call;
using migration::Entries;
using scenario::kNewValue;
using scenario::kUnnamedList;
using scenario::kUnnamedSetting;
using testing::Contains;
using testing::UnorderedElementsAreArray;

void TableLine::tryEntry(const Site& site) const {
  fake::Entry old = oldEntry(site);
  set(old, kUnnamedSetting, {kOldValue});
  set(old, kUnnamedList, {"o=old", "o=both"});
  if (row.fate == Fate::added) {
    // Whatever the lines about entries that both have would do: it does not apply here.
    for (const Row& other : page.rows) {
      const bool isThis = other.entry == row.entry && other.presence == Presence::both;
      if (!isThis || other.subject != Subject::attribute || other.match.kind == Match::Kind::rest) continue;
      set(old, other.attribute, scenario::trialsOf(other, page.rows).back().old);
    }
  }
  if (row.subject == Subject::entryWithout) take(old, row.attribute);
  fake::Entry fresh = scenario::entry(site.newDn, {{kUnnamedSetting, {kNewValue}}, {kUnnamedList, {"o=both"}}});

  Entries oldEntries;
  Entries newEntries;
  if (row.presence == Presence::oldOnly || row.presence == Presence::both) oldEntries.push_back(old);
  const bool movesToIt = row.presence == Presence::oldOnly && site.isMoved();
  const bool isThere = row.presence == Presence::newOnly || row.presence == Presence::both || movesToIt;
  if (isThere && row.circumstance != Circumstance::nothingThere) newEntries.push_back(fresh);
  const Outcome outcome =
      migration::migrate(version, scenario::configuration(oldEntries), scenario::configuration(newEntries));

  const auto valuesOf = [&](const char* attribute) { return outcome.merged.values(site.newDn, attribute); };
  switch (row.fate) {
    case Fate::added:
      for (const fake::Attribute& attribute : old.attributes) {
        for (const std::string& value : attribute.values) {
          EXPECT_THAT(valuesOf(attribute.name.c_str()), Contains(value)) << attribute.name;
        }
      }
      expectCallUnder(outcome, "add the entry", isEntryAddition(site.oldDn));
      break;
    case Fate::moved:
      EXPECT_FALSE(outcome.merged.has(site.oldDn));
      [[fallthrough]];
    case Fate::merged:
      EXPECT_EQ(valuesOf(kUnnamedSetting), Values{kOldValue});
      EXPECT_EQ(valuesOf(kUnnamedList), (Values{"o=both", "o=old"}));
      expectCallUnder(outcome, "carry a value", isValueWrite(site.newDn, kUnnamedSetting, kOldValue));
      break;
    case Fate::leftBehind:
      expectNoMessage(outcome);
      EXPECT_FALSE(outcome.merged.has(site.oldDn));
      EXPECT_TRUE(outcome.oldLeft.has(site.oldDn));
      expectNothingWritten(outcome, {kOldValue, "o=old"});
      expectEntered(site, outcome);
      break;
    case Fate::lost:
      expectMessage(outcome);
      EXPECT_EQ(outcome.merged.has(site.newDn), !newEntries.empty());
      EXPECT_EQ(valuesOf(kUnnamedSetting), outcome.newBefore.values(site.newDn, kUnnamedSetting));
      expectNothingWritten(outcome, {kOldValue, "o=old"});
      expectEntered(site, outcome);
      break;
    case Fate::built:
      EXPECT_TRUE(outcome.merged.has(site.newDn));
      expectNothingWritten(outcome, {kOldValue, "o=old"});
      expectCall(outcome, "add the entry", isEntryAddition(site.newDn));
      break;
    case Fate::keptNew:
      for (const fake::Attribute& attribute : fresh.attributes) {
        EXPECT_EQ(valuesOf(attribute.name.c_str()), attribute.values) << attribute.name;
      }
      expectEntered(site, outcome);
      break;
    default:
      FAIL() << "does not happen to an entry";
  }
}

void TableLine::tryWrittenValue(const Site& site) const {
  fake::Entry old = oldEntry(site);
  if (row.subject == Subject::onlyValue) set(old, row.attribute, {"zor-slapdConfigEntry"});
  Entries oldEntries;
  if (row.presence != Presence::neither) oldEntries.push_back(old);
  const Outcome outcome = migration::migrate(version, scenario::configuration(oldEntries), scenario::configuration({}));

  Values expected = row.match.texts;
  if (row.subject == Subject::onlyValue) expected.insert(expected.begin(), "zor-slapdConfigEntry");
  EXPECT_THAT(outcome.merged.values(site.newDn, row.attribute), UnorderedElementsAreArray(expected));
  for (const std::string& text : row.match.texts) {
    expectCall(outcome, "write it", [&](const Call& call) {
      const bool asClass = call.operation == "addEntry" && row.attribute == kClass;
      const bool asValue = call.operation == "addValue" && sameText(call.attribute, row.attribute);
      return (asClass || asValue) && samePlace(call.dn, site.newDn) && has(call.values, text) && call.rc == 0;
    });
  }
}

}  // namespace pages
