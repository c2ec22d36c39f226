// compareEntries: one entry of this configuration (the old one here) is walked together with that of another (the new
// one), and loses what the other holds too, up to the first difference.

#include "ConfigFileFixture.h"
#include "StandaloneMethods.h"

namespace {

using fake::nullListMessage;
using fake::OutParameters;
using standalone::kCompareEntries;

const std::string kDn = "CN=SSL,CN=CONFIGURATION";

class CompareEntries : public ConfigFileFixture {
 protected:
  using Attributes = std::vector<fake::Attribute>;

  void put(Attributes oldAttributes, Attributes newAttributes) {
    oldStore().clear();
    newStore().clear();
    oldStore().put(kDn, std::move(oldAttributes));
    newStore().put(kDn, std::move(newAttributes));
    open();
  }

  int compare() {
    const int result = oldConfig().compareEntries(modifiable(kDn), &newConfig());
    EXPECT_EQ(world.trace().front(), entryOf(kCompareEntries));
    EXPECT_EQ(world.trace().back(), exitOf(kCompareEntries, result));
    return result;
  }

  int compare(Attributes oldAttributes, Attributes newAttributes) {
    put(std::move(oldAttributes), std::move(newAttributes));
    return compare();
  }

  // Lines of the log with "DN" standing for the entry's DN.
  static Lines expanded(Lines lines) {
    for (std::string& line : lines) {
      if (const auto at = line.find("(DN"); at != std::string::npos) {
        line.replace(at + 1, 2, kDn);
      } else if (const auto handle = line.find(":DN"); handle != std::string::npos) {
        line.replace(handle + 1, 2, kDn);
      }
    }
    return lines;
  }

  // A whole comparison's calls: opening, `inner`, releases.
  static Lines between(const Lines& inner) {
    Lines lines = {"old.getFirstEntry(DN) = 0", "new.getFirstEntry(DN) = 0", "old.getFirstAttribute(DN) = 0",
                   "new.getFirstAttribute(DN) = 0"};
    lines.insert(lines.end(), inner.begin(), inner.end());
    lines.insert(lines.end(),
                 {"cfg_ber_free(old:DN)", "cfg_ber_free(new:DN)", "cfg_msgfree(old:DN)", "cfg_msgfree(new:DN)"});
    return expanded(lines);
  }

  static std::string message(const std::string& text) {
    return messageOf(kCompareEntries, "compareEntries: " + text + "\n");
  }

  // The messages of the second deletion pass over the values of one attribute, which are gone already.
  static std::string again(const std::string& attribute, int i, int rc = fake::kNoSuchAttribute) {
    return message("delValue(4) for " + attribute + " returned rc=" + std::to_string(rc) + ", i=" + std::to_string(i));
  }

