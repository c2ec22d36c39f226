// Tests of cfgmig check, run as a process.

#include <gmock/gmock.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <sstream>

#include "ExamplePath.h"
#include "SampleFiles.h"
#include "ToolProcess.h"
#include "Workspace.h"

namespace {

using Json = nlohmann::ordered_json;

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;
using testing::StartsWith;

const std::string kGood =
    "version: 1\n\ndn: cn=configuration\nobjectClass: top\ncn: configuration\n\ndn: cn=Front End,cn=configuration\n"
    "objectClass: top\ncn: Front End\n";
const std::string kWarned = kGood + "zor-slapdSetenv: A=1\nzor-slapdSetenv: A=1\n";

std::vector<std::string> linesIn(const std::string& text) {
  std::istringstream stream(text);
  std::vector<std::string> lines;
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

class Check : public testing::Test {
 protected:
  ToolResult check(const std::string& content, std::vector<std::string> options = {}) const {
    options.insert(options.begin(), {"check", m_files.write("f", content)});
    return runTool(options);
  }
  std::string file() const { return m_files.path("f"); }

  const Workspace m_files;
};

TEST_F(Check, FindsNothingInAGoodFile) {
  const auto result = check(kGood);
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(result.err, "cfgmig: " + file() + ": 0 errors, 0 warnings; 2 entries, 4 values\n");
  EXPECT_EQ(check(kGood, {"--exit-code"}).status, 0);
}

TEST_F(Check, TellsAllErrorsInOneRunInTheOrderOfTheLines) {
  const auto result = check(
      "dn: cn=configuration\ncn: configuration\nno colon\nzor-a:: %%%\n\ncn: no dn\n\ndn: cn=configuration\n"
      "cn: again\n\ndn: not a dn\ncn: x\nzor-b:< file:///etc/passwd\n");
  EXPECT_EQ(result.status, 1);
  const auto lines = linesIn(result.out);
  std::vector<std::string> errors;
  std::copy_if(lines.begin(), lines.end(), std::back_inserter(errors),
               [](const std::string& line) { return line.find(": error: ") != std::string::npos; });
  EXPECT_THAT(errors, ElementsAre(StartsWith(file() + ":3: error: "), StartsWith(file() + ":4: error: "),
                                  StartsWith(file() + ":6: error: "), StartsWith(file() + ":8: error: "),
                                  StartsWith(file() + ":11: error: "), StartsWith(file() + ":13: error: ")));
  EXPECT_THAT(errors[0], EndsWith(" [no-colon]"));
  EXPECT_THAT(result.err, HasSubstr(": 6 errors, "));
}

TEST_F(Check, TellsMoreErrorsThanAnybodyWantsToSee) {
  std::string content = kGood;
  for (int i = 0; i < 500; ++i) content += "no colon\n";
  const auto result = check(content);
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(linesIn(result.out), SizeIs(500));
  EXPECT_THAT(result.err, HasSubstr(": 500 errors, 0 warnings; "));
}

TEST_F(Check, WarnsOfWhatIsLegalAndSuspicious) {
  const auto result = check(kWarned);
  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(linesIn(result.out),
              ElementsAre(testing::AllOf(StartsWith(file() + ":11: warning: "), EndsWith(" [duplicate-value]"))));
  EXPECT_THAT(result.err, HasSubstr(": 0 errors, 1 warning; 2 entries, 6 values\n"));
}

TEST_F(Check, ExitsWithThreeForWarningsAloneWhenAsked) {
  EXPECT_EQ(check(kWarned, {"--exit-code"}).status, 3);
  EXPECT_EQ(check(kWarned + "no colon\n", {"--exit-code"}).status, 1);
}

TEST_F(Check, ShowsAHundredWarningsOfAKindAndAllWhenAsked) {
  std::string content = kGood;
  for (int i = 0; i < 150; ++i) content += "zor-slapdSetenv: A=1\n";
  const auto some = check(content);
  EXPECT_THAT(linesIn(some.out), SizeIs(100));
  EXPECT_THAT(some.err,
              StartsWith("cfgmig: " + file() + ": warnings that are not shown: 49 of duplicate-value; --all "));
  EXPECT_THAT(some.err, HasSubstr(": 0 errors, 149 warnings; "));
  const auto all = check(content, {"--all"});
  EXPECT_THAT(linesIn(all.out), SizeIs(149));
  EXPECT_THAT(all.err, Not(HasSubstr("not shown")));
}

TEST_F(Check, TellsTheSameAsJson) {
  const auto result = check(kWarned + "no colon\n", {"--json"});
  EXPECT_EQ(result.status, 1);
  const Json report = Json::parse(result.out);
  EXPECT_EQ(report["format_version"], 1);
  EXPECT_EQ(report["file"], file());
  EXPECT_EQ(report["errors"], 1);
  ASSERT_FALSE(report["remarks"].empty());
  const Json& error = report["remarks"].back();
  EXPECT_EQ(error["line"], 12);
  EXPECT_EQ(error["severity"], "error");
  EXPECT_EQ(error["id"], "no-colon");
  EXPECT_THAT(error["text"].get<std::string>(), Not(IsEmpty()));
  std::size_t found = 0;
  for (const Json& kind : report["kinds"]) found += kind["found"].get<std::size_t>();
  EXPECT_EQ(found, report["errors"].get<std::size_t>() + report["warnings"].get<std::size_t>());
}

TEST_F(Check, JsonOfAGoodFileHasEmptyLists) {
  const auto result = check(kGood, {"--json"});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(Json::parse(result.out), Json::parse(R"({"format_version": 1, "file": ")" + file() +
                                                 R"(", "errors": 0, "warnings": 0, "entries": 2, "values": 4,
                                                     "remarks": [], "kinds": []})"));
}

TEST_F(Check, TellsAFileThatCannotBeRead) {
  const auto result = runTool({"check", m_files.path("missing")});
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.out, StartsWith(m_files.path("missing") + ": error: "));
  EXPECT_THAT(result.out, HasSubstr("No such file or directory"));
  EXPECT_EQ(runTool({"check", m_files.path("")}).status, 1);
}

