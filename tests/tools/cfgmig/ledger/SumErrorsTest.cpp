// SumErrorsTest.cpp -- a ledger that is wrong in any one way is found out.

#include <gmock/gmock.h>

#include <functional>

#include "Migrated.h"

namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using tool::EntryFate;
using tool::kNoValue;
using tool::Ledger;
using tool::ValueFate;
using tool::ValueId;
using tool::ValueOrigin;

constexpr const char* kOld =
    "dn: CN=CONFIGURATION\n"
    "objectClass: top\n"         // value 0, line 2
    "cn: Configuration\n"        // 1
    "zor-slapdPort: 1389\n"      // 2: dropped
    "zor-slapdSizeLimit: 900\n"  // 3: carried
    "zor-slapdSizeLimit: 900\n"  // 4: the same line again
    "zor-slapdSysLogLevel: h\n"  // 5: moved
    "zor-slapdCipher: A\n"       // 6: carried
    "zor-slapdCipher: B\n"       // 7: lost
    "zor-slapdVersion: 6.0\n"    // 8: kept-new
    "\n"
    "dn: CN=ONLY OLD,CN=CONFIGURATION\n"
    "objectClass: container\n"
    "cn: Only Old\n";

constexpr const char* kNew =
    "dn: CN=CONFIGURATION\n"
    "objectClass: top\n"         // value 0
    "cn: Configuration\n"        // 1
    "zor-slapdSizeLimit: 500\n"  // 2: replaced
    "zor-slapdCipher: X\n"       // 3: replaced
    "zor-slapdVersion: 7.0\n"    // 4
    "\n"
    "dn: CN=ZORSLAPD,CN=LOG MANAGEMENT,CN=CONFIGURATION\n"
    "objectClass: top\n"
    "cn: zorslapd\n"
    "zor-slapdLogOptions: m\n";

class SumErrors : public testing::Test {
 protected:
  SumErrors() : m_merged("6.0", kOld, kNew), ledger(m_merged.ledger()) {}

  ValueId oldAt(std::size_t line) const { return at(ledger.old, line); }
  ValueId placeOf(std::size_t oldLine) const { return ledger.oldValues[oldAt(oldLine)].place; }

  // Moves one row from a count to another, so that only the rows are wrong.
  void setFate(std::size_t line, ValueFate fate) {
    tool::OldValueRow& row = ledger.oldValues[oldAt(line)];
    --ledger.fates[static_cast<std::size_t>(row.fate)];
    ++ledger.fates[static_cast<std::size_t>(fate)];
    row.fate = fate;
  }
  void setOrigin(ValueId value, ValueOrigin origin) {
    tool::ResultValueRow& row = ledger.resultValues[value];
    --ledger.origins[static_cast<std::size_t>(row.origin)];
    ++ledger.origins[static_cast<std::size_t>(origin)];
    row.origin = origin;
  }

  void expectFound(const char* text) const {
    const std::vector<std::string> errors = sumErrors(ledger);
    EXPECT_THAT(errors, testing::Contains(HasSubstr(text)));
    for (const std::string& error : errors) {
      for (const char* value : {"1389", "900", "500", "Only Old"}) EXPECT_THAT(error, Not(HasSubstr(value)));
    }
  }

  static ValueId at(const cfgstore::Snapshot& snapshot, std::size_t line) {
    for (ValueId i = 0; i < snapshot.values().size(); ++i) {
      if (snapshot.values()[i].line == line) return i;
    }
    return kNoValue;
  }

 private:
  Migrated m_merged;

 protected:
  Ledger& ledger;
};

TEST_F(SumErrors, AreNoneInALedgerAsItIsMade) {
  EXPECT_THAT(sumErrors(ledger), IsEmpty());
  // Each kind of row that the tests below corrupt is there.
  EXPECT_EQ(ledger.oldValues[oldAt(4)].fate, ValueFate::dropped);
  EXPECT_EQ(ledger.oldValues[oldAt(5)].fate, ValueFate::carried);
  EXPECT_EQ(ledger.oldValues[oldAt(7)].fate, ValueFate::moved);
  EXPECT_EQ(ledger.oldValues[oldAt(9)].fate, ValueFate::lost);
  EXPECT_EQ(ledger.oldValues[oldAt(10)].fate, ValueFate::keptNew);
  EXPECT_EQ(ledger.replaced.size(), 3U);
}

