#include "report/html/HtmlText.h"

#include <gmock/gmock.h>

#include <sstream>

namespace {

using tool::html::Count;
using tool::html::Number;
using tool::html::Plain;

std::string text(std::string_view value) {
  std::ostringstream out;
  out << tool::html::Text{value};
  return out.str();
}

template <class T>
std::string written(T value) {
  std::ostringstream out;
  out << value;
  return out.str();
}

std::string marked(const std::string& escape) { return "<b class=\"esc\">" + escape + "</b>"; }

TEST(HtmlText, KeepsPlainTextAsItIs) {
  EXPECT_EQ(text("cn=Front End, cn=Configuration"), "cn=Front End, cn=Configuration");
  EXPECT_EQ(text(""), "");
}

TEST(HtmlText, WritesMarkupAsReferences) {
  EXPECT_EQ(text("<a href=\"x\" id='y'>&amp;"), "&#60;a href=&#34;x&#34; id=&#39;y&#39;&#62;&#38;amp;");
}

TEST(HtmlText, KeepsLettersOfOtherLanguages) {
  for (const std::string value : {"Jürgen Weiß, Köln", "日本語", "עברית", "👍", "a\xCC\x88"})
    EXPECT_EQ(text(value), value);
}

TEST(HtmlText, MarksControlCharacters) {
  EXPECT_EQ(text("a\nb\r\tc"), "a" + marked("\\n") + "b" + marked("\\r") + marked("\\t") + "c");
  EXPECT_EQ(text("\x1B[31m"), marked("\\u{001B}") + "[31m");
  EXPECT_EQ(text(std::string_view("\0", 1)), marked("\\u{0000}"));
  EXPECT_EQ(text("\x7F"), marked("\\u{007F}"));
  EXPECT_EQ(text("\xC2\x85"), marked("\\u{0085}"));
}

TEST(HtmlText, MarksWhatTurnsTheWritingDirectionOrCannotBeSeen) {
  EXPECT_EQ(text("\xE2\x80\xAE"), marked("\\u{202E}"));
  EXPECT_EQ(text("\xE2\x81\xA6"), marked("\\u{2066}"));
  EXPECT_EQ(text("\xD8\x9C"), marked("\\u{061C}"));
  EXPECT_EQ(text("\xE2\x80\x8B"), marked("\\u{200B}"));
  EXPECT_EQ(text("\xE2\x80\xA8"), marked("\\u{2028}"));
  EXPECT_EQ(text("\xEF\xBB\xBF"), marked("\\u{FEFF}"));
  EXPECT_EQ(text("\xC2\xAD"), marked("\\u{00AD}"));
  EXPECT_EQ(text("\xF3\xA0\x81\x81"), marked("\\u{E0041}"));
}

TEST(HtmlText, MarksBytesThatAreNotUtf8) {
  EXPECT_EQ(text("a\xFFz"), "a" + marked("\\x{FF}") + "z");
  EXPECT_EQ(text("\xC0\x80"), marked("\\x{C0}") + marked("\\x{80}"));  // overlong
  EXPECT_EQ(text("\xE0\x80\xBC"), marked("\\x{E0}") + marked("\\x{80}") + marked("\\x{BC}"));
  EXPECT_EQ(text("\xED\xA0\x80"), marked("\\x{ED}") + marked("\\x{A0}") + marked("\\x{80}"));  // a surrogate
  EXPECT_EQ(text("\xF5\x80\x80\x80"),
            marked("\\x{F5}") + marked("\\x{80}") + marked("\\x{80}") + marked("\\x{80}"));  // too large
  EXPECT_EQ(text("\xE2\x82"), marked("\\x{E2}") + marked("\\x{82}"));                        // cut off
  EXPECT_EQ(text("\xE2<"), marked("\\x{E2}") + "&#60;");  // a broken character takes nothing with it
}

TEST(HtmlText, MarksNothingInAttributesAndTitles) {
  EXPECT_EQ(written(Plain{"5.1\"\n\xE2\x80\xAE<"}), "5.1&#34;\\n\\u{202E}&#60;");
}

TEST(HtmlNumbers, GroupThousands) {
  EXPECT_EQ(written(Number{0}), "0");
  EXPECT_EQ(written(Number{999}), "999");
  EXPECT_EQ(written(Number{1000}), "1,000");
  EXPECT_EQ(written(Number{1234567}), "1,234,567");
}

TEST(HtmlNumbers, KnowOneFromSeveral) {
  EXPECT_EQ(written(Count{1, "value"}), "1 value");
  EXPECT_EQ(written(Count{0, "value"}), "0 values");
  EXPECT_EQ(written(Count{2, "entry", "entries"}), "2 entries");
}

}  // namespace
