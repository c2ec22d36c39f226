// What libcfgmig relies on in any configuration store. Built with each store that the project has.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

#include "StoreAnswers.h"
#include "StoreMaker.h"

namespace {

using answers::attributeNames;
using answers::normalForm;
using answers::subordinates;
using answers::value;
using answers::values;
using Lines = std::vector<std::string>;

const char kTop[] = "CN=CONFIGURATION";
const char kSsl[] = "CN=SSL,CN=CONFIGURATION";
const char kMissing[] = "CN=MISSING,CN=CONFIGURATION";

class StoreContract : public testing::Test {
 protected:
  StoreContract()
      : m_made(makeStore({{"cn=Configuration", {{"objectclass", {"top"}}, {"cn", {"Configuration"}}}},
                          {"cn=SSL, cn=Configuration",
                           {{"objectclass", {"zor-slapdSSL", "top"}},
                            {"cn", {"SSL"}},
                            {"zor-slapdPort", {"389"}},
                            {"zor-slapdSuffix", {"o=a", "o=b", "o=c"}}}},
                          {"cn=Schemas, cn=Configuration", {{"cn", {"Schemas"}}}},
                          {"cn=Inner, cn=Schemas, cn=Configuration", {{"cn", {"Inner"}}}},
                          {"o=elsewhere", {{"o", {"elsewhere"}}}}})),
        store(m_made->utils()) {}

  Lines listed(const char* base, int scope) {
    const auto list = subordinates(store, base, scope);
    EXPECT_EQ(list.rc, 0);
    EXPECT_EQ(list.count, std::ssize(list.values));
    Lines forms;
    for (const std::string& dn : list.values) {
      forms.push_back(normalForm(dn.c_str()).value_or("not a DN"));
    }
    return forms;
  }

 private:
  std::unique_ptr<MadeStore> m_made;

