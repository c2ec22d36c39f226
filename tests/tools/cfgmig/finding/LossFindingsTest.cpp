#include "FindingFixture.h"

namespace {

using namespace finding_test;
using testing::ElementsAre;
using testing::IsEmpty;
using tool::EntryFate;
using tool::ValueFate;

// An old entry with four settings, of which the first two arrived.
class Losses : public testing::Test {
 protected:
  SampleLedger sample{kRoot + entry("A", "zor-one: 1\nzor-two: 2\nzor-two: 22\nzor-three: 3\nzor-four: 4\n"),
                      kRoot + entry("A", ""), kRoot + entry("A", "zor-one: 1\nzor-two: 2\n")};
  const char* const kA = "cn=A,cn=Configuration";
};

TEST_F(Losses, AreNoFindingsWhenARuleDroppedTheValue) {
  for (const char* kind : {"value-lost", "transfer-ended-early", "second-value-not-carried", "entry-not-carried"}) {
    EXPECT_THAT(whats(sample, kind), IsEmpty()) << kind;
  }
}

TEST_F(Losses, NameTheValuesThatARuleCouldNotSet) {
  sample.setFate(kA, "zor-three", "3", ValueFate::lost, "mergeIn60", "refused");
  EXPECT_THAT(whats(sample, "value-lost"), ElementsAre("cn=A,cn=Configuration: zor-three: refused (mergeIn60)"));
  EXPECT_THAT(values(sample, "value-lost"), ElementsAre("3"));
  EXPECT_THAT(whats(sample, "transfer-ended-early"), IsEmpty());
}

TEST_F(Losses, AreGroupedByEntryAndReason) {
  sample.setFate(kA, "zor-three", "3", ValueFate::lost, "mergeIn60", "refused");
  sample.setFate(kA, "zor-four", "4", ValueFate::lost, "mergeIn60", "no entry");
  sample.setFate(kA, "zor-one", "1", ValueFate::lost, "mergeIn60", "refused");
  EXPECT_THAT(whats(sample, "value-lost"), ElementsAre("cn=A,cn=Configuration: zor-one, zor-three: refused (mergeIn60)",
                                                       "cn=A,cn=Configuration: zor-four: no entry (mergeIn60)"));
}

TEST_F(Losses, TellATransferThatEndedEarlyFromARefusedValue) {
  sample.setFate(kA, "zor-three", "3", ValueFate::lost, "mergeCfgEntry", "refused: code 53");
  sample.setFate(kA, "zor-four", "4", ValueFate::lost, "mergeCfgEntry", "behind one");
  EXPECT_THAT(whats(sample, "transfer-ended-early"),
              ElementsAre("cn=A,cn=Configuration: zor-three: refused: code 53 (mergeCfgEntry)",
                          "cn=A,cn=Configuration: zor-four: behind one (mergeCfgEntry)"));
  EXPECT_THAT(whats(sample, "value-lost"), IsEmpty());
}

TEST_F(Losses, TellASecondValueOfASetting) {
  sample.setFate(kA, "zor-two", "22", ValueFate::lost, "mergeCfgEntry", "only the first");
  EXPECT_THAT(values(sample, "second-value-not-carried"), ElementsAre("22"));
  EXPECT_THAT(whats(sample, "transfer-ended-early"), IsEmpty());
}

TEST_F(Losses, AreNoSecondValueWhenTheFirstDidNotArriveEither) {
  sample.setFate(kA, "zor-two", "2", ValueFate::lost, "mergeCfgEntry", "refused");
  sample.setFate(kA, "zor-two", "22", ValueFate::lost, "mergeCfgEntry", "refused");
  EXPECT_THAT(values(sample, "second-value-not-carried"), IsEmpty());
  EXPECT_THAT(values(sample, "transfer-ended-early"), ElementsAre("2", "22"));
}

TEST_F(Losses, AreNoSecondValueWhenAllValuesOfTheEntryAreCarried) {
  sample.setFate(kA, "zor-two", "22", ValueFate::lost, "addCfgEntry", "refused");
  EXPECT_THAT(values(sample, "second-value-not-carried"), IsEmpty());
  EXPECT_THAT(values(sample, "transfer-ended-early"), ElementsAre("22"));
}

TEST(SecondValues, AreNoneInAList) {
  SampleLedger sample(kRoot + entry("A", "ZOR-SLAPDSUFFIX: o=a\nZOR-SLAPDSUFFIX: o=b\n"), kRoot + entry("A", ""),
                      kRoot + entry("A", "zor-slapdSuffix: o=a\n"));
  sample.setFate("cn=A,cn=Configuration", "zor-slapdSuffix", "o=b", ValueFate::lost, "mergeCfgEntry", "refused");
  EXPECT_THAT(values(sample, "second-value-not-carried"), IsEmpty());
  EXPECT_THAT(values(sample, "transfer-ended-early"), ElementsAre("o=b"));
}

TEST_F(Losses, AreOneFindingWhenTheWholeEntryWasNotCarried) {
  sample.setFate(kA, "zor-three", "3", ValueFate::lost, "mergeIn60", "given up");
  sample.setFate(kA, "zor-four", "4", ValueFate::lost, "mergeCfgEntry", "given up");
  sample.setEntry(kA, EntryFate::skipped, "mergeIn60", "the rule gives the entry up", "");
  EXPECT_THAT(whats(sample, "entry-not-carried"),
              ElementsAre("cn=A,cn=Configuration: the rule gives the entry up (mergeIn60)"));
  EXPECT_THAT(whats(sample, "value-lost"), IsEmpty());
  EXPECT_THAT(whats(sample, "transfer-ended-early"), IsEmpty());
}

TEST_F(Losses, AreNoneInAnEntryThatIsLeftByDesign) {
  sample.setEntry(kA, EntryFate::left, "addTo41", "the old change log", "");
  EXPECT_THAT(whats(sample, "entry-not-carried"), IsEmpty());
}

TEST_F(Losses, TellAnEntryThatNoMergeLooksAt) {
  EXPECT_THAT(whats(sample, "entry-outside"), IsEmpty());
  sample.setFate(kA, "zor-three", "3", ValueFate::lost, "", "outside");
  sample.setEntry(kA, EntryFate::outside, "", "no migration looks at it", "");
  EXPECT_THAT(whats(sample, "entry-outside"), ElementsAre("cn=A,cn=Configuration: no migration looks at it"));
  EXPECT_THAT(whats(sample, "value-lost"), IsEmpty());
}

TEST_F(Losses, NameNoMoreThanSixSettingsOnOneLine) {
  std::string lines;
  for (char name = 'a'; name <= 'i'; ++name) lines += std::string("zor-") + name + ": x" + name + "\n";
  SampleLedger many(kRoot + entry("A", lines), kRoot + entry("A", ""), kRoot + entry("A", ""));
  for (char name = 'a'; name <= 'i'; ++name) {
    many.setFate(kA, std::string("zor-") + name, std::string("x") + name, ValueFate::lost, "mergeIn60", "refused");
  }
  EXPECT_THAT(whats(many, "value-lost"), ElementsAre("cn=A,cn=Configuration: zor-a, zor-b, zor-c, zor-d, zor-e, zor-f "
                                                     "and 3 more: refused (mergeIn60)"));
  EXPECT_EQ(find(many, "value-lost").front().places.size(), 9U);
}

class ObjectClasses : public testing::Test {
 protected:
  SampleLedger sample{kRoot + entry("A", "objectClass: acme\n"), kRoot + entry("A", "objectClass: own\n"),
                      kRoot + entry("A", "objectClass: own\n")};
  void keep(const char* text) {
    sample.setFate("cn=A,cn=Configuration", "objectClass", text, ValueFate::keptNew, "mergeCfgEntry", "own");
  }
};

TEST_F(ObjectClasses, AreFoundWhenTheNewEntryLacksThem) {
  keep("acme");
  EXPECT_THAT(values(sample, "object-class-not-carried"), ElementsAre("acme"));
  const auto own = sample.value(tool::Content::result, "cn=A,cn=Configuration", "objectClass", "own");
  sample.edit().oldValues[sample.value(tool::Content::old, "cn=A,cn=Configuration", "objectClass", "acme")].place = own;
  EXPECT_THAT(values(sample, "object-class-not-carried"), ElementsAre("acme")) << "whatever stands in its place";
}

TEST_F(ObjectClasses, AreNoFindingWhenTheNewEntryHasThemInOtherLetters) {
  SampleLedger other(kRoot + entry("A", "objectClass: OWN\n"), kRoot + entry("A", "objectClass: own\n"),
                     kRoot + entry("A", "objectClass: own\n"));
  other.setFate("cn=A,cn=Configuration", "objectClass", "OWN", ValueFate::keptNew, "mergeCfgEntry", "own");
  EXPECT_THAT(values(other, "object-class-not-carried"), IsEmpty());
}

TEST_F(ObjectClasses, AreNoFindingWhenARuleDroppedThem) {
  EXPECT_THAT(values(sample, "object-class-not-carried"), IsEmpty());
}

}  // namespace
