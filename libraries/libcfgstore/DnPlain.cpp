#include "DnPlain.h"

#include <algorithm>
#include <array>

#include "DnUnicode.h"
#include "DnValue.h"

namespace cfgstore {
namespace {

// What the normal form has for a character, by its byte; 0 where the character does not belong there.
using CharacterMap = std::array<char, 256>;

consteval char asciiUpper(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }

consteval CharacterMap makeTypeCharacters() {
  CharacterMap map{};
  for (char c = 'a'; c <= 'z'; ++c) map[static_cast<unsigned char>(c)] = asciiUpper(c);
  for (char c = 'A'; c <= 'Z'; ++c) map[static_cast<unsigned char>(c)] = c;
  for (char c = '0'; c <= '9'; ++c) map[static_cast<unsigned char>(c)] = c;
  map['-'] = '-';
  map['_'] = '_';
  return map;
}

// Blanks are not among them, since they need more than a look at one character. `#` is, since it is special only at
// the beginning, where it is looked for separately.
consteval CharacterMap makeValueCharacters() {
  CharacterMap map{};
  for (char c = '!'; c <= '~'; ++c) map[static_cast<unsigned char>(c)] = asciiUpper(c);
  for (const char special : {',', ';', '+', '"', '\\', '<', '>'}) map[static_cast<unsigned char>(special)] = 0;
  return map;
}

constexpr CharacterMap kTypeCharacters = makeTypeCharacters();
constexpr CharacterMap kValueCharacters = makeValueCharacters();

char mapped(const CharacterMap& map, char c) { return map[static_cast<unsigned char>(c)]; }

bool isAsciiLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

bool isBeyondAscii(char c) { return static_cast<unsigned char>(c) >= 0x80; }

std::string_view withoutBlanks(std::string_view text) {
  text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
  return text.substr(0, text.find_last_not_of(' ') + 1);
}

const char* skipBlanks(const char* at, const char* end) {
  while (at != end && *at == ' ') ++at;
  return at;
}

}  // namespace

std::optional<PlainRdn> readPlainRdn(std::string_view text, std::span<char> out) {
  const char* const end = text.data() + text.size();
  char* to = out.data();
  char* const full = to + out.size();

  const char* at = skipBlanks(text.data(), end);
  if (at == end || !isAsciiLetter(*at)) return std::nullopt;
  for (char c; at != end && (c = mapped(kTypeCharacters, *at)) != 0; ++at) {
    if (to == full) return std::nullopt;
    *to++ = c;
  }
  at = skipBlanks(at, end);
  if (at == end || *at != '=' || to == full) return std::nullopt;
  *to++ = '=';

  at = skipBlanks(at + 1, end);
  if (at != end && *at == '#') return std::nullopt;
  for (;;) {
    for (char c; at != end && (c = mapped(kValueCharacters, *at)) != 0; ++at) {
      if (to == full) return std::nullopt;
      *to++ = c;
    }
    const bool blank = at != end && *at == ' ';
    at = skipBlanks(at, end);
    if (at == end || *at == ',' || *at == ';') break;
    if (!blank || to == full) return std::nullopt;
    *to++ = ' ';
  }
  return PlainRdn{static_cast<std::size_t>(at - text.data()), static_cast<std::size_t>(to - out.data())};
}

bool appendPlainPair(std::string_view text, std::string& out) {
  const std::size_t equals = text.find('=');
  if (equals == std::string_view::npos) return false;
  const std::string_view type = withoutBlanks(text.substr(0, equals));
  const std::string_view value = withoutBlanks(text.substr(equals + 1));
  const auto isPlain = [](char c) { return c == ' ' || isBeyondAscii(c) || mapped(kValueCharacters, c) != 0; };
  if (type.empty() || !isAsciiLetter(type.front()) || value.empty() || value.front() == '#') return false;
  if (!std::all_of(type.begin(), type.end(), [](char c) { return mapped(kTypeCharacters, c) != 0; })) return false;
  if (!std::all_of(value.begin(), value.end(), isPlain) || !codePointsOf(value)) return false;
  for (const char c : type) out += mapped(kTypeCharacters, c);
  out += '=';
  appendNormalValue(value, out);
  return true;
}

}  // namespace cfgstore