  Lines traceWith(const Lines& messages, int result) const {
    Lines lines = {entryOf(kCompareEntries)};
    lines.insert(lines.end(), messages.begin(), messages.end());
    lines.push_back(exitOf(kCompareEntries, result));
    return lines;
  }
};

// --- Entries that are the same.

TEST_F(CompareEntries, AnIdenticalEntryLosesEachValueAndEachDeletionIsTriedAgain) {
  EXPECT_EQ(compare({{"cn", {"x"}}, {"zor-slapdSuffix", {"a", "b"}}}, {{"cn", {"x"}}, {"zor-slapdSuffix", {"a", "b"}}}),
            1);
  EXPECT_EQ(world.callsWithComparisons(),
            between({"old.getParamArrayValueInfo(DN, cn) = 0", "new.getParamArrayValueInfo(DN, cn) = 0",
                     "old.delValue(DN, cn, [x]) = 0", "old.delValue(DN, cn, [x]) = 16", "old.getNextAttribute(DN) = 0",
                     "new.getNextAttribute(DN) = 0", "old.getParamArrayValueInfo(DN, zor-slapdSuffix) = 0",
                     "new.getParamArrayValueInfo(DN, zor-slapdSuffix) = 0",
                     "old.delValue(DN, zor-slapdSuffix, [a]) = 0", "old.delValue(DN, zor-slapdSuffix, [b]) = 0",
                     "old.delValue(DN, zor-slapdSuffix, [a]) = 16", "old.delValue(DN, zor-slapdSuffix, [b]) = 16",
                     "old.getNextAttribute(DN) = 0", "new.getNextAttribute(DN) = 0"}));
  EXPECT_EQ(world.trace(), traceWith({again("cn", 0), again("zor-slapdSuffix", 0), again("zor-slapdSuffix", 1)}, 1));
  // The entry itself is for the caller to remove.
  EXPECT_EQ(oldStore().find(kDn)->attributes, Attributes());
  EXPECT_EQ(newStore().find(kDn)->attributes, (Attributes{{"cn", {"x"}}, {"zor-slapdSuffix", {"a", "b"}}}));
}

TEST_F(CompareEntries, LetterCaseOfNamesAndValuesDoesNotCount) {
  EXPECT_EQ(compare({{"CN", {"Ssl"}}, {"zor-slapdsuffix", {"O=SAMPLE"}}},
                    {{"cn", {"SSL"}}, {"zor-slapdSuffix", {"o=sample"}}}),
            1);
  // Each side is read under its own spelling; what is deleted is this configuration's own value.
  EXPECT_EQ(world.calls()[4], expanded({"old.getParamArrayValueInfo(DN, CN) = 0"})[0]);
  EXPECT_EQ(world.calls()[5], expanded({"new.getParamArrayValueInfo(DN, cn) = 0"})[0]);
  EXPECT_EQ(world.calls()[6], expanded({"old.delValue(DN, CN, [Ssl]) = 0"})[0]);
  EXPECT_EQ(oldStore().find(kDn)->attributes, Attributes());
}

TEST_F(CompareEntries, BlanksInValuesCount) {
  EXPECT_EQ(compare({{"cn", {"a b"}}}, {{"cn", {"a  b"}}}), 0);
  EXPECT_EQ(oldStore().values(kDn, "cn"), (Lines{"a b"}));
}

TEST_F(CompareEntries, EntriesWithoutAttributesAreIdentical) {
  EXPECT_EQ(compare({}, {}), 1);
  EXPECT_EQ(world.callsWithComparisons(), between({}));
  // Both value lists were never filled.
  EXPECT_EQ(world.trace(), traceWith({nullListMessage(), nullListMessage()}, 1));
}

TEST_F(CompareEntries, AttributesWithoutValuesAreEqual) {
  EXPECT_EQ(compare({{"cn", {}}}, {{"cn", {}}}), 1);
  EXPECT_EQ(world.trace(), traceWith({}, 1));
}

TEST_F(CompareEntries, TheSecondDeletionPassComesAfterTheWholeFirst) {
  // Were the store to bring a value back in between, the second pass would take it away again.
  put({{"cn", {"x", "y"}}}, {{"cn", {"x", "y"}}});
  const std::string lastOfFirstPass = expanded({"old.delValue(DN, cn, [y]) = 0"})[0];
  world.onCall([&](const std::string& call) {
    if (call == lastOfFirstPass) {
      oldStore().addValue(kDn.c_str(), "cn", "x");
    }
  });
  EXPECT_EQ(compare(), 1);
  world.onCall(nullptr);
  EXPECT_EQ(world.trace(), traceWith({again("cn", 1)}, 1));
  EXPECT_EQ(oldStore().find(kDn, "cn"), nullptr);
}

// --- Entries that differ.

TEST_F(CompareEntries, DifferentNamesEndTheComparisonBeforeAnythingIsRead) {
  EXPECT_EQ(compare({{"a", {"1"}}, {"b", {"2"}}}, {{"b", {"2"}}, {"a", {"1"}}}), 0);
  EXPECT_EQ(world.callsWithComparisons(), between({}));
  EXPECT_EQ(world.trace(), traceWith({nullListMessage(), nullListMessage()}, 0));
  EXPECT_EQ(oldStore().find(kDn)->attributes, (Attributes{{"a", {"1"}}, {"b", {"2"}}}));
}

TEST_F(CompareEntries, WhatComesBeforeADifferenceInNamesHasLostItsValues) {
  EXPECT_EQ(compare({{"a", {"1"}}, {"b", {"2"}}, {"d", {"4"}}}, {{"a", {"1"}}, {"c", {"2"}}, {"d", {"4"}}}), 0);
  // The lists of the first attribute are released already: no message for them.
  EXPECT_EQ(world.trace(), traceWith({again("a", 0)}, 0));
  EXPECT_EQ(oldStore().find(kDn)->attributes, (Attributes{{"b", {"2"}}, {"d", {"4"}}}));
}

TEST_F(CompareEntries, EqualCountsLoseTheValuesBeforeTheFirstDifferenceOnly) {
  EXPECT_EQ(compare({{"a", {"1", "2", "3", "4"}}, {"b", {"5"}}}, {{"a", {"1", "2", "x", "4"}}, {"b", {"5"}}}), 0);
  EXPECT_EQ(world.callsWithComparisons(),
            between({"old.getParamArrayValueInfo(DN, a) = 0", "new.getParamArrayValueInfo(DN, a) = 0",
                     "old.delValue(DN, a, [1]) = 0", "old.delValue(DN, a, [2]) = 0"}));
  EXPECT_EQ(world.trace(), traceWith({}, 0));
  EXPECT_EQ(oldStore().find(kDn)->attributes, (Attributes{{"a", {"3", "4"}}, {"b", {"5"}}}));
}

TEST_F(CompareEntries, ValuesAreComparedPositionByPosition) {
  EXPECT_EQ(compare({{"a", {"1", "2"}}}, {{"a", {"2", "1"}}}), 0);
  EXPECT_EQ(oldStore().values(kDn, "a"), (Lines{"1", "2"}));
}

TEST_F(CompareEntries, WithMoreValuesHereEachPositionThatMatchesLosesItsValue) {
  EXPECT_EQ(compare({{"a", {"1", "2", "3", "4"}}, {"b", {"5"}}}, {{"a", {"1", "x", "3"}}, {"b", {"5"}}}), 0);
  EXPECT_EQ(world.callsWithComparisons(),
            between({"old.getParamArrayValueInfo(DN, a) = 0", "new.getParamArrayValueInfo(DN, a) = 0",
                     "old.delValue(DN, a, [1]) = 0", "old.delValue(DN, a, [3]) = 0"}));
  EXPECT_EQ(world.trace(), traceWith({}, 0));
  EXPECT_EQ(oldStore().find(kDn)->attributes, (Attributes{{"a", {"2", "4"}}, {"b", {"5"}}}));
}

TEST_F(CompareEntries, WithFewerValuesHereEachPositionThatMatchesLosesItsValue) {
  EXPECT_EQ(
      compare({{"zor-slapdSuffix", {"a", "b"}}, {"b", {"5"}}}, {{"zor-slapdSuffix", {"A", "c", "d"}}, {"b", {"5"}}}),
      0);
  EXPECT_EQ(world.callsWithComparisons(), between({"old.getParamArrayValueInfo(DN, zor-slapdSuffix) = 0",
                                                   "new.getParamArrayValueInfo(DN, zor-slapdSuffix) = 0",
                                                   "old.delValue(DN, zor-slapdSuffix, [a]) = 0"}));
  EXPECT_EQ(oldStore().find(kDn)->attributes, (Attributes{{"zor-slapdSuffix", {"b"}}, {"b", {"5"}}}));
}

TEST_F(CompareEntries, AllValuesOfAShorterListThatMatchLeaveTheEntriesDifferentAllTheSame) {
  EXPECT_EQ(compare({{"a", {"1", "2"}}, {"b", {"5"}}}, {{"a", {"1", "2", "3"}}, {"b", {"5"}}}), 0);
  EXPECT_EQ(oldStore().find(kDn)->attributes, (Attributes{{"b", {"5"}}}));
}

TEST_F(CompareEntries, AnEntryWithMoreAttributesThanTheOtherIsDifferent) {
  EXPECT_EQ(compare({{"a", {"1"}}, {"b", {"2"}}}, {{"a", {"1"}}}), 0);
  EXPECT_EQ(world.trace(), traceWith({again("a", 0)}, 0));
  EXPECT_EQ(oldStore().find(kDn)->attributes, (Attributes{{"b", {"2"}}}));

  EXPECT_EQ(compare({{"a", {"1"}}}, {{"a", {"1"}}, {"b", {"2"}}}), 0);
  EXPECT_EQ(world.trace(), traceWith({again("a", 0)}, 0));
  EXPECT_EQ(oldStore().find(kDn)->attributes, Attributes());

  EXPECT_EQ(compare({{"a", {"1"}}}, {}), 0);
  EXPECT_EQ(world.trace(), traceWith({nullListMessage(), nullListMessage()}, 0));
  EXPECT_EQ(oldStore().find(kDn)->attributes, (Attributes{{"a", {"1"}}}));
}

// --- Failures.

TEST_F(CompareEntries, AFailedDeletionWhereTheCountsAreEqualIsNumberedOne) {
  put({{"a", {"1", "2", "3"}}}, {{"a", {"1", "2", "3"}}});
  world.faults().fail({.operation = "delValue", .nth = 2}, 53);
  EXPECT_EQ(compare(), 1);
  // The second pass deletes what the first could not.
  EXPECT_EQ(world.trace(),
            traceWith({message("delValue(1) for a returned rc=53, i=1"), again("a", 0), again("a", 2)}, 1));
  EXPECT_EQ(oldStore().find(kDn)->attributes, Attributes());
}

TEST_F(CompareEntries, AFailedDeletionWithMoreValuesHereIsNumberedTwo) {
  put({{"a", {"1", "2", "3", "4"}}}, {{"a", {"1", "x", "3"}}});
  world.faults().fail({.operation = "delValue", .nth = 0}, 53);
  EXPECT_EQ(compare(), 0);
  EXPECT_EQ(world.trace(), traceWith({message("delValue(2) for a returned rc=53, i=0"),
                                      message("delValue(2) for a returned rc=53, i=2")},
                                     0));
}

TEST_F(CompareEntries, AFailedDeletionWithFewerValuesHereIsNumberedThree) {
  put({{"a", {"1", "2", "3"}}}, {{"a", {"1", "x", "3", "4"}}});
  world.faults().fail({.operation = "delValue", .nth = 0}, 53);
  EXPECT_EQ(compare(), 0);
  EXPECT_EQ(world.trace(), traceWith({message("delValue(3) for a returned rc=53, i=0"),
                                      message("delValue(3) for a returned rc=53, i=2")},
                                     0));
}

TEST_F(CompareEntries, AnEntryIsIdenticalAlsoWhenNothingCouldBeDeleted) {
  put({{"a", {"1", "2"}}}, {{"a", {"1", "2"}}});
  world.faults().fail({.operation = "delValue", .nth = 0}, 53);
  EXPECT_EQ(compare(), 1);
  EXPECT_EQ(world.trace(),
            traceWith({message("delValue(1) for a returned rc=53, i=0"),
                       message("delValue(1) for a returned rc=53, i=1"), again("a", 0, 53), again("a", 1, 53)},
                      1));
  EXPECT_EQ(oldStore().values(kDn, "a"), (Lines{"1", "2"}));
}

TEST_F(CompareEntries, AFailedAdvanceHereIsReportedAndTheOtherSideIsAdvancedAllTheSame) {
  put({{"a", {"1"}}, {"b", {"2"}}}, {{"a", {"1"}}, {"b", {"2"}}});
  world.faults().fail({.store = "old", .operation = "getNextAttribute"}, 80);
  EXPECT_EQ(compare(), 0);
  EXPECT_EQ(world.callsWithComparisons(),
            between({"old.getParamArrayValueInfo(DN, a) = 0", "new.getParamArrayValueInfo(DN, a) = 0",
                     "old.delValue(DN, a, [1]) = 0", "old.delValue(DN, a, [1]) = 16", "old.getNextAttribute(DN) = 80",
                     "new.getNextAttribute(DN) = 0"}));
  // The failed advance left no name behind.
  EXPECT_EQ(world.trace(), traceWith({again("a", 0), message("delValue for (null) returned rc=80")}, 0));
  EXPECT_EQ(oldStore().find(kDn)->attributes, (Attributes{{"b", {"2"}}}));
}

TEST_F(CompareEntries, AFailedAdvanceHereAtTheEndOfBothEntriesLeavesThemIdentical) {
  for (const OutParameters outParameters : {OutParameters::cleared, OutParameters::untouched}) {
    world.faults().clear();
    put({{"a", {"1"}}}, {{"a", {"1"}}});
    world.faults().fail({.store = "old", .operation = "getNextAttribute"}, 80, outParameters);
    EXPECT_EQ(compare(), 1);
    EXPECT_EQ(world.trace(), traceWith({again("a", 0), message("delValue for (null) returned rc=80")}, 1));
  }
}

TEST_F(CompareEntries, AFailedAdvanceOfTheOtherSideNamesTheAttributeToWhichThisSideHasCome) {
  put({{"a", {"1"}}, {"b", {"2"}}}, {{"a", {"1"}}, {"c", {"2"}}});
  world.faults().fail({.store = "new", .operation = "getNextAttribute"}, 80);
  EXPECT_EQ(compare(), 0);
  EXPECT_EQ(world.trace(), traceWith({again("a", 0), message("delValue for b returned rc=80")}, 0));
  EXPECT_EQ(oldStore().find(kDn)->attributes, (Attributes{{"b", {"2"}}}));
}

TEST_F(CompareEntries, AFailedAdvanceOfTheOtherSideMakesEvenFinishedEntriesDifferent) {
  put({{"a", {"1"}}}, {{"a", {"1"}}});
  world.faults().fail({.store = "new", .operation = "getNextAttribute"}, 80);
  EXPECT_EQ(compare(), 0);
  EXPECT_EQ(world.trace(), traceWith({again("a", 0), message("delValue for (null) returned rc=80")}, 0));
}

TEST_F(CompareEntries, BothFailedAdvancesAreReported) {
  put({{"a", {"1"}}, {"b", {"2"}}}, {{"a", {"1"}}, {"b", {"2"}}});
  world.faults().fail({.store = "old", .operation = "getNextAttribute"}, 80);
  world.faults().fail({.store = "new", .operation = "getNextAttribute"}, 81);
  EXPECT_EQ(compare(), 0);
  EXPECT_EQ(world.trace(), traceWith({again("a", 0), message("delValue for (null) returned rc=80"),
                                      message("delValue for (null) returned rc=81")},
                                     0));
}

TEST_F(CompareEntries, AnEntryThatIsNotThereHasNoAttributes) {
  put({{"a", {"1"}}}, {{"a", {"1"}}});
  world.faults().fail({.store = "new", .operation = "getFirstEntry"}, 80);
  EXPECT_EQ(compare(), 0);
  // The code is not looked at: the walk is begun on no entry.
  EXPECT_EQ(world.callsWithComparisons(),
            expanded({"old.getFirstEntry(DN) = 0", "new.getFirstEntry(DN) = 80", "old.getFirstAttribute(DN) = 0",
                      "new.getFirstAttribute(null) = 89", "cfg_ber_free(old:DN)", "cfg_msgfree(old:DN)"}));
  EXPECT_EQ(world.trace(), traceWith({nullListMessage(), nullListMessage()}, 0));

  newStore().clear();
  oldStore().clear();
  world.faults().clear();
  open();
  EXPECT_EQ(compare(), 1) << "two entries that are not there are the same";
}

TEST_F(CompareEntries, AFirstAttributeThatCannotBeReadIsAnEntryWithoutAttributes) {
  put({{"a", {"1"}}}, {{"a", {"1"}}});
  world.faults().fail({.store = "old", .operation = "getFirstAttribute"}, 80);
  EXPECT_EQ(compare(), 0);
  EXPECT_EQ(world.callsWithComparisons(),
            expanded({"old.getFirstEntry(DN) = 0", "new.getFirstEntry(DN) = 0", "old.getFirstAttribute(DN) = 80",
                      "new.getFirstAttribute(DN) = 0", "cfg_ber_free(new:DN)", "cfg_msgfree(old:DN)",
                      "cfg_msgfree(new:DN)"}));
  EXPECT_EQ(oldStore().values(kDn, "a"), (Lines{"1"}));
}

TEST_F(CompareEntries, ValuesThatCannotBeReadOnBothSidesAreEqual) {
  put({{"a", {"1"}}, {"b", {"2"}}}, {{"a", {"9"}}, {"b", {"2"}}});
  world.faults().fail({.operation = "getParamArrayValueInfo", .attribute = "a", .nth = 0}, 80);
  EXPECT_EQ(compare(), 1);
  // Two null lists are released after the attribute; at the end there are lists again.
  EXPECT_EQ(world.trace(), traceWith({nullListMessage(), nullListMessage(), again("b", 0)}, 1));
  EXPECT_EQ(oldStore().find(kDn)->attributes, (Attributes{{"a", {"1"}}}));
}

TEST_F(CompareEntries, ValuesThatCannotBeReadOnOneSideMakeADifference) {
  for (const std::string store : {"old", "new"}) {
    world.faults().clear();
    put({{"a", {"1"}}}, {{"a", {"1"}}});
    world.faults().fail({.store = store, .operation = "getParamArrayValueInfo"}, 80);
    EXPECT_EQ(compare(), 0) << store;
    EXPECT_EQ(world.trace(), traceWith({nullListMessage()}, 0)) << store;
    EXPECT_EQ(oldStore().values(kDn, "a"), (Lines{"1"}));
  }
}

TEST_F(CompareEntries, NeverChangesTheOtherConfiguration) {
  put({{"a", {"1", "2"}}, {"b", {"3"}}}, {{"a", {"1", "2"}}, {"b", {"4"}}});
  const auto before = newStore().entries();
  compare();
  EXPECT_EQ(newStore().entries(), before);
  for (const std::string& call : world.calls()) {
    EXPECT_EQ(call.find("new.delValue"), std::string::npos) << call;
  }
}

}  // namespace
