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

#include "Comparison.h"
#include "JsonText.h"
#include "ShownText.h"

namespace tool {
namespace {

using Json = nlohmann::ordered_json;

constexpr int kFormatVersion = 1;

Json value(std::string_view text) { return cfgstore::isUtf8(text) ? Json{{"text", text}} : jsonBase64(text); }

Json attribute(const Comparison& comparison, const ComparedAttribute& attribute) {
  Json values = Json::array();
  for (const std::string_view text : comparison.valuesOf(attribute)) values.push_back(value(text));
  for (std::size_t i = 0; i < attribute.redacted; ++i) values.push_back(Json{{"redacted", true}});
  return Json{{"name", jsonText(attribute.name)}, {"values", std::move(values)}};
}

Json entry(const Comparison& comparison, const ComparedEntry& entry) {
  Json attributes = Json::array();
  for (const ComparedAttribute& each : comparison.attributesOf(entry)) {
    attributes.push_back(attribute(comparison, each));
  }
  return Json{{"dn", jsonText(entry.dn)},
              {"normal_dn", jsonText(entry.normalDn)},
              {"only_old", entry.onlyOld},
              {"attributes", std::move(attributes)}};
}

}  // namespace

std::string jsonOf(const Comparison& comparison) {
  Json entries = Json::array();
  for (const ComparedEntry& each : comparison.entries) entries.push_back(entry(comparison, each));
  return Json{{"format_version", kFormatVersion}, {"entries", std::move(entries)}}.dump(2, ' ', true) + "\n";
}

}  // namespace tool
