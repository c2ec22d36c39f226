// The JSON report: what it holds, and that the published schema describes it, no more and no less.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <fstream>
#include <functional>
#include <nlohmann/json.hpp>
#include <set>

#include "../ExamplePath.h"
#include "../Workspace.h"
#include "SampleReport.h"

namespace {

using Json = nlohmann::json;
using testing::Each;
using testing::Eq;
using testing::HasSubstr;
using testing::StartsWith;
using tool::Format;

// What the validator says of each document.
std::vector<std::string> validate(const std::vector<std::string>& documents) {
  const Workspace workspace;
  std::string command = "'" CFGMIG_PYTHON "' '" CFGMIG_REPORT_TESTS "/validate_json.py' '" CFGMIG_REPORT_SCHEMA "'";
  for (const std::string& document : documents) {
    command += " '" + workspace.write(std::to_string(command.size()) + ".json", document) + "'";
  }
  std::FILE* const pipe = ::popen((command + " 2>&1").c_str(), "r");
  if (pipe == nullptr) throw std::runtime_error("the validator cannot be started");
  std::string output;
  std::array<char, 4096> buffer{};
  for (std::size_t got = 0; (got = std::fread(buffer.data(), 1, buffer.size(), pipe)) > 0;) {
    output.append(buffer.data(), got);
  }
  if (::pclose(pipe) != 0) throw std::runtime_error("the validator failed: " + output);
  std::vector<std::string> lines;
  for (std::size_t at = 0; at < output.size();) {
    const std::size_t end = output.find('\n', at);
    lines.push_back(output.substr(at, end - at));
    at = end + 1;
  }
  EXPECT_EQ(lines.size(), documents.size()) << output;
  return lines;
}

Json jsonOf(const tool::Report& report) { return Json::parse(written(report, Format::json)); }

TEST(JsonReport, IsValidForEveryExample) {
  std::vector<std::string> documents;
  for (const ExampleSource& source : kExampleSources) {
    documents.push_back(written(ExampleMerge(source.version, source.oldFile).report(), Format::json));
  }
  EXPECT_THAT(validate(documents), Each(Eq("valid")));
}

TEST(JsonReport, IsValidWithAllThatThereCanBe) {
  const auto sample = richLedger();
  tool::Report report = reportOf(sample->ledger());
  const std::string plain = written(report, Format::json);
  report.options.schemas = {"/a\xff", "/b"};
  report.options.from = "6.0";
  report.options.target = "/\xff";
  report.inputs[0].path = "/etc/\xff\"";
  report.recognisedFrom.clear();
  report.outcome.kind = tool::Outcome::Kind::applied;
  report.outcome.backup = "/b";
  using Fate = tool::SchemaFile::Fate;
  report.outcome.schemas = {{Fate::toCopy, "/a", "/b", "", ""},
                            {Fate::copied, "/a", "/b", "/c", ""},
                            {Fate::present, "/a", "/b", "", ""},
                            {Fate::notCopied, "/a", "/b", "", "it is a link"},
                            {Fate::missing, "a", "", "", ""}};
  report.mismatches = {"the sums do not match"};
  const std::string full = written(report, Format::json);
  sample->setFate("cn=Configuration", "zor-slapdSysLogLevel", "h", tool::ValueFate::cleaned, "removeDBInfo", "gone");
  tool::LedgerEvent removal;
  removal.operation = static_cast<std::uint8_t>(cfgstore::Operation::removeEntry);
  removal.dn = "CN=LOG,CN=CONFIGURATION";
  sample->addEvent(removal);
  std::vector<std::string> documents = {plain, full};
  for (const auto fate : {tool::EntryFate::moved, tool::EntryFate::rebuilt, tool::EntryFate::left,
                          tool::EntryFate::outside, tool::EntryFate::added}) {
    sample->setEntry("cn=Given Up,cn=Configuration", fate, "m", "w", "cn=X,cn=Configuration");
    documents.push_back(written(reportOf(sample->ledger(), true), Format::json));
  }
  EXPECT_THAT(validate(documents), Each(Eq("valid")));
  EXPECT_THAT(documents[5], HasSubstr("\"fate\": \"outside\""));
  EXPECT_THAT(documents[5], HasSubstr("\"remove-entry\""));
}

// What would break a reader that trusts the schema.
TEST(JsonReport, HasASchemaThatRefusesWhatIsNotOne) {
  const auto sample = richLedger();
  const Json good = jsonOf(reportOf(sample->ledger()));
  std::vector<std::string> documents;
  std::vector<std::string> names;
  const auto broken = [&](const std::string& name, const std::function<void(Json&)>& change) {
    Json document = good;
    change(document);
    ASSERT_NE(document, good) << name;
    documents.push_back(document.dump());
    names.push_back(name);
  };
  for (const auto& [name, member] : good.items()) {
    const std::string key = name;
    broken("without " + key, [&](Json& json) { json.erase(key); });
    broken(key + " of another type", [&](Json& json) { json[key] = Json::array({1.5}); });
  }
  broken("an unknown member", [](Json& json) { json["more"] = 1; });
  broken("another version", [](Json& json) { json["format_version"] = 2; });
  broken("one input", [](Json& json) { json["inputs"].erase(0); });
  broken("two old inputs", [](Json& json) { json["inputs"][1]["role"] = "old"; });
  broken("three inputs of a role", [](Json& json) { json["inputs"].push_back(json["inputs"][0]); });
  broken("a short fingerprint", [](Json& json) { json["inputs"][0]["sha256"] = "abc"; });
  broken("a size below 0", [](Json& json) { json["inputs"][0]["size"] = -1; });
  broken("an unknown version", [](Json& json) { json["options"]["from"] = "7.0"; });
  broken("an unknown outcome", [](Json& json) { json["outcome"]["kind"] = "done"; });
  broken("a sum that lacks a fate", [](Json& json) { json["sums"]["old_values"].erase("lost"); });
  broken("a finding of an unknown kind", [](Json& json) { json["findings"][0]["kind"] = "odd"; });
  broken("a finding without a place", [](Json& json) { json["findings"][0]["places"].clear(); });
  broken("a line without its value", [](Json& json) { json["findings"][0]["places"][0]["line"] = 3; });
  const auto value = [](Json& json, const char* content) -> Json& {
    return json[content][0]["attributes"][0]["values"][0];
  };
  for (const char* content : {"old", "before", "result"}) {
    const std::string of = std::string(" of ") + content;
    broken("a value without a number" + of, [&](Json& json) { value(json, content).erase("number"); });
    broken("a value without anything" + of, [&](Json& json) { value(json, content).erase("text"); });
    broken("a value of two forms" + of, [&](Json& json) { value(json, content)["redacted"] = true; });
    broken("a value with more" + of, [&](Json& json) { value(json, content)["more"] = 1; });
    broken("an entry with more" + of, [&](Json& json) { json[content][0]["more"] = 1; });
    broken("an attribute with more" + of, [&](Json& json) { json[content][0]["attributes"][0]["more"] = 1; });
    broken("an attribute without values" + of,
           [&](Json& json) { json[content][0]["attributes"][0]["values"].clear(); });
    broken("an entry without a line" + of, [&](Json& json) { json[content][0].erase("line"); });
  }
  broken("an old value without a fate", [&](Json& json) { value(json, "old").erase("fate"); });
  broken("a value that is the same nowhere", [&](Json& json) { value(json, "old").erase("place"); });
  broken("an unknown fate", [&](Json& json) { value(json, "old")["fate"] = "gone"; });
  broken("a result value without an origin", [&](Json& json) { value(json, "result").erase("origin"); });
  broken("a value from nowhere", [&](Json& json) { value(json, "result").erase("from"); });
  broken("a replaced value without a reason", [&](Json& json) { value(json, "before")["replaced"] = true; });
  broken("an old entry without a fate", [](Json& json) { json["old"][0].erase("fate"); });
  broken("an event of an unknown operation", [](Json& json) { json["events"][0]["operation"] = "odd"; });
  broken("an event's value with more", [](Json& json) { json["events"][0]["values"][0]["more"] = 1; });
  broken("base64 that is none", [](Json& json) { json["events"][1]["values"][0]["base64"] = "a"; });
  broken("a message that is a number", [](Json& json) { json["messages"][0] = 1; });
  const auto verdicts = validate(documents);
  ASSERT_EQ(verdicts.size(), names.size());
  for (std::size_t i = 0; i < names.size(); ++i) EXPECT_THAT(verdicts[i], StartsWith("invalid")) << names[i];
}

TEST(JsonReport, NamesEachKindOfFindingInItsSchema) {
  std::ifstream in(CFGMIG_REPORT_SCHEMA);
  const Json schema = Json::parse(in);
  std::set<std::string> ofSchema;
  for (const Json& kind : schema["properties"]["findings"]["items"]["properties"]["kind"]["enum"]) {
    ofSchema.insert(kind.get<std::string>());
  }
  std::set<std::string> ofTable;
  for (const tool::FindingKind& kind : tool::findingKinds()) ofTable.insert(kind.id);
  EXPECT_EQ(ofSchema, ofTable);
}

TEST(JsonReport, HoldsEachValueWithItsNumberItsLineAndItsAccount) {
  const auto sample = richLedger();
  const tool::Ledger& ledger = sample->ledger();
  const Json json = jsonOf(reportOf(ledger, true));
  for (const char* name : {"old", "before", "result"}) {
    const bool isOld = std::string_view(name) == "old";
    const bool isResult = std::string_view(name) == "result";
    const cfgstore::Snapshot& snapshot = isOld ? ledger.old : isResult ? ledger.result : ledger.before;
    std::size_t next = 0;
    for (const Json& entry : json[name]) {
      for (const Json& attribute : entry["attributes"]) {
        for (const Json& value : attribute["values"]) {
          const auto& expected = snapshot.values()[next];
          EXPECT_EQ(value["number"], next);
          EXPECT_EQ(value["line"], expected.line);
          if (value.contains("text")) {
            EXPECT_EQ(value["text"].get<std::string>(), expected.value);
          }
          EXPECT_EQ(attribute["name"].get<std::string>(), snapshot.attributeOf(expected).name);
          if (isOld) {
            const auto& row = ledger.oldValues[next];
            EXPECT_EQ(value["fate"], tool::nameOf(row.fate));
            EXPECT_EQ(value["reason"], row.reason);
            EXPECT_EQ(value.contains("place"), row.place != tool::kNoValue);
            if (value.contains("place")) {
              EXPECT_EQ(value["place"], row.place);
            }
          } else if (isResult) {
            EXPECT_EQ(value["origin"], tool::nameOf(ledger.resultValues[next].origin));
          }
          ++next;
        }
      }
    }
    EXPECT_EQ(next, snapshot.values().size()) << name;
  }
  std::size_t replaced = 0;
  for (const Json& entry : json["before"]) {
    for (const Json& attribute : entry["attributes"]) {
      for (const Json& value : attribute["values"]) replaced += value.contains("replaced") ? 1U : 0U;
    }
  }
  EXPECT_EQ(replaced, ledger.replaced.size());
  EXPECT_EQ(json["sums"]["old_values"]["lost"], 2);
  EXPECT_EQ(json["reasons"].size(), ledger.reasons.size());
  EXPECT_EQ(json["events"].size(), 2U);
}

TEST(JsonReport, IsAscii) {
  const auto sample = richLedger();
  const std::string json = written(reportOf(sample->ledger(), true), Format::json);
  for (const char character : json) ASSERT_TRUE(character == '\n' || (character >= ' ' && character <= '~'));
}

}  // namespace
