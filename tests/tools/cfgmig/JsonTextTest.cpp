// Tests of text from a configuration as JSON.

#include "JsonText.h"

#include <gmock/gmock.h>

#include <random>
#include <string>

#include "Base64.h"

namespace {

using Json = nlohmann::ordered_json;

std::string lineOf(const std::string& text) {
  std::string json = "before ";
  tool::appendJsonText(json, text);
  return json;
}

TEST(JsonText, IsAStringWhereItIsUtf8) {
  EXPECT_EQ(lineOf(""), "before \"\"");
  EXPECT_EQ(lineOf("a \"b\" \\ \n\x1b"), R"(before "a \"b\" \\ \n\u001b")");
  EXPECT_EQ(lineOf("\xC3\xBC\xF0\x9F\x98\x80"), R"(before "\u00fc\ud83d\ude00")");
}

TEST(JsonText, IsAnObjectWhereItIsNot) {
  EXPECT_EQ(lineOf("\xFF\xFE"), R"(before {"base64":"//4="})");
  EXPECT_EQ(lineOf("a\xC3"), R"(before {"base64":"YcM="})");
  EXPECT_EQ(lineOf("\xED\xA0\x80"), R"(before {"base64":"7aCA"})") << "half of a pair is no character";
}

// The serializer throws where it does not agree about what UTF-8 is.
TEST(JsonText, IsTextOfAnyBytesThatCanBeReadBack) {
  std::mt19937 random(1);
  constexpr unsigned char kBytes[] = {'a',  0x7f, 0x80, 0x8f, 0x90, 0x9f, 0xa0, 0xbf, 0xc0, 0xc1, 0xc2, 0xdf,
                                      0xe0, 0xe1, 0xec, 0xed, 0xee, 0xef, 0xf0, 0xf1, 0xf3, 0xf4, 0xf5, 0xff};
  for (int i = 0; i < 20000; ++i) {
    std::string bytes;
    for (auto left = random() % 6; left > 0; --left) bytes += static_cast<char>(kBytes[random() % sizeof kBytes]);
    const Json read = Json::parse(tool::jsonText(bytes).dump(-1, ' ', true));
    if (read.is_string()) {
      ASSERT_EQ(read.get<std::string>(), bytes);
    } else {
      std::string decoded = read["base64"].get<std::string>();
      ASSERT_TRUE(cfgstore::decodeBase64InPlace(decoded, 0));
      ASSERT_EQ(decoded, bytes);
    }
  }
}

}  // namespace
