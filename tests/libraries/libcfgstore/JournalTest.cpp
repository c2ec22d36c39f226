// An observer is told of every write that the store was asked for.

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

const char* nameOf(Operation operation) {
  switch (operation) {
    case Operation::addValue:
      return "addValue";
    case Operation::delValue:
      return "delValue";
    case Operation::setValue:
      return "setValue";
    case Operation::addEntry:
      return "addEntry";
    case Operation::removeEntry:
      return "removeEntry";
  }
  return "?";
}

class Journal : public testing::Test {
 protected:
  Journal() {
    m_store.store().observe([this](const Write& write) {
      std::string text = nameOf(write.operation);
      text += "(" + std::string(write.dn) + "|" + std::string(write.attribute);
      for (const std::string_view value : write.values) text += "|" + std::string(value);
      m_writes.push_back(text + ")=" + std::to_string(write.rc));
    });
  }

  TestStore m_store{"dn: CN=A\na: 1\nb: 1\nb: 2\n"};
  Strings m_writes;
};

TEST_F(Journal, TellsOperationArgumentsAndResult) {
  m_store.addValue("cn=a", "A", "2");
  m_store.delValue("CN=A", "b", {"1", "2"});
  m_store.setValue("CN=A", "a", "3");
  m_store.addEntry("CN=B", "B", "x", "y");
  m_store.removeEntry("CN=B");
  EXPECT_THAT(m_writes, ElementsAre("addValue(cn=a|A|2)=0", "delValue(CN=A|b|1|2)=0", "setValue(CN=A|a|3)=0",
                                    "addEntry(CN=B||B|x|y)=0", "removeEntry(CN=B|)=0"));
}

TEST_F(Journal, TellsOfWritesThatFailed) {
  m_store.addValue("CN=NONE", "a", "1");
  m_store.addValue("CN=A", "a", nullptr);
  m_store.addValue(nullptr, nullptr, nullptr);
  m_store.delValue("CN=A", "b", {"1", "3"});
  m_store.utils().delValue("CN=A", "b", nullptr);
  m_store.setValue("nonsense", "a", "1");
  m_store.addEntry("CN=A", "A", "x", "y");
  m_store.addEntry("CN=B", nullptr, "x", nullptr);
  m_store.removeEntry("CN=NONE");
  m_store.removeEntry(nullptr);
  EXPECT_THAT(m_writes, ElementsAre("addValue(CN=NONE|a|1)=32", "addValue(CN=A|a)=89", "addValue(|)=89",
                                    "delValue(CN=A|b|1|3)=16", "delValue(CN=A|b)=89", "setValue(nonsense|a|1)=34",
                                    "addEntry(CN=A||A|x|y)=68", "addEntry(CN=B||x)=89", "removeEntry(CN=NONE|)=32",
                                    "removeEntry(|)=89"));
}

TEST_F(Journal, TellsOfWritesThatChangedNothing) {
  m_store.addValue("CN=A", "a", "1");
  m_store.delValue("CN=A", "a", {});
  m_store.setValue("CN=A", "a", "1");
  EXPECT_THAT(m_writes, ElementsAre("addValue(CN=A|a|1)=0", "delValue(CN=A|a)=0", "setValue(CN=A|a|1)=0"));
}

TEST_F(Journal, SaysNothingOfReads) {
  m_store.values("CN=A", "a");
  m_store.value("CN=A", "a");
  m_store.subordinates("CN=A", 2);
  m_store.attributes("CN=A");
  EXPECT_THAT(m_writes, IsEmpty());
}

TEST_F(Journal, EndsWithAnEmptyObserver) {
  m_store.store().observe({});
  EXPECT_EQ(m_store.addValue("CN=A", "a", "2"), 0);
  EXPECT_THAT(m_writes, IsEmpty());
}

}  // namespace
}  // namespace cfgstore
