#include "DnBerString.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "DnUnicode.h"

namespace cfgstore {
namespace {

// How the content of a string type is to be read. Bytes of a teletex string that are not ASCII mean different
// characters to different writers, so that such a string counts as no string.
enum class Content { none, ascii, utf8, twoBytes, fourBytes };

struct StringType {
  unsigned char tag;
  Content content;
};

constexpr StringType kStringTypes[] = {
    {0x0c, Content::utf8},       // UTF8String
    {0x12, Content::ascii},      // NumericString
    {0x13, Content::ascii},      // PrintableString
    {0x14, Content::ascii},      // TeletexString
    {0x16, Content::ascii},      // IA5String
    {0x1a, Content::ascii},      // VisibleString
    {0x1c, Content::fourBytes},  // UniversalString
    {0x1e, Content::twoBytes},   // BMPString
};

Content contentOf(unsigned char tag) {
  for (const StringType& type : kStringTypes) {
    if (type.tag == tag) return type.content;
  }
  return Content::none;
}

// Takes the length octets from the front of `rest`. Nothing when they are cut off, indefinite or too large to count.
std::optional<std::size_t> takeLength(std::string_view& rest) {
  if (rest.empty()) return std::nullopt;
  const auto first = static_cast<unsigned char>(rest.front());
  rest.remove_prefix(1);
  if (first < 0x80) return first;
  const std::size_t octets = first & 0x7fU;
  if (octets == 0 || octets > sizeof(std::size_t) || octets > rest.size()) return std::nullopt;
  std::size_t length = 0;
  for (const char octet : rest.substr(0, octets)) length = (length << 8U) | static_cast<unsigned char>(octet);
  rest.remove_prefix(octets);
  return length;
}

std::optional<std::string> fromWideCharacters(std::string_view bytes, std::size_t width) {
  if (bytes.size() % width != 0) return std::nullopt;
  std::string text;
  for (; !bytes.empty(); bytes.remove_prefix(width)) {
    std::uint32_t point = 0;
    for (const char byte : bytes.substr(0, width)) point = (point << 8U) | static_cast<unsigned char>(byte);
    if (!isCodePoint(point)) return std::nullopt;
    appendUtf8(static_cast<CodePoint>(point), text);
  }
  return text;
}

}  // namespace

std::optional<std::string> directoryStringOfBer(std::string_view ber) {
  if (ber.empty()) return std::nullopt;
  const Content content = contentOf(static_cast<unsigned char>(ber.front()));
  ber.remove_prefix(1);
  const auto length = takeLength(ber);
  if (!length || *length != ber.size()) return std::nullopt;
  switch (content) {
    case Content::ascii:
      if (!std::all_of(ber.begin(), ber.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; })) break;
      return std::string(ber);
    case Content::utf8:
      if (!codePointsOf(ber)) break;
      return std::string(ber);
    case Content::twoBytes:
      return fromWideCharacters(ber, 2);
    case Content::fourBytes:
      return fromWideCharacters(ber, 4);
    case Content::none:
      break;
  }
  return std::nullopt;
}

}  // namespace cfgstore