TEST_F(SumErrors, AreNoneInAnEmptyLedger) { EXPECT_THAT(sumErrors(Ledger()), IsEmpty()); }

TEST_F(SumErrors, FindARowTooManyOrTooFew) {
  ledger.oldValues.emplace_back();
  expectFound("values of the old configuration");
  ledger.oldValues.resize(ledger.oldValues.size() - 2);
  expectFound("values of the old configuration");
}
TEST_F(SumErrors, FindAMissingRowOfTheResult) {
  ledger.resultValues.pop_back();
  expectFound("values of the result");
}
TEST_F(SumErrors, FindAMissingEntry) {
  ledger.oldEntries.pop_back();
  expectFound("entries of the old configuration");
}

TEST_F(SumErrors, FindAWrongCount) {
  ++ledger.fates[static_cast<std::size_t>(ValueFate::lost)];
  expectFound("fates: 2 are counted");
  --ledger.fates[static_cast<std::size_t>(ValueFate::lost)];
  --ledger.origins[static_cast<std::size_t>(ValueOrigin::carried)];
  expectFound("origins: their sum is");
}
TEST_F(SumErrors, FindCountsThatAreWrongButAddUp) {
  ++ledger.fates[static_cast<std::size_t>(ValueFate::lost)];
  --ledger.fates[static_cast<std::size_t>(ValueFate::carried)];
  expectFound("fates: 2 are counted");
}

TEST_F(SumErrors, FindAValueWithoutAReason) {
  ledger.oldValues[oldAt(4)].reason = 0;
  expectFound("(line 4) has no fate");
}
TEST_F(SumErrors, FindAReasonThatIsNone) {
  ledger.oldValues[oldAt(4)].reason = static_cast<tool::ReasonId>(ledger.reasons.size());
  expectFound("(line 4) has no fate");
}
TEST_F(SumErrors, FindAFateThatIsNone) {
  ledger.oldValues[oldAt(4)].fate = static_cast<ValueFate>(77);
  expectFound("(line 4) has no fate");
}
TEST_F(SumErrors, FindAnOriginWithoutAReason) {
  ledger.resultValues[placeOf(5)].reason = 0;
  expectFound("has no origin");
}
TEST_F(SumErrors, FindAnOriginThatIsNone) {
  ledger.resultValues[placeOf(5)].origin = static_cast<ValueOrigin>(9);
  expectFound("has no origin");
}

TEST_F(SumErrors, FindAnArrivalWithoutAPlace) {
  for (const std::size_t line : {2U, 5U, 7U}) {
    const ValueId place = std::exchange(ledger.oldValues[oldAt(line)].place, kNoValue);
    expectFound("has no place");
    ledger.oldValues[oldAt(line)].place = place;
  }
}
TEST_F(SumErrors, FindAPlaceOutsideTheResult) {
  ledger.oldValues[oldAt(8)].place = static_cast<ValueId>(ledger.resultValues.size());
  expectFound("has a place that is none");
}
TEST_F(SumErrors, FindAPlaceThatHoldsAnotherValue) {
  ledger.oldValues[oldAt(8)].place = placeOf(5);
  expectFound("is not what is in its place");
}
TEST_F(SumErrors, FindASecondFateOfARepeatedLine) {
  setFate(6, ValueFate::lost);
  ledger.oldValues[oldAt(6)].place = kNoValue;
  expectFound("has another fate than its equal above it");
}
TEST_F(SumErrors, FindASameThatTheNewServerDidNotHave) {
  setFate(8, ValueFate::same);
  expectFound("did not have");
}
TEST_F(SumErrors, FindACarriedValueThatIsTheNewServersOwn) {
  setFate(2, ValueFate::carried);
  expectFound("does not come from the old configuration");
}
TEST_F(SumErrors, FindACarriedValueThatStandsElsewhere) {
  setFate(7, ValueFate::carried);
  expectFound("was carried to another place");
}
TEST_F(SumErrors, FindAMovedValueThatDidNotMove) {
  setFate(8, ValueFate::moved);
  expectFound("was moved to its own place");
}
TEST_F(SumErrors, FindALostValueThatHasAPlace) {
  ledger.oldValues[oldAt(9)].place = placeOf(8);
  expectFound("is lost and has a place");
}
TEST_F(SumErrors, FindADroppedValueWithAForeignPlace) {
  ledger.oldValues[oldAt(4)].place = placeOf(8);
  expectFound("no part of it");
}

