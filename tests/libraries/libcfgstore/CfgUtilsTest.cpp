// The contract of CfgUtils.h, operation by operation.

#include "CfgUtils.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ResultCode.h"
#include "TestStore.h"

namespace cfgstore {
namespace {

using test::Strings;
using test::TestStore;
using testing::ElementsAre;
using testing::IsEmpty;

const char* const kText =
    "dn: CN=CONFIGURATION\n"
    "objectClass: top\n"
    "cn: CONFIGURATION\n"
    "\n"
    "dn: cn=Front End, cn=Configuration\n"
    "objectClass: top\n"
    "objectClass: zor-slapdFrontEnd\n"
    "cn: Front End\n"
    "zor-slapdPort: 389\n"
    "zor-slapdSetenv: A=1\n"
    "ZOR-SLAPDSETENV: B=2\n"
    "zor-slapdSetenv: C=3\n"
    "\n"
    "dn: CN=DEEP,CN=FRONT END,CN=CONFIGURATION\n"
    "cn: DEEP\n"
    "\n"
    "dn: CN=EMPTY,CN=CONFIGURATION\n"
    "\n"
    "dn: CN=ELSEWHERE\n"
    "cn: ELSEWHERE\n";
const char* const kFrontEnd = "CN=FRONT END,CN=CONFIGURATION";
const char* const kMissing = "CN=MISSING,CN=CONFIGURATION";

class CfgUtilsTest : public testing::Test {
 protected:
  TestStore m_store{kText};

