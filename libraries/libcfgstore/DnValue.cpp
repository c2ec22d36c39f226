#include "DnValue.h"

#include <algorithm>

#include "DnUnicode.h"

namespace cfgstore {
namespace {

// A value as characters, or as bytes when it is not UTF-8.
struct Value {
  CodePoints characters;
  bool isText;
};

Value valueOf(std::string_view bytes) {
  if (auto text = codePointsOf(bytes)) return {std::move(*text), true};
  Value value{{}, false};
  value.characters.reserve(bytes.size());
  for (const char byte : bytes) value.characters.push_back(static_cast<unsigned char>(byte));
  return value;
}

// True for a blank that stands alone. One that a combining mark follows is the carrier of that mark.
bool isBlankAt(const Value& value, std::size_t at) {
  const CodePoints& characters = value.characters;
  if (characters[at] != ' ') return false;
  return !value.isText || at + 1 == characters.size() || !isCombiningMark(characters[at + 1]);
}

// Drops the blanks at both ends and all but one of each run between.
void dropInsignificantBlanks(Value& value) {
  CodePoints kept;
  kept.reserve(value.characters.size());
  bool pending = false;
  for (std::size_t at = 0; at < value.characters.size(); ++at) {
    if (isBlankAt(value, at)) {
      pending = !kept.empty();
      continue;
    }
    if (pending) kept.push_back(' ');
    pending = false;
    kept.push_back(value.characters[at]);
  }
  value.characters = std::move(kept);
}

CodePoint asciiUpper(CodePoint point) { return point >= 'a' && point <= 'z' ? point - 'a' + 'A' : point; }

// A folded text in capitals. A text with a letter whose capital would not fold back to it stays folded but for ASCII,
// so that a normal form is always its own normal form.
CodePoints inCapitals(CodePoints folded) {
  CodePoints capitals(folded.size());
  std::transform(folded.begin(), folded.end(), capitals.begin(), upperCaseOf);
  const bool isAscii = std::all_of(folded.begin(), folded.end(), [](CodePoint point) { return point < 0x80; });
  if (isAscii || foldedForMatching(capitals) == folded) return capitals;
  std::transform(folded.begin(), folded.end(), folded.begin(), asciiUpper);
  return folded;
}

// What is not UTF-8 is only changed where it is ASCII and in ways that leave it not UTF-8. Dropping characters as for
// text could bring bytes together that make a character then.
void prepare(Value& value) {
  CodePoints& characters = value.characters;
  if (value.isText) characters = foldedForMatching(std::move(characters));
  dropInsignificantBlanks(value);
  if (value.isText) {
    characters = inCapitals(std::move(characters));
  } else {
    std::transform(characters.begin(), characters.end(), characters.begin(), asciiUpper);
  }
}

void appendHexByte(unsigned char byte, std::string& out) {
  constexpr char kDigits[] = "0123456789ABCDEF";
  out += kDigits[byte >> 4U];
  out += kDigits[byte & 0xfU];
}

bool needsBackslash(CodePoint character, bool first) {
  constexpr std::string_view kAnywhere = ",+\"\\<>;";
  constexpr std::string_view kAtTheBeginning = "# ";
  if (character >= 0x80) return false;
  const char c = static_cast<char>(character);
  return kAnywhere.find(c) != std::string_view::npos || (first && kAtTheBeginning.find(c) != std::string_view::npos);
}

bool isPrintableAscii(CodePoint character) { return character >= 0x20 && character < 0x7f; }

void write(const Value& value, std::string& out) {
  bool first = true;
  for (const CodePoint character : value.characters) {
    if (needsBackslash(character, first)) out += '\\';
    if (value.isText || isPrintableAscii(character)) {
      appendUtf8(character, out);
    } else {
      out += '\\';
      appendHexByte(static_cast<unsigned char>(character), out);
    }
    first = false;
  }
}

}  // namespace

void appendNormalValue(std::string_view bytes, std::string& out) {
  Value value = valueOf(bytes);
  prepare(value);
  write(value, out);
}

void appendHexValue(std::string_view bytes, std::string& out) {
  out += '#';
  for (const char byte : bytes) appendHexByte(static_cast<unsigned char>(byte), out);
}

}  // namespace cfgstore
