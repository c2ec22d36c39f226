// Tests of the trace records that the tool lets the user see.

#include "ApplyFixture.h"

namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

class Trace : public ApplyFixture {};

TEST_F(Trace, GoesToAFileOfTheOwnerAlone) {
  const auto result = apply({"-n", "--trace", workspace.path("trace")});
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(result.err, "");
  EXPECT_EQ(workspace.mode("trace"), 0600U);
  const std::string trace = workspace.read("trace");
  EXPECT_THAT(trace, StartsWith("entry getDns\nexit  getDns result=0\nentry getDns\nexit  getDns result=0\n"
                                "entry mergeConfigFiles\nentry processNewEntry\nentry addTo60\nentry addCfgEntry\n"));
  EXPECT_THAT(trace, HasSubstr("\nexit  addCfgEntry result=1\n"));
  EXPECT_THAT(trace, HasSubstr("\ndebug processIncSchema processIncSchema: getParamArrayValueInfo for "));
  EXPECT_THAT(trace, testing::EndsWith("\nexit  mergeConfigFiles result=1\n"));
  EXPECT_THAT(trace, Not(HasSubstr(sample::kSecret)));
}

TEST_F(Trace, IsAppendedToAFileThatWasThere) {
  workspace.write("trace", "before\n");
  EXPECT_EQ(apply({"-n", "--trace", workspace.path("trace")}).status, 0);
  EXPECT_THAT(workspace.read("trace"), StartsWith("before\nentry getDns\n"));
}

TEST_F(Trace, GoesToStandardErrorForADash) {
  const auto plain = apply({"-n"});
  const auto traced = apply({"-n", "--trace", "-"});
  EXPECT_EQ(traced.status, 0);
  EXPECT_EQ(traced.out, plain.out) << "the account is the same";
  EXPECT_THAT(traced.err, StartsWith("entry getDns\n"));
}

TEST_F(Trace, HoldsOnlyWhatTheMaskAsksFor) {
  EXPECT_EQ(apply({"-n", "--trace", "-", "--trace-events", "0x3000"}).err,
            "entry getDns\n"
            "exit  getDns result=0\n"
            "entry getDns\n"
            "exit  getDns result=0\n"
            "entry mergeConfigFiles\n"
            "exit  mergeConfigFiles result=1\n");
  EXPECT_THAT(apply({"-n", "--trace", "-", "--trace-events", "8192"}).err,
              "exit  getDns result=0\nexit  getDns result=0\nexit  mergeConfigFiles result=1\n");
  EXPECT_EQ(apply({"-n", "--trace", "-", "--trace-events", "0"}).err, "");
  const std::string debug = apply({"-n", "--trace", "-", "--trace-events", "0x4000000"}).err;
  EXPECT_THAT(debug, StartsWith("debug "));
  EXPECT_THAT(debug, Not(HasSubstr("entry ")));
}

constexpr char kNotWritten[] =
    "cfgmig: the trace cannot be written; some or all of it is missing: No space left on device\n";

TEST_F(Trace, ThatCannotBeWrittenIsAFailureOfARunThatWritesNothing) {
  const auto plain = apply({"-n"});
  const auto result = apply({"-n", "--trace", "/dev/full"});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.out, plain.out);
  EXPECT_EQ(result.err, kNotWritten);
  const auto list = runTool(ToolSetup{{"list", workspace.path("old.ldif")}, {"LDTR_FILE=/dev/full"}});
  EXPECT_EQ(list.status, 1);
  EXPECT_EQ(list.err, kNotWritten);
}

TEST_F(Trace, ThatCannotBeWrittenIsAShortcomingOfARunThatWrites) {
  const auto result = apply({"--trace", "/dev/full"});
  EXPECT_EQ(result.status, 5);
  EXPECT_EQ(result.err, kNotWritten);
  EXPECT_EQ(workspace.read("new.ldif"), sample::kMerged);
}

TEST_F(Trace, OfWhichNothingWasAskedForNeedNotBeWritten) {
  EXPECT_EQ(apply({"-n", "--trace", "/dev/full", "--trace-events", "0"}).status, 0);
}

TEST_F(Trace, IsSetUpByTheEnvironmentAsWell) {
  const auto result = runTool(ToolSetup{words({"-n"}), {"LDTR_EVENTS=0x2000", "LDTR_FILE=-"}});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.err, "exit  getDns result=0\nexit  getDns result=0\nexit  mergeConfigFiles result=1\n");
  EXPECT_EQ(runTool(ToolSetup{{"list", workspace.path("old.ldif")}, {"LDTR_EVENTS=0x3000"}}).err,
            "entry getDns\nexit  getDns result=0\n");
}

TEST_F(Trace, OfTheCommandLineGoesBeforeTheEnvironment) {
  const auto result = runTool(ToolSetup{words({"-n", "--trace", workspace.path("trace")}),
                                        {"LDTR_EVENTS=nonsense", "LDTR_FILE=" + workspace.path("other")}});
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_THAT(workspace.read("trace"), Not(IsEmpty()));
  EXPECT_THAT(workspace.names(), testing::ElementsAre("new.ldif", "old.ldif", "trace"));
}

}  // namespace
