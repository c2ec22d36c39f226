// Tests of cfgmig dump, run as a process.

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>

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

// One of each: base64 of text and of bytes that are no text, folding, an empty value, blanks around a value, letter
// case that varies, a value twice, a name twice, a secret, an option, an entry without attributes.
const std::string kAll =
    "version: 1\n"
    "\n"
    "# a comment\n"
    "dn: cn=Front End , CN=configuration\n"
    "objectClass: top\n"
    "cn: Front\n"
    "  End\n"
    "zor-slapdSetenv: A=1\n"
    "ZOR-slapdsetenv: B=2\n"
    "zor-slapdPort: 389\n"
    "zor-slapdSetenv: A=1\n"
    "zor-text:: R3LDvMOfZQ==\n"
    "zor-bytes:: //4=\n"
    "zor-empty:\n"
    "zor-blanks:: IHggIA==\n"
    "zor-lines:: YQpi\n"
    "description;lang-de: Gr\xC3\xBC\xC3\x9F"
    "e \\ \x1b[2J\n"
    "zor-slapdAdminPW: Pl4nted-S3cret\n"
    "\n"
    "dn:: Y249w7xiZXIsY249Y29uZmlndXJhdGlvbg==\n";

class Dump : public testing::Test {
 protected:
  ToolResult dump(const std::string& content, std::vector<std::string> options = {}) const {
    options.insert(options.begin(), {"dump", m_files.write("f", content)});
    return runTool(options);
  }

  Json json(const std::string& content, std::vector<std::string> options = {}) const {
    options.insert(options.begin(), "--json");
    const auto result = dump(content, options);
    EXPECT_EQ(result.status, 0) << result.err;
    return Json::parse(result.out);
  }

  const Workspace m_files;
};

TEST_F(Dump, ShowsEveryEntryAttributeAndValueAsText) {
  const auto result = dump(kAll);
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(result.err, "");
  EXPECT_EQ(result.out,
            "cn=Front End , CN=configuration\n"
            "  (line 4) CN=FRONT END,CN=CONFIGURATION\n"
            "  objectClass: top\n"
            "  cn: Front End\n"
            "  zor-slapdSetenv: A=1\n"
            "  zor-slapdSetenv: B=2\n"
            "  zor-slapdSetenv (again): A=1\n"
            "  zor-slapdPort: 389\n"
            "  zor-text: Gr\xC3\xBC\xC3\x9F"
            "e\n"
            "  zor-bytes (base64): //4=\n"
            "  zor-empty:\n"
            "  zor-blanks:  x  \n"
            "  zor-lines: a\\nb\n"
            "  description;lang-de: Gr\xC3\xBC\xC3\x9F"
            "e \\\\ \\x1b[2J\n"
            "  zor-slapdAdminPW: Pl4nted-S3cret\n"
            "\n"
            "cn=\xC3\xBC"
            "ber,cn=configuration\n"
            "  (line 20) CN=\xC3\x9C"
            "BER,CN=CONFIGURATION\n");
}

TEST_F(Dump, ShowsTheSameAsJson) {
  const Json content = json(kAll);
  EXPECT_EQ(content, Json::parse(R"({
    "format_version": 1,
    "file": ")" + m_files.path("f") +
                                 R"(",
    "entries": [
      {
        "dn": "cn=Front End , CN=configuration",
        "normal": "CN=FRONT END,CN=CONFIGURATION",
        "line": 4,
        "attributes": [
          {"name": "objectClass", "values": ["top"]},
          {"name": "cn", "values": ["Front End"]},
          {"name": "zor-slapdSetenv", "values": ["A=1", "B=2", "A=1"], "repeated": [2]},
          {"name": "zor-slapdPort", "values": ["389"]},
          {"name": "zor-text", "values": ["Grüße"]},
          {"name": "zor-bytes", "values": [{"base64": "//4="}]},
          {"name": "zor-empty", "values": [""]},
          {"name": "zor-blanks", "values": [" x  "]},
          {"name": "zor-lines", "values": ["a\nb"]},
          {"name": "description;lang-de", "values": ["Grüße \\ \u001b[2J"]},
          {"name": "zor-slapdAdminPW", "values": ["Pl4nted-S3cret"]}
        ]
      },
      {"dn": "cn=über,cn=configuration", "normal": "CN=ÜBER,CN=CONFIGURATION", "line": 20, "attributes": []}
    ]
  })"));
}

TEST_F(Dump, IsAsciiAsJsonAndHasNoControlCharactersAsText) {
  for (const char c : dump(kAll, {"--json"}).out) EXPECT_TRUE(c == '\n' || (c >= ' ' && c <= '~')) << int{c};
  EXPECT_THAT(dump(kAll).out, Not(HasSubstr("\x1b")));
}

TEST_F(Dump, WritesBytesThatAreNoTextInADnAsAnObject) {
  const Json content = json("dn:: Y249/yxjbj14\n");  // cn=<ff>,cn=x
  EXPECT_EQ(content["entries"][0]["dn"], Json::parse(R"({"base64": "Y249/yxjbj14"})"));
  EXPECT_EQ(content["entries"][0]["normal"], "CN=\\FF,CN=X");
}

