#include "Line.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>

#include "Base64.h"

namespace cfgstore {
namespace {

constexpr std::uint8_t kLetter = 1;
constexpr std::uint8_t kDigit = 2;
constexpr std::uint8_t kHyphen = 4;  // '-' and '_'
constexpr std::uint8_t kDot = 8;
constexpr std::uint8_t kWord = kLetter | kDigit | kHyphen;

consteval std::array<std::uint8_t, 256> makeClasses() {
  std::array<std::uint8_t, 256> classes{};
  for (unsigned char c = 'a'; c <= 'z'; ++c) classes[c] = kLetter;
  for (unsigned char c = 'A'; c <= 'Z'; ++c) classes[c] = kLetter;
  for (unsigned char c = '0'; c <= '9'; ++c) classes[c] = kDigit;
  classes['-'] = classes['_'] = kHyphen;
  classes['.'] = kDot;
  return classes;
}

constexpr std::array<std::uint8_t, 256> kClasses = makeClasses();

bool isA(char c, unsigned classes) { return (kClasses[static_cast<unsigned char>(c)] & classes) != 0; }

char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c | 0x20) : c; }

// Appends what the physical lines in `text` say together: line ends and the one blank before each continuation gone.
void appendUnfolded(std::string& out, std::string_view text) {
  while (true) {
    const auto newline = text.find('\n');
    if (newline == std::string_view::npos) break;
    out += withoutLineEnd(text.substr(0, newline + 1));
    text.remove_prefix(newline + 1);
    if (text.empty()) return;
    text.remove_prefix(1);
  }
  out += text;
}

struct Head {
  std::size_t nameLength = 0;
  std::size_t value = 0;  // where the value begins
  bool base64 = false;
};

// Reads name, separator and fill of an unfolded line.
std::optional<LineFault> parseHead(std::string_view text, Head& head) {
  std::size_t end = 0;
  while (end < text.size() && isA(text[end], kWord)) ++end;
  if (end == 0 || end == text.size() || text[end] != ':' || !isA(text[0], kLetter)) {  // an OID, an option, a fault
    end = text.find(':');
    if (end == std::string_view::npos) return LineFault::noColon;
    if (!isAttributeName(text.substr(0, end))) return LineFault::badName;
  }
  head.nameLength = end++;
  if (end < text.size() && text[end] == '<') return LineFault::url;
  if (end < text.size() && text[end] == ':') {
    head.base64 = true;
    ++end;
  }
  while (end < text.size() && text[end] == ' ') ++end;
  head.value = end;
  return std::nullopt;
}

// Where the value of a line begins that is not folded before its value.
const char* valueBegin(const Line& line, const char* end) {
  const char* at = line.raw + line.nameLength + ((line.flags & Line::kBase64) != 0 ? 2 : 1);
  while (at < end && *at == ' ') ++at;
  return at;
}

// Puts the value into `scratch`, from the returned position on; nothing if it is not base64 but should be.
std::optional<std::size_t> decodeValue(const Line& line, std::string& scratch) {
  scratch.clear();
  std::size_t begin = 0;
  if ((line.flags & Line::kHeadFolded) != 0) {
    appendUnfolded(scratch, line.text());
    Head head;
    parseHead(scratch, head);
    begin = head.value;
  } else {
    const char* const end = line.raw + line.size;
    const char* const value = valueBegin(line, end);
    appendUnfolded(scratch, {value, static_cast<std::size_t>(end - value)});
  }
  if ((line.flags & Line::kBase64) != 0 && !decodeBase64InPlace(scratch, begin)) return std::nullopt;
  return begin;
}

}  // namespace

bool isAttributeName(std::string_view name) {
  std::size_t at = 0;
  if (name.empty()) return false;
  if (isA(name[0], kLetter)) {
    while (at < name.size() && isA(name[at], kWord)) ++at;
  } else if (isA(name[0], kDigit)) {
    while (at < name.size() && isA(name[at], kDigit | kDot)) {
      if (name[at] == '.' && (at + 1 == name.size() || !isA(name[at + 1], kDigit))) return false;
      ++at;
    }
  } else {
    return false;
  }
  while (at < name.size()) {
    if (name[at] != ';') return false;
    const std::size_t option = ++at;
    while (at < name.size() && isA(name[at], kWord)) ++at;
    if (at == option) return false;
  }
  return true;
}

bool sameLetters(std::string_view left, std::string_view right) {
  if (left == right) return true;  // nearly always names that are the same are spelled the same
  for (std::size_t i = 0; i < left.size(); ++i) {
    if (left[i] != right[i] && lower(left[i]) != lower(right[i])) return false;
  }
  return true;
}

std::optional<LineFault> parseLine(std::string_view text, std::string& scratch, Line& line) {
  return parseLine(text, std::min(text.find('\n'), text.size() - 1) + 1, scratch, line);
}

std::optional<LineFault> parseLine(std::string_view text, std::size_t firstSize, std::string& scratch, Line& line) {
  line.raw = text.data();
  line.size = static_cast<std::uint32_t>(text.size());
  line.flags = 0;
  const bool folded = firstSize < text.size();
  const std::string_view first = withoutLineEnd(text.substr(0, firstSize));

  Head head;
  auto fault = parseHead(first, head);
  std::string_view name = first.substr(0, head.nameLength);
  if (folded) {
    line.flags |= Line::kFolded;
    // A fold may stand anywhere, also inside the name or between the colon and the value.
    if (fault || head.value == first.size()) {
      line.flags |= Line::kHeadFolded;
      scratch.clear();
      appendUnfolded(scratch, text);
      head = Head();
      fault = parseHead(scratch, head);
      name = std::string_view(scratch).substr(0, head.nameLength);
    }
  }
  if (fault) return fault;
  static_assert(kMostNameBytes <= std::numeric_limits<decltype(line.nameLength)>::max());
  if (head.nameLength > kMostNameBytes) return LineFault::longName;
  line.nameLength = static_cast<std::uint16_t>(head.nameLength);
  line.kind = sameName(name, "dn") ? LineKind::dn : LineKind::attribute;
  if (head.base64) {
    line.flags |= Line::kBase64;
    const auto begin = decodeValue(line, scratch);
    if (!begin) return LineFault::badBase64;
    if (scratch.find('\0', *begin) != std::string::npos) return LineFault::zeroByte;
  }
  return std::nullopt;
}

std::string_view lineName(const Line& line, std::string& scratch) {
  if ((line.flags & Line::kHeadFolded) == 0) return {line.raw, line.nameLength};
  scratch.clear();
  appendUnfolded(scratch, line.text().substr(0, line.text().find(':')));  // not the value, which may be long
  return scratch;
}

std::string_view lineValue(const Line& line, std::string& scratch) {
  if (line.flags == 0) {
    const char* const end = line.raw + withoutLineEnd(line.text()).size();
    const char* const begin = valueBegin(line, end);
    return {begin, static_cast<std::size_t>(end - begin)};
  }
  const std::size_t begin = decodeValue(line, scratch).value_or(0);
  return std::string_view(scratch).substr(begin);
}

}  // namespace cfgstore
