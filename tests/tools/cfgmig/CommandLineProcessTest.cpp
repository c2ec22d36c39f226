// Tests of the command line as a whole, run as a process.

#include <gmock/gmock.h>

#include <ostream>

#include "ToolProcess.h"

namespace {

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

TEST(CommandLine, HelpBeginsWithExamplesAndNamesAllCommands) {
  for (const std::vector<std::string>& words :
       {std::vector<std::string>{"help"}, std::vector<std::string>{"--help"}, std::vector<std::string>{"-h"}}) {
    const auto result = runTool(words);
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.out, StartsWith("Examples:\n  cfgmig "));
    for (const char* part :
         {"  apply ", "  list ", "  check ", "  dump ", "  rewrite ", "  help ", "  version ", "Exit status:"}) {
      EXPECT_THAT(result.out, HasSubstr(part));
    }
    EXPECT_EQ(result.err, "");
  }
}

TEST(CommandLine, HelpOnACommandIsTheSameInAllItsForms) {
  const auto help = runTool({"help", "apply"});
  EXPECT_EQ(help.status, 0);
  EXPECT_THAT(help.out, StartsWith("Examples:\n"));
  EXPECT_THAT(help.out, HasSubstr("cfgmig apply PLAN [OPTION...]\n"));
  EXPECT_THAT(help.out, HasSubstr("cfgmig apply --old FILE --new FILE [OPTION...]\n"));
  EXPECT_THAT(help.out, HasSubstr("-n, --dry-run"));
  EXPECT_EQ(runTool({"apply", "--help"}).out, help.out);
  EXPECT_EQ(runTool({"apply", "-h"}).out, help.out);
  EXPECT_EQ(runTool({"apply", "--old", "x", "--help"}).out, help.out) << "help asks for no other option";
  EXPECT_EQ(runTool({"apply", "--nonsense", "--help"}).out, help.out) << "whatever else is wrong";
}

TEST(CommandLine, TellsTheVersion) {
  const auto result = runTool({"version"});
  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(result.out, testing::MatchesRegex("cfgmig [0-9]+\\.[0-9]+\\.[0-9]+\n"));
  EXPECT_EQ(runTool({"--version"}).out, result.out);
}

struct Wrong {
  std::vector<std::string> words;
  const char* told;
};

// Names the test in a list of tests.
void PrintTo(const Wrong& wrong, std::ostream* out) { *out << testing::PrintToString(wrong.words); }

class WrongCommandLine : public testing::TestWithParam<Wrong> {};

TEST_P(WrongCommandLine, IsToldOnStandardErrorWithStatusTwo) {
  const auto result = runTool(GetParam().words);
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.out, "");
  EXPECT_THAT(result.err, StartsWith("cfgmig: "));
  EXPECT_THAT(result.err, HasSubstr(GetParam().told));
  EXPECT_THAT(result.err, HasSubstr("see: cfgmig help"));
}

