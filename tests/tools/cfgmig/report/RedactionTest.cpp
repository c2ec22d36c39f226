#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Base64.h"
#include "SampleReport.h"
#include "report/KnownSecrets.h"

namespace {

using testing::HasSubstr;
using testing::Not;
using tool::Content;
using tool::Format;
using tool::ShownValue;

constexpr Format kFormats[] = {Format::text, Format::json, Format::ldif, Format::html};

// The planted word as it is, and as it looks in base64 at each of the three alignments.
std::vector<std::string> traces() {
  std::vector<std::string> all{kPlanted};
  for (std::size_t skipped = 0; skipped < 3; ++skipped) {
    const std::string word(kPlanted + skipped);
    std::string encoded;
    cfgstore::appendBase64(encoded, word.substr(0, word.size() / 3 * 3));
    all.push_back(encoded.substr(0, 8));
  }
  return all;
}

bool holdsPlanted(const std::string& text) {
  for (const std::string& trace : traces()) {
    if (text.find(trace) != std::string::npos) return true;
  }
  return false;
}

TEST(Redaction, LetsNoSecretIntoAnyReport) {
  const auto sample = richLedger();
  const tool::Report report = reportOf(sample->ledger());
  for (const Format format : kFormats) {
    EXPECT_FALSE(holdsPlanted(written(report, format))) << "format " << static_cast<int>(format);
  }
}

TEST(Redaction, ShowsAllOfThemWhenAsked) {
  const auto sample = richLedger();
  const tool::Report report = reportOf(sample->ledger(), true);
  for (const Format format : kFormats) {
    EXPECT_TRUE(holdsPlanted(written(report, format))) << "format " << static_cast<int>(format);
    EXPECT_THAT(written(report, format), Not(HasSubstr(std::string(tool::kRedacted))));
  }
}

TEST(Redaction, TreatsBeforeAndAfterAlike) {
  // The new setting's name tells nothing, nor does the value; that it came from a password does.
  SampleLedger sample("dn: cn=Configuration\ncn: Configuration\nzor-oldPW: abc\n",
                      "dn: cn=Configuration\ncn: Configuration\nzor-new: xyz\n",
                      "dn: cn=Configuration\ncn: Configuration\nzor-new: abc\n");
  const tool::Redaction redaction(sample.ledger(), false);
  EXPECT_TRUE(redaction.isSecret(Content::old, sample.value(Content::old, "cn=Configuration", "zor-oldPW", "abc")));
  EXPECT_TRUE(redaction.isSecret(Content::result, sample.value(Content::result, "cn=Configuration", "zor-new", "abc")));
  EXPECT_TRUE(redaction.isSecret(Content::before, sample.value(Content::before, "cn=Configuration", "zor-new", "xyz")));
  EXPECT_FALSE(redaction.isSecret(Content::old, sample.value(Content::old, "cn=Configuration", "cn", "Configuration")));
}

TEST(Redaction, KnowsASecretWhereItIsRepeated) {
  SampleLedger sample(
      "dn: cn=Configuration\ncn: Configuration\nzor-aPW: abcdef\nzor-bPW: abcdefgh\nzor-cPW: abc\n"
      "zor-1: abcdef\nzor-2: in abcdef in\nzor-3: in abcdefgh in\nzor-4: abc\n",
      "dn: cn=Configuration\ncn: Configuration\n", "dn: cn=Configuration\ncn: Configuration\n");
  const tool::Redaction redaction(sample.ledger(), false);
  const auto isSecret = [&](const char* attribute, const char* value) {
    return redaction.isSecret(Content::old, sample.value(Content::old, "cn=Configuration", attribute, value));
  };
  EXPECT_TRUE(isSecret("zor-1", "abcdef"));
  EXPECT_FALSE(isSecret("zor-2", "in abcdef in")) << "too short to be looked for inside of values";
  EXPECT_TRUE(isSecret("zor-3", "in abcdefgh in"));
  EXPECT_FALSE(isSecret("zor-4", "abc")) << "an ordinary word";
}

TEST(Redaction, TakesSecretsOutOfMessages) {
  SampleLedger sample("dn: cn=Configuration\ncn: Configuration\nzor-aPW: abcdef\nzor-bPW: 53\nzor-cPW:: YWIHY2Q=\n",
                      "dn: cn=Configuration\ncn: Configuration\n", "dn: cn=Configuration\ncn: Configuration\n");
  const tool::Redaction redaction(sample.ledger(), false);
  EXPECT_EQ(redaction.words("value abcdef, again xabcdefx."), "value [redacted], again x[redacted]x.");
  EXPECT_EQ(redaction.words("rc=53 line 538 a53"), "rc=[redacted] line 538 a53") << "a short one only as a word";
  EXPECT_EQ(redaction.words("ab\acd and ab\\x07cd"), "[redacted] and [redacted]") << "also as messages print it";
  EXPECT_EQ(redaction.words(""), "");
  EXPECT_EQ(tool::Redaction(sample.ledger(), true).words("abcdef"), "abcdef");
}

TEST(Redaction, GivesEachValueInItsForm) {
  const auto sample = richLedger();
  const tool::Redaction redaction(sample->ledger(), false);
  EXPECT_EQ(redaction.shown("zor-x", "\xc3\xbc").form, ShownValue::Form::text);
  EXPECT_EQ(redaction.shown("zor-x", "\xc3").form, ShownValue::Form::base64);
  EXPECT_EQ(redaction.shown("zor-x", "\xc3").text, "ww==");
  EXPECT_TRUE(redaction.shown("zor-xPW", "").isRedacted());
  EXPECT_EQ(lineOf(redaction.shown("zor-x", "a\nb\x1b")), "a\\nb\\x1b");
  EXPECT_EQ(lineOf(redaction.shown("zor-x", "\xff")), "base64:/w==");
  EXPECT_EQ(lineOf(redaction.shown("zor-xPW", "a")), "[redacted]");
}

TEST(KnownSecrets, FindTheLongestOneThatStandsThere) {
  tool::KnownSecrets secrets;
  for (const char* secret : {"abcd", "abcdefgh", "abce", "q", "", "zzzzzzzz"}) secrets.add(secret);
  secrets.finish();
  EXPECT_EQ(secrets.replacedIn("abcdefgh abcdef abcx abce q qq zzzzzzz", "*"), "* *ef abcx * * qq zzzzzzz");
}

TEST(KnownSecrets, AreNoneToBeginWith) {
  tool::KnownSecrets secrets;
  secrets.finish();
  EXPECT_EQ(secrets.replacedIn("text", "*"), "text");
  EXPECT_FALSE(secrets.isRepeatedIn("text and more text"));
}

TEST(KnownSecrets, AgreeWithAPlainSearch) {
  // All words over two letters, looked for in longer ones.
  tool::KnownSecrets secrets;
  const std::vector<std::string> known{"abab", "abba", "aabbaa", "bbbbbbbb", "abababab", "baabaabaa"};
  for (const std::string& secret : known) secrets.add(secret);
  secrets.finish();
  for (unsigned bits = 0; bits < (1U << 12U); ++bits) {
    std::string text;
    for (unsigned i = 0; i < 12; ++i) text += (bits >> i & 1U) != 0 ? 'a' : 'b';
    bool expected = false;
    for (const std::string& secret : known) {
      expected = expected || (secret.size() >= 8 && text.find(secret) != std::string::npos);
    }
    ASSERT_EQ(secrets.isRepeatedIn(text), expected) << text;
    std::string replaced;
    for (std::size_t at = 0; at < text.size();) {
      std::size_t longest = 0;
      for (const std::string& secret : known) {
        if (text.compare(at, secret.size(), secret) == 0) longest = std::max(longest, secret.size());
      }
      replaced += longest > 0 ? "*" : text.substr(at, 1);
      at += std::max<std::size_t>(longest, 1);
    }
    ASSERT_EQ(secrets.replacedIn(text, "*"), replaced) << text;
  }
}

}  // namespace
