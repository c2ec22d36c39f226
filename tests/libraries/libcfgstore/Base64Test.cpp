#include "Base64.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <string>

namespace cfgstore {
namespace {

std::string encoded(std::string_view bytes) {
  std::string text;
  appendBase64(text, bytes);
  return text;
}

TEST(Base64, EncodesTheVectorsOfRfc4648) {
  EXPECT_EQ(encoded(""), "");
  EXPECT_EQ(encoded("f"), "Zg==");
  EXPECT_EQ(encoded("fo"), "Zm8=");
  EXPECT_EQ(encoded("foo"), "Zm9v");
  EXPECT_EQ(encoded("foob"), "Zm9vYg==");
  EXPECT_EQ(encoded("fooba"), "Zm9vYmE=");
  EXPECT_EQ(encoded("foobar"), "Zm9vYmFy");
}

TEST(Base64, RefusesWhatIsNoBase64) {
  for (const char* bad :
       {"Z", "Zg", "Zg=", "Zm9vYg=", "Zm9=Yg==", "====", "Zg===", "Z===", "Zm 9v", "Zm9\tv", "Zm-_", "=Zm9", " Zm9v"}) {
    std::string text = bad;
    EXPECT_FALSE(decodeBase64InPlace(text, 0)) << bad;
  }
}

TEST(Base64, IgnoresBlanksAtTheEnd) {
  std::string text = "Zm9v  ";
  ASSERT_TRUE(decodeBase64InPlace(text, 0));
  EXPECT_EQ(text, "foo");
}

TEST(Base64, LeavesWhatStandsBeforeTheBeginning) {
  std::string text = "x: Zm9v";
  ASSERT_TRUE(decodeBase64InPlace(text, 3));
  EXPECT_EQ(text, "x: foo");
}

RC_GTEST_PROP(Base64, DecodesWhatItEncoded, (const std::string& bytes)) {
  std::string text = encoded(bytes);
  RC_ASSERT(text.size() == (bytes.size() + 2) / 3 * 4);
  RC_ASSERT(decodeBase64InPlace(text, 0));
  RC_ASSERT(text == bytes);
}

}  // namespace
}  // namespace cfgstore
