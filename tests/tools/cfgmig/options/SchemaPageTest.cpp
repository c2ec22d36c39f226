// Tests of the manual page that is made from a JSON Schema.

#include "options/SchemaPage.h"

#include <gmock/gmock.h>

#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <sstream>

#include "options/Roff.h"

namespace {

using testing::HasSubstr;
using Json = nlohmann::ordered_json;

std::string contentOf(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

std::string pageOf(const std::string& schema) {
  std::ostringstream out;
  tool::writeSchemaPage("cfgmig-report", schema, out);
  return out.str();
}

// Everything that the schema says in words of its own must be in the page: names of members, descriptions, words that a
// value can be.
void expectAllOf(const Json& schema, const std::string& page) {
  if (schema.is_array()) {
    for (const Json& each : schema) expectAllOf(each, page);
  }
  if (!schema.is_object()) return;
  for (const auto& [keyword, value] : schema.items()) {
    if (keyword == "properties" || keyword == "$defs") {
      for (const auto& [name, member] : value.items()) {
        EXPECT_THAT(page, HasSubstr("\\fB" + tool::roffEscaped(name) + "\\fR"));
        expectAllOf(member, page);
      }
      continue;
    } else if (keyword == "description" && value.is_string()) {
      std::string text = value.get<std::string>();
      std::erase(text, '`');
      EXPECT_THAT(page, HasSubstr(tool::roffEscaped(text)));
    } else if (keyword == "enum") {
      for (const Json& word : value) EXPECT_THAT(page, HasSubstr(tool::roffEscaped(word.dump())));
    } else if (keyword == "pattern" || keyword == "title") {
      EXPECT_THAT(page, HasSubstr(tool::roffEscaped(value.get<std::string>())));
    }
    expectAllOf(value, page);
  }
}

TEST(SchemaPage, SaysAllThatTheSchemaOfReportsSays) {
  const std::string schema = contentOf(CFGMIG_REPORT_SCHEMA);
  expectAllOf(Json::parse(schema), pageOf(schema));
}

TEST(SchemaPage, IsBuiltFromTheSchemaAsItIs) {
  EXPECT_EQ(contentOf(CFGMIG_MANUALS "/man5/cfgmig-report.5"), pageOf(contentOf(CFGMIG_REPORT_SCHEMA)));
}

constexpr char kSmall[] = R"json({
  "title": "small, format version 1", "description": "What `x` writes.", "type": "object",
  "required": ["name"],
  "properties": {
    "name": {"description": "Of the thing.", "$ref": "#/$defs/word"},
    "places": {"type": "array", "minItems": 1, "items": {"type": "object", "required": ["at"], "properties": {
      "at": {"enum": ["here", "there"]}, "line": {"type": "integer", "minimum": 1}},
      "dependentRequired": {"line": ["at"]}}},
    "size": {"oneOf": [{"type": "null"}, {"$ref": "#/$defs/word"}]}
  },
  "$defs": {"word": {"type": "string", "minLength": 1, "pattern": "^[a-z]+$"}}
})json";

TEST(SchemaPage, NamesMembersWithTheirKindsAndWhatIsKnownOfThem) {
  const std::string page = pageOf(kSmall);
  EXPECT_THAT(page, HasSubstr("small, format version 1\n"));
  EXPECT_THAT(page, HasSubstr("What x writes.\n"));
  EXPECT_THAT(page, HasSubstr("\\fBname\\fR\nword. Of the thing.\n"));
  EXPECT_THAT(page,
              HasSubstr("\\fBplaces\\fR\narray of object, not always there. At least 1 item. Where line is, there is "
                        "at.\n.RS\n.TP\n\\fBat\\fR\n\"here\" or \"there\".\n.TP\n\\fBline\\fR\ninteger, not always "
                        "there. At least 1.\n.RE\n"));
  EXPECT_THAT(page, HasSubstr("\\fBsize\\fR\nnull or word, not always there.\n"));
  EXPECT_THAT(page, HasSubstr("\\fBword\\fR\nstring. Not empty. It matches:\n"));
  EXPECT_THAT(page, HasSubstr("\n\\(ha[a\\-z]+$\n"));
}

// A page that passed over it would say less than the schema, and nobody would notice.
TEST(SchemaPage, RefusesAKeywordThatItHasNoWordsFor) {
  Json schema = Json::parse(kSmall);
  schema["properties"]["name"]["maxLength"] = 9;
  try {
    pageOf(schema.dump());
    FAIL() << "the keyword was passed over";
  } catch (const std::runtime_error& error) {
    EXPECT_THAT(error.what(), HasSubstr("\"maxLength\""));
  }
  EXPECT_THROW(pageOf("no JSON"), std::exception);
}

}  // namespace