TEST_F(SumErrors, FindANewServersValueThatComesFromNowhere) {
  ledger.resultValues[placeOf(2)].from = kNoValue;
  expectFound("comes from no value of the new configuration");
}
TEST_F(SumErrors, FindANewServersValueThatComesFromAnother) {
  ledger.resultValues[placeOf(2)].from = 1;
  expectFound("is not the value of the new configuration that it comes from");
}
TEST_F(SumErrors, FindACarriedValueThatComesFromNowhere) {
  ledger.resultValues[placeOf(8)].from = kNoValue;
  expectFound("comes from no value of the old configuration");
}
TEST_F(SumErrors, FindACarriedValueThatComesFromAnother) {
  ledger.resultValues[placeOf(8)].from = oldAt(5);
  expectFound("is not the old value that it comes from");
}
TEST_F(SumErrors, FindACarriedValueWhoseOldValueSaysOtherwise) {
  setFate(8, ValueFate::lost);
  ledger.oldValues[oldAt(8)].place = kNoValue;
  expectFound("comes from an old value that has not arrived");
}
TEST_F(SumErrors, FindAnOriginOfAnotherPlace) {
  setOrigin(placeOf(7), ValueOrigin::carried);
  expectFound("has the origin of another place");
  setOrigin(placeOf(7), ValueOrigin::moved);
  setOrigin(placeOf(8), ValueOrigin::moved);
  expectFound("has the origin of another place");
}
TEST_F(SumErrors, FindAnArrivalThatARuleIsSaidToHaveAdded) {
  setOrigin(placeOf(8), ValueOrigin::addedByRule);
  expectFound("does not come from the old configuration");
}

TEST_F(SumErrors, FindANewServersValueThatIsNowhere) {
  ledger.replaced.erase(ledger.replaced.begin());
  expectFound("is neither in the result nor replaced");
}
TEST_F(SumErrors, FindANewServersValueThatIsReplacedTwice) {
  ledger.replaced.insert(ledger.replaced.begin(), ledger.replaced.front());
  expectFound("is accounted for more than once");
}
TEST_F(SumErrors, FindANewServersValueThatIsBothKeptAndReplaced) {
  ledger.replaced.insert(ledger.replaced.begin(), {0, kNoValue, ledger.replaced.front().reason});
  expectFound("is accounted for more than once");
}
TEST_F(SumErrors, FindAReplacementOutOfOrder) {
  std::swap(ledger.replaced[0], ledger.replaced[1]);
  expectFound("is out of order");
}
TEST_F(SumErrors, FindAReplacementOfNothing) {
  ledger.replaced.push_back({static_cast<ValueId>(ledger.before.values().size()), kNoValue, 1});
  expectFound("none of the new configuration");
}
TEST_F(SumErrors, FindAReplacementForNoReason) {
  ledger.replaced[0].reason = 0;
  expectFound("was replaced for no reason");
}
TEST_F(SumErrors, FindAReplacementByAForeignValue) {
  ledger.replaced[0].by = placeOf(8);
  expectFound("was replaced by a value of another place");
  ledger.replaced[0].by = static_cast<ValueId>(ledger.resultValues.size());
  expectFound("was replaced by a value of another place");
}

TEST_F(SumErrors, FindAnEntryWithoutAFate) {
  ledger.oldEntries[0].reason = 0;
  expectFound("the entry at line 1 has no fate");
}
TEST_F(SumErrors, FindAnEntryThatWentNowhere) {
  ledger.oldEntries[0].target = {};
  expectFound("the entry at line 1 went nowhere");
  ledger.oldEntries[0].target = "CN=CONFIGURATION";
  ledger.oldEntries[0].fate = EntryFate::left;
  expectFound("went somewhere and should not have");
}

TEST_F(SumErrors, StayFewHoweverMuchIsWrong) {
  for (tool::OldValueRow& row : ledger.oldValues) row.reason = 0;
  for (tool::ResultValueRow& row : ledger.resultValues) row.reason = 0;
  const std::vector<std::string> errors = sumErrors(ledger);
  EXPECT_EQ(errors.size(), 21U);
  EXPECT_THAT(errors.back(), HasSubstr("more"));
}

}  // namespace
