// Tests of finding values in a snapshot.

#include "ledger/ValueFinder.h"

#include <gmock/gmock.h>

#include "ConfigStore.h"
#include "Workspace.h"

namespace {

using tool::kNoValue;
using tool::ValueFinder;

class ValueFinderOf : public testing::Test {
 protected:
  void read(const std::string& text) {
    m_store = std::make_unique<cfgstore::ConfigStore>(m_workspace.write("a.ldif", text));
    snapshot = cfgstore::Snapshot(*m_store);
  }

  cfgstore::Snapshot snapshot;

 private:
  Workspace m_workspace;
  std::unique_ptr<cfgstore::ConfigStore> m_store;
};

TEST_F(ValueFinderOf, FindsTheSameInAnyOrder) {
  std::string text;
  for (int entry = 0; entry < 3; ++entry) {
    text += "dn: CN=E" + std::to_string(entry) + "\ncn: E\n";
    for (int i = 0; i < 40; ++i) text += "zor-many: value " + std::to_string(i * 7 % 40) + "\n";
    for (int i = 0; i < 40; ++i) text += "zor-a" + std::to_string(i) + ": " + std::to_string(entry) + "\n";
    text += "\n";
  }
  read(text);
  const auto values = snapshot.values();
  for (const std::size_t step : {1U, 5U, 119U, 200U}) {
    ValueFinder finder(snapshot);
    for (std::size_t i = 0, at = 0; i < values.size(); ++i, at = (at + step) % values.size()) {
      const auto& attribute = snapshot.attributeOf(values[at]);
      ASSERT_EQ(finder.value(attribute.entry, attribute.name, values[at].value), at) << "step " << step;
    }
  }
}

TEST_F(ValueFinderOf, TakesNamesInAnyLetterCaseAndValuesToTheLetter) {
  read("dn: CN=A\nzor-Port: One\n");
  ValueFinder finder(snapshot);
  EXPECT_EQ(finder.value(0, "ZOR-PORT", "One"), 0U);
  EXPECT_EQ(finder.value(0, "zor-port", "ONE"), kNoValue);
  EXPECT_EQ(finder.value(0, "zor-ports", "One"), kNoValue);
}

TEST_F(ValueFinderOf, GivesTheFirstOfEqualValues) {
  read("dn: CN=A\nzor-a: 1\nzor-a: 1\nzor-b: 2\n");
  ValueFinder finder(snapshot);
  EXPECT_EQ(finder.value(0, "zor-a", "1"), 0U);
  EXPECT_EQ(finder.value(0, "zor-a", "1"), 0U) << "also when it was found last";
}

TEST_F(ValueFinderOf, FindsNothingInNothing) {
  read("dn: CN=A\nzor-a: 1\n");
  ValueFinder finder(snapshot);
  EXPECT_EQ(finder.value(ValueFinder::kNone, "zor-a", "1"), kNoValue);
  EXPECT_EQ(finder.value(ValueFinder::kNone, "1"), kNoValue);
  EXPECT_EQ(finder.attribute(ValueFinder::kNone, "zor-a"), ValueFinder::kNone);
}

}  // namespace
