#include "options/SchemaPage.h"

#include <algorithm>
#include <functional>
#include <map>
#include <nlohmann/json.hpp>
#include <ostream>
#include <stdexcept>

#include "options/Roff.h"

namespace tool {
namespace {

using Json = nlohmann::ordered_json;

std::string without(std::string text, char unwanted) {
  std::erase(text, unwanted);
  return text;
}

// "a, b and c", each as JSON or as it is.
std::string enumeration(const Json& items, const char* last, bool asJson) {
  std::string list;
  for (std::size_t i = 0; i < items.size(); ++i) {
    const char* const separator = i == 0 ? "" : i + 1 == items.size() ? last : ", ";
    list += separator + (asJson ? items[i].dump() : items[i].get<std::string>());
  }
  return list;
}

std::string nameOfReference(const Json& reference) {
  const std::string text = reference.get<std::string>();
  return text.substr(text.rfind('/') + 1);
}

// What a schema's value is, in a few words: "array of entry", ""plan" or "applied"", "text or null".
std::string kindOf(const Json& schema) {
  if (schema.contains("$ref")) return nameOfReference(schema["$ref"]);
  if (schema.contains("const")) return schema["const"].dump();
  if (schema.contains("enum")) return enumeration(schema["enum"], " or ", true);
  if (schema.contains("items")) return "array of " + kindOf(schema["items"]);
  if (schema.contains("type")) return schema["type"].get<std::string>();
  if (schema.contains("properties")) return "object";
  std::string kinds;
  for (const Json& each : schema.at("oneOf")) kinds += (kinds.empty() ? "" : " or ") + kindOf(each);
  return kinds;
}

// ---- keywords

using Phrase = std::function<std::string(const Json& value)>;

std::string nothing(const Json&) { return ""; }

// Alternatives of another kind are in kindOf; these are about which members are there.
std::string alternatives(const Json& value) {
  std::string text;
  for (const Json& each : value) {
    if (each.size() != 1 || !each.contains("required")) return "";
    text += (text.empty() ? "" : " or ") + enumeration(each["required"], " and ", false);
  }
  return "Exactly one of " + text + " is there.";
}

std::string containedItems(const Json& value) {
  std::string text;
  for (const Json& each : value) {
    for (const auto& [name, condition] : each.at("contains").at("properties").items()) {
      text += (text.empty() ? "Exactly one item has the " : ", one the ") + name + " " + condition.at("const").dump();
    }
    if (each.at("maxContains") != 1) throw std::runtime_error("no words for a schema with another maxContains than 1");
  }
  return text + ".";
}

std::string dependences(const Json& value) {
  std::string text;
  for (const auto& [name, others] : value.items()) {
    text +=
        (text.empty() ? "" : " ") + ("Where " + name + " is, there is " + enumeration(others, " and ", false) + ".");
  }
  return text;
}

std::string condition(const Json& value) {
  std::string text;
  for (const auto& [name, expected] : value.at("properties").items()) {
    text += (text.empty() ? "Where " : " and ") + name + " is " + kindOf(expected);
  }
  return text;
}

// What each keyword adds to the words about a value. Those with nothing to add are told elsewhere or tell readers of
// the page nothing: `additionalProperties` and its like only say that what is not listed is not there.
const std::map<std::string, Phrase>& keywords() {
  static const std::map<std::string, Phrase> phrases = {
      {"$schema", nothing},
      {"$ref", nothing},
      {"$defs", nothing},
      {"title", nothing},
      {"type", nothing},
      {"const", nothing},
      {"enum", nothing},
      {"items", nothing},
      {"properties", nothing},
      {"required", nothing},
      {"additionalProperties", nothing},
      {"unevaluatedProperties", nothing},
      {"description", [](const Json& value) { return without(value.get<std::string>(), '`'); }},
      {"oneOf", alternatives},
      {"allOf", containedItems},
      {"dependentRequired", dependences},
      {"if", condition},
      {"then",
       [](const Json& value) { return ", there is " + enumeration(value.at("required"), " and ", false) + "."; }},
      {"pattern", [](const Json&) { return "It matches:"; }},
      {"minimum", [](const Json& value) { return "At least " + value.dump() + "."; }},
      {"minLength", [](const Json&) { return "Not empty."; }},
      {"minItems", [](const Json& value) { return "At least " + value.dump() + (value == 1 ? " item." : " items."); }},
  };
  return phrases;
}

// The sentences about a value, those about the items of an array among them.
std::string sentencesAbout(const Json& schema) {
  std::string text;
  for (const auto& [keyword, value] : schema.items()) {
    const auto found = keywords().find(keyword);
    if (found == keywords().end()) throw std::runtime_error("no words for the keyword \"" + keyword + "\" of a schema");
    const std::string sentence = found->second(value);
    if (!sentence.empty()) text += (sentence.front() == ',' ? "" : " ") + sentence;
  }
  return schema.contains("items") ? text + sentencesAbout(schema["items"]) : text;
}

// The pattern stands by itself, since a formatter must not break it.
std::string patternOf(const Json& schema) {
  return schema.contains("pattern") ? "\n  " + schema["pattern"].get<std::string>() : "";
}

// ---- the page

class MemberWriter {
 public:
  MemberWriter(RoffPage& page, const Json& root) : m_page(page), m_root(root) {}

  // The members of a value that is an object, of the items of an array, of what else the value may be.
  void write(const Json& schema) {
    if (schema.contains("properties")) writeObject(schema);
    if (schema.contains("items")) write(schema["items"]);
    for (const Json& each : schema.value("oneOf", Json::array())) write(each);
  }

  // A value with all that is known about it, as an item.
  void writeItem(const std::string& name, const Json& schema, const char* end) {
    m_page.item(name, "");
    m_page.text(kindOf(schema) + end + sentencesAbout(schema) + patternOf(schema));
    write(schema);
  }

 private:
  void writeObject(const Json& schema) {
    m_page.beginNested();
    for (const auto& [name, member] : schema["properties"].items()) {
      writeItem(name, member, isRequired(schema, name) ? "." : ", not always there.");
    }
    m_page.endNested();
  }

  // Whether the schema, or one that it is built upon, has the member always.
  bool isRequired(const Json& schema, const std::string& member) const {
    const Json names = schema.value("required", Json::array());
    if (std::find(names.begin(), names.end(), member) != names.end()) return true;
    return schema.contains("$ref") && isRequired(m_root.at("$defs").at(nameOfReference(schema["$ref"])), member);
  }

  RoffPage& m_page;
  const Json& m_root;
};

}  // namespace

void writeSchemaPage(const std::string& name, const std::string& schema, std::ostream& out) {
  const Json root = Json::parse(schema);
  RoffPage page(out, name, 5);
  page.section("NAME");
  out << roffEscaped(name) << " \\- " << roffEscaped(root.at("title").get<std::string>()) << '\n';
  page.section("SYNOPSIS");
  page.commandLine("cfgmig plan --old FILE --new FILE --format json");
  page.section("DESCRIPTION");
  page.text(sentencesAbout(root).substr(1));
  page.section("MEMBERS");
  page.text("The types that are no words of JSON are explained below.");
  MemberWriter members(page, root);
  members.write(root);
  page.section("TYPES");
  page.text("What the names of types mean:");
  for (const auto& [type, definition] : root.at("$defs").items()) members.writeItem(type, definition, ".");
  page.section("SEE ALSO");
  page.reference("cfgmig-apply", 1, false);
  page.reference("cfgmig-plan", 1, false);
  page.reference("cfgmig-why", 1, true);
}

}  // namespace tool
