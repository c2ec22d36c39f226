#include "report/html/Account.h"

#include <gmock/gmock.h>

#include <set>

#include "SampleReports.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using tool::Content;
using tool::kNoValue;
using tool::ValueFate;
using tool::ValueOrigin;
using namespace tool::html;

constexpr std::uint32_t kNone = cfgstore::Snapshot::kNone;

std::string_view valueOf(const tool::Ledger& ledger, Content content, tool::ValueId value) {
  return value == kNoValue ? "" : snapshotOf(ledger, content).values()[value].value;
}

// The rows of one attribute: "old | before | result".
std::vector<std::string> rowsOf(const Account& account, std::string_view normal, std::string_view attribute) {
  std::vector<std::string> texts;
  for (const Row& row : account.rowsOf(account.find(normal))) {
    if (row.attribute != attribute) continue;
    std::string text(valueOf(account.ledger(), Content::old, row.old));
    (text += " | ") += valueOf(account.ledger(), Content::before, row.before);
    (text += " | ") += valueOf(account.ledger(), Content::result, row.result);
    texts.push_back(text);
  }
  return texts;
}

void expectEachCountedOnce(const SampleLedger& sample) {
  const tool::Ledger& ledger = sample.ledger();
  ASSERT_THAT(sumErrors(ledger), IsEmpty());
  const Account account(ledger);
  std::array<std::size_t, kWords> counts{};
  std::set<tool::ValueId> old;
  std::set<tool::ValueId> result;
  std::set<std::uint32_t> replaced;
  for (std::uint32_t node = 0; node < account.nodes().size(); ++node) {
    for (const Row& row : account.rowsOf(node)) {
      for (std::size_t word = 0; word < kWords; ++word) counts[word] += (row.words >> word) & 1U;
      EXPECT_TRUE(row.old == kNoValue || old.insert(row.old).second);
      if (row.result != kNoValue) result.insert(row.result);
      EXPECT_TRUE(row.replaced == kNone || replaced.insert(row.replaced).second);
    }
  }
  EXPECT_EQ(old.size(), ledger.oldValues.size());
  EXPECT_EQ(result.size(), ledger.resultValues.size());
  EXPECT_EQ(replaced.size(), ledger.replaced.size());
  for (std::size_t i = 0; i < tool::kValueFates; ++i) EXPECT_EQ(counts[i], ledger.fates[i]) << i;
  for (std::size_t i = 0; i < tool::kValueOrigins; ++i)
    EXPECT_EQ(counts[tool::kValueFates + i], ledger.origins[i]) << i;
  EXPECT_EQ(counts[kReplacedWord], ledger.replaced.size());
}

TEST(HtmlAccount, CountsEachValueInExactlyOneRow) {
  expectEachCountedOnce(*sample::everyFate());
  expectEachCountedOnce(*sample::hostile());
  expectEachCountedOnce(*sample::allLost());
  expectEachCountedOnce(*sample::allSame());
  expectEachCountedOnce(*sample::ofSize(3000));
}

TEST(HtmlAccount, CountsValuesThatAFileRepeats) {
  const SampleLedger sample("dn: cn=a\ncn: a\nx: 1\nx: 1\nx: 2\n", "dn: cn=a\ncn: a\nx: 2\nx: 3\nx: 3\n",
                            "dn: cn=a\ncn: a\nx: 1\nx: 2\nx: 2\n");
  const Account account(sample.ledger());
  EXPECT_THAT(rowsOf(account, "CN=A", "x"), ElementsAre("1 | 3 | 1", "1 |  | 1", "2 | 2 | 2", " | 2 | 2", " | 3 | "));
}

TEST(HtmlAccount, PutsWhatBelongsTogetherIntoOneRow) {
  const auto sample = sample::everyFate();
  const Account account(sample->ledger());
  EXPECT_THAT(rowsOf(account, "CN=CONFIGURATION", "zor-slapdPort"), ElementsAre("1389 | 389 | 1389"));
  EXPECT_THAT(rowsOf(account, "CN=CONFIGURATION", "zor-slapdVersion"), ElementsAre("5.1 | 6.0 | 6.0"));
  EXPECT_THAT(rowsOf(account, "CN=CONFIGURATION", "zor-slapdPagedResLmt"), ElementsAre("3 |  | "));
  EXPECT_THAT(rowsOf(account, "CN=FRONT END,CN=CONFIGURATION", "zor-slapdSetenv"),
              ElementsAre("TZ=Europe/Berlin |  | TZ=Europe/Berlin",
                          "MALLOC_ARENA_MAX=4 | MALLOC_ARENA_MAX=4 | MALLOC_ARENA_MAX=4", "ACLCACHE=YES |  | ",
                          " | LDAP_MODE=64 | LDAP_MODE=64"));
}

