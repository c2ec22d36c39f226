#include "PrintableText.h"

#include <cstddef>
#include <cstdint>

namespace ldtr {
namespace {

struct CodePoint {
  std::uint32_t value = 0;
  std::size_t length = 0;  // in bytes; 0 when the text does not begin with a valid sequence
};

// Reads the first character of `text`, which is not empty. Overlong forms, surrogates and values above 0x10ffff are
// not valid.
CodePoint firstCodePoint(std::string_view text) {
  const auto byte = [&](std::size_t i) { return static_cast<std::uint32_t>(static_cast<unsigned char>(text[i])); };
  const std::uint32_t lead = byte(0);
  if (lead < 0x80) return {lead, 1};

  std::size_t length = 0;
  std::uint32_t smallest = 0;
  if (lead >= 0xc2 && lead <= 0xdf) {
    length = 2;
    smallest = 0x80;
  } else if (lead >= 0xe0 && lead <= 0xef) {
    length = 3;
    smallest = 0x800;
  } else if (lead >= 0xf0 && lead <= 0xf4) {
    length = 4;
    smallest = 0x10000;
  }
  if (length == 0 || length > text.size()) return {};

  std::uint32_t value = lead & (0xffU >> (length + 1));
  for (std::size_t i = 1; i < length; ++i) {
    if ((byte(i) & 0xc0) != 0x80) return {};
    value = (value << 6) | (byte(i) & 0x3f);
  }
  const bool surrogate = value >= 0xd800 && value <= 0xdfff;
  if (value < smallest || value > 0x10ffff || surrogate) return {};
  return {value, length};
}

// Ranges of characters that are never shown as they are, first and last.
constexpr std::uint32_t kHidden[][2] = {
    {0x00, 0x1f},      // control characters
    {0x7f, 0x9f},      // delete and the second set of control characters
    {0x061c, 0x061c},  // a direction mark
    {0x200b, 0x200f},  // blanks of no width, direction marks
    {0x2028, 0x202e},  // line and paragraph ends, direction overrides
    {0x2060, 0x206f},  // invisible operators, direction isolates
    {0xfeff, 0xfeff},  // byte-order mark
    {0xfff9, 0xfffb},  // annotation marks
};

bool isHidden(std::uint32_t character) {
  for (const auto& range : kHidden) {
    if (character >= range[0] && character <= range[1]) return true;
  }
  return false;
}

// How the two forms write a byte that is not shown, and a backslash.
struct Form {
  const char* digits;
  bool named;  // \n, \r and \t, and an x before the digits of others
  std::string_view backslash;
};

constexpr Form kText = {"0123456789abcdef", true, "\\\\"};
constexpr Form kDn = {"0123456789ABCDEF", false, "\\"};

void appendEscape(std::string& out, char byte, const Form& form) {
  constexpr std::string_view kControls = "\n\r\t";
  constexpr std::string_view kNames = "nrt";
  out += '\\';
  if (form.named) {
    const std::size_t name = kControls.find(byte);
    if (name != std::string_view::npos) {
      out += kNames[name];
      return;
    }
    out += 'x';
  }
  const auto value = static_cast<unsigned char>(byte);
  out += form.digits[value >> 4];
  out += form.digits[value & 0xf];
}

std::string shown(std::string_view text, const Form& form) {
  std::string out;
  out.reserve(text.size());
  while (!text.empty()) {
    const CodePoint next = firstCodePoint(text);
    const std::size_t length = next.length == 0 ? 1 : next.length;
    if (next.length == 0 || isHidden(next.value)) {
      for (const char byte : text.substr(0, length)) appendEscape(out, byte, form);
    } else if (next.value == '\\') {
      out += form.backslash;
    } else {
      out += text.substr(0, length);
    }
    text.remove_prefix(length);
  }
  return out;
}

}  // namespace

std::string printable(std::string_view text) { return shown(text, kText); }

std::string printableDn(std::string_view dn) { return shown(dn, kDn); }

}  // namespace ldtr
