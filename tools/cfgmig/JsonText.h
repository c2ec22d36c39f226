// JsonText.h -- text from a configuration as JSON, which knows no text but UTF-8.

#ifndef CFGMIG_TOOL_JSONTEXT_H
#define CFGMIG_TOOL_JSONTEXT_H

#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

namespace tool {

// {"base64": "..."}
nlohmann::ordered_json jsonBase64(std::string_view bytes);

// A string, or what jsonBase64 gives for text that is not UTF-8.
nlohmann::ordered_json jsonText(std::string_view text);

// Appends jsonText(text) in one line of ASCII.
void appendJsonText(std::string& json, std::string_view text);

}  // namespace tool

#endif  // CFGMIG_TOOL_JSONTEXT_H