TEST(HtmlAccount, PutsTheNewServersOneValueBesideTheOneThatDidNotArrive) {
  const std::string dn = "dn: cn=a\n";
  EXPECT_THAT(rowsOf(Account(SampleLedger(dn + "x: 1\n", dn + "x: 2\n", dn + "x: 2\n").ledger()), "CN=A", "x"),
              ElementsAre("1 | 2 | 2"));
  EXPECT_THAT(rowsOf(Account(SampleLedger(dn + "x: 1\nx: 4\n", dn + "x: 2\n", dn + "x: 2\n").ledger()), "CN=A", "x"),
              ElementsAre("1 |  | ", "4 |  | ", " | 2 | 2"));
  EXPECT_THAT(
      rowsOf(Account(SampleLedger(dn + "x: 1\n", dn + "x: 2\nx: 3\n", dn + "x: 2\nx: 3\n").ledger()), "CN=A", "x"),
      ElementsAre("1 |  | ", " | 2 | 2", " | 3 | 3"));
}

TEST(HtmlAccount, PutsTheNewServersValueBesideTheOneThatItWasKeptFor) {
  const std::string dn = "dn: cn=a\n";
  SampleLedger sample(dn + "x: 1\nx: 4\n", dn + "x: 2\n", dn + "x: 2\n");
  sample.edit().oldValues[1].place = 0;
  EXPECT_THAT(rowsOf(Account(sample.ledger()), "CN=A", "x"), ElementsAre("1 |  | ", "4 | 2 | 2"));
}

TEST(HtmlAccount, TellsWhereAMovedValueWentAndCameFrom) {
  const auto sample = sample::everyFate();
  const Account account(sample->ledger());
  std::size_t found = 0;
  for (const Row& row : account.rowsOf(account.find("CN=CONFIGURATION"))) {
    if (row.attribute != "zor-slapdSysLogLevel") continue;
    ++found;
    EXPECT_EQ(row.result, kNoValue);
    ASSERT_NE(row.elsewhere, kNoValue);
    EXPECT_EQ(account.nodes()[account.nodeOf(Content::result, row.elsewhere)].normal,
              "CN=ZORSLAPD,CN=LOG MANAGEMENT,CN=CONFIGURATION");
  }
  for (const Row& row : account.rowsOf(account.find("CN=ZORSLAPD,CN=LOG MANAGEMENT,CN=CONFIGURATION"))) {
    if (row.attribute != "zor-slapdLogOptions" || row.result == kNoValue) continue;
    ++found;
    ASSERT_NE(row.origin, kNoValue);
    EXPECT_EQ(account.nodeOf(Content::old, row.origin), account.find("CN=CONFIGURATION"));
    EXPECT_EQ(valueOf(sample->ledger(), Content::before, row.before), "m");
  }
  EXPECT_EQ(found, 2U);
}

TEST(HtmlAccount, MakesOneTreeOfTheThreeContents) {
  const SampleLedger sample("dn: cn=c, cn=b, cn=a\ncn: c\n\ndn: cn=old, cn=a\ncn: old\n",
                            "dn: CN=A\ncn: A\n\ndn: CN=B,CN=A\ncn: B\n",
                            "dn: CN=A\ncn: A\n\ndn: CN=B,CN=A\ncn: B\n\ndn: cn=top\ncn: top\n");
  const Account account(sample.ledger());
  ASSERT_EQ(account.nodes().size(), 5U);
  const auto normalOf = [&](std::uint32_t node) { return account.nodes()[node].normal; };
  ASSERT_EQ(account.tops().size(), 2U);
  EXPECT_EQ(normalOf(account.tops()[0]), "CN=A");
  EXPECT_EQ(normalOf(account.tops()[1]), "CN=TOP");
  const Node& top = account.nodes()[account.tops()[0]];
  ASSERT_EQ(top.children.size(), 2U);
  EXPECT_EQ(normalOf(top.children[0]), "CN=OLD,CN=A");
  EXPECT_EQ(normalOf(top.children[1]), "CN=B,CN=A");
  EXPECT_EQ(account.nodes()[top.children[1]].children.size(), 1U);
}

TEST(HtmlAccount, PutsAnEntryBelowTheNearestOneAboveItThatIsThere) {
  const SampleLedger sample("dn: cn=d, cn=c, cn=b, cn=a\ncn: d\n\ndn: cn=a\ncn: a\n", "dn: cn=a\ncn: a\n",
                            "dn: cn=a\ncn: a\n");
  const Account account(sample.ledger());
  ASSERT_EQ(account.tops().size(), 1U);
  EXPECT_EQ(account.nodes()[account.tops()[0]].children.size(), 1U);
}

TEST(HtmlAccount, SumsUpWhatIsBelowANode) {
  const auto sample = sample::everyFate();
  const Account account(sample->ledger());
  const Node& top = account.nodes()[account.find("CN=CONFIGURATION")];
  EXPECT_EQ(top.words & bitOf(wordOf(ValueFate::lost)), 0U);
  EXPECT_NE(top.wordsBelow & bitOf(wordOf(ValueFate::lost)), 0U);
  std::size_t size = 0;
  for (const Node& node : account.nodes()) size += node.size;
  EXPECT_EQ(top.sizeBelow, size);
}

}  // namespace