TEST_F(Check, AgreesWithTheOtherCommandsAboutWhatCanBeUsed) {
  for (const std::string& content :
       {kGood, kWarned, std::string(), kGood + "no colon\n", kGood + "zor-a:: %\n", kGood + "\ndn: cn=configuration\n",
        kGood + "x: \xFF\n", kGood + "_x: 1\n", "\xEF\xBB\xBF" + kGood, kGood + "x: a\rb\n"}) {
    const int status = check(content).status;
    EXPECT_EQ(status, runTool({"dump", file()}).status) << testing::PrintToString(content);
  }
}

TEST_F(Check, FindsNoErrorInTheExamples) {
  for (const ExampleSource& source : kExampleSources) {
    EXPECT_EQ(runTool({"check", examplePath(source.oldFile)}).status, 0) << source.oldFile;
  }
}

TEST_F(Check, ReadsAPipeAndTouchesNoFile) {
  const auto result = runTool(ToolSetup{{"check", "/dev/stdin"}, {}, {}, {}, kWarned});
  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(result.out, StartsWith("/dev/stdin:11: warning: "));
  m_files.write("f", kWarned);
  const auto before = m_files.state();
  EXPECT_EQ(runTool({"check", file()}).status, 0);
  EXPECT_EQ(m_files.state(), before);
}

TEST_F(Check, ShowsDnsAsTheFileWritesThem) {
  EXPECT_THAT(check("dn: cn=a\\,b\ncn: a,b\n\ndn: CN=A\\2CB\ncn: x\n").out, HasSubstr("\"CN=A\\2CB\""));
  EXPECT_THAT(runTool({"list", file()}).err, HasSubstr("\"CN=A\\2CB\""));
}

TEST_F(Check, ShowsTextFromTheFileInPrintableForm) {
  const auto result = runTool({"check", m_files.write("a\nb\x1b[2J", "no colon\n")});
  EXPECT_THAT(result.out, HasSubstr("a\\nb\\x1b[2J:1: error: "));
  EXPECT_THAT(linesIn(result.out), SizeIs(testing::Ge(1U)));
  EXPECT_THAT(result.out, Not(HasSubstr("\x1b")));
}

}  // namespace
