// Time stays in proportion to the input, whatever its shape. Each of these takes well under a second where it is so,
// and minutes where one step looks at everything again.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ctime>

#include "TestStore.h"

namespace cfgstore {
namespace {

using test::Strings;
using test::TestStore;

constexpr int kMany = 100000;

// Of processor time, so that a busy machine does not matter. Far above what it takes with sanitizers, and far below
// what a quadratic step would take.
constexpr double kMostSeconds = 30;

double secondsUsed() {
  timespec now{};
  ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9;
}

class LargeInput : public testing::Test {
 protected:
  ~LargeInput() override { EXPECT_LT(secondsUsed() - m_start, kMostSeconds); }

 private:
  double m_start = secondsUsed();
};

TEST_F(LargeInput, HasManyValuesInOneAttribute) {
  std::string text = "dn: CN=A\n";
  for (int i = 0; i < kMany; ++i) text += "a: " + std::to_string(i) + "\n";
  TestStore store(text + "b: 1\n");
  EXPECT_EQ(store.values("CN=A", "a").values.size(), static_cast<std::size_t>(kMany));
  for (int i = 0; i < kMany; ++i) {
    ASSERT_EQ(store.addValue("CN=A", "a", std::to_string(i).c_str()), 0);
    ASSERT_EQ(store.addValue("CN=A", "a", std::to_string(i + kMany).c_str()), 0);
  }
  for (int i = 0; i < kMany; ++i) ASSERT_EQ(store.delValue("CN=A", "a", {std::to_string(i)}), 0);
  EXPECT_EQ(store.values("CN=A", "a").values.size(), static_cast<std::size_t>(kMany));
}

TEST_F(LargeInput, HasManyCopiesOfOneValue) {
  std::string text = "dn: CN=A\n";
  for (int i = 0; i < kMany; ++i) text += "a: x\n";
  TestStore store(text);
  EXPECT_EQ(store.values("CN=A", "a").values, Strings{"x"});
  EXPECT_EQ(store.addValue("CN=A", "a", "y"), 0);
  EXPECT_EQ(store.delValue("CN=A", "a", {"x"}), 0);
  EXPECT_EQ(store.text(), "dn: CN=A\na: y\n");
}

TEST_F(LargeInput, HasManyAttributesInOneEntry) {
  std::string text = "dn: CN=A\n";
  for (int i = 0; i < kMany; ++i) text += "a" + std::to_string(i) + ": 1\n";
  TestStore store(text);
  const Strings names = store.attributes("CN=A");
  ASSERT_EQ(names.size(), static_cast<std::size_t>(kMany));
  for (const std::string& name : names) ASSERT_EQ(store.values("CN=A", name.c_str()).values, Strings{"1"});
  for (const std::string& name : names) ASSERT_EQ(store.setValue("CN=A", name.c_str(), "2"), 0);
  for (const std::string& name : names) ASSERT_EQ(store.delValue("CN=A", name.c_str(), {"2"}), 0);
  EXPECT_EQ(store.text(), "dn: CN=A\n");
}

TEST_F(LargeInput, AlternatesBetweenLargeEntries) {
  std::string text = "dn: CN=A\n";
  for (int i = 0; i < kMany; ++i) text += "a: " + std::to_string(i) + "\n";
  TestStore store(text + "\ndn: CN=B\n" + text.substr(text.find('\n') + 1));
  for (int i = 0; i < 1000; ++i) {
    ASSERT_EQ(store.value("CN=A", "a").value, "0");
    ASSERT_EQ(store.value("CN=B", "a").value, "0");
  }
}

TEST_F(LargeInput, AddsManyEntriesBelowOneParent) {
  std::string text = "dn: CN=P\n\n";
  for (int i = 0; i < kMany; ++i) text += "dn: CN=" + std::to_string(i) + ",CN=P\n\n";
  TestStore store(text + "dn: CN=Q\n");
  for (int i = 0; i < kMany; ++i) {
    ASSERT_EQ(store.addEntry(("CN=N" + std::to_string(i) + ",CN=P").c_str(), "x", "y", "z"), 0);
  }
  EXPECT_EQ(store.subordinates("CN=P", 1).values.size(), static_cast<std::size_t>(2 * kMany));
}

TEST_F(LargeInput, AddsManyEntriesWithoutAParent) {
  std::string text;
  for (int i = 0; i < kMany; ++i) text += "dn: CN=" + std::to_string(i) + ",CN=P\n\n";
  TestStore store(text);
  for (int i = 0; i < kMany; ++i) {
    ASSERT_EQ(store.addEntry(("CN=N" + std::to_string(i) + ",CN=P").c_str(), "x", "y", "z"), 0);
  }
  for (int i = 0; i < kMany; ++i) {
    ASSERT_EQ(store.addEntry(("CN=N,CN=P" + std::to_string(i)).c_str(), "x", "y", "z"), 0);
  }
  EXPECT_EQ(store.subordinates("", 2).values.size(), static_cast<std::size_t>(3 * kMany));
}

TEST_F(LargeInput, RemovesManyEntriesInEitherDirection) {
  std::string text = "dn: CN=P\n";
  for (int i = 0; i < kMany; ++i) text += "\ndn: CN=" + std::to_string(i) + ",CN=P\n";
  for (const bool forward : {true, false}) {
    TestStore store(text);
    for (int i = 0; i < kMany; ++i) {
      const int number = forward ? i : kMany - 1 - i;
      ASSERT_EQ(store.removeEntry(("CN=" + std::to_string(number) + ",CN=P").c_str()), 0);
    }
    EXPECT_EQ(store.text(), "dn: CN=P\n");
    EXPECT_EQ(store.addEntry("CN=N,CN=P", "N", "x", "x"), 0);
    EXPECT_EQ(store.text(), "dn: CN=P\n\ndn: CN=N,CN=P\nobjectClass: x\ncn: N\n");
  }
}

TEST_F(LargeInput, FoldsALongValueAfterEachByte) {
  const std::string value(3 << 20, 'x');
  std::string text = "dn: CN=A\na: ";
  for (const char c : value) text += std::string(1, c) + "\n ";
  text += "\n";
  TestStore store(text);
  EXPECT_EQ(store.value("CN=A", "a").value, value);
  EXPECT_EQ(store.text(), text);
}

TEST_F(LargeInput, HasALongLineAndALongName) {
  const std::string value(10 << 20, 'x');
  const std::string name(60000, 'n');
  TestStore store("dn: CN=A\na: " + value + "\n" + name + ": 1\n");
  EXPECT_EQ(store.value("CN=A", "a").value, value);
  EXPECT_EQ(store.value("CN=A", name.c_str()).value, "1");
  ASSERT_EQ(store.setValue("CN=A", "b", value.c_str()), 0);
  EXPECT_EQ(TestStore(store.text()).value("CN=A", "b").value, value);
}

TEST_F(LargeInput, HasALongDn) {
  const std::string dn = "CN=" + std::string(1 << 20, 'X');
  TestStore store("dn: " + dn + "\na: 1\n");
  EXPECT_EQ(store.value(dn.c_str(), "a").value, "1");
  EXPECT_EQ(store.addEntry(("CN=N," + dn).c_str(), "N", "x", "y"), 0);
  EXPECT_EQ(store.subordinates(dn.c_str(), 1).values.size(), 1U);
}

TEST_F(LargeInput, HasADeepDn) {
  std::string dn = "CN=A";
  for (int i = 0; i < kMany; ++i) dn += ",CN=A";
  TestStore store("dn: " + dn + "\na: 1\n");
  EXPECT_EQ(store.value(dn.c_str(), "a").value, "1");
  EXPECT_EQ(store.addEntry(("CN=N,CN=M," + dn).c_str(), "N", "x", "y"), 0);
  EXPECT_EQ(store.addEntry(("CN=N,CN=B," + dn.substr(5)).c_str(), "N", "x", "y"), 0);
}

TEST_F(LargeInput, HasManyEmptyLinesAndComments) {
  const std::string empty(1 << 20, '\n');
  std::string comments;
  for (int i = 0; i < kMany; ++i) comments += "#\n";
  const std::string text = empty + comments + empty + "dn: CN=A\n" + comments + "a: 1\n" + empty;
  TestStore store(text);
  for (int i = 0; i < 1000; ++i) {
    ASSERT_EQ(store.delValue("CN=A", "a", {"1"}), 0);
    ASSERT_EQ(store.addValue("CN=A", "a", "1"), 0);
  }
  ASSERT_EQ(store.removeEntry("CN=A"), 0);
  EXPECT_EQ(store.text(), empty + comments + empty);
}

TEST_F(LargeInput, HasNothingButMistakes) {
  std::string text;
  for (int i = 0; i < kMany; ++i) text += "bad\n";
  EXPECT_EQ(test::problemsOf(text).size(), 101U);
  text.clear();
  for (int i = 0; i < kMany; ++i) text += "dn: CN=A\n\n";
  EXPECT_EQ(test::problemsOf(text).size(), 101U);
}

}  // namespace
}  // namespace cfgstore