TEST_F(Dump, TakesAnyContentFileAlsoAnEmptyOne) {
  EXPECT_EQ(json("")["entries"], Json::array());
  EXPECT_EQ(json("# nothing\n")["entries"], Json::array());
  EXPECT_EQ(dump("").out, "");
  EXPECT_EQ(dump("").status, 0);
  EXPECT_THAT(json("dn: o=Acme\no: Acme\n\ndn:\nx: the empty DN\n")["entries"], SizeIs(2));
}

TEST_F(Dump, CountsLinesAsAnEditorDoes) {
  const Json content = json("\r\n# c\r\n c\r\n\r\ndn: cn=x\r\ncn: x\r\n\r\n\r\ndn: cn=y,\r\n cn=x\r\ncn: y");
  EXPECT_EQ(content["entries"][0]["line"], 5);
  EXPECT_EQ(content["entries"][1]["line"], 9);
  EXPECT_EQ(content["entries"][1]["dn"], "cn=y,cn=x");
}

TEST_F(Dump, LeavesSecretsOutWhenAsked) {
  const std::string more = "\ndn: cn=x\nzor-slapdSetenv: DB_PASSWORD=Pl4nted-S3cret\nzor-slapdSetenv: A=1\n";
  const auto text = dump(kAll + more, {"--redact"});
  EXPECT_EQ(text.status, 0);
  EXPECT_THAT(text.out, HasSubstr("  zor-slapdAdminPW (left out)\n"));
  EXPECT_THAT(text.out, EndsWith("  zor-slapdSetenv (left out)\n  zor-slapdSetenv: A=1\n"));
  EXPECT_THAT(text.out, Not(HasSubstr(sample::kSecret)));
  EXPECT_EQ(text.err, "cfgmig: 2 values left out as secret, or possibly so\n");
  const Json content = json(kAll + more, {"--redact"});
  EXPECT_THAT(content.dump(), Not(HasSubstr(sample::kSecret)));
  EXPECT_EQ(content["entries"][2]["attributes"][0]["values"], Json::parse(R"([{"redacted": true}, "A=1"])"));
}

TEST_F(Dump, WritesAFileOfItsOwnerAlone) {
  const auto result = dump(kAll, {"--json", "-o", m_files.path("out")});
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(m_files.read("out"), dump(kAll, {"--json"}).out);
  EXPECT_EQ(m_files.mode("out"), 0600U);
}

TEST_F(Dump, ClosesAFileToOthersThatHoldsTheSameAlready) {
  m_files.write("out", dump(kAll).out, 0644);
  EXPECT_EQ(dump(kAll, {"-o", m_files.path("out")}).status, 0);
  EXPECT_EQ(m_files.mode("out"), 0600U);
}

TEST_F(Dump, KeepsAFileThatItReplacesAndSaysWhere) {
  m_files.write("out", "something else\n");
  const auto result = dump(kAll, {"-o", m_files.path("out")});
  EXPECT_EQ(result.status, 0);
  const auto kept = m_files.namesAfter("out");
  ASSERT_THAT(kept, SizeIs(1));
  EXPECT_EQ(result.err, "cfgmig: kept: " + m_files.path(kept[0]) + "\n");
  EXPECT_EQ(m_files.read(kept[0]), "something else\n");
  EXPECT_EQ(m_files.mode("out"), 0600U);
}

TEST_F(Dump, RefusesTheConfigurationAsItsOutput) {
  m_files.write("f", kAll);
  std::filesystem::create_symlink("f", m_files.path("link"));
  const auto before = m_files.state();
  for (const char* name : {"f", "link"}) {
    const auto result = runTool({"dump", m_files.path("f"), "-o", m_files.path(name)});
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.err, HasSubstr("the output and the configuration are one file"));
  }
  EXPECT_EQ(m_files.state(), before);
}

TEST_F(Dump, ShowsNothingOfAFileThatHasAnError) {
  const auto result = dump(kAll + "no colon Pl4nted-S3cret\nzor-a:: Pl4nted-S3cret!\n");
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.out, "");
  EXPECT_THAT(result.err, HasSubstr("cfgmig: " + m_files.path("f") + ":21: "));
  EXPECT_THAT(result.err, HasSubstr("cfgmig: " + m_files.path("f") + ":22: "));
  EXPECT_THAT(result.err, Not(HasSubstr(sample::kSecret)));
  EXPECT_EQ(runTool({"dump", m_files.path("missing")}).status, 1);
}

TEST_F(Dump, ReadsAPipe) {
  const auto result = runTool(ToolSetup{{"dump", "/dev/stdin", "--json"}, {}, {}, {}, kAll});
  EXPECT_EQ(result.status, 0) << result.err;
  Json content = Json::parse(result.out);
  EXPECT_EQ(content["file"], "/dev/stdin");
  EXPECT_EQ(content["entries"], json(kAll)["entries"]);
}

TEST_F(Dump, TellsThatItsOutputCannotBeWritten) {
  m_files.write("f", kAll);
  const auto result = runTool(ToolSetup{{"dump", m_files.path("f")}, {}, {}, "/dev/full"});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.err, "cfgmig: standard output cannot be written; some or all of it is missing\n");
}

TEST_F(Dump, TouchesNothing) {
  m_files.write("f", kAll);
  const auto before = m_files.state();
  EXPECT_EQ(runTool({"dump", m_files.path("f")}).status, 0);
  EXPECT_EQ(m_files.state(), before);
}

}  // namespace
