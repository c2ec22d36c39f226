// ComparisonJson.cpp -- a comparison as JSON.
//
// {
//   "format_version": 1,
//   "entries": [
//     {
//       "dn": "cn=Front End, cn=Configuration",           as the file writes it
//       "normal_dn": "CN=FRONT END,CN=CONFIGURATION",     as cfgmig list does
//       "only_old": false,                                the new configuration has no such entry
//       "attributes": [
//         {"name": "zor-slapdSetenv", "values": [{"text": "LANG=C"}, {"base64": "/w=="}]},
//         {"name": "zor-slapdAdminPW", "values": [{"redacted": true}]}
//       ]
//     }
//   ]
// }
//
// A value is text when it is UTF-8, otherwise base64. So are a "dn" and a "normal_dn" text or an object {"base64":
// ...}.

#include <nlohmann/json.hpp>
#include <string_view>

#include "Base64.h"
#include "Comparison.h"

namespace tool {
namespace {

using Json = nlohmann::ordered_json;

constexpr int kFormatVersion = 1;

bool isUtf8(std::string_view text) {
  // The serializer knows: it refuses what is not.
  try {
    (void)Json(std::string(text)).dump();
    return true;
  } catch (const Json::type_error&) {
    return false;
  }
}

Json base64(std::string_view bytes) {
  std::string text;
  cfgstore::appendBase64(text, bytes);
  return Json{{"base64", text}};
}

Json name(const std::string& text) { return isUtf8(text) ? Json(text) : base64(text); }

Json value(const std::string& text) { return isUtf8(text) ? Json{{"text", text}} : base64(text); }

Json attribute(const ComparedAttribute& attribute) {
  Json values = Json::array();
  for (const std::string& text : attribute.values) values.push_back(value(text));
  for (std::size_t i = 0; i < attribute.redacted; ++i) values.push_back(Json{{"redacted", true}});
  return Json{{"name", name(attribute.name)}, {"values", std::move(values)}};
}

Json entry(const ComparedEntry& entry) {
  Json attributes = Json::array();
  for (const ComparedAttribute& each : entry.attributes) attributes.push_back(attribute(each));
  return Json{{"dn", name(entry.dn)},
              {"normal_dn", name(entry.normalDn)},
              {"only_old", entry.onlyOld},
              {"attributes", std::move(attributes)}};
}

}  // namespace

std::string jsonOf(const Comparison& comparison) {
  Json entries = Json::array();
  for (const ComparedEntry& each : comparison.entries) entries.push_back(entry(each));
  return Json{{"format_version", kFormatVersion}, {"entries", std::move(entries)}}.dump(2, ' ', true) + "\n";
}

}  // namespace tool