 protected:
  OVOConfigUtils::CfgUtils& store;
};

TEST_F(StoreContract, ListsEveryEntryBelowTheBaseInOrder) {
  Lines dns = listed(kTop, 2);
  std::erase(dns, kTop);  // whether the base is listed is the store's choice
  EXPECT_EQ(dns, (Lines{kSsl, "CN=SCHEMAS,CN=CONFIGURATION", "CN=INNER,CN=SCHEMAS,CN=CONFIGURATION"}));
}

TEST_F(StoreContract, ListsTheBaseForEveryFileOrForNone) {
  const bool listsBase = std::ranges::count(listed(kTop, 2), kTop) == 1;
  EXPECT_EQ(std::ranges::count(listed("CN=SCHEMAS,CN=CONFIGURATION", 2), "CN=SCHEMAS,CN=CONFIGURATION"),
            listsBase ? 1 : 0);
}

TEST_F(StoreContract, ListsTheEntryItselfOrTheEntriesRightBelow) {
  EXPECT_EQ(listed(kTop, 0), (Lines{kTop}));
  EXPECT_EQ(listed(kTop, 1), (Lines{kSsl, "CN=SCHEMAS,CN=CONFIGURATION"}));
}

TEST_F(StoreContract, ReadsTheFirstValue) {
  EXPECT_EQ(value(store, kSsl, "zor-slapdPort").value, "389");
  EXPECT_EQ(value(store, kSsl, "zor-slapdSuffix").value, "o=a");
}

TEST_F(StoreContract, AnAbsentSingleValueIsNullAndASuccess) {
  const auto absent = value(store, kSsl, "zor-slapdNothing");
  EXPECT_EQ(absent.rc, 0);
  EXPECT_EQ(absent.value, std::nullopt);
}

TEST_F(StoreContract, AMissingEntrysSingleValueIsAFailure) {
  const auto missing = value(store, kMissing, "cn");
  EXPECT_NE(missing.rc, 0);
  EXPECT_EQ(missing.value, std::nullopt);
}

TEST_F(StoreContract, ReadsAllValuesCountedAndClosed) {
  const auto list = values(store, kSsl, "zor-slapdSuffix");
  EXPECT_EQ(list.rc, 0);
  EXPECT_EQ(list.count, 3);
  EXPECT_EQ(list.values, (Lines{"o=a", "o=b", "o=c"}));
}

TEST_F(StoreContract, AnAbsentListAnswersSixteenAndAMissingEntryAnotherFailure) {
  const auto absent = values(store, kSsl, "zor-slapdNothing");
  EXPECT_EQ(absent.rc, 16);
  EXPECT_TRUE(absent.isNull);
  EXPECT_EQ(absent.count, 0);
  const auto missing = values(store, kMissing, "cn");
  EXPECT_NE(missing.rc, 0);
  EXPECT_NE(missing.rc, 16);
  EXPECT_TRUE(missing.isNull);
  EXPECT_EQ(missing.count, 0);
}

TEST_F(StoreContract, AttributeNamesAndDnsMatchInAnyLetterCase) {
  EXPECT_EQ(value(store, "cn=ssl , CN=configuration", "ZOR-SLAPDPORT").value, "389");
  EXPECT_EQ(store.addValue("cn=ssl,cn=configuration", "ZOR-slapdSUFFIX", "o=d"), 0);
  EXPECT_EQ(values(store, kSsl, "zor-slapdSuffix").values, (Lines{"o=a", "o=b", "o=c", "o=d"}));
}

TEST_F(StoreContract, AddsAValueAndMakesTheAttribute) {
  EXPECT_EQ(store.addValue(kSsl, "zor-slapdNew", "x"), 0);
  EXPECT_EQ(values(store, kSsl, "zor-slapdNew").values, (Lines{"x"}));
}

TEST_F(StoreContract, AddingAPresentValueIsASuccessAndLeavesOneCopy) {
  EXPECT_EQ(store.addValue(kSsl, "zor-slapdSuffix", "o=b"), 0);
  EXPECT_EQ(values(store, kSsl, "zor-slapdSuffix").values, (Lines{"o=a", "o=b", "o=c"}));
}

TEST_F(StoreContract, AddingNullOrToAMissingEntryFails) {
  EXPECT_NE(store.addValue(kSsl, "zor-slapdSuffix", nullptr), 0);
  EXPECT_NE(store.addValue(kMissing, "zor-slapdSuffix", "o=a"), 0);
  EXPECT_EQ(values(store, kSsl, "zor-slapdSuffix").values, (Lines{"o=a", "o=b", "o=c"}));
  EXPECT_NE(value(store, kMissing, "cn").rc, 0);
}

TEST_F(StoreContract, DeletesTheListedValues) {
  EXPECT_EQ(answers::remove(store, kSsl, "zor-slapdSuffix", {"o=b"}), 0);
  EXPECT_EQ(values(store, kSsl, "zor-slapdSuffix").values, (Lines{"o=a", "o=c"}));
  EXPECT_EQ(answers::remove(store, kSsl, "zor-slapdSuffix", {"o=c", "o=a"}), 0);
  EXPECT_EQ(values(store, kSsl, "zor-slapdSuffix").rc, 16);
}

TEST_F(StoreContract, TheLastValueTakesTheAttributeWithIt) {
  EXPECT_EQ(answers::remove(store, kSsl, "zor-slapdPort", {"389"}), 0);
  EXPECT_EQ(values(store, kSsl, "zor-slapdPort").rc, 16);
  EXPECT_EQ(attributeNames(store, kSsl)->size(), 3U);
}

TEST_F(StoreContract, DeletingAValueThatIsNotThereFailsAndLeavesTheOthers) {
  EXPECT_NE(answers::remove(store, kSsl, "zor-slapdSuffix", {"o=z"}), 0);
  EXPECT_NE(answers::remove(store, kSsl, "zor-slapdSuffix", {"o=a", "o=z"}), 0);
  EXPECT_NE(answers::remove(store, kSsl, "zor-slapdNothing", {"o=z"}), 0);
  EXPECT_NE(answers::remove(store, kMissing, "cn", {"x"}), 0);
  EXPECT_EQ(values(store, kSsl, "zor-slapdSuffix").values, (Lines{"o=a", "o=b", "o=c"}));
}

TEST_F(StoreContract, AnEmptyDeletionRemovesNothingAndSucceeds) {
  EXPECT_EQ(answers::remove(store, kSsl, "zor-slapdSuffix", {}), 0);
  EXPECT_EQ(answers::remove(store, kSsl, "zor-slapdNothing", {}), 0);
  EXPECT_EQ(values(store, kSsl, "zor-slapdSuffix").values, (Lines{"o=a", "o=b", "o=c"}));
}

TEST_F(StoreContract, SetsTheOnlyValueAndMakesTheAttribute) {
  EXPECT_EQ(store.setValue(kSsl, "zor-slapdSuffix", "o=x"), 0);
  EXPECT_EQ(values(store, kSsl, "zor-slapdSuffix").values, (Lines{"o=x"}));
  EXPECT_EQ(store.setValue(kSsl, "zor-slapdNew", ""), 0);
  EXPECT_EQ(values(store, kSsl, "zor-slapdNew").values, (Lines{""}));
}

TEST_F(StoreContract, SettingNullOrInAMissingEntryFails) {
  EXPECT_NE(store.setValue(kSsl, "zor-slapdPort", nullptr), 0);
  EXPECT_NE(store.setValue(kMissing, "zor-slapdPort", "1"), 0);
  EXPECT_EQ(value(store, kSsl, "zor-slapdPort").value, "389");
}

TEST_F(StoreContract, AddsAnEntryWithItsNameAndTwoClasses) {
  EXPECT_EQ(store.addEntry("CN=NEW,CN=CONFIGURATION", "New", "A", "B"), 0);
  EXPECT_EQ(values(store, "CN=NEW,CN=CONFIGURATION", "CN").values, (Lines{"New"}));
  EXPECT_EQ(values(store, "CN=NEW,CN=CONFIGURATION", "OBJECTCLASS").values, (Lines{"A", "B"}));
  EXPECT_EQ(attributeNames(store, "CN=NEW,CN=CONFIGURATION")->size(), 2U);
  EXPECT_EQ(std::ranges::count(listed(kTop, 2), "CN=NEW,CN=CONFIGURATION"), 1);
}

TEST_F(StoreContract, EqualClassesOfANewEntryAreThereOnce) {
  EXPECT_EQ(store.addEntry("CN=NEW,CN=CONFIGURATION", "New", "TOP", "TOP"), 0);
  EXPECT_EQ(values(store, "CN=NEW,CN=CONFIGURATION", "OBJECTCLASS").values, (Lines{"TOP"}));
}

TEST_F(StoreContract, AddsNoEntryTwiceNorWithoutItsArguments) {
  EXPECT_NE(store.addEntry("cn=ssl,cn=configuration", "SSL", "A", "B"), 0);
  EXPECT_NE(store.addEntry(nullptr, "x", "A", "B"), 0);
  EXPECT_NE(store.addEntry(kMissing, nullptr, "A", "B"), 0);
  EXPECT_NE(store.addEntry(kMissing, "x", nullptr, "B"), 0);
  EXPECT_NE(store.addEntry(kMissing, "x", "A", nullptr), 0);
  EXPECT_NE(store.addEntry("not a DN", "x", "A", "B"), 0);
  EXPECT_EQ(values(store, kSsl, "OBJECTCLASS").values, (Lines{"zor-slapdSSL", "top"}));
  EXPECT_NE(value(store, kMissing, "cn").rc, 0);
}

TEST_F(StoreContract, RemovesAnEntryAndLeavesThoseBelow) {
  EXPECT_EQ(store.removeEntry("CN=SCHEMAS,CN=CONFIGURATION"), 0);
  EXPECT_NE(value(store, "CN=SCHEMAS,CN=CONFIGURATION", "cn").rc, 0);
  EXPECT_EQ(value(store, "CN=INNER,CN=SCHEMAS,CN=CONFIGURATION", "cn").value, "Inner");
  EXPECT_NE(store.removeEntry("CN=SCHEMAS,CN=CONFIGURATION"), 0);
}

TEST_F(StoreContract, WalksTheAttributesInOrder) {
  EXPECT_EQ(attributeNames(store, kSsl), (Lines{"objectclass", "cn", "zor-slapdPort", "zor-slapdSuffix"}));
}

TEST_F(StoreContract, AWalkOfAnEntryWithoutAttributesEndsAtOnce) {
  ASSERT_EQ(answers::remove(store, "CN=SCHEMAS,CN=CONFIGURATION", "cn", {"Schemas"}), 0);
  EXPECT_EQ(attributeNames(store, "CN=SCHEMAS,CN=CONFIGURATION"), Lines());
}

TEST_F(StoreContract, AMissingEntryGivesNoHandleAndNoHandleNoWalk) {
  auto* entry = reinterpret_cast<_CFGMessage*>(&store);
  EXPECT_NE(store.getFirstEntry(kMissing, &entry), 0);
  EXPECT_EQ(entry, nullptr);
  char* name = nullptr;
  _CFGMessage** cursor = &entry;
  EXPECT_NE(store.getFirstAttribute(nullptr, &name, &cursor), 0);
  EXPECT_EQ(name, nullptr);
  EXPECT_EQ(cursor, nullptr);
}

TEST_F(StoreContract, NullsMayBeReleased) {
  cfg_msgfree(nullptr);
  cfg_ber_free(nullptr);
  SUCCEED();
}

TEST_F(StoreContract, WritesDuringAWalkDoNotDisturbIt) {
  _CFGMessage* entry = nullptr;
  _CFGMessage** cursor = nullptr;
  char* name = nullptr;
  ASSERT_EQ(store.getFirstEntry(kSsl, &entry), 0);
  ASSERT_EQ(store.getFirstAttribute(entry, &name, &cursor), 0);
  Lines names;
  while (name != nullptr) {
    names.emplace_back(name);
    std::free(name);
    // Elsewhere in the same store, and in values of the same entry.
    EXPECT_EQ(store.addValue(kTop, "zor-slapdNew", std::to_string(names.size()).c_str()), 0);
    EXPECT_EQ(store.setValue(kSsl, "zor-slapdSuffix", "o=x"), 0);
    ASSERT_EQ(store.getNextAttribute(entry, &name, cursor), 0);
  }
  cfg_ber_free(cursor);
  cfg_msgfree(entry);
  EXPECT_EQ(names, (Lines{"objectclass", "cn", "zor-slapdPort", "zor-slapdSuffix"}));
}

TEST_F(StoreContract, NormalFormsAndComparisonAgree) {
  const char* const dns[] = {"cn=DIRECTORY, cn=RDBM BACKENDS, cn=ZOR Halvorn, CN=SCHEMAS,CN=CONFIGURATION",
                             "CN=DIRECTORY,CN=RDBM BACKENDS,CN=ZOR HALVORN,CN=SCHEMAS,CN=CONFIGURATION",
                             "CN=DIRECTORY,CN=RDBM BACKENDS,CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION",
                             kTop,
                             "cn=configuration",
                             kSsl,
                             "not a DN"};
  for (const char* left : dns) {
    for (const char* right : dns) {
      const auto form = normalForm(left);
      EXPECT_EQ(compareDns(left, right) != 0, form && form == normalForm(right)) << left << " / " << right;
    }
  }
  EXPECT_NE(compareDns(dns[0], dns[1]), 0);
  EXPECT_EQ(compareDns(dns[1], dns[2]), 0);
  EXPECT_EQ(compareDns(nullptr, kTop), 0);
  EXPECT_EQ(compareDns(nullptr, nullptr), 0);
  EXPECT_EQ(normalForm(nullptr), std::nullopt);
  EXPECT_EQ(normalForm("cn=Front End , cn=Configuration"), "CN=FRONT END,CN=CONFIGURATION");
}

}  // namespace