INSTANTIATE_TEST_SUITE_P(
    All, WrongCommandLine,
    testing::Values(
        Wrong{{}, "no command"}, Wrong{{"aply"}, "unknown command 'aply' (did you mean apply?)"},
        Wrong{{"migrate"}, "unknown command 'migrate'\n"}, Wrong{{""}, "unknown command ''"},
        Wrong{{"\x1b[2J"}, "unknown command '\\x1b[2J'"},
        Wrong{{"--hlep"}, "unknown option '--hlep' (did you mean --help?)"},
        Wrong{{"help", "lsit"}, "unknown command 'lsit' (did you mean list?)"},
        Wrong{{"help", "list", "apply"}, "unexpected argument 'apply'"},
        Wrong{{"version", "x"}, "unexpected argument 'x'"}, Wrong{{"list"}, "missing argument: FILE"},
        Wrong{{"list", "a", "b"}, "unexpected argument 'b'"}, Wrong{{"list", ""}, "FILE must not be empty"},
        Wrong{{"apply", "--new", "n", "--from", "6.0"}, "missing option: --old FILE"},
        Wrong{{"apply", "--old", "o", "--from", "6.0"}, "missing option: --new FILE"},
        Wrong{{"compare", "--old", "o"}, "missing option: --new FILE"},
        Wrong{{"clean", "f"}, "nothing to clean is named: give at least one of --database, --instance"},
        Wrong{{"clean", "--database"}, "missing argument: FILE"},
        Wrong{{"schemas", "f", "--search-dir", "/"}, "missing option: --target-dir DIR"},
        Wrong{{"schemas", "f", "--target-dir", "/"}, "missing option: --search-dir DIR"},
        Wrong{{"apply", "--old", "o", "--new", "n", "--search-dir", "/"}, "--search-dir needs --target-dir"},
        Wrong{{"apply", "--old", "o", "--new", "n", "--target-dir", "/"}, "--target-dir needs --search-dir"},
        Wrong{{"apply", "--old"}, "option --old needs a value: FILE"},
        Wrong{{"apply", "--old", "a", "--old", "b"}, "option --old is given more than once"},
        Wrong{{"apply", "--old", "", "--new", "n", "--from", "6.0"}, "--old must not be empty"},
        Wrong{{"dump"}, "missing argument: FILE"}, Wrong{{"check"}, "missing argument: FILE"},
        Wrong{{"rewrite", "f"}, "missing argument: OUT"},
        Wrong{{"rewrite", "f", "-"}, "OUT is '-', which is no file here; a file of that name is ./-"},
        Wrong{{"dump", "f", "-o", "-"}, "--output is '-', which is no file here"},
        Wrong{{"list", "f", "--max-size"}, "option --max-size needs a value: SIZE"},
        Wrong{{"list", "f", "--max-siez", "1"}, "unknown option '--max-siez' (did you mean --max-size?)"},
        Wrong{{"help", "--max-size", "1"}, "unknown option '--max-size'"},
        Wrong{{"apply", "--dry-run=no"}, "option --dry-run takes no value"},
        Wrong{{"apply", "--olt", "x"}, "unknown option '--olt' (did you mean --old?)"},
        Wrong{{"apply", "--outptu=x"}, "unknown option '--outptu' (did you mean --output?)"},
        Wrong{{"apply", "-x"}, "unknown option '-x'"}, Wrong{{"apply", "-nx"}, "unknown option '-x'"},
        Wrong{{"apply", "-dry-run"}, "unknown option '-dry-run' (did you mean --dry-run?)"},
        Wrong{{"apply", "--dry"}, "unknown option '--dry'\n"}, Wrong{{"apply", "-no"}, "option --output needs a value"},
        Wrong{{"apply", "--old", "--new", "n"}, "option --old needs a value: FILE"},
        Wrong{{"apply", "--old", "o", "--new=n", "--from", "7"}, "unknown version '7'; known are: 4.1, 5.1, 5.2, 6.0"},
        Wrong{{"plan", "--old=o", "--new=n", "--format=xml"},
              "unknown format 'xml'; known are: text, json, ldif, html"},
        Wrong{{"apply", "--old", "o", "--new", "n", "--trace-events", "1"}, "--trace-events needs --trace"},
        Wrong{{"completion", "csh"}, "unknown shell 'csh'; known are: bash, zsh, fish"},
        Wrong{{"completion"}, "missing argument: SHELL"},
        Wrong{{"--list", "f"}, "unknown option '--list' (did you mean list?)"},
        Wrong{{"--old", "o", "plan"}, "option --old goes behind a command, as in: cfgmig plan --old"},
        Wrong{{"-"}, "unknown command '-'"}, Wrong{{"--"}, "unknown option '--'"},
        Wrong{{"apply", "extra", "--old", "o", "--new", "n", "--from", "6.0"},
              "--old cannot be given with a plan, which has it"}));

TEST(CommandLine, ADoubleDashEndsTheOptions) {
  const auto result = runTool({"list", "--", "--missing"});
  EXPECT_EQ(result.status, 1) << "a file of that name is looked for";
  EXPECT_THAT(result.err, HasSubstr("--missing: "));
}

TEST(CommandLine, TakesAnOptionInAllItsForms) {
  for (const std::vector<std::string>& words : {std::vector<std::string>{"dump", "f", "-o", "/no/such/place"},
                                                {"dump", "-o/no/such/place", "f"},
                                                {"dump", "--output", "/no/such/place", "f"},
                                                {"dump", "--output=/no/such/place", "f", "--json", "--json"}}) {
    const auto result = runTool(words);
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.err, HasSubstr("/no/such/place: cannot be written")) << testing::PrintToString(words);
  }
}

TEST(CommandLine, HasNoColour) {
  EXPECT_THAT(runTool({"help"}).out, Not(HasSubstr("\x1b")));
  EXPECT_THAT(runTool({"aply"}).err, Not(HasSubstr("\x1b")));
}

}  // namespace