  // The store is as it was.
  void expectUnchanged() {
    EXPECT_FALSE(m_store.store().changed());
    EXPECT_EQ(m_store.text(), kText);
  }
};

using GetSubordinates = CfgUtilsTest;

TEST_F(GetSubordinates, ListsTheBaseAndAllBelowItInTheOrderOfTheFile) {
  const auto result = m_store.subordinates("CN=CONFIGURATION", 2);
  EXPECT_EQ(result.rc, 0);
  EXPECT_THAT(result.values, ElementsAre("CN=CONFIGURATION", "cn=Front End, cn=Configuration",
                                         "CN=DEEP,CN=FRONT END,CN=CONFIGURATION", "CN=EMPTY,CN=CONFIGURATION"));
}

TEST_F(GetSubordinates, ListsOnlyTheEntryItselfWithScope0) {
  EXPECT_THAT(m_store.subordinates("cn=front end,cn=configuration", 0).values,
              ElementsAre("cn=Front End, cn=Configuration"));
}

TEST_F(GetSubordinates, ListsOnlyTheEntriesDirectlyBelowWithScope1) {
  EXPECT_THAT(m_store.subordinates("CN=CONFIGURATION", 1).values,
              ElementsAre("cn=Front End, cn=Configuration", "CN=EMPTY,CN=CONFIGURATION"));
}

TEST_F(GetSubordinates, ListsNothingBelowAnEntryThatIsNotThere) {
  const auto result = m_store.subordinates(kMissing, 2);
  EXPECT_EQ(result.rc, 0);
  EXPECT_THAT(result.values, IsEmpty());
}

TEST_F(GetSubordinates, ListsWhatIsBelowABaseThatIsNotThere) {
  TestStore store("dn: CN=A,CN=CONFIGURATION\n\ndn: CN=B\n");
  EXPECT_THAT(store.subordinates("CN=CONFIGURATION", 2).values, ElementsAre("CN=A,CN=CONFIGURATION"));
}

TEST_F(GetSubordinates, TakesNoSuffixOfANameForAnAncestor) {
  TestStore store("dn: CN=ACN=CONFIGURATION\n\ndn: CN=XCONFIGURATION\n");
  EXPECT_THAT(store.subordinates("CN=CONFIGURATION", 2).values, IsEmpty());
}

TEST_F(GetSubordinates, RefusesBadArguments) {
  EXPECT_EQ(m_store.subordinates("nonsense", 2).rc, kInvalidDnSyntax);
  EXPECT_EQ(m_store.subordinates("CN=CONFIGURATION", 3).rc, kParamError);
  EXPECT_EQ(m_store.subordinates("CN=CONFIGURATION", -1).rc, kParamError);
  EXPECT_EQ(m_store.subordinates(nullptr, 2).rc, kParamError);
  int count = 5;
  EXPECT_EQ(m_store.utils().getSubordinates("CN=CONFIGURATION", 2, nullptr, &count), kParamError);
  EXPECT_EQ(count, 0);
  char** list = nullptr;
  EXPECT_EQ(m_store.utils().getSubordinates("CN=CONFIGURATION", 2, &list, nullptr), kParamError);
  EXPECT_EQ(list, nullptr);
}

using GetParamValueInfo = CfgUtilsTest;

TEST_F(GetParamValueInfo, ReadsTheValue) {
  const auto result = m_store.value(kFrontEnd, "zor-slapdPort");
  EXPECT_EQ(result.rc, 0);
  EXPECT_EQ(result.value, "389");
}

TEST_F(GetParamValueInfo, ReadsTheFirstOfSeveralValues) {
  EXPECT_EQ(m_store.value(kFrontEnd, "zor-slapdSetenv").value, "A=1");
}

TEST_F(GetParamValueInfo, LeavesTheValueNullForAnAttributeThatIsNotThere) {
  const auto result = m_store.value(kFrontEnd, "zor-slapdNone");
  EXPECT_EQ(result.rc, 0);
  EXPECT_EQ(result.value, std::nullopt);
}

TEST_F(GetParamValueInfo, FailsForAnEntryThatIsNotThere) {
  char* value = nullptr;
  char dummy = 0;
  value = &dummy;
  EXPECT_EQ(m_store.utils().getParamValueInfo(kMissing, "cn", &value), kNoSuchObject);
  EXPECT_EQ(value, nullptr);
}

TEST_F(GetParamValueInfo, RefusesBadArguments) {
  EXPECT_EQ(m_store.value("nonsense", "cn").rc, kInvalidDnSyntax);
  EXPECT_EQ(m_store.value(nullptr, "cn").rc, kParamError);
  EXPECT_EQ(m_store.value(kFrontEnd, nullptr).rc, kParamError);
  EXPECT_EQ(m_store.utils().getParamValueInfo(kFrontEnd, "cn", nullptr), kParamError);
}

using GetParamArrayValueInfo = CfgUtilsTest;

TEST_F(GetParamArrayValueInfo, ReadsAllValuesWhateverTheLetterCaseOfTheName) {
  for (const char* name : {"zor-slapdSetenv", "ZOR-SLAPDSETENV", "Zor-Slapdsetenv"}) {
    const auto result = m_store.values(kFrontEnd, name);
    EXPECT_EQ(result.rc, 0);
    EXPECT_THAT(result.values, ElementsAre("A=1", "B=2", "C=3"));
  }
  EXPECT_THAT(m_store.values(kFrontEnd, "OBJECTCLASS").values, ElementsAre("top", "zor-slapdFrontEnd"));
  EXPECT_THAT(m_store.values(kFrontEnd, "CN").values, ElementsAre("Front End"));
}

TEST_F(GetParamArrayValueInfo, FindsTheEntryHoweverItsDnIsWritten) {
  for (const char* dn :
       {"CN=FRONT END,CN=CONFIGURATION", "cn=front end, cn=configuration", "cn = Front  End ;CN=Configuration"}) {
    EXPECT_EQ(m_store.values(dn, "zor-slapdPort").rc, 0) << dn;
  }
}

TEST_F(GetParamArrayValueInfo, Answers16ForAnAttributeThatIsNotThere) {
  EXPECT_EQ(m_store.values(kFrontEnd, "zor-slapdNone").rc, 16);
  EXPECT_EQ(m_store.values(kFrontEnd, "").rc, 16);
  EXPECT_EQ(m_store.values(kFrontEnd, "dn").rc, 16);
}

TEST_F(GetParamArrayValueInfo, AnswersAnotherCodeForAnEntryThatIsNotThere) {
  EXPECT_EQ(m_store.values(kMissing, "cn").rc, kNoSuchObject);
}

TEST_F(GetParamArrayValueInfo, RefusesBadArguments) {
  EXPECT_EQ(m_store.values("nonsense", "cn").rc, kInvalidDnSyntax);
  EXPECT_EQ(m_store.values(nullptr, "cn").rc, kParamError);
  EXPECT_EQ(m_store.values(kFrontEnd, nullptr).rc, kParamError);
  char** list = nullptr;
  int count = 5;
  EXPECT_EQ(m_store.utils().getParamArrayValueInfo(kFrontEnd, "cn", nullptr, &count), kParamError);
  EXPECT_EQ(count, 0);
  EXPECT_EQ(m_store.utils().getParamArrayValueInfo(kFrontEnd, "cn", &list, nullptr), kParamError);
  EXPECT_EQ(list, nullptr);
}

using AddValue = CfgUtilsTest;

TEST_F(AddValue, AddsToAnAttributeThatIsThere) {
  EXPECT_EQ(m_store.addValue(kFrontEnd, "ZOR-slapdSetenv", "D=4"), 0);
  EXPECT_THAT(m_store.values(kFrontEnd, "zor-slapdSetenv").values, ElementsAre("A=1", "B=2", "C=3", "D=4"));
}

TEST_F(AddValue, CreatesTheAttribute) {
  EXPECT_EQ(m_store.addValue("CN=EMPTY,CN=CONFIGURATION", "zor-slapdPort", "636"), 0);
  EXPECT_THAT(m_store.values("CN=EMPTY,CN=CONFIGURATION", "ZOR-slapdport").values, ElementsAre("636"));
}

TEST_F(AddValue, SucceedsAndChangesNothingForAValueThatIsThere) {
  EXPECT_EQ(m_store.addValue(kFrontEnd, "zor-slapdsetenv", "B=2"), 0);
  expectUnchanged();
}

TEST_F(AddValue, TakesValuesInDifferentLetterCaseForDifferentOnes) {
  EXPECT_EQ(m_store.addValue(kFrontEnd, "zor-slapdsetenv", "b=2"), 0);
  EXPECT_THAT(m_store.values(kFrontEnd, "zor-slapdSetenv").values, ElementsAre("A=1", "B=2", "C=3", "b=2"));
}

TEST_F(AddValue, TakesAnyValueThatIsAString) {
  const Strings values{"",           " ",       "  leading", "trailing ", ":colon", "<less", "#hash",
                       "two\nlines", "\r",      "\t",        "\xC3\xBC",  "\xFF",   "\x01",  std::string(1000, 'x'),
                       "a: b",       "dn: CN=X"};
  for (const std::string& value : values) EXPECT_EQ(m_store.addValue(kFrontEnd, "x", value.c_str()), 0);
  EXPECT_EQ(m_store.values(kFrontEnd, "x").values, values);
  TestStore again(m_store.text());
  EXPECT_EQ(again.values(kFrontEnd, "x").values, values);
}

TEST_F(AddValue, RefusesNullArguments) {
  EXPECT_EQ(m_store.addValue(kFrontEnd, "zor-slapdPort", nullptr), kParamError);
  EXPECT_EQ(m_store.addValue(kFrontEnd, nullptr, "x"), kParamError);
  EXPECT_EQ(m_store.addValue(nullptr, "zor-slapdPort", "x"), kParamError);
  expectUnchanged();
}

TEST_F(AddValue, FailsForAnEntryThatIsNotThere) {
  EXPECT_EQ(m_store.addValue(kMissing, "a", "x"), kNoSuchObject);
  EXPECT_EQ(m_store.addValue("nonsense", "a", "x"), kInvalidDnSyntax);
  expectUnchanged();
}

TEST_F(AddValue, RefusesANameThatIsTooLongToBeReadAgain) {
  const std::string longest(65535, 'x');
  EXPECT_EQ(m_store.addValue(kFrontEnd, (longest + "x").c_str(), "1"), kUndefinedAttributeType);
  EXPECT_EQ(m_store.setValue(kFrontEnd, (longest + "x").c_str(), "1"), kUndefinedAttributeType);
  expectUnchanged();
  EXPECT_EQ(m_store.addValue(kFrontEnd, longest.c_str(), "1"), kSuccess);
  EXPECT_EQ(TestStore(m_store.text()).values(kFrontEnd, longest.c_str()).values, Strings{"1"});
}

TEST_F(AddValue, RefusesNamesThatWouldBreakTheFile) {
  for (const char* name : {"", " ", "a b", "a:", "a\nb", "a\n", "-a", "a;", ";a", "\xC3\xBC", "dn", "DN", "changetype",
                           "control", "1.", "#a"}) {
    EXPECT_EQ(m_store.addValue(kFrontEnd, name, "x"), kUndefinedAttributeType) << name;
    EXPECT_EQ(m_store.setValue(kFrontEnd, name, "x"), kUndefinedAttributeType) << name;
  }
  expectUnchanged();
}

using DelValue = CfgUtilsTest;

TEST_F(DelValue, RemovesTheValue) {
  EXPECT_EQ(m_store.delValue(kFrontEnd, "ZOR-slapdSetenv", {"B=2"}), 0);
  EXPECT_THAT(m_store.values(kFrontEnd, "zor-slapdSetenv").values, ElementsAre("A=1", "C=3"));
}

TEST_F(DelValue, RemovesEachOfSeveralValues) {
  EXPECT_EQ(m_store.delValue(kFrontEnd, "zor-slapdSetenv", {"C=3", "A=1", "C=3"}), 0);
  EXPECT_THAT(m_store.values(kFrontEnd, "zor-slapdSetenv").values, ElementsAre("B=2"));
}

TEST_F(DelValue, TakesTheAttributeWithItsLastValue) {
  EXPECT_EQ(m_store.delValue(kFrontEnd, "zor-slapdPort", {"389"}), 0);
  EXPECT_EQ(m_store.values(kFrontEnd, "zor-slapdPort").rc, 16);
  EXPECT_EQ(m_store.value(kFrontEnd, "zor-slapdPort").rc, 0);
  EXPECT_EQ(m_store.delValue(kFrontEnd, "zor-slapdPort", {"389"}), kNoSuchAttribute);
}

TEST_F(DelValue, RemovesEveryCopyOfAValueThatTheFileHasTwice) {
  TestStore store("dn: CN=A\na: x\na: y\na:: eA==\n");
  EXPECT_EQ(store.delValue("CN=A", "a", {"x"}), 0);
  EXPECT_THAT(store.values("CN=A", "a").values, ElementsAre("y"));
  EXPECT_EQ(store.text(), "dn: CN=A\na: y\n");
}

TEST_F(DelValue, RemovesNothingForAListWithoutValues) {
  EXPECT_EQ(m_store.delValue(kFrontEnd, "zor-slapdPort", {}), 0);
  EXPECT_EQ(m_store.delValue(kFrontEnd, "zor-slapdNone", {}), 0);
  EXPECT_EQ(m_store.delValue(kMissing, "zor-slapdPort", {}), kNoSuchObject);
  expectUnchanged();
}

TEST_F(DelValue, LeavesAllValuesWhenOneIsNotThere) {
  EXPECT_EQ(m_store.delValue(kFrontEnd, "zor-slapdSetenv", {"X=0"}), kNoSuchAttribute);
  EXPECT_EQ(m_store.delValue(kFrontEnd, "zor-slapdSetenv", {"A=1", "X=0"}), kNoSuchAttribute);
  EXPECT_EQ(m_store.delValue(kFrontEnd, "zor-slapdSetenv", {"a=1"}), kNoSuchAttribute);
  EXPECT_EQ(m_store.delValue(kFrontEnd, "zor-slapdNone", {"x"}), kNoSuchAttribute);
  expectUnchanged();
}

TEST_F(DelValue, RefusesBadArguments) {
  EXPECT_EQ(m_store.delValue(kMissing, "a", {"x"}), kNoSuchObject);
  EXPECT_EQ(m_store.delValue("nonsense", "a", {"x"}), kInvalidDnSyntax);
  EXPECT_EQ(m_store.delValue(nullptr, "a", {"x"}), kParamError);
  EXPECT_EQ(m_store.delValue(kFrontEnd, nullptr, {"x"}), kParamError);
  EXPECT_EQ(m_store.utils().delValue(kFrontEnd, "a", nullptr), kParamError);
  expectUnchanged();
}

TEST_F(DelValue, LeavesAnEntryWithoutAttributesThatCanBeReadAgain) {
  TestStore store("dn: CN=A\na: x\n");
  EXPECT_EQ(store.delValue("CN=A", "a", {"x"}), 0);
  EXPECT_EQ(store.text(), "dn: CN=A\n");
  TestStore again(store.text());
  EXPECT_THAT(again.attributes("CN=A"), IsEmpty());
}

using SetValue = CfgUtilsTest;

TEST_F(SetValue, ReplacesTheValue) {
  EXPECT_EQ(m_store.setValue(kFrontEnd, "ZOR-slapdport", "636"), 0);
  EXPECT_THAT(m_store.values(kFrontEnd, "zor-slapdPort").values, ElementsAre("636"));
}

TEST_F(SetValue, LeavesThisOneValueOfSeveral) {
  EXPECT_EQ(m_store.setValue(kFrontEnd, "zor-slapdSetenv", "D=4"), 0);
  EXPECT_THAT(m_store.values(kFrontEnd, "zor-slapdSetenv").values, ElementsAre("D=4"));
  EXPECT_EQ(m_store.setValue(kFrontEnd, "objectClass", "zor-slapdFrontEnd"), 0);
  EXPECT_THAT(m_store.values(kFrontEnd, "objectClass").values, ElementsAre("zor-slapdFrontEnd"));
}

TEST_F(SetValue, CreatesTheAttribute) {
  EXPECT_EQ(m_store.setValue(kFrontEnd, "new", "x"), 0);
  EXPECT_THAT(m_store.values(kFrontEnd, "new").values, ElementsAre("x"));
}

TEST_F(SetValue, ChangesNothingForTheOnlyValue) {
  EXPECT_EQ(m_store.setValue(kFrontEnd, "zor-slapdport", "389"), 0);
  expectUnchanged();
}

TEST_F(SetValue, ChangesNothingForTheOnlyValueThatTheFileHasTwice) {
  TestStore store("dn: CN=A\na: x\na: x\n");
  EXPECT_EQ(store.setValue("CN=A", "a", "x"), 0);
  EXPECT_FALSE(store.store().changed());
  EXPECT_EQ(store.setValue("CN=A", "a", "y"), 0);
  EXPECT_EQ(store.text(), "dn: CN=A\na: y\n");
}

TEST_F(SetValue, RefusesBadArguments) {
  EXPECT_EQ(m_store.setValue(kFrontEnd, "zor-slapdPort", nullptr), kParamError);
  EXPECT_EQ(m_store.setValue(kFrontEnd, nullptr, "x"), kParamError);
  EXPECT_EQ(m_store.setValue(nullptr, "zor-slapdPort", "x"), kParamError);
  EXPECT_EQ(m_store.setValue(kMissing, "zor-slapdPort", "x"), kNoSuchObject);
  EXPECT_EQ(m_store.setValue("nonsense", "zor-slapdPort", "x"), kInvalidDnSyntax);
  expectUnchanged();
}

using AddEntry = CfgUtilsTest;

TEST_F(AddEntry, CreatesTheEntryWithNameAndClasses) {
  EXPECT_EQ(m_store.addEntry("cn=New, cn=Configuration", "New", "zor-slapdConfigEntry", "TOP"), 0);
  EXPECT_THAT(m_store.values("CN=NEW,CN=CONFIGURATION", "CN").values, ElementsAre("New"));
  EXPECT_THAT(m_store.values("CN=NEW,CN=CONFIGURATION", "OBJECTCLASS").values,
              ElementsAre("zor-slapdConfigEntry", "TOP"));
  EXPECT_THAT(m_store.attributes("CN=NEW,CN=CONFIGURATION"), ElementsAre("objectClass", "cn"));
}

TEST_F(AddEntry, HasOneClassWhenBothAreTheSame) {
  EXPECT_EQ(m_store.addEntry("CN=NEW", "NEW", "TOP", "TOP"), 0);
  EXPECT_THAT(m_store.values("CN=NEW", "OBJECTCLASS").values, ElementsAre("TOP"));
}

TEST_F(AddEntry, ListsTheEntry) {
  EXPECT_EQ(m_store.addEntry("CN=NEW,CN=CONFIGURATION", "NEW", "a", "b"), 0);
  EXPECT_EQ(m_store.subordinates("CN=CONFIGURATION", 2).values.size(), 5U);
}

TEST_F(AddEntry, NeedsNoParent) {
  EXPECT_EQ(m_store.addEntry("CN=X,CN=MISSING,CN=CONFIGURATION", "X", "a", "b"), 0);
  EXPECT_EQ(m_store.value("CN=X,CN=MISSING,CN=CONFIGURATION", "cn").value, "X");
}

TEST_F(AddEntry, RefusesAnEntryThatIsThere) {
  EXPECT_EQ(m_store.addEntry("cn=front end, cn=configuration", "x", "a", "b"), kEntryAlreadyExists);
  expectUnchanged();
}

TEST_F(AddEntry, RefusesBadArguments) {
  EXPECT_EQ(m_store.addEntry("nonsense", "x", "a", "b"), kInvalidDnSyntax);
  EXPECT_EQ(m_store.addEntry("", "x", "a", "b"), kInvalidDnSyntax);
  EXPECT_EQ(m_store.addEntry(nullptr, "x", "a", "b"), kParamError);
  EXPECT_EQ(m_store.addEntry("CN=NEW", nullptr, "a", "b"), kParamError);
  EXPECT_EQ(m_store.addEntry("CN=NEW", "x", nullptr, "b"), kParamError);
  EXPECT_EQ(m_store.addEntry("CN=NEW", "x", "a", nullptr), kParamError);
  expectUnchanged();
}

using RemoveEntry = CfgUtilsTest;

TEST_F(RemoveEntry, RemovesTheEntryAndLeavesThoseBelowIt) {
  EXPECT_EQ(m_store.removeEntry("cn=front end,cn=configuration"), 0);
  EXPECT_EQ(m_store.values(kFrontEnd, "cn").rc, kNoSuchObject);
  EXPECT_THAT(m_store.subordinates("CN=CONFIGURATION", 2).values,
              ElementsAre("CN=CONFIGURATION", "CN=DEEP,CN=FRONT END,CN=CONFIGURATION", "CN=EMPTY,CN=CONFIGURATION"));
}

TEST_F(RemoveEntry, FailsForAnEntryThatIsNotThere) {
  EXPECT_EQ(m_store.removeEntry(kMissing), kNoSuchObject);
  EXPECT_EQ(m_store.removeEntry("nonsense"), kInvalidDnSyntax);
  EXPECT_EQ(m_store.removeEntry(nullptr), kParamError);
  expectUnchanged();
  EXPECT_EQ(m_store.removeEntry(kFrontEnd), 0);
  EXPECT_EQ(m_store.removeEntry(kFrontEnd), kNoSuchObject);
}

TEST_F(RemoveEntry, AllowsTheEntryToBeAddedAgain) {
  EXPECT_EQ(m_store.removeEntry(kFrontEnd), 0);
  EXPECT_EQ(m_store.addEntry(kFrontEnd, "FRONT END", "a", "b"), 0);
  EXPECT_THAT(m_store.values(kFrontEnd, "objectClass").values, ElementsAre("a", "b"));
  EXPECT_EQ(m_store.values(kFrontEnd, "zor-slapdPort").rc, 16);
}

TEST(CfgUtilsStores, AreIndependentOfEachOther) {
  TestStore left(kText);
  TestStore right(kText);
  EXPECT_EQ(left.setValue(kFrontEnd, "zor-slapdPort", "1"), 0);
  EXPECT_EQ(right.value(kFrontEnd, "zor-slapdPort").value, "389");
}

TEST(CfgUtilsStores, LeaveTheFileAlone) {
  TestStore store(kText);
  EXPECT_EQ(store.setValue(kFrontEnd, "zor-slapdPort", "1"), 0);
  EXPECT_EQ(test::readFile(store.path()), kText);
}

}  // namespace
}  // namespace cfgstore
