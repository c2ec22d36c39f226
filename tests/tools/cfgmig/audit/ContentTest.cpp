// ContentTest.cpp -- the audit's model of a configuration behaves as a directory does.

#include "audit/Content.h"

#include <gmock/gmock.h>

#include <memory>

#include "ConfigStore.h"
#include "Workspace.h"

namespace {

using namespace tool::auditing;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr char kText[] =
    "dn: cn=A\n"
    "cn: A\n"
    "zor-list: 1\n"
    "ZOR-List: 2\n"
    "zor-list: 1\n"
    "\n"
    "dn: cn=B\n"
    "\n";

class ContentTest : public testing::Test {
 protected:
  ContentTest()
      : store(std::make_unique<cfgstore::ConfigStore>(workspace.write("a.ldif", kText))),
        before(*store),
        content(before, names),
        list(names.of("ZOR-LIST")) {}

  std::vector<std::string> values(Id entry, NameId name) const {
    std::vector<std::string> texts;
    const Id attribute = content.findAttribute(entry, name);
    if (attribute == kNone) return texts;
    for (Id id = content.attribute(attribute).first; id != kNone; id = content.value(id).next) {
      texts.emplace_back(content.value(id).text);
    }
    EXPECT_EQ(content.attribute(attribute).values, texts.size());
    return texts;
  }

  const Workspace workspace;
  std::unique_ptr<cfgstore::ConfigStore> store;
  cfgstore::Snapshot before;
  Names names;
  Content content;
  const NameId list;
};

TEST_F(ContentTest, HoldsAtFirstWhatWasThereBeforeRepeatedLinesIncluded) {
  EXPECT_EQ(content.findEntry("CN=A"), 0U);
  EXPECT_EQ(content.findEntry("CN=B"), 1U);
  EXPECT_EQ(content.findEntry("CN=C"), kNone);
  EXPECT_THAT(values(0, list), ElementsAre("1", "2", "1"));
  EXPECT_THAT(values(1, list), IsEmpty());
}

TEST_F(ContentTest, AddsAValueThatIsNotHeldBehindTheOthers) {
  const Id three = content.addValue(0, list, "3", {Source::carried, 7});
  EXPECT_THAT(values(0, list), ElementsAre("1", "2", "1", "3"));
  EXPECT_EQ(content.value(three).from.id, 7U);
  EXPECT_EQ(content.addValue(0, list, "3", {Source::moved, 8}), three);
  EXPECT_EQ(content.addValue(0, list, "2", {Source::moved, 8}), 2U);
  EXPECT_THAT(values(0, list), ElementsAre("1", "2", "1", "3"));
}

TEST_F(ContentTest, SettingAValueReplacesAllOthers) {
  const Id set = content.setValue(0, list, "9", {Source::moved, 1});
  EXPECT_THAT(values(0, list), ElementsAre("9"));
  for (Id id = 1; id <= 3; ++id) {
    EXPECT_TRUE(content.value(id).gone);
    EXPECT_EQ(content.value(id).by, set);
  }
}

TEST_F(ContentTest, SettingAValueThatIsHeldKeepsTheFirstLineThatHoldsIt) {
  EXPECT_EQ(content.setValue(0, list, "1", {Source::moved, 1}), 1U);
  EXPECT_THAT(values(0, list), ElementsAre("1"));
  EXPECT_TRUE(content.value(2).gone);
  EXPECT_TRUE(content.value(3).gone);
  EXPECT_EQ(content.value(3).by, 1U);
}

TEST_F(ContentTest, SettingWhatIsTheOnlyValueAlreadyChangesNothing) {
  content.setValue(0, list, "9", {Source::moved, 1});
  const Id held = content.setValue(0, list, "9", {Source::moved, 2});
  EXPECT_EQ(content.value(held).from.id, 1U);
  EXPECT_EQ(content.setValue(0, names.of("cn"), "A", {Source::moved, 2}), 0U);
}

TEST_F(ContentTest, WhatWasThereBeforeAndComesBackIsTheNewServersOwnAgain) {
  content.setValue(0, list, "9", {Source::moved, 1});
  EXPECT_EQ(content.setValue(0, list, "1", {Source::carried, 2}), 1U);
  EXPECT_THAT(values(0, list), ElementsAre("1"));
  EXPECT_FALSE(content.value(1).gone);
  EXPECT_TRUE(content.value(3).gone);
  EXPECT_EQ(content.value(1).from.source, Source::before);
}

TEST_F(ContentTest, AddsEntriesAndAttributes) {
  const Id entry = content.addEntry("CN=C");
  EXPECT_EQ(content.findEntry("CN=C"), entry);
  content.setValue(entry, list, "1", {});
  content.addValue(entry, names.of("other"), "2", {});
  EXPECT_THAT(values(entry, list), ElementsAre("1"));
  EXPECT_THAT(values(entry, names.of("OTHER")), ElementsAre("2"));
}

TEST_F(ContentTest, RewritesValuesToTextsThatItHoldsOnce) {
  content.rewriteValues(0, list, {{1, "new", {}}, {3, "new", {}}, {2, "2 too", {}}});
  EXPECT_THAT(values(0, list), ElementsAre("new", "2 too"));
  EXPECT_TRUE(content.value(1).cleaned);
  EXPECT_EQ(content.value(1).by, content.value(3).by);
}

TEST_F(ContentTest, FindsAmongManyAsAmongFew) {
  std::vector<std::string> texts;
  for (int i = 0; i < 100; ++i) texts.push_back("v" + std::to_string(i));
  for (const std::string& text : texts) {
    content.addValue(1, list, text, {});
    content.addValue(1, names.of(text), text, {});
  }
  for (const std::string& text : texts) {
    content.addValue(1, list, text, {});
    EXPECT_EQ(content.value(content.findValue(content.findAttribute(1, list), text)).text, text);
    EXPECT_THAT(values(1, names.of(text)), ElementsAre(text));
  }
  EXPECT_EQ(values(1, list).size(), 100U);
  EXPECT_EQ(content.findValue(content.findAttribute(1, list), "w"), kNone);
  content.setValue(1, list, "v50", {});
  EXPECT_THAT(values(1, list), ElementsAre("v50"));
  content.addValue(1, list, "v50", {});
  content.addValue(1, list, "v51", {});
  EXPECT_THAT(values(1, list), ElementsAre("v50", "v51"));
}

}  // namespace
