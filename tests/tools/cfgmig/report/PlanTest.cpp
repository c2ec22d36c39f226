#include "report/Plan.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <functional>
#include <nlohmann/json.hpp>

#include "../Workspace.h"
#include "Failure.h"
#include "SampleReport.h"
#include "report/Sha256.h"

namespace {

using Json = nlohmann::json;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using tool::Format;

class Plans : public testing::Test {
 protected:
  Workspace workspace;
  std::unique_ptr<SampleLedger> sample = richLedger();

  std::string goodText() const { return written(reportOf(sample->ledger()), Format::json); }
  tool::Plan read(const std::string& text) const { return tool::readPlan(workspace.write("plan", text)); }

  // What is wrong with the text; empty when nothing is.
  std::string refusal(const std::string& text) const {
    try {
      read(text);
      return {};
    } catch (const tool::Failure& failure) {
      EXPECT_EQ(failure.status(), tool::ExitStatus::failed);
      EXPECT_EQ(failure.lines().size(), 1U);
      return failure.lines().front();
    }
  }
  std::string refusalOf(const std::function<void(Json&)>& change) const {
    Json json = Json::parse(goodText());
    change(json);
    return refusal(json.dump());
  }
};

TEST_F(Plans, AreReadAsTheyWereWritten) {
  tool::Report report = reportOf(sample->ledger());
  report.inputs[0].path = "/etc/\xff\n\"quoted\"";
  report.options.from = "6.0";
  report.options.target = "/srv/\xc3\xbc";
  report.options.schemas = {"/old dir", "/new"};
  const tool::Plan plan = read(written(report, Format::json));
  EXPECT_EQ(plan.oldFile.role, "old");
  EXPECT_EQ(plan.oldFile.path, report.inputs[0].path);
  EXPECT_EQ(plan.oldFile.sha256, tool::sha256("old"));
  EXPECT_EQ(plan.oldFile.size, 3U);
  EXPECT_EQ(plan.newFile.path, "/etc/zor/new.conf");
  EXPECT_EQ(plan.options.from, "6.0");
  EXPECT_EQ(plan.options.target, report.options.target);
  ASSERT_TRUE(plan.options.schemas);
  EXPECT_EQ(plan.options.schemas->searchDirectory, "/old dir");
  EXPECT_EQ(plan.options.schemas->targetDirectory, "/new");
  EXPECT_EQ(plan.sourceVersion, "6.0");
  EXPECT_EQ(plan.toolVersion, "0.1.0");
  EXPECT_EQ(plan.time, "2026-11-21T09:14:00Z");
  EXPECT_EQ(plan.outcome, tool::Outcome::Kind::plan);
}

TEST_F(Plans, NeedNoSchemasAndNoGivenVersion) {
  const tool::Plan plan = read(goodText());
  EXPECT_FALSE(plan.options.schemas);
  EXPECT_EQ(plan.options.from, "");
}

TEST_F(Plans, AreStaleWhenAnInputHasChanged) {
  const tool::Plan plan = read(goodText());
  EXPECT_FALSE(tool::isStale(plan.oldFile, "old"));
  EXPECT_TRUE(tool::isStale(plan.oldFile, "olD"));
  EXPECT_TRUE(tool::isStale(plan.oldFile, "old "));
}

TEST_F(Plans, AreRefusedWithTheFilesNameWhenThereIsNone) {
  try {
    tool::readPlan(workspace.path("no\nne"));
    FAIL();
  } catch (const tool::Failure& failure) {
    EXPECT_THAT(failure.lines().front(), EndsWith("no\\nne: it cannot be read: No such file or directory"));
  }
  EXPECT_THROW(tool::readPlan(workspace.path(".")), tool::Failure) << "a directory";
}

TEST_F(Plans, AreRefusedWhenTheyAreNoJsonOrNoReport) {
  EXPECT_THAT(refusal(""), HasSubstr("it is no JSON, or not all of it"));
  EXPECT_THAT(refusal("dn: cn=x\n"), HasSubstr("it is no JSON"));
  EXPECT_THAT(refusal("[]"), HasSubstr("it is no report of cfgmig"));
  EXPECT_THAT(refusal("7"), HasSubstr("it is no report of cfgmig"));
  EXPECT_THAT(refusal("{}"), HasSubstr("it lacks \"format\""));
  EXPECT_THAT(refusal(R"({"format": "other"})"), HasSubstr("it is no report of cfgmig"));
  EXPECT_THAT(refusal(goodText() + "x"), HasSubstr("it is no JSON, or not all of it"));
}

TEST_F(Plans, AreRefusedWhenTheyWereCutOffAnywhere) {
  const std::string good = goodText();
  for (std::size_t size = 0; size + 2 < good.size(); size += 97) {
    ASSERT_THAT(refusal(good.substr(0, size)), HasSubstr("it is no JSON")) << size;
  }
}

TEST_F(Plans, AreRefusedForEachThingThatIsWrong) {
  const struct {
    std::function<void(Json&)> change;
    const char* says;
  } kCases[] = {
      {[](Json& json) { json["format_version"] = 2; }, "it has format version 2, and this cfgmig reads version 1"},
      {[](Json& json) { json["format_version"] = -1; }, "its \"format_version\" is not a number of 0 or more"},
      {[](Json& json) { json["format_version"] = "1"; }, "its \"format_version\" is not a number"},
      {[](Json& json) { json.erase("inputs"); }, "it lacks \"inputs\""},
      {[](Json& json) { json["inputs"] = 1; }, "its \"inputs\" is not a list"},
      {[](Json& json) { json["inputs"][0] = 1; }, "its \"inputs[0]\" is not an object"},
      {[](Json& json) { json["inputs"].erase(1); }, "its \"inputs\" is not a list with one input of the role \"new\""},
      {[](Json& json) { json["inputs"].push_back(json["inputs"][0]); }, "with one input of the role \"old\""},
      {[](Json& json) { json["inputs"][0].erase("sha256"); }, "it lacks \"inputs[0].sha256\""},
      {[](Json& json) { json["inputs"][0]["sha256"] = std::string(64, 'G'); }, "64 lower-case hexadecimal digits"},
      {[](Json& json) { json["inputs"][0]["path"] = "old.conf"; }, "its \"inputs[0].path\" is not an absolute path"},
      {[](Json& json) { json["inputs"][0]["path"] = std::string("/a\0b", 4); }, "is not without zero bytes"},
      {[](Json& json) {
         json["inputs"][0]["path"] = Json{{"base64", "L2E="}, {"more", 1}};
       },
       "is not base64"},
      {[](Json& json) {
         json["inputs"][0]["path"] = Json{{"base64", "L2"}};
       },
       "is not base64"},
      {[](Json& json) { json["inputs"][0]["size"] = 1.5; }, "its \"inputs[0].size\" is not a number"},
      {[](Json& json) { json["source_version"] = "3.0"; },
       "its \"source_version\" is not a version that is known: 4.1"},
      {[](Json& json) { json["options"]["from"] = "x"; }, "its \"options.from\" is not a version"},
      {[](Json& json) { json["options"].erase("from"); }, "it lacks \"options.from\""},
      {[](Json& json) { json["options"]["target"] = ""; }, "its \"options.target\" is not an absolute path"},
      {[](Json& json) { json["options"]["schemas"] = "x"; }, "its \"options.schemas\" is not an object"},
      {[](Json& json) {
         json["options"]["schemas"] = Json{{"search_directory", "/a"}};
       },
       "it lacks \"options.schemas.target_directory\""},
      {[](Json& json) { json["outcome"]["kind"] = "x"; }, "its \"outcome.kind\" is not one that is known"},
      {[](Json& json) { json["tool_version"] = nullptr; }, "its \"tool_version\" is not a text"},
  };
  for (const auto& each : kCases) EXPECT_THAT(refusalOf(each.change), HasSubstr(each.says));
}

TEST_F(Plans, AreRefusedWhenSomethingStandsThereTwice) {
  std::string text = goodText();
  text.replace(text.find("\"options\""), 9, "\"time\": \"x\", \"options\"");
  EXPECT_THAT(refusal(text), HasSubstr("it names \"time\" twice in one place"));
  text = goodText();
  text.replace(text.find("\"target\""), 8, "\"target\": \"/x\", \"target\"");
  EXPECT_THAT(refusal(text), HasSubstr("it names \"target\" twice in one place"));
}

TEST_F(Plans, AreRefusedWithoutRepeatingWhatTheyHold) {
  const std::string said = refusal("{\"format\": \x1b[31mPl4nted");
  EXPECT_THAT(said, Not(HasSubstr("Pl4nted")));
  EXPECT_THAT(said, Not(HasSubstr("\x1b")));
  EXPECT_THAT(refusal(R"({"format": "cfgmig report", "\u001b[1m": 1, "\u001b[1m": 2})"), Not(HasSubstr("\x1b")));
}

TEST_F(Plans, SurviveDeepNestingAndHugeNumbers) {
  for (const char* head : {"{\"old\": ", "{\"options\": ", ""}) {
    EXPECT_NE(refusal(head + std::string(200000, '[')), "");
    EXPECT_NE(refusal(head + std::string(200000, '[') + std::string(200000, ']')), "");
  }
  EXPECT_NE(refusal(R"({"format": 1e99999})"), "");
  EXPECT_NE(refusal(R"({"old": 1e99999})"), "");
  EXPECT_NE(refusal(R"({"inputs": 99999999999999999999999999})"), "");
}

TEST_F(Plans, NeverCrashOnDamage) {
  const std::string good = goodText();
  const Workspace& files = workspace;
  rc::check([&] {
    std::string damaged = good;
    const auto count = *rc::gen::inRange(1, 4);
    for (int i = 0; i < count; ++i) {
      const auto at = *rc::gen::inRange<std::size_t>(0, std::min<std::size_t>(damaged.size(), 1500));
      damaged[at] = *rc::gen::arbitrary<char>();
    }
    try {
      const tool::Plan plan = tool::readPlan(files.write("plan", damaged));
      RC_ASSERT(tool::isSha256(plan.oldFile.sha256));
      RC_ASSERT(plan.oldFile.path.starts_with('/'));
    } catch (const tool::Failure& failure) {
      RC_ASSERT(failure.status() == tool::ExitStatus::failed);
    }
  });
}

// Test vectors of FIPS 180-4.
TEST(Sha256, IsThatOfTheStandard) {
  EXPECT_EQ(tool::sha256(""), "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
  EXPECT_EQ(tool::sha256("abc"), "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
  EXPECT_EQ(tool::sha256(std::string(1000000, 'a')),
            "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0");
}

TEST(Inputs, AreNamedByTheirAbsolutePath) {
  const tool::InputFile input = tool::inputOf("old", "x.conf", "abc");
  EXPECT_TRUE(input.path.starts_with('/'));
  EXPECT_TRUE(input.path.ends_with("/x.conf"));
  EXPECT_EQ(input.size, 3U);
}

}  // namespace
