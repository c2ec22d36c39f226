#include "Base64.h"

#include <array>
#include <cstdint>

namespace cfgstore {
namespace {

constexpr std::string_view kAlphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr std::uint8_t kNoDigit = 0xff;

consteval std::array<std::uint8_t, 256> makeDigits() {
  std::array<std::uint8_t, 256> digits{};
  digits.fill(kNoDigit);
  for (std::size_t i = 0; i < kAlphabet.size(); ++i) {
    digits[static_cast<unsigned char>(kAlphabet[i])] = static_cast<std::uint8_t>(i);
  }
  return digits;
}

constexpr std::array<std::uint8_t, 256> kDigits = makeDigits();

char low(std::uint32_t bits) { return static_cast<char>(static_cast<unsigned char>(bits & 0xff)); }

}  // namespace

bool decodeBase64InPlace(std::string& text, std::size_t begin) {
  std::size_t end = text.size();
  while (end > begin && text[end - 1] == ' ') --end;
  if ((end - begin) % 4 != 0) return false;
  std::size_t padding = 0;
  while (padding < 2 && end - padding > begin && text[end - padding - 1] == '=') ++padding;
  const std::size_t digitsEnd = end - padding;

  std::size_t out = begin;
  std::size_t in = begin;
  const auto digitAt = [&](std::size_t at) -> std::uint32_t { return kDigits[static_cast<unsigned char>(text[at])]; };
  for (; in + 4 <= digitsEnd; in += 4, out += 3) {  // groups of four digits are three bytes
    const std::uint32_t digits[] = {digitAt(in), digitAt(in + 1), digitAt(in + 2), digitAt(in + 3)};
    if ((digits[0] | digits[1] | digits[2] | digits[3]) > 63) return false;
    const std::uint32_t group = digits[0] << 18 | digits[1] << 12 | digits[2] << 6 | digits[3];
    text[out] = low(group >> 16);
    text[out + 1] = low(group >> 8);
    text[out + 2] = low(group);
  }
  std::uint32_t bits = 0;
  unsigned pending = 0;
  for (; in < digitsEnd; ++in) {
    const std::uint8_t digit = kDigits[static_cast<unsigned char>(text[in])];
    if (digit == kNoDigit) return false;
    bits = (bits << 6) | digit;
    pending += 6;
    if (pending >= 8) {
      pending -= 8;
      text[out++] = low(bits >> pending);
    }
  }
  text.resize(out);
  return true;
}

void appendBase64(std::string& text, std::string_view bytes) {
  text.reserve(text.size() + (bytes.size() + 2) / 3 * 4);
  const auto at = [&](std::size_t i) -> std::uint32_t {
    return i < bytes.size() ? static_cast<unsigned char>(bytes[i]) : 0U;
  };
  for (std::size_t i = 0; i < bytes.size(); i += 3) {
    const std::uint32_t group = at(i) << 16 | at(i + 1) << 8 | at(i + 2);
    text += kAlphabet[group >> 18];
    text += kAlphabet[group >> 12 & 63];
    text += i + 1 < bytes.size() ? kAlphabet[group >> 6 & 63] : '=';
    text += i + 2 < bytes.size() ? kAlphabet[group & 63] : '=';
  }
}

}  // namespace cfgstore
