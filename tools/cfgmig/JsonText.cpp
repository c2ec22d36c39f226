#include "JsonText.h"

#include "Base64.h"
#include "ShownText.h"

namespace tool {
namespace {

using Json = nlohmann::ordered_json;

}  // namespace

Json jsonBase64(std::string_view bytes) {
  std::string text;
  cfgstore::appendBase64(text, bytes);
  return Json{{"base64", text}};
}

Json jsonText(std::string_view text) { return cfgstore::isUtf8(text) ? Json(text) : jsonBase64(text); }

void appendJsonText(std::string& json, std::string_view text) { json += jsonText(text).dump(-1, ' ', true); }

}  // namespace tool
