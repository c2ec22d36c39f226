// What a line says about the values that a setting has in the old configuration.

#include <gmock/gmock.h>

#include "TableLineExpectations.h"

namespace pages {

using migration::Call;
using migration::Entries;
using scenario::kNewValue;
using scenario::Trial;
using testing::Contains;

namespace {

// A setting that follows the one that is tried, so that it shows whether the transfer went on.
constexpr const char* kLast = "zor-slapdLast";

// What a merge makes of the values of one setting of an entry that both configurations have.
migration::Values mergedValues(const std::string& attribute, const migration::Values& fresh,
                               const migration::Values& carried) {
  if (fresh.empty() || carried.empty()) return fresh.empty() ? carried : fresh;
  if (!isList(attribute)) return {carried.front()};
  migration::Values values = fresh;
  for (const std::string& value : carried) {
    if (!has(values, value)) values.push_back(value);
  }
  return values;
}

}  // namespace

struct TableLine::ValueCase {
  Site site;
  std::string attribute;
  const Trial& trial;
  bool newHasIt;
  bool isThere;        // the entry that the values go to, unless they go elsewhere
  GoesTo target = {};  // where they go elsewhere
  std::string targetDn = {};
  fake::Entry old = {};
  Entries fresh = {};
};

TableLine::ValueCase TableLine::valueCase(const Site& site, const std::string& attribute, const Trial& trial,
                                          bool newHasIt) const {
  ValueCase one{site, attribute, trial, newHasIt, row.presence == Presence::both || site.isMoved()};
  one.old = oldEntry(site);
  if (row.subject == Subject::otherBehindOld) set(one.old, "zor-slapdOnlyInTheOldEntry", {"x"});
  if (row.subject == Subject::otherInNew) {
    take(one.old, attribute);
  } else {
    set(one.old, attribute, trial.old);
  }
  set(one.old, kLast, {"last of the old server"});
  if (one.isThere) {
    one.fresh.push_back(scenario::entry(site.newDn, {{kLast, {"last of the new server"}}}));
    if (newHasIt) set(one.fresh.back(), attribute, {kNewValue});
  }
  addTarget(one);
  return one;
}

// What a setting of the entry moves to is there, also where the line is about another one: what does not arrive does
// not although the rest finds its place.
void TableLine::addTarget(ValueCase& one) const {
  one.target = row.goesTo;
  const bool isMissing = row.circumstance == Circumstance::nothingThere;
  for (const Row& other : page.rows) {
    const bool isMove = other.entry == row.entry && other.presence == row.presence && !other.goesTo.attribute.empty();
    if (!isMove) continue;
    // The line about a target that is missing leaves it to its sibling to say which.
    if (isMissing && scenario::areSiblings(row, other)) one.target = other.goesTo;
    // An entry that a rule builds is its own target.
    if (isMissing || other.goesTo.entry == row.entry) continue;
    const std::string& dn = page.dn(other.goesTo.entry);
    const auto there = std::find_if(one.fresh.begin(), one.fresh.end(),
                                    [&](const fake::Entry& entry) { return samePlace(entry.dn, dn); });
    fake::Entry& target = there == one.fresh.end() ? one.fresh.emplace_back(scenario::entry(dn, {})) : *there;
    const bool isOwn = !row.goesTo.attribute.empty() && other.place == row.place;
    if (isOwn && one.newHasIt) set(target, other.goesTo.attribute, {kNewValue});
    const bool isAway = row.fate == Fate::leftBehind || row.fate == Fate::lost;
    if (isAway) set(one.old, other.attribute, {"the rest"});
  }
  if (!one.target.attribute.empty()) one.targetDn = page.dn(one.target.entry);
}

void TableLine::tryValue(const ValueCase& one) const {
  SCOPED_TRACE(one.attribute + (one.newHasIt ? ", which the new entry has" : ", which the new entry lacks") +
               ", old value " + testing::PrintToString(one.trial.old));
  EXPECT_FALSE(row.fate == Fate::carried && one.site.isMoved()) << "it is moved with its entry";
  EXPECT_FALSE(one.target.theSame && !one.site.isMoved()) << "its entry is not moved";
  const Outcome outcome =
      migration::migrate(version, scenario::configuration({one.old}), scenario::configuration(one.fresh));

  const bool isBuiltWithoutIt = row.fate == Fate::leftBehind && !one.isThere;
  if (!isBuiltWithoutIt) {
    EXPECT_EQ(outcome.merged.values(one.site.newDn, one.attribute), expectedValues(one));
  }
  expectFate(one, outcome);
  const bool ends = row.fate == Fate::lost && row.circumstance == Circumstance::none;
  if (one.isThere && !ends) {
    EXPECT_EQ(outcome.merged.values(one.site.newDn, kLast), Values{"last of the old server"});
  }
}

// What the entry holds under the setting's own name.
TableLine::Values TableLine::expectedValues(const ValueCase& one) const {
  const Values fresh = one.isThere && one.newHasIt ? Values{kNewValue} : Values();
  const bool asks = row.fate != Fate::keptNew && row.subject != Subject::otherInNew;
  const bool ends = row.fate == Fate::lost && row.circumstance == Circumstance::none;
  if (one.isThere) return asks && !ends ? mergedValues(one.attribute, fresh, one.trial.carried()) : fresh;
  if (row.fate != Fate::carried) return {};
  Values values = one.trial.carried();
  for (const Row& other : page.rows) {
    const bool joins = other.entry == row.entry && other.presence == row.presence && other.attribute == one.attribute &&
                       other.fate == Fate::addedByRule;
    if (joins) values.insert(values.end(), other.match.texts.begin(), other.match.texts.end());
  }
  return values;
}

void TableLine::expectFate(const ValueCase& one, const Outcome& outcome) const {
  switch (row.fate) {
    case Fate::carried:
      return expectCall(outcome, "carry it", isValueWrite(one.site.newDn, one.attribute, one.trial.concerned.front()));
    case Fate::dropped:
      return expectDropped(one, outcome);
    case Fate::moved:
      return expectMoved(one, outcome);
    case Fate::lost:
      return expectLost(one, outcome);
    case Fate::leftBehind:
    case Fate::keptNew:
      return expectNotAskedFor(one, outcome);
    default:
      FAIL() << "does not happen to a value";
  }
}

void TableLine::expectDropped(const ValueCase& one, const Outcome& outcome) const {
  expectNothingWritten(outcome, one.trial.concerned);
  for (const std::string& value : one.trial.concerned) {
    EXPECT_FALSE(has(outcome.oldLeft.values(one.site.oldDn, one.attribute), value)) << value;
    expectCall(outcome, "take it out", [&](const Call& call) {
      return call.store == "old" && call.operation == "delValue" && samePlace(call.dn, one.site.oldDn) &&
             sameText(call.attribute, one.attribute) && has(call.values, value) && call.rc == 0;
    });
  }
}

void TableLine::expectMoved(const ValueCase& one, const Outcome& outcome) const {
  const std::string& value = one.trial.concerned.front();
  if (one.target.theSame) {
    EXPECT_FALSE(outcome.merged.has(one.site.oldDn));
    expectCall(outcome, "set it", isValueWrite(one.site.newDn, one.attribute, value));
  } else {
    EXPECT_EQ(outcome.merged.values(one.targetDn, one.target.attribute), one.trial.concerned);
    expectCall(outcome, "set it", isValueWrite(one.targetDn, one.target.attribute, value));
  }
}

void TableLine::expectLost(const ValueCase& one, const Outcome& outcome) const {
  expectNothingWritten(outcome, one.trial.concerned);
  expectMessage(outcome);
  const std::string& value = one.trial.concerned.front();
  if (one.targetDn.empty()) {
    EXPECT_THAT(outcome.oldLeft.values(one.site.oldDn, one.attribute), Contains(value));
    return;
  }
  EXPECT_FALSE(outcome.merged.has(one.targetDn));
  expectCall(outcome, "try to set it", [&](const Call& call) {
    return isValueWrite(one.targetDn, one.target.attribute, value)(call) && call.rc != 0;
  });
}

void TableLine::expectNotAskedFor(const ValueCase& one, const Outcome& outcome) const {
  if (row.fate == Fate::leftBehind) expectNoMessage(outcome);
  EXPECT_TRUE(row.fate == Fate::leftBehind || one.isThere) << "nothing that could be kept";
  for (const std::string& value : one.trial.concerned) {
    const bool isInOld = has(outcome.oldLeft.values(one.site.oldDn, one.attribute), value);
    EXPECT_EQ(isInOld, row.subject != Subject::otherInNew) << value;
  }
  expectNothingWritten(outcome, one.trial.concerned);
  expectEntered(one.site, outcome);
}

void TableLine::tryValues(const Site& site) const {
  for (const std::string& attribute : attributes()) {
    for (const Trial& trial : scenario::trialsOf(row, page.rows)) {
      const bool always = sameText(attribute, kClass) || sameText(attribute, "CN") ||
                          row.subject == Subject::listInBoth || row.subject == Subject::otherInBoth ||
                          row.subject == Subject::otherBehindOld || row.subject == Subject::otherInNew;
      if (always || row.subject != Subject::otherInOld) tryValue(valueCase(site, attribute, trial, true));
      if (!always) tryValue(valueCase(site, attribute, trial, false));
    }
  }
}

}  // namespace pages
