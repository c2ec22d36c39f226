// A file in which nothing changed is written back byte for byte.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <random>

#include "Corpus.h"
#include "LdifGenerator.h"
#include "TestStore.h"

namespace cfgstore {
namespace {

using test::TestStore;
using testing::ElementsAre;

TEST(RoundTrip, KeepsEachSampleByteForByte) {
  for (const test::Sample& sample : test::corpus()) {
    TestStore store(sample.text);
    EXPECT_EQ(store.text(), sample.text) << sample.name;
    EXPECT_FALSE(store.store().changed()) << sample.name;
  }
}

TEST(RoundTrip, FindsTheValuesOfEachSample) {
  for (const test::Sample& sample : test::corpus()) {
    TestStore store(sample.text);
    EXPECT_THAT(store.values("CN=A,CN=CONFIGURATION", "port").values, ElementsAre("389")) << sample.name;
    EXPECT_THAT(store.values("CN=B,CN=CONFIGURATION", "plugin").values, ElementsAre("one", "two")) << sample.name;
  }
}

TEST(RoundTrip, KeepsEachSampleAfterEveryKindOfRead) {
  for (const test::Sample& sample : test::corpus()) {
    TestStore store(sample.text);
    for (const std::string& dn : store.subordinates("CN=CONFIGURATION", 2).values) {
      for (const std::string& name : store.attributes(dn.c_str())) {
        EXPECT_EQ(store.values(dn.c_str(), name.c_str()).rc, 0) << sample.name;
        EXPECT_EQ(store.value(dn.c_str(), name.c_str()).rc, 0) << sample.name;
      }
    }
    EXPECT_EQ(store.text(), sample.text) << sample.name;
  }
}

// Bytes of the samples are changed, removed and inserted. What comes of it is refused with a line, or kept as it is.
TEST(RoundTrip, KeepsWhateverIsAccepted) {
  std::mt19937 random(20240501);
  const std::string bytes("\n\r :#=<,ad\xC3\xFF\0", 13);
  int accepted = 0;
  for (const test::Sample& sample : test::corpus()) {
    for (int round = 0; round < 100; ++round) {
      std::string text = sample.text;
      for (int change = 0; change < 1 + round % 3; ++change) {
        const std::size_t at = random() % text.size();
        const char byte = bytes[random() % bytes.size()];
        if (random() % 3 == 0) text.erase(at, random() % 4);
        if (random() % 3 == 0) text.insert(at, 1, byte);
        if (random() % 3 == 0 && at < text.size()) text[at] = byte;
      }
      try {
        TestStore store(text);
        EXPECT_EQ(store.text(), text);
        ++accepted;
      } catch (const OpenError& error) {
        EXPECT_FALSE(error.problems().empty());
      }
    }
  }
  EXPECT_GT(accepted, 100);
}

RC_GTEST_PROP(RoundTrip, KeepsGeneratedFilesByteForByte, ()) {
  const test::GeneratedLdif file = *test::genLdif();
  TestStore store(file.text);
  RC_ASSERT(store.text() == file.text);
  RC_ASSERT(!store.store().changed());
}

RC_GTEST_PROP(RoundTrip, FindsWhatWasGenerated, ()) {
  const test::GeneratedLdif file = *test::genLdif();
  TestStore store(file.text);
  RC_ASSERT(store.subordinates("", 2).values.size() == file.content.size());
  for (const auto& [dn, attributes] : file.content) {
    RC_ASSERT(store.attributes(dn.c_str()).size() == attributes.size());
    for (const auto& [name, values] : attributes) {
      RC_ASSERT(store.values(dn.c_str(), name.c_str()).values == values);
    }
  }
}

}  // namespace
}  // namespace cfgstore
