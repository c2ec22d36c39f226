// Tests of the account as the user reads it.

#include "AccountText.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <sstream>

namespace {

using namespace tool;
using testing::HasSubstr;
using testing::Not;

Account accountOf(std::vector<Fate> fates) {
  Account account;
  account.fates = std::move(fates);
  for (const Fate fate : account.fates) ++account.count[static_cast<std::size_t>(fate)];
  return account;
}

std::string textOf(const Account& account, const std::vector<std::string>& entries, AccountStyle style = {}) {
  std::ostringstream out;
  writeAccount(account, entries, style, out);
  return out.str();
}

Loss writeLoss() {
  Loss loss;
  loss.method = "mergeIn60";
  loss.entry = "CN=CONFIGURATION";
  loss.target = "CN=REPLICATION,CN=CONFIGURATION";
  loss.operation = "setValue";
  loss.attribute = "zor-slapdReplMaxErrors";
  loss.code = 32;
  return loss;
}

TEST(AccountText, IsThreeLinesWhenNothingWasLost) {
  Account account = accountOf({Fate::added, Fate::merged, Fate::merged, Fate::moved, Fate::skipped});
  account.valuesWritten = 7;
  account.valuesMoved = 2;
  account.valuesDropped = 3;
  EXPECT_EQ(textOf(account, {"CN=A", "CN=B", "CN=C", "CN=D", "CN=E"}),
            "  entries  5 old: 1 added, 2 merged, 1 moved, 1 skipped\n"
            "  values   7 written; rules moved 2 and dropped 3\n"
            "  losses   0\n");
}

TEST(AccountText, NamesEverythingAboutARefusedWrite) {
  EXPECT_EQ(
      lossText(writeLoss()),
      "mergeIn60: setValue of zor-slapdReplMaxErrors at CN=REPLICATION,CN=CONFIGURATION: code 32 (there is no such "
      "entry)");
}

TEST(AccountText, SaysInWhichConfigurationADeletionFailed) {
  Loss loss = writeLoss();
  loss.operation = "delValue";
  loss.reason = "in the old configuration";
  loss.code = 16;
  EXPECT_THAT(lossText(loss),
              HasSubstr("CN=REPLICATION,CN=CONFIGURATION in the old configuration: code 16 (there is no "
                        "such attribute or value)"));
}

TEST(AccountText, NamesNoAttributeForAWholeEntry) {
  Loss loss = writeLoss();
  loss.operation = "addEntry";
  loss.attribute = "";
  loss.restNotCarried = true;
  EXPECT_EQ(lossText(loss),
            "mergeIn60: addEntry at CN=REPLICATION,CN=CONFIGURATION: code 32 (there is no such entry); the rest of the "
            "entry was not carried");
}

TEST(AccountText, TellsWhyATransferEndedAndWhatItLeftBehind) {
  Loss loss;
  loss.kind = Loss::Kind::endedEarly;
  loss.method = "mergeChangeDnEntry";
  loss.entry = "CN=AUDIT,CN=CONFIGURATION";
  loss.reason = "getParamArrayValueInfo(2) returned rc=16";
  loss.code = 16;
  loss.behind = {"zor-one", "zor-two"};
  EXPECT_EQ(
      lossText(loss),
      "mergeChangeDnEntry: CN=AUDIT,CN=CONFIGURATION was not carried to its end: getParamArrayValueInfo(2) returned "
      "rc=16 (there is no such attribute or value); left behind: zor-one, zor-two");
}

TEST(AccountText, TellsThatARuleGaveAnEntryUp) {
  Loss loss;
  loss.kind = Loss::Kind::givenUp;
  loss.method = "mergeIn60";
  loss.entry = "CN=A";
  EXPECT_EQ(lossText(loss), "mergeIn60: CN=A was given up by its rule");
}

TEST(AccountText, ShowsNamesFromFilesInPrintableForm) {
  Loss loss = writeLoss();
  loss.attribute = "zor\x1b[2J";
  loss.target = "CN=A\nforged\xff";
  EXPECT_THAT(lossText(loss), HasSubstr("setValue of zor\\x1b[2J at CN=A\\0Aforged\\FF"));
  const std::string text = textOf(accountOf({Fate::added}), {"CN=A\r\n"}, {true, false});
  EXPECT_THAT(text, HasSubstr("CN=A\\0D\\0A\n"));
}

TEST(AccountText, KnowsACodeThatIsNotInTheTable) {
  Loss loss = writeLoss();
  loss.code = -7;
  EXPECT_THAT(lossText(loss), HasSubstr("code -7 (a code of the store's own)"));
}

TEST(AccountText, StaysShortHoweverMuchWasLost) {
  Account account = accountOf({});
  for (const std::size_t losses : {7U, 8U, 100U}) {
    account.losses.assign(losses, writeLoss());
    const std::string text = textOf(account, {});
    EXPECT_LE(std::count(text.begin(), text.end(), '\n'), 11) << losses;
    EXPECT_THAT(text, HasSubstr("  losses   " + std::to_string(losses) + "\n"));
    if (losses > 7) {
      EXPECT_THAT(text, HasSubstr("and " + std::to_string(losses - 6) + " more; -v shows them"));
    } else {
      EXPECT_THAT(text, Not(HasSubstr("more")));
    }
  }
}

TEST(AccountText, ShowsAllLossesFatesAndMessagesWhenVerbose) {
  Account account = accountOf({Fate::added, Fate::skipped});
  account.losses.assign(100, writeLoss());
  account.messages = {"one", "two (3 times)"};
  const std::string text = textOf(account, {"CN=A", "CN=B"}, {true, false});
  EXPECT_THAT(text, Not(HasSubstr("more; -v")));
  EXPECT_THAT(text, HasSubstr("  entries of the old configuration:\n    added    CN=A\n    skipped  CN=B\n"));
  EXPECT_THAT(text, HasSubstr("  messages of the library:\n    one\n    two (3 times)\n"));
}

TEST(AccountText, SpeaksOfWhatWouldBeInAPreview) {
  Account account = accountOf({});
  account.losses = {writeLoss()};
  EXPECT_THAT(textOf(account, {}, {false, true}), HasSubstr("  losses   1 to be expected\n"));
}

}  // namespace
