// DumpJson.cpp -- the content of a configuration as JSON.
//
// {
//   "format_version": 1,
//   "file": "server.conf",
//   "entries": [
//     {
//       "dn": "cn=Front End, cn=Configuration",
//       "normal": "CN=FRONT END,CN=CONFIGURATION",
//       "line": 12,
//       "attributes": [
//         {"name": "cn", "values": ["Front End"]},
//         {"name": "zor-slapdSetenv", "values": ["A=1", {"base64": "/9g="}, "A=1"], "repeated": [2]},
//         {"name": "zor-slapdAdminPW", "values": [{"redacted": true}]}
//       ]
//     }
//   ]
// }
//
// Written entry by entry: a tree of the whole would need many times the memory of the file.

#include <ostream>
#include <string>

#include "Dump.h"
#include "JsonText.h"
#include "Secrets.h"

namespace tool {
namespace {

constexpr int kFormatVersion = 1;

class JsonDump {
 public:
  JsonDump(const cfgstore::Snapshot& content, DumpSecrets secrets) : m_content(content), m_secrets(secrets) {}

  void append(std::string& json, const cfgstore::SnapshotEntry& entry) {
    json += "    {\n      \"dn\": ";
    appendJsonText(json, entry.dn);
    json += ",\n      \"normal\": ";
    appendJsonText(json, entry.normal);
    json += ",\n      \"line\": " + std::to_string(entry.line) + ",\n      \"attributes\": [";
    const char* separator = "\n        ";
    for (const cfgstore::SnapshotAttribute& attribute : m_content.attributesOf(entry)) {
      json += separator;
      separator = ",\n        ";
      append(json, attribute);
    }
    json += entry.attributes == 0 ? "]\n    }" : "\n      ]\n    }";
  }

  std::size_t leftOut() const { return m_leftOut; }

 private:
  void append(std::string& json, const cfgstore::SnapshotAttribute& attribute) {
    json += "{\"name\": ";
    appendJsonText(json, attribute.name);
    json += ", \"values\": [";
    std::string repeated;
    std::size_t place = 0;
    for (const cfgstore::SnapshotValue& value : m_content.valuesOf(attribute)) {
      if (place > 0) json += ", ";
      if (m_secrets == DumpSecrets::leaveOut && isSecret(attribute.name, value.value)) {
        json += "{\"redacted\": true}";
        ++m_leftOut;
      } else {
        appendJsonText(json, value.value);
      }
      if (value.repeated) repeated += (repeated.empty() ? "" : ", ") + std::to_string(place);
      ++place;
    }
    json += repeated.empty() ? "]}" : "], \"repeated\": [" + repeated + "]}";
  }

  const cfgstore::Snapshot& m_content;
  DumpSecrets m_secrets;
  std::size_t m_leftOut = 0;
};

}  // namespace

std::size_t writeDumpJson(const cfgstore::Snapshot& content, std::string_view file, DumpSecrets secrets,
                          std::ostream& out) {
  std::string json = "{\n  \"format_version\": " + std::to_string(kFormatVersion) + ",\n  \"file\": ";
  appendJsonText(json, file);
  json += ",\n  \"entries\": [";
  JsonDump dump(content, secrets);
  const char* separator = "\n";
  for (const cfgstore::SnapshotEntry& entry : content.entries()) {
    json += separator;
    separator = ",\n";
    dump.append(json, entry);
    out << json;
    json.clear();
  }
  json += content.entries().empty() ? "]\n}\n" : "\n  ]\n}\n";
  out << json;
  return dump.leftOut();
}

}  // namespace tool
