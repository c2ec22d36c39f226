// Tests of the form in which text from elsewhere is shown.

#include "PrintableText.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <string>

namespace {

using ldtr::printable;

TEST(PrintableText, LeavesOrdinaryTextAlone) {
  EXPECT_EQ(printable(""), "");
  EXPECT_EQ(printable("CN=FRONT END,CN=CONFIGURATION"), "CN=FRONT END,CN=CONFIGURATION");
  EXPECT_EQ(printable("J\xc3\xb6rg \xe2\x82\xac \xf0\x9f\x98\x80"), "J\xc3\xb6rg \xe2\x82\xac \xf0\x9f\x98\x80");
}

TEST(PrintableText, WritesControlCharactersOut) {
  EXPECT_EQ(printable("a\nb\rc\td"), "a\\nb\\rc\\td");
  EXPECT_EQ(printable(std::string_view("\0\x1b[2J\x7f", 6)), "\\x00\\x1b[2J\\x7f");
  EXPECT_EQ(printable("\xc2\x9b"), "\\xc2\\x9b") << "a control character of two bytes";
}

TEST(PrintableText, DoublesABackslash) { EXPECT_EQ(printable("C:\\x1b\\n"), "C:\\\\x1b\\\\n"); }

TEST(PrintableText, WritesOutBytesThatAreNotUtf8) {
  EXPECT_EQ(printable("\xff"), "\\xff");
  EXPECT_EQ(printable("\xc3"), "\\xc3") << "cut off";
  EXPECT_EQ(printable("\xc3("), "\\xc3(");
  EXPECT_EQ(printable("\xc0\x80"), "\\xc0\\x80") << "overlong";
  EXPECT_EQ(printable("\xe0\x80\x80"), "\\xe0\\x80\\x80") << "overlong";
  EXPECT_EQ(printable("\xf0\x80\x80\x80"), "\\xf0\\x80\\x80\\x80") << "overlong";
  EXPECT_EQ(printable("\xed\xa0\x80"), "\\xed\\xa0\\x80") << "a surrogate";
  EXPECT_EQ(printable("\xf4\x90\x80\x80"), "\\xf4\\x90\\x80\\x80") << "beyond the last character";
}

TEST(PrintableText, WritesOutWhatTurnsTheDirectionOrBreaksTheLineUnseen) {
  EXPECT_EQ(printable("\xe2\x80\xae"), "\\xe2\\x80\\xae");
  EXPECT_EQ(printable("\xe2\x80\xa8"), "\\xe2\\x80\\xa8");
  EXPECT_EQ(printable("\xe2\x81\xa6"), "\\xe2\\x81\\xa6");
  EXPECT_EQ(printable("\xef\xbb\xbf"), "\\xef\\xbb\\xbf");
}

TEST(PrintableText, KeepsADnADn) {
  EXPECT_EQ(ldtr::printableDn("CN=A\\,B,CN=CONFIGURATION"), "CN=A\\,B,CN=CONFIGURATION");
  EXPECT_EQ(ldtr::printableDn("CN=A\nB\x1b\xff"), "CN=A\\0AB\\1B\\FF");
  EXPECT_EQ(ldtr::printableDn("CN=J\xc3\xb6RG"), "CN=J\xc3\xb6RG");
}

// Undoes printable.
std::string original(const std::string& shown) {
  std::string out;
  for (std::size_t i = 0; i < shown.size(); ++i) {
    if (shown[i] != '\\') {
      out += shown[i];
      continue;
    }
    switch (shown[++i]) {
      case 'n':
        out += '\n';
        break;
      case 'r':
        out += '\r';
        break;
      case 't':
        out += '\t';
        break;
      case 'x':
        out += static_cast<char>(std::stoi(shown.substr(i + 1, 2), nullptr, 16));
        i += 2;
        break;
      default:
        out += shown[i];
    }
  }
  return out;
}

RC_GTEST_PROP(PrintableText, LosesNothingAndShowsNoControlCharacter, (const std::string& text)) {
  const std::string shown = printable(text);
  RC_ASSERT(original(shown) == text);
  RC_ASSERT(std::none_of(shown.begin(), shown.end(), [](char c) {
    const auto byte = static_cast<unsigned char>(c);
    return byte < 0x20 || byte == 0x7f;
  }));
}

}  // namespace
