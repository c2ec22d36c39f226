#include "ShownText.h"

#include <utf8proc.h>

namespace cfgstore {
namespace {

constexpr std::size_t kLongestDn = 200;
constexpr std::size_t kLongestName = 100;

struct Character {
  std::size_t size = 1;
  utf8proc_int32_t point = -1;  // -1 for a byte that begins no character
};

Character firstOf(std::string_view text) {
  Character character;
  const auto* at = reinterpret_cast<const utf8proc_uint8_t*>(text.data());
  const utf8proc_ssize_t size = utf8proc_iterate(at, static_cast<utf8proc_ssize_t>(text.size()), &character.point);
  if (size > 0) character.size = static_cast<std::size_t>(size);
  return character;
}

// Letters, marks, digits, punctuation, symbols and the usual blank. Not: controls, what changes the direction of
// writing, other blanks, and what no font has.
bool isVisible(utf8proc_int32_t point) {
  if (point < 0) return false;
  switch (utf8proc_category(point)) {
    case UTF8PROC_CATEGORY_CN:
    case UTF8PROC_CATEGORY_CC:
    case UTF8PROC_CATEGORY_CF:
    case UTF8PROC_CATEGORY_CS:
    case UTF8PROC_CATEGORY_CO:
    case UTF8PROC_CATEGORY_ZL:
    case UTF8PROC_CATEGORY_ZP:
      return false;
    case UTF8PROC_CATEGORY_ZS:
      return point == ' ';
    default:
      return true;
  }
}

}  // namespace

bool isUtf8(std::string_view text) {
  while (!text.empty()) {
    const Character character = firstOf(text);
    if (character.point < 0) return false;
    text.remove_prefix(character.size);
  }
  return true;
}

std::string shownDn(std::string_view dn) {
  std::string shown;
  while (!dn.empty()) {
    const Character character = firstOf(dn);
    const std::string_view as = isVisible(character.point) ? dn.substr(0, character.size) : "?";
    if (shown.size() + as.size() > kLongestDn) return shown + "...";
    shown += as;
    dn.remove_prefix(character.size);
  }
  return shown;
}

std::string shownName(std::string_view name) {
  if (name.size() <= kLongestName) return std::string(name);
  return std::string(name.substr(0, kLongestName)) + "...";
}

}  // namespace cfgstore
