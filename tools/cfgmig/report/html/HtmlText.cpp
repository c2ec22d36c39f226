#include "report/html/HtmlText.h"

#include <cstdint>
#include <cstdio>
#include <ostream>

namespace tool::html {
namespace {

struct Range {
  std::uint32_t first;
  std::uint32_t last;
};

// Characters that are not seen as what they are: controls, what has no width, what turns the writing direction, line
// and paragraph ends, what marks other characters up, private and unassigned planes.
constexpr Range kUnseen[] = {
    {0x00, 0x1F},       {0x7F, 0x9F},       {0xAD, 0xAD},       {0x034F, 0x034F},    {0x061C, 0x061C}, {0x115F, 0x1160},
    {0x17B4, 0x17B5},   {0x180B, 0x180F},   {0x200B, 0x200F},   {0x2028, 0x202E},    {0x2060, 0x206F}, {0x3164, 0x3164},
    {0xFDD0, 0xFDEF},   {0xFE00, 0xFE0F},   {0xFEFF, 0xFEFF},   {0xFFA0, 0xFFA0},    {0xFFF0, 0xFFFB}, {0xFFFE, 0xFFFF},
    {0x1BCA0, 0x1BCA3}, {0x1D173, 0x1D17A}, {0xE0000, 0xE0FFF}, {0xF0000, 0x10FFFF},
};

bool isUnseen(std::uint32_t character) {
  for (const Range& range : kUnseen) {
    if (character >= range.first && character <= range.last) return true;
  }
  return false;
}

struct Character {
  std::uint32_t code = 0;
  std::size_t length = 0;  // in bytes; 0: the first byte begins no character of UTF-8
};

// The character that `text`, which is not empty, begins with.
Character firstOf(std::string_view text) {
  const auto byte = [&](std::size_t i) { return static_cast<std::uint32_t>(static_cast<unsigned char>(text[i])); };
  const std::uint32_t lead = byte(0);
  if (lead < 0x80) return {lead, 1};
  const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
  if (lead < 0xC2 || lead > 0xF4 || text.size() < length) return {};
  std::uint32_t code = lead & (0xFFU >> (length + 1));
  for (std::size_t i = 1; i < length; ++i) {
    if ((byte(i) & 0xC0U) != 0x80) return {};
    code = code << 6U | (byte(i) & 0x3FU);
  }
  constexpr std::uint32_t kLeast[] = {0, 0, 0x80, 0x800, 0x10000};
  if (code < kLeast[length] || code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF)) return {};
  return {code, length};
}

// The reference or the escape that stands for a character; empty for one that stands for itself.
struct Escape {
  char text[16] = "";
  bool marked = false;
};

Escape escapeOf(Character character, unsigned char lead) {
  Escape escape;
  if (character.length == 0) {
    std::snprintf(escape.text, sizeof escape.text, "\\x{%02X}", static_cast<unsigned>(lead));
  } else if (lead == '\n' || lead == '\r' || lead == '\t') {
    std::snprintf(escape.text, sizeof escape.text, "\\%c", lead == '\n' ? 'n' : lead == '\r' ? 'r' : 't');
  } else if (isUnseen(character.code)) {
    std::snprintf(escape.text, sizeof escape.text, "\\u{%04X}", static_cast<unsigned>(character.code));
  } else {
    // By number: "&apos;" is younger than HTML.
    if (lead == '&' || lead == '<' || lead == '>' || lead == '"' || lead == '\'') {
      std::snprintf(escape.text, sizeof escape.text, "&#%u;", static_cast<unsigned>(lead));
    }
    return escape;
  }
  escape.marked = true;
  return escape;
}

void write(std::ostream& out, std::string_view text, bool marks) {
  std::size_t written = 0;
  for (std::size_t at = 0; at < text.size();) {
    const auto lead = static_cast<unsigned char>(text[at]);
    // Nearly everything: printable ASCII that is no markup.
    if (lead >= ' ' && lead < 0x7F && lead != '&' && lead != '<' && lead != '>' && lead != '"' && lead != '\'') {
      ++at;
      continue;
    }
    const Character character = firstOf(text.substr(at));
    const Escape escape = escapeOf(character, lead);
    const std::size_t length = character.length == 0 ? 1 : character.length;
    if (escape.text[0] != '\0') {
      out << text.substr(written, at - written);
      if (escape.marked && marks) {
        out << "<b class=\"esc\">" << escape.text << "</b>";
      } else {
        out << escape.text;
      }
      written = at + length;
    }
    at += length;
  }
  out << text.substr(written);
}

}  // namespace

std::ostream& operator<<(std::ostream& out, Text text) {
  write(out, text.text, true);
  return out;
}

std::ostream& operator<<(std::ostream& out, Plain text) {
  write(out, text.text, false);
  return out;
}

std::ostream& operator<<(std::ostream& out, Number number) {
  std::string digits = std::to_string(number.number);
  for (std::size_t at = digits.size(); at > 3; at -= 3) digits.insert(at - 3, 1, ',');
  return out << digits;
}

std::ostream& operator<<(std::ostream& out, Count count) {
  out << Number{count.number} << ' ';
  if (count.number == 1) return out << count.noun;
  if (!count.plural.empty()) return out << count.plural;
  return out << count.noun << 's';
}

}  // namespace tool::html
