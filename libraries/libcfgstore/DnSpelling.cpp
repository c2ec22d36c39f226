#include "DnSpelling.h"

#include <algorithm>

#include "DnType.h"

namespace cfgstore {
namespace {

// What the DN parser takes for blanks between the parts of a DN.
constexpr std::string_view kBlanks = " \t\r\n";

std::string_view withoutLeadingBlanks(std::string_view text) {
  return text.substr(std::min(text.find_first_not_of(kBlanks), text.size()));
}

// True for `#` and at least one pair of hex digits, with nothing but blanks after them. The DN parser stops at the
// first blank and forgets what follows.
bool isHexValue(std::string_view value) {
  value.remove_prefix(1);
  const std::size_t digits = std::min(value.find_first_not_of("0123456789abcdefABCDEF"), value.size());
  return digits > 0 && digits % 2 == 0 && withoutLeadingBlanks(value.substr(digits)).empty();
}

// Appends the content of a quoted value with escapes instead of the quotes. False when there is no closing quote, or
// more than blanks after it. The DN parser has an older format that knows quotes, but there a backslash in front of
// hex digits or of anything else is dropped.
bool appendUnquoted(std::string_view value, std::string& out) {
  constexpr std::string_view kSpecial = ",+<>;=# ";
  for (std::size_t at = 1; at < value.size(); ++at) {
    const char c = value[at];
    if (c == '"') return withoutLeadingBlanks(value.substr(at + 1)).empty();
    if (kSpecial.find(c) != std::string_view::npos) out += '\\';
    out += c;
    if (c == '\\' && ++at < value.size()) out += value[at];
  }
  return false;
}

}  // namespace

std::size_t pairLength(std::string_view text) {
  bool quoted = false;
  for (std::size_t at = 0; at < text.size(); ++at) {
    switch (text[at]) {
      case '\\':
        ++at;
        break;
      case '"':
        quoted = !quoted;
        break;
      case ',':
      case ';':
      case '+':
        if (!quoted) return at;
        break;
      default:
        break;
    }
  }
  return text.size();
}

std::optional<SpelledPair> rfc4514Pair(std::string_view text) {
  const std::size_t before = text.size();
  text = withoutLeadingBlanks(text);
  text.remove_prefix(oidPrefixLength(text));
  const std::size_t equals = text.find('=');
  const std::size_t afterType = equals == std::string_view::npos ? text.size() : equals + 1;
  const std::string_view value = withoutLeadingBlanks(text.substr(afterType));

  if (value.starts_with('#') && !isHexValue(value)) return std::nullopt;
  SpelledPair pair{std::string(text.substr(0, afterType)), before - text.size()};
  std::replace(pair.text.begin(), pair.text.end(), '_', '-');
  if (!value.starts_with('"')) {
    pair.text += text.substr(afterType);
  } else if (!appendUnquoted(value, pair.text)) {
    return std::nullopt;
  }
  return pair;
}

}  // namespace cfgstore
